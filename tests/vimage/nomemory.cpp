// What happens when the system has no memory left for the library's own bookkeeping.

#include "ovwcmn/xcarchivemem.h"
#include "ovwcmn/xcvoffscreencache.h"
#include "support/failingmemory.h"
#include "support/tempfolder.h"
#include "support/testimage.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

namespace {

using namespace ovw::test;

class NoMemory : public testing::Test {
protected:
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
    failEachAllocation("factory", paint, [&] { m_other.reset(XCVOffscreen::CreateOffscreen(32)); });
    failEachAllocation("cache", paint,
                       [] { XCVOffscreen::DeleteOffscreenCache(XCVOffscreen::CreateOffscreenCache(32)); });
    failEachAllocation("backup", paint,
                       [] { XCVOffscreen::DeleteOffscreenBackup(XCVOffscreen::CreateOffscreenBackup(32)); });
    failEachAllocation("copy", paint, [&] { m_other.reset(m_image->CreateAndCopyAll()); });
    failEachAllocation("copy within", paint, [&] { m_image->Copy(5, 5, 600, 300, m_image.get(), 0, 0, 1); });
    failEachAllocation("pack", paint, [&] { XCVOffscreen::Write(m_image.get(), 1); });
    failEachAllocation("expand", pack, [&] { const XCVOffscreenAutoLock lock(m_image.get(), 0); });
    failEachAllocation("expand a part", pack, [&] {
        XCVOffscreenLoadLock lock;
        lock.Lock(m_image.get(), m_image->GetRect());
    });
    failEachAllocation("stream", paint, [&] {
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
    failEachAllocation(
        "swap", [] {}, [] { const XCSwap swap; });
    failEachAllocation(
        "residents", [] {}, [] { const XCVMCache cache; });
    failEachAllocation(
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
        t_allocationsLeft = allocations;
        written = swap.Write(bytes.data(), second);
        t_allocationsLeft = cnNever;
        EXPECT_EQ(second->IsSwapped(), written);
    }
    EXPECT_EQ(written, 1);
    EXPECT_EQ(swap.GetSwapSize(), 2u * 65536);
}

} // namespace
