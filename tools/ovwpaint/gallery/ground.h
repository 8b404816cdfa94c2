#ifndef OVWPAINT_GALLERY_GROUND_H
#define OVWPAINT_GALLERY_GROUND_H

/// @file
/// What brushes are shown on.

#include "gallery/sheet.h"

namespace ovwpaint::gallery {

/// Bands of colours, greys and black on a transparent ground: those right of `end` pixels are half transparent and
/// nothing.
Ground bandsUpTo(int end);
/// The pixels of a landscape that was never photographed, with sky, hills, water and a meadow.
Ground landscape(int width, int height);
/// The picture of a file, its middle, reduced so that it fills the size. Throws what PngReader throws.
Ground photograph(const std::string& path, int width, int height);

} // namespace ovwpaint::gallery

#endif // OVWPAINT_GALLERY_GROUND_H
