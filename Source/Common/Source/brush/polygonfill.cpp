#include "brush/polygonfill.h"

#include "brush/rowpainter.h"
#include "ovwcmn/detail/toint.h"
#include "ovwcmn/xcfastpixelmixer.h"
#include "vimage/coveragerow.h"
#include "vimage/polygonscan.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace ovw::brush {

namespace {

using vimage::CoverageRow;
using vimage::EdgeList;
using vimage::RunBand;

/// Adds a pixel row's sub-lines.
/// @return false when a line has too many crossings
bool addRow(EdgeList& edges, int y, vimage::RowCrossings& rowCrossings, CoverageRow& row) {
    if (edges.crossingsOfRow(y, rowCrossings)) {
        row.addLines(rowCrossings);
        return true;
    }
    vimage::CrossingList crossings;
    for (int line = 0; line < vimage::cnSubLines; line++) {
        if (!edges.crossingsAt(y + vimage::cnRowSample + line * vimage::cnSubLineStep, crossings))
            return false;
        vimage::forEvenOddSpans(crossings, [&](double low, double high) { row.addSpan(line, low, high); });
    }
    return true;
}

/// @return false when a line has too many crossings
bool scanRows(EdgeList& edges, const XCRect& part, RunBand& runs) {
    CoverageRow row(part.left, part.right);
    vimage::RowCrossings crossings;
    for (int y = part.top; y < part.bottom; y++) {
        if (!addRow(edges, y, crossings, row))
            return false;
        runs.beginRow();
        row.take(runs);
    }
    return true;
}

} // namespace

int fillPolygonAA(tagRECT* changed, XCVOffscreen& image, const tagRECT* clip, RowPainter& painter,
                  std::span<const tagPOINTD> vertices) {
    return vimage::scanPolygon(changed, image, clip, painter, vertices, scanRows,
                               [&](const XCRect& tile, RunBand& runs) { painter.paintCoverage(tile, runs); });
}

int fillPolygon(tagRECT* changed, const PolygonTarget& target, std::span<const tagPOINTD> vertices, bool antialias) {
    if (!target.image || !target.mixer)
        return 0;
    MixerRows painter(*target.mixer);
    return antialias
               ? fillPolygonAA(changed, *target.image, target.clip, painter, vertices)
               : vimage::fillPolygon(changed, *target.image, target.clip, painter, vertices, vimage::FillRule::EvenOdd);
}

int fillRotatedRect(tagRECT* changed, const PolygonTarget& target, tagPOINTD center, double width, double height,
                    double angle, bool antialias) {
    return fillPolygon(changed, target, rotatedRect(center, width, height, angle), antialias);
}

std::array<tagPOINTD, 4> rotatedRect(tagPOINTD center, double width, double height, double angle) {
    const double sine = std::sin(angle);
    const double cosine = std::cos(angle);
    const double x = width * 0.5;
    const double y = height * 0.5;
    const auto corner = [&](double cx, double cy) { return turnedAndMoved(cx, cy, sine, cosine, center); };
    return {corner(-x, -y), corner(x, -y), corner(x, y), corner(-x, y)};
}

int ellipseCorners(EllipseCorners& corners, tagPOINTD center, double width, double height, double angle) {
    constexpr int cnMinCorners = 32;
    const double a = width * 0.5;
    const double b = height * 0.5;
    const double quarterCircumference = std::max(a, b) * 2.0 * std::numbers::pi * 0.25;
    const int count = std::clamp(truncateToInt(quarterCircumference), cnMinCorners, cnMaxEllipseCorners);
    const double sine = std::sin(angle);
    const double cosine = std::cos(angle);
    for (int i = 0; i < count; i++) {
        const double theta = i * 2.0 * std::numbers::pi / count;
        corners[i] = turnedAndMoved(a * std::cos(theta), b * std::sin(theta), sine, cosine, center);
    }
    return count;
}

} // namespace ovw::brush
