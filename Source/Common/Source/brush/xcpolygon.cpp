#include "ovwcmn/xcpolygon.h"

#include "brush/polygonfill.h"
#include "brush/rowpainter.h"
#include "ovwcmn/xcvoffscreen.h"
#include "vimage/polygonrows.h"
#include "vimage/polygonscan.h"

#include <algorithm>

namespace {

using ovw::vimage::FillRule;

constexpr int cnHard = 0;
constexpr int cnSoft = 1;

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

void XCPolyVertex::PolygonBox(tagRECT* box) const { *box = ovw::vimage::boundsOfVertices(Vertices()); }

std::span<const tagPOINTD> XCPolyVertex::Vertices() const {
    return {m_vertices.GetData(), static_cast<std::size_t>(Num())};
}

int XCPolygon::fill(tagRECT* changed, XCVOffscreen* image, const tagRECT* clip, std::span<const tagPOINTD> vertices,
                    FillRule rule, int antialias) const {
    const auto fillWith = [&](ovw::brush::RowPainter&& painter) {
        return antialias ? ovw::brush::fillPolygonAA(changed, *image, clip, painter, vertices)
                         : ovw::vimage::fillPolygon(changed, *image, clip, painter, vertices, rule);
    };
    if (!image)
        return 0;
    if (m_fastMixer)
        return fillWith(ovw::brush::MixerRows(*m_fastMixer));
    if (m_pixelMixer)
        return fillWith(ovw::brush::PixelMixerRows(*m_pixelMixer, m_pixelMask));
    return m_hasColor ? fillWith(ovw::brush::ColourRows(*image, m_color, m_pixelMask)) : 0;
}

int XCPolygon::DrawTriangle(tagRECT* changed, XCVOffscreen* image, const TTrianglePos* triangle) {
    return fill(changed, image, nullptr, triangle->points, FillRule::Triangle, cnHard);
}

int XCPolygon::DrawPolygon(tagRECT* changed, XCVOffscreen* image, const XCPolyVertex* polygon, const tagRECT* clip) {
    return fill(changed, image, clip, verticesOf(polygon), FillRule::EvenOdd, cnHard);
}

int XCPolygon::DrawPolygonNonZero(tagRECT* changed, XCVOffscreen* image, const XCPolyVertex* polygon,
                                  const tagRECT* clip) {
    return fill(changed, image, clip, verticesOf(polygon), FillRule::NonZero, cnHard);
}

int XCPolygon::DrawPolygonAA(tagRECT* changed, XCVOffscreen* image, const XCPolyVertex* polygon, const tagRECT* clip) {
    if (!polygon || polygon->Num() < 3)
        return 0;
    return fill(changed, image, clip, verticesOf(polygon), FillRule::EvenOdd, cnSoft);
}

int XCPolygon::FillPolygon(tagRECT* changed, XCVOffscreen* image, const XCPolyVertex* polygon, std::uint32_t color,
                           int mode, const tagRECT* clip, int, int alpha) {
    return image ? ovw::vimage::fillPolygon(changed, *image, clip, {color, mode, alpha}, verticesOf(polygon)) : 0;
}

int XCPolygon::FillPolygon(XCVOffscreen* image, const tagPOINTD* points, int count, const tagRECT* clip,
                           std::uint32_t color, int mode, int alpha) {
    if (!image || !points || count <= 0)
        return 0;
    return ovw::vimage::fillPolygon(nullptr, *image, clip, {color, mode, alpha},
                                    {points, static_cast<std::size_t>(count)});
}

int XCPolygon::FillLineRowForPolygon(XCVOffscreen* image, int x0, int x1, int y, std::uint32_t color, int mode,
                                     XCVOffscreen* mask, int maskOffsetX, int alpha) {
    if (!image || y < 0 || y >= image->GetHeight())
        return 0;
    const int first = std::max(std::min(x0, x1), 0);
    const int last = std::min(std::max(x0, x1), image->GetWidth() - 1);
    if (first > last)
        return 0;
    ovw::vimage::fillPolygonRow(*image, first, last, y, {color, mode, alpha, mask, maskOffsetX});
    return 1;
}

int XCPolygon::DrawRect(tagRECT* changed, XCVOffscreen* image, double cx, double cy, double width, double height,
                        double angle, int antialias, const tagRECT* clip) {
    return fill(changed, image, clip, ovw::brush::rotatedRect({cx, cy}, width, height, angle), FillRule::EvenOdd,
                antialias);
}

int XCPolygon::DrawEllipse(tagRECT* changed, XCVOffscreen* image, double cx, double cy, double width, double height,
                           double angle, int antialias, const tagRECT* clip) {
    ovw::brush::EllipseCorners corners;
    const int count = ovw::brush::ellipseCorners(corners, {cx, cy}, width, height, angle);
    return fill(changed, image, clip, std::span(corners).first(count), FillRule::EvenOdd, antialias);
}

int XCPolygon::DrawEllipse(tagRECT* changed, XCVOffscreen* image, double cx, double cy, double width, double height,
                           int antialias, const tagRECT* clip) {
    return DrawEllipse(changed, image, cx, cy, width, height, 0.0, antialias, clip);
}
