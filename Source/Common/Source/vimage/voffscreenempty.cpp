// Whether blocks and rectangles hold anything that can be seen. Pixels of edge blocks beyond the image never decide.

#include "ovwcmn/xcvoffscreen.h"
#include "ovwcmn/xcvoffscreenlock.h"
#include "vimage/blockparts.h"
#include "vimage/emptiness.h"

using namespace ovw::vimage;

namespace {

bool isPartEmpty(int depth, std::uint8_t* base, const XCRect& part) {
    return withFormat(depth, [&]<class Format>() {
        if constexpr (cnHasEmptyPixels<Format>)
            return isPartClear<Format>(base, part, Format::cnEmptyBits);
        else
            return false;
    });
}

constexpr bool hasCoverage(int depth) { return depth == CoverageGrey16::cnBits || depth == Rgba32::cnBits; }

} // namespace

int XCVOffscreen::IsCurrentBlockEmpty() const { return IsCurrentBlockEmpty(m_cursorArea); }

int XCVOffscreen::IsCurrentBlockEmpty(const XCRect& rect) const {
    XCRect part;
    if (!m_cursor.base || !part.IntersectRect(m_cursorArea, rect))
        return 1;
    return isPartEmpty(m_depth, m_cursor.base, part);
}

int XCVOffscreen::CheckClearBlock(int index) {
    if (!GetBlockExist(index))
        return 1;
    return CheckClearBlock(GetBlockRect(index));
}

int XCVOffscreen::CheckClearBlock(XCRect rect) {
    const XCVOffscreenAutoLock lock(this, 0);
    const XCVOffscreenEditLock noNewBlocks(this);
    int isClear = 1;
    forEachPart(*this, rect, [&](std::uint8_t* base, const XCRect& part) {
        isClear = isClear && hasCoverage(m_depth) && isPartEmpty(m_depth, base, part);
    });
    return isClear;
}
