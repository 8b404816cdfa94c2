#ifndef OVW_MIXING_SPANPAINTER_H
#define OVW_MIXING_SPANPAINTER_H

#include "mixing/coveragerow.h"
#include "mixing/fetchsource.h"
#include "mixing/kernelplan.h"
#include "mixing/kerneltable.h"
#include "mixing/pixel32.h"
#include "mixing/rowinputs.h"
#include "ovwcmn/xcfastpixelmixer.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace ovw::mixing {

struct BatchImages;
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
    /// The kernel of such spans in the current block, null when they paint nothing. It stays the same while the
    /// settings and the block do.
    const KernelPlan* planOfSpan() const { return choosePlan(nullptr); }
    /// paintSpan with that kernel.
    void paintSpan(const KernelPlan& plan, int x1, int x2, int y);
    /// A part of the current block.
    void paintPart(const XCRect& part);
    /// False when the paint is not plain, or paints nothing.
    bool preparePlainRows(PlainRows& rows) const;
    /// The kernel of spans with coverages of their own in the current block, null when they paint nothing. It stays the
    /// same while the settings and the block do.
    const KernelPlan* planOfCoverage() const;
    /// Pixels from x on with coverages of their own, with that kernel.
    void paintCoverage(const KernelPlan& plan, int x, int y, std::span<const float> coverage);
    /// Pixels x1 to x2 - 1 of row y through a source image.
    void paintCopy(int x1, int x2, int y, const XCSimpleImage* source);
    /// The same with lines of samples other than the mixer's.
    void paintCopy(int x1, int x2, int y, const XCSimpleImage* source, const SampleLine& line, const SampleLine& lineB);
    /// The kernel of spans through a source image in the current block, null when they paint nothing or need paintCopy.
    /// The source is that of the spans to come.
    const KernelPlan* planOfCopy(const XCSimpleImage* source);

    // For a RowBatch, which runs a kernel over several spans at once.

    /// False when the kernel's spans in the current block cannot be gathered.
    bool prepareBatch(BatchImages& images, const KernelPlan& plan) const;
    /// Goes to a span of n pixels inside the block.
    void goTo(int x, int y, int n) { m_x = x, m_y = y, m_n = n; }
    /// Where the samples of the source begin for the span.
    void aim(const SampleLine& line, const SampleLine& lineB) { m_line = line, m_lineB = lineB; }
    /// Decides what all spans to come have in common. False when the kernel reads nothing beside their pixels.
    bool prepare(const KernelPlan& plan);
    /// Fetches what it reads for the span, into the room from first on. False when the span does not show.
    bool fetchInputs(RowInputs& room, int first, const KernelPlan& plan);
    /// Runs the kernel over the pixels. coverage: a coverage a pixel, or null.
    void work(const KernelPlan& plan, const RowInputs& inputs, const RowPixels& pixels, const float* coverage);

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
    void runRows(const KernelPlan& plan, int rows);
    void runUniform();
    void start(CoverageRow& row, const KernelPlan& plan, const float* coverage) const;
    void startVisits(CoverageRow& row, const float* coverage) const;
    std::int32_t startFactor(Start start) const;
    bool setSource(const XCSimpleImage* source, const KernelPlan& plan);
    bool readsSource(const KernelPlan& plan) const;
    void weighSource(CoverageRow& row, SourceRow& source, const SourceTexels& samples, const KernelPlan& plan) const;
    void fetchMaskValues(std::uint8_t* values, MaskRule rule) const;
    void fetchTexels(std::uint8_t* texels) const;
    void applyMask(CoverageRow& row, const std::uint8_t* values, const KernelPlan& plan) const;
    void applyTexture(CoverageRow& row, const std::uint8_t* texels, std::int32_t alpha) const;

    // spancache.cpp: the stroke caches
    bool applyCache(CoverageRow& row, const KernelPlan& plan, const RowInputs& inputs, const std::uint32_t* colors);
    StrokeStep strokeStep(const KernelPlan& plan) const;
    void sampleBelow(const CoverageRow& row) const;
    void accumulate(CoverageRow& row) const;
    void accumulateWater(CoverageRow& row) const;
    void accumulateColor(CoverageRow& row, const std::uint32_t* colors) const;
    Accumulation accumulation() const;

    // spancomposite.cpp: the end of the road
    void composite(const CoverageRow& row, const KernelPlan& plan, const RowInputs& inputs,
                   const std::uint32_t* ofSource) const;
    void skip(CompositeSpan& span, int n) const;
    void fetchColors(std::uint32_t* colors, const KernelPlan& plan) const;
    const std::uint32_t* colorsOf(std::uint32_t* room, const KernelPlan& plan, const RowInputs& inputs,
                                  const std::uint32_t* ofSource) const;
    void fetchCacheColors(std::uint32_t* colors) const;
    void cloneBits(const CoverageRow& row, const std::uint32_t* colors) const;
    int uniformComposition(std::int32_t opacity) const;
    Compositor compositorOf(CompositorSet set, bool overNothing) const;
    static const CompositorTable KernelTable::*tableOf(CompositorSet set, bool overNothing);
    void goToBits(CompositeSpan& span) const;
    CompositeSpan commonSpan() const;
    bool keepsNothing(bool overNothing) const;

    // bitstamp.cpp: image stamps on 1 and 2 bits, which have rules of their own
    void stampBits() const;
    void stampColorBits() const;
    void fetchGate(std::uint8_t* gate) const;
    /// The tones of the span's pixels, each in the first byte of a pixel of the colour cache.
    struct ToneRow {
        std::uint8_t* first;
        int step;
        std::uint8_t& operator[](int i) const { return first[i * step]; }
    };
    ToneRow toneRow() const;
    void stampTones(CoverageRow& row, std::uint8_t* values) const;
    void ditherTones(CoverageRow& row, std::uint8_t* values) const;
    std::int32_t accumulateTone(std::int32_t a, std::int32_t newTone, std::uint16_t& cache, std::uint8_t& tone) const;
    void writeBits(const CoverageRow& row, const std::uint8_t* values) const;

    bool reads(unsigned inputBits) const { return m_inputs & inputBits; }
    bool hasStyle(std::uint32_t bits) const { return m_mixer.m_style & bits; }
    bool usesGauss(const KernelPlan& plan) const { return plan.gauss && hasStyle(XCFastPixelMixer::STYLE_GAUSS); }
    bool usesTexture(const KernelPlan& plan) const;
    bool texturesAfter() const { return hasStyle(XCFastPixelMixer::STYLE_TEXTURE_AFTER); }
    bool isBits() const { return m_depth < 8; }
    std::uint32_t paintColor() const;
    std::uint32_t bitValue(bool isMain) const;
    const std::uint8_t* ditherRow() const;
    bool isPainted(const XCVOffscreen* image) const;
    void returnToBlock(const XCVOffscreen* moved) const;
    BatchImages imagesOf(const KernelPlan& plan) const;
    RowPixels rowPixels(const KernelPlan& plan) const;
    std::uint8_t* rowOf(const XCVOffscreen* image) const;
    static BlockPixels blockOf(const XCVOffscreen* image);

    XCFastPixelMixer& m_mixer;
    int m_depth;
    const KernelTable* m_kernels = nullptr;
    // The span, inside the block.
    int m_x = 0;
    int m_y = 0;
    int m_n = 0;
    // Of a kernel that was prepared: InputBits, what its composite spans have in common, the pixels to work on, and
    // those of them that a stage has left to paint.
    unsigned m_inputs = 0;
    CompositeSpan m_common;
    RowPixels m_pixels{};
    PaintedPart m_painted{};
    // Of copies: the image, how spans look into it, and where the samples of the span begin.
    const XCSimpleImage* m_source = nullptr;
    SourceView m_view;
    SampleLine m_line;
    SampleLine m_lineB;
};

/// cnDepthColumns for a depth that no kernel paints.
DepthColumn columnOf(int depth);

/// The ordered dither: whether an opacity byte passes a threshold.
constexpr bool passesDither(int level, int threshold) { return level >= 255 || (level != 0 && threshold <= level); }

} // namespace ovw::mixing

#endif // OVW_MIXING_SPANPAINTER_H
