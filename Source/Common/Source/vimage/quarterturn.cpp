#include "vimage/quarterturn.h"

#include "ovwcmn/xcvoffscreen.h"
#include "vimage/blockparts.h"
#include "vimage/largecopy.h"
#include "vimage/turnrows.h"
#include "vimage/withformat.h"

namespace ovw::vimage {

namespace {

/// A rectangle of a block's memory, its rows in order or upward.
template <class Format>
PixelGrid gridOf(std::uint8_t* base, const XCRect& part, bool isUpward) {
    constexpr int cnBytes = Format::cnBits / 8; // 0 where pixels are less than a byte
    const int x = part.left & cnBlockMask;
    std::uint8_t* const first = rowOf<Format>(base, isUpward ? part.bottom - 1 : part.top) + x * cnBytes;
    return {first, isUpward ? -cnRowBytes<Format> : cnRowBytes<Format>, cnBytes ? 0 : x};
}

/// One part of a block to the part of a block that it turns into.
template <class Format>
void turnPart(std::uint8_t* to, const XCRect& toPart, std::uint8_t* from, const XCRect& fromPart,
              const Orientation& orientation) {
    const PixelGrid target = gridOf<Format>(to, toPart, orientation.reversesY);
    if (orientation.isTransposed) {
        const PixelGrid source = gridOf<Format>(from, fromPart, orientation.reversesX);
        return transposePixels<Format>(target, source, fromPart.Width(), fromPart.Height(), false);
    }
    const PixelGrid source = gridOf<Format>(from, fromPart, false);
    for (int y = 0; y < fromPart.Height(); ++y)
        if (orientation.reversesX)
            reverseRow<Format>(target.row(y), target.x, source.row(y), source.x, fromPart.Width());
        else
            Format::copyRow(target.row(y), target.x, source.row(y), source.x, fromPart.Width());
}

/// The same for whole blocks, of which there are many.
template <class Format>
void turnBlock(std::uint8_t* to, std::uint8_t* from, const Orientation& orientation, const LargeCopy& copy) {
    const XCRect whole(0, 0, cnBlockSize, cnBlockSize);
    const PixelGrid target = gridOf<Format>(to, whole, orientation.reversesY);
    if (orientation.isTransposed) {
        const PixelGrid source = gridOf<Format>(from, whole, orientation.reversesX);
        return transposePixels<Format>(target, source, cnBlockSize, cnBlockSize, copy.isStreamed());
    }
    std::uint8_t reversed[cnRowBytes<Format>];
    for (int y = 0; y < cnBlockSize; ++y) {
        const std::uint8_t* row = rowOf<Format>(from, y);
        if (orientation.reversesX) {
            reverseRow<Format>(reversed, 0, row, 0, cnBlockSize);
            row = reversed;
        }
        copy.copy(target.row(y), row, cnRowBytes<Format>);
    }
}

/// Where a rectangle of an image of width x height pixels goes.
XCRect turned(const XCRect& rect, int width, int height, const Orientation& orientation) {
    XCRect result = orientation.isTransposed ? XCRect(rect.top, rect.left, rect.bottom, rect.right) : rect;
    if (orientation.isTransposed)
        std::swap(width, height);
    if (orientation.reversesX)
        result = XCRect(width - result.right, result.top, width - result.left, result.bottom);
    if (orientation.reversesY)
        result = XCRect(result.left, height - result.bottom, result.right, height - result.top);
    return result;
}

/// The orientation that leads back.
Orientation inverseOf(const Orientation& orientation) {
    if (!orientation.isTransposed)
        return orientation;
    return {true, orientation.reversesY, orientation.reversesX};
}

template <class Format>
void turnBlockPart(const PlacedImage& to, const XCRect& toPart, std::uint8_t* from, const XCRect& fromPart,
                   const Orientation& orientation, const LargeCopy& copy) {
    if (toPart.Width() == cnBlockSize && toPart.Height() == cnBlockSize)
        turnBlock<Format>(to.enterToOverwrite(toPart), from, orientation, copy);
    else
        turnPart<Format>(to.enter(toPart), toPart, from, fromPart, orientation);
}

} // namespace

Orientation Orientation::of(int angle, bool flipX, bool flipY) {
    constexpr int cnHalfTurn = 180, cnQuarter = 90;
    const bool isTransposed = angle % cnHalfTurn != 0;
    const bool reversesX = angle == cnQuarter || angle == cnHalfTurn;
    const bool reversesY = angle == cnHalfTurn || angle == cnHalfTurn + cnQuarter;
    return {isTransposed, reversesX != flipX, reversesY != flipY};
}

void turnBlocks(XCVOffscreen& destination, XCVOffscreen& source, const Orientation& orientation) {
    const PlacedImage to(destination), from(source);
    const int width = source.GetHBlockCount() * cnBlockSize, height = source.GetVBlockCount() * cnBlockSize;
    const LargeCopy copy(destination, width, height);
    withFormat(source.GetDepth(), [&]<class Format>() {
        for (int index = 0; index < source.GetBlockCount(nullptr, nullptr); ++index) {
            const XCRect block = source.GetBlockRect(index);
            if (std::uint8_t* const pixels = from.enter(block))
                turnBlockPart<Format>(to, turned(block, width, height, orientation), pixels, block, orientation, copy);
        }
    });
}

void turnPixels(XCVOffscreen& destination, XCVOffscreen& source, const Orientation& orientation) {
    const PlacedImage to(destination);
    const Orientation back = inverseOf(orientation);
    const LargeCopy copy(destination, source.GetWidth(), source.GetHeight());
    withFormat(source.GetDepth(), [&]<class Format>() {
        forEachPart(source, source.GetRect(), [&](std::uint8_t* pixels, const XCRect& part) {
            to.forEachBlock(
                turned(part, source.GetWidth(), source.GetHeight(), orientation), [&](const XCRect& toPart) {
                    const XCRect fromPart = turned(toPart, destination.GetWidth(), destination.GetHeight(), back);
                    turnBlockPart<Format>(to, toPart, pixels, fromPart, orientation, copy);
                });
        });
    });
}

} // namespace ovw::vimage
