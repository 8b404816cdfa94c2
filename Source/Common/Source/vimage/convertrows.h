#ifndef OVW_VIMAGE_CONVERTROWS_H
#define OVW_VIMAGE_CONVERTROWS_H

#include "vimage/blockparts.h"
#include "vimage/pixelformats.h"

namespace ovw::vimage {

/// A row of pixels on its way from one image to another, in a block of each; columns count from the blocks' left edges.
struct RowPair {
    const std::uint8_t* from;
    int fromX;
    std::uint8_t* to;
    int toX;
    int count;
    int y; ///< in the source
};

/// Calls convert(RowPair) for what `rect` of the source holds in existing blocks; pixel (x, y) goes to (x + dx, y + dy)
/// of the destination, where it lies in it. The caller locks both images, which are two.
template <class Convert>
void convertRows(XCVOffscreen& destination, XCVOffscreen& source, const XCRect& rect, std::int64_t dx, std::int64_t dy,
                 Convert convert) {
    const PlacedImage from(source);
    const PlacedImage to(destination, dx, dy);
    forEachSharedPart(rect, {from, to}, [&](const XCRect& part) {
        if (!from.hasBlock(part))
            return;
        const std::uint8_t* const fromBase = from.enter(part);
        std::uint8_t* const toBase = to.enter(part);
        const auto rowOf = [](auto* base, const XCVOffscreen& image, int y) {
            return base + (y & cnBlockMask) * image.GetBlockRowBytes();
        };
        for (int y = part.top; y < part.bottom; ++y)
            convert(RowPair{rowOf(fromBase, source, y), part.left & cnBlockMask, rowOf(toBase, destination, to.ownY(y)),
                            to.ownX(part.left) & cnBlockMask, part.Width(), y});
    });
}

} // namespace ovw::vimage

#endif // OVW_VIMAGE_CONVERTROWS_H
