#ifndef OVW_MIXING_SOURCEROW_H
#define OVW_MIXING_SOURCEROW_H

#include "mixing/coveragerow.h"

#include <cstdint>

namespace ovw::mixing {

/// The pixels of a source image, fewer than 2^31.
struct SourcePixels {
    const std::uint8_t* bits;
    std::int32_t width;
    std::int32_t height;
    std::uint32_t protectX; ///< All bits where coordinates beyond that axis mean the nearest pixel, else 0.
    std::uint32_t protectY;
};

/// Places (u + i * du, v + i * dv) in 1.15, wherever they lie.
struct SampleColumn {
    std::int32_t u;
    std::int32_t v;
    std::int32_t du;
    std::int32_t dv;
};

/// The samples of a span as read, one a pixel or four: bytes, or colours as stored in 32 bits. What lies outside of the
/// image is 0; pixels without alpha have a full one. The room behind the last pixel lets vectors stay whole.
struct SourceTexels {
    static constexpr int cnColumns = 4;
    static constexpr int cnRoom = 16;
    alignas(64) std::uint32_t column[cnColumns][cnRowPixels + cnRoom];
};

/// What bits and densities are painted with.
struct SourceColors {
    std::uint32_t color; ///< as stored in 32 bits, alpha 0
    std::uint32_t subColor;
    std::uint32_t leastBits; ///< the least value of bits that covers
};

/// What the source gives to the pixels of a span.
struct SourceRow {
    alignas(64) std::int32_t weight[cnRowPixels]; ///< 0 skips the pixel
    /// As stored in 32 bits, alpha 0; the mixer's colour where the source has none of its own.
    alignas(64) std::uint32_t color[cnRowPixels];
};

} // namespace ovw::mixing

#endif // OVW_MIXING_SOURCEROW_H
