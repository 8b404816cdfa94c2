#ifndef OVWPAINT_NAMES_H
#define OVWPAINT_NAMES_H

/// @file
/// Names for the numbers that choose among a few ways of painting.

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace ovwpaint {

struct NamedValue {
    const char* name; ///< lower case words joined by hyphens
    int value;
};

std::span<const NamedValue> compositionNames(); ///< XCFastPixelMixer::DrawComposition
std::span<const NamedValue> cacheNames();       ///< how the stamps of a stroke add up
std::span<const NamedValue> tipNames();         ///< XCPattern's kinds
std::span<const NamedValue> tipOrderNames();    ///< in which order the tips of a list come
std::span<const NamedValue> textureModeNames(); ///< see XCFastPixelMixer::SetTexture

/// Letters in either case, hyphens or not: "color-burn" is also "ColorBurn".
std::optional<int> valueNamed(std::span<const NamedValue> names, std::string_view text);
/// The name of the value, or null.
const char* nameOf(std::span<const NamedValue> names, int value);
/// "normal, erase, ...", for messages and help.
std::string listOf(std::span<const NamedValue> names);

} // namespace ovwpaint

#endif // OVWPAINT_NAMES_H
