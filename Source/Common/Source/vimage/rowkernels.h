#ifndef OVW_VIMAGE_ROWKERNELS_H
#define OVW_VIMAGE_ROWKERNELS_H

/// @file
/// The inner loops of operations on whole images, compiled once an instruction set, with the same results.

#include "vimage/pixelformats.h"

#include <cstddef>
#include <cstdint>

namespace ovw::vimage {

inline constexpr int cnLargestFactor = 8;

/// What a column of source pixels adds up to: four channels, and the weight of the pixels that are not transparent.
struct ColumnSums {
    double channels[cnBlockSize * 4]; ///< blue, green, red, alpha of pixel 0, then of pixel 1, ...
    double weights[cnBlockSize];
};

struct WeighedRow {
    const BgraPixel* pixels;
    double weight;
};

/// What the covered pixels of one destination pixel add up to, by weight; transparent pixels add nothing.
struct PixelSums {
    double blue = 0, green = 0, red = 0, alpha = 0;
    double weight = 0;
};

/// The columns that a destination pixel covers, from `begin` to before `end`; between its ends they weigh 1.
struct ColumnRun {
    int begin;
    int end;
    double firstWeight;
    double lastWeight; ///< of column end - 1, unless it is the first
};

/// Averages count squares; rows lie stride pixels apart. isVisible: 0 for squares without a pixel of some alpha, of
/// which the colour means nothing. True when all are visible.
using ColourAverager = bool (*)(const BgraPixel* rows, std::ptrdiff_t stride, int count, BgraPixel* colours,
                                std::uint8_t* isVisible);
/// Averages count squares of pixels of three bytes; rows lie stride bytes apart.
using TripleAverager = void (*)(const std::uint8_t* rows, std::ptrdiff_t stride, int count, std::uint8_t* means);
/// Adds up count squares of bytes.
using ByteAdder = void (*)(const std::uint8_t* rows, std::ptrdiff_t stride, int count, std::uint16_t* sums);

/// A rectangle of pixels in memory whose rows may run upward.
struct PixelGrid {
    std::uint8_t* first; ///< byte of pixel (0, 0); rows of less than a byte begin in it at pixel x
    std::ptrdiff_t rowStep;
    int x = 0; ///< of the first pixel in its row, for pixels of less than a byte

    std::uint8_t* row(int y) const { return first + y * rowStep; }
    /// The same rows, `height` of them, in reverse order.
    PixelGrid upward(int height) const { return {row(height - 1), -rowStep, x}; }
};

/// to(x, y) = from(y, x) for a rectangle of width x height pixels of the source.
using PixelTransposer = void (*)(const PixelGrid& to, const PixelGrid& from, int width, int height);
/// Pixels of a row in reverse order.
using PixelReverser = void (*)(std::uint8_t* to, const std::uint8_t* from, int count);

/// What a pixel becomes, by whether it is opaque (the second bit of the index) and dark (the first).
struct FourTones {
    std::uint8_t of[4];
};

struct RowKernels {
    // Of squares with side 2, 4, 8.
    ColourAverager averageColours[3];
    ColourAverager averageAlphaFirst[3]; ///< of pixels whose first byte is the alpha, in any order of the others
    TripleAverager averageTriples[3];
    ByteAdder addBytes[3];
    /// Adds rows of up to cnBlockSize pixels, each x its weight and in their order; isFirst: to zero, not to the sums.
    void (*addRows)(const WeighedRow* rows, int rowCount, int count, bool isFirst, ColumnSums& sums);
    /// Adds to each of count sums the columns of its run.
    void (*addRuns)(const ColumnSums& columns, const ColumnRun* runs, int count, PixelSums* sums);
    /// Colour sums by their weight, alphas x scale, rounded half up to at most 255; transparent white without weight.
    /// At most cnBlockSize.
    void (*weighedColours)(const PixelSums* sums, int count, double scale, BgraPixel* colours);
    /// Each of count pixels twice, or four times, one after the other.
    void (*repeat[2])(const BgraPixel* row, int count, BgraPixel* repeated);

    // Of pixels of 1, 2, 4 bytes. Streamed: past the caches, for whole blocks of large images.
    PixelTransposer transpose[3];
    PixelTransposer transposeStreamed[3];
    PixelReverser reverse[3];

    // The luminances of at most cnBlockSize pixels of 24 or 32 bits, whatever their alpha is, their bits exchanged
    // where those of `flip` are set.
    void (*luminances24)(const std::uint8_t* pixels, int count, std::uint8_t flip, std::uint8_t* luminances);
    void (*luminances32)(const std::uint8_t* pixels, int count, std::uint8_t flip, std::uint8_t* luminances);
    /// The alphas of pixels of 32 bits.
    void (*alphas32)(const std::uint8_t* pixels, int count, std::uint8_t* alphas);
    /// Tones of pixels: opaque from a coverage, dark from a darkness of thresholds[i] on. With onlyOpaque nothing else
    /// is dark.
    void (*tones)(const std::uint8_t* coverages, const std::uint8_t* darknesses, const std::uint8_t* thresholds,
                  int count, bool onlyOpaque, const FourTones& tones, std::uint8_t* result);
    /// Bits of ink, the first pixel highest, where 8 x count tones are white or black.
    void (*packInk)(const std::uint8_t* tones, int count, std::uint8_t* bits);

    // See pixellayout.h.
    void (*fillRepeated)(std::uint8_t* to, std::size_t bytes, const std::uint8_t* pattern);
    void (*shiftBits)(std::uint8_t* to, const std::uint8_t* from, std::size_t bytes, int shift);

    /// memcpy past the caches. What was streamed is in order with other memory only after endStream.
    void (*stream)(std::uint8_t* to, const std::uint8_t* from, std::size_t bytes);
    void (*endStream)();
};

/// Those of the instruction set in force.
const RowKernels& rowKernels();

const RowKernels& baseRowKernels();
const RowKernels& avx2RowKernels();
const RowKernels& avx512RowKernels();

} // namespace ovw::vimage

#endif // OVW_VIMAGE_ROWKERNELS_H
