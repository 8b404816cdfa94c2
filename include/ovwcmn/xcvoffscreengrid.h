#ifndef OVWCMN_XCVOFFSCREENGRID_H
#define OVWCMN_XCVOFFSCREENGRID_H

/// @file
/// The grid of a tiled image: its size, its blocks and what can be asked of them. Part of XCVOffscreen.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/xcarray.h"
#include "ovwcmn/xcvoffscreenblock.h"
#include "ovwcmn/xcvoffscreensettings.h"

#include <cstdint>

class XCSwapBlock;
class XCVirtualMemory;
class XCVOffscreen;

/// The part of a tiled image that asking does not change: nothing here locks, loads or creates a block. Coordinates are
/// pixels of the image; block indexes go row by row. Throws nothing, but lists throw 8 when memory runs out.
class OVWCMN_API XCVOffscreenGrid : public XCVOffscreenSettings {
public:
    /// @{ Pixels of a block's side, as a shift, a number and a mask.
    static constexpr int cnBlockShift = 8;
    static constexpr int cnBlockSize = 1 << cnBlockShift;
    static constexpr int cnBlockMask = cnBlockSize - 1;
    /// @}

    /// @{ Pixels.
    int GetWidth() const { return m_width; }
    int GetHeight() const { return m_height; }
    /// @}
    XCRect GetRect() const { return XCRect(0, 0, m_width, m_height); } ///< (0, 0, width, height)
    XCVirtualMemory* GetVirtualMemory() const { return m_vm; }         ///< null before Create
    /// The result is across x down; either pointer may be null.
    int GetBlockCount(int* across, int* down) const;
    /// @{ Columns and rows of blocks.
    int GetHBlockCount() const { return m_blocksAcross; }
    int GetVBlockCount() const { return m_blocksDown; }
    /// @}
    int GetBlockRowBytes() const { return m_rowBytes; } ///< bytes of a row of a block
    /// -1 outside the image.
    int GetBlockIndex(int x, int y) const { return isInside(x, y) ? GetBlockIndexFast(x, y) : -1; }
    /// The same for pixels that lie in the image.
    int GetBlockIndexFast(int x, int y) const { return (y >> cnBlockShift) * m_blocksAcross + (x >> cnBlockShift); }
    /// The whole block, not clipped to the image; empty outside the grid.
    XCRect GetBlockRect(int index) const;
    /// The inclusive ranges of the blocks that rect meets. Result: their number; 0 leaves the ranges alone.
    int GetBlockAreaIndex(const XCRect& rect, int& firstColumn, int& lastColumn, int& firstRow, int& lastRow) const;
    /// Whether the block meets rect; *out (may be null) becomes the intersection when clip is 1, else the whole block.
    int GetBlockArea(const XCRect& rect, int index, tagRECT* out, int clip) const;
    /// The blocks that rect meets in the image, row by row: whole blocks, or with clip 1 their parts in rect and image.
    int GetBlockArea(const XCRect& rect, XCTArray<tagRECT, 0>& list, int clip) const;
    /// A coordinate of this image in the pixels of other, by their resolutions, truncated toward zero.
    int ConvertPointX(const XCVOffscreen* other, int x) const;
    int ConvertPointY(const XCVOffscreen* other, int y) const; ///< The same downward.

    // ---- Blocks. Outside the grid or image the answer is that of a block that is missing.
    /// @{ Whether the block is there.
    int GetBlockExist(int x, int y) const;
    int GetBlockExist(int index) const;
    /// @}
    int IsBlockExist() const; ///< Whether any block exists.
    /// Whether the block is there.
    int IsCreatedBlockByIndex(int column, int row) const;
    /// @{ What is at a pixel or in a block.
    AREA_TYPE CheckAreaType(int x, int y) const;
    AREA_TYPE CheckAreaType(int index) const;
    /// @}
    int IsBlockOnMemory(int x, int y) const;        ///< 1 for missing blocks.
    int IsBlockOnMemory(int index) const;           ///< 1 for missing blocks
    int IsBlockAbsoluteProtect(int x, int y) const; ///< 1 for missing blocks.
    int IsBlockAbsoluteProtect(int index) const;    ///< 1 for missing blocks
    int CheckBlockLock(int index) const;            ///< 1 while the block is locked in the store
    /// @{ Whether the block was edited since it was made or reset.
    int CheckBlockEdited(int index) const;
    void ResetBlockEdited(int index);
    /// @}
    /// The address of an absolutely protected block's memory, as its last lock gave it; null when there is none.
    std::uint8_t* GetABSProtectAddress(int index) const;
    /// As above by pixel; with pixel 1 the address of that very pixel.
    std::uint8_t* GetABSProtectAddress(int x, int y, int pixel) const;
    /// Bytes of the blocks (of the resident ones only when residentOnly is set). packed 1 asks for the
    /// size that packed pixels expand to at most.
    std::uint64_t GetUsedMemory(int residentOnly, int packed) const;

protected:
    XCVOffscreenGrid() = default;
    XCVOffscreenGrid(const XCVOffscreenGrid&) = delete;
    XCVOffscreenGrid& operator=(const XCVOffscreenGrid&) = delete;
    ~XCVOffscreenGrid() = default;

    /// Outside: either coordinate is negative or too large.
    bool isInside(int x, int y) const {
        return static_cast<std::uint32_t>(x) < static_cast<std::uint32_t>(m_width) &&
               static_cast<std::uint32_t>(y) < static_cast<std::uint32_t>(m_height);
    }
    /// @{ Cells of the grid by index; cellIndex gives -1 and swapBlockOf null where there is none.
    bool hasCell(int index) const { return index >= 0 && index < m_blocks.GetSize(); }
    int cellIndex(int column, int row) const;
    XCSwapBlock* swapBlockOf(int index) const;
    /// @}

    /// @{ Addresses are taken modulo the block, so that no position can lead out of its memory.
    std::uint8_t* addressIn(std::uint8_t* base, int x, int y) const {
        return base + (y & cnBlockMask) * m_rowBytes + (((x & cnBlockMask) * m_depth) >> 3);
    }
    /// @}

    /// @{ What Create sets: store, pixels, bytes of a block's row, blocks, cells row by row.
    XCVirtualMemory* m_vm = nullptr;
    int m_width = 0;
    int m_height = 0;
    int m_rowBytes = 0;
    int m_blocksAcross = 0;
    int m_blocksDown = 0;
    XCTArray<XCVOffscreenBlock, 0> m_blocks;
    /// @}
};

#endif // OVWCMN_XCVOFFSCREENGRID_H
