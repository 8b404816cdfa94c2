#ifndef OVW_BRUSH_RIBBON_H
#define OVW_BRUSH_RIBBON_H

#include "brush/mapoutline.h"
#include "ovwcmn/xcgeometry.h"
#include "ovwcmn/xcpattern.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <vector>

namespace ovw::brush {

/// How far from a ribbon's sides a part of it ends.
struct RibbonInset {
    double pixels = 0.0; ///< on both sides; below 0 the part is wider
    double left = 0.0;   ///< and of the ribbon's width
    double right = 0.0;  ///< of the ribbon's width
};

/// What a ribbon covered on its last stretch, so that it does not paint there again where it bends sharply. A ribbon
/// that comes back after a longer way is painted over itself.
class RibbonTrail {
public:
    using Corners = std::array<TTexMapVertex, 4>; ///< of a piece, pixels of the image

    /// Adds a piece of the ribbon.
    void add(const Corners& piece, double length, double width);
    /// Finds what may cover a part of a new piece; the rows asked for from now on are its.
    /// @param pixels all that may belong to it
    void beginPiece(const Corners& piece, const XCRect& pixels);
    /// What of the ribbon counts as covered: all, or where painting twice does no harm less, so that what covers in
    /// part is completed.
    void setInset(const RibbonInset& inset) { m_inset = inset; }
    const RibbonInset& inset() const { return m_inset; }
    /// Calls paint(from, to) for the runs of from <= x < to, at most a block's width, that are not covered in row y.
    template <class Paint>
    void forEachUncovered(std::int64_t y, std::int64_t from, std::int64_t to, double offset, Paint paint) const {
        CoveredPixels covered{};
        markCovered(covered, y, from, to, offset);
        for (std::int64_t x = from; x < to;) {
            const std::int64_t start = x;
            const bool isCovered = covered[static_cast<std::size_t>(start - from)];
            while (x < to && covered[static_cast<std::size_t>(x - from)] == isCovered)
                x++;
            if (!isCovered)
                paint(start, x);
        }
    }

private:
    /// Pieces further behind than this many widths are forgotten.
    static constexpr double cnMemory = 3.0;
    static constexpr std::size_t cnMostPieces = 4096; ///< of a ribbon that turns on the spot

    struct Piece {
        Corners corners;
        MapOutline outline;
        XCRect pixels;
        double end; ///< its distance from the start of the ribbon
    };
    using CoveredPixels = std::array<bool, 256>;

    void markCovered(CoveredPixels& covered, std::int64_t y, std::int64_t from, std::int64_t to, double offset) const;

    std::deque<Piece> m_pieces;       ///< in the order of the way
    std::vector<const Piece*> m_near; ///< that meet the new piece, the latest first
    RibbonInset m_inset;
    double m_length = 0.0;
    double m_width = 0.0;
};

/// The image turned so that one of its sides goes ahead, painted as a ribbon through a painter whose origin is (0, 0).
class Ribbon {
public:
    /// @param side as XCImagePattern::DrawBendedPattern has it
    Ribbon(TexturePainter& painter, int imageWidth, int imageHeight, int side, RibbonTrail* trail);

    /// @return the pixels that may have been painted, empty when none was
    XCRect paint(const BENDPATTERNEND& first, const BENDPATTERNEND& second);

private:
    /// A line across the ribbon.
    struct CrossEdge {
        tagPOINTD center;
        tagPOINTD right; ///< unit vector
        double half;     ///< half the ribbon's width
    };
    /// A piece between two cross edges. In a sharp bend the edges meet: the piece is then two triangles, one to the
    /// left of the meeting point and one to the right.
    struct Piece {
        CrossEdge from;
        CrossEdge to;
        double alongFrom;
        double alongTo;
        bool meets;
        double meetFrom; ///< the meeting point's offset from the middle of each edge, to the right
        double meetTo;
    };
    enum class Half { Both, Left, Right };
    class Course;

    void findMeeting(Piece& piece) const;
    void paintPiece(const Piece& piece);
    void paintHalf(const Piece& piece, Half half);
    RibbonTrail::Corners cornersOf(const Piece& piece, Half half, const RibbonInset& inset) const;
    double margin() const;
    TTexMapVertex corner(const CrossEdge& edge, double offset, double along) const;

    TexturePainter& m_painter;
    double m_imageWidth;
    double m_imageHeight;
    int m_side;
    RibbonTrail* m_trail;
    XCRect m_painted;
};

} // namespace ovw::brush

#endif // OVW_BRUSH_RIBBON_H
