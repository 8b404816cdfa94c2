#include "ovwcmn/xcplotgauss.h"

#include "randomcases.h"
#include "referencemixer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

namespace {

using ovw::test::Random;

struct Falloff {
    XCPointD center{0.0, 0.0};
    float tableRadius = 0;
    float radius = 16;
    float hardness = 0;
    int keepTableRadius = 0;
    int allowTable = 0;
};

void start(XCPlotGauss& plotter, const Falloff& f) {
    plotter.StartPlot(f.center, f.tableRadius, f.radius, f.hardness, f.keepTableRadius, f.allowTable);
}

constexpr int cnRefused = -1;

/// The weight at one pixel, cnRefused where the row is outside.
int weight(const Falloff& falloff, int x, int y) {
    XCPlotGauss plotter;
    start(plotter, falloff);
    return plotter.StartLine(y, x) ? int(plotter.GetGaussValue()) : cnRefused;
}

struct Weight {
    const char* name;
    Falloff falloff;
    int x, y;
    int expected;
};

constexpr Falloff table20{{0.0, 0.0}, 20, 20, 0, 0, 1};
constexpr double cnNaN = std::numeric_limits<double>::quiet_NaN();
constexpr float cnInfinity = std::numeric_limits<float>::infinity();

/// exp(-d * d / 32768) with d entries from the flat centre, less exp(-4.5), times the falloff's scale.
const Weight s_weights[] = {
    {"centre, 1 - e", {.radius = 16}, 0, 0, 32403},
    {"one pixel, entry 412", {.radius = 16}, 1, 0, 31879},
    {"entry 484", {.radius = 16}, 4, 0, 24515},
    {"entry 580", {.radius = 16}, 8, 0, 10399},
    {"the other side", {.radius = 16}, -8, 0, 10399},
    {"above", {.radius = 16}, 0, -8, 10399},
    {"entry 580 on both axes", {.radius = 16}, 8, 8, 3171},
    {"entry 748", {.radius = 16}, 15, 0, 277},
    {"past the radius", {.radius = 16}, 17, 0, 0},
    {"left of the first entry", {.radius = 16}, -17, 0, 0},
    {"far left", {.radius = 16}, -2000000000, 0, 0},
    {"row past the radius", {.radius = 16}, 0, 17, cnRefused},
    {"row before the radius", {.radius = 16}, 0, -17, cnRefused},
    {"row far away at a small radius", {.radius = 0.1f}, 0, 35, cnRefused},
    {"row farther away", {.radius = 0.1f}, 0, -2000000000, cnRefused},
    {"small radii are weaker", {.radius = 8}, 0, 0, 16201},
    {"large radii are as strong as 16", {.radius = 64}, 0, 0, 32403},
    {"hardness 1/2 doubles, and is cut", {.radius = 16, .hardness = 0.5f}, 0, 0, 32768},
    {"hardness 1/2 in the slope", {.radius = 16, .hardness = 0.5f}, 8, 0, 20798},
    {"hardness 1 is finite", {.radius = 16, .hardness = 1.0f}, 15, 0, 32768},
    {"centre between pixels", {.center = {0.5, 0.0}, .radius = 16}, 0, 0, 32283},
    {"centre between pixels, right", {.center = {0.5, 0.0}, .radius = 16}, 1, 0, 32283},
    {"negative centre is floored", {.center = {-2.5, -3.0}, .radius = 16}, -3, -3, 32283},
    {"negative centre, right", {.center = {-2.5, -3.0}, .radius = 16}, -2, -3, 32283},
    {"centre not a number", {.center = {cnNaN, 0.0}, .radius = 16}, 0, 0, cnRefused},
    {"row of the centre not a number", {.center = {0.0, cnNaN}, .radius = 16}, 0, 0, cnRefused},
    {"centre at infinity", {.center = {0.0, double(cnInfinity)}, .radius = 16}, 0, 0, cnRefused},
    {"endless radius", {.radius = cnInfinity}, 0, 0, cnRefused},
    {"table centre", table20, 0, 0, 32400},
    {"table, 5 pixels right", table20, 5, 0, 24656},
    {"table, 5 pixels up", table20, 0, -5, 24656},
    {"table, 5 pixels left and down", table20, -5, 5, 18736},
    {"table, 10 pixels", table20, 10, 0, 10512},
    {"table, at the radius", table20, 20, 0, 16},
    {"table, past the radius", table20, 21, 0, 0},
    {"table, left of it", table20, -21, 0, 0},
    {"table, row past the radius", table20, 0, 21, cnRefused},
};

std::vector<std::uint32_t> row(XCPlotGauss& plotter, int y, int x1, int x2) {
    std::vector<std::uint32_t> values;
    if (!plotter.StartLine(y, x1))
        return values;
    for (int x = x1; x < x2; ++x, plotter.NextIndex())
        values.push_back(plotter.GetGaussValue());
    return values;
}

} // namespace

TEST(PlotGauss, WeightsWorkedOutByHand) {
    for (const Weight& w : s_weights)
        EXPECT_EQ(weight(w.falloff, w.x, w.y), w.expected) << w.name;
}

TEST(PlotGauss, NoClipGoesPastFull) {
    XCPlotGauss plotter;
    start(plotter, {.radius = 16, .hardness = 0.5f});
    ASSERT_EQ(plotter.StartLine(0, 0), 1);
    EXPECT_EQ(plotter.GetGaussValueNoClip(), 64807u); // 2 (1 - e)
    start(plotter, {.radius = 16, .hardness = 1.0f});
    ASSERT_EQ(plotter.StartLine(0, 0), 1);
    EXPECT_NEAR(plotter.GetGaussValueNoClip(), 255 * (1 - std::exp(-4.5)) * 32768, 2.0);
}

TEST(PlotGauss, RadiiHaveALowerLimit) {
    EXPECT_EQ(weight({.radius = 0.05f}, 0, 0), weight({.radius = 0.1f}, 0, 0));
    EXPECT_EQ(weight({.radius = -3}, 0, 0), weight({.radius = 0.1f}, 0, 0));
}

TEST(PlotGauss, ASpanSplitAnywhereKeepsItsWeights) {
    const Falloff falloffs[] = {{.center = {3.3, 1.7}, .radius = 7.3f},
                                {.center = {3.3, 1.7}, .radius = 0.3f},
                                {.center = {3.3, 1.7}, .tableRadius = 12, .radius = 9.7f, .allowTable = 1}};
    for (const Falloff& falloff : falloffs) {
        XCPlotGauss plotter;
        start(plotter, falloff);
        std::vector<std::uint32_t> whole = row(plotter, 2, -30, 40);
        ASSERT_EQ(whole.size(), 70u);
        for (int x = -30; x < 40; ++x) {
            std::vector<std::uint32_t> right = row(plotter, 2, x, 40);
            ASSERT_TRUE(std::equal(right.begin(), right.end(), whole.begin() + x + 30)) << "split at " << x;
        }
    }
}

TEST(PlotGauss, CopiesKeepATableOfTheirOwn) {
    XCPlotGauss plotter;
    start(plotter, table20);
    std::vector<std::uint32_t> values = row(plotter, 3, -25, 25);
    XCPlotGauss copy = plotter;
    XCPlotGauss assigned;
    start(assigned, {.radius = 16});
    assigned = plotter;
    ASSERT_EQ(plotter.StartLine(0, 0), 1);
    XCPlotGauss inMidRow = plotter;
    plotter.ClearTable();
    EXPECT_EQ(plotter.StartLine(0, 0), 0);
    EXPECT_EQ(inMidRow.GetGaussValue(), 32400u);
    EXPECT_EQ(row(copy, 3, -25, 25), values);
    EXPECT_EQ(row(assigned, 3, -25, 25), values);
    start(plotter, table20);
    EXPECT_EQ(row(plotter, 3, -25, 25), values);
}

TEST(PlotGauss, ATableIsRebuiltForAnotherRadiusOrHardness) {
    XCPlotGauss plotter;
    const Falloff falloffs[] = {table20,
                                {{0.0, 0.0}, 20, 20, 0.5f, 0, 1},
                                {{0.0, 0.0}, 20, 30, 0.5f, 0, 1},
                                {{0.0, 0.0}, 15, 30, 0.5f, 0, 1},
                                {{0.0, 0.0}, 15, 30, 0.5f, 1, 1},
                                {{0.0, 0.0}, 0, 30, 0.5f, 1, 1},
                                table20};
    for (const Falloff& falloff : falloffs) {
        start(plotter, falloff);
        XCPlotGauss fresh;
        start(fresh, falloff);
        EXPECT_EQ(row(plotter, 3, -25, 25), row(fresh, 3, -25, 25));
    }
}

TEST(PlotGauss, AgreesWithThePlainModelEverywhere) {
    for (std::uint64_t seed = 0; seed < 400; ++seed) {
        Random random(seed);
        Falloff f{{random.real(-20, 20), random.real(-20, 20)}};
        f.radius = float(random.chance(3) ? random.real(0.05, 4) : random.real(4, 120));
        f.tableRadius = float(random.real(5, 60));
        f.hardness = float(random.chance(4) ? 1 : random.real(0, 1));
        f.keepTableRadius = random.chance(2);
        f.allowTable = random.chance(2);
        XCPlotGauss plotter;
        start(plotter, f);
        ovw::test::ReferencePlotter reference;
        reference.startPlot(f.center.x, f.center.y, f.tableRadius, f.radius, f.hardness, f.keepTableRadius != 0,
                            f.allowTable != 0);
        for (int y = -50; y < 50; y += 7) {
            ASSERT_EQ(plotter.StartLine(y, -60), int(reference.startLine(y, -60))) << "seed " << seed << " row " << y;
            if (!reference.startLine(y, -60))
                continue;
            for (int x = -60; x < 60; ++x, plotter.NextIndex(), reference.next()) {
                ASSERT_EQ(plotter.GetGaussValue(), reference.value()) << "seed " << seed << " at " << x << ", " << y;
                ASSERT_EQ(plotter.GetGaussValueNoClip(), reference.valueNoClip()) << "seed " << seed;
            }
        }
    }
}
