#ifndef OVWCMN_XCVOFFSCREEN_H
#define OVWCMN_XCVOFFSCREEN_H

/// @file
/// The tiled image: a grid of 256 x 256-pixel blocks of one depth, reached through one cursor.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/wintypes.h"
#include "ovwcmn/xcarray.h"
#include "ovwcmn/xcgeometry.h"
#include "ovwcmn/xcvoffscreenblock.h"

#include <cstdint>

class XCFastPixelMixer;
class XCSwapBlock;
class XCVirtualMemory;

/// A raster image of 1, 2, 8, 16, 24 or 32 bits a pixel, cut into blocks that exist only where something was painted.
/// The blocks' memory comes from an XCVirtualMemory, which the image does not own and which must outlive its pixels;
/// the image frees its blocks in Destroy and in its destructor. Pixels are reached between Lock and Unlock, best
/// through XCVOffscreenAutoLock; at most one block is held through the cursor at a time. Failures of the store are
/// thrown as XCException and leave the image usable, without a current block. An image belongs to one thread at a time;
/// different images of one store may be used from different threads.
///
/// Cursor movements have three speeds: plain (checks everything), Fast (the point must lie in the image) and Fastest
/// (it must lie in the current block). All return the new address, null outside the image and in a block that is
/// missing. Colour values are 0xAABBGGRR.
class OVWCMN_API XCVOffscreen {
public:
    static constexpr int cnBlockShift = 8;
    static constexpr int cnBlockSize = 1 << cnBlockShift;
    static constexpr int cnBlockMask = cnBlockSize - 1;

    XCVOffscreen();
    XCVOffscreen(const XCVOffscreen&) = delete;
    XCVOffscreen& operator=(const XCVOffscreen&) = delete;
    virtual ~XCVOffscreen();

    // ---- Virtual operations, in the order that the interface fixes. The base class answers 0 and does nothing where
    // an operation depends on the depth.
protected:
    virtual void Initialize();

public:
    /// Lays out the grid; no block memory is taken. resolution is in the caller's unit, e.g. pixels an inch. An
    /// existing grid is destroyed first. Throws 0x20010008 for negative sizes and for grids beyond 32 bits.
    virtual void Create(XCVirtualMemory* vm, int width, int height, double resolution);
    /// Frees every block; thresholds, index colours and the specialty flag stay.
    virtual void Destroy();
    /// Grows the image by whole blocks on the left and top, by pixels on the right and bottom, until it holds rect.
    /// *out (may be null) becomes (L, T, L + width, T + height) with the pixels L, T added left and above.
    virtual int AllocateRect(const XCRect& rect, XCRect* out);
    /// Removes one block column or row with its pixels; 0 when only one is left.
    virtual int DeallocateBlock(DEALLOCATE_BLOCK_TYPE type);
    /// Removes the whole blocks around rect. offset: the pixels removed left and above. 0 when a step failed.
    virtual int DeallocateRect(XCRect rect, XCPoint& offset);
    /// Fills the block memory at block (the current block when null) with the clear colour.
    virtual void ClearBlock(std::uint8_t* /*block*/) {}
    virtual std::uint8_t* NextCursorX() { return nullptr; }
    virtual std::uint8_t* NextCursorXFastest() { return nullptr; }
    virtual std::uint8_t* PrevCursorX() { return nullptr; }
    virtual std::uint8_t* PrevCursorXFastest() { return nullptr; }

    /// The pixel under the cursor as a value of the image's own depth.
    virtual std::uint32_t GetColor() const { return 0; }
    // Readers of the pixel under the cursor as another depth's value. The plain forms answer a default at a null
    // address, the Fast forms require an address.
    virtual std::uint8_t Get1BitColorFast() const { return 0; }
    virtual std::uint8_t Get1BitColor() const { return 0; }
    virtual std::uint8_t Get2BitColorFast() const { return 0; }
    virtual std::uint8_t Get2BitColor() const { return 0; }
    virtual std::uint8_t Get8BitColorFast() const { return 0; }
    virtual std::uint8_t Get8BitColor() const { return 0; }
    virtual std::uint32_t Get16BitColorFast() const { return 0; }
    virtual std::uint32_t Get16BitColor() const { return 0; }
    virtual std::uint32_t Get24BitColorFast() const { return 0; }
    virtual std::uint32_t Get24BitColor() const { return 0; }
    /// The 24-bit reading of the pixel at address; 1- and 2-bit images read the pixel under the cursor.
    virtual std::uint32_t Get24BitColorAddress(const std::uint8_t* /*address*/) const { return 0; }
    virtual std::uint32_t Get32BitColorFast() const { return 0; }
    virtual std::uint32_t Get32BitColor() const { return 0; }
    // Writers of the pixel under the cursor; all require an address. SetColor takes a value of the image's own depth.
    virtual void SetColor(std::uint32_t /*value*/) {}
    virtual void Set1BitColor(std::uint8_t /*value*/) {}
    virtual void Set2BitColor(std::uint8_t /*value*/) {}
    virtual void Set8BitColor(std::uint8_t /*density*/) {}
    virtual void Set16BitColor(std::uint32_t /*colour*/) {}
    virtual void Set24BitColor(std::uint32_t /*colour*/) {}
    virtual void Set32BitColor(std::uint32_t /*colour*/) {}
    /// Copies the pixel under the cursor of source, an image of the same depth.
    virtual void CopyCurrentColor(XCVOffscreen* /*source*/) {}
    virtual void CopyCurrentColorFast(XCVOffscreen* /*source*/) {}
    /// A colour as a value of the image's own depth, as SetColor takes it.
    virtual std::uint32_t MakeNativeColor(std::uint32_t /*colour*/) const { return 0; }
    // The pixel as a picture, without its coverage, and the coverage alone.
    virtual std::uint8_t Get8BitImageFast() const { return 0; }
    virtual std::uint8_t Get8BitImage() const { return 0; }
    virtual std::uint32_t Get24BitImageFast() const { return 0; }
    virtual std::uint32_t Get24BitImage() const { return 0; }
    virtual std::uint8_t Get8BitMaskFast() const { return 0; }
    virtual std::uint8_t Get8BitMask() const { return 0; }

    /// Fills rect with colour, or with the clear value when erase is set. With behind the colour goes behind the pixels
    /// that are there. Locks for editing.
    virtual void RectFill(const XCRect& /*rect*/, int /*erase*/, std::uint32_t /*colour*/, int /*behind*/) {}
    virtual void RectFill(const XCRect& /*rect*/, int /*erase*/, std::uint32_t /*colour*/) {}
    /// The address that (x, y) has in the current block if that block lies at base.
    virtual std::uint8_t* SetCurrentCursorAddress(int /*x*/, int /*y*/, std::uint8_t* base) const { return base; }
    /// Sets the cursor's address (not its position) to pixel (x, y) of the current block.
    virtual std::uint8_t* SetCurrentCursorAddress(int /*x*/, int /*y*/) { return nullptr; }
    /// Fills pixels x1 to x2 (inclusive) of row y, clipped to the image and *clip (may be null). The caller locks.
    virtual void FillLineRow(int /*x1*/, int /*x2*/, int /*y*/, std::uint32_t /*colour*/, const tagRECT* /*clip*/) {}

    // ---- Making images
    /// A new empty image of depth 1, 2, 8, 16, 24 or 32; null for any other. The caller owns it.
    static XCVOffscreen* CreateOffscreen(int depth);
    static void DeleteOffscreen(XCVOffscreen* image);
    /// A new empty image of the same depth and size on the same store; the caller owns it.
    XCVOffscreen* CreateSameSizeOffscr() const;
    XCVOffscreen* CreateSameSizeOffscr(double resolution) const;
    /// A new image with the same size, clear colours and pixels; the caller owns it.
    XCVOffscreen* CreateAndCopyAll();

    // ---- Geometry
    int GetDepth() const { return m_depth; }
    int GetWidth() const { return m_width; }
    int GetHeight() const { return m_height; }
    XCRect GetRect() const { return XCRect(0, 0, m_width, m_height); }
    XCVirtualMemory* GetVirtualMemory() const { return m_vm; }
    /// The position of pixel (0, 0) in the caller's coordinates; growing on the left or top moves it.
    XCPoint GetOffset() const { return m_offset; }
    void SetOffset(const XCPoint& offset) { m_offset = offset; }
    double GetResolution() const { return m_resolution; }
    void SetResolution(double resolution) { m_resolution = resolution; }
    /// The result is across x down; either pointer may be null.
    int GetBlockCount(int* across, int* down) const;
    int GetHBlockCount() const { return m_blocksAcross; }
    int GetVBlockCount() const { return m_blocksDown; }
    int GetBlockRowBytes() const { return m_rowBytes; }
    /// -1 outside the image.
    int GetBlockIndex(int x, int y) const { return isInside(x, y) ? GetBlockIndexFast(x, y) : -1; }
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
    int ConvertPointY(const XCVOffscreen* other, int y) const;

    // ---- Blocks. Outside the grid or image the answer is that of a block that is missing.
    int GetBlockExist(int x, int y) const;
    int GetBlockExist(int index) const;
    int IsBlockExist() const; ///< Whether any block exists.
    int IsCreatedBlockByIndex(int column, int row) const;
    AREA_TYPE CheckAreaType(int x, int y) const;
    AREA_TYPE CheckAreaType(int index) const;
    int IsBlockOnMemory(int x, int y) const; ///< 1 for missing blocks.
    int IsBlockOnMemory(int index) const;
    int IsBlockAbsoluteProtect(int x, int y) const; ///< 1 for missing blocks.
    int IsBlockAbsoluteProtect(int index) const;
    int CheckBlockLock(int index) const;
    int CheckBlockEdited(int index) const;
    void ResetBlockEdited(int index);
    /// The address of an absolutely protected block's memory, as its last lock gave it; null when there is none.
    std::uint8_t* GetABSProtectAddress(int index) const;
    /// As above by pixel; with pixel 1 the address of that very pixel.
    std::uint8_t* GetABSProtectAddress(int x, int y, int pixel) const;
    int DestroyAllBlock(); ///< 1 when any block was freed.
    int DestroyAllBlock(int countEdit);
    int DestroyBlock(int index, int countEdit);
    int DestroyBlockByIndex(int column, int row, int countEdit);
    int DestroyBlockByXY(int x, int y, int countEdit);
    void UnloadAllBlock(); ///< Sends every resident block to the swap file.
    void SetProtectArea(const XCRect& rect);
    void ClearProtectArea();
    void SetProtectBlockArea(const XCRect& rect);
    /// Bytes of the blocks (of the resident ones only when residentOnly is set). packed asks for delayed pixels' size.
    std::uint64_t GetUsedMemory(int residentOnly, int packed) const;

    // ---- Locks
    /// With edit, missing blocks are created and blocks marked edited until the last Unlock. (-1, -1): no current
    /// pixel.
    void Lock(int x, int y, int edit);
    void Unlock();
    int GetLockCount() const { return m_lockCount; }
    int GetEditMode() const { return m_editMode; }
    void SetEditMode(int edit) { m_editMode = edit; }
    int GetEditLockChecker() const { return m_editLockChecker; }
    void SetEditLockChecker(int value) { m_editLockChecker = value; }
    void ResetEditLockChecker() { m_editLockChecker = 0; }

    // ---- Cursor
    void SetCurrentBlock(); ///< Looks up the block under the cursor again.
    /// 0 without a current block; base is null while the block is missing.
    int GetCurrentBlock(XCRect& rect, std::uint8_t*& base) const;
    int GetCurrentBlockIndex() const { return m_cursor.index; }
    std::uint8_t* GetCurrentAddress() const { return m_cursor.address; }
    std::uint8_t* GetBaseAddress() const { return m_cursor.base; }
    void GetCursorPos(int& x, int& y) const { x = m_cursor.x, y = m_cursor.y; }
    int GetCursorPosX() const { return m_cursor.x; }
    int GetCursorPosY() const { return m_cursor.y; }
    std::uint8_t* MoveCursor(int x, int y) {
        return inCursorArea(x, y) ? MoveCursorFastest(x, y) : enterBlock(GetBlockIndex(x, y), x, y);
    }
    std::uint8_t* MoveCursorFast(int x, int y) {
        return inCursorArea(x, y) ? MoveCursorFastest(x, y) : enterBlock(GetBlockIndexFast(x, y), x, y);
    }
    std::uint8_t* MoveCursorFastest(int x, int y) {
        m_cursor.x = x, m_cursor.y = y;
        return placeCursor(x, y);
    }
    std::uint8_t* MoveCursorX(int x) { return MoveCursor(x, m_cursor.y); }
    std::uint8_t* MoveCursorXFast(int x) { return MoveCursorFast(x, m_cursor.y); }
    std::uint8_t* MoveCursorXFastest(int x) { return MoveCursorFastest(x, m_cursor.y); }
    std::uint8_t* MoveCursorY(int y) { return MoveCursor(m_cursor.x, y); }
    std::uint8_t* MoveCursorYFast(int y) { return MoveCursorFast(m_cursor.x, y); }
    std::uint8_t* MoveCursorYFastest(int y) { return MoveCursorFastest(m_cursor.x, y); }
    std::uint8_t* OffsetCursor(int dx, int dy) { return MoveCursor(moved(m_cursor.x, dx), moved(m_cursor.y, dy)); }
    std::uint8_t* OffsetCursorFast(int dx, int dy) { return MoveCursorFast(m_cursor.x + dx, m_cursor.y + dy); }
    std::uint8_t* OffsetCursorFastest(int dx, int dy) { return MoveCursorFastest(m_cursor.x + dx, m_cursor.y + dy); }
    std::uint8_t* OffsetCursorX(int dx) { return OffsetCursor(dx, 0); }
    std::uint8_t* OffsetCursorXFast(int dx) { return OffsetCursorFast(dx, 0); }
    std::uint8_t* OffsetCursorXFastest(int dx) { return OffsetCursorFastest(dx, 0); }
    std::uint8_t* OffsetCursorY(int dy) { return OffsetCursor(0, dy); }
    std::uint8_t* OffsetCursorYFast(int dy) { return OffsetCursorFast(0, dy); }
    std::uint8_t* OffsetCursorYFastest(int dy) { return OffsetCursorFastest(0, dy); }
    std::uint8_t* NextCursorY();
    std::uint8_t* PrevCursorY();
    std::uint8_t* NextCursorYFastest() {
        ++m_cursor.y;
        return m_cursor.address = m_cursor.address ? m_cursor.address + m_rowBytes : nullptr;
    }
    std::uint8_t* PrevCursorYFastest() {
        --m_cursor.y;
        return m_cursor.address = m_cursor.address ? m_cursor.address - m_rowBytes : nullptr;
    }
    /// The address that (x, y) of the current block would have if a pixel took 4 bytes; the cursor stays.
    std::uint8_t* SetCurrentCursorAddressFake32(int x, int y) const;
    /// Enters the block of (x, y), which must lie in the image, and answers as SetCurrentCursorAddressFake32.
    std::uint8_t* MoveCursorFake32(int x, int y);
    /// The four 8-bit pixels at the cursor as one word; 0 at a null address.
    std::uint32_t Get8BitColorOnlyQuad() const;
    void Set8BitColorOnlyQuad(std::uint32_t quad);

    // ---- Emptiness
    /// Whether the image's part of the current block has no visible pixel; never on 24 bits.
    int IsCurrentBlockEmpty() const;
    int IsCurrentBlockEmpty(const XCRect& rect) const;
    /// 1 for missing blocks; else, by coverage, only on 16 and 32 bits: whether no pixel is visible.
    int CheckClearBlock(int index);
    int CheckClearBlock(XCRect rect);

    // ---- Fills
    /// Paints rect (one pixel when its width and height are 0) through a configured mixer. The caller locks the image.
    void RectFill(const XCRect& rect, XCFastPixelMixer* mixer, const tagRECT* clip);
    /// Erases r; blocks that r covers are released.
    void ClrRect(const tagRECT& r);

    // ---- Settings
    void GetClearColor(std::uint8_t* value) const;
    void GetClearColor(std::uint32_t* colour) const;
    void SetClearColor(std::uint8_t value) { m_clearByte = value; }     ///< Of 1-, 2- and 8-bit images.
    void SetClearColor(std::uint32_t colour) { m_clearColor = colour; } ///< Of 16-, 24- and 32-bit images.
    void SetClearColor(int value); ///< The byte up to 8 bits, else the colour, so that a plain number needs no cast.
    void GetMaskColor(std::uint32_t* colour) const;
    void SetMaskColor(std::uint32_t colour) { m_maskColor = colour; }
    int IsEnableClear() const { return m_enableClear; } ///< Whether new blocks are cleared.
    void EnableClear(int enable) { m_enableClear = enable; }
    int GetTransparency() const { return m_transparency; }
    void SetTransparency(int transparency) { m_transparency = transparency; }
    int GetSpecialtyOffscr() const { return m_specialty; } ///< Kept for the caller.
    void SetSpecialtyOffscr(int value) { m_specialty = value; }
    int GetMonoBWThreshold() const { return m_rules.blackWhite; }
    int GetMonoTransThreshold() const { return m_rules.transparency; }
    void SetMonoBWThreshold(int threshold) { m_rules.blackWhite = threshold; }
    void SetMonoTransThreshold(int threshold) { m_rules.transparency = threshold; }
    int IsMonoBlack(int value) const { return value < m_rules.blackWhite; }
    int IsMonoNotTrans(int value) const { return value > m_rules.transparency; }
    static int IsMonoBlackDef(int value) { return value < ovw::vimage::cnDefaultBlackWhite; }
    static int IsMonoNotTransDef(int value) { return value > ovw::vimage::cnDefaultTransparency; }
    std::uint32_t GetIndexColor(int i) const; ///< 0 beyond 0 to 255.
    void SetIndexColor(int i, std::uint32_t colour);
    int IsLoadImage() const { return m_loadImage; } ///< Whether the pixels are all present.
    void SetLoadImage(int loaded) { m_loadImage = loaded; }

    // ---- Colour helpers
    static std::uint8_t VXCOLORREFtoBYTE1(std::uint32_t colour);
    static std::uint8_t VXCOLORREFtoBYTE2(std::uint32_t colour);
    static std::uint8_t VXCOLORREFtoBYTE8(std::uint32_t colour);
    static std::uint32_t BYTE1toVXCOLORREF(std::uint8_t value);
    static std::uint32_t BYTE8toVXCOLORREF(std::uint8_t density);
    static int IsEqualB(std::uint8_t a, std::uint8_t b, int margin);
    static int IsEqualRGB(std::uint32_t c1, std::uint32_t c2, int margin);
    static int IsEqualRGBA(std::uint32_t c1, std::uint32_t c2, int margin);
    static int IsEqualRGBANoMargin(std::uint32_t c1, std::uint32_t c2);

    // ---- Ordered dither; the forms without a position use the cursor's. 1 = on.
    static const std::uint8_t* GetDitherTable256(); ///< 16 x 16 Bayer matrix, row by row.
    static int GetDitherValue255(int level, int x, int y);
    static int GetDitherValue16(int level, int x, int y);
    int GetDitherValue255(int level) const { return GetDitherValue255(level, m_cursor.x, m_cursor.y); }
    int GetDitherValue16(int level) const { return GetDitherValue16(level, m_cursor.x, m_cursor.y); }
    int GetDitherValue(int level) const;

protected:
    /// Memory of a block, locked in the store; null for a missing block outside edit mode and outside the grid.
    std::uint8_t* LockBlock(int index);
    void UnlockBlock(int index);
    /// Protect mode is that of cache images: blocks outside the protect area may be dropped instead of swapped.
    void SetProtectMode(int protect) { m_protectMode = protect; }
    int IsProtected(int index) const;
    void releaseCurrentBlock();
    std::uint8_t* enterBlock(int index, int x, int y);

    bool isInside(int x, int y) const {
        return static_cast<std::uint32_t>(x) < static_cast<std::uint32_t>(m_width) &&
               static_cast<std::uint32_t>(y) < static_cast<std::uint32_t>(m_height);
    }
    // The cursor area is the image's part of the current block, empty without one; steps out of it look for a new
    // block.
    bool inCursorColumns(int x) const { return inRange(x, m_cursorArea.left, m_cursorArea.right); }
    bool inCursorRows(int y) const { return inRange(y, m_cursorArea.top, m_cursorArea.bottom); }
    bool inCursorArea(int x, int y) const { return inCursorColumns(x) && inCursorRows(y); }
    static bool inRange(int v, int first, int end) {
        return static_cast<std::uint32_t>(v) - static_cast<std::uint32_t>(first) <
               static_cast<std::uint32_t>(end - first);
    }
    /// v + d, or v when the sum leaves 32 bits the image ends long before.
    static int moved(int v, int d);
    // Addresses are taken modulo the block, so that no position can lead out of its memory.
    std::uint8_t* addressIn(std::uint8_t* base, int x, int y) const {
        return base + (y & cnBlockMask) * m_rowBytes + (((x & cnBlockMask) * m_depth) >> 3);
    }
    std::uint8_t* placeCursor(int x, int y) {
        m_bitMask = static_cast<std::uint8_t>(m_firstBitMask >> (((x & cnBlockMask) * m_depth) & 7));
        return m_cursor.address = m_cursor.base ? addressIn(m_cursor.base, x, y) : nullptr;
    }

    XCVirtualMemory* m_vm = nullptr;
    int m_width = 0;
    int m_height = 0;
    int m_depth = 0;
    double m_resolution = 0;
    XCPoint m_offset;
    int m_rowBytes = 0;
    int m_blocksAcross = 0;
    int m_blocksDown = 0;
    XCTArray<XCVOffscreenBlock, 0> m_blocks;
    int m_lockCount = 0;
    int m_editMode = 0;
    int m_protectMode = 0;
    XCRect m_protectRect;
    XCVOffscreenCursor m_cursor;
    std::uint8_t m_bitMask = 0;      // of the cursor's pixel inside its byte, 1 and 2 bits
    std::uint8_t m_firstBitMask = 0; // of a byte's first pixel; 0 from 8 bits on
    std::uint8_t m_clearByte = 0;
    std::uint32_t m_clearColor = ovw::vimage::cnTransparentWhite;
    std::uint32_t m_maskColor = ovw::vimage::cnTransparentWhite;
    int m_enableClear = 1;
    int m_transparency = ovw::vimage::cnOpaque;
    int m_specialty = 0;
    ovw::vimage::PixelRules m_rules;
    int m_loadImage = 1;
    int m_editLockChecker = 0;

private:
    friend class XCVOffscreenCache;
    struct Growth;

    bool hasCell(int index) const { return index >= 0 && index < m_blocks.GetSize(); }
    int cellIndex(int column, int row) const;
    XCSwapBlock* swapBlockOf(int index) const;
    std::uint8_t* lockSwapBlock(XCSwapBlock* swapBlock, int edit, bool isNew);
    void createSwapBlock(int index);
    int freeCell(int index, int countEdit);
    void protect(XCSwapBlock& swapBlock, bool isProtected) const;
    void layOutGrid(int width, int height);
    Growth planGrowth(const XCRect& rect) const;
    void clearHiddenPixels(bool right, bool bottom);
    void clearPart(int index, const XCRect& part);
    void rebuildGrid(const Growth& growth);
    void dropCells(int droppedColumn, int droppedRow);
    void moveOrigin(int dx, int dy, bool findBlock);

    XCRect m_cursorArea;
    bool m_lockedForEdit = false; // how the current block was locked
};

#include "ovwcmn/xcvoffscreenvariants.h"

#endif // OVWCMN_XCVOFFSCREEN_H
