#ifndef OVW_MIXING_ROWINPUTS_H
#define OVW_MIXING_ROWINPUTS_H

#include "mixing/coveragerow.h"
#include "mixing/sourcerow.h"

#include <cstdint>

namespace ovw::mixing {

/// What a kernel may read beside the pixels.
enum InputBits : unsigned {
    InputFalloff = 1,
    InputWideFalloff = 2, ///< Not limited to 1.0.
    InputSamples = 4,
    InputMask = 8,
    InputTexels = 16,
    InputColors = 32
};

/// What the stages of a kernel read beside the pixels, fetched span by span. Only what the kernel's settings ask for is
/// filled, and zeros in the room behind the last pixel.
struct RowInputs {
    static constexpr int cnRoom = SourceTexels::cnRoom; ///< lanes of the widest vectors, which stay whole
    alignas(64) std::uint8_t mask[cnRowPixels + cnRoom];
    alignas(64) std::uint8_t texels[cnRowPixels + cnRoom];
    alignas(64) std::int32_t weights[cnRowPixels + cnRoom]; ///< of the falloff
    alignas(64) std::uint32_t colors[cnRowPixels + cnRoom]; ///< of a blur image or clone source
    SourceTexels samples;
};

/// The pixels that a kernel works on: those of a span in the blocks, or of several spans in a row. The rows of images
/// without a say are null.
struct RowPixels {
    int n;      ///< pixels of the rows
    int filled; ///< the pixels up to here are painted
    std::uint8_t* dst;
    const std::uint8_t* ref; ///< of the composite image, null where it has no memory
    std::uint16_t* cache;
    std::uint8_t* cacheColor;
};

} // namespace ovw::mixing

#endif // OVW_MIXING_ROWINPUTS_H
