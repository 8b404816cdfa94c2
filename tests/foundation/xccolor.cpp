#include "ovwcmn/xccolor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

namespace {

constexpr int cnFull = 65535;
constexpr int cnStep = 1285; // 51 steps from 0 to 65535

std::uint16_t channel(double value) { return std::uint16_t(value); }

/// The formulas as a reader would work them out, 64 bits wide throughout.
tagVXHSVCOLOR16 hsvOf(const tagVXRGBCOLOR16& c) {
    const double r = c.red / 65535.0, g = c.green / 65535.0, b = c.blue / 65535.0;
    const double max = std::max({r, g, b}), delta = max - std::min({r, g, b});
    if (max == 0)
        return {c.alpha, 0, 0, 0};
    const double s = delta * 65535 / max;
    double degrees = 0;
    if (s != 0) {
        degrees = 60 * (b == max ? (r - g) / delta + 4 : g == max ? (b - r) / delta + 2 : (g - b) / delta);
        if (degrees < 0)
            degrees += 360;
    }
    return {c.alpha, channel(degrees * 182.04166666666666), channel(s), channel(max * 65535)};
}

tagVXHLSCOLOR16 hlsOf(const tagVXRGBCOLOR16& c) {
    const double r = c.red / 65535.0, g = c.green / 65535.0, b = c.blue / 65535.0;
    const double max = std::max({r, g, b}), min = std::min({r, g, b}), delta = max - min, l = (max + min) / 2;
    if (delta == 0)
        return {c.alpha, 0, channel(l * 65535), 0};
    const double s = l <= 0.5 ? delta / (max + min) : delta / (2 - max - min);
    const double dr = (max - r) / delta, dg = (max - g) / delta, db = (max - b) / delta;
    double degrees = 60 * (r == max ? db - dg : g == max ? 2 + dr - db : 4 + dg - dr);
    if (degrees < 0)
        degrees += 360;
    return {c.alpha, channel(degrees / 360 * 65535), channel(l * 65535), channel(s * 65535)};
}

struct Rgb {
    double red, green, blue;
};

/// Degrees, and saturation and value from 0 to 1.
Rgb rgbOfHsv(double degrees, double s, double v) {
    s = std::clamp(s, 0.0, 1.0);
    v = std::clamp(v, 0.0, 1.0);
    if (degrees >= 360)
        degrees = 359;
    const int i = int(degrees / 60);
    const double f = degrees / 60 - i;
    const double p = (1 - s) * v, q = (1 - s * f) * v, t = (1 - s * (1 - f)) * v;
    const Rgb sextants[] = {{v, t, p}, {q, v, p}, {p, v, t}, {p, q, v}, {t, p, v}, {v, p, q}};
    return sextants[i];
}

std::int64_t hueToRgb(std::int64_t a, std::int64_t b, std::int64_t hue) {
    if (hue < 0)
        hue += 65535;
    if (hue > 65535)
        hue -= 65535;
    std::int64_t c = a;
    if (hue < 10922)
        c = a + ((b - a) * hue + 5461) / 10922;
    else if (hue <= 32766)
        c = b;
    else if (hue < 43690)
        c = a + ((b - a) * (43690 - hue) + 5461) / 10922;
    return (std::min<std::int64_t>(c, 65535) * 65535 + 32767) / 65535;
}

tagVXRGBCOLOR16 rgbOfHls(const tagVXHLSCOLOR16& c) {
    const std::int64_t l = c.lightness, s = c.saturation, h = c.hue;
    std::int64_t m2 = l < 32768 ? ((s + 65535) * l + 32767) / 65535 : l + s - (s * l + 32767) / 65535;
    m2 &= 0xFFFF;
    const std::int64_t m1 = (2 * l - m2) & 0xFFFF;
    return {c.alpha, std::uint16_t(hueToRgb(m1, m2, h + 21845)), std::uint16_t(hueToRgb(m1, m2, h)),
            std::uint16_t(hueToRgb(m1, m2, h - 21845))};
}

/// Calls back with every triple of channels of the grid.
template <class Callback>
void eachTriple(Callback callback) {
    for (int a = 0; a <= cnFull; a += cnStep)
        for (int b = 0; b <= cnFull; b += cnStep)
            for (int c = 0; c <= cnFull; c += cnStep)
                callback(std::uint16_t(a), std::uint16_t(b), std::uint16_t(c));
}

TEST(XCColor, PackedColoursReplicateBytes) {
    const std::uint32_t packed = 0x80FF0010;
    const XCRgbColor color(packed);
    EXPECT_TRUE(color == (tagVXRGBCOLOR16{32896, 4112, 0, 65535}));
    EXPECT_EQ(std::uint32_t(color), packed);
    EXPECT_TRUE(XCRgbColor(XCColor(packed)) == color);
    // The high byte is taken, not rounded.
    EXPECT_EQ(XCColor(tagVXRGBCOLOR16{0x01FF, 0x80FF, 0xFFFF, 0x00FF}).GetColor(), 0x0100FF80u);
    XCColor edited(packed);
    edited.SetChannelG(7);
    edited.SetChannel(3, 9);
    edited.SetChannel(4, 1);
    EXPECT_EQ(edited.GetColor(), 0x09FF0710u);
}

TEST(XCColor, HsvStructIsInDegreesAndPercent) {
    const struct {
        tagVXHSVCOLOR16 hsv;
        std::uint32_t packed;
    } cases[] = {
        {{255, 0, 100, 100}, 0xFF0000FF},     {{0x1280, 120, 100, 100}, 0x8000FF00},
        {{255, 240, 100, 50}, 0xFF7F0000},    {{255, 359, 100, 100}, 0xFF0400FF}, // blue is 255 / 60
        {{255, 65535, 100, 100}, 0xFF0400FF},                                     // counts as 359
        {{255, 60, 150, 200}, 0xFF00FFFF},    {{255, 77, 0, 40}, 0xFF666666},
    };
    for (const auto& c : cases)
        EXPECT_EQ(XCColor(c.hsv).GetColor(), c.packed) << std::hex << XCColor(c.hsv).GetColor();
    for (int degrees = 0; degrees < 360; ++degrees) {
        for (int s = 0; s <= 100; s += 5) {
            for (int v = 0; v <= 100; v += 5) {
                const Rgb rgb = rgbOfHsv(degrees, s / 100.0, v / 100.0);
                const std::uint32_t expected = 0xFF000000u | std::uint32_t(rgb.blue * 255) << 16 |
                                               std::uint32_t(rgb.green * 255) << 8 | std::uint32_t(rgb.red * 255);
                const tagVXHSVCOLOR16 hsv{255, std::uint16_t(degrees), std::uint16_t(s), std::uint16_t(v)};
                ASSERT_EQ(XCColor(hsv).GetColor(), expected) << degrees << ' ' << s << ' ' << v;
            }
        }
    }
}

TEST(XCHsvColor, KnownColours) {
    const struct {
        tagVXRGBCOLOR16 rgb;
        tagVXHSVCOLOR16 hsv;
    } cases[] = {
        {{9, 65535, 0, 0}, {9, 0, 65535, 65535}},
        {{9, 0, 65535, 0}, {9, 21845, 65535, 65535}},
        {{9, 0, 0, 65535}, {9, 43690, 65535, 65535}},
        {{9, 0, 0, 0}, {9, 0, 0, 0}},
        {{9, 1000, 1000, 1000}, {9, 0, 0, 1000}},
        {{9, 65535, 0, 65535}, {9, 54612, 65535, 65535}}, // 300 degrees, as blue overrides red
    };
    for (const auto& c : cases) {
        EXPECT_TRUE(XCHsvColor(c.rgb) == c.hsv) << XCHsvColor(c.rgb).GetChannelH();
        EXPECT_EQ(XCHsvColor(c.rgb).GetChannelA(), 9);
    }
    // A full turn counts as 359 degrees: blue is a sixtieth.
    EXPECT_TRUE(XCRgbColor(tagVXHSVCOLOR16{9, 65535, 65535, 65535}) == (tagVXRGBCOLOR16{9, 65535, 0, 1092}));
}

TEST(XCHsvColor, ConvertsTheWholeCube) {
    eachTriple([](std::uint16_t a, std::uint16_t b, std::uint16_t c) {
        ASSERT_TRUE(XCHsvColor(tagVXRGBCOLOR16{7, a, b, c}) == hsvOf({7, a, b, c})) << a << ' ' << b << ' ' << c;
        const Rgb rgb = rgbOfHsv(a * 0.005493247882810712, b / 65535.0, c / 65535.0);
        const tagVXRGBCOLOR16 expected{7, channel(rgb.red * 65535), channel(rgb.green * 65535),
                                       channel(rgb.blue * 65535)};
        ASSERT_TRUE(XCRgbColor(tagVXHSVCOLOR16{7, a, b, c}) == expected) << a << ' ' << b << ' ' << c;
    });
}

TEST(XCHlsColor, KnownColours) {
    const struct {
        tagVXRGBCOLOR16 rgb;
        tagVXHLSCOLOR16 hls;
    } cases[] = {
        {{9, 65535, 0, 0}, {9, 0, 32767, 65535}},
        {{9, 0, 0, 0}, {9, 0, 0, 0}},
        {{9, 65535, 65535, 65535}, {9, 0, 65535, 0}},
        {{9, 65535, 0, 65535}, {9, 54612, 32767, 65535}}, // 300 degrees
    };
    for (const auto& c : cases)
        EXPECT_TRUE(XCHlsColor(c.rgb) == c.hls) << XCHlsColor(c.rgb).GetChannelH();
    for (const std::uint16_t grey : {0, 1, 12345, 32767, 32768, 65534, 65535})
        EXPECT_TRUE(XCRgbColor(tagVXHLSCOLOR16{9, 4321, grey, 0}) == (tagVXRGBCOLOR16{9, grey, grey, grey})) << grey;
    // Products of 65535 x 131070 pass 32 bits.
    EXPECT_TRUE(XCRgbColor(tagVXHLSCOLOR16{9, 21845, 32767, 65535}) == (tagVXRGBCOLOR16{9, 0, 65534, 0}));
}

TEST(XCHlsColor, ConvertsTheWholeCube) {
    eachTriple([](std::uint16_t a, std::uint16_t b, std::uint16_t c) {
        ASSERT_TRUE(XCHlsColor(tagVXRGBCOLOR16{7, a, b, c}) == hlsOf({7, a, b, c})) << a << ' ' << b << ' ' << c;
        ASSERT_TRUE(XCRgbColor(tagVXHLSCOLOR16{7, a, b, c}) == rgbOfHls({7, a, b, c})) << a << ' ' << b << ' ' << c;
    });
}

TEST(XCHlsColor, PackedValuesGoThroughRgb) {
    const std::uint32_t packed = 0x40C08020;
    EXPECT_EQ(std::uint32_t(XCHsvColor(packed)) >> 24, 0x40u);
    EXPECT_TRUE(XCHsvColor(packed) == hsvOf(XCRgbColor(packed)));
    EXPECT_TRUE(XCHlsColor(packed) == hlsOf(XCRgbColor(packed)));
    EXPECT_EQ(XCColor(XCHsvColor(65535, 21845, 65535, 65535)).GetColor() & 0xFF00FF00u, 0xFF00FF00u);
    XCHlsColor color;
    EXPECT_EQ(std::uint32_t(color), 0xFFFFFFFFu);
    color.SetChannel(0, 1);
    color.SetChannel(1, 2);
    color.SetChannel(2, 3);
    color.SetChannel(3, 4);
    color.SetChannel(4, 5);
    EXPECT_TRUE(color == (tagVXHLSCOLOR16{4, 1, 2, 3}));
    EXPECT_EQ(color.GetChannel(3), 4);
    EXPECT_EQ(color.GetChannel(4), 0);
}

TEST(XCComplexColor, ConvertsBetweenItsModes) {
    XCComplexColor color(std::uint32_t{0x80FF0010});
    EXPECT_EQ(color.GetInvertBrightness(), 0);
    EXPECT_EQ(color.GetBrightness(), 255);
    color.Convert(0);
    color.Convert(7);
    EXPECT_EQ(color.GetColor(), 0x80FF0010u);
    color.Convert(1);
    EXPECT_EQ(color.GetColor64(), 0x8080FFFF00001010u);
    color.Convert(0);
    EXPECT_EQ(color.GetColor(), 0x80FF0010u);
    const XCComplexColor wide(std::uint64_t{0xFFFE123400017FFF});
    EXPECT_EQ(wide.GetColor64(), 0xFFFE123400017FFFu);
    EXPECT_EQ(wide.GetR64(), 0x7FFF);
    EXPECT_EQ(wide.GetOpacity64(), 0xFFFE);
    color.SetColor(255, 10, 56, 20);
    EXPECT_EQ(color.GetInvertBrightness(), 200);
    color.SetColor(127, 0, 0, 0);
    EXPECT_EQ(color.GetInvertBrightness(), 128);
}

} // namespace
