#include "ovwcmn/xcvoffscreen.h"
#include "vimage/integerroots.h"
#include "vimage/numbers.h"
#include "vimage/roundshapes.h"

#include <algorithm>

namespace ovw::vimage {

namespace {

/// Half of the width at a distance from the centre of a disc, which is a midpoint walk over one octant mirrored: from
/// y = radius at x = 0 the walk steps down after x where x^2 + y (y - 1) > radius^2 + 1. Rows up to the diagonal take
/// the walk's y at x = distance, the others its last x at y = distance.
std::int64_t discHalf(std::int64_t radius, std::int64_t distance) {
    const std::int64_t bound = radius * radius + 1;
    const std::int64_t height = std::min(radius, pronicRoot(bound - (distance - 1) * (distance - 1)));
    return distance <= height ? height : squareRoot(bound - distance * (distance - 1)) + 1;
}

/// An ellipse is the disc over its longer axis, the rows or columns of the shorter one scaled down.
class Ellipse {
public:
    Ellipse(std::int64_t a, std::int64_t b) : m_a(a), m_b(b), m_radius(std::max(a, b)) {}

    /// Half of the width of the row at a distance of 0 to b from the centre.
    std::int64_t halfWidth(std::int64_t distance) const {
        // The first row of the disc that is scaled down to this one.
        const std::int64_t discRow = m_b == 0 ? 0 : ceilDiv(distance * m_radius, m_b);
        return discHalf(m_radius, discRow) * m_a / m_radius;
    }

private:
    std::int64_t m_a;
    std::int64_t m_b;
    std::int64_t m_radius;
};

} // namespace

void fillEllipse(XCVOffscreen& image, const tagRECT& box, std::uint32_t colour, const XCRect& area) {
    const std::int64_t a = (std::int64_t{box.right} - box.left) / 2;
    const std::int64_t b = (std::int64_t{box.bottom} - box.top) / 2;
    if (box.left > box.right || box.top > box.bottom || (a == 0 && b == 0))
        return;
    const Ellipse ellipse(a, b);
    const std::int64_t cx = box.left + a;
    const std::int64_t cy = box.top + b;
    const std::int64_t end = std::min<std::int64_t>(cy + b + 1, area.bottom);
    for (std::int64_t row = std::max<std::int64_t>(cy - b, area.top); row < end; ++row) {
        const std::int64_t half = ellipse.halfWidth(row < cy ? cy - row : row - cy);
        image.FillLineRow(static_cast<int>(cx - half), static_cast<int>(cx + half), static_cast<int>(row), colour,
                          &area);
    }
}

} // namespace ovw::vimage
