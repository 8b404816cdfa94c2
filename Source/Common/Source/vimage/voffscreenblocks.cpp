// The state of single blocks: queries, freeing, the protect area.

#include "ovwcmn/xcblockgetter.h"
#include "ovwcmn/xcvirtualmemory.h"
#include "ovwcmn/xcvoffscreen.h"
#include "vimage/storelocks.h"

using ovw::vimage::librarySection;

XCSwapBlock* XCVOffscreen::swapBlockOf(int index) const {
    return hasCell(index) ? m_blocks[index].GetSwapBlock() : nullptr;
}

// ---- Queries. The state of a swap block is read under the store's lock: other threads may be evicting it.

int XCVOffscreen::GetBlockExist(int x, int y) const { return GetBlockExist(GetBlockIndex(x, y)); }

int XCVOffscreen::GetBlockExist(int index) const { return swapBlockOf(index) != nullptr; }

int XCVOffscreen::IsBlockExist() const {
    for (const XCVOffscreenBlock& cell : m_blocks)
        if (cell.GetSwapBlock())
            return 1;
    return 0;
}

int XCVOffscreen::cellIndex(int column, int row) const {
    const bool inside = column >= 0 && column < m_blocksAcross && row >= 0 && row < m_blocksDown;
    return inside ? row * m_blocksAcross + column : -1;
}

int XCVOffscreen::IsCreatedBlockByIndex(int column, int row) const { return GetBlockExist(cellIndex(column, row)); }

AREA_TYPE XCVOffscreen::CheckAreaType(int x, int y) const { return CheckAreaType(GetBlockIndex(x, y)); }

AREA_TYPE XCVOffscreen::CheckAreaType(int index) const {
    const XCSwapBlock* const swapBlock = swapBlockOf(index);
    if (!swapBlock)
        return AREA_NONE;
    const XCCriticalSectionAutoLeave lock(&librarySection());
    return swapBlock->IsEnable() ? AREA_DATA : AREA_EMPTY;
}

int XCVOffscreen::IsBlockOnMemory(int x, int y) const { return IsBlockOnMemory(GetBlockIndex(x, y)); }

int XCVOffscreen::IsBlockOnMemory(int index) const {
    const XCSwapBlock* const swapBlock = swapBlockOf(index);
    const XCCriticalSectionAutoLeave lock(&librarySection());
    return swapBlock ? swapBlock->IsOnMemory() : 1;
}

int XCVOffscreen::IsBlockAbsoluteProtect(int x, int y) const { return IsBlockAbsoluteProtect(GetBlockIndex(x, y)); }

int XCVOffscreen::IsBlockAbsoluteProtect(int index) const {
    const XCSwapBlock* const swapBlock = swapBlockOf(index);
    return swapBlock ? swapBlock->IsAbsoluteProtect() : 1;
}

int XCVOffscreen::CheckBlockLock(int index) const {
    const XCSwapBlock* const swapBlock = swapBlockOf(index);
    const XCCriticalSectionAutoLeave lock(&librarySection());
    return swapBlock ? swapBlock->IsLocked() : 0;
}

int XCVOffscreen::CheckBlockEdited(int index) const { return hasCell(index) ? m_blocks[index].IsEdited() : 0; }

void XCVOffscreen::ResetBlockEdited(int index) {
    if (hasCell(index))
        m_blocks[index].ResetEditCounter();
}

std::uint8_t* XCVOffscreen::GetABSProtectAddress(int index) const {
    const XCSwapBlock* const swapBlock = swapBlockOf(index);
    const XCCriticalSectionAutoLeave lock(&librarySection());
    return swapBlock ? static_cast<std::uint8_t*>(swapBlock->GetProtectAddress()) : nullptr;
}

std::uint8_t* XCVOffscreen::GetABSProtectAddress(int x, int y, int pixel) const {
    std::uint8_t* const base = GetABSProtectAddress(GetBlockIndex(x, y));
    return pixel == 1 ? SetCurrentCursorAddress(x, y, base) : base;
}

std::uint64_t XCVOffscreen::GetUsedMemory(int residentOnly, int /*packed*/) const {
    const XCCriticalSectionAutoLeave lock(&librarySection());
    std::uint64_t bytes = 0;
    for (const XCVOffscreenBlock& cell : m_blocks) {
        const XCSwapBlock* const swapBlock = cell.GetSwapBlock();
        if (swapBlock && (!residentOnly || swapBlock->IsOnMemory()))
            bytes += swapBlock->GetSize();
    }
    return bytes;
}

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
