#ifndef OVWPAINT_TIPS_H
#define OVWPAINT_TIPS_H

/// @file
/// The pictures that image tips stamp.

#include "brush.h"
#include "colour.h"

#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace ovwpaint {

/// What names begin with that stand for something of the program's own.
inline constexpr std::string_view cnBuiltInPrefix = "builtin:";
/// A splatter of ink, each time another one, by the brush's fields.
inline constexpr const char* cnSplatterTip = "builtin:splatter";

/// A tip that is painted from a formula.
struct BuiltInTip {
    const char* name;
    int depth; ///< bits a pixel: 1, 8 or 32
    int width; ///< pixels
    int height;
    /// The colour at a place, both coordinates from -1 to 1 over the picture.
    Colour (*at)(double u, double v);
};

std::span<const BuiltInTip> builtInTips();
/// Every name that loadTip knows, "builtin:leaf-green, ...", for messages.
std::string builtInTipNames();
bool isBuiltInTip(std::string_view name);

/// The tip of that name: a built-in one, or a PNG file. Pictures in black and white cover where they are black, grey
/// ones by their darkness, and those with colours or transparency have 32 bits. Splatters take numbers from the
/// library-wide generator. Throws what PngReader throws, and Failure for pictures of more than 2^24 pixels.
std::unique_ptr<XCImagePattern> loadTip(const std::string& nameOrPath, const BrushTips& settings);

} // namespace ovwpaint

#endif // OVWPAINT_TIPS_H
