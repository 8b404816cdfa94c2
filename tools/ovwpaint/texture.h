#ifndef OVWPAINT_TEXTURE_H
#define OVWPAINT_TEXTURE_H

/// @file
/// Textures of the program's own, which need no file.

#include "picture.h"

namespace ovwpaint {

/// The name by which brushes and the command line ask for makeGrain().
inline constexpr const char* cnGrainTexture = "builtin:grain";

/// The tooth of a rough paper: 256 x 256 texels that fit together on all sides, with every brightness about as often.
GreyPicture makeGrain();
/// The built-in texture of that name, or the picture of that file. Throws what readGrey throws.
GreyPicture loadTexture(const std::string& nameOrPath);

} // namespace ovwpaint

#endif // OVWPAINT_TEXTURE_H
