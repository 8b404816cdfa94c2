#include "ovwcmn/xccolor.h"

#include <algorithm>
#include <cmath>
#include <type_traits>

static_assert(sizeof(XCRgbColor) == sizeof(tagVXRGBCOLOR16) && std::is_trivially_copyable_v<XCRgbColor>);
static_assert(sizeof(XCHsvColor) == sizeof(tagVXHSVCOLOR16) && std::is_trivially_copyable_v<XCHsvColor>);
static_assert(std::is_trivially_copyable_v<XCComplexColor>);

namespace {

constexpr int cnFull = 65535;     // a 16-bit channel at its most
constexpr int cnByteToWide = 257; // replicates a byte
constexpr double cnHuePerDegree = 182.04166666666666;
constexpr double cnDegreesPerHue = 0.005493247882810712;
constexpr double cnDegreesPerTurn = 360;
constexpr double cnDegreesPerSextant = 60;
constexpr double cnLastDegree = 359; // what a full turn and more count as

struct Rgb {
    double red;
    double green;
    double blue;
};

std::uint16_t widen(std::uint32_t packed, int shift) {
    return static_cast<std::uint16_t>((packed >> shift & 0xFF) * cnByteToWide);
}

std::uint16_t toChannel(double value) { return static_cast<std::uint16_t>(value); }

std::uint32_t pack(std::uint32_t a, std::uint32_t r, std::uint32_t g, std::uint32_t b) {
    return a << 24 | b << 16 | g << 8 | r;
}

Rgb toUnits(const tagVXRGBCOLOR16& color) {
    constexpr double full = cnFull;
    return {color.red / full, color.green / full, color.blue / full};
}

double degreesInTurn(double sextants) {
    const double degrees = sextants * cnDegreesPerSextant;
    return degrees < 0 ? degrees + cnDegreesPerTurn : degrees;
}

// Hue in degrees, saturation and value 0 to 1 (clamped); the channels are 0 to 1.
Rgb hsvToRgb(double degrees, double saturation, double value) {
    const double s = std::clamp(saturation, 0.0, 1.0);
    const double v = std::clamp(value, 0.0, 1.0);
    const double sextants = (degrees >= cnDegreesPerTurn ? cnLastDegree : degrees) / cnDegreesPerSextant;
    const int sextant = static_cast<int>(sextants);
    const double f = sextants - sextant;
    const double p = (1 - s) * v;
    const double q = (1 - s * f) * v;
    const double t = (1 - s * (1 - f)) * v;
    const Rgb bySextant[] = {{v, t, p}, {q, v, p}, {p, v, t}, {p, q, v}, {t, p, v}, {v, p, q}};
    return bySextant[sextant];
}

// Hue in degrees of a colour that is not grey; when channels tie for the largest, the last of them decides.
double hsvDegrees(const Rgb& c, double max, double delta) {
    if (c.blue == max)
        return degreesInTurn((c.red - c.green) / delta + 4);
    if (c.green == max)
        return degreesInTurn((c.blue - c.red) / delta + 2);
    return degreesInTurn((c.green - c.blue) / delta);
}

// Here the first of the largest channels decides.
double hlsDegrees(const Rgb& c, double max, double delta) {
    const double red = (max - c.red) / delta;
    const double green = (max - c.green) / delta;
    const double blue = (max - c.blue) / delta;
    if (c.red == max)
        return degreesInTurn(blue - green);
    return c.green == max ? degreesInTurn(2 + red - blue) : degreesInTurn(4 + green - red);
}

// One channel of an HLS colour in whole numbers, 65535 to the turn; m1 and m2 are its darkest and brightest channel.
std::uint16_t hueToChannel(std::int64_t m1, std::int64_t m2, std::int64_t hue) {
    constexpr std::int64_t cnSextant = 10922;
    constexpr std::int64_t cnHalfTurn = 32766;
    constexpr std::int64_t cnTwoThirds = 43690;
    if (hue < 0)
        hue += cnFull;
    if (hue > cnFull)
        hue -= cnFull;
    const auto ramp = [&](std::int64_t steps) { return m1 + ((m2 - m1) * steps + cnSextant / 2) / cnSextant; };
    std::int64_t channel = m1;
    if (hue < cnSextant)
        channel = ramp(hue);
    else if (hue <= cnHalfTurn)
        channel = m2;
    else if (hue < cnTwoThirds)
        channel = ramp(cnTwoThirds - hue);
    return static_cast<std::uint16_t>(std::min<std::int64_t>(channel, cnFull));
}

} // namespace

XCColor::XCColor(const tagVXRGBCOLOR16& color)
    : m_packed(pack(color.alpha >> 8, color.red >> 8, color.green >> 8, color.blue >> 8)) {}

XCColor::XCColor(const tagVXHSVCOLOR16& color) {
    constexpr double cnPercent = 100;
    constexpr double cnByte = 255;
    const Rgb rgb = hsvToRgb(color.hue, color.saturation / cnPercent, color.value / cnPercent);
    m_packed = pack(color.alpha & 0xFF, toChannel(rgb.red * cnByte), toChannel(rgb.green * cnByte),
                    toChannel(rgb.blue * cnByte));
}

XCColor::XCColor(const XCHsvColor& color) : XCColor(XCRgbColor(color)) {}

XCColor::XCColor(const XCHlsColor& color) : XCColor(XCRgbColor(color)) {}

void XCColor::SetChannel(std::uint32_t index, std::uint8_t value) {
    if (index > 3)
        return;
    const std::uint32_t shift = 8 * index;
    m_packed = (m_packed & ~(0xFFU << shift)) | static_cast<std::uint32_t>(value) << shift;
}

XCRgbColor::XCRgbColor(std::uint32_t packed)
    : ColorBase(widen(packed, 24), widen(packed, 0), widen(packed, 8), widen(packed, 16)) {}

XCRgbColor::XCRgbColor(const tagVXHSVCOLOR16& color) : XCRgbColor() {
    constexpr double full = cnFull;
    const Rgb rgb = hsvToRgb(color.hue * cnDegreesPerHue, color.saturation / full, color.value / full);
    SetColor(color.alpha, toChannel(rgb.red * full), toChannel(rgb.green * full), toChannel(rgb.blue * full));
}

XCRgbColor::XCRgbColor(const tagVXHLSCOLOR16& color) : XCRgbColor() {
    constexpr std::int64_t cnHalf = cnFull / 2; // rounds the divisions by 65535
    constexpr std::int64_t cnThird = cnFull / 3;
    const std::int64_t lightness = color.lightness;
    const std::int64_t saturation = color.saturation;
    const std::int64_t m2 = lightness <= cnHalf ? ((saturation + cnFull) * lightness + cnHalf) / cnFull
                                                : lightness + saturation - (saturation * lightness + cnHalf) / cnFull;
    const std::int64_t m1 = 2 * lightness - m2;
    SetColor(color.alpha, hueToChannel(m1, m2, color.hue + cnThird), hueToChannel(m1, m2, color.hue),
             hueToChannel(m1, m2, color.hue - cnThird));
}

XCRgbColor::operator std::uint32_t() const { return XCColor(static_cast<const tagVXRGBCOLOR16&>(*this)); }

XCHsvColor::XCHsvColor(const tagVXRGBCOLOR16& color) : ColorBase(color.alpha, 0, 0, 0) {
    const Rgb rgb = toUnits(color);
    const double max = std::max({rgb.red, rgb.green, rgb.blue});
    const double delta = max - std::min({rgb.red, rgb.green, rgb.blue});
    value = toChannel(max * cnFull);
    if (delta == 0)
        return;
    saturation = toChannel(delta * cnFull / max);
    hue = toChannel(hsvDegrees(rgb, max, delta) * cnHuePerDegree);
}

XCHlsColor::XCHlsColor(const tagVXRGBCOLOR16& color) : ColorBase(color.alpha, 0, 0, 0) {
    const Rgb rgb = toUnits(color);
    const double max = std::max({rgb.red, rgb.green, rgb.blue});
    const double min = std::min({rgb.red, rgb.green, rgb.blue});
    const double delta = max - min;
    const double middle = (max + min) / 2;
    lightness = toChannel(middle * cnFull);
    if (delta == 0)
        return;
    saturation = toChannel((middle <= 0.5 ? delta / (max + min) : delta / (2 - max - min)) * cnFull);
    hue = toChannel(hlsDegrees(rgb, max, delta) / cnDegreesPerTurn * cnFull);
}

void XCComplexColor::assign(int mode, int a, int r, int g, int b) {
    m_mode = mode;
    m_alpha = a;
    m_red = r;
    m_green = g;
    m_blue = b;
}

void XCComplexColor::SetColor(std::uint32_t packed) {
    assign(0, packed >> 24, packed & 0xFF, packed >> 8 & 0xFF, packed >> 16 & 0xFF);
}

void XCComplexColor::SetColor64(std::uint64_t packed) {
    const auto channel = [packed](int shift) { return static_cast<int>(packed >> shift & 0xFFFF); };
    assign(1, channel(48), channel(0), channel(16), channel(32));
}

std::uint32_t XCComplexColor::GetColor() const {
    return pack(static_cast<std::uint32_t>(m_alpha), static_cast<std::uint32_t>(m_red),
                static_cast<std::uint32_t>(m_green), static_cast<std::uint32_t>(m_blue));
}

std::uint64_t XCComplexColor::GetColor64() const {
    const auto channel = [](int value, int shift) { return static_cast<std::uint64_t>(value) << shift; };
    return channel(m_alpha, 48) | channel(m_blue, 32) | channel(m_green, 16) | channel(m_red, 0);
}

int XCComplexColor::GetBrightness() const { return std::max({m_red, m_green, m_blue}); }

int XCComplexColor::GetInvertBrightness() const {
    constexpr std::int64_t cnByteRange = 256;
    return static_cast<int>((m_alpha + std::int64_t{1}) * (cnByteRange - GetBrightness()) >> 8);
}

void XCComplexColor::Convert(int mode) {
    if (mode == m_mode || (mode != 0 && mode != 1))
        return;
    const auto converted = [mode](int value) {
        return mode == 0 ? value >> 8 : static_cast<int>(static_cast<std::uint32_t>(value) * cnByteToWide);
    };
    assign(mode, converted(m_alpha), converted(m_red), converted(m_green), converted(m_blue));
}
