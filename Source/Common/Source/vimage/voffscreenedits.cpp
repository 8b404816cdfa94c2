// The members that measure and edit whole images: they check, lock and hand on.

#include "ovwcmn/xcvoffscreen.h"
#include "ovwcmn/xcvoffscreenlock.h"
#include "vimage/extent.h"
#include "vimage/pixelchanges.h"

using namespace ovw::vimage;

XCVOffscreen& XCVOffscreenEdits::image() { return static_cast<XCVOffscreen&>(*this); }

// ---- Extents

int XCVOffscreenEdits::GetExtentRect(tagRECT& out, tagRECT* limit, int useStored) {
    if (useStored == 1 && !m_loadImage) {
        out = m_packed.extent;
        return !m_packed.extent.IsRectEmpty();
    }
    const XCVOffscreenAutoLock lock(&image(), 0);
    const XCVOffscreenEditLock noNewBlocks(&image());
    XCRect within = GetRect();
    if (limit)
        within.IntersectRect(*limit);
    const XCRect bounds = paintBounds(image(), within);
    out = bounds;
    return !bounds.IsRectEmpty();
}

int XCVOffscreenEdits::GetExtentBlock(tagRECT& out) const {
    const XCRect bounds = blockBounds(*this);
    out = bounds;
    return !bounds.IsRectEmpty();
}

int XCVOffscreenEdits::IsExtentEmpty(const XCRect& r) {
    XCRect within;
    if (!within.IntersectRect(r, GetRect()))
        return 1;
    const XCVOffscreenAutoLock lock(&image(), 0);
    const XCVOffscreenEditLock noNewBlocks(&image());
    return isEmpty(image(), within);
}

int XCVOffscreenEdits::IsExtentEmpty() { return IsExtentEmpty(GetRect()); }

// ---- Freeing unused blocks

void XCVOffscreenEdits::Optimize() {
    if (image().GetLockCount() > 0 || !m_loadImage)
        return;
    XCVOffscreenAutoLock lock(&image(), 0);
    const XCTArray<int, 0> unused = unusedBlocks(image());
    lock.Unlock();
    for (const int index : unused)
        image().DestroyBlock(index, 0);
}

void XCVOffscreenEdits::OptimizeBlock(tagRECT r) {
    const int index = GetBlockIndex(r.left, r.top);
    if (!GetBlockExist(index) || (image().GetLockCount() > 0 && index == image().GetCurrentBlockIndex()))
        return;
    XCRect shown = GetBlockRect(index);
    shown.IntersectRect(GetRect());
    if (r.left > shown.left || r.top > shown.top || r.right < shown.right || r.bottom < shown.bottom)
        return;
    bool isUnused = false;
    {
        const XCVOffscreenAutoLock lock(&image(), 0);
        const XCVOffscreenEditLock noNewBlocks(&image());
        isUnused = isBlockUnused(image(), index);
    }
    if (isUnused)
        image().DestroyBlock(index, 0);
}

// ---- Edits of every pixel

void XCVOffscreenEdits::ClearAlpha(std::uint32_t colour) { clearAlpha(image(), colour); }

void XCVOffscreenEdits::ReplaceColor(std::uint32_t newColour, std::uint32_t oldColour) {
    replaceColour(image(), newColour, oldColour);
}

void XCVOffscreen8Bit::ReversePixel() { reverseDensities(*this); }
