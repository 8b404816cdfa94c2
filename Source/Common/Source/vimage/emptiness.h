#ifndef OVW_VIMAGE_EMPTINESS_H
#define OVW_VIMAGE_EMPTINESS_H

#include "vimage/withformat.h"

#include "ovwcmn/xcgeometry.h"

#include <cstdint>

namespace ovw::vimage {

/// The bits of a row, repeated over its bytes, that hold what counts as paint in extents. They differ from those of
/// visible pixels on 2 bits only: a stored 1 is paint, but shows nothing.
template <class Format>
inline constexpr auto cnPaintBits = Format::cnEmptyBits;
template <>
inline constexpr std::uint8_t cnPaintBits<Bit2> = 0xFF;

/// Whether pixels can be empty at all.
template <class Format>
inline constexpr bool cnHasEmptyPixels = requires {
    Format::cnEmptyBits;
};

/// Whether row `row` of a block has no bit of `bits` in count pixels from x, which may count from the image.
template <class Format, class Bits>
bool isRowClear(const std::uint8_t* row, int x, int count, Bits bits) {
    return Format::isRowClear(row, x & cnBlockMask, count, bits);
}

/// The same for the part of a block that has its first byte at base.
template <class Format, class Bits>
bool isPartClear(std::uint8_t* base, const XCRect& part, Bits bits) {
    for (int y = part.top; y < part.bottom; ++y)
        if (!isRowClear<Format>(rowOf<Format>(base, y), part.left, part.Width(), bits))
            return false;
    return true;
}

} // namespace ovw::vimage

#endif // OVW_VIMAGE_EMPTINESS_H
