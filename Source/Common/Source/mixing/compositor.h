#ifndef OVW_MIXING_COMPOSITOR_H
#define OVW_MIXING_COMPOSITOR_H

/// @file
/// The loops that apply a composition to a row of pixels.

#include "mixing/compositions24.h"
#include "mixing/compositions32.h"
#include "mixing/compositions8.h"
#include "mixing/kerneltable.h"

#include <utility>

namespace ovw::mixing {
namespace {

/// What a composition is applied to.
enum class Below { Destination, Reference };

/// One opacity for every pixel.
struct OneOpacity {
    std::int32_t opacity;
    explicit OneOpacity(const CompositeSpan& span) : opacity(span.opacity) {}
    std::int32_t operator[](int) const { return opacity; }
};

/// An opacity a pixel.
struct RowOpacity {
    const std::int32_t* __restrict a;
    explicit RowOpacity(const CompositeSpan& span) : a(span.a) {}
    std::int32_t operator[](int i) const { return a[i]; }
};

/// One colour for every pixel.
struct OneColor {
    std::uint32_t color;
    explicit OneColor(const CompositeSpan& span) : color(span.color) {}
    std::uint32_t operator[](int) const { return color; }
};

/// A colour a pixel.
struct RowColor {
    const std::uint32_t* __restrict colors;
    explicit RowColor(const CompositeSpan& span) : colors(span.colors) {}
    std::uint32_t operator[](int i) const { return colors[i]; }
};

/// What composition Mode makes of pixel d of the destination with pixel o below; d where it does not act.
template <class Mode>
std::uint32_t composed32(const Mode& mode, std::uint32_t d, std::uint32_t o, std::uint32_t color, std::int32_t a,
                         std::uint32_t keep) {
    std::uint32_t kept = Mode::cnChangesAlpha ? keep : cnAlphaMask;
    if constexpr (!Mode::cnChangesColor)
        kept |= ~cnAlphaMask;
    if constexpr (!Mode::cnUsesPaintAlpha)
        color &= ~cnAlphaMask;
    const std::uint32_t pixel = mode.pixel(o, color, a, keep);
    if constexpr (Mode::cnLeavesVanished)
        kept |= ((pixel <= ~cnAlphaMask) & (o > ~cnAlphaMask) & (a != Scale15::cnOne)) ? ~cnAlphaMask : 0;
    const std::uint32_t keepOfEmpty = keep == 0 ? 0 : ~0u;
    if constexpr (Mode::cnKeepsEmpty) // a mask instead of a condition: this vectorises
        kept |= o > ~cnAlphaMask ? 0 : keepOfEmpty;
    const std::uint32_t result = (pixel & ~kept) | (d & kept);
    bool acts = a != 0;
    if constexpr (!Mode::cnActsOnEmpty)
        acts &= o > ~cnAlphaMask;
    return acts ? result : d;
}

/// Whether all pixels are opaque.
bool isOpaque(const Pixel32* pixels, int n) {
    std::uint32_t all = cnAlphaMask;
    for (int i = 0; i < n; ++i)
        all &= pixels[i];
    return all >= cnAlphaMask;
}

/// Whether none is opaque.
bool isPartial(const Pixel32* pixels, int n) {
    std::uint32_t most = 0;
    for (int i = 0; i < n; ++i)
        most = most > pixels[i] ? most : pixels[i];
    return most < cnAlphaMask;
}

template <class Mode, Below below, class Opacity, class Color>
void compositePixels32(const CompositeSpan& span) {
    auto* __restrict dst = reinterpret_cast<Pixel32*>(span.dst);
    const auto* __restrict ref = reinterpret_cast<const Pixel32*>(span.ref);
    const Opacity opacity(span);
    const Color color(span);
    Mode mode{};
    if constexpr (requires { mode.mode.curves; })
        mode.mode.curves = span.softLight;
    const std::uint32_t keep = span.keep;
    for (int i = 0, n = span.n; i < n; ++i) {
        const std::uint32_t d = dst[i];
        dst[i] = composed32(mode, d, below == Below::Destination ? d : ref[i], color[i], opacity[i], keep);
    }
}

/// Where a composition is simpler over pixels that are all opaque, or none of them, spans of such take its other form.
template <class Mode, Below below, class Opacity, class Color>
void compositeRow32(const CompositeSpan& span) {
    const auto* o = reinterpret_cast<const Pixel32*>(below == Below::Reference ? span.ref : span.dst);
    if constexpr (requires { typename Mode::OverOpaque; }) {
        if (isOpaque(o, span.n))
            return compositePixels32<typename Mode::OverOpaque, below, Opacity, Color>(span);
    }
    if constexpr (requires { typename Mode::OverPartial; }) {
        if (span.keep == 0 && isPartial(o, span.n))
            return compositePixels32<typename Mode::OverPartial, below, Opacity, Color>(span);
    }
    compositePixels32<Mode, below, Opacity, Color>(span);
}

template <int... light>
Compositor hardLightOf(unsigned lightChannels, std::integer_sequence<int, light...>) {
    constexpr Compositor cnRows[] = {compositeRow32<HardLight15<light>, Below::Reference, RowOpacity, OneColor>...};
    return cnRows[lightChannels];
}

/// Hard light with one colour: each channel by its rule alone.
void hardLightRow32(const CompositeSpan& span) {
    const auto bit = [](std::int32_t c) { return c > 127 ? 1u : 0u; };
    const unsigned light = bit(blueOf(span.color)) | bit(greenOf(span.color)) << 1 | bit(redOf(span.color)) << 2;
    hardLightOf(light, std::make_integer_sequence<int, 8>())(span);
}

template <class Mode, Below below, class Opacity>
void compositeRow8(const CompositeSpan& span) {
    std::uint8_t* __restrict dst = span.dst;
    const std::uint8_t* __restrict ref = span.ref;
    const Opacity opacity(span);
    for (int i = 0, n = span.n; i < n; ++i) {
        const std::int32_t a = opacity[i];
        const std::uint8_t d = dst[i];
        const std::int32_t result = Mode::density(below == Below::Destination ? d : ref[i], a);
        dst[i] = a != 0 ? static_cast<std::uint8_t>(result) : d;
    }
}

/// Densities toward the alpha of each pixel's colour.
template <Below below>
void lerpRow8(const CompositeSpan& span) {
    std::uint8_t* __restrict dst = span.dst;
    const std::uint8_t* __restrict ref = span.ref;
    const RowOpacity opacity(span);
    const RowColor color(span);
    for (int i = 0, n = span.n; i < n; ++i) {
        const std::uint8_t d = dst[i];
        const std::int32_t result =
            Scale15::lerp(below == Below::Destination ? d : ref[i], alphaOf(color[i]), opacity[i]);
        dst[i] = opacity[i] != 0 ? static_cast<std::uint8_t>(result) : d;
    }
}

template <class Mode, Below below, class Opacity, class Color>
void compositeRow24(const CompositeSpan& span) {
    std::uint8_t* __restrict dst = span.dst;
    const std::uint8_t* __restrict ref = span.ref;
    const Opacity opacity(span);
    const Color color(span);
    for (int i = 0, n = span.n; i < n; ++i) {
        const std::int32_t a = opacity[i];
        const std::int32_t c[3] = {blueOf(color[i]), greenOf(color[i]), redOf(color[i])};
        for (int channel = 0; channel < 3; ++channel) {
            const std::uint8_t d = dst[3 * i + channel];
            const std::int32_t o = below == Below::Destination ? d : ref[3 * i + channel];
            dst[3 * i + channel] = a != 0 ? static_cast<std::uint8_t>(Mode::channel(o, c[channel], a)) : d;
        }
    }
}

/// 24 bits as 32-bit pixels of full alpha that is kept.
void cloneRow24(const CompositeSpan& span) {
    for (int i = 0; i < span.n; ++i) {
        std::uint8_t* p = span.dst + 3 * i;
        const std::uint32_t d = packed(p[0], p[1], p[2], 255);
        const std::uint32_t result = composed32(Clone15{}, d, d, span.colors[i], span.a[i], cnAlphaMask);
        p[0] = static_cast<std::uint8_t>(blueOf(result));
        p[1] = static_cast<std::uint8_t>(greenOf(result));
        p[2] = static_cast<std::uint8_t>(redOf(result));
    }
}

/// 1 and 2 bits: writes the value where there is opacity, or where the ordered dither lets the opacity pass.
void compositeRowBits(const CompositeSpan& span) {
    const int perByte = 8 / span.bits;
    const std::uint32_t pixelMask = (1u << span.bits) - 1;
    for (int i = 0; i < span.n; ++i) {
        const std::int32_t a = span.a[i];
        const int column = span.column + i;
        const std::int32_t level = Scale15::toByte(a);
        const bool passes = span.dither == nullptr || (level != 0 && span.dither[column & 15] <= level);
        if (a == 0 || !passes)
            continue;
        const std::uint32_t value = span.values ? span.values[i] : span.value;
        const int shift = 8 - span.bits * (1 + column % perByte);
        std::uint8_t& byte = span.dst[column / perByte];
        byte = static_cast<std::uint8_t>((byte & ~(pixelMask << shift)) | value << shift);
    }
}

// ---- Rows of one value

void fillRow32(const CompositeSpan& span) {
    auto* dst = reinterpret_cast<Pixel32*>(span.dst);
    const std::uint32_t pixel = span.color | static_cast<std::uint32_t>(span.opacity) << 24;
    if (span.keep != 0)
        return compositeRow32<Replace8, Below::Destination, OneOpacity, OneColor>(span);
    for (int i = 0, n = span.n; i < n; ++i)
        dst[i] = pixel;
}

// ---- Normal with one opacity, where a canvas is opaque or empty in long runs

/// Pixels that are looked at together, and bytes that are blended together: enough for the widest vectors.
constexpr int cnRunPixels = 64;
constexpr int cnRunBytes = 64;

/// The blend over opaque pixels: there it is that of each byte, the alpha's included.
class OpaqueBlend {
public:
    OpaqueBlend(std::uint32_t color, std::int32_t b) : m_below(static_cast<std::uint16_t>(Scale8::cnOne - b)) {
        const std::uint32_t paint = color | cnAlphaMask;
        for (int i = 0; i < cnRunBytes; ++i)
            m_paint[i] = static_cast<std::uint16_t>((paint >> i % 4 * 8 & 0xFF) * static_cast<std::uint32_t>(b));
    }
    void apply(std::uint8_t* __restrict bytes) const {
        for (int i = 0; i < cnRunBytes; ++i) {
            const auto sum = static_cast<std::uint16_t>(bytes[i] * m_below + m_paint[i]);
            bytes[i] = static_cast<std::uint8_t>(sum / Scale8::cnOne);
        }
    }

private:
    alignas(64) std::uint16_t m_paint[cnRunBytes];
    std::uint16_t m_below;
};

bool isEmptyRun(const Pixel32* pixels) {
    std::uint32_t any = 0;
    for (int i = 0; i < cnRunPixels; ++i)
        any |= pixels[i];
    return any <= ~cnAlphaMask;
}

/// Over an empty run: there it is the paint itself.
void paintEmptyRun(Pixel32* __restrict pixels, std::uint32_t paint, std::uint32_t keep) {
    for (int i = 0; i < cnRunPixels; ++i)
        pixels[i] = (paint & ~keep) | (pixels[i] & keep);
}

void normalRow32(const CompositeSpan& span) {
    constexpr Compositor cnAnyPixels = compositeRow32<Normal8, Below::Destination, OneOpacity, OneColor>;
    if (span.n < cnRunPixels)
        return cnAnyPixels(span);
    const OpaqueBlend blend(span.color, span.opacity);
    const std::uint32_t paint = span.color | static_cast<std::uint32_t>(span.opacity) << 24;
    CompositeSpan rest = span;
    for (; rest.n >= cnRunPixels; rest.n -= cnRunPixels, rest.dst += 4 * cnRunPixels) {
        auto* pixels = reinterpret_cast<Pixel32*>(rest.dst);
        if (isOpaque(pixels, cnRunPixels)) {
            for (int i = 0; i < 4 * cnRunPixels; i += cnRunBytes)
                blend.apply(rest.dst + i);
        } else if (isEmptyRun(pixels)) {
            paintEmptyRun(pixels, paint, span.keep);
        } else {
            CompositeSpan run = rest;
            run.n = cnRunPixels;
            cnAnyPixels(run);
        }
    }
    cnAnyPixels(rest);
}

} // namespace
} // namespace ovw::mixing

#endif // OVW_MIXING_COMPOSITOR_H
