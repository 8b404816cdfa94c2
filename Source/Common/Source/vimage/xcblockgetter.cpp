#include "ovwcmn/xcblockgetter.h"

#include "ovwcmn/xcvoffscreen.h"

XCBlockGetter::XCBlockGetter(const XCVOffscreen* image, const XCRect& rect, int clip)
    : XCBlockGetter(image->GetRect(), rect, clip) {}

XCBlockGetter::XCBlockGetter(const XCRect& image, const XCRect& rect, int clip) {
    XCRect met;
    met.IntersectRect(image, rect);
    m_clip = clip ? met : image;
    if (met.IsRectEmpty())
        return;
    m_firstColumn = m_column = met.left >> XCVOffscreen::cnBlockShift;
    m_lastColumn = (met.right - 1) >> XCVOffscreen::cnBlockShift;
    m_firstRow = m_row = met.top >> XCVOffscreen::cnBlockShift;
    m_lastRow = (met.bottom - 1) >> XCVOffscreen::cnBlockShift;
}

int XCBlockGetter::GetNextBlock(XCRect& block) {
    constexpr int cnSize = XCVOffscreen::cnBlockSize;
    if (m_row > m_lastRow) {
        block.SetRectEmpty();
        return 0;
    }
    // Every block of the ranges meets the clip rectangle, so that no part is empty.
    block.SetRect(m_column * cnSize, m_row * cnSize, (m_column + 1) * cnSize, (m_row + 1) * cnSize);
    block.IntersectRect(m_clip);
    if (++m_column > m_lastColumn) {
        m_column = m_firstColumn;
        ++m_row;
    }
    return 1;
}
