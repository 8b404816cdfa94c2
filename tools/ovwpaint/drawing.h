#ifndef OVWPAINT_DRAWING_H
#define OVWPAINT_DRAWING_H

/// @file
/// From a recording to a picture: the work behind `ovwpaint draw`.

#include "colour.h"
#include "layout.h"
#include "materials.h"
#include "runoptions.h"
#include "strokeshaper.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ovwpaint {

struct DrawOptions {
    std::string strokes;
    std::string output;
    SizeWish size;
    std::optional<Colour> background; ///< white, or black ink for a brush that erases
    std::optional<int> depth;         ///< bits a pixel; 32, or those of the image painted onto
    RunOptions run;
    std::uint32_t seed = 1;
    std::string preset = "ink-pen";
    std::string brushFile;          ///< empty: the preset
    std::optional<int> brushSize;   ///< pixels of the drawing, instead of the brush's own size
    std::optional<int> composition; ///< instead of the brush's own; likewise below
    std::optional<int> cacheKind;
    bool noCache = false;
    std::string texture;
    std::optional<int> textureMode;
    std::optional<int> textureDensity;
    bool textureAfter = false;     ///< set it; else the brush's own
    std::vector<std::string> tips; ///< image tips instead of the brush's tip; likewise below
    std::optional<int> tipOrder;
    bool tipInvert = false;
    bool tipGrey = false;
    bool bend = false;
    std::optional<int> blurRadius;
    std::string mask;
    std::optional<XCPoint> cloneOffset;
    PictureWish pictures;
    std::string backdrop; ///< a picture to paint on
    std::string onto;     ///< an image to paint into and to save again
    Joining joining = Joining::Smooth;
};

/// Throws Failure, Interrupted or XCException; the output file is as it was before then.
void drawPicture(const DrawOptions& options);

} // namespace ovwpaint

#endif // OVWPAINT_DRAWING_H
