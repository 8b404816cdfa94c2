#include "offscreen/copyrect.h"
#include "offscreen/pixelrows.h"
#include "offscreen/sourceimage.h"
#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcoffscreen.h"

#include <algorithm>
#include <memory>
#include <vector>

using namespace ovw::offscreen;
using ovw::foundation::cnCodeParameter;

namespace {

constexpr int cnTile = 32; // side of the squares that are turned together, so that both images stay in the cache

/// A turn of a w x h rectangle: where its pixel (x, y) comes to lie.
struct Turn {
    std::int64_t fromX, xByX, xByY; // x' = fromX + xByX x + xByY y
    std::int64_t fromY, yByX, yByY;

    static Turn clockwise(int angle, std::int64_t w, std::int64_t h) {
        switch (angle) {
        case 0: return {0, 1, 0, 0, 0, 1};
        case 90: return {h - 1, 0, -1, 0, 1, 0};
        case 180: return {w - 1, -1, 0, h - 1, 0, -1};
        case 270: return {0, 0, 1, w - 1, -1, 0};
        default: xcThrowError(cnCodeParameter);
        }
    }
    static Turn mirror(int direction, std::int64_t w, std::int64_t h) {
        if (direction == XCOffscreen::cnFlipHorizontal)
            return {w - 1, -1, 0, 0, 0, 1};
        if (direction == XCOffscreen::cnFlipVertical)
            return {0, 1, 0, h - 1, 0, -1};
        xcThrowError(cnCodeParameter);
    }
    Turn thenMirroredIn(std::int64_t width) const { return {width - 1 - fromX, -xByX, -xByY, fromY, yByX, yByY}; }
    Turn movedBy(std::int64_t dx, std::int64_t dy) const { return {fromX + dx, xByX, xByY, fromY + dy, yByX, yByY}; }
    std::int64_t x(std::int64_t sx, std::int64_t sy) const { return fromX + xByX * sx + xByY * sy; }
    std::int64_t y(std::int64_t sx, std::int64_t sy) const { return fromY + yByX * sx + yByY * sy; }
};

/// Puts the pixels of a rectangle of source that `turn`, which counts from the rectangle's corner, brings into view.
/// Both have the depth of Format.
template <class Format>
void turnTile(const PixelView& view, const PixelView& source, const XCRect& tile, std::int64_t left, std::int64_t top,
              const Turn& turn) {
    for (int sy = tile.top; sy < tile.bottom; ++sy) {
        const std::uint8_t* const row = source.row(sy);
        std::int64_t x = turn.x(tile.left - left, sy - top);
        std::int64_t y = turn.y(tile.left - left, sy - top);
        for (int sx = tile.left; sx < tile.right; ++sx, x += turn.xByX, y += turn.yByX)
            if (x >= 0 && y >= 0 && x < view.width && y < view.height)
                storePixel<Format>(view.row(static_cast<int>(y)), static_cast<int>(x), loadPixel<Format>(row, sx));
    }
}

/// The same for any depth of source: what differs is converted first.
void turnRect(const PixelView& view, XCOffscreen& original, const PixelView& source, const tagRECT& rect,
              const Turn& turn) {
    XCRect area;
    if (!area.IntersectRect(rect, source.rect()))
        return;
    if (view.depth != source.depth) {
        XCOffscreen converted;
        converted.Create(source.width, source.height, view.depth, cnOpaqueWhite, 0);
        const ImageLock lock(&converted);
        converted.Copy(0, 0, source.width, source.height, &original, 0, 0);
        return turnRect(view, converted, PixelView(converted), rect, turn);
    }
    withFormat(view.depth, [&]<class Format>() {
        for (int y = area.top; y < area.bottom; y += cnTile)
            for (int x = area.left; x < area.right; x += cnTile)
                turnTile<Format>(view, source,
                                 XCRect(x, y, std::min(x + cnTile, area.right), std::min(y + cnTile, area.bottom)),
                                 rect.left, rect.top, turn);
    });
}

/// A rectangle by its size, of which int coordinates hold only what an image can have.
tagRECT rectOf(int x, int y, int w, int h) {
    const auto end = [](int start, int length) {
        return static_cast<int>(std::min<std::int64_t>(std::int64_t{start} + length, INT32_MAX));
    };
    return {x, y, end(x, w), end(y, h)};
}

} // namespace

XCOffscreen* XCOffscreen::CreateFlipImage(int direction) {
    if (!m_image.IsValid())
        return nullptr;
    auto result = std::make_unique<XCOffscreen>();
    result->Create(m_info.width, m_info.height, m_info.bitCount, cnOpaqueWhite, 0);
    const ImageLock lock(result.get());
    result->FlipImage(*this, 0, 0, m_info.width, m_info.height, direction);
    return result.release();
}

void XCOffscreen::FlipImage(XCOffscreen& src, int x, int y, int w, int h, int direction) {
    const Turn turn = Turn::mirror(direction, w, h).movedBy(x, y);
    if (!m_info.bits || w <= 0 || h <= 0)
        return;
    const SourceImage source(*this, &src);
    if (source.view().bits)
        turnRect(PixelView(*this), src, source.view(), rectOf(x, y, w, h), turn);
}

void XCOffscreen::RotationImage(XCOffscreen& src, int sx, int sy, int w, int h, int angle, int x, int y) {
    const Turn turn = Turn::clockwise(angle, w, h).movedBy(x, y);
    if (!m_info.bits || w <= 0 || h <= 0)
        return;
    const SourceImage source(*this, &src);
    if (source.view().bits)
        turnRect(PixelView(*this), src, source.view(), rectOf(sx, sy, w, h), turn);
}

void XCOffscreen::CreateRotationImage(XCOffscreen& src, int angle, int flip) {
    Turn turn = Turn::clockwise(angle, src.m_info.width, src.m_info.height);
    if (&src == this) {
        XCOffscreen copy(src);
        return CreateRotationImage(copy, angle, flip);
    }
    const bool isAcross = angle % 180 != 0;
    const int width = isAcross ? src.m_info.height : src.m_info.width;
    const int height = isAcross ? src.m_info.width : src.m_info.height;
    if (flip == 1)
        turn = turn.thenMirroredIn(width);
    if (!src.m_image.IsValid())
        return Destroy();
    Create(width, height, src.m_info.bitCount, cnOpaqueWhite, 0);
    const ImageLock lock(this);
    const ImageLock sourceLock(&src);
    turnRect(PixelView(*this), src, PixelView(src), PixelView(src).rect(), turn);
}
