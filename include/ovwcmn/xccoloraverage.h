#ifndef OVWCMN_XCCOLORAVERAGE_H
#define OVWCMN_XCCOLORAVERAGE_H

/// @file
/// The colour that a blending brush picks up and carries along.

#include "ovwcmn/ovwdefs.h"

#include <cstdint>

namespace ovw::mixing {
class SpanPainter;
}

/// Accumulates the pixels under a brush and turns them, once a dab, into the colour carried to the next dab.
/// Colours are 0xAABBGGRR. Throws nothing; one drawing thread uses an average at a time.
class OVWCMN_API XCColorAverage {
public:
    XCColorAverage() = default;
    XCColorAverage(const XCColorAverage&) = default;
    XCColorAverage& operator=(const XCColorAverage&) = default;
    virtual ~XCColorAverage();

    /// A stroke begins: the next conversion takes the average as it is.
    void StartCountAverage() { m_isFirst = 1; }
    void ClearAverageColor(); ///< Forgets what was counted and the carried colour.
    /// Counts the density at p as an alpha.
    void CountTotal8Bit(std::uint8_t* p);
    /// Counts the pixel at p (blue, green, red, alpha); one without alpha only thins the average's alpha.
    void CountTotal32Bit(std::uint8_t* p);
    /// 1 once a pixel was counted.
    int IsAverageColor() const { return m_visited != 0; }
    /// Mixes the average into the carried colour, starts counting anew and returns the new carried colour. The larger
    /// the stretch, the more of the carried colour stays: 5 / (stretch + 5) is the share of the new one.
    std::uint32_t ConvertSmudgeColor(int stretch);

private:
    friend class ovw::mixing::SpanPainter;

    struct Average {
        std::uint32_t alpha;
        std::uint32_t channel[3]; // blue, green, red
    };
    Average average() const;

    int m_isFirst = 1;
    // 64 bits, so that the sums of a huge brush do not wrap.
    std::uint64_t m_sumAlpha = 0;
    std::uint64_t m_sum2 = 0; // red
    std::uint64_t m_sum1 = 0; // green
    std::uint64_t m_sum0 = 0; // blue
    std::uint32_t m_colored = 0;
    std::uint32_t m_visited = 0;
    std::uint32_t m_empty = 0;
    std::uint32_t m_color = 0x00FFFFFF;
};

#endif // OVWCMN_XCCOLORAVERAGE_H
