#include "ovwcmn/xcpatterndrawparam.h"

#include "ovwcmn/xctime.h"

#include <atomic>

namespace {

std::atomic<std::uint32_t> s_librarySeed{1};

constexpr int cnGaussDraws = 12;

constexpr std::uint32_t nextSeed(std::uint32_t seed) { return seed * 1103515245u + 12345u; }

std::uint32_t advanceLibrarySeed() {
    std::uint32_t seed = s_librarySeed.load(std::memory_order_relaxed);
    while (!s_librarySeed.compare_exchange_weak(seed, nextSeed(seed), std::memory_order_relaxed)) {
    }
    return nextSeed(seed);
}

} // namespace

double xcRandom(std::uint32_t* seed) {
    const std::uint32_t next = seed ? (*seed = nextSeed(*seed)) : advanceLibrarySeed();
    return ((next >> 16) & 0x7FFF) / 32768.0;
}

double xcGetGaussRand(std::uint32_t* seed) {
    double sum = 0.0;
    for (int i = 0; i < cnGaussDraws; i++)
        sum += xcRandom(seed);
    return (sum - 6.0) / 6.0;
}

void xcSetRandomSeed(std::uint32_t seed) { s_librarySeed.store(seed, std::memory_order_relaxed); }

void xcGenerateRandom() { xcSetRandomSeed(XCTime::StartElapsedTime()); }
