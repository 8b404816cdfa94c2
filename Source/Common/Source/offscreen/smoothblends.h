#ifndef OVW_OFFSCREEN_SMOOTHBLENDS_H
#define OVW_OFFSCREEN_SMOOTHBLENDS_H

#include "offscreen/pixelview.h"

#include <cstdint>

namespace ovw::offscreen {

/// A mix of two pixels by whole weights out of a total, so that it is exact; channels are truncated. Opaque mixes,
/// which leave the pixel its alpha, are marked by alpha 0. Where transparency is at hand, only the alpha is mixed (at
/// least 1), and the colour is that of the pixel itself, or of the partner where the pixel has none.
struct Blend {
    std::int64_t partnerWeight, ownWeight, total;

    ArgbPixel operator()(const ArgbPixel& partner, const ArgbPixel& own, bool isOpaque) const;
};

ArgbPixel averageOf(const ArgbPixel& a, const ArgbPixel& b);

/// What a pass found for a pixel.
struct SmoothedPixel {
    enum class Kind : std::uint8_t {
        none,
        diagonal, ///< a whole that counts only where rows and columns both have one: a step of one pixel
        whole,    ///< the new colour
        parts     ///< two parts, to which half of the pixel itself is added in the end
    };

    Kind kind = Kind::none;
    ArgbPixel part1 = {};
    ArgbPixel part2 = {};
};

/// The blends found so far, in two images beside the one that is smoothed, and a mark for each pixel that tells which
/// of them are in use. The images are locked and belong to the caller. Where rows and columns both have something for a
/// pixel, neither goes before the other: parts of both, at a corner, make a whole; a whole beats parts; of two wholes
/// the one that changes the pixel more wins, and of equal ones the average.
class SmoothBlends {
public:
    /// marks: a zero byte for each pixel of the image.
    SmoothBlends(const PixelView& work1, const PixelView& work2, std::uint8_t* marks, int width)
        : m_work1(work1), m_work2(work2), m_marks(marks), m_width(width) {}

    /// What a pass found for a pixel, whose own colour is `own`; once for every pixel and pass.
    void add(int x, int y, const ArgbPixel& own, const SmoothedPixel& found);
    /// Brings the blends of a rectangle into the image.
    void mergeInto(const PixelView& image, const XCRect& rect) const;

private:
    using Kind = SmoothedPixel::Kind;

    std::uint8_t& mark(int x, int y) const { return m_marks[static_cast<std::ptrdiff_t>(y) * m_width + x]; }
    SmoothedPixel get(int x, int y) const;
    template <class Format>
    void mergeRow(const PixelView& image, int y, int left, int right) const;

    PixelView m_work1;
    PixelView m_work2;
    std::uint8_t* m_marks; // a Kind each
    int m_width;
};

} // namespace ovw::offscreen

#endif // OVW_OFFSCREEN_SMOOTHBLENDS_H
