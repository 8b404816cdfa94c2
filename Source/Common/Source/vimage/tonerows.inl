// Luminances and tones: loops over plain arrays, for the compiler to vectorise.

#include "vimage/rowkernels.h"

#include <bit>
#include <cstring>

namespace ovw::vimage {
namespace {

constexpr int cnWeights = 7;
constexpr int cnLargestSum = cnWeights * cnByteMax;
constexpr int cnShift = 16;
constexpr std::uint32_t cnReciprocal = (1u << cnShift) / cnWeights + 1;

/// sum / 7, as the high half of a 16-bit product.
constexpr std::uint16_t seventh(std::uint16_t sum) { return static_cast<std::uint16_t>(sum * cnReciprocal >> cnShift); }

constexpr bool isSeventhExact() {
    for (int sum = 0; sum <= cnLargestSum; ++sum)
        if (seventh(static_cast<std::uint16_t>(sum)) != sum / cnWeights)
            return false;
    return true;
}
static_assert(isSeventhExact());

template <class Format>
void luminances(const std::uint8_t* pixels, int count, std::uint8_t flip, std::uint8_t* luminances) {
    std::uint16_t sums[cnBlockSize];
    for (int i = 0; i < count; ++i) {
        const std::uint8_t* const p = pixels + i * Format::cnBytes;
        sums[i] = static_cast<std::uint16_t>(2 * p[0] + 4 * p[1] + p[2]);
    }
    for (int i = 0; i < count; ++i)
        luminances[i] = static_cast<std::uint8_t>(seventh(sums[i]) ^ flip);
}

void alphas32(const std::uint8_t* pixels, int count, std::uint8_t* alphas) {
    for (int i = 0; i < count; ++i)
        alphas[i] = pixels[i * Rgba32::cnBytes + 3];
}

void tones(const std::uint8_t* coverages, const std::uint8_t* darknesses, const std::uint8_t* thresholds, int count,
           bool onlyOpaque, const FourTones& tones, std::uint8_t* result) {
    // The tone as a polynomial of its two bits over exclusive or, without a branch or a table a pixel.
    const auto& of = tones.of;
    const std::uint8_t neither = of[0];
    const std::uint8_t byDark = onlyOpaque ? 0 : of[0] ^ of[1];
    const std::uint8_t byOpaque = of[0] ^ of[2];
    const std::uint8_t byBoth = of[3] ^ of[2] ^ byDark;
    for (int i = 0; i < count; ++i) {
        const auto opaque = static_cast<std::uint8_t>(-(coverages[i] >= thresholds[i]));
        const auto dark = static_cast<std::uint8_t>(-(darknesses[i] >= thresholds[i]));
        result[i] =
            static_cast<std::uint8_t>(neither ^ (dark & byDark) ^ (opaque & byOpaque) ^ (opaque & dark & byBoth));
    }
}

void packInk(const std::uint8_t* tones, int count, std::uint8_t* bits) {
    constexpr std::uint64_t cnHighBits = 0x0202020202020202; // of a tone
    constexpr std::uint64_t cnGather = 0x8040201008040201;   // pixel i to bit 7 - i of the highest byte
    for (int i = 0; i < count; ++i) {
        std::uint64_t pixels;
        std::memcpy(&pixels, tones + 8 * i, sizeof pixels);
        if constexpr (std::endian::native == std::endian::big)
            pixels = __builtin_bswap64(pixels);
        bits[i] = static_cast<std::uint8_t>(((pixels & cnHighBits) >> 1) * cnGather >> 56);
    }
}

} // namespace
} // namespace ovw::vimage
