#ifndef OVW_VIMAGE_POLYGONSCAN_H
#define OVW_VIMAGE_POLYGONSCAN_H

/// @file
/// The scan conversion of polygons given in pixels. A figure goes tile by tile and row by row; what its spans become is
/// a SpanPainter's affair.

#include "ovwcmn/wintypes.h"
#include "ovwcmn/xcblockgetter.h"
#include "ovwcmn/xcgeometry.h"
#include "ovwcmn/xcvoffscreen.h"
#include "vimage/edgelist.h"

#include <span>

namespace ovw::vimage {

/// Where a pixel row is sampled.
inline constexpr double cnRowSample = 0.125;

/// How the crossings of a sample line become spans.
enum class FillRule {
    EvenOdd,
    NonZero,
    Triangle ///< between the two distinct crossings; lines with another number stay empty
};

/// Takes the spans of one polygon, tile by tile.
class SpanPainter {
public:
    /// bounds: the whole polygon's, right and bottom exclusive.
    virtual void beginFigure(const XCRect& /*bounds*/) {}
    virtual void enterTile(const XCRect& /*tile*/) {}
    /// Pixels first to last, both included, of a row of the tile.
    virtual void paintSpan(int first, int last, int y) = 0;

protected:
    SpanPainter() = default;
    SpanPainter(const SpanPainter&) = delete;
    SpanPainter& operator=(const SpanPainter&) = delete;
    ~SpanPainter() = default;
};

/// The smallest rectangle that holds the vertices, each truncated toward zero; all zero without vertices.
tagRECT boundsOfVertices(std::span<const tagPOINTD> vertices);

/// Cuts a figure to the image and to `clip` (may be null). bounds: the figure's, right and bottom exclusive.
/// @return false when nothing is left and when a coordinate is no finite number
bool findPolygonArea(XCRect& area, tagRECT& bounds, std::span<const tagPOINTD> vertices, const XCVOffscreen& image,
                     const tagRECT* clip);

/// Calls span(x0, x1) for every pair of crossings with area between; an odd number has none.
template <class Span>
void forEvenOddSpans(const CrossingList& crossings, Span span) {
    if (crossings.size() % 2 != 0)
        return;
    for (int i = 0; i < crossings.size(); i += 2)
        if (crossings[i].x != crossings[i + 1].x)
            span(crossings[i].x, crossings[i + 1].x);
}

/// Calls fillTile(edges, tile) for the tiles that a polygon meets, until one answers that a line has too many
/// crossings.
/// @return 1, with the figure's bounds in `changed` (may be null), when all could be filled
template <class FillTile>
int scanPolygon(tagRECT* changed, XCVOffscreen& image, const tagRECT* clip, SpanPainter& painter,
                std::span<const tagPOINTD> vertices, FillTile fillTile) {
    XCRect area;
    tagRECT bounds;
    if (!findPolygonArea(area, bounds, vertices, image, clip))
        return 0;
    EdgeList edges(vertices);
    XCBlockGetter tiles(&image, area, 1);
    painter.beginFigure(bounds);
    for (XCRect tile; tiles.GetNextBlock(tile);) {
        painter.enterTile(tile);
        edges.rewind();
        if (!fillTile(edges, tile))
            return 0;
    }
    if (changed)
        *changed = bounds;
    return 1;
}

/// Fills a polygon with hard edges; results are those of XCPolygon.
int fillPolygon(tagRECT* changed, XCVOffscreen& image, const tagRECT* clip, SpanPainter& painter,
                std::span<const tagPOINTD> vertices, FillRule rule);

} // namespace ovw::vimage

#endif // OVW_VIMAGE_POLYGONSCAN_H
