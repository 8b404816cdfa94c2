#ifndef OVW_VIMAGE_TURNROWS_H
#define OVW_VIMAGE_TURNROWS_H

/// @file
/// The inner loops of quarter turns and mirroring, on memory of blocks. Steps from row to row are in bytes, and may be
/// negative.

#include "vimage/pixelformats.h"
#include "vimage/quarterturn.h"
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

/// The bits of a byte in reverse order.
constexpr std::uint8_t reversedBits(std::uint8_t byte) {
    unsigned bits = byte;
    bits = bits >> 4 | bits << 4;
    bits = (bits >> 2 & 0x33) | (bits & 0x33) << 2;
    bits = (bits >> 1 & 0x55) | (bits & 0x55) << 1;
    return static_cast<std::uint8_t>(bits);
}

/// Whole bytes, reversed on the way, then moved to their place.
template <>
inline void reverseRow<Bit1>(std::uint8_t* to, int toX, const std::uint8_t* from, int fromX, int count) {
    constexpr int cnPiece = 512; // pixels
    std::uint8_t reversed[cnPiece / 8 + 1];
    for (int done = 0; done < count; done += cnPiece) {
        const int last = fromX + count - 1 - done; // the pixel that comes first
        const int begin = 7 - (last & 7);
        const int taken = std::min(cnPiece, count - done);
        for (int i = 0; i < (begin + taken + 7) / 8; ++i)
            reversed[i] = reversedBits(from[(last >> 3) - i]);
        Bit1::copyRow(to, toX + done, reversed, begin, taken);
    }
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

/// Eight rows of eight bits, the first row in the highest byte, with rows and columns exchanged: three swaps of ever
/// larger squares (Warren, "Hacker's Delight").
constexpr std::uint64_t transposeBits(std::uint64_t bits) {
    const auto swap = [&bits](int distance, std::uint64_t squares) {
        const std::uint64_t changed = (bits ^ bits >> distance) & squares;
        bits ^= changed ^ changed << distance;
    };
    swap(7, 0x00AA00AA00AA00AA);
    swap(14, 0x0000CCCC0000CCCC);
    swap(28, 0x00000000F0F0F0F0);
    return bits;
}

/// By squares of eight pixels; fewer where a row ends.
template <>
inline void transposePixels<Bit1>(const PixelGrid& to, const PixelGrid& from, int width, int height, bool) {
    constexpr int cnSquare = 8, cnPair = 2; // shifted bits lie in two bytes
    for (int y = 0; y < height; y += cnSquare) {
        const int rows = std::min(cnSquare, height - y);
        for (int x = 0; x < width; x += cnSquare) {
            const int columns = std::min(cnSquare, width - x);
            std::uint64_t bits = 0;
            for (int i = 0; i < rows; ++i) {
                std::uint8_t row[cnPair] = {};
                Bit1::copyRow(row, 0, from.row(y + i), from.x + x, columns);
                bits |= static_cast<std::uint64_t>(row[0]) << 8 * (cnSquare - 1 - i);
            }
            bits = transposeBits(bits);
            for (int i = 0; i < columns; ++i) {
                const std::uint8_t row[cnPair] = {static_cast<std::uint8_t>(bits >> 8 * (cnSquare - 1 - i))};
                Bit1::copyRow(to.row(x + i), to.x + y, row, 0, rows);
            }
        }
    }
}

/// Turns a rectangle of width x height pixels of the source.
template <class Format>
void turnRows(const PixelGrid& to, const PixelGrid& from, int width, int height, const Orientation& orientation) {
    if (orientation.isTransposed)
        return transposePixels<Format>(orientation.reversesY ? to.upward(width) : to,
                                       orientation.reversesX ? from.upward(height) : from, width, height, false);
    const PixelGrid target = orientation.reversesY ? to.upward(height) : to;
    for (int y = 0; y < height; ++y)
        if (orientation.reversesX)
            reverseRow<Format>(target.row(y), target.x, from.row(y), from.x, width);
        else
            Format::copyRow(target.row(y), target.x, from.row(y), from.x, width);
}

} // namespace ovw::vimage

#endif // OVW_VIMAGE_TURNROWS_H
