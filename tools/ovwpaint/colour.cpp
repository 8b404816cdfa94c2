#include "colour.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>

namespace ovwpaint {

namespace {

struct NamedColour {
    std::string_view name;
    Colour colour;
};

constexpr std::array cnNamedColours = {
    NamedColour{"white", packColour(255, 255, 255)},
    NamedColour{"black", packColour(0, 0, 0)},
    NamedColour{"transparent", packColour(255, 255, 255, 0)},
    NamedColour{"grey", packColour(128, 128, 128)},
    NamedColour{"gray", packColour(128, 128, 128)},
    NamedColour{"red", packColour(220, 40, 40)},
    NamedColour{"green", packColour(40, 150, 70)},
    NamedColour{"blue", packColour(40, 80, 200)},
    NamedColour{"yellow", packColour(250, 210, 60)},
    NamedColour{"ivory", packColour(255, 253, 240)},
};

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool equalIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return lower(x) == lower(y); });
}

/// The value of all of `digits` as a hexadecimal number.
std::optional<std::uint32_t> parseHexadecimal(std::string_view digits) {
    std::uint32_t value = 0;
    const std::from_chars_result result = std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    if (result.ec != std::errc() || result.ptr != digits.data() + digits.size())
        return std::nullopt;
    return value;
}

/// From channels of one hexadecimal digit each, the first on top.
Colour fromShortForm(std::uint32_t value, bool withAlpha) {
    const std::uint32_t rgba = withAlpha ? value : value << 4 | 0xF;
    const auto channel = [rgba](int shift) { return (rgba >> shift & 0xF) * 0x11; };
    return packColour(channel(12), channel(8), channel(4), channel(0));
}

Colour fromLongForm(std::uint32_t value, bool withAlpha) {
    const std::uint32_t rgba = withAlpha ? value : value << 8 | 0xFF;
    const auto channel = [rgba](int shift) { return rgba >> shift & 0xFF; };
    return packColour(channel(24), channel(16), channel(8), channel(0));
}

} // namespace

Colour over(Colour top, Colour bottom) {
    constexpr std::uint32_t cnFull = 255;
    // What each contributes, in parts of 255 * 255.
    const std::uint32_t upper = alphaOf(top) * cnFull;
    const std::uint32_t lower = (cnFull - alphaOf(top)) * alphaOf(bottom);
    const std::uint32_t both = upper + lower;
    if (both == 0)
        return bottom;
    const auto mixed = [=](std::uint32_t a, std::uint32_t b) { return (a * upper + b * lower + both / 2) / both; };
    return packColour(mixed(redOf(top), redOf(bottom)), mixed(greenOf(top), greenOf(bottom)),
                      mixed(blueOf(top), blueOf(bottom)), (both + cnFull / 2) / cnFull);
}

std::optional<Colour> parseColour(std::string_view text) {
    for (const NamedColour& known : cnNamedColours) {
        if (equalIgnoringCase(known.name, text))
            return known.colour;
    }
    if (!text.starts_with('#'))
        return std::nullopt;
    const std::string_view digits = text.substr(1);
    const std::optional<std::uint32_t> value = parseHexadecimal(digits);
    if (!value)
        return std::nullopt;
    switch (digits.size()) {
    case 3: return fromShortForm(*value, false);
    case 4: return fromShortForm(*value, true);
    case 6: return fromLongForm(*value, false);
    case 8: return fromLongForm(*value, true);
    default: return std::nullopt;
    }
}

std::string formatColour(Colour colour) {
    char text[10];
    std::snprintf(text, sizeof text, "#%02X%02X%02X%02X", redOf(colour), greenOf(colour), blueOf(colour),
                  alphaOf(colour));
    return text;
}

std::string colourNames() {
    std::string names;
    for (const NamedColour& known : cnNamedColours)
        names.append(names.empty() ? "" : ", ").append(known.name);
    return names;
}

} // namespace ovwpaint
