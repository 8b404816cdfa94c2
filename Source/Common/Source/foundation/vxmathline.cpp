// Lines and segments of vxmath.h.

#include "ovwcmn/vxmath.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

constexpr double cnDegenerate = 1e-08; // squared lengths up to it, and differences of coordinates, count as 0

tagPOINTD operator-(tagPOINTD a, tagPOINTD b) { return {a.x - b.x, a.y - b.y}; }

double dot(tagPOINTD a, tagPOINTD b) { return a.x * b.x + a.y * b.y; }

double distance(tagPOINTD a, tagPOINTD b) { return vxPointLength(a.x, a.y, b.x, b.y); }

template <class T>
void store(T* out, const T& value) {
    if (out)
        *out = value;
}

// In 64 bits: thousandths of coordinates and of steep slopes pass the range of an int.
std::int64_t thousandths(double value) {
    constexpr double cnLimit = 9e18;
    return std::isnan(value) ? 0 : std::llround(std::clamp(value * 1000, -cnLimit, cnLimit));
}

// A line through two points; the axis tests see coordinates in thousandths.
struct Line {
    tagPOINTD from;
    tagPOINTD to;

    bool isVertical() const { return thousandths(from.x) == thousandths(to.x); }
    bool isHorizontal() const { return thousandths(from.y) == thousandths(to.y); }
    double slope() const { return (to.y - from.y) / (to.x - from.x); }
    double yAt(double x) const { return isHorizontal() ? from.y : from.y + (x - from.x) * slope(); }
    double xAt(double y) const { return isVertical() ? from.x : from.x + (y - from.y) / slope(); }
};

// Crossing of two lines of which neither is axis-parallel; the mean of both lines' y evens out their errors.
bool crossOblique(const Line& a, const Line& b, tagPOINTD& crossing) {
    const double slopeA = a.slope();
    const double slopeB = b.slope();
    if (thousandths(slopeA) == thousandths(slopeB))
        return false;
    crossing.x = (b.from.y - a.from.y + slopeA * a.from.x - slopeB * b.from.x) / (slopeA - slopeB);
    crossing.y = (a.yAt(crossing.x) + b.yAt(crossing.x)) * 0.5;
    return true;
}

bool crossLines(const Line& a, const Line& b, tagPOINTD& crossing) {
    const bool isPoint = (a.isVertical() && a.isHorizontal()) || (b.isVertical() && b.isHorizontal());
    if (isPoint || (a.isVertical() && b.isVertical()) || (a.isHorizontal() && b.isHorizontal()))
        return false;
    if (a.isVertical())
        crossing = {a.from.x, b.yAt(a.from.x)};
    else if (b.isVertical())
        crossing = {b.from.x, a.yAt(b.from.x)};
    else if (a.isHorizontal())
        crossing = {b.xAt(a.from.y), a.from.y};
    else if (b.isHorizontal())
        crossing = {a.xAt(b.from.y), b.from.y};
    else
        return crossOblique(a, b, crossing);
    return true;
}

bool isSameUnit(double a, double b) { return vxDouble2Int(a) == vxDouble2Int(b); }

// Whether a coordinate lies in the range of two others, in whole units; the low end is left out.
bool isSpanned(double coordinate, double end1, double end2) {
    const auto [low, high] = std::minmax({vxDouble2Int(end1), vxDouble2Int(end2)});
    const std::int32_t unit = vxDouble2Int(coordinate);
    return low < unit && unit <= high;
}

// The line through p1p2 where it meets the vertical p3p4.
int crossVertical(tagPOINTD p1, tagPOINTD p2, tagPOINTD p3, tagPOINTD p4, tagPOINTD* out) {
    const tagPOINTD crossing{p3.x, vxGet2PointsToLineY(p3.x, p1.x, p1.y, p2.x, p2.y)};
    const std::int32_t unit = vxDouble2Int(crossing.y);
    const auto [low, high] = std::minmax({vxDouble2Int(p3.y), vxDouble2Int(p4.y)});
    if (unit < low || unit > high)
        return 0;
    store(out, crossing);
    return 1;
}

} // namespace

double vxGet2PointsToLineY(double x, double x1, double y1, double x2, double y2) {
    return x1 == x2 ? y1 : y1 + (x - x1) * (y2 - y1) / (x2 - x1);
}

double vxPtPosOnLine(tagPOINTD p, tagPOINTD a, tagPOINTD b, tagPOINTD* foot, double* t) {
    const tagPOINTD direction = b - a;
    const double lengthSquared = dot(direction, direction);
    double place = 0;
    if (lengthSquared > cnDegenerate)
        place = std::clamp(dot(p - a, direction) / lengthSquared, 0.0, 1.0);
    tagPOINTD nearest{a.x + place * direction.x, a.y + place * direction.y};
    if (place == 1)
        nearest = b;
    store(foot, nearest);
    store(t, place);
    return distance(nearest, p);
}

double vxPtPosOnLine2(tagPOINTD p, tagPOINTD a, tagPOINTD b, tagPOINTD* foot, double* t) {
    const tagPOINTD direction = b - a;
    const bool isPoint = std::abs(direction.x) <= cnDegenerate && std::abs(direction.y) <= cnDegenerate;
    if (!foot || isPoint)
        return vxPtPosOnLine(p, a, b, foot, t);
    // Inside the segment this is the nearest point too. Each coordinate that does not change stays exact.
    const double place = dot(p - a, direction) / dot(direction, direction);
    *foot = {a.x + place * direction.x, a.y + place * direction.y};
    store(t, place);
    return distance(*foot, p);
}

int vxCrossLinePoint(tagPOINTD p1, tagPOINTD p2, tagPOINTD p3, tagPOINTD p4, tagPOINTD* out) {
    const tagPOINTD d1 = p2 - p1;
    const tagPOINTD d2 = p4 - p3;
    const tagPOINTD offset = p1 - p3;
    const double denominator = d1.x * d2.y - d1.y * d2.x;
    if (denominator == 0)
        return 0;
    const double t = (offset.y * d2.x - offset.x * d2.y) / denominator;
    const double u = (offset.y * d1.x - offset.x * d1.y) / denominator;
    if (!(0 <= u && u <= 1 && 0 <= t && t <= 1))
        return 0;
    store(out, tagPOINTD{t * p2.x + (1 - t) * p1.x, t * p2.y + (1 - t) * p1.y});
    return 1;
}

int vxCrossLinePoint2(tagPOINTD p1, tagPOINTD p2, tagPOINTD p3, tagPOINTD p4, tagPOINTD* out) {
    const bool isVertical = isSameUnit(p1.x, p2.x);
    const bool isHorizontal = isSameUnit(p1.y, p2.y);
    if (isVertical) {
        if (!isSpanned(p1.x, p3.x, p4.x))
            return 0;
        if (!isSameUnit(p3.y, p4.y))
            return vxCrossLinePoint(p1, p2, p3, p4, out);
        store(out, tagPOINTD{p1.x, p3.y});
        return 1;
    }
    if (isHorizontal) {
        if (!isSpanned(p1.y, p3.y, p4.y))
            return 0;
        if (!isSameUnit(p3.x, p4.x))
            return vxCrossLinePoint(p1, p2, p3, p4, out);
        store(out, tagPOINTD{p3.x, p1.y});
        return 1;
    }
    return isSameUnit(p3.x, p4.x) ? crossVertical(p1, p2, p3, p4, out) : vxCrossLinePoint(p1, p2, p3, p4, out);
}

int vxCrossLinePoint3(tagPOINTD p1, tagPOINTD p2, tagPOINTD p3, tagPOINTD p4, tagPOINTD* out) {
    tagPOINTD crossing;
    if (!crossLines({p1, p2}, {p3, p4}, crossing))
        return 0;
    store(out, crossing);
    return 1;
}

int vxCrossSegmentAndPoly(const tagPOINT* poly, int n, tagPOINTD a, tagPOINTD b, int excludeA, int excludeB,
                          tagPOINTD* out) {
    const auto corner = [poly](int i) { return tagPOINTD{double(poly[i].x), double(poly[i].y)}; };
    for (int i = 0; n >= 2 && i < n; ++i) {
        const tagPOINTD from = corner(i);
        const tagPOINTD to = corner(i + 1 < n ? i + 1 : 0);
        tagPOINTD crossing;
        if (!vxCrossLinePoint(a, b, from, to, &crossing))
            continue;
        const double edge = distance(from, to);
        const bool isExcluded =
            (excludeA == 1 && edge >= distance(a, crossing)) || (excludeB == 1 && edge >= distance(b, crossing));
        if (isExcluded)
            continue;
        store(out, crossing);
        return 1;
    }
    return 0;
}
