#ifndef OVW_OFFSCREEN_CLASSICFORMATS_H
#define OVW_OFFSCREEN_CLASSICFORMATS_H

/// @file
/// The four pixel formats of classic images: each is its layout in memory, which it shares with the tiled images'
/// formats, and its conversions. readN gives a pixel as an N-bit value, writeN makes a pixel of one; fillValue is the
/// pixel that fills draw for a colour, which rounds in its own way.

#include "vimage/pixelcolour.h"
#include "vimage/pixellayout.h"

#include <cstdint>

namespace ovw::offscreen {

using vimage::alphaOf;
using vimage::blueOf;
using vimage::cnByteMax;
using vimage::cnOpaqueAlpha;
using vimage::cnOpaqueBlack;
using vimage::cnOpaqueWhite;
using vimage::cnRgbMask;
using vimage::cnWhite;
using vimage::greenOf;
using vimage::packColour;
using vimage::redOf;

inline constexpr int cnInkBelow = 382;      ///< sums of the three channels below this are ink
inline constexpr int cnInkDensity = 128;    ///< densities from here on are ink
inline constexpr int cnDensityScale = 1000; ///< a third is taken as 333 of these
inline constexpr int cnThird = 333;

constexpr std::uint8_t byteOf(int value) { return static_cast<std::uint8_t>(value); }
constexpr int sumOf(std::uint32_t colour) { return redOf(colour) + greenOf(colour) + blueOf(colour); }
/// 255 - sum * 0.333, truncated or rounded (a tie upwards).
constexpr int densityRead(int sum) { return (cnByteMax * cnDensityScale - sum * cnThird) / cnDensityScale; }
constexpr int densityWritten(int sum) {
    return (cnByteMax * cnDensityScale - sum * cnThird + cnDensityScale / 2) / cnDensityScale;
}
constexpr int densityFilled(int sum) { return cnByteMax - sum / 3; }
constexpr std::uint32_t greyColour(int density) { return static_cast<std::uint32_t>(cnByteMax - density) * 0x010101; }

/// 1 = ink.
struct Ink1 : vimage::PackedLayout<1> {
    static constexpr std::uint8_t read1(Value v) { return v; }
    static constexpr std::uint8_t read8(Value v) { return v ? 255 : 0; }
    static constexpr std::uint32_t read24(Value v) { return v ? 0 : cnWhite; }
    static constexpr std::uint32_t read32(Value v) { return v ? cnOpaqueBlack : cnOpaqueWhite; }
    static constexpr Value write1(std::uint8_t v) { return v == 1; }
    static constexpr Value write8(std::uint8_t d) { return d >= cnInkDensity; }
    static constexpr Value write24(std::uint32_t c) { return sumOf(c) < cnInkBelow; }
    static constexpr Value write32(std::uint32_t c) { return write24(c); }
    static constexpr Value fillValue(std::uint32_t c) { return (c & cnRgbMask) == 0; }
};

/// 255 = full ink.
struct Density8 : vimage::ByteLayout<std::uint8_t> {
    static constexpr std::uint8_t read1(Value d) { return d >= cnInkDensity; }
    static constexpr std::uint8_t read8(Value d) { return d; }
    static constexpr std::uint32_t read24(Value d) { return greyColour(d); }
    static constexpr std::uint32_t read32(Value d) { return cnOpaqueAlpha | greyColour(d); }
    static constexpr Value write1(std::uint8_t v) { return v == 1 ? 255 : 0; }
    static constexpr Value write8(std::uint8_t d) { return d; }
    static constexpr Value write24(std::uint32_t c) { return byteOf(densityWritten(sumOf(c))); }
    static constexpr Value write32(std::uint32_t c) { return write24(c); }
    static constexpr Value fillValue(std::uint32_t c) { return byteOf(densityFilled(sumOf(c))); }
};

struct RgbPixel {
    std::uint8_t red, green, blue;
    friend constexpr bool operator==(const RgbPixel&, const RgbPixel&) = default;
};
struct ArgbPixel {
    std::uint8_t alpha, red, green, blue;
    friend constexpr bool operator==(const ArgbPixel&, const ArgbPixel&) = default;
};

struct Rgb24 : vimage::ByteLayout<RgbPixel> {
    static constexpr int cnRed = 0, cnGreen = 1, cnBlue = 2, cnAlpha = 0; // offsets; there is no alpha
    static constexpr std::uint8_t read1(Value v) { return v.red + v.green + v.blue < cnInkBelow; }
    static constexpr std::uint8_t read8(Value v) { return byteOf(densityRead(v.red + v.green + v.blue)); }
    static constexpr std::uint32_t read24(Value v) { return packColour(0, v.red, v.green, v.blue); }
    static constexpr std::uint32_t read32(Value v) { return cnOpaqueAlpha | read24(v); }
    static constexpr Value write1(std::uint8_t v) { return write8(v == 1 ? 255 : 0); }
    static constexpr Value write8(std::uint8_t d) {
        const std::uint8_t grey = byteOf(cnByteMax - d);
        return {grey, grey, grey};
    }
    static constexpr Value write24(std::uint32_t c) {
        return {byteOf(redOf(c)), byteOf(greenOf(c)), byteOf(blueOf(c))};
    }
    static constexpr Value write32(std::uint32_t c) { return write24(c); }
    static constexpr Value fillValue(std::uint32_t c) { return write24(c); }
};

struct Argb32 : vimage::ByteLayout<ArgbPixel> {
    static constexpr int cnAlpha = 0, cnRed = 1, cnGreen = 2, cnBlue = 3; // offsets
    static constexpr std::uint8_t read1(Value v) { return v.red + v.green + v.blue < cnInkBelow; }
    static constexpr std::uint8_t read8(Value v) { return byteOf(densityRead(v.red + v.green + v.blue)); }
    static constexpr std::uint32_t read24(Value v) { return packColour(0, v.red, v.green, v.blue); }
    static constexpr std::uint32_t read32(Value v) { return packColour(v.alpha, v.red, v.green, v.blue); }
    static constexpr Value write1(std::uint8_t v) { return write8(v == 1 ? 255 : 0); }
    static constexpr Value write8(std::uint8_t d) {
        const std::uint8_t grey = byteOf(cnByteMax - d);
        return {grey, grey, grey, grey};
    }
    static constexpr Value write24(std::uint32_t c) { return write32(c | cnOpaqueAlpha); }
    static constexpr Value write32(std::uint32_t c) {
        return {byteOf(alphaOf(c)), byteOf(redOf(c)), byteOf(greenOf(c)), byteOf(blueOf(c))};
    }
    static constexpr Value fillValue(std::uint32_t c) { return write32(c); }
};

/// Whether pixels lie in whole bytes.
template <class Format>
inline constexpr bool cnHasBytes = Format::cnBits >= 8;

} // namespace ovw::offscreen

#endif // OVW_OFFSCREEN_CLASSICFORMATS_H
