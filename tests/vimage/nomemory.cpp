// What happens when the system has no memory left for the library's own bookkeeping.

#include "ovwcmn/xcarchivemem.h"
#include "ovwcmn/xcvoffscreencache.h"
#include "support/scopes.h"
#include "support/tempfolder.h"
#include "support/testimage.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <memory>
#include <new>
#include <vector>

namespace {

constexpr long cnNever = -1;
thread_local long s_allocationsLeft = cnNever; // 0: the next one fails, once

void* allocate(std::size_t size, std::size_t alignment) {
    if (s_allocationsLeft != cnNever && s_allocationsLeft-- == 0)
        throw std::bad_alloc();
    void* const memory = std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment + alignment);
    return memory ? memory : throw std::bad_alloc();
}

} // namespace

// Of this program and of the library in it.
void* operator new(std::size_t size) { return allocate(size, alignof(std::max_align_t)); }
void* operator new(std::size_t size, std::align_val_t alignment) {
    return allocate(size, static_cast<std::size_t>(alignment));
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }

namespace {

using namespace ovw::test;
constexpr int cnNoMemory = 8;

class NoMemory : public testing::Test {
protected:
    /// Lets each allocation of the operation fail in turn. It may do without the memory, else it throws error 8; blocks
    /// that it made are gone either way when `prepare`, which comes before each attempt, has dropped its images.
    void failEach(const char* name, const std::function<void()>& prepare, const std::function<void()>& operation) {
        for (long allocations = 0; allocations < 1000; ++allocations) {
            prepare();
            int error = 0;
            EXPECT_NO_THROW(error = errorOf([&] {
                                s_allocationsLeft = allocations;
                                operation();
                            }))
                << name << ", allocation " << allocations;
            const bool isDone = s_allocationsLeft != cnNever;
            s_allocationsLeft = cnNever;
            EXPECT_TRUE(error == 0 || error == cnNoMemory) << name << ", allocation " << allocations << ": " << error;
            if (isDone)
                return;
        }
        FAIL() << name << " never ends";
    }
    /// An image with two painted blocks.
    void paintImage() {
        m_other.reset();
        m_image.reset(XCVOffscreen::CreateOffscreen(8));
        m_image->Create(m_store.get(), 600, 300, 72.0);
        const XCVOffscreenAutoLock lock(m_image.get(), 10, 10, 1);
        m_image->Set8BitColor(100);
        m_image->MoveCursor(500, 200);
        m_image->Set8BitColor(200);
    }
    void packImage() {
        paintImage();
        XCVOffscreen::Write(m_image.get(), 1);
    }

    TestStore m_store;
    std::unique_ptr<XCVOffscreen> m_image, m_other;
};

TEST_F(NoMemory, IsErrorEightInEveryOperationOnImages) {
    const std::function<void()> paint = [&] { paintImage(); }, pack = [&] { packImage(); };
    failEach("factory", paint, [&] { m_other.reset(XCVOffscreen::CreateOffscreen(32)); });
    failEach("cache", paint, [] { XCVOffscreen::DeleteOffscreenCache(XCVOffscreen::CreateOffscreenCache(32)); });
    failEach("backup", paint, [] { XCVOffscreen::DeleteOffscreenBackup(XCVOffscreen::CreateOffscreenBackup(32)); });
    failEach("copy", paint, [&] { m_other.reset(m_image->CreateAndCopyAll()); });
    failEach("copy within", paint, [&] { m_image->Copy(5, 5, 600, 300, m_image.get(), 0, 0, 1); });
    failEach("pack", paint, [&] { XCVOffscreen::Write(m_image.get(), 1); });
    failEach("expand", pack, [&] { const XCVOffscreenAutoLock lock(m_image.get(), 0); });
    failEach("expand a part", pack, [&] {
        XCVOffscreenLoadLock lock;
        lock.Lock(m_image.get(), m_image->GetRect());
    });
    failEach("stream", paint, [&] {
        XCArchiveMem archive(XCArchive::cnSaving | XCArchive::cnBigEndian, 0);
        XCVOffscreen::Write(archive, m_image.get(), 1);
        archive.SetMode(static_cast<int>(XCArchive::cnLoading | XCArchive::cnBigEndian));
        m_other.reset(XCVOffscreen::ReadHeader(archive));
    });
    m_other.reset();
    m_image.reset();
    EXPECT_EQ(m_store.get()->GetUsedBlockCount(), 0u);
}

TEST_F(NoMemory, IsErrorEightInTheStore) {
    std::unique_ptr<XCVirtualMemory> store;
    const auto makeStore = [&] { store = std::make_unique<XCVirtualMemory>(); };
    failEach(
        "swap", [] {}, [] { const XCSwap swap; });
    failEach(
        "residents", [] {}, [] { const XCVMCache cache; });
    failEach(
        "paging",
        [&] {
            makeStore();
            store->Create(1 << 20, nullptr, 0);
        },
        [&] {
            for (int i = 0; i < 8; ++i) {
                XCSwapBlock* const block = store->Allocate(262144);
                store->Lock(block, 1, nullptr);
                store->Unlock(block);
            }
        });
}

TEST(XCSwap, AGrowthThatLacksMemoryIsMadeUpForLater) {
    const TempFolder folder;
    XCFilePath path = folder.path("swap");
    XCSwap swap;
    std::uint32_t size = 65536;
    ASSERT_EQ(swap.Create(&size, path, 0), 1);
    XCSwapBlock* const first = swap.Allocate(65536);
    XCSwapBlock* const second = swap.Allocate(65536);
    std::vector<std::uint8_t> bytes(65536, 7);
    ASSERT_EQ(swap.Write(bytes.data(), first), 1);
    int written = 0;
    for (long allocations = 0; !written && allocations < 100; ++allocations) {
        s_allocationsLeft = allocations;
        written = swap.Write(bytes.data(), second);
        s_allocationsLeft = cnNever;
        EXPECT_EQ(second->IsSwapped(), written);
    }
    EXPECT_EQ(written, 1);
    EXPECT_EQ(swap.GetSwapSize(), 2u * 65536);
}

} // namespace
