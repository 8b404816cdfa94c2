#include "texture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace ovwpaint {

namespace {

constexpr int cnGrainSize = 256; // texels

/// A number from 0 to 1 for each knot of a lattice: the finaliser of MurmurHash3, which spreads every bit over all.
double knot(std::uint32_t column, std::uint32_t row, std::uint32_t octave) {
    std::uint32_t h = column * 0x9E3779B1u ^ row * 0x85EBCA77u ^ octave * 0xC2B2AE3Du;
    h = (h ^ h >> 16) * 0x85EBCA6Bu;
    h = (h ^ h >> 13) * 0xC2B2AE35u;
    return static_cast<double>((h ^ h >> 16) & 0xFFFF) / 65535.0;
}

double eased(double t) { return t * t * (3.0 - 2.0 * t); }

/// Value noise on a lattice of `spacing` texels that repeats every cnGrainSize.
double noise(int x, int y, int spacing) {
    const int knots = cnGrainSize / spacing;
    const int column = x / spacing, row = y / spacing;
    const double tx = eased((x % spacing) / static_cast<double>(spacing));
    const double ty = eased((y % spacing) / static_cast<double>(spacing));
    const auto at = [&](int dx, int dy) {
        return knot(static_cast<std::uint32_t>((column + dx) % knots), static_cast<std::uint32_t>((row + dy) % knots),
                    static_cast<std::uint32_t>(spacing));
    };
    return std::lerp(std::lerp(at(0, 0), at(1, 0), tx), std::lerp(at(0, 1), at(1, 1), tx), ty);
}

/// Brightness by rank, so that every one is about as frequent.
std::vector<std::uint8_t> equalised(const std::vector<double>& heights) {
    constexpr std::size_t cnLevels = 256;
    std::vector<std::size_t> order(heights.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return heights[a] < heights[b]; });
    std::vector<std::uint8_t> levels(heights.size());
    for (std::size_t rank = 0; rank < order.size(); ++rank)
        levels[order[rank]] = static_cast<std::uint8_t>(rank * cnLevels / order.size());
    return levels;
}

} // namespace

GreyPicture makeGrain() {
    struct Octave {
        int spacing; ///< texels
        double weight;
    };
    constexpr std::array cnOctaves = {Octave{1, 0.35}, Octave{2, 0.8}, Octave{4, 1.0}, Octave{16, 0.35}};
    std::vector<double> heights;
    heights.reserve(static_cast<std::size_t>(cnGrainSize) * cnGrainSize);
    for (int y = 0; y < cnGrainSize; ++y) {
        for (int x = 0; x < cnGrainSize; ++x) {
            double height = 0.0;
            for (const Octave& octave : cnOctaves)
                height += octave.weight * noise(x, y, octave.spacing);
            heights.push_back(height);
        }
    }
    return {cnGrainSize, cnGrainSize, equalised(heights)};
}

GreyPicture loadTexture(const std::string& nameOrPath) {
    return nameOrPath == cnGrainTexture ? makeGrain() : readGrey(nameOrPath);
}

} // namespace ovwpaint
