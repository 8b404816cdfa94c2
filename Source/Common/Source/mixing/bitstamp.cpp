// Image stamps on 1- and 2-bit destinations without a cache or with a colour cache: one sample a pixel, set or not.

#include "mixing/fixedpoint.h"
#include "mixing/spanpainter.h"
#include "ovwcmn/xcsimpleimage.h"
#include "ovwcmn/xcvoffscreen.h"

#include <algorithm>

namespace ovw::mixing {
namespace {

constexpr int cnThresholdMask = 15;
constexpr std::int32_t cnSubTone = 255; // tone of the sub value in a colour cache; the main value's is 0

} // namespace

void SpanPainter::stampBits() const {
    const bool erases = m_mixer.m_composition == XCFastPixelMixer::Erase;
    const bool isDithered = hasStyle(XCFastPixelMixer::STYLE_DITHER);
    const int depth = m_source->GetOrgBitCount();
    const std::int32_t b = Scale15::scaled(m_mixer.m_a, static_cast<std::int32_t>(m_mixer.m_cacheAlpha));
    const bool takesSub = depth == 2 && m_depth == 2 && !erases;
    const OwnPixels ownPixels(*m_source);
    if (b == 0)
        return;

    auto hitOf = [=](const std::uint8_t* p) {
        switch (depth) {
        case 1:
        case 8: return *p != 0 ? Hit::Main : Hit::None;
        case 2: return *p == 3 ? Hit::Main : *p != 0 && takesSub ? Hit::Sub : Hit::None;
        case 24: return ownPixels.holds(p) ? Hit::Main : Hit::None;
        case 32: return p[3] != 0 ? Hit::Main : Hit::None;
        default: return Hit::None;
        }
    };
    auto levelOf = [=](const std::uint8_t* p) {
        if (depth == 8)
            return Scale8::scaled(b, *p);
        return depth == 32 ? Scale15::scaled(b, std::min(darknessOf(p), Scale15::cnOne)) : b;
    };

    CoverageRow row;
    row.n = m_n;
    std::uint8_t values[cnRowPixels];
    std::uint8_t mask[cnRowPixels];
    if (m_mixer.m_mask)
        fetchMaskValues(mask, MaskRule::GateBit);
    const std::uint8_t* thresholds = ditherRow();
    SampleLine line = m_line;
    for (int i = 0; i < m_n; ++i) {
        const std::uint8_t* pixel = line.next(*m_source);
        const Hit hit = m_mixer.m_mask && mask[i] == 0 ? Hit::None : hitOf(pixel);
        const int threshold = thresholds[(m_x + i) & cnThresholdMask];
        row.a[i] = hit != Hit::None && (!isDithered || passesDither(levelOf(pixel), threshold));
        values[i] = static_cast<std::uint8_t>(bitValue(hit != Hit::Sub));
    }
    writeBits(row, values);
}

/// What a source pixel covers on a two-colour image, and how far it scales the coverage a.
SpanPainter::Hit SpanPainter::colorHit(const std::uint8_t* pixel, std::int32_t& a) const {
    switch (m_source->GetOrgBitCount()) {
    case 1: return *pixel != 0 ? Hit::Main : Hit::None;
    case 2:
        if (*pixel == 0 || *pixel == 3)
            return *pixel == 3 ? Hit::Main : Hit::None;
        return m_mixer.m_composition == XCFastPixelMixer::Erase ? Hit::None : Hit::Sub;
    case 8: a = *pixel != 0 ? Scale15::scaledByByte(a, *pixel) : 0; return Hit::Main;
    case 32: a = pixel[3] != 0 ? Scale15::scaled(a, std::min(darknessOf(pixel), Scale15::cnOne)) : 0; return Hit::Main;
    default: return OwnPixels(*m_source).holds(pixel) ? Hit::Main : Hit::None;
    }
}

/// Takes coverage a and its tone into a pixel of the caches. The result is the coverage of the stroke, 0 when the pixel
/// has more already.
std::int32_t SpanPainter::accumulateTone(std::int32_t a, std::int32_t newTone, std::uint16_t& cache,
                                         std::uint8_t& tone) const {
    if (hasStyle(XCFastPixelMixer::STYLE_CACHE_MAX)) {
        if (a <= cache)
            return 0;
        tone = static_cast<std::uint8_t>(newTone);
        cache = static_cast<std::uint16_t>(a);
    } else if (hasStyle(XCFastPixelMixer::STYLE_CACHE_OVER)) {
        // Also right where the cache is empty (the tone is replaced) and where it is full (it stays so).
        const std::int32_t sum = std::min(Scale15::lerp(cache, Scale15::cnOne, a), Scale15::cnOne);
        const std::int32_t share = std::min<std::int32_t>((a << Scale15::cnBits) / std::max(sum, 1), Scale15::cnOne);
        tone = static_cast<std::uint8_t>(Scale15::lerp(tone, newTone, share));
        cache = static_cast<std::uint16_t>(sum);
        return sum;
    }
    return a;
}

void SpanPainter::stampColorBits() const {
    // A pixel of the colour cache has its tone in the first byte.
    if (isWater() || !hasCache() || !(hasColorCache(8) || hasColorCache(24)))
        return;
    const int tonePixel = m_mixer.m_cacheColor->GetDepth() / 8;
    const std::int32_t full =
        Scale15::scaled(static_cast<std::int32_t>(m_mixer.m_cacheAlpha), Scale15::fromByte(m_mixer.m_a));
    const auto mixAlpha = static_cast<std::int32_t>(m_mixer.m_mixAlpha);

    CoverageRow row;
    row.n = m_n;
    std::uint8_t values[cnRowPixels];
    std::uint8_t mask[cnRowPixels];
    if (m_mixer.m_mask)
        fetchMaskValues(mask, MaskRule::GateBit);
    auto* cache = reinterpret_cast<std::uint16_t*>(rowOf(m_mixer.m_cache));
    std::uint8_t* tones = rowOf(m_mixer.m_cacheColor);
    const std::uint8_t* thresholds = ditherRow();
    SampleLine line = m_line;
    for (int i = 0; i < m_n; ++i) {
        std::int32_t a = full;
        Hit hit = colorHit(line.next(*m_source), a);
        row.a[i] = 0;
        if (hit == Hit::None || a == 0 || (m_mixer.m_mask && mask[i] == 0))
            continue;
        std::uint8_t& tone = tones[i * tonePixel];
        a = Scale15::scaled(accumulateTone(a, hit == Hit::Sub ? cnSubTone : 0, cache[i], tone), mixAlpha);
        row.a[i] = a;
        if (a != 0 && hasStyle(XCFastPixelMixer::STYLE_DITHER)) {
            const int threshold = thresholds[(m_x + i) & cnThresholdMask];
            row.a[i] = passesDither(Scale15::toByte(a), threshold);
            hit = tone == 0 || (tone < cnSubTone && threshold > tone) ? Hit::Main : Hit::Sub;
        }
        values[i] = static_cast<std::uint8_t>(bitValue(hit == Hit::Main));
    }
    writeBits(row, values);
}

/// Writes the values where the row is not 0.
void SpanPainter::writeBits(const CoverageRow& row, const std::uint8_t* values) const {
    CompositeSpan span = commonSpan();
    span.n = row.n;
    goToBits(span);
    span.a = row.a;
    span.values = values;
    m_kernels->fastest[XCFastPixelMixer::Replace][DepthBits](span);
}

} // namespace ovw::mixing
