// Circles, hard and anti-aliased. The anti-aliased circle is computed in 1/32 pixels; a pixel's coverage falls in a
// ramp one pixel wide with the distance of its sample point from the centre.

#include "ovwcmn/xcpattern.h"

#include "mixing/stamprows.h"
#include "ovwcmn/xcblockgetter.h"
#include "ovwcmn/xcvoffscreen.h"
#include "vimage/numbers.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace {

using ovw::truncateToInt;
using ovw::mixing::RimmedSpan;
using ovw::mixing::StampRows;
using ovw::vimage::endOf;
using ovw::vimage::truncateWithin;

constexpr int cnFixBits = 5;
constexpr std::int64_t cnFixOne = 1 << cnFixBits;
/// Beyond these, in pixels, squares would not fit 64 bits, and no image is that large.
constexpr double cnMaxPosition = 4294967296.0;
/// In 1/32 pixels: squares of smaller lengths are whole numbers in a double.
constexpr std::int64_t cnMaxExactRadius = 1 << 20;
constexpr double cnMaxRadius = 67108864.0;

/// In 1/32 pixels.
struct FixedCircle {
    std::int64_t cx;
    std::int64_t cy;
    std::int64_t radius;
    std::int64_t inner; ///< radius of full coverage
    double pixelRadius;
};

int pixelOf(std::int64_t fixed) {
    return static_cast<int>(std::clamp<std::int64_t>(fixed >> cnFixBits, INT32_MIN, INT32_MAX));
}

/// Half the chord at a distance from the centre, -1 when the row misses the circle.
std::int64_t halfChord(std::int64_t radius, std::int64_t dy) {
    const std::int64_t square = radius * radius - dy * dy;
    return square > 0 ? static_cast<std::int64_t>(std::sqrt(static_cast<double>(square))) : -1;
}

void paintRow(StampRows& rows, const FixedCircle& circle, const XCRect& tile, int y) {
    const std::int64_t dy = y * cnFixOne - circle.cy;
    const std::int64_t half = halfChord(circle.radius, dy);
    if (half < 0)
        return;
    RimmedSpan span;
    span.start = std::max(pixelOf(circle.cx - half), tile.left);
    span.end = std::min(endOf(pixelOf(circle.cx + half), 1), tile.right);
    if (span.start >= span.end)
        return;
    const std::int64_t innerHalf = halfChord(circle.inner, dy);
    span.innerStart = span.innerEnd = span.end;
    if (innerHalf >= 0) {
        span.innerStart = std::clamp(pixelOf(circle.cx - innerHalf), tile.left, tile.right);
        span.innerEnd = std::clamp(pixelOf(circle.cx + innerHalf), tile.left, tile.right);
    }
    if (circle.radius <= cnMaxExactRadius && rows.prefersCircles()) {
        const auto dx = static_cast<double>((span.start + std::int64_t{1}) * cnFixOne - circle.cx);
        return rows.paintCircle(y, span,
                                {dx, cnFixOne, static_cast<double>(dy * dy), 1.0 / cnFixOne, circle.pixelRadius,
                                 span.innerStart - span.start, span.innerEnd - span.start});
    }
    rows.paint(y, span, [&](int x) {
        const std::int64_t dx = (x + std::int64_t{1}) * cnFixOne - circle.cx;
        const std::int64_t square = dx * dx + dy * dy;
        if (square == 0)
            return 1.0f;
        const double coverage = circle.pixelRadius - std::sqrt(static_cast<double>(square)) * (1.0 / cnFixOne);
        return static_cast<float>(std::min(coverage, 1.0));
    });
}

/// Calls paint(tile) for the blocks that the circle meets.
template <class PaintTile>
void paintTiles(XCVOffscreen* image, const XCRect& bounds, XCFastPixelMixer* mixer, XCRect& drawn, PaintTile paint) {
    XCBlockGetter tiles(image, bounds, 1);
    if (!tiles.IsExist())
        return;
    for (XCRect tile; tiles.GetNextBlock(tile);) {
        mixer->MoveCursorToBlock(tile.left, tile.top);
        paint(tile);
    }
    drawn = bounds;
}

} // namespace

void XCCirclePattern::CircleFillAA(XCVOffscreen* image, double x, double y, double radius, XCFastPixelMixer* mixer,
                                   XCRect& drawn) {
    if (!(radius > 0.0) || !(std::abs(x) < cnMaxPosition) || !(std::abs(y) < cnMaxPosition))
        return;
    radius = std::min(radius, cnMaxRadius);
    FixedCircle circle;
    circle.cx = static_cast<std::int64_t>((x + 1.0) * cnFixOne);
    circle.cy = static_cast<std::int64_t>(y * cnFixOne);
    circle.radius = static_cast<std::int64_t>(radius * cnFixOne);
    circle.inner = std::max<std::int64_t>(circle.radius - cnFixOne, 0);
    circle.pixelRadius = radius;
    if (circle.radius <= 0)
        return;
    const XCRect bounds(pixelOf(circle.cx - circle.radius), pixelOf(circle.cy - circle.radius),
                        endOf(pixelOf(circle.cx + circle.radius), 1), endOf(pixelOf(circle.cy + circle.radius), 1));
    paintTiles(image, bounds, mixer, drawn, [&](const XCRect& tile) {
        StampRows rows(*mixer, tile);
        for (int row = tile.top; row < tile.bottom; row++)
            paintRow(rows, circle, tile, row);
    });
}

void XCCirclePattern::CircleFill(XCVOffscreen* image, double x, double y, double radius, XCFastPixelMixer* mixer,
                                 XCRect& drawn) {
    if (!(radius > 0.0) || !std::isfinite(x) || !std::isfinite(y))
        return;
    const double center = x + 1.0;
    const XCRect bounds(truncateToInt(center - radius), truncateToInt(y - radius),
                        endOf(truncateToInt(center + radius), 1), endOf(truncateToInt(y + radius), 1));
    const auto paintChord = [&](const XCRect& tile, int row) {
        const double square = radius * radius - (row - y) * (row - y);
        if (!(square > 0.0))
            return;
        const double half = std::sqrt(square);
        const double start = center - half;
        const double end = center + half - 1.001; // 1 makes the end inclusive, the rest keeps whole numbers below
        if (!(tile.right > start) || !(tile.left <= end))
            return;
        const int first = truncateWithin(start, tile.left, tile.right);
        const int last = truncateWithin(end, tile.left, tile.right - 1);
        if (first <= last)
            mixer->DoLineRow(first, last, row);
    };
    paintTiles(image, bounds, mixer, drawn, [&](const XCRect& tile) {
        for (int row = tile.top; row < tile.bottom; row++)
            paintChord(tile, row);
    });
}
