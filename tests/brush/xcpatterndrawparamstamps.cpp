#include "mixing/randomcases.h"
#include "ovwcmn/xccoloraverage.h"
#include "ovwcmn/xcpatterndrawparam.h"
#include "ovwcmn/xcstroke.h"
#include "referencerandom.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

using ovw::test::Random;
using ovw::test::ReferenceRandom;

constexpr std::uint32_t cnSeed = 815;
const XCStrokePoint s_point{100, 200, 0.25f, 90, 0.5f, 200, 0.875f};

std::vector<PLOTPATTERNPARAM> stampsOf(XCPatternDrawParam& brush, double ratio = 0.5) {
    std::vector<PLOTPATTERNPARAM> result;
    PLOTPATTERNPARAM stamp;
    brush.BeginPlotParam(&s_point, ratio);
    while (brush.NextPlotParam(stamp, &s_point, 0.0))
        result.push_back(stamp);
    EXPECT_EQ(brush.NextPlotParam(stamp, &s_point, 0.0), 0);
    brush.EndPlotParam();
    return result;
}

TEST(XCPatternDrawParam, StampTakesTheSettings) {
    XCPatternDrawParam brush;
    brush.SetSizeParam({40, 51, 2});
    brush.SetColorParam({0x80112233, 0x44556677, 200, 0, 4});
    brush.SetHardnessParam({99, 0, 0});
    brush.SetEtcParam({0, 0, 0, 0, 321});
    const std::vector<PLOTPATTERNPARAM> stamps = stampsOf(brush, 0.375);
    ASSERT_EQ(stamps.size(), 1u);
    const PLOTPATTERNPARAM& stamp = stamps[0];
    EXPECT_EQ(stamp.color, 0x80112233u);
    EXPECT_EQ(stamp.subColor, 0x44556677u);
    EXPECT_EQ(stamp.x, 100);
    EXPECT_EQ(stamp.y, 200);
    EXPECT_EQ(stamp.size, 40);
    EXPECT_EQ(stamp.opacity, 200);
    EXPECT_EQ(stamp.hardness, 99);
    EXPECT_FLOAT_EQ(stamp.sizeScale, 0.4f); // 0.2 + 0.8 * 0.25
    EXPECT_FLOAT_EQ(stamp.opacityScale, 0.5f);
    EXPECT_FLOAT_EQ(stamp.hardnessScale, 1);
    EXPECT_FLOAT_EQ(stamp.intervalRatio, 0.375f);
    EXPECT_EQ(stamp.etcValue, 321);
    EXPECT_EQ(stamp.sizeFixed, 0);
    EXPECT_EQ(stamp.hardnessFixed, 1);
    EXPECT_EQ(stamp.overSampling, 0);
    EXPECT_EQ(brush.NextPlotParam(const_cast<PLOTPATTERNPARAM&>(stamp), &s_point, 0), 0) << "after EndPlotParam";
}

int kindOfTip(int patternKind, int patternCount, XCPattern* listed, XCPattern* designated) {
    XCPatternDrawParam brush;
    PDPARAM_PATTERN pattern;
    pattern.patternKind = patternKind;
    pattern.patternCount = patternCount;
    pattern.patterns[0] = listed;
    brush.SetPatternParam(pattern);
    brush.SetDesignatedPattern(designated);
    PLOTPATTERNPARAM stamp;
    brush.BeginPlotParam(&s_point, 1);
    return brush.NextPlotParam(stamp, &s_point, 0) ? stamp.pattern->kind : -9;
}

TEST(XCPatternDrawParam, TipByKind) {
    XCPattern listed;
    listed.kind = 33;
    EXPECT_EQ(kindOfTip(0, 1, &listed, nullptr), XCPattern::cnKindCircle);
    EXPECT_EQ(kindOfTip(1, 1, &listed, nullptr), XCPattern::cnKindRect);
    EXPECT_EQ(kindOfTip(2, 1, &listed, nullptr), XCPattern::cnKindPolygon);
    EXPECT_EQ(kindOfTip(3, 1, &listed, nullptr), 33);
    EXPECT_EQ(kindOfTip(3, 0, nullptr, nullptr), XCPattern::cnKindCircle);
    EXPECT_EQ(kindOfTip(3, 1, nullptr, nullptr), -9);
    EXPECT_EQ(kindOfTip(4, 1, &listed, nullptr), 33);
    EXPECT_EQ(kindOfTip(-1, 0, nullptr, nullptr), -9);
    for (int kind = 0; kind < 4; ++kind)
        EXPECT_EQ(kindOfTip(kind, 0, nullptr, &listed), 33);
}

TEST(XCPatternDrawParam, PolygonTipTakesTheOutline) {
    XCPatternDrawParam brush;
    PDPARAM_PATTERN pattern;
    pattern.patternKind = 2;
    for (int i = 0; i < 4; ++i)
        pattern.polygon.PushBack({i * 0.25, i * -0.5});
    brush.SetPatternParam(pattern);
    for (int pass = 0; pass < 2; ++pass) {
        PLOTPATTERNPARAM stamp;
        brush.BeginPlotParam(&s_point, 1);
        ASSERT_EQ(brush.NextPlotParam(stamp, &s_point, 0), 1);
        const auto* tip = dynamic_cast<XCPolygonPattern*>(stamp.pattern);
        ASSERT_NE(tip, nullptr);
        ASSERT_EQ(tip->vertices.GetSize(), 4);
        EXPECT_EQ(tip->vertices[3].y, -1.5);
    }
}

TEST(XCPatternDrawParam, RandomNumbersAreDrawnInOrder) {
    XCPattern tip;
    XCPatternDrawParam brush;
    brush.SetDesignatedPattern(&tip);
    brush.SetSizeParam({40, 0, 1});
    brush.SetColorParam({0, 0, 255, 0, 1});
    brush.SetHardnessParam({255, 0, 1});
    brush.SetRotateParam({0, 1, 0, 1});
    brush.SetSizeRateParam({1, 0, 1});
    PDPARAM_AIRBRUSH airbrush;
    airbrush.sprayFlags = cnSprayScatter;
    airbrush.sprayWidthAtFull = 50;
    airbrush.plotCountAtFull = 3;
    brush.SetAirbrushParam(airbrush);
    xcSetRandomSeed(cnSeed);
    brush.InitRandom();
    for (int pass = 0; pass < 2; ++pass) {
        ReferenceRandom random = ReferenceRandom::ofBrush(cnSeed);
        PLOTPATTERNPARAM stamp;
        brush.BeginPlotParam(&s_point, 0.25);
        for (int i = 0; i < 3; ++i) {
            ASSERT_EQ(brush.NextPlotParam(stamp, &s_point, 0), 1);
            double gx, gy;
            do {
                gx = random.nextGauss();
                gy = random.nextGauss();
            } while (gx * gx + gy * gy > 0.25);
            EXPECT_NEAR(stamp.x, 100 + gx * 50, 1e-9);
            EXPECT_NEAR(stamp.y, 200 + gy * 50, 1e-9);
            EXPECT_NEAR(stamp.sizeScale, random.next(), 1e-6);
            EXPECT_NEAR(stamp.opacityScale, random.next(), 1e-6);
            EXPECT_NEAR(stamp.hardnessScale, random.next(), 1e-6);
            EXPECT_NEAR(tip.rotation, 2 * random.next() - 1, 1e-6);
            EXPECT_NEAR(tip.sizeRate, random.next(), 1e-6);
            EXPECT_EQ(tip.sizeRate2, 1.0f);
            EXPECT_EQ(stamp.intervalRatio, 1.0f);
        }
        EXPECT_EQ(brush.NextPlotParam(stamp, &s_point, 0), 0);
        brush.ResetPatternState();
    }
}

TEST(XCPatternDrawParam, ConstructionAndInitTakeOneSeed) {
    xcSetRandomSeed(7);
    ReferenceRandom library(7);
    XCPatternDrawParam brush;
    library.next();
    brush.SetSizeParam({1, 0, 1});
    XCPatternDrawParam copy(brush); // takes the seeds, and no number
    const double number = library.next();
    EXPECT_EQ(xcRandom(nullptr), number);
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(copy.ConvertPatternScale(&s_point), brush.ConvertPatternScale(&s_point));
    XCPatternDrawParam midway;
    midway = brush;
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(midway.ConvertPatternScale(&s_point), brush.ConvertPatternScale(&s_point));
}

TEST(XCPatternDrawParam, CopiesKnowNoStampsUnderWay) {
    XCPatternDrawParam brush;
    brush.BeginPlotParam(&s_point, 1);
    XCPatternDrawParam copy(brush);
    PLOTPATTERNPARAM stamp;
    EXPECT_EQ(copy.NextPlotParam(stamp, &s_point, 0), 0);
    EXPECT_EQ(brush.NextPlotParam(stamp, &s_point, 0), 1);
}

TEST(XCPatternDrawParam, FixedPlotsAndTrailingPlacement) {
    PDPARAM_AIRBRUSH airbrush;
    airbrush.sprayWidthAtFull = 21; // half of it, as an integer, is 10
    airbrush.plotCountAtFull = 3;
    for (int i = 0; i < 3; ++i)
        airbrush.fixedPlots[i] = {0.5 * i, -0.25 * i};
    XCPatternDrawParam brush;
    for (const int flags : {1 | 4, 1 | 4 | 8, 4, 8}) {
        airbrush.sprayFlags = flags;
        brush.SetAirbrushParam(airbrush);
        const std::vector<PLOTPATTERNPARAM> stamps = stampsOf(brush);
        ASSERT_EQ(stamps.size(), 3u);
        for (int i = 0; i < 3; ++i) {
            EXPECT_DOUBLE_EQ(stamps[std::size_t(i)].x, flags & 1 ? 100 + 5.0 * i : 100) << flags;
            EXPECT_DOUBLE_EQ(stamps[std::size_t(i)].y, flags & 1 ? 200 - 2.5 * i : 200);
        }
    }
    // Trailing: from (0, 0) each plot comes half a width of 200 nearer to the point, until it is closer than that.
    airbrush.sprayFlags = 1 | 8;
    airbrush.sprayWidthAtFull = 200;
    airbrush.plotCountAtFull = 4;
    brush.SetAirbrushParam(airbrush);
    const std::vector<PLOTPATTERNPARAM> stamps = stampsOf(brush);
    ASSERT_EQ(stamps.size(), 4u);
    const double d = std::hypot(100, 200);
    for (int i = 0; i < 2; ++i) {
        EXPECT_NEAR(stamps[std::size_t(i)].x, 100 * (i + 1) * 100 / d, 1e-9);
        EXPECT_NEAR(stamps[std::size_t(i)].y, 200 * (i + 1) * 100 / d, 1e-9);
    }
    EXPECT_EQ(stamps[2].x, 100); // 23.6 left, less than 100
    airbrush.sprayWidthAtFull = 0;
    brush.SetAirbrushParam(airbrush);
    EXPECT_EQ(stampsOf(brush)[0].x, 100);
}

TEST(XCPatternDrawParam, ScatterStaysInItsDisc) {
    PDPARAM_AIRBRUSH airbrush;
    airbrush.sprayFlags = 1;
    airbrush.sprayWidthAtFull = 40;
    airbrush.sprayWidthAtZero = 20;
    airbrush.sprayWidthControl = 4; // 0.5: 30 wide
    airbrush.plotCountAtFull = 256;
    XCPatternDrawParam brush;
    brush.SetAirbrushParam(airbrush);
    double furthest = 0;
    for (const PLOTPATTERNPARAM& stamp : stampsOf(brush))
        furthest = std::max(furthest, std::hypot(stamp.x - 100, stamp.y - 200));
    EXPECT_LE(furthest, 15);
    EXPECT_GT(furthest, 10);
}

TEST(XCPatternDrawParam, BendedStripTakesBothEnds) {
    const std::pair<double, int> sides[] = {{0, 0},   {44, 0},  {46, 1},  {134, 1}, {136, 2}, {224, 2},
                                            {226, 3}, {314, 3}, {316, 0}, {-90, 0}, {450, 0}};
    for (const auto& [degrees, expected] : sides) {
        XCPatternDrawParam brush;
        brush.SetSizeParam({40, 0, 2});
        brush.SetColorParam({0x80112233, 0x44556677, 200, 0, 2});
        brush.SetEtcParam({1, 0, 0, 1, 5});
        brush.SetRotateParam({float(degrees * 3.14159265358979323846 / 180), 0, 0, 0});
        const XCStrokePoint second{0, 0, 0.75f, 0, 1, 0, 0};
        PLOTPATTERNPARAM stamp;
        float secondScale = 0;
        int side = -1;
        brush.ParamForBendPattern(&s_point, &second, stamp, secondScale, side);
        EXPECT_EQ(side, expected) << degrees;
        EXPECT_FLOAT_EQ(stamp.sizeScale, 0.25f);
        EXPECT_FLOAT_EQ(secondScale, 0.75f);
        EXPECT_FLOAT_EQ(stamp.opacityScale, 0.25f);
        EXPECT_EQ(stamp.size, 40);
        EXPECT_EQ(stamp.opacity, 200);
        EXPECT_EQ(stamp.color, 0x80112233u);
        EXPECT_EQ(stamp.subColor, 0x44556677u);
        EXPECT_EQ(stamp.etcValue, 5);
        EXPECT_EQ(stamp.overSampling, 1);
    }
}

unsigned channel(std::uint32_t color, int index) { return color >> 8 * index & 255; }

/// The mixture of the brush's own and the picked up colour; `m` and `a` are the shares of the own, 0 to 255.
std::uint32_t mixed(std::uint32_t own, std::uint32_t picked, int m, int a) {
    const unsigned qa = channel(picked, 3), da = channel(own, 3);
    const unsigned alpha = a == 0 ? qa : a >= 255 ? da : ((255 - unsigned(a)) * qa + da * unsigned(a) + 127) / 255;
    if (alpha == 0)
        return 0x00FFFFFF;
    std::uint32_t color = own & 0xFFFFFF;
    if (m < 255 && qa != 0) {
        color = picked & 0xFFFFFF;
        if (m != 0 && da != 0) {
            const double w = m / 255.0, wd = w * w * da, wq = (1 - w * w) * qa;
            color = 0;
            for (int i = 0; i < 3; ++i)
                color |= std::uint32_t(0.5 + (wd * channel(own, i) + wq * channel(picked, i)) / (wd + wq)) << 8 * i;
        }
    }
    return alpha << 24 | color;
}

void pickUp(XCColorAverage& average, std::uint32_t color, int count) {
    for (int i = 0; i < count; ++i) {
        std::uint8_t pixel[4] = {std::uint8_t(color >> 16), std::uint8_t(color >> 8), std::uint8_t(color),
                                 std::uint8_t(color >> 24)};
        average.CountTotal32Bit(pixel);
    }
}

std::uint32_t randomColor(Random& random) {
    return (std::uint32_t(random.next()) & 0xFFFFFF) | std::uint32_t(random.byte()) << 24;
}

TEST(XCPatternDrawParam, MixesTheColourThatWasPickedUp) {
    Random random(21);
    for (int i = 0; i < 2000; ++i) {
        XCColorAverage average;
        for (int j = random.number(1, 4); j > 0; --j)
            pickUp(average, randomColor(random), random.number(1, 9));
        const PDPARAM_MIXCOLOR mix{random.byte(),        random.byte(), random.chance(2) ? 2 : 0,
                                   random.byte(),        random.byte(), random.chance(2) ? 4 : 0,
                                   random.number(0, 200)};
        const std::uint32_t own = randomColor(random);
        XCPatternDrawParam brush;
        brush.SetMixColorParam(mix);
        brush.SetDrawColor(own);
        if (!brush.IsUseMixColorParam())
            continue;
        const std::uint32_t picked = XCColorAverage(average).ConvertSmudgeColor(mix.smudge);
        const int m = int(float(mix.mixColor) * brush.ConvertMixColorScale(&s_point));
        const int a = int(float(mix.mixAlpha) * brush.ConvertMixAlphaScale(&s_point));
        int noColor = 0;
        ASSERT_EQ(brush.MixDrawColor(&average, &s_point, noColor), mixed(own, picked, m, a))
            << std::hex << own << " " << picked;
        EXPECT_EQ(noColor, 0);
    }
}

TEST(XCPatternDrawParam, MixingWithoutSamplesOrWithoutNeed) {
    XCPatternDrawParam brush;
    brush.SetDrawColor(0xAA112233);
    XCColorAverage average;
    pickUp(average, 0xFF0000FF, 3);
    int noColor = 0;
    EXPECT_EQ(brush.IsUseMixColorParam(), 0);
    EXPECT_EQ(brush.MixDrawColor(&average, &s_point, noColor), 0xAA112233u);
    for (const PDPARAM_MIXCOLOR& mix : {PDPARAM_MIXCOLOR{254, 0, 0, 255, 0, 0, 50},
                                        {255, 0, 2, 255, 0, 0, 50},
                                        {255, 0, 0, 254, 0, 0, 50},
                                        {255, 0, 0, 255, 0, 1, 50}}) {
        brush.SetMixColorParam(mix);
        EXPECT_EQ(brush.IsUseMixColorParam(), 1);
    }
    EXPECT_EQ(brush.MixDrawColor(nullptr, &s_point, noColor), 0xAA112233u);
    EXPECT_EQ(noColor, 0);
    XCColorAverage empty;
    EXPECT_EQ(brush.MixDrawColor(&empty, &s_point, noColor), 0u);
    EXPECT_EQ(noColor, 1);
    brush.MixDrawColor(&average, &s_point, noColor);
    EXPECT_EQ(noColor, 1) << "only ever set";
}

} // namespace
