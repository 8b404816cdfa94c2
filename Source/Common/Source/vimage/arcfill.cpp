#include "ovwcmn/xcvoffscreen.h"
#include "vimage/ellipserows.h"
#include "vimage/roundshapes.h"

namespace ovw::vimage {

void fillEllipse(XCVOffscreen& image, const tagRECT& box, std::uint32_t colour, const XCRect& area) {
    if (box.left > box.right || box.top > box.bottom)
        return;
    EllipseRows(box.left, box.top, box.right, box.bottom)
        .forEachRow(area.top, area.bottom,
                    [&](int first, int last, int row) { image.FillLineRow(first, last, row, colour, &area); });
}

} // namespace ovw::vimage
