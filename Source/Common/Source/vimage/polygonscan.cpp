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

/// What a band can take of an area from its pixel (left, top) on.
XCRect partAt(const XCRect& area, int left, int top) {
    constexpr int cnBlock = XCVOffscreen::cnBlockSize;
    const XCRect most(left, top, endOf(left & -cnBlock, RunBand::cnMaxWidth), endOf(top & -cnBlock, cnBlock));
    XCRect part;
    part.IntersectRect(most, area);
    return part;
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

template <class Span>
void forSpans(const CrossingList& crossings, FillRule rule, Span span) {
    switch (rule) {
    case FillRule::NonZero: return forNonZeroSpans(crossings, span);
    case FillRule::Triangle: return forTriangleSpan(crossings, span);
    default: return forEvenOddSpans(crossings, span);
    }
}

/// @return false when a line has too many crossings
bool scanRows(EdgeList& edges, const XCRect& part, FillRule rule, RunBand& runs) {
    CrossingList crossings;
    for (int y = part.top; y < part.bottom; y++) {
        if (!edges.crossingsAt(y + cnRowSample, crossings))
            return false;
        runs.beginRow();
        // From the pixel of x0 to the pixel of x1; an end just left of the image counts as its first column.
        forSpans(crossings, rule, [&](double x0, double x1) {
            const int first = truncateWithin(x0, part.left, part.right);
            const int last = truncateWithin(x1, part.left - 1, part.right - 1);
            if (first <= last)
                runs.addFull(first, last + 1);
        });
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

bool findPolygonArea(XCRect& area, tagRECT& bounds, std::span<const tagPOINTD> vertices, const XCVOffscreen& image,
                     const tagRECT* clip) {
    if (!isDrawable(vertices))
        return false;
    bounds = boundsOfVertices(vertices);
    bounds.right = endOf(bounds.right, 1);
    bounds.bottom = endOf(bounds.bottom, 1);
    return area.IntersectRect(bounds, image.GetRect()) && (!clip || area.IntersectRect(*clip));
}

XCRect firstPart(const XCRect& area) { return partAt(area, area.left, area.top); }

XCRect nextPart(const XCRect& area, const XCRect& part) {
    return part.bottom < area.bottom ? partAt(area, part.left, part.bottom) : partAt(area, part.right, area.top);
}

int fillPolygon(tagRECT* changed, XCVOffscreen& image, const tagRECT* clip, SpanPainter& painter,
                std::span<const tagPOINTD> vertices, FillRule rule) {
    return scanPolygon(
        changed, image, clip, painter, vertices,
        [&](EdgeList& edges, const XCRect& part, RunBand& runs) { return scanRows(edges, part, rule, runs); },
        [&](const XCRect& tile, RunBand& runs) { painter.paintSpans(tile, runs); });
}

} // namespace ovw::vimage
