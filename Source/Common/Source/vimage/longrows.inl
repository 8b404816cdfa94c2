// Long rows: patterns repeated, and bits moved to other places of their bytes.

#include "vimage/rowkernels.h"

#include <algorithm>
#include <cstring>

namespace ovw::vimage {
namespace {

void fillRepeated(std::uint8_t* to, std::size_t bytes, const std::uint8_t* pattern) {
    using Line [[gnu::vector_size(cnCacheLine), gnu::may_alias]] = std::uint8_t;
    constexpr std::size_t cnLines = cnPatternBytes / sizeof(Line);
    // Whole lines of the cache lie at multiples of their size; the pattern goes on from where these begin.
    const std::size_t begin = std::min(bytes, -reinterpret_cast<std::uintptr_t>(to) % sizeof(Line));
    std::memcpy(to, pattern, begin);
    Line lines[cnLines];
    std::memcpy(lines, pattern + begin, sizeof lines);
    std::size_t done = begin;
    for (; done + sizeof lines <= bytes; done += sizeof lines)
        for (std::size_t i = 0; i < cnLines; ++i)
            *reinterpret_cast<Line*>(to + done + i * sizeof(Line)) = lines[i];
    std::memcpy(to + done, pattern + begin, bytes - done);
}

void shiftBits(std::uint8_t* to, const std::uint8_t* from, std::size_t bytes, int shift) {
    using Numbers [[gnu::vector_size(cnCacheLine)]] = std::uint64_t;
    // The words' bytes are shifted together; what comes from the byte beside is cut off.
    constexpr std::uint64_t cnEachByte = 0x0101010101010101;
    const std::uint64_t high = (0xFF << shift & 0xFF) * cnEachByte, low = (0xFF >> (8 - shift)) * cnEachByte;
    const auto move = [=](std::size_t i) {
        Numbers here, next;
        std::memcpy(&here, from + i, sizeof here);
        std::memcpy(&next, from + i + 1, sizeof next);
        here = (here << shift & high) | (next >> (8 - shift) & low);
        std::memcpy(to + i, &here, sizeof here);
    };
    std::size_t i = 0;
    for (; i + sizeof(Numbers) <= bytes; i += sizeof(Numbers))
        move(i);
    if (i < bytes && bytes > sizeof(Numbers)) {
        move(bytes - sizeof(Numbers)); // some bytes again
        return;
    }
    for (; i < bytes; ++i)
        to[i] = static_cast<std::uint8_t>((from[i] << 8 | from[i + 1]) >> (8 - shift));
}

} // namespace
} // namespace ovw::vimage
