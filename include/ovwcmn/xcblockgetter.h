#ifndef OVWCMN_XCBLOCKGETTER_H
#define OVWCMN_XCBLOCKGETTER_H

/// @file
/// Walks the blocks of a tiled image that a rectangle meets.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/xcgeometry.h"

class XCVOffscreen;

/// Gives the blocks that a rectangle meets in an image, row by row. It reads the image's size once, touches no block
/// and holds nothing.
class OVWCMN_API XCBlockGetter {
public:
    /// With clip the blocks are cut to rect, else only to the image.
    XCBlockGetter(const XCVOffscreen* image, const XCRect& rect, int clip);
    /// The same for the rectangle of an image.
    XCBlockGetter(const XCRect& image, const XCRect& rect, int clip);

    /// 1 with the next block's rectangle; 0 and an empty rectangle at the end.
    int GetNextBlock(XCRect& block);
    /// Whether the rectangle meets the image at all.
    int IsExist() const { return m_firstRow <= m_lastRow; }

private:
    XCRect m_clip;
    int m_firstColumn = 0;
    int m_lastColumn = -1;
    int m_firstRow = 0;
    int m_lastRow = -1;
    int m_column = 0;
    int m_row = 0;
};

#endif // OVWCMN_XCBLOCKGETTER_H
