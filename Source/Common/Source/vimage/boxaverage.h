#ifndef OVW_VIMAGE_BOXAVERAGE_H
#define OVW_VIMAGE_BOXAVERAGE_H

#include "ovwcmn/xcvoffscreeninterface.h"
#include "vimage/resamplemap.h"

namespace ovw::vimage {

struct PixelSums;

/// The pixels from start on that the coordinates from to to cover; to is not below from.
_XCRESOLUTIONTABLE resolutionEntry(double from, double to);

/// The mean that an image of that depth gives for sums of what its readWeighed says, as 0xAABBGGRR; scale: 1 / the area
/// of a destination pixel.
std::uint32_t weighedValue(int depth, const PixelSums& sums, double scale);

/// The same for the pixels that two entries, moved by (x, y), cover; those outside the image are passed over.
std::uint32_t weighedPixel(XCVOffscreen& image, const _XCRESOLUTIONTABLE& columns, const _XCRESOLUTIONTABLE& rows,
                           int x, int y, double scale);

// Destination pixels from all that they cover of the source. Missing pixels count as transparent, and do not make
// blocks of the destination. Locks as for copyPixels.

/// Means of whole pixels, in whole numbers; at least one pixel on each axis.
void averageWhole(XCVOffscreen& destination, const AxisPlan& columns, const AxisPlan& rows, XCVOffscreen& source,
                  bool behind);
/// Means weighted by area.
void averageAreas(XCVOffscreen& destination, const AxisPlan& columns, const AxisPlan& rows, XCVOffscreen& source,
                  bool behind);

} // namespace ovw::vimage

#endif // OVW_VIMAGE_BOXAVERAGE_H
