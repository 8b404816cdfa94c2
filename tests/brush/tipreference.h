#ifndef OVW_TESTS_BRUSH_TIPREFERENCE_H
#define OVW_TESTS_BRUSH_TIPREFERENCE_H

#include "canvas.h"
#include "ovwcmn/wintypes.h"

#include <vector>

/// @file
/// The shapes of tips and polygons, computed one pixel and one formula at a time, without tiles, rows or intervals.

namespace ovw::test {

/// One pixel that a shape touches. A shape may touch a pixel more than once.
struct Dab {
    int x, y;
    float coverage;
};

/// What a shape does to an image.
struct Shape {
    std::vector<Dab> dabs;
    bool isHard = false; ///< the coverages are all full, and the mixer keeps the one it has
    XCRect bounds;       ///< not clipped
};

struct ImageSize {
    int width, height;
};

Shape softCircle(ImageSize image, double x, double y, double r);
Shape hardCircle(ImageSize image, double x, double y, double r);
Shape softEllipse(ImageSize image, double x, double y, double rx, double ry, double angle);
Shape hardEllipse(ImageSize image, double x, double y, double rx, double ry, double angle);

using Corners = std::vector<tagPOINTD>;

Shape softPolygon(ImageSize image, const Corners& corners);
Shape evenOddPolygon(ImageSize image, const Corners& corners);
Shape nonZeroPolygon(ImageSize image, const Corners& corners);
/// A rectangle turned about its centre.
Corners cornersOfRect(double cx, double cy, double width, double height, double angle);

/// Paints the shape pixel by pixel.
void paint(Canvas& canvas, const Shape& shape);

} // namespace ovw::test

#endif // OVW_TESTS_BRUSH_TIPREFERENCE_H
