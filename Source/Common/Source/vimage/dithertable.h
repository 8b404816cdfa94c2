#ifndef OVW_VIMAGE_DITHERTABLE_H
#define OVW_VIMAGE_DITHERTABLE_H

/// @file
/// The ordered-dither matrix that images and mixers share.

#include <array>
#include <cstddef>
#include <cstdint>

namespace ovw::vimage {

inline constexpr int cnDitherSize = 16;

/// Bayer's matrix by its recursion: four copies of the matrix of half the size times 4, plus 0, 2 / 3, 1.
template <std::size_t Size>
constexpr std::array<std::uint8_t, Size * Size> bayerMatrix() {
    std::array<std::uint8_t, Size * Size> matrix{};
    if constexpr (Size > 1) {
        constexpr std::size_t cnHalf = Size / 2;
        constexpr auto cnQuarter = bayerMatrix<cnHalf>();
        constexpr std::uint8_t cnStep[2][2] = {{0, 2}, {3, 1}};
        for (std::size_t y = 0; y < Size; ++y)
            for (std::size_t x = 0; x < Size; ++x)
                matrix[y * Size + x] = static_cast<std::uint8_t>(4 * cnQuarter[y % cnHalf * cnHalf + x % cnHalf] +
                                                                 cnStep[y / cnHalf][x / cnHalf]);
    }
    return matrix;
}

/// Row by row, entries 0 to 255.
inline constexpr auto cnDitherMatrix = bayerMatrix<cnDitherSize>();

inline constexpr int cnDitherMask = cnDitherSize - 1;

/// The entries of a row of pixels, by x & cnDitherMask; negative coordinates continue the pattern.
constexpr const std::uint8_t* ditherRow(int y) { return &cnDitherMatrix[(y & cnDitherMask) * cnDitherSize]; }
/// The entry for a pixel.
constexpr std::uint8_t ditherThreshold(int x, int y) { return ditherRow(y)[x & cnDitherMask]; }

} // namespace ovw::vimage

#endif // OVW_VIMAGE_DITHERTABLE_H
