#include "ovwcmn/xctexturemap.h"

#include "brush/mapoutline.h"
#include "brush/texturepainter.h"
#include "ovwcmn/xcsimpleimage.h"
#include "ovwcmn/xcvoffscreen.h"

#include <algorithm>
#include <cmath>

namespace {

using ovw::brush::MapOutline;
using ovw::brush::pixelsBefore;
using ovw::brush::SourceLine;
using ovw::brush::TexturePainter;
using ovw::brush::TextureSpan;

/// Mappings whose coordinates are larger have no meaning in an image.
constexpr double cnMaxCoordinate = 1e9;

bool isUsable(double value) { return std::abs(value) <= cnMaxCoordinate; }

/// The largest whole numbers not above a place: what is computed from there on is the same everywhere in the image.
tagPOINT originOf(double x, double y) { return {static_cast<int>(std::floor(x)), static_cast<int>(std::floor(y))}; }

bool isReadable(XCSimpleImage* source) {
    return source && source->GetWidth() > 0 && source->GetHeight() > 0 && source->GetPixel(0, 0);
}

/// A rectangle of a source image.
struct SourceRect {
    XCSimpleImage& image;
    int x;
    int y;
    int width;
    int height;
};

/// Whether the image fades out beyond each side of a source rectangle: it does where the rectangle reaches the image's
/// border, unless that is protected; elsewhere its neighbours would bleed in.
struct OpenSides {
    explicit OpenSides(const SourceRect& rect) {
        XCSimpleImage& image = rect.image;
        const bool fadesX = image.GetPixel(-1, 0) != image.GetPixel(0, 0);
        const bool fadesY = image.GetPixel(0, -1) != image.GetPixel(0, 0);
        left = fadesX && rect.x <= 0;
        top = fadesY && rect.y <= 0;
        right = fadesX && std::int64_t{rect.x} + rect.width >= image.GetWidth();
        bottom = fadesY && std::int64_t{rect.y} + rect.height >= image.GetHeight();
    }

    bool left;
    bool top;
    bool right;
    bool bottom;
};

/// Where and how a source rectangle lies in the target.
struct Placement {
    double x; ///< of the centre
    double y;
    double angle;
    double scaleX;
    double scaleY;
};

/// The corners of a turned rectangle, from the origin on. With anti-aliasing it is a pixel wider on its open sides, for
/// the pixels that its border covers in part.
std::array<TTexMapVertex, 4> turnedCorners(const Placement& place, const SourceRect& rect, bool antialias) {
    const OpenSides open(rect);
    const double left = antialias && open.left ? -1.0 / place.scaleX : 0.0;
    const double top = antialias && open.top ? -1.0 / place.scaleY : 0.0;
    const double right = rect.width + (antialias && open.right ? 1.0 / place.scaleX : 0.0);
    const double bottom = rect.height + (antialias && open.bottom ? 1.0 / place.scaleY : 0.0);
    const double sine = std::sin(place.angle);
    const double cosine = std::cos(place.angle);
    const auto corner = [&](double u, double v) -> TTexMapVertex {
        const double x = (u - rect.width * 0.5) * place.scaleX;
        const double y = (v - rect.height * 0.5) * place.scaleY;
        return {x * cosine - y * sine + place.x, x * sine + y * cosine + place.y, rect.x + u, rect.y + v};
    };
    return {corner(left, top), corner(right, top), corner(right, bottom), corner(left, bottom)};
}

int paintOutline(TexturePainter& painter, const MapOutline& outline, const XCRect& area, bool isConvex) {
    bool isDrawn = false;
    painter.forEachRow(area, [&](std::int64_t y) {
        std::array<TextureSpan, 2> spans;
        const int count = outline.spans(spans, y, painter.offset(), isConvex, painter.isAntialiased());
        for (int i = 0; i < count; i++)
            isDrawn |= painter.paint(spans[i]);
    });
    return isDrawn;
}

/// The pixels, along one axis, that a stretch from `start` to `end` covers.
struct PixelRange {
    /// A pixel belongs to the stretch by its point; with anti-aliasing by any of its samples on an open side, and by
    /// all of them on another.
    PixelRange(double start, double end, bool openStart, bool openEnd, const TexturePainter& painter) {
        constexpr double cnFirst = TexturePainter::cnFirstQuarter;
        constexpr double cnSecond = TexturePainter::cnSecondQuarter;
        const bool isSoft = painter.isAntialiased();
        first = pixelsBefore(start, isSoft ? (openStart ? cnSecond : cnFirst) : painter.offset());
        last = pixelsBefore(end, isSoft ? (openEnd ? cnFirst : cnSecond) : painter.offset());
    }

    std::int64_t first;
    std::int64_t last; ///< exclusive
};

/// A rectangle that is not turned: every row is one span.
int paintUpright(TexturePainter& painter, const Placement& place, const SourceRect& rect, const XCRect& area) {
    const OpenSides open(rect);
    const double left = place.x - place.scaleX * rect.width * 0.5;
    const double top = place.y - place.scaleY * rect.height * 0.5;
    const PixelRange columns(left, left + place.scaleX * rect.width, open.left, open.right, painter);
    const PixelRange rows(top, top + place.scaleY * rect.height, open.top, open.bottom, painter);
    const bool isSoft = painter.isAntialiased();
    const auto lineAt = [&](double y) -> SourceLine {
        return {left, static_cast<double>(rect.x), rect.y + (y - top) / place.scaleY, 1.0 / place.scaleX, 0.0};
    };
    bool isDrawn = false;
    painter.forEachRow(area, [&](std::int64_t y) {
        if (y < rows.first || y >= rows.last)
            return;
        const double pixel = static_cast<double>(y);
        TextureSpan span{y, columns.first, columns.last, {}, {}};
        span.line = lineAt(pixel + (isSoft ? TexturePainter::cnFirstQuarter : painter.offset()));
        span.lineB = lineAt(pixel + TexturePainter::cnSecondQuarter);
        isDrawn |= painter.paint(span);
    });
    return isDrawn;
}

} // namespace

int XCTexMapVertex::Add(double x, double y, double u, double v) {
    if (count < 0 || count >= cnMaxVertices)
        return 0;
    m_vertices[count++] = {x, y, u, v};
    return 1;
}

TTexMapVertex* XCTexMapVertex::Vertex(int index) {
    return index >= 0 && index < cnMaxVertices ? &m_vertices[index] : nullptr;
}

const TTexMapVertex* XCTexMapVertex::Vertex(int index) const {
    return index >= 0 && index < cnMaxVertices ? &m_vertices[index] : nullptr;
}

void XCTexMapVertex::GetDest(double* x, double* y, int index) const {
    if (const TTexMapVertex* vertex = Vertex(index)) {
        *x = vertex->x;
        *y = vertex->y;
    }
}

int XCTextureMap::Texmap(XCVOffscreen* target, XCSimpleImage* source, XCTexMapVertex* vertices, int concave,
                         int pixelCentre, int) {
    if (!m_mixer || !target || !vertices || !isReadable(source))
        return 0;
    const int count = std::min(vertices->count, XCTexMapVertex::cnMaxVertices);
    if (count < 3)
        return 0;
    std::array<TTexMapVertex, XCTexMapVertex::cnMaxVertices> corners;
    for (int i = 0; i < count; i++) {
        corners[i] = *vertices->Vertex(i);
        if (!isUsable(corners[i].x) || !isUsable(corners[i].y) || !isUsable(corners[i].u) || !isUsable(corners[i].v))
            return 0;
    }
    const tagPOINT origin = originOf(corners[0].x, corners[0].y);
    for (int i = 0; i < count; i++) {
        corners[i].x -= origin.x;
        corners[i].y -= origin.y;
    }
    const MapOutline outline({corners.data(), static_cast<std::size_t>(count)});
    const double offset = pixelCentre ? TexturePainter::cnNearCenter : TexturePainter::cnNearCorner;
    TexturePainter painter(*target, *m_mixer, *source, origin, offset, m_antialias != 0);
    return paintOutline(painter, outline, outline.pixels(origin), concave == 0);
}

int XCTextureMap::Texmap(XCVOffscreen* target, double cx, double cy, double angle, double sx, double sy,
                         XCSimpleImage* source, int srcX, int srcY, int srcWidth, int srcHeight) {
    if (!m_mixer || !target || !isReadable(source) || srcWidth <= 0 || srcHeight <= 0)
        return 0;
    const bool isScaled = sx > 0.0 && sy > 0.0 && isUsable(sx * srcWidth) && isUsable(sy * srcHeight);
    if (!isScaled || !isUsable(cx) || !isUsable(cy) || !std::isfinite(angle))
        return 0;
    const tagPOINT origin = originOf(cx, cy);
    const Placement place{cx - origin.x, cy - origin.y, angle, sx, sy};
    const SourceRect rect{*source, srcX, srcY, srcWidth, srcHeight};
    const bool isSoft = m_antialias && TexturePainter::canAntialias(*target);
    TexturePainter painter(*target, *m_mixer, *source, origin,
                           isSoft ? TexturePainter::cnNearCorner : TexturePainter::cnNearCenter, isSoft);
    const auto corners = turnedCorners(place, rect, isSoft);
    if (!isUsable(corners[0].x) || !isUsable(corners[0].u) || !isUsable(corners[0].y) || !isUsable(corners[0].v))
        return 0;
    const MapOutline outline(corners);
    const XCRect area = outline.pixels(origin);
    return angle == 0.0 ? paintUpright(painter, place, rect, area) : paintOutline(painter, outline, area, true);
}
