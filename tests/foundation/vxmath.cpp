#include "ovwcmn/vxmath.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

namespace {

constexpr int cnLeast = std::numeric_limits<int>::min();
constexpr int cnGreatest = std::numeric_limits<int>::max();
constexpr double cnPi = 3.14159265358979323846;
constexpr double cnNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double cnInfinity = std::numeric_limits<double>::infinity();

TEST(VxRounding, HalvesGoAwayFromZeroAndRangesClamp) {
    const struct {
        double value;
        int nearest, up, forgiving;
    } cases[] = {
        {2.5, 3, 3, 2},
        {-2.5, -3, -3, -2},
        {2.49, 2, 2, 2},
        {2.999999, 3, 3, 3},
        {-2.999999, -3, -3, -3},
        {2.99, 3, 3, 2},
        {-2.99, -3, -3, -2},
        {-0.4, 0, 0, 0},
        {1e10, cnGreatest, cnGreatest, cnGreatest},
        {-1e10, cnLeast, cnLeast, cnLeast},
        {cnInfinity, cnGreatest, cnGreatest, cnGreatest},
        {cnNaN, 0, 0, 0},
        {2147483646.5, cnGreatest, cnGreatest, 2147483646},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(vxDouble2Int(c.value), c.nearest) << c.value;
        EXPECT_EQ(vxDoubleToIntRoundingUp(c.value), c.up) << c.value;
        EXPECT_EQ(vxDoubleToInt(c.value), c.forgiving) << c.value;
    }
    EXPECT_EQ(vxDouble2Int(std::nextafter(0.5, 0)), 0); // adding 0.5 in double would give 1
    EXPECT_EQ(vxDouble2Short(32767.5), 32767);
    EXPECT_EQ(vxDouble2Short(-1e9), -32768);
    EXPECT_EQ(vxDouble2Short(-0.5), -1);
}

TEST(VxRounding, RemaindersKeepTheSignAndTheFraction) {
    EXPECT_EQ(vxGetDoubleRemain(7.25, 3), 1.25);
    EXPECT_EQ(vxGetDoubleRemain(-7.25, 3), -1.25);
    EXPECT_EQ(vxGetDoubleRemain(7.25, -3), 1.25);
    EXPECT_EQ(vxGetDoubleRemain(7.25, 0), 7.25);
    EXPECT_EQ(vxGetDoubleRemain(cnLeast, -1), 0);
    EXPECT_EQ(vxGetDoubleRemain(1e12 + 0.5, 7), 1.5);
}

TEST(VxRounding, QuotientsByNearlyNothingAreNothing) {
    EXPECT_EQ(vxMulDivDToD(6, 4, 8), 3);
    EXPECT_EQ(vxMulDivDToD(1, 1e-08, 1e-08), 1);
    for (const double c : {0.0, 0.9e-08, -0.9e-08})
        EXPECT_EQ(vxMulDivDToD(1, 1, c), 0);
    EXPECT_EQ(vxMulDivDToI(-1, 5, 2), -3);
    EXPECT_EQ(vxMulDivDToI(1e9, 1e9, 1), cnGreatest);
    EXPECT_EQ(vxGet2PointsToLineY(4, 1, 10, 3, 20), 25);
    EXPECT_EQ(vxGet2PointsToLineY(4, 3, 10, 3, 20), 10);
    EXPECT_EQ(vxSgn(cnLeast), -1);
    EXPECT_EQ(vxSgnf(-1e-300), -1.0);
    EXPECT_EQ(vxSgnf(0.0), 0.0);
}

TEST(VxAngles, DirectionsTurnCounterClockwiseOnScreen) {
    const struct {
        int x1, y1, x2, y2, expected;
    } cases[] = {
        {0, 0, 0, -5, 1024},
        {0, 0, 0, 5, 3072},
        {0, 0, -5, 0, 2048},
        {0, 0, 5, 0, 0},
        {0, 0, 3, -3, 512},
        {7, 7, 7, 7, 0},
        {0, 0, 100, -1, 6},
        {0, 0, 100, 1, 4089},
        {0, 0, -100, 1, 2054},
        {5, 6, 105, 5, 6},
        {cnLeast, 0, cnGreatest, 1, 4095},
    };
    for (const auto& c : cases)
        EXPECT_EQ(vxRotCalcInteger(c.x1, c.y1, c.x2, c.y2), c.expected) << c.x2 << ',' << c.y2;
    EXPECT_NEAR(vxRotCalc(0, 0, 0, -5), cnPi / 2, 1e-15);
    EXPECT_NEAR(vxRotCalc(1, 1, 0, 2), 1.25 * cnPi, 1e-15);
    EXPECT_EQ(vxRotCalc(2, 2, 2, 2), 0);
    EXPECT_EQ(vxPointLengthInteger(cnLeast, 0, cnGreatest, 0), 4294967295.0);
    EXPECT_EQ(vxPointLengthDouble(1, 1, 4, 5), 5);
}

TEST(VxAngles, AreBroughtIntoOneTurn) {
    const int integers[][2] = {{-1, 4095}, {-4096, 0}, {4097, 1}, {cnLeast, 0}, {cnGreatest, 4095}, {-4097, 4095}};
    for (const auto& [angle, expected] : integers)
        EXPECT_EQ(vxRotNormalInteger(angle), expected) << angle;
    EXPECT_NEAR(vxRotNormal(-cnPi / 2), 1.5 * cnPi, 1e-15);
    EXPECT_NEAR(vxRotNormal(7 * cnPi), cnPi, 1e-14);
    // A tiny negative angle plus a full turn would round to the full turn.
    for (const double angle : {-1e-20, 2 * cnPi, -2 * cnPi, 1e6, -1e6}) {
        EXPECT_GE(vxRotNormal(angle), 0) << angle;
        EXPECT_LT(vxRotNormal(angle), 6.283185307179586) << angle;
    }
}

TEST(VxAngles, ShortestTurnsAreSigned) {
    const struct {
        int from, to, expected;
    } cases[] = {{4000, 100, 196}, {100, 4000, -196}, {0, 2048, 2048},
                 {2048, 0, -2048}, {0, 2049, -2047},  {30, 20, -10}};
    for (const auto& c : cases) {
        EXPECT_EQ(vxRotOffCalcInteger(c.from, c.to), c.expected);
        EXPECT_NEAR(vxRotOffCalc(c.from * cnPi / 2048, c.to * cnPi / 2048), c.expected * cnPi / 2048, 1e-12);
    }
    const struct {
        int a1, a2, div, expected;
    } averages[] = {{4000, 100, 2, 2},  {100, 4000, 2, 2},  {0, 3, 2, 1},      {3, 0, 2, 2},
                    {0, 100, -2, 4046}, {-1, 100, 0, 4095}, {0, 2048, 2, 1024}};
    for (const auto& c : averages)
        EXPECT_EQ(vxRotAverageInteger(c.a1, c.a2, c.div), c.expected) << c.a1 << ',' << c.a2;
    const double gaps[][3] = {{350, 10, 20}, {-10, 10, 20}, {0, 180, 180}, {0, 190, 170}, {370, 5, 5}, {-350, 365, 5}};
    for (const auto& [a, b, expected] : gaps)
        EXPECT_DOUBLE_EQ(vxDegreeGap(a, b), expected);
}

TEST(VxAngles, SinesAndCosinesOfEveryTurn) {
    for (const double degrees : {-90.0, 270.0, -450.0, 630.0, 3600270.0}) {
        double s = 5, c = 5;
        vxDegreeSinCos(degrees, &s, &c);
        EXPECT_NEAR(s, -1, 1e-12) << degrees;
        EXPECT_NEAR(c, 0, 1e-12) << degrees;
    }
    double s = 5, c = 5;
    vxRadianSinCos(-cnPi / 6, &s, &c);
    EXPECT_NEAR(s, -0.5, 1e-15);
    EXPECT_NEAR(c, std::sqrt(0.75), 1e-15);
}

TEST(VxAngles, StepLineSnapsToTheNearestEighthOfATurn) {
    const struct {
        int x2, y2;
        tagPOINT expected;
    } cases[] = {
        {10, -9, {10, -10}}, {10, -1, {10, 0}}, {10, 1, {10, 0}},   {0, 7, {0, 7}},
        {-8, 7, {-8, 8}},    {-9, -1, {-9, 0}}, {1, -20, {0, -20}}, {0, 0, {0, 0}},
    };
    for (const auto& c : cases) {
        const tagPOINT end = vxStepLineCalc(100, 200, 100 + c.x2, 200 + c.y2);
        EXPECT_EQ(end.x, 100 + c.expected.x) << c.x2 << ',' << c.y2;
        EXPECT_EQ(end.y, 200 + c.expected.y) << c.x2 << ',' << c.y2;
    }
}

// What the results are matters less than that they are defined: the undefined-behaviour sanitizer watches.
TEST(VxAngles, ExtremeArgumentsAreDefined) {
    tagPOINT points[3];
    for (const int a : {cnLeast, 0, cnGreatest}) {
        for (const int b : {cnLeast, 0, cnGreatest}) {
            EXPECT_EQ(vxRotAverageInteger(a, b, -1) & ~4095, 0);
            EXPECT_EQ(vxRotCalcInteger(a, b, b, a) & ~4095, 0);
            vxRotOffCalcInteger(a, b);
            vxStepLineCalc(a, b, b, a);
            vxGetEllipsePoint(a, b, b, a, 1e300, points, 3);
        }
    }
    vxGetEllipsePoint(0, 0, 1, 1, 0, nullptr, 0);
    EXPECT_EQ(vxRotNormal(cnInfinity), 0);
}

struct Foot {
    const char* name;
    tagPOINTD p, a, b;
    double x, y, t, distance;
};

void expectFoot(const Foot& c, double (*function)(tagPOINTD, tagPOINTD, tagPOINTD, tagPOINTD*, double*)) {
    tagPOINTD foot{-1, -1};
    double t = -1;
    EXPECT_NEAR(function(c.p, c.a, c.b, &foot, &t), c.distance, 1e-8) << c.name;
    EXPECT_NEAR(foot.x, c.x, 1e-8) << c.name;
    EXPECT_NEAR(foot.y, c.y, 1e-8) << c.name;
    EXPECT_NEAR(t, c.t, 1e-8) << c.name;
    EXPECT_NEAR(function(c.p, c.a, c.b, &foot, nullptr), c.distance, 1e-8) << c.name;
}

TEST(VxLines, NearestPointOfASegment) {
    const Foot cases[] = {
        {"inside", {4, 3}, {0, 0}, {10, 0}, 4, 0, 0.4, 3},
        {"beyond b", {13, 4}, {0, 0}, {10, 0}, 10, 0, 1, 5},
        {"before a", {-3, 4}, {0, 0}, {10, 0}, 0, 0, 0, 5},
        {"slanted", {0, 2}, {0, 0}, {2, 2}, 1, 1, 0.5, std::sqrt(2)},
        {"no segment", {3, 4}, {0, 0}, {0.00001, 0}, 0, 0, 0, 5},
    };
    for (const Foot& c : cases)
        expectFoot(c, vxPtPosOnLine);
    EXPECT_EQ(vxPtPosOnLine({3, 4}, {0, 0}, {0, 0}, nullptr, nullptr), 5);
}

TEST(VxLines, NearestPointOfALine) {
    const Foot cases[] = {
        {"inside", {4, 3}, {0, 0}, {10, 0}, 4, 0, 0.4, 3},
        {"horizontal beyond b", {15, 3}, {0, 0}, {10, 0}, 15, 0, 1.5, 3},
        {"horizontal before a", {-5, 3}, {0, 0}, {10, 0}, -5, 0, -0.5, 3},
        {"vertical before a", {3, 15}, {0, 10}, {0, 0}, 0, 15, -0.5, 3},
        {"slanted beyond b", {16, 14}, {0, 0}, {10, 10}, 15, 15, 1.5, std::sqrt(2)},
        {"slanted before a", {-4, -6}, {0, 0}, {10, 10}, -5, -5, -0.5, std::sqrt(2)},
        {"far away", {3000016, 3000014}, {3e6, 3e6}, {3000010, 3000010}, 3000015, 3000015, 1.5, std::sqrt(2)},
        {"no segment", {3, 4}, {0, 0}, {0, 0}, 0, 0, 0, 5},
    };
    for (const Foot& c : cases)
        expectFoot(c, vxPtPosOnLine2);
    // Without a foot the line is not extended.
    EXPECT_EQ(vxPtPosOnLine2({13, 4}, {0, 0}, {10, 0}, nullptr, nullptr), 5);
}

struct Crossing {
    const char* name;
    tagPOINTD p1, p2, p3, p4;
    int answer;
    double x, y;
};

void expectCrossing(const Crossing& c, int (*function)(tagPOINTD, tagPOINTD, tagPOINTD, tagPOINTD, tagPOINTD*)) {
    tagPOINTD out{-77, -77};
    EXPECT_EQ(function(c.p1, c.p2, c.p3, c.p4, &out), c.answer) << c.name;
    EXPECT_NEAR(out.x, c.answer ? c.x : -77, 1e-6 * std::max(1.0, std::abs(c.x))) << c.name;
    EXPECT_NEAR(out.y, c.answer ? c.y : -77, 1e-6 * std::max(1.0, std::abs(c.y))) << c.name;
}

TEST(VxLines, SegmentsCrossEndsIncluded) {
    const Crossing cases[] = {
        {"middle", {0, 0}, {10, 10}, {0, 10}, {10, 0}, 1, 5, 5},
        {"third of one, half of the other", {0, 0}, {3, 3}, {0, 2}, {2, 0}, 1, 1, 1},
        {"touching ends", {0, 0}, {5, 5}, {5, 5}, {9, 0}, 1, 5, 5},
        {"end on the middle", {0, 0}, {5, 5}, {0, 10}, {10, 0}, 1, 5, 5},
        {"just missing", {0, 0}, {4.999, 4.999}, {0, 10}, {10, 0}, 0, 0, 0},
        {"parallel", {0, 0}, {5, 5}, {1, 0}, {6, 5}, 0, 0, 0},
        {"on each other", {0, 0}, {5, 5}, {1, 1}, {4, 4}, 0, 0, 0},
    };
    for (const Crossing& c : cases)
        expectCrossing(c, vxCrossLinePoint);
}

TEST(VxLines, AxisParallelSegmentsComeFirst) {
    const Crossing cases[] = {
        {"vertical meets horizontal anywhere", {5, 0}, {5, 1}, {0, 10}, {10, 10}, 1, 5, 10},
        {"low end excluded", {0, 0}, {0, 20}, {0, 10}, {10, 10}, 0, 0, 0},
        {"high end included", {10, 0}, {10, 20}, {0, 10}, {10, 10}, 1, 10, 10},
        {"order of the ends is free", {10, 0}, {10, 20}, {10, 10}, {0, 10}, 1, 10, 10},
        {"out of range", {11, 0}, {11, 20}, {0, 10}, {10, 10}, 0, 0, 0},
        {"compared in whole units", {5.2, 0}, {4.9, 20}, {0, 10.1}, {10, 9.9}, 1, 5.2, 10.1},
        {"vertical meets slanted", {5, 0}, {5, 10}, {0, 0}, {10, 10}, 1, 5, 5},
        {"vertical misses slanted", {5, 6}, {5, 10}, {0, 0}, {10, 10}, 0, 0, 0},
        {"horizontal meets vertical anywhere", {0, 5}, {1, 5}, {10, 0}, {10, 10}, 1, 10, 5},
        {"horizontal, low end excluded", {0, 0}, {20, 0}, {10, 0}, {10, 10}, 0, 0, 0},
        {"line reaches vertical", {0, 0}, {2, 2}, {5, 0}, {5, 10}, 1, 5, 5},
        {"line passes vertical", {0, 0}, {2, 2}, {5, 0}, {5, 4}, 0, 0, 0},
        {"slanted both", {0, 0}, {10, 10}, {0, 10}, {10, 0}, 1, 5, 5},
        {"slanted both, too short", {0, 0}, {4, 4}, {0, 10}, {10, 0}, 0, 0, 0},
    };
    for (const Crossing& c : cases)
        expectCrossing(c, vxCrossLinePoint2);
}

TEST(VxLines, InfiniteLinesCrossUnlessParallel) {
    const Crossing cases[] = {
        {"slanted", {0, 0}, {1, 1}, {10, 0}, {9, 1}, 1, 5, 5},
        {"vertical and slanted", {5, 0}, {5, 1}, {0, 0}, {1, 2}, 1, 5, 10},
        {"slanted and horizontal", {0, 0}, {1, 2}, {100, 8}, {101, 8}, 1, 4, 8},
        {"horizontal and vertical", {0, 3}, {1, 3}, {7, 50}, {7, 60}, 1, 7, 3},
        {"parallel", {0, 0}, {1, 2}, {5, 0}, {6, 2}, 0, 0, 0},
        {"both vertical", {0, 0}, {0, 2}, {5, 0}, {5, 2}, 0, 0, 0},
        {"both horizontal", {0, 0}, {2, 0}, {5, 1}, {9, 1}, 0, 0, 0},
        {"no direction", {3, 3}, {3, 3}, {0, 0}, {1, 2}, 0, 0, 0},
        {"far away", {3e6, 0}, {3e6, 10}, {0, 5}, {10, 5}, 1, 3e6, 5},
        {"far and steep", {4e6, 0}, {4e6 + 10, 40}, {4e6, 40}, {4e6 + 10, 0}, 1, 4e6 + 5, 20},
        {"steep slopes", {0, 0}, {0.01, 40000}, {1, 0}, {1.01, 80000}, 1, 2, 8e6},
    };
    for (const Crossing& c : cases)
        expectCrossing(c, vxCrossLinePoint3);
    EXPECT_EQ(vxCrossLinePoint3({0, 0}, {1, 1}, {10, 0}, {9, 1}, nullptr), 1);
}

TEST(VxLines, SegmentsCrossClosedPolygons) {
    const tagPOINT square[] = {{0, 0}, {10, 0}, {10, 10}, {0, 10}};
    const struct {
        tagPOINTD a, b;
        int excludeA, excludeB, n, answer;
        double x, y;
    } cases[] = {
        {{5, 5}, {15, 5}, 0, 0, 4, 1, 10, 5}, {{5, 5}, {15, 5}, 1, 0, 4, 0, 0, 0},
        {{-30, 5}, {5, 5}, 0, 0, 4, 1, 0, 5}, // the closing edge
        {{-30, 5}, {5, 5}, 1, 0, 4, 1, 0, 5}, // a is farther than the edge is long
        {{-30, 5}, {5, 5}, 0, 1, 4, 0, 0, 0}, {{2, 2}, {8, 8}, 0, 0, 4, 0, 0, 0},
        {{5, 5}, {15, 5}, 0, 0, 1, 0, 0, 0},  {{5, 5}, {15, 5}, 0, 0, 0, 0, 0, 0},
    };
    for (const auto& c : cases) {
        tagPOINTD out{-77, -77};
        EXPECT_EQ(vxCrossSegmentAndPoly(square, c.n, c.a, c.b, c.excludeA, c.excludeB, &out), c.answer);
        EXPECT_NEAR(out.x, c.answer ? c.x : -77, 1e-12);
        EXPECT_NEAR(out.y, c.answer ? c.y : -77, 1e-12);
    }
}

TEST(VxEllipses, PointsRunCounterClockwiseFromTheRight) {
    const tagPOINT upright[] = {{20, 5}, {10, 0}, {0, 5}, {10, 10}};
    const tagPOINT turned[] = {{10, -5}, {5, 5}, {10, 15}, {15, 5}};
    tagPOINT points[4];
    vxGetEllipsePoint(20, 10, 0, 0, 0, points, 4);
    for (int i = 0; i < 4; ++i)
        EXPECT_TRUE(points[i].x == upright[i].x && points[i].y == upright[i].y) << i;
    vxGetEllipsePoint(0, 0, 20, 10, 90, points, 4);
    for (int i = 0; i < 4; ++i)
        EXPECT_TRUE(points[i].x == turned[i].x && points[i].y == turned[i].y) << i;
}

TEST(VxEllipses, LengthsAreSumsOfChords) {
    EXPECT_NEAR(vxGetEllipseLength(100, 100), 359999 * 200 * std::sin(cnPi / 360000), 1e-6);
    EXPECT_NEAR(vxGetEllipseLength(100, 0), 400 - 100 * std::sin(2 * cnPi / 360000), 1e-6);
    // A quarter between the ends of the axes is the same on every side.
    const double quarter = vxGetEllipseLength(100, 50) / 4;
    EXPECT_NEAR(vxGetEllipseLengthS(100, 50, 4, 0, 1, 4), quarter, 1e-3);
    EXPECT_NEAR(vxGetEllipseLengthS(100, 50, 8, 2, 4, 4), quarter, 1e-3);
    EXPECT_NEAR(vxGetEllipseLengthS(100, 50, 3, 0, 2, 0), quarter * 8 / 3, 1e-3);
    EXPECT_EQ(vxGetEllipseLengthS(100, 50, 0, 0, 2, 1), 0);
}

TEST(VxJacobi, EigenvectorsSolveTheMatrix) {
    const double original[3][3] = {{2, -1, 0}, {-1, 2, -1}, {0, -1, 2}};
    double a[3][3] = {{2, -1, 0}, {-1, 2, -1}, {0, -1, 2}};
    double v[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    double* rowsOfA[] = {a[0], a[1], a[2]};
    double* rowsOfV[] = {v[0], v[1], v[2]};
    vxJacobiEigenvalue(3, rowsOfA, rowsOfV, 1e-12);
    std::array<double, 3> values{a[0][0], a[1][1], a[2][2]};
    for (int column = 0; column < 3; ++column) {
        for (int row = 0; row < 3; ++row) {
            double product = 0, scalar = 0;
            for (int k = 0; k < 3; ++k) {
                product += original[row][k] * v[k][column];
                scalar += v[k][row] * v[k][column];
            }
            EXPECT_NEAR(product, values[column] * v[row][column], 1e-10);
            EXPECT_NEAR(scalar, row == column, 1e-10);
        }
    }
    std::sort(values.begin(), values.end());
    EXPECT_NEAR(values[0], 2 - std::sqrt(2), 1e-10);
    EXPECT_NEAR(values[1], 2, 1e-10);
    EXPECT_NEAR(values[2], 2 + std::sqrt(2), 1e-10);
}

/// The table between two guards, which must survive; empty when the answer is 0.
std::vector<int> curveTable(const std::vector<tagPOINT>& points, unsigned length) {
    constexpr int cnGuard = 0x7EADBEEF;
    std::vector<int> table(length + 16, cnGuard);
    const int answer = vxGetBsplineIntTable(points.data(), int(points.size()), table.data() + 8, length);
    for (unsigned i = 0; i < 8; ++i) {
        EXPECT_EQ(table[i], cnGuard);
        EXPECT_EQ(table[8 + length + i], cnGuard);
    }
    return answer ? std::vector<int>(table.begin() + 8, table.end() - 8) : std::vector<int>();
}

TEST(VxCurveTable, TwoPointsMakeALine) {
    using Table = std::vector<int>;
    EXPECT_EQ(curveTable({{0, 0}, {4, 8}}, 4), (Table{0, 2, 4, 6}));
    EXPECT_EQ(curveTable({{4, 8}, {0, 0}}, 4), (Table{8, 6, 4, 2}));
    EXPECT_EQ(curveTable({{-5, 0}, {-2, -2}}, 3), (Table{0, 0, -1}));
    EXPECT_EQ(curveTable({{cnLeast, 0}, {cnGreatest, 4}}, 2), (Table{0, 2}));
    EXPECT_EQ(curveTable({{0, 1}, {0, 5}}, 4), Table());
    EXPECT_EQ(curveTable({{0, 1}}, 4), Table());
    EXPECT_EQ(curveTable({}, 4), Table());
    EXPECT_EQ(curveTable({{0, 0}, {4, 8}}, 0), Table());
}

TEST(VxCurveTable, MorePointsMakeASpline) {
    const std::vector<int> straight = curveTable({{0, 0}, {128, 128}, {256, 256}}, 256);
    ASSERT_EQ(straight.size(), 256u);
    for (int k = 0; k < 256; ++k)
        EXPECT_NEAR(straight[k], k, 1) << k;
    // One segment: the mirrored ends are (-64, -200) and (446, 310), so that it runs from the first to the last point.
    const std::vector<int> curve = curveTable({{0, 0}, {64, 200}, {255, 255}}, 255);
    ASSERT_EQ(curve.size(), 255u);
    const auto spline = [](double s, double p, double c, double n) {
        return 0.5 * (1 - s) * (1 - s) * p + (s - s * s + 0.5) * c + 0.5 * s * s * n;
    };
    for (int k = 0; k < 255; ++k) {
        double low = 0, high = 1;
        for (int halving = 0; halving < 50; ++halving) {
            const double s = (low + high) / 2;
            (spline(s, -64, 64, 446) < k ? low : high) = s;
        }
        EXPECT_NEAR(curve[k], spline(low, -200, 200, 310), 3) << k;
    }
}

TEST(VxCurveTable, PointsInAnyOrderStayInsideTheTable) {
    const std::vector<std::vector<tagPOINT>> hostile = {
        {{255, 0}, {128, 200}, {0, 255}}, {{0, 0}, {5000, 10}, {-5000, 20}, {255, 30}},
        {{0, 0}, {-1000, 5}, {255, 9}},   {{cnLeast, cnLeast}, {0, cnGreatest}, {cnGreatest, cnLeast}},
        {{0, 0}, {0, 0}, {0, 5}, {1, 7}},
    };
    for (const auto& points : hostile)
        for (const unsigned length : {1u, 7u, 256u})
            EXPECT_EQ(curveTable(points, length).size(), length);
}

} // namespace
