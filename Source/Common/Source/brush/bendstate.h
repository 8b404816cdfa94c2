#ifndef OVW_BRUSH_BENDSTATE_H
#define OVW_BRUSH_BENDSTATE_H

#include "brush/ribbon.h"
#include "ovwcmn/xcpattern.h"

#include <optional>

namespace ovw::brush {

/// What the segments of a bending brush hand on to each other.
class BendState {
public:
    /// The ends of the next segment: it begins as wide as the previous one ended, and where the image went on.
    /// @param first, second  with positions and directions
    /// @param widthFirst, widthSecond  across the stroke, pixels
    /// @param imageRatio     the image's length along the stroke, of its width across it
    /// @param widthFactor    how much narrower or wider than in proportion the ribbon is
    void advance(BENDPATTERNEND& first, BENDPATTERNEND& second, double widthFirst, double widthSecond,
                 double imageRatio, double widthFactor);
    RibbonTrail& trail() { return m_trail; }
    /// Tells the trail where the ribbon covers: without its outermost pixels and the sides where the image is next to
    /// nothing if painting twice does no harm, else all of it.
    void coverTrail(XCSimpleImage& image, int side, bool isHarmless);

private:
    /// The least length of a repetition of the image, pixels.
    static constexpr double cnLeastRepeat = 2.0;

    RibbonTrail m_trail;
    bool m_isStarted = false;
    double m_width = 0.0;
    double m_along = 0.0;
    std::optional<RibbonInset> m_emptySides; ///< of the image; found once a stroke
};

} // namespace ovw::brush

#endif // OVW_BRUSH_BENDSTATE_H
