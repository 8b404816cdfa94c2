// Locking and unlocking blocks that are in memory, beside the mutexes that a pair of such calls passes through.

#include "canvas.h"
#include "duel.h"

#include <benchmark/benchmark.h>
#include <ovwcmn/xcvoffscreenlock.h>

#include <mutex>

namespace {

constexpr int cnBlocks = 64;
constexpr std::uint32_t cnBlockBytes = 262144;

/// The library's and the store's, each taken by Lock and by Unlock.
class Mutexes {
public:
    void passThrough() {
        for (int i = 0; i < 2; i++) {
            std::scoped_lock library(m_library);
            std::scoped_lock store(m_store);
            benchmark::ClobberMemory();
        }
    }

private:
    std::recursive_mutex m_library;
    std::recursive_mutex m_store;
};

ovwbench::Duel duelWithMutexes(Mutexes& mutexes) {
    ovwbench::Duel duel;
    duel.unit = "pairs";
    duel.amount = duel.items = cnBlocks;
    duel.limitName = "4 recursive mutexes";
    duel.limit = [&mutexes] {
        for (int i = 0; i < cnBlocks; i++)
            mutexes.passThrough();
    };
    return duel;
}

void lockInStore(benchmark::State& state) {
    XCVirtualMemory store;
    store.Create(2 * cnBlocks * cnBlockBytes, nullptr, 0);
    std::vector<XCSwapBlock*> blocks;
    for (int i = 0; i < cnBlocks; i++)
        blocks.push_back(store.Allocate(cnBlockBytes));
    Mutexes mutexes;
    ovwbench::Duel duel = duelWithMutexes(mutexes);
    duel.work = [&] {
        for (XCSwapBlock* block : blocks) {
            benchmark::DoNotOptimize(store.Lock(block, 0, nullptr));
            store.Unlock(block);
        }
    };
    ovwbench::run(state, duel);
    for (XCSwapBlock* block : blocks)
        store.Free(block);
}

void lockInImage(benchmark::State& state) {
    constexpr int cnAcross = 8;
    ovwbench::Canvas canvas(cnAcross * XCVOffscreen::cnBlockSize);
    Mutexes mutexes;
    ovwbench::Duel duel = duelWithMutexes(mutexes);
    duel.work = [&] {
        for (int i = 0; i < cnBlocks; i++) {
            XCVOffscreenAutoLock lock(&canvas.image(), i % cnAcross * XCVOffscreen::cnBlockSize,
                                      i / cnAcross * XCVOffscreen::cnBlockSize, 0);
            benchmark::DoNotOptimize(canvas.image().GetCurrentAddress());
        }
    };
    ovwbench::run(state, duel);
}

const bool s_added = [] {
    ovwbench::add("lock/block of a store", lockInStore);
    ovwbench::add("lock/block of an image", lockInImage);
    return true;
}();

} // namespace
