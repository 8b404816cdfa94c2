#include "brush/mapoutline.h"

#include <algorithm>

namespace ovw::brush {

MapOutline::MapOutline(std::span<const TTexMapVertex> corners)
    : m_bounds(corners[0].x, corners[0].y, corners[0].x, corners[0].y) {
    for (std::size_t i = 0; i < corners.size(); i++) {
        const TTexMapVertex& corner = corners[i];
        m_bounds.left = std::min(m_bounds.left, corner.x);
        m_bounds.top = std::min(m_bounds.top, corner.y);
        m_bounds.right = std::max(m_bounds.right, corner.x);
        m_bounds.bottom = std::max(m_bounds.bottom, corner.y);
        addEdge(corner, corners[(i + 1) % corners.size()]);
    }
}

void MapOutline::addEdge(const TTexMapVertex& a, const TTexMapVertex& b) {
    if (a.y == b.y)
        return;
    // Edges run downward, so that two outlines that share a side cross every line at the same place.
    const TTexMapVertex& upper = a.y < b.y ? a : b;
    const TTexMapVertex& lower = a.y < b.y ? b : a;
    const double height = lower.y - upper.y;
    m_edges[m_edgeCount++] = {upper.y,
                              lower.y,
                              upper,
                              (lower.x - upper.x) / height,
                              (lower.u - upper.u) / height,
                              (lower.v - upper.v) / height};
}

int MapOutline::findCrossings(std::array<Crossing, 4>& found, double y, bool isConvex) const {
    int count = 0;
    for (int i = 0; i < m_edgeCount && !(isConvex && count == 2); i++) {
        const Edge& edge = m_edges[i];
        if (edge.top > y || y >= edge.bottom)
            continue;
        const double dy = y - edge.top;
        found[count++] = {edge.start.x + dy * edge.dx, edge.start.u + dy * edge.du, edge.start.v + dy * edge.dv, &edge};
    }
    const auto isBefore = [](const Crossing& a, const Crossing& b) { return a.x < b.x; };
    if (count > 2)
        std::sort(found.begin(), found.begin() + count, isBefore);
    else if (count == 2 && isBefore(found[1], found[0]))
        std::swap(found[0], found[1]);
    return count;
}

XCRect MapOutline::pixels(const tagPOINT& origin) const {
    const XCRectD moved(m_bounds.left + origin.x, m_bounds.top + origin.y, m_bounds.right + origin.x,
                        m_bounds.bottom + origin.y);
    const XCRect whole(moved.IntegerExtent());
    return {whole.left, whole.top, whole.right + 2, whole.bottom + 2};
}

bool MapOutline::stretch(double& left, double& right, double y) const {
    std::array<Crossing, 4> found;
    if (findCrossings(found, y, true) < 2)
        return false;
    left = found[0].x;
    right = found[1].x;
    return true;
}

MapOutline::Course::Course(const Crossing& leftEnd, const Crossing& rightEnd)
    : left(leftEnd), right(rightEnd), width(right.x - left.x), du((right.u - left.u) / width),
      dv((right.v - left.v) / width) {}

SourceLine MapOutline::Course::lineBelow(double dy) const {
    const double leftU = left.u + dy * (left.edge->du - du * left.edge->dx);
    const double leftV = left.v + dy * (left.edge->dv - dv * left.edge->dx);
    const double rightU = right.u + dy * (right.edge->du - du * right.edge->dx);
    const double rightV = right.v + dy * (right.edge->dv - dv * right.edge->dx);
    return {left.x, leftU, leftV, (rightU - leftU) / width, (rightV - leftV) / width};
}

int MapOutline::spans(std::array<TextureSpan, 2>& out, std::int64_t y, double offset, bool isConvex,
                      bool antialias) const {
    std::array<Crossing, 4> found;
    const double sampleY = static_cast<double>(y) + offset;
    const int count = findCrossings(found, sampleY, isConvex);
    int spanCount = 0;
    for (int i = 0; i + 1 < count; i += 2) {
        const std::int64_t start = pixelsBefore(found[i].x, offset);
        const std::int64_t end = pixelsBefore(found[i + 1].x, offset);
        if (start >= end)
            continue;
        const Course course(found[i], found[i + 1]);
        const auto lineAt = [&](double place) { return course.lineBelow(place - offset); };
        if (antialias)
            out[spanCount++] = {y, start, end, lineAt(TexturePainter::cnFirstQuarter),
                                lineAt(TexturePainter::cnSecondQuarter)};
        else
            out[spanCount++] = {y, start, end, lineAt(offset), {}};
    }
    return spanCount;
}

} // namespace ovw::brush
