#ifndef OVWCMN_XCTEXTUREMAP_H
#define OVWCMN_XCTEXTUREMAP_H

/// @file
/// Plain images drawn scaled, turned or distorted into tiled images.

#include "ovwcmn/ovwdefs.h"

class XCFastPixelMixer;
class XCSimpleImage;
class XCVOffscreen;

/// A corner of a mapping: pixel (x, y) of the target shows place (u, v) of the source.
struct TTexMapVertex {
    /// @{ In the target, pixels.
    double x = 0.0;
    double y = 0.0;
    /// @}
    /// @{ In the source, pixels.
    double u = 0.0;
    double v = 0.0;
    /// @}
};

/// The three or four corners of a mapping, in order around it.
class OVWCMN_API XCTexMapVertex {
public:
    static constexpr int cnMaxVertices = 4; ///< corners at most

    /// @return 1; 0, and nothing changes, when there are four vertices already
    int Add(double x, double y, double u, double v);
    /// Null outside 0 to 3.
    TTexMapVertex* Vertex(int index);
    const TTexMapVertex* Vertex(int index) const; ///< Null outside 0 to 3.
    void Clear() { count = 0; }                   ///< no corners
    /// The place of a vertex in the target; nothing is stored outside 0 to 3.
    void GetDest(double* x, double* y, int index) const;

    int count = 0; ///< 0 to 4

private:
    TTexMapVertex m_vertices[cnMaxVertices];
};

/// Draws a simple image into a tiled one through a mixer, which says how it is composited; the mixer is not owned. The
/// target must be locked for editing, the source locked; from an image that is not locked nothing is drawn. Pixels
/// belong to a mapping by one point inside them, so that mappings that share an edge leave no gap and overlap nowhere.
/// With anti-aliasing (from 8 bits on) a pixel is the mean of its four quarters, and the source's own border fades out
/// over a pixel unless it is protected. A block of the target is visited once. Draws nothing and answers 0 for places
/// that are not numbers and for empty mappings; throws only what the block store throws.
class OVWCMN_API XCTextureMap {
public:
    /// The mixer stays the caller's.
    XCTextureMap(XCFastPixelMixer* mixer, int antialias) : m_mixer(mixer), m_antialias(antialias) {}

    /// Maps a triangle or a quadrilateral; inside, the source place changes evenly along every row.
    /// @param concave      0: a row has one span; else every pair of crossings makes a span
    /// @param pixelCentre  0: pixels belong to the mapping by a point near their top left, else by one near the centre
    /// @param reserved     0
    /// @return 1 when something was drawn
    int Texmap(XCVOffscreen* target, XCSimpleImage* source, XCTexMapVertex* vertices, int concave, int pixelCentre,
               int reserved);
    /// Maps a rectangle of the source, centred at (cx, cy), scaled, and turned by `angle` radians.
    /// @return 1 when something was drawn
    int Texmap(XCVOffscreen* target, double cx, double cy, double angle, double sx, double sy, XCSimpleImage* source,
               int srcX, int srcY, int srcWidth, int srcHeight);

private:
    XCFastPixelMixer* m_mixer;
    int m_antialias;
};

#endif // OVWCMN_XCTEXTUREMAP_H
