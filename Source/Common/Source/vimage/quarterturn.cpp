#include "vimage/quarterturn.h"

#include "ovwcmn/xcvoffscreen.h"
#include "vimage/blockparts.h"
#include "vimage/largecopy.h"
#include "vimage/turnrows.h"
#include "vimage/withformat.h"

#include <utility>

namespace ovw::vimage {

namespace {

/// A rectangle of a block's memory.
template <class Format>
PixelGrid gridOf(std::uint8_t* base, const XCRect& part) {
    constexpr int cnBytes = Format::cnBits / 8; // 0 where pixels are less than a byte
    const int x = part.left & cnBlockMask;
    return {rowOf<Format>(base, part.top) + x * cnBytes, cnRowBytes<Format>, cnBytes ? 0 : x};
}

/// Whole blocks, of which there are many.
template <class Format>
void turnBlock(std::uint8_t* to, std::uint8_t* from, const Orientation& orientation, const LargeCopy& copy) {
    const XCRect whole(0, 0, cnBlockSize, cnBlockSize);
    const PixelGrid block = gridOf<Format>(to, whole);
    const PixelGrid target = orientation.reversesY ? block.upward(cnBlockSize) : block;
    if (orientation.isTransposed) {
        const PixelGrid source = gridOf<Format>(from, whole);
        return transposePixels<Format>(target, orientation.reversesX ? source.upward(cnBlockSize) : source, cnBlockSize,
                                       cnBlockSize, copy.isStreamed());
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

template <class Format>
void turnBlockPart(const PlacedImage& to, const XCRect& toPart, std::uint8_t* from, const XCRect& fromPart,
                   const Orientation& orientation, const LargeCopy& copy) {
    const bool isWhole = toPart.Width() == cnBlockSize && toPart.Height() == cnBlockSize;
    std::uint8_t* const base = isWhole ? to.enterToOverwrite(toPart) : to.enter(toPart);
    if (isWhole)
        turnBlock<Format>(base, from, orientation, copy);
    else
        turnRows<Format>(gridOf<Format>(base, toPart), gridOf<Format>(from, fromPart), fromPart.Width(),
                         fromPart.Height(), orientation);
    for (int y = toPart.top; y < toPart.bottom; ++y)
        settleRow<Format>(rowOf<Format>(base, y), toPart.left & cnBlockMask, toPart.Width());
}

} // namespace

Orientation Orientation::of(int angle, bool flipX, bool flipY) {
    constexpr int cnHalfTurn = 180, cnQuarter = 90;
    const bool isTransposed = angle % cnHalfTurn != 0;
    const bool reversesX = angle == cnQuarter || angle == cnHalfTurn;
    const bool reversesY = angle == cnHalfTurn || angle == cnHalfTurn + cnQuarter;
    return {isTransposed, reversesX != flipX, reversesY != flipY};
}

XCRect Orientation::turned(const XCRect& rect, int width, int height) const {
    XCRect result = isTransposed ? XCRect(rect.top, rect.left, rect.bottom, rect.right) : rect;
    if (isTransposed)
        std::swap(width, height);
    if (reversesX)
        result = XCRect(width - result.right, result.top, width - result.left, result.bottom);
    if (reversesY)
        result = XCRect(result.left, height - result.bottom, result.right, height - result.top);
    return result;
}

Orientation Orientation::inverse() const { return isTransposed ? Orientation{true, reversesY, reversesX} : *this; }

void turnBlocks(XCVOffscreen& destination, XCVOffscreen& source, const Orientation& orientation) {
    const PlacedImage to(destination), from(source);
    const int width = source.GetHBlockCount() * cnBlockSize, height = source.GetVBlockCount() * cnBlockSize;
    const LargeCopy copy(destination, width, height);
    withFormat(source.GetDepth(), [&]<class Format>() {
        for (int index = 0; index < source.GetBlockCount(nullptr, nullptr); ++index) {
            const XCRect block = source.GetBlockRect(index);
            if (std::uint8_t* const pixels = from.enter(block))
                turnBlockPart<Format>(to, orientation.turned(block, width, height), pixels, block, orientation, copy);
        }
    });
}

void turnPixels(XCVOffscreen& destination, XCVOffscreen& source, const Orientation& orientation) {
    const PlacedImage to(destination);
    const Orientation back = orientation.inverse();
    const LargeCopy copy(destination, source.GetWidth(), source.GetHeight());
    withFormat(source.GetDepth(), [&]<class Format>() {
        forEachPart(source, source.GetRect(), [&](std::uint8_t* pixels, const XCRect& part) {
            to.forEachBlock(orientation.turned(part, source.GetWidth(), source.GetHeight()), [&](const XCRect& toPart) {
                const XCRect fromPart = back.turned(toPart, destination.GetWidth(), destination.GetHeight());
                turnBlockPart<Format>(to, toPart, pixels, fromPart, orientation, copy);
            });
        });
    });
}

} // namespace ovw::vimage
