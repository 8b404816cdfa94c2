#ifndef OVW_TESTS_MIXING_RANDOMCASES_H
#define OVW_TESTS_MIXING_RANDOMCASES_H

#include <cstddef>
#include <cstdint>

namespace ovw::test {

/// Numbers that depend on the seed alone, on every machine (splitmix64).
class Random {
public:
    explicit Random(std::uint64_t seed) : m_state(seed) {}

    std::uint64_t next() {
        m_state += 0x9E3779B97F4A7C15;
        std::uint64_t z = m_state;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
        return z ^ (z >> 31);
    }
    /// first to last, both included.
    int number(int first, int last) { return first + int(next() % std::uint64_t(last - first + 1)); }
    double real(double first, double last) {
        return first + (last - first) * double(next() >> 11) / 9007199254740992.0;
    }
    /// One time in n.
    bool chance(int n) { return number(1, n) == 1; }
    /// A byte, often one at the ends or around the middle.
    int byte() {
        static constexpr int cnCorners[] = {0, 1, 127, 128, 254, 255};
        return chance(2) ? number(0, 255) : cnCorners[number(0, 5)];
    }
    template <class T, std::size_t N>
    T pick(const T (&choices)[N]) {
        return choices[number(0, int(N) - 1)];
    }

private:
    std::uint64_t m_state;
};

} // namespace ovw::test

#endif // OVW_TESTS_MIXING_RANDOMCASES_H
