#include "ovwcmn/xcfastpixelmixer.h"

#include "easel.h"

#include "ovwcmn/xccoloraverage.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <optional>

namespace {

using Mixer = XCFastPixelMixer;
using ovw::test::cnBelow;
using ovw::test::cnPaint;
using ovw::test::Easel;
using ovw::test::TestImage;
using ovw::test::TestStore;
using ovw::test::withAlpha;

constexpr std::uint32_t cnUntouched = 0x4D2864D2;

/// What one pixel becomes under the paint.
std::uint32_t painted(int depth, int composition, std::uint32_t before, float opacity, bool isMasked) {
    Easel easel(depth);
    TestImage mask(easel.store(), 8, 400, 40);
    XCVOffscreenAutoLock lock(mask.get(), 1);
    mask.setValue(0, 0, 255);
    easel.destination().setValue(0, 0, before);
    easel.mixer.SetDrawCompositioin(composition);
    easel.mixer.SetMixAlpha(opacity);
    if (isMasked)
        easel.mixer.SetMask(mask.get(), XCPoint(0, 0));
    easel.paint(0, 0);
    return easel.value(0);
}

/// What one pixel becomes in a stroke. No value: the block was empty before the stroke, and the destination holds
/// `untouched`.
std::uint32_t stroked(int depth, int composition, std::optional<std::uint32_t> before, float opacity,
                      std::uint32_t untouched = 0) {
    Easel easel(depth, true);
    if (before)
        easel.set(0, *before);
    else
        easel.destination().setValue(0, 0, untouched);
    easel.mixer.SetDrawCompositioin(composition);
    easel.mixer.SetMixAlpha(opacity);
    easel.paint(0, 0);
    return easel.value(0);
}

// Without a cache, opacity 1/2. Direct (with a mask): 16384 of 32768. Fastest: 127 of 255.
struct Direct32 {
    const char* name;
    int composition;
    std::uint32_t directOpaque, directHalf, directClear, fastestOpaque, fastestHalf, fastestClear;
};
// clang-format off
const Direct32 s_direct32[] = {
    {"Replace",     0, 0x7F8DC85A, 0x7F8DC85A, 0x7F8DC85A, 0x7F8DC85A, 0x7F8DC85A, 0x7F8DC85A},
    {"Normal",      1, 0xFF5B9696, 0xBF6BA782, 0x7F8DC85A, 0xFF5A9596, 0xBF6BA682, 0x7F8DC85A},
    {"Erase",       2, 0x802864D2, 0x402864D2, 0x002864D2, 0x802864D2, 0x402864D2, 0x002864D2},
    {"DarkenStep",  3, 0xFF0F4BB9, 0x800F4BB9, 0x002864D2, 0xFF0F4BB9, 0x800F4BB9, 0x002864D2},
    {"LightenStep", 4, 0xFF417DEB, 0x80417DEB, 0x002864D2, 0xFF417DEB, 0x80417DEB, 0x002864D2},
    {"none",       19, 0xFF2864D2, 0x802864D2, 0x002864D2, 0xFF2864D2, 0x802864D2, 0x002864D2},
    {"negative",   -1, 0xFF2864D2, 0x802864D2, 0x002864D2, 0xFF2864D2, 0x802864D2, 0x002864D2},
};

struct Direct8 {
    const char* name;
    int composition;
    std::uint32_t direct0, direct100, direct240, fastest0, fastest100, fastest240, directColor, fastestColor;
};
const Direct8 s_direct8And24[] = { // densities 0, 100, 240; then 24 bits
    {"Replace",     0, 127, 127, 127, 127, 127, 127, 0x8DC85A, 0x8DC85A},
    {"Normal",      1, 128, 178, 248, 127, 177, 247, 0x5B9696, 0x5A9596},
    {"Erase",       2,   0,  50, 120,   0,  50, 120, 0x2864D2, 0x2864D2},
    {"DarkenStep",  3,   0, 125, 255,   0, 125, 255, 0x0F4BB9, 0x0F4BB9},
    {"LightenStep", 4,   0,  75, 215,   0,  75, 215, 0x417DEB, 0x417DEB},
    {"none",       19,   0, 100, 240,   0, 100, 240, 0x2864D2, 0x2864D2},
};

// In a stroke, opacity 1/4 or full.
struct Stroke32 {
    const char* name;
    int composition;
    std::uint32_t opaque, opaqueFull, half, clear, emptyBlock;
};
const Stroke32 s_stroke32[] = {
    {"Replace",     0, 0xFF2864D2, 0xFF2864D2, 0x802864D2, 0x002864D2, 0x3F8DC85A},
    {"Normal",      1, 0xFF417DB4, 0xFF8DC85A, 0x9F508CA2, 0x3F8DC85A, 0x3F8DC85A},
    {"Erase",       2, 0xBF2864D2, 0x002864D2, 0x602864D2, 0x002864D2, cnUntouched},
    {"DarkenStep",  3, 0xFF1C58C6, 0xFF00319F, 0x801C58C6, 0x002864D2, cnUntouched},
    {"LightenStep", 4, 0xFF3470DE, 0xFF5B97FF, 0x803470DE, 0x002864D2, cnUntouched},
    {"Multiply",    6, 0xFF245FB0, 0xFF164E4A, 0xA038749F, 0x3F8DC85A, 0x3F8DC85A},
    {"Add",         8, 0xFF4B96E9, 0xFFB5FFFF, 0x804B96E9, 0x002864D2, cnUntouched},
    {"Lighten",     9, 0xFF2864D2, 0xFF8DC8D2, 0x802864D2, 0x002864D2, cnUntouched},
    {"Darken",     10, 0xFF2864B4, 0xFF28645A, 0x802864B4, 0x002864D2, cnUntouched},
    {"ColorBurn",  11, 0xFF0D5BC9, 0xFF00397F, 0x800D5BC9, 0x002864D2, cnUntouched},
    {"ColorDodge", 12, 0xFF348BDD, 0xFF59FFFF, 0x80348BDD, 0x002864D2, cnUntouched},
    {"Screen",     13, 0xFF4682D6, 0xFF9FDEE2, 0x804682D6, 0x002864D2, cnUntouched},
    {"Overlay",    14, 0xFF2972CF, 0xFF2C9DC5, 0x802972CF, 0x002864D2, cnUntouched},
    {"Difference", 15, 0xFF0532BB, 0xFF656478, 0x800532BB, 0x002864D2, cnUntouched},
    {"SoftLight",  16, 0xFF2A6ECF, 0xFF2F8CC7, 0x802A6ECF, 0x002864D2, cnUntouched},
    {"HardLight",  17, 0xFF2E7AC3, 0xFF3FBC94, 0xC05794CB, 0x40FFFFEC, 0x40FFFFEC},
    {"AddFade",    18, 0xFF4B8BDD, 0xFFB5FFFF, 0x804B8BDD, 0x002864D2, cnUntouched},
    {"none",       19, 0xFF2864D2, 0xFF2864D2, 0x802864D2, 0x002864D2, cnUntouched},
};

struct Stroke8 {
    const char* name;
    int composition;
    std::uint32_t quarter[4], full[4], emptyBlock;
};
const Stroke8 s_stroke8[] = { // densities 0, 100, 200, 255
    {"Replace",     0, { 0, 100, 200, 255}, {  0, 100, 200, 255}, 64},
    {"Normal",      1, {64, 139, 214, 255}, {255, 255, 255, 255}, 64},
    {"Erase",       2, { 0,  75, 150, 191}, {  0,   0,   0,   0},  0},
    {"DarkenStep",  3, { 0, 112, 212, 255}, {  0, 151, 251, 255},  0},
    {"LightenStep", 4, { 0,  88, 188, 243}, {  0,  49, 149, 204},  0},
    {"Multiply",    6, {64, 139, 214, 255}, {255, 255, 255, 255}, 64},
    {"Add",         8, { 0,  37, 137, 192}, {  0,   0,   0,   0},  0},
    {"Lighten",     9, { 0, 100, 191, 191}, {  0,   0,   0,   0},  0},
    {"Darken",     10, {63, 100, 200, 255}, {255, 255, 255, 255}, 63},
    {"ColorBurn",  11, {63, 163, 255, 255}, {255, 255, 255, 255}, 63},
    {"ColorDodge", 12, { 0,  37, 137, 192}, {  0,   0,   0,   0},  0},
    {"Screen",     13, { 0,  75, 150, 191}, {  0,   0,   0,   0},  0},
    {"Overlay",    14, { 0, 125, 214, 255}, {  0, 200, 255, 255},  0},
    {"Difference", 15, {63,  37, 137, 192}, {255, 155,  55,   0}, 63},
    {"SoftLight",  16, { 0, 115, 211, 255}, {  0, 161, 243, 255},  0},
    {"HardLight",  17, {64, 139, 214, 255}, {255, 255, 255, 255}, 64},
    {"AddFade",    18, { 0,  37, 137, 192}, {  0,   0,   0,   0},  0},
    {"none",       19, { 0, 100, 200, 255}, {  0, 100, 200, 255},  0},
};
// clang-format on

} // namespace

TEST(FastPixelMixer, CompositionsOf32BitsWithoutACache) {
    for (const Direct32& row : s_direct32) {
        SCOPED_TRACE(row.name);
        auto paint = [&](std::uint32_t alpha, bool isMasked) {
            return painted(32, row.composition, withAlpha(cnBelow, alpha), 0.5f, isMasked);
        };
        EXPECT_EQ(paint(255, true), row.directOpaque);
        EXPECT_EQ(paint(128, true), row.directHalf);
        EXPECT_EQ(paint(0, true), row.directClear);
        EXPECT_EQ(paint(255, false), row.fastestOpaque);
        EXPECT_EQ(paint(128, false), row.fastestHalf);
        EXPECT_EQ(paint(0, false), row.fastestClear);
    }
}

TEST(FastPixelMixer, CompositionsOf8And24BitsWithoutACache) {
    for (const Direct8& row : s_direct8And24) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(painted(8, row.composition, 0, 0.5f, true), row.direct0);
        EXPECT_EQ(painted(8, row.composition, 100, 0.5f, true), row.direct100);
        EXPECT_EQ(painted(8, row.composition, 240, 0.5f, true), row.direct240);
        EXPECT_EQ(painted(8, row.composition, 0, 0.5f, false), row.fastest0);
        EXPECT_EQ(painted(8, row.composition, 100, 0.5f, false), row.fastest100);
        EXPECT_EQ(painted(8, row.composition, 240, 0.5f, false), row.fastest240);
        EXPECT_EQ(painted(24, row.composition, cnBelow, 0.5f, true), row.directColor);
        EXPECT_EQ(painted(24, row.composition, cnBelow, 0.5f, false), row.fastestColor);
    }
}

TEST(FastPixelMixer, CompositionsOf32BitsInAStroke) {
    for (const Stroke32& row : s_stroke32) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(stroked(32, row.composition, withAlpha(cnBelow, 255), 0.25f), row.opaque);
        EXPECT_EQ(stroked(32, row.composition, withAlpha(cnBelow, 255), 1), row.opaqueFull);
        EXPECT_EQ(stroked(32, row.composition, withAlpha(cnBelow, 128), 0.25f), row.half);
        EXPECT_EQ(stroked(32, row.composition, withAlpha(cnBelow, 0), 0.25f), row.clear);
        EXPECT_EQ(stroked(32, row.composition, std::nullopt, 0.25f, cnUntouched), row.emptyBlock);
    }
}

TEST(FastPixelMixer, CompositionsOf8BitsInAStroke) {
    constexpr std::uint32_t cnDensities[] = {0, 100, 200, 255};
    for (const Stroke8& row : s_stroke8)
        for (int i = 0; i < 4; ++i) {
            SCOPED_TRACE(row.name);
            EXPECT_EQ(stroked(8, row.composition, cnDensities[i], 0.25f), row.quarter[i]) << cnDensities[i];
            EXPECT_EQ(stroked(8, row.composition, cnDensities[i], 1), row.full[i]) << cnDensities[i];
            EXPECT_EQ(stroked(8, row.composition, std::nullopt, 0.25f), row.emptyBlock);
        }
}

TEST(FastPixelMixer, AStrokeOn24BitsIsNormalWhateverTheComposition) {
    for (int composition : {0, 1, 3, 6, 8, 11, 15, 18}) {
        EXPECT_EQ(stroked(24, composition, cnBelow, 0.25f), 0x417DB4u) << composition;
        EXPECT_EQ(stroked(24, composition, std::nullopt, 0.25f, cnBelow), 0xE3F1D6u) << composition; // over white
    }
}

TEST(FastPixelMixer, BitsTakeInkWhiteOrNothing) {
    for (bool isMasked : {false, true}) {
        EXPECT_EQ(painted(1, Mixer::Normal, 0, 0.5f, isMasked), 1u);
        EXPECT_EQ(painted(1, Mixer::DarkenStep, 0, 0.5f, isMasked), 1u);
        EXPECT_EQ(painted(1, Mixer::Erase, 1, 0.5f, isMasked), 0u);
        EXPECT_EQ(painted(1, Mixer::Multiply, 0, 0.5f, isMasked), 0u);
        EXPECT_EQ(painted(2, Mixer::Normal, 0, 0.5f, isMasked), 3u); // red below 128 is black
        EXPECT_EQ(painted(2, Mixer::Erase, 3, 0.5f, isMasked), 0u);
    }
    Easel easel(2);
    easel.mixer.SetColor(0xFF000080);
    easel.paint(0, 0);
    EXPECT_EQ(easel.value(0), 2u);
}

TEST(FastPixelMixer, DitherSetsThePixelsUpToTheOpacity) {
    Easel easel(1, true);
    easel.mixer.SetStyle(Mixer::STYLE_DITHER | Mixer::STYLE_CACHE_MAX);
    easel.mixer.SetMixAlpha(16512 / 32768.0f); // (16512 - 1) >> 7 = 128
    int n = 0;
    for (int y = 0; y < 16; ++y) {
        easel.paint(0, 15, y);
        for (int x = 0; x < 16; ++x)
            n += int(easel.value(x, y));
    }
    EXPECT_EQ(n, 129);
    EXPECT_EQ(easel.value(0, 0), 1u); // entry 0
    EXPECT_EQ(easel.value(1, 0), 1u); // entry 128
    EXPECT_EQ(easel.value(3, 0), 0u); // entry 160
    EXPECT_EQ(easel.value(0, 1), 0u); // entry 192
}

TEST(FastPixelMixer, CacheAccumulatesUpToTheColorsAlpha) {
    struct Row {
        const char* name;
        std::uint32_t style;
        int alpha;
        std::uint32_t afterOne, afterTwo, afterThree;
    };
    const Row rows[] = {
        {"over", Mixer::STYLE_CACHE_OVER, 255, 16384, 24576, 28672},
        {"over, thin colour", Mixer::STYLE_CACHE_OVER, 100, 6425, 11590, 12850}, // A15 = 12850
        {"max", Mixer::STYLE_CACHE_MAX, 255, 16384, 16384, 16384},
        {"add", Mixer::STYLE_CACHE_ADD, 255, 16384, 32768, 32768},
        {"add, thin colour", Mixer::STYLE_CACHE_ADD, 100, 6425, 12850, 12850},
        {"none", 0, 255, 0, 0, 0},
        {"over before max before add", 0x70, 255, 16384, 24576, 28672},
        {"max before add", 0x50, 255, 16384, 16384, 16384},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Easel easel(32, true);
        easel.mixer.SetStyle(row.style);
        easel.mixer.SetColor(std::uint8_t(row.alpha), 90, 200, 141);
        easel.mixer.SetCacheAlpha(0.5f);
        for (std::uint32_t expected : {row.afterOne, row.afterTwo, row.afterThree}) {
            easel.paint(0, 0);
            EXPECT_EQ(easel.cache().value(0, 0), expected);
        }
    }
}

TEST(FastPixelMixer, TheSameDabTwiceUnderMaxChangesNothing) {
    Easel easel(32, true);
    easel.set(0, withAlpha(cnBelow, 200));
    easel.mixer.SetStyle(Mixer::STYLE_CACHE_MAX);
    easel.mixer.SetCacheAlpha(0.3f);
    easel.paint(0, 0);
    std::uint32_t once = easel.value(0);
    EXPECT_NE(once, withAlpha(cnBelow, 200));
    easel.paint(0, 0);
    EXPECT_EQ(easel.value(0), once);
}

TEST(FastPixelMixer, AntiAliasScalesTheAlphaInForceFromItsBase) {
    Easel cached(32, true);
    cached.mixer.SetStyle(Mixer::STYLE_CACHE_MAX);
    cached.mixer.SetCacheAlpha(0.5f);
    cached.mixer.SetMixAlpha(0.25f);
    cached.mixer.ScaleAntiAlpha(0.25f);
    cached.mixer.ScaleAntiAlpha(0.5f);
    cached.paint(0, 0);
    EXPECT_EQ(cached.cache().value(0, 0), 8192u);
    EXPECT_EQ(cached.value(0) >> 24, 15u); // (8192 / 4 - 1) >> 7

    Easel plain(8);
    plain.mixer.SetDrawCompositioin(Mixer::Replace);
    plain.mixer.SetMixAlpha(0.5f);
    plain.mixer.SetCacheAlpha(0.75f);
    plain.mixer.ScaleAntiAlpha(0.5f);
    plain.paint(0, 0);
    EXPECT_EQ(plain.value(0), 63u); // 255 * 8192 >> 15
}

TEST(FastPixelMixer, OpacitiesOutOfRangeAreClamped) {
    struct Row {
        float alpha;
        std::uint32_t expected;
    };
    constexpr float cnNaN = std::numeric_limits<float>::quiet_NaN();
    constexpr float cnInfinity = std::numeric_limits<float>::infinity();
    for (Row row :
         {Row{-0.5f, 0}, Row{-1e30f, 0}, Row{cnNaN, 0}, Row{1.5f, 255}, Row{1e30f, 255}, Row{cnInfinity, 255}}) {
        EXPECT_EQ(painted(8, Mixer::Replace, 0, row.alpha, false), row.expected) << row.alpha;
        EXPECT_EQ(painted(8, Mixer::Replace, 0, row.alpha, true), row.expected) << row.alpha;
        Easel easel(8);
        easel.mixer.SetDrawCompositioin(Mixer::Replace);
        easel.mixer.ScaleAntiAlpha(row.alpha);
        easel.paint(0, 0);
        EXPECT_EQ(easel.value(0), row.expected) << row.alpha;
        Easel cached(8, true);
        cached.mixer.SetCacheAlpha(row.alpha);
        cached.paint(0, 0);
        EXPECT_EQ(cached.value(0), row.expected) << row.alpha;
    }
}

TEST(FastPixelMixer, KeptAlphaIsNeverWritten) {
    for (int composition = 0; composition <= 18; ++composition)
        for (bool hasCache : {false, true})
            for (std::uint32_t alpha : {0u, 128u, 255u}) {
                Easel easel(32, hasCache, hasCache);
                XCColorAverage average;
                easel.mixer.SetColorAverage(&average);
                easel.mixer.SetNotChangeAlpha(1);
                easel.mixer.SetDrawCompositioin(composition);
                easel.mixer.SetMixAlpha(0.5f);
                easel.set(0, withAlpha(cnBelow, alpha));
                easel.paint(0, 0);
                EXPECT_EQ(easel.value(0) >> 24, alpha) << composition << (hasCache ? " in a stroke" : "");
            }
}

TEST(FastPixelMixer, PaintsBothEndsOfARowAndNothingElse) {
    Easel easel(8);
    easel.paint(5, 7, 3);
    easel.paint(255, 255, 3);
    easel.paint(256, 256, 4);
    for (int y = 2; y <= 5; ++y)
        for (int x = 0; x < 400; ++x) {
            bool isInside = y == 3 ? (x >= 5 && x <= 7) || x == 255 : y == 4 && x == 256;
            ASSERT_EQ(easel.value(x, y), isInside ? 255u : 0u) << x << ", " << y;
        }
}

TEST(FastPixelMixer, LeavesOutWhatLiesOutsideTheBlock) {
    for (bool hasCache : {false, true}) {
        Easel easel(32, hasCache);
        easel.destination().fillRow(0, 400, 1, 0x11223344);
        easel.mixer.MoveCursorToBlock(0, 0);
        easel.mixer.DoLineRow(-10, 300, 1);
        easel.mixer.DoLineRow(std::numeric_limits<int>::min(), std::numeric_limits<int>::max(), 2);
        easel.mixer.DoLineRow(0, 10, -1);
        easel.mixer.DoLineRow(0, 10, 256);
        easel.mixer.DoLineRow(260, 270, 3);
        easel.mixer.DoLineRow(7, 6, 3);
        EXPECT_EQ(easel.value(0, 1), cnPaint);
        EXPECT_EQ(easel.value(255, 1), cnPaint);
        EXPECT_EQ(easel.value(256, 1), 0x11223344u);
        EXPECT_EQ(easel.value(255, 2), cnPaint);
        EXPECT_EQ(easel.value(7, 3), 0x00FFFFFFu);
    }
}

TEST(FastPixelMixer, SettingsThatLackAPartDrawNothing) {
    struct Row {
        const char* name;
        int composition;
        bool isSoft;
        void (*remove)(Mixer&);
    };
    const Row rows[] = {
        {"no destination", 1, false, [](Mixer& m) { m.SetDstOffscreen(nullptr); }},
        {"no image before the stroke", 1, false, [](Mixer& m) { m.SetCompositeOffscreen(nullptr); }},
        {"no plotter", 1, true, [](Mixer&) {}},
        {"no plotter, no cache", 1, true, [](Mixer& m) { m.SetCacheOffscreen(nullptr); }},
        {"water without a cache", 5, false, [](Mixer& m) { m.SetCacheOffscreen(nullptr); }},
        {"water without a colour cache", 5, false, [](Mixer& m) { m.SetCacheColorOffscreen(nullptr); }},
        {"water without an average", 7, false, [](Mixer& m) { m.SetColorAverage(nullptr); }},
        {"water without an image before", 7, false, [](Mixer& m) { m.SetCompositeOffscreen(nullptr); }},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Easel easel(32, true, true);
        XCColorAverage average;
        easel.set(0, withAlpha(cnBelow, 255));
        easel.mixer.SetColorAverage(&average);
        easel.mixer.SetDrawCompositioin(row.composition);
        easel.mixer.SetStyleFlag(Mixer::STYLE_GAUSS, row.isSoft);
        row.remove(easel.mixer);
        easel.paint(0, 200);
        EXPECT_EQ(easel.value(0), withAlpha(cnBelow, 255));
    }
}

TEST(FastPixelMixer, APlaceWithoutABlockDrawsNothing) {
    Easel easel(32, true);
    easel.set(0, withAlpha(cnBelow, 255));
    for (XCPoint outside : {XCPoint(-1, 0), XCPoint(400, 0), XCPoint(0, 40), XCPoint(-2000000000, 5)}) {
        easel.mixer.MoveCursorToBlock(outside.x, outside.y);
        easel.mixer.DoLineRow(0, 10, 0);
        easel.mixer.DoLineRow(outside.x, outside.x, outside.y);
    }
    EXPECT_EQ(easel.value(0), withAlpha(cnBelow, 255));

    TestStore store;
    TestImage image(store, 32, 100, 100);
    XCVOffscreenAutoLock lock(image.get(), 0);
    Mixer mixer;
    mixer.SetDstOffscreen(image.get());
    mixer.SetColor(cnPaint);
    mixer.MoveCursorToBlock(5, 5);
    mixer.DoLineRow(5, 10, 5);
    EXPECT_EQ(image->IsBlockExist(), 0);
}

TEST(FastPixelMixer, DepthsWithoutAKernelAreLeftAlone) {
    EXPECT_EQ(painted(16, Mixer::Normal, 0x1234, 1, false), 0x1234u);
    EXPECT_EQ(painted(16, Mixer::Normal, 0x1234, 1, true), 0x1234u);
    EXPECT_EQ(stroked(16, Mixer::Normal, 0x1234, 1), 0x1234u);
    for (int depth : {1, 2, 16, 24}) {
        Easel easel(depth, true, true);
        XCColorAverage average;
        easel.mixer.SetColorAverage(&average);
        easel.mixer.SetDrawCompositioin(Mixer::Water);
        easel.set(0, 1);
        easel.paint(0, 0);
        EXPECT_EQ(easel.value(0), 1u) << depth;
        EXPECT_EQ(average.IsAverageColor(), 0) << depth;
    }
}

TEST(FastPixelMixer, MasksOfNoResolutionAreNotScaled) {
    Easel easel(8);
    TestImage mask(easel.store(), 8, 400, 40);
    XCVOffscreenAutoLock lock(mask.get(), 1);
    mask.setValue(7, 2, 255);
    easel.destination()->SetResolution(0);
    easel.mixer.SetMask(mask.get(), XCPoint(-2, -1));
    easel.paint(0, 20, 1);
    for (int x = 0; x <= 20; ++x)
        EXPECT_EQ(easel.value(x, 1), x == 5 ? 255u : 0u) << x;
    Mixer alone;
    alone.SetMask(mask.get(), XCPoint(0, 0));
    alone.DoLineRow(0, 10, 0);
}

TEST(FastPixelMixer, TheDestinationMayBeItsOwnMask) {
    Easel easel(8);
    easel.destination().setValue(3, 0, 255);
    easel.destination().setValue(4, 0, 255);
    easel.destination().setValue(300, 0, 255);
    easel.mixer.SetDrawCompositioin(Mixer::Replace);
    easel.mixer.SetMixAlpha(0.5f);
    easel.mixer.SetMask(easel.destination().get(), XCPoint(-295, 0)); // pixel x reads pixel x + 295, in the next block
    easel.paint(0, 20, 0);
    for (int x = 0; x <= 20; ++x)
        EXPECT_EQ(easel.value(x), x == 5 ? 127u : x == 3 || x == 4 ? 255u : 0u) << x;
}

TEST(FastPixelMixer, TheDestinationMayBeItsOwnCloneSource) {
    for (int depth : {2, 8, 24, 32}) {
        Easel easel(depth);
        for (int x = 300; x < 320; ++x)
            easel.destination().setValue(x, 5,
                                         depth == 2    ? 2
                                         : depth == 24 ? 0x10101u * std::uint32_t(x - 200)
                                                       : 0xFF000000u + std::uint32_t(x));
        easel.mixer.SetCloneOffscreen(easel.destination().get(), XCPoint(295, 4));
        easel.paint(0, 30, 1);
        for (int x = 0; x <= 30; ++x)
            EXPECT_EQ(easel.value(x, 1), easel.value(x + 295, 5)) << depth << " bits, " << x;
    }
}

TEST(FastPixelMixer, ReadingFromTheDestinationCreatesNoBlocks) {
    Easel easel(8);
    XCVOffscreen& image = *easel.destination().get();
    easel.mixer.SetCloneOffscreen(&image, XCPoint(300, 0));
    easel.paint(0, 30);
    easel.mixer.SetCloneOffscreen(nullptr, XCPoint());
    easel.mixer.SetMask(&image, XCPoint(-300, 0));
    easel.paint(0, 30);
    EXPECT_TRUE(image.GetBlockExist(0));
    EXPECT_FALSE(image.GetBlockExist(1));
    EXPECT_FALSE(image.CheckBlockEdited(1));
}

TEST(FastPixelMixer, CopiesOfAMixerPaintAlike) {
    Easel easel(32, true);
    easel.set(0, withAlpha(cnBelow, 128));
    easel.set(1, withAlpha(cnBelow, 128));
    easel.mixer.SetMixAlpha(0.25f);
    easel.mixer.MoveCursorToBlock(0, 0);
    Mixer copy = easel.mixer;
    easel.mixer.DoLineRow(0, 0, 0);
    copy.DoLineRow(1, 1, 0);
    EXPECT_EQ(easel.value(1), easel.value(0));
    EXPECT_EQ(easel.value(1), 0x9F508CA2u);
}
