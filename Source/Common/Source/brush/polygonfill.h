#ifndef OVW_BRUSH_POLYGONFILL_H
#define OVW_BRUSH_POLYGONFILL_H

#include "ovwcmn/wintypes.h"

#include <array>
#include <span>

class XCFastPixelMixer;
class XCVOffscreen;

namespace ovw::brush {

class RowPainter;

struct PolygonTarget {
    XCVOffscreen* image;
    XCFastPixelMixer* mixer;
    const tagRECT* clip; ///< may be null
};

/// Fills a closed polygon given in pixels, even-odd on four sub-lines a row; results are those of XCPolygon.
int fillPolygonAA(tagRECT* changed, XCVOffscreen& image, const tagRECT* clip, RowPainter& painter,
                  std::span<const tagPOINTD> vertices);
/// Fills it through a mixer, even-odd.
int fillPolygon(tagRECT* changed, const PolygonTarget& target, std::span<const tagPOINTD> vertices, bool antialias);

/// The same for a rectangle turned by `angle` radians about its centre, even-odd.
int fillRotatedRect(tagRECT* changed, const PolygonTarget& target, tagPOINTD center, double width, double height,
                    double angle, bool antialias);

/// The corners of that rectangle.
std::array<tagPOINTD, 4> rotatedRect(tagPOINTD center, double width, double height, double angle);

constexpr int cnMaxEllipseCorners = 512;
using EllipseCorners = std::array<tagPOINTD, cnMaxEllipseCorners>;
/// The corners of a polygon for an ellipse turned by `angle` radians about its centre.
/// @return their number, 32 to 512 by the longer axis
int ellipseCorners(EllipseCorners& corners, tagPOINTD center, double width, double height, double angle);

/// (x, y) turned by an angle given by its sine and cosine, then moved.
constexpr tagPOINTD turnedAndMoved(double x, double y, double sine, double cosine, const tagPOINTD& by) {
    return {x * cosine - y * sine + by.x, y * cosine + x * sine + by.y};
}

} // namespace ovw::brush

#endif // OVW_BRUSH_POLYGONFILL_H
