// The end of a span's road: which compositor, on which pixels, with which colours.

#include "mixing/fetchclone.h"
#include "mixing/fixedpoint.h"
#include "mixing/rowbatch.h"
#include "mixing/spanpainter.h"
#include "ovwcmn/xcsimpleimage.h"
#include "ovwcmn/xcvoffscreen.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace ovw::mixing {
namespace {

constexpr int cnThresholds = 16; // of a row of the dither matrix
constexpr int cnDarkRed = 127;   // up to here a colour is black on 2 bits

/// What cache kernels find where the composite image has no memory: transparent or empty, on 24 bits white.
struct BlankRows {
    std::array<std::uint8_t, cnRowPixels * 4> empty{};
    std::array<std::uint8_t, cnRowPixels * 3> white{};
    constexpr BlankRows() { white.fill(0xFF); }
};
constexpr BlankRows cnBlank;

const std::uint8_t* blankReference(int depth) { return depth == 24 ? cnBlank.white.data() : cnBlank.empty.data(); }

} // namespace

/// ofSource: the colours of the source image, if there is one.
void SpanPainter::composite(const CoverageRow& row, const KernelPlan& plan, const RowInputs& inputs,
                            const std::uint32_t* ofSource) const {
    alignas(64) std::uint32_t room[cnRowPixels];
    const std::uint32_t* colors = colorsOf(room, plan, inputs, ofSource);
    if (plan.compositors == CompositorSet::Clone && isBits())
        return cloneBits(row, colors);

    CompositeSpan span = m_common;
    span.dst = m_pixels.dst;
    span.a = row.a;
    span.colors = colors;
    bool overNothing = false;
    if (isBits())
        goToBits(span);
    else if (plan.cache != CacheRule::None) {
        overNothing = !m_pixels.ref;
        span.ref = overNothing ? blankReference(m_depth) : m_pixels.ref;
    }
    skip(span, m_painted.first);
    span.n = m_painted.end - m_painted.first;
    if (plan.cache != CacheRule::None && hasStyle(XCFastPixelMixer::STYLE_DITHER))
        span.dither = ditherRow();
    if (Compositor compositor = compositorOf(plan.compositors, overNothing))
        compositor(span);
}

/// The first n pixels are not painted.
void SpanPainter::skip(CompositeSpan& span, int n) const {
    const std::ptrdiff_t bytes = std::ptrdiff_t{n} * (m_depth / 8);
    span.dst += bytes;
    span.ref += span.ref ? bytes : 0;
    span.a += n;
    span.colors += span.colors ? n : 0;
}

/// A colour a pixel, or null where the mixer's colour is painted.
const std::uint32_t* SpanPainter::colorsOf(std::uint32_t* room, const KernelPlan& plan, const RowInputs& inputs,
                                           const std::uint32_t* ofSource) const {
    switch (plan.compositors) {
    case CompositorSet::Fastest:
    case CompositorSet::Direct:
    case CompositorSet::Cache: return nullptr;
    case CompositorSet::Blur:
    case CompositorSet::Clone: return inputs.colors;
    case CompositorSet::Stamp:
        if (m_depth != 24 || m_source->GetOrgBitCount() < 24 || hasStyle(XCFastPixelMixer::STYLE_IMAGE_COLOR))
            return ofSource;
        std::fill_n(room, m_pixels.n, paintColor());
        return room;
    default: fetchCacheColors(room); return room;
    }
}

/// Of the span, from the blur image or the clone source.
void SpanPainter::fetchColors(std::uint32_t* colors, const KernelPlan& plan) const {
    if (plan.compositors == CompositorSet::Clone) {
        fetchClone(colors, m_n, *m_mixer.m_clone, std::int64_t{m_x} + m_mixer.m_cloneOffsetX,
                   std::int64_t{m_y} + m_mixer.m_cloneOffsetY);
        return returnToBlock(m_mixer.m_clone);
    }
    const std::int64_t row = std::int64_t{m_y} + m_mixer.m_cloneOffsetY;
    const std::int64_t column = std::int64_t{m_x} + m_mixer.m_cloneOffsetX;
    if (m_depth == 32)
        std::memcpy(colors, m_mixer.m_blurBits + row * m_mixer.m_blurRowBytes + column * 4, m_n * sizeof(*colors));
}

/// 8-bit colour caches hold densities, which go where a colour has its alpha.
void SpanPainter::fetchCacheColors(std::uint32_t* colors) const {
    const std::uint8_t* cache = m_pixels.cacheColor;
    const int depth = m_mixer.m_cacheColor->GetDepth();
    if (depth == 32) {
        std::memcpy(colors, cache, m_pixels.n * sizeof(*colors));
        return;
    }
    for (int i = 0; i < m_pixels.n; ++i) {
        const std::uint8_t* p = cache + i * (depth / 8);
        colors[i] = depth == 8 ? static_cast<std::uint32_t>(*p) << 24
                               : p[0] | static_cast<std::uint32_t>(p[1]) << 8 | static_cast<std::uint32_t>(p[2]) << 16;
    }
}

/// 1 and 2 bits take the cloned pixels by the image's own rule for colours.
void SpanPainter::cloneBits(const CoverageRow& row, const std::uint32_t* colors) const {
    XCVOffscreen& dst = *m_mixer.m_dst;
    const std::uint8_t* thresholds = hasStyle(XCFastPixelMixer::STYLE_DITHER) ? ditherRow() : nullptr;
    for (int i = 0; i < m_n; ++i) {
        const std::int32_t a = row.a[i];
        if (a == 0 || (thresholds && !passesDither(Scale15::toByte(a), thresholds[(m_x + i) % cnThresholds])))
            continue;
        dst.MoveCursorFastest(m_x + i, m_y);
        dst.Set32BitColor(swapRedBlue(colors[i]));
    }
}

Compositor SpanPainter::compositorOf(CompositorSet set, bool overNothing) const {
    const DepthColumn column = columnOf(m_depth);
    if (set == CompositorSet::Blur)
        return m_kernels->blur[column];
    if (set == CompositorSet::Clone)
        return m_kernels->clone[column];
    const int composition = m_mixer.m_composition;
    const bool exists = composition >= 0 && composition < cnCompositions;
    return exists && !keepsNothing(overNothing) ? (m_kernels->*tableOf(set, overNothing))[composition][column]
                                                : nullptr;
}

const CompositorTable KernelTable::*SpanPainter::tableOf(CompositorSet set, bool overNothing) {
    switch (set) {
    case CompositorSet::Fastest: return &KernelTable::fastestRow;
    case CompositorSet::Direct: return &KernelTable::direct;
    case CompositorSet::Stamp: return &KernelTable::stamp;
    case CompositorSet::Water: return &KernelTable::water;
    case CompositorSet::ColorCache: return overNothing ? &KernelTable::colorOverNothing : &KernelTable::colorCache;
    default: return overNothing ? &KernelTable::cacheOverNothing : &KernelTable::cache;
    }
}

/// Whether the pixels below are transparent and must stay so.
bool SpanPainter::keepsNothing(bool overNothing) const { return overNothing && m_depth == 32 && m_mixer.m_keepAlpha; }

/// What every span of these settings has.
CompositeSpan SpanPainter::commonSpan() const {
    CompositeSpan span{};
    span.color = paintColor();
    span.keep = m_mixer.m_keepAlpha ? 0xFF000000 : 0;
    if (m_mixer.m_composition == XCFastPixelMixer::SoftLight)
        span.softLight = softLightCurves();
    return span;
}

/// The span's pixels in a row of 1 or 2 bits, and what is written there.
void SpanPainter::goToBits(CompositeSpan& span) const {
    const XCVOffscreen& image = *m_mixer.m_dst;
    span.dst = image.GetBaseAddress() + std::ptrdiff_t{m_y - m_mixer.m_blockTop} * image.GetBlockRowBytes();
    span.column = m_x - m_mixer.m_blockLeft;
    span.bits = m_depth;
    span.value = bitValue(true);
}

/// What paint leaves in a 1- or 2-bit pixel; the sub value is the other one of the two that 2 bits can show.
std::uint32_t SpanPainter::bitValue(bool isMain) const {
    if (m_mixer.m_composition == XCFastPixelMixer::Erase)
        return 0;
    if (m_depth == 1)
        return 1;
    return (m_mixer.m_r > cnDarkRed) == isMain ? 2 : 3;
}

/// The thresholds of the ordered dither in the span's row, by x mod 16.
const std::uint8_t* SpanPainter::ditherRow() const {
    return XCVOffscreen::GetDitherTable256() + (m_y & (cnThresholds - 1)) * cnThresholds;
}

} // namespace ovw::mixing
