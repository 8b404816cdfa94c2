// Locks and the cursor. While index is 0 or above, the current block is locked in the store once, unless it is missing;
// m_cursorArea is its part of the image and empty without a current block.

#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcvirtualmemory.h"
#include "ovwcmn/xcvoffscreen.h"
#include "vimage/storelocks.h"

#include <cassert>
#include <cstring>

void XCVOffscreen::Lock(int x, int y, int edit) {
    if (!m_loadImage)
        LoadImageA(1, edit != 0);
    else if (edit)
        ClearDelayData(); // a copy of pixels that are about to change
    const int editModeBefore = m_editMode;
    ++m_lockCount;
    if (edit)
        m_editMode = 1;
    try {
        if (edit && m_cursor.IsEnable() && !m_lockedForEdit)
            releaseCurrentBlock(); // it was locked for reading: it has to be created or marked now
        if (m_lockCount > 1)
            MoveCursor(x, y);
        else {
            m_cursor.x = x, m_cursor.y = y;
            SetCurrentBlock();
        }
    } catch (...) {
        --m_lockCount;
        m_editMode = editModeBefore;
        throw;
    }
    if (edit)
        m_editLockChecker = 1;
}

void XCVOffscreen::Unlock() {
    if (m_lockCount <= 0 || --m_lockCount > 0)
        return;
    releaseCurrentBlock();
    m_editMode = 0;
}

// ---- One block's memory

std::uint8_t* XCVOffscreen::LockBlock(int index) {
    if (!hasCell(index) || !m_vm)
        return nullptr;
    XCVOffscreenBlock& cell = m_blocks[index];
    const bool isNew = !cell.GetSwapBlock();
    if (isNew && !m_editMode)
        return nullptr;
    if (isNew)
        createSwapBlock(index);
    std::uint8_t* base = nullptr;
    try {
        base = lockSwapBlock(cell.GetSwapBlock(), m_editMode, isNew);
    } catch (...) {
        if (isNew)
            freeCell(index, 0);
        throw;
    }
    if (m_editMode)
        cell.AddEditCounter();
    return base;
}

/// Blocks lose their contents only by being temporary, which they are in protect mode alone; then other threads must
/// not evict this one between the question whether it is resident and the lock.
std::uint8_t* XCVOffscreen::lockSwapBlock(XCSwapBlock* swapBlock, int edit, bool isNew) {
    int hasData = 0;
    std::uint8_t* base = nullptr;
    {
        const XCCriticalSectionAutoLeave storeLock(&ovw::vimage::librarySection());
        // A temporary block is gone with its memory, every other one only with the store that held it.
        hasData = !isNew && (m_protectMode ? swapBlock->IsOnMemory() : swapBlock->IsEnable());
        base = static_cast<std::uint8_t*>(m_vm->Lock(swapBlock, edit, &hasData));
    }
    if (base && !hasData && m_enableClear)
        ClearBlock(base);
    return base;
}

void XCVOffscreen::UnlockBlock(int index) {
    if (XCSwapBlock* const swapBlock = swapBlockOf(index))
        m_vm->Unlock(swapBlock);
}

// ---- The current block

void XCVOffscreen::SetCurrentBlock() { enterBlock(GetBlockIndex(m_cursor.x, m_cursor.y), m_cursor.x, m_cursor.y); }

void XCVOffscreen::releaseCurrentBlock() {
    if (m_cursor.base)
        UnlockBlock(m_cursor.index);
    m_cursor.index = -1;
    m_cursor.base = m_cursor.address = nullptr;
    m_cursorArea.SetRectEmpty();
}

/// Makes a block current (none for -1) and puts the cursor on (x, y), a pixel of it. When the store fails, the cursor
/// has its new position and no current block.
std::uint8_t* XCVOffscreen::enterBlock(int index, int x, int y) {
    releaseCurrentBlock();
    m_cursor.x = x, m_cursor.y = y;
    if (!hasCell(index))
        return nullptr;
    m_cursor.base = LockBlock(index);
    m_cursor.index = index;
    m_cursorArea.IntersectRect(m_blocks[index].GetRect(), GetRect());
    m_lockedForEdit = m_editMode != 0;
    return placeCursor(x, y);
}

int XCVOffscreen::GetCurrentBlock(XCRect& rect, std::uint8_t*& base) const {
    if (!m_cursor.IsEnable())
        return 0;
    rect = m_blocks[m_cursor.index].GetRect();
    base = m_cursor.base;
    return 1;
}

// ---- Moving the cursor

int XCVOffscreen::moved(int v, int d) {
    int sum = 0;
    return __builtin_add_overflow(v, d, &sum) ? v : sum;
}

std::uint8_t* XCVOffscreen::NextCursorY() {
    const int y = moved(m_cursor.y, 1);
    return m_cursorArea.hasRow(y) ? NextCursorYFastest() : enterBlock(GetBlockIndex(m_cursor.x, y), m_cursor.x, y);
}

std::uint8_t* XCVOffscreen::PrevCursorY() {
    const int y = moved(m_cursor.y, -1);
    return m_cursorArea.hasRow(y) ? PrevCursorYFastest() : enterBlock(GetBlockIndex(m_cursor.x, y), m_cursor.x, y);
}

std::uint8_t* XCVOffscreen::SetCurrentCursorAddressFake32(int x, int y) const {
    constexpr int cnBytes = 4;
    if (!m_cursor.base)
        return nullptr;
    return m_cursor.base + (y & cnBlockMask) * m_rowBytes + (x & cnBlockMask) * cnBytes;
}

std::uint8_t* XCVOffscreen::MoveCursorFake32(int x, int y) {
    MoveCursorFast(x, y);
    return SetCurrentCursorAddressFake32(x, y);
}

// ---- Four 8-bit pixels at once

std::uint32_t XCVOffscreen::Get8BitColorOnlyQuad() const {
    std::uint32_t quad = 0;
    if (m_cursor.address)
        std::memcpy(&quad, m_cursor.address, sizeof quad);
    return quad;
}

void XCVOffscreen::Set8BitColorOnlyQuad(std::uint32_t quad) {
    assert(m_cursor.address);
    std::memcpy(m_cursor.address, &quad, sizeof quad);
}
