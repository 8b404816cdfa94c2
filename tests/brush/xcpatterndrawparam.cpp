#include "ovwcmn/xcpatterndrawparam.h"

#include "ovwcmn/xcstroke.h"
#include "referencerandom.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <vector>

namespace {

using ovw::test::ReferenceRandom;

constexpr double cnPi = 3.14159265358979323846;
constexpr std::uint32_t cnSeed = 4711;

/// Pressure 0.25, second scale 0.5, 1 - speed 0.125.
const XCStrokePoint s_point{100, 200, 0.25f, 90, 0.5f, 200, 0.875f};

/// A brush whose random numbers are those of ReferenceRandom::ofBrush(cnSeed).
void seed(XCPatternDrawParam& brush) {
    xcSetRandomSeed(cnSeed);
    brush.InitRandom();
}

TEST(xcRandom, FollowsTheRecurrence) {
    std::uint32_t own = 1;
    EXPECT_EQ(xcRandom(&own), 16838 / 32768.0);
    EXPECT_EQ(own, 1103527590u);
    EXPECT_EQ(xcRandom(&own), 5758 / 32768.0);
    xcSetRandomSeed(99);
    ReferenceRandom reference(99);
    for (int i = 0; i < 1000; ++i)
        ASSERT_EQ(xcRandom(nullptr), reference.next());
    own = 5;
    ReferenceRandom bell(5);
    for (int i = 0; i < 100; ++i)
        ASSERT_DOUBLE_EQ(xcGetGaussRand(&own), bell.nextGauss());
    xcGenerateRandom();
    const double number = xcRandom(nullptr);
    EXPECT_GE(number, 0);
    EXPECT_LT(number, 1);
}

/// One of the five scales that rest on a minimum.
struct MinBased {
    const char* name;
    std::function<void(XCPatternDrawParam&, int minimum, int control)> set;
    float (XCPatternDrawParam::*convert)(const XCStrokePoint*);
};

const MinBased s_minBased[] = {
    {"size",
     [](XCPatternDrawParam& b, int m, int c) {
         b.SetSizeParam({9, m, c});
     },
     &XCPatternDrawParam::ConvertPatternScale},
    {"opacity",
     [](XCPatternDrawParam& b, int m, int c) {
         b.SetColorParam({0, 0, 255, m, c});
     },
     &XCPatternDrawParam::ConvertOpacityScale},
    {"hardness",
     [](XCPatternDrawParam& b, int m, int c) {
         b.SetHardnessParam({255, m, c});
     },
     &XCPatternDrawParam::ConvertHardnessScale},
    {"mix color",
     [](XCPatternDrawParam& b, int m, int c) {
         b.SetMixColorParam({255, m, c, 255, 0, 0, 50});
     },
     &XCPatternDrawParam::ConvertMixColorScale},
    {"mix alpha",
     [](XCPatternDrawParam& b, int m, int c) {
         b.SetMixColorParam({255, 0, 0, 255, m, c, 50});
     },
     &XCPatternDrawParam::ConvertMixAlphaScale},
};

struct ControlCase {
    int control;
    double scale; ///< without the random factor
};

/// Later bits override earlier ones; a control without a source is 1.
const ControlCase s_controls[] = {{2, 0.25},           {4, 0.5}, {32, 0.125},   {2 | 4, 0.5},        {2 | 32, 0.125},
                                  {2 | 4 | 32, 0.125}, {1, 1},   {1 | 2, 0.25}, {1 | 4 | 32, 0.125}, {64, 1},
                                  {8 | 16 | 128, 1}};

TEST(XCPatternDrawParam, ScalesRestOnTheirMinimum) {
    for (const MinBased& scale : s_minBased) {
        for (const ControlCase& control : s_controls) {
            for (const int minimum : {0, 51, 255}) {
                XCPatternDrawParam brush;
                scale.set(brush, minimum, control.control);
                seed(brush);
                ReferenceRandom random = ReferenceRandom::ofBrush(cnSeed);
                for (int i = 0; i < 3; ++i) {
                    const double s = control.control & 1 ? random.next() * control.scale : control.scale;
                    EXPECT_NEAR((brush.*scale.convert)(&s_point), minimum / 255.0 + (1 - minimum / 255.0) * s, 1e-6)
                        << scale.name << ", control " << control.control;
                }
            }
        }
        XCPatternDrawParam brush;
        scale.set(brush, 51, 0);
        EXPECT_EQ((brush.*scale.convert)(&s_point), 1.0f) << scale.name;
    }
}

TEST(XCPatternDrawParam, SizeRateLiesBetweenItsEnds) {
    XCPatternDrawParam brush;
    EXPECT_EQ(brush.ConvertSizeRate(&s_point), 1.0f);
    brush.SetSizeRateParam({0.5f, 2.5f, 2});
    EXPECT_FLOAT_EQ(brush.ConvertSizeRate(&s_point), 2.0f);
    brush.SetSizeRateParam({0.5f, 2.5f, 0});
    EXPECT_FLOAT_EQ(brush.ConvertSizeRate(&s_point), 0.5f);
}

PDPARAM_AIRBRUSH spray(int flags, int countAtFull, int countAtZero, int countControl) {
    PDPARAM_AIRBRUSH result;
    result.sprayFlags = flags;
    result.plotCountAtFull = countAtFull;
    result.plotCountAtZero = countAtZero;
    result.plotCountControl = countControl;
    return result;
}

TEST(XCPatternDrawParam, PlotCountIsLimited) {
    struct Case {
        int flags, full, zero, control, expected;
    };
    for (const Case& c : {Case{0, 90, 3, 0, 1},
                          {1, 90, 3, 0, 90},
                          {1, 300, 3, 0, 256},
                          {1, 0, 3, 0, 1},
                          {1, -9, 3, 0, 1},
                          {4, 7, 3, 0, 7},
                          {8, 7, 3, 0, 7},
                          {1, 10, 21, 2, 19}, // int(-2.75) + 21
                          {1, 21, 10, 2, 12},
                          {1, -2147483647 - 1, 2147483647, 4, 1}}) {
        XCPatternDrawParam brush;
        brush.SetAirbrushParam(spray(c.flags, c.full, c.zero, c.control));
        EXPECT_EQ(brush.ConvertPlotCount(&s_point), c.expected) << c.full << " " << c.zero;
    }
    XCPatternDrawParam extreme;
    extreme.SetAirbrushParam(spray(1, 2147483647, -2147483647 - 1, 0));
    const int count = extreme.ConvertPlotCount(&s_point);
    EXPECT_TRUE(count >= 1 && count <= 256) << count;
}

TEST(XCPatternDrawParam, IntervalFromItsFieldsOrFromHardness) {
    struct Case {
        PDPARAM_INTERVAL interval;
        int hardness, expected;
    };
    // mode, at full, at zero, control, kind
    for (const Case& c : {Case{{0, 30, 100, 0, 2}, 255, 1},
                          {{2, 30, 100, 0, 3}, 255, 30},
                          {{2, 30, 100, 2, 3}, 255, 83},
                          {{2, 30, 10, 4, 3}, 255, 20},
                          {{2, 100, 10, 32, 3}, 255, 88}, // speed itself: int(78.75) + 10
                          {{1, 0, 0, 0, 3}, 255, 1},
                          {{1, -7, 0, 0, 3}, 255, 1},
                          {{2, -7, 0, 0, 3}, 255, -7},
                          {{2, 30, 100, 0, 2}, 255, 6},
                          {{2, 30, 100, 2, 1}, 155, 18},
                          {{2, 30, 100, 0, 0}, 0, 42},
                          {{1, 30, 100, 0, 4}, 255, 1},
                          {{2, 30, 100, 0, 4}, 255, 0}}) {
        XCPatternDrawParam brush;
        brush.SetIntervalParam(c.interval);
        brush.SetHardnessParam({c.hardness, 0, 0});
        EXPECT_EQ(brush.ConvertInterval(&s_point), c.expected)
            << "mode " << c.interval.intervalMode << " kind " << c.interval.intervalKind;
    }
}

TEST(XCPatternDrawParam, NextIntervalInPixelsAndItsRatio) {
    struct Case {
        int size, sizeControl;
        PDPARAM_INTERVAL interval;
        double factor, expected, ratio;
    };
    for (const Case& c : {Case{10, 0, {2, 50, 0, 0, 3}, 1.0, 5.0, 0.5},
                          {0, 0, {2, 50, 0, 0, 3}, 1.0, 1.0, 1000},
                          {100, 0, {2, 50, 0, 0, 2}, 1.0, 6.0, 0.06},
                          {100, 2, {2, 40, 0, 0, 3}, 2.0, 20, 0.4},
                          {100, 2, {1, 40, 0, 0, 3}, 0.5, 20, 0.4},
                          {100, 0, {0, 40, 0, 0, 3}, 3.0, 3, 0.01},
                          {100, 0, {7, 40, 0, 0, 3}, 0.0, 1, 0.01},
                          {100, 0, {1, 40, 0, 0, 3}, -4.0, 40, 0.4}}) {
        XCPatternDrawParam brush;
        brush.SetSizeParam({c.size, 0, c.sizeControl});
        brush.SetIntervalParam(c.interval);
        double ratio = -1;
        EXPECT_NEAR(brush.GetNextInterval(&s_point, ratio, c.factor), c.expected, 1e-6) << c.size;
        EXPECT_NEAR(ratio, c.ratio, 1e-6);
    }
    XCPatternDrawParam continuing;
    PDPARAM_ETC etc;
    etc.continueFlag = 1;
    continuing.SetEtcParam(etc);
    double ratio = -1;
    EXPECT_EQ(continuing.GetNextInterval(&s_point, ratio, 1.0), 0.0);
    EXPECT_EQ(ratio, -1);
}

TEST(XCPatternDrawParam, RandomIntervalDrawsTheSizeFirst) {
    XCPatternDrawParam brush;
    brush.SetSizeParam({100, 0, 1});
    brush.SetIntervalParam({2, 80, 0, 1, 3});
    seed(brush);
    ReferenceRandom random = ReferenceRandom::ofBrush(cnSeed);
    const double size = random.next() * 100, percent = int(80 * random.next());
    double ratio = 0;
    EXPECT_NEAR(brush.GetNextInterval(&s_point, ratio, 1.0), std::max(percent / 100 * size, 1.0), 1e-4);
}

struct RotateCase {
    PDPARAM_ROTATE rotate; // angle, range, step, control
    double direction, expected;
};

constexpr float cnFree = float(cnPi);

const RotateCase s_rotations[] = {
    {{0.25f, 1, 1, 0}, 2, 0.25},
    {{0.25f, 0, 0, 64}, 2, 0.25}, // a range of 0
    {{0.25f, cnFree, 0, 64}, 1.2, 1.45},
    {{0.25f, cnFree, 0, 64}, -1.2, -0.95},
    {{0.25f, cnFree, 0.5f, 64}, 1.2, 1.25}, // quantised toward zero
    {{0.25f, cnFree, 0.5f, 64}, -1.2, -0.75},
    {{0.25f, 0.5f, 0, 64}, 1.2, 0.75}, // limited on either side
    {{0.25f, 0.5f, 0, 64}, -1.2, -0.25},
    {{0.25f, 0.5f, 0, 64}, 2 * cnPi + 1.2, 0.75},
    {{0.25f, -1, 0.5f, 64}, -1.2, 5.25},        // no limit: 2 pi - 1.2 = 5.08
    {{0, cnFree, 0, 8}, 2, cnPi / 2},           // first pen angle 90
    {{0, cnFree, 0, 16}, 2, -160 * cnPi / 180}, // second pen angle 200
    {{0, cnFree, 0, 16 | 8 | 64 | 128}, 2, cnPi / 2},
    {{0, cnFree, 0, 16 | 64 | 128}, 2, -160 * cnPi / 180},
    {{0, cnFree, 0, 64 | 128}, 2, 2},
    {{0, cnFree, 0, 128}, 2, -cnPi / 4}, // the stamp lies right below the point: 45 - 90 degrees
    {{0.25f, cnFree, 0.5f, 2 | 4 | 32}, 2, 0.25},
};

TEST(XCPatternDrawParam, RotationFollowsTheFirstSourceWithinItsRange) {
    for (const RotateCase& c : s_rotations) {
        XCPatternDrawParam brush;
        brush.SetRotateParam(c.rotate);
        const double result = double(brush.ConvertRotate(&s_point, c.direction, XCPointD(107, 207)));
        EXPECT_NEAR(std::remainder(result - c.expected, 2 * cnPi), 0, 1e-5)
            << "control " << c.rotate.angleControl << ", direction " << c.direction << ": " << result;
    }
}

TEST(XCPatternDrawParam, RandomRotationTurnsEitherWay) {
    for (const float step : {0.0f, 0.25f}) {
        XCPatternDrawParam brush;
        brush.SetRotateParam({1.0f, 2.0f, step, 1 | 8 | 64});
        seed(brush);
        ReferenceRandom random = ReferenceRandom::ofBrush(cnSeed);
        for (int i = 0; i < 20; ++i) {
            double offset = (2 * random.next() - 1) * 2;
            if (step > 0)
                offset = std::trunc(offset / double(step)) * double(step);
            EXPECT_NEAR(brush.ConvertRotate(&s_point, 3, XCPointD(0, 0)), 1 + offset, 1e-6);
        }
    }
}

TEST(XCPatternDrawParam, TipsFollowTheirOrder) {
    struct Case {
        int count, order;
        std::vector<int> expected;
    };
    XCPattern tips[5];
    for (const Case& c : {Case{1, 0, {0, 0}},
                          {3, 0, {0, 1, 2, 0, 1}},
                          {3, 1, {0, 1, 2, 1, 0, 1, 2, 1}},
                          {2, 1, {0, 1, 0, 1, 0}},
                          {4, 1, {0, 1, 2, 3, 2, 1, 0, 1}},
                          {3, 9, {0, 0, 0}}}) {
        XCPatternDrawParam brush;
        PDPARAM_PATTERN pattern;
        pattern.patternKind = XCPattern::cnKindImage;
        for (int i = 0; i < 5; ++i)
            pattern.patterns[i] = &tips[i];
        pattern.patternCount = c.count;
        pattern.patternOrder = c.order;
        brush.SetPatternParam(pattern);
        for (int pass = 0; pass < 2; ++pass) {
            for (const int index : c.expected)
                EXPECT_EQ(brush.ConvertPattern() - tips, index) << c.count << " tips, order " << c.order;
            brush.ResetPatternState();
        }
        // A list that became shorter under way.
        for (int i = 0; i < 3; ++i)
            brush.ConvertPattern();
        pattern.patternCount = 2;
        brush.SetPatternParam(pattern);
        for (int i = 0; i < 5; ++i)
            EXPECT_LT(brush.ConvertPattern() - tips, 2);
        pattern.patternCount = 0;
        brush.SetPatternParam(pattern);
        EXPECT_EQ(brush.ConvertPattern(), nullptr);
        pattern.patternCount = 1 << 30; // beyond the list: null entries, no crash
        brush.SetPatternParam(pattern);
        for (int i = 0; i < 100; ++i)
            brush.ConvertPattern();
    }
}

TEST(XCPatternDrawParam, RandomTipsRepeatAfterAReset) {
    XCPattern tips[7];
    PDPARAM_PATTERN pattern;
    for (int i = 0; i < 7; ++i)
        pattern.patterns[i] = &tips[i];
    pattern.patternCount = 7;
    pattern.patternOrder = 2;
    XCPatternDrawParam brush;
    brush.SetPatternParam(pattern);
    seed(brush);
    for (int pass = 0; pass < 2; ++pass) {
        ReferenceRandom random = ReferenceRandom::ofBrush(cnSeed);
        for (int i = 0; i < 20; ++i)
            EXPECT_EQ(brush.ConvertPattern() - tips, int(random.next() * 7));
        brush.ResetPatternState();
    }
}

TEST(XCPatternDrawParam, FireworkPlacesRings) {
    struct Case {
        int count, perRing;
        double inner;
    };
    for (const Case& c : {Case{10, 4, 0.1}, {8, 4, 0.5}, {3, 7, 0}, {256, 64, 0.1}}) {
        PDPARAM_AIRBRUSH airbrush = spray(1, c.count, 0, 0);
        xcSetRandomSeed(cnSeed);
        XCPatternDrawParam::AirbrushFixedPlot_FireWork(airbrush, c.perRing, c.inner);
        EXPECT_EQ(airbrush.sprayFlags, 1 | 4);
        ReferenceRandom random(cnSeed);
        const int rings = (c.count + c.perRing - 1) / c.perRing;
        const double step = 360.0 / c.perRing, width = (1 - c.inner) / rings;
        double degrees = 0;
        for (int i = 0; i < c.count; ++i) {
            const int ring = i / c.perRing;
            if (ring > 0 && i % c.perRing == 0)
                degrees += step / 2;
            const double radius = ring * width + c.inner - width / 2 + random.next() * width;
            EXPECT_NEAR(airbrush.fixedPlots[i].x, std::cos(degrees * cnPi / 180) * radius, 1e-9) << i;
            EXPECT_NEAR(airbrush.fixedPlots[i].y, std::sin(degrees * cnPi / 180) * radius, 1e-9) << i;
            degrees += step;
        }
        if (c.count < 256) {
            EXPECT_EQ(airbrush.fixedPlots[c.count].x, 0);
        }
    }
    for (const auto& [count, perRing] : {std::pair{5, 0}, {5, -3}, {0, 4}, {-5, 4}, {100000, 64}, {2147483647, 1}}) {
        PDPARAM_AIRBRUSH airbrush = spray(1, count, 0, 0);
        XCPatternDrawParam::AirbrushFixedPlot_FireWork(airbrush, perRing, 0.1);
        EXPECT_EQ(airbrush.sprayFlags, 1 | 4);
        EXPECT_EQ(airbrush.fixedPlots[0].x == 0 && airbrush.fixedPlots[0].y == 0, count < 1 || perRing < 1);
    }
}

TEST(XCPatternDrawParam, RecordsAreInitialisedOneByOne) {
    XCPatternDrawParam brush;
    brush.SetEtcParam({0, 2, 3, 4, 5});
    brush.SetDrawColor(0x12345678);
    brush.SetSizeParam({77, 1, 2});
    brush.InitSizeParam();
    PDPARAM_SIZE size;
    PDPARAM_COLOR color;
    brush.GetSizeParam(size);
    brush.GetColorParam(color);
    EXPECT_EQ(size.size, 1);
    EXPECT_EQ(color.drawColor, 0x12345678u);
    EXPECT_EQ(brush.IsOverSampling(), 0);
    brush.InitParam();
    brush.GetColorParam(color);
    EXPECT_EQ(color.drawColor, 0xFF000000u);
    EXPECT_EQ(brush.IsOverSampling(), 1);
}

TEST(XCPatternDrawParam, EveryControlFieldIsLookedAt) {
    using Brush = XCPatternDrawParam;
    PDPARAM_AIRBRUSH width;
    width.sprayWidthControl = 64;
    const std::function<void(Brush&)> setters[] = {
        // clang-format off
        [](Brush& b) { b.SetSizeParam({1, 0, 64}); },
        [](Brush& b) { b.SetColorParam({0, 0, 255, 0, 64}); },
        [](Brush& b) { b.SetHardnessParam({255, 0, 64}); },
        [](Brush& b) { b.SetMixColorParam({255, 0, 64, 255, 0, 0, 50}); },
        [](Brush& b) { b.SetMixColorParam({255, 0, 0, 255, 0, 64, 50}); },
        [](Brush& b) { b.SetSizeRateParam({1, 1, 64}); },
        [](Brush& b) { b.SetRotateParam({0, 0, 0, 64}); },
        [](Brush& b) { b.SetIntervalParam({2, 30, 100, 64, 2}); },
        [](Brush& b) { b.SetAirbrushParam(spray(0, 1, 1, 64)); },
        [&](Brush& b) { b.SetAirbrushParam(width); },
        // clang-format on
    };
    EXPECT_EQ(XCPatternDrawParam().IsUseParamControl(-1), 0);
    for (const auto& set : setters) {
        XCPatternDrawParam brush;
        set(brush);
        EXPECT_EQ(brush.IsUseParamControl(64), 1);
        EXPECT_EQ(brush.IsUseParamControl(64 | 2), 1);
        EXPECT_EQ(brush.IsUseParamControl(2 | 32), 0);
    }
}

TEST(XCPatternDrawParam, OpaqueBrushes) {
    XCPatternDrawParam brush;
    EXPECT_EQ(brush.IsOpaquePattern(), 1);
    PDPARAM_PATTERN pattern;
    for (const int kind : {XCPattern::cnKindCircle, XCPattern::cnKindRect, XCPattern::cnKindPolygon}) {
        pattern.patternKind = kind;
        brush.SetPatternParam(pattern);
        for (const PDPARAM_HARDNESS& hardness : {PDPARAM_HARDNESS{254, 0, 0}, PDPARAM_HARDNESS{255, 0, 2}}) {
            brush.SetHardnessParam(hardness);
            EXPECT_EQ(brush.IsOpaquePattern(), int(kind != XCPattern::cnKindCircle));
        }
        brush.InitHardnessParam();
        for (const PDPARAM_COLOR& color : {PDPARAM_COLOR{0, 0, 254, 0, 0}, PDPARAM_COLOR{0, 0, 255, 0, 2}}) {
            brush.SetColorParam(color);
            EXPECT_EQ(brush.IsOpaquePattern(), 0);
        }
        brush.InitColorParam();
        EXPECT_EQ(brush.IsOpaquePattern(), 1);
    }
}

} // namespace
