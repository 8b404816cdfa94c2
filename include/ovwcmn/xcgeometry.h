#ifndef OVWCMN_XCGEOMETRY_H
#define OVWCMN_XCGEOMETRY_H

/// @file
/// Points, sizes and rectangles in three coordinate types: XCPoint, XCSize, XCRect (32-bit integers), XCPointF,
/// XCSizeF, XCRectF (float), XCPointD, XCSizeD, XCRectD (double).
///
/// Each class has the layout of its plain struct, derives from it and is trivially copyable, so that arrays of the one
/// can be passed for arrays of the other. Integer sums and products wrap around. The right and bottom edges of a
/// rectangle are exclusive; nothing keeps a rectangle normalised. Nothing here throws or allocates.

#include "ovwcmn/detail/geometrypair.h"
#include "ovwcmn/detail/geometryrect.h"
#include "ovwcmn/detail/toint.h"
#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/wintypes.h"

/// A position in whole units.
class OVWCMN_API OVWCMN_MAY_ALIAS XCPoint : public ovw::geometry::PointBase<ovw::geometry::IntegerFamily> {
public:
    using PointBase::PointBase;

    constexpr XCPoint& operator*=(int factor); ///< Products wrap around.
    /// The divisor must not be 0.
    constexpr XCPoint& operator/=(int divisor);
    /// @{ Factors with a fraction: each field is computed in double and truncated toward zero, clamped to the int
    /// range.
    constexpr XCPoint& operator*=(double factor);
    constexpr XCPoint& operator/=(double divisor);
    constexpr XCPoint operator*(int factor) const { return XCPoint(*this) *= factor; }
    constexpr XCPoint operator/(int divisor) const { return XCPoint(*this) /= divisor; }
    constexpr XCPoint operator*(double factor) const { return XCPoint(*this) *= factor; }
    constexpr XCPoint operator/(double divisor) const { return XCPoint(*this) /= divisor; }
    /// @}
};

/// An extent in whole units.
class OVWCMN_API XCSize : public ovw::geometry::SizeBase<ovw::geometry::IntegerFamily> {
public:
    using SizeBase::SizeBase;
};

/// A rectangle in whole units, as Windows knows it.
class OVWCMN_API XCRect : public ovw::geometry::RectBase<ovw::geometry::IntegerFamily> {
public:
    using RectBase::RectBase;
    using RectBase::SetRect;

    /// The corner and what lies right of it and below.
    constexpr void SetRect(tagPOINT topLeft, tagSIZE size) { *this = XCRect(topLeft, size); }

    /// Becomes the largest rectangle with the aspect ratio of `src` centred inside `dst`; `dst` itself when the sizes
    /// are equal or one of the two is empty. The margins are symmetric: an odd rest makes the result one unit wider.
    void CalcDestRect(const tagRECT& src, const tagRECT& dst);
};

/// A position in floats; positions closer than 0.0001 on both axes are equal.
class OVWCMN_API OVWCMN_MAY_ALIAS XCPointF : public ovw::geometry::PointBase<ovw::geometry::FloatFamily> {
public:
    using PointBase::PointBase;

    /// @{ Both fields.
    constexpr XCPointF& operator*=(float factor) { return *this = XCPointF(x * factor, y * factor); }
    constexpr XCPointF& operator/=(float divisor) { return *this = XCPointF(x / divisor, y / divisor); }
    constexpr XCPointF operator*(float factor) const { return XCPointF(*this) *= factor; }
    constexpr XCPointF operator/(float divisor) const { return XCPointF(*this) /= divisor; }
    /// @}

    /// Turns about the origin by radians, counter-clockwise where y points up.
    void Rotate(double angle);
};

/// An extent in floats.
class OVWCMN_API XCSizeF : public ovw::geometry::SizeBase<ovw::geometry::FloatFamily> {
public:
    using SizeBase::SizeBase;
};

/// A rectangle in floats; edges closer than 0.0001 are equal.
class OVWCMN_API XCRectF : public ovw::geometry::RectBase<ovw::geometry::FloatFamily> {
public:
    using RectBase::RectBase;
};

/// A position in doubles; positions closer than 1e-08 on both axes are equal.
class OVWCMN_API OVWCMN_MAY_ALIAS XCPointD : public ovw::geometry::PointBase<ovw::geometry::DoubleFamily> {
public:
    using PointBase::PointBase;
    using PointBase::operator+=;
    using PointBase::operator-=;
    using PointBase::operator+;
    using PointBase::operator-;

    /// @{ With whole points, converted exactly; factors act on both fields.
    constexpr XCPointD& operator+=(tagPOINT other) { return *this += toDouble(other); }
    constexpr XCPointD& operator-=(tagPOINT other) { return *this -= toDouble(other); }
    constexpr XCPointD operator+(tagPOINT other) const { return *this + toDouble(other); }
    constexpr XCPointD operator-(tagPOINT other) const { return *this - toDouble(other); }
    constexpr XCPointD& operator*=(double factor) { return *this = XCPointD(x * factor, y * factor); }
    constexpr XCPointD& operator/=(double divisor) { return *this = XCPointD(x / divisor, y / divisor); }
    constexpr XCPointD operator*(double factor) const { return XCPointD(*this) *= factor; }
    constexpr XCPointD operator/(double divisor) const { return XCPointD(*this) /= divisor; }
    /// @}

    /// Turns about the origin by radians, counter-clockwise where y points up.
    void Rotate(double angle);
    /// 1 when both points round to the same whole units (vxDouble2Int).
    int IsEqual(const tagPOINTD* other) const;

private:
    static constexpr tagPOINTD toDouble(tagPOINT point) {
        return {static_cast<double>(point.x), static_cast<double>(point.y)};
    }
};

/// An extent in doubles.
class OVWCMN_API XCSizeD : public ovw::geometry::SizeBase<ovw::geometry::DoubleFamily> {
public:
    using SizeBase::SizeBase;
};

/// A rectangle in doubles; edges closer than 1e-08 are equal.
class OVWCMN_API XCRectD : public ovw::geometry::RectBase<ovw::geometry::DoubleFamily> {
public:
    using RectBase::RectBase;

    /// The smallest rectangle of whole units around this one; edges beyond the int range are clamped.
    tagRECT IntegerExtent() const;
};

constexpr XCPoint& XCPoint::operator*=(int factor) {
    using Family = ovw::geometry::IntegerFamily;
    return *this = XCPoint(Family::multiply(x, factor), Family::multiply(y, factor));
}
constexpr XCPoint& XCPoint::operator/=(int divisor) {
    using Family = ovw::geometry::IntegerFamily;
    return *this = XCPoint(Family::divide(x, divisor), Family::divide(y, divisor));
}
constexpr XCPoint& XCPoint::operator*=(double factor) {
    return *this = XCPoint(ovw::truncateToInt(x * factor), ovw::truncateToInt(y * factor));
}
constexpr XCPoint& XCPoint::operator/=(double divisor) {
    return *this = XCPoint(ovw::truncateToInt(x / divisor), ovw::truncateToInt(y / divisor));
}

#endif // OVWCMN_XCGEOMETRY_H
