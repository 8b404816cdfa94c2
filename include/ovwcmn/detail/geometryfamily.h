#ifndef OVWCMN_DETAIL_GEOMETRYFAMILY_H
#define OVWCMN_DETAIL_GEOMETRYFAMILY_H

/// @file
/// The three families of xcgeometry.h: each names its plain structs and classes, and says how its coordinates are
/// added, compared and intersected.

#include "ovwcmn/wintypes.h"

class XCPoint;
class XCSize;
class XCRect;
class XCPointF;
class XCSizeF;
class XCRectF;
class XCPointD;
class XCSizeD;
class XCRectD;

namespace ovw::geometry {

template <class T>
constexpr T lesser(T a, T b) {
    return b < a ? b : a;
}
template <class T>
constexpr T greater(T a, T b) {
    return a < b ? b : a;
}

/// Whole units. Arithmetic wraps as in two's complement: it is done on unsigned values.
struct IntegerFamily {
    using Coordinate = std::int32_t;
    using PlainPoint = tagPOINT;
    using PlainSize = tagSIZE;
    using PlainRect = tagRECT;
    using Point = XCPoint;
    using Size = XCSize;
    using Rect = XCRect;

    static constexpr Coordinate cnPolygonBoxStart = 2147483647;
    static constexpr bool cnKeepsTouchingIntersection = false;

    static constexpr std::uint32_t bits(Coordinate a) { return static_cast<std::uint32_t>(a); }
    static constexpr Coordinate add(Coordinate a, Coordinate b) { return static_cast<Coordinate>(bits(a) + bits(b)); }
    static constexpr Coordinate subtract(Coordinate a, Coordinate b) {
        return static_cast<Coordinate>(bits(a) - bits(b));
    }
    static constexpr Coordinate negate(Coordinate a) { return subtract(0, a); }
    static constexpr Coordinate multiply(Coordinate a, int factor) {
        return static_cast<Coordinate>(bits(a) * bits(factor));
    }
    // The least int divided by -1 would trap.
    static constexpr Coordinate divide(Coordinate a, int divisor) { return divisor == -1 ? negate(a) : a / divisor; }
    static constexpr Coordinate middle(Coordinate a, Coordinate b) {
        return static_cast<Coordinate>((static_cast<std::int64_t>(a) + b) / 2);
    }
    static constexpr bool isEqual(Coordinate a, Coordinate b) { return a == b; }
};

template <class T>
struct RealArithmetic {
    using Coordinate = T;

    static constexpr bool cnKeepsTouchingIntersection = true;

    static constexpr T add(T a, T b) { return a + b; }
    static constexpr T subtract(T a, T b) { return a - b; }
    static constexpr T negate(T a) { return -a; }
    static constexpr T multiply(T a, int factor) { return a * static_cast<T>(factor); }
    static constexpr T divide(T a, int divisor) { return a / static_cast<T>(divisor); }
    static constexpr T middle(T a, T b) { return (a + b) * static_cast<T>(0.5); }

protected:
    static constexpr bool isWithin(double a, double b, double tolerance) {
        return b - tolerance < a && a < b + tolerance;
    }
};

struct FloatFamily : RealArithmetic<float> {
    using PlainPoint = tagPOINTF;
    using PlainSize = tagSIZEF;
    using PlainRect = tagRECTF;
    using Point = XCPointF;
    using Size = XCSizeF;
    using Rect = XCRectF;

    static constexpr Coordinate cnPolygonBoxStart = 9999999.0F;

    static constexpr bool isEqual(Coordinate a, Coordinate b) { return isWithin(a, b, 0.0001); }
};

struct DoubleFamily : RealArithmetic<double> {
    using PlainPoint = tagPOINTD;
    using PlainSize = tagSIZED;
    using PlainRect = tagRECTD;
    using Point = XCPointD;
    using Size = XCSizeD;
    using Rect = XCRectD;

    static constexpr Coordinate cnPolygonBoxStart = 999999999999999.0;

    static constexpr bool isEqual(Coordinate a, Coordinate b) { return isWithin(a, b, 1e-08); }
};

} // namespace ovw::geometry

#endif // OVWCMN_DETAIL_GEOMETRYFAMILY_H
