#ifndef OVW_VIMAGE_POLYGONROWS_H
#define OVW_VIMAGE_POLYGONROWS_H

#include "vimage/polygonscan.h"

#include <cstdint>

namespace ovw::vimage {

/// How the image's own row fill paints a polygon; see XCVOffscreen::FillLineRowForPolygon.
struct PolygonColour {
    std::uint32_t colour;
    int mode;
    int alpha = cnOpaque;         ///< below cnOpaque the polygon is dithered
    XCVOffscreen* mask = nullptr; ///< its cursor stands on the row to read
    int maskOffsetX = 0;

    static constexpr int cnOpaque = 255;
};

/// Fills pixels first to last, both included and in the image, of a row.
void fillPolygonRow(XCVOffscreen& image, int first, int last, int y, const PolygonColour& paint);

/// Fills a polygon with hard edges, even-odd, by the image's row fill. The caller locks the image for editing.
int fillPolygon(tagRECT* changed, XCVOffscreen& image, const tagRECT* clip, const PolygonColour& paint,
                std::span<const tagPOINTD> vertices);

} // namespace ovw::vimage

#endif // OVW_VIMAGE_POLYGONROWS_H
