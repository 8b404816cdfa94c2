#ifndef OVW_OFFSCREEN_PIXELMEAN_H
#define OVW_OFFSCREEN_PIXELMEAN_H

/// @file
/// Means of pixels. Of packed and density pixels the density counts, of 32-bit pixels transparent ones thin the alpha
/// only. Results are 0xAABBGGRR, transparent white where nothing is visible.

#include "offscreen/classicformats.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace ovw::offscreen {

/// Whole pixels: sums are divided and truncated.
struct WholePixels {
    using Number = std::int64_t;
    static constexpr Number cnSquare = 4; // the usual weight, that of a halving, divides fast

    static int divide(Number sum, Number weight) {
        return static_cast<int>(weight == cnSquare ? static_cast<std::uint64_t>(sum) / cnSquare : sum / weight);
    }
};

/// Parts of pixels: quotients are rounded, halves up.
struct PixelParts {
    using Number = double;
    static int divide(Number sum, Number weight) {
        return std::min(cnByteMax, static_cast<int>(std::floor(sum * (1.0 / weight) + 0.5)));
    }
};

template <class Format, class Rule>
class PixelMean {
public:
    using Number = typename Rule::Number;

    void add(typename Format::Value v, Number weight) {
        m_density += static_cast<Number>(Format::read8(v)) * weight;
        m_weight += weight;
    }
    bool isEmpty() const { return m_weight <= 0; }
    /// What the pixels weigh together, where that is known better than as a sum.
    void setWeight(Number weight) { m_weight = weight; }
    std::uint32_t colour() const { return cnOpaqueAlpha | greyColour(Rule::divide(m_density, m_weight)); }

private:
    Number m_density = 0;
    Number m_weight = 0;
};

template <class Rule>
class PixelMean<Rgb24, Rule> {
public:
    using Number = typename Rule::Number;

    void add(RgbPixel v, Number weight) {
        m_red += v.red * weight, m_green += v.green * weight, m_blue += v.blue * weight;
        m_weight += weight;
    }
    bool isEmpty() const { return m_weight <= 0; }
    void setWeight(Number weight) { m_weight = weight; }
    std::uint32_t colour() const {
        return packColour(cnByteMax, Rule::divide(m_red, m_weight), Rule::divide(m_green, m_weight),
                          Rule::divide(m_blue, m_weight));
    }

private:
    Number m_red = 0, m_green = 0, m_blue = 0;
    Number m_weight = 0;
};

template <class Rule>
class PixelMean<Argb32, Rule> {
public:
    using Number = typename Rule::Number;

    void add(ArgbPixel v, Number weight) {
        m_weight += weight;
        if (v.alpha == 0)
            return;
        m_red += v.red * weight, m_green += v.green * weight, m_blue += v.blue * weight;
        m_alpha += v.alpha * weight;
        m_visible += weight;
    }
    bool isEmpty() const { return m_weight <= 0; }
    void setWeight(Number weight) { m_weight = weight; }
    std::uint32_t colour() const {
        if (m_visible <= 0)
            return cnWhite;
        return packColour(Rule::divide(m_alpha, m_weight), Rule::divide(m_red, m_visible),
                          Rule::divide(m_green, m_visible), Rule::divide(m_blue, m_visible));
    }

private:
    Number m_red = 0, m_green = 0, m_blue = 0, m_alpha = 0;
    Number m_visible = 0;
    Number m_weight = 0;
};

} // namespace ovw::offscreen

#endif // OVW_OFFSCREEN_PIXELMEAN_H
