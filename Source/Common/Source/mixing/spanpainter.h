#ifndef OVW_MIXING_SPANPAINTER_H
#define OVW_MIXING_SPANPAINTER_H

#include "mixing/coveragerow.h"
#include "mixing/fetchsource.h"
#include "mixing/kernelplan.h"
#include "mixing/kerneltable.h"
#include "mixing/pixel32.h"
#include "ovwcmn/xcfastpixelmixer.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace ovw::mixing {

struct BatchRules;
struct BlockPixels;

/// What rows of plain paint in 32-bit pixels have in common: one colour, and no mask, falloff or cache that has a say.
struct PlainRows {
    CompositeSpan span;     ///< opacity is that of full coverage; dst, n and a are each row's
    int composition;        ///< for an opacity a pixel
    int uniformComposition; ///< for full coverage
    float baseAlpha;        ///< what coverages scale
    std::int32_t paintAlpha;
    Pixel32* block; ///< the block's pixels
    int left;       ///< of the block in the image
    int top;
    int rowPixels;

    Pixel32* pixelAt(int x, int y) const { return block + std::ptrdiff_t{y - top} * rowPixels + (x - left); }
};

/// The road of a span through a mixer's kernels: choose the kernel, run the row through the kernel's stages, composite.
/// Lives for one call; every branch on a setting stands here, once a span.
class SpanPainter {
public:
    explicit SpanPainter(XCFastPixelMixer& mixer);

    /// Pixels x1 to x2, both included, of row y.
    void paintSpan(int x1, int x2, int y);
    /// Pixels from x on with coverages of their own.
    void paintCoverage(int x, int y, std::span<const float> coverage);
    /// A part of the current block.
    void paintPart(const XCRect& part);
    /// False when the paint is not plain, or paints nothing.
    bool preparePlainRows(PlainRows& rows) const;
    /// The kernel of spans with coverages of their own in the current block, null when they paint nothing. It stays the
    /// same while the settings and the block do.
    const KernelPlan* planOfCoverage() const;
    /// False when the rows of a kernel for coverages need more than the rules tell.
    bool prepareBatch(BatchRules& rules, const KernelPlan& plan) const;
    /// paintCoverage with that kernel.
    void paintCoverage(const KernelPlan& plan, int x, int y, std::span<const float> coverage);
    /// Pixels x1 to x2 - 1 of row y through a source image.
    void paintCopy(int x1, int x2, int y, const XCSimpleImage* source);

private:
    // spanchoice.cpp: which kernel a span takes
    bool place(int x1, int x2, int y);
    const KernelPlan* choosePlan(const float* coverage) const;
    const KernelPlan* plainPlan() const;
    const KernelPlan* chooseCopyPlan() const;
    bool isReady(const KernelPlan& plan) const;
    bool hasCache() const;
    bool hasColorCache(int depth) const;
    bool isWater() const;

    // spanpainter.cpp: the road
    void skipSamples(std::int64_t pixels);
    void run(const KernelPlan& plan, const float* coverage);
    void runUniform();
    void start(CoverageRow& row, const KernelPlan& plan, const float* coverage) const;
    std::int32_t startFactor(Start start) const;
    bool applySource(CoverageRow& row, SourceRow& source, const KernelPlan& plan) const;
    SourceView sourceView(const KernelPlan& plan) const;
    void fetchMaskValues(std::uint8_t* values, MaskRule rule) const;
    void applyMask(CoverageRow& row, const KernelPlan& plan) const;
    void applyGauss(CoverageRow& row, bool isWide) const;
    void applyTexture(CoverageRow& row, std::int32_t alpha) const;

    // spancache.cpp: the stroke caches
    bool applyCache(CoverageRow& row, const KernelPlan& plan, bool isWide, const std::uint32_t* colors) const;
    void sampleBelow(const CoverageRow& row) const;
    void accumulate(CoverageRow& row) const;
    void accumulateWater(CoverageRow& row) const;
    void accumulateColor(CoverageRow& row, const std::uint32_t* colors) const;
    Accumulation accumulation() const;

    // spancomposite.cpp: the end of the road
    void composite(const CoverageRow& row, const KernelPlan& plan, const std::uint32_t* colors) const;
    void fetchColors(std::uint32_t* colors, const KernelPlan& plan, const std::uint32_t* ofSource) const;
    void fetchCacheColors(std::uint32_t* colors) const;
    void cloneBits(const CoverageRow& row, const std::uint32_t* colors) const;
    int uniformComposition(std::int32_t opacity) const;
    Compositor compositorOf(CompositorSet set, bool overNothing) const;
    static const CompositorTable KernelTable::*tableOf(CompositorSet set, bool overNothing);
    CompositeSpan compositeSpan() const;
    CompositeSpan commonSpan() const;
    bool keepsNothing(bool overNothing) const;

    // bitstamp.cpp: image stamps on 1 and 2 bits, which have rules of their own
    void stampBits() const;
    void stampColorBits() const;
    /// Whether a source pixel brings the main value, the other one, or nothing.
    enum class Hit { None, Main, Sub };
    Hit colorHit(const std::uint8_t* pixel, std::int32_t& a) const;
    std::int32_t accumulateTone(std::int32_t a, std::int32_t newTone, std::uint16_t& cache, std::uint8_t& tone) const;
    void writeBits(const CoverageRow& row, const std::uint8_t* values) const;

    bool hasStyle(std::uint32_t bits) const { return m_mixer.m_style & bits; }
    bool usesGauss(const KernelPlan& plan) const { return plan.gauss && hasStyle(XCFastPixelMixer::STYLE_GAUSS); }
    bool usesTexture(const KernelPlan& plan) const;
    bool texturesAfter() const { return hasStyle(XCFastPixelMixer::STYLE_TEXTURE_AFTER); }
    bool isBits() const { return m_depth < 8; }
    std::uint32_t paintColor() const;
    std::uint32_t bitValue(bool isMain) const;
    const std::uint8_t* ditherRow() const;
    void returnToBlock(const XCVOffscreen* moved) const;
    std::uint8_t* rowOf(const XCVOffscreen* image) const;
    static BlockPixels blockOf(const XCVOffscreen* image);

    XCFastPixelMixer& m_mixer;
    int m_depth;
    const KernelTable* m_kernels = nullptr;
    // The span, inside the block.
    int m_x = 0;
    int m_y = 0;
    int m_n = 0;
    // Of copies: the image, and where its samples begin.
    const XCSimpleImage* m_source = nullptr;
    SampleLine m_line;
    SampleLine m_lineB;
};

/// cnDepthColumns for a depth that no kernel paints.
DepthColumn columnOf(int depth);

/// The ordered dither: whether an opacity byte passes a threshold.
constexpr bool passesDither(int level, int threshold) { return level >= 255 || (level != 0 && threshold <= level); }

} // namespace ovw::mixing

#endif // OVW_MIXING_SPANPAINTER_H
