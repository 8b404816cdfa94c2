#include "mixing/spanpainter.h"

#include "mixing/fetchmask.h"
#include "mixing/fetchtexture.h"
#include "mixing/fixedpoint.h"
#include "mixing/gaussrow.h"
#include "ovwcmn/xcplotgauss.h"
#include "ovwcmn/xcvoffscreen.h"

#include <algorithm>
#include <array>
#include <limits>

namespace ovw::mixing {
namespace {

constexpr int cnBlock = XCVOffscreen::cnBlockSize;
static_assert(cnRowPixels == cnBlock);
constexpr int cnUnclipped = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t cnTextureBias = 256; // of mode 0, beside the density
constexpr std::int32_t cnMaxBias = 1 << 23; // any larger bias reaches the cap as well
constexpr int cnThresholdMask = 15;         // of the 16 x 16 dither matrix

enum TextureMode { cnModeScaleBiased, cnModeScale, cnModeSubtract, cnModeLimit };

/// What cache kernels find where the composite image has no memory: transparent or empty, on 24 bits white.
struct BlankRows {
    std::array<std::uint8_t, cnBlock * 4> empty{};
    std::array<std::uint8_t, cnBlock * 3> white{};
    constexpr BlankRows() { white.fill(0xFF); }
};
constexpr BlankRows cnBlank;

const std::uint8_t* blankReference(int depth) { return depth == 24 ? cnBlank.white.data() : cnBlank.empty.data(); }

/// cnDepthColumns for a depth that no kernel paints.
DepthColumn columnOf(int depth) {
    switch (depth) {
    case 1:
    case 2: return DepthBits;
    case 8: return Depth8;
    case 24: return Depth24;
    case 32: return Depth32;
    default: return cnDepthColumns;
    }
}

bool isBits(int depth) { return depth < 8; }

} // namespace

SpanPainter::SpanPainter(XCFastPixelMixer& mixer)
    : m_mixer(mixer), m_kernels(kernels()), m_depth(mixer.m_dst ? mixer.m_dst->GetDepth() : 0) {}

// ---- Entries

void SpanPainter::paintSpan(int x1, int x2, int y) {
    if (!place(x1, x2, y))
        return;
    if (const KernelPlan* plan = choosePlan(nullptr))
        run(*plan, nullptr);
}

void SpanPainter::paintCoverage(int x, int y, std::span<const float> coverage) {
    const std::int64_t last = x + static_cast<std::int64_t>(coverage.size()) - 1;
    if (!place(x, static_cast<int>(std::min<std::int64_t>(last, std::numeric_limits<int>::max())), y))
        return;
    const float* first = coverage.data() + (m_x - x);
    if (const KernelPlan* plan = choosePlan(first))
        run(*plan, first);
}

void SpanPainter::paintPart(const XCRect& part) {
    if (!place(part.left, part.right - 1, part.top))
        return;
    const KernelPlan* plan = choosePlan(nullptr);
    if (!plan)
        return;
    const std::int64_t end = std::min<std::int64_t>(part.bottom, std::int64_t{m_mixer.m_blockTop} + cnBlock);
    int rows = static_cast<int>(end - m_y);
    // Whole rows of a block follow each other in memory.
    if (plan->start == Start::Byte && m_n == cnBlock) {
        m_n *= rows;
        rows = 1;
    }
    for (; rows > 0; --rows, ++m_y)
        run(*plan, nullptr);
}

/// Takes the part of the span inside the block; false when there is none, or no memory to paint.
bool SpanPainter::place(int x1, int x2, int y) {
    const int left = std::max(x1, m_mixer.m_blockLeft);
    const int right = std::min(x2, m_mixer.m_blockLeft + (cnBlock - 1));
    if (left > right || (y & -cnBlock) != m_mixer.m_blockTop)
        return false;
    if (columnOf(m_depth) == cnDepthColumns || !m_mixer.m_dst->GetBaseAddress())
        return false;
    m_x = left;
    m_y = y;
    m_n = right - left + 1;
    return true;
}

// ---- The choice of the kernel

/// Null when nothing is painted. Coverages scale one of the two alphas pixel by pixel, so only the other is judged
/// here.
const KernelPlan* SpanPainter::choosePlan(const float* coverage) const {
    const bool scalesCache = coverage && m_mixer.m_cache;
    const bool scalesMix = coverage && !m_mixer.m_cache;
    const bool isCacheAlphaZero = m_mixer.m_cacheAlpha == 0 && !scalesCache;
    const bool isMixAlphaZero = m_mixer.m_mixAlpha == 0 && !scalesMix;
    if (isCacheAlphaZero || isMixAlphaZero || m_mixer.m_a == 0)
        return nullptr;
    const KernelPlan* plan = m_mixer.m_cache ? &planOf(Kernel::Cache) : plainPlan();
    return isReady(*plan) ? plan : nullptr;
}

const KernelPlan* SpanPainter::plainPlan() const {
    if (isBits(m_depth))
        return &planOf(Kernel::FastestBits);
    const bool isPlain = !m_mixer.m_mask && !(m_mixer.m_style & XCFastPixelMixer::STYLE_GAUSS);
    return &planOf(isPlain ? Kernel::Fastest : Kernel::Direct);
}

/// Whether what the kernel needs is there.
bool SpanPainter::isReady(const KernelPlan& plan) const {
    if (plan.gauss && (m_mixer.m_style & XCFastPixelMixer::STYLE_GAUSS) && !m_mixer.m_plotGauss)
        return false;
    if (!plan.cache)
        return true;
    if (m_mixer.m_cache->GetDepth() != 16 || !m_mixer.m_cache->GetBaseAddress())
        return false;
    return isBits(m_depth) || (m_mixer.m_composite && m_mixer.m_composite->GetDepth() == m_depth);
}

// ---- The road

void SpanPainter::run(const KernelPlan& plan, const float* coverage) {
    if (plan.start == Start::Byte && !coverage)
        return runUniform();
    const bool isWeighted = usesGauss(plan);
    if (isWeighted && !m_mixer.m_plotGauss->StartLine(m_y, m_x))
        return;
    // With a texture the falloff is not limited to 1.0: the texture may bring it down first.
    const bool isWide = isWeighted && usesTexture(plan);

    CoverageRow row;
    row.n = m_n;
    start(row, plan, coverage);
    if (m_mixer.m_mask && plan.mask != MaskRule::None)
        applyMask(row, plan);
    if (isWeighted)
        applyGauss(row, isWide);
    if (usesTexture(plan) && !texturesAfter())
        applyTexture(row, static_cast<std::int32_t>(m_mixer.m_baseAlpha));
    if (plan.cache)
        accumulate(row, plan, isWide);
    composite(row, plan);
}

void SpanPainter::runUniform() {
    CompositeSpan span = compositeSpan();
    span.opacity = opacityByte();
    Compositor compositor = compositorOf(m_kernels.fastest);
    if (span.opacity == 0 || !compositor)
        return;
    if (span.opacity == Scale8::cnOne && m_mixer.m_composition == XCFastPixelMixer::Normal)
        compositor = m_kernels.fastest[XCFastPixelMixer::Replace][columnOf(m_depth)];
    compositor(span);
}

void SpanPainter::start(CoverageRow& row, const KernelPlan& plan, const float* coverage) const {
    const std::int32_t factor = startFactor(plan.start);
    if (coverage) {
        m_kernels.startCoverage(row, coverage, static_cast<float>(m_mixer.m_baseAlpha));
        m_kernels.scaleStart(row, factor, factor);
        return;
    }
    const auto alpha = static_cast<std::int32_t>(plan.cache ? m_mixer.m_cacheAlpha : m_mixer.m_mixAlpha);
    m_kernels.startRow(row, Scale15::scaled(alpha, factor), factor);
}

/// What the alpha in force is multiplied with; also the most that the cache may hold.
std::int32_t SpanPainter::startFactor(Start start) const {
    switch (start) {
    case Start::Byte: return m_mixer.m_a;
    case Start::Paint:
    case Start::Cache: return Scale15::fromByte(m_mixer.m_a);
    default: return Scale15::cnOne;
    }
}

void SpanPainter::applyMask(CoverageRow& row, const KernelPlan& plan) {
    XCVOffscreen& mask = *m_mixer.m_mask;
    std::uint8_t values[cnRowPixels];
    const std::int64_t scale = m_mixer.m_maskScale;
    fetchMask(values, m_n, mask,
              {scale * m_x - m_mixer.m_maskOffsetX, scale * m_y - m_mixer.m_maskOffsetY, m_mixer.m_maskScale});
    // An image may be its own mask: back to the block that is painted.
    if (&mask == m_mixer.m_dst || &mask == m_mixer.m_cache || &mask == m_mixer.m_composite)
        m_mixer.MoveCursorToBlock(m_mixer.m_blockLeft, m_mixer.m_blockTop);

    switch (mask.GetDepth() == 1 ? MaskRule::Gate : plan.mask) {
    case MaskRule::Scale: return m_kernels.scaleByMask(row, values);
    case MaskRule::ScaleAndCap: return m_kernels.scaleByMaskAndCap(row, values);
    case MaskRule::ScaleBlur: return m_kernels.scaleByMaskOfBlur(row, values);
    default: return m_kernels.gateByMask(row, values);
    }
}

bool SpanPainter::usesGauss(const KernelPlan& plan) const {
    return plan.gauss && (m_mixer.m_style & XCFastPixelMixer::STYLE_GAUSS);
}

void SpanPainter::applyGauss(CoverageRow& row, bool isWide) {
    alignas(64) std::int32_t weights[cnRowPixels];
    GaussRow::fetch(weights, m_n, *m_mixer.m_plotGauss, isWide ? cnUnclipped : Scale15::cnOne, m_kernels);
    (isWide ? m_kernels.scaleByGaussWide : m_kernels.scaleByGauss)(row, weights);
}

bool SpanPainter::usesTexture(const KernelPlan& plan) const {
    return plan.texture && m_mixer.m_textureBits && m_mixer.m_textureRowBytes > 0 && m_mixer.m_textureHeight > 0;
}

/// alpha: of a full texel in the modes that subtract or limit.
void SpanPainter::applyTexture(CoverageRow& row, std::int32_t alpha) const {
    std::uint8_t texels[cnRowPixels];
    fetchTexture(texels, m_n, {m_mixer.m_textureBits, m_mixer.m_textureRowBytes, m_mixer.m_textureHeight},
                 std::int64_t{m_x} + m_mixer.m_textureOffsetX, std::int64_t{m_y} + m_mixer.m_textureOffsetY);
    const std::int32_t bias = std::clamp(m_mixer.m_textureDensity, -cnTextureBias, cnMaxBias) + cnTextureBias;
    switch (m_mixer.m_textureMode) {
    case cnModeScaleBiased: return m_kernels.texture[TextureScale](row, texels, bias);
    case cnModeScale: return m_kernels.texture[TextureScale](row, texels, 255);
    case cnModeSubtract: return m_kernels.texture[TextureSubtract](row, texels, alpha);
    case cnModeLimit: return m_kernels.texture[TextureLimit](row, texels, alpha);
    default: return m_kernels.texture[TextureCap](row, texels, 0);
    }
}

/// From the coverage of this dab to the opacity of the stroke so far.
void SpanPainter::accumulate(CoverageRow& row, const KernelPlan& plan, bool isWide) const {
    auto* cache = reinterpret_cast<std::uint16_t*>(rowOf(m_mixer.m_cache, 2));
    if (plan.start == Start::Cache)
        m_kernels.skipFull(row, cache, startFactor(plan.start));
    if (auto add = m_kernels.accumulate[accumulation()]) {
        add(row, cache);
        isWide = false;
    }
    (isWide ? m_kernels.scaleByOpacityWide : m_kernels.scaleByOpacity)(row,
                                                                       static_cast<std::int32_t>(m_mixer.m_mixAlpha));
    if (usesTexture(plan) && texturesAfter())
        applyTexture(row, Scale15::cnOne);
}

Accumulation SpanPainter::accumulation() const {
    if (m_mixer.m_style & XCFastPixelMixer::STYLE_CACHE_OVER)
        return AccumulateOver;
    if (m_mixer.m_style & XCFastPixelMixer::STYLE_CACHE_MAX)
        return AccumulateMax;
    return m_mixer.m_style & XCFastPixelMixer::STYLE_CACHE_ADD ? AccumulateAdd : AccumulateNone;
}

// ---- The compositor

void SpanPainter::composite(const CoverageRow& row, const KernelPlan& plan) const {
    CompositeSpan span = compositeSpan();
    span.a = row.a;
    bool overNothing = false;
    if (plan.cache && !isBits(m_depth)) {
        overNothing = !m_mixer.m_composite->GetBaseAddress();
        span.ref = overNothing ? blankReference(m_depth) : rowOf(m_mixer.m_composite, m_depth / 8);
    }
    if (plan.cache && (m_mixer.m_style & XCFastPixelMixer::STYLE_DITHER))
        span.dither = XCVOffscreen::GetDitherTable256() + (m_y & cnThresholdMask) * (cnThresholdMask + 1);
    if (Compositor compositor = compositorOf(tableOf(plan.compositors, overNothing)))
        compositor(span);
}

const CompositorTable& SpanPainter::tableOf(CompositorSet set, bool overNothing) const {
    switch (set) {
    case CompositorSet::Fastest: return m_kernels.fastestRow;
    case CompositorSet::Direct: return m_kernels.direct;
    default: return overNothing ? m_kernels.cacheOverNothing : m_kernels.cache;
    }
}

Compositor SpanPainter::compositorOf(const CompositorTable& table) const {
    const int composition = m_mixer.m_composition;
    if (composition < 0 || composition >= cnCompositions)
        return nullptr;
    // A transparent pixel whose alpha is kept has nothing to show.
    if (&table == &m_kernels.cacheOverNothing && m_depth == 32 && m_mixer.m_keepAlpha)
        return nullptr;
    return table[composition][columnOf(m_depth)];
}

std::int32_t SpanPainter::opacityByte() const {
    return Scale15::scaled(m_mixer.m_a, static_cast<std::int32_t>(m_mixer.m_mixAlpha));
}

CompositeSpan SpanPainter::compositeSpan() const {
    CompositeSpan span{};
    span.n = m_n;
    span.color =
        m_mixer.m_b | static_cast<std::uint32_t>(m_mixer.m_g) << 8 | static_cast<std::uint32_t>(m_mixer.m_r) << 16;
    span.keep = m_mixer.m_keepAlpha ? 0xFF000000 : 0;
    if (m_mixer.m_composition == XCFastPixelMixer::SoftLight)
        span.softLight = softLightCurves();
    if (!isBits(m_depth)) {
        span.dst = rowOf(m_mixer.m_dst, m_depth / 8);
        return span;
    }
    span.dst =
        m_mixer.m_dst->GetBaseAddress() + std::ptrdiff_t{m_y - m_mixer.m_blockTop} * m_mixer.m_dst->GetBlockRowBytes();
    span.column = m_x - m_mixer.m_blockLeft;
    span.bits = m_depth;
    if (m_mixer.m_composition != XCFastPixelMixer::Erase)
        span.value = m_depth == 1 ? 1 : m_mixer.m_r > 127 ? 2 : 3;
    return span;
}

/// The span's first pixel in the image's current block, which has memory.
std::uint8_t* SpanPainter::rowOf(const XCVOffscreen* image, int pixelBytes) const {
    return image->GetBaseAddress() + std::ptrdiff_t{m_y - m_mixer.m_blockTop} * image->GetBlockRowBytes() +
           (m_x - m_mixer.m_blockLeft) * pixelBytes;
}

} // namespace ovw::mixing
