#ifndef OVW_PLATFORM_FONT_H
#define OVW_PLATFORM_FONT_H

/// @file
/// Text as pixels, by the fonts that the system has.

#include <cstdint>
#include <string_view>
#include <vector>

namespace ovw::platform {

struct FontRequest {
    std::string_view name; ///< a family or a font file in the library's form; empty for any font
    int height;            ///< of the em square, in pixels, 1 to 10000
    bool isBold;
    bool isItalic;
};

/// How much of each pixel something covers, 0 to 255; rows top-down.
struct Coverage {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels; ///< width x height
};

/// Draws one line of text, its beginning at column 0; the height is that of the font's lines, for which the unknown
/// characters have a box. Styles that the family lacks are imitated. False when there is no such font. A font stays
/// open in the calling thread until it draws with another. Throws std::bad_alloc.
bool drawTextLine(std::u16string_view text, const FontRequest& font, Coverage& coverage);

} // namespace ovw::platform

#endif // OVW_PLATFORM_FONT_H
