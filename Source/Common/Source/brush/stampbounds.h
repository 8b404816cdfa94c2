#ifndef OVW_BRUSH_STAMPBOUNDS_H
#define OVW_BRUSH_STAMPBOUNDS_H

#include "ovwcmn/xcgeometry.h"

class XCVOffscreen;

namespace ovw::brush {

/// Grows `bounds`, which may be empty, to hold `with`.
void unite(XCRect& bounds, const XCRect& with);

/// Stores the bounds of a stamp in `changed` (may be null): grown by a pixel and cut to the image, all zero when
/// nothing of them lies on it. Empty bounds mean that nothing was drawn and leave `changed` alone.
/// @return whether something was drawn
int reportStamp(XCRect* changed, const XCVOffscreen* image, const XCRect& drawn);

} // namespace ovw::brush

#endif // OVW_BRUSH_STAMPBOUNDS_H
