#ifndef OVW_MIXING_PLAINBATCH_H
#define OVW_MIXING_PLAINBATCH_H

#include "mixing/coveragerow.h"
#include "mixing/pixel32.h"

#include <array>
#include <cstdint>

namespace ovw::mixing {

struct PlainRows;

/// The coverages that bytes stand for: 255 for full, the others somewhat less than their 255ths.
constexpr std::array<float, 256> coverageOfBytes() {
    std::array<float, 256> coverages{};
    for (int i = 0; i < 255; ++i)
        coverages[static_cast<std::size_t>(i)] = static_cast<float>(i) * 0.003921568859368563f;
    coverages[255] = 1.0f;
    return coverages;
}
inline constexpr std::array<float, 256> cnCoverageOfBytes = coverageOfBytes();

/// Gathers short rows of plain paint whose coverages are bytes, so that the compositor runs over full vectors. No pixel
/// may come twice, and nobody else may touch them before paint().
class PlainBatch {
public:
    PlainBatch() = default;
    PlainBatch(const PlainBatch&) = delete;
    PlainBatch& operator=(const PlainBatch&) = delete;

    /// n pixels of a row, at most cnRowPixels.
    void add(const PlainRows& plain, Pixel32* pixels, const std::uint8_t* coverages, int n);
    /// Paints what was gathered.
    void paint(const PlainRows& plain);

private:
    static constexpr int cnMaxRows = 64;
    static constexpr int cnLanes = 16; ///< of the widest vectors

    struct Row {
        Pixel32* pixels;
        int n;
    };

    void findOpacities(const PlainRows& plain);

    int m_count = 0;
    int m_rowCount = 0;
    bool m_hasOpacities = false;
    Row m_rows[cnMaxRows];
    CoverageRow m_opacities; ///< of each coverage
    alignas(64) Pixel32 m_pixels[cnRowPixels];
    std::uint8_t m_coverages[cnRowPixels];
};

} // namespace ovw::mixing

#endif // OVW_MIXING_PLAINBATCH_H
