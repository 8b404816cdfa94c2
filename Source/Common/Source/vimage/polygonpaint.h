#ifndef OVW_VIMAGE_POLYGONPAINT_H
#define OVW_VIMAGE_POLYGONPAINT_H

/// @file
/// What the row fills of the polygon rasteriser store, for each pixel format: paint(old, colour, mode) is the new
/// pixel, draws(colour, mode) tells whether anything can change, and runValue the pixel of an unmasked run where that
/// has a rule of its own.

#include "vimage/pixelformats.h"

#include <algorithm>

namespace ovw::vimage {

enum PolygonMode : int { PolygonReplace = 0, PolygonRaise = 1, PolygonBlend = 2, PolygonErase = 3 };

/// A colour's alpha as 256ths.
constexpr int weightOf(std::uint32_t colour) { return alphaOf(colour) ? alphaOf(colour) + 1 : 0; }

template <class Format>
struct PolygonPaint;

template <>
struct PolygonPaint<Bit1> {
    static constexpr bool draws(std::uint32_t c, int mode) {
        return mode == PolygonReplace || mode == PolygonBlend || (mode == PolygonRaise && inkBit(c));
    }
    static constexpr Bit1::Value paint(Bit1::Value, std::uint32_t c, int) { return byteOf(inkBit(c)); }
};

template <>
struct PolygonPaint<Bit2> {
    static constexpr bool draws(std::uint32_t c, int mode) {
        return mode == PolygonReplace || mode == PolygonBlend || (mode == PolygonRaise && valueOf(c) == cnBlack2);
    }
    static constexpr Bit2::Value paint(Bit2::Value, std::uint32_t c, int) { return valueOf(c); }
    /// Runs go by the image's thresholds, single pixels by the colour's top bits.
    static constexpr Bit2::Value runValue(std::uint32_t c, int mode, const PixelRules& rules) {
        return mode == PolygonRaise ? valueOf(c) : Bit2::write32(c, rules);
    }
    static constexpr Bit2::Value valueOf(std::uint32_t c) { return Bit2::rowValue(c, PixelRules()); }
};

template <>
struct PolygonPaint<Density8> {
    static constexpr bool draws(std::uint32_t, int mode) { return mode >= PolygonReplace && mode <= PolygonErase; }
    static constexpr Density8::Value paint(Density8::Value d, std::uint32_t c, int mode) {
        const int alpha = alphaOf(c);
        switch (mode) {
        case PolygonReplace: return byteOf(alpha);
        case PolygonRaise: return byteOf(std::max<int>(d, alpha));
        case PolygonBlend: return byteOf((d + alpha) / 2);
        default: return byteOf(std::min<int>(d, cnByteMax - alpha));
        }
    }
};

template <>
struct PolygonPaint<CoverageGrey16> {
    using Value = CoverageGrey16::Value;
    static constexpr bool draws(std::uint32_t, int mode) { return mode >= PolygonReplace && mode <= PolygonBlend; }
    static constexpr Value paint(Value v, std::uint32_t c, int mode) {
        const int weight = weightOf(c);
        if (mode == PolygonBlend)
            return {byteOf(v.coverage * weight / 256), byteOf((v.grey * (256 - weight) + redOf(c) * weight) / 256)};
        if (mode == PolygonRaise && v.coverage >= weight)
            return v;
        return {255, byteOf(redOf(c) * weight / 256)};
    }
};

template <>
struct PolygonPaint<Rgb24> {
    using Value = Rgb24::Value;
    static constexpr bool draws(std::uint32_t, int mode) { return mode >= PolygonReplace && mode <= PolygonBlend; }
    static constexpr Value paint(Value v, std::uint32_t c, int mode) {
        const int weight = weightOf(c);
        const auto overBlack = [weight](int channel) { return channel * weight / 256; };
        const auto blend = [weight](int old, int channel) {
            return byteOf((old * (256 - weight) + channel * weight) / 256);
        };
        if (mode == PolygonBlend)
            return {blend(v.blue, blueOf(c)), blend(v.green, greenOf(c)), blend(v.red, redOf(c))};
        const Value paint{byteOf(overBlack(blueOf(c))), byteOf(overBlack(greenOf(c))), byteOf(overBlack(redOf(c)))};
        return mode == PolygonRaise && meanOf(v) <= meanOf(paint) ? v : paint;
    }
    static constexpr int meanOf(Value v) { return (v.red + v.green + v.blue) / 3; }
};

template <>
struct PolygonPaint<Rgba32> {
    using Value = Rgba32::Value;
    static constexpr bool draws(std::uint32_t, int mode) { return mode >= PolygonReplace && mode <= PolygonErase; }
    static constexpr Value paint(Value v, std::uint32_t c, int mode) {
        const int weight = weightOf(c);
        // The colour enters with its full value, whatever its alpha.
        const auto blend = [weight](int old, int channel) { return byteOf((old * (256 - weight) + channel) / 256); };
        switch (mode) {
        case PolygonReplace: return Rgba32::ofColour(c);
        case PolygonRaise: return v.alpha < weight ? Rgba32::ofColour(c) : v;
        case PolygonBlend: return {blend(v.blue, blueOf(c)), blend(v.green, greenOf(c)), blend(v.red, redOf(c)), 255};
        default: return {v.blue, v.green, v.red, byteOf(std::min<int>(v.alpha, cnByteMax - alphaOf(c)))};
        }
    }
};

/// What SearchLineRowForPolygon compares: coverage, on 24 bits the red byte.
constexpr int searchedValue(const Bit1&, Bit1::Value v) { return v ? cnByteMax : 0; }
constexpr int searchedValue(const Bit2&, Bit2::Value v) { return v >= cnWhite2 ? cnByteMax : 0; }
constexpr int searchedValue(const Density8&, Density8::Value d) { return d; }
constexpr int searchedValue(const CoverageGrey16&, CoverageGrey16::Value v) { return v.coverage; }
constexpr int searchedValue(const Rgb24&, Rgb24::Value v) { return v.red; }
constexpr int searchedValue(const Rgba32&, Rgba32::Value v) { return v.alpha; }

} // namespace ovw::vimage

#endif // OVW_VIMAGE_POLYGONPAINT_H
