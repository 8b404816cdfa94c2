#include "offscreen/classictest.h"
#include "ovwcmn/xcoffscreen.h"
#include "ovwcmn/xcsimpleimage.h"
#include "support/testimage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

using namespace ovw::test;

struct Fit {
    int dx, dy, dw, dh, sx, sy, sw, sh;
};
const Fit cnFits[] = {{0, 0, 12, 10, 0, 0, 24, 20},  {0, 0, 7, 5, 0, 0, 24, 20},    {3, 2, 30, 9, 1, 3, 11, 15},
                      {-5, -4, 24, 8, 4, 2, 16, 12}, {2, 2, 9, 40, -3, -2, 30, 30}, {1, 1, 12, 10, 0, 0, 24, 20}};

/// The mean of a piece of an image by area, channel by channel in plain floating point: 24-bit.
std::uint32_t slowMean(XCOffscreen& source, double left, double top, double right, double bottom, bool& found) {
    double sums[3] = {}, density = 0, weight = 0, visible = 0;
    for (int y = 0; y < source.GetHeight(); ++y)
        for (int x = 0; x < source.GetWidth(); ++x) {
            const double w = std::max(0.0, std::min(right, x + 1.0) - std::max<double>(left, x)) *
                             std::max(0.0, std::min(bottom, y + 1.0) - std::max<double>(top, y));
            const std::uint32_t c = source.Get32BitPixel(x, y);
            weight += w;
            density += w * source.Get8BitPixel(x, y);
            if (c >> 24 == 0)
                continue;
            visible += w;
            for (int k = 0; k < 3; ++k)
                sums[k] += w * (c >> 8 * k & 255);
        }
    found = weight > 1e-9;
    const auto rounded = [](double v) { return static_cast<std::uint32_t>(std::floor(v + 0.5 + 1e-9)); };
    if (source.GetBitCount() <= 8)
        return found ? (255 - rounded(density / weight)) * 0x010101 : 0;
    if (visible <= 1e-9)
        return 0xFFFFFF;
    return rounded(sums[0] / visible) | rounded(sums[1] / visible) << 8 | rounded(sums[2] / visible) << 16;
}

TEST(OffscreenResolution, AveragesByArea) {
    for (const int depth : cnClassicDepths)
        for (const Fit& f : cnFits) {
            if (f.dx == 0 && f.dw * 2 == f.sw)
                continue; // truncated
            ClassicImage source(24, 20, depth), image(26, 24, 24), expected(26, 24, 24);
            source.scribble(3);
            source->Set32BitPixel(0x00FF00FF, 3, 3); // transparent, where there is alpha
            const double rx = double(f.sw) / f.dw, ry = double(f.sh) / f.dh;
            for (int j = 0; j < f.dh; ++j)
                for (int i = 0; i < f.dw; ++i) {
                    bool found = false;
                    const double x = f.sx + i * rx, y = f.sy + j * ry;
                    const std::uint32_t colour = slowMean(*source, x, y, x + rx, y + ry, found);
                    if (found)
                        expected->Set24BitPixel(colour, f.dx + i, f.dy + j);
                }
            image->ChangeResolution(f.dx, f.dy, f.dw, f.dh, source.get(), f.sx, f.sy, f.sw, f.sh, 2);
            // Sums in another order may round a half to the other side.
            for (int y = 0; y < 24; ++y)
                for (int x = 0; x < 26; ++x)
                    for (int k = 0; k < 24; k += 8)
                        ASSERT_NEAR(int(image->Get24BitPixel(x, y) >> k & 255),
                                    int(expected->Get24BitPixel(x, y) >> k & 255), 1)
                            << depth << ": " << f.dw << " at " << x << ',' << y;
        }
}

TEST(OffscreenResolution, HalvesAreTruncated) {
    ClassicImage source(4, 2, 24), image(2, 1, 24);
    source.setAll([](int x, int y) { return static_cast<std::uint32_t>(x + y * 2) * 0x010203; });
    image->ChangeResolution(0, 0, 2, 1, source.get(), 0, 0, 4, 2, 2);
    EXPECT_EQ(image->Get24BitPixel(0, 0), 0x010304u); // means 1.5, 3, 4.5
    EXPECT_EQ(source->CalcPixValueHalf(0, 0), 0x010304u);
    EXPECT_EQ(source->CalcPixelValue(0, 0, 2, 2), 0x020305u);
    for (const int depth : {1, 8, 32}) {
        ClassicImage checkered(2, 2, depth);
        checkered.draw({"#.", ".#"});
        // 127.5, rounded and truncated: as ink below 32 bits.
        EXPECT_EQ(checkered->CalcPixelValue(0, 0, 2, 1) & 0xFFFFFF, depth == 32 ? 0x808080u : 0x7F7F7Fu) << depth;
        EXPECT_EQ(checkered->CalcPixValueHalf(0, 0) & 0xFFFFFF, depth == 32 ? 0x7F7F7Fu : 0x808080u) << depth;
    }
    ClassicImage bits(4, 2, 1), small(2, 1, 1);
    bits.draw({"####", "#..."}); // 3 of 4, 2 of 4
    small->ChangeResolution(0, 0, 2, 1, bits.get(), 0, 0, 4, 2, 2);
    EXPECT_EQ(small->Get1BitPixel(0, 0), 1);
    EXPECT_EQ(small->Get1BitPixel(1, 0), 0);
    ClassicImage half(2, 2, 32, 0xFF0000FF), one(1, 1, 32);
    half->Set32BitPixel(0x0000FF00, 0, 0), half->Set32BitPixel(0x0000FF00, 1, 1);
    one->ChangeResolutionLow(0, 0, 1, 1, half.get(), 0, 0, 2, 2);
    EXPECT_EQ(one->Get32BitPixel(0, 0), 0x7F0000FFu);
    one->ChangeResolution(0, 0, 1, 1, half.get(), 0, 0, 2, 2, 2);
    EXPECT_EQ(one->Get32BitPixel(0, 0), 0xFF0000FFu);
}

TEST(OffscreenResolution, LowAndNearest) {
    for (const int depth : cnClassicDepths)
        for (const Fit& f : cnFits) {
            ClassicImage source(24, 20, depth), low(26, 24, depth), nearest(26, 24, depth);
            source.scribble(3);
            auto expectedLow = low.pixels(), expectedNearest = nearest.pixels();
            for (int y = std::max(f.dy, 0); y < std::min(f.dy + f.dh, 24); ++y)
                for (int x = std::max(f.dx, 0); x < std::min(f.dx + f.dw, 26); ++x) {
                    const int i = x - f.dx, j = y - f.dy;
                    const int sx = f.sx + i * f.sw / f.dw, sy = f.sy + j * f.sh / f.dh;
                    if (source->PointInOffscreen(sx, sy))
                        expectedNearest[y * 26 + x] = source->Get32BitPixel(sx, sy);
                    const int ex = f.sw > f.dw ? f.sx + (i + 1) * f.sw / f.dw : sx + 1;
                    const int ey = f.sh > f.dh ? f.sy + (j + 1) * f.sh / f.dh : sy + 1;
                    std::uint32_t sums[4] = {}, count = 0, visible = 0, density = 0;
                    for (int v = sy; v < ey; ++v)
                        for (int u = sx; u < ex; ++u) {
                            if (!source->PointInOffscreen(u, v))
                                continue;
                            const std::uint32_t c = source->Get32BitPixel(u, v);
                            ++count, density += source->Get8BitPixel(u, v), visible += c >> 24 != 0;
                            for (int k = 0; c >> 24 && k < 4; ++k)
                                sums[k] += c >> 8 * k & 255;
                        }
                    if (!count)
                        continue;
                    std::uint32_t colour = 0xFFFFFF;
                    if (depth <= 8)
                        colour = (255 - density / count) * 0x010101;
                    else if (visible)
                        colour = sums[0] / visible | sums[1] / visible << 8 | sums[2] / visible << 16 |
                                 sums[3] / count << 24;
                    ClassicImage pixel(1, 1, depth);
                    pixel->Set32BitPixel(colour, 0, 0);
                    expectedLow[y * 26 + x] = pixel->Get32BitPixel(0, 0);
                }
            low->ChangeResolution(f.dx, f.dy, f.dw, f.dh, source.get(), f.sx, f.sy, f.sw, f.sh, 1);
            nearest->ChangeResolution(f.dx, f.dy, f.dw, f.dh, source.get(), f.sx, f.sy, f.sw, f.sh, 0);
            EXPECT_TRUE(low.pixels() == expectedLow) << depth << ": " << f.dw;
            EXPECT_TRUE(nearest.pixels() == expectedNearest) << depth << ": " << f.dw;
        }
    ClassicImage image(3, 3, 8);
    constexpr int far = 2147483647;
    image->ChangeResolution(-far, -far, far, far, image.get(), -far, -far, far, 1, 1);
    image->ChangeResolution(0, 0, 3, 0, image.get(), 0, 0, 1, 1, 1);
    EXPECT_EQ(image.pixels(), std::vector<std::uint32_t>(9, 0xFFFFFFFF));
}

TEST(OffscreenConversion, ToTiledAndSimpleImagesAndBack) {
    TestStore store;
    xcCreateVirtualMemory(nullptr);
    for (const int depth : cnClassicDepths) {
        ClassicImage image(300, 270, depth, depth == 32 ? 0x00FFFFFF : 0xFFFFFFFF);
        for (int y = 200; y < 270; ++y)
            for (int x = 250; x < 300; ++x)
                image->Set32BitPixel(static_cast<std::uint32_t>(x * 77777 + y * 991), x, y);
        const std::unique_ptr<XCVOffscreen> tiled(image->CopyToOffscreen());
        ASSERT_EQ(tiled->GetDepth(), depth);
        EXPECT_EQ(tiled->GetBlockExist(0), 1);
        {
            const XCVOffscreenAutoLock lock(tiled.get(), 0);
            for (int y = 190; y < 270; y += 3)
                for (int x = 240; x < 300; ++x) {
                    tiled->MoveCursor(x, y);
                    // The 24-bit reading lays 32 bits over black.
                    const auto colour = depth < 32 ? tiled->Get24BitColor() & 0xFFFFFF : tiled->Get32BitColor();
                    ASSERT_EQ(colour, depth < 32 ? image->Get24BitPixel(x, y) : image->Get32BitPixel(x, y));
                }
        }
        XCOffscreen back;
        back.CopyFromOffscreen(tiled.get());
        XCSimpleImage simple;
        image->CopyToSimpleImage(simple);
        XCSimpleImage fromTiled;
        fromTiled.CopyFromOffscreen(tiled.get());
        XCOffscreen backAgain;
        backAgain.CopyFromSimpleImage(&simple);
        back.Lock(), backAgain.Lock();
        const XCAutoLockSimpleImage lock(&simple), lockTiled(&fromTiled);
        for (int y = 0; y < 270; y += 5)
            for (int x = 0; x < 300; ++x) {
                ASSERT_EQ(back.Get32BitPixel(x, y), image->Get32BitPixel(x, y)) << depth << ": " << x << ',' << y;
                ASSERT_EQ(backAgain.Get32BitPixel(x, y), image->Get32BitPixel(x, y));
                const bool isMissing = depth == 24 && !tiled->GetBlockExist(x, y); // zero bytes there
                ASSERT_EQ(*simple.GetPixel(x, y), isMissing ? 255 : *fromTiled.GetPixel(x, y));
            }
    }
    TestImage two(store, 2, 300, 4), sixteen(store, 16, 300, 4);
    two.setValue(290, 1, 2), two.setValue(291, 1, 3), two.setValue(292, 1, 1);
    sixteen.setValue(290, 1, 0x4080); // coverage 0x80, grey 0x40
    XCOffscreen image;
    image.CopyFromOffscreen(two.get());
    image.Lock();
    EXPECT_EQ(image.GetBitCount(), 32);
    EXPECT_EQ(image.Get32BitPixel(290, 1), 0xFFFFFFFFu);
    EXPECT_EQ(image.Get32BitPixel(291, 1), 0xFF000000u);
    EXPECT_EQ(image.Get32BitPixel(292, 1), 0x00FFFFFFu);
    EXPECT_EQ(image.Get32BitPixel(0, 0), 0x00FFFFFFu);
    image.CopyFromOffscreen(sixteen.get());
    image.Lock();
    EXPECT_EQ(image.Get32BitPixel(290, 1), 0x80404040u);
    xcDestroyVirtualMemory();
}

} // namespace
