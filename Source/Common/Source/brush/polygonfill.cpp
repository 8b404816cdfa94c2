#include "brush/polygonfill.h"

#include "brush/coveragerow.h"
#include "brush/rowpainter.h"
#include "ovwcmn/xcfastpixelmixer.h"
#include "vimage/polygonscan.h"

#include <cmath>

namespace ovw::brush {

namespace {

constexpr double cnSubLineStep = 1.0 / CoverageRow::cnSubLines;

/// @return false when a line has too many crossings
bool fillTileAA(RowPainter& painter, vimage::EdgeList& edges, const XCRect& tile) {
    vimage::CrossingList crossings;
    CoverageRow row(tile.left, tile.right);
    for (int y = tile.top; y < tile.bottom; y++) {
        for (int subLine = 0; subLine < CoverageRow::cnSubLines; subLine++) {
            if (!edges.crossingsAt(y + vimage::cnRowSample + subLine * cnSubLineStep, crossings))
                return false;
            vimage::forEvenOddSpans(crossings, [&row](double low, double high) { row.addSpan(low, high); });
        }
        painter.paintCoverage(row, y);
    }
    return true;
}

} // namespace

int fillPolygonAA(tagRECT* changed, XCVOffscreen& image, const tagRECT* clip, RowPainter& painter,
                  std::span<const tagPOINTD> vertices) {
    return vimage::scanPolygon(
        changed, image, clip, painter, vertices,
        [&](vimage::EdgeList& edges, const XCRect& tile) { return fillTileAA(painter, edges, tile); });
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

} // namespace ovw::brush
