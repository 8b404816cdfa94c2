#include "offscreen/pixelrows.h"

#include <algorithm>
#include <cstring>

namespace ovw::offscreen {

namespace {

constexpr int cnPiece = 256; // pixels that are converted together

/// Eight pixels of a packed row from pixel x on; those behind `end` count as 0.
std::uint8_t eightBits(const std::uint8_t* row, int x, int end) {
    const std::uint8_t* const byte = row + (x >> 3);
    const int shift = x & 7;
    int bits = byte[0] << shift;
    if (shift && x + 8 - shift < end)
        bits |= byte[1] >> (8 - shift);
    return static_cast<std::uint8_t>(bits);
}

std::uint64_t loadBigEndian(const std::uint8_t* bytes) {
    std::uint64_t word = 0;
    for (int i = 0; i < 8; ++i) // compilers make one load of it
        word = word << 8 | bytes[i];
    return word;
}

void storeBigEndian(std::uint8_t* bytes, std::uint64_t word) {
    for (int i = 7; i >= 0; --i, word >>= 8)
        bytes[i] = static_cast<std::uint8_t>(word);
}

} // namespace

template <class Format>
void copyRow(std::uint8_t* to, int x, const std::uint8_t* from, int sx, int count) {
    std::memmove(to + static_cast<std::ptrdiff_t>(x) * Format::cnBytes,
                 from + static_cast<std::ptrdiff_t>(sx) * Format::cnBytes,
                 static_cast<std::size_t>(count) * Format::cnBytes);
}

template <>
void copyRow<Ink1>(std::uint8_t* to, int x, const std::uint8_t* from, int sx, int count) {
    const int end = sx + count;
    // Single pixels up to the first whole byte of the destination, then whole bytes.
    while (count > 0 && (x & 7)) {
        storePixel<Ink1>(to, x++, loadPixel<Ink1>(from, sx++));
        --count;
    }
    if ((sx & 7) == 0) {
        std::memcpy(to + (x >> 3), from + (sx >> 3), static_cast<std::size_t>(count >> 3));
        x += count & ~7, sx += count & ~7, count &= 7;
    }
    // 64 pixels that lie in 9 bytes.
    for (const int shift = sx & 7; count >= 72; x += 64, sx += 64, count -= 64) {
        const std::uint8_t* const bytes = from + (sx >> 3);
        storeBigEndian(to + (x >> 3), loadBigEndian(bytes) << shift | bytes[8] >> (8 - shift));
    }
    for (; count >= 8; x += 8, sx += 8, count -= 8)
        to[x >> 3] = eightBits(from, sx, end);
    while (count-- > 0)
        storePixel<Ink1>(to, x++, loadPixel<Ink1>(from, sx++));
}

template void copyRow<Density8>(std::uint8_t*, int, const std::uint8_t*, int, int);
template void copyRow<Rgb24>(std::uint8_t*, int, const std::uint8_t*, int, int);
template void copyRow<Argb32>(std::uint8_t*, int, const std::uint8_t*, int, int);

void readRow24(std::uint32_t* colours, int depth, const std::uint8_t* row, int x, int count) {
    withFormat(depth, [&]<class Format>() {
        for (int i = 0; i < count; ++i)
            colours[i] = Format::read24(loadPixel<Format>(row, x + i));
    });
}

void writeRow24(const std::uint32_t* colours, int depth, std::uint8_t* row, int x, int count) {
    withFormat(depth, [&]<class Format>() {
        for (int i = 0; i < count; ++i)
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
