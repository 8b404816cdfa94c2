#include "ovwcmn/xcgeometry.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

namespace {

constexpr int cnLeast = std::numeric_limits<int>::min();
constexpr int cnGreatest = std::numeric_limits<int>::max();

template <class P, class S, class R, class PlainP, class PlainS, class PlainR>
struct Family {
    using Point = P;
    using Size = S;
    using Rect = R;
    using PlainPoint = PlainP;
    using PlainSize = PlainS;
    using PlainRect = PlainR;
};

struct Integers : Family<XCPoint, XCSize, XCRect, tagPOINT, tagSIZE, tagRECT> {
    static constexpr bool touchingMeets = false;
    static constexpr double boxSentinel = 2147483647;
};
struct Floats : Family<XCPointF, XCSizeF, XCRectF, tagPOINTF, tagSIZEF, tagRECTF> {
    static constexpr bool touchingMeets = true;
    static constexpr double boxSentinel = 9999999.0;
};
struct Doubles : Family<XCPointD, XCSizeD, XCRectD, tagPOINTD, tagSIZED, tagRECTD> {
    static constexpr bool touchingMeets = true;
    static constexpr double boxSentinel = 999999999999999.0;
};

using Edges = std::array<double, 4>;
using Pair = std::array<double, 2>;

/// The fields, to be compared without the tolerance of the classes' own comparison.
template <class Rect>
Edges edges(const Rect& rect) {
    return {double(rect.left), double(rect.top), double(rect.right), double(rect.bottom)};
}

template <class Rect>
Rect make(const Edges& e) {
    using Coordinate = decltype(Rect::left);
    return Rect(Coordinate(e[0]), Coordinate(e[1]), Coordinate(e[2]), Coordinate(e[3]));
}

template <class Point>
Pair pair(const Point& point) {
    if constexpr (requires { point.x; })
        return {double(point.x), double(point.y)};
    else
        return {double(point.cx), double(point.cy)};
}

template <class Coordinates>
class Geometry : public testing::Test {};

using Families = testing::Types<Integers, Floats, Doubles>;
TYPED_TEST_SUITE(Geometry, Families);

TYPED_TEST(Geometry, ArraysOfClassesAndOfPlainStructsAreInterchangeable) {
    using Rect = typename TypeParam::Rect;
    static_assert(sizeof(Rect) == sizeof(typename TypeParam::PlainRect));
    static_assert(sizeof(typename TypeParam::Point) == sizeof(typename TypeParam::PlainPoint));
    static_assert(sizeof(typename TypeParam::Size) == sizeof(typename TypeParam::PlainSize));
    static_assert(std::is_trivially_copyable_v<Rect> && std::is_trivially_copyable_v<typename TypeParam::Point> &&
                  std::is_trivially_copyable_v<typename TypeParam::Size>);
    const typename TypeParam::PlainRect plain[2] = {{1, 2, 3, 4}, {5, 6, 7, 8}};
    Rect rects[2];
    std::memcpy(static_cast<void*>(rects), plain, sizeof plain);
    EXPECT_EQ(edges(rects[1]), (Edges{5, 6, 7, 8}));
    typename TypeParam::PlainRect* view = rects[1];
    view->left = 9;
    EXPECT_EQ(rects[1].left, 9);
}

TYPED_TEST(Geometry, CornersAliasTheFields) {
    typename TypeParam::Rect rect(1, 2, 3, 4);
    rect.TopLeft() += typename TypeParam::Point(10, 20);
    rect.BottomRight().Offset(100, 200);
    EXPECT_EQ(edges(rect), (Edges{11, 22, 103, 204}));
    rect.left = 7;
    EXPECT_EQ(pair(rect.TopLeft()), (Pair{7, 22}));
}

TYPED_TEST(Geometry, RectanglesAreBuiltFromCornersAndSizes) {
    using Rect = typename TypeParam::Rect;
    using Point = typename TypeParam::Point;
    EXPECT_EQ(edges(Rect()), (Edges{0, 0, 0, 0}));
    EXPECT_EQ(edges(Rect(Point(1, 2), Point(5, 4))), (Edges{1, 2, 5, 4}));
    EXPECT_EQ(edges(Rect(Point(1, 2), typename TypeParam::Size(5, 4))), (Edges{1, 2, 6, 6}));
    EXPECT_EQ(pair(Rect(1, 2, 5, 9).Size()), (Pair{4, 7}));
    Point corners[4];
    Rect(1, 2, 5, 9).SetPoint(corners);
    EXPECT_EQ(pair(corners[0]), (Pair{1, 2}));
    EXPECT_EQ(pair(corners[1]), (Pair{5, 2}));
    EXPECT_EQ(pair(corners[2]), (Pair{5, 9}));
    EXPECT_EQ(pair(corners[3]), (Pair{1, 9}));
}

TYPED_TEST(Geometry, EmptyAndNullAreDifferentQuestions) {
    const struct {
        Edges rect;
        int isEmpty, isNull;
    } cases[] = {
        {{0, 0, 0, 0}, 1, 1}, {{2, 3, 2, 8}, 1, 0}, {{2, 3, 8, 3}, 1, 0},
        {{5, 0, 4, 9}, 1, 0}, {{2, 3, 3, 4}, 0, 0}, {{-1, -1, 0, 0}, 0, 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(make<typename TypeParam::Rect>(c.rect).IsRectEmpty(), c.isEmpty) << testing::PrintToString(c.rect);
        EXPECT_EQ(make<typename TypeParam::Rect>(c.rect).IsRectNull(), c.isNull) << testing::PrintToString(c.rect);
    }
}

TYPED_TEST(Geometry, RightAndBottomAreOutside) {
    using Point = typename TypeParam::Point;
    const typename TypeParam::Rect rect(2, 3, 6, 9);
    for (const Point& inside : {Point(2, 3), Point(5, 8), Point(2, 8)})
        EXPECT_EQ(rect.PtInRect(inside), 1);
    for (const Point& outside : {Point(6, 3), Point(2, 9), Point(1, 3), Point(2, 2), Point(6, 9)})
        EXPECT_EQ(rect.PtInRect(outside), 0);
}

TYPED_TEST(Geometry, InflationAndOffsetMoveTheEdges) {
    using Rect = typename TypeParam::Rect;
    using Point = typename TypeParam::Point;
    using Size = typename TypeParam::Size;
    const Rect base(10, 20, 30, 50);
    const typename TypeParam::PlainRect by{1, 2, 3, 4};
    const auto after = [&](auto edit) {
        Rect rect = base;
        edit(rect);
        return edges(rect);
    };
    EXPECT_EQ(after([](Rect& r) { r.InflateRect(1, 2); }), (Edges{9, 18, 31, 52}));
    EXPECT_EQ(after([](Rect& r) { r.InflateRect(Size(1, 2)); }), (Edges{9, 18, 31, 52}));
    EXPECT_EQ(after([](Rect& r) { r.InflateRect(1, 2, 3, 4); }), (Edges{9, 18, 33, 54}));
    EXPECT_EQ(after([&](Rect& r) { r += &by; }), (Edges{9, 18, 33, 54}));
    EXPECT_EQ(edges(base + &by), (Edges{9, 18, 33, 54}));
    EXPECT_EQ(after([](Rect& r) { r.DeflateRect(1, 2); }), (Edges{11, 22, 29, 48}));
    EXPECT_EQ(after([](Rect& r) { r.DeflateRect(1, 2, 3, 4); }), (Edges{11, 22, 27, 46}));
    EXPECT_EQ(after([&](Rect& r) { r -= &by; }), (Edges{11, 22, 27, 46}));
    EXPECT_EQ(edges(base - &by), (Edges{11, 22, 27, 46}));
    EXPECT_EQ(after([](Rect& r) { r.OffsetRect(-1, 2); }), (Edges{9, 22, 29, 52}));
    EXPECT_EQ(after([](Rect& r) { r += Size(-1, 2); }), (Edges{9, 22, 29, 52}));
    EXPECT_EQ(after([](Rect& r) { r -= Point(-1, 2); }), (Edges{11, 18, 31, 48}));
    EXPECT_EQ(edges(base + Point(1, 2)), (Edges{11, 22, 31, 52}));
    EXPECT_EQ(edges(base - Size(1, 2)), (Edges{9, 18, 29, 48}));
    EXPECT_EQ(edges(Point(1, 2) + static_cast<const typename TypeParam::PlainRect*>(&by)), (Edges{2, 4, 4, 6}));
    EXPECT_EQ(edges(Size(1, 2) - static_cast<const typename TypeParam::PlainRect*>(&by)), (Edges{0, 0, 2, 2}));
    EXPECT_EQ(edges(base * -2), (Edges{-20, -40, -60, -100}));
}

// The sum of two rectangles would silently inflate the one by the other.
TYPED_TEST(Geometry, RectanglesAreNotAddedToRectangles) {
    constexpr auto adds = []<class Rect>(const Rect& a) {
        return requires { a + a; };
    };
    constexpr auto subtracts = []<class Rect>(const Rect& a) {
        return requires { a - a; };
    };
    EXPECT_FALSE(adds(typename TypeParam::Rect()));
    EXPECT_FALSE(subtracts(typename TypeParam::Rect()));
}

TYPED_TEST(Geometry, NormalizeExchangesEachAxisByItself) {
    const Edges cases[][2] = {{{5, 1, 2, 9}, {2, 1, 5, 9}}, {{1, 9, 5, 2}, {1, 2, 5, 9}}};
    for (const auto& [given, expected] : cases) {
        auto rect = make<typename TypeParam::Rect>(given);
        rect.NormalizeRect();
        EXPECT_EQ(edges(rect), expected);
    }
}

TYPED_TEST(Geometry, IntersectionDiffersWhereRectanglesOnlyTouch) {
    const Edges untouched{70, 71, 72, 73};
    const Edges apart = TypeParam::touchingMeets ? untouched : Edges{0, 0, 0, 0};
    const auto touching = [](const Edges& e) { return TypeParam::touchingMeets ? e : Edges{0, 0, 0, 0}; };
    const struct {
        Edges a, b;
        int meets;
        Edges result;
        int isIntersect;
    } cases[] = {
        {{0, 0, 10, 10}, {5, 6, 20, 20}, 1, {5, 6, 10, 10}, 1},
        {{0, 0, 10, 10}, {2, 3, 4, 5}, 1, {2, 3, 4, 5}, 1},
        {{0, 0, 10, 10}, {10, 0, 20, 10}, TypeParam::touchingMeets, touching({10, 0, 10, 10}), 0},
        {{0, 0, 10, 10}, {10, 10, 20, 20}, TypeParam::touchingMeets, touching({10, 10, 10, 10}), 0},
        {{0, 0, 10, 10}, {11, 0, 20, 10}, 0, apart, 0},
        {{0, 0, 10, 10}, {0, -9, 10, -1}, 0, apart, 0},
    };
    for (const auto& c : cases) {
        auto result = make<typename TypeParam::Rect>(untouched);
        EXPECT_EQ(result.IntersectRect(make<typename TypeParam::Rect>(c.a), make<typename TypeParam::Rect>(c.b)),
                  c.meets);
        EXPECT_EQ(edges(result), c.result);
        EXPECT_EQ(make<typename TypeParam::Rect>(c.a).IsIntersectRect(make<typename TypeParam::Rect>(c.b)),
                  c.isIntersect);
        auto shifted = make<typename TypeParam::Rect>(c.b);
        shifted.OffsetRect(3, -4);
        result = make<typename TypeParam::Rect>(untouched);
        EXPECT_EQ(result.IntersectWithOffset(make<typename TypeParam::Rect>(c.a), shifted, 3, -4), c.meets);
        EXPECT_EQ(edges(result), c.result);
    }
    // The operator begins with an all zero result, in every family.
    EXPECT_EQ(edges(make<typename TypeParam::Rect>({0, 0, 10, 10}) & make<typename TypeParam::Rect>({11, 0, 20, 10})),
              (Edges{0, 0, 0, 0}));
}

TYPED_TEST(Geometry, UnionPassesOverEmptyRectangles) {
    const Edges empty{100, 100, 100, 200};
    const struct {
        Edges a, b;
        int answer;
        Edges result;
    } cases[] = {
        {{0, 0, 2, 2}, {5, -6, 7, 1}, 1, {0, -6, 7, 2}},
        {empty, {5, 6, 7, 8}, 1, {5, 6, 7, 8}},
        {{5, 6, 7, 8}, empty, 1, {5, 6, 7, 8}},
        {empty, {9, 9, 3, 3}, 0, empty},
    };
    for (const auto& c : cases) {
        auto result = make<typename TypeParam::Rect>(c.a);
        EXPECT_EQ(result.UnionRect(result, make<typename TypeParam::Rect>(c.b)), c.answer);
        EXPECT_EQ(edges(result), c.result);
        EXPECT_EQ(edges(make<typename TypeParam::Rect>(c.a) | make<typename TypeParam::Rect>(c.b)),
                  c.answer ? c.result : (Edges{0, 0, 0, 0}));
    }
    const typename TypeParam::PlainPoint point{5, 5};
    typename TypeParam::Rect grown;
    grown.UnionRect(&point);
    EXPECT_EQ(edges(grown), (Edges{5, 5, 6, 6}));
}

TYPED_TEST(Geometry, PointsGrowARectangleByTheirCell) {
    const struct {
        Edges rect;
        Pair point;
        Edges result;
    } cases[] = {
        {{0, 0, 0, 0}, {5, 5}, {0, 0, 6, 6}},
        {{0, 0, 4, 4}, {4, 3}, {0, 0, 5, 4}},
        {{0, 0, 4, 4}, {3, -2}, {0, -2, 4, 4}},
        {{2, 2, 4, 4}, {-1, 9}, {-1, 2, 4, 10}},
    };
    for (const auto& c : cases) {
        auto rect = make<typename TypeParam::Rect>(c.rect);
        using Coordinate = decltype(rect.left);
        rect.UnionPoint(typename TypeParam::Point(Coordinate(c.point[0]), Coordinate(c.point[1])));
        EXPECT_EQ(edges(rect), c.result);
    }
}

TYPED_TEST(Geometry, TwoPointsSpanARectangleInAnyOrder) {
    using Point = typename TypeParam::Point;
    const struct {
        Point p1, p2;
        Edges result;
    } cases[] = {
        {Point(2, 3), Point(5, 9), {2, 3, 5, 9}}, {Point(5, 9), Point(2, 3), {2, 3, 5, 9}},
        {Point(5, 3), Point(2, 9), {2, 3, 5, 9}}, {Point(4, 4), Point(4, 4), {4, 4, 5, 5}},
        {Point(4, 7), Point(4, 2), {4, 2, 5, 7}},
    };
    for (const auto& c : cases) {
        typename TypeParam::Rect rect;
        rect.Pt2Rect(c.p1, c.p2);
        EXPECT_EQ(edges(rect), c.result);
    }
}

TYPED_TEST(Geometry, PolygonBoxAddsNoUnitAndReachesTheOrigin) {
    using Plain = typename TypeParam::PlainPoint;
    const Plain positive[] = {{3, 8}, {7, 2}, {5, 5}};
    const Plain negative[] = {{-5, -5}, {-2, -1}};
    typename TypeParam::Rect box;
    box.PolygonBox(positive, 3);
    EXPECT_EQ(edges(box), (Edges{3, 2, 7, 8}));
    box.PolygonBox(negative, 2);
    EXPECT_EQ(edges(box), (Edges{-5, -5, 0, 0}));
    box.PolygonBox(positive, 0);
    EXPECT_EQ(edges(box), (Edges{TypeParam::boxSentinel, TypeParam::boxSentinel, 0, 0}));
}

TYPED_TEST(Geometry, PointsAndSizesAddUp) {
    using Point = typename TypeParam::Point;
    using Size = typename TypeParam::Size;
    EXPECT_EQ(pair(Point(1, 2) + Size(3, 4)), (Pair{4, 6}));
    EXPECT_EQ(pair(Point(1, 2) - Point(3, 5)), (Pair{-2, -3}));
    EXPECT_EQ(pair(-Point(1, -2)), (Pair{-1, 2}));
    const auto sum = Size(1, 2) + Size(3, 4);
    static_assert(std::is_same_v<decltype(sum), const Size>);
    EXPECT_EQ(pair(sum), (Pair{4, 6}));
    const auto moved = Size(1, 2) - Point(3, 5);
    static_assert(std::is_same_v<decltype(moved), const Point>);
    EXPECT_EQ(pair(moved), (Pair{-2, -3}));
}

TEST(XCRect, SignedDivisionTruncatesTowardZero) {
    EXPECT_EQ(edges(XCRect(-3, -3, 3, 3) / 2), (Edges{-1, -1, 1, 1}));
    EXPECT_EQ(pair(XCRect(-5, -5, 0, 0).CenterPoint()), (Pair{-2, -2}));
    EXPECT_EQ(pair(XCRectF(-5, -5, 0, 0).CenterPoint()), (Pair{-2.5, -2.5}));
    EXPECT_EQ(edges(XCRectD(-3, -3, 3, 3) / 2), (Edges{-1.5, -1.5, 1.5, 1.5}));
}

TEST(XCRect, SumsWrapAround) {
    EXPECT_EQ(pair(XCPoint(cnGreatest, cnLeast) + XCPoint(1, -1)), (Pair{double(cnLeast), double(cnGreatest)}));
    EXPECT_EQ(pair(-XCPoint(cnLeast, 0)), (Pair{double(cnLeast), 0}));
    EXPECT_EQ(pair(XCPoint(cnLeast, 8) / -1), (Pair{double(cnLeast), -8}));
    EXPECT_EQ(pair(XCPoint(65536, 65537) * 65536), (Pair{0, 65536}));
    EXPECT_EQ(edges(XCRect(cnLeast, 1, 2, 3) / -1), (Edges{double(cnLeast), -1, -2, -3}));
    EXPECT_EQ(edges(XCRect(0, 0, cnGreatest, 1) - XCPoint(cnLeast, 0)), (Edges{double(cnLeast), 0, -1, 1}));
    EXPECT_EQ(XCRect(cnLeast, 0, cnGreatest, 0).Width(), -1);
}

TEST(XCRect, CalcDestRectFitsAPictureIntoAFrame) {
    const struct {
        const char* name;
        XCRect source, frame, result;
    } cases[] = {
        {"wide source", {0, 0, 200, 100}, {0, 0, 100, 100}, {0, 25, 100, 75}},
        {"tall source", {0, 0, 100, 200}, {0, 0, 100, 100}, {25, 0, 75, 100}},
        {"same size", {5, 5, 25, 35}, {100, 100, 120, 130}, {100, 100, 120, 130}},
        {"same shape", {0, 0, 200, 100}, {0, 0, 100, 50}, {0, 0, 100, 50}},
        {"wide source, tall frame, odd rest", {0, 0, 100, 50}, {10, 20, 60, 120}, {10, 57, 60, 83}},
        {"tall source, wide frame, odd rest", {0, 0, 50, 100}, {0, 0, 100, 50}, {37, 0, 63, 50}},
        {"wider frame than source", {0, 0, 100, 50}, {0, 0, 400, 100}, {100, 0, 300, 100}},
        {"taller frame than source", {0, 0, 50, 100}, {0, 0, 100, 400}, {0, 100, 100, 300}},
        {"square source", {0, 0, 10, 10}, {0, 0, 30, 20}, {5, 0, 25, 20}},
        {"at least one pixel wide", {0, 0, 10, 1000}, {0, 0, 20, 20}, {9, 0, 11, 20}},
        {"empty source", {3, 3, 3, 9}, {0, 0, 20, 20}, {0, 0, 20, 20}},
        {"empty frame", {0, 0, 10, 10}, {7, 7, 7, 20}, {7, 7, 7, 20}},
    };
    XCRect rect;
    for (const auto& c : cases) {
        rect.CalcDestRect(c.source, c.frame);
        EXPECT_EQ(edges(rect), edges(c.result)) << c.name;
    }
    // Nothing undefined happens at the ends of the range.
    const XCRect everything(cnLeast, cnLeast, cnGreatest, cnGreatest);
    rect.CalcDestRect(everything, XCRect(0, 0, 10, 20));
    rect.CalcDestRect(XCRect(0, 0, 10, 20), everything);
    rect.UnionPoint(XCPoint(cnGreatest, cnLeast));
    rect.Pt2Rect(XCPoint(cnGreatest, cnLeast), XCPoint(cnGreatest, cnLeast));
    EXPECT_EQ(rect.top, cnLeast);
}

TEST(XCRectF, EqualityIsStrictWithinItsTolerance) {
    EXPECT_TRUE(XCRectF(0, 0, 1, 1) == XCRectF(0.00005f, 0, 1, 1));
    EXPECT_FALSE(XCRectF(0, 0, 1, 1) == XCRectF(0.0002f, 0, 1, 1));
    // The float nearest to 0.0001 lies below it: equal, since the comparison runs in double.
    EXPECT_TRUE(XCPointF(0, 0) == XCPointF(0, 0.0001f));
    EXPECT_FALSE(XCPointD(0, 0) == XCPointD(1e-08, 0));
    EXPECT_TRUE(XCPointD(0, 0) == XCPointD(-0.9e-08, 0.9e-08));
    EXPECT_TRUE(XCRectD(0, 0, 1, 1) != XCRectD(0, 0, 1, 1 + 2e-08));
    EXPECT_TRUE(XCPoint(0, 0) != XCPoint(0, 1));
}

TEST(XCRectF, NearlyEqualPointsSpanOneUnitFromTheFirst) {
    XCRectF rect;
    rect.Pt2Rect(XCPointF(1.0f, 2.0f), XCPointF(1.00005f, 2.5f));
    EXPECT_EQ(edges(rect), (Edges{1, 2, 2, 2.5}));
    XCRectD precise;
    precise.Pt2Rect(XCPointD(1, 2), XCPointD(1.00005, 2 + 0.5e-08));
    EXPECT_EQ(edges(precise), (Edges{1, 2, 1.00005, 3}));
}

TEST(XCRectD, IntegerExtentSurrounds) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(edges(XCRectD(0.5, -0.5, 1.2, 3.0).IntegerExtent()), (Edges{0, -1, 2, 3}));
    EXPECT_EQ(edges(XCRectD(-infinity, -1e10, 1e10, infinity).IntegerExtent()),
              (Edges{double(cnLeast), double(cnLeast), double(cnGreatest), double(cnGreatest)}));
    EXPECT_EQ(XCRectD(std::nan(""), 0, 1, 1).IntegerExtent().left, 0);
}

TEST(XCPoint, FactorsWithAFractionTruncateAndClamp) {
    XCPoint point(7, -7);
    EXPECT_EQ(pair(point *= 0.5), (Pair{3, -3}));
    point.SetPt(7, -7);
    EXPECT_EQ(pair(point /= 2.0), (Pair{3, -3}));
    EXPECT_EQ(pair(XCPoint(7, -7) / 2), (Pair{3, -3}));
    EXPECT_EQ(pair(XCPoint(7, -7) * 1e30), (Pair{double(cnGreatest), double(cnLeast)}));
    EXPECT_EQ(pair(XCPoint(0, 5) / 0.0), (Pair{0, double(cnGreatest)}));
}

TEST(XCPointD, RotatesFromTheOldCoordinates) {
    XCPointD point(3, 4);
    point.Rotate(std::acos(-1.0) / 2);
    EXPECT_NEAR(point.x, -4, 1e-12);
    EXPECT_NEAR(point.y, 3, 1e-12);
    XCPointF single(3, 4);
    single.Rotate(std::acos(-1.0) / 2);
    EXPECT_NEAR(single.x, -4, 1e-6);
    EXPECT_NEAR(single.y, 3, 1e-6);
}

TEST(XCPointD, MeetsIntegerPointsAndRoundsForIsEqual) {
    EXPECT_EQ(pair(XCPointD(0.5, 1.5) + tagPOINT{1, 2}), (Pair{1.5, 3.5}));
    XCPointD point(0.5, 1.5);
    point -= tagPOINT{cnLeast, 0};
    EXPECT_EQ(point.x, 2147483648.5);
    const tagPOINTD rounded{3, -3};
    EXPECT_EQ(XCPointD(2.5, -2.5).IsEqual(&rounded), 1);
    EXPECT_EQ(XCPointD(2.49, -2.5).IsEqual(&rounded), 0);
}

} // namespace
