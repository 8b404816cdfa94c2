// The block grid: laying it out, growing and shrinking it. Cells lie in index order; a cell keeps its swap block when
// the grid changes around it. No swap block is allocated here.

#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcvirtualmemory.h"
#include "ovwcmn/xcvoffscreen.h"
#include "vimage/numbers.h"
#include "vimage/withformat.h"

#include <limits>
#include <utility>

using namespace ovw::vimage;

namespace {

constexpr int cnRowAlignment = 32; // bytes
constexpr std::int64_t cnIntMax = std::numeric_limits<std::int32_t>::max();
constexpr std::int64_t cnMaxBlocksAcross = cnIntMax / XCVOffscreen::cnBlockSize; // so that block edges fit an int

std::int64_t blocksFor(std::int64_t pixels) { return ceilDiv(pixels, XCVOffscreen::cnBlockSize); }

void requireEdges(std::int64_t across, std::int64_t down) {
    if (across > cnMaxBlocksAcross || down > cnMaxBlocksAcross)
        xcThrowError(ovw::foundation::cnCodeParameter);
}

void requireGrid(std::int64_t across, std::int64_t down) {
    requireEdges(across, down);
    if (across * down > cnIntMax)
        xcThrowError(ovw::foundation::cnCodeParameter);
}

XCRect blockRectAt(int column, int row) {
    constexpr int cnSize = XCVOffscreen::cnBlockSize;
    return XCRect(column * cnSize, row * cnSize, (column + 1) * cnSize, (row + 1) * cnSize);
}

/// A cell in its new place: it keeps its swap block, and of its edit counter whether it was edited.
XCVOffscreenBlock movedCell(const XCVOffscreenBlock& cell, int column, int row) {
    XCVOffscreenBlock moved(blockRectAt(column, row), nullptr);
    moved.SetSwapBlock(cell.GetSwapBlock(), cell.IsEdited());
    return moved;
}

} // namespace

/// What AllocateRect adds, and the size that it leads to.
struct XCVOffscreen::Growth {
    int columnsLeft;
    int rowsTop;
    int across;
    int down;
    int width;
    int height;
};

void XCVOffscreen::Create(XCVirtualMemory* vm, int width, int height, double resolution) {
    if (width < 0 || height < 0)
        xcThrowError(ovw::foundation::cnCodeParameter);
    requireGrid(blocksFor(width), blocksFor(height));
    if (m_vm || m_blocks.GetSize() > 0)
        Destroy();
    layOutGrid(width, height);
    m_resolution = resolution;
    m_vm = vm;
}

void XCVOffscreen::layOutGrid(int width, int height) {
    const int across = static_cast<int>(blocksFor(width));
    const int down = static_cast<int>(blocksFor(height));
    m_blocks.SetSize(across * down);
    for (int row = 0, index = 0; row < down; ++row)
        for (int column = 0; column < across; ++column)
            m_blocks[index++] = XCVOffscreenBlock(blockRectAt(column, row), nullptr);
    m_width = width;
    m_height = height;
    m_blocksAcross = across;
    m_blocksDown = down;
    m_rowBytes = static_cast<int>(ceilDiv(m_depth * cnBlockSize / 8, cnRowAlignment)) * cnRowAlignment;
}

void XCVOffscreen::Destroy() {
    DestroyAllBlock();
    m_blocks = XCTArray<XCVOffscreenBlock, 0>();
    Initialize();
}

int XCVOffscreen::AllocateRect(const XCRect& rect, XCRect* out) {
    const bool inside = rect.left >= 0 && rect.top >= 0 && rect.right <= m_width && rect.bottom <= m_height;
    if (inside || rect.IsRectEmpty()) {
        if (out)
            *out = GetRect();
        return 1;
    }
    if (!m_loadImage)
        LoadImageA(1, 1); // packed pixels are those of the old size
    const Growth growth = planGrowth(rect);
    const bool hadBlock = m_cursor.IsEnable();
    releaseCurrentBlock();
    clearHiddenPixels(rect.right > m_width, rect.bottom > m_height);
    if (growth.across != m_blocksAcross || growth.down != m_blocksDown)
        rebuildGrid(growth);
    m_width = growth.width;
    m_height = growth.height;
    m_editLockChecker = 1;
    const int left = growth.columnsLeft * cnBlockSize;
    const int top = growth.rowsTop * cnBlockSize;
    if (out)
        out->SetRect(left, top, left + m_width, top + m_height);
    moveOrigin(left, top, hadBlock);
    return 1;
}

XCVOffscreen::Growth XCVOffscreen::planGrowth(const XCRect& rect) const {
    const std::int64_t left = rect.left < 0 ? blocksFor(-std::int64_t{rect.left}) : 0;
    const std::int64_t top = rect.top < 0 ? blocksFor(-std::int64_t{rect.top}) : 0;
    const std::int64_t right = rect.right > m_width ? rect.right : m_width;
    const std::int64_t bottom = rect.bottom > m_height ? rect.bottom : m_height;
    const std::int64_t across = left + (right > m_width ? blocksFor(right) : m_blocksAcross);
    const std::int64_t down = top + (bottom > m_height ? blocksFor(bottom) : m_blocksDown);
    requireEdges(left + across, top + down); // the answer's edges
    requireGrid(across, down);
    return {static_cast<int>(left),
            static_cast<int>(top),
            static_cast<int>(across),
            static_cast<int>(down),
            static_cast<int>(left * cnBlockSize + right),
            static_cast<int>(top * cnBlockSize + bottom)};
}

void XCVOffscreen::rebuildGrid(const Growth& growth) {
    XCTArray<XCVOffscreenBlock, 0> cells;
    cells.SetSize(growth.across * growth.down);
    for (int row = 0, index = 0; row < growth.down; ++row)
        for (int column = 0; column < growth.across; ++column)
            cells[index++] = XCVOffscreenBlock(blockRectAt(column, row), nullptr);
    for (int row = 0, index = 0; row < m_blocksDown; ++row)
        for (int column = 0; column < m_blocksAcross; ++column) {
            const int newColumn = column + growth.columnsLeft;
            const int newRow = row + growth.rowsTop;
            cells[newRow * growth.across + newColumn] = movedCell(m_blocks[index++], newColumn, newRow);
        }
    m_blocks = std::move(cells);
    m_blocksAcross = growth.across;
    m_blocksDown = growth.down;
}

/// Pixels of edge blocks beyond the image may hold anything: before the image grows over them they become clear.
void XCVOffscreen::clearHiddenPixels(bool right, bool bottom) {
    for (int index = 0; index < m_blocks.GetSize(); ++index) {
        const XCRect& block = m_blocks[index].GetRect();
        if (right && block.right > m_width)
            clearPart(index, XCRect(m_width, block.top, block.right, block.bottom));
        if (bottom && block.bottom > m_height)
            clearPart(index, XCRect(block.left, m_height, block.right, block.bottom));
    }
}

void XCVOffscreen::clearPart(int index, const XCRect& part) {
    XCSwapBlock* const swapBlock = m_blocks[index].GetSwapBlock();
    if (!swapBlock)
        return;
    std::uint8_t* const base = lockSwapBlock(swapBlock, 1, false);
    if (!base)
        return;
    withFormat(m_depth, [&]<class Format>() {
        for (int y = part.top; y < part.bottom; ++y)
            Format::clearRow(rowOf<Format>(base, y), part.left & cnBlockMask, part.Width(), m_clearByte, m_clearColor);
    });
    m_vm->Unlock(swapBlock);
}

/// The image's pixel (0, 0) was (-dx, -dy) before: what is kept in image coordinates follows, so that the cursor stays
/// on its pixel. findBlock: look up the block under the cursor again; a block that is gone is not created for that.
void XCVOffscreen::moveOrigin(int dx, int dy, bool findBlock) {
    m_offset.Offset(-dx, -dy);
    if (!m_protectRect.IsRectEmpty()) {
        m_protectRect.OffsetRect(dx, dy);
        m_protectRect.IntersectRect(GetRect());
    }
    if (!findBlock)
        return;
    m_cursor.x = moved(m_cursor.x, dx);
    m_cursor.y = moved(m_cursor.y, dy);
    if (GetBlockExist(m_cursor.x, m_cursor.y))
        SetCurrentBlock();
}

int XCVOffscreen::DeallocateBlock(DEALLOCATE_BLOCK_TYPE type) {
    if (type < DEALLOCATE_LEFT || type > DEALLOCATE_BOTTOM)
        return 0;
    const bool isColumn = type == DEALLOCATE_LEFT || type == DEALLOCATE_RIGHT;
    const bool isFirst = type == DEALLOCATE_LEFT || type == DEALLOCATE_TOP;
    int& blocks = isColumn ? m_blocksAcross : m_blocksDown;
    if (blocks < 2)
        return 0;
    if (!m_loadImage)
        LoadImageA(1, 1);
    const bool hadBlock = m_cursor.IsEnable();
    releaseCurrentBlock();
    dropCells(isColumn ? (isFirst ? 0 : blocks - 1) : -1, isColumn ? -1 : (isFirst ? 0 : blocks - 1));
    int& extent = isColumn ? m_width : m_height;
    extent = isFirst ? extent - cnBlockSize : blocks * cnBlockSize;
    const int shift = isFirst ? -cnBlockSize : 0;
    moveOrigin(isColumn ? shift : 0, isColumn ? 0 : shift, hadBlock);
    return 1;
}

/// Frees one column or row (-1: none of that kind) and closes the gap, in place: cells only move toward the front.
void XCVOffscreen::dropCells(int droppedColumn, int droppedRow) {
    int kept = 0;
    for (int row = 0, index = 0; row < m_blocksDown; ++row)
        for (int column = 0; column < m_blocksAcross; ++column, ++index) {
            if (column == droppedColumn || row == droppedRow) {
                freeCell(index, 0);
                continue;
            }
            const int newColumn = column - (droppedColumn >= 0 && column > droppedColumn);
            const int newRow = row - (droppedRow >= 0 && row > droppedRow);
            m_blocks[kept++] = movedCell(m_blocks[index], newColumn, newRow);
        }
    m_blocks.SetSize(kept);
    m_blocksAcross -= droppedColumn >= 0;
    m_blocksDown -= droppedRow >= 0;
}

int XCVOffscreen::DeallocateRect(XCRect rect, XCPoint& offset) {
    offset = XCPoint();
    std::int64_t right = rect.right;
    std::int64_t bottom = rect.bottom;
    const auto removeSide = [this](DEALLOCATE_BLOCK_TYPE type, std::int64_t margin, auto afterStep) {
        for (std::int64_t steps = margin / cnBlockSize; steps > 0; --steps) {
            if (!DeallocateBlock(type))
                return false;
            afterStep();
        }
        return true;
    };
    const auto movedLeft = [&] { right -= cnBlockSize, offset.x += cnBlockSize; };
    const auto movedUp = [&] { bottom -= cnBlockSize, offset.y += cnBlockSize; };
    // The margins on the right and at the bottom are measured when the sides before them have gone.
    return removeSide(DEALLOCATE_LEFT, rect.left, movedLeft) && removeSide(DEALLOCATE_TOP, rect.top, movedUp) &&
           removeSide(DEALLOCATE_RIGHT, m_width - right, [] {}) &&
           removeSide(DEALLOCATE_BOTTOM, m_height - bottom, [] {});
}
