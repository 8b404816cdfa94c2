#ifndef OVW_VIMAGE_NOMEMORY_H
#define OVW_VIMAGE_NOMEMORY_H

#include "ovwcmn/xcexception.h"

#include <new>

namespace ovw::vimage {

/// Runs an operation whose bookkeeping may lack memory, and throws error 8 then, as for any lack of memory.
template <class Operation>
auto orNoMemory(Operation operation) {
    try {
        return operation();
    } catch (const std::bad_alloc&) {
        xcThrowError(foundation::cnCodeNoMemory);
    }
}

} // namespace ovw::vimage

#endif // OVW_VIMAGE_NOMEMORY_H
