#include "offscreen/classictest.h"
#include "ovwcmn/xcoffscreen.h"
#include "ovwcmn/xcpolygon.h"
#include "support/testimage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>

namespace {

using namespace ovw::test;
using Pixels = std::set<std::pair<int, int>>;

constexpr int cnWidth = 45;
constexpr int cnHeight = 33;

/// Draws black on white and tells what became black.
template <class Draw>
Pixels drawn(Draw draw, int depth = 1) {
    ClassicImage image(cnWidth, cnHeight, depth);
    image->SetForeColor(0xFF000000);
    draw(*image);
    Pixels pixels;
    for (int y = 0; y < cnHeight; ++y)
        for (int x = 0; x < cnWidth; ++x)
            if (image->Get24BitPixel(x, y) == 0)
                pixels.insert({x, y});
    return pixels;
}

/// Those of all pixels that a rule holds for.
template <class Rule>
Pixels pixelsWhere(Rule rule) {
    Pixels pixels;
    for (int y = 0; y < cnHeight; ++y)
        for (int x = 0; x < cnWidth; ++x)
            if (rule(x, y))
                pixels.insert({x, y});
    return pixels;
}

TEST(OffscreenDrawing, FillsRectanglesAndRows) {
    const tagRECT rects[] = {{3, 2, 29, 8},    {-5, -5, 9, 40}, {8, 0, 16, 33},  {0, 0, 45, 33},  {-1, -1, 46, 34},
                             {44, 32, 45, 33}, {9, 9, 9, 20},   {20, 9, 10, 20}, {50, 0, 60, 10}, {31, 3, 33, 4}};
    for (const int depth : cnClassicDepths)
        for (const tagRECT& r : rects)
            EXPECT_EQ(drawn([&](XCOffscreen& image) { image.RectFill(r); }, depth), pixelsWhere([&](int x, int y) {
                          return XCRect(r).PtInRect({x, y});
                      }))
                << depth << ": " << r.left;
    struct {
        int x0, x1, y;
    } const rows[] = {{-9, 4, 3}, {7, 7, 0}, {30, 99, 32}, {5, 4, 3}, {-9, -2, 3}, {0, 44, 33}, {3, 40, -1}};
    for (const int depth : cnClassicDepths)
        for (const auto& row : rows) {
            const auto expected = pixelsWhere([&](int x, int y) { return y == row.y && x >= row.x0 && x <= row.x1; });
            EXPECT_EQ(drawn([&](XCOffscreen& image) { image.FillLineRow(row.x0, row.x1, row.y); }, depth), expected);
            const auto byCursor = [&](XCOffscreen& image) {
                image.FillLineRow(row.x1 - row.x0 + 1, XCOffscreenCursor(&image, row.x0, row.y));
            };
            EXPECT_EQ(drawn(byCursor, depth), expected);
        }
}

TEST(OffscreenDrawing, FillsKeepTheColourOfTheRowBuffer) {
    ClassicImage image(10, 2, 32);
    image->SetForeColor(0x00112233);
    image->RectFill({1, 0, 3, 1});
    EXPECT_EQ(image->Get32BitPixel(2, 0), 0x00112233u);
    image->SetForeColor(0x80445566);
    image->FillLineRow(0, 9, 1);
    EXPECT_EQ(image->Get32BitPixel(9, 1), 0x80445566u);
    ClassicImage bits(70, 2, 1);
    bits->SetForeColor(0x00303030); // dark, but not black
    bits->RectFill({0, 0, 70, 1});
    EXPECT_EQ(bits->Get1BitPixel(0, 0), 0);
    bits->Line(0, 1, 69, 1, 1);
    EXPECT_EQ(bits->Get1BitPixel(69, 1), 1);
}

TEST(OffscreenDrawing, ScampFillsTakeWholeGroups) {
    ClassicImage grey(21, 2, 8);
    grey->RectFillScamp({3, 0, 5, 1});
    for (int x = 0; x < 21; ++x)
        EXPECT_EQ(grey->Get8BitPixel(x, 0), x < 8 ? 255 : 0) << x;
    grey->RectFillScamp({20, 0, 21, 1});
    EXPECT_EQ(grey->Get8BitPixel(0, 1), 0); // the group ends in the padding
    ClassicImage bits(70, 2, 1);
    bits->RectFillScamp({40, 0, 41, 1});
    for (int x = 0; x < 70; ++x)
        EXPECT_EQ(bits->Get1BitPixel(x, 0), x >= 32 && x < 64) << x;
}

/// Bresenham's walk, step by step, with the pen pixel by pixel.
Pixels walkedLine(int x0, int y0, int x1, int y1, int width) {
    Pixels pixels;
    const int dx = std::abs(x1 - x0), dy = std::abs(y1 - y0);
    const int major = std::max(dx, dy), minor = std::min(dx, dy);
    int error = 2 * minor - major, x = x0, y = y0;
    for (int i = 0; i <= major; ++i) {
        for (int v = 0; v < width; ++v)
            for (int u = 0; u < width; ++u) {
                const int px = x - width / 2 + u, py = y - width / 2 + v;
                if (px >= 0 && py >= 0 && px < cnWidth && py < cnHeight)
                    pixels.insert({px, py});
            }
        const bool diagonal = error >= 0;
        error += diagonal ? 2 * (minor - major) : 2 * minor;
        if (dx >= dy || diagonal)
            x += x1 < x0 ? -1 : 1;
        if (dx < dy || diagonal)
            y += y1 < y0 ? -1 : 1;
    }
    return pixels;
}

TEST(OffscreenDrawing, LinesByAWalkingPen) {
    std::mt19937 random(11);
    const auto coordinate = [&random] { return static_cast<int>(random() % 90) - 25; };
    for (int i = 0; i < 1500; ++i) {
        const int x0 = coordinate(), y0 = coordinate();
        const int x1 = i % 7 ? coordinate() : x0, y1 = i % 5 ? coordinate() : y0;
        const int width = static_cast<int>(random() % 6);
        ASSERT_EQ(drawn([&](XCOffscreen& image) { image.Line(x0, y0, x1, y1, width); }),
                  walkedLine(x0, y0, x1, y1, width))
            << x0 << ',' << y0 << ' ' << x1 << ',' << y1 << " width " << width;
    }
    // From edge to edge of the coordinates, at once: the diagonal passes through (0, 0).
    constexpr int far = 2147483647;
    EXPECT_EQ(drawn([](XCOffscreen& image) { image.Line(-far, -far, far, far, 1); }),
              pixelsWhere([](int x, int y) { return x == y; }));
    EXPECT_EQ(drawn([](XCOffscreen& image) { image.Line(-far - 1, 5, far, 5, far); }).size(), 45u * 33u);
    EXPECT_EQ(drawn([](XCOffscreen& image) {
                  image.RectFrame({2, 3, 9, 7}, 1);
              }),
              pixelsWhere([](int x, int y) {
                  return x >= 2 && x < 9 && y >= 3 && y < 7 && (x == 2 || x == 8 || y == 3 || y == 6);
              }));
}

TEST(OffscreenDrawing, EllipsesAsTiledImagesDrawThem) {
    TestStore store;
    std::mt19937 random(13);
    for (int i = 0; i < 200; ++i) {
        const int x0 = static_cast<int>(random() % 50) - 10, y0 = static_cast<int>(random() % 40) - 10;
        const int x1 = x0 + static_cast<int>(random() % 40), y1 = y0 + static_cast<int>(random() % 40);
        TestImage tiled(store, 1, cnWidth, cnHeight);
        if (!tiled->GetRect().IsIntersectRect({x0, y0, x1, y1}))
            continue; // a tiled image does not draw the last row or column alone
        tiled->ArcFill(x0, y0, x1, y1, 0xFF808080, nullptr);
        const auto expected = pixelsWhere([&](int x, int y) { return tiled.value(x, y) == 1; });
        ASSERT_EQ(drawn([&](XCOffscreen& image) { image.ArcFill(x0, y0, x1, y1); }), expected) << x0 << ' ' << x1;
        ASSERT_EQ(drawn([&](XCOffscreen& image) { image.ArcFill(x1, y0, x0, y1); }), expected);
        const double n = x1 - x0 + 1, m = y1 - y0 + 1;
        const auto isInside = [&](int x, int y) {
            const double u = (2 * x - x0 - x1) / n, v = (2 * y - y0 - y1) / m;
            return u * u + v * v <= 1 + 1e-12;
        };
        ASSERT_EQ(drawn([&](XCOffscreen& image) { image.TrueArcFill(x0, y0, x1, y1); }), pixelsWhere(isInside));
    }
    constexpr int far = 2147483647;
    EXPECT_EQ(drawn([](XCOffscreen& image) { image.TrueArcFill(-far - 1, -far - 1, far, far); }).size(), 45u * 33u);
}

TEST(OffscreenDrawing, PolygonsAsThePolygonRasteriserDrawsThem) {
    TestStore store;
    std::mt19937 random(17);
    for (int i = 0; i < 200; ++i) {
        std::vector<tagPOINT> points;
        std::vector<tagPOINTD> exact;
        for (int k = 0; k < 3 + i % 6; ++k) {
            points.push_back({static_cast<int>(random() % 60) - 8, static_cast<int>(random() % 50) - 8});
            exact.push_back({double(points.back().x), double(points.back().y)});
        }
        const int count = static_cast<int>(points.size());
        TestImage tiled(store, 1, cnWidth, cnHeight);
        const XCVOffscreenAutoLock lock(tiled.get(), 1);
        XCPolygon::FillPolygon(tiled.get(), exact.data(), count, nullptr, 0xFF808080, 0, 255);
        const auto expected = pixelsWhere([&](int x, int y) { return tiled.value(x, y) == 1; });
        ASSERT_EQ(drawn([&](XCOffscreen& image) { image.FillPolygon(points.data(), count); }), expected) << i;
        if (count == 3) { // always convex
            ASSERT_EQ(drawn([&](XCOffscreen& image) { image.FillPolygonConvex(points.data(), count); }), expected);
        }
    }
}

TEST(OffscreenDrawing, FloodFillsTheConnectedRegion) {
    std::mt19937 random(19);
    for (int i = 0; i < 60; ++i) {
        const int depth = cnClassicDepths[i % 4];
        ClassicImage image(cnWidth, cnHeight, depth);
        image.setAll([&random, i](int, int) { return random() % 10 < 4u + i % 3 ? 0xFF000000 : 0xFFFFFFFF; });
        ClassicImage mask(cnWidth, cnHeight, 1);
        const tagPOINT seed = {static_cast<int>(random() % cnWidth), static_cast<int>(random() % cnHeight)};
        const std::uint32_t reference = image->Get24BitPixel(seed.x, seed.y);
        Pixels region = {{seed.x, seed.y}};
        std::vector<std::pair<int, int>> pending(region.begin(), region.end());
        while (!pending.empty()) {
            const auto [x, y] = pending.back();
            pending.pop_back();
            for (const auto& [nx, ny] : {std::pair{x - 1, y}, {x + 1, y}, {x, y - 1}, {x, y + 1}})
                if (image->PointInOffscreen(nx, ny) && image->Get24BitPixel(nx, ny) == reference &&
                    region.insert({nx, ny}).second)
                    pending.push_back({nx, ny});
        }
        tagRECT inMask, changed;
        ASSERT_EQ(image->SeedScanFill1BitMask(*mask, seed, &inMask), 1);
        const auto expected = pixelsWhere([&](int x, int y) { return region.count({x, y}) != 0; });
        EXPECT_EQ(pixelsWhere([&](int x, int y) { return mask->Get1BitPixel(x, y) == 1; }), expected);
        EXPECT_EQ(image->SeedScanFill1BitMask(*mask, seed, nullptr), 0); // filled already
        tagRECT extent;
        mask->GetExtentRect(extent);
        EXPECT_EQ(XCRect(inMask), XCRect(extent));
        const auto before = image.pixels();
        image->SetForeColor(depth == 1 ? reference ^ 0xFFFFFF : 0xFF0000C8);
        ASSERT_EQ(image->SeedScanFill(seed, &changed), 1);
        const auto after = image.pixels();
        EXPECT_EQ(pixelsWhere([&](int x, int y) { return before[y * cnWidth + x] != after[y * cnWidth + x]; }),
                  expected);
        EXPECT_EQ(XCRect(changed), XCRect(extent));
        EXPECT_EQ(image->SeedScanFill(seed, &changed), 0);
        EXPECT_EQ(image->SeedScanFill({-1, 0}, &changed), 0);
    }
}

TEST(OffscreenDrawing, PlotsByTheForeColoursAlpha) {
    ClassicImage image(2, 1, 32, 0x40204060);
    image->SetForeColor(0x00FFFFFF);
    image->TransparentPlot(0, 0);
    EXPECT_EQ(image->Get32BitPixel(0, 0), 0xFF204060u);
    image->SetForeColor(0x80FFFFFF);
    image->TransparentPlot(0, 0); // (0x60 * 128 + 0xFF * 128) >> 8
    EXPECT_EQ(image->Get32BitPixel(0, 0), 0xFF8F9FAFu);
    image->SetForeColor(0xFF010203);
    image->TransparentPlot(0, 0);
    EXPECT_EQ(image->Get32BitPixel(0, 0), 0xFF010203u);
    image->TransparentPlot(2, 0);
    EXPECT_EQ(image->Get32BitPixel(1, 0), 0x40204060u);
}

} // namespace
