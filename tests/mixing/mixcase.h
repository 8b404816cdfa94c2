#ifndef OVW_TESTS_MIXING_MIXCASE_H
#define OVW_TESTS_MIXING_MIXCASE_H

#include "referencemixer.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// @file
/// Random settings of the span mixer, each made by its seed alone.

namespace ovw::test {

/// The group of kernels that a case is for.
enum class Family { plain, cached, water, blur, clone, directCopy, grayCopy, waterCopy, colorCopy, toneCopy };

struct MixSpan {
    int x1, x2, y; // both ends included
};

/// What one dab changes in the mixer, and its rows.
struct MixDab {
    float mixAlpha = 1;
    float cacheAlpha = 1;
    std::optional<float> antiAlpha;
    double centerX = 0, centerY = 0;
    float tableRadius = 0, radius = 1, hardness = 0;
    bool keepTableRadius = false, allowTable = false;
    double u = 0, v = 0, du = 1, dv = 0, uB = 0, vB = 0, duB = 1, dvB = 0; // in source pixels, whole steps
    std::vector<MixSpan> spans;
};

struct MixCase {
    static constexpr int cnWidth = 512;
    static constexpr int cnHeight = 8;

    MixCase(Family familyOfCase, std::uint64_t seedOfCase);

    std::string describe() const;

    Family family;
    std::uint64_t seed;
    std::uint32_t style = 0;
    int composition = 0;
    std::uint32_t color = 0;
    std::uint32_t subColor = 0;
    bool keepAlpha = false;
    PlainImage destination{32, 1, 1};
    std::optional<PlainImage> cache, colorCache, composite, mask, clone, blur;
    int maskX = 0, maskY = 0, cloneX = 0, cloneY = 0;
    std::optional<PlainTexture> texture;
    std::optional<PlainSource> source;
    std::vector<MixDab> dabs;
};

bool isCopy(Family family);

} // namespace ovw::test

#endif // OVW_TESTS_MIXING_MIXCASE_H
