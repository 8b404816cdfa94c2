#ifndef OVW_MIXING_IMAGELINE_H
#define OVW_MIXING_IMAGELINE_H

#include "ovwcmn/xcvoffscreen.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace ovw::mixing {

/// Walks n neighbours of row y from x on, which may lie anywhere, a block at a time. read(i, count, row, column) gets
/// pixels i to i + count - 1: the block's row in memory and the column in it, or a null row where there are no pixels.
/// Moves the image's cursor.
template <class Read>
void walkImageLine(XCVOffscreen& image, std::int64_t x, std::int64_t y, int n, Read read) {
    constexpr int cnMask = XCVOffscreen::cnBlockSize - 1;
    const int begin = static_cast<int>(std::clamp<std::int64_t>(-x, 0, n));
    const int end = static_cast<int>(std::clamp<std::int64_t>(image.GetWidth() - x, 0, n));
    if (begin >= end || y < 0 || y >= image.GetHeight())
        return read(0, n, nullptr, 0);
    if (begin > 0)
        read(0, begin, nullptr, 0);
    for (int i = begin; i < end;) {
        const int pixelX = static_cast<int>(x + i);
        const int count = std::min(end - i, XCVOffscreen::cnBlockSize - (pixelX & cnMask));
        image.MoveCursor(pixelX, static_cast<int>(y));
        const std::uint8_t* base = image.GetBaseAddress();
        const std::ptrdiff_t offset = static_cast<std::ptrdiff_t>(y & cnMask) * image.GetBlockRowBytes();
        read(i, count, base ? base + offset : nullptr, pixelX & cnMask);
        i += count;
    }
    if (end < n)
        read(end, n - end, nullptr, 0);
}

} // namespace ovw::mixing

#endif // OVW_MIXING_IMAGELINE_H
