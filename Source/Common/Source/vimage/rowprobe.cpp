#include "vimage/rowprobe.h"

#include "ovwcmn/xcvoffscreen.h"
#include "ovwcmn/xcvoffscreenlock.h"
#include "vimage/blockparts.h"
#include "vimage/numbers.h"
#include "vimage/pixelformats.h"

#include <algorithm>

namespace ovw::vimage {

namespace {

constexpr int cnNone = 0;
constexpr int cnAll = 1;
constexpr int cnMixed = -1;
constexpr int cnFullByte = 0xFF;

/// What a run of bytes of a 1-bit row holds; byte indexes count from the image's left edge.
struct BytesFound {
    int first = -1; // the first and last byte that are not 0; -1 without one
    int last = -1;
    int full = 0; // bytes of eight ink pixels

    void add(int index, int byte) {
        if (byte == 0)
            return;
        if (first < 0)
            first = index;
        last = index;
        full += byte == cnFullByte;
    }
};

/// Blocks that are missing hold no ink. Whole bytes are read, also where the image ends inside one.
BytesFound findBytes(XCVOffscreen& image, int y, int firstByte, int lastByte) {
    BytesFound found;
    const XCRect pixels(std::max(firstByte, 0) * 8, y, endOf(std::min(lastByte, image.GetWidth() / 8) * 8, 8),
                        endOf(y, 1));
    forEachPart(image, pixels, [&](std::uint8_t* base, const XCRect& part) {
        const std::uint8_t* const row = rowOf<Bit1>(base, y);
        for (int byte = part.left / 8; byte <= (part.right - 1) / 8; ++byte)
            found.add(byte, row[byte * 8 % cnBlockSize / 8]);
    });
    return found;
}

} // namespace

int probeBits(XCVOffscreen& image, int y, int& x1, int& x2) {
    if (x1 > x2)
        return cnNone;
    const XCVOffscreenAutoLock lock(&image, 0);
    const XCVOffscreenEditLock noNewBlocks(&image);
    const int firstByte = x1 >> 3;
    const int lastByte = x2 >> 3;
    const BytesFound found = findBytes(image, y, firstByte, lastByte);
    if (found.first < 0)
        return cnNone;
    if (found.first == firstByte)
        return found.full == lastByte - firstByte + 1 ? cnAll : cnMixed;
    x1 = found.first * 8;
    x2 = std::min(x2, endOf(found.last * 8, 8));
    return cnMixed;
}

int probeDensities(XCVOffscreen& image, int y, int& x1, int& x2) {
    const int index = image.GetBlockIndex(x1, y);
    if (index < 0 || image.GetBlockIndex(x2, y) != index)
        return cnMixed;
    const XCVOffscreenAutoLock lock(&image, 0);
    const XCVOffscreenEditLock noNewBlocks(&image);
    image.MoveCursor(x1, y);
    if (!image.GetBaseAddress())
        return cnNone;
    const std::uint8_t* const row = rowOf<Density8>(image.GetBaseAddress(), y);
    const auto isInk = [&](int x) { return image.IsMonoNotTrans(row[x & cnBlockMask]) != 0; };
    const bool startsWithInk = isInk(x1);
    for (int x = x1; x <= x2; ++x)
        if (isInk(x) != startsWithInk) {
            if (!startsWithInk)
                x1 = x;
            return cnMixed;
        }
    return startsWithInk && x1 <= x2 ? cnAll : cnNone;
}

} // namespace ovw::vimage
