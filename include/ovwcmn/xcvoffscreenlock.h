#ifndef OVWCMN_XCVOFFSCREENLOCK_H
#define OVWCMN_XCVOFFSCREENLOCK_H

/// @file
/// Scoped guards of tiled images. None owns its image; each must end before the image does, on the image's thread.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/xcgeometry.h"

class XCVOffscreen;

/// Locks an image for a scope. On an image that was locked already, the outer lock gets its cursor and edit mode back
/// at the end of the scope. Throws what XCVOffscreen::Lock throws, holding nothing then.
class OVWCMN_API XCVOffscreenAutoLock {
public:
    XCVOffscreenAutoLock() = default;
    /// @{ As Lock.
    XCVOffscreenAutoLock(XCVOffscreen* image, int edit);
    XCVOffscreenAutoLock(XCVOffscreen* image, int x, int y, int edit);
    /// @}
    XCVOffscreenAutoLock(const XCVOffscreenAutoLock&) = delete;
    XCVOffscreenAutoLock& operator=(const XCVOffscreenAutoLock&) = delete;
    virtual ~XCVOffscreenAutoLock();

    /// @{ A lock held before ends first. Without a position there is no current pixel.
    void Lock(XCVOffscreen* image, int edit);
    void Lock(XCVOffscreen* image, int x, int y, int edit);
    /// @}
    /// Ends the lock without giving cursor and edit mode back.
    void Unlock();

private:
    void release();

    XCVOffscreen* m_image = nullptr;
    bool m_restore = false;
    int m_savedX = 0;
    int m_savedY = 0;
    int m_savedEditMode = 0;
};

/// Changes an image's two mono thresholds for a scope.
class OVWCMN_API XCVOffscreenParamLock {
public:
    XCVOffscreenParamLock() = default;
    /// @{ Sets the thresholds, or gives the former ones back.
    XCVOffscreenParamLock(XCVOffscreen* image, int transThreshold, int bwThreshold);
    XCVOffscreenParamLock(const XCVOffscreenParamLock&) = delete;
    XCVOffscreenParamLock& operator=(const XCVOffscreenParamLock&) = delete;
    virtual ~XCVOffscreenParamLock();

    void Lock(XCVOffscreen* image, int transThreshold, int bwThreshold);
    void Unlock();
    /// @}

private:
    XCVOffscreen* m_image = nullptr;
    int m_savedTrans = 127;
    int m_savedBW = 128;
};

/// Switches edit mode off for a scope: work through the cursor then neither marks nor creates blocks.
class OVWCMN_API XCVOffscreenEditLock {
public:
    XCVOffscreenEditLock() = default;
    /// @{ Switches edit mode off, or gives the former one back.
    explicit XCVOffscreenEditLock(XCVOffscreen* image);
    XCVOffscreenEditLock(const XCVOffscreenEditLock&) = delete;
    XCVOffscreenEditLock& operator=(const XCVOffscreenEditLock&) = delete;
    virtual ~XCVOffscreenEditLock();

    void Lock(XCVOffscreen* image);
    void Unlock();
    /// @}

private:
    XCVOffscreen* m_image = nullptr;
    int m_savedEditMode = 0;
};

/// Gives the image to read a rectangle from: of a packed image, which stays packed, a temporary one that holds the
/// blocks of the rectangle. It lives as long as the guard, and not longer than until its next Lock.
class OVWCMN_API XCVOffscreenLoadLock {
public:
    XCVOffscreenLoadLock() = default;
    XCVOffscreenLoadLock(const XCVOffscreenLoadLock&) = delete;
    XCVOffscreenLoadLock& operator=(const XCVOffscreenLoadLock&) = delete;
    virtual ~XCVOffscreenLoadLock();

    /// Throws what LoadImageBlock of the image throws.
    XCVOffscreen* Lock(XCVOffscreen* image, XCRect rect);
    void Unlock(); ///< Deletes the temporary image.

private:
    XCVOffscreen* m_part = nullptr;
};

#endif // OVWCMN_XCVOFFSCREENLOCK_H
