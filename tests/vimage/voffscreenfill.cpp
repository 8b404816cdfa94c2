#include "ovwcmn/xcfastpixelmixer.h"
#include "ovwcmn/xcvoffscreen.h"

#include "picture.h"
#include "pixelreference.h"
#include "support/testimage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace ovw::test;

constexpr std::uint32_t cnColours[] = {0xFF000000, 0xFFFFFFFF, 0x80402010, 0x7F90A0B0,
                                       0xFF0000FF, 0x00FFFFFF, 0xFF7F7F7F, 0x01FF8000};

/// What a plain rectangle fill stores.
std::uint32_t filled(int depth, std::uint32_t c, int trans = 127) {
    switch (depth) {
    case 1: return alphaOf(c) > trans && (c & 0x80808080);
    case 2: return XCVOffscreen::VXCOLORREFtoBYTE2(c);
    case 8: return std::uint32_t(255 - redOf(c));
    case 16: return stored16(alphaOf(c), lumOf(c));
    case 24: return c & 0x00FFFFFF;
    default: return c;
    }
}

class XCVOffscreenFill : public testing::Test {
protected:
    TestStore m_store{64u << 20};
};

TEST_F(XCVOffscreenFill, PlainFillsStoreTheirValueInTheRectangleOnly) {
    for (int depth : cnDepths)
        for (XCRect rect :
             {XCRect(3, 2, 10, 5), XCRect(0, 0, 256, 256), XCRect(-9, 250, 700, 258), XCRect(255, 0, 257, 300),
              XCRect(8, 0, 16, 300), XCRect(511, 299, 512, 300), XCRect(7, 7, 7, 90), XCRect(600, 0, 900, 9)}) {
            TestImage image(m_store, depth, 512, 300);
            scribble(image, XCRect(0, 0, 300, 20));
            Picture expected(image);
            for (std::uint32_t colour : cnColours) {
                image->RectFill(rect, 0, colour);
                expected.fill(rect, filled(depth, colour));
            }
            ASSERT_EQ(expected.difference(image), "") << depth;
            image->RectFill(rect, 1, 0xFF123456);
            expected.fill(rect, clearOf(depth));
            ASSERT_EQ(expected.difference(image), "") << depth;
            ASSERT_EQ(image->GetLockCount(), 0);
        }
}

TEST_F(XCVOffscreenFill, OneBitFillsFollowTheThreshold) {
    TestImage image(m_store, 1, 10, 1);
    XCVOffscreenParamLock thresholds(image.get(), 20, 128);
    image->RectFill(XCRect(0, 0, 5, 1), 0, 0x15FF0000);
    image->RectFill(XCRect(5, 0, 10, 1), 0, 0x14FF0000);
    EXPECT_EQ(image.value(4, 0), 1u);
    EXPECT_EQ(image.value(5, 0), 0u);
}

TEST_F(XCVOffscreenFill, TheCallersLockAndCursorComeBack) {
    TestImage image(m_store, 32, 600, 300);
    XCVOffscreenAutoLock lock(image.get(), 5, 6, 0);
    image->RectFill(XCRect(0, 0, 600, 300), 0, 0xFF00FF00);
    image->RectFill(XCRect(0, 0, 600, 300), 0, 0x80FF0000, 1);
    image->ClrRect(tagRECT{250, 0, 600, 300});
    EXPECT_EQ(image->GetCursorPosX(), 5);
    EXPECT_EQ(image->GetCursorPosY(), 6);
    EXPECT_EQ(image->GetEditMode(), 0);
    EXPECT_EQ(image->GetLockCount(), 1);
    EXPECT_NE(image->GetCurrentAddress(), nullptr);
}

/// What a behind fill makes of a stored number.
std::uint32_t filledBehind(int depth, std::uint32_t p, std::uint32_t colour) {
    const int a = alphaOf(colour);
    switch (depth) {
    case 16: {
        const int coverage = int(p & 255), grey = coverage ? int(p >> 8) : 255;
        return stored16(255 - (255 - a) * (255 - coverage) / 255,
                        behindChannel(grey, lumOf(colour), a * (255 - coverage) / 255));
    }
    case 24: {
        const int k = a * lumOf(p) / 255;
        std::uint32_t rgb = 0;
        for (int shift : {0, 8, 16})
            rgb |= std::uint32_t(behindChannel(int(p >> shift & 255), int(colour >> shift & 255), k)) << shift;
        return rgb;
    }
    case 32: return behind(p, colour, true);
    default: {
        const std::uint32_t ink[4] = {0, 0xFF000000, 0xFFFFFFFF, 0xFF000000};
        return expectedStored(depth, 32, behind(expectedReadings(depth, p, {}, ink).bit32, colour, false), {});
    }
    }
}

TEST_F(XCVOffscreenFill, BehindFillsGoUnderWhatIsThere) {
    for (int depth : cnDepths)
        for (std::uint32_t colour : cnColours) {
            if (alphaOf(colour) == 0)
                continue; // may leave everything as it is
            TestImage image(m_store, depth, 270, 20);
            scribble(image, XCRect(0, 0, 256, 18), depth == 2 ? 3 : 1);
            Picture expected(image);
            const XCRect rect(2, 1, 290, 15);
            image->RectFill(rect, 1, colour, 1);
            expected.fill(rect, [&](std::uint32_t p) { return filledBehind(depth, p, colour); });
            ASSERT_EQ(expected.difference(image), "") << depth << ' ' << std::hex << colour;
        }
}

TEST_F(XCVOffscreenFill, BehindFillsInKnownValues) {
    TestImage rgba(m_store, 32, 4, 1), rgb(m_store, 24, 2, 1);
    rgba.setValue(0, 0, 0xFF000000);
    rgba.setValue(2, 0, 0x80000000);
    rgba->RectFill(XCRect(0, 0, 3, 1), 0, 0xFF0000FF, 1);
    EXPECT_EQ(rgba.value(0, 0), 0xFF000000u);
    EXPECT_EQ(rgba.value(1, 0), 0xFF0000FFu);
    EXPECT_EQ(rgba.value(2, 0), 0xFF00007Fu); // 127 over white, less (255 - 0) * 127 / 255 in green and blue
    EXPECT_EQ(rgba.value(3, 0), 0x00FFFFFFu);
    rgb.setValue(0, 0, 0);
    rgb.setValue(1, 0, 0xFFFFFF);
    rgb->RectFill(XCRect(0, 0, 2, 1), 0, 0xFF0000FF, 1);
    EXPECT_EQ(rgb.value(0, 0), 0u);
    EXPECT_EQ(rgb.value(1, 0), 0x0000FFu);
    rgba->RectFill(XCRect(0, 0, 1, 1), 0, 0xFF00FF00, 0); // not behind: a plain fill
    EXPECT_EQ(rgba.value(0, 0), 0xFF00FF00u);
}

TEST_F(XCVOffscreenFill, ClrRectReleasesCoveredBlocksAndErasesParts) {
    for (int depth : cnDepths) {
        TestImage image(m_store, depth, 600, 600);
        for (int y : {0, 256, 512})
            for (int x : {0, 256})
                image->RectFill(XCRect(x, y, x + 256, y + 256), 0, 0xFF102030);
        Picture expected(image);
        image->ClrRect(tagRECT{0, 0, 512, 300});
        expected.fill(XCRect(0, 0, 512, 300), clearOf(depth));
        EXPECT_EQ(expected.difference(image), "") << depth;
        for (int block = 0; block < 9; ++block)
            EXPECT_EQ(image->GetBlockExist(block), block % 3 < 2 && block / 3 > 0) << depth << ": " << block;
        image->ClrRect(tagRECT{-700, -700, 5000, 5000});
        EXPECT_EQ(image->GetBlockExist(3), 0);
        expected.fill(XCRect(0, 0, 600, 600), clearOf(depth));
        EXPECT_EQ(expected.difference(image), "") << depth;
        image->ClrRect(tagRECT{50, 50, 50, 90});
        image->ClrRect(tagRECT{90, 50, 10, 90});
    }
}

TEST_F(XCVOffscreenFill, MixerFillsPaintSpans) {
    TestImage image(m_store, 32, 600, 300);
    Picture expected(image);
    XCVOffscreenAutoLock lock(image.get(), 1);
    XCFastPixelMixer mixer;
    mixer.SetDstOffscreen(image.get());
    mixer.SetDrawCompositioin(XCFastPixelMixer::Normal);
    mixer.SetColor(0xFF336699);
    auto fill = [&](XCRect rect, const tagRECT* clip, XCRect painted) {
        image->RectFill(rect, &mixer, clip);
        expected.fill(painted, 0xFF336699);
        EXPECT_EQ(expected.difference(image), "");
    };
    const tagRECT clip{5, 5, 300, 20};
    fill(XCRect(10, 10, 10, 10), &clip, XCRect(10, 10, 11, 11));
    fill(XCRect(4, 10, 4, 10), &clip, XCRect());
    fill(XCRect(300, 10, 300, 10), &clip, XCRect());
    fill(XCRect(500, 500, 600, 600), &clip, XCRect());
    fill(XCRect(10, 30, 10, 40), nullptr, XCRect());
    fill(XCRect(250, 0, 280, 9), &clip, XCRect(250, 5, 280, 9));
    fill(XCRect(-5, 290, 900, 900), nullptr, XCRect(0, 290, 600, 300));
    const tagRECT beyond{-100, -100, 10000, 10000};
    fill(XCRect(590, 0, 700, 2), &beyond, XCRect(590, 0, 600, 2));
    fill(XCRect(600, 0, 600, 0), &beyond, XCRect());
    EXPECT_EQ(image->GetBlockCount(nullptr, nullptr), 6);
}

// ---- Rows

TEST_F(XCVOffscreenFill, FillLineRowIsInclusiveAndClipped) {
    for (int depth : cnDepths) {
        TestImage image(m_store, depth, 300, 4);
        scribble(image, XCRect(0, 0, 300, 4));
        Picture expected(image);
        XCVOffscreenAutoLock lock(image.get(), 1);
        std::mt19937 random(3);
        for (int i = 0; i < 60; ++i) {
            const std::uint32_t colour = cnColours[i % 8];
            const int x1 = int(random() % 330) - 15, x2 = i % 2 ? x1 + int(random() % 20) - 2 : int(random() % 330);
            const tagRECT clip{int(random() % 100), 1, 200 + int(random() % 200), 3};
            const tagRECT used = i % 3 ? tagRECT{0, 0, 300, 4} : clip;
            const int y = int(random() % 6) - 1;
            image->FillLineRow(x1, x2, y, colour, i % 3 ? nullptr : &clip);
            if (y >= used.top && y < used.bottom)
                expected.fill(XCRect(std::max(x1, used.left), y, std::min(x2 + 1, used.right), y + 1),
                              rowFilled(depth, colour));
            ASSERT_EQ(expected.difference(image), "") << depth << ": " << x1 << '-' << x2 << " of row " << y;
        }
        image->FillLineRow(-2147483647, 2147483647, 2, 0xFF000000, nullptr);
        expected.fill(XCRect(0, 2, 300, 3), rowFilled(depth, 0xFF000000));
        EXPECT_EQ(expected.difference(image), "");
    }
}

TEST_F(XCVOffscreenFill, SimpleLinesAndSegments) {
    for (int depth : cnDepths)
        for (int vertical : {1, 0, 7}) {
            TestImage image(m_store, depth, 520, 540);
            Picture expected(image);
            XCVOffscreenAutoLock lock(image.get(), 1);
            auto line = [&](int position, int start, int length, std::uint32_t colour) {
                expected.fill(vertical == 1 ? XCRect(position, start, position + 1, start + length)
                                            : XCRect(start, position, start + length, position + 1),
                              expectedStored(depth, 32, colour, {}));
            };
            image->DrawSimpleLine(vertical, 257, 0xFF000000);
            line(257, 0, 540, 0xFF000000);
            for (auto [position, start, length] :
                 {std::tuple{3, 255, 3}, {4, 0, 513}, {5, 256, 256}, {6, 100, 0}, {7, 100, -5}, {8, 511, 1}}) {
                image->DrawSimpleSegment(vertical, position, start, length, 0xC0104080);
                line(position, start, length, 0xC0104080);
            }
            ASSERT_EQ(expected.difference(image), "") << depth << ' ' << vertical;
        }
}

TEST_F(XCVOffscreenFill, FillBlockFillsTheCurrentBlock) {
    for (int depth : cnDepths) {
        TestImage image(m_store, depth, 600, 300);
        Picture expected(image);
        XCVOffscreenAutoLock lock(image.get(), 300, 5, 1);
        image->FillBlock(1, 0xFF204060);
        EXPECT_EQ(image->GetBlockExist(0) + image->GetBlockExist(2), 0);
        expected.fill(XCRect(256, 0, 512, 256), filled(depth, 0xFF204060));
        EXPECT_EQ(expected.difference(image), "") << depth;
        image->MoveCursor(300, 5);
        image->FillBlock(0, 0xFF204060);
        expected.fill(XCRect(256, 0, 512, 256), clearOf(depth));
        EXPECT_EQ(expected.difference(image), "") << depth;
    }
}

// Rectangles as large as an int allows: no overflow, and no walk over blocks that are not there.
TEST_F(XCVOffscreenFill, ExtremeRectanglesAreClipped) {
    constexpr int far = 2147483647;
    const XCRect all(-far - 1, -far - 1, far, far);
    for (int depth : cnDepths) {
        TestImage image(m_store, depth, 300, 300);
        Picture expected(image);
        image->RectFill(all, 0, 0xFF102030);
        expected.fill(XCRect(0, 0, 300, 300), filled(depth, 0xFF102030));
        ASSERT_EQ(expected.difference(image), "") << depth;
        image->RectFill(XCRect(far - 1, far - 1, far, far), 0, 0xFF102030, 1);
        image->ClrRect(XCRect(far - 9, 0, far, far));
        ASSERT_EQ(expected.difference(image), "") << depth;
        image->RectFill(all, 0, 0xFF102030, 1);
        image->CheckClearBlock(all);
        image->ClrRect(all);
        EXPECT_EQ(image->GetBlockExist(0), 0);
        expected.fill(XCRect(0, 0, 300, 300), clearOf(depth));
        EXPECT_EQ(expected.difference(image), "") << depth;
    }
}

TEST_F(XCVOffscreenFill, CopiesOfImagesKeepSizeAndPixels) {
    for (int depth : cnDepths) {
        TestImage image(m_store, depth, 600, 300);
        image->SetResolution(144);
        image->SetClearColor(0x40);
        scribble(image, XCRect(200, 10, 300, 60));
        const std::unique_ptr<XCVOffscreen> empty(image->CreateSameSizeOffscr()),
            scaled(image->CreateSameSizeOffscr(72));
        EXPECT_EQ(empty->GetWidth() + scaled->GetHeight(), 900);
        EXPECT_EQ(empty->IsBlockExist(), 0);
        EXPECT_EQ(empty->GetResolution(), 144);
        EXPECT_EQ(scaled->GetResolution(), 72);
        const std::unique_ptr<XCVOffscreen> copy(image->CreateAndCopyAll());
        ASSERT_EQ(copy->GetDepth(), depth);
        EXPECT_EQ(copy->GetBlockExist(2), 0);
        std::uint32_t colour = 0, copied = 1;
        image->GetClearColor(&colour);
        copy->GetClearColor(&copied);
        EXPECT_EQ(copied, colour);
        XCVOffscreenAutoLock lock(image.get(), 0), copyLock(copy.get(), 0);
        for (int y = 10; y < 60; ++y)
            for (int x = 190; x < 310; ++x) {
                image->MoveCursor(x, y);
                copy->MoveCursor(x, y);
                ASSERT_EQ(copy->Get32BitColor(), image->Get32BitColor()) << depth << ": " << x << ',' << y;
            }
    }
}

} // namespace
