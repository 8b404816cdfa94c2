#include "ovwcmn/xcvoffscreen.h"
#include "vimage/blockparts.h"

namespace {

bool covers(const XCRect& outer, const XCRect& inner) {
    return outer.left <= inner.left && outer.top <= inner.top && outer.right >= inner.right &&
           outer.bottom >= inner.bottom;
}

} // namespace

void XCVOffscreen::ClrRect(const tagRECT& r) {
    constexpr int cnErase = 1;
    if (!m_loadImage && GetRect().IsIntersectRect(r))
        LoadImageA(1, 1); // while pixels are packed, no block exists
    XCTArray<tagRECT, 0> covered;
    XCBlockGetter blocks(this, XCRect(r), 1);
    XCRect part;
    while (blocks.GetNextBlock(part)) {
        const int index = GetBlockIndexFast(part.left, part.top);
        if (!GetBlockExist(index))
            continue;
        if (covers(r, GetBlockRect(index)))
            covered.PushBack(part);
        else
            RectFill(part, cnErase, 0, 0);
    }
    for (const tagRECT& block : covered)
        DestroyBlockByXY(block.left, block.top, 1);
}
