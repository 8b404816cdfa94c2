// Circle outlines through a pixel mixer: where tiled images meet the mixing code.

#include "ovwcmn/xcvoffpixelmixer.h"
#include "ovwcmn/xcvoffscreen.h"
#include "vimage/integerroots.h"
#include "vimage/roundshapes.h"

#include <algorithm>
#include <limits>

namespace ovw::vimage {

namespace {

constexpr std::int64_t cnNowhere = std::numeric_limits<std::int64_t>::max();

/// The height y of Bresenham's midpoint circle at x, for its octant 0 <= x <= y: the walk starts at y = radius and
/// steps down before x where 2 x^2 + y^2 + (y - 1)^2 >= 2 radius^2.
std::int64_t circleHeight(std::int64_t radius, std::int64_t x) { return pronicRoot(radius * radius - x * x - 1); }

/// The smallest distance from `least` on that leads from `centre`, up or down, to a coordinate of begin to end - 1.
std::int64_t nextDistance(std::int64_t least, std::int64_t centre, std::int64_t begin, std::int64_t end) {
    std::int64_t next = cnNowhere;
    if (least < end - centre)
        next = std::max(least, begin - centre);
    if (least <= centre - begin)
        next = std::min(next, std::max(least, centre - (end - 1)));
    return next;
}

class CirclePoints {
public:
    CirclePoints(XCVOffscreen& image, XCVOffPixelMixer& mixer, const XCVOffPixelMask* mask, const XCRect& area)
        : m_image(image), m_mixer(mixer), m_mask(mask), m_area(area) {}

    void plotFour(std::int64_t cx, std::int64_t cy, std::int64_t dx, std::int64_t dy) const {
        for (const std::int64_t y : {cy + dy, cy - dy})
            for (const std::int64_t x : {cx + dx, cx - dx})
                plot(x, y);
    }

private:
    void plot(std::int64_t x, std::int64_t y) const {
        if (x < m_area.left || x >= m_area.right || y < m_area.top || y >= m_area.bottom)
            return;
        const int column = static_cast<int>(x);
        const int row = static_cast<int>(y);
        if (!isFree(column, row))
            return;
        m_image.MoveCursor(column, row);
        m_mixer.Do();
    }
    bool isFree(int x, int y) const {
        if (m_mask && m_mask->IsExtensionMask())
            return m_mask->IsMaskFreeEx(&m_image, x, y) != 0;
        return !m_mask || !m_mask->IsNormalMask() || m_mask->GetMaskFreeValue(&m_image, x, y) != 0;
    }

    XCVOffscreen& m_image;
    XCVOffPixelMixer& m_mixer;
    const XCVOffPixelMask* m_mask;
    const XCRect& m_area;
};

} // namespace

void drawCircle(XCVOffscreen& image, std::int64_t cx, std::int64_t cy, std::int64_t radius, XCVOffPixelMixer& mixer,
                const XCVOffPixelMask* mask, const XCRect& area) {
    const CirclePoints points(image, mixer, mask, area);
    // A point lies x away from the centre in its column or in its row: where neither leads into the area, none is seen.
    const auto next = [&](std::int64_t x) {
        return std::min(nextDistance(x, cx, area.left, area.right), nextDistance(x, cy, area.top, area.bottom));
    };
    for (std::int64_t x = next(0); x <= radius; x = next(x + 1)) {
        const std::int64_t y = circleHeight(radius, x);
        if (x > y)
            break;
        points.plotFour(cx, cy, x, y);
        points.plotFour(cx, cy, y, x);
    }
}

} // namespace ovw::vimage
