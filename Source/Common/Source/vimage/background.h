#ifndef OVW_VIMAGE_BACKGROUND_H
#define OVW_VIMAGE_BACKGROUND_H

#include "ovwcmn/xcgeometry.h"

#include <cstdint>

class XCVOffscreen;

namespace ovw::vimage {

/// A checkerboard over the whole image; the square of (0, 0) has the first colour.
struct Checkerboard {
    std::uint32_t colours[2];
    int side; ///< Of a square: 4 or 8 pixels.
};

/// The second colour is half of what is given and half white, unless both are one.
Checkerboard checkerboard(std::uint32_t colour1, std::uint32_t colour2, int cell);

/// Lays the board over the pixels of a rectangle, or behind them with isBehind; all become opaque. 16 and 32 bits;
/// other depths only get their missing blocks, with allBlocks. The caller locks for editing.
void renderBoard(XCVOffscreen& image, const XCRect& rect, const Checkerboard& board, bool allBlocks, bool isBehind);

} // namespace ovw::vimage

#endif // OVW_VIMAGE_BACKGROUND_H
