#ifndef OVW_VIMAGE_COPYPIXELS_H
#define OVW_VIMAGE_COPYPIXELS_H

#include "ovwcmn/xcgeometry.h"

#include <cstdint>

class XCVOffscreen;

namespace ovw::vimage {

/// Which pixels go where.
struct CopyPlan {
    int x; ///< in the destination
    int y;
    int width;
    int height;
    int sx; ///< in the source
    int sy;

    std::int64_t dx() const { return std::int64_t{sx} - x; }
    std::int64_t dy() const { return std::int64_t{sy} - y; }
    /// What of it lies in both images, in coordinates of the destination.
    XCRect area(const XCVOffscreen& destination, XCVOffscreen& source) const;
    /// Whether it takes two images of one size, whole.
    bool isWhole(const XCVOffscreen& destination, const XCVOffscreen& source) const;
};

// The destination is locked for editing, the source for reading, and they are two images. An int is 1 when something
// changed.

/// Between images of one depth. Where the source has no block, blocks of the destination that are covered whole are
/// released if the offset is one of whole blocks; elsewhere pixels of existing blocks become clear if clearMissing.
int copyPixels(XCVOffscreen& destination, const CopyPlan& plan, XCVOffscreen& source, bool clearMissing);

struct BlockChanges {
    bool copied = false;
    bool released = false;
};

/// All blocks, between images of one size and depth; blocks that the source lacks are released.
BlockChanges copyBlocks(XCVOffscreen& destination, XCVOffscreen& source);

/// Between any depths, through values of the destination's. behind: new pixels go behind the existing ones; otherwise
/// existing pixels are cleared where the source has no block. 1 when there is an area.
int convertPixels(XCVOffscreen& destination, const CopyPlan& plan, XCVOffscreen& source, bool behind);

} // namespace ovw::vimage

#endif // OVW_VIMAGE_COPYPIXELS_H
