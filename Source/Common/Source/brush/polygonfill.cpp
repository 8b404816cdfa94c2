#include "brush/polygonfill.h"

#include "brush/coveragerow.h"
#include "brush/edgelist.h"
#include "brush/rowpainter.h"
#include "ovwcmn/xcblockgetter.h"
#include "ovwcmn/xcfastpixelmixer.h"
#include "ovwcmn/xcgeometry.h"
#include "ovwcmn/xcvoffscreen.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace ovw::brush {

namespace {

/// Larger coordinates would overflow on the way to a crossing.
constexpr double cnMaxCoordinate = 1e100;
/// Where a row is sampled, and the first of an anti-aliased row's sub-lines.
constexpr double cnSampleOffset = 0.125;
constexpr double cnSubLineStep = 1.0 / CoverageRow::cnSubLines;

bool isDrawable(std::span<const tagPOINTD> vertices) {
    return !vertices.empty() && std::all_of(vertices.begin(), vertices.end(), [](const tagPOINTD& vertex) {
        return std::abs(vertex.x) <= cnMaxCoordinate && std::abs(vertex.y) <= cnMaxCoordinate;
    });
}

int oneAfter(int pixel) { return pixel == INT32_MAX ? pixel : pixel + 1; }

/// Writes the hard-edged spans of one line, cut to a tile.
class SpanWriter {
public:
    SpanWriter(RowPainter& painter, const XCRect& tile, int y) : m_painter(painter), m_tile(tile), m_y(y) {}

    /// From the pixel of x0 to the pixel of x1, x0 < x1; an end just left of the image counts as its first column.
    void write(double x0, double x1) const {
        const int start = truncateWithin(x0, m_tile.left, m_tile.right);
        const int end = truncateWithin(x1, m_tile.left - 1, m_tile.right - 1);
        if (start <= end)
            m_painter.paintSpan(start, end, m_y);
    }

private:
    RowPainter& m_painter;
    const XCRect& m_tile;
    int m_y;
};

/// Calls span(x0, x1) for every pair of crossings with area between; an odd number has none.
template <class Span>
void forEvenOddSpans(const CrossingList& crossings, Span span) {
    if (crossings.size() % 2 != 0)
        return;
    for (int i = 0; i < crossings.size(); i += 2)
        if (crossings[i].x != crossings[i + 1].x)
            span(crossings[i].x, crossings[i + 1].x);
}

template <class Span>
void forNonZeroSpans(const CrossingList& crossings, Span span) {
    int winding = 0;
    for (int i = 0; i + 1 < crossings.size(); i++) {
        winding += crossings[i].winding;
        if (winding != 0 && crossings[i].x != crossings[i + 1].x)
            span(crossings[i].x, crossings[i + 1].x);
    }
}

/// A triangle's line has two or three crossings; three with three values would be no triangle.
template <class Span>
void forTriangleSpan(const CrossingList& crossings, Span span) {
    int distinct = 0;
    for (int i = 0; i < crossings.size(); i++)
        distinct += i == 0 || crossings[i].x != crossings[i - 1].x;
    if (distinct == 2)
        span(crossings[0].x, crossings[crossings.size() - 1].x);
}

void writeSpans(const CrossingList& crossings, FillRule rule, const SpanWriter& writer) {
    const auto write = [&writer](double x0, double x1) { writer.write(x0, x1); };
    switch (rule) {
    case FillRule::NonZero: return forNonZeroSpans(crossings, write);
    case FillRule::Triangle: return forTriangleSpan(crossings, write);
    default: return forEvenOddSpans(crossings, write);
    }
}

/// @return false when a line has too many crossings
bool fillTileHard(RowPainter& painter, EdgeList& edges, FillRule rule, const XCRect& tile) {
    CrossingList crossings;
    for (int y = tile.top; y < tile.bottom; y++) {
        if (!edges.crossingsAt(y + cnSampleOffset, crossings))
            return false;
        writeSpans(crossings, rule, SpanWriter(painter, tile, y));
    }
    return true;
}

/// @return false when a line has too many crossings
bool fillTileAA(RowPainter& painter, EdgeList& edges, const XCRect& tile) {
    CrossingList crossings;
    CoverageRow row(tile.left, tile.right);
    for (int y = tile.top; y < tile.bottom; y++) {
        for (int subLine = 0; subLine < CoverageRow::cnSubLines; subLine++) {
            if (!edges.crossingsAt(y + cnSampleOffset + subLine * cnSubLineStep, crossings))
                return false;
            forEvenOddSpans(crossings, [&row](double low, double high) { row.addSpan(low, high); });
        }
        painter.paintCoverage(row, y);
    }
    return true;
}

} // namespace

tagRECT boundsOfVertices(std::span<const tagPOINTD> vertices) {
    if (vertices.empty())
        return {};
    tagPOINTD low = vertices[0];
    tagPOINTD high = vertices[0];
    for (const tagPOINTD& vertex : vertices) {
        low = {std::min(low.x, vertex.x), std::min(low.y, vertex.y)};
        high = {std::max(high.x, vertex.x), std::max(high.y, vertex.y)};
    }
    return {truncateToInt(low.x), truncateToInt(low.y), truncateToInt(high.x), truncateToInt(high.y)};
}

int fillPolygon(tagRECT* changed, XCVOffscreen& image, const tagRECT* clip, RowPainter& painter,
                std::span<const tagPOINTD> vertices, FillRule rule) {
    if (!isDrawable(vertices))
        return 0;
    tagRECT bounds = boundsOfVertices(vertices);
    bounds.right = oneAfter(bounds.right);
    bounds.bottom = oneAfter(bounds.bottom);
    XCRect area;
    if (!area.IntersectRect(bounds, image.GetRect()) || (clip && !area.IntersectRect(*clip)))
        return 0;
    EdgeList edges(vertices);
    XCBlockGetter tiles(&image, area, 1);
    painter.beginFigure(bounds);
    for (XCRect tile; tiles.GetNextBlock(tile);) {
        painter.enterTile(tile);
        edges.rewind();
        const bool isFilled =
            rule == FillRule::EvenOddAA ? fillTileAA(painter, edges, tile) : fillTileHard(painter, edges, rule, tile);
        if (!isFilled)
            return 0;
    }
    if (changed)
        *changed = bounds;
    return 1;
}

int fillPolygon(tagRECT* changed, const PolygonTarget& target, std::span<const tagPOINTD> vertices, FillRule rule) {
    if (!target.image || !target.mixer)
        return 0;
    MixerRows painter(*target.mixer);
    return fillPolygon(changed, *target.image, target.clip, painter, vertices, rule);
}

int fillRotatedRect(tagRECT* changed, const PolygonTarget& target, tagPOINTD center, double width, double height,
                    double angle, bool antialias) {
    return fillPolygon(changed, target, rotatedRect(center, width, height, angle),
                       antialias ? FillRule::EvenOddAA : FillRule::EvenOdd);
}

std::array<tagPOINTD, 4> rotatedRect(tagPOINTD center, double width, double height, double angle) {
    const double sine = std::sin(angle);
    const double cosine = std::cos(angle);
    const double x = width * 0.5;
    const double y = height * 0.5;
    const auto corner = [&](double cx, double cy) { return turnedAndMoved(cx, cy, sine, cosine, center); };
    return {corner(-x, -y), corner(x, -y), corner(x, y), corner(-x, y)};
}

} // namespace ovw::brush
