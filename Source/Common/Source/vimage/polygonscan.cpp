#include "vimage/polygonscan.h"

#include "ovwcmn/detail/toint.h"
#include "vimage/numbers.h"

#include <algorithm>
#include <cmath>

namespace ovw::vimage {

namespace {

/// Larger coordinates would overflow on the way to a crossing.
constexpr double cnMaxCoordinate = 1e100;

bool isDrawable(std::span<const tagPOINTD> vertices) {
    return !vertices.empty() && std::all_of(vertices.begin(), vertices.end(), [](const tagPOINTD& vertex) {
        return std::abs(vertex.x) <= cnMaxCoordinate && std::abs(vertex.y) <= cnMaxCoordinate;
    });
}

/// Writes the spans of one line, cut to a tile.
class SpanWriter {
public:
    SpanWriter(SpanPainter& painter, const XCRect& tile, int y) : m_painter(painter), m_tile(tile), m_y(y) {}

    /// From the pixel of x0 to the pixel of x1, x0 < x1; an end just left of the image counts as its first column.
    void write(double x0, double x1) const {
        const int start = truncateWithin(x0, m_tile.left, m_tile.right);
        const int end = truncateWithin(x1, m_tile.left - 1, m_tile.right - 1);
        if (start <= end)
            m_painter.paintSpan(start, end, m_y);
    }

private:
    SpanPainter& m_painter;
    const XCRect& m_tile;
    int m_y;
};

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

bool findPolygonArea(XCRect& area, tagRECT& bounds, std::span<const tagPOINTD> vertices, const XCVOffscreen& image,
                     const tagRECT* clip) {
    if (!isDrawable(vertices))
        return false;
    bounds = boundsOfVertices(vertices);
    bounds.right = endOf(bounds.right, 1);
    bounds.bottom = endOf(bounds.bottom, 1);
    return area.IntersectRect(bounds, image.GetRect()) && (!clip || area.IntersectRect(*clip));
}

int fillPolygon(tagRECT* changed, XCVOffscreen& image, const tagRECT* clip, SpanPainter& painter,
                std::span<const tagPOINTD> vertices, FillRule rule) {
    return scanPolygon(changed, image, clip, painter, vertices, [&](EdgeList& edges, const XCRect& tile) {
        CrossingList crossings;
        for (int y = tile.top; y < tile.bottom; y++) {
            if (!edges.crossingsAt(y + cnRowSample, crossings))
                return false;
            writeSpans(crossings, rule, SpanWriter(painter, tile, y));
        }
        return true;
    });
}

} // namespace ovw::vimage
