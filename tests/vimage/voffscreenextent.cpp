#include "ovwcmn/xcvoffscreen.h"
#include "ovwcmn/xcvoffscreenlock.h"

#include "picture.h"
#include "support/testimage.h"

#include <gtest/gtest.h>

#include <climits>
#include <random>

namespace {

using namespace ovw::test;

std::uint32_t paintOf(int depth) { return depth == 16 ? 0x3401 : depth == 32 ? 0x01FFFFFF : 1; }
/// Colour without coverage.
std::uint32_t ghostOf(int depth) { return depth == 16 ? 0x7700 : depth == 32 ? 0x00123456 : 0; }

class XCVOffscreenExtent : public testing::Test {
protected:
    TestStore m_store{64u << 20};

    static XCRect extentOf(const TestImage& image, const XCRect* limit = nullptr) {
        XCRect out(9, 9, 9, 9), copy = limit ? *limit : XCRect();
        const int found = image->GetExtentRect(out, limit ? &copy : nullptr, 0);
        EXPECT_EQ(found, !out.IsRectEmpty());
        return out;
    }
};

TEST_F(XCVOffscreenExtent, IsTightAroundWhatIsPainted) {
    std::mt19937 random(3);
    for (int depth : {1, 2, 8, 16, 32})
        for (int round = 0; round < 8; ++round) {
            TestImage image(m_store, depth, 800, 530);
            XCRect wanted, limited;
            const XCRect limit(100 + round, 50, 770, INT_MAX);
            for (int i = 0; i < 1 + round * 2; ++i) {
                const int x = int(random() % 800), y = int(random() % 530);
                image.setValue(int(random() % 800), int(random() % 530), ghostOf(depth));
                image.setValue(x, y, paintOf(depth));
                const XCPoint point(x, y);
                wanted.UnionRect(&point);
                if (limit.PtInRect(point))
                    limited.UnionRect(&point);
            }
            EXPECT_TRUE(extentOf(image) == wanted) << depth << ", round " << round;
            EXPECT_TRUE(extentOf(image, &limit) == limited) << depth << ", round " << round;
            EXPECT_EQ(image->IsExtentEmpty(limit), limited.IsRectEmpty() || (depth == 2)) << depth;
        }
}

TEST_F(XCVOffscreenExtent, LeavesHiddenAndInvisiblePixelsOut) {
    for (int depth : {1, 2, 8, 16, 32}) {
        TestImage image(m_store, depth, 300, 270);
        EXPECT_TRUE(extentOf(image) == XCRect()) << depth;
        EXPECT_EQ(image->IsExtentEmpty(), 1);
        image.setValue(20, 30, ghostOf(depth));
        {
            XCVOffscreenAutoLock lock(image.get(), 299, 269, 1);
            storePixel(image->GetBaseAddress(), image->GetBlockRowBytes(), depth, 200, 200, 3 & paintOf(depth));
        }
        XCRect blocks;
        EXPECT_EQ(image->GetExtentBlock(blocks), 1);
        EXPECT_TRUE(blocks == XCRect(0, 0, 512, 512)) << depth;
        EXPECT_TRUE(extentOf(image) == XCRect()) << depth;
        EXPECT_EQ(image->IsExtentEmpty(), 1) << depth;
        EXPECT_EQ(image->IsExtentEmpty(XCRect(400, 0, 900, 900)), 1) << depth;
        image->Optimize();
        EXPECT_FALSE(image->IsBlockExist()) << depth;
        EXPECT_EQ(image->GetExtentBlock(blocks), 0);
    }
}

TEST_F(XCVOffscreenExtent, Of24BitsIsThatOfTheBlocksInTheImage) {
    TestImage image(m_store, 24, 300, 270);
    EXPECT_TRUE(extentOf(image) == XCRect());
    image.setValue(290, 5, 0);
    EXPECT_TRUE(extentOf(image) == XCRect(256, 0, 300, 256));
    const XCRect limit(0, 100, 280, 900);
    EXPECT_TRUE(extentOf(image, &limit) == XCRect(256, 100, 280, 256));
    EXPECT_EQ(image->IsExtentEmpty(), 0);
    image->Optimize();
    EXPECT_TRUE(image->GetBlockExist(290, 5)) << "a missing block would read differently";
}

TEST_F(XCVOffscreenExtent, AsksWithoutLeavingATrace) {
    TestImage image(m_store, 32, 600, 600);
    image.setValue(300, 300, 0xFF000000);
    const int index = image->GetBlockIndex(300, 300);
    image->ResetBlockEdited(index);
    XCVOffscreenAutoLock lock(image.get(), 5, 5, 0);
    image->SetEditMode(1);
    EXPECT_TRUE(extentOf(image) == XCRect(300, 300, 301, 301));
    EXPECT_EQ(image->IsExtentEmpty(), 0);
    EXPECT_FALSE(image->CheckBlockEdited(index));
    EXPECT_EQ(image->GetCursorPosX(), 5);
}

TEST_F(XCVOffscreenExtent, OptimizingFreesWhatShowsNothing) {
    for (int depth : {1, 2, 8, 16, 32}) {
        TestImage image(m_store, depth, 600, 300);
        image.setValue(599, 299, paintOf(depth));
        image.setValue(10, 10, ghostOf(depth));
        image.setValue(300, 10, ghostOf(depth));
        image->OptimizeBlock(XCRect(0, 0, 255, 256));
        EXPECT_TRUE(image->GetBlockExist(0, 0)) << depth << ": the rectangle does not cover the block";
        image->OptimizeBlock(XCRect(0, 0, 256, 256));
        EXPECT_FALSE(image->GetBlockExist(0, 0)) << depth;
        image->OptimizeBlock(XCRect(512, 256, 600, 300));
        image->OptimizeBlock(XCRect(INT_MIN, 0, 5, 5));
        {
            XCVOffscreenAutoLock lock(image.get(), 300, 10, 1);
            image->Optimize();
            image->OptimizeBlock(XCRect(256, 0, 512, 256));
            EXPECT_TRUE(image->GetBlockExist(300, 10)) << depth << ": in use";
        }
        image->Optimize();
        EXPECT_FALSE(image->GetBlockExist(300, 10)) << depth;
        EXPECT_EQ(image.value(599, 299), paintOf(depth));
    }
}

TEST_F(XCVOffscreenExtent, ReplacesColoursWhereTheyAre) {
    constexpr std::uint32_t ink = 0x80102030, other = 0x7F102030, red = 0xFF0000FF;
    TestImage image(m_store, 32, 600, 20);
    image.setValue(0, 0, ink);
    image.setValue(1, 0, other);
    image.setValue(2, 0, 0x00998877);
    image.setValue(300, 0, other);
    for (int i = 0; i < 3; ++i)
        image->ResetBlockEdited(i);
    image->ReplaceColor(red, ink);
    EXPECT_EQ(image.value(0, 0), red);
    EXPECT_EQ(image.value(1, 0), other);
    EXPECT_TRUE(image->CheckBlockEdited(0));
    EXPECT_FALSE(image->CheckBlockEdited(1)) << "nothing changed there";
    image->ReplaceColor(red, 0);
    EXPECT_EQ(image.value(2, 0), red) << "any transparent pixel";
    EXPECT_EQ(image.value(255, 19), red);
    EXPECT_FALSE(image->GetBlockExist(599, 0)) << "missing blocks stay";
    image->ClearAlpha(0xFF102030);
    EXPECT_EQ(image.value(1, 0), 0x00102030u);
    EXPECT_EQ(image.value(300, 0), 0x00102030u);
    EXPECT_EQ(image.value(0, 0), red);

    TestImage rgb(m_store, 24, 20, 20);
    rgb.setValue(3, 3, 0x102030);
    rgb->ClearAlpha(0x102030);
    rgb->ReplaceColor(0xAA010203, 0x55102030);
    EXPECT_EQ(rgb.value(3, 3), 0x010203u);
    EXPECT_EQ(rgb.value(4, 3), 0xFFFFFFu);
}

TEST_F(XCVOffscreenExtent, ReversesTheDensitiesOfExistingBlocks) {
    XCVOffscreen8Bit image;
    image.Create(m_store.get(), 600, 20, 1);
    {
        XCVOffscreenAutoLock lock(&image, 300, 7, 1);
        image.Set8BitColor(200);
    }
    image.ReversePixel();
    EXPECT_FALSE(image.GetBlockExist(0, 0));
    XCVOffscreenAutoLock lock(&image, 300, 7, 0);
    EXPECT_EQ(image.Get8BitColor(), 55);
    image.MoveCursor(301, 7);
    EXPECT_EQ(image.Get8BitColor(), 255);
}

} // namespace
