#ifndef OVW_VIMAGE_ELLIPSEROWS_H
#define OVW_VIMAGE_ELLIPSEROWS_H

#include "vimage/integerroots.h"
#include "vimage/numbers.h"

#include <algorithm>
#include <cstdint>

namespace ovw::vimage {

/// Half of the width at a distance from the centre of a disc, which is a midpoint walk over one octant mirrored: from
/// y = radius at x = 0 the walk steps down after x where x^2 + y (y - 1) > radius^2 + 1. Rows up to the diagonal take
/// the walk's y at x = distance, the others its last x at y = distance.
inline std::int64_t discHalf(std::int64_t radius, std::int64_t distance) {
    const std::int64_t bound = radius * radius + 1;
    const std::int64_t height = std::min(radius, pronicRoot(bound - (distance - 1) * (distance - 1)));
    return distance <= height ? height : squareRoot(bound - distance * (distance - 1)) + 1;
}

/// The ellipse in a box, of half the box's sides rounded down: the disc over its longer axis, the rows or columns of
/// the shorter one scaled down. A box without width and height holds none.
class EllipseRows {
public:
    /// left <= right and top <= bottom.
    EllipseRows(std::int64_t left, std::int64_t top, std::int64_t right, std::int64_t bottom)
        : m_a((right - left) / 2), m_b((bottom - top) / 2), m_centreX(left + m_a), m_centreY(top + m_b),
          m_radius(std::max(m_a, m_b)) {}

    /// Calls span(first, last, row), columns included, for the ellipse's rows from top to before bottom.
    template <class Span>
    void forEachRow(std::int64_t top, std::int64_t bottom, Span span) const {
        if (m_radius == 0)
            return;
        const std::int64_t end = std::min(m_centreY + m_b + 1, bottom);
        for (std::int64_t row = std::max(m_centreY - m_b, top); row < end; ++row) {
            const std::int64_t half = halfWidth(row < m_centreY ? m_centreY - row : row - m_centreY);
            span(static_cast<int>(m_centreX - half), static_cast<int>(m_centreX + half), static_cast<int>(row));
        }
    }

private:
    /// Half of the width of the row at a distance of 0 to b from the centre.
    std::int64_t halfWidth(std::int64_t distance) const {
        // The first row of the disc that is scaled down to this one.
        const std::int64_t discRow = m_b == 0 ? 0 : ceilDiv(distance * m_radius, m_b);
        return discHalf(m_radius, discRow) * m_a / m_radius;
    }

    std::int64_t m_a;
    std::int64_t m_b;
    std::int64_t m_centreX;
    std::int64_t m_centreY;
    std::int64_t m_radius;
};

} // namespace ovw::vimage

#endif // OVW_VIMAGE_ELLIPSEROWS_H
