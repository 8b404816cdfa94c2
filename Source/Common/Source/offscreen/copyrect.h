#ifndef OVW_OFFSCREEN_COPYRECT_H
#define OVW_OFFSCREEN_COPYRECT_H

#include <algorithm>
#include <cstdint>

namespace ovw::offscreen {

/// A rectangle of one image that belongs to a rectangle of the same size of another one.
struct CopyRect {
    std::int64_t x, y, w, h;
    std::int64_t sx, sy;

    bool isEmpty() const { return w <= 0 || h <= 0; }
    /// Cut to two images of these sizes; may become empty.
    CopyRect clipped(int width, int height, int sourceWidth, int sourceHeight) const {
        CopyRect r = *this;
        clipAxis(r.x, r.sx, r.w, width, sourceWidth);
        clipAxis(r.y, r.sy, r.h, height, sourceHeight);
        return r;
    }

private:
    static void clipAxis(std::int64_t& at, std::int64_t& source, std::int64_t& length, std::int64_t size,
                         std::int64_t sourceSize) {
        const std::int64_t cut = std::max<std::int64_t>({-at, -source, 0});
        at += cut;
        source += cut;
        length = std::min({length - cut, size - at, sourceSize - source});
    }
};

} // namespace ovw::offscreen

#endif // OVW_OFFSCREEN_COPYRECT_H
