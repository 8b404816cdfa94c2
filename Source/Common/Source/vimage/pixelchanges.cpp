#include "vimage/pixelchanges.h"

#include "ovwcmn/xcvoffscreen.h"
#include "ovwcmn/xcvoffscreenlock.h"
#include "vimage/blockparts.h"
#include "vimage/withformat.h"

namespace ovw::vimage {

namespace {

template <class Format, class Action>
void forEachRow(std::uint8_t* base, const XCRect& part, Action action) {
    for (int y = part.top; y < part.bottom; ++y)
        action(rowOf<Format>(base, y), part.left & cnBlockMask, part.Width());
}

/// Replaces the pixels for which isChanged holds by change(pixel). Only blocks that have one are locked for editing.
template <class Format, class Test, class Change>
void changePixels(XCVOffscreen& image, Test isChanged, Change change) {
    using Value = typename Format::Value;
    const XCVOffscreenAutoLock readLock(&image, 0);
    const XCVOffscreenEditLock unedited(&image);
    forEachPart(image, image.GetRect(), [&](std::uint8_t* base, const XCRect& part) {
        bool changesAny = false;
        forEachRow<Format>(base, part, [&](const std::uint8_t* row, int x, int count) {
            Format::visitRow(row, x, count, [&](Value v) { changesAny |= isChanged(v); });
        });
        if (!changesAny)
            return;
        const XCVOffscreenAutoLock editLock(&image, part.left, part.top, 1);
        forEachRow<Format>(image.GetBaseAddress(), part, [&](std::uint8_t* row, int x, int count) {
            Format::changeRow(row, x, count, [&](Value v) { return isChanged(v) ? change(v) : v; });
        });
    });
}

bool isSameRgb(std::uint32_t a, std::uint32_t b) { return ((a ^ b) & cnRgbMask) == 0; }

} // namespace

void clearAlpha(XCVOffscreen& image, std::uint32_t colour) {
    if (image.GetDepth() != Rgba32::cnBits)
        return;
    const auto isChanged = [=](BgraPixel v) { return v.alpha != 0 && isSameRgb(Rgba32::colourOf(v), colour); };
    changePixels<Rgba32>(image, isChanged, [](BgraPixel v) {
        v.alpha = 0;
        return v;
    });
}

void replaceColour(XCVOffscreen& image, std::uint32_t newColour, std::uint32_t oldColour) {
    if (image.GetDepth() == Rgba32::cnBits) {
        const std::uint32_t compared = alphaOf(oldColour) == 0 ? ~cnRgbMask : ~std::uint32_t{0};
        const auto isChanged = [=](BgraPixel v) {
            const std::uint32_t colour = Rgba32::colourOf(v);
            return ((colour ^ oldColour) & compared) == 0 && colour != newColour;
        };
        changePixels<Rgba32>(image, isChanged, [=](BgraPixel) { return Rgba32::ofColour(newColour); });
    } else if (image.GetDepth() == Rgb24::cnBits && !isSameRgb(oldColour, newColour)) {
        const auto isChanged = [=](BgrPixel v) { return isSameRgb(Rgb24::rgbOf(v), oldColour); };
        changePixels<Rgb24>(image, isChanged, [=](BgrPixel) { return Rgb24::ofRgb(newColour); });
    }
}

/// Pixels beyond the image change too: nothing reads them.
void reverseDensities(XCVOffscreen& image) {
    const XCVOffscreenAutoLock lock(&image, 1);
    const int count = image.GetBlockCount(nullptr, nullptr);
    for (int index = 0; index < count; ++index) {
        if (!image.GetBlockExist(index))
            continue;
        const XCRect block = image.GetBlockRect(index);
        image.MoveCursor(block.left, block.top);
        Density8::changeRow(image.GetBaseAddress(), 0, cnBlockSize * cnBlockSize,
                            [](std::uint8_t d) { return byteOf(cnByteMax - d); });
    }
}

} // namespace ovw::vimage
