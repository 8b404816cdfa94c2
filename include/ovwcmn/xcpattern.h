#ifndef OVWCMN_XCPATTERN_H
#define OVWCMN_XCPATTERN_H

/// @file
/// Brush tips: each rasterises one stamp into a tiled image through a fast pixel mixer.

#include <cstdint>
#include <memory>

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/wintypes.h"
#include "ovwcmn/xcarray.h"
#include "ovwcmn/xcgeometry.h"

class XCFastPixelMixer;
class XCGdi; // the window system's drawing interface; the library only passes it on
class XCSimpleImage;
class XCVOffscreen;

namespace ovw::brush {
class RibbonTrail;
}

/// The base of all tips, and a tip that draws nothing. A plain value that owns no image and no mixer. Colour, opacity
/// and hardness are the mixer's business, a tip supplies the coverage of every pixel. The image must be locked for
/// editing. Sizes and positions that are not numbers or lie off the image draw nothing; running out of memory throws.
class OVWCMN_API XCPattern {
public:
    XCPattern() = default;
    XCPattern(const XCPattern&) = default;
    XCPattern& operator=(const XCPattern&) = default;
    virtual ~XCPattern();
    /// Sets the two shape factors and the rotation.
    virtual void SetParameter(float sizeRateX, float sizeRateY, float radians);
    /// 1 when both shape factors are equal, so that a large soft stamp needs no anti-aliasing; 0 in the base.
    virtual int IsTrueCircle() const;
    /// Stamps the tip with `position` (image pixels) as its centre and `size` pixels as its diameter. `changed` (may be
    /// null) receives the bounds of the stamp grown by one pixel and clipped to the image, and stays as it was when
    /// nothing was drawn. Images below 8 bits are never anti-aliased. `pressure` is for tips of the application.
    /// @return 1 when something was drawn, else 0; the base answers 1
    virtual int Draw(XCRect* changed, XCVOffscreen* image, XCFastPixelMixer* mixer, XCPointD position, float size,
                     float pressure, int antialias);
    /// Draws a preview through the window system: the tip's outline around `position`, filled by the hook fillPolygon,
    /// which `mode` is for. The base and image tips have none.
    /// @return what the hook answers, 0 without preview
    virtual int DrawGDI(XCGdi& gdi, int mode, tagPOINT position, float size, std::uint32_t color);
    /// @{ Fills a polygon of such a preview; fractions are rounded.
    /// @return what the hook answers; 0 for less than three corners, without asking it
    static int PolygonFill(XCGdi& gdi, int mode, const tagPOINT* points, int count, std::uint32_t color);
    static int PolygonFill(XCGdi& gdi, int mode, const tagPOINTD* points, int count, std::uint32_t color);
    /// @}

    /// @{ What `kind` can be.
    static constexpr int cnKindCircle = 0;
    static constexpr int cnKindRect = 1;
    static constexpr int cnKindPolygon = 2;
    static constexpr int cnKindImage = 3;
    /// @}

    int kind = -1;          ///< one of the constants above, -1 in the base
    float sizeRate = 1.0f;  ///< horizontal shape factor
    float sizeRate2 = 1.0f; ///< vertical shape factor
    float rotation = 0.0f;  ///< radians

protected:
    explicit XCPattern(int tipKind) : kind(tipKind) {} ///< for the tips below
};

/// A circle, or an ellipse when the two shape factors differ; very thin ellipses are drawn as rectangles.
class OVWCMN_API XCCirclePattern : public XCPattern {
public:
    XCCirclePattern() : XCPattern(cnKindCircle) {}
    int Draw(XCRect* changed, XCVOffscreen* image, XCFastPixelMixer* mixer, XCPointD position, float size,
             float pressure, int antialias) override;
    int DrawGDI(XCGdi& gdi, int mode, tagPOINT position, float size, std::uint32_t color) override;

protected:
    /// @{ What `Draw` chooses from. `drawn` receives the bounds of the figure and stays as it was when nothing was
    /// drawn; the bounds of a hard ellipse are those of the spans written, the others are not clipped to the image.
    static void CircleFill(XCVOffscreen* image, double x, double y, double radius, XCFastPixelMixer* mixer,
                           XCRect& drawn);
    static void CircleFillAA(XCVOffscreen* image, double x, double y, double radius, XCFastPixelMixer* mixer,
                             XCRect& drawn);
    static void EllipseFill(XCVOffscreen* image, double x, double y, double rx, double ry, double angle,
                            XCFastPixelMixer* mixer, XCRect& drawn);
    static void EllipseFillAA(XCVOffscreen* image, double x, double y, double rx, double ry, double angle,
                              XCFastPixelMixer* mixer, XCRect& drawn);
    /// @}
};

/// A rectangle, square when both shape factors are equal.
class OVWCMN_API XCRectPattern : public XCPattern {
public:
    XCRectPattern() : XCPattern(cnKindRect) {}
    int IsTrueCircle() const override;
    int Draw(XCRect* changed, XCVOffscreen* image, XCFastPixelMixer* mixer, XCPointD position, float size,
             float pressure, int antialias) override;
    int DrawGDI(XCGdi& gdi, int mode, tagPOINT position, float size, std::uint32_t color) override;
};

/// A polygon in tip units, one unit being half the stamp's size.
class OVWCMN_API XCPolygonPattern : public XCPattern {
public:
    /// The triangle (0, -1), (1, 1), (-1, 1).
    XCPolygonPattern();
    /// @{ Corners in tip units; see the class.
    explicit XCPolygonPattern(const XCTArray<tagPOINTD>* polygon);
    XCPolygonPattern(const tagPOINT* points, int count, float scale);
    void SetPolygon(const XCTArray<tagPOINTD>* polygon);
    /// @}
    /// Vertices (x * scale, y * scale).
    void SetPolygon(const tagPOINT* points, int count, float scale);
    /// A triangle or rectangle within the bounds, or a regular polygon of 5 to 16 corners of diameter right - left.
    /// @return 0, and nothing changes, for a count outside 3 to 16
    int PresetPolygon(int count, int left, int right, int top, int bottom);
    int Draw(XCRect* changed, XCVOffscreen* image, XCFastPixelMixer* mixer, XCPointD position, float size,
             float pressure, int antialias) override;
    int DrawGDI(XCGdi& gdi, int mode, tagPOINT position, float size, std::uint32_t color) override;

    XCTArray<tagPOINTD> vertices; ///< the corners in order

private:
    void placeCorners(tagPOINTD* corners, XCPointD position, float size) const;
};

/// One end of a bended tip.
struct BENDPATTERNEND {
    XCPointD position;      ///< pixels
    double direction = 0.0; ///< of the stroke, radians: 0 up, a quarter turn to the right
    double width = 0.0;     ///< across the stroke, pixels
    double along = 0.0;     ///< the place in the image, 1 at its far end; beyond it the image begins again
};

/// A picture. Densities, bits and dark colours cover; whether the picture's own colours are painted is the mixer's
/// business. Owns its image; a copy has a copy of it. Without image it draws nothing.
class OVWCMN_API XCImagePattern : public XCPattern {
public:
    /// The longest side of a thumbnail, pixels.
    static constexpr int cnThumbnailSize = 64;

    XCImagePattern();
    /// @{ A copy has an image of its own.
    XCImagePattern(const XCImagePattern& other);
    XCImagePattern& operator=(const XCImagePattern& other);
    /// @}
    ~XCImagePattern() override;

    /// Takes a copy of the tiled image; null or an image without pixels leaves the tip empty.
    void ImportPatternOffscreen(XCVOffscreen* source);
    /// A new tiled image on the process-wide store; the caller owns it. Null without image. So is CreateThumbnail's.
    XCVOffscreen* ExportPatternOffscreen() const;
    /// 0, 0 without image.
    void GetPatternOffscreenSize(int& width, int& height) const;
    /// Turns transparent white of a 32-bit image into another colour, 0xAABBGGRR.
    void ReplaceTransparency(std::uint32_t color);
    /// Deletes the image.
    void Cleanup();
    /// A preview no larger than a square of cnThumbnailSize, each pixel the mean of the area it stands for: 8 bits for
    /// tips of 1 and 8 bits, 24 for 24, else 32. Small tips keep their size.
    XCVOffscreen* CreateThumbnail() const;
    /// Null when empty. The tip keeps it.
    XCSimpleImage* GetImage() const { return m_image.get(); }

    /// The longer side of the image becomes `size`, at least 1 pixel.
    int Draw(XCRect* changed, XCVOffscreen* image, XCFastPixelMixer* mixer, XCPointD position, float size,
             float pressure, int antialias) override;
    /// Draws the image as a ribbon that leaves the first end in its direction and arrives at the second in its own,
    /// each end cut square. Ribbons that share an end join without gap; a trail keeps a sharp bend from overlapping.
    /// @param side   the side of the image that goes ahead: 0 top, 1 left, 2 bottom, 3 right
    /// @param trail  (may be null) what the ribbon covered lately; that is not painted again
    /// @return 1 when something was drawn; `changed` as in Draw
    int DrawBendedPattern(XCRect* changed, XCVOffscreen* image, XCFastPixelMixer* mixer, const BENDPATTERNEND& first,
                          const BENDPATTERNEND& second, int side, int antialias,
                          ovw::brush::RibbonTrail* trail = nullptr);

private:
    struct PlotMapping;

    bool GetPlotMappingParam(PlotMapping& mapping, XCPointD position, float size) const;

    std::unique_ptr<XCSimpleImage> m_image;
};

#endif // OVWCMN_XCPATTERN_H
