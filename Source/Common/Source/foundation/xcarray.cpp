#include "ovwcmn/xcarray.h"

#include "ovwcmn/xcexception.h"

#include <limits>

namespace ovw::foundation {

std::uint32_t elementBytes(std::int64_t count, std::size_t elementSize) {
    // The count fits 32 bits and the size of an element is far below 2^31, so the product fits 64 bits.
    const auto bytes = static_cast<std::uint64_t>(count) * elementSize;
    if (count > std::numeric_limits<int>::max() || bytes > std::numeric_limits<std::uint32_t>::max())
        xcThrowError(cnCodeNoMemory);
    return static_cast<std::uint32_t>(bytes);
}

} // namespace ovw::foundation
