#ifndef OVW_BRUSH_MAPOUTLINE_H
#define OVW_BRUSH_MAPOUTLINE_H

#include "brush/texturepainter.h"
#include "ovwcmn/xcgeometry.h"
#include "ovwcmn/xctexturemap.h"

#include <array>
#include <cstdint>
#include <span>

namespace ovw::brush {

/// The outline of a mapping of three or four corners, cut row by row into spans that know their place in the source.
class MapOutline {
public:
    /// The corners, which are finite, in pixels from a whole-numbered origin.
    explicit MapOutline(std::span<const TTexMapVertex> corners);

    /// Every pixel of the image that may belong to the outline. @param origin of the corners' coordinates
    XCRect pixels(const tagPOINT& origin) const;
    /// The stretch of the line at height y that lies in a convex outline. @return false when none does
    bool stretch(double& left, double& right, double y) const;
    /// The spans of row y: pixels belong to the outline by their point at (offset, offset). At most two.
    int spans(std::array<TextureSpan, 2>& out, std::int64_t y, double offset, bool isConvex, bool antialias) const;

private:
    /// A side that is not horizontal, seen from its upper end, with its changes from row to row.
    struct Edge {
        double top;
        double bottom;
        TTexMapVertex start;
        double dx;
        double du;
        double dv;
    };
    struct Crossing {
        double x;
        double u;
        double v;
        const Edge* edge;
    };

    /// The places between two crossings.
    struct Course {
        Course(const Crossing& leftEnd, const Crossing& rightEnd);
        /// On a line dy below the crossings': they change along each edge as the edge's own ends do, less what the
        /// crossing's move along the row brings.
        SourceLine lineBelow(double dy) const;

        const Crossing& left;
        const Crossing& right;
        double width;
        double du;
        double dv;
    };

    void addEdge(const TTexMapVertex& a, const TTexMapVertex& b);
    int findCrossings(std::array<Crossing, 4>& found, double y, bool isConvex) const;

    std::array<Edge, 4> m_edges;
    int m_edgeCount = 0;
    XCRectD m_bounds;
};

} // namespace ovw::brush

#endif // OVW_BRUSH_MAPOUTLINE_H
