#include "vimage/extent.h"

#include "ovwcmn/xcblockgetter.h"
#include "ovwcmn/xcvoffscreen.h"
#include "vimage/emptiness.h"

#include <algorithm>
#include <limits>

namespace ovw::vimage {

namespace {

/// The bounds of the paint in the parts that were added, of which only the pixels outside the bounds are read.
template <class Format>
class PaintBounds {
public:
    bool holds(const XCRect& part) const {
        return m_left <= part.left && m_top <= part.top && m_right >= part.right && m_bottom >= part.bottom;
    }

    /// A part of one block, which has its first byte at base.
    void add(std::uint8_t* base, const XCRect& part) {
        addRows(base, part);
        if (m_top < m_bottom) // else there is no paint yet
            addColumns(base, part);
    }

    XCRect rect() const { return m_top < m_bottom ? XCRect(m_left, m_top, m_right, m_bottom) : XCRect(); }

private:
    static bool isClear(std::uint8_t* base, int y, int left, int right) {
        return isRowClear<Format>(rowOf<Format>(base, y), left, right - left, cnPaintBits<Format>);
    }

    void addRows(std::uint8_t* base, const XCRect& part) {
        for (int y = part.top; y < std::min(part.bottom, m_top); ++y)
            if (!isClear(base, y, part.left, part.right)) {
                m_top = y;
                m_bottom = std::max(m_bottom, y + 1);
            }
        if (m_top > m_bottom)
            return;
        for (int y = part.bottom - 1; y >= std::max(part.top, m_bottom); --y)
            if (!isClear(base, y, part.left, part.right))
                m_bottom = y + 1;
    }

    void addColumns(std::uint8_t* base, const XCRect& part) {
        for (int y = part.top; y < part.bottom; ++y) {
            if (const int end = std::min(part.right, m_left); !isClear(base, y, part.left, end))
                m_left = firstPainted(base, y, part.left, end);
            if (const int begin = std::max(part.left, m_right); !isClear(base, y, begin, part.right))
                m_right = lastPainted(base, y, begin, part.right) + 1;
        }
    }

    /// By halves, in a run that has paint.
    static int firstPainted(std::uint8_t* base, int y, int left, int right) {
        while (right - left > 1) {
            const int middle = left + (right - left) / 2;
            (isClear(base, y, left, middle) ? left : right) = middle;
        }
        return left;
    }
    static int lastPainted(std::uint8_t* base, int y, int left, int right) {
        while (right - left > 1) {
            const int middle = left + (right - left) / 2;
            (isClear(base, y, middle, right) ? right : left) = middle;
        }
        return left;
    }

    int m_left = std::numeric_limits<int>::max();
    int m_top = std::numeric_limits<int>::max();
    int m_right = std::numeric_limits<int>::min();
    int m_bottom = std::numeric_limits<int>::min();
};

/// The parts of the existing blocks, row by row.
XCTArray<tagRECT, 0> existingParts(const XCVOffscreen& image, const XCRect& within) {
    XCTArray<tagRECT, 0> parts;
    XCBlockGetter blocks(&image, within, 1);
    XCRect part;
    while (blocks.GetNextBlock(part))
        if (image.GetBlockExist(part.left, part.top))
            parts.PushBack(part);
    return parts;
}

/// The parts are taken from both ends, so that the bounds soon hold most of those between, whose blocks are then never
/// entered (they may lie in the swap file).
template <class Format>
XCRect boundsOf(XCVOffscreen& image, const XCTArray<tagRECT, 0>& parts) {
    PaintBounds<Format> bounds;
    const auto add = [&](const XCRect& part) {
        if (bounds.holds(part))
            return;
        image.MoveCursor(part.left, part.top);
        bounds.add(image.GetBaseAddress(), part);
    };
    for (int first = 0, last = parts.GetSize() - 1; first <= last; ++first, --last) {
        add(parts[first]);
        if (first < last)
            add(parts[last]);
    }
    return bounds.rect();
}

} // namespace

XCRect blockBounds(const XCVOffscreenGrid& image) {
    XCRect bounds;
    const int count = image.GetBlockCount(nullptr, nullptr);
    for (int index = 0; index < count; ++index)
        if (image.GetBlockExist(index))
            bounds.UnionRect(image.GetBlockRect(index));
    return bounds;
}

XCRect paintBounds(XCVOffscreen& image, const XCRect& within) {
    return withFormat(image.GetDepth(), [&]<class Format>() {
        if constexpr (cnHasEmptyPixels<Format>)
            return boundsOf<Format>(image, existingParts(image, within));
        else {
            XCRect bounds;
            bounds.IntersectRect(blockBounds(image), within);
            return bounds;
        }
    });
}

bool isEmpty(XCVOffscreen& image, const XCRect& within) {
    for (const tagRECT& part : existingParts(image, within)) {
        image.MoveCursor(part.left, part.top);
        if (!image.IsCurrentBlockEmpty(part))
            return false;
    }
    return true;
}

bool isBlockUnused(XCVOffscreen& image, int index) {
    return withFormat(image.GetDepth(), [&]<class Format>() {
        if constexpr (cnHasEmptyPixels<Format>) {
            XCRect shown;
            shown.IntersectRect(image.GetBlockRect(index), image.GetRect());
            image.MoveCursor(shown.left, shown.top);
            std::uint8_t* const base = image.GetBaseAddress();
            return base && isPartClear<Format>(base, shown, cnPaintBits<Format>);
        } else
            return false;
    });
}

XCTArray<int, 0> unusedBlocks(XCVOffscreen& image) {
    XCTArray<int, 0> unused;
    const int count = image.GetBlockCount(nullptr, nullptr);
    for (int index = 0; index < count; ++index)
        if (image.GetBlockExist(index) && isBlockUnused(image, index))
            unused.PushBack(index);
    return unused;
}

} // namespace ovw::vimage
