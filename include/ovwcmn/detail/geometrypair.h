#ifndef OVWCMN_DETAIL_GEOMETRYPAIR_H
#define OVWCMN_DETAIL_GEOMETRYPAIR_H

/// @file
/// What the points and sizes of xcgeometry.h have in common.

#include "ovwcmn/detail/geometryfamily.h"
#include "ovwcmn/ovwdefs.h"

#include <type_traits>

namespace ovw::geometry {

/// The arithmetic of points and sizes; Plain is the family's plain point or size, Self the class made of it.
template <class Family, class Plain, class Self>
class OVWCMN_MAY_ALIAS PairBase : public Plain {
public:
    using Coordinate = typename Family::Coordinate; ///< of one axis
    using PlainPoint = typename Family::PlainPoint; ///< the family's structs
    using PlainSize = typename Family::PlainSize;   ///< the family's structs
    using PlainRect = typename Family::PlainRect;   ///< the family's structs
    /// @{ From two coordinates or the plain struct.
    constexpr PairBase() : Plain{} {}
    constexpr PairBase(Coordinate horizontal, Coordinate vertical) : Plain{horizontal, vertical} {}
    constexpr PairBase(const Plain& plain) : Plain(plain) {}
    /// @}
    constexpr operator Plain*() { return this; }             ///< as the plain struct
    constexpr operator const Plain*() const { return this; } ///< as the plain struct
    /// @{ By both coordinates.
    constexpr Self& operator+=(const PlainPoint& other) { return assign(sum<Self>(other.x, other.y)); }
    constexpr Self& operator+=(const PlainSize& other) { return assign(sum<Self>(other.cx, other.cy)); }
    constexpr Self& operator-=(const PlainPoint& other) { return assign(difference<Self>(other.x, other.y)); }
    constexpr Self& operator-=(const PlainSize& other) { return assign(difference<Self>(other.cx, other.cy)); }
    // Only size with size gives a size; the others give a point.
    constexpr auto operator+(const PlainPoint& other) const { return sum<typename Family::Point>(other.x, other.y); }
    constexpr auto operator+(const PlainSize& other) const { return sum<Self>(other.cx, other.cy); }
    constexpr auto operator-(const PlainPoint& other) const {
        return difference<typename Family::Point>(other.x, other.y);
    }
    constexpr auto operator-(const PlainSize& other) const { return difference<Self>(other.cx, other.cy); }
    constexpr Self operator-() const { return Self(Family::negate(first(*this)), Family::negate(second(*this))); }
    /// @}
    /// The rectangle moved by this point or size.
    constexpr auto operator+(const PlainRect* rect) const { return typename Family::Rect(*rect) + plain(); }
    /// The rectangle moved by the opposite of this point or size.
    constexpr auto operator-(const PlainRect* rect) const { return typename Family::Rect(*rect) - plain(); }

    friend constexpr bool operator==(const Plain& a, const Plain& b) {
        return Family::isEqual(first(a), first(b)) && Family::isEqual(second(a), second(b));
    } ///< within the family's tolerance

private:
    static constexpr bool cnIsPoint = std::is_same_v<Plain, PlainPoint>;

    static constexpr Coordinate first(const Plain& pair) {
        if constexpr (cnIsPoint)
            return pair.x;
        else
            return pair.cx;
    }
    static constexpr Coordinate second(const Plain& pair) {
        if constexpr (cnIsPoint)
            return pair.y;
        else
            return pair.cy;
    }
    constexpr const Plain& plain() const { return *this; }
    constexpr Self& assign(const Self& value) { return static_cast<Self&>(*this) = value; }

    template <class Result>
    constexpr Result sum(Coordinate horizontal, Coordinate vertical) const {
        return Result(Family::add(first(*this), horizontal), Family::add(second(*this), vertical));
    }
    template <class Result>
    constexpr Result difference(Coordinate horizontal, Coordinate vertical) const {
        return Result(Family::subtract(first(*this), horizontal), Family::subtract(second(*this), vertical));
    }
};
/// What points have besides.
template <class Family>
class OVWCMN_MAY_ALIAS PointBase : public PairBase<Family, typename Family::PlainPoint, typename Family::Point> {
    using Base = PairBase<Family, typename Family::PlainPoint, typename Family::Point>;

public:
    using Base::Base;

    constexpr void Offset(typename Family::Coordinate dx, typename Family::Coordinate dy) {
        *this += typename Family::PlainPoint{dx, dy};
    }                                                                                         ///< moves by a distance
    constexpr void Offset(const typename Family::PlainPoint& distance) { *this += distance; } ///< moves by a distance
    constexpr void Offset(const typename Family::PlainSize& distance) { *this += distance; }  ///< moves by a distance
    constexpr void SetPt(typename Family::Coordinate newX, typename Family::Coordinate newY) {
        this->x = newX;
        this->y = newY;
    }                                                                                           ///< goes to a place
    constexpr void SetPt(const typename Family::PlainPoint& point) { SetPt(point.x, point.y); } ///< goes to a place
};
/// What sizes have besides.
template <class Family>
class SizeBase : public PairBase<Family, typename Family::PlainSize, typename Family::Size> {
    using Base = PairBase<Family, typename Family::PlainSize, typename Family::Size>;

public:
    using Base::Base;

    constexpr explicit SizeBase(const typename Family::PlainPoint& point) : Base(point.x, point.y) {} ///< as an extent
};

} // namespace ovw::geometry

#endif // OVWCMN_DETAIL_GEOMETRYPAIR_H
