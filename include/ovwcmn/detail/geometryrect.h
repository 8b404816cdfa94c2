#ifndef OVWCMN_DETAIL_GEOMETRYRECT_H
#define OVWCMN_DETAIL_GEOMETRYRECT_H

/// @file
/// What the rectangles of xcgeometry.h have in common.

#include "ovwcmn/detail/geometryfamily.h"

namespace ovw::geometry {
/// A rectangle; its right and bottom edges are outside. Nothing keeps it normalised.
template <class Family>
class RectBase : public Family::PlainRect {
public:
    using Coordinate = typename Family::Coordinate; ///< of one axis
    using PlainPoint = typename Family::PlainPoint; ///< the family's structs
    using PlainSize = typename Family::PlainSize;   ///< the family's structs
    using PlainRect = typename Family::PlainRect;   ///< the family's structs
    using Point = typename Family::Point;           ///< the family's classes
    using Rect = typename Family::Rect;             ///< the family's classes

    using PlainRect::bottom;
    using PlainRect::left;
    using PlainRect::right;
    using PlainRect::top;
    /// @{ From edges, corners, a corner and a size, or the plain struct.
    constexpr RectBase() : PlainRect{} {}
    constexpr RectBase(Coordinate l, Coordinate t, Coordinate r, Coordinate b) : PlainRect{l, t, r, b} {}
    constexpr RectBase(const PlainPoint& topLeft, const PlainPoint& bottomRight)
        : PlainRect{topLeft.x, topLeft.y, bottomRight.x, bottomRight.y} {}
    constexpr RectBase(const PlainPoint& topLeft, const PlainSize& size)
        : PlainRect{topLeft.x, topLeft.y, Family::add(topLeft.x, size.cx), Family::add(topLeft.y, size.cy)} {}
    constexpr RectBase(const PlainRect& rect) : PlainRect(rect) {}
    constexpr explicit RectBase(const PlainRect* rect) : PlainRect(*rect) {}
    /// @}
    constexpr operator PlainRect*() { return this; }             ///< as the plain struct
    constexpr operator const PlainRect*() const { return this; } ///< as the plain struct
    /// @{ The extents, and the middle of each axis.
    constexpr Coordinate Width() const { return Family::subtract(right, left); }
    constexpr Coordinate Height() const { return Family::subtract(bottom, top); }
    constexpr auto Size() const { return typename Family::Size(Width(), Height()); }
    constexpr auto CenterPoint() const { return Point(Family::middle(left, right), Family::middle(top, bottom)); }
    /// @}
    /// @{ The corners alias the fields: the point classes are declared to alias anything.
    Point& TopLeft() { return reinterpret_cast<Point&>(left); }
    const Point& TopLeft() const { return reinterpret_cast<const Point&>(left); }
    Point& BottomRight() { return reinterpret_cast<Point&>(right); }
    const Point& BottomRight() const { return reinterpret_cast<const Point&>(right); }
    /// The corners clockwise on screen, from the top left one.
    constexpr void SetPoint(PlainPoint out[4]) const;
    /// @}
    constexpr int IsRectEmpty() const { return isEmpty(*this); } ///< without area, or not normalised
    /// 1 when all four fields are exactly 0.
    constexpr int IsRectNull() const { return left == 0 && top == 0 && right == 0 && bottom == 0; }
    constexpr int PtInRect(const PlainPoint& point) const {
        return left <= point.x && point.x < right && top <= point.y && point.y < bottom;
    } ///< right and bottom are outside
    /// Within the family's tolerance, as == is.
    constexpr int EqualRect(const PlainRect& rect) const { return *this == rect; }
    /// Rectangles that only touch do not intersect.
    constexpr int IsIntersectRect(const PlainRect& rect) const {
        return rect.left < right && rect.right > left && rect.top < bottom && rect.bottom > top;
    }
    friend constexpr bool operator==(const PlainRect& a, const PlainRect& b) {
        return Family::isEqual(a.left, b.left) && Family::isEqual(a.top, b.top) && Family::isEqual(a.right, b.right) &&
               Family::isEqual(a.bottom, b.bottom);
    } ///< within the family's tolerance
    /// @{ Sets the edges: as given, all 0, copied, left exchanged with right, or in order.
    constexpr void SetRect(Coordinate l, Coordinate t, Coordinate r, Coordinate b) { CopyRect({l, t, r, b}); }
    constexpr void SetRect(const PlainPoint& topLeft, const PlainPoint& bottomRight) {
        CopyRect(Rect(topLeft, bottomRight));
    }
    constexpr void SetRectEmpty() { CopyRect(PlainRect{}); }
    constexpr void CopyRect(const PlainRect& rect) { static_cast<PlainRect&>(*this) = rect; }
    constexpr void CopyRect(const PlainRect* rect) { CopyRect(*rect); }
    constexpr void SwapLeftRight() { SetRect(right, top, left, bottom); }
    constexpr void NormalizeRect();
    /// @}
    /// @{ Moves edges: outward, inward (the exact inverse) or along; by one distance an edge or an axis.
    constexpr void InflateRect(Coordinate l, Coordinate t, Coordinate r, Coordinate b);
    constexpr void InflateRect(Coordinate dx, Coordinate dy) { InflateRect(dx, dy, dx, dy); }
    constexpr void InflateRect(const PlainSize& size) { InflateRect(size.cx, size.cy); }
    constexpr void InflateRect(const PlainRect* by) { InflateRect(by->left, by->top, by->right, by->bottom); }
    /// The exact inverse of InflateRect.
    constexpr void DeflateRect(Coordinate l, Coordinate t, Coordinate r, Coordinate b);
    constexpr void DeflateRect(Coordinate dx, Coordinate dy) { DeflateRect(dx, dy, dx, dy); }
    constexpr void DeflateRect(const PlainSize& size) { DeflateRect(size.cx, size.cy); }
    constexpr void DeflateRect(const PlainRect* by) { DeflateRect(by->left, by->top, by->right, by->bottom); }
    constexpr void OffsetRect(Coordinate dx, Coordinate dy);
    constexpr void OffsetRect(const PlainPoint& distance) { OffsetRect(distance.x, distance.y); }
    constexpr void OffsetRect(const PlainSize& distance) { OffsetRect(distance.cx, distance.cy); }
    /// @}
    /// Becomes the common part of a and b. Integer rectangles that only touch or miss each other give 0 and all zeros;
    /// floating ones keep an intersection without area, and leave the object alone (0) only when they miss.
    constexpr int IntersectRect(const PlainRect& a, const PlainRect& b);
    constexpr int IntersectRect(const PlainRect& rect) { return IntersectRect(*this, rect); } ///< with this one
    /// IntersectRect with b moved by (-dx, -dy).
    constexpr int IntersectWithOffset(const PlainRect& a, const PlainRect& b, Coordinate dx, Coordinate dy);
    /// Becomes the bounding rectangle of a and b; an empty one does not count, and two give 0 and no change.
    constexpr int UnionRect(const PlainRect& a, const PlainRect& b);
    constexpr int UnionRect(const PlainRect& rect) { return UnionRect(*this, rect); } ///< with this one
    /// Adds the one-unit rectangle at the point.
    constexpr int UnionRect(const PlainPoint* point) { return UnionRect(unitAt(*point)); }
    /// Grows to hold the one-unit cell at the point, even from an empty rectangle: a null one keeps its origin.
    constexpr void UnionPoint(const PlainPoint& point);
    /// Spans two corners in any order; equal coordinates give one unit.
    constexpr void Pt2Rect(const PlainPoint& p1, const PlainPoint& p2);
    /// The smallest and largest coordinates, no unit added. The largest start from 0: a polygon that lies wholly at
    /// negative coordinates gets 0 there.
    constexpr void PolygonBox(const PlainPoint* points, int count);
    /// @{ Moves by a distance, inflates (+) and deflates (-) by distances of edges, intersects and unites.
    constexpr Rect& operator+=(const PlainPoint& distance) { return OffsetRect(distance), self(); }
    constexpr Rect& operator+=(const PlainSize& distance) { return OffsetRect(distance), self(); }
    constexpr Rect& operator+=(const PlainRect* by) { return InflateRect(by), self(); }
    constexpr Rect& operator-=(const PlainPoint& distance) { return moveBack(distance.x, distance.y); }
    constexpr Rect& operator-=(const PlainSize& distance) { return moveBack(distance.cx, distance.cy); }
    constexpr Rect& operator-=(const PlainRect* by) { return DeflateRect(by), self(); }
    constexpr Rect& operator&=(const PlainRect& rect) { return IntersectRect(rect), self(); }
    constexpr Rect& operator|=(const PlainRect& rect) { return UnionRect(rect), self(); }

    constexpr Rect operator+(const PlainPoint& distance) const { return copy() += distance; }
    constexpr Rect operator+(const PlainSize& distance) const { return copy() += distance; }
    constexpr Rect operator+(const PlainRect* by) const { return copy() += by; }
    constexpr Rect operator-(const PlainPoint& distance) const { return copy() -= distance; }
    constexpr Rect operator-(const PlainSize& distance) const { return copy() -= distance; }
    constexpr Rect operator-(const PlainRect* by) const { return copy() -= by; }
    // An exact match: the built-in difference of two pointers would compete through the conversion to a pointer.
    constexpr Rect operator-(PlainRect* by) const { return copy() -= by; }
    constexpr Rect operator*(int factor) const;
    constexpr Rect operator/(int divisor) const;
    constexpr Rect operator&(const PlainRect& rect) const;
    constexpr Rect operator|(const PlainRect& rect) const;
    /// @}
    // The sum of two rectangles would mean an inflation through the conversion to a pointer: say it with a pointer.
    Rect& operator+=(const PlainRect&) = delete;
    Rect& operator-=(const PlainRect&) = delete;
    Rect operator+(const PlainRect&) const = delete;
    Rect operator-(const PlainRect&) const = delete;

private:
    static constexpr bool isEmpty(const PlainRect& rect) { return rect.left >= rect.right || rect.top >= rect.bottom; }
    static constexpr PlainRect unitAt(const PlainPoint& point) {
        return {point.x, point.y, Family::add(point.x, 1), Family::add(point.y, 1)};
    }
    static constexpr void spanAxis(Coordinate p1, Coordinate p2, Coordinate& low, Coordinate& high);

    constexpr Rect& self() { return static_cast<Rect&>(*this); }
    constexpr Rect copy() const { return static_cast<const Rect&>(*this); }
    constexpr Rect& moveBack(Coordinate dx, Coordinate dy);
};

template <class Family>
constexpr void RectBase<Family>::SetPoint(PlainPoint out[4]) const {
    out[0] = {left, top};
    out[1] = {right, top};
    out[2] = {right, bottom};
    out[3] = {left, bottom};
}

template <class Family>
constexpr void RectBase<Family>::NormalizeRect() {
    *this = Rect(lesser(left, right), lesser(top, bottom), greater(left, right), greater(top, bottom));
}

template <class Family>
constexpr void RectBase<Family>::InflateRect(Coordinate l, Coordinate t, Coordinate r, Coordinate b) {
    SetRect(Family::subtract(left, l), Family::subtract(top, t), Family::add(right, r), Family::add(bottom, b));
}

template <class Family>
constexpr void RectBase<Family>::DeflateRect(Coordinate l, Coordinate t, Coordinate r, Coordinate b) {
    SetRect(Family::add(left, l), Family::add(top, t), Family::subtract(right, r), Family::subtract(bottom, b));
}

template <class Family>
constexpr void RectBase<Family>::OffsetRect(Coordinate dx, Coordinate dy) {
    SetRect(Family::add(left, dx), Family::add(top, dy), Family::add(right, dx), Family::add(bottom, dy));
}

template <class Family>
constexpr auto RectBase<Family>::moveBack(Coordinate dx, Coordinate dy) -> Rect& {
    OffsetRect(Family::negate(dx), Family::negate(dy));
    return self();
}

template <class Family>
constexpr int RectBase<Family>::IntersectRect(const PlainRect& a, const PlainRect& b) {
    const PlainRect common{greater(a.left, b.left), greater(a.top, b.top), lesser(a.right, b.right),
                           lesser(a.bottom, b.bottom)};
    const bool meets = Family::cnKeepsTouchingIntersection ? common.left <= common.right && common.top <= common.bottom
                                                           : !isEmpty(common);
    if (meets)
        CopyRect(common);
    else if (!Family::cnKeepsTouchingIntersection)
        SetRectEmpty();
    return meets;
}

template <class Family>
constexpr int RectBase<Family>::IntersectWithOffset(const PlainRect& a, const PlainRect& b, Coordinate dx,
                                                    Coordinate dy) {
    return IntersectRect(a, Rect(b).moveBack(dx, dy));
}

template <class Family>
constexpr int RectBase<Family>::UnionRect(const PlainRect& a, const PlainRect& b) {
    if (isEmpty(a) && isEmpty(b))
        return 0;
    if (isEmpty(a))
        CopyRect(b);
    else if (isEmpty(b))
        CopyRect(a);
    else
        CopyRect(
            {lesser(a.left, b.left), lesser(a.top, b.top), greater(a.right, b.right), greater(a.bottom, b.bottom)});
    return 1;
}

template <class Family>
constexpr void RectBase<Family>::UnionPoint(const PlainPoint& point) {
    const PlainRect cell = unitAt(point);
    left = lesser(left, cell.left);
    top = lesser(top, cell.top);
    if (right <= cell.left)
        right = cell.right;
    if (bottom <= cell.top)
        bottom = cell.bottom;
}

template <class Family>
constexpr void RectBase<Family>::spanAxis(Coordinate p1, Coordinate p2, Coordinate& low, Coordinate& high) {
    low = lesser(p1, p2);
    high = greater(p1, p2);
    if (p1 <= p2 && Family::isEqual(p1, p2))
        high = Family::add(p1, 1);
}

template <class Family>
constexpr void RectBase<Family>::Pt2Rect(const PlainPoint& p1, const PlainPoint& p2) {
    spanAxis(p1.x, p2.x, left, right);
    spanAxis(p1.y, p2.y, top, bottom);
}

template <class Family>
constexpr void RectBase<Family>::PolygonBox(const PlainPoint* points, int count) {
    SetRect(Family::cnPolygonBoxStart, Family::cnPolygonBoxStart, 0, 0);
    for (int i = 0; i < count; ++i) {
        left = lesser(left, points[i].x);
        top = lesser(top, points[i].y);
        right = greater(right, points[i].x);
        bottom = greater(bottom, points[i].y);
    }
}

template <class Family>
constexpr auto RectBase<Family>::operator*(int factor) const -> Rect {
    return Rect(Family::multiply(left, factor), Family::multiply(top, factor), Family::multiply(right, factor),
                Family::multiply(bottom, factor));
}

template <class Family>
constexpr auto RectBase<Family>::operator/(int divisor) const -> Rect {
    return Rect(Family::divide(left, divisor), Family::divide(top, divisor), Family::divide(right, divisor),
                Family::divide(bottom, divisor));
}

template <class Family>
constexpr auto RectBase<Family>::operator&(const PlainRect& rect) const -> Rect {
    Rect result;
    result.IntersectRect(*this, rect);
    return result;
}

template <class Family>
constexpr auto RectBase<Family>::operator|(const PlainRect& rect) const -> Rect {
    Rect result;
    result.UnionRect(*this, rect);
    return result;
}

} // namespace ovw::geometry

#endif // OVWCMN_DETAIL_GEOMETRYRECT_H
