#ifndef OVW_MIXING_FIXEDPOINT_H
#define OVW_MIXING_FIXEDPOINT_H

/// @file
/// The fixed-point arithmetic of all mixing code. Nowhere else stands a shift by 15 or a division by 255.
///
/// Everything has internal linkage: the kernels are compiled once an instruction set, and a function shared by the
/// linker could hand the code of one set to a caller on a machine that lacks it.

#include <cstdint>

namespace ovw::mixing {
namespace {

constexpr std::int32_t least(std::int32_t a, std::int32_t b) { return a < b ? a : b; }
constexpr std::int32_t most(std::int32_t a, std::int32_t b) { return a > b ? a : b; }

/// trunc(v + 0.5) for v that is not negative.
constexpr std::int32_t rounded(float v) { return static_cast<std::int32_t>(v + 0.5f); }

/// Opacity on the unsigned 1.15 scale: 32768 is full.
struct Scale15 {
    static constexpr int cnBits = 15;
    static constexpr std::int32_t cnOne = 1 << cnBits;
    static constexpr std::int32_t cnHalf = cnOne / 2;
    static constexpr std::int32_t cnByteOne = 255 * cnOne; // 1.0 times a full byte
    static constexpr std::int32_t cnStep = 51;             // of the darken and lighten steps: a fifth of a byte

    /// The alpha of a byte: 255 gives 1.0.
    static constexpr std::int32_t fromByte(std::int32_t value) { return (value * 257 + 1) >> 1; }
    /// The byte of an opacity above 0.
    static constexpr std::int32_t toByte(std::int32_t a) { return (a - 1) >> 7; }
    static constexpr float toFloat(std::int32_t a) { return static_cast<float>(a) * (1.0f / cnOne); }
    /// v * a, truncated.
    static constexpr std::int32_t scaled(std::int32_t v, std::int32_t a) { return (v * a) >> cnBits; }
    /// The same for factors whose product needs more than 31 bits.
    static constexpr std::int32_t scaledWide(std::int32_t v, std::int32_t a) {
        return static_cast<std::int32_t>(
            static_cast<std::uint64_t>(static_cast<std::uint32_t>(v)) * static_cast<std::uint32_t>(a) >> cnBits);
    }
    /// a times a byte as its alpha, truncated.
    static constexpr std::int32_t scaledByByte(std::int32_t a, std::int32_t value) {
        return static_cast<std::int32_t>(static_cast<std::uint32_t>(value * 257 + 1) * static_cast<std::uint32_t>(a) >>
                                         (cnBits + 1));
    }
    /// v * a, rounded.
    static constexpr std::int32_t scaledRound(std::int32_t v, std::int32_t a) { return (v * a + cnHalf) >> cnBits; }
    /// From p toward q by a, rounded.
    static constexpr std::int32_t lerp(std::int32_t p, std::int32_t q, std::int32_t a) {
        return p + (((q - p) * a + cnHalf) >> cnBits); // = (p * (cnOne - a) + q * a + cnHalf) >> cnBits
    }
    /// sum / (255 * cnOne), truncated, for sums below 255 * 255 * cnOne.
    static constexpr std::int32_t overByteOne(std::int32_t sum);
    static constexpr std::int32_t overByteOneRound(std::int32_t sum) { return overByteOne(sum + cnByteOne / 2); }
};

/// Opacity on the scale of bytes: 255 is full, divisions truncate.
struct Scale8 {
    static constexpr std::int32_t cnOne = 255;
    static constexpr std::int32_t cnStepShare = 5; // of the darken and lighten steps

    /// v / 255 for v from 0 to 65534.
    static constexpr std::int32_t over255(std::int32_t v) { return (v + 1 + (v >> 8)) >> 8; }
    /// v / 255 for v from 0 to 2^23.
    static constexpr std::int32_t over255Wide(std::int32_t v) {
        std::int32_t quotient = v >> 8;
        return quotient + over255(v - quotient * 255);
    }
    static constexpr std::int32_t scaled(std::int32_t v, std::int32_t b) { return over255(v * b); }
    static constexpr std::int32_t lerp(std::int32_t p, std::int32_t q, std::int32_t b) {
        return over255(p * (cnOne - b) + q * b);
    }
};

constexpr std::int32_t Scale15::overByteOne(std::int32_t sum) { return Scale8::over255(sum >> cnBits); }

static_assert(Scale15::fromByte(255) == Scale15::cnOne && Scale15::toByte(Scale15::cnOne) == 255);
static_assert(Scale15::lerp(200, 100, 16384) == 150 && Scale15::lerp(0, 255, Scale15::cnOne) == 255);
static_assert(Scale8::over255(65534) == 256 && Scale8::over255(65025) == 255 && Scale8::over255(65024) == 254);
static_assert(Scale8::over255Wide(254 * 32768) == 254 * 32768 / 255 && Scale8::over255Wide(8388608) == 32896);

} // namespace
} // namespace ovw::mixing

#endif // OVW_MIXING_FIXEDPOINT_H
