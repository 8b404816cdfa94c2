#ifndef OVW_MIXING_SHORTCOPY_H
#define OVW_MIXING_SHORTCOPY_H

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace ovw::mixing {

/// Two blocks of N bytes that may overlap each other cover N to 2 * N bytes.
template <std::size_t N>
inline void copyEnds(std::uint8_t* to, const std::uint8_t* from, std::size_t size) {
    std::memcpy(to, from, N);
    std::memcpy(to + size - N, from + size - N, N);
}

/// std::memcpy of the few bytes that a stamp's row has.
inline void copyRow(std::uint8_t* to, const std::uint8_t* from, std::size_t size) {
    constexpr std::size_t cnLong = 512;
    if (size >= cnLong) {
        std::memcpy(to, from, size);
    } else if (size >= 16) {
        for (std::size_t i = 16; i < size; i += 16)
            std::memcpy(to + i - 16, from + i - 16, 16);
        std::memcpy(to + size - 16, from + size - 16, 16);
    } else if (size >= 8) {
        copyEnds<8>(to, from, size);
    } else if (size >= 4) {
        copyEnds<4>(to, from, size);
    } else {
        for (std::size_t i = 0; i < size; ++i)
            to[i] = from[i];
    }
}

} // namespace ovw::mixing

#endif // OVW_MIXING_SHORTCOPY_H
