#ifndef OVW_BRUSH_METHODKIND_H
#define OVW_BRUSH_METHODKIND_H

#include "ovwcmn/xcfastpixelmixer.h"

namespace ovw::brush {

/// Whether a drawing method mixes its colour with what it meets.
constexpr bool isSmudging(int methodKind) {
    return methodKind == XCFastPixelMixer::Water || methodKind == XCFastPixelMixer::WaterMultiply;
}

} // namespace ovw::brush

#endif // OVW_BRUSH_METHODKIND_H
