#ifndef OVWCMN_XCPATTERN_H
#define OVWCMN_XCPATTERN_H

/// @file
/// Brush tips: each rasterises one stamp into a tiled image through a fast pixel mixer.

#include <cstdint>

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/wintypes.h"
#include "ovwcmn/xcarray.h"
#include "ovwcmn/xcgeometry.h"

class XCFastPixelMixer;
class XCGdi; // the window system's drawing interface; the library only passes it on
class XCVOffscreen;

/// The base of all tips, and a tip that draws nothing. A plain value that owns no image and no mixer. Colour, opacity
/// and hardness are the mixer's business, a tip supplies the coverage of every pixel. The image must be locked for
/// editing. Sizes and positions that are not numbers or lie off the image draw nothing; running out of memory throws.
class OVWCMN_API XCPattern {
public:
    XCPattern() = default;
    XCPattern(const XCPattern&) = default;
    XCPattern& operator=(const XCPattern&) = default;
    virtual ~XCPattern();
    virtual void SetParameter(float sizeRateX, float sizeRateY, float radians);
    virtual int IsTrueCircle() const;
    /// Stamps the tip with `position` (image pixels) as its centre and `size` pixels as its diameter. `changed` (may be
    /// null) receives the bounds of the stamp grown by one pixel and clipped to the image, and stays as it was when
    /// nothing was drawn. Images below 8 bits are never anti-aliased. `pressure` is for tips of the application.
    /// @return 1 when something was drawn, else 0; the base answers 1
    virtual int Draw(XCRect* changed, XCVOffscreen* image, XCFastPixelMixer* mixer, XCPointD position, float size,
                     float pressure, int antialias);
    /// Draws a preview through the window system; the base has none and answers 0.
    virtual int DrawGDI(XCGdi& gdi, int mode, tagPOINT position, float size, std::uint32_t color);

    static constexpr int cnKindCircle = 0;
    static constexpr int cnKindRect = 1;
    static constexpr int cnKindPolygon = 2;
    static constexpr int cnKindImage = 3;

    int kind = -1;          ///< one of the constants above, -1 in the base
    float sizeRate = 1.0f;  ///< horizontal shape factor
    float sizeRate2 = 1.0f; ///< vertical shape factor
    float rotation = 0.0f;  ///< radians

protected:
    explicit XCPattern(int tipKind) : kind(tipKind) {}
};

/// A circle, or an ellipse when the two shape factors differ; very thin ellipses are drawn as rectangles.
class OVWCMN_API XCCirclePattern : public XCPattern {
public:
    XCCirclePattern() : XCPattern(cnKindCircle) {}
    int Draw(XCRect* changed, XCVOffscreen* image, XCFastPixelMixer* mixer, XCPointD position, float size,
             float pressure, int antialias) override;

protected:
    // What `Draw` chooses from. `drawn` receives the bounds of the figure and stays as it was when nothing was drawn;
    // the bounds of a hard ellipse are those of the spans written, the others are not clipped to the image.
    static void CircleFill(XCVOffscreen* image, double x, double y, double radius, XCFastPixelMixer* mixer,
                           XCRect& drawn);
    static void CircleFillAA(XCVOffscreen* image, double x, double y, double radius, XCFastPixelMixer* mixer,
                             XCRect& drawn);
    static void EllipseFill(XCVOffscreen* image, double x, double y, double rx, double ry, double angle,
                            XCFastPixelMixer* mixer, XCRect& drawn);
    static void EllipseFillAA(XCVOffscreen* image, double x, double y, double rx, double ry, double angle,
                              XCFastPixelMixer* mixer, XCRect& drawn);
};

/// A rectangle, square when both shape factors are equal.
class OVWCMN_API XCRectPattern : public XCPattern {
public:
    XCRectPattern() : XCPattern(cnKindRect) {}
    int IsTrueCircle() const override;
    int Draw(XCRect* changed, XCVOffscreen* image, XCFastPixelMixer* mixer, XCPointD position, float size,
             float pressure, int antialias) override;
};

/// A polygon in tip units, one unit being half the stamp's size.
class OVWCMN_API XCPolygonPattern : public XCPattern {
public:
    /// The triangle (0, -1), (1, 1), (-1, 1).
    XCPolygonPattern();
    explicit XCPolygonPattern(const XCTArray<tagPOINTD>* polygon);
    XCPolygonPattern(const tagPOINT* points, int count, float scale);
    void SetPolygon(const XCTArray<tagPOINTD>* polygon);
    /// Vertices (x * scale, y * scale).
    void SetPolygon(const tagPOINT* points, int count, float scale);
    /// A triangle or rectangle within the bounds, or a regular polygon of 5 to 16 corners of diameter right - left.
    /// @return 0, and nothing changes, for a count outside 3 to 16
    int PresetPolygon(int count, int left, int right, int top, int bottom);
    int Draw(XCRect* changed, XCVOffscreen* image, XCFastPixelMixer* mixer, XCPointD position, float size,
             float pressure, int antialias) override;

    XCTArray<tagPOINTD> vertices;
};

#endif // OVWCMN_XCPATTERN_H
