#ifndef OVW_MIXING_SAMPLESUMS_H
#define OVW_MIXING_SAMPLESUMS_H

/// @file
/// What the samples of one pixel add up to. Internal linkage, as in fixedpoint.h.

#include "mixing/fixedpoint.h"
#include "mixing/pixel32.h"

#include <cstdint>

namespace ovw::mixing {
namespace {

// Luminance weights of red, green and blue; they sum to 16514, so that black of full alpha covers 1.0 and a little
// more.
constexpr std::int32_t cnRedLight = 4936;
constexpr std::int32_t cnGreenLight = 9687;
constexpr std::int32_t cnBlueLight = 1891;
constexpr std::int32_t cnLightest = (cnRedLight + cnGreenLight + cnBlueLight) * 255;

/// The samples of one pixel: how many cover, and the channels of those, two in a word.
struct SampleSums {
    std::int32_t covered = 0;
    std::uint32_t redBlue = 0;
    std::uint32_t alphaGreen = 0;

    void add(std::uint32_t texel, bool covers) {
        constexpr std::uint32_t cnEven = 0x00FF00FF;
        const std::uint32_t color = covers ? texel : 0;
        covered += covers ? 1 : 0;
        redBlue += color & cnEven;
        alphaGreen += color >> 8 & cnEven;
    }
    std::int32_t blue() const { return static_cast<std::int32_t>(redBlue & 0xFFFF); }
    std::int32_t green() const { return static_cast<std::int32_t>(alphaGreen & 0xFFFF); }
    std::int32_t red() const { return static_cast<std::int32_t>(redBlue >> 16); }
    std::int32_t alpha() const { return static_cast<std::int32_t>(alphaGreen >> 16); }
};

/// Of the samples that cover; 0 without any.
template <int count>
std::uint32_t meanColor(const SampleSums& sums) {
    if constexpr (count == 1)
        return sums.redBlue | (sums.alphaGreen & 0xFF) << 8;
    // A third is rounded up, which sums of three bytes are too small to show.
    constexpr std::int32_t cnOne = 1 << 16;
    const std::int32_t few = sums.covered == 2 ? cnOne / 2 : cnOne;
    const std::int32_t many = sums.covered == 3 ? cnOne / 3 + 1 : cnOne / 4;
    const std::int32_t share = sums.covered > 2 ? many : few;
    return packed(sums.blue() * share >> 16, sums.green() * share >> 16, sums.red() * share >> 16, 0);
}

/// Darkness times alpha in 1.15, at most 1.0.
template <int count>
std::int32_t darknessOf(const SampleSums& sums) {
    const std::int32_t light = cnRedLight * sums.red() + cnGreenLight * sums.green() + cnBlueLight * sums.blue();
    if constexpr (count == 1)
        return least(((cnLightest - light) * sums.alpha()) >> Scale15::cnBits, Scale15::cnOne);
    // The quotient of numbers below 2^24 is exact enough to be truncated: a third is far from the next integer.
    const auto mean =
        static_cast<std::int32_t>(static_cast<float>(light / 4) / static_cast<float>(most(sums.covered, 1)));
    return least(((cnLightest / 4 - mean) * sums.alpha()) >> Scale15::cnBits, Scale15::cnOne);
}

} // namespace
} // namespace ovw::mixing

#endif // OVW_MIXING_SAMPLESUMS_H
