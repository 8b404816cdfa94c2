#ifndef OVW_VIMAGE_TURNROWS_H
#define OVW_VIMAGE_TURNROWS_H

/// @file
/// The inner loops of quarter turns and mirroring, on memory of blocks. Steps from row to row are in bytes, and may be
/// negative.

#include "vimage/pixelformats.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace ovw::vimage {

/// A rectangle of pixels in memory whose rows may run upward.
struct PixelGrid {
    std::uint8_t* first; ///< byte of pixel (0, 0); rows of less than a byte begin in it at pixel x
    std::ptrdiff_t rowStep;
    int x = 0; ///< of the first pixel in its row, for pixels of less than a byte

    std::uint8_t* row(int y) const { return first + y * rowStep; }
};

/// Pixels of a row in reverse order.
template <class Format>
void reverseRow(std::uint8_t* to, int toX, const std::uint8_t* from, int fromX, int count) {
    for (int i = 0; i < count; ++i)
        Format::setPixel(to, toX + i, Format::pixelAt(from, fromX + count - 1 - i));
}

/// to(x, y) = from(y, x) for a rectangle of width x height pixels of the source, in tiles that the nearest cache holds.
template <class Format>
void transposePixels(const PixelGrid& to, const PixelGrid& from, int width, int height) {
    constexpr int cnTile = 16;
    for (int top = 0; top < height; top += cnTile)
        for (int left = 0; left < width; left += cnTile)
            for (int x = left; x < std::min(left + cnTile, width); ++x)
                for (int y = top; y < std::min(top + cnTile, height); ++y)
                    Format::setPixel(to.row(x), to.x + y, Format::pixelAt(from.row(y), from.x + x));
}

using FourWords [[gnu::vector_size(16)]] = std::uint32_t;

inline FourWords wordsAt(const std::uint8_t* address) {
    FourWords words;
    std::memcpy(&words, address, sizeof words);
    return words;
}

/// Four pixels of four rows into four rows of four.
inline void transposeFour(const PixelGrid& to, const PixelGrid& from, int x, int y) {
    FourWords rows[4];
    for (int i = 0; i < 4; ++i)
        rows[i] = wordsAt(from.row(y + i) + x * 4);
    const FourWords low01 = __builtin_shufflevector(rows[0], rows[1], 0, 4, 1, 5);
    const FourWords high01 = __builtin_shufflevector(rows[0], rows[1], 2, 6, 3, 7);
    const FourWords low23 = __builtin_shufflevector(rows[2], rows[3], 0, 4, 1, 5);
    const FourWords high23 = __builtin_shufflevector(rows[2], rows[3], 2, 6, 3, 7);
    const FourWords turned[4] = {
        __builtin_shufflevector(low01, low23, 0, 1, 4, 5), __builtin_shufflevector(low01, low23, 2, 3, 6, 7),
        __builtin_shufflevector(high01, high23, 0, 1, 4, 5), __builtin_shufflevector(high01, high23, 2, 3, 6, 7)};
    for (int i = 0; i < 4; ++i)
        std::memcpy(to.row(x + i) + y * 4, &turned[i], sizeof turned[i]);
}

/// Sixteen source rows at a time, so that every line of the destination's cache is written whole.
template <>
inline void transposePixels<Rgba32>(const PixelGrid& to, const PixelGrid& from, int width, int height) {
    constexpr int cnTile = 16, cnSquare = 4;
    const auto one = [&](int x, int y) { std::memcpy(to.row(x) + y * 4, from.row(y) + x * 4, 4); };
    for (int top = 0; top < height; top += cnTile) {
        const int bottom = std::min(top + cnTile, height);
        int x = 0;
        for (; x + cnSquare <= width; x += cnSquare) {
            // Rows of the destination lie too far apart for the processor to foresee them.
            if (x + cnTile + cnSquare <= width)
                for (int i = 0; i < cnSquare; ++i)
                    __builtin_prefetch(to.row(x + cnTile + i) + top * 4, 1);
            int y = top;
            for (; y + cnSquare <= bottom; y += cnSquare)
                transposeFour(to, from, x, y);
            for (; y < bottom; ++y)
                for (int i = 0; i < cnSquare; ++i)
                    one(x + i, y);
        }
        for (; x < width; ++x)
            for (int y = top; y < bottom; ++y)
                one(x, y);
    }
}

} // namespace ovw::vimage

#endif // OVW_VIMAGE_TURNROWS_H
