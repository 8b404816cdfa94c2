#ifndef OVWPAINT_CANVAS_H
#define OVWPAINT_CANVAS_H

/// @file
/// The picture being painted.

#include "colour.h"

#include "ovwcmn/xcvoffscreen.h"

#include <memory>

namespace ovwpaint {

class PngReader;

/// A tiled image on a background, and a second one with the picture as it was before the stroke under way, from which
/// strokes with a cache are composed. The background is there wherever something is painted; elsewhere no block exists.
/// Both images live on the process-wide block store, whose failures pass through as XCException.
class Canvas {
public:
    /// @param depth 1, 2, 8, 16, 24 or 32 @param keepBefore whether to have the second image
    Canvas(int width, int height, int depth, Colour background, bool keepBefore);
    /// Takes over an image with its pixels; `background` is for the blocks that it does not have.
    Canvas(std::unique_ptr<XCVOffscreen> image, Colour background, bool keepBefore);

    XCVOffscreen& image() { return *m_image; }
    /// The second image, or null.
    XCVOffscreen* before() { return m_before.get(); }
    int width() const { return m_image->GetWidth(); }
    int height() const { return m_image->GetHeight(); }
    int depth() const { return m_image->GetDepth(); }
    Colour background() const { return m_background; }

    /// To be called before a stroke reaches the area: makes its blocks, with the background in them.
    void prepare(const XCRect& area);
    /// To be called after a stroke that changed the area: the second image catches up.
    void settle(const XCRect& area);

    /// Puts the picture over the background, at the left and top; what is too large is cut off.
    void paste(PngReader& picture);

private:
    void makeBlock(XCVOffscreen& image, int x, int y) const;
    void setBackground(XCVOffscreen& image) const;

    Colour m_background;
    std::unique_ptr<XCVOffscreen> m_image;
    std::unique_ptr<XCVOffscreen> m_before;
};

/// The colour as a picture of that depth can show it: opaque over white paper where there is no transparency.
Colour shownColour(Colour colour, int depth);

} // namespace ovwpaint

#endif // OVWPAINT_CANVAS_H
