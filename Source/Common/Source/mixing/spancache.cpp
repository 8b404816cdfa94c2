// The stroke caches: from the coverage of one dab to the opacity of the stroke so far.

#include "mixing/fixedpoint.h"
#include "mixing/spanpainter.h"
#include "ovwcmn/xccoloraverage.h"
#include "ovwcmn/xcvoffscreen.h"

#include <algorithm>

namespace ovw::mixing {
namespace {

constexpr std::uint32_t cnKeepAlphaByte = 0xFF000000;

} // namespace

/// False when the span was only sampled. colors: of the source, for CacheRule::Color.
bool SpanPainter::applyCache(CoverageRow& row, const KernelPlan& plan, const RowInputs& inputs,
                             const std::uint32_t* colors) {
    if (plan.cache == CacheRule::Coverage) {
        m_kernels->accumulateStroke[accumulation()](row, m_pixels.cache, strokeStep(plan));
        // The dabs of a stroke lie over each other: where the cache was full before, nothing is painted again.
        if (!isBits())
            m_painted = m_kernels->paintedPart(row);
    } else {
        if (plan.cache == CacheRule::Color) {
            accumulateColor(row, colors);
        } else {
            sampleBelow(row);
            if (hasStyle(XCFastPixelMixer::STYLE_SAMPLE_ONLY))
                return false;
            accumulateWater(row);
        }
        const bool staysWide = reads(InputWideFalloff) && accumulation() == AccumulateNone;
        (staysWide ? m_kernels->scaleByOpacityWide
                   : m_kernels->scaleByOpacity)(row, static_cast<std::int32_t>(m_mixer.m_mixAlpha));
    }
    if (reads(InputTexels) && texturesAfter())
        applyTexture(row, inputs.texels, Scale15::cnOne);
    return true;
}

StrokeStep SpanPainter::strokeStep(const KernelPlan& plan) const {
    const std::int32_t limit = startFactor(plan.start);
    return {Scale15::scaled(static_cast<std::int32_t>(m_mixer.m_cacheAlpha), limit), limit,
            static_cast<std::int32_t>(m_mixer.m_mixAlpha)};
}

Accumulation SpanPainter::accumulation() const {
    if (hasStyle(XCFastPixelMixer::STYLE_CACHE_OVER))
        return AccumulateOver;
    if (hasStyle(XCFastPixelMixer::STYLE_CACHE_MAX))
        return AccumulateMax;
    return hasStyle(XCFastPixelMixer::STYLE_CACHE_ADD) ? AccumulateAdd : AccumulateNone;
}

void SpanPainter::accumulate(CoverageRow& row) const {
    if (auto add = m_kernels->accumulate[accumulation()])
        add(row, m_pixels.cache);
}

/// Feeds the colour average with the pixels that the span visits.
void SpanPainter::sampleBelow(const CoverageRow& row) const {
    XCColorAverage* average = m_mixer.m_colorAverage;
    std::uint8_t* pixels = m_pixels.dst;
    if (m_depth == 8) {
        for (int i = 0; average && i < row.n; ++i) {
            if (row.live[i])
                average->CountTotal8Bit(pixels + i);
        }
        return;
    }
    ColorSums sums;
    m_kernels->sumColors(sums, row, pixels);
    average->m_sumAlpha += sums.alpha;
    average->m_sum2 += sums.red;
    average->m_sum1 += sums.green;
    average->m_sum0 += sums.blue;
    average->m_colored += sums.colored;
    average->m_visited += sums.visited;
    average->m_empty += sums.visited - sums.colored;
}

/// Accumulates, and draws the colour cache toward the mixer's colour and alpha by the part that this dab brought.
void SpanPainter::accumulateWater(CoverageRow& row) const {
    alignas(64) std::int32_t dab[cnRowPixels];
    std::copy_n(row.a, row.n, dab);
    accumulate(row);
    if (m_depth == 8)
        return m_kernels->mixDensityCache(m_pixels.cacheColor, dab, row, m_mixer.m_a);
    alignas(64) std::int32_t share[cnRowPixels];
    alignas(64) std::uint32_t colors[cnRowPixels];
    std::fill_n(colors, row.n, paintColor() | static_cast<std::uint32_t>(m_mixer.m_a) << 24);
    m_kernels->shareOfDab(share, dab, row);
    m_kernels->moveColors32(m_pixels.cacheColor, colors, share, row.n, 0);
}

/// Colour and coverage together: the larger coverage before the sum, and no addition. With neither, both caches stay.
void SpanPainter::accumulateColor(CoverageRow& row, const std::uint32_t* colors) const {
    alignas(64) std::int32_t share[cnRowPixels];
    std::uint16_t* cache = m_pixels.cache;
    if (hasStyle(XCFastPixelMixer::STYLE_CACHE_MAX))
        m_kernels->accumulateColorMax(row, cache, share);
    else if (hasStyle(XCFastPixelMixer::STYLE_CACHE_OVER))
        m_kernels->accumulateColorOver(row, cache, share);
    else
        return;
    if (m_mixer.m_cacheColor->GetDepth() == 24)
        m_kernels->moveColors24(m_pixels.cacheColor, colors, share, row.n);
    else
        m_kernels->moveColors32(m_pixels.cacheColor, colors, share, row.n, cnKeepAlphaByte);
}

} // namespace ovw::mixing
