// The ordered dither by pixel position.

#include "ovwcmn/xcvoffscreen.h"
#include "vimage/dithertable.h"
#include "vimage/pixelcolour.h"

#include <algorithm>

using namespace ovw::vimage;

const std::uint8_t* XCVOffscreen::GetDitherTable256() { return cnDitherMatrix.data(); }

int XCVOffscreen::GetDitherValue255(int level, int x, int y) {
    if (level <= 0 || level >= cnByteMax)
        return level > 0;
    return ditherThreshold(x, y) <= level;
}

namespace {

constexpr int cnFineSize = 4;
constexpr int cnFineLevels = 16;
constexpr int cnFineMask = cnFineSize - 1;

/// Level n has n pixels on; rows from top to bottom.
constexpr const char* cnFinePatterns[cnFineLevels + 1] = {
    "0000"
    "0000"
    "0000"
    "0000",
    "1000"
    "0000"
    "0000"
    "0000",
    "1000"
    "0000"
    "0010"
    "0000",
    "1010"
    "0000"
    "0010"
    "0000",
    "1010"
    "0000"
    "1010"
    "0000",
    "1010"
    "0100"
    "1010"
    "0000",
    "1010"
    "0100"
    "1010"
    "0001",
    "1010"
    "0101"
    "1010"
    "0001",
    "1010"
    "0101"
    "1010"
    "0101",
    "1110"
    "0101"
    "1010"
    "0101",
    "1110"
    "0101"
    "1011"
    "0101",
    "1111"
    "0101"
    "1011"
    "0101",
    "1111"
    "0101"
    "1111"
    "0101",
    "1111"
    "1101"
    "1111"
    "0101",
    "1111"
    "1101"
    "1111"
    "0111",
    "1111"
    "1111"
    "1111"
    "0111",
    "1111"
    "1111"
    "1111"
    "1111",
};

/// For cells of 4 x 4 pixels, one pattern for 16 levels: 1 on, 2 off, 0 as the fine pattern of the rest has it.
constexpr const char* cnCoarsePatterns[cnFineLevels] = {
    "0222"
    "2222"
    "2222"
    "2222",
    "1222"
    "2222"
    "2202"
    "2222",
    "1202"
    "2222"
    "2212"
    "2222",
    "1212"
    "2222"
    "0212"
    "2222",
    "1212"
    "2022"
    "1212"
    "2222",
    "1212"
    "2122"
    "1212"
    "2220",
    "1212"
    "2120"
    "1212"
    "2221",
    "1212"
    "2121"
    "1212"
    "2021",
    "1012"
    "2121"
    "1212"
    "2121",
    "1112"
    "2121"
    "1210"
    "2121",
    "1110"
    "2121"
    "1211"
    "2121",
    "1111"
    "2121"
    "1011"
    "2121",
    "1111"
    "0121"
    "1111"
    "2121",
    "1111"
    "1121"
    "1111"
    "2101",
    "1111"
    "1101"
    "1111"
    "2111",
    "1111"
    "1111"
    "1111"
    "0111",
};

constexpr char patternAt(const char* pattern, int row, int column) {
    return pattern[(row & cnFineMask) * cnFineSize + (column & cnFineMask)];
}

} // namespace

int XCVOffscreen::GetDitherValue16(int level, int x, int y) {
    return patternAt(cnFinePatterns[std::clamp(level, 0, cnFineLevels)], y, x) == '1';
}

int XCVOffscreen::GetDitherValue(int level) const {
    // Both patterns take x as the row.
    const int clamped = std::clamp(level, 0, cnByteMax);
    const char coarse = patternAt(cnCoarsePatterns[clamped / cnFineLevels], m_cursor.x >> 2, m_cursor.y >> 2);
    if (coarse != '0')
        return coarse == '1';
    return patternAt(cnFinePatterns[clamped % cnFineLevels], m_cursor.x, m_cursor.y) == '1';
}
