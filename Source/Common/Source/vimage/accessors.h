#ifndef OVW_VIMAGE_ACCESSORS_H
#define OVW_VIMAGE_ACCESSORS_H

/// @file
/// The pixel of any format as a value of any depth, chosen by that depth's number: what Get8BitColor and its kin read
/// and write, without a cursor.

#include "vimage/pixelformats.h"

#include <cstdint>

namespace ovw::vimage {

template <int Bits, class Format>
constexpr std::uint32_t readAs(typename Format::Value v, const PixelRules& rules) {
    if constexpr (Bits == 1)
        return Format::read1(v, rules);
    else if constexpr (Bits == 2)
        return Format::read2(v, rules);
    else if constexpr (Bits == 8)
        return Format::read8(v, rules);
    else if constexpr (Bits == 16)
        return Format::read16(v, rules);
    else if constexpr (Bits == 24)
        return Format::read24(v, rules);
    else
        return Format::read32(v, rules);
}

/// What is read where no block is.
template <int Bits, class Format>
constexpr std::uint32_t readMissingAs() {
    return Bits == 2 ? Format::cnMissing2 : Bits == 16 ? Format::cnMissing16 : Bits == 24 ? cnWhite : 0;
}

template <int Bits, class Format>
constexpr typename Format::Value writeAs(std::uint32_t value, const PixelRules& rules) {
    if constexpr (Bits == 1)
        return Format::write1(byteOf(static_cast<int>(value)), rules);
    else if constexpr (Bits == 2)
        return Format::write2(byteOf(static_cast<int>(value)), rules);
    else if constexpr (Bits == 8)
        return Format::write8(byteOf(static_cast<int>(value)), rules);
    else if constexpr (Bits == 16)
        return Format::write16(value, rules);
    else if constexpr (Bits == 24)
        return Format::write24(value, rules);
    else
        return Format::write32(value, rules);
}

} // namespace ovw::vimage

#endif // OVW_VIMAGE_ACCESSORS_H
