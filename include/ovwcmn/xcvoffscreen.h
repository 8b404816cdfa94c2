#ifndef OVWCMN_XCVOFFSCREEN_H
#define OVWCMN_XCVOFFSCREEN_H

/// @file
/// The tiled image: a grid of 256 x 256-pixel blocks of one depth, reached through one cursor.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/wintypes.h"
#include "ovwcmn/xcgeometry.h"
#include "ovwcmn/xcvoffscreenblock.h"
#include "ovwcmn/xcvoffscreenedits.h"

#include <cstdint>
#include <memory>

class IXCAbort;
class XCArchive;
class XCFastPixelMixer;
class XCSwapBlock;
class XCVirtualMemory;
class XCVOffscreenBackup;
class XCVOffscreenCache;

namespace ovw::vimage {
class HeldBlocks;
}

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
class OVWCMN_API XCVOffscreen : public XCVOffscreenEdits {
public:
    XCVOffscreen();
    ~XCVOffscreen() override;

protected:
    void Initialize() override;

public:
    void Create(XCVirtualMemory* vm, int width, int height, double resolution) override;
    void Destroy() override;
    int AllocateRect(const XCRect& rect, XCRect* out) override;
    int DeallocateBlock(DEALLOCATE_BLOCK_TYPE type) override;
    int DeallocateRect(XCRect rect, XCPoint& offset) override;
    int Copy(int x, int y, int w, int h, XCVOffscreen* src, int sx, int sy, int flag) override;
    void StretchCopy(int x, int y, int w, int h, XCVOffscreen* src, int sx, int sy, int sw, int sh) override;
    void ChangeResolutionLow(int x, int y, int w, int h, XCVOffscreen* src, int sx, int sy, int sw, int sh,
                             int merge) override;
    void ChangeResolutionHalf(int x, int y, int w, int h, XCVOffscreen* src, int sx, int sy, int merge) override;
    void ChangeResolutionQuarter(int x, int y, int w, int h, XCVOffscreen* src, int sx, int sy, int merge) override;
    void ChangeResolutionOctantal(int x, int y, int w, int h, XCVOffscreen* src, int sx, int sy, int merge) override;
    void ChangeResolutionHalfAll(XCVOffscreen* src) override;
    void ChangeResolutionQuarterAll(XCVOffscreen* src) override;
    void ChangeResolutionOctantalAll(XCVOffscreen* src) override;
    void ChangeResolutionDouble(int x, int y, int w, int h, XCVOffscreen* src, int sx, int sy, int merge) override;
    void ChangeResolutionFourfold(int x, int y, int w, int h, XCVOffscreen* src, int sx, int sy, int merge) override;
    void ChangeResolutionDoubleAll(XCVOffscreen* src) override;
    void ChangeResolutionFourfoldAll(XCVOffscreen* src) override;
    void CalcPixelValue(const _XCRESOLUTIONTABLE* columns, const _XCRESOLUTIONTABLE* rows, int x, int y, double scale,
                        std::uint32_t& out) override;
    using XCVOffscreenInterface::RectFill; ///< the form with a rectangle and a colour

    // ---- Making images
    /// A new empty image of depth 1, 2, 8, 16, 24 or 32; null for any other. The caller owns it.
    static XCVOffscreen* CreateOffscreen(int depth);
    static void DeleteOffscreen(XCVOffscreen* image); ///< null is allowed
    /// @{ New owners with images of that depth, which Create gives their size; null for a depth that does not exist.
    /// Delete takes null.
    static XCVOffscreenCache* CreateOffscreenCache(int depth);
    static void DeleteOffscreenCache(XCVOffscreenCache* cache);
    static XCVOffscreenBackup* CreateOffscreenBackup(int depth);
    static void DeleteOffscreenBackup(XCVOffscreenBackup* backup);
    /// @}
    /// A new empty image of the same depth and size on the same store; the caller owns it.
    XCVOffscreen* CreateSameSizeOffscr() const;
    XCVOffscreen* CreateSameSizeOffscr(double resolution) const; ///< The same at another resolution.
    /// A new image with the same size, clear colours and pixels; the caller owns it.
    XCVOffscreen* CreateAndCopyAll();
    /// A new image, turned so that pixel (x, y) is at (y, width - 1 - x), on the process's store; the caller owns it.
    XCVOffscreen* CreateAndRotate90();
    /// A new image of this one's turned block grid, on the process's store: turned clockwise by 0, 90, 180 or 270
    /// degrees (else 0x20010008), then mirrored. shift: where this image's pixels begin in it. The caller owns it.
    XCVOffscreen* CreateAndRotateOffscreen(int angle, int flipX, int flipY, XCPoint& shift);

    // ---- Copies and resolution. merge: the new pixels go behind those that are there. Each locks both images.
    /// Makes this image's pixels those of src, an image of the same size and depth, and releases blocks that src lacks.
    /// 1 when a block was copied.
    int CopyAll(XCVOffscreen* src);
    /// A copy between any depths, by the accessors of this image's depth. Where src has no block, pixels are cleared
    /// unless merge is set; flag and extra change nothing. 1 when the rectangle meets both images.
    int CommonCopy(int x, int y, int w, int h, XCVOffscreen* src, int sx, int sy, int flag, int merge, int extra);
    /// Fits a rectangle of src into one of this image, each cut to its image first.
    void ChangeResolution(int x, int y, int w, int h, XCVOffscreen* src, int sx, int sy, int sw, int sh,
                          CHANGE_RESOLUTION_MODE mode, int merge);
    /// The same, but nearly exact factors of 2, 4, 1/2, 1/4 and 1/8 are taken for exact ones.
    void ChangeResolution2(int x, int y, int w, int h, XCVOffscreen* src, int sx, int sy, int sw, int sh,
                           CHANGE_RESOLUTION_MODE mode, int merge);
    /// The table entry of a pixel that covers the source coordinates from to to, from <= to.
    static void SetResolutionTable(_XCRESOLUTIONTABLE* table, const double& from, const double& to);
    /// Puts colour behind current and stores the result, if it differs, at the cursor.
    void AlphaMergePixel(std::uint32_t colour, std::uint32_t current);
    void AlphaMergePixel(std::uint32_t colour, std::uint32_t current, int x, int y); ///< the same at (x, y)
    /// The same for 32-bit pixels in memory; the result goes to dst.
    static void AlphaMergePixelCore(const std::uint8_t* src, std::uint8_t* dst);
    /// As AlphaMergePixel, but only where current has some alpha.
    void AlphaMergeColorPixel(std::uint32_t colour, std::uint32_t current);

    // ---- Moving pixels
    /// Takes the pixels of a rectangle out of src, an image of the same size and depth, into the same place here; src
    /// is cleared there. From 16 bits on, pixels without coverage stay on both sides. Nothing happens for other images.
    void Move(int x, int y, int w, int h, XCVOffscreen* src);
    void MoveAndRevision(int x, int y, int w, int h, XCVOffscreen* src); ///< as Move

    // ---- Streams. An image is loaded, or it is packed: it has no blocks then, keeps their stream form in memory, and
    // expands it at the next lock. What a damaged stream makes the readers throw: 0x2001000B when it contradicts
    // itself, 0x20010008 when it ends early, 8 when a block does not expand, 0x2001000C for versions of the future.
    /// Packed pixels go out as they are, others block by block, with compress as zlib frames.
    static void Write(XCArchive& archive, XCVOffscreen* image, int compress);
    /// A new loaded image on the process's store; the caller owns it. abort (may be null) is asked before each block,
    /// its yes throws 0x20010004.
    static XCVOffscreen* Read(XCArchive& archive, IXCAbort* abort);
    /// A new packed image on the process's store; the caller owns it.
    static XCVOffscreen* ReadHeader(XCArchive& archive);
    /// What the next stream says of its image, which is skipped. Pointers may be null. Always 1.
    static int ReadHeader(int* width, int* height, int* depth, double* resolution, XCArchive& archive);
    /// Reads a stream into this image, which becomes packed. 0 when size, depth or resolution differ; nothing changes
    /// then, nor after an error.
    int ReadHeaderSelf(XCArchive& archive);
    /// Packs an image in memory; nothing happens unless it is loaded and not locked.
    static void Write(XCVOffscreen* image, int compress);
    /// With load expands the packed pixels, else drops them; dropPacked frees the packed form after expanding. After an
    /// error the image is packed as before.
    void LoadImageA(int load, int dropPacked);
    /// Expands the blocks that rects list, by their top-left pixels, into target, an image of the same size and depth.
    void LoadImageBlock(const XCTArray<tagRECT, 0>& rects, XCVOffscreen* target) const;
    void ClearDelayData() { m_packed = ovw::vimage::PackedPixels(); } ///< Frees the packed form.
    int CanFastWrite() const; ///< Whether packed pixels are there that are this image's.

    /// @{ Freeing and protecting blocks Each answers 1 when any block was freed; with countEdit 1 a freed block counts
    /// as edited.
    int DestroyAllBlock();
    int DestroyAllBlock(int countEdit);
    int DestroyBlock(int index, int countEdit);
    int DestroyBlockByIndex(int column, int row, int countEdit);
    int DestroyBlockByXY(int x, int y, int countEdit);
    /// @}
    void UnloadAllBlock(); ///< Sends every resident block to the swap file.
    /// Keeps exactly the blocks that rect meets from eviction; in protect mode the others then lose their pixels when
    /// memory is short.
    void SetProtectArea(const XCRect& rect);
    void ClearProtectArea(); ///< nothing is protected any more
    /// Adds the block of rect's top-left pixel to what is protected; nothing for an empty rect.
    void SetProtectBlockArea(const XCRect& rect);

    // ---- Locks
    /// With edit, missing blocks are created and blocks marked edited until the last Unlock. (-1, -1): no current
    /// pixel.
    void Lock(int x, int y, int edit);
    /// Undoes one Lock; the last one releases the current block.
    void Unlock();
    /// Not yet undone.
    int GetLockCount() const { return m_lockCount; }
    /// 1: work through the cursor creates and marks blocks.
    int GetEditMode() const { return m_editMode; }
    /// As GetEditMode.
    void SetEditMode(int edit) { m_editMode = edit; }
    /// @{ 1 once the image was edited or resized; for the caller to reset.
    int GetEditLockChecker() const { return m_editLockChecker; }
    void SetEditLockChecker(int value) { m_editLockChecker = value; }
    void ResetEditLockChecker() { m_editLockChecker = 0; }
    /// @}

    // ---- Cursor
    void SetCurrentBlock(); ///< Looks up the block under the cursor again.
    /// 0 without a current block; base is null while the block is missing.
    int GetCurrentBlock(XCRect& rect, std::uint8_t*& base) const;
    /// @{ Where the cursor stands: block, pixel and block base address, coordinates.
    int GetCurrentBlockIndex() const { return m_cursor.index; }
    std::uint8_t* GetCurrentAddress() const { return m_cursor.address; }
    std::uint8_t* GetBaseAddress() const { return m_cursor.base; }
    void GetCursorPos(int& x, int& y) const { x = m_cursor.x, y = m_cursor.y; }
    int GetCursorPosX() const { return m_cursor.x; }
    int GetCursorPosY() const { return m_cursor.y; }
    /// @}
    /// @{ See the class; Offset moves by a distance, Next and Prev by one row.
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
    /// @}
    /// The address that (x, y) of the current block would have if a pixel took 4 bytes; the cursor stays.
    std::uint8_t* SetCurrentCursorAddressFake32(int x, int y) const;
    /// Enters the block of (x, y), which must lie in the image, and answers as SetCurrentCursorAddressFake32.
    std::uint8_t* MoveCursorFake32(int x, int y);
    /// The four 8-bit pixels at the cursor as one word; 0 at a null address.
    std::uint32_t Get8BitColorOnlyQuad() const;
    void Set8BitColorOnlyQuad(std::uint32_t quad); ///< the same, written

    // ---- Emptiness
    /// Whether the image's part of the current block has no visible pixel; never on 24 bits.
    int IsCurrentBlockEmpty() const;
    int IsCurrentBlockEmpty(const XCRect& rect) const; ///< the same of a part
    /// 1 for missing blocks; else, by coverage, only on 16 and 32 bits: whether no pixel is visible.
    int CheckClearBlock(int index);
    int CheckClearBlock(XCRect rect); ///< the same of a part of the image

    // ---- Fills
    /// Paints rect (one pixel when its width and height are 0) through a configured mixer. The caller locks the image.
    void RectFill(const XCRect& rect, XCFastPixelMixer* mixer, const tagRECT* clip);
    /// Erases r; blocks that r covers are released.
    void ClrRect(const tagRECT& r);

    // ---- Ordered dither; the forms without a position use the cursor's. 1 = on.
    static const std::uint8_t* GetDitherTable256(); ///< 16 x 16 Bayer matrix, row by row.
    /// @{ Whether a pixel of this level is on: 0 to 255 by the Bayer matrix, 0 to 16 by 4 x 4 patterns, 0 to 255 by
    /// both.
    static int GetDitherValue255(int level, int x, int y);
    static int GetDitherValue16(int level, int x, int y);
    int GetDitherValue255(int level) const { return GetDitherValue255(level, m_cursor.x, m_cursor.y); }
    int GetDitherValue16(int level) const { return GetDitherValue16(level, m_cursor.x, m_cursor.y); }
    int GetDitherValue(int level) const;
    /// @}

protected:
    /// Memory of a block, locked in the store; null for a missing block outside edit mode and outside the grid.
    std::uint8_t* LockBlock(int index);
    void UnlockBlock(int index); ///< Gives it back.
    /// Protect mode is that of cache images: blocks outside the protect area may be dropped instead of swapped.
    void SetProtectMode(int protect) { m_protectMode = protect; }
    int IsProtected(int index) const;                  ///< whether the block meets the protect area
    void releaseCurrentBlock();                        ///< unlocks it in the store
    std::uint8_t* enterBlock(int index, int x, int y); ///< the lookup behind the cursor movements

    /// Whether (x, y) lies in the current block and that block is locked as the edit mode asks.
    bool staysIn(int x, int y) const { return m_cursorArea.holds(x, y) && (m_lockedForEdit || !m_editMode); }
    /// v + d, or v when the sum leaves 32 bits the image ends long before.
    static int moved(int v, int d);
    /// The address of a pixel of the current block.
    std::uint8_t* placeCursor(int x, int y) {
        m_bitMask = static_cast<std::uint8_t>(m_firstBitMask >> (((x & cnBlockMask) * m_depth) & 7));
        return m_cursor.address = m_cursor.base ? addressIn(m_cursor.base, x, y) : nullptr;
    }

    /// @{ The state of locks, protection and cursor.
    int m_lockCount = 0;
    int m_editMode = 0;
    int m_protectMode = 0;
    XCRect m_protectRect;
    XCVOffscreenCursor m_cursor;
    ovw::vimage::CursorArea m_cursorArea;
    std::uint8_t m_bitMask = 0;      // of the cursor's pixel inside its byte, 1 and 2 bits
    std::uint8_t m_firstBitMask = 0; // of a byte's first pixel; 0 from 8 bits on
    int m_editLockChecker = 0;
    /// @}

private:
    friend class XCVOffscreenCache;
    friend class ovw::vimage::HeldBlocks;
    struct Growth;

    void adopt(ovw::vimage::PackedPixels packed);
    bool hasUsablePacked() const;
    void expand(const ovw::vimage::PackedPixels& packed);
    std::uint8_t* lockSwapBlock(XCSwapBlock* swapBlock, int edit, bool isNew);
    void createSwapBlock(int index);
    int freeCell(int index, int countEdit);
    void protect(XCSwapBlock& swapBlock, bool isProtected) const;
    std::unique_ptr<XCVOffscreen> createTurned(int width, int height) const;
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
