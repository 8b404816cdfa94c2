#ifndef OVWPAINT_LAYOUT_H
#define OVWPAINT_LAYOUT_H

/// @file
/// Where the drawing lies in the picture.

#include "brush.h"
#include "inkdocument.h"
#include "strokeshaper.h"

#include <optional>

namespace ovwpaint {

/// What the user asked for; what is left out follows from the drawing.
struct SizeWish {
    std::optional<int> width;  ///< pixels
    std::optional<int> height; ///< pixels
    std::optional<double> scale;
};

struct Layout {
    int width = 0;
    int height = 0;
    double scale = 1.0; ///< pixels of the picture in a pixel of the drawing; the brush grows with it
    double left = 0.0;  ///< where the drawing's origin lies in the picture, in pixels
    double top = 0.0;

    /// For paths in `unitsPerPixel` parts of a pixel.
    PathMapping mapping(double unitsPerPixel) const { return {-left / scale, -top / scale, scale * unitsPerPixel}; }
};

inline constexpr int cnMaxSide = 100000; ///< pixels
inline constexpr double cnMaxScale = 1000.0;

/// Without a size the picture is the drawing at its scale (1), with room for the brush around it. With a width, a
/// height or both, the drawing fills the picture as well as it can, or is centred in it at the scale given. Throws
/// Failure for pictures that are too large, and for a drawing without samples when no size is given.
Layout layOut(const InkSurvey& survey, const Brush& brush, const SizeWish& wish);

} // namespace ovwpaint

#endif // OVWPAINT_LAYOUT_H
