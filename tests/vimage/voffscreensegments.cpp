#include "ovwcmn/xcvoffscreen.h"

#include "picture.h"
#include "pixelreference.h"
#include "support/testimage.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <random>
#include <tuple>
#include <vector>

namespace {

using namespace ovw::test;

constexpr std::uint32_t cnInk = 0xFF2040C0;
constexpr int cnSolid = 0, cnBehind = 1, cnStamped = 2; // every value but 0 and 1 stamps a plain pen

class XCVOffscreenSegments : public testing::Test {
protected:
    TestStore m_store{64u << 20};
};

/// Points of a line, the major axis one pixel a step.
std::vector<XCPoint> linePoints(int x1, int y1, int x2, int y2) {
    const int dx = std::abs(x2 - x1), dy = std::abs(y2 - y1);
    const int sx = x2 < x1 ? -1 : 1, sy = y2 < y1 ? -1 : 1;
    const bool steep = dy > dx;
    const int major = steep ? dy : dx, minor = steep ? dx : dy;
    int error = 2 * minor - major;
    std::vector<XCPoint> points;
    for (int i = 0, x = x1, y = y1; i <= major; ++i) {
        points.push_back(XCPoint(x, y));
        if (error < 0) {
            error += 2 * minor;
        } else {
            error += 2 * (minor - major);
            (steep ? x : y) += steep ? sx : sy;
        }
        (steep ? y : x) += steep ? sy : sx;
    }
    return points;
}

/// Calls stamp(x, y) for each pixel of the picture under a pen that stands at each of the points.
template <class Stamp>
void forStamps(const Picture& picture, const std::vector<XCPoint>& points, int width, Stamp stamp) {
    for (XCPoint p : points)
        for (int y = p.y; y < p.y + width; ++y)
            for (int x = p.x; x < p.x + width; ++x)
                if (picture.isInside(x, y))
                    stamp(x, y);
}

constexpr std::tuple<int, int, int, int> cnLines[] = {
    {0, 0, 280, 3},     {10, 20, 30, -7}, {5, 5, 5, 5},       {290, 15, 250, 2},  {40, 3, 44, 40}, {7, 19, 3, 1},
    {-20, 10, 320, 11}, {9, 1, 9, 18},    {260, 17, 240, 17}, {-40, 30, 60, -70}, {1, 0, 19, 18},
};

TEST_F(XCVOffscreenSegments, PensStandAtThePointsOfBresenhamsLine) {
    for (int depth : cnDepths)
        for (int width : {1, 4})
            for (auto [x1, y1, x2, y2] : cnLines) {
                TestImage image(m_store, depth, 300, 20);
                scribble(image, XCRect(0, 0, 300, 9));
                Picture expected(image);
                image->DrawSegment(x1, y1, x2, y2, width, cnInk, width == 1 ? cnSolid : cnStamped, 0);
                forStamps(expected, linePoints(x1, y1, x2, y2), width,
                          [&](int x, int y) { expected.at(x, y) = expectedStored(depth, 32, cnInk, {}); });
                ASSERT_EQ(expected.difference(image), "") << depth << ": " << x1 << ',' << y1 << " to " << x2;
            }
}

// An 8-bit pixel with white for ink reads lighter than what was stored: its values come round again.
TEST_F(XCVOffscreenSegments, EveryPlaceOfThePenPutsItsColourBehind) {
    for (int depth : cnDepths)
        for (std::uint32_t inkColour : {0xFF000000u, 0xFFFFFFFFu}) {
            TestImage image(m_store, depth, 60, 40);
            for (int index : {1, 2, 3})
                image->SetIndexColor(index, inkColour);
            scribble(image, XCRect(0, 0, 60, 9));
            Picture expected(image);
            image->DrawSegment2(-4, 2, 50, 30, 13, 0x10804020, cnBehind, 0);
            const std::uint32_t ink[4] = {0, inkColour, inkColour, inkColour};
            forStamps(expected, linePoints(-4, 2, 50, 30), 13, [&](int x, int y) {
                const std::uint32_t old = expectedReadings(depth, expected.at(x, y), {}, ink).bit32;
                expected.at(x, y) = expectedStored(depth, 32, behind(old, 0x10804020, false), {});
            });
            ASSERT_EQ(expected.difference(image), "") << depth << ' ' << inkColour;
        }
}

TEST_F(XCVOffscreenSegments, ThickLevelSegmentsAreAsThickAsTheirPen) {
    TestImage image(m_store, 32, 300, 300);
    Picture expected(image);
    image->DrawSegment(20, 30, 280, 30, 5, cnInk, cnSolid, 0);
    image->DrawSegment2(40, 290, 40, 50, 4, cnInk, cnSolid, 1);
    image->DrawSegment(7, 9, 7, 9, 2, cnInk, cnSolid, 0);
    expected.fill(XCRect(20, 30, 285, 35), cnInk);
    expected.fill(XCRect(40, 50, 44, 294), cnInk);
    expected.fill(XCRect(7, 9, 9, 11), cnInk);
    EXPECT_EQ(expected.difference(image), "");
}

/// Whether a pixel or one of the eight around it is painted.
bool isNear(Picture& picture, int x, int y) {
    for (int i = 0; i < 9; ++i)
        if (picture.at(x - 1 + i % 3, y - 1 + i / 3))
            return true;
    return false;
}

TEST_F(XCVOffscreenSegments, ThickSlantedSegmentsAreTheirPensPlacesGiveOrTakeAPixel) {
    std::mt19937 random(5);
    const auto any = [&](int limit) { return int(random() % unsigned(limit)); };
    for (int i = 0; i < 100; ++i) {
        TestImage filled(m_store, 8, 290, 290), stamped(m_store, 8, 290, 290);
        const int x1 = 20 + any(240), y1 = 20 + any(240), x2 = 20 + any(240), y2 = 20 + any(240);
        const int width = 2 + any(12);
        filled->DrawSegment(x1, y1, x2, y2, width, 0xFF000000, cnSolid, 0);
        stamped->DrawSegment(x1, y1, x2, y2, width, 0xFF000000, cnStamped, 0);
        Picture isFilled(filled), isStamped(stamped);
        for (int y = 1; y < 289; ++y)
            for (int x = 1; x < 289; ++x) {
                ASSERT_TRUE(!isFilled.at(x, y) || isNear(isStamped, x, y)) << x1 << ',' << y1 << ' ' << x2 << ',' << y2;
                ASSERT_TRUE(!isStamped.at(x, y) || isNear(isFilled, x, y)) << x1 << ',' << y1 << ' ' << x2 << ',' << y2;
            }
    }
}

TEST_F(XCVOffscreenSegments, FittedPensAreThinnerOnSlantedLines) {
    // Pens of 10 pixels on a diagonal: floor(10 sqrt(1/2) + 0.99) = 8 wide, 1 further in on both sides.
    // Pens of 10 on 3 in 4: floor(8.99) = 8; on 4 in 3 alike; pens of 4 on a diagonal: 3, centred: 4.
    const struct {
        int dx, dy, width, fitted, centred, inset;
    } cases[] = {{40, 40, 10, 8, 8, 1},  {40, -30, 10, 8, 8, 1},  {-30, 40, 10, 8, 8, 1}, {-40, -40, 4, 3, 4, 0},
                 {40, 0, 10, 10, 10, 0}, {0, -40, 10, 10, 10, 0}, {40, 30, 1, 1, 1, 0}};
    for (const auto& c : cases) {
        TestImage kept(m_store, 8, 120, 120), centred(m_store, 8, 120, 120);
        Picture expectedKept(kept), expectedCentred(centred);
        kept->DrawSegment2(50, 50, 50 + c.dx, 50 + c.dy, c.width, 0xFF000000, cnStamped, 1);
        centred->DrawSegment(50, 50, 50 + c.dx, 50 + c.dy, c.width, 0xFF000000, cnStamped, 1);
        const auto points = linePoints(50, 50, 50 + c.dx, 50 + c.dy);
        forStamps(expectedKept, points, c.fitted, [&](int x, int y) { expectedKept.at(x, y) = 255; });
        forStamps(expectedCentred, points, c.centred,
                  [&](int x, int y) { expectedCentred.at(x + c.inset, y + c.inset) = 255; });
        EXPECT_EQ(expectedKept.difference(kept), "") << c.dx << ',' << c.dy;
        EXPECT_EQ(expectedCentred.difference(centred), "") << c.dx << ',' << c.dy;
    }
}

TEST_F(XCVOffscreenSegments, WithoutAPenOrOutsideTheImageNothingIsDrawn) {
    TestImage image(m_store, 8, 100, 100);
    for (int behind : {cnSolid, cnBehind, cnStamped}) {
        image->DrawSegment(0, 0, 90, 90, 0, 0xFF000000, behind, 1);
        image->DrawSegment2(0, 0, 90, 90, INT_MIN, 0xFF000000, behind, 1);
        image->DrawSegment(-50, 0, -4, 90, 4, 0xFF000000, behind, 0);
        image->DrawSegment(0, 100, INT_MAX, 100, 4, 0xFF000000, behind, 0);
        image->DrawSegment(150, -60, -60, -60, 9, 0xFF000000, behind, 1);
    }
    EXPECT_EQ(image->IsBlockExist(), 0);
    EXPECT_EQ(image->GetLockCount(), 0);
}

TEST_F(XCVOffscreenSegments, EndlessSegmentsAndPensEnd) {
    TestImage image(m_store, 8, 100, 100);
    image->DrawSegment(-INT_MAX, -INT_MAX, INT_MAX, INT_MAX, 1, 0xFF000000, cnSolid, 0);
    EXPECT_EQ(image.value(50, 50), 255u);
    EXPECT_EQ(image.value(51, 50), 0u);
    image->DrawSegment2(-INT_MAX, 20, INT_MAX, 20, 2, 0xFF000000, cnBehind, 0);
    EXPECT_EQ(image.value(99, 21), 255u);
    EXPECT_EQ(image.value(99, 22), 0u);
    for (int behind : {cnSolid, cnBehind, cnStamped}) {
        TestImage covered(m_store, 32, 100, 100);
        Picture expected(covered);
        covered->DrawSegment(-INT_MAX, -INT_MAX, 50, 40, INT_MAX, cnInk, behind, 1);
        covered->DrawSegment(INT_MIN, -INT_MAX, 50, 40, INT_MAX, cnInk, behind, 0);
        expected.fill(XCRect(0, 0, 100, 100), cnInk);
        EXPECT_EQ(expected.difference(covered), "") << behind;
    }
}

} // namespace
