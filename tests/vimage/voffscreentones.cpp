// Conversions to grey and to black and white, backgrounds, flattening by a mask, colours counted: all against the
// rules, pixel by pixel.

#include "ovwcmn/xcvoffscreen.h"

#include "picture.h"
#include "pixelreference.h"
#include "support/testimage.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

namespace {

using namespace ovw::test;

constexpr std::uint32_t cnInk[4] = {0, 0xFF000000, 0xFFFFFFFF, 0xFF000000};

Readings readingsOf(int depth, std::uint32_t stored) { return expectedReadings(depth, stored, {}, cnInk); }

class XCVOffscreenTones : public testing::Test {
protected:
    static constexpr int cnWidth = 262, cnHeight = 70;
    TestStore m_store{64u << 20};

    struct Place {
        int dx, dy, w, h, sx, sy;
    };
    /// Same place, moved, and leaving both images with sums beyond an int.
    static constexpr Place cnPlaces[] = {
        {0, 0, cnWidth, cnHeight, 0, 0}, {3, 250, 200, 60, 60, 5}, {-100, -9, INT_MAX, INT_MAX, -50, -2}};

    /// convert(stored source pixel, x, y of the source) for every pixel that the rectangle moves.
    template <class Convert>
    static void expectMoved(Picture& destination, const TestImage& source, const Place& p, Convert convert) {
        Picture from(source);
        for (int y = 0; y < source->GetHeight(); ++y)
            for (int x = 0; x < source->GetWidth(); ++x) {
                const std::int64_t i = std::int64_t{x} - p.sx, j = std::int64_t{y} - p.sy;
                if (i < 0 || j < 0 || i >= p.w || j >= p.h || !source->GetBlockExist(x, y))
                    continue;
                const int toX = int(i) + p.dx, toY = int(j) + p.dy;
                if (destination.isInside(toX, toY))
                    destination.at(toX, toY) = convert(from.at(x, y), x, y);
            }
    }
};

TEST_F(XCVOffscreenTones, TurnsEveryDepthIntoDensities) {
    for (int from : cnDepths) {
        TestImage source(m_store, from, cnWidth, cnHeight);
        scribble(source, XCRect(0, 0, 256, cnHeight)); // no blocks to the right
        for (int to : {1, 2, 8, 24, 32})
            for (const Place& p : cnPlaces) {
                const int reverse = (from + to + p.dy) / 2 % 2 != 0;
                TestImage image(m_store, to, 280, 264);
                scribble(image, XCRect(0, 0, 280, 20), 2);
                Picture wanted(image);
                const bool isDirect = p.dx == p.sx && p.dy == p.sy && to == 8 && from >= 16;
                expectMoved(wanted, source, p, [&](std::uint32_t v, int, int) {
                    const int own = from == 16 ? int(v >> 8) : lumOf(v);
                    const int grey = isDirect ? own : lumOf(readingsOf(from, v).bit24);
                    return expectedStored(to, 8, std::uint32_t(reverse ? grey : 255 - grey), {});
                });
                image->Grayish(p.dx, p.dy, p.w, p.h, source.get(), p.sx, p.sy, reverse);
                ASSERT_EQ(wanted.difference(image), "") << from << " to " << to << " at " << p.dx << reverse;
            }
    }
}

TEST_F(XCVOffscreenTones, TurnsEveryDepthIntoBlackAndWhite) {
    const auto isOn = [](int v, int x, int y) { return XCVOffscreen::GetDitherValue16((v + 8) / 16, y, x) != 0; };
    for (int from : cnDepths) {
        TestImage source(m_store, from, cnWidth, cnHeight);
        scribble(source, XCRect(0, 0, 256, cnHeight));
        for (int to : cnDepths)
            for (const int variant : {(from + to) / 2 % 4, (from / 8 + to + 1) % 4}) {
                const int reverse = variant & 1, mode = variant >> 1;
                const Place& p = cnPlaces[(variant + to) % 3];
                TestImage image(m_store, to, 280, 264);
                scribble(image, XCRect(0, 0, 280, 20), 2);
                Picture wanted(image);
                expectMoved(wanted, source, p, [&](std::uint32_t stored, int x, int y) {
                    const Readings read = readingsOf(from, stored);
                    std::uint32_t v;
                    if (from == 1)
                        return expectedStored(to, 1, reverse ? read.bit1 != 1 : read.bit1, {});
                    if (from == 2)
                        v = to != 2 && read.bit2 == 2 ? 0 : read.bit2;
                    else {
                        const int a = int(read.bit16 >> 24), g = 255 - int(read.bit16 & 0xFF);
                        const auto dithered = [&](int level) {
                            if (mode == 0 && (from == 16 || from == 32))
                                return level >= 208 || (level >= 15 && isOn(level, x, y));
                            return level != 0 && isOn(level, x, y);
                        };
                        const bool opaque = dithered(a);
                        const bool black = dithered(g) && (opaque || mode != 0 || (from != 16 && from != 32));
                        v = 2 * opaque + black;
                        if (to != 2 && to != 16 && to != 32 && v != 3)
                            v = 0;
                    }
                    if (reverse)
                        v = v == 0 || v == 2 ? 3 : 0;
                    return expectedStored(to, 2, v, {});
                });
                image->Monochromic(p.dx, p.dy, p.w, p.h, source.get(), p.sx, p.sy, reverse, mode);
                ASSERT_EQ(wanted.difference(image), "") << from << " to " << to << ", variant " << variant;
            }
    }
}

TEST_F(XCVOffscreenTones, ConvertsNothingWithoutASource) {
    TestImage image(m_store, 8, 300, 300), empty(m_store, 32, 300, 300);
    image->Grayish(0, 0, 300, 300, nullptr, 0, 0, 0);
    image->Monochromic(0, 0, 300, 300, nullptr, 0, 0, 0, 0);
    image->Grayish(0, 0, 300, 300, empty.get(), 0, 0, 1);
    image->Monochromic(0, 0, 300, INT_MIN, empty.get(), 0, 0, 1, 0);
    EXPECT_FALSE(image->IsBlockExist());
    TestImage grey(m_store, 16, 300, 300);
    empty.setValue(5, 5, 0xFF0000FF);
    grey->Grayish(0, 0, 300, 300, empty.get(), 0, 0, 0);
    EXPECT_EQ(grey.value(5, 5), stored16(255, 255 / 7)) << "a copy";
}

TEST_F(XCVOffscreenTones, LaysACheckerboard) {
    constexpr std::uint32_t colour1 = 0x12C08040, colour2 = 0x00302010;
    const XCRect rect(-20, 250, 290, 5000);
    for (int depth : cnDepths)
        for (int variant = 0; variant < 16; ++variant) {
            const bool all = variant & 1, fill = variant & 2, isOneColour = variant & 8;
            const int cell = variant & 4 ? 4 : 77, side = variant & 4 ? 4 : 8;
            TestImage image(m_store, depth, 300, 262);
            scribble(image, XCRect(0, 248, 256, 256));
            Picture wanted(image);
            for (int y = 250; y < 262; ++y)
                for (int x = 0; x < 290; ++x) {
                    if (depth < 16 || depth == 24 || (!all && (x >= 256 || y >= 256)))
                        continue;
                    const bool second = ((x ^ y) & side) != 0;
                    const std::uint32_t k = second && !isOneColour ? 0x00978F87 : colour1; // each byte / 2 + 127
                    std::uint32_t& p = wanted.at(x, y);
                    const int a = int(depth == 32 ? p >> 24 : p & 0xFF), grey = int(p >> 8 & 0xFF);
                    const int taken = lumOf(~k) * (256 - a) >> 8;
                    const auto over = [&](int shift) {
                        return std::uint32_t((int(p >> shift & 0xFF) * a + int(k >> shift & 0xFF) * (255 - a)) / 255)
                               << shift;
                    };
                    if (fill || a == 0)
                        p = depth == 32 ? k | 0xFF000000 : stored16(255, lumOf(k));
                    else if (a != 255)
                        p = depth == 32 ? 0xFF000000 | over(16) | over(8) | over(0)
                                        : stored16(255, std::max(grey - taken, 0));
                }
            const auto render = fill ? &XCVOffscreen::RenderBackgroundFill : &XCVOffscreen::RenderBackground;
            (image.get()->*render)(rect, colour1, isOneColour ? colour1 : colour2, all, cell);
            ASSERT_EQ(wanted.difference(image), "") << depth << ", variant " << variant;
            EXPECT_EQ(image->GetBlockExist(280, 261), int(all)) << depth;
        }
}

TEST_F(XCVOffscreenTones, FlattensByAMask) {
    for (int depth : cnDepths)
        for (int maskDepth : {1, 8, 24}) {
            TestImage image(m_store, depth, 300, 300), mask(m_store, maskDepth, 280, 290);
            scribble(image, XCRect(0, 0, 256, 256));
            scribble(mask, XCRect(0, 0, 280, 200), 3);
            Picture wanted(image), masks(mask);
            for (int y = 10; y < 256; ++y) // where the mask has blocks
                for (int x = 5; x < 280; ++x) {
                    const std::uint32_t stored = masks.at(x, y);
                    const std::uint32_t m = maskDepth == 8 ? stored
                                            : depth == 2   ? readingsOf(24, stored).bit8
                                                           : stored >> 16;
                    if (m == 0 || maskDepth == 1)
                        continue;
                    std::uint32_t& p = wanted.at(x, y);
                    const int a = int(depth == 32 ? p >> 24 : p & 0xFF);
                    const auto less = [&](int v) { return std::uint32_t(std::max(v - (255 - a), 0)); };
                    if (depth == 2)
                        p = p >= 2 ? p : m % 2 ? 3 : 2;
                    else if (depth == 16)
                        p = m % 2 ? 255 | less(int(p >> 8)) << 8 : 255 | (a ? p & 0xFF00 : 0xFF00);
                    else if (depth == 32 && m % 2)
                        p = 0xFF000000 | less(int(p >> 16 & 0xFF)) << 16 | less(int(p >> 8 & 0xFF)) << 8 |
                            less(int(p & 0xFF));
                    else if (depth == 32)
                        p = a ? p | 0xFF000000 : 0xFFFFFFFF;
                }
            image->ReverseImage(mask.get(), 5, 10, INT_MAX, 5000);
            ASSERT_EQ(wanted.difference(image), "") << depth << " by " << maskDepth;
        }
}

TEST_F(XCVOffscreenTones, CountsColours) {
    TestImage image(m_store, 32, 600, 300), bytes(m_store, 8, 10, 10), rgb(m_store, 24, 600, 300);
    EXPECT_EQ(bytes->GetUseColorCount(), -1);
    EXPECT_EQ(image->GetUseColorCount(), 1);
    EXPECT_FALSE(image->IsBlockExist());
    for (int i = 0; i < 254; ++i)
        image.setValue(i, i, 0xFF000001 + unsigned(i));
    // Missing white, black under nothing, and 254 more; then white once more, as an opaque pixel.
    EXPECT_EQ(image->GetUseColorCount(), 256);
    image.setValue(300, 0, 0xFFFFFFFF);
    EXPECT_EQ(image->GetUseColorCount(), 257);
    for (int i = 0; i < 300; ++i)
        image.setValue(i, 1, 0xFF100000 + unsigned(i));
    EXPECT_EQ(image->GetUseColorCount(), 257);
    rgb.setValue(0, 0, 5);
    EXPECT_EQ(rgb->GetUseColorCount(), 2) << "white, missing or not, is one";
}

} // namespace
