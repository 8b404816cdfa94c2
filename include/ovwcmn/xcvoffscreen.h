#ifndef OVWCMN_XCVOFFSCREEN_H
#define OVWCMN_XCVOFFSCREEN_H

/// @file
/// The tiled image: a grid of 256 x 256-pixel blocks of one depth, reached through one cursor.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/wintypes.h"
#include "ovwcmn/xcgeometry.h"
#include "ovwcmn/xcvoffscreenblock.h"
#include "ovwcmn/xcvoffscreengrid.h"

#include <cstdint>

class XCFastPixelMixer;
class XCSwapBlock;
class XCVirtualMemory;
class XCVOffPixelMask;
class XCVOffPixelMixer;

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
class OVWCMN_API XCVOffscreen : public XCVOffscreenGrid {
public:
    XCVOffscreen();
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
    /// Fills the whole current block with colour, or with the clear colour when useColour is 0. Locks for editing.
    virtual void FillBlock(int /*useColour*/, std::uint32_t /*colour*/) {}
    // One pixel thick, a column when vertical is 1, else a row; clipped to the image. The caller locks for editing.
    virtual void DrawSimpleLine(int /*vertical*/, int /*position*/, std::uint32_t /*colour*/) {}
    virtual void DrawSimpleSegment(int /*vertical*/, int /*position*/, int /*start*/, int /*length*/,
                                   std::uint32_t /*colour*/) {}
    /// 1- and 8-bit images: 1 when pixels x1 to x2 of row y are all ink, 0 when none is, else -1, which x1 and x2 may
    /// then enclose more closely: test every pixel between. 1 bit goes by whole bytes, and x2 comes back exclusive.
    virtual int CheckLinePixel(int /*y*/, int& /*x1*/, int& /*x2*/) { return -1; }
    /// The address that (x, y) has in the current block if that block lies at base.
    virtual std::uint8_t* SetCurrentCursorAddress(int /*x*/, int /*y*/, std::uint8_t* base) const { return base; }
    /// Sets the cursor's address (not its position) to pixel (x, y) of the current block.
    virtual std::uint8_t* SetCurrentCursorAddress(int /*x*/, int /*y*/) { return nullptr; }
    /// Fills pixels x1 to x2 (inclusive) of the cursor's row where the screen row pattern (16 thresholds, by x) and the
    /// mask's ink let it (both may be null). Modes: 0 replace, 1 raise, 2 blend, 3 erase. The caller locks both images
    /// and sets both cursors' rows; mask pixel x + maskOffsetX belongs to pixel x.
    virtual void FillLineRowForPolygon(int /*x1*/, int /*x2*/, std::uint32_t /*colour*/, int /*mode*/,
                                       XCVOffscreen* /*mask*/, int /*maskOffsetX*/, const std::uint8_t* /*pattern*/,
                                       int /*patternLevel*/) {}
    /// 2-bit images: as above, but white never covers black.
    virtual void FillLineRowForPolygonClipBlack(int /*x1*/, int /*x2*/, std::uint32_t /*colour*/, int /*mode*/,
                                                XCVOffscreen* /*mask*/, int /*maskOffsetX*/,
                                                const std::uint8_t* /*pattern*/, int /*patternLevel*/) {}
    /// Fills pixels x1 to x2 (inclusive) of row y, clipped to the image and *clip (may be null). The caller locks.
    virtual void FillLineRow(int /*x1*/, int /*x2*/, int /*y*/, std::uint32_t /*colour*/, const tagRECT* /*clip*/) {}
    /// The largest coverage (on 24 bits: red byte) of pixels x1 to x2 of the cursor's row. The caller locks.
    virtual int SearchLineRowForPolygon(int /*x1*/, int /*x2*/) { return 0; }

    // ---- Making images
    /// A new empty image of depth 1, 2, 8, 16, 24 or 32; null for any other. The caller owns it.
    static XCVOffscreen* CreateOffscreen(int depth);
    static void DeleteOffscreen(XCVOffscreen* image);
    /// A new empty image of the same depth and size on the same store; the caller owns it.
    XCVOffscreen* CreateSameSizeOffscr() const;
    XCVOffscreen* CreateSameSizeOffscr(double resolution) const;
    /// A new image with the same size, clear colours and pixels; the caller owns it.
    XCVOffscreen* CreateAndCopyAll();

    // ---- Freeing and protecting blocks
    /// Each answers 1 when any block was freed; with countEdit 1 a freed block counts as edited.
    int DestroyAllBlock();
    int DestroyAllBlock(int countEdit);
    int DestroyBlock(int index, int countEdit);
    int DestroyBlockByIndex(int column, int row, int countEdit);
    int DestroyBlockByXY(int x, int y, int countEdit);
    void UnloadAllBlock(); ///< Sends every resident block to the swap file.
    /// Keeps exactly the blocks that rect meets from eviction; in protect mode the others then lose their pixels when
    /// memory is short.
    void SetProtectArea(const XCRect& rect);
    void ClearProtectArea();
    /// Adds the block of rect's top-left pixel to what is protected; nothing for an empty rect.
    void SetProtectBlockArea(const XCRect& rect);

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
        return staysIn(x, y) ? MoveCursorFastest(x, y) : enterBlock(GetBlockIndex(x, y), x, y);
    }
    std::uint8_t* MoveCursorFast(int x, int y) {
        return staysIn(x, y) ? MoveCursorFastest(x, y) : enterBlock(GetBlockIndexFast(x, y), x, y);
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

    // ---- Round shapes; clip null: the whole image. Nothing is drawn outside the image.
    /// An outline, one pixel wide, where the mask (may be null) is free. The mixer paints into this image, which the
    /// caller locks for editing; the points on the axes and diagonals are mixed more than once.
    void Circle(int cx, int cy, int r, int unused, XCVOffPixelMixer* mixer, XCVOffPixelMask* mask, const tagRECT* clip,
                std::uint8_t* unusedToo);
    /// A disc of diameter d with its left-top corner at (x, y), d + 1 pixels wide up to d = 3. Modes, mask and screen
    /// (16 x 16 thresholds) are those of FillLineRowForPolygon; the caller locks both images.
    void CircleFill(int x, int y, int d, const std::uint32_t& colour, int mode, XCVOffscreen* maskImage,
                    const tagPOINT& maskOffset, const tagRECT* clip, std::uint8_t* pattern, int patternLevel);
    /// The ellipse that touches the pixels x1 <= x2 and y1 <= y2. Locks for editing.
    void ArcFill(int x1, int y1, int x2, int y2, std::uint32_t colour, const tagRECT* clip);

    // ---- Compositing
    /// Mixes the mixer's colour into the pixels of src, w x h from (sx, sy), weighted by alpha's ink, and stores them
    /// from (dx, dy) of this image, for which the mixer is set up. Nothing happens unless alpha has 8 bits and src's
    /// size and resolution. Locks all three.
    void CompositAlpha(int dx, int dy, int w, int h, XCVOffscreen* src, XCVOffscreen* alpha, int sx, int sy,
                       XCVOffPixelMixer* mixer);

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

    /// Whether (x, y) lies in the current block and that block is locked as the edit mode asks.
    bool staysIn(int x, int y) const { return m_cursorArea.holds(x, y) && (m_lockedForEdit || !m_editMode); }
    /// v + d, or v when the sum leaves 32 bits the image ends long before.
    static int moved(int v, int d);
    std::uint8_t* placeCursor(int x, int y) {
        m_bitMask = static_cast<std::uint8_t>(m_firstBitMask >> (((x & cnBlockMask) * m_depth) & 7));
        return m_cursor.address = m_cursor.base ? addressIn(m_cursor.base, x, y) : nullptr;
    }

    int m_lockCount = 0;
    int m_editMode = 0;
    int m_protectMode = 0;
    XCRect m_protectRect;
    XCVOffscreenCursor m_cursor;
    ovw::vimage::CursorArea m_cursorArea;
    std::uint8_t m_bitMask = 0;      // of the cursor's pixel inside its byte, 1 and 2 bits
    std::uint8_t m_firstBitMask = 0; // of a byte's first pixel; 0 from 8 bits on
    int m_editLockChecker = 0;

private:
    friend class XCVOffscreenCache;
    struct Growth;

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

    bool m_lockedForEdit = false; // how the current block was locked
};

#include "ovwcmn/xcvoffscreenvariants.h"

#endif // OVWCMN_XCVOFFSCREEN_H
