#include "ovwcmn/xcstroke.h"

#include "ovwcmn/xcgeometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <vector>

namespace {

constexpr double cnPi = 3.14159265358979323846;
constexpr double cnDegree = cnPi / 180;

XCStrokePoint at(double x, double y, float pressure = 1.0f) {
    XCStrokePoint point;
    point.x = x;
    point.y = y;
    point.pressure = pressure;
    return point;
}

std::vector<XCStrokePoint> verticesOf(XCStroke& stroke, double* length, int consume) {
    XCTArray<XCStrokePoint> vertices;
    stroke.CreateVertex(vertices, length, consume);
    return {vertices.begin(), vertices.end()};
}

std::vector<double> xOf(const std::vector<XCStrokePoint>& vertices) {
    std::vector<double> result;
    for (const XCStrokePoint& vertex : vertices)
        result.push_back(vertex.x);
    return result;
}

void expectSamePoint(const XCStrokePoint& a, const XCStrokePoint& b) {
    EXPECT_DOUBLE_EQ(a.x, b.x);
    EXPECT_DOUBLE_EQ(a.y, b.y);
    EXPECT_FLOAT_EQ(a.pressure, b.pressure);
    EXPECT_FLOAT_EQ(a.angleA, b.angleA);
    EXPECT_FLOAT_EQ(a.auxScale, b.auxScale);
    EXPECT_FLOAT_EQ(a.angleB, b.angleB);
    EXPECT_FLOAT_EQ(a.speed, b.speed);
}

TEST(XCStroke, InterpolatesEveryFieldWithoutClamping) {
    const XCStrokePoint a{0, 10, 0.5f, 10, 0, 90, 0.25f}, b{8, 30, 1.0f, 50, 1, 10, 0.75f};
    XCStrokePoint point;
    XCStroke::GetInterlatePoint(&point, 0.25, &a, &b);
    expectSamePoint(point, {2, 15, 0.625f, 20, 0.25f, 70, 0.375f});
    XCStroke::GetInterlatePoint(&point, 1.5, &a, &b);
    expectSamePoint(point, {12, 40, 1.25f, 70, 1.5f, -30, 1.0f});
    point = b;
    XCStroke::GetInterlatePoint(&point, -0.5, &a, &point);
    expectSamePoint(point, {-4, 0, 0.25f, -10, -0.5f, 130, 0});
}

TEST(XCStroke, LengthAndVelocity) {
    const XCStrokePoint a = at(1, 2), b = at(4, -2);
    EXPECT_DOUBLE_EQ(XCStroke::GetPointLength(&a, &b), 5);
    EXPECT_EQ(XCStroke::GetStrokeVelocity(10, 0), 0.0);
    EXPECT_EQ(XCStroke::GetStrokeVelocity(10, -3), 0.0);
    EXPECT_EQ(XCStroke::GetStrokeVelocity(10, 5), 1.0);
    EXPECT_EQ(XCStroke::GetStrokeVelocity(3, 6), 0.5);
    EXPECT_EQ(XCStroke::GetStrokeVelocity(-3, 6), 0.0);
}

/// A point `length` away in a direction of `degrees`, 0 being up on the screen and 90 right.
XCStrokePoint toward(double degrees, double length) {
    return at(length * std::sin(degrees * cnDegree), -length * std::cos(degrees * cnDegree));
}

struct Turn {
    double previous, toward, length; // degrees, logical units
    int raw;
    double expected;
};

const Turn s_turns[] = {
    {77, 0, 10, 1, 0},       // up
    {77, 90, 10, 1, 90},     // right
    {77, 180, 10, 1, 180},   // down
    {77, 270, 10, 1, 270},   // left
    {40, 43, 100, 0, 40},    // small wobble
    {40, 35.5, 100, 0, 40},  // to the other side
    {40, 43, 100, 1, 43},    // unless raw
    {10, 130, 1, 0, 130},    // sharp turns at once
    {10, 260, 1, 0, 260},    // the short way is 110 degrees
    {40, 50.5, 4.9, 0, 44},  // a degree a unit of length
    {40, 50.5, 0.3, 0, 41},  // at least one
    {40, 50.5, 1000, 0, 50}, // at most what is whole of the turn
    {40, 29.5, 3, 0, 37},    // left
    {1, 350.5, 3, 0, 358},   // through 0
    {359, 9.5, 2, 0, 1},     // and back
    {40, 129.9, 2.5, 0, 42}, // just below a right angle
    {40, 45.2, 2.5, 0, 42},  // just above the wobble
};

TEST(XCStroke, DirectionFollowsByADegreeAUnit) {
    const XCStrokePoint origin = at(0, 0);
    for (const Turn& turn : s_turns) {
        const XCStrokePoint end = toward(turn.toward, turn.length);
        const double result = XCStroke::GetStrokeDirection(&origin, &end, turn.previous * cnDegree, turn.raw);
        EXPECT_NEAR(std::remainder(result / cnDegree - turn.expected, 360), 0, 1e-6)
            << turn.previous << " to " << turn.toward << " over " << turn.length;
        EXPECT_GE(result, 0);
        EXPECT_LT(result, 2 * cnPi);
    }
    for (const int raw : {0, 1})
        EXPECT_EQ(XCStroke::GetStrokeDirection(&origin, &origin, 1.25, raw), 1.25);
}

TEST(XCLinerStroke, HandsOutItsSamplesAndHoldsTheLast) {
    XCLinerStroke stroke;
    stroke.FirstStore(at(0, 0));
    stroke.Store(at(3, 4));
    stroke.Store(at(3, 10));
    double length = -1;
    for (int pass = 0; pass < 2; ++pass) { // they stay
        EXPECT_EQ(xOf(verticesOf(stroke, &length, 0)), (std::vector<double>{0, 3, 3}));
        EXPECT_EQ(length, 11);
    }
    EXPECT_EQ(verticesOf(stroke, nullptr, 1).size(), 3u);
    // Only the held point is left; consuming nothing keeps it.
    EXPECT_EQ(xOf(verticesOf(stroke, &length, 1)), (std::vector<double>{3}));
    EXPECT_EQ(length, 0);
    stroke.Store(at(100, 10));
    stroke.Store(at(102, 10));
    EXPECT_EQ(xOf(verticesOf(stroke, &length, 1)), (std::vector<double>{3, 100, 102}));
    EXPECT_EQ(length, 2); // the way from the held point is not counted
    EXPECT_EQ(xOf(verticesOf(stroke, nullptr, 0)), (std::vector<double>{102}));
    stroke.Clear();
    EXPECT_TRUE(verticesOf(stroke, &length, 1).empty());
    stroke.Store(at(7, 7));
    verticesOf(stroke, nullptr, 1);
    stroke.FirstStore(at(9, 9));
    EXPECT_EQ(xOf(verticesOf(stroke, nullptr, 0)), (std::vector<double>{9}));
}

TEST(XCLinerStroke, AppendsAndHoldsWhatTheCallerHadToo) {
    XCLinerStroke stroke;
    stroke.FirstStore(at(1, 0, 0.5f));
    XCTArray<XCStrokePoint> vertices;
    vertices.PushBack(at(-1, 0));
    stroke.CreateVertex(vertices, nullptr, 1);
    ASSERT_EQ(vertices.GetSize(), 2);
    EXPECT_EQ(vertices[1].pressure, 0.5f);
    XCLinerStroke copy(stroke);
    EXPECT_EQ(xOf(verticesOf(copy, nullptr, 0)), (std::vector<double>{1}));
}

TEST(XCBezierStroke, FirstPointIsOneVertex) {
    XCBezierStroke stroke;
    const XCStrokePoint first{5, 6, 0.25f, 30, 0.5f, 60, 0.75f};
    stroke.FirstStore(first);
    double length = -1;
    const std::vector<XCStrokePoint> vertices = verticesOf(stroke, &length, 0);
    ASSERT_EQ(vertices.size(), 1u);
    expectSamePoint(vertices[0], first);
    EXPECT_EQ(length, 0);
}

/// A segment along x whose speed is 0 at both ends; its chords are exact in doubles.
void storeStraight(XCStroke& stroke, double from, double to, double y) {
    stroke.Store(at(from, y));
    stroke.Store(at(to, y));
    stroke.Store(at(to, y));
}

double straight(double from, double to, double t) { return from + (to - from) * (3 * t * t - 2 * t * t * t); }

TEST(XCBezierStroke, VerticesLieFiveUnitsApartAndSegmentsJoin) {
    XCBezierStroke stroke;
    stroke.FirstStore(at(0, 3));
    storeStraight(stroke, 0, 100, 3);
    storeStraight(stroke, 100, 80, 3);
    double length = 0;
    const std::vector<XCStrokePoint> vertices = verticesOf(stroke, &length, 1);
    EXPECT_EQ(length, 120);
    ASSERT_EQ(vertices.size(), 1u + 20u + 4u);
    for (int i = 0; i < 20; ++i)
        EXPECT_NEAR(vertices[std::size_t(1 + i)].x, straight(0, 100, i * 0.05), 1e-9);
    for (int i = 0; i < 4; ++i)
        EXPECT_NEAR(vertices[std::size_t(21 + i)].x, straight(100, 80, i * 0.25), 1e-9);
    EXPECT_EQ(vertices[24].y, 3);
    // The next pass begins with the last vertex, and goes on from the end point.
    storeStraight(stroke, 80, 90, 3);
    const std::vector<XCStrokePoint> next = verticesOf(stroke, &length, 1);
    EXPECT_EQ(length, 10);
    ASSERT_EQ(next.size(), 1u + 2u);
    expectSamePoint(next[0], vertices[24]);
    EXPECT_EQ(next[1].x, 80);
    EXPECT_EQ(next[2].x, 85);
}

TEST(XCBezierStroke, EveryFieldFollowsItsCurve) {
    const XCStrokePoint p[4] = {{0, 0, 0, 10, 1, 0, 0.5f},
                                {0, 0, 1, 20, 0, 0, 0.5f},
                                {40, 0, 0.5f, 80, 0.5f, 0, 0.5f},
                                {40, 0, 0.25f, 0, 1, 8, 0.5f}};
    XCBezierStroke stroke;
    stroke.FirstStore(p[0]);
    for (int i = 1; i < 4; ++i)
        stroke.Store(p[i]);
    const std::vector<XCStrokePoint> vertices = verticesOf(stroke, nullptr, 0);
    ASSERT_EQ(vertices.size(), 9u);
    for (int i = 0; i < 8; ++i) {
        const double t = i / 8.0, u = 1 - t;
        auto curve = [&](double a, double b, double c, double d) {
            return u * u * u * a + 3 * u * u * t * b + 3 * u * t * t * c + t * t * t * d;
        };
        const XCStrokePoint& v = vertices[std::size_t(1 + i)];
        EXPECT_NEAR(v.x, curve(0, 0, 40, 40), 1e-9);
        EXPECT_NEAR(v.pressure, curve(0, 1, 0.5, 0.25), 1e-6);
        EXPECT_NEAR(v.angleA, curve(10, 20, 80, 0), 1e-4);
        EXPECT_NEAR(v.auxScale, curve(1, 0, 0.5, 1), 1e-6);
        EXPECT_NEAR(v.angleB, curve(0, 0, 0, 8), 1e-5);
        EXPECT_EQ(v.speed, 0.5f);
    }
}

TEST(XCBezierStroke, ConsumingDropsAPartialTriple) {
    XCBezierStroke stroke;
    stroke.FirstStore(at(0, 0));
    storeStraight(stroke, 0, 10, 0);
    stroke.Store(at(500, 500));
    stroke.Store(at(600, 600));
    EXPECT_EQ(verticesOf(stroke, nullptr, 1).size(), 3u);
    storeStraight(stroke, 10, 20, 0);
    EXPECT_EQ(xOf(verticesOf(stroke, nullptr, 1)), (std::vector<double>{5, 10, 15}));
    stroke.Clear();
    EXPECT_TRUE(verticesOf(stroke, nullptr, 1).empty());
    // Clearing keeps the end point.
    storeStraight(stroke, 20, 30, 0);
    EXPECT_EQ(xOf(verticesOf(stroke, nullptr, 1)), (std::vector<double>{20, 25}));
}

TEST(XCBezierStroke, EndlessSegmentsHaveBoundedVertices) {
    const double nan = std::numeric_limits<double>::quiet_NaN(), infinity = std::numeric_limits<double>::infinity();
    for (const double end : {nan, infinity, -infinity, 1e300}) {
        XCBezierStroke stroke;
        stroke.FirstStore(at(0, 0));
        storeStraight(stroke, 0, end, 0);
        double length = 0;
        const std::vector<XCStrokePoint> vertices = verticesOf(stroke, &length, 1);
        if (!std::isfinite(end)) {
            EXPECT_EQ(vertices.size(), 2u);
            EXPECT_EQ(length, 0);
        }
        EXPECT_LT(vertices.size(), 10000000u);
        // The stroke goes on.
        storeStraight(stroke, 0, 10, 0);
        EXPECT_GE(verticesOf(stroke, nullptr, 1).size(), 2u);
    }
}

TEST(XCBezierStroke, PreviewIsAnSInTheRectangle) {
    const XCRect area(21, 20, 181, 180); // margin 10, amplitude 20, centre (101, 100)
    XCBezierStroke preview, expected;
    preview.Store(at(5, 5));
    preview.CreatePreview(area);
    expected.FirstStore(at(31, 110, 0.01f));
    expected.Store(at(40, 90, 0.4f));
    expected.Store(at(70, 80, 0.8f));
    expected.Store(at(101, 100, 1.0f));
    expected.Store(at(131, 120, 0.8f));
    expected.Store(at(161, 110, 0.4f));
    expected.Store(at(171, 90, 0.01f));
    double length = 0, expectedLength = 0;
    const auto vertices = verticesOf(preview, &length, 0), right = verticesOf(expected, &expectedLength, 0);
    EXPECT_DOUBLE_EQ(length, expectedLength);
    ASSERT_EQ(vertices.size(), right.size());
    for (std::size_t i = 0; i < right.size(); ++i)
        expectSamePoint(vertices[i], right[i]);
    preview.CreatePreview(XCRect(0, 0, 16, 12)); // a low one: amplitude 3, margin 1
    EXPECT_EQ(verticesOf(preview, nullptr, 0)[0].x, 1);
    EXPECT_EQ(verticesOf(preview, nullptr, 0)[0].y, 7);
}

} // namespace
