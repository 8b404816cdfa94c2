#ifndef OVW_MIXING_BLOCKPART_H
#define OVW_MIXING_BLOCKPART_H

#include "ovwcmn/xcgeometry.h"

class XCFastPixelMixer;

namespace ovw::mixing {

/// Paints a rectangle that lies inside one block of the mixer's destination: what MoveCursorToBlock(left, top) and
/// DoLineRow(left, right - 1, y) for each row do, faster. An empty rectangle paints nothing.
void paintBlockPart(XCFastPixelMixer& mixer, const XCRect& part);

} // namespace ovw::mixing

#endif // OVW_MIXING_BLOCKPART_H
