#include "offscreen/pixelrows.h"

#include <algorithm>
#include <cstring>

namespace ovw::offscreen {

namespace {

constexpr int cnPiece = 256; // pixels that are converted together

template <class Format>
void copyRow(std::uint8_t* to, int x, const std::uint8_t* from, int sx, int count) {
    if constexpr (cnHasBytes<Format>)
        std::memmove(to + static_cast<std::ptrdiff_t>(x) * Format::cnBytes,
                     from + static_cast<std::ptrdiff_t>(sx) * Format::cnBytes,
                     static_cast<std::size_t>(count) * Format::cnBytes);
    else
        Format::copyRow(to, x, from, sx, count);
}

template <class Format>
std::uint8_t eightPixels(const std::uint32_t* colours) {
    int bits = 0;
    for (int i = 0; i < 8; ++i)
        bits = bits << 1 | Format::write24(colours[i]);
    return byteOf(bits);
}

} // namespace

void readRow24(std::uint32_t* colours, int depth, const std::uint8_t* row, int x, int count) {
    withFormat(depth, [&]<class Format>() {
        for (int i = 0; i < count; ++i)
            colours[i] = Format::read24(loadPixel<Format>(row, x + i));
    });
}

void writeRow24(const std::uint32_t* colours, int depth, std::uint8_t* row, int x, int count) {
    withFormat(depth, [&]<class Format>() {
        int i = 0;
        if constexpr (!cnHasBytes<Format>) {
            for (; i < count && (x + i) % 8 != 0; ++i)
                storePixel<Format>(row, x + i, Format::write24(colours[i]));
            for (; i + 8 <= count; i += 8)
                row[(x + i) >> 3] = eightPixels<Format>(colours + i);
        }
        for (; i < count; ++i)
            storePixel<Format>(row, x + i, Format::write24(colours[i]));
    });
}

void convertRow(int depth, std::uint8_t* to, int x, int sourceDepth, const std::uint8_t* from, int sx, int count) {
    if (depth == sourceDepth)
        return withFormat(depth, [&]<class Format>() { copyRow<Format>(to, x, from, sx, count); });
    std::uint32_t colours[cnPiece];
    for (int done = 0; done < count; done += cnPiece) {
        const int piece = std::min(cnPiece, count - done);
        readRow24(colours, sourceDepth, from, sx + done, piece);
        writeRow24(colours, depth, to, x + done, piece);
    }
}

} // namespace ovw::offscreen
