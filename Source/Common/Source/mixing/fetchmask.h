#ifndef OVW_MIXING_FETCHMASK_H
#define OVW_MIXING_FETCHMASK_H

#include <cstdint>

class XCVOffscreen;

namespace ovw::mixing {

/// Where the pixels of a row lie in a mask: (firstX + i * step, y).
struct MaskLine {
    std::int64_t firstX;
    std::int64_t y;
    int step;
    bool asBits; ///< Read as 0 and 1 at every depth.
};

/// Reads n mask values: 0 or 1 as bits and of a 1-bit mask, else the 8-bit reading; 0 outside the image. Moves the
/// mask's cursor.
void fetchMask(std::uint8_t* values, int n, XCVOffscreen& mask, const MaskLine& line);

} // namespace ovw::mixing

#endif // OVW_MIXING_FETCHMASK_H
