#include "offscreen/classictest.h"
#include "ovwcmn/xcoffscreen.h"
#include "support/scopes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

using namespace ovw::test;

struct Area {
    int x, y, w, h, sx, sy;
};

/// A copy pixel by pixel, through an unchanged copy of the source.
void copySlowly(XCOffscreen& image, XCOffscreen& source, const Area& a,
                const std::function<bool(int x, int y, int sx, int sy)>& isCopied) {
    XCOffscreen from(source);
    from.Lock();
    const bool keepsAlpha = image.GetBitCount() == 32 && source.GetBitCount() == 32;
    for (int j = 0; j < a.h; ++j)
        for (int i = 0; i < a.w; ++i) {
            const int x = a.x + i, y = a.y + j, sx = a.sx + i, sy = a.sy + j;
            if (!image.PointInOffscreen(x, y) || !from.PointInOffscreen(sx, sy) || !isCopied(x, y, sx, sy))
                continue;
            if (keepsAlpha)
                image.Set32BitPixel(from.Get32BitPixel(sx, sy), x, y);
            else
                image.Set24BitPixel(from.Get24BitPixel(sx, sy), x, y);
        }
}

const Area cnAreas[] = {{0, 0, 61, 20, 0, 0}, {5, 3, 30, 9, 8, 2},      {-7, -2, 90, 90, 3, 1}, {8, 1, 16, 5, 16, 2},
                        {3, 4, 1, 1, 60, 19}, {40, 10, 40, 40, -3, -9}, {0, 0, 0, 5, 0, 0},     {1, 1, 5, -2, 0, 0},
                        {70, 0, 5, 5, 0, 0},  {1, 0, 57, 20, 0, 0},     {0, 3, 61, 17, 0, 0}};

TEST(OffscreenCopy, BetweenAllDepths) {
    for (const int depth : cnClassicDepths)
        for (const int sourceDepth : cnClassicDepths)
            for (const Area& a : cnAreas) {
                ClassicImage image(61, 20, depth), expected(61, 20, depth), source(61, 20, sourceDepth);
                source.scribble(7);
                image.scribble(8), expected.scribble(8);
                copySlowly(*expected, *source, a, [](int, int, int, int) { return true; });
                const bool changes = expected.pixels() != image.pixels();
                const int copied = image->Copy(a.x, a.y, a.w, a.h, source.get(), a.sx, a.sy);
                EXPECT_TRUE(image.pixels() == expected.pixels()) << sourceDepth << " to " << depth << ": " << a.x;
                EXPECT_TRUE(copied || !changes);
            }
}

// Rows of bits go by words where the two images' pixels lie differently in their bytes.
TEST(OffscreenCopy, LongRowsOfBits) {
    ClassicImage source(330, 2, 1);
    source.scribble(5);
    for (int x = 0; x < 9; ++x)
        for (int sx = 0; sx < 9; ++sx)
            for (const int count : {71, 72, 73, 144, 200, 300}) {
                ClassicImage image(330, 2, 1), expected(330, 2, 1);
                copySlowly(*expected, *source, {x, 0, count, 1, sx, 1}, [](int, int, int, int) { return true; });
                image->Copy(x, 0, count, 1, source.get(), sx, 1);
                ASSERT_TRUE(image.pixels() == expected.pixels()) << sx << " to " << x << ", " << count;
            }
}

TEST(OffscreenCopy, WithinOneImage) {
    for (const int depth : cnClassicDepths)
        for (const Area& a : cnAreas) {
            ClassicImage image(61, 20, depth), expected(61, 20, depth);
            image.scribble(8), expected.scribble(8);
            copySlowly(*expected, *expected, a, [](int, int, int, int) { return true; });
            image->Copy(a.x, a.y, a.w, a.h, image.get(), a.sx, a.sy);
            EXPECT_TRUE(image.pixels() == expected.pixels()) << depth << ": " << a.x << ',' << a.y;
        }
}

TEST(OffscreenCopy, SelectedPixels) {
    for (const int depth : cnClassicDepths) {
        ClassicImage source(61, 20, depth), mask(50, 30, 8);
        source.setAll([](int x, int y) { return (x * 7 + y * 3) % 5 ? 0xFF000000u | (x % 3) * 3u : 0xFFFFFFFF; });
        mask.scribble(4);
        for (const Area& a : cnAreas) {
            ClassicImage image(61, 20, depth), expected(61, 20, depth);
            const auto check = [&](const char* what, const auto& isCopied) {
                expected.setAll([](int, int) { return 0xFF808080; });
                copySlowly(*expected, *source, a, isCopied);
                EXPECT_TRUE(image.pixels() == expected.pixels()) << what << ' ' << depth << ": " << a.x;
                image.setAll([](int, int) { return 0xFF808080; });
            };
            image.setAll([](int, int) { return 0xFF808080; });
            image->CopyMask(a.x, a.y, a.w, a.h, source.get(), a.sx, a.sy, mask.get(), 2, -1);
            check("mask", [&](int x, int y, int, int) { return mask->Get1BitPixel(2 + x - a.x, -1 + y - a.y) == 1; });
            image->CopyMaskColor(a.x, a.y, a.w, a.h, source.get(), a.sx, a.sy, 0xAA000003);
            check("colour", [&](int, int, int sx, int sy) { return source->Get24BitPixel(sx, sy) != 3; });
            image->CopyMaskColorEx(a.x, a.y, a.w, a.h, source.get(), a.sx, a.sy, 3, 3);
            check("margin", [&](int, int, int sx, int sy) {
                const std::uint32_t c = source->Get24BitPixel(sx, sy);
                return (c & 255) > 6 || (c >> 8 & 255) > 3 || c >> 16 > 3; // red 3, the others 0
            });
        }
    }
}

TEST(OffscreenCopy, ClipsAndTransparency) {
    ClassicImage source(40, 30, 32, 0xFF000000), mask(10, 8, 1);
    mask.scribble(2);
    const Area all = {0, 0, 40, 30, 0, 0};
    const auto copied = [&](const auto& prepare) {
        ClassicImage image(40, 30, 32);
        prepare(*image);
        image->CopyEx(0, 0, 40, 30, source.get(), 0, 0);
        return image.pixels();
    };
    const auto expected = [&](const auto& isCopied) {
        ClassicImage image(40, 30, 32);
        copySlowly(*image, *source, all, [&](int x, int y, int, int) { return isCopied(x, y); });
        return image.pixels();
    };
    EXPECT_EQ(copied([](XCOffscreen& image) { image.SetClipRect({0, 0, 0, 0}); }), source.pixels());
    EXPECT_EQ(copied([](XCOffscreen& image) {
                  image.SetClipRect({3, -4, 9, 7});
              }),
              expected([](int x, int y) { return x >= 3 && x < 9 && y < 7; }));
    // A mask pixel for 3 x 3 pixels of the image, from (5, 4) on.
    EXPECT_EQ(copied([&](XCOffscreen& image) { image.SetClipMask(mask.get(), 5, 4, -3); }), expected([&](int x, int y) {
                  return x >= 5 && y >= 4 && mask->Get1BitPixel((x - 5) / 3, (y - 4) / 3) == 1;
              }));
    // Every second mask pixel.
    EXPECT_EQ(copied([&](XCOffscreen& image) { image.SetClipMask(mask.get(), -1, 1, 2); }),
              expected([&](int x, int y) { return y >= 1 && mask->Get1BitPixel((x + 1) * 2, (y - 1) * 2) == 1; }));
    // A ratio of 0 is 1.
    EXPECT_EQ(copied([&](XCOffscreen& image) { image.SetClipMask(mask.get(), 0, 0, 0); }),
              expected([&](int x, int y) { return mask->Get1BitPixel(x, y) == 1; }));
    const auto mixed = copied([](XCOffscreen& image) { image.SetTransparency(51); });
    EXPECT_EQ(mixed, std::vector<std::uint32_t>(40 * 30, 0xFFCCCCCC)); // a fifth of black
    for (const int depth : {1, 8, 24}) {
        ClassicImage ink(4, 1, depth, 0xFF000000), paper(4, 1, depth);
        paper->SetTransparency(153);
        paper->CopyEx(0, 0, 4, 1, ink.get(), 0, 0);
        EXPECT_EQ(paper->Get24BitPixel(2, 0), depth == 1 ? 0u : 0x666666u) << depth; // three fifths
    }
    EXPECT_EQ(copied([](XCOffscreen& image) { image.SetTransparency(0); }), expected([](int, int) { return false; }));
}

TEST(OffscreenCopy, WidenedToGroups) {
    ClassicImage source(70, 4, 1, 0xFF000000), image(70, 4, 1);
    image->CopyScamp(40, 1, 2, 1, source.get(), 8, 0); // 40 = 8 modulo 32
    for (int x = 0; x < 70; ++x)
        EXPECT_EQ(image->Get1BitPixel(x, 1), x >= 32 && x < 64) << x;
    image->CopyAlign8Bit(66, 2, 1, 1, source.get(), 2, 0);
    for (int x = 0; x < 70; ++x)
        EXPECT_EQ(image->Get1BitPixel(x, 2), x >= 64) << x;
    image->CopyAlign8Bit(10, 3, 2, 1, source.get(), 3, 0); // not alike: as it is
    for (int x = 0; x < 70; ++x)
        EXPECT_EQ(image->Get1BitPixel(x, 3), x == 10 || x == 11) << x;
    tagRECT rect = {-3, 0, 17, 5};
    XCOffscreen::CalcAlign8BitRect(rect, 100);
    EXPECT_EQ(XCRect(rect), XCRect(0, 0, 24, 5));
    rect = {12, 0, 97, 5};
    XCOffscreen::CalcAlign8BitRect(rect, 100);
    EXPECT_EQ(XCRect(rect), XCRect(8, 0, 100, 5));
}

TEST(OffscreenCopy, SafetyAreas) {
    const tagRECT rects[] = {{0, 0, 100, 100}, {0, 0, 50, 60}};
    tagPOINT inside[] = {{10, 10}, {0, 0}};
    int width = 40, height = 40;
    EXPECT_EQ(XCOffscreen::CalcSafetyArea(rects, inside, 2, width, height), 1);
    EXPECT_EQ(inside[0].x, 10); // nothing is cut, nothing moves
    EXPECT_EQ(width, 40);
    tagPOINT cut[] = {{-5, 70}, {20, 30}};
    EXPECT_EQ(XCOffscreen::CalcSafetyArea(rects, cut, 2, width, height), 1);
    // 5 columns are lost on the left, 10 on the right, 10 rows at the bottom.
    EXPECT_EQ(width, 25);
    EXPECT_EQ(height, 30);
    EXPECT_EQ(cut[0].x, 0);
    EXPECT_EQ(cut[1].x, 25);
    EXPECT_EQ(cut[0].y, 70);
    tagPOINT away[] = {{10, 10}, {60, 0}};
    EXPECT_EQ(XCOffscreen::CalcSafetyArea(rects, away, 2, width, height), 0);
    EXPECT_EQ(width, 0);
    width = 7;
    EXPECT_EQ(XCOffscreen::CalcSafetyArea(rects, away, 0, width, height), 1);
    EXPECT_EQ(width, 7);
}

TEST(OffscreenCopy, MirrorsAndQuarterTurns) {
    for (const int depth : cnClassicDepths) {
        ClassicImage image(41, 34, depth);
        image.scribble(6);
        const auto colour = [&](int x, int y) { return image->Get32BitPixel(x, y); };
        const auto expect = [&](XCOffscreen& moved, int width, int height, const auto& source) {
            moved.Lock();
            ASSERT_EQ(moved.GetWidth(), width);
            ASSERT_EQ(moved.GetHeight(), height);
            for (int y = 0; y < height; ++y)
                for (int x = 0; x < width; ++x)
                    ASSERT_EQ(moved.Get32BitPixel(x, y), source(x, y)) << depth << ": " << x << ',' << y;
        };
        const std::unique_ptr<XCOffscreen> across(image->CreateFlipImage(XCOffscreen::cnFlipHorizontal));
        expect(*across, 41, 34, [&](int x, int y) { return colour(40 - x, y); });
        const std::unique_ptr<XCOffscreen> down(image->CreateFlipImage(XCOffscreen::cnFlipVertical));
        expect(*down, 41, 34, [&](int x, int y) { return colour(x, 33 - y); });
        XCOffscreen turned;
        turned.CreateRotationImage(*image, 90, 0);
        expect(turned, 34, 41, [&](int x, int y) { return colour(y, 33 - x); });
        turned.CreateRotationImage(*image, 270, 0);
        expect(turned, 34, 41, [&](int x, int y) { return colour(40 - y, x); });
        turned.CreateRotationImage(*image, 90, 1);
        expect(turned, 34, 41, [&](int x, int y) { return colour(y, x); });
        turned.CreateRotationImage(*image, 180, 0);
        expect(turned, 41, 34, [&](int x, int y) { return colour(40 - x, 33 - y); });
        EXPECT_EQ(errorOf([&] { turned.CreateRotationImage(*image, 45, 0); }), 0x20010008);
        // Mirrored into another depth.
        ClassicImage other(41, 34, depth == 24 ? 1 : 24), plain(41, 34, depth == 24 ? 1 : 24);
        other->FlipImage(*image, 0, 0, 41, 34, XCOffscreen::cnFlipHorizontal);
        plain->Copy(0, 0, 41, 34, image.get(), 0, 0);
        for (int x = 0; x < 41; ++x)
            ASSERT_EQ(other->Get24BitPixel(x, 7), plain->Get24BitPixel(40 - x, 7)) << depth;
        // A part, turned in its own image, half of it beyond the edge.
        ClassicImage within(image);
        within->RotationImage(*within, 3, 2, 10, 6, 90, -2, 30);
        for (int y = 0; y < 34; ++y)
            for (int x = 0; x < 41; ++x)
                ASSERT_EQ(within->Get32BitPixel(x, y),
                          x < 4 && y >= 30 ? colour(3 + y - 30, 2 + 5 - (x + 2)) : colour(x, y));
    }
}

TEST(OffscreenCopy, MasksOfColours) {
    ClassicImage image(30, 5, 24);
    image.setAll([](int x, int) { return 0xFF000000u | x * 8; });
    ClassicImage allowed(30, 3, 8, 0xFF000000);
    const tagVXRGBCOLOR16 colours[] = {{0, 0x0800, 0, 0}, {0, 0x50FF, 0, 0}};
    const auto inkOf = [](const std::unique_ptr<XCOffscreen>& mask, int y) {
        mask->Lock();
        std::vector<int> columns;
        for (int x = 0; x < mask->GetWidth(); ++x)
            if (mask->Get1BitPixel(x, y))
                columns.push_back(x);
        mask->Unlock();
        return columns;
    };
    const std::unique_ptr<XCOffscreen> exact(image->ExtractionColor(colours, 2));
    EXPECT_EQ(exact->GetBitCount(), 1);
    EXPECT_EQ(inkOf(exact, 4), (std::vector<int>{1, 10}));
    const std::unique_ptr<XCOffscreen> masked(image->ExtractionColorMask(colours, 2, allowed.get()));
    EXPECT_EQ(inkOf(masked, 2), (std::vector<int>{1, 10}));
    EXPECT_EQ(inkOf(masked, 3), (std::vector<int>{}));
    const std::unique_ptr<XCOffscreen> wide(image->ExtractionColorMaskEx(colours, 2, nullptr, 8));
    EXPECT_EQ(inkOf(wide, 0), (std::vector<int>{0, 1, 2, 9, 10, 11}));
    image->Set24BitPixel(0xFFFFFF, 7, 1);
    const std::unique_ptr<XCOffscreen> ink(image->CreateMask());
    EXPECT_EQ(inkOf(ink, 1).size(), 29u);
}

} // namespace
