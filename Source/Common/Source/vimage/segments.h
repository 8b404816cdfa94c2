#ifndef OVW_VIMAGE_SEGMENTS_H
#define OVW_VIMAGE_SEGMENTS_H

#include <cstdint>

class XCVOffscreen;

namespace ovw::vimage {

/// A segment drawn with a square pen, whose left-top corner goes from one point to the other by Bresenham's line.
struct Segment {
    std::int64_t x1;
    std::int64_t y1;
    std::int64_t x2;
    std::int64_t y2;
    int width; ///< of the pen; below 1 nothing is drawn
    std::uint32_t colour;

    /// The pen, 1 to `width`, with which a slanted segment looks as thick as a level one does with `width`.
    int fittedWidth() const;
    /// Takes a pen of another width; inset: how much further right and down it goes.
    void takePen(int pixels, int inset);
};

// The caller holds the image locked for editing. Costs grow with what is seen of the segment.

/// Every pixel under the pen gets the colour.
void stampSegment(XCVOffscreen& image, const Segment& segment);
/// The colour goes behind the pixels, as often as the pen stands on one.
void stampSegmentBehind(XCVOffscreen& image, const Segment& segment);
/// Fills the hull of the pen's first and last place.
void fillSegment(XCVOffscreen& image, const Segment& segment);

} // namespace ovw::vimage

#endif // OVW_VIMAGE_SEGMENTS_H
