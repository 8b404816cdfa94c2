#ifndef OVW_VIMAGE_GREYSCALE_H
#define OVW_VIMAGE_GREYSCALE_H

#include "ovwcmn/xcgeometry.h"

#include <cstdint>

class XCVOffscreen;

namespace ovw::vimage {

// Conversions of what `rect` of the source holds in existing blocks; pixel (x, y) goes to (x + dx, y + dy) of the
// destination. The caller locks both images, which are two.

/// Densities: darkness, or lightness with reverse. The greys are the pixels' own where isDirect is set (16, 24 and 32
/// bits), else those that they show over black.
void convertToGrey(XCVOffscreen& destination, XCVOffscreen& source, const XCRect& rect, std::int64_t dx,
                   std::int64_t dy, bool isDirect, bool reverse);

/// Transparent, white and black, by ordered dither from 8 bits on. keepsSolid: pixels of 16 and 32 bits that are nearly
/// opaque, transparent, white or black are not dithered, and what is transparent is not black.
void convertToMono(XCVOffscreen& destination, XCVOffscreen& source, const XCRect& rect, std::int64_t dx,
                   std::int64_t dy, bool keepsSolid, bool reverse);

} // namespace ovw::vimage

#endif // OVW_VIMAGE_GREYSCALE_H
