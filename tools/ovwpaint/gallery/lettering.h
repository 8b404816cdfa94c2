#ifndef OVWPAINT_GALLERY_LETTERING_H
#define OVWPAINT_GALLERY_LETTERING_H

/// @file
/// Captions, written with the library's own pen.

#include "canvas.h"

#include <string_view>

namespace ovwpaint::gallery {

/// Writes small letters, digits, blanks, hyphens, commas and points; leaves out others. (left, top) is the corner of a
/// line of about 14 pixels.
void writeText(Canvas& canvas, int left, int top, std::string_view text);

} // namespace ovwpaint::gallery

#endif // OVWPAINT_GALLERY_LETTERING_H
