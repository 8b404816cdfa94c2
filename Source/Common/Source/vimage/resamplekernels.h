#ifndef OVW_VIMAGE_RESAMPLEKERNELS_H
#define OVW_VIMAGE_RESAMPLEKERNELS_H

/// @file
/// The inner loops of resampling, compiled once an instruction set, with the same results.

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

/// Averages count squares; rows lie stride pixels apart. isVisible: 0 for squares without a pixel of some alpha, of
/// which the colour means nothing.
using ColourAverager = void (*)(const BgraPixel* rows, std::ptrdiff_t stride, int count, BgraPixel* colours,
                                std::uint8_t* isVisible);
/// Adds up count squares of bytes.
using ByteAdder = void (*)(const std::uint8_t* rows, std::ptrdiff_t stride, int count, std::uint16_t* sums);

struct ResampleKernels {
    // Of squares with side 2, 4, 8.
    ColourAverager averageColours[3];
    ByteAdder addBytes[3];
    // weight x a row of up to cnBlockSize pixels, to begin sums with and to add to them.
    void (*setRow)(const BgraPixel* row, int count, double weight, ColumnSums& sums);
    void (*addRow)(const BgraPixel* row, int count, double weight, ColumnSums& sums);
    /// Each of count pixels twice, or four times, one after the other.
    void (*repeat[2])(const BgraPixel* row, int count, BgraPixel* repeated);
};

/// Those of the instruction set in force.
const ResampleKernels& resampleKernels();

const ResampleKernels& baseResampleKernels();
const ResampleKernels& avx2ResampleKernels();
const ResampleKernels& avx512ResampleKernels();

} // namespace ovw::vimage

#endif // OVW_VIMAGE_RESAMPLEKERNELS_H
