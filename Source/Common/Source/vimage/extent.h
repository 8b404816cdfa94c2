#ifndef OVW_VIMAGE_EXTENT_H
#define OVW_VIMAGE_EXTENT_H

#include "ovwcmn/xcarray.h"
#include "ovwcmn/xcgeometry.h"

class XCVOffscreen;
class XCVOffscreenGrid;

namespace ovw::vimage {

/// The bounds of the existing blocks, by whole blocks; empty without any.
XCRect blockBounds(const XCVOffscreenGrid& image);

// The caller holds a reading lock.

/// The tight bounds of the paint in `within`, a part of the image; empty without any. 24-bit images: those of the
/// blocks.
XCRect paintBounds(XCVOffscreen& image, const XCRect& within);
/// Whether nothing of `within`, a part of the image, is visible.
bool isEmpty(XCVOffscreen& image, const XCRect& within);
/// Whether the image shows no paint in an existing block. Never on 24 bits: missing pixels read differently from any
/// that a block can hold.
bool isBlockUnused(XCVOffscreen& image, int index);
/// All such blocks.
XCTArray<int, 0> unusedBlocks(XCVOffscreen& image);

} // namespace ovw::vimage

#endif // OVW_VIMAGE_EXTENT_H
