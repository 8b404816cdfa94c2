#ifndef OVW_VIMAGE_POLYGONSCAN_H
#define OVW_VIMAGE_POLYGONSCAN_H

/// @file
/// The scan conversion of polygons given in pixels. A figure goes tile by tile and row by row; what its spans become is
/// a SpanPainter's affair. A row of tiles is scanned as one.

#include "ovwcmn/wintypes.h"
#include "ovwcmn/xcblockgetter.h"
#include "ovwcmn/xcgeometry.h"
#include "ovwcmn/xcvoffscreen.h"
#include "vimage/edgelist.h"
#include "vimage/runband.h"

#include <cstdint>
#include <span>

namespace ovw::vimage {

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
    /// The runs in a tile as hard spans.
    virtual void paintSpans(const XCRect& tile, RunBand& runs) = 0;

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

/// The parts of an area that a band of runs takes: pieces of a row of tiles, first downward, then to the right. Empty
/// behind the last.
XCRect firstPart(const XCRect& area);
XCRect nextPart(const XCRect& area, const XCRect& part);

/// Calls span(x0, x1) for every pair of crossings with area between; an odd number has none.
template <class Span>
void forEvenOddSpans(const CrossingList& crossings, Span span) {
    if (crossings.size() % 2 != 0)
        return;
    for (int i = 0; i < crossings.size(); i += 2)
        if (crossings[i].x != crossings[i + 1].x)
            span(crossings[i].x, crossings[i + 1].x);
}

/// Calls span(first, last, y), both pixels included, for the runs in a tile.
template <class Span>
void forTileSpans(const XCRect& tile, RunBand& runs, Span span) {
    for (int y = tile.top; y < tile.bottom; y++)
        runs.visitRow(y, tile.left, tile.right, [&](int from, int to, const std::uint8_t*) { span(from, to - 1, y); });
}

/// Calls scan(edges, part, runs) for the parts of a polygon that lie in a row of tiles, and paint(tile, runs) for their
/// tiles, until a scan answers that a line has too many crossings: of that part only the first tile is painted.
/// @return 1, with the figure's bounds in `changed` (may be null), when all could be filled
template <class Scan, class Paint>
int scanPolygon(tagRECT* changed, XCVOffscreen& image, const tagRECT* clip, SpanPainter& painter,
                std::span<const tagPOINTD> vertices, Scan scan, Paint paint) {
    XCRect area;
    tagRECT bounds;
    if (!findPolygonArea(area, bounds, vertices, image, clip))
        return 0;
    EdgeList edges(vertices);
    RunBand runs;
    painter.beginFigure(bounds);
    for (XCRect part = firstPart(area); !part.IsRectEmpty(); part = nextPart(area, part)) {
        if (part.top == area.top)
            edges.rewind();
        runs.begin(part);
        const bool isWhole = scan(edges, part, runs);
        XCBlockGetter tiles(&image, part, 1);
        for (XCRect tile; tiles.GetNextBlock(tile);) {
            paint(tile, runs);
            if (!isWhole)
                return 0;
        }
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
