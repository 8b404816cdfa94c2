#ifndef OVW_VIMAGE_MOVEPIXELS_H
#define OVW_VIMAGE_MOVEPIXELS_H

#include "ovwcmn/xcgeometry.h"

class XCVOffscreen;

namespace ovw::vimage {

/// Takes the pixels of rect out of the source, two images of one size and depth, and clears them there. From 16 bits on
/// pixels without coverage are not touched. The destination is locked for editing, the source for reading.
void movePixels(XCVOffscreen& destination, const XCRect& rect, XCVOffscreen& source);

} // namespace ovw::vimage

#endif // OVW_VIMAGE_MOVEPIXELS_H
