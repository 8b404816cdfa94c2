#ifndef OVW_TESTS_MIXING_REFERENCERULES_H
#define OVW_TESTS_MIXING_REFERENCERULES_H

#include "referencemixer.h"

#include <algorithm>
#include <cstdint>

/// @file
/// Numbers that the sources of the reference mixer share.

namespace ovw::test {

constexpr std::int64_t cnOne = 32768;

enum StyleBit : std::uint32_t {
    cnGauss = 0x1,
    cnDither = 0x2,
    cnCacheMax = 0x10,
    cnCacheOver = 0x20,
    cnCacheAdd = 0x40,
    cnSampleOnly = 0x100,
    cnTextureAfter = 0x1000
};

enum Composition {
    cnReplace,
    cnNormal,
    cnErase,
    cnDarkenStep,
    cnLightenStep,
    cnWater,
    cnMultiply,
    cnWaterMultiply,
    cnAdd,
    cnLighten,
    cnDarken,
    cnColorBurn,
    cnColorDodge,
    cnScreen,
    cnOverlay,
    cnDifference,
    cnSoftLight,
    cnHardLight,
    cnAddFade
};

inline std::int64_t lerp(std::int64_t p, std::int64_t q, std::int64_t a) {
    return (p * (cnOne - a) + q * a + 16384) >> 15;
}

/// The nearest byte of a value that is not negative.
inline int round(double value) { return std::clamp(int(value + 0.5), 0, 255); }

inline int byte(std::int64_t value) { return int(std::clamp<std::int64_t>(value, 0, 255)); }

inline int opacityByte(std::int64_t a) { return int((a - 1) >> 7); }

/// rule(o, c) for each of the three channels.
template <class Rule>
Rgba eachChannel(const Rgba& o, const Rgba& c, Rule rule) {
    return {byte(rule(o.r, c.r)), byte(rule(o.g, c.g)), byte(rule(o.b, c.b)), o.a};
}

} // namespace ovw::test

#endif // OVW_TESTS_MIXING_REFERENCERULES_H
