#include "persistence/feal.h"

#include <algorithm>
#include <cstring>

namespace ovw::persistence {

namespace {

/// The same byte of sixteen blocks.
using Lanes __attribute__((vector_size(16))) = std::uint8_t;
constexpr std::size_t cnLanes = sizeof(Lanes);

/// Half a block, or half of sixteen: all that follows is done with bytes alone, so one text serves both.
template <class Byte>
using HalfOf = std::array<Byte, 4>;
using Half = HalfOf<std::uint8_t>;
using Subkey = std::array<std::uint8_t, 2>;

template <class Byte>
Byte rotate2(Byte value) {
    return static_cast<Byte>((value << 2) | (value >> 6));
}

// S0 and S1 differ by the carry that is added.
template <class Byte>
Byte substitute0(Byte a, Byte b) {
    return rotate2(static_cast<Byte>(a + b));
}

template <class Byte>
Byte substitute1(Byte a, Byte b) {
    return rotate2(static_cast<Byte>(a + b + std::uint8_t{1}));
}

template <class Byte>
Byte exclusiveOr(Byte a, Byte b) {
    return static_cast<Byte>(a ^ b);
}

template <class Byte>
HalfOf<Byte> exclusiveOr(const HalfOf<Byte>& a, const HalfOf<Byte>& b) {
    return {exclusiveOr(a[0], b[0]), exclusiveOr(a[1], b[1]), exclusiveOr(a[2], b[2]), exclusiveOr(a[3], b[3])};
}

/// Four bytes of a key, the same for every block.
template <class Byte>
HalfOf<Byte> half(const std::uint8_t* bytes) {
    HalfOf<Byte> result = {};
    for (std::size_t i = 0; i < result.size(); ++i)
        result[i] = static_cast<Byte>(result[i] + bytes[i]);
    return result;
}

/// The round function f.
template <class Byte>
HalfOf<Byte> scramble(const HalfOf<Byte>& a, const Subkey& key) {
    const auto right = static_cast<Byte>(a[2] ^ a[3] ^ key[1]);
    const Byte f1 = substitute1(static_cast<Byte>(a[0] ^ a[1] ^ key[0]), right);
    const Byte f2 = substitute0(right, f1);
    return {substitute0(a[0], f1), f1, f2, substitute1(a[3], f2)};
}

/// The function fK of the key schedule.
Half scrambleKey(const Half& a, const Half& b) {
    const std::uint8_t right = exclusiveOr(a[2], a[3]);
    const std::uint8_t f1 = substitute1(exclusiveOr(a[0], a[1]), exclusiveOr(right, b[0]));
    const std::uint8_t f2 = substitute0(right, exclusiveOr(f1, b[1]));
    return {substitute0(a[0], exclusiveOr(f1, b[2])), f1, f2, substitute1(a[3], exclusiveOr(f2, b[3]))};
}

/// A block, or sixteen, in halves.
template <class Byte>
struct Halves {
    HalfOf<Byte> left, right;
};

template <std::size_t Rounds, class Byte>
void transform(const FealSchedule<Rounds>& schedule, Halves<Byte>& block) {
    HalfOf<Byte> left = exclusiveOr(block.left, half<Byte>(&schedule.before[0]));
    HalfOf<Byte> right = exclusiveOr(exclusiveOr(block.right, half<Byte>(&schedule.before[4])), left);
    for (const Subkey& key : schedule.rounds) {
        const HalfOf<Byte> next = exclusiveOr(left, scramble(right, key));
        left = right;
        right = next;
    }
    // The halves change places once more at the end.
    block.left = exclusiveOr(right, half<Byte>(&schedule.after[0]));
    block.right = exclusiveOr(exclusiveOr(left, right), half<Byte>(&schedule.after[4]));
}

/// Sixteen blocks one after another.
template <std::size_t Rounds>
void transformLanes(const FealSchedule<Rounds>& schedule, std::uint8_t* bytes) {
    Halves<Lanes> blocks;
    for (std::size_t lane = 0; lane < cnLanes; ++lane) {
        for (std::size_t i = 0; i < 4; ++i) {
            blocks.left[i][lane] = bytes[lane * cnFealBlock + i];
            blocks.right[i][lane] = bytes[lane * cnFealBlock + 4 + i];
        }
    }
    transform(schedule, blocks);
    for (std::size_t lane = 0; lane < cnLanes; ++lane) {
        for (std::size_t i = 0; i < 4; ++i) {
            bytes[lane * cnFealBlock + i] = blocks.left[i][lane];
            bytes[lane * cnFealBlock + 4 + i] = blocks.right[i][lane];
        }
    }
}

/// Pairs of subkeys, as many as asked for, one after another.
class KeySource {
public:
    explicit KeySource(const std::array<std::uint8_t, cnFealKey>& key)
        : m_a(half<std::uint8_t>(&key[0])),
          m_b(half<std::uint8_t>(&key[4])), m_right{
                                                exclusiveOr(half<std::uint8_t>(&key[8]), half<std::uint8_t>(&key[12])),
                                                half<std::uint8_t>(&key[8]), half<std::uint8_t>(&key[12])} {}

    Half next() {
        const Half mixed = exclusiveOr(exclusiveOr(m_b, m_d), m_right[m_round++ % m_right.size()]);
        const Half made = scrambleKey(m_a, mixed);
        m_d = m_a;
        m_a = m_b;
        m_b = made;
        return made;
    }

    FealBlock nextBlock() {
        FealBlock block;
        for (std::size_t i = 0; i < cnFealBlock; i += 4) {
            const Half part = next();
            std::copy(part.begin(), part.end(), block.begin() + static_cast<std::ptrdiff_t>(i));
        }
        return block;
    }

private:
    Half m_a, m_b, m_d = {};
    std::array<Half, 3> m_right; // the right half of the key: both words together, the first, the second, and again
    std::size_t m_round = 0;
};

} // namespace

template <std::size_t Rounds>
FealSchedule<Rounds> fealEncipheringSchedule(const std::array<std::uint8_t, cnFealKey>& key) {
    KeySource source(key);
    FealSchedule<Rounds> schedule;
    for (std::size_t i = 0; i < Rounds; i += 2) {
        const Half pair = source.next();
        schedule.rounds[i] = {pair[0], pair[1]};
        schedule.rounds[i + 1] = {pair[2], pair[3]};
    }
    schedule.before = source.nextBlock();
    schedule.after = source.nextBlock();
    return schedule;
}

template <std::size_t Rounds>
FealSchedule<Rounds> fealDecipheringSchedule(const FealSchedule<Rounds>& enciphering) {
    FealSchedule<Rounds> schedule{enciphering.after, enciphering.rounds, enciphering.before};
    std::reverse(schedule.rounds.begin(), schedule.rounds.end());
    return schedule;
}

template <std::size_t Rounds>
void fealBlocks(const FealSchedule<Rounds>& schedule, std::uint8_t* bytes, std::size_t size) {
    constexpr std::size_t laneBytes = cnLanes * cnFealBlock;
    for (; size >= laneBytes; bytes += laneBytes, size -= laneBytes)
        transformLanes(schedule, bytes);
    for (; size >= cnFealBlock; bytes += cnFealBlock, size -= cnFealBlock) {
        Halves<std::uint8_t> block;
        std::memcpy(block.left.data(), bytes, 4);
        std::memcpy(block.right.data(), bytes + 4, 4);
        transform(schedule, block);
        std::memcpy(bytes, block.left.data(), 4);
        std::memcpy(bytes + 4, block.right.data(), 4);
    }
}

// 128 rounds serve the files; the published values are those of fewer.
#define OVW_FEAL(rounds)                                                                                               \
    template FealSchedule<rounds> fealEncipheringSchedule<rounds>(const std::array<std::uint8_t, cnFealKey>&);         \
    template FealSchedule<rounds> fealDecipheringSchedule<rounds>(const FealSchedule<rounds>&);                        \
    template void fealBlocks<rounds>(const FealSchedule<rounds>&, std::uint8_t*, std::size_t);
OVW_FEAL(8)
OVW_FEAL(16)
OVW_FEAL(32)
OVW_FEAL(128)
#undef OVW_FEAL

} // namespace ovw::persistence
