// The members that paint shapes and images into an image: they check, lock and hand on.

#include "ovwcmn/xcvoffscreen.h"
#include "ovwcmn/xcvoffscreenlock.h"
#include "vimage/compositealpha.h"
#include "vimage/pixelformats.h"
#include "vimage/roundshapes.h"
#include "vimage/segments.h"

using namespace ovw::vimage;

namespace {

/// The part of the image to draw in.
XCRect drawnArea(const XCVOffscreen& image, const tagRECT* clip) {
    XCRect area = image.GetRect();
    if (clip)
        area.IntersectRect(*clip);
    return area;
}

void drawSegment(XCVOffscreen& image, const Segment& segment, int behind) {
    constexpr int cnBlend = 1;
    if (segment.width < 1)
        return;
    const XCVOffscreenAutoLock lock(&image, 1);
    if (behind == cnBlend)
        stampSegmentBehind(image, segment);
    else if (behind || segment.width == 1)
        stampSegment(image, segment);
    else
        fillSegment(image, segment);
}

bool haveOneShape(const XCVOffscreen& a, const XCVOffscreen& b) {
    return a.GetWidth() == b.GetWidth() && a.GetHeight() == b.GetHeight() && a.GetResolution() == b.GetResolution();
}

} // namespace

void XCVOffscreenEdits::DrawSegment(int x1, int y1, int x2, int y2, int width, std::uint32_t colour, int behind,
                                    int fitWidth) {
    Segment segment{x1, y1, x2, y2, width, colour};
    if (fitWidth == 1 && width > 0) {
        const int inset = (width - segment.fittedWidth()) / 2;
        segment.takePen(width - 2 * inset, inset);
    }
    drawSegment(image(), segment, behind);
}

void XCVOffscreenEdits::DrawSegment2(int x1, int y1, int x2, int y2, int width, std::uint32_t colour, int behind,
                                     int fitWidth) {
    Segment segment{x1, y1, x2, y2, width, colour};
    if (fitWidth == 1 && width > 0)
        segment.takePen(segment.fittedWidth(), 0);
    drawSegment(image(), segment, behind);
}

void XCVOffscreenEdits::Circle(int cx, int cy, int r, int, XCVOffPixelMixer* mixer, XCVOffPixelMask* mask,
                               const tagRECT* clip, std::uint8_t*) {
    const XCRect area = drawnArea(image(), clip);
    if (mixer && r >= 0 && !area.IsRectEmpty())
        drawCircle(image(), cx, cy, r, *mixer, mask, area);
}

void XCVOffscreenEdits::CircleFill(int x, int y, int d, const std::uint32_t& colour, int mode, XCVOffscreen* maskImage,
                                   const tagPOINT& maskOffset, const tagRECT* clip, std::uint8_t* pattern,
                                   int patternLevel) {
    const DiscPaint paint{colour, mode, maskImage, maskOffset, pattern, patternLevel};
    fillDisc(image(), x, y, d, paint, drawnArea(image(), clip));
}

void XCVOffscreenEdits::ArcFill(int x1, int y1, int x2, int y2, std::uint32_t colour, const tagRECT* clip) {
    const XCRect box(x1, y1, x2, y2);
    const XCRect area = drawnArea(image(), clip);
    if (!GetRect().IsIntersectRect(box) || area.IsRectEmpty())
        return;
    const XCVOffscreenAutoLock lock(&image(), 1);
    fillEllipse(image(), box, colour, area);
}

void XCVOffscreenEdits::CompositAlpha(int dx, int dy, int w, int h, XCVOffscreen* src, XCVOffscreen* alpha, int sx,
                                      int sy, XCVOffPixelMixer* mixer) {
    if (!src || !alpha || !mixer || !haveOneShape(*src, *alpha) || alpha->GetDepth() != Density8::cnBits)
        return;
    const AlphaCopy copy = AlphaCopy{dx, dy, w, h, sx, sy}.clippedTo(image());
    if (copy.width <= 0 || copy.height <= 0)
        return;
    // This image last: where it is also read from, it is to stay locked for editing.
    const XCVOffscreenAutoLock sourceLock(src, 0);
    const XCVOffscreenAutoLock alphaLock(alpha, 0);
    const XCVOffscreenAutoLock destinationLock(&image(), 1);
    compositeAlpha(image(), copy, *src, *alpha, *mixer);
}
