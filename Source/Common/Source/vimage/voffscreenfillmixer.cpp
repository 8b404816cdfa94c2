// Fills through a mixer: where tiled images meet the mixing code.

#include "mixing/blockpart.h"
#include "ovwcmn/xcblockgetter.h"
#include "ovwcmn/xcvoffscreen.h"

void XCVOffscreen::RectFill(const XCRect& rect, XCFastPixelMixer* mixer, const tagRECT* clip) {
    if (!mixer)
        return;
    XCRect area = clip ? XCRect(*clip) : GetRect();
    const bool isPoint = rect.left == rect.right && rect.top == rect.bottom;
    const XCRect wanted = isPoint ? XCRect(rect.TopLeft(), XCSize(1, 1)) : rect;
    if (!area.IntersectRect(wanted))
        return;
    XCBlockGetter blocks(this, area, 1);
    XCRect part;
    while (blocks.GetNextBlock(part))
        ovw::mixing::paintBlockPart(*mixer, part);
}
