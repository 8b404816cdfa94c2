#ifndef OVW_FOUNDATION_NOMEMORY_H
#define OVW_FOUNDATION_NOMEMORY_H

#include "ovwcmn/xcexception.h"

#include <cstddef>
#include <cstdint>
#include <new>
#include <vector>

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

/// So many elements, zero; count is not negative. Throws error 8.
template <class T>
std::vector<T> vectorOf(std::int64_t count) {
    return orNoMemory([count] { return std::vector<T>(static_cast<std::size_t>(count)); });
}

} // namespace ovw::foundation

#endif // OVW_FOUNDATION_NOMEMORY_H
