#ifndef OVW_MIXING_SAMPLING_H
#define OVW_MIXING_SAMPLING_H

/// @file
/// From the pixels of a source image to the weights and colours of a span.

#include "mixing/fixedpoint.h"
#include "mixing/kerneltable.h"
#include "mixing/pixel32.h"
#include "mixing/samplesums.h"

#include <cstddef>
#include <cstring>

namespace ovw::mixing {
namespace {

// ---- Samples

struct ByteTexel {
    static std::uint32_t load(const std::uint8_t* pixels, std::uint32_t index) { return pixels[index]; }
};

struct RgbTexel {
    static std::uint32_t load(const std::uint8_t* pixels, std::uint32_t index) {
        const std::uint8_t* p = pixels + std::size_t{index} * 3;
        return packed(p[0], p[1], p[2], 255);
    }
};

struct RgbaTexel {
    static std::uint32_t load(const std::uint8_t* pixels, std::uint32_t index) {
        std::uint32_t texel;
        std::memcpy(&texel, pixels + std::size_t{index} * sizeof texel, sizeof texel);
        return texel;
    }
};

/// Places first, pixels after: the places vectorise. Each is moved into the image, where it may be read from; the mask
/// then clears what was read for places outside.
template <class Texel>
void sampleColumn(std::uint32_t* __restrict texels, int n, const SourcePixels& pixels, const SampleColumn& column) {
    constexpr int cnLanes = SourceTexels::cnRoom;
    alignas(64) std::uint32_t index[cnRowPixels];
    alignas(64) std::uint32_t mask[cnRowPixels];
    const SourcePixels p = pixels;
    const SampleColumn c = column;
    const int whole = (n + cnLanes - 1) & -cnLanes;
    for (int i = 0; i < whole; ++i) {
        // Unsigned: what lies behind the last pixel may pass the ends of 32 bits.
        const auto step = static_cast<std::uint32_t>(i);
        const auto u = static_cast<std::uint32_t>(c.u) + step * static_cast<std::uint32_t>(c.du);
        const auto v = static_cast<std::uint32_t>(c.v) + step * static_cast<std::uint32_t>(c.dv);
        const std::int32_t x = static_cast<std::int32_t>(u) >> Scale15::cnBits;
        const std::int32_t y = static_cast<std::int32_t>(v) >> Scale15::cnBits;
        const std::int32_t left = most(least(x, p.width - 1), 0);
        const std::int32_t top = most(least(y, p.height - 1), 0);
        const std::uint32_t holdsX = x == left ? ~0u : p.protectX;
        const std::uint32_t holdsY = y == top ? ~0u : p.protectY;
        mask[i] = holdsX & holdsY;
        index[i] =
            static_cast<std::uint32_t>(top) * static_cast<std::uint32_t>(p.width) + static_cast<std::uint32_t>(left);
    }
    for (int i = 0; i < whole; ++i)
        texels[i] = Texel::load(p.bits, index[i]) & mask[i];
}

// ---- Weights

/// Calls use(i, samples) for n pixels; add(samples, texel) takes one sample in.
template <int count, class Samples, class Add, class Use>
void weighPixels(int n, const SourceTexels& texels, Add add, Use use) {
    for (int i = 0; i < n; ++i) {
        Samples samples{};
        for (int column = 0; column < count; ++column)
            add(samples, texels.column[column][i]);
        use(i, samples);
    }
}

template <int count>
void weighBits(SourceRow& __restrict row, int n, const SourceTexels& texels, const SourceColors& colors) {
    constexpr std::uint32_t cnMain = 3;
    const SourceColors c = colors;
    weighPixels<count, SampleSums>(
        n, texels,
        [c](SampleSums& samples, std::uint32_t texel) {
            samples.add(texel == cnMain ? c.color : c.subColor, texel >= c.leastBits);
        },
        [&row](int i, const SampleSums& samples) {
            row.weight[i] = samples.covered * (SourceTexels::cnColumns / count);
            row.color[i] = meanColor<count>(samples);
        });
}

template <int count, bool isBytes>
void weighDensities(SourceRow& __restrict row, int n, const SourceTexels& texels, const SourceColors& colors) {
    const std::uint32_t color = colors.color;
    weighPixels<count, std::int32_t>(
        n, texels, [](std::int32_t& sum, std::uint32_t texel) { sum += static_cast<std::int32_t>(texel); },
        [&row, color](int i, std::int32_t sum) {
            row.weight[i] = isBytes ? sum / count : sum;
            row.color[i] = color;
        });
}

/// By alpha as a byte.
struct WeighByAlpha {
    static constexpr bool cnBringsColors = true;
    template <int count>
    static std::int32_t weight(const SampleSums& sums) {
        return sums.alpha() / count;
    }
};

/// By darkness and alpha, in 1.15.
struct WeighByDarkness {
    static constexpr bool cnBringsColors = false;
    template <int count>
    static std::int32_t weight(const SampleSums& sums) {
        return darknessOf<count>(sums);
    }
};

/// In full, in quarters.
struct WeighInFull {
    static constexpr bool cnBringsColors = true;
    template <int count>
    static std::int32_t weight(const SampleSums& sums) {
        return sums.covered * (SourceTexels::cnColumns / count);
    }
};

template <int count, class Weigh>
void weighColors(SourceRow& __restrict row, int n, const SourceTexels& texels, const SourceColors&) {
    weighPixels<count, SampleSums>(
        n, texels, [](SampleSums& samples, std::uint32_t texel) { samples.add(texel, texel > ~cnAlphaMask); },
        [&row](int i, const SampleSums& samples) {
            row.weight[i] = Weigh::template weight<count>(samples);
            if constexpr (Weigh::cnBringsColors)
                row.color[i] = meanColor<count>(samples);
        });
}

} // namespace
} // namespace ovw::mixing

#endif // OVW_MIXING_SAMPLING_H
