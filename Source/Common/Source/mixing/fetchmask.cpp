#include "mixing/fetchmask.h"

#include "mixing/imageline.h"
#include "ovwcmn/xcvoffscreenlock.h"

#include <cstring>

namespace ovw::mixing {
namespace {

std::uint8_t readMask(XCVOffscreen& mask, std::int64_t x, std::int64_t y, bool asBits) {
    if (x < 0 || y < 0 || x >= mask.GetWidth() || y >= mask.GetHeight())
        return 0;
    mask.MoveCursor(static_cast<int>(x), static_cast<int>(y));
    return asBits || mask.GetDepth() == 1 ? mask.Get1BitColor() : mask.Get8BitColor();
}

void expandBits(std::uint8_t* values, int n, const std::uint8_t* row, int column) {
    for (int i = 0; i < n; ++i, ++column)
        values[i] = row[column >> 3] >> (7 - (column & 7)) & 1;
}

} // namespace

void fetchMask(std::uint8_t* values, int n, XCVOffscreen& mask, const MaskLine& line) {
    const XCVOffscreenEditLock onlyReads(&mask);
    const int depth = mask.GetDepth();
    if (line.step != 1 || (depth != 8 && depth != 1)) {
        for (int i = 0; i < n; ++i)
            values[i] = readMask(mask, line.firstX + std::int64_t{line.step} * i, line.y, line.asBits);
        return;
    }
    walkImageLine(mask, line.firstX, line.y, n, [=](int i, int count, const std::uint8_t* row, int column) {
        if (row == nullptr)
            std::memset(values + i, 0, count);
        else if (depth == 8)
            std::memcpy(values + i, row + column, count);
        else
            expandBits(values + i, count, row, column);
    });
    if (line.asBits && depth == 8) {
        for (int i = 0; i < n; ++i)
            values[i] = mask.IsMonoNotTrans(values[i]) != 0;
    }
}

} // namespace ovw::mixing
