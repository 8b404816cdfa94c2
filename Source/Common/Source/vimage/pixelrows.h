#ifndef OVW_VIMAGE_PIXELROWS_H
#define OVW_VIMAGE_PIXELROWS_H

/// @file
/// Rows of pixels on their way from an image of one depth to one of another: as bytes (bits, 2-bit values, densities)
/// or as colours. The functions of a depth are chosen once an operation; their loops are free of decisions by depth.

#include "vimage/pixelformats.h"

#include <cstdint>

namespace ovw::vimage {

/// count pixels from x of a row as colours, or as bytes.
using ColourReader = void (*)(const std::uint8_t* row, int x, int count, const PixelRules& rules, BgraPixel* colours);
using ByteReader = void (*)(const std::uint8_t* row, int x, int count, const PixelRules& rules, std::uint8_t* values);
/// isWanted: one byte a pixel, 0 leaves the pixel alone; null: all are written.
using ColourWriter = void (*)(std::uint8_t* row, int x, int count, const PixelRules& rules, const BgraPixel* colours,
                              const std::uint8_t* isWanted);
using ByteWriter = void (*)(std::uint8_t* row, int x, int count, const PixelRules& rules, const std::uint8_t* values);

struct PixelRows {
    ByteReader read1, read2, read8;
    ColourReader read24; ///< without alpha
    ColourReader read32;
    ColourReader readSolid;   ///< as read32, but what is visible has full alpha on 2 bits
    ColourReader readWeighed; ///< for averages: see weighedValue
    ColourWriter write32;
    ColourWriter writeBehind; ///< colours go behind what is there
    // Bytes of the image's own kind (1, 2 and 8 bits; null for others).
    ByteWriter write;
    ByteWriter writeNonZero;
    ByteWriter unite; ///< densities over each other; bits and 2-bit values where they are not 0
};

const PixelRows& pixelRows(int depth);

} // namespace ovw::vimage

#endif // OVW_VIMAGE_PIXELROWS_H
