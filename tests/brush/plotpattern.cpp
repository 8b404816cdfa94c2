#include "mixing/randomcases.h"
#include "ovwcmn/xcpatterndraw.h"
#include "ovwcmn/xcplotgauss.h"
#include "studio.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

namespace {

using namespace ovw::test;

PLOTPATTERNPARAM stampOf(XCPattern* tip, double x, double y, float size) {
    PLOTPATTERNPARAM stamp;
    stamp.pattern = tip;
    stamp.color = 0xFF8DC85A;
    stamp.x = x;
    stamp.y = y;
    stamp.size = size;
    stamp.opacity = 255;
    stamp.hardness = 255;
    stamp.sizeScale = stamp.opacityScale = stamp.hardnessScale = stamp.intervalRatio = 1;
    stamp.sizeFixed = stamp.hardnessFixed = 1;
    stamp.overSampling = 1;
    return stamp;
}

/// Paints a stamp of a circle tip into the target with a mixer that is set up step by step.
void plotByHand(TestImage& target, TestImage& cache, TestImage& before, const Method& method,
                const PLOTPATTERNPARAM& stamp) {
    float a = stamp.opacityScale, s = stamp.sizeScale * stamp.size, h = float(stamp.hardness) * stamp.hardnessScale;
    const bool isDeep = target.depth() >= 8, maySoften = isDeep || method.lowDepthSoft;
    const bool isSoft = maySoften && h < 255;
    if (isSoft && s < 4 && h < 252.45f) {
        const float harder = s > 2 ? (4 - s) * (252.45f - h) * 0.5f + h : 252.45f;
        a *= (300 - harder) / (300 - h);
        h = harder;
    }
    if ((stamp.overSampling || isSoft) && s < 1.8f) {
        a *= s / 1.8f;
        s = 1.8f;
    }
    const std::uint32_t alpha = stamp.color >> 24;
    const bool isDirect =
        !(maySoften && (isSoft || stamp.opacity < 255 || stamp.opacityScale < 1 || (alpha > 0 && alpha < 255)));

    XCFastPixelMixer mixer;
    XCPlotGauss gauss;
    mixer.SetDstOffscreen(target.get());
    mixer.SetDrawCompositioin(method.kind == 1 && !method.useCache ? 0 : method.kind);
    mixer.SetColor(method.kind == 2 ? 0xFF000000 : stamp.color);
    if (method.useCache) {
        mixer.SetCacheOffscreen(cache.get());
        mixer.SetCompositeOffscreen(before.get());
        if (method.densityFlag && !(isDirect && !isDeep)) {
            if (method.cacheKind == 0 && stamp.intervalRatio < 0.33f)
                a *= stamp.intervalRatio * 3;
            if (method.cacheKind == 1 && stamp.intervalRatio < 0.2f)
                a *= stamp.intervalRatio * 4.5f + 0.1f;
        }
        const std::uint32_t styles[] = {0x20, 0x20, 0x10, 0x40};
        mixer.SetStyleFlag(styles[method.cacheKind], 1);
        mixer.SetCacheAlpha(method.cacheKind == 0 ? float(stamp.opacity) * a / 255 : a);
        if (method.cacheKind != 0)
            mixer.SetMixAlpha(float(stamp.opacity) / 255);
    } else {
        mixer.SetMixAlpha(float(stamp.opacity) * a / 255);
    }
    if (!isDeep && !isDirect)
        mixer.SetStyleFlag(XCFastPixelMixer::STYLE_DITHER, 1);
    if (isSoft) {
        const float f = (255 - h) * 0.75f / 255 + 1;
        gauss.StartPlot(XCPointD(stamp.x, stamp.y), stamp.size * f * 0.5f, s * f * 0.5f, h / 255, stamp.sizeFixed,
                        stamp.hardnessFixed);
        mixer.SetStyleFlag(XCFastPixelMixer::STYLE_GAUSS, 1);
        mixer.SetPlotGauss(&gauss);
    }
    stamp.pattern->Draw(nullptr, target.get(), &mixer, XCPointD(stamp.x, stamp.y), s, 1, isDeep && stamp.overSampling);
}

/// How far two images are apart in any channel.
int largestDifference(const Pixels& a, const Pixels& b) {
    int result = 0;
    for (std::size_t i = 0; i < a.values.size(); ++i)
        for (int shift = 0; shift < 32; shift += 8)
            result = std::max(result, std::abs(int(a.values[i] >> shift & 255) - int(b.values[i] >> shift & 255)));
    return result;
}

const Method s_methods[] = {
    {},
    {.kind = 2},
    {.lowDepthSoft = 1},
    {.useCache = 1, .cacheKind = 0, .densityFlag = 1, .lowDepthSoft = 1},
    {.useCache = 1, .cacheKind = 1, .densityFlag = 1},
    {.useCache = 1, .cacheKind = 2, .densityFlag = 1, .lowDepthSoft = 1},
    {.useCache = 1, .kind = 2, .cacheKind = 3},
};

TEST(XCPatternDrawPlot, StampsAsTheMixerDrivenByHand) {
    Random random(5);
    for (const Method& method : s_methods) {
        for (const int depth : cnAllDepths) {
            Studio studio(depth, method), hand(depth);
            studio.fill(depth == 1 ? 0 : 0x782864D2 & (depth == 8 ? 0xFF : 0xFFFFFFFF));
            hand.fill(studio.image.value(0, 0));
            TestImage cache(sharedStore(), 16, Studio::cnWidth, Studio::cnHeight);
            XCVOffscreenAutoLock locks[] = {{hand.image.get(), 1}, {cache.get(), 1}, {hand.before.get(), 0}};
            XCCirclePattern tip;
            studio.begin();
            for (int i = 0; i < 40; ++i) {
                PLOTPATTERNPARAM stamp = stampOf(&tip, 20.5 + i % 8 * 62, 30 + i / 8 * 90.25, 1);
                stamp.size = float(random.chance(2) ? random.real(0.2, 5) : random.real(5, 60));
                stamp.sizeScale = float(random.real(0.4, 1));
                stamp.hardness = random.pick({0, 100, 200, 252, 253, 255, 255});
                stamp.opacity = random.pick({255, 255, 128, 30});
                stamp.opacityScale = random.pick({1.0f, 1.0f, 0.5f});
                stamp.intervalRatio = random.pick({1.0f, 0.25f, 0.1f});
                stamp.color = random.pick({0xFF8DC85Au, 0x808DC85Au});
                stamp.overSampling = random.number(0, 1);
                stamp.sizeFixed = random.number(0, 1);
                EXPECT_EQ(studio.engine.PlotPattern(nullptr, stamp, 1, 0), 1);
                plotByHand(hand.image, cache, hand.before, method, stamp);
            }
            EXPECT_TRUE(isSame(studio.pixels(), hand.pixels()))
                << depth << " bits, kind " << method.kind << ", cache " << method.useCache << method.cacheKind
                << ", apart by " << largestDifference(studio.pixels(), hand.pixels());
        }
    }
}

RecordingTip::Stamp plotted(float size, int hardness, int overSampling, int depth, int lowDepthSoft, int kind) {
    Studio studio(depth, {.lowDepthSoft = lowDepthSoft});
    RecordingTip tip;
    tip.kind = kind;
    PLOTPATTERNPARAM stamp = stampOf(&tip, 50, 50, size);
    stamp.hardness = hardness;
    stamp.overSampling = overSampling;
    studio.begin();
    XCRect changed;
    EXPECT_EQ(studio.engine.PlotPattern(&changed, stamp, 0.5f, 0), 1);
    return tip.stamps.at(0);
}

TEST(XCPatternDrawPlot, SmallStampsGrow) {
    EXPECT_FLOAT_EQ(plotted(1, 255, 1, 32, 0, 0).size, 1.8f);
    EXPECT_FLOAT_EQ(plotted(1, 255, 0, 32, 0, 0).size, 1);
    EXPECT_FLOAT_EQ(plotted(1, 200, 0, 32, 0, 0).size, 1.8f) << "soft";
    EXPECT_FLOAT_EQ(plotted(1, 200, 0, 32, 0, 1).size, 1) << "only circles are soft";
    EXPECT_FLOAT_EQ(plotted(1, 200, 0, 1, 0, 0).size, 1) << "not below 8 bits";
    EXPECT_FLOAT_EQ(plotted(1, 200, 0, 1, 1, 0).size, 1.8f);
    EXPECT_FLOAT_EQ(plotted(1, 255, 1, 1, 0, 0).size, 1.8f);
    EXPECT_FLOAT_EQ(plotted(3, 0, 1, 32, 0, 0).size, 3);
    EXPECT_EQ(plotted(9, 255, 1, 32, 0, 0).antialias, 1);
    EXPECT_EQ(plotted(9, 255, 1, 1, 1, 0).antialias, 0);
    EXPECT_EQ(plotted(9, 255, 0, 32, 0, 0).antialias, 0);
    EXPECT_EQ(plotted(9, 255, 0, 32, 0, 0).pressure, 0.5f);
}

TEST(XCPatternDrawPlot, SmallOversampledStampsPaleByTheirGrowth) {
    Studio studio(32, {.useCache = 1, .kind = 1, .cacheKind = 1});
    XCCirclePattern tip;
    studio.begin();
    // The pixel in the middle is covered to 0.9, the radius 0.9 being less than a pixel.
    EXPECT_EQ(studio.engine.PlotPattern(nullptr, stampOf(&tip, 50, 50, 1.0f), 1, 0), 1);
    EXPECT_NEAR(double(studio.image.value(50, 50) >> 24), 255 / 1.8, 1);
}

TEST(XCPatternDrawPlot, WithoutOpacityNothingIsDrawn) {
    Studio studio(32);
    RecordingTip tip;
    PLOTPATTERNPARAM stamp = stampOf(&tip, 50, 50, 20);
    stamp.opacity = 0;
    studio.begin();
    EXPECT_EQ(studio.engine.PlotPattern(nullptr, stamp, 1, 0), 0);
    stamp = stampOf(nullptr, 50, 50, 20);
    EXPECT_EQ(studio.engine.PlotPattern(nullptr, stamp, 1, 0), 0);
    EXPECT_TRUE(tip.stamps.empty());
}

struct TipCase {
    const char* name;
    std::unique_ptr<XCPattern> (*make)();
    float sizeRate, rotation;
};

template <class Tip>
std::unique_ptr<XCPattern> makeTip() {
    return std::make_unique<Tip>();
}

const TipCase s_tips[] = {
    {"circle", makeTip<XCCirclePattern>, 1, 0},
    {"ellipse", makeTip<XCCirclePattern>, 0.4f, 0},
    {"turned ellipse", makeTip<XCCirclePattern>, 0.3f, 0.7f},
    {"needle", makeTip<XCCirclePattern>, 0.01f, -0.4f},
    {"square", makeTip<XCRectPattern>, 1, 0},
    {"rectangle", makeTip<XCRectPattern>, 0.5f, 1.1f},
    {"triangle", makeTip<XCPolygonPattern>, 1, 0},
    {"turned triangle", makeTip<XCPolygonPattern>, 0.8f, 2.5f},
};

const Method s_seamMethods[] = {
    {.lowDepthSoft = 1}, {.useCache = 1, .cacheKind = 1, .lowDepthSoft = 1}, {.useCache = 1, .cacheKind = 2}};

/// Stamps inside one tile, and 128 pixels further on both axes, across four; both must look the same.
void expectNoSeam(int depth, const Method& method, const TipCase& tipCase, PLOTPATTERNPARAM stamp) {
    constexpr int reach = 110;
    const std::unique_ptr<XCPattern> tip = tipCase.make();
    tip->SetParameter(tipCase.sizeRate, 1, tipCase.rotation);
    stamp.pattern = tip.get();
    Pixels looks[2];
    for (const int tile : {0, 1}) {
        const int shift = 128 * tile;
        Studio studio(depth, method);
        studio.begin();
        PLOTPATTERNPARAM moved = stamp;
        moved.x += shift;
        moved.y += shift;
        const Pixels before = studio.pixels();
        XCRect changed;
        EXPECT_EQ(studio.engine.PlotPattern(&changed, moved, 1, 0), 1);
        looks[tile] = pixelsOf(
            studio.image, XCRect(128 + shift - reach, 128 + shift - reach, 128 + shift + reach, 128 + shift + reach));
        // `changed` covers what was painted, and is no larger than the stamp's bounds grown by one.
        const XCRect painted = differenceOf(studio.pixels(), before);
        const double r = double(stamp.size) * 0.5 * (tip->kind == XCPattern::cnKindCircle ? 1 : std::sqrt(2.0)) + 3;
        EXPECT_TRUE(painted.IsRectEmpty() || (changed.left <= painted.left && changed.top <= painted.top &&
                                              changed.right >= painted.right && changed.bottom >= painted.bottom))
            << tipCase.name << " " << changed << " around " << painted;
        EXPECT_TRUE(changed.left >= moved.x - r && changed.top >= moved.y - r && changed.right <= moved.x + r + 1 &&
                    changed.bottom <= moved.y + r + 1)
            << tipCase.name << " " << changed << " size " << stamp.size;
    }
    EXPECT_TRUE(isSame(looks[1], looks[0])) << tipCase.name << ", " << depth << " bits, hardness " << stamp.hardness
                                            << ", size " << stamp.size << ", cache " << method.useCache;
}

TEST(XCPatternDrawPlot, NoSeamAtTileBorders) {
    Random random(77);
    for (const TipCase& tip : s_tips)
        for (const Method& method : s_seamMethods)
            for (const int depth : cnAllDepths)
                for (const int hardness : {255, 120, 0}) {
                    if (hardness < 255 && tip.make()->kind != XCPattern::cnKindCircle)
                        continue;
                    PLOTPATTERNPARAM stamp =
                        stampOf(nullptr, 128 + random.number(-320, 320) / 32.0, 128 + random.number(-320, 320) / 32.0,
                                float(random.pick({1, 7, 40, 130})));
                    stamp.hardness = hardness;
                    stamp.opacity = random.pick({255, 140});
                    stamp.overSampling = random.number(0, 3) > 0;
                    expectNoSeam(depth, method, tip, stamp);
                }
}

std::uint32_t alphaAt(const Studio& studio, int x, int y) { return studio.image.value(x, y) >> 24; }

TEST(XCPatternDrawPlot, CacheKeepsOverlappingStampsFromBuildingUp) {
    for (const int cacheKind : {0, 1, 2, 3}) {
        Studio studio(32, {.useCache = 1, .cacheKind = cacheKind});
        setRoundBrush(studio.brush, 40, 255, 128, 10);
        studio.draw({penAt(100, 100), penAt(200, 100)});
        if (cacheKind == 0) {
            EXPECT_GT(alphaAt(studio, 150, 100), 250u);
        } else {
            for (int x = 100; x <= 200; x += 10)
                EXPECT_NEAR(double(alphaAt(studio, x, 100)), 128, 1) << cacheKind;
        }
        // A second stroke, with the caches emptied, paints over the first.
        studio.method.ClearTempImage();
        for (int y = 80; y < 120; ++y)
            for (int x = 100; x < 200; ++x)
                studio.before.setValue(x, y, studio.image.value(x, y));
        studio.draw({penAt(100, 100), penAt(200, 100)});
        EXPECT_GT(alphaAt(studio, 150, 100), 180u);
    }
    Studio uncached(32, {.kind = 2});
    uncached.fill(0xFF2864D2);
    setRoundBrush(uncached.brush, 40, 255, 64, 25);
    uncached.draw({penAt(100, 100), penAt(200, 100)});
    EXPECT_LT(alphaAt(uncached, 150, 100), 128u) << "four stamps erase 1 - 0.75 ^ 4";
}

TEST(XCPatternDrawPlot, EraserTakesAlphaAway) {
    for (const int useCache : {0, 1}) {
        for (const int depth : {1, 8, 32}) {
            Studio studio(depth, {.useCache = useCache, .kind = 2, .cacheKind = 2});
            studio.fill(depth == 32 ? 0xFF2864D2 : depth == 8 ? 200 : 1);
            setRoundBrush(studio.brush, 30, 255, 255, 20);
            EXPECT_EQ(studio.draw({penAt(100, 100), penAt(300, 100)}), 1);
            const int shift = depth == 32 ? 24 : 0;
            EXPECT_EQ(studio.image.value(200, 100) >> shift, 0u) << depth << " bits, cache " << useCache;
            EXPECT_NE(studio.image.value(200, 130) >> shift, 0u);
        }
    }
}

TEST(XCPatternDrawMethod, KindsAndCaches) {
    EXPECT_EQ(Studio(32).method.GetMethodKind(), 0) << "1 becomes 0 without a cache";
    EXPECT_EQ(Studio(32, {.kind = 6}).method.GetMethodKind(), 6);
    Studio studio(32, {.useCache = 1, .kind = 1});
    XCPatternDrawMethod& method = studio.method;
    EXPECT_EQ(method.GetMethodKind(), 1);
    XCVOffscreen* const cache = method.GetCacheOffscreen();
    ASSERT_NE(cache, nullptr);
    EXPECT_EQ(cache->GetWidth(), Studio::cnWidth);
    EXPECT_EQ(method.GetCacheColorOffscreen(), nullptr);
    method.EndMethod();
    for (const int kind : {5, 7}) {
        method.SetOffscreen(studio.image.get(), 1, studio.before.get(), &studio.brush, kind, 1, 0, 0, 0);
        EXPECT_EQ(method.GetCacheOffscreen(), cache) << "kept";
        EXPECT_NE(method.GetCacheColorOffscreen(), nullptr);
    }
    TestImage small(sharedStore(), 32, 60, 70);
    method.SetOffscreen(small.get(), 1, small.get(), &studio.brush, 1, 1, 0, 0, 0);
    EXPECT_EQ(method.GetCacheOffscreen()->GetHeight(), 70);
    method.SetOffscreen(small.get(), 1, nullptr, &studio.brush, 1, 1, 0, 0, 0);
    EXPECT_EQ(method.GetMethodKind(), 1) << "a cache was asked for";
    method.SetOffscreen(small.get(), 0, small.get(), &studio.brush, 1, 1, 0, 0, 0);
    EXPECT_EQ(method.GetCacheOffscreen(), nullptr);
    EXPECT_EQ(method.GetMethodKind(), 0);
    EXPECT_EQ(method.BeginMethod(), 1);
    method.ReleaseOffscreen();
    EXPECT_EQ(method.GetOffscreen(), nullptr);
}

/// A brush that paints nothing but what it picks up.
void setSmudge(XCPatternDrawParam& brush) {
    setRoundBrush(brush, 20, 255, 255, 20);
    brush.SetMixColorParam({0, 0, 0, 0, 0, 0, 20});
}

TEST(XCPatternDrawMethod, SmudgingDragsColourAlong) {
    for (const int kind : {5, 7}) {
        Studio studio(32, {.useCache = 1, .kind = kind, .cacheKind = 1});
        studio.fill(0xFFFFFFFF);
        for (int y = 0; y < Studio::cnHeight; ++y) {
            studio.image.fillRow(0, 150, y, 0xFF0000C8); // red
            studio.before.fillRow(0, 150, y, 0xFF0000C8);
        }
        setSmudge(studio.brush);
        studio.draw({penAt(120, 100), penAt(220, 100)});
        const std::uint32_t dragged = studio.image.value(165, 100), far = studio.image.value(165, 150);
        EXPECT_EQ(far, 0xFFFFFFFFu);
        EXPECT_LT(dragged >> 8 & 255, 250u) << "kind " << kind << ": less green than white";
        EXPECT_EQ(dragged >> 24, 255u);
    }
}

TEST(XCPatternDrawMethod, SmudgingLoadsTheColourFirst) {
    for (const bool isMixing : {false, true}) {
        Studio studio(32, {.useCache = 1, .kind = 5, .cacheKind = 1});
        RecordingTip tip;
        setSmudge(studio.brush);
        if (!isMixing)
            studio.brush.InitMixColorParam();
        studio.brush.SetDesignatedPattern(&tip);
        studio.brush.SetIntervalParam({1, 8, 8, 0, 3});
        studio.draw({penAt(100, 100), penAt(164, 100)});
        EXPECT_EQ(tip.stamps.size(), 9u) << "a stroke begins with two at one place";
        EXPECT_EQ(tip.stamps[1].x, 100);
        tip.stamps.clear();
        const XCStrokePoint point = penAt(100, 100);
        studio.begin();
        studio.engine.DrawSinglePattern(nullptr, &point, 0.0);
        EXPECT_EQ(tip.stamps.size(), isMixing ? 2u : 1u);
    }
}

TEST(XCPatternDrawMethod, MaskTextureAndCloneReachTheMixer) {
    TestImage mask(sharedStore(), 1, Studio::cnWidth, Studio::cnHeight);
    Studio studio(32, {.useCache = 1, .cacheKind = 1});
    for (int y = 0; y < Studio::cnHeight; ++y)
        mask.fillRow(0, 150, y, 1);
    std::uint8_t texels[4] = {255, 0, 255, 0}; // 2 x 2: columns of full and no paint
    studio.method.EndMethod();
    studio.method.SetMaskOffscreen(mask.get(), XCPoint(-10, 0));
    studio.method.SetTextureImage(texels, 2, 2, XCPoint(0, 0), 0, 1, 0);
    studio.method.BeginMethod();
    EXPECT_EQ(studio.method.GetMaskOffset(), XCPoint(-10, 0));
    setRoundBrush(studio.brush, 40, 255, 255, 20);
    studio.draw({penAt(100, 100), penAt(300, 100)});
    EXPECT_NE(alphaAt(studio, 120, 100), alphaAt(studio, 121, 100)) << "texture";
    EXPECT_NE(alphaAt(studio, 138, 100) | alphaAt(studio, 139, 100), 0u);
    for (int x = 140; x < 300; ++x)
        EXPECT_EQ(alphaAt(studio, x, 100), 0u) << "masked: reads the mask at " << x + 10;

    TestImage source(sharedStore(), 32, Studio::cnWidth, Studio::cnHeight);
    Studio cloning(32);
    source.setValue(203, 107, 0xFF0000FF);
    cloning.method.EndMethod();
    cloning.method.SetCloneSrcOffscreen(source.get(), tagPOINT{100, 5});
    cloning.method.BeginMethod();
    setRoundBrush(cloning.brush, 40, 255, 255, 20);
    cloning.draw({penAt(100, 100), penAt(110, 100)});
    EXPECT_EQ(cloning.image.value(103, 102), 0xFF0000FFu);
}

} // namespace
