// Rotated ellipses, hard and anti-aliased. A row's chord solves Ka x^2 + 2 dy Kb x + dy^2 Kc = Kd; the anti-aliased
// rim is a linear ramp between the chords of the ellipse and of one with radii smaller by one pixel.

#include "ovwcmn/xcpattern.h"

#include "mixing/stamprows.h"
#include "ovwcmn/xcblockgetter.h"
#include "ovwcmn/xcvoffscreen.h"
#include "vimage/numbers.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

using ovw::truncateToInt;
using ovw::mixing::RimmedSpan;
using ovw::mixing::StampRows;
using ovw::vimage::endOf;
using ovw::vimage::truncateWithin;

/// Keeps a chord that ends at a whole number from reaching the pixel there.
constexpr double cnEndMargin = 0.001;

struct Chord {
    bool isHit = false;
    double left = 0.0;
    double right = 0.0;
};

class EllipseEquation {
public:
    EllipseEquation(double rx, double ry, double angle) {
        const double sn = std::sin(angle);
        const double cs = std::cos(angle);
        const double x2 = rx * rx;
        const double y2 = ry * ry;
        m_a = x2 * sn * sn + y2 * cs * cs;
        m_b = (y2 - x2) * sn * cs;
        m_c = x2 * cs * cs + y2 * sn * sn;
        m_d = x2 * y2;
    }

    /// The chord `dy` below the centre, its right end moved left by `margin`.
    Chord chordAt(double dy, double center, double margin) const {
        const double b = dy * m_b;
        const double discriminant = b * b - (dy * dy * m_c - m_d) * m_a;
        // Without area, rounding alone would decide which rows are hit.
        if (!(m_d > 0.0) || !(discriminant > 0.0))
            return {};
        const double root = std::sqrt(discriminant);
        return {true, center - (root + b) / m_a, center - (b - root) / m_a - margin};
    }

private:
    double m_a, m_b, m_c, m_d;
};

/// The bounds of the circle around the ellipse.
XCRect boundsOf(double center, double y, double rx, double ry) {
    const double reach = std::max(rx, ry);
    return {truncateToInt(center - reach), truncateToInt(y - reach), endOf(truncateToInt(center + reach), 1),
            endOf(truncateToInt(y + reach), 1)};
}

bool isDrawable(double x, double y, double rx, double ry) {
    return std::isfinite(x) && std::isfinite(y) && rx > 0.0 && ry > 0.0;
}

void paintRow(StampRows& rows, const XCRect& tile, int y, const Chord& outer, Chord inner) {
    RimmedSpan span;
    span.start = truncateWithin(outer.left, tile.left, tile.right);
    span.end = truncateWithin(outer.right, tile.left, tile.right);
    if (span.start >= span.end)
        return;
    if (inner.isHit) {
        span.innerStart = truncateWithin(inner.left, span.start, span.end);
        span.innerEnd = std::max(truncateWithin(inner.right, span.start, span.end), span.innerStart);
    } else {
        // No pixel is full: the two ramps meet in the middle of the chord.
        span.innerStart = truncateWithin((outer.left + outer.right) / 2.0, span.start, span.end);
        span.innerEnd = span.innerStart;
        inner.left = outer.right;
        inner.right = outer.left;
    }
    const double leftRamp = inner.left - outer.left;
    const double rightRamp = outer.right - inner.right;
    rows.paint(y, span, [&](int x) {
        const double coverage =
            x < span.innerStart ? (x + 1.0 - outer.left) / leftRamp : (outer.right - x - 1.0) / rightRamp;
        return static_cast<float>(std::min(coverage, 1.0));
    });
}

} // namespace

void XCCirclePattern::EllipseFillAA(XCVOffscreen* image, double x, double y, double rx, double ry, double angle,
                                    XCFastPixelMixer* mixer, XCRect& drawn) {
    if (!isDrawable(x, y, rx, ry))
        return;
    const double center = x + 1.0;
    const EllipseEquation outer(rx, ry, angle);
    const EllipseEquation inner(std::max(rx - 1.0, 0.0), std::max(ry - 1.0, 0.0), angle);
    const XCRect bounds = boundsOf(center, y, rx, ry);
    XCBlockGetter tiles(image, bounds, 1);
    if (!tiles.IsExist())
        return;
    for (XCRect tile; tiles.GetNextBlock(tile);) {
        mixer->MoveCursorToBlock(tile.left, tile.top);
        StampRows rows(*mixer, tile);
        for (int row = tile.top; row < tile.bottom; row++) {
            const Chord chord = outer.chordAt(row - y, center, cnEndMargin);
            if (chord.isHit)
                paintRow(rows, tile, row, chord, inner.chordAt(row - y, center, cnEndMargin));
        }
    }
    drawn = bounds;
}

void XCCirclePattern::EllipseFill(XCVOffscreen* image, double x, double y, double rx, double ry, double angle,
                                  XCFastPixelMixer* mixer, XCRect& drawn) {
    if (!isDrawable(x, y, rx, ry))
        return;
    const double center = x + 1.0;
    const EllipseEquation outer(rx, ry, angle);
    XCRect written;
    XCBlockGetter tiles(image, boundsOf(center, y, rx, ry), 1);
    for (XCRect tile; tiles.GetNextBlock(tile);) {
        mixer->MoveCursorToBlock(tile.left, tile.top);
        for (int row = tile.top; row < tile.bottom; row++) {
            const Chord chord = outer.chordAt(row - y, center, 1.0 + cnEndMargin);
            if (!chord.isHit || !(chord.right > tile.left - 1) || !(chord.left < tile.right))
                continue;
            const int first = truncateWithin(chord.left, tile.left, tile.right);
            const int last = truncateWithin(chord.right, tile.left - 1, tile.right - 1);
            if (first > last)
                continue;
            mixer->DoLineRow(first, last, row);
            written.UnionRect(XCRect(first, row, last + 1, row + 1));
        }
    }
    if (!written.IsRectEmpty())
        drawn = written;
}
