#ifndef OVW_BRUSH_METHODLOCKS_H
#define OVW_BRUSH_METHODLOCKS_H

#include "ovwcmn/xcvoffscreenlock.h"

namespace ovw::brush {

/// The locks of a drawing method while it is begun. They end in the opposite order of their members, so that an image
/// that serves twice, for instance as target and as clone source, gets its cursor and edit mode back.
struct MethodLocks {
    XCVOffscreenAutoLock target;
    XCVOffscreenAutoLock cacheReference;
    XCVOffscreenAutoLock cache;
    XCVOffscreenAutoLock colorCache;
    XCVOffscreenAutoLock mask;
    XCVOffscreenAutoLock cloneSource;
};

} // namespace ovw::brush

#endif // OVW_BRUSH_METHODLOCKS_H
