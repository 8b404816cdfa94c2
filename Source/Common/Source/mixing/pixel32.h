#ifndef OVW_MIXING_PIXEL32_H
#define OVW_MIXING_PIXEL32_H

/// @file
/// 32-bit pixels as words: blue in the low byte, then green, red and alpha. Internal linkage, as in fixedpoint.h.

#include <cstdint>

namespace ovw::mixing {
namespace {

/// A 32-bit pixel of block memory, which others know as bytes.
using Pixel32 [[gnu::may_alias]] = std::uint32_t;

constexpr std::uint32_t cnAlphaMask = 0xFF000000;

constexpr std::int32_t blueOf(std::uint32_t p) { return static_cast<std::int32_t>(p & 0xFF); }
constexpr std::int32_t greenOf(std::uint32_t p) { return static_cast<std::int32_t>(p >> 8 & 0xFF); }
constexpr std::int32_t redOf(std::uint32_t p) { return static_cast<std::int32_t>(p >> 16 & 0xFF); }
constexpr std::int32_t alphaOf(std::uint32_t p) { return static_cast<std::int32_t>(p >> 24); }

constexpr std::uint32_t packed(std::int32_t b, std::int32_t g, std::int32_t r, std::int32_t a) {
    return static_cast<std::uint32_t>(b) | static_cast<std::uint32_t>(g) << 8 | static_cast<std::uint32_t>(r) << 16 |
           static_cast<std::uint32_t>(a) << 24;
}

/// channel(o, c) of the three colour channels, with this alpha.
template <class Channel>
constexpr std::uint32_t eachChannel(std::uint32_t o, std::uint32_t c, std::int32_t alpha, Channel channel) {
    return packed(channel(blueOf(o), blueOf(c)), channel(greenOf(o), greenOf(c)), channel(redOf(o), redOf(c)), alpha);
}

} // namespace
} // namespace ovw::mixing

#endif // OVW_MIXING_PIXEL32_H
