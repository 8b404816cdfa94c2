#ifndef OVW_PERSISTENCE_BYTEORDER_H
#define OVW_PERSISTENCE_BYTEORDER_H

#include <cstdint>

/// @file
/// Numbers of 32 bits in memory, in either byte order.

namespace ovw::persistence {

inline std::uint32_t loadNumber(const void* from, bool bigEndian) {
    const auto* const bytes = static_cast<const std::uint8_t*>(from);
    std::uint32_t value = 0;
    for (int i = 0; i < 4; ++i)
        value |= std::uint32_t{bytes[i]} << (bigEndian ? 24 - 8 * i : 8 * i);
    return value;
}

inline void storeNumber(void* to, std::uint32_t value, bool bigEndian) {
    auto* const bytes = static_cast<std::uint8_t*>(to);
    for (int i = 0; i < 4; ++i)
        bytes[i] = static_cast<std::uint8_t>(value >> (bigEndian ? 24 - 8 * i : 8 * i));
}

} // namespace ovw::persistence

#endif // OVW_PERSISTENCE_BYTEORDER_H
