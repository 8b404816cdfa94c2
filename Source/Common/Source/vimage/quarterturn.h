#ifndef OVW_VIMAGE_QUARTERTURN_H
#define OVW_VIMAGE_QUARTERTURN_H

#include "ovwcmn/xcgeometry.h"

class XCVOffscreen;

namespace ovw::vimage {

/// A turn by quarters with mirroring: pixel (x, y) goes to (y, x) when transposed, and then each axis is reversed or
/// not.
struct Orientation {
    bool isTransposed;
    bool reversesX; ///< of the result
    bool reversesY;

    /// Clockwise by 0, 90, 180 or 270 degrees, then mirrored on the axes of the result.
    static Orientation of(int angle, bool flipX, bool flipY);
    /// Where a rectangle of an image of width x height pixels goes.
    XCRect turned(const XCRect& rect, int width, int height) const;
    /// The one that leads back.
    Orientation inverse() const;
};

// The destination is locked for editing, the source for reading; both have one depth. Blocks that the source lacks are
// passed over.

/// Whole blocks, those beyond the image's edges included; the destination's grid is the source's, turned.
void turnBlocks(XCVOffscreen& destination, XCVOffscreen& source, const Orientation& orientation);
/// The pixels of the image; the destination's size is the source's, turned.
void turnPixels(XCVOffscreen& destination, XCVOffscreen& source, const Orientation& orientation);

} // namespace ovw::vimage

#endif // OVW_VIMAGE_QUARTERTURN_H
