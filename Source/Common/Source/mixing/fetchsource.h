#ifndef OVW_MIXING_FETCHSOURCE_H
#define OVW_MIXING_FETCHSOURCE_H

#include "mixing/kernelplan.h"
#include "mixing/kerneltable.h"
#include "mixing/sourcerow.h"

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

/// How spans look into their source image.
struct SourceView {
    const XCSimpleImage* image;
    SourcePixels pixels;
    bool isSmall;  ///< Fewer pixels than 2^31.
    bool twoByTwo; ///< Four samples a pixel; the steps of their lines are then half steps.
    SourceTexel texel;
    SourceWeight weight;
    SourceScale scale; ///< How the weights multiply into the coverage.
    SourceColors colors;
};

/// Completes a view that has its image, its colours and 2 x 2 sampling. isTwoColored: 2-bit pixels 1 and 2 bring the
/// sub colour; else only 3 covers. False for an image of a depth that covers nothing.
bool completeView(SourceView& view, SourceRule rule, bool isTwoColored);

/// Samples n pixels, into the texels from first on. lineB: of 2 x 2 sampling, the second row of samples.
void sampleSource(SourceTexels& texels, int first, int n, const SourceView& view, const SampleLine& line,
                  const SampleLine& lineB, const KernelTable& kernels);

/// Coverage of a 32-bit source pixel in 1.15: its darkness times its alpha.
std::int32_t darknessOf(const std::uint8_t* pixel);

/// Swaps the bytes of red and blue: 0xAABBGGRR to the order of 32-bit pixels and back.
constexpr std::uint32_t swapRedBlue(std::uint32_t color) {
    return (color & 0xFF00FF00) | (color & 0xFF) << 16 | (color >> 16 & 0xFF);
}

} // namespace ovw::mixing

#endif // OVW_MIXING_FETCHSOURCE_H
