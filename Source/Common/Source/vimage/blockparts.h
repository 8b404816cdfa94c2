#ifndef OVW_VIMAGE_BLOCKPARTS_H
#define OVW_VIMAGE_BLOCKPARTS_H

#include "ovwcmn/xcblockgetter.h"
#include "ovwcmn/xcvoffscreen.h"

#include <cstdint>

namespace ovw::vimage {

/// Walks the parts of a rectangle that lie in one block each, row by row, and calls action(base, part) with the block's
/// first byte for those that exist or that the image's edit mode creates. The cursor moves; the caller holds the lock.
template <class Action>
void forEachPart(XCVOffscreen& image, const XCRect& rect, Action action) {
    XCBlockGetter blocks(&image, rect, 1);
    XCRect part;
    while (blocks.GetNextBlock(part)) {
        image.MoveCursor(part.left, part.top);
        if (std::uint8_t* const base = image.GetBaseAddress())
            action(base, part);
    }
}

} // namespace ovw::vimage

#endif // OVW_VIMAGE_BLOCKPARTS_H
