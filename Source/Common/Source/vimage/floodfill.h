#ifndef OVW_VIMAGE_FLOODFILL_H
#define OVW_VIMAGE_FLOODFILL_H

#include "ovwcmn/xcgeometry.h"

#include <cstdint>
#include <optional>

class XCVOffscreen;

namespace ovw::vimage {

/// What a flood fill is asked for. Pixel (x, y) of the destination belongs to pixel (x - offset.x, y - offset.y) of the
/// source and of the second image.
struct FloodRequest {
    XCVOffscreen* destination = nullptr;
    XCVOffscreen* source = nullptr;
    XCVOffscreen* second = nullptr; ///< May be null.
    XCPoint seed;
    std::uint32_t colour = 0;
    XCPoint offset;
    const XCRect* clip = nullptr; ///< Null: the whole destination.
    std::optional<int> margin;    ///< How far bytes may differ from the seed's; none: values have to be equal.
    int abortable = 0;
};

/// What a fill has done.
struct FloodResult {
    bool ran = false;
    bool wasCancelled = false;
    XCRect changed;         ///< The explored rows and columns, exclusive on the right and bottom.
    std::int64_t count = 0; ///< Pixels written.
};

/// Fills the region around the seed, reading and writing pixels as values of `bits` bits. The images get locked.
/// Nothing runs without a destination and a source.
FloodResult floodFill(int bits, const FloodRequest& request);

} // namespace ovw::vimage

#endif // OVW_VIMAGE_FLOODFILL_H
