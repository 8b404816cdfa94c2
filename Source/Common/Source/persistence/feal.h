#ifndef OVW_PERSISTENCE_FEAL_H
#define OVW_PERSISTENCE_FEAL_H

#include <array>
#include <cstddef>
#include <cstdint>

/// @file
/// The block cipher FEAL-NX (S. Miyaguchi, "The FEAL cipher family", CRYPTO '90), for any even number of rounds.
/// Subkeys are pairs of bytes in order, without parity. With a right key half of zeros it is FEAL-N with a 64-bit key.

namespace ovw::persistence {

inline constexpr std::size_t cnFealBlock = 8;
inline constexpr std::size_t cnFealKey = 16;

using FealBlock = std::array<std::uint8_t, cnFealBlock>;

/// The subkeys in the order in which the block routine uses them.
template <std::size_t Rounds>
struct FealSchedule {
    static_assert(Rounds % 2 == 0);
    FealBlock before = {}; ///< whitens the input
    std::array<std::array<std::uint8_t, 2>, Rounds> rounds = {};
    FealBlock after = {}; ///< whitens the output
};

template <std::size_t Rounds>
FealSchedule<Rounds> fealEncipheringSchedule(const std::array<std::uint8_t, cnFealKey>& key);

/// The same in reverse: one block routine serves both directions.
template <std::size_t Rounds>
FealSchedule<Rounds> fealDecipheringSchedule(const FealSchedule<Rounds>& enciphering);

/// Each block of the bytes by itself, in place; `size` is a multiple of cnFealBlock.
template <std::size_t Rounds>
void fealBlocks(const FealSchedule<Rounds>& schedule, std::uint8_t* bytes, std::size_t size);

} // namespace ovw::persistence

#endif // OVW_PERSISTENCE_FEAL_H
