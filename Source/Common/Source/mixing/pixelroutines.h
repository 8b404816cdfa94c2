#ifndef OVW_MIXING_PIXELROUTINES_H
#define OVW_MIXING_PIXELROUTINES_H

#include <cstdint>

class XCPixelMixer;
class XCVOffscreen;

namespace ovw::mixing {

/// How a chain of mixers meets the pixel under an image's cursor, which must have an address. Colours are 0xAABBGGRR.
struct PixelRoutines {
    void (*mix)(XCVOffscreen& image, XCPixelMixer& chain, std::uint32_t colour, std::uint8_t weight);
    /// Mixes into a colour of its own instead of the pixel, and stores the result there.
    void (*mixInto)(XCVOffscreen& image, XCPixelMixer& chain, std::uint32_t base, std::uint32_t colour,
                    std::uint8_t weight);
};

/// The routines of a depth, null where there is no such depth; inkByBrightness: ink comes from a colour's darkness.
const PixelRoutines* pixelRoutinesFor(int depth, bool inkByBrightness);

} // namespace ovw::mixing

#endif // OVW_MIXING_PIXELROUTINES_H
