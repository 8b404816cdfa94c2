#ifndef OVW_VIMAGE_PIXELFORMATS_H
#define OVW_VIMAGE_PIXELFORMATS_H

/// @file
/// The six pixel formats. Each is its layout in memory and its conversions: readN gives a pixel as an N-bit image would
/// hold it, image8/image24 as a picture without coverage, mask8 its coverage alone; writeN makes a pixel of an N-bit
/// image's value; native is the value that an image of this depth shows to its callers. fillValue and rowValue are the
/// pixels of rectangle and row fills, behind puts a colour behind a pixel. Everything but memory access is constexpr.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/xcvoffscreenblock.h"
#include "vimage/pixelcolour.h"
#include "vimage/pixellayout.h"

#include <cstdint>
#include <cstring>

namespace ovw::vimage {

inline constexpr int cnBlockSize = 256;
inline constexpr int cnBlockMask = cnBlockSize - 1;
template <class Format>
inline constexpr int cnRowBytes = cnBlockSize* Format::cnBits / 8;

// Values of 2-bit pixels; 1 is never written.
inline constexpr std::uint8_t cnTransparent2 = 0;
inline constexpr std::uint8_t cnWhite2 = 2;
inline constexpr std::uint8_t cnBlack2 = 3;

struct GreyPixel {
    std::uint8_t coverage, grey;
};
struct BgrPixel {
    std::uint8_t blue, green, red;
};
struct BgraPixel {
    std::uint8_t blue, green, red, alpha;
};

/// What the plain readers answer where no memory is, and what copying such a pixel stores; a format redefines what
/// differs.
template <class Value>
struct MissingPixel {
    static constexpr Value cnMissingValue{};
    static constexpr std::uint32_t cnMissingOwn = 0;
    static constexpr std::uint8_t cnMissing2 = 0;
    static constexpr std::uint32_t cnMissing16 = 0;
    static constexpr std::uint8_t cnMissingMask = 0;
};

constexpr std::uint8_t byteOf(int value) { return static_cast<std::uint8_t>(value); }

/// 1 = ink.
struct OVWCMN_API Bit1 : PackedLayout<1>, MissingPixel<std::uint8_t> {
    static constexpr std::uint8_t cnMissingMask = 255;
    static constexpr std::uint8_t cnEmptyBits = 0xFF;

    static constexpr std::uint8_t read1(Value v, const PixelRules&) { return v; }
    static constexpr std::uint8_t read2(Value v, const PixelRules&) { return v ? cnBlack2 : cnTransparent2; }
    static constexpr std::uint8_t read8(Value v, const PixelRules&) { return v ? 255 : 0; }
    static constexpr std::uint32_t read16(Value v, const PixelRules&) { return v ? cnOpaqueBlack : 0; }
    static constexpr std::uint32_t read24(Value v, const PixelRules&) { return v ? cnBlack : cnWhite; }
    static constexpr std::uint32_t read32(Value v, const PixelRules& rules) { return v ? rules.indexColours[1] : 0; }
    static constexpr std::uint8_t image8(Value v, const PixelRules& rules) { return read8(v, rules); }
    static constexpr std::uint32_t image24(Value v, const PixelRules& rules) { return read24(v, rules); }
    static constexpr std::uint8_t mask8(Value, const PixelRules&) { return 255; }

    static constexpr Value write1(std::uint8_t v, const PixelRules&) { return v != 0; }
    static constexpr Value write2(std::uint8_t v, const PixelRules&) { return v == cnWhite2 || v == cnBlack2; }
    static constexpr Value write8(std::uint8_t d, const PixelRules& rules) { return d > rules.transparency; }
    static constexpr Value write16(std::uint32_t c, const PixelRules& rules) {
        return scaledBy(cnByteMax - blueOf(c), alphaOf(c)) > rules.transparency;
    }
    static constexpr Value write24(std::uint32_t c, const PixelRules& rules) {
        return darkness(c) > rules.transparency;
    }
    static constexpr Value write32(std::uint32_t c, const PixelRules& rules) { return inkOf(c) > rules.transparency; }
    static constexpr auto readOwn = read1;
    static constexpr auto writeOwn = write1;
    static constexpr std::uint32_t native(Value v) { return v; }

    static constexpr Value fillValue(std::uint32_t c, const PixelRules& rules) {
        return alphaOf(c) > rules.transparency && inkBit(c);
    }
    static constexpr Value rowValue(std::uint32_t c, const PixelRules&) { return byteOf(inkBit(c)); }
    static constexpr Value eraseValue(std::uint32_t, const PixelRules&) { return 0; }
    static constexpr Value behind(Value v, std::uint32_t c, const PixelRules& rules) {
        return write32(behindColour(read32(v, rules), c), rules);
    }
    static void clearRow(std::uint8_t* row, int x, int count, std::uint8_t clearByte, std::uint32_t) {
        fillPattern(row, x, count, clearByte);
    }
};

/// 0 transparent, 2 opaque white, 3 opaque black.
struct OVWCMN_API Bit2 : PackedLayout<2>, MissingPixel<std::uint8_t> {
    static constexpr std::uint8_t cnEmptyBits = 0xAA; // the high bit of each pixel

    static constexpr std::uint8_t read1(Value v, const PixelRules&) { return v == cnBlack2; }
    static constexpr std::uint8_t read2(Value v, const PixelRules&) { return v == 1 ? cnTransparent2 : v; }
    static constexpr std::uint8_t read8(Value v, const PixelRules&) { return v == cnBlack2 ? 255 : 0; }
    static constexpr std::uint32_t read16(Value v, const PixelRules&) {
        return v == cnBlack2 ? cnOpaqueBlack : v == cnWhite2 ? cnOpaqueWhite : 0;
    }
    static constexpr std::uint32_t read24(Value v, const PixelRules&) { return v == cnBlack2 ? cnBlack : cnWhite; }
    static constexpr std::uint32_t read32(Value v, const PixelRules& rules) {
        return v == cnBlack2 || v == cnWhite2 ? rules.indexColours[v] : 0;
    }
    static constexpr std::uint8_t image8(Value v, const PixelRules&) { return (v & 1) ? 255 : 0; }
    static constexpr std::uint32_t image24(Value v, const PixelRules&) { return (v & 1) ? cnBlack : cnWhite; }
    static constexpr std::uint8_t mask8(Value v, const PixelRules&) { return v >= cnWhite2 ? 255 : 0; }

    static constexpr Value write1(std::uint8_t v, const PixelRules&) { return v ? cnBlack2 : cnTransparent2; }
    static constexpr Value write2(std::uint8_t v, const PixelRules&) {
        return v == cnWhite2 || v == cnBlack2 ? v : cnTransparent2;
    }
    static constexpr Value write8(std::uint8_t d, const PixelRules& rules) {
        return d > rules.transparency ? cnBlack2 : cnTransparent2;
    }
    static constexpr Value write16(std::uint32_t c, const PixelRules& rules) {
        return ofGrey(alphaOf(c), blueOf(c), rules);
    }
    static constexpr Value write24(std::uint32_t c, const PixelRules& rules) {
        return luminance(c) >= rules.blackWhite ? cnWhite2 : cnBlack2;
    }
    static constexpr Value write32(std::uint32_t c, const PixelRules& rules) {
        return ofGrey(alphaOf(c), luminance(c), rules);
    }
    static constexpr auto readOwn = read2;
    static constexpr auto writeOwn = write2;
    static constexpr std::uint32_t native(Value v) { return v; }

    static constexpr Value fillValue(std::uint32_t c, const PixelRules& rules) { return rowValue(c, rules); }
    static constexpr Value rowValue(std::uint32_t c, const PixelRules&) {
        return alphaOf(c) < 128 ? cnTransparent2 : (c & cnRgbTopBits) ? cnWhite2 : cnBlack2;
    }
    static constexpr Value eraseValue(std::uint32_t, const PixelRules&) { return cnTransparent2; }
    static constexpr Value behind(Value v, std::uint32_t c, const PixelRules& rules) {
        return write32(behindColour(read32(v, rules), c), rules);
    }
    static void clearRow(std::uint8_t* row, int x, int count, std::uint8_t, std::uint32_t) {
        fillPattern(row, x, count, 0);
    }
    /// What reading and writing the pixels of a run one by one makes of them: 1 becomes 0.
    static void settleRow(std::uint8_t* row, int x, int count) {
        if (count > 0)
            keepingEnds(row, ByteRun::ofPixels(cnBits, x, count), settle);
    }
    static void settle(std::uint8_t* bytes, std::size_t number) {
        constexpr std::uint64_t cnHighBits = 0xAAAAAAAAAAAAAAAA; // cnEmptyBits, eight times
        for (std::uint64_t eight; number >= sizeof eight; bytes += sizeof eight, number -= sizeof eight) {
            std::memcpy(&eight, bytes, sizeof eight);
            eight &= cnHighBits | (eight & cnHighBits) >> 1;
            std::memcpy(bytes, &eight, sizeof eight);
        }
        for (std::uint8_t* const end = bytes + number; bytes != end; ++bytes)
            *bytes = byteOf(*bytes & (cnEmptyBits | (*bytes & cnEmptyBits) >> 1));
    }
    static constexpr Value ofGrey(int alpha, int grey, const PixelRules& rules) {
        return alpha <= rules.transparency ? cnTransparent2 : grey >= rules.blackWhite ? cnWhite2 : cnBlack2;
    }
};

/// Ink density: 0 nothing, 255 full ink.
struct OVWCMN_API Density8 : ByteLayout<std::uint8_t>, MissingPixel<std::uint8_t> {
    static constexpr std::uint8_t cnMissingMask = 255;
    static constexpr std::uint64_t cnEmptyBits = 0xFFFFFFFFFFFFFFFF;

    static constexpr std::uint8_t read1(Value d, const PixelRules& rules) { return d > rules.transparency; }
    static constexpr std::uint8_t read2(Value d, const PixelRules& rules) {
        return d > rules.transparency ? cnBlack2 : cnTransparent2;
    }
    static constexpr std::uint8_t read8(Value d, const PixelRules&) { return d; }
    static constexpr std::uint32_t read16(Value d, const PixelRules&) { return packColour(d, 0, 0, 0); }
    static constexpr std::uint32_t read24(Value d, const PixelRules&) { return packGrey(255, cnByteMax - d); }
    static constexpr std::uint32_t read32(Value d, const PixelRules& rules) {
        return packColour(d, 0, 0, 0) | (rules.indexColours[1] & cnRgbMask);
    }
    static constexpr std::uint8_t image8(Value d, const PixelRules&) { return d; }
    static constexpr std::uint32_t image24(Value d, const PixelRules& rules) { return read24(d, rules); }
    static constexpr std::uint8_t mask8(Value, const PixelRules&) { return 255; }

    static constexpr Value write1(std::uint8_t v, const PixelRules&) { return v ? 255 : 0; }
    static constexpr Value write2(std::uint8_t v, const PixelRules&) { return v ? 255 : 0; }
    static constexpr Value write8(std::uint8_t d, const PixelRules&) { return d; }
    static constexpr Value write16(std::uint32_t c, const PixelRules&) {
        return byteOf(scaledBy(cnByteMax - blueOf(c), alphaOf(c)));
    }
    static constexpr Value write24(std::uint32_t c, const PixelRules&) { return byteOf(darkness(c)); }
    static constexpr Value write32(std::uint32_t c, const PixelRules&) { return byteOf(inkOf(c)); }
    static constexpr auto readOwn = read8;
    static constexpr auto writeOwn = write8;
    static constexpr std::uint32_t native(Value d) { return d; }

    static constexpr Value fillValue(std::uint32_t c, const PixelRules& rules) { return rowValue(c, rules); }
    static constexpr Value rowValue(std::uint32_t c, const PixelRules&) { return byteOf(cnByteMax - redOf(c)); }
    static constexpr Value eraseValue(std::uint32_t, const PixelRules&) { return 0; }
    static constexpr Value behind(Value d, std::uint32_t c, const PixelRules& rules) {
        return write32(behindColour(read32(d, rules), c), rules);
    }
    static void clearRow(std::uint8_t* row, int x, int count, std::uint8_t clearByte, std::uint32_t) {
        fillRow(row, x, count, clearByte);
    }
};

/// Coverage, then grey. Colour values carry the grey in their blue byte.
struct OVWCMN_API CoverageGrey16 : ByteLayout<GreyPixel>, MissingPixel<GreyPixel> {
    static constexpr std::uint64_t cnEmptyBits = 0x00FF00FF00FF00FF; // the first byte of each pixel

    static constexpr std::uint8_t read1(Value v, const PixelRules& rules) { return v.coverage > rules.transparency; }
    static constexpr std::uint8_t read2(Value v, const PixelRules& rules) {
        return Bit2::ofGrey(v.coverage, v.grey, rules);
    }
    static constexpr std::uint8_t read8(Value v, const PixelRules&) { return v.coverage; }
    static constexpr std::uint32_t read16(Value v, const PixelRules&) { return packGrey(v.coverage, v.grey); }
    static constexpr std::uint32_t read24(Value v, const PixelRules&) {
        return packGrey(255, scaledBy(v.grey, v.coverage));
    }
    static constexpr std::uint32_t read32(Value v, const PixelRules& rules) { return read16(v, rules); }
    static constexpr std::uint8_t image8(Value v, const PixelRules&) { return byteOf(cnByteMax - v.grey); }
    static constexpr std::uint32_t image24(Value v, const PixelRules&) { return packGrey(255, v.grey); }
    static constexpr std::uint8_t mask8(Value v, const PixelRules&) { return v.coverage; }

    static constexpr Value write1(std::uint8_t v, const PixelRules&) { return v ? cnInk : cnNothing; }
    static constexpr Value write2(std::uint8_t v, const PixelRules&) {
        return v == cnWhite2 ? Value{255, 255} : v == cnBlack2 ? cnInk : cnNothing;
    }
    static constexpr Value write8(std::uint8_t d, const PixelRules&) { return {d, 0}; }
    static constexpr Value write16(std::uint32_t c, const PixelRules&) {
        return {byteOf(alphaOf(c)), byteOf(blueOf(c))};
    }
    static constexpr Value write24(std::uint32_t c, const PixelRules&) { return {255, byteOf(luminance(c))}; }
    static constexpr Value write32(std::uint32_t c, const PixelRules&) {
        return {byteOf(alphaOf(c)), byteOf(luminance(c))};
    }
    static constexpr auto readOwn = read16;
    static constexpr auto writeOwn = write16;
    static constexpr std::uint32_t native(Value v) { return packColour(v.coverage, 0, 0, v.grey); }

    static constexpr Value fillValue(std::uint32_t c, const PixelRules& rules) { return write32(c, rules); }
    static constexpr Value rowValue(std::uint32_t c, const PixelRules& rules) { return write16(c, rules); }
    static constexpr Value eraseValue(std::uint32_t clear, const PixelRules& rules) { return write32(clear, rules); }
    static constexpr Value behind(Value v, std::uint32_t c, const PixelRules&) {
        const int grey = v.coverage ? v.grey : cnByteMax;
        const int opacity = behindOpacity(alphaOf(c), v.coverage);
        return {byteOf(behindAlpha(alphaOf(c), v.coverage)), byteOf(behindChannel(grey, luminance(c), opacity))};
    }
    static void clearRow(std::uint8_t* row, int x, int count, std::uint8_t, std::uint32_t clear) {
        fillRow(row, x, count, {byteOf(alphaOf(clear)), byteOf(blueOf(clear))});
    }

    static constexpr Value cnInk{255, 0};
    static constexpr Value cnNothing{0, 0};
};

/// Blue, green, red; always opaque.
struct OVWCMN_API Rgb24 : ByteLayout<BgrPixel>, MissingPixel<BgrPixel> {
    static constexpr Value cnMissingValue{255, 255, 255};
    static constexpr std::uint32_t cnMissingOwn = cnWhite;
    static constexpr std::uint8_t cnMissing2 = cnWhite2;
    static constexpr std::uint8_t cnMissingMask = 255;

    static constexpr std::uint32_t rgbOf(Value v) { return packColour(0, v.red, v.green, v.blue); }
    static constexpr Value ofRgb(std::uint32_t c) { return {byteOf(blueOf(c)), byteOf(greenOf(c)), byteOf(redOf(c))}; }

    static constexpr std::uint8_t read1(Value v, const PixelRules& rules) {
        return darkness(rgbOf(v)) > rules.transparency;
    }
    static constexpr std::uint8_t read2(Value v, const PixelRules& rules) {
        return luminance(rgbOf(v)) < rules.blackWhite ? cnBlack2 : cnWhite2;
    }
    static constexpr std::uint8_t read8(Value v, const PixelRules&) { return byteOf(darkness(rgbOf(v))); }
    static constexpr std::uint32_t read16(Value v, const PixelRules&) { return cnOpaqueAlpha | rgbOf(v); }
    static constexpr std::uint32_t read24(Value v, const PixelRules&) { return rgbOf(v); }
    static constexpr std::uint32_t read32(Value v, const PixelRules&) { return cnOpaqueAlpha | rgbOf(v); }
    static constexpr std::uint8_t image8(Value v, const PixelRules& rules) { return read8(v, rules); }
    static constexpr std::uint32_t image24(Value v, const PixelRules&) { return rgbOf(v); }
    static constexpr std::uint8_t mask8(Value, const PixelRules&) { return 255; }

    static constexpr Value write1(std::uint8_t v, const PixelRules&) { return ofRgb(v ? cnBlack : cnWhite); }
    static constexpr Value write2(std::uint8_t v, const PixelRules&) {
        return ofRgb(v == cnBlack2 ? cnBlack : cnWhite);
    }
    static constexpr Value write8(std::uint8_t d, const PixelRules&) { return ofRgb(packGrey(0, cnByteMax - d)); }
    static constexpr Value write16(std::uint32_t c, const PixelRules&) { return ofRgb(c); }
    static constexpr Value write24(std::uint32_t c, const PixelRules&) { return ofRgb(c); }
    static constexpr Value write32(std::uint32_t c, const PixelRules&) { return ofRgb(c); }
    static constexpr auto readOwn = read24;
    static constexpr auto writeOwn = write24;
    static constexpr std::uint32_t native(Value v) { return rgbOf(v); }

    static constexpr Value fillValue(std::uint32_t c, const PixelRules&) { return ofRgb(c); }
    static constexpr Value rowValue(std::uint32_t c, const PixelRules&) { return ofRgb(c); }
    static constexpr Value eraseValue(std::uint32_t clear, const PixelRules&) { return ofRgb(clear); }
    /// Without alpha the pixel's own luminance stands for its transparency.
    static constexpr Value behind(Value v, std::uint32_t c, const PixelRules&) {
        const int opacity = alphaOf(c) * luminance(rgbOf(v)) / cnByteMax;
        return {byteOf(behindChannel(v.blue, blueOf(c), opacity)), byteOf(behindChannel(v.green, greenOf(c), opacity)),
                byteOf(behindChannel(v.red, redOf(c), opacity))};
    }
    static void clearRow(std::uint8_t* row, int x, int count, std::uint8_t, std::uint32_t clear) {
        fillRow(row, x, count, ofRgb(clear));
    }
};

/// Blue, green, red, alpha; not premultiplied.
struct OVWCMN_API Rgba32 : ByteLayout<BgraPixel>, MissingPixel<BgraPixel> {
    static constexpr std::uint32_t cnMissing16 = 0xFFFFFFFF;
    static constexpr std::uint64_t cnEmptyBits = 0xFF000000FF000000; // the last byte of each pixel

    static constexpr std::uint32_t colourOf(Value v) { return packColour(v.alpha, v.red, v.green, v.blue); }
    static constexpr Value ofColour(std::uint32_t c) {
        return {byteOf(blueOf(c)), byteOf(greenOf(c)), byteOf(redOf(c)), byteOf(alphaOf(c))};
    }

    static constexpr std::uint8_t read1(Value v, const PixelRules& rules) {
        return inkOf(colourOf(v)) > rules.transparency;
    }
    static constexpr std::uint8_t read2(Value v, const PixelRules& rules) {
        return Bit2::ofGrey(v.alpha, luminance(colourOf(v)), rules);
    }
    static constexpr std::uint8_t read8(Value v, const PixelRules&) { return byteOf(inkOf(colourOf(v))); }
    static constexpr std::uint32_t read16(Value v, const PixelRules&) {
        return packGrey(v.alpha, luminance(colourOf(v)));
    }
    /// Over black.
    static constexpr std::uint32_t read24(Value v, const PixelRules&) {
        return packColour(255, scaledBy(v.red, v.alpha), scaledBy(v.green, v.alpha), scaledBy(v.blue, v.alpha));
    }
    static constexpr std::uint32_t read32(Value v, const PixelRules&) { return colourOf(v); }
    static constexpr std::uint8_t image8(Value v, const PixelRules&) { return byteOf(darkness(colourOf(v))); }
    static constexpr std::uint32_t image24(Value v, const PixelRules&) { return cnOpaqueAlpha | colourOf(v); }
    static constexpr std::uint8_t mask8(Value v, const PixelRules&) { return v.alpha; }

    static constexpr Value write1(std::uint8_t v, const PixelRules&) { return ofColour(v ? cnOpaqueBlack : 0); }
    static constexpr Value write2(std::uint8_t v, const PixelRules&) {
        return ofColour(v == cnWhite2 ? cnOpaqueWhite : v == cnBlack2 ? cnOpaqueBlack : 0);
    }
    static constexpr Value write8(std::uint8_t d, const PixelRules&) { return {0, 0, 0, d}; }
    static constexpr Value write16(std::uint32_t c, const PixelRules&) { return ofColour(c); }
    static constexpr Value write24(std::uint32_t c, const PixelRules&) { return ofColour(c | cnOpaqueAlpha); }
    static constexpr Value write32(std::uint32_t c, const PixelRules&) { return ofColour(c); }
    static constexpr auto readOwn = read32;
    static constexpr auto writeOwn = write32;
    static constexpr std::uint32_t native(Value v) { return colourOf(v); }

    static constexpr Value fillValue(std::uint32_t c, const PixelRules&) { return ofColour(c); }
    static constexpr Value rowValue(std::uint32_t c, const PixelRules& rules) { return write24(c, rules); }
    static constexpr Value eraseValue(std::uint32_t clear, const PixelRules&) { return ofColour(clear); }
    /// A partly transparent pixel is first flattened over white.
    static constexpr Value behind(Value v, std::uint32_t c, const PixelRules&) {
        if (v.alpha != 0 && v.alpha != 255)
            v = {byteOf(overWhite(v.blue, v.alpha)), byteOf(overWhite(v.green, v.alpha)),
                 byteOf(overWhite(v.red, v.alpha)), v.alpha};
        return ofColour(behindColour(colourOf(v), c));
    }
    static void clearRow(std::uint8_t* row, int x, int count, std::uint8_t, std::uint32_t clear) {
        fillRow(row, x, count, ofColour(clear));
    }
};

/// First byte of row y of a block; y may count from the block or from the image.
template <class Format>
std::uint8_t* rowOf(std::uint8_t* base, int y) {
    return base + (y & cnBlockMask) * cnRowBytes<Format>;
}

/// After pixels were copied as they are stored, for operations that move their values: only 2 bits know a value that
/// nobody writes.
template <class Format>
void settleRow(std::uint8_t* row, int x, int count) {
    if constexpr (Format::cnBits == Bit2::cnBits)
        Format::settleRow(row, x, count);
}

/// Fills the part of a block that has its first byte at base. x and y as in rowOf; the part lies inside the block.
template <class Format>
void fillPart(std::uint8_t* base, int x, int y, int width, int height, typename Format::Value value) {
    if (width == cnBlockSize) {
        Format::fillRow(rowOf<Format>(base, y), 0, width * height, value); // rows lie without gaps
        return;
    }
    for (int row = y; row < y + height; ++row)
        Format::fillRow(rowOf<Format>(base, row), x & cnBlockMask, width, value);
}

} // namespace ovw::vimage

#endif // OVW_VIMAGE_PIXELFORMATS_H
