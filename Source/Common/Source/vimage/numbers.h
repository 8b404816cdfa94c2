#ifndef OVW_VIMAGE_NUMBERS_H
#define OVW_VIMAGE_NUMBERS_H

#include "ovwcmn/detail/toint.h"

#include <cstdint>
#include <limits>

namespace ovw::vimage {

/// Truncated toward zero within low to high; low for what is not a number.
constexpr int truncateWithin(double value, int low, int high) {
    if (!(value > low))
        return low;
    return value >= high ? high : static_cast<int>(value);
}

/// start + length, clamped to the range of an int.
constexpr int endOf(int start, int length) {
    using Limits = std::numeric_limits<std::int32_t>;
    const std::int64_t end = std::int64_t{start} + length;
    return static_cast<int>(end > Limits::max() ? Limits::max() : end < Limits::min() ? Limits::min() : end);
}

/// Division by a positive number, rounded up; value is not negative.
constexpr std::int64_t ceilDiv(std::int64_t value, std::int64_t divisor) { return (value + divisor - 1) / divisor; }

} // namespace ovw::vimage

#endif // OVW_VIMAGE_NUMBERS_H
