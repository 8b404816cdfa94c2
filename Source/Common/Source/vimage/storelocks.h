#ifndef OVW_VIMAGE_STORELOCKS_H
#define OVW_VIMAGE_STORELOCKS_H

#include "ovwcmn/xcthread.h"

namespace ovw::vimage {

/// The library-wide critical section, which every operation of every store takes first. Never destroyed.
XCCriticalSection& librarySection();

/// Holds both locks of a store, taken in the one order: library-wide, then the store's own.
class StoreLocks {
public:
    explicit StoreLocks(XCCriticalSection* store) : m_library(&librarySection()), m_store(store) {}

private:
    XCCriticalSectionAutoLeave m_library;
    XCCriticalSectionAutoLeave m_store;
};

} // namespace ovw::vimage

#endif // OVW_VIMAGE_STORELOCKS_H
