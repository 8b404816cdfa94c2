#ifndef OVW_VIMAGE_LUMINANCEROW_H
#define OVW_VIMAGE_LUMINANCEROW_H

#include "vimage/pixelformats.h"

#include <cstdint>

namespace ovw::vimage {

/// The luminances of at most cnBlockSize pixels of 24 or 32 bits, whatever their alpha is.
template <class Format>
void luminanceRow(const std::uint8_t* pixels, int count, std::uint8_t* luminances);

/// What a pixel becomes, by whether it is opaque (the second bit of the index) and dark (the first).
struct FourTones {
    std::uint8_t of[4];
};

/// Tones of pixels: opaque from a coverage, dark from a darkness of thresholds[i] on. With onlyOpaque nothing else is
/// dark.
void toneRow(const std::uint8_t* coverages, const std::uint8_t* darknesses, const std::uint8_t* thresholds, int count,
             bool onlyOpaque, const FourTones& tones, std::uint8_t* result);

} // namespace ovw::vimage

#endif // OVW_VIMAGE_LUMINANCEROW_H
