// The mixers that only change the weight by the place of the pixel, and hand it on.

#include "ovwcmn/xcpixelmixer.h"

#include "mixing/byteweight.h"
#include "ovwcmn/detail/toint.h"
#include "ovwcmn/xcvoffscreen.h"
#include "vimage/dithertable.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

using namespace ovw::mixing;
using namespace ovw::vimage;

namespace {

/// The falloff along one axis: a Gaussian of this many steps a sigma, cut at three sigma, in 4.12 fixed point.
constexpr int cnSigma = 128;
constexpr int cnFalloffSteps = 3 * cnSigma;
constexpr int cnFalloffBits = 12;
constexpr int cnFalloffOne = 1 << cnFalloffBits;
/// Radius from which on the falloff grows higher, and so flatter on top where it is cut.
constexpr float cnPlainRadius = 16.0f;

using FalloffTable = std::array<std::uint32_t, cnFalloffSteps + 1>;

const FalloffTable& falloffTable() {
    static const FalloffTable s_table = [] {
        FalloffTable table;
        for (int k = 0; k <= cnFalloffSteps; k++)
            table[k] = static_cast<std::uint32_t>(std::exp(-k * k / (2.0 * cnSigma * cnSigma)) * cnFalloffOne);
        return table;
    }();
    return s_table;
}

/// Where a pixel lies in the falloff; past the last step outside of it.
std::int64_t falloffStep(int pixel, int centre, int radius) {
    const std::int64_t doubled = 2 * std::abs(std::int64_t{pixel} - centre);
    return cnFalloffSteps * (doubled > 0 ? doubled - 1 : 0) / radius;
}

int radiusOf(double radius) { return std::max(ovw::truncateToInt(std::abs(radius)), 1); }

} // namespace

// ---- Gaussian

XCPixelMixerGaussian::~XCPixelMixerGaussian() = default;

void XCPixelMixerGaussian::SetMapInfo(XCVOffscreen* map, tagPOINTD centre, double radiusX, double radiusY) {
    m_map = map;
    m_centreX = ovw::truncateToInt(centre.x);
    m_centreY = ovw::truncateToInt(centre.y);
    m_radiusX = radiusOf(radiusX);
    m_radiusY = radiusOf(radiusY);
    m_scale = std::max(static_cast<float>(std::max(m_radiusX, m_radiusY)) / cnPlainRadius, 1.0f);
}

std::uint32_t XCPixelMixerGaussian::GetGaussValue(std::uint32_t weight) const {
    if (m_baseup == 0 || !m_map)
        return weight;
    const std::int64_t stepX = falloffStep(m_map->GetCursorPosX(), m_centreX, m_radiusX);
    const std::int64_t stepY = falloffStep(m_map->GetCursorPosY(), m_centreY, m_radiusY);
    if (stepX > cnFalloffSteps || stepY > cnFalloffSteps)
        return 0;
    const FalloffTable& table = falloffTable();
    const int falloff = static_cast<int>(table[stepX] * table[stepY] >> cnFalloffBits);
    const auto height = static_cast<std::uint64_t>(static_cast<double>(falloff * m_level) * m_scale) >> cnFalloffBits;
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(weight, height * weight / m_baseup));
}

void XCPixelMixerGaussian::Do8Bit(std::uint8_t* p, std::uint8_t value, std::uint8_t weight) {
    Do8BitNext(p, value, static_cast<std::uint8_t>(GetGaussValue(weight)));
}

void XCPixelMixerGaussian::Do24Bit(std::uint32_t* p, std::uint32_t colour, std::uint8_t weight) {
    Do24BitNext(p, colour, static_cast<std::uint8_t>(GetGaussValue(weight)));
}

void XCPixelMixerGaussian::Do32Bit(std::uint32_t* p, std::uint32_t colour, std::uint8_t weight) {
    Do32BitNext(p, colour, static_cast<std::uint8_t>(GetGaussValue(weight)));
}

// ---- Dither

XCPixelMixerDither::~XCPixelMixerDither() = default;

bool XCPixelMixerDither::isDrawn(int value, int weight) const {
    const int level = scaledBy(value, weight);
    if (level == 0 || level == cnByteMax)
        return level != 0;
    const std::uint8_t threshold =
        m_map ? ditherThreshold(m_map->GetCursorPosX(), m_map->GetCursorPosY()) : ditherThreshold(0, 0);
    return threshold <= level;
}

void XCPixelMixerDither::Do8Bit(std::uint8_t* p, std::uint8_t value, std::uint8_t weight) {
    if (isDrawn(value, weight))
        Do8BitNext(p, cnByteMax, cnByteMax);
}

void XCPixelMixerDither::Do24Bit(std::uint32_t* p, std::uint32_t colour, std::uint8_t weight) {
    if (isDrawn(alphaOf(colour), weight))
        Do24BitNext(p, withAlpha(colour, cnByteMax), cnByteMax);
}

void XCPixelMixerDither::Do32Bit(std::uint32_t* p, std::uint32_t colour, std::uint8_t weight) {
    if (isDrawn(alphaOf(colour), weight))
        Do32BitNext(p, withAlpha(colour, cnByteMax), cnByteMax);
}
