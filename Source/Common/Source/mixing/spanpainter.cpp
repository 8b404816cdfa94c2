// The entries of the painter and the road of a span.

#include "mixing/spanpainter.h"

#include "mixing/fetchmask.h"
#include "mixing/fetchtexture.h"
#include "mixing/fixedpoint.h"
#include "mixing/gaussrow.h"
#include "mixing/rowbatch.h"
#include "ovwcmn/xcplotgauss.h"
#include "ovwcmn/xcsimpleimage.h"
#include "ovwcmn/xcvoffscreen.h"

#include <algorithm>
#include <limits>

namespace ovw::mixing {
namespace {

constexpr int cnBlock = XCVOffscreen::cnBlockSize;
static_assert(cnRowPixels == cnBlock);
constexpr int cnUnclipped = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t cnTextureBias = 256; // of mode 0, beside the density
constexpr std::int32_t cnMaxBias = 1 << 23; // any larger bias reaches the cap as well

enum TextureMode { cnModeScaleBiased, cnModeScale, cnModeSubtract, cnModeLimit };

} // namespace

SpanPainter::SpanPainter(XCFastPixelMixer& mixer)
    : m_mixer(mixer), m_depth(mixer.m_dst ? mixer.m_dst->GetDepth() : 0) {}

// ---- Entries

void SpanPainter::paintSpan(int x1, int x2, int y) {
    if (!place(x1, x2, y))
        return;
    if (const KernelPlan* plan = choosePlan(nullptr))
        run(*plan, nullptr);
}

void SpanPainter::paintSpan(const KernelPlan& plan, int x1, int x2, int y) {
    if (place(x1, x2, y))
        run(plan, nullptr);
}

const KernelPlan* SpanPainter::planOfCoverage() const {
    constexpr float cnAny = 1.0f;
    return choosePlan(&cnAny);
}

void SpanPainter::paintCoverage(const KernelPlan& plan, int x, int y, std::span<const float> coverage) {
    const std::int64_t last = x + static_cast<std::int64_t>(coverage.size()) - 1;
    if (place(x, static_cast<int>(std::min<std::int64_t>(last, std::numeric_limits<int>::max())), y))
        run(plan, coverage.data() + (std::int64_t{m_x} - x));
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
    runRows(*plan, rows);
}

void SpanPainter::paintCopy(int x1, int x2, int y, const XCSimpleImage* source) {
    paintCopy(x1, x2, y, source, {m_mixer.m_u, m_mixer.m_v, m_mixer.m_du, m_mixer.m_dv},
              {m_mixer.m_uB, m_mixer.m_vB, m_mixer.m_duB, m_mixer.m_dvB});
}

void SpanPainter::paintCopy(int x1, int x2, int y, const XCSimpleImage* source, const SampleLine& line,
                            const SampleLine& lineB) {
    // An image that is not locked has no pixels to give.
    if (x1 >= x2 || !source || !source->GetPixel(0, 0) || !place(x1, x2 - 1, y))
        return;
    m_source = source;
    aim(line, lineB);
    skipSamples(std::int64_t{m_x} - x1);
    if (isBits() && !m_mixer.m_cache)
        return stampBits();
    if (isBits() && m_mixer.m_cacheColor)
        return stampColorBits();
    const KernelPlan* plan = chooseCopyPlan();
    if (plan && setSource(source, *plan))
        run(*plan, nullptr);
}

const KernelPlan* SpanPainter::planOfCopy(const XCSimpleImage* source) {
    if (isBits() || columnOf(m_depth) == cnDepthColumns || !source->GetPixel(0, 0))
        return nullptr;
    const KernelPlan* plan = chooseCopyPlan();
    return plan && setSource(source, *plan) ? plan : nullptr;
}

/// False when the source covers nothing.
bool SpanPainter::setSource(const XCSimpleImage* source, const KernelPlan& plan) {
    m_source = source;
    m_view.image = source;
    m_view.twoByTwo = plan.twoByTwo && hasStyle(XCFastPixelMixer::STYLE_ANTIALIAS);
    m_view.colors.color = paintColor();
    m_view.colors.subColor = swapRedBlue(m_mixer.m_subColor) & 0x00FFFFFF;
    const bool paintsColors = m_depth >= 24 && m_mixer.m_composition != XCFastPixelMixer::Erase;
    const bool isTwoColored = plan.source == SourceRule::Colors || (plan.source == SourceRule::Bytes && paintsColors);
    return completeView(m_view, plan.source, isTwoColored);
}

/// Past the samples of pixels left of the block.
void SpanPainter::skipSamples(std::int64_t pixels) {
    // 2 x 2 samples have half steps, as far as the kernel takes them; stamps on 1 and 2 bits never do.
    const bool isHalved = !isBits() && hasStyle(XCFastPixelMixer::STYLE_ANTIALIAS);
    m_line.skip(isHalved ? 2 * pixels : pixels);
    m_lineB.skip(isHalved ? 2 * pixels : pixels);
}

// ---- The road

void SpanPainter::run(const KernelPlan& plan, const float* coverage) {
    if (plan.start == Start::Byte && !coverage)
        return runUniform();
    RowInputs inputs;
    prepare(plan);
    if (fetchInputs(inputs, 0, plan))
        work(plan, inputs, rowPixels(plan), coverage);
}

/// The span and those below it.
void SpanPainter::runRows(const KernelPlan& plan, int rows) {
    if (plan.start == Start::Byte) {
        for (; rows > 0; --rows, ++m_y)
            runUniform();
        return;
    }
    RowInputs inputs;
    prepare(plan);
    for (; rows > 0; --rows, ++m_y) {
        if (fetchInputs(inputs, 0, plan))
            work(plan, inputs, rowPixels(plan), nullptr);
    }
}

bool SpanPainter::prepare(const KernelPlan& plan) {
    const bool hasTexture = usesTexture(plan);
    const bool hasColors = plan.compositors == CompositorSet::Blur || plan.compositors == CompositorSet::Clone;
    m_inputs = usesGauss(plan) ? hasTexture ? InputWideFalloff : InputFalloff : 0u;
    m_inputs |= readsSource(plan) ? InputSamples : 0u;
    m_inputs |= m_mixer.m_mask && plan.mask != MaskRule::None ? InputMask : 0u;
    m_inputs |= hasTexture ? InputTexels : 0u;
    m_inputs |= hasColors ? InputColors : 0u;
    m_common = commonSpan();
    return m_inputs != 0;
}

bool SpanPainter::fetchInputs(RowInputs& room, int first, const KernelPlan& plan) {
    const int end = first + m_n;
    const auto endWithRoom = [end](auto* values) { std::fill_n(values + end, RowInputs::cnRoom, 0); };
    if (reads(InputFalloff | InputWideFalloff)) {
        XCPlotGauss& gauss = *m_mixer.m_plotGauss;
        if (!gauss.StartLine(m_y, m_x))
            return false;
        const int whole = (m_n + RowInputs::cnRoom - 1) & -RowInputs::cnRoom;
        GaussRow::fetch(room.weights + first, m_n, whole, gauss, reads(InputWideFalloff) ? cnUnclipped : Scale15::cnOne,
                        kernels(whole));
        endWithRoom(room.weights);
    }
    if (reads(InputSamples)) {
        sampleSource(room.samples, first, m_n, m_view, m_line, m_lineB, kernels(m_n));
        for (int i = 0; i < (m_view.twoByTwo ? SourceTexels::cnColumns : 1); ++i)
            endWithRoom(room.samples.column[i]);
    }
    if (reads(InputMask)) {
        fetchMaskValues(room.mask + first, plan.mask);
        endWithRoom(room.mask);
    }
    if (reads(InputTexels)) {
        fetchTexels(room.texels + first);
        endWithRoom(room.texels);
    }
    if (reads(InputColors)) {
        fetchColors(room.colors + first, plan);
        endWithRoom(room.colors);
    }
    return true;
}

/// Sampling only, a span visits what the mask lets through, whatever the source.
bool SpanPainter::readsSource(const KernelPlan& plan) const {
    const bool onlySamples = plan.cache == CacheRule::Water && hasStyle(XCFastPixelMixer::STYLE_SAMPLE_ONLY);
    return plan.source != SourceRule::None && !onlySamples;
}

void SpanPainter::work(const KernelPlan& plan, const RowInputs& inputs, const RowPixels& pixels,
                       const float* coverage) {
    CoverageRow row;
    SourceRow source;
    m_pixels = pixels;
    m_kernels = &kernels(pixels.n);
    row.n = pixels.n;
    m_painted = {0, pixels.n};
    if (plan.cache == CacheRule::Coverage && m_inputs == 0 && !coverage) {
        m_kernels->accumulateOne[accumulation()](row, pixels.cache, strokeStep(plan));
        return composite(row, plan, inputs, nullptr);
    }
    start(row, plan, coverage);
    if (plan.cache == CacheRule::Water)
        startVisits(row, coverage);
    if (reads(InputSamples))
        weighSource(row, source, inputs.samples, plan);
    if (reads(InputMask))
        applyMask(row, inputs.mask, plan);
    if (reads(InputSamples) && m_view.scale == ScaleByte)
        m_kernels->scaleBySource[ScaleByte](row, source.weight);
    if (reads(InputFalloff))
        m_kernels->scaleByGauss(row, inputs.weights);
    if (reads(InputWideFalloff))
        m_kernels->scaleByGaussWide(row, inputs.weights);
    if (reads(InputTexels) && !texturesAfter())
        applyTexture(row, inputs.texels, static_cast<std::int32_t>(m_mixer.m_baseAlpha));
    if (plan.cache == CacheRule::None || applyCache(row, plan, inputs, source.color))
        composite(row, plan, inputs, source.color);
}

void SpanPainter::runUniform() {
    CompositeSpan span = commonSpan();
    span.n = m_n;
    if (isBits())
        goToBits(span);
    else
        span.dst = rowOf(m_mixer.m_dst);
    span.opacity = Scale15::scaled(m_mixer.m_a, static_cast<std::int32_t>(m_mixer.m_mixAlpha));
    if (span.opacity == 0 || m_mixer.m_composition < 0 || m_mixer.m_composition >= cnCompositions)
        return;
    if (Compositor compositor = m_kernels->fastest[uniformComposition(span.opacity)][columnOf(m_depth)])
        compositor(span);
}

/// Full opacity covers: it needs no look at the pixels below.
int SpanPainter::uniformComposition(std::int32_t opacity) const {
    const bool covers = opacity == Scale8::cnOne && m_mixer.m_composition == XCFastPixelMixer::Normal;
    return covers ? XCFastPixelMixer::Replace : m_mixer.m_composition;
}

bool SpanPainter::preparePlainRows(PlainRows& rows) const {
    if (m_depth != 32 || !m_mixer.m_dst->GetBaseAddress())
        return false;
    const KernelPlan* plan = planOfCoverage();
    const int composition = m_mixer.m_composition;
    if (!plan || plan->start != Start::Byte || composition < 0 || composition >= cnCompositions ||
        !kernels(cnBlock).fastestRow[composition][Depth32])
        return false;
    const auto base = static_cast<std::int32_t>(m_mixer.m_baseAlpha);
    rows.span = {};
    rows.span.color = paintColor();
    rows.span.keep = m_mixer.m_keepAlpha ? 0xFF000000 : 0;
    rows.span.opacity = Scale15::scaled(m_mixer.m_a, base);
    rows.composition = composition;
    rows.uniformComposition = uniformComposition(rows.span.opacity);
    rows.baseAlpha = static_cast<float>(base);
    rows.paintAlpha = m_mixer.m_a;
    rows.rowPixels = m_mixer.m_dst->GetBlockRowBytes() / static_cast<int>(sizeof(Pixel32));
    rows.block = reinterpret_cast<Pixel32*>(m_mixer.m_dst->GetBaseAddress());
    rows.left = m_mixer.m_blockLeft;
    rows.top = m_mixer.m_blockTop;
    return true;
}

void SpanPainter::start(CoverageRow& row, const KernelPlan& plan, const float* coverage) const {
    const std::int32_t factor = startFactor(plan.start);
    const auto mixAlpha = static_cast<std::int32_t>(m_mixer.m_mixAlpha);
    if (coverage) {
        m_kernels->startCoverage(row, coverage, static_cast<float>(m_mixer.m_baseAlpha));
        if (factor != Scale15::cnOne || plan.cache != CacheRule::None) // only caches have a cap
            m_kernels->scaleStart(row, factor, factor);
        // The coverages scaled the cache alpha, which images only ask whether it is 0.
        if (plan.start == Start::Image && m_mixer.m_cache) {
            for (int i = 0; i < row.n; ++i)
                row.a[i] = row.a[i] != 0 ? mixAlpha : 0;
        }
    } else {
        const bool fromCache = plan.cache != CacheRule::None || plan.start == Start::CacheByte;
        const auto alpha = fromCache ? static_cast<std::int32_t>(m_mixer.m_cacheAlpha) : mixAlpha;
        m_kernels->startRow(row, Scale15::scaled(alpha, factor), factor);
        std::fill(row.a + m_pixels.filled, row.a + row.n, 0);
    }
}

/// Coverages of 0 stand for pixels outside the span; else every pixel is visited, even by stamps without any opacity.
void SpanPainter::startVisits(CoverageRow& row, const float* coverage) const {
    if (coverage)
        return m_kernels->visitCovered(row);
    std::fill_n(row.live, m_pixels.filled, -1);
    std::fill(row.live + m_pixels.filled, row.live + row.n, 0);
}

/// What the alpha in force is multiplied with; also the most that the cache may hold.
std::int32_t SpanPainter::startFactor(Start start) const {
    switch (start) {
    case Start::Byte:
    case Start::CacheByte: return m_mixer.m_a;
    case Start::Paint:
    case Start::Cache: return Scale15::fromByte(m_mixer.m_a);
    default: return Scale15::cnOne;
    }
}

void SpanPainter::weighSource(CoverageRow& row, SourceRow& source, const SourceTexels& samples,
                              const KernelPlan& plan) const {
    m_kernels->weigh[m_view.weight][m_view.twoByTwo](source, row.n, samples, m_view.colors);
    if (plan.cache == CacheRule::Water)
        m_kernels->visitBySource(row, source.weight);
    if (m_view.scale != ScaleByte)
        m_kernels->scaleBySource[m_view.scale](row, source.weight);
}

void SpanPainter::fetchMaskValues(std::uint8_t* values, MaskRule rule) const {
    const std::int64_t scale = m_mixer.m_maskScale;
    fetchMask(values, m_n, *m_mixer.m_mask,
              {scale * m_x - m_mixer.m_maskOffsetX, scale * m_y - m_mixer.m_maskOffsetY, m_mixer.m_maskScale,
               rule == MaskRule::GateBit});
    returnToBlock(m_mixer.m_mask);
}

void SpanPainter::applyMask(CoverageRow& row, const std::uint8_t* values, const KernelPlan& plan) const {
    if (plan.cache == CacheRule::Water)
        m_kernels->visitByMask(row, values);
    switch (m_mixer.m_mask->GetDepth() == 1 ? MaskRule::Gate : plan.mask) {
    case MaskRule::Scale: return m_kernels->scaleByMask(row, values);
    case MaskRule::ScaleAndCap: return m_kernels->scaleByMaskAndCap(row, values);
    case MaskRule::ScaleBlur: return m_kernels->scaleByMaskOfBlur(row, values);
    default: return m_kernels->gateByMask(row, values);
    }
}

bool SpanPainter::usesTexture(const KernelPlan& plan) const {
    return plan.texture && m_mixer.m_textureBits && m_mixer.m_textureRowBytes > 0 && m_mixer.m_textureHeight > 0;
}

void SpanPainter::fetchTexels(std::uint8_t* texels) const {
    fetchTexture(texels, m_n, {m_mixer.m_textureBits, m_mixer.m_textureRowBytes, m_mixer.m_textureHeight},
                 std::int64_t{m_x} + m_mixer.m_textureOffsetX, std::int64_t{m_y} + m_mixer.m_textureOffsetY);
}

/// alpha: of a full texel in the modes that subtract or limit.
void SpanPainter::applyTexture(CoverageRow& row, const std::uint8_t* texels, std::int32_t alpha) const {
    const std::int32_t bias = std::clamp(m_mixer.m_textureDensity, -cnTextureBias, cnMaxBias) + cnTextureBias;
    switch (m_mixer.m_textureMode) {
    case cnModeScaleBiased: return m_kernels->texture[TextureScale](row, texels, bias);
    case cnModeScale: return m_kernels->texture[TextureScale](row, texels, 255);
    case cnModeSubtract: return m_kernels->texture[TextureSubtract](row, texels, alpha);
    case cnModeLimit: return m_kernels->texture[TextureLimit](row, texels, alpha);
    default: return m_kernels->texture[TextureCap](row, texels, 0);
    }
}

// ---- What several steps need

/// The mixer's colour as stored in 32 bits, alpha 0.
std::uint32_t SpanPainter::paintColor() const {
    return m_mixer.m_b | static_cast<std::uint32_t>(m_mixer.m_g) << 8 | static_cast<std::uint32_t>(m_mixer.m_r) << 16;
}

bool SpanPainter::isPainted(const XCVOffscreen* image) const {
    const XCVOffscreen* const images[] = {m_mixer.m_dst, m_mixer.m_cache, m_mixer.m_cacheColor, m_mixer.m_composite};
    return std::find(std::begin(images), std::end(images), image) != std::end(images);
}

/// An image may be its own mask or clone source: the painted images go back to their block.
void SpanPainter::returnToBlock(const XCVOffscreen* moved) const {
    if (isPainted(moved))
        m_mixer.MoveCursorToBlock(m_mixer.m_blockLeft, m_mixer.m_blockTop);
}

/// What the kernel works on in the current block; no destination on 1 and 2 bits, whose pixels have no rows of bytes.
BatchImages SpanPainter::imagesOf(const KernelPlan& plan) const {
    BatchImages images{};
    images.left = m_mixer.m_blockLeft;
    images.top = m_mixer.m_blockTop;
    if (!isBits())
        images.dst = blockOf(m_mixer.m_dst);
    if (plan.cache != CacheRule::None) {
        images.cache = blockOf(m_mixer.m_cache);
        if (!isBits() && m_mixer.m_composite->GetBaseAddress())
            images.ref = blockOf(m_mixer.m_composite);
    }
    if (plan.cache == CacheRule::Water || plan.cache == CacheRule::Color)
        images.cacheColor = blockOf(m_mixer.m_cacheColor);
    return images;
}

bool SpanPainter::prepareBatch(BatchImages& images, const KernelPlan& plan) const {
    if (isBits() || columnOf(m_depth) == cnDepthColumns || !m_mixer.m_dst->GetBaseAddress())
        return false;
    // What a span reads, spans before it must have written.
    const bool readsPainted = (m_mixer.m_mask && plan.mask != MaskRule::None && isPainted(m_mixer.m_mask)) ||
                              (plan.compositors == CompositorSet::Clone && isPainted(m_mixer.m_clone));
    if (readsPainted)
        return false;
    images = imagesOf(plan);
    return true;
}

/// Of the span, in the blocks.
RowPixels SpanPainter::rowPixels(const KernelPlan& plan) const {
    const BatchImages images = imagesOf(plan);
    const auto row = [&](const BlockPixels& image) {
        return image.bits ? image.at(m_x - images.left, m_y - images.top) : nullptr;
    };
    return {m_n,
            m_n,
            row(images.dst),
            row(images.ref),
            reinterpret_cast<std::uint16_t*>(row(images.cache)),
            row(images.cacheColor)};
}

BlockPixels SpanPainter::blockOf(const XCVOffscreen* image) {
    return {image->GetBaseAddress(), image->GetBlockRowBytes(), image->GetDepth() / 8};
}

/// The span's first pixel in the image's current block, which has memory and pixels of at least 8 bits.
std::uint8_t* SpanPainter::rowOf(const XCVOffscreen* image) const {
    return blockOf(image).at(m_x - m_mixer.m_blockLeft, m_y - m_mixer.m_blockTop);
}

} // namespace ovw::mixing
