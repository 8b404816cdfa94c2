#ifndef OVW_MIXING_KERNELTABLE_H
#define OVW_MIXING_KERNELTABLE_H

#include "mixing/coveragerow.h"
#include "mixing/sourcerow.h"

#include <cstdint>

namespace ovw::mixing {

/// The destination depths that have compositors; 1 and 2 bits share theirs.
enum DepthColumn { DepthBits, Depth8, Depth24, Depth32, cnDepthColumns };

constexpr int cnCompositions = 19;

/// What a compositor works on: a row of pixels in block memory and what is painted there.
struct CompositeSpan {
    std::uint8_t* dst;       ///< The first pixel; for 1 and 2 bits the first byte of the block's row.
    const std::uint8_t* ref; ///< The first pixel of the image that dst is rebuilt from; unused by in-place compositors.
    const std::int32_t* a;   ///< Opacity of each pixel; 0 leaves it.
    int n;                   ///< Pixels.
    std::int32_t opacity;    ///< Of every pixel, above 0, in compositors of one opacity.
    std::uint32_t color;     ///< As stored in 32 bits, alpha 0.
    const std::uint32_t* colors; ///< A colour a pixel, in compositors of many colours; some use its alpha.
    std::uint32_t keep;          ///< The bits of a 32-bit pixel that must not be written.
    const float* softLight;      ///< softLightCurves(), for that composition.
    int column;                  ///< 1 and 2 bits: of the first pixel in the block.
    int bits;                    ///< 1 and 2 bits: the depth.
    std::uint32_t value;         ///< 1 and 2 bits: what is written.
    const std::uint8_t* values;  ///< 1 and 2 bits: what is written, a value a pixel, or null.
    const std::uint8_t* dither;  ///< 1 and 2 bits: the 16 thresholds of the row, or null.
};

/// A row through an anti-aliased circle; lengths in sub-pixels, small enough that their squares are whole numbers.
struct CircleRow {
    double dx;       ///< of the first pixel from the centre
    double step;     ///< to the next pixel
    double dySquare; ///< squared distance of the row from the centre
    double pixels;   ///< of a sub-pixel
    double radius;   ///< in pixels
    int innerStart;  ///< the pixels that are covered in full, whatever their distance
    int innerEnd;
};

/// From the coverage of a dab to the opacity of the stroke so far.
struct StrokeStep {
    std::int32_t alpha;   ///< The dab's coverage, in kernels of one coverage.
    std::int32_t limit;   ///< A cache that holds as much is full: its pixel is skipped. Also the cap of one coverage.
    std::int32_t opacity; ///< Of the stroke.
};

/// Pixels first to end - 1 of a row.
struct PaintedPart {
    int first;
    int end;
};

using Compositor = void (*)(const CompositeSpan&);
/// Null draws nothing.
using CompositorTable = Compositor[cnCompositions][cnDepthColumns];

/// Texture modes as the stages know them; the stage order of KernelTable::texture.
enum TextureStage { TextureScale, TextureSubtract, TextureLimit, TextureCap, cnTextureStages };

/// In the order of KernelTable::accumulate.
enum Accumulation { AccumulateNone, AccumulateOver, AccumulateMax, AccumulateAdd, cnAccumulations };

/// How weights of a source image multiply into a coverage; the order of KernelTable::scaleBySource.
enum SourceScale {
    ScaleQuarters, ///< Covering samples out of four.
    ScaleAlpha,    ///< A byte as an alpha.
    ScaleSum,      ///< The sum of four bytes.
    ScaleFixed,    ///< 1.15.
    ScaleByte,     ///< A byte into an opacity byte.
    cnSourceScales
};

/// How pixels of a source image lie in memory; the order of KernelTable::sample.
enum SourceTexel { TexelByte, TexelRgb, TexelRgba, cnSourceTexels };

/// What samples weigh; the order of KernelTable::weigh.
enum SourceWeight {
    WeighBits,         ///< In full or not at all.
    WeighDensities,    ///< By their sum.
    WeighDensityBytes, ///< By their mean.
    WeighDarkness,     ///< By darkness and alpha; they bring no colours.
    WeighColors,       ///< In full.
    WeighColorBytes,   ///< By the mean of their alphas.
    cnSourceWeights
};

/// What the water kernels found below.
struct ColorSums {
    std::uint32_t alpha;
    std::uint32_t red;
    std::uint32_t green;
    std::uint32_t blue;
    std::uint32_t colored; ///< Pixels with alpha.
    std::uint32_t visited;
};

/// The kernels' loops as compiled for one instruction set. All sets give the same results.
struct KernelTable {
    void (*startRow)(CoverageRow& row, std::int32_t a, std::int32_t cap);
    /// a = the alpha that ScaleAntiAlpha makes of each coverage and base; 0 for a coverage that is not above 0.
    void (*startCoverage)(CoverageRow& row, const float* coverage, float base);
    /// Scales a by factor, and sets the cap.
    void (*scaleStart)(CoverageRow& row, std::int32_t factor, std::int32_t cap);
    /// The coverages of n pixels; writes up to seven more.
    void (*circleRow)(float* coverage, int n, const CircleRow& row);

    /// Reads n samples a column into the texels from first on; writes up to SourceTexels::cnRoom texels more.
    void (*sample[cnSourceTexels])(SourceTexels& texels, int first, int n, const SourcePixels& pixels,
                                   const SampleColumn* columns, int count);
    /// From one sample a pixel, or from four.
    void (*weigh[cnSourceWeights][2])(SourceRow& row, int n, const SourceTexels& texels, const SourceColors& colors);
    void (*scaleBySource[cnSourceScales])(CoverageRow& row, const std::int32_t* weights);
    void (*gateByMask)(CoverageRow& row, const std::uint8_t* mask);
    void (*scaleByMask)(CoverageRow& row, const std::uint8_t* mask);
    void (*scaleByMaskAndCap)(CoverageRow& row, const std::uint8_t* mask);
    void (*scaleByMaskOfBlur)(CoverageRow& row, const std::uint8_t* mask);
    /// live = whether there is coverage.
    void (*visitCovered)(CoverageRow& row);
    /// Clears live where the source has nothing, or the mask lets nothing through.
    void (*visitBySource)(CoverageRow& row, const std::int32_t* weights);
    void (*visitByMask)(CoverageRow& row, const std::uint8_t* mask);

    /// weights[i] = table[(position + i * step) >> 14] * strength >> 10, at most limit.
    void (*gaussOfTable)(std::int32_t* weights, int n, const int* table, int position, int step, int strength,
                         std::int32_t limit);
    /// weights[i] = (line[(position + i * step) >> 14] * rowFactor - end) * scale in 1.15, 0 to limit.
    void (*gaussOfLine)(std::int32_t* weights, int n, int position, int step, float rowFactor, float scale,
                        std::int32_t limit);
    void (*scaleByGauss)(CoverageRow& row, const std::int32_t* weights);
    /// For weights above 1.0.
    void (*scaleByGaussWide)(CoverageRow& row, const std::int32_t* weights);

    /// parameter: the bias in TextureScale, the alpha that texels scale in TextureSubtract and TextureLimit.
    void (*texture[cnTextureStages])(CoverageRow& row, const std::uint8_t* texels, std::int32_t parameter);
    /// Adds a to the cache and takes over the sum; null: nothing to do.
    void (*accumulate[cnAccumulations])(CoverageRow& row, std::uint16_t* cache);
    /// The same where the cache is not full, and a = the sum times the opacity.
    void (*accumulateStroke[cnAccumulations])(CoverageRow& row, std::uint16_t* cache, const StrokeStep& step);
    /// The same from one coverage for all pixels.
    void (*accumulateOne[cnAccumulations])(CoverageRow& row, std::uint16_t* cache, const StrokeStep& step);
    /// What is left between long runs of pixels without coverage at both ends.
    PaintedPart (*paintedPart)(const CoverageRow& row);
    void (*scaleByOpacity)(CoverageRow& row, std::int32_t opacity);
    /// For coverages above 1.0.
    void (*scaleByOpacityWide)(CoverageRow& row, std::int32_t opacity);

    /// Sums up the 32-bit pixels where the row is live.
    void (*sumColors)(ColorSums& sums, const CoverageRow& row, const std::uint8_t* pixels);
    /// share = the part of a coverage before accumulation in the row's coverage after it, 1.0 when it is all.
    void (*shareOfDab)(std::int32_t* share, const std::int32_t* dab, const CoverageRow& row);
    /// 8-bit caches of water: toward the density by the dab's part in the row's coverage.
    void (*mixDensityCache)(std::uint8_t* cache, const std::int32_t* dab, const CoverageRow& row, std::int32_t density);
    /// Adds a to the cache and takes over the sum; share = how far the colour cache moves.
    void (*accumulateColorOver)(CoverageRow& row, std::uint16_t* cache, std::int32_t* share);
    void (*accumulateColorMax)(CoverageRow& row, std::uint16_t* cache, std::int32_t* share);
    /// Moves n 32-bit pixels toward the colours, but for the bits to keep.
    void (*moveColors32)(std::uint8_t* pixels, const std::uint32_t* colors, const std::int32_t* share, int n,
                         std::uint32_t keep);
    void (*moveColors24)(std::uint8_t* pixels, const std::uint32_t* colors, const std::int32_t* share, int n);

    CompositorTable fastest;    ///< One opacity byte.
    CompositorTable fastestRow; ///< An opacity byte a pixel.
    CompositorTable direct;
    CompositorTable cache;
    CompositorTable cacheOverNothing; ///< Where the reference has no memory: ref is then blankReference().
    CompositorTable stamp;            ///< An opacity byte and a colour a pixel.
    CompositorTable colorCache;       ///< As cache, with a colour a pixel.
    CompositorTable colorOverNothing;
    CompositorTable water; ///< As cache, with a colour or density (in the alpha) and an alpha a pixel.
    Compositor blur[cnDepthColumns];
    Compositor clone[cnDepthColumns];
};

const KernelTable& baseKernels();
const KernelTable& avx2Kernels();
const KernelTable& avx512Kernels();

/// The table of the instruction set in force for spans of n pixels: the widest vectors do not pay for short spans.
const KernelTable& kernels(int n);

/// 256 rows of 256 values: 255 * pow(below / 255, exponent(paint)) at [paint * 256 + below].
const float* softLightCurves();

} // namespace ovw::mixing

#endif // OVW_MIXING_KERNELTABLE_H
