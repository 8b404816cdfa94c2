#include "brush/stampbounds.h"

#include "ovwcmn/xcvoffscreen.h"

#include <algorithm>
#include <cstdint>

namespace ovw::brush {

namespace {

int grown(int edge, int by) {
    return static_cast<int>(std::clamp<std::int64_t>(std::int64_t{edge} + by, INT32_MIN, INT32_MAX));
}

} // namespace

void unite(XCRect& bounds, const XCRect& with) {
    if (bounds.IsRectEmpty())
        bounds = with;
    else
        bounds.UnionRect(with);
}

int reportStamp(XCRect* changed, const XCVOffscreen* image, const XCRect& drawn) {
    if (drawn.IsRectEmpty())
        return 0;
    const XCRect bounds(grown(drawn.left, -1), grown(drawn.top, -1), grown(drawn.right, 1), grown(drawn.bottom, 1));
    if (changed)
        changed->IntersectRect(bounds, image->GetRect());
    return 1;
}

} // namespace ovw::brush
