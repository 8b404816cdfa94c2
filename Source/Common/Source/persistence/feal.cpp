#include "persistence/feal.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <functional>

namespace ovw::persistence {

namespace {

using Half = std::array<std::uint8_t, 4>;
using Subkey = std::array<std::uint8_t, 2>;

// S0 and S1 differ by the carry that is added.
std::uint8_t substitute0(int a, int b) { return std::rotl(static_cast<std::uint8_t>(a + b), 2); }
std::uint8_t substitute1(int a, int b) { return std::rotl(static_cast<std::uint8_t>(a + b + 1), 2); }

Half exclusiveOr(const Half& a, const Half& b) {
    Half result;
    std::transform(a.begin(), a.end(), b.begin(), result.begin(), std::bit_xor<>());
    return result;
}

Half half(const std::uint8_t* bytes) {
    Half result;
    std::memcpy(result.data(), bytes, result.size());
    return result;
}

/// The round function f.
Half scramble(const Half& a, const Subkey& key) {
    const int f1 = substitute1(a[0] ^ a[1] ^ key[0], a[2] ^ a[3] ^ key[1]);
    const int f2 = substitute0(a[2] ^ a[3] ^ key[1], f1);
    return {substitute0(a[0], f1), static_cast<std::uint8_t>(f1), static_cast<std::uint8_t>(f2), substitute1(a[3], f2)};
}

/// The function fK of the key schedule.
Half scrambleKey(const Half& a, const Half& b) {
    const int f1 = substitute1(a[0] ^ a[1], a[2] ^ a[3] ^ b[0]);
    const int f2 = substitute0(a[2] ^ a[3], f1 ^ b[1]);
    return {substitute0(a[0], f1 ^ b[2]), static_cast<std::uint8_t>(f1), static_cast<std::uint8_t>(f2),
            substitute1(a[3], f2 ^ b[3])};
}

/// Pairs of subkeys, as many as asked for, one after another.
class KeySource {
public:
    explicit KeySource(const std::array<std::uint8_t, cnFealKey>& key)
        : m_a(half(&key[0])),
          m_b(half(&key[4])), m_right{exclusiveOr(half(&key[8]), half(&key[12])), half(&key[8]), half(&key[12])} {}

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
void fealBlock(const FealSchedule<Rounds>& schedule, const std::uint8_t* in, std::uint8_t* out) {
    Half left = exclusiveOr(half(in), half(&schedule.before[0]));
    Half right = exclusiveOr(exclusiveOr(half(in + 4), half(&schedule.before[4])), left);
    for (const Subkey& key : schedule.rounds) {
        const Half next = exclusiveOr(left, scramble(right, key));
        left = right;
        right = next;
    }
    // The halves change places once more at the end.
    const Half first = exclusiveOr(right, half(&schedule.after[0]));
    const Half second = exclusiveOr(exclusiveOr(left, right), half(&schedule.after[4]));
    std::memcpy(out, first.data(), first.size());
    std::memcpy(out + 4, second.data(), second.size());
}

// 128 rounds serve the files; the published values are those of fewer.
#define OVW_FEAL(rounds)                                                                                               \
    template FealSchedule<rounds> fealEncipheringSchedule<rounds>(const std::array<std::uint8_t, cnFealKey>&);         \
    template FealSchedule<rounds> fealDecipheringSchedule<rounds>(const FealSchedule<rounds>&);                        \
    template void fealBlock<rounds>(const FealSchedule<rounds>&, const std::uint8_t*, std::uint8_t*);
OVW_FEAL(8)
OVW_FEAL(16)
OVW_FEAL(32)
OVW_FEAL(128)
#undef OVW_FEAL

} // namespace ovw::persistence
