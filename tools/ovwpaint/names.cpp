#include "names.h"

#include "ovwcmn/xcfastpixelmixer.h"
#include "ovwcmn/xcpattern.h"

#include <array>

namespace ovwpaint {

namespace {

using Mixer = XCFastPixelMixer;

constexpr std::array cnCompositions = {
    NamedValue{"replace", Mixer::Replace},
    NamedValue{"normal", Mixer::Normal},
    NamedValue{"erase", Mixer::Erase},
    NamedValue{"darken-step", Mixer::DarkenStep},
    NamedValue{"lighten-step", Mixer::LightenStep},
    NamedValue{"water", Mixer::Water},
    NamedValue{"multiply", Mixer::Multiply},
    NamedValue{"water-multiply", Mixer::WaterMultiply},
    NamedValue{"add", Mixer::Add},
    NamedValue{"lighten", Mixer::Lighten},
    NamedValue{"darken", Mixer::Darken},
    NamedValue{"color-burn", Mixer::ColorBurn},
    NamedValue{"color-dodge", Mixer::ColorDodge},
    NamedValue{"screen", Mixer::Screen},
    NamedValue{"overlay", Mixer::Overlay},
    NamedValue{"difference", Mixer::Difference},
    NamedValue{"soft-light", Mixer::SoftLight},
    NamedValue{"hard-light", Mixer::HardLight},
    NamedValue{"add-fade", Mixer::AddFade},
};

// The numbers of XCPatternDrawMethod::SetOffscreen.
constexpr std::array cnCaches = {
    NamedValue{"over", 0},
    NamedValue{"over-capped", 1},
    NamedValue{"maximum", 2},
    NamedValue{"sum", 3},
};

constexpr std::array cnTips = {
    NamedValue{"circle", XCPattern::cnKindCircle},
    NamedValue{"rectangle", XCPattern::cnKindRect},
    NamedValue{"polygon", XCPattern::cnKindPolygon},
    NamedValue{"image", XCPattern::cnKindImage},
};

constexpr std::array cnTipOrders = {
    NamedValue{"cyclic", 0},
    NamedValue{"back-and-forth", 1},
    NamedValue{"random", 2},
};

constexpr std::array cnTextureModes = {
    NamedValue{"bias", 0},
    NamedValue{"scale", 1},
    NamedValue{"subtract", 2},
    NamedValue{"limit", 3},
};

/// Lower case without hyphens.
std::string plain(std::string_view text) {
    std::string result;
    for (const char c : text) {
        if (c != '-')
            result += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return result;
}

} // namespace

std::span<const NamedValue> compositionNames() { return cnCompositions; }
std::span<const NamedValue> cacheNames() { return cnCaches; }
std::span<const NamedValue> tipNames() { return cnTips; }
std::span<const NamedValue> tipOrderNames() { return cnTipOrders; }
std::span<const NamedValue> textureModeNames() { return cnTextureModes; }

std::optional<int> valueNamed(std::span<const NamedValue> names, std::string_view text) {
    for (const NamedValue& named : names) {
        if (plain(named.name) == plain(text))
            return named.value;
    }
    return std::nullopt;
}

const char* nameOf(std::span<const NamedValue> names, int value) {
    for (const NamedValue& named : names) {
        if (named.value == value)
            return named.name;
    }
    return nullptr;
}

std::string listOf(std::span<const NamedValue> names) {
    std::string list;
    for (const NamedValue& named : names)
        list += (list.empty() ? "" : ", ") + std::string(named.name);
    return list;
}

} // namespace ovwpaint
