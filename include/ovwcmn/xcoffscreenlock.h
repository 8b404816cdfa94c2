#ifndef OVWCMN_XCOFFSCREENLOCK_H
#define OVWCMN_XCOFFSCREENLOCK_H

/// @file
/// Locks of classic images by name.

#include "ovwcmn/ovwdefs.h"

class XCOffscreen;

/// Holds one lock of a classic image, which it does not own. The destructor does not unlock: every Lock wants its
/// Unlock. Throws 8 when the image cannot be locked, holding nothing then.
class OVWCMN_API XCStLockOff {
public:
    XCStLockOff() = default;
    explicit XCStLockOff(XCOffscreen* image); ///< locks it; null locks nothing
    XCStLockOff(const XCStLockOff&) = delete;
    XCStLockOff& operator=(const XCStLockOff&) = delete;

    /// A lock held before ends first; null locks nothing.
    void Lock(XCOffscreen* image);
    void Unlock(); ///< nothing when none is held

private:
    XCOffscreen* m_image = nullptr;
};

#endif // OVWCMN_XCOFFSCREENLOCK_H
