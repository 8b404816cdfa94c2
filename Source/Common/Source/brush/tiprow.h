#ifndef OVW_BRUSH_TIPROW_H
#define OVW_BRUSH_TIPROW_H

#include "mixing/coveragespan.h"
#include "ovwcmn/xcfastpixelmixer.h"
#include "ovwcmn/xcgeometry.h"

#include <array>
#include <cmath>
#include <cstddef>

namespace ovw::brush {

/// Pixels of the longest span: the width of a block.
inline constexpr int cnLongestSpan = 256;
/// Uniform runs from this length on are cheaper as a span of their own than as a part of a coverage row.
inline constexpr int cnRunWorthSpan = 16;

/// Truncates toward zero within low <= result <= high.
inline int truncateWithin(double value, int low, int high) {
    if (!(value > low))
        return low;
    return value >= high ? high : static_cast<int>(value);
}

/// Pixels start <= x < end of a row: a rim on both sides, and full coverage from innerStart to innerEnd.
struct RimmedSpan {
    int start;
    int innerStart;
    int innerEnd;
    int end;
};

/// Paints a span inside the mixer's block; `coverageAt(x)` is the coverage of a pixel of the rim.
template <class CoverageAt>
void paintRimmedSpan(XCFastPixelMixer& mixer, int y, const RimmedSpan& span, CoverageAt coverageAt) {
    std::array<float, cnLongestSpan> coverage;
    const auto paint = [&](int from, int to) {
        if (from < to)
            mixing::paintCoverageRow(mixer, from, y,
                                     {coverage.data() + (from - span.start), static_cast<std::size_t>(to - from)});
    };
    for (int x = span.start; x < span.innerStart; x++)
        coverage[x - span.start] = coverageAt(x);
    for (int x = span.innerEnd; x < span.end; x++)
        coverage[x - span.start] = coverageAt(x);
    if (span.innerEnd - span.innerStart < cnRunWorthSpan) {
        for (int x = span.innerStart; x < span.innerEnd; x++)
            coverage[x - span.start] = 1.0f;
        return paint(span.start, span.end);
    }
    paint(span.start, span.innerStart);
    paint(span.innerEnd, span.end);
    mixer.ScaleAntiAlpha(1.0f);
    mixer.DoLineRow(span.innerStart, span.innerEnd - 1, y);
}

} // namespace ovw::brush

#endif // OVW_BRUSH_TIPROW_H
