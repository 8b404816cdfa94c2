#ifndef OVW_FOUNDATION_NOMEMORY_H
#define OVW_FOUNDATION_NOMEMORY_H

#include "ovwcmn/xcexception.h"

#include <new>

namespace ovw::foundation {

/// Runs an operation whose bookkeeping may lack memory, and throws error 8 then, as for any lack of memory.
template <class Operation>
auto orNoMemory(Operation operation) {
    try {
        return operation();
    } catch (const std::bad_alloc&) {
        xcThrowError(cnCodeNoMemory);
    }
}

} // namespace ovw::foundation

#endif // OVW_FOUNDATION_NOMEMORY_H
