#ifndef OVW_TESTS_BRUSH_REFERENCERANDOM_H
#define OVW_TESTS_BRUSH_REFERENCERANDOM_H

#include <cstdint>

namespace ovw::test {

/// The recurrence of the brush's random numbers, written down a second time.
class ReferenceRandom {
public:
    explicit ReferenceRandom(std::uint32_t seed) : m_seed(seed) {}
    /// The sequence of a brush whose seeds were taken while the library-wide seed was `librarySeed`.
    static ReferenceRandom ofBrush(std::uint32_t librarySeed) {
        return ReferenceRandom(std::uint32_t(int(ReferenceRandom(librarySeed).next() * 32767.0)));
    }

    double next() {
        m_seed = m_seed * 1103515245u + 12345u;
        return (m_seed >> 16 & 0x7FFF) / 32768.0;
    }
    double nextGauss() {
        double sum = 0;
        for (int i = 0; i < 12; ++i)
            sum += next();
        return (sum - 6) / 6;
    }

private:
    std::uint32_t m_seed;
};

} // namespace ovw::test

#endif // OVW_TESTS_BRUSH_REFERENCERANDOM_H
