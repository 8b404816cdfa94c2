#ifndef OVW_VIMAGE_FLATTEN_H
#define OVW_VIMAGE_FLATTEN_H

#include "ovwcmn/xcgeometry.h"

class XCVOffscreen;

namespace ovw::vimage {

/// Makes the pixels of a rectangle opaque where the mask, an image of 8 bits or more, is not 0: over white where its
/// value is even, over black where it is odd. Images of 2, 16 and 32 bits. The caller locks both images, which are two.
void flattenByMask(XCVOffscreen& image, XCVOffscreen& mask, const XCRect& rect);

} // namespace ovw::vimage

#endif // OVW_VIMAGE_FLATTEN_H
