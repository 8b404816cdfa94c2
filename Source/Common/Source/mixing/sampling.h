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

/// What a column reads: pixels inside the image, and which of them count.
struct SamplePlaces {
    alignas(64) std::uint32_t index[cnRowPixels];
    alignas(64) std::uint32_t mask[cnRowPixels];
};

/// Calls place(i, x, y) for n places of a column. They are computed as unsigned numbers: what lies behind the last
/// pixel may pass the ends of 32 bits.
template <class Place>
void visitPlaces(int n, const SampleColumn& column, Place place) {
    const auto u = static_cast<std::uint32_t>(column.u), du = static_cast<std::uint32_t>(column.du);
    const auto v = static_cast<std::uint32_t>(column.v), dv = static_cast<std::uint32_t>(column.dv);
    for (int i = 0; i < n; ++i) {
        const auto step = static_cast<std::uint32_t>(i);
        place(i, static_cast<std::int32_t>(u + step * du) >> Scale15::cnBits,
              static_cast<std::int32_t>(v + step * dv) >> Scale15::cnBits);
    }
}

/// Of an image without protected borders: the first pixel stands in for places outside.
void findPlaces(SamplePlaces& places, int n, const SourcePixels& pixels, const SampleColumn& column) {
    const auto width = static_cast<std::uint32_t>(pixels.width);
    const auto height = static_cast<std::uint32_t>(pixels.height);
    visitPlaces(n, column, [&places, width, height](int i, std::int32_t x, std::int32_t y) {
        const auto left = static_cast<std::uint32_t>(x);
        const auto top = static_cast<std::uint32_t>(y);
        const bool isInside = (left < width) & (top < height);
        places.index[i] = isInside ? top * width + left : 0;
        places.mask[i] = isInside ? ~0u : 0;
    });
}

/// The nearest pixel stands in for places outside, and counts on a protected axis.
void findNearestPlaces(SamplePlaces& places, int n, const SourcePixels& pixels, const SampleColumn& column) {
    const SourcePixels p = pixels;
    visitPlaces(n, column, [&places, p](int i, std::int32_t x, std::int32_t y) {
        const std::int32_t left = most(least(x, p.width - 1), 0);
        const std::int32_t top = most(least(y, p.height - 1), 0);
        const std::uint32_t holdsX = x == left ? ~0u : p.protectX;
        const std::uint32_t holdsY = y == top ? ~0u : p.protectY;
        places.index[i] =
            static_cast<std::uint32_t>(top) * static_cast<std::uint32_t>(p.width) + static_cast<std::uint32_t>(left);
        places.mask[i] = holdsX & holdsY;
    });
}

/// Reads an even number of texels, two at a time: so few instructions a texel have no need of vectors.
template <class Texel>
void loadTexels(std::uint32_t* __restrict texels, int n, const std::uint8_t* bits, const SamplePlaces& places) {
    constexpr int cnHalf = 32;
    for (int i = 0; i < n; i += 2) {
        std::uint64_t index;
        std::uint64_t mask;
        std::memcpy(&index, places.index + i, sizeof index);
        std::memcpy(&mask, places.mask + i, sizeof mask);
        const std::uint64_t low = Texel::load(bits, static_cast<std::uint32_t>(index));
        const std::uint64_t high = Texel::load(bits, static_cast<std::uint32_t>(index >> cnHalf));
        const std::uint64_t both = (low | high << cnHalf) & mask;
        std::memcpy(texels + i, &both, sizeof both);
    }
}

/// Places first, pixels after: the places vectorise.
template <class Texel>
void sampleColumns(SourceTexels& texels, int first, int n, const SourcePixels& pixels, const SampleColumn* columns,
                   int count) {
    SamplePlaces places;
    const int whole = (n + SourceTexels::cnRoom - 1) & -SourceTexels::cnRoom;
    const auto find = (pixels.protectX | pixels.protectY) != 0 ? findNearestPlaces : findPlaces;
    for (int i = 0; i < count; ++i) {
        find(places, whole, pixels, columns[i]);
        loadTexels<Texel>(texels.column[i] + first, whole, pixels.bits, places);
    }
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
