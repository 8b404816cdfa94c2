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

/// Whether a source pixel brings the main value, the other one, or nothing.
enum class Hit { None, Main, Sub };

/// What the pixels of a source image bring to 1 and 2 bits.
class BitSource {
public:
    /// takesSub: 2-bit pixels of another value than 3 bring the sub value, else nothing.
    BitSource(const XCSimpleImage& image, bool takesSub)
        : m_depth(image.GetOrgBitCount()), m_takesSub(takesSub), m_ownPixels(image) {}

    Hit hit(const std::uint8_t* pixel) const {
        switch (m_depth) {
        case 1:
        case 8: return *pixel != 0 ? Hit::Main : Hit::None;
        case 2: return *pixel == 3 ? Hit::Main : *pixel != 0 && m_takesSub ? Hit::Sub : Hit::None;
        case 32: return pixel[3] != 0 ? Hit::Main : Hit::None;
        default: return m_ownPixels.holds(pixel) ? Hit::Main : Hit::None;
        }
    }
    /// An opacity byte scaled by a pixel that hits.
    int scaledByte(int opacity, const std::uint8_t* pixel) const {
        return m_depth == 8 ? Scale8::scaled(opacity, *pixel) : scaledByDarkness(opacity, pixel);
    }
    /// The same for a coverage in 1.15.
    std::int32_t scaledCoverage(std::int32_t a, const std::uint8_t* pixel) const {
        return m_depth == 8 ? Scale15::scaledByByte(a, *pixel) : scaledByDarkness(a, pixel);
    }

private:
    std::int32_t scaledByDarkness(std::int32_t a, const std::uint8_t* pixel) const {
        return m_depth == 32 ? Scale15::scaled(a, std::min(darknessOf(pixel), Scale15::cnOne)) : a;
    }

    int m_depth;
    bool m_takesSub;
    OwnPixels m_ownPixels;
};

} // namespace

/// The mask's bits for the span, all set without a mask.
void SpanPainter::fetchGate(std::uint8_t* gate) const {
    if (m_mixer.m_mask)
        fetchMaskValues(gate, MaskRule::GateBit);
    else
        std::fill_n(gate, m_n, std::uint8_t{1});
}

void SpanPainter::stampBits() const {
    const std::int32_t opacity = Scale15::scaled(m_mixer.m_a, static_cast<std::int32_t>(m_mixer.m_cacheAlpha));
    const bool covers = m_source->GetOrgBitCount() != 16; // pixels of 16 bits are for stamps with caches only
    if (opacity == 0 || !covers)
        return;
    const bool isDithered = hasStyle(XCFastPixelMixer::STYLE_DITHER);
    const BitSource source(*m_source, m_depth == 2 && m_mixer.m_composition != XCFastPixelMixer::Erase);

    CoverageRow row;
    row.n = m_n;
    std::uint8_t values[cnRowPixels];
    std::uint8_t gate[cnRowPixels];
    fetchGate(gate);
    const std::uint8_t* thresholds = ditherRow();
    SampleLine line = m_line;
    for (int i = 0; i < m_n; ++i) {
        const std::uint8_t* pixel = line.next(*m_source);
        const Hit hit = gate[i] != 0 ? source.hit(pixel) : Hit::None;
        const int threshold = thresholds[(m_x + i) & cnThresholdMask];
        row.a[i] = hit != Hit::None && (!isDithered || passesDither(source.scaledByte(opacity, pixel), threshold));
        values[i] = static_cast<std::uint8_t>(bitValue(hit != Hit::Sub));
    }
    writeBits(row, values);
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
    if (isWater() || !hasCache() || !(hasColorCache(8) || hasColorCache(24)))
        return;
    CoverageRow row;
    row.n = m_n;
    std::uint8_t values[cnRowPixels];
    stampTones(row, values);
    if (hasStyle(XCFastPixelMixer::STYLE_DITHER))
        ditherTones(row, values);
    writeBits(row, values);
}

/// Takes the span into the caches; the row becomes its opacities, the values those of the source.
void SpanPainter::stampTones(CoverageRow& row, std::uint8_t* values) const {
    const auto cacheAlpha = static_cast<std::int32_t>(m_mixer.m_cacheAlpha);
    const auto mixAlpha = static_cast<std::int32_t>(m_mixer.m_mixAlpha);
    const std::int32_t full = Scale15::scaled(cacheAlpha, Scale15::fromByte(m_mixer.m_a));
    const BitSource source(*m_source, m_mixer.m_composition != XCFastPixelMixer::Erase);
    std::uint8_t gate[cnRowPixels];
    fetchGate(gate);
    auto* cache = reinterpret_cast<std::uint16_t*>(rowOf(m_mixer.m_cache));
    const ToneRow tones = toneRow();
    SampleLine line = m_line;
    for (int i = 0; i < m_n; ++i) {
        const std::uint8_t* pixel = line.next(*m_source);
        const Hit hit = gate[i] != 0 ? source.hit(pixel) : Hit::None;
        std::int32_t a = hit != Hit::None ? source.scaledCoverage(full, pixel) : 0;
        if (a != 0)
            a = accumulateTone(a, hit == Hit::Sub ? cnSubTone : 0, cache[i], tones[i]);
        row.a[i] = Scale15::scaled(a, mixAlpha);
        values[i] = static_cast<std::uint8_t>(bitValue(hit == Hit::Main));
    }
}

/// Keeps the pixels that pass the dither; their values then show the tone of the stroke.
void SpanPainter::ditherTones(CoverageRow& row, std::uint8_t* values) const {
    const ToneRow tones = toneRow();
    const std::uint8_t* thresholds = ditherRow();
    for (int i = 0; i < m_n; ++i) {
        if (row.a[i] == 0)
            continue;
        const int threshold = thresholds[(m_x + i) & cnThresholdMask];
        const int tone = tones[i];
        row.a[i] = passesDither(Scale15::toByte(row.a[i]), threshold);
        values[i] = static_cast<std::uint8_t>(bitValue(tone == 0 || (tone < cnSubTone && threshold > tone)));
    }
}

SpanPainter::ToneRow SpanPainter::toneRow() const {
    return {rowOf(m_mixer.m_cacheColor), m_mixer.m_cacheColor->GetDepth() / 8};
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
