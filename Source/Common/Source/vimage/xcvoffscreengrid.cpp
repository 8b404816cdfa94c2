#include "ovwcmn/xcvoffscreengrid.h"
#include "ovwcmn/detail/toint.h"

#include "ovwcmn/xcblockgetter.h"
#include "ovwcmn/xcvirtualmemory.h"
#include "ovwcmn/xcvoffscreen.h"
#include "vimage/numbers.h"
#include "vimage/storelocks.h"

using ovw::truncateToInt;
using ovw::vimage::librarySection;

int XCVOffscreenGrid::GetBlockCount(int* across, int* down) const {
    if (across)
        *across = m_blocksAcross;
    if (down)
        *down = m_blocksDown;
    return m_blocksAcross * m_blocksDown;
}

XCRect XCVOffscreenGrid::GetBlockRect(int index) const { return hasCell(index) ? m_blocks[index].GetRect() : XCRect(); }

int XCVOffscreenGrid::GetBlockAreaIndex(const XCRect& rect, int& firstColumn, int& lastColumn, int& firstRow,
                                        int& lastRow) const {
    XCRect met;
    if (!met.IntersectRect(rect, GetRect()))
        return 0;
    firstColumn = met.left >> cnBlockShift;
    lastColumn = (met.right - 1) >> cnBlockShift;
    firstRow = met.top >> cnBlockShift;
    lastRow = (met.bottom - 1) >> cnBlockShift;
    return (lastRow - firstRow + 1) * (lastColumn - firstColumn + 1);
}

int XCVOffscreenGrid::GetBlockArea(const XCRect& rect, int index, tagRECT* out, int clip) const {
    if (!hasCell(index))
        return 0;
    const XCRect& block = m_blocks[index].GetRect();
    XCRect met;
    if (!met.IntersectRect(block, rect))
        return 0;
    if (out)
        *out = clip == 1 ? met : block;
    return 1;
}

int XCVOffscreenGrid::GetBlockArea(const XCRect& rect, XCTArray<tagRECT, 0>& list, int clip) const {
    list.Clear();
    XCBlockGetter blocks(GetRect(), rect, 1);
    XCRect part;
    while (blocks.GetNextBlock(part))
        list.PushBack(clip ? part : GetBlockRect(GetBlockIndexFast(part.left, part.top)));
    return list.GetSize();
}

namespace {

int convertPoint(const XCVOffscreenSettings* from, const XCVOffscreenSettings* to, int value) {
    const double own = from->GetResolution();
    const double other = to ? to->GetResolution() : own;
    return own == other || own == 0 || other == 0 ? value : truncateToInt(value * other / own);
}

} // namespace

int XCVOffscreenGrid::ConvertPointX(const XCVOffscreen* other, int x) const { return convertPoint(this, other, x); }

int XCVOffscreenGrid::ConvertPointY(const XCVOffscreen* other, int y) const { return convertPoint(this, other, y); }

// ---- Blocks

XCSwapBlock* XCVOffscreenGrid::swapBlockOf(int index) const {
    return hasCell(index) ? m_blocks[index].GetSwapBlock() : nullptr;
}

// ---- Queries. The state of a swap block is read under the store's lock: other threads may be evicting it.

int XCVOffscreenGrid::GetBlockExist(int x, int y) const { return GetBlockExist(GetBlockIndex(x, y)); }

int XCVOffscreenGrid::GetBlockExist(int index) const { return swapBlockOf(index) != nullptr; }

int XCVOffscreenGrid::IsBlockExist() const {
    for (const XCVOffscreenBlock& cell : m_blocks)
        if (cell.GetSwapBlock())
            return 1;
    return 0;
}

int XCVOffscreenGrid::cellIndex(int column, int row) const {
    const bool inside = column >= 0 && column < m_blocksAcross && row >= 0 && row < m_blocksDown;
    return inside ? row * m_blocksAcross + column : -1;
}

int XCVOffscreenGrid::IsCreatedBlockByIndex(int column, int row) const { return GetBlockExist(cellIndex(column, row)); }

AREA_TYPE XCVOffscreenGrid::CheckAreaType(int x, int y) const { return CheckAreaType(GetBlockIndex(x, y)); }

AREA_TYPE XCVOffscreenGrid::CheckAreaType(int index) const {
    const XCSwapBlock* const swapBlock = swapBlockOf(index);
    if (!swapBlock)
        return AREA_NONE;
    const XCCriticalSectionAutoLeave lock(&librarySection());
    return swapBlock->IsEnable() ? AREA_DATA : AREA_EMPTY;
}

int XCVOffscreenGrid::IsBlockOnMemory(int x, int y) const { return IsBlockOnMemory(GetBlockIndex(x, y)); }

int XCVOffscreenGrid::IsBlockOnMemory(int index) const {
    const XCSwapBlock* const swapBlock = swapBlockOf(index);
    const XCCriticalSectionAutoLeave lock(&librarySection());
    return swapBlock ? swapBlock->IsOnMemory() : 1;
}

int XCVOffscreenGrid::IsBlockAbsoluteProtect(int x, int y) const { return IsBlockAbsoluteProtect(GetBlockIndex(x, y)); }

int XCVOffscreenGrid::IsBlockAbsoluteProtect(int index) const {
    const XCSwapBlock* const swapBlock = swapBlockOf(index);
    return swapBlock ? swapBlock->IsAbsoluteProtect() : 1;
}

int XCVOffscreenGrid::CheckBlockLock(int index) const {
    const XCSwapBlock* const swapBlock = swapBlockOf(index);
    const XCCriticalSectionAutoLeave lock(&librarySection());
    return swapBlock ? swapBlock->IsLocked() : 0;
}

int XCVOffscreenGrid::CheckBlockEdited(int index) const { return hasCell(index) ? m_blocks[index].IsEdited() : 0; }

void XCVOffscreenGrid::ResetBlockEdited(int index) {
    if (hasCell(index))
        m_blocks[index].ResetEditCounter();
}

std::uint8_t* XCVOffscreenGrid::GetABSProtectAddress(int index) const {
    const XCSwapBlock* const swapBlock = swapBlockOf(index);
    const XCCriticalSectionAutoLeave lock(&librarySection());
    return swapBlock ? static_cast<std::uint8_t*>(swapBlock->GetProtectAddress()) : nullptr;
}

std::uint8_t* XCVOffscreenGrid::GetABSProtectAddress(int x, int y, int pixel) const {
    std::uint8_t* const base = GetABSProtectAddress(GetBlockIndex(x, y));
    return base && pixel == 1 ? addressIn(base, x, y) : base;
}

std::uint64_t XCVOffscreenGrid::GetUsedMemory(int residentOnly, int packed) const {
    if (packed == 1 && !m_loadImage)
        return static_cast<std::uint64_t>(m_packed.blockCount) * static_cast<std::uint64_t>(m_rowBytes) * cnBlockSize;
    const XCCriticalSectionAutoLeave lock(&librarySection());
    std::uint64_t bytes = 0;
    for (const XCVOffscreenBlock& cell : m_blocks) {
        const XCSwapBlock* const swapBlock = cell.GetSwapBlock();
        if (swapBlock && (!residentOnly || swapBlock->IsOnMemory()))
            bytes += swapBlock->GetSize();
    }
    return bytes;
}
