#ifndef OVW_VIMAGE_SPREAD_H
#define OVW_VIMAGE_SPREAD_H

#include "vimage/resamplemap.h"

class XCVOffscreen;

namespace ovw::vimage {

/// What happens to the pixels of the destination, which each take one pixel of the source.
enum class Spreading {
    Replace,        ///< blocks that the source lacks are passed over
    Behind,         ///< the same; new pixels go behind those that are there, densities unite
    ReplaceVisible, ///< as ChangeResolutionLow: transparent pixels change nothing, densities become 0 without a block
    RaiseVisible,   ///< the same behind; densities replace where they are not 0
    Native,         ///< between images of one depth; a missing pixel has its reader's default
};

/// Nearest neighbour. Source pixels outside the source are passed over. Locks as for copyPixels.
void spreadPixels(XCVOffscreen& destination, const NearestMap& columns, const NearestMap& rows, XCVOffscreen& source,
                  Spreading spreading);

} // namespace ovw::vimage

#endif // OVW_VIMAGE_SPREAD_H
