#ifndef OVW_VIMAGE_STORELOCK_H
#define OVW_VIMAGE_STORELOCK_H

#include "ovwcmn/xcthread.h"

namespace ovw::vimage {

/// The critical section that every operation of every block store takes first, before the store's own.
XCCriticalSection& librarySection();

/// Keeps every store from evicting blocks for a scope, for those who look at a swap block from outside the store.
/// Takes: the library-wide section. Operations of a store may be called inside.
class StoreLock {
public:
    StoreLock() { m_leave.Enter(&librarySection()); }

private:
    XCCriticalSectionAutoLeave m_leave;
};

} // namespace ovw::vimage

#endif // OVW_VIMAGE_STORELOCK_H
