// Making, freeing and protecting single blocks.

#include "ovwcmn/xcvirtualmemory.h"
#include "ovwcmn/xcvoffscreen.h"
#include "vimage/storelocks.h"

using ovw::vimage::librarySection;

// ---- Making and freeing

void XCVOffscreen::createSwapBlock(int index) {
    XCSwapBlock* const swapBlock = m_vm->Allocate(static_cast<std::uint32_t>(m_rowBytes) * cnBlockSize);
    m_blocks[index].SetSwapBlock(swapBlock, 0);
    if (m_protectMode)
        protect(*swapBlock, !m_protectRect.IsRectEmpty() && IsProtected(index));
}

int XCVOffscreen::freeCell(int index, int countEdit) {
    XCSwapBlock* const swapBlock = swapBlockOf(index);
    if (!swapBlock)
        return 0;
    if (index == m_cursor.index)
        releaseCurrentBlock();
    if (m_loadImage)
        ClearDelayData(); // a copy that still has the block
    m_blocks[index].SetSwapBlock(nullptr, countEdit);
    m_vm->Free(swapBlock);
    return 1;
}

int XCVOffscreen::DestroyAllBlock() { return DestroyAllBlock(0); }

int XCVOffscreen::DestroyAllBlock(int countEdit) {
    int freed = 0;
    for (int index = 0; index < m_blocks.GetSize(); ++index)
        freed |= freeCell(index, countEdit);
    return freed;
}

int XCVOffscreen::DestroyBlock(int index, int countEdit) { return freeCell(index, countEdit); }

int XCVOffscreen::DestroyBlockByIndex(int column, int row, int countEdit) {
    return freeCell(cellIndex(column, row), countEdit);
}

int XCVOffscreen::DestroyBlockByXY(int x, int y, int countEdit) { return freeCell(GetBlockIndex(x, y), countEdit); }

void XCVOffscreen::UnloadAllBlock() {
    for (const XCVOffscreenBlock& cell : m_blocks)
        if (XCSwapBlock* const swapBlock = cell.GetSwapBlock()) {
            const XCCriticalSectionAutoLeave lock(&librarySection());
            if (swapBlock->IsOnMemory())
                m_vm->Purge(swapBlock);
        }
}

// ---- The protect area

/// Outside protect mode no block becomes temporary: an eviction would drop its pixels.
void XCVOffscreen::protect(XCSwapBlock& swapBlock, bool isProtected) const {
    const XCCriticalSectionAutoLeave lock(&librarySection());
    if (m_protectMode)
        swapBlock.SetTemporary(!isProtected);
    swapBlock.SetAbsoluteProtect(isProtected);
}

int XCVOffscreen::IsProtected(int index) const {
    const XCRect block = GetBlockRect(index);
    return block.left >= m_protectRect.left && block.top >= m_protectRect.top && block.left < m_protectRect.right &&
           block.top < m_protectRect.bottom;
}

void XCVOffscreen::ClearProtectArea() {
    m_protectRect.SetRectEmpty();
    for (const XCVOffscreenBlock& cell : m_blocks)
        if (cell.GetSwapBlock())
            protect(*cell.GetSwapBlock(), false);
}

void XCVOffscreen::SetProtectArea(const XCRect& rect) {
    ClearProtectArea();
    int firstColumn = 0, lastColumn = 0, firstRow = 0, lastRow = 0;
    if (!GetBlockAreaIndex(rect, firstColumn, lastColumn, firstRow, lastRow))
        return;
    m_protectRect.SetRect(firstColumn * cnBlockSize, firstRow * cnBlockSize, (lastColumn + 1) * cnBlockSize,
                          (lastRow + 1) * cnBlockSize);
    for (int row = firstRow; row <= lastRow; ++row)
        for (int column = firstColumn; column <= lastColumn; ++column)
            if (XCSwapBlock* const swapBlock = swapBlockOf(cellIndex(column, row)))
                protect(*swapBlock, true);
}

void XCVOffscreen::SetProtectBlockArea(const XCRect& rect) {
    const int index = rect.IsRectEmpty() ? -1 : GetBlockIndex(rect.left, rect.top);
    if (index < 0)
        return;
    if (XCSwapBlock* const swapBlock = swapBlockOf(index))
        protect(*swapBlock, true);
    m_protectRect.UnionRect(m_protectRect, GetBlockRect(index));
}
