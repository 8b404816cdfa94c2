#ifndef OVW_VIMAGE_REDUCE_H
#define OVW_VIMAGE_REDUCE_H

#include "vimage/copypixels.h"

class XCVOffscreen;

namespace ovw::vimage {

/// How squares of source pixels become destination pixels.
enum class Reduction {
    Replace,
    Behind, ///< the new pixels go behind those that are there
    Whole,  ///< replaces; 1-bit ink is counted, 2-bit colours have full alpha
};

/// Destination pixels from squares of factor x factor (2, 4, 8) source pixels; plan's size is that of the destination.
/// Blocks that the source lacks leave the destination alone. Locks as for copyPixels.
void reducePixels(XCVOffscreen& destination, const CopyPlan& plan, XCVOffscreen& source, int factor,
                  Reduction reduction);

} // namespace ovw::vimage

#endif // OVW_VIMAGE_REDUCE_H
