#ifndef OVW_BRUSH_TEXTUREPAINTER_H
#define OVW_BRUSH_TEXTUREPAINTER_H

#include "mixing/copyrows.h"
#include "ovwcmn/wintypes.h"
#include "ovwcmn/xcblockgetter.h"
#include "ovwcmn/xcfastpixelmixer.h"
#include "ovwcmn/xcgeometry.h"

#include <algorithm>
#include <cstdint>
#include <optional>

class XCSimpleImage;
class XCVOffscreen;

namespace ovw::brush {

/// Pixels before value, for a rule by which a pixel belongs to what its point at `offset` lies in.
inline std::int64_t pixelsBefore(double value, double offset) {
    constexpr double cnMaxPixel = 1e12;
    const double place = value - offset;
    if (!(place > -cnMaxPixel))
        return static_cast<std::int64_t>(-cnMaxPixel);
    const auto whole = static_cast<std::int64_t>(std::min(place, cnMaxPixel));
    return static_cast<double>(whole) < place && place < cnMaxPixel ? whole + 1 : whole;
}

/// A line through the source: the place (u, v) at x, and its change from pixel to pixel.
struct SourceLine {
    double x;
    double u;
    double v;
    double du;
    double dv;
};

/// A run of pixels and where they look in the source. Coordinates are local: pixels from the painter's origin. What is
/// computed in them does not depend on where in the image a mapping lies, nor on block borders.
struct TextureSpan {
    std::int64_t y;
    std::int64_t start;
    std::int64_t end;
    SourceLine line;  ///< of the row's samples
    SourceLine lineB; ///< of the second row of samples; anti-aliased mappings only
};

/// Paints spans of a source image through a mixer, with the source's style bit set for the time of its life.
class TexturePainter {
public:
    // The point of a pixel by which it belongs to a mapping, from its left and top edge. Both are off the places where
    // stamps often have their borders.
    static constexpr double cnNearCorner = 0.125;
    static constexpr double cnNearCenter = 0.625;
    // Where an anti-aliased pixel is sampled; others are sampled at the point above.
    static constexpr double cnFirstQuarter = 0.25;
    static constexpr double cnSecondQuarter = 0.75;

    TexturePainter(XCVOffscreen& target, XCFastPixelMixer& mixer, XCSimpleImage& source, const tagPOINT& origin,
                   double offset, bool antialias);
    TexturePainter(const TexturePainter&) = delete;
    TexturePainter& operator=(const TexturePainter&) = delete;
    ~TexturePainter();

    static bool canAntialias(const XCVOffscreen& target);
    /// Anti-aliased: asked for, and possible in the target's depth.
    bool isAntialiased() const { return m_isAntialiased; }
    double offset() const { return m_offset; }
    /// Calls row(y), with a local y, for every row of every block that the target's part of `area` meets. Only there
    /// may spans be painted, and no pixel twice.
    template <class Row>
    void forEachRow(const XCRect& area, Row row) {
        XCBlockGetter blocks(&m_target, area, 1);
        while (blocks.GetNextBlock(m_block)) {
            m_mixer.MoveCursorToBlock(m_block.left, m_block.top);
            m_rows.emplace(m_mixer, m_source);
            for (int y = m_block.top; y < m_block.bottom; y++)
                row(std::int64_t{y} - m_origin.y);
            m_rows.reset();
        }
    }
    /// The current block's part of a span. @return whether there is one
    bool cutToBlock(const TextureSpan& span, std::int64_t& from, std::int64_t& to) const;
    /// Paints the current block's part of a span. @return whether there is one
    bool paint(const TextureSpan& span) { return paint(span, span.start, span.end); }
    /// The same for pixels from <= x < to of the span only.
    bool paint(const TextureSpan& span, std::int64_t from, std::int64_t to);

private:
    XCVOffscreen& m_target;
    XCFastPixelMixer& m_mixer;
    XCSimpleImage& m_source;
    tagPOINT m_origin;
    double m_offset;
    bool m_isAntialiased;
    int m_savedStyle;
    XCRect m_block;
    std::optional<mixing::CopyRows> m_rows; ///< of the current block
};

} // namespace ovw::brush

#endif // OVW_BRUSH_TEXTUREPAINTER_H
