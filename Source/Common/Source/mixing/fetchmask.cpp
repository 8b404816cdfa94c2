#include "mixing/fetchmask.h"

#include "ovwcmn/xcvoffscreen.h"

#include <algorithm>
#include <cstring>

namespace ovw::mixing {
namespace {

std::uint8_t readMask(XCVOffscreen& mask, std::int64_t x, std::int64_t y) {
    if (x < 0 || y < 0 || x >= mask.GetWidth() || y >= mask.GetHeight())
        return 0;
    mask.MoveCursor(static_cast<int>(x), static_cast<int>(y));
    return mask.GetDepth() == 1 ? mask.Get1BitColor() : mask.Get8BitColor();
}

void expandBits(std::uint8_t* values, int n, const std::uint8_t* row, int column) {
    for (int i = 0; i < n; ++i, ++column)
        values[i] = row[column >> 3] >> (7 - (column & 7)) & 1;
}

/// Reads n neighbours of one row of the image, a block at a time.
void fetchRun(std::uint8_t* values, int n, XCVOffscreen& mask, int x, int y) {
    while (n > 0) {
        mask.MoveCursor(x, y);
        const int column = x & (XCVOffscreen::cnBlockSize - 1);
        const int count = std::min(n, XCVOffscreen::cnBlockSize - column);
        const std::uint8_t* base = mask.GetBaseAddress();
        const std::ptrdiff_t row = std::ptrdiff_t{y & (XCVOffscreen::cnBlockSize - 1)} * mask.GetBlockRowBytes();
        if (base == nullptr)
            std::memset(values, 0, count);
        else if (mask.GetDepth() == 8)
            std::memcpy(values, base + row + column, count);
        else
            expandBits(values, count, base + row, column);
        values += count;
        x += count;
        n -= count;
    }
}

} // namespace

void fetchMask(std::uint8_t* values, int n, XCVOffscreen& mask, const MaskLine& line) {
    const bool isPlain = mask.GetDepth() == 8 || mask.GetDepth() == 1;
    if (line.step != 1 || !isPlain) {
        for (int i = 0; i < n; ++i)
            values[i] = readMask(mask, line.firstX + std::int64_t{line.step} * i, line.y);
        return;
    }
    // The part of the line inside the image; the rest reads 0.
    const std::int64_t begin = std::clamp<std::int64_t>(-line.firstX, 0, n);
    const std::int64_t end = std::clamp<std::int64_t>(mask.GetWidth() - line.firstX, 0, n);
    if (begin >= end || line.y < 0 || line.y >= mask.GetHeight()) {
        std::memset(values, 0, n);
        return;
    }
    std::memset(values, 0, begin);
    fetchRun(values + begin, static_cast<int>(end - begin), mask, static_cast<int>(line.firstX + begin),
             static_cast<int>(line.y));
    std::memset(values + end, 0, n - end);
}

} // namespace ovw::mixing
