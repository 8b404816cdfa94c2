#include "ovwcmn/xcvoffscreen.h"
#include "vimage/numbers.h"
#include "vimage/roundshapes.h"

#include <algorithm>
#include <cmath>

namespace ovw::vimage {

namespace {

/// Columns of a row, both included.
struct Span {
    std::int64_t left;
    std::int64_t right;
};

// The smallest discs are drawn by hand: offsets from the left, rows 0 to the diameter.
constexpr int cnLargestDrawn = 3;
constexpr Span cnDrawnRows[cnLargestDrawn + 1][cnLargestDrawn + 1] = {
    {{0, 0}},
    {{0, 1}, {0, 1}},
    {{1, 1}, {0, 2}, {1, 1}},
    {{1, 2}, {0, 3}, {0, 3}, {1, 2}},
};

std::int64_t rowsOf(int diameter) { return diameter <= cnLargestDrawn ? diameter + 1 : diameter; }

/// The columns of row i of the disc. Truncating toward zero shifts discs that begin left of the image by a pixel.
Span discRow(int x, int diameter, std::int64_t i) {
    if (diameter <= cnLargestDrawn) {
        const Span& drawn = cnDrawnRows[diameter][i];
        return {x + drawn.left, x + drawn.right};
    }
    const double radius = diameter * 0.5;
    const double centre = x + radius;
    const double t = radius - 0.5 - static_cast<double>(i);
    const double half = std::sqrt(radius * radius - t * t);
    const auto left = static_cast<std::int64_t>(centre - half);
    const bool isOdd = diameter % 2 != 0;
    return {left, 2 * static_cast<std::int64_t>(centre) - left - (isOdd ? 0 : 1)};
}

void fillRow(XCVOffscreen& image, int left, int right, int y, const DiscPaint& paint) {
    constexpr int cnPatternSize = 16;
    constexpr int cnNoColumn = -1; // the fill itself enters the blocks in which it has something to paint
    image.MoveCursor(cnNoColumn, y);
    if (paint.mask)
        paint.mask->MoveCursorY(image.ConvertPointY(paint.mask, endOf(paint.maskOffset.y, y)));
    const std::uint8_t* const pattern =
        paint.pattern ? paint.pattern + y % cnPatternSize * cnPatternSize : paint.pattern;
    image.FillLineRowForPolygon(left, right, paint.colour, paint.mode, paint.mask, paint.maskOffset.x, pattern,
                                paint.patternLevel);
}

} // namespace

void fillDisc(XCVOffscreen& image, int x, int y, int diameter, const DiscPaint& paint, const XCRect& area) {
    if (diameter < 0)
        return;
    const std::int64_t first = std::max(y, area.top);
    const std::int64_t end = std::min<std::int64_t>(y + rowsOf(diameter), area.bottom);
    for (std::int64_t row = first; row < end; ++row) {
        const Span span = discRow(x, diameter, row - y);
        const std::int64_t left = std::max<std::int64_t>(span.left, area.left);
        const std::int64_t right = std::min<std::int64_t>(span.right, std::int64_t{area.right} - 1);
        if (left <= right)
            fillRow(image, static_cast<int>(left), static_cast<int>(right), static_cast<int>(row), paint);
    }
}

} // namespace ovw::vimage
