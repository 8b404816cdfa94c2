#ifndef OVW_VIMAGE_COMPOSITEALPHA_H
#define OVW_VIMAGE_COMPOSITEALPHA_H

#include <cstdint>

class XCVOffPixelMixer;
class XCVOffscreen;

namespace ovw::vimage {

/// Where the pixels of the source go.
struct AlphaCopy {
    std::int64_t dx; ///< in the destination
    std::int64_t dy;
    std::int64_t width;
    std::int64_t height;
    std::int64_t sx; ///< in source and alpha
    std::int64_t sy;

    /// Without what would leave an image of that size.
    AlphaCopy clippedTo(const XCVOffscreen& destination) const;
};

/// Mixes the mixer's colour into source pixels by the ink of an 8-bit image of the same size, and stores them in the
/// destination. Pixels without that ink are not touched. The destination is locked for editing, the others for
/// reading; one image may take several parts, a row is read before it is written.
void compositeAlpha(XCVOffscreen& destination, const AlphaCopy& copy, XCVOffscreen& source, XCVOffscreen& alpha,
                    XCVOffPixelMixer& mixer);

} // namespace ovw::vimage

#endif // OVW_VIMAGE_COMPOSITEALPHA_H
