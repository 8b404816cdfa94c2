#include "ovwcmn/xcpattern.h"

#include "brush/polygonfill.h"
#include "brush/stampbounds.h"
#include "ovwcmn/vxmath.h"
#include "ovwcmn/xcfastpixelmixer.h"
#include "ovwcmn/xcvoffscreen.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace {

using ovw::brush::reportStamp;

/// Depths below this have no coverage to anti-alias with.
constexpr int cnMinSoftDepth = 8;
/// An ellipse that is not wider than this, in pixels from its centre, is drawn as a rectangle.
constexpr double cnNeedleRadius = 1.1;
/// The height of that rectangle, of the ellipse's.
constexpr double cnNeedleHeight = 0.8;
constexpr int cnMaxPresetCorners = 16;

bool isSoft(int antialias, const XCVOffscreen* image) { return antialias != 0 && image->GetDepth() >= cnMinSoftDepth; }

} // namespace

XCPattern::~XCPattern() = default;

void XCPattern::SetParameter(float sizeRateX, float sizeRateY, float radians) {
    sizeRate = sizeRateX;
    sizeRate2 = sizeRateY;
    rotation = radians;
}

int XCPattern::IsTrueCircle() const { return 0; }

int XCPattern::Draw(XCRect*, XCVOffscreen*, XCFastPixelMixer*, XCPointD, float, float, int) { return 1; }

int XCCirclePattern::Draw(XCRect* changed, XCVOffscreen* image, XCFastPixelMixer* mixer, XCPointD position, float size,
                          float, int antialias) {
    const bool soft = isSoft(antialias, image);
    const double rx = sizeRate * (size * 0.5);
    const double ry = sizeRate2 * (size * 0.5);
    XCRect drawn;
    if (sizeRate == sizeRate2) {
        const auto fill = soft ? CircleFillAA : CircleFill;
        fill(image, position.x, position.y, size * 0.5, mixer, drawn);
    } else if (rx > cnNeedleRadius && ry > cnNeedleRadius) {
        const auto fill = soft ? EllipseFillAA : EllipseFill;
        fill(image, position.x, position.y, rx, ry, rotation, mixer, drawn);
    } else {
        ovw::brush::fillRotatedRect(drawn, {image, mixer, nullptr}, {position.x + 0.5, position.y + 0.5}, rx,
                                    size * cnNeedleHeight * sizeRate2, rotation, soft);
    }
    return reportStamp(changed, image, drawn);
}

int XCRectPattern::IsTrueCircle() const { return sizeRate == sizeRate2; }

int XCRectPattern::Draw(XCRect* changed, XCVOffscreen* image, XCFastPixelMixer* mixer, XCPointD position, float size,
                        float, int antialias) {
    const double pixels = size;
    XCRect drawn;
    ovw::brush::fillRotatedRect(drawn, {image, mixer, nullptr}, position, pixels * sizeRate, pixels * sizeRate2,
                                rotation, isSoft(antialias, image));
    return reportStamp(changed, image, drawn);
}

XCPolygonPattern::XCPolygonPattern() : XCPattern(cnKindPolygon) {
    const tagPOINT triangle[] = {{0, -1}, {1, 1}, {-1, 1}};
    SetPolygon(triangle, 3, 1.0f);
}

XCPolygonPattern::XCPolygonPattern(const XCTArray<tagPOINTD>* polygon) : XCPattern(cnKindPolygon) {
    SetPolygon(polygon);
}

XCPolygonPattern::XCPolygonPattern(const tagPOINT* points, int count, float scale) : XCPattern(cnKindPolygon) {
    SetPolygon(points, count, scale);
}

void XCPolygonPattern::SetPolygon(const XCTArray<tagPOINTD>* polygon) {
    // Element by element: the tip's block is used again from stamp to stamp.
    vertices.SetSize(polygon->GetSize());
    std::copy(polygon->begin(), polygon->end(), vertices.begin());
}

void XCPolygonPattern::SetPolygon(const tagPOINT* points, int count, float scale) {
    vertices.SetSize(count);
    for (int i = 0; i < vertices.GetSize(); i++)
        vertices[i] = {points[i].x * static_cast<double>(scale), points[i].y * static_cast<double>(scale)};
}

int XCPolygonPattern::PresetPolygon(int count, int left, int right, int top, int bottom) {
    if (count < 3 || count > cnMaxPresetCorners)
        return 0;
    const auto corner = [](int x, int y) { return tagPOINTD{static_cast<double>(x), static_cast<double>(y)}; };
    vertices.SetSize(count);
    if (count == 3) {
        vertices[0] = corner(0, top);
        vertices[1] = corner(left, bottom);
        vertices[2] = corner(right, bottom);
    } else if (count == 4) {
        vertices[0] = corner(left, top);
        vertices[1] = corner(left, bottom);
        vertices[2] = corner(right, bottom);
        vertices[3] = corner(right, top);
    } else {
        const double radius = (static_cast<double>(right) - left) * 0.5;
        for (int i = 0; i < count; i++)
            vertices[i] = vxRotatePointD({radius, 0.0}, std::numbers::pi / 2.0 + i * 2.0 * std::numbers::pi / count);
    }
    return 1;
}

int XCPolygonPattern::Draw(XCRect* changed, XCVOffscreen* image, XCFastPixelMixer* mixer, XCPointD position, float size,
                           float, int antialias) {
    constexpr int cnUsualCorners = 64;
    std::array<tagPOINTD, cnUsualCorners> usual;
    XCTArray<tagPOINTD> many;
    const int count = vertices.GetSize();
    if (count > cnUsualCorners)
        many.SetSize(count);
    tagPOINTD* const corners = count > cnUsualCorners ? many.GetData() : usual.data();
    placeCorners(corners, position, size);
    const bool soft = isSoft(antialias, image);
    XCRect drawn;
    if (!soft || count >= 3)
        ovw::brush::fillPolygon(drawn, {image, mixer, nullptr}, {corners, static_cast<std::size_t>(count)}, soft);
    return reportStamp(changed, image, drawn);
}

void XCPolygonPattern::placeCorners(tagPOINTD* corners, XCPointD position, float size) const {
    const double unit = size * 0.5;
    const double sine = std::sin(static_cast<double>(rotation));
    const double cosine = std::cos(static_cast<double>(rotation));
    for (int i = 0; i < vertices.GetSize(); i++)
        corners[i] = ovw::brush::turnedAndMoved(sizeRate * vertices[i].x * unit, unit * vertices[i].y * sizeRate2, sine,
                                                cosine, position);
}
