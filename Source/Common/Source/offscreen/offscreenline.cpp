#include "offscreen/pixelview.h"
#include "ovwcmn/xcoffscreen.h"

#include <algorithm>
#include <cstdlib>

using namespace ovw::offscreen;

namespace {

struct Range {
    std::int64_t low, high;
    bool isEmpty() const { return low > high; }
};

/// Bresenham's walk in closed form: after k of `major` steps along one axis it has made minorAt(k) along the other. The
/// error term begins at 2 minor - major, and a term of 0 steps diagonally.
class Walk {
public:
    Walk(std::int64_t major, std::int64_t minor) : m_major(major), m_minor(minor), m_isShort(major < cnLongest64) {}

    std::int64_t minorAt(std::int64_t k) const { return m_major == 0 ? 0 : divided(m_minor, k, m_major, m_major); }
    /// The steps during which the other axis is within a range that lies in 0 to minor.
    Range stepsWithin(const Range& minors) const {
        if (m_minor == 0)
            return {0, m_major};
        return {minors.low == 0 ? 0 : firstStepAt(minors.low), std::min(m_major, firstStepAt(minors.high + 1) - 1)};
    }

private:
    using Wide = __int128;

    std::int64_t firstStepAt(std::int64_t minor) const {
        return divided(m_major, minor, 2 * m_minor - 1 - m_major, m_minor);
    }
    /// (2ab + c) / 2d. Of all but the longest lines the product fits in 64 bits, which divide many times faster.
    std::int64_t divided(std::int64_t a, std::int64_t b, std::int64_t c, std::int64_t d) const {
        if (m_isShort)
            return (2 * a * b + c) / (2 * d);
        return static_cast<std::int64_t>((Wide{2} * a * b + c) / (Wide{2} * d));
    }

    static constexpr std::int64_t cnLongest64 = std::int64_t{1} << 29;

    std::int64_t m_major;
    std::int64_t m_minor;
    bool m_isShort;
};

/// The steps from 0 to count at which a coordinate that goes from `start` by `direction` lies in low to high.
Range stepsTo(std::int64_t start, int direction, std::int64_t count, std::int64_t low, std::int64_t high) {
    const Range range = direction > 0 ? Range{low - start, high - start} : Range{start - high, start - low};
    return {std::max<std::int64_t>(range.low, 0), std::min(range.high, count)};
}

/// A line drawn by a square pen: every row of it is one span, since the walk never turns back.
class PenLine {
public:
    PenLine(int x0, int y0, int x1, int y1, int width)
        : m_x0(x0), m_y0(y0), m_dx(std::abs(std::int64_t{x1} - x0)), m_dy(std::abs(std::int64_t{y1} - y0)),
          m_directionX(x1 < x0 ? -1 : 1), m_directionY(y1 < y0 ? -1 : 1), m_before(width / 2), m_width(width),
          m_walk(std::max(m_dx, m_dy), std::min(m_dx, m_dy)) {}

    Range rows() const {
        const std::int64_t end = m_y0 + m_directionY * m_dy;
        return {std::min(m_y0, end) - m_before, std::max(m_y0, end) - m_before + m_width - 1};
    }
    /// The columns of a row.
    Range columns(std::int64_t row) const {
        // The pen reaches the row from points in these rows.
        const Range steps = stepsTo(m_y0, m_directionY, m_dy, row + m_before - m_width + 1, row + m_before);
        const Range along =
            m_dx >= m_dy ? m_walk.stepsWithin(steps) : Range{m_walk.minorAt(steps.low), m_walk.minorAt(steps.high)};
        const std::int64_t a = m_x0 + m_directionX * along.low;
        const std::int64_t b = m_x0 + m_directionX * along.high;
        return {std::min(a, b) - m_before, std::max(a, b) - m_before + m_width - 1};
    }

private:
    std::int64_t m_x0;
    std::int64_t m_y0;
    std::int64_t m_dx;
    std::int64_t m_dy;
    int m_directionX;
    int m_directionY;
    std::int64_t m_before; // of the pen's pixels, left of and above the point
    std::int64_t m_width;
    Walk m_walk;
};

} // namespace

void XCOffscreen::Line(int x0, int y0, int x1, int y1, int width) {
    if (!m_info.bits || width <= 0)
        return;
    const PixelView view(*this);
    const PenLine line(x0, y0, x1, y1, width);
    const Range rows = line.rows();
    const std::int64_t bottom = std::min<std::int64_t>(rows.high, view.height - 1);
    withFormat(view.depth, [&]<class Format>() {
        const auto value = Format::write24(m_foreColor);
        for (std::int64_t y = std::max<std::int64_t>(rows.low, 0); y <= bottom; ++y) {
            const Range columns = line.columns(y);
            const std::int64_t first = std::max<std::int64_t>(columns.low, 0);
            const std::int64_t last = std::min<std::int64_t>(columns.high, view.width - 1);
            if (first <= last)
                Format::fillRow(view.row(static_cast<int>(y)), static_cast<int>(first),
                                static_cast<int>(last - first + 1), value);
        }
    });
}

void XCOffscreen::RectFrame(const tagRECT& rect, int width) {
    if (XCRect(rect).IsRectEmpty())
        return;
    const int right = rect.right - 1;
    const int bottom = rect.bottom - 1;
    Line(rect.left, rect.top, right, rect.top, width);
    Line(right, rect.top, right, bottom, width);
    Line(rect.left, bottom, right, bottom, width);
    Line(rect.left, rect.top, rect.left, bottom, width);
}
