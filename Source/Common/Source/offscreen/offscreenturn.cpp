#include "foundation/nomemory.h"
#include "offscreen/pixelrows.h"
#include "offscreen/sourceimage.h"
#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcoffscreen.h"
#include "vimage/quarterturn.h"
#include "vimage/turnrows.h"
#include "vimage/withformat.h"

#include <algorithm>
#include <memory>

using namespace ovw::offscreen;
using ovw::foundation::cnCodeParameter;
using ovw::foundation::orNoMemory;
using ovw::vimage::Orientation;
using ovw::vimage::PixelGrid;
using ovw::vimage::turnRows;

namespace {

constexpr int cnTile = 256; // side of the squares that are turned together, so that both images stay in the cache

Orientation clockwise(int angle, bool flip) {
    if (angle != 0 && angle != 90 && angle != 180 && angle != 270)
        xcThrowError(cnCodeParameter);
    return Orientation::of(angle, flip, false);
}

Orientation mirror(int direction) {
    if (direction != XCOffscreen::cnFlipHorizontal && direction != XCOffscreen::cnFlipVertical)
        xcThrowError(cnCodeParameter);
    return Orientation::of(0, direction == XCOffscreen::cnFlipHorizontal, direction == XCOffscreen::cnFlipVertical);
}

/// The part of a length that lies in an image's, when the length begins at `at`.
struct Part {
    int begin, end;

    static Part inside(std::int64_t at, int length, int size) {
        const auto begin = std::clamp<std::int64_t>(-at, 0, length);
        return {static_cast<int>(begin), static_cast<int>(std::clamp<std::int64_t>(size - at, begin, length))};
    }
};

/// What lies in the image of a rectangle of w x h pixels at (x, y), in coordinates of the rectangle.
XCRect insideOf(const PixelView& view, int x, int y, int w, int h) {
    const Part across = Part::inside(x, w, view.width), down = Part::inside(y, h, view.height);
    return XCRect(across.begin, down.begin, across.end, down.end);
}

template <class Format>
PixelGrid gridAt(const PixelView& view, std::int64_t x, std::int64_t y) {
    constexpr bool isPacked = Format::cnBits < 8;
    std::uint8_t* const row = view.row(static_cast<int>(y));
    return {isPacked ? row : row + x * Format::cnBits / 8, view.rowBytes, isPacked ? static_cast<int>(x) : 0};
}

/// A rectangle that becomes one at (x, y) of another image.
struct TurnedRect {
    int sx, sy, w, h;
    int x, y;
    Orientation orientation;
};

/// Both images have one depth.
void turnPixels(const PixelView& view, const PixelView& source, const TurnedRect& rect) {
    const Orientation back = rect.orientation.inverse();
    const int width = rect.orientation.isTransposed ? rect.h : rect.w;
    const int height = rect.orientation.isTransposed ? rect.w : rect.h;
    // What is seen of the destination, and comes from the source.
    XCRect area = rect.orientation.turned(insideOf(source, rect.sx, rect.sy, rect.w, rect.h), rect.w, rect.h);
    if (!area.IntersectRect(area, insideOf(view, rect.x, rect.y, width, height)))
        return;
    ovw::vimage::withFormat(view.depth, [&]<class Format>() {
        for (int top = area.top; top < area.bottom; top += cnTile)
            for (int left = area.left; left < area.right; left += cnTile) {
                const XCRect tile(left, top, std::min(left + cnTile, area.right), std::min(top + cnTile, area.bottom));
                const XCRect from = back.turned(tile, width, height);
                turnRows<Format>(
                    gridAt<Format>(view, std::int64_t{rect.x} + left, std::int64_t{rect.y} + top),
                    gridAt<Format>(source, std::int64_t{rect.sx} + from.left, std::int64_t{rect.sy} + from.top),
                    from.Width(), from.Height(), rect.orientation);
            }
    });
}

/// The same for any depth of source: what differs is converted first.
void turnAny(const PixelView& view, XCOffscreen& original, const PixelView& source, const TurnedRect& rect) {
    if (view.depth == source.depth)
        return turnPixels(view, source, rect);
    XCOffscreen converted;
    converted.Create(source.width, source.height, view.depth, cnOpaqueWhite, 0);
    const ImageLock lock(&converted);
    converted.Copy(0, 0, source.width, source.height, &original, 0, 0);
    turnPixels(view, PixelView(converted), rect);
}

} // namespace

XCOffscreen* XCOffscreen::CreateFlipImage(int direction) {
    if (!m_image.IsValid())
        return nullptr;
    auto result = orNoMemory([] { return std::make_unique<XCOffscreen>(); });
    result->Create(m_info.width, m_info.height, m_info.bitCount, cnOpaqueWhite, 0);
    const ImageLock lock(result.get());
    result->FlipImage(*this, 0, 0, m_info.width, m_info.height, direction);
    return result.release();
}

void XCOffscreen::FlipImage(XCOffscreen& src, int x, int y, int w, int h, int direction) {
    const TurnedRect rect{x, y, w, h, x, y, mirror(direction)};
    if (!m_info.bits || w <= 0 || h <= 0)
        return;
    const SourceImage source(*this, &src);
    if (source.view().bits)
        turnAny(PixelView(*this), src, source.view(), rect);
}

void XCOffscreen::RotationImage(XCOffscreen& src, int sx, int sy, int w, int h, int angle, int x, int y) {
    const TurnedRect rect{sx, sy, w, h, x, y, clockwise(angle, false)};
    if (!m_info.bits || w <= 0 || h <= 0)
        return;
    const SourceImage source(*this, &src);
    if (source.view().bits)
        turnAny(PixelView(*this), src, source.view(), rect);
}

void XCOffscreen::CreateRotationImage(XCOffscreen& src, int angle, int flip) {
    const Orientation orientation = clockwise(angle, flip == 1);
    if (&src == this) {
        XCOffscreen copy(src);
        return CreateRotationImage(copy, angle, flip);
    }
    if (!src.m_image.IsValid())
        return Destroy();
    const int width = src.m_info.width, height = src.m_info.height;
    Create(orientation.isTransposed ? height : width, orientation.isTransposed ? width : height, src.m_info.bitCount,
           cnOpaqueWhite, 0);
    const ImageLock lock(this);
    const ImageLock sourceLock(&src);
    turnPixels(PixelView(*this), PixelView(src), {0, 0, width, height, 0, 0, orientation});
}
