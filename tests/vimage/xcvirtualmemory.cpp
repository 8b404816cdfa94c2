#include "ovwcmn/xcvirtualmemory.h"

#include "ovwcmn/xcfilepath.h"
#include "support/scopes.h"
#include "support/tempfolder.h"
#include "support/testimage.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace ovw::test;

constexpr std::uint32_t cnOwn = 196608;    // bytes of a block with memory of its own
constexpr std::uint32_t cnPooled = 262144; // four to a pool

/// Writes `value` all over the block, with an editing lock.
void fill(XCVirtualMemory& vm, XCSwapBlock* block, int value) {
    std::memset(vm.Lock(block, 1, nullptr), value, block->GetSize());
    vm.Unlock(block);
}

/// The block's first and last byte, -1 when they differ.
int contents(XCVirtualMemory& vm, XCSwapBlock* block) {
    auto* bytes = static_cast<std::uint8_t*>(vm.Lock(block, 0, nullptr));
    const int value = bytes[0] == bytes[block->GetSize() - 1] ? bytes[0] : -1;
    vm.Unlock(block);
    return value;
}

class XCVirtualMemoryTest : public testing::Test {
protected:
    ~XCVirtualMemoryTest() override {
        for (XCSwapBlock* block : m_blocks)
            m_vm.Free(block);
    }
    void create(std::uint32_t blocks, std::uint32_t size) { m_vm.Create(blocks * size, nullptr, 0); }
    XCSwapBlock* allocate(std::uint32_t size) {
        m_blocks.push_back(m_vm.Allocate(size));
        return m_blocks.back();
    }
    /// The numbers of the blocks in memory, in order of allocation.
    std::string resident() const {
        std::string text;
        for (std::size_t i = 0; i < m_blocks.size(); ++i)
            if (m_blocks[i]->IsOnMemory())
                text += std::to_string(i) + ' ';
        return text;
    }
    XCVirtualMemory m_vm;
    std::vector<XCSwapBlock*> m_blocks;
};

TEST_F(XCVirtualMemoryTest, NewBlocksAreResidentUnlockedAndUnedited) {
    create(10, cnOwn);
    XCSwapBlock* block = allocate(100);
    EXPECT_GE(block->GetSize(), 100u);
    EXPECT_EQ(block->GetSize() % 512, 0u);
    EXPECT_EQ(block->IsOnMemory(), 1);
    EXPECT_EQ(block->IsLocked() + block->GetEditFlag() + block->IsSwapped() + block->IsTemporary(), 0);
    EXPECT_EQ(m_vm.GetUsedPhysicalMemorySize(), block->GetSize());
    EXPECT_EQ(m_vm.GetFreePhysicalMemorySize(), 10 * cnOwn - block->GetSize());
    EXPECT_EQ(m_vm.GetUsedBlockCount(), 1u);
    EXPECT_EQ(m_vm.GetUsedDiskSize(), 0u);
    EXPECT_EQ(m_vm.GetSwapFileSize(), 10 * cnOwn);
}

TEST_F(XCVirtualMemoryTest, OldestEditedBlockLeavesFirstAndComesBack) {
    create(3, cnOwn);
    for (int i = 0; i < 3; ++i)
        fill(m_vm, allocate(cnOwn), 10 + i);
    EXPECT_EQ(contents(m_vm, m_blocks[0]), 10); // use does not make it younger
    allocate(cnOwn);
    EXPECT_EQ(resident(), "1 2 3 ");
    EXPECT_EQ(m_blocks[0]->IsSwapped(), 1);
    EXPECT_EQ(m_vm.GetUsedDiskSize(), cnOwn);
    int wasRead = 5;
    EXPECT_EQ(static_cast<std::uint8_t*>(m_vm.Lock(m_blocks[0], 0, &wasRead))[cnOwn - 1], 10);
    m_vm.Unlock(m_blocks[0]);
    EXPECT_EQ(wasRead, 1);
    EXPECT_EQ(resident(), "0 2 3 ");
    wasRead = 5;
    m_vm.Lock(m_blocks[0], 0, &wasRead);
    m_vm.Unlock(m_blocks[0]);
    EXPECT_EQ(wasRead, 5); // it was in memory
    EXPECT_EQ(m_blocks[0]->GetEditFlag(), 0);
    EXPECT_EQ(contents(m_vm, m_blocks[1]), 11);
    EXPECT_EQ(resident(), "0 1 3 ");
}

TEST_F(XCVirtualMemoryTest, TemporaryBlocksGoFirstAndAreNotWritten) {
    create(3, cnOwn);
    for (int i = 0; i < 3; ++i)
        fill(m_vm, allocate(cnOwn), 10 + i);
    m_blocks[2]->SetTemporary(1);
    allocate(cnOwn);
    EXPECT_EQ(resident(), "0 1 3 ");
    EXPECT_EQ(m_blocks[2]->IsEnable(), 0);
    EXPECT_EQ(m_vm.GetUsedDiskSize(), 0u);
    int wasRead = 0;
    EXPECT_NE(m_vm.Lock(m_blocks[2], 0, &wasRead), nullptr);
    m_vm.Unlock(m_blocks[2]);
    EXPECT_EQ(wasRead, 0);
    EXPECT_EQ(resident(), "1 2 3 ");
}

TEST_F(XCVirtualMemoryTest, CleanBlocksNeverWrittenHaveNoPlace) {
    create(1, cnOwn);
    allocate(cnOwn);
    allocate(cnOwn);
    EXPECT_EQ(resident(), "1 ");
    EXPECT_EQ(m_blocks[0]->IsEnable(), 0);
    int wasRead = 0;
    m_vm.Lock(m_blocks[0], 0, &wasRead);
    m_vm.Unlock(m_blocks[0]);
    EXPECT_EQ(wasRead, 0);
    EXPECT_EQ(m_vm.GetUsedDiskSize(), 0u);
}

TEST_F(XCVirtualMemoryTest, LockedAndProtectedBlocksStay) {
    create(3, cnOwn);
    for (int i = 0; i < 3; ++i)
        allocate(cnOwn);
    m_vm.Lock(m_blocks[0], 1, nullptr);
    m_blocks[1]->SetAbsoluteProtect(1);
    allocate(cnOwn);
    EXPECT_EQ(resident(), "0 1 3 ");
    m_blocks[3]->SetAbsoluteProtect(1);
    EXPECT_EQ(errorOf([&] { allocate(cnOwn); }), 8);
    EXPECT_EQ(m_vm.GetUsedBlockCount(), 4u);
    // A lock may exceed the budget.
    EXPECT_NE(m_vm.Lock(m_blocks[2], 0, nullptr), nullptr);
    EXPECT_EQ(m_vm.GetUsedPhysicalMemorySize(), 4 * cnOwn);
    EXPECT_EQ(m_vm.GetFreePhysicalMemorySize(), 0u);
    EXPECT_EQ(errorOf([&] { allocate(512); }), 8);
    m_vm.Unlock(m_blocks[2]);
    m_vm.Unlock(m_blocks[0]);
    m_blocks[1]->SetAbsoluteProtect(2); // only 1 protects
    EXPECT_EQ(m_blocks[1]->IsAbsoluteProtect(), 0);
    allocate(cnOwn);
    EXPECT_EQ(m_blocks[3]->IsOnMemory(), 1);
    EXPECT_EQ(m_vm.GetUsedPhysicalMemorySize(), 3 * cnOwn);
}

TEST_F(XCVirtualMemoryTest, NestedLocksKeepTheAddress) {
    create(1, cnOwn);
    XCSwapBlock* block = allocate(cnOwn);
    void* address = m_vm.Lock(block, 1, nullptr);
    EXPECT_EQ(m_vm.Lock(block, 0, nullptr), address);
    m_vm.Unlock(block);
    EXPECT_EQ(errorOf([&] { allocate(cnOwn); }), 8);
    EXPECT_EQ(block->IsOnMemory(), 1);
    EXPECT_EQ(block->GetProtectAddress(), address);
    m_vm.Unlock(block);
    EXPECT_EQ(errorOf([&] { allocate(cnOwn); }), 0);
    EXPECT_EQ(block->GetProtectAddress(), nullptr);
}

TEST_F(XCVirtualMemoryTest, PurgeEvictsOneBlockAndRefusesHeldOnes) {
    create(4, cnOwn);
    XCSwapBlock* block = allocate(cnOwn);
    EXPECT_EQ(m_vm.Purge(nullptr), 1);
    m_vm.Lock(block, 1, nullptr);
    EXPECT_EQ(m_vm.Purge(block), 0);
    EXPECT_EQ(block->IsSwapped(), 0);
    m_vm.Unlock(block);
    block->SetAbsoluteProtect(1);
    EXPECT_EQ(m_vm.Purge(block), 0);
    EXPECT_EQ(block->IsSwapped(), 1); // written all the same
    EXPECT_EQ(block->GetEditFlag(), 0);
    EXPECT_EQ(block->IsOnMemory(), 1);
    block->SetAbsoluteProtect(0);
    EXPECT_EQ(m_vm.Purge(block), 1);
    EXPECT_EQ(block->IsOnMemory(), 0);
    EXPECT_EQ(m_vm.GetUsedPhysicalMemorySize(), 0u);
    m_vm.Unlock(block); // not resident: nothing
}

TEST_F(XCVirtualMemoryTest, PoolsGiveTheirHighestSlotFirst) {
    create(16, cnPooled);
    constexpr std::uint32_t classes[][2] = {{8192, 128}, {16384, 64}, {65536, 16}, {131072, 8}, {262144, 4}};
    for (auto [size, slots] : classes) {
        XCSwapBlock* first = allocate(size);
        XCSwapBlock* second = allocate(size);
        EXPECT_EQ(first->GetMemory().m_nSlot, slots - 1);
        EXPECT_EQ(second->GetMemory().m_nSlot, slots - 2);
        EXPECT_EQ(first->GetMemory().m_pPool, second->GetMemory().m_pPool);
        EXPECT_EQ(first->GetMemory().m_pPool->GetSlotCount(), slots);
        EXPECT_EQ(first->GetMemory().m_pPool->GetOwner(slots - 1), first);
        auto* a = static_cast<std::uint8_t*>(m_vm.Lock(first, 1, nullptr));
        auto* b = static_cast<std::uint8_t*>(m_vm.Lock(second, 1, nullptr));
        EXPECT_EQ(a - b, std::ptrdiff_t(size));
        m_vm.Unlock(first);
        m_vm.Unlock(second);
    }
    EXPECT_EQ(allocate(cnOwn)->GetMemory().m_pPool, nullptr);
}

// Pages that the system hands out are zero; a block that shows its predecessor's bytes cost none.
TEST_F(XCVirtualMemoryTest, AFreedPoolServesTheNextBlocksWhileTheBudgetIsWide) {
    for (const auto& [pools, expected] : {std::pair{8u, 77}, {2u, 77}, {1u, 0}}) {
        m_vm.Create(pools * XCVMHandlePool::cnPoolBytes, nullptr, 0);
        for (int round = 0; round < 2; ++round) {
            XCSwapBlock* const block = m_vm.Allocate(cnPooled);
            EXPECT_EQ(contents(m_vm, block), round == 0 ? 0 : expected) << pools;
            fill(m_vm, block, 77);
            m_vm.Free(block);
        }
    }
}

TEST_F(XCVirtualMemoryTest, APoolWithAHeldBlockIsPassedOver) {
    create(8, cnPooled);
    for (int i = 0; i < 8; ++i)
        fill(m_vm, allocate(cnPooled), 50 + i);
    m_vm.Lock(m_blocks[2], 0, nullptr);
    allocate(cnPooled);
    // Slot order is the reverse of the order of allocation: block 4, the candidate, goes last.
    EXPECT_EQ(resident(), "0 1 2 3 8 ");
    m_vm.Unlock(m_blocks[2]);
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(contents(m_vm, m_blocks[std::size_t(i)]), 50 + i);
}

TEST_F(XCVirtualMemoryTest, TheSwapFileGrowsByWholeBudgetsAndReusesSpace) {
    create(1, cnOwn);
    for (int i = 0; i < 4; ++i)
        fill(m_vm, allocate(cnOwn), i);
    EXPECT_EQ(m_vm.GetUsedDiskSize(), 3 * cnOwn);
    EXPECT_EQ(m_vm.GetSwapFileSize(), 3 * cnOwn);
    m_vm.Free(m_blocks[1]);
    m_blocks.erase(m_blocks.begin() + 1);
    EXPECT_EQ(m_vm.GetUsedDiskSize(), 2 * cnOwn);
    fill(m_vm, allocate(cnOwn), 9);
    EXPECT_EQ(m_vm.GetUsedDiskSize(), 3 * cnOwn);
    EXPECT_EQ(m_vm.GetSwapFileSize(), 3 * cnOwn);
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_EQ(contents(m_vm, m_blocks[i]), (std::vector{0, 2, 3, 9})[i]);
    m_vm.Free(nullptr);
}

TEST_F(XCVirtualMemoryTest, MemoryIsHadByEvictingFirst) {
    create(2, cnOwn);
    fill(m_vm, allocate(cnOwn), 1);
    XCVMHandle memory;
    int retry = 0;
    EXPECT_EQ(m_vm.AllocHandle2(cnOwn, memory, retry) && retry == 0 && !memory.IsEmpty(), 1);
    EXPECT_EQ(resident(), "");
    m_vm.FreeHandle(memory, cnOwn);
    EXPECT_EQ(memory.IsEmpty(), 1);
    EXPECT_EQ(errorOf([&] { m_vm.AllocHandle2(cnOwn, memory, retry); }), 8) << "nothing is left to evict";
    EXPECT_EQ(contents(m_vm, m_blocks[0]), 1);
}

TEST_F(XCVirtualMemoryTest, BlocksLargerThanTheBudgetCannotBeHad) {
    create(1, cnOwn);
    EXPECT_EQ(errorOf([&] { m_vm.Allocate(cnOwn + 1); }), 8);
    EXPECT_EQ(m_vm.GetUsedBlockCount(), 0u);
    EXPECT_EQ(m_vm.GetUsedPhysicalMemorySize(), 0u);
}

TEST(XCVirtualMemoryBudget, IsRoundedUpToSectorsAndCapped) {
    XCVirtualMemory vm;
    EXPECT_EQ(vm.GetMinimumUnitSize(), 32768u);
    EXPECT_EQ(vm.GetPhysicalMemorySize(), 0u);
    TempFolder folder;
    XCFilePath path = folder.path();
    const std::uint32_t sector = XCFilePath::GetDiskSectorSize(path);
    ASSERT_GT(sector, 1u);
    vm.Create(10 * sector + 1, &path, 0);
    EXPECT_EQ(vm.GetPhysicalMemorySize(), 11 * sector);
    EXPECT_EQ(vm.GetSwapFileSize(), 11 * sector);
    if (XCFilePath::GetDiskFreeSpaceA(path) > 0x100000000u) {
        vm.Create(0x7FFFFFFF, &path, 0); // sets up anew
        EXPECT_EQ(vm.GetPhysicalMemorySize(), (0x7FFFFFFF / sector - 1) * sector);
        EXPECT_EQ(folder.names().size(), 1u);
    }
    vm.Destroy();
    EXPECT_EQ(vm.GetMinimumUnitSize(), 32768u);
    EXPECT_EQ(vm.GetPhysicalMemorySize(), 0u);
    EXPECT_TRUE(folder.names().empty());
    vm.Destroy();
}

TEST(XCVirtualMemoryBudget, PercentsOfThePhysicalMemory) {
    EXPECT_EQ(xcGetMinVMAllocationPercent(), 20);
    EXPECT_EQ(xcGetMaxVMAllocationPercent(), 80);
    EXPECT_EQ(xcGetDefaultVMAllocationPercent(), 50);
    EXPECT_EQ(xcGetAllocateMemorySize(2, 50), 0u);
    EXPECT_EQ(xcGetAllocateMemorySize(-1, 50), 0u);
    EXPECT_EQ(xcGetAllocateMemorySize(1, 3), xcGetAllocateMemorySize(1, 20));
    EXPECT_EQ(xcGetAllocateMemorySize(1, 100), xcGetAllocateMemorySize(1, 80));
    xcSetMinVMAllocationPercent(0);
    xcSetMaxVMAllocationPercent(1000000);
    const std::uint64_t hundredth = xcGetAllocateMemorySize(1, 1);
    EXPECT_GT(hundredth, 0u);
    EXPECT_EQ(xcGetAllocateMemorySize(1, 0), 0u);
    EXPECT_EQ(xcGetAllocateMemorySize(1, 3), std::min<std::uint64_t>(3 * hundredth, 0x7FFFFFFF));
    EXPECT_EQ(xcGetAllocateMemorySize(1, 1000000), 0x7FFFFFFFu);
    xcSetDefaultVMAllocationPercent(1);
    EXPECT_EQ(xcGetAllocateMemorySize(0, 77), hundredth);
    xcSetMinVMAllocationPercent(20);
    xcSetMaxVMAllocationPercent(80);
    xcSetDefaultVMAllocationPercent(50);
}

TEST(XCVirtualMemoryProcessWide, IsCreatedOnce) {
    TempFolder folder;
    XCFilePath path = folder.path();
    folder.write("oldswp1.tmp", "left over");
    _CREATEVMPARAM param{0, &path, 1, 20};
    ASSERT_NE(xcGetVirtualMemory(), nullptr);
    EXPECT_EQ(xcGetVirtualMemory()->GetPhysicalMemorySize(), 0u);
    xcCreateVirtualMemory(&param);
    const std::uint32_t budget = xcGetVirtualMemory()->GetPhysicalMemorySize();
    EXPECT_LT(std::llabs(std::int64_t(budget) - std::int64_t(xcGetAllocateMemorySize(1, 20))), 8192);
    EXPECT_EQ(folder.names().size(), 1u);
    EXPECT_FALSE(folder.has("oldswp1.tmp"));
    param.percent = 30;
    xcCreateVirtualMemory(&param);
    EXPECT_EQ(xcGetVirtualMemory()->GetPhysicalMemorySize(), budget);
    xcDestroyVirtualMemory();
    EXPECT_TRUE(folder.names().empty());
    xcDestroyVirtualMemory();
    EXPECT_EQ(xcGetVirtualMemory()->GetPhysicalMemorySize(), 0u);
}

// Every block of every size keeps its bytes while blocks come, go, are locked, protected and purged at random.
TEST(XCVirtualMemoryRandom, BlocksComeBackBitForBit) {
    constexpr std::uint32_t sizes[] = {8192, 16384, 65536, 131072, 196608, 262144, 512, 100000};
    struct Held {
        XCSwapBlock* block;
        std::vector<std::uint8_t> bytes; // empty: contents unspecified
        int locks = 0;
    };
    TestStore store(3u << 20);
    XCVirtualMemory& vm = *store.get();
    std::vector<Held> blocks;
    std::mt19937 random(2024);
    int refused = 0, read = 0;
    for (int step = 0; step < 6000; ++step) {
        const unsigned what = random() % 100;
        if (what < 8 || blocks.empty()) {
            try {
                blocks.push_back({vm.Allocate(sizes[random() % std::size(sizes)]), {}});
            } catch (const XCException& error) {
                ASSERT_EQ(error.GetErrorCode(), 8);
                ++refused;
            }
            continue;
        }
        Held& held = blocks[random() % blocks.size()];
        const std::size_t size = held.block->GetSize();
        if (what < 60) {
            int wasRead = 0;
            const bool edit = random() % 2;
            auto* bytes = static_cast<std::uint8_t*>(vm.Lock(held.block, edit, &wasRead));
            read += wasRead;
            if (!held.bytes.empty()) {
                ASSERT_EQ(std::memcmp(bytes, held.bytes.data(), size), 0)
                    << "step " << step << ", " << size << " bytes";
            }
            if (edit) {
                if (held.bytes.empty()) {
                    std::memset(bytes, int(step), size);
                    held.bytes.assign(size, std::uint8_t(step));
                }
                for (int i = 0; i < 20; ++i)
                    bytes[random() % size] = std::uint8_t(random());
                held.bytes.assign(bytes, bytes + size);
            }
            if (held.locks < 2 && random() % 8 == 0)
                ++held.locks;
            else
                vm.Unlock(held.block);
        } else if (what < 75) {
            if (held.locks > 0) {
                --held.locks;
                vm.Unlock(held.block);
            }
        } else if (what < 85) {
            const bool mayLeave = held.locks == 0 && !held.block->IsAbsoluteProtect();
            if (held.block->IsOnMemory()) {
                ASSERT_EQ(vm.Purge(held.block), mayLeave) << step;
            }
        } else if (what < 93) {
            held.block->SetAbsoluteProtect(random() % 4 == 0);
        } else if (blocks.size() > 40 || what < 95) {
            while (held.locks-- > 0)
                vm.Unlock(held.block);
            vm.Free(held.block);
            held = std::move(blocks.back());
            blocks.pop_back();
        }
        ASSERT_EQ(vm.GetUsedBlockCount(), blocks.size());
    }
    EXPECT_GT(read, 500);
    for (Held& held : blocks) {
        while (held.locks-- > 0)
            vm.Unlock(held.block);
        vm.Free(held.block);
    }
    EXPECT_EQ(vm.GetUsedDiskSize(), 0u);
    EXPECT_EQ(vm.GetUsedPhysicalMemorySize(), 0u);
    EXPECT_EQ(vm.GetUsedBlockCount(), 0u);
    RecordProperty("refused", refused);
}

// Images of all depths on a store that holds a tenth of them.
TEST(XCVirtualMemoryRandom, PixelsOfSwappedImagesComeBack) {
    TestStore store(1u << 20);
    std::vector<std::unique_ptr<TestImage>> images;
    std::vector<std::vector<std::uint32_t>> pixels;
    constexpr int width = 1100, height = 600, depths[] = {1, 2, 8, 16, 24, 32};
    for (int depth : depths) {
        images.push_back(std::make_unique<TestImage>(store, depth, width, height));
        pixels.emplace_back(width * height, depth >= 24 ? 0x00FFFFFF : 0);
        images.back()->get()->RectFill(XCRect(0, 0, width, height), 1, 0);
    }
    std::mt19937 random(77);
    for (int step = 0; step < 8000; ++step) {
        const std::size_t i = random() % images.size();
        const std::uint32_t mask = depths[i] == 32 ? 0xFFFFFFFF : (1u << depths[i]) - 1;
        const int x = int(random() % width), y = int(random() % height);
        std::uint32_t& expected = pixels[i][std::size_t(y * width + x)];
        ASSERT_EQ(images[i]->value(x, y), expected) << step << ": " << depths[i] << " bits at " << x << ',' << y;
        if (step % 3) {
            expected = std::uint32_t(random()) & mask;
            images[i]->setValue(x, y, expected);
        }
    }
    for (std::size_t i = 0; i < images.size(); ++i)
        for (int y = 0; y < height; ++y)
            images[i]->visitRow(0, width, y, 0, [&](std::uint8_t* base, int column, int row, int x) {
                ASSERT_EQ(storedPixel(base, images[i]->get()->GetBlockRowBytes(), depths[i], column, row),
                          pixels[i][std::size_t(y * width + x)]);
            });
}

} // namespace
