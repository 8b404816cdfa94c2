#ifndef OVW_VIMAGE_READINGLOCK_H
#define OVW_VIMAGE_READINGLOCK_H

#include "ovwcmn/xcvoffscreenlock.h"

namespace ovw::vimage {

/// Locks an image for reading. No block is created or marked edited, also where the caller holds it for editing.
class ReadingLock {
public:
    explicit ReadingLock(XCVOffscreen* image) : m_lock(image, 0), m_noNewBlocks(image) {}

private:
    XCVOffscreenAutoLock m_lock;
    XCVOffscreenEditLock m_noNewBlocks;
};

} // namespace ovw::vimage

#endif // OVW_VIMAGE_READINGLOCK_H
