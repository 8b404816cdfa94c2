#include "ovwcmn/xccoloraverage.h"

#include <algorithm>

namespace {

// From here on a sum of bytes may pass 32 bits: 0x01010101 * 255 is 2^32 - 1.
constexpr std::uint32_t cnCountLimit = 0x01010101;
constexpr double cnStretchUnit = 5.0;

std::uint32_t pack(std::uint32_t alpha, std::uint32_t red, std::uint32_t green, std::uint32_t blue) {
    return alpha << 24 | blue << 16 | green << 8 | red;
}

std::uint32_t byteOf(std::uint32_t color, int shift) { return (color >> shift) & 0xFF; }

std::uint32_t withAlpha(std::uint32_t color, double alpha) {
    return (color & 0x00FFFFFF) | static_cast<std::uint32_t>(alpha) << 24;
}

/// share of color, the rest of carried, every byte rounded.
std::uint32_t mix(std::uint32_t color, std::uint32_t carried, double share) {
    std::uint32_t mixed = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        double value = byteOf(color, shift) * share + byteOf(carried, shift) * (1.0 - share) + 0.5;
        mixed |= std::min(static_cast<std::uint32_t>(value), 255u) << shift;
    }
    return mixed;
}

} // namespace

XCColorAverage::~XCColorAverage() = default;

void XCColorAverage::ClearAverageColor() {
    m_sumAlpha = m_sum2 = m_sum1 = m_sum0 = 0;
    m_colored = m_visited = m_empty = 0;
    m_color = 0x00FFFFFF;
}

void XCColorAverage::CountTotal8Bit(std::uint8_t* p) {
    m_sumAlpha += *p;
    ++m_visited;
    if (++m_colored == cnCountLimit) {
        m_sumAlpha /= cnCountLimit;
        m_colored = 1;
    }
}

void XCColorAverage::CountTotal32Bit(std::uint8_t* p) {
    ++m_visited;
    if (p[3] == 0) {
        ++m_empty;
        return;
    }
    ++m_colored;
    m_sumAlpha += p[3];
    m_sum2 += p[2];
    m_sum1 += p[1];
    m_sum0 += p[0];
}

XCColorAverage::Average XCColorAverage::average() const {
    if (m_colored == 0 || m_colored >= cnCountLimit) {
        auto low = [](std::uint64_t sum) { return static_cast<std::uint32_t>(sum & 0xFF); };
        return {0, {low(m_sum0), low(m_sum1), low(m_sum2)}};
    }
    auto rounded = [](std::uint64_t sum, std::uint64_t count) {
        return static_cast<std::uint32_t>((sum + count / 2) / count);
    };
    std::uint64_t all = std::uint64_t{m_colored} + m_empty;
    return {rounded(m_sumAlpha, all),
            {rounded(m_sum0, m_colored), rounded(m_sum1, m_colored), rounded(m_sum2, m_colored)}};
}

std::uint32_t XCColorAverage::ConvertSmudgeColor(int stretch) {
    Average mean = average();
    std::uint32_t carried = m_color;
    std::uint32_t color = pack(mean.alpha, mean.channel[2], mean.channel[1], mean.channel[0]);
    ClearAverageColor();

    double share = cnStretchUnit / (std::max(stretch, 0) + cnStretchUnit);
    if (m_isFirst) {
        m_isFirst = 0;
        m_color = color;
    } else if (byteOf(carried, 24) == 0) {
        m_color = withAlpha(color, mean.alpha * share);
    } else if (mean.alpha == 0) {
        m_color = withAlpha(carried, (1.0 - share) * byteOf(carried, 24));
    } else {
        m_color = mix(color, carried, share);
    }
    return m_color;
}
