#ifndef OVW_TESTS_VIMAGE_PIXELREFERENCE_H
#define OVW_TESTS_VIMAGE_PIXELREFERENCE_H

#include <cstdint>
#include <initializer_list>

/// @file
/// The conversions between depths, one row of a table a depth, apart from the library. Pixels are the stored numbers of
/// support/testimage.h (a 16-bit pixel has its coverage in the low byte), colours are 0xAABBGGRR.

namespace ovw::test {

struct MonoRules {
    int trans = 127;
    int bw = 128;
};

constexpr int redOf(std::uint32_t c) { return int(c & 0xFF); }
constexpr int greenOf(std::uint32_t c) { return int(c >> 8 & 0xFF); }
constexpr int blueOf(std::uint32_t c) { return int(c >> 16 & 0xFF); }
constexpr int alphaOf(std::uint32_t c) { return int(c >> 24); }
constexpr int lumOf(std::uint32_t c) { return (redOf(c) + 4 * greenOf(c) + 2 * blueOf(c)) / 7; }
constexpr int darknessOf(std::uint32_t c) { return 255 - lumOf(c); }
constexpr std::uint32_t greyColour(int grey, int alpha) {
    return std::uint32_t(alpha) << 24 | std::uint32_t(grey) << 16 | std::uint32_t(grey) << 8 | std::uint32_t(grey);
}
/// Ink of a colour: its darkness, weighted by its alpha.
constexpr int inkOf(std::uint32_t c) { return darknessOf(c) * (alphaOf(c) + 1) >> 8; }
constexpr std::uint32_t twoBitsOf(int coverage, int grey, MonoRules rules) {
    return coverage <= rules.trans ? 0 : grey >= rules.bw ? 2 : 3;
}
constexpr std::uint32_t overBlack(std::uint32_t c) {
    auto part = [&](int x) { return std::uint32_t(x * (alphaOf(c) + 1) >> 8); };
    return 0xFF000000 | part(blueOf(c)) << 16 | part(greenOf(c)) << 8 | part(redOf(c));
}

/// What the nine readers say of one pixel.
struct Readings {
    std::uint32_t bit1, bit2, bit8, bit16, bit24, bit32;
    std::uint32_t image8, image24, mask8;

    bool operator==(const Readings&) const = default;
};

/// inkColours: entries 1 to 3 of the index colours.
inline Readings expectedReadings(int depth, std::uint32_t p, MonoRules rules, const std::uint32_t (&inkColours)[4]) {
    constexpr std::uint32_t black = 0xFF000000, white = 0xFFFFFFFF, clear = 0x00FFFFFF;
    switch (depth) {
    case 1: {
        const std::uint32_t b8 = p ? 255 : 0, b24 = p ? 0 : clear;
        return {p, p ? 3u : 0u, b8, p ? black : 0, b24, p ? inkColours[1] : 0, b8, b24, 255};
    }
    case 2: {
        const bool ink = p == 3, odd = p & 1;
        return {ink,
                p == 1 ? 0 : p,
                ink ? 255u : 0u,
                ink      ? black
                : p == 2 ? white
                         : 0,
                ink ? 0 : clear,
                p >= 2 ? inkColours[p] : 0,
                odd ? 255u : 0u,
                odd ? 0 : clear,
                p >= 2 ? 255u : 0u};
    }
    case 8: {
        const bool ink = int(p) > rules.trans;
        const std::uint32_t grey = greyColour(255 - int(p), 255);
        return {ink, ink ? 3u : 0u, p, p << 24, grey, (p << 24) + (inkColours[1] & clear), p, grey, 255};
    }
    case 16: {
        const int a = int(p & 0xFF), grey = int(p >> 8);
        const std::uint32_t colour = greyColour(grey, a);
        return {a > rules.trans,
                twoBitsOf(a, grey, rules),
                std::uint32_t(a),
                colour,
                greyColour((a + 1) * grey >> 8, 255),
                colour,
                std::uint32_t(255 - grey),
                greyColour(grey, 255),
                std::uint32_t(a)};
    }
    case 24: {
        const auto dark = std::uint32_t(darknessOf(p));
        return {int(dark) > rules.trans, lumOf(p) < rules.bw ? 3u : 2u, dark, black + p, p, black + p, dark, p, 255};
    }
    default: {
        const int a = alphaOf(p);
        return {inkOf(p) > rules.trans,
                twoBitsOf(a, lumOf(p), rules),
                std::uint32_t(inkOf(p)),
                greyColour(lumOf(p), a),
                overBlack(p),
                p,
                std::uint32_t(darknessOf(p)),
                black | (p & clear),
                std::uint32_t(a)};
    }
    }
}

constexpr std::uint32_t stored16(int coverage, int grey) { return std::uint32_t(coverage | grey << 8); }

/// What an image of `depth` stores when its writer for `written` bits gets `value`.
inline std::uint32_t expectedStored(int depth, int written, std::uint32_t value, MonoRules rules) {
    constexpr std::uint32_t black = 0xFF000000, white = 0xFFFFFFFF, rgb = 0x00FFFFFF;
    const int grey = blueOf(value), a = alphaOf(value); // of the 16-bit rules
    const auto ink16 = std::uint32_t((255 - grey) * (a + 1) >> 8);
    const bool ink = int(value) > rules.trans; // of a density
    const std::uint32_t table[6][6] = {
        // Set1BitColor, Set2BitColor, Set8BitColor, Set16BitColor, Set24BitColor, Set32BitColor
        {value != 0, value == 2 || value == 3, ink, int(ink16) > rules.trans, darknessOf(value) > rules.trans,
         inkOf(value) > rules.trans},
        {value ? 3u : 0u, value == 2 || value == 3 ? value : 0, ink ? 3u : 0u, twoBitsOf(a, grey, rules),
         lumOf(value) >= rules.bw ? 2u : 3u, twoBitsOf(a, lumOf(value), rules)},
        {value ? 255u : 0u, value ? 255u : 0u, value, ink16, std::uint32_t(darknessOf(value)),
         std::uint32_t(inkOf(value))},
        {value ? stored16(255, 0) : 0,
         value == 2   ? stored16(255, 255)
         : value == 3 ? stored16(255, 0)
                      : 0,
         stored16(int(value & 0xFF), 0), stored16(a, grey), stored16(255, lumOf(value)), stored16(a, lumOf(value))},
        {value ? 0 : rgb, value == 3 ? 0 : rgb, greyColour(255 - int(value & 0xFF), 0), value & rgb, value & rgb,
         value & rgb},
        {value ? black : 0,
         value == 2   ? white
         : value == 3 ? black
                      : 0,
         value << 24, value, black | (value & rgb), value},
    };
    auto place = [](int bits) { return bits == 1 ? 0 : bits == 2 ? 1 : bits == 8 ? 2 : bits / 8 + 1; };
    return table[place(depth)][place(written)];
}

/// The value that MakeNativeColor gives for a colour.
inline std::uint32_t expectedNative(int depth, std::uint32_t colour, MonoRules rules) {
    switch (depth) {
    case 1: return inkOf(colour) > rules.trans;
    case 2: return twoBitsOf(alphaOf(colour), lumOf(colour), rules);
    case 8: return std::uint32_t(inkOf(colour));
    case 16: return (colour & 0xFF000000) + (std::uint32_t(lumOf(colour)) << 16);
    case 24: return colour & 0x00FFFFFF;
    default: return colour;
    }
}

constexpr int behindChannel(int x, int c, int k) { return x > (255 - c) * k / 255 ? x - (255 - c) * k / 255 : 0; }

/// A colour put behind an existing colour; overWhite: of which a partly transparent one is first taken over white.
constexpr std::uint32_t behind(std::uint32_t existing, std::uint32_t colour, bool overWhite) {
    const int a = alphaOf(colour), d = alphaOf(existing);
    std::uint32_t rgb = 0;
    for (int shift : {0, 8, 16}) {
        int x = d ? int(existing >> shift & 255) : 255;
        if (overWhite && d > 0 && d < 255)
            x = 255 - (255 - x) * d / 255;
        rgb |= std::uint32_t(behindChannel(x, int(colour >> shift & 255), a * (255 - d) / 255)) << shift;
    }
    return rgb | std::uint32_t(255 - (255 - a) * (255 - d) / 255) << 24;
}

} // namespace ovw::test

#endif // OVW_TESTS_VIMAGE_PIXELREFERENCE_H
