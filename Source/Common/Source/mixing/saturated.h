#ifndef OVW_MIXING_SATURATED_H
#define OVW_MIXING_SATURATED_H

#include <algorithm>
#include <cstdint>
#include <limits>

namespace ovw::mixing {

/// A coordinate computed in 64 bits, cut to the range of an int: what is cut lies outside of every image.
constexpr int saturated(std::int64_t coordinate) {
    constexpr std::int64_t cnLeast = std::numeric_limits<int>::min();
    constexpr std::int64_t cnMost = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(coordinate, cnLeast, cnMost));
}

} // namespace ovw::mixing

#endif // OVW_MIXING_SATURATED_H
