#include "caserunner.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ostream>

/// @file
/// Random settings, painted by the library and by the plain model. A failure names family and seed;
/// OVW_MIX_SEED=n in the environment runs that seed alone, OVW_MIX_FACTOR=n n times as many seeds.

namespace {

using namespace ovw::test;

constexpr int cnShown = 3; // failures of a family

struct Run {
    const char* name;
    Family family;
    int cases;

    friend void PrintTo(const Run& run, std::ostream* out) { *out << run.name; }
};

class RandomMix : public testing::TestWithParam<Run> {
protected:
    ~RandomMix() override { ovw::mixing::forceInstructionSet(m_best); }

    /// The cases of the family.
    void runAll(std::uint64_t first, std::uint64_t last) {
        for (std::uint64_t seed = first; seed < last; ++seed)
            runSets(MixCase(GetParam().family, seed));
        EXPECT_EQ(m_failed, 0) << "of " << last - first << " cases";
    }

    /// A case with each set of kernels, which must leave the very same pixels.
    void runSets(const MixCase& mixCase) {
        std::vector<std::uint32_t> expected;
        for (ovw::mixing::InstructionSet set : m_sets) {
            ovw::mixing::forceInstructionSet(set);
            Outcome outcome = runCase(m_store, m_pool, mixCase);
            if (outcome.difference.empty() && !expected.empty() && outcome.pixels != expected)
                outcome.difference = "other pixels than the first set";
            if (!outcome.difference.empty() && ++m_failed <= cnShown)
                ADD_FAILURE() << mixCase.describe() << "\n  set " << int(set) << ": " << outcome.difference;
            if (expected.empty())
                expected = outcome.pixels;
        }
    }

    int m_failed = 0;
    std::vector<ovw::mixing::InstructionSet> m_sets = machineSets();
    TestStore m_store;
    ImagePool m_pool{m_store};
    ovw::mixing::InstructionSet m_best = ovw::mixing::instructionSet();
};

TEST_P(RandomMix, EqualsTheModel) {
    if (const char* seed = std::getenv("OVW_MIX_SEED"))
        return runAll(std::strtoull(seed, nullptr, 10), std::strtoull(seed, nullptr, 10) + 1);
    const char* factor = std::getenv("OVW_MIX_FACTOR");
    runAll(0, std::uint64_t(GetParam().cases) * (factor ? std::strtoull(factor, nullptr, 10) : 1));
}

INSTANTIATE_TEST_SUITE_P(Families, RandomMix,
                         testing::Values(Run{"Plain", Family::plain, 500}, Run{"Cached", Family::cached, 1000},
                                         Run{"Water", Family::water, 400}, Run{"Blur", Family::blur, 150},
                                         Run{"Clone", Family::clone, 300}, Run{"DirectCopy", Family::directCopy, 400},
                                         Run{"GrayCopy", Family::grayCopy, 400},
                                         Run{"WaterCopy", Family::waterCopy, 300},
                                         Run{"ColorCopy", Family::colorCopy, 300},
                                         Run{"ToneCopy", Family::toneCopy, 200}),
                         [](const auto& run) { return std::string(run.param.name); });

} // namespace
