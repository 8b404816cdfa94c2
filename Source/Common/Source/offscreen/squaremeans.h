#ifndef OVW_OFFSCREEN_SQUAREMEANS_H
#define OVW_OFFSCREEN_SQUAREMEANS_H

#include "offscreen/pixelview.h"
#include "vimage/pixelformats.h"

#include <array>

namespace ovw::offscreen {

/// Truncated means of squares of 2, 4 or 8 pixels a side, by the kernels that reduce tiled images, with the results of
/// PixelMean<Format, WholePixels>.
class SquareMeans {
public:
    static constexpr int cnLargestFactor = 8;
    static constexpr bool isFactor(std::int64_t factor) { return factor == 2 || factor == 4 || factor == 8; }

    /// keepsAlpha: of 32 bits; otherwise means are opaque.
    SquareMeans(const PixelView& source, int factor, bool keepsAlpha);

    /// How many squares are averaged together.
    int largestCount() const { return vimage::cnBlockSize / m_factor; }
    /// The depth of the means: that of the source, but 8 for packed pixels.
    int depth() const { return m_depth; }
    /// The means of `count` squares from source pixel (x, y) on, as pixels of a row; all squares lie in the source.
    const std::uint8_t* row(int x, int y, int count);

private:
    // By the source's format.
    void average(Argb32, int x, int y, int count);
    void average(Rgb24, int x, int y, int count);
    void average(Density8, int x, int y, int count);
    void average(Ink1, int x, int y, int count);

    const PixelView& m_source;
    int m_factor;
    int m_power; // the factor is 2 to this
    bool m_keepsAlpha;
    int m_depth;
    std::array<std::uint8_t, vimage::cnBlockSize * cnLargestFactor> m_bits; // rows of the source, a byte a pixel
    std::array<vimage::BgraPixel, vimage::cnBlockSize> m_colours;
    std::array<std::uint8_t, vimage::cnBlockSize> m_isVisible;
    std::array<std::uint16_t, vimage::cnBlockSize> m_sums;
    std::array<std::uint8_t, vimage::cnBlockSize * sizeof(ArgbPixel)> m_row;
};

} // namespace ovw::offscreen

#endif // OVW_OFFSCREEN_SQUAREMEANS_H
