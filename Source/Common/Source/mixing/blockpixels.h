#ifndef OVW_MIXING_BLOCKPIXELS_H
#define OVW_MIXING_BLOCKPIXELS_H

#include <cstddef>
#include <cstdint>

namespace ovw::mixing {

/// The pixels of an image's block, at least 8 bits each.
struct BlockPixels {
    std::uint8_t* bits = nullptr;
    int rowBytes = 0;
    int pixelBytes = 0;

    /// Coordinates in the block.
    std::uint8_t* at(int x, int y) const { return bits + std::ptrdiff_t{y} * rowBytes + x * pixelBytes; }
};

} // namespace ovw::mixing

#endif // OVW_MIXING_BLOCKPIXELS_H
