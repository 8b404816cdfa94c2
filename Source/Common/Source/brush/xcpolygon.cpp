#include "ovwcmn/xcpolygon.h"

#include "brush/polygonfill.h"
#include "ovwcmn/xcgeometry.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace {

using ovw::brush::FillRule;

constexpr int cnMinEllipseCorners = 32;
constexpr int cnMaxEllipseCorners = 512;

std::span<const tagPOINTD> verticesOf(const XCPolyVertex* polygon) {
    return polygon ? polygon->Vertices() : std::span<const tagPOINTD>();
}

} // namespace

int XCPolyVertex::Add(double x, double y) {
    m_vertices.PushBack({x, y});
    return 1;
}

int XCPolyVertex::Num() const { return m_vertices.GetSize(); }

int XCPolyVertex::Get(tagPOINTD** out, int index) {
    const bool exists = index >= 0 && index < Num();
    *out = exists ? &m_vertices[index] : nullptr;
    return exists;
}

void XCPolyVertex::Clear() { m_vertices.Clear(); }

void XCPolyVertex::PolygonBox(tagRECT* box) const { *box = ovw::brush::boundsOfVertices(Vertices()); }

std::span<const tagPOINTD> XCPolyVertex::Vertices() const {
    return {m_vertices.GetData(), static_cast<std::size_t>(Num())};
}

int XCPolygon::DrawTriangle(tagRECT* changed, XCVOffscreen* image, const TTrianglePos* triangle) {
    return ovw::brush::fillPolygon(changed, {image, m_fastMixer, nullptr}, triangle->points, FillRule::Triangle);
}

int XCPolygon::DrawPolygon(tagRECT* changed, XCVOffscreen* image, const XCPolyVertex* polygon, const tagRECT* clip) {
    return ovw::brush::fillPolygon(changed, {image, m_fastMixer, clip}, verticesOf(polygon), FillRule::EvenOdd);
}

int XCPolygon::DrawPolygonNonZero(tagRECT* changed, XCVOffscreen* image, const XCPolyVertex* polygon,
                                  const tagRECT* clip) {
    return ovw::brush::fillPolygon(changed, {image, m_fastMixer, clip}, verticesOf(polygon), FillRule::NonZero);
}

int XCPolygon::DrawPolygonAA(tagRECT* changed, XCVOffscreen* image, const XCPolyVertex* polygon, const tagRECT* clip) {
    if (!polygon || polygon->Num() < 3)
        return 0;
    return ovw::brush::fillPolygon(changed, {image, m_fastMixer, clip}, verticesOf(polygon), FillRule::EvenOddAA);
}

int XCPolygon::DrawRect(tagRECT* changed, XCVOffscreen* image, double cx, double cy, double width, double height,
                        double angle, int antialias, const tagRECT* clip) {
    return ovw::brush::fillRotatedRect(changed, {image, m_fastMixer, clip}, {cx, cy}, width, height, angle,
                                       antialias != 0);
}

int XCPolygon::DrawEllipse(tagRECT* changed, XCVOffscreen* image, double cx, double cy, double width, double height,
                           double angle, int antialias, const tagRECT* clip) {
    const double a = width * 0.5;
    const double b = height * 0.5;
    const double quarterCircumference = std::max(a, b) * 2.0 * std::numbers::pi * 0.25;
    const int count = std::clamp(ovw::truncateToInt(quarterCircumference), cnMinEllipseCorners, cnMaxEllipseCorners);
    const double sine = std::sin(angle);
    const double cosine = std::cos(angle);
    std::array<tagPOINTD, cnMaxEllipseCorners> corners;
    for (int i = 0; i < count; i++) {
        const double theta = i * 2.0 * std::numbers::pi / count;
        corners[i] = ovw::brush::turnedAndMoved(a * std::cos(theta), b * std::sin(theta), sine, cosine, {cx, cy});
    }
    return ovw::brush::fillPolygon(changed, {image, m_fastMixer, clip}, std::span(corners).first(count),
                                   antialias ? FillRule::EvenOddAA : FillRule::EvenOdd);
}

int XCPolygon::DrawEllipse(tagRECT* changed, XCVOffscreen* image, double cx, double cy, double width, double height,
                           int antialias, const tagRECT* clip) {
    return DrawEllipse(changed, image, cx, cy, width, height, 0.0, antialias, clip);
}
