#ifndef OVW_OFFSCREEN_PIXELROWS_H
#define OVW_OFFSCREEN_PIXELROWS_H

/// @file
/// Parts of rows, moved and converted.

#include "offscreen/pixelview.h"

#include <cstdint>

namespace ovw::offscreen {

/// Pixels of a row of any depth as 24-bit values, and back.
void readRow24(std::uint32_t* colours, int depth, const std::uint8_t* row, int x, int count);
void writeRow24(const std::uint32_t* colours, int depth, std::uint8_t* row, int x, int count);

/// Copies pixels between rows of any depths; other depths go by their 24-bit values. The rows must
/// not overlap, except for bytes of one depth.
void convertRow(int depth, std::uint8_t* to, int x, int sourceDepth, const std::uint8_t* from, int sx, int count);

} // namespace ovw::offscreen

#endif // OVW_OFFSCREEN_PIXELROWS_H
