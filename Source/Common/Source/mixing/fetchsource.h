#ifndef OVW_MIXING_FETCHSOURCE_H
#define OVW_MIXING_FETCHSOURCE_H

#include "mixing/coveragerow.h"
#include "mixing/kernelplan.h"
#include "mixing/kerneltable.h"

#include <cstdint>
#include <functional>

class XCSimpleImage;

namespace ovw::mixing {

/// A line of samples: coordinates in 1.15, advanced by a step after each sample. Wide enough for every step of a span.
struct SampleLine {
    std::int64_t u;
    std::int64_t v;
    std::int32_t du;
    std::int32_t dv;

    /// The sample here, then a step on.
    const std::uint8_t* next(const XCSimpleImage& image);
    /// Coordinates stop at the ends of 32 bits, outside of every image.
    void skip(std::int64_t samples);
};

/// The pixels of an image, to tell them from what it answers outside.
class OwnPixels {
public:
    explicit OwnPixels(const XCSimpleImage& image);
    bool holds(const std::uint8_t* pixel) const {
        const std::less<const std::uint8_t*> isBefore;
        return !isBefore(pixel, m_first) && !isBefore(m_last, pixel);
    }

private:
    const std::uint8_t* m_first = nullptr;
    const std::uint8_t* m_last = nullptr;
};

/// How a span looks into its source image.
struct SourceView {
    const XCSimpleImage* image;
    SampleLine line;
    SampleLine lineB; ///< 2 x 2 sampling: the second row of samples.
    bool twoByTwo;    ///< Four samples a pixel; steps are then half steps.
    SourceRule rule;
    bool isTwoColored;   ///< 2-bit pixels 1 and 2 bring the sub colour; else only 3 covers.
    std::uint32_t color; ///< The mixer's colour and sub colour, as stored in 32 bits, alpha 0.
    std::uint32_t subColor;
};

/// What the source gives to the pixels of a span.
struct SourceRow {
    SourceScale scale; ///< How the weights multiply into the coverage.
    alignas(64) std::int32_t weight[cnRowPixels];
    /// How many samples cover. 0 skips the pixel; a white pixel is there but has no weight.
    alignas(64) std::int32_t covered[cnRowPixels];
    /// As stored in 32 bits, alpha 0; the mixer's colour where the source has none of its own.
    alignas(64) std::uint32_t color[cnRowPixels];
};

/// Samples n pixels. False for a source of a depth that covers nothing.
bool fetchSource(SourceRow& row, int n, const SourceView& view);

/// Coverage of a 32-bit source pixel in 1.15, not limited to 1.0: its darkness times its alpha.
std::int32_t darknessOf(const std::uint8_t* pixel);

/// Swaps the bytes of red and blue: 0xAABBGGRR to the order of 32-bit pixels and back.
constexpr std::uint32_t swapRedBlue(std::uint32_t color) {
    return (color & 0xFF00FF00) | (color & 0xFF) << 16 | (color >> 16 & 0xFF);
}

} // namespace ovw::mixing

#endif // OVW_MIXING_FETCHSOURCE_H
