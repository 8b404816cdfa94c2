#ifndef OVWCMN_XCVOFFSCREENCACHE_H
#define OVWCMN_XCVOFFSCREENCACHE_H

/// @file
/// Owners of tiled images that keep a mark for every block: display caches and backups.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/wintypes.h"
#include "ovwcmn/xcarray.h"
#include "ovwcmn/xcgeometry.h"

#include <cstdint>
#include <memory>

class XCVirtualMemory;
class XCVOffscreen;

/// A display cache: an image whose blocks can be painted again, and a lower image that may hold a copy of some of them.
/// Owns both; XCVOffscreen::CreateOffscreenCache makes one. Blocks have flags: bits 1, 2 and 4 as named below, 16, 32
/// and 64 for the caller. When a block stops being cached, its pixels are freed. Indexes and points outside the image
/// are ignored when setting and read as 0; the lists take the block of each rectangle's top-left pixel; a null
/// rectangle stands for every block. The marks do not follow later changes of the image's size: Create anew. One thread
/// at a time.
class OVWCMN_API XCVOffscreenCache {
public:
    static constexpr std::uint32_t cnCached = 1;      ///< painted; freed when cleared
    static constexpr std::uint32_t cnDrawn = 2;       ///< kept for the caller
    static constexpr std::uint32_t cnDummyCached = 4; ///< kept for the caller
    static constexpr std::uint32_t cnAllFlags = 0x77; ///< the three and those of the caller

    XCVOffscreenCache();
    XCVOffscreenCache(const XCVOffscreenCache&) = delete;
    XCVOffscreenCache& operator=(const XCVOffscreenCache&) = delete;
    virtual ~XCVOffscreenCache();

    /// Empty images of one size. When it throws, the images are gone, and the cache can only be deleted.
    virtual void Create(XCVirtualMemory* vm, int width, int height, double resolution);
    virtual void Destroy(); ///< leaves the images empty

    XCVOffscreen* GetThisOffscreen() const { return m_image.get(); }  ///< may be null
    XCVOffscreen* GetLowerOffscreen() const { return m_lower.get(); } ///< May be null.
    /// Owns the image from now on; the one before, which is returned, becomes the caller's.
    XCVOffscreen* SetThisOffscreen(XCVOffscreen* image);

    // ---- Flags
    int IsFlag(int index, std::uint32_t bits) const; ///< Whether all the bits are set.
    /// @{ Whether all the bits are set; sets or clears them.
    int IsFlag(int x, int y, std::uint32_t bits) const;
    void SetFlag(int index, std::uint32_t bits, int on);
    void SetFlag(const XCRect* rect, std::uint32_t bits, int on);
    void SetFlag(const XCTArray<tagRECT, 0>& rects, std::uint32_t bits, int on);
    /// @}
    void SetFlagSimple(int index, std::uint32_t value); ///< The whole word; frees nothing.

    /// @{ SetFlag and IsFlag for one of the named bits, or for all.
    int IsCached(int index) const { return IsFlag(index, cnCached); }
    int IsCached(int x, int y) const { return IsFlag(x, y, cnCached); }
    void SetCached(int index, int on) { SetFlag(index, cnCached, on); }
    void SetCached(const XCRect* rect, int on) { SetFlag(rect, cnCached, on); }
    void SetCached(const XCTArray<tagRECT, 0>& rects, int on) { SetFlag(rects, cnCached, on); }
    int IsDrawn(int index) const { return IsFlag(index, cnDrawn); }
    int IsDrawn(int x, int y) const { return IsFlag(x, y, cnDrawn); }
    void SetDrawn(const XCRect* rect, int on) { SetFlag(rect, cnDrawn, on); }
    void SetDrawn(const XCTArray<tagRECT, 0>& rects, int on) { SetFlag(rects, cnDrawn, on); }
    int IsDummyCached(int index) const { return IsFlag(index, cnDummyCached); }
    int IsDummyCached(int x, int y) const { return IsFlag(x, y, cnDummyCached); }
    void SetDummyCached(int index, int on) { SetFlag(index, cnDummyCached, on); }
    void SetDummyCached(const XCRect* rect, int on) { SetFlag(rect, cnDummyCached, on); }
    void SetDummyCached(const XCTArray<tagRECT, 0>& rects, int on) { SetFlag(rects, cnDummyCached, on); }
    void ClearAllFlag(int index) { SetFlag(index, cnAllFlags, 0); }
    void ClearAllFlag(const XCRect* rect) { SetFlag(rect, cnAllFlags, 0); }
    void ClearAllFlag(const XCTArray<tagRECT, 0>& rects) { SetFlag(rects, cnAllFlags, 0); }
    /// @}

    // ---- The lower image
    /// Copies a block down (store, where rect must be the block's rectangle) or back up, where a copy exists; 1 when
    /// something was copied.
    int UpdateLowerCache(XCRect rect, int index, int store);
    void ClearLowerCache(int index);   ///< The mark only.
    void AllClearLowerCache();         ///< With the pixels.
    int IsLowerCache(int index) const; ///< 1 when the lower image has a copy

    /// The checkerboard of the cache image, in squares of 8 pixels.
    void RenderBackground(const XCRect& rect, std::uint32_t colour1, std::uint32_t colour2, int allBlocks);
    /// The same at another resolution.
    void RenderBackgroundFill(const XCRect& rect, std::uint32_t colour1, std::uint32_t colour2, int allBlocks);

private:
    friend class XCVOffscreen; // its factories give the images

    XCTArray<std::uint32_t, 0> m_flags;
    std::unique_ptr<XCVOffscreen> m_image;
    XCTArray<std::int32_t, 0> m_lowerMarks;
    std::unique_ptr<XCVOffscreen> m_lower;
};

/// The caller's; 0 is a block without a backup.
enum BACKUP_STATE : std::int32_t { BACKUP_NONE = 0 };

/// A backup image with a state for every block, for undo. Owns the image; XCVOffscreen::CreateOffscreenBackup makes
/// one. A block whose state becomes 0 is freed. Points, lists and sizes as for the cache. One thread at a time.
class OVWCMN_API XCVOffscreenBackup {
public:
    XCVOffscreenBackup();
    XCVOffscreenBackup(const XCVOffscreenBackup&) = delete;
    XCVOffscreenBackup& operator=(const XCVOffscreenBackup&) = delete;
    virtual ~XCVOffscreenBackup();

    /// An empty image; every state 0.
    virtual void Create(XCVirtualMemory* vm, int width, int height, double resolution);
    virtual void Destroy(); ///< leaves the image empty

    XCVOffscreen* GetOffscreen() const { return m_image.get(); } ///< may be null
    BACKUP_STATE GetState(int x, int y) const;                   ///< 0 outside the image
    /// @{ Of every block that the rectangles begin in.
    void SetState(const XCTArray<tagRECT, 0>& rects, BACKUP_STATE state);
    void SetState(const XCRect* rect, BACKUP_STATE state);
    /// @}

private:
    friend class XCVOffscreen;

    void setState(int index, BACKUP_STATE state);

    std::unique_ptr<XCVOffscreen> m_image;
    XCTArray<BACKUP_STATE, 0> m_states;
};

#endif // OVWCMN_XCVOFFSCREENCACHE_H
