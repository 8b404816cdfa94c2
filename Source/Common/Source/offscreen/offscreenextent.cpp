#include "offscreen/pixelview.h"
#include "ovwcmn/xcoffscreen.h"

#include <algorithm>

using namespace ovw::offscreen;

namespace {

/// Whether a pixel's 24-bit value is not white.
template <class Format>
bool isMarked(const std::uint8_t* row, int x) {
    return Format::read24(loadPixel<Format>(row, x)) != cnWhite;
}

template <class Format>
XCRect markedRect(const PixelView& view) {
    XCRect found;
    for (int y = 0; y < view.height; ++y) {
        const std::uint8_t* const row = view.row(y);
        // Columns that are bounded already matter only to find whether the row is marked at all.
        const bool isFirst = found.IsRectEmpty();
        int left = 0;
        while (left < view.width && !isMarked<Format>(row, left))
            ++left;
        if (left == view.width)
            continue;
        int right = view.width;
        while (right > (isFirst ? left + 1 : found.right) && !isMarked<Format>(row, right - 1))
            --right;
        if (isFirst)
            found = XCRect(left, y, right, y + 1);
        else
            found = XCRect(std::min(found.left, left), found.top, std::max(found.right, right), y + 1);
    }
    return found;
}

} // namespace

int XCOffscreen::GetExtentRect(tagRECT& rect) {
    rect = {};
    const ImageLock lock(this);
    if (!lock)
        return 0;
    const PixelView view(*this);
    const XCRect found = withFormat(view.depth, [&view]<class Format>() { return markedRect<Format>(view); });
    rect = found;
    return !found.IsRectEmpty();
}
