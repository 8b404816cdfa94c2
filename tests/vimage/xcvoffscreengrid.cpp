#include "ovwcmn/xcvoffscreengrid.h"

#include "ovwcmn/xcblockgetter.h"
#include "ovwcmn/xcvoffscreen.h"
#include "support/scopes.h"
#include "support/testimage.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace ovw::test;

std::string text(const tagRECT& r) {
    return std::to_string(r.left) + ' ' + std::to_string(r.top) + ' ' + std::to_string(r.right) + ' ' +
           std::to_string(r.bottom);
}

std::vector<std::string> blocksOf(XCBlockGetter getter) {
    std::vector<std::string> blocks;
    XCRect block(9, 9, 9, 9);
    while (getter.GetNextBlock(block))
        blocks.push_back(text(block));
    EXPECT_EQ(text(block), "0 0 0 0");
    return blocks;
}

/// Makes the blocks of the given pixels exist.
void touch(XCVOffscreen* image, std::initializer_list<XCPoint> pixels) {
    XCVOffscreenAutoLock lock(image, 1);
    for (XCPoint p : pixels)
        image->MoveCursor(p.x, p.y);
}

/// The existing blocks, one character a block, row by row.
std::string existing(const XCVOffscreen* image) {
    std::string cells;
    for (int i = 0; i < image->GetBlockCount(nullptr, nullptr); ++i)
        cells += image->GetBlockExist(i) ? '#' : '.';
    return cells;
}

class XCVOffscreenGridTest : public testing::Test {
protected:
    TestStore m_store{64u << 20};
};

TEST_F(XCVOffscreenGridTest, BlocksOfEveryDepth) {
    constexpr int rowBytes[][2] = {{1, 32}, {2, 64}, {8, 256}, {16, 512}, {24, 768}, {32, 1024}};
    for (auto [depth, bytes] : rowBytes) {
        TestImage image(m_store, depth, 1000, 300);
        EXPECT_EQ(image->GetBlockRowBytes(), bytes);
        touch(image.get(), {{0, 0}});
        EXPECT_EQ(image->GetUsedMemory(0, 0), std::uint64_t(bytes) * 256);
    }
}

TEST_F(XCVOffscreenGridTest, IndexesGoRowByRow) {
    TestImage image(m_store, 1, 1000, 300);
    int across = 0, down = 0;
    EXPECT_EQ(image->GetBlockCount(&across, &down), 8);
    EXPECT_EQ(across, 4);
    EXPECT_EQ(down, 2);
    EXPECT_EQ(image->GetBlockIndex(999, 299), 7);
    EXPECT_EQ(image->GetBlockIndex(255, 256), 4);
    EXPECT_EQ(image->GetBlockIndexFast(512, 0), 2);
    for (XCPoint p : {XCPoint(1000, 0), XCPoint(0, 300), XCPoint(-1, 0), XCPoint(0, -1), XCPoint(-2147483647 - 1, 5)})
        EXPECT_EQ(image->GetBlockIndex(p.x, p.y), -1);
    EXPECT_EQ(text(image->GetBlockRect(7)), "768 256 1024 512");
    EXPECT_EQ(text(image->GetBlockRect(8)), "0 0 0 0");
    EXPECT_EQ(text(image->GetBlockRect(-1)), "0 0 0 0");
}

TEST_F(XCVOffscreenGridTest, RangesOfBlocksThatARectangleMeets) {
    TestImage image(m_store, 1, 1000, 300);
    struct Case {
        XCRect rect;
        int count;
        const char* range;
    };
    for (const Case& c : {Case{{0, 0, 1, 1}, 1, "0 0 0 0"}, Case{{255, 255, 257, 257}, 4, "0 0 1 1"},
                          Case{{256, 0, 512, 256}, 1, "1 0 1 0"}, Case{{-900, -5, 5000, 9000}, 8, "0 0 3 1"},
                          Case{{-2147483647 - 1, -2147483647 - 1, 2147483647, 2147483647}, 8, "0 0 3 1"},
                          Case{{-2147483647 - 1, 0, -2147483647, 9}, 0, "7 7 7 7"},
                          Case{{999, 299, 1000, 300}, 1, "3 1 3 1"}, Case{{1000, 0, 1200, 10}, 0, "7 7 7 7"},
                          Case{{50, 50, 50, 90}, 0, "7 7 7 7"}, Case{{90, 50, 20, 90}, 0, "7 7 7 7"}}) {
        int c0 = 7, c1 = 7, r0 = 7, r1 = 7;
        EXPECT_EQ(image->GetBlockAreaIndex(c.rect, c0, c1, r0, r1), c.count);
        EXPECT_EQ(text(tagRECT{c0, r0, c1, r1}), c.range);
    }
}

TEST_F(XCVOffscreenGridTest, BlockAreaByIndexAndAsAList) {
    TestImage image(m_store, 1, 1000, 300);
    tagRECT out{9, 9, 9, 9};
    const XCRect rect(200, 10, 1100, 700);
    EXPECT_EQ(image->GetBlockArea(rect, 7, &out, 1), 1);
    EXPECT_EQ(text(out), "768 256 1024 512"); // the index form does not know the image
    EXPECT_EQ(image->GetBlockArea(rect, 0, &out, 1), 1);
    EXPECT_EQ(text(out), "200 10 256 256");
    EXPECT_EQ(image->GetBlockArea(rect, 0, &out, 0), 1);
    EXPECT_EQ(text(out), "0 0 256 256");
    EXPECT_EQ(image->GetBlockArea(XCRect(256, 0, 300, 1), 0, &out, 1), 0);
    EXPECT_EQ(image->GetBlockArea(rect, 8, &out, 1), 0);
    EXPECT_EQ(image->GetBlockArea(rect, -1, &out, 1), 0);
    EXPECT_EQ(text(out), "0 0 256 256");
    EXPECT_EQ(image->GetBlockArea(rect, 0, nullptr, 1), 1);

    XCTArray<tagRECT, 0> list;
    list.PushBack(out);
    EXPECT_EQ(image->GetBlockArea(XCRect(700, 200, 1100, 700), list, 1), 4);
    ASSERT_EQ(list.GetSize(), 4);
    EXPECT_EQ(text(list[0]), "700 200 768 256");
    EXPECT_EQ(text(list[3]), "768 256 1000 300");
    EXPECT_EQ(image->GetBlockArea(XCRect(700, 200, 1100, 700), list, 0), 4);
    EXPECT_EQ(text(list[3]), "768 256 1024 512");
    EXPECT_EQ(image->GetBlockArea(XCRect(2000, 0, 2001, 1), list, 0), 0);
    EXPECT_EQ(list.GetSize(), 0);
}

TEST_F(XCVOffscreenGridTest, BlockGetterWalksRowByRow) {
    TestImage image(m_store, 8, 600, 300);
    const XCRect rect(250, 255, 513, 1000);
    EXPECT_EQ(blocksOf(XCBlockGetter(image.get(), rect, 1)),
              (std::vector<std::string>{"250 255 256 256", "256 255 512 256", "512 255 513 256", "250 256 256 300",
                                        "256 256 512 300", "512 256 513 300"}));
    EXPECT_EQ(blocksOf(XCBlockGetter(image.get(), XCRect(300, 270, 301, 271), 0)),
              (std::vector<std::string>{"256 256 512 300"}));
    EXPECT_EQ(blocksOf(XCBlockGetter(XCRect(0, 0, 10, 10), XCRect(-5, -5, 5, 5), 1)),
              (std::vector<std::string>{"0 0 5 5"}));
    for (XCRect empty : {XCRect(600, 0, 700, 10), XCRect(5, 5, 5, 9), XCRect(9, 9, 5, 5), XCRect()}) {
        XCBlockGetter getter(image.get(), empty, 0);
        EXPECT_FALSE(getter.IsExist());
        EXPECT_TRUE(blocksOf(getter).empty());
    }
    EXPECT_TRUE(XCBlockGetter(image.get(), rect, 0).IsExist());
}

TEST_F(XCVOffscreenGridTest, QueriesOfMissingEmptyAndHeldBlocks) {
    TestImage image(m_store, 8, 600, 300);
    image->EnableClear(1);
    touch(image.get(), {{300, 10}});
    EXPECT_EQ(existing(image.get()), ".#....");
    EXPECT_EQ(image->GetBlockExist(511, 255), 1);
    EXPECT_EQ(image->GetBlockExist(600, 0), 0);
    EXPECT_EQ(image->GetBlockExist(99), 0);
    EXPECT_EQ(image->IsCreatedBlockByIndex(1, 0), 1);
    EXPECT_EQ(image->IsCreatedBlockByIndex(4, -1), 0);
    EXPECT_EQ(image->IsBlockExist(), 1);
    EXPECT_EQ(image->CheckAreaType(1), AREA_DATA);
    EXPECT_EQ(image->CheckAreaType(0, 0), AREA_NONE);
    EXPECT_EQ(image->CheckAreaType(-1, 0), AREA_NONE);
    EXPECT_EQ(image->IsBlockOnMemory(1), 1);
    EXPECT_EQ(image->IsBlockOnMemory(0), 1);
    EXPECT_EQ(image->IsBlockOnMemory(-4, 0), 1);
    EXPECT_EQ(image->IsBlockAbsoluteProtect(0), 1);
    EXPECT_EQ(image->IsBlockAbsoluteProtect(1), 0);
    EXPECT_EQ(image->IsBlockAbsoluteProtect(77), 1);
    EXPECT_EQ(image->CheckBlockLock(1), 0);
    {
        XCVOffscreenAutoLock lock(image.get(), 300, 0, 0);
        EXPECT_EQ(image->CheckBlockLock(1), 1);
        EXPECT_EQ(image->CheckBlockLock(0), 0);
    }
    EXPECT_EQ(image->GetUsedMemory(0, 0), 65536u);
    image->UnloadAllBlock(); // written out: it was locked for editing
    EXPECT_EQ(image->IsBlockOnMemory(1), 0);
    EXPECT_EQ(image->CheckAreaType(1), AREA_DATA);
    EXPECT_EQ(image->GetUsedMemory(1, 0), 0u);
    EXPECT_EQ(image->GetUsedMemory(0, 0), 65536u);
}

TEST_F(XCVOffscreenGridTest, ABlockNeverWrittenHasNoDataAfterEviction) {
    TestImage image(m_store, 8, 10, 10);
    touch(image.get(), {{0, 0}});
    image->UnloadAllBlock();
    EXPECT_EQ(m_store.get()->GetUsedDiskSize(), 65536u);
    EXPECT_EQ(image->DestroyBlock(0, 0), 1);
    EXPECT_EQ(m_store.get()->GetUsedDiskSize(), 0u);
    EXPECT_EQ(image->DestroyBlock(0, 0), 0);
    EXPECT_EQ(image->DestroyBlock(9, 1), 0);
    EXPECT_EQ(image->DestroyBlockByIndex(1, 0, 0), 0);
    EXPECT_EQ(image->DestroyBlockByXY(-1, 0, 0), 0);
}

TEST_F(XCVOffscreenGridTest, EditCountersCountEditingLocksAndDestructions) {
    TestImage image(m_store, 8, 600, 300);
    touch(image.get(), {{0, 0}, {300, 0}});
    EXPECT_EQ(image->CheckBlockEdited(0), 1);
    EXPECT_EQ(image->CheckBlockEdited(2), 0);
    EXPECT_EQ(image->CheckBlockEdited(-1), 0);
    image->ResetBlockEdited(0);
    image->ResetBlockEdited(600);
    EXPECT_EQ(image->CheckBlockEdited(0), 0);
    { XCVOffscreenAutoLock lock(image.get(), 0, 0, 0); }
    EXPECT_EQ(image->CheckBlockEdited(0), 0);
    EXPECT_EQ(image->DestroyBlockByXY(0, 0, 0), 1);
    EXPECT_EQ(image->CheckBlockEdited(0), 0);
    touch(image.get(), {{0, 0}});
    image->ResetBlockEdited(0);
    EXPECT_EQ(image->DestroyBlockByIndex(0, 0, 1), 1);
    EXPECT_EQ(image->CheckBlockEdited(0), 1);
    image->ResetBlockEdited(1);
    EXPECT_EQ(image->DestroyAllBlock(1), 1);
    EXPECT_EQ(image->CheckBlockEdited(1), 1);
    EXPECT_EQ(image->DestroyAllBlock(), 0);
}

TEST_F(XCVOffscreenGridTest, CreateRefusesWhatCannotBeCounted) {
    TestImage image(m_store, 32, 300, 300);
    touch(image.get(), {{0, 0}});
    auto create = [&](int width, int height) {
        return errorOf([&] { image->Create(m_store.get(), width, height, 1); });
    };
    EXPECT_EQ(create(-1, 5), 0x20010008);
    EXPECT_EQ(create(5, -1), 0x20010008);
    EXPECT_EQ(create(2147483647, 2147483647), 0x20010008);
    EXPECT_EQ(create(0, 0), 0);
    EXPECT_EQ(image->GetBlockCount(nullptr, nullptr), 0);
    EXPECT_EQ(m_store.get()->GetUsedBlockCount(), 0u); // the blocks of the image before are gone
    EXPECT_EQ(create(257, 1), 0);
    EXPECT_EQ(existing(image.get()), "..");
}

TEST_F(XCVOffscreenGridTest, DestroyKeepsTheCallersSettingsOnly) {
    TestImage image(m_store, 8, 300, 300);
    touch(image.get(), {{0, 0}});
    image->SetClearColor(std::uint8_t(9));
    image->SetTransparency(3);
    image->SetOffset(XCPoint(4, 5));
    image->EnableClear(0);
    image->SetLoadImage(1);
    image->SetMonoTransThreshold(7);
    image->SetIndexColor(1, 0xFF0000FF);
    image->SetSpecialtyOffscr(1);
    image->Destroy();
    std::uint8_t clear = 1;
    image->GetClearColor(&clear);
    EXPECT_EQ(clear, 0);
    EXPECT_EQ(image->GetTransparency(), 256);
    EXPECT_EQ(image->GetOffset().x, 0);
    EXPECT_EQ(image->IsEnableClear(), 1);
    EXPECT_EQ(image->GetResolution(), 0.0);
    EXPECT_EQ(image->GetWidth(), 0);
    EXPECT_EQ(image->GetMonoTransThreshold(), 7);
    EXPECT_EQ(image->GetIndexColor(1), 0xFF0000FFu);
    EXPECT_EQ(image->GetSpecialtyOffscr(), 1);
    EXPECT_EQ(m_store.get()->GetUsedBlockCount(), 0u);
    image->Destroy();
    image->Create(m_store.get(), 5, 5, 2);
    EXPECT_EQ(image->GetBlockCount(nullptr, nullptr), 1);
}

TEST_F(XCVOffscreenGridTest, CoordinatesConvertByResolution) {
    TestImage image(m_store, 8, 5, 5), other(m_store, 8, 5, 5);
    image->SetResolution(300);
    other->SetResolution(200);
    EXPECT_EQ(image->ConvertPointX(other.get(), 100), 66);
    EXPECT_EQ(image->ConvertPointY(other.get(), -100), -66);
    EXPECT_EQ(other->ConvertPointX(image.get(), 3), 4);
    EXPECT_EQ(other->ConvertPointX(image.get(), 2147483647), 2147483647);
    other->SetResolution(0);
    EXPECT_EQ(image->ConvertPointX(other.get(), 100), 100);
    EXPECT_EQ(other->ConvertPointY(image.get(), 100), 100);
}

} // namespace
