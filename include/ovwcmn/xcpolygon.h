#ifndef OVWCMN_XCPOLYGON_H
#define OVWCMN_XCPOLYGON_H

/// @file
/// The polygon rasteriser of the brush tips.

#include <cstdint>
#include <span>

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/wintypes.h"
#include "ovwcmn/xcarray.h"

class XCFastPixelMixer;
class XCVOffPixelMask;
class XCVOffPixelMixer;
class XCVOffscreen;

namespace ovw::vimage {
enum class FillRule;
}

/// The corners of a triangle.
struct TTrianglePos {
    tagPOINTD points[3]; ///< pixels
};

/// A list of polygon vertices, in pixels. Adding may throw XCException (out of memory).
class OVWCMN_API XCPolyVertex {
public:
    /// @return 1
    int Add(double x, double y);
    int Num() const; ///< vertices in the list
    /// Points `out` at a vertex, valid until the list changes.
    /// @return 0, with a null pointer, for an index outside the list
    int Get(tagPOINTD** out, int index);
    void Clear(); ///< back to an empty list
    /// The smallest rectangle that holds every vertex, truncated toward zero; all zero for an empty list.
    void PolygonBox(tagRECT* box) const;
    /// The whole list, valid until it changes.
    std::span<const tagPOINTD> Vertices() const;

private:
    XCTArray<tagPOINTD> m_vertices;
};

/// Fills polygons, triangles, rotated rectangles and ellipses, given in pixels, into an image that is locked for
/// editing. Hard edges sample a row once, anti-aliased ones four times with exact horizontal coverage. Mixers, whose
/// destination must be that image, and masks are not owned; the mixer holds colour and opacity, and an anti-aliased
/// fill leaves its last coverage in a fast mixer. Every operation answers 1 when figure, image and `clip` (may be null)
/// meet, and then stores the figure's bounds, right and bottom exclusive, in `changed` (may be null). It answers 0 and
/// leaves `changed` alone when they do not, when a coordinate is no finite number, and when 256 edges meet one sample
/// line: rows above that line are painted by then.
class OVWCMN_API XCPolygon {
public:
    /// Through the mixer, which is set up for the image.
    explicit XCPolygon(XCFastPixelMixer* mixer) : m_fastMixer(mixer) {}
    /// Through the per-pixel mixer and a mask (may be null). A clone source is placed so that its clone point shows in
    /// the middle of the figure's bounds.
    XCPolygon(XCVOffPixelMixer* mixer, XCVOffPixelMask* mask) : m_pixelMixer(mixer), m_pixelMask(mask) {}
    /// With one colour, 0xAABBGGRR, under the ink of a mask (may be null): hard edges replace the pixels, anti-aliased
    /// ones blend over them.
    XCPolygon(std::uint32_t color, XCVOffPixelMask* mask) : m_pixelMask(mask), m_color(color), m_hasColor(true) {}

    /// Even-odd rule, hard edges.
    int DrawTriangle(tagRECT* changed, XCVOffscreen* image, const TTrianglePos* triangle);
    /// Even-odd rule, hard edges.
    int DrawPolygon(tagRECT* changed, XCVOffscreen* image, const XCPolyVertex* polygon, const tagRECT* clip);
    /// Non-zero winding rule, hard edges.
    int DrawPolygonNonZero(tagRECT* changed, XCVOffscreen* image, const XCPolyVertex* polygon, const tagRECT* clip);
    /// Even-odd rule, anti-aliased; needs at least three vertices.
    int DrawPolygonAA(tagRECT* changed, XCVOffscreen* image, const XCPolyVertex* polygon, const tagRECT* clip);
    /// A rectangle turned by `angle` radians about its centre.
    int DrawRect(tagRECT* changed, XCVOffscreen* image, double cx, double cy, double width, double height, double angle,
                 int antialias, const tagRECT* clip);
    /// An ellipse turned by `angle` radians about its centre, as a polygon of 32 to 512 corners.
    int DrawEllipse(tagRECT* changed, XCVOffscreen* image, double cx, double cy, double width, double height,
                    double angle, int antialias, const tagRECT* clip);
    /// The same unturned.
    int DrawEllipse(tagRECT* changed, XCVOffscreen* image, double cx, double cy, double width, double height,
                    int antialias, const tagRECT* clip);

    // Without a mixer, by the image's own row fill: modes 0 replace, 1 raise, 2 blend, 3 erase, as in
    // XCVOffscreen::FillLineRowForPolygon; an alpha below 255 dithers the figure, 0 leaving one pixel of 256.
    /// Even-odd rule, hard edges.
    static int FillPolygon(tagRECT* changed, XCVOffscreen* image, const XCPolyVertex* polygon, std::uint32_t color,
                           int mode, const tagRECT* clip, int unused, int alpha);
    /// The same for a plain array of corners.
    static int FillPolygon(XCVOffscreen* image, const tagPOINTD* points, int count, const tagRECT* clip,
                           std::uint32_t color, int mode, int alpha);
    /// Pixels x0 to x1, both included and in any order, of row y where the mask (may be null) has ink; the mask's
    /// cursor stands on the row to read, its pixel x + maskOffsetX belongs to pixel x.
    /// @return 0 when nothing of the span is in the image
    static int FillLineRowForPolygon(XCVOffscreen* image, int x0, int x1, int y, std::uint32_t color, int mode,
                                     XCVOffscreen* mask, int maskOffsetX, int alpha);

private:
    int fill(tagRECT* changed, XCVOffscreen* image, const tagRECT* clip, std::span<const tagPOINTD> vertices,
             ovw::vimage::FillRule rule, int antialias) const;

    XCFastPixelMixer* m_fastMixer = nullptr;
    XCVOffPixelMixer* m_pixelMixer = nullptr;
    XCVOffPixelMask* m_pixelMask = nullptr;
    std::uint32_t m_color = 0;
    bool m_hasColor = false;
};

#endif // OVWCMN_XCPOLYGON_H
