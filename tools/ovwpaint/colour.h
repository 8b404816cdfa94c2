#ifndef OVWPAINT_COLOUR_H
#define OVWPAINT_COLOUR_H

/// @file
/// Colours as text. Inside the program a colour is the library's packed value: red in bits 0 to 7, green, blue, alpha.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ovwpaint {

using Colour = std::uint32_t;

constexpr Colour packColour(std::uint32_t red, std::uint32_t green, std::uint32_t blue, std::uint32_t alpha = 255) {
    return alpha << 24 | blue << 16 | green << 8 | red;
}

constexpr std::uint32_t redOf(Colour colour) { return colour & 0xFF; }
constexpr std::uint32_t greenOf(Colour colour) { return colour >> 8 & 0xFF; }
constexpr std::uint32_t blueOf(Colour colour) { return colour >> 16 & 0xFF; }
constexpr std::uint32_t alphaOf(Colour colour) { return colour >> 24; }

/// The brightness by which the library's images of few bits go.
constexpr std::uint32_t greyOf(Colour colour) { return (redOf(colour) + 4 * greenOf(colour) + 2 * blueOf(colour)) / 7; }
/// One colour painted over another.
Colour over(Colour top, Colour bottom);

/// Reads a colour name, #RGB, #RGBA, #RRGGBB or #RRGGBBAA (letters in either case); nothing for any other text.
std::optional<Colour> parseColour(std::string_view text);
/// "#RRGGBBAA"
std::string formatColour(Colour colour);
/// "white, black, ...", for messages.
std::string colourNames();

} // namespace ovwpaint

#endif // OVWPAINT_COLOUR_H
