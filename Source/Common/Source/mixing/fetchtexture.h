#ifndef OVW_MIXING_FETCHTEXTURE_H
#define OVW_MIXING_FETCHTEXTURE_H

#include <cstdint>

namespace ovw::mixing {

/// 8-bit texels that repeat over the plane.
struct Texture {
    const std::uint8_t* bits;
    int rowBytes;
    int height;
};

/// Reads n texels of row y from column x on; both may lie anywhere.
void fetchTexture(std::uint8_t* texels, int n, const Texture& texture, std::int64_t x, std::int64_t y);

} // namespace ovw::mixing

#endif // OVW_MIXING_FETCHTEXTURE_H
