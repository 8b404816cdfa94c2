#ifndef OVW_MIXING_COVERAGESPAN_H
#define OVW_MIXING_COVERAGESPAN_H

#include <span>

class XCFastPixelMixer;

namespace ovw::mixing {

/// Paints pixels (x + i, y) of the mixer's current block with the coverages given (0 to 1): what ScaleAntiAlpha
/// (coverage[i]) and DoLineRow(x + i, x + i, y) for each coverage above 0 do, and leave behind, as one span.
/// What lies outside the block is left out.
void paintCoverageRow(XCFastPixelMixer& mixer, int x, int y, std::span<const float> coverage);

} // namespace ovw::mixing

#endif // OVW_MIXING_COVERAGESPAN_H
