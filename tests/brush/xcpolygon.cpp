#include "ovwcmn/xcpolygon.h"

#include "canvas.h"
#include "mixing/randomcases.h"
#include "tipreference.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

namespace {

using namespace ovw::test;

constexpr ImageSize cnSize{290, 270};
constexpr double cnTwoPi = 6.283185307179586;

XCPolyVertex listOf(const Corners& corners) {
    XCPolyVertex result;
    for (const tagPOINTD& corner : corners)
        result.Add(corner.x, corner.y);
    return result;
}

Canvas newCanvas(int depth) { return Canvas(depth, cnSize.width, cnSize.height); }

Corners randomCorners(Random& random, int count) {
    const double x = random.real(-10, 280), y = random.real(-10, 260);
    const double extent = random.chance(3) ? 3 : random.real(5, 80);
    Corners result;
    for (int i = 0; i < count; ++i)
        result.push_back({x + random.real(-extent, extent), y + random.real(-extent, extent)});
    if (random.chance(4))
        for (tagPOINTD& corner : result)
            corner = {std::floor(corner.x), std::floor(corner.y)};
    return result;
}

using Fill = int (XCPolygon::*)(tagRECT*, XCVOffscreen*, const XCPolyVertex*, const tagRECT*);

/// The dabs within the clip rectangle.
Shape clipped(Shape shape, const XCRect& clip) {
    std::erase_if(shape.dabs, [&](const Dab& dab) { return !clip.PtInRect({dab.x, dab.y}); });
    return shape;
}

void expectFill(Fill fill, int depth, const Corners& corners, const Shape& shape, const tagRECT* clip) {
    Canvas actual = newCanvas(depth), expected = newCanvas(depth);
    const XCRect area = clip ? XCRect(*clip) : XCRect(0, 0, cnSize.width, cnSize.height);
    paint(expected, clipped(shape, area));
    const XCPolyVertex polygon = listOf(corners);
    XCRect changed(-5, -5, -5, -5);
    const int result = (XCPolygon(&actual.mixer).*fill)(&changed, actual.image(), &polygon, clip);
    const bool meets =
        shape.bounds.IsIntersectRect(area) && shape.bounds.IsIntersectRect(XCRect(0, 0, cnSize.width, cnSize.height));
    EXPECT_EQ(result, int(meets));
    EXPECT_EQ(changed, meets ? shape.bounds : XCRect(-5, -5, -5, -5));
    EXPECT_TRUE(isSame(actual.pixels(), expected.pixels())) << depth << " bits, " << corners.size() << " corners";
}

TEST(XCPolygon, FillsWhatThePlainModelFills) {
    Random random(11);
    for (int i = 0; i < 80 && !HasFailure(); ++i) {
        const Corners corners = randomCorners(random, random.number(3, 12));
        const XCRect clip(random.number(0, 150), random.number(0, 150), random.number(151, 300),
                          random.number(151, 300));
        const tagRECT* const used = random.chance(2) ? &clip : nullptr;
        for (const int depth : cnAllDepths) {
            expectFill(&XCPolygon::DrawPolygon, depth, corners, evenOddPolygon(cnSize, corners), used);
            expectFill(&XCPolygon::DrawPolygonNonZero, depth, corners, nonZeroPolygon(cnSize, corners), used);
        }
        for (const int depth : {8, 24, 32})
            expectFill(&XCPolygon::DrawPolygonAA, depth, corners, softPolygon(cnSize, corners), used);
    }
}

TEST(XCPolygon, HandComputedCoverage) {
    // Left column: half of each of four sub-lines, 4 * 32 of 255; inside full; the last row two sub-lines of four.
    Canvas canvas = newCanvas(8);
    canvas.mixer.SetDrawCompositioin(XCFastPixelMixer::Replace); // writes the coverage itself
    canvas.mixer.SetColor(0xFF000000);
    const XCPolyVertex polygon = listOf({{10.5, 20}, {13, 20}, {13, 22.5}, {10.5, 22.5}});
    XCRect changed;
    ASSERT_EQ(XCPolygon(&canvas.mixer).DrawPolygonAA(&changed, canvas.image(), &polygon, nullptr), 1);
    EXPECT_EQ(changed, XCRect(10, 20, 14, 23));
    const unsigned expected[3][4] = {{128, 255, 255, 0}, {128, 255, 255, 0}, {64, 128, 128, 0}};
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 4; ++x)
            EXPECT_NEAR(double(canvas.testImage().value(10 + x, 20 + y)), expected[y][x], expected[y][x] % 255 ? 1 : 0)
                << x << ", " << y;
}

TEST(XCPolygon, HardFillTakesBothEndsOfASpan) {
    Canvas canvas = newCanvas(1);
    const XCPolyVertex polygon = listOf({{3, 4}, {6, 4}, {6, 6}, {3, 6}});
    ASSERT_EQ(XCPolygon(&canvas.mixer).DrawPolygon(nullptr, canvas.image(), &polygon, nullptr), 1);
    EXPECT_EQ(differenceOf(canvas.pixels(), newCanvas(1).pixels()), XCRect(3, 4, 7, 6));
}

/// A five-pointed star drawn in one stroke; its middle has a winding number of 2.
Corners star(double cx, double cy, double r) {
    Corners result;
    for (int i = 0; i < 5; ++i)
        result.push_back({cx + r * std::sin(i * 2 * cnTwoPi / 5), cy - r * std::cos(i * 2 * cnTwoPi / 5)});
    return result;
}

TEST(XCPolygon, OnlyTheNonZeroRuleFillsTheMiddleOfAStar) {
    const XCPolyVertex polygon = listOf(star(100.3, 100.2, 60));
    Canvas evenOdd = newCanvas(8), nonZero = newCanvas(8), soft = newCanvas(8);
    XCPolygon(&evenOdd.mixer).DrawPolygon(nullptr, evenOdd.image(), &polygon, nullptr);
    XCPolygon(&nonZero.mixer).DrawPolygonNonZero(nullptr, nonZero.image(), &polygon, nullptr);
    XCPolygon(&soft.mixer).DrawPolygonAA(nullptr, soft.image(), &polygon, nullptr);
    EXPECT_EQ(evenOdd.testImage().value(100, 100), 0u);
    EXPECT_NE(nonZero.testImage().value(100, 100), 0u);
    EXPECT_EQ(soft.testImage().value(100, 100), 0u);
    for (Canvas* canvas : {&evenOdd, &nonZero, &soft})
        EXPECT_NE(canvas->testImage().value(100, 50), 0u);
}

TEST(XCPolygon, SampleLinesThroughCorners) {
    // A row whose line meets the tip of a triangle counts two crossings there, and fills nothing.
    Canvas tip = newCanvas(8);
    const XCPolyVertex onTip = listOf({{10, 5.125}, {20, 9}, {2, 9}});
    XCPolygon(&tip.mixer).DrawPolygon(nullptr, tip.image(), &onTip, nullptr);
    EXPECT_EQ(differenceOf(tip.pixels(), newCanvas(8).pixels()).top, 6);
    // Where the outline goes on, both edges count: three crossings, and the row is lost.
    Canvas side = newCanvas(8);
    const XCPolyVertex onSide = listOf({{10, 2}, {20, 2}, {20, 9}, {10, 9}, {8, 5.125}});
    XCPolygon(&side.mixer).DrawPolygon(nullptr, side.image(), &onSide, nullptr);
    EXPECT_NE(side.testImage().value(15, 4), 0u);
    EXPECT_EQ(side.testImage().value(15, 5), 0u);
    EXPECT_NE(side.testImage().value(15, 6), 0u);
}

TEST(XCPolygon, TriangleFillsWhatThePolygonFills) {
    Random random(12);
    for (int i = 0; i < 40; ++i) {
        const Corners corners = randomCorners(random, 3);
        Canvas triangle = newCanvas(24), polygon = newCanvas(24);
        const TTrianglePos position{{corners[0], corners[1], corners[2]}};
        const XCPolyVertex list = listOf(corners);
        XCRect changed, expected;
        EXPECT_EQ(XCPolygon(&triangle.mixer).DrawTriangle(&changed, triangle.image(), &position),
                  XCPolygon(&polygon.mixer).DrawPolygon(&expected, polygon.image(), &list, nullptr));
        EXPECT_EQ(changed, expected);
        EXPECT_TRUE(isSame(triangle.pixels(), polygon.pixels()));
    }
    const TTrianglePos flatTop{{{4, 3}, {12, 3}, {8, 11}}};
    Canvas canvas = newCanvas(8);
    EXPECT_EQ(XCPolygon(&canvas.mixer).DrawTriangle(nullptr, canvas.image(), &flatTop), 1);
    EXPECT_NE(canvas.testImage().value(8, 3), 0u);
    const TTrianglePos outside{{{-40, -30}, {-12, -30}, {-8, -11}}};
    const Pixels before = canvas.pixels();
    EXPECT_EQ(XCPolygon(&canvas.mixer).DrawTriangle(nullptr, canvas.image(), &outside), 0);
    EXPECT_TRUE(isSame(canvas.pixels(), before));
}

TEST(XCPolygon, EllipsesArePolygonsOf32To512Corners) {
    struct Case {
        double width, height, angle;
        int corners;
    };
    // int(half the longer axis * 2 pi / 4)
    for (const Case& c : {Case{20, 8, 0.4, 32}, {60, 44, 2.0, 47}, {30, 81, -0.7, 63}, {900, 40, 0.2, 512}}) {
        Corners corners;
        for (int i = 0; i < c.corners; ++i) {
            const double x = c.width / 2 * std::cos(i * cnTwoPi / c.corners);
            const double y = c.height / 2 * std::sin(i * cnTwoPi / c.corners);
            corners.push_back({140.25 + x * std::cos(c.angle) - y * std::sin(c.angle),
                               130.75 + y * std::cos(c.angle) + x * std::sin(c.angle)});
        }
        for (const int antialias : {0, 1}) {
            Canvas actual = newCanvas(32), expected = newCanvas(32);
            const Shape shape = antialias ? softPolygon(cnSize, corners) : evenOddPolygon(cnSize, corners);
            paint(expected, shape);
            EXPECT_EQ(XCPolygon(&actual.mixer)
                          .DrawEllipse(nullptr, actual.image(), 140.25, 130.75, c.width, c.height, c.angle, antialias,
                                       nullptr),
                      1);
            EXPECT_TRUE(isSame(actual.pixels(), expected.pixels())) << c.corners << " corners";
        }
    }
    Canvas upright = newCanvas(8), turned = newCanvas(8);
    XCPolygon(&upright.mixer).DrawEllipse(nullptr, upright.image(), 50, 60, 40, 20, 1, nullptr);
    XCPolygon(&turned.mixer).DrawEllipse(nullptr, turned.image(), 50, 60, 40, 20, 0.0, 1, nullptr);
    EXPECT_TRUE(isSame(upright.pixels(), turned.pixels()));
}

/// A comb whose sample lines each meet `edges` edges.
Corners comb(int edges) {
    Corners result;
    for (int i = 0; i < edges; ++i)
        result.push_back({10.0 + i, i % 2 == 0 ? 8.0 : 40.0});
    if (edges % 2 == 0)
        return result;
    ADD_FAILURE() << "a closed outline meets a line an even number of times";
    return result;
}

TEST(XCPolygon, TooManyEdgesOnALineStopTheFill) {
    for (const Fill fill : {&XCPolygon::DrawPolygon, &XCPolygon::DrawPolygonNonZero, &XCPolygon::DrawPolygonAA}) {
        for (const int edges : {254, 256, 1000}) {
            const XCPolyVertex polygon = listOf(comb(edges));
            Canvas canvas = newCanvas(8);
            XCRect changed(-5, -5, -5, -5);
            EXPECT_EQ((XCPolygon(&canvas.mixer).*fill)(&changed, canvas.image(), &polygon, nullptr), int(edges < 256));
            EXPECT_EQ(changed == XCRect(-5, -5, -5, -5), edges >= 256);
            EXPECT_EQ(canvas.pixels() == newCanvas(8).pixels(), edges >= 256);
        }
    }
}

TEST(XCPolygon, RowsOfManyAndOfLongSpans) {
    Random random(13);
    Corners tangle;
    for (int i = 0; i < 200; ++i)
        tangle.push_back({random.real(240, 290), random.real(2, 50)});
    Corners pickets = comb(120);
    for (tagPOINTD& corner : pickets)
        corner.x *= 9.3;
    const struct {
        ImageSize image;
        Corners corners;
    } cases[] = {
        {{300, 60}, comb(254)},
        {{300, 60}, tangle},
        {{1400, 60}, pickets},
        {{300, 60}, {{10.2, 2}, {10.6, 2.3}, {10.4, 55}, {80, 58.5}, {10.3, 57}}},         // inside one pixel for long
        {{9000, 7}, {{3.3, 1.2}, {8990.7, 3.4}, {20.1, 5.9}, {8999.5, 4.1}, {4100, 0.3}}}, // thousands of pixels a row
        {{9000, 7}, {{-500, -3}, {20000, 4}, {9500, 90}}},
    };
    for (const auto& c : cases) {
        const XCPolyVertex polygon = listOf(c.corners);
        const auto expectPaint = [&](Fill fill, const Shape& shape) {
            Canvas actual(32, c.image.width, c.image.height), expected(32, c.image.width, c.image.height);
            paint(expected, shape);
            (XCPolygon(&actual.mixer).*fill)(nullptr, actual.image(), &polygon, nullptr);
            EXPECT_TRUE(isSame(actual.pixels(), expected.pixels())) << c.corners.size() << " corners";
        };
        expectPaint(&XCPolygon::DrawPolygonAA, softPolygon(c.image, c.corners));
        expectPaint(&XCPolygon::DrawPolygon, evenOddPolygon(c.image, c.corners));
        expectPaint(&XCPolygon::DrawPolygonNonZero, nonZeroPolygon(c.image, c.corners));
    }
}

TEST(XCPolygon, FewerThanThreeCornersHaveNoSoftFill) {
    Canvas canvas = newCanvas(8);
    for (const Corners& corners : {Corners{}, Corners{{5, 5}}, Corners{{5, 5}, {50, 60}}}) {
        const XCPolyVertex polygon = listOf(corners);
        EXPECT_EQ(XCPolygon(&canvas.mixer).DrawPolygonAA(nullptr, canvas.image(), &polygon, nullptr), 0);
        XCPolygon(&canvas.mixer).DrawPolygon(nullptr, canvas.image(), &polygon, nullptr);
        XCPolygon(&canvas.mixer).DrawPolygonNonZero(nullptr, canvas.image(), &polygon, nullptr);
    }
    EXPECT_TRUE(isSame(canvas.pixels(), newCanvas(8).pixels()));
}

TEST(XCPolygon, FarAwayAndImpossibleCornersAreHarmless) {
    const double nan = std::numeric_limits<double>::quiet_NaN(), infinity = std::numeric_limits<double>::infinity();
    for (const Fill fill : {&XCPolygon::DrawPolygon, &XCPolygon::DrawPolygonNonZero, &XCPolygon::DrawPolygonAA}) {
        for (const double bad : {nan, infinity, -infinity}) {
            const XCPolyVertex polygon = listOf({{10, 10}, {bad, 20}, {30, bad}});
            Canvas canvas = newCanvas(8);
            EXPECT_EQ((XCPolygon(&canvas.mixer).*fill)(nullptr, canvas.image(), &polygon, nullptr), 0);
            EXPECT_TRUE(isSame(canvas.pixels(), newCanvas(8).pixels()));
        }
        // Beyond 32 bits: the whole image lies inside.
        const XCPolyVertex polygon = listOf({{-1e15, -1e15}, {1e15, -1e15}, {1e15, 1e15}, {-1e15, 1e15}});
        Canvas canvas = newCanvas(8);
        EXPECT_EQ((XCPolygon(&canvas.mixer).*fill)(nullptr, canvas.image(), &polygon, nullptr), 1);
        const Pixels pixels = canvas.pixels();
        EXPECT_EQ(std::set<std::uint32_t>(pixels.values.begin(), pixels.values.end()).size(), 1u);
        EXPECT_NE(pixels.at(0, 0), 0u);
    }
}

TEST(XCPolyVertex, HoldsItsVertices) {
    XCPolyVertex list;
    tagRECT box{1, 2, 3, 4};
    list.PolygonBox(&box);
    EXPECT_EQ(XCRect(box), XCRect(0, 0, 0, 0));
    EXPECT_EQ(list.Add(2.9, -3.9), 1);
    EXPECT_EQ(list.Add(-0.5, 7.5), 1);
    EXPECT_EQ(list.Num(), 2);
    list.PolygonBox(&box);
    EXPECT_EQ(XCRect(box), XCRect(0, -3, 2, 7));
    XCPolyVertex copy(list);
    list.Clear();
    EXPECT_EQ(list.Num(), 0);
    tagPOINTD* vertex = nullptr;
    EXPECT_EQ(copy.Get(&vertex, 1), 1);
    ASSERT_NE(vertex, nullptr);
    EXPECT_EQ(vertex->y, 7.5);
    for (const int outside : {-1, 2}) {
        EXPECT_EQ(copy.Get(&vertex, outside), 0);
        EXPECT_EQ(vertex, nullptr);
    }
}

} // namespace
