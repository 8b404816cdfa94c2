#ifndef OVW_MIXING_COMPOSITIONS24_H
#define OVW_MIXING_COMPOSITIONS24_H

/// @file
/// How paint meets a channel of a 24-bit pixel, where the step compositions of 32 bits do not serve: o is the channel
/// below, c the paint's, a the opacity in 1.15, b as a byte.

#include "mixing/fixedpoint.h"

namespace ovw::mixing {
namespace {

// c
struct ChannelReplace {
    static std::int32_t channel(std::int32_t, std::int32_t c, std::int32_t) { return c; }
};

// lerp(o, c, a)
struct ChannelNormal15 {
    static std::int32_t channel(std::int32_t o, std::int32_t c, std::int32_t a) { return Scale15::lerp(o, c, a); }
};

// lerp(o, c, b), truncated
struct ChannelNormal8 {
    static std::int32_t channel(std::int32_t o, std::int32_t c, std::int32_t b) { return Scale8::lerp(o, c, b); }
};

} // namespace
} // namespace ovw::mixing

#endif // OVW_MIXING_COMPOSITIONS24_H
