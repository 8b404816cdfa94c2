// Previews of tips: their outlines, drawn by the application.

#include "Utility/hooks.h"
#include "brush/polygonfill.h"
#include "ovwcmn/detail/toint.h"
#include "ovwcmn/xcpattern.h"

#include <algorithm>

namespace {

XCPointD centerOf(tagPOINT position) { return XCPointD(position.x, position.y); }

} // namespace

int XCPattern::PolygonFill(XCGdi& gdi, int mode, const tagPOINT* points, int count, std::uint32_t color) {
    return points && count >= 3 ? ovw::utility::hooks().fillPolygon(gdi, mode, points, count, color) : 0;
}

int XCPattern::PolygonFill(XCGdi& gdi, int mode, const tagPOINTD* points, int count, std::uint32_t color) {
    XCTArray<tagPOINT> rounded;
    rounded.SetSize(points ? count : 0);
    std::transform(points, points + rounded.GetSize(), rounded.begin(), [](const tagPOINTD& point) {
        return tagPOINT{ovw::roundToInt(point.x), ovw::roundToInt(point.y)};
    });
    return PolygonFill(gdi, mode, rounded.GetData(), rounded.GetSize(), color);
}

int XCPattern::DrawGDI(XCGdi&, int, tagPOINT, float, std::uint32_t) { return 0; }

int XCCirclePattern::DrawGDI(XCGdi& gdi, int mode, tagPOINT position, float size, std::uint32_t color) {
    // Equal shape factors make a circle of the size, as in Draw.
    const double pixels = size;
    const bool isCircle = sizeRate == sizeRate2;
    ovw::brush::EllipseCorners corners;
    const int count = ovw::brush::ellipseCorners(corners, centerOf(position), isCircle ? pixels : pixels * sizeRate,
                                                 isCircle ? pixels : pixels * sizeRate2, rotation);
    return PolygonFill(gdi, mode, corners.data(), count, color);
}

int XCRectPattern::DrawGDI(XCGdi& gdi, int mode, tagPOINT position, float size, std::uint32_t color) {
    const double pixels = size;
    const auto corners = ovw::brush::rotatedRect(centerOf(position), pixels * sizeRate, pixels * sizeRate2, rotation);
    return PolygonFill(gdi, mode, corners.data(), static_cast<int>(corners.size()), color);
}

int XCPolygonPattern::DrawGDI(XCGdi& gdi, int mode, tagPOINT position, float size, std::uint32_t color) {
    XCTArray<tagPOINTD> corners;
    corners.SetSize(vertices.GetSize());
    placeCorners(corners.GetData(), centerOf(position), size);
    return PolygonFill(gdi, mode, corners.GetData(), corners.GetSize(), color);
}
