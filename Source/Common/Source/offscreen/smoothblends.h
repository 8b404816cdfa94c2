#ifndef OVW_OFFSCREEN_SMOOTHBLENDS_H
#define OVW_OFFSCREEN_SMOOTHBLENDS_H

#include "offscreen/pixelview.h"

#include <cstdint>

namespace ovw::offscreen {

/// A mix of two pixels by whole weights out of a total, so that it is exact; channels are truncated. Opaque mixes are
/// marked by alpha 0. Where transparency is at hand, only the alpha is mixed (at least 1), and the colour is that of
/// the pixel itself, or of the partner where the pixel has none.
struct Blend {
    std::int64_t partnerWeight, ownWeight, total;

    ArgbPixel operator()(const ArgbPixel& partner, const ArgbPixel& own, bool isOpaque) const;
};

/// The blends found so far, in two images beside the one that is smoothed, and a mark for each pixel that tells which
/// of them are in use. The images are locked and belong to the caller.
class SmoothBlends {
public:
    /// marks: a zero byte for each pixel of the image.
    SmoothBlends(const PixelView& work1, const PixelView& work2, std::uint8_t* marks, int width)
        : m_work1(work1), m_work2(work2), m_marks(marks), m_width(width) {}

    /// The pixel's new colour; replaces what was there.
    void writeWhole(int x, int y, const ArgbPixel& blend);
    /// Two parts, to which half of the pixel itself is added in the end. Columns that find the parts of a row, at a
    /// corner, make a whole of both.
    void writeParts(int x, int y, const ArgbPixel& own, const ArgbPixel& part1, const ArgbPixel& part2, bool ofColumn);
    /// Brings the blends of a rectangle into the image.
    void mergeInto(const PixelView& image, const XCRect& rect) const;

private:
    enum Mark : std::uint8_t { whole = 1, rowParts = 2, columnParts = 4 };

    std::uint8_t& mark(int x, int y) const { return m_marks[static_cast<std::ptrdiff_t>(y) * m_width + x]; }
    template <class Format>
    void mergeRow(const PixelView& image, int y, int left, int right) const;

    PixelView m_work1;
    PixelView m_work2;
    std::uint8_t* m_marks;
    int m_width;
};

} // namespace ovw::offscreen

#endif // OVW_OFFSCREEN_SMOOTHBLENDS_H
