#ifndef OVW_VIMAGE_ROUNDSHAPES_H
#define OVW_VIMAGE_ROUNDSHAPES_H

/// @file
/// Circles, discs and ellipses in tiled images. The caller holds the image locked for editing; the area to draw in lies
/// inside the image. Costs grow with the part of the shape inside the area, not with the shape.

#include "ovwcmn/wintypes.h"
#include "ovwcmn/xcgeometry.h"

#include <cstdint>

class XCVOffscreen;
class XCVOffPixelMask;
class XCVOffPixelMixer;

namespace ovw::vimage {

/// What fills the rows of a disc; see XCVOffscreen::FillLineRowForPolygon.
struct DiscPaint {
    std::uint32_t colour;
    int mode;
    XCVOffscreen* mask; ///< may be null; locked by the caller
    tagPOINT maskOffset;
    const std::uint8_t* pattern; ///< 16 x 16 thresholds, null for none
    int patternLevel;
};

/// The outline around (cx, cy). Points that octants share are mixed once for each of them. mask: may be null.
void drawCircle(XCVOffscreen& image, std::int64_t cx, std::int64_t cy, std::int64_t radius, XCVOffPixelMixer& mixer,
                const XCVOffPixelMask* mask, const XCRect& area);
/// The disc in the square of a side of `diameter` pixels with its top-left corner at (x, y); diameters up to 3 take one
/// pixel more.
void fillDisc(XCVOffscreen& image, int x, int y, int diameter, const DiscPaint& paint, const XCRect& area);
/// The ellipse that reaches the columns box.left and box.right and the rows box.top and box.bottom; the last ones stay
/// free where a side of the box is odd. Nothing for a box turned inside out.
void fillEllipse(XCVOffscreen& image, const tagRECT& box, std::uint32_t colour, const XCRect& area);

} // namespace ovw::vimage

#endif // OVW_VIMAGE_ROUNDSHAPES_H
