#ifndef OVW_MIXING_BYTEWEIGHT_H
#define OVW_MIXING_BYTEWEIGHT_H

/// @file
/// The 8-bit weights of the per-pixel mixers, and how a rule is applied to the channels of a packed colour.

#include "mixing/fixedpoint.h"
#include "vimage/pixelcolour.h"

#include <cstdint>

namespace ovw::mixing {
namespace {

/// v * w / 255, truncated toward zero; v -255 to 255, w 0 to 255.
constexpr int weighted(int v, int w) { return v < 0 ? -Scale8::over255(-v * w) : Scale8::over255(v * w); }

/// From p toward q by w.
constexpr int movedToward(int p, int q, int w) { return p + weighted(q - p, w); }

constexpr std::uint8_t toByte(int v) {
    return static_cast<std::uint8_t>(v < 0 ? 0 : v > vimage::cnByteMax ? vimage::cnByteMax : v);
}

/// A pixel that says "nothing here": transparent, and black or white below.
constexpr bool isEmptyPixel(std::uint32_t pixel) { return pixel == vimage::cnBlack || pixel == vimage::cnWhite; }

constexpr std::uint32_t withAlpha(std::uint32_t colour, int alpha) {
    return (colour & vimage::cnRgbMask) | static_cast<std::uint32_t>(alpha) << 24;
}

/// rule(pixel's channel, colour's channel), 0 to 255, for the three colour channels; the pixel's alpha stays.
template <class Rule>
constexpr std::uint32_t mixedChannels(std::uint32_t pixel, std::uint32_t colour, Rule rule) {
    using namespace vimage;
    return packColour(alphaOf(pixel), rule(redOf(pixel), redOf(colour)), rule(greenOf(pixel), greenOf(colour)),
                      rule(blueOf(pixel), blueOf(colour)));
}

static_assert(weighted(100, 128) == 50 && weighted(-100, 128) == -50 && weighted(-255, 255) == -255);
static_assert(weighted(-1, 254) == 0 && weighted(1, 254) == 0);

} // namespace
} // namespace ovw::mixing

#endif // OVW_MIXING_BYTEWEIGHT_H
