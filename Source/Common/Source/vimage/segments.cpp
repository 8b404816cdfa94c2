#include "vimage/segments.h"

#include "ovwcmn/xcvoffscreen.h"
#include "vimage/pixelcolour.h"
#include "vimage/polygonrows.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace ovw::vimage {

namespace {

struct Steps {
    std::int64_t begin;
    std::int64_t end;
};

std::int64_t countInBoth(const Steps& a, const Steps& b) { return std::min(a.end, b.end) - std::max(a.begin, b.begin); }

/// One coordinate of Bresenham's line, whose step i is i x extent / longest away from the start, halves rounded up.
/// Extents are below 2^32, so that their products fit 64 bits.
class LineAxis {
public:
    LineAxis(std::int64_t from, std::int64_t to, std::int64_t longest)
        : m_start(from), m_sign(to < from ? -1 : 1), m_extent(static_cast<std::uint64_t>(std::abs(to - from))),
          m_longest(static_cast<std::uint64_t>(longest)) {}

    std::int64_t at(std::int64_t step) const {
        if (m_extent == 0)
            return m_start;
        const std::uint64_t product = static_cast<std::uint64_t>(step) * m_extent;
        const bool roundsUp = 2 * (product % m_longest) >= m_longest;
        return m_start + m_sign * static_cast<std::int64_t>(product / m_longest + roundsUp);
    }
    /// The steps at which the coordinate lies in low to high.
    Steps within(std::int64_t low, std::int64_t high) const {
        const std::int64_t nearest = m_sign > 0 ? low - m_start : m_start - high;
        return {firstAway(nearest), firstAway(nearest + (high - low) + 1)};
    }

private:
    /// The first step that is so far from the start; the number of steps when none is.
    std::int64_t firstAway(std::int64_t distance) const {
        if (distance <= 0)
            return 0;
        const auto away = static_cast<std::uint64_t>(distance);
        if (away > m_extent)
            return static_cast<std::int64_t>(m_longest) + 1;
        return static_cast<std::int64_t>((away * m_longest - m_longest / 2 + (m_extent - 1)) / m_extent);
    }

    std::int64_t m_start;
    int m_sign;
    std::uint64_t m_extent;
    std::uint64_t m_longest;
};

/// The places where a pen stands, and the pixels of an image that it covers.
class PenWalk {
public:
    explicit PenWalk(const Segment& segment)
        : m_reach(segment.width - 1),
          m_longest(std::max(std::abs(segment.x2 - segment.x1), std::abs(segment.y2 - segment.y1))),
          m_x(segment.x1, segment.x2, m_longest), m_y(segment.y1, segment.y2, m_longest) {}

    /// Calls row(left, right, y, steps), both ends included, for the rows of the image that the pen covers; it covers
    /// row y at these steps.
    template <class Row>
    void forRows(const XCVOffscreen& image, Row row) const {
        const auto [top, bottom] = covered(m_y, {0, m_longest + 1}, image.GetHeight());
        for (int y = top; y <= bottom; ++y) {
            const Steps steps = coveringY(y);
            const auto [left, right] = covered(m_x, steps, image.GetWidth());
            if (left <= right)
                row(left, right, y, steps);
        }
    }
    /// How often it stands on pixel x of a row that it covers at these steps.
    std::int64_t timesOn(int x, const Steps& steps) const { return countInBoth(steps, m_x.within(x - m_reach, x)); }

private:
    Steps coveringY(int y) const { return m_y.within(y - m_reach, y); }
    /// The pixels 0 to size - 1 that the pen covers along an axis during steps.
    std::pair<int, int> covered(const LineAxis& axis, const Steps& steps, int size) const {
        const std::int64_t first = axis.at(steps.begin);
        const std::int64_t last = axis.at(steps.end - 1);
        return {static_cast<int>(std::clamp<std::int64_t>(std::min(first, last), 0, size)),
                static_cast<int>(std::clamp<std::int64_t>(std::max(first, last) + m_reach, -1, size - 1))};
    }

    std::int64_t m_reach;
    std::int64_t m_longest;
    LineAxis m_x;
    LineAxis m_y;
};

/// Puts the colour behind the pixel under the cursor, `times` times. What a pixel reads as soon repeats, then whole
/// rounds are left out: the pen's size does not count.
void putBehind(XCVOffscreen& image, std::uint32_t colour, std::int64_t times) {
    std::uint32_t known = image.Get32BitColor();
    std::int64_t sinceKnown = 0;
    std::int64_t longestRound = 1;
    while (times-- > 0) {
        image.Set32BitColor(behindColour(image.Get32BitColor(), colour));
        const std::uint32_t current = image.Get32BitColor();
        if (++sinceKnown, current == known) {
            times %= sinceKnown;
        } else if (sinceKnown == longestRound) {
            known = current;
            sinceKnown = 0;
            longestRound *= 2;
        }
    }
}

} // namespace

int Segment::fittedWidth() const {
    if (x1 == x2 || y1 == y2)
        return width;
    const auto dx = static_cast<double>(std::abs(x2 - x1));
    const auto dy = static_cast<double>(std::abs(y2 - y1));
    constexpr double cnNearlyOne = 0.99;
    const double fitted = std::floor(std::max(dx, dy) / std::hypot(dx, dy) * width + cnNearlyOne);
    return std::clamp(static_cast<int>(std::min<double>(fitted, width)), 1, width);
}

void Segment::takePen(int pixels, int inset) {
    width = pixels;
    for (std::int64_t* const coordinate : {&x1, &y1, &x2, &y2})
        *coordinate += inset;
}

void stampSegment(XCVOffscreen& image, const Segment& segment) {
    constexpr int cnHorizontal = 0;
    const PenWalk pen(segment);
    pen.forRows(image, [&](int left, int right, int y, const Steps&) {
        image.DrawSimpleSegment(cnHorizontal, y, left, right - left + 1, segment.colour);
    });
}

void stampSegmentBehind(XCVOffscreen& image, const Segment& segment) {
    const PenWalk pen(segment);
    pen.forRows(image, [&](int left, int right, int y, const Steps& steps) {
        for (int x = left; x <= right; ++x)
            if (image.MoveCursor(x, y))
                putBehind(image, segment.colour, pen.timesOn(x, steps));
    });
}

void fillSegment(XCVOffscreen& image, const Segment& segment) {
    constexpr int cnReplace = 0;
    // A span ends in the pixel of its last x, but a row is sampled near its top: the pen reaches to the top of the row
    // below it, so that it is as high as it is wide.
    const auto corner = [&](const tagPOINTD& place, int right, int bottom) {
        return tagPOINTD{place.x + right * (segment.width - 1.0),
                         place.y + bottom * static_cast<double>(segment.width)};
    };
    tagPOINTD left{static_cast<double>(segment.x1), static_cast<double>(segment.y1)};
    tagPOINTD right{static_cast<double>(segment.x2), static_cast<double>(segment.y2)};
    if (left.x > right.x)
        std::swap(left, right);
    const bool goesDown = left.y <= right.y;
    const std::array<tagPOINTD, 6> hull{
        corner(left, 0, 0),  goesDown ? corner(left, 1, 0) : corner(right, 0, 0), corner(right, 1, 0),
        corner(right, 1, 1), goesDown ? corner(right, 0, 1) : corner(left, 1, 1), corner(left, 0, 1)};
    fillPolygon(nullptr, image, nullptr, {segment.colour, cnReplace}, hull);
}

} // namespace ovw::vimage
