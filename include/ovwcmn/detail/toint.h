#ifndef OVWCMN_DETAIL_TOINT_H
#define OVWCMN_DETAIL_TOINT_H

/// @file
/// The two ways from floating point to whole numbers. Both clamp to the range of an int; NaN becomes 0.

#include <cstdint>
#include <limits>

namespace ovw {

/// Drops the fraction.
constexpr std::int32_t truncateToInt(double value) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (value >= Limits::max())
        return Limits::max();
    if (value <= Limits::min())
        return Limits::min();
    return value == value ? static_cast<std::int32_t>(value) : 0;
}

/// To the nearest, halves away from zero. (Adding 0.5 first would round 0.49999999999999994 up.)
constexpr std::int32_t roundToInt(double value) {
    const std::int32_t whole = truncateToInt(value);
    const double rest = value - whole;
    if (rest >= 0.5 && whole < std::numeric_limits<std::int32_t>::max())
        return whole + 1;
    if (rest <= -0.5 && whole > std::numeric_limits<std::int32_t>::min())
        return whole - 1;
    return whole;
}

} // namespace ovw

#endif // OVWCMN_DETAIL_TOINT_H
