#ifndef OVW_VIMAGE_TURNROWS_H
#define OVW_VIMAGE_TURNROWS_H

/// @file
/// The inner loops of quarter turns and mirroring, on memory of blocks. Steps from row to row are in bytes, and may be
/// negative.

#include "vimage/pixelformats.h"
#include "vimage/rowkernels.h"

#include <algorithm>
#include <bit>
#include <cstdint>

namespace ovw::vimage {

/// Where the row kernels have a format's pixel size.
template <class Format>
inline constexpr bool cnHasKernels = Format::cnBits >= 8 && std::has_single_bit(unsigned{Format::cnBits});
template <class Format>
inline constexpr int cnKernelOfSize = std::countr_zero(unsigned{Format::cnBits / 8});

/// Pixels of a row in reverse order.
template <class Format>
void reverseRow(std::uint8_t* to, int toX, const std::uint8_t* from, int fromX, int count) {
    if constexpr (cnHasKernels<Format>)
        return rowKernels().reverse[cnKernelOfSize<Format>](to + toX * Format::cnBytes, from + fromX * Format::cnBytes,
                                                            count);
    for (int i = 0; i < count; ++i)
        Format::setPixel(to, toX + i, Format::pixelAt(from, fromX + count - 1 - i));
}

/// to(x, y) = from(y, x) for a rectangle of width x height pixels of the source; streamed, past the caches, it is a
/// whole block.
template <class Format>
void transposePixels(const PixelGrid& to, const PixelGrid& from, int width, int height, bool isStreamed) {
    if constexpr (cnHasKernels<Format>) {
        const RowKernels& kernels = rowKernels();
        return (isStreamed ? kernels.transposeStreamed : kernels.transpose)[cnKernelOfSize<Format>](to, from, width,
                                                                                                    height);
    }
    constexpr int cnTile = 16; // which the nearest cache holds
    for (int top = 0; top < height; top += cnTile)
        for (int left = 0; left < width; left += cnTile)
            for (int x = left; x < std::min(left + cnTile, width); ++x)
                for (int y = top; y < std::min(top + cnTile, height); ++y)
                    Format::setPixel(to.row(x), to.x + y, Format::pixelAt(from.row(y), from.x + x));
}

} // namespace ovw::vimage

#endif // OVW_VIMAGE_TURNROWS_H
