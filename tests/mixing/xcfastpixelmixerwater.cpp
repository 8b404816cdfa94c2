#include "ovwcmn/xcfastpixelmixer.h"

#include "easel.h"

#include "ovwcmn/xccoloraverage.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using Mixer = XCFastPixelMixer;
using ovw::test::cnBelow;
using ovw::test::cnPaint;
using ovw::test::Easel;
using ovw::test::withAlpha;

/// An easel for water with its colour average.
struct Basin : Easel {
    explicit Basin(int depth, int composition = Mixer::Water) : Easel(depth, true, true) {
        mixer.SetColorAverage(&average);
        mixer.SetDrawCompositioin(composition);
    }
    XCColorAverage average;
};

} // namespace

TEST(FastPixelMixerWater, CoverageDoesNotKnowTheColorsAlpha) {
    Basin basin(32);
    basin.set(0, withAlpha(cnBelow, 255));
    basin.mixer.SetColor(0, 90, 200, 141);
    basin.mixer.SetCacheAlpha(0.5f);
    basin.colorCache().setValue(0, 0, 0xC8000000);
    basin.paint(0, 0);
    EXPECT_EQ(basin.cache().value(0, 0), 16384u);
    EXPECT_EQ(basin.colorCache().value(0, 0), 0x008DC85Au); // the first dab is all there is
    EXPECT_EQ(basin.value(0), withAlpha(cnBelow, 128));
    basin.mixer.SetColor(200, 90, 200, 141);
    basin.paint(0, 0);
    EXPECT_EQ(basin.cache().value(0, 0), 24576u);
    EXPECT_EQ(basin.colorCache().value(0, 0) >> 24, 133u); // 2/3 of 200
}

TEST(FastPixelMixerWater, FullWaterShowsTheCarriedColor) {
    Basin water(32);
    water.set(0, withAlpha(cnBelow, 255));
    water.paint(0, 0);
    EXPECT_EQ(water.value(0), cnPaint);
    Basin multiply(32, Mixer::WaterMultiply);
    multiply.set(0, withAlpha(cnBelow, 255));
    multiply.paint(0, 0);
    // 40 * 141, 100 * 200, 210 * 90, each / 255
    EXPECT_EQ(multiply.value(0), 0xFF164E4Au);
}

TEST(FastPixelMixerWater, HalfWaterIsBetween) {
    Basin water(32);
    water.set(0, withAlpha(cnBelow, 255));
    water.mixer.SetMixAlpha(0.5f);
    water.paint(0, 0);
    EXPECT_EQ(water.value(0), 0xFF5B9696u);
    Basin multiply(32, Mixer::WaterMultiply);
    multiply.set(0, withAlpha(cnBelow, 255));
    multiply.mixer.SetMixAlpha(0.25f);
    multiply.paint(0, 0);
    EXPECT_EQ(multiply.value(0), 0xFF245FB0u); // 3/4 of the pixel, 1/4 of the product
    Basin empty(32);
    empty.mixer.SetMixAlpha(0.5f);
    empty.paint(0, 0);
    EXPECT_EQ(empty.value(0), 0x808DC85Au);
}

TEST(FastPixelMixerWater, SamplingFeedsTheAverageOnly) {
    Basin basin(32);
    basin.set(0, 0xFF102030);
    basin.set(1, 0xFF304050);
    basin.set(2, 0x00FFFFFF);
    basin.mixer.SetStyleFlag(Mixer::STYLE_SAMPLE_ONLY, 1);
    basin.paint(0, 2);
    EXPECT_EQ(basin.cache().value(0, 0), 0u);
    EXPECT_EQ(basin.value(0), 0xFF102030u);
    EXPECT_EQ(basin.average.ConvertSmudgeColor(0), 0xAA203040u); // alpha 2 * 255 / 3
}

TEST(FastPixelMixerWater, PaintingFeedsTheAverageWithWhatWasThere) {
    Basin basin(32);
    basin.set(0, 0xFF102030);
    basin.paint(0, 0);
    EXPECT_EQ(basin.value(0), cnPaint);
    EXPECT_EQ(basin.average.ConvertSmudgeColor(0), 0xFF102030u);
}

TEST(FastPixelMixerWater, DensitiesMixIn8Bits) {
    for (int composition : {Mixer::Water, Mixer::WaterMultiply}) {
        Basin basin(8, composition);
        basin.set(0, 100);
        basin.mixer.SetColor(200, 0, 0, 0);
        basin.mixer.SetCacheAlpha(0.5f);
        basin.paint(0, 0);
        EXPECT_EQ(basin.value(0), 150u); // half of 200, half of 100
        EXPECT_EQ(basin.average.ConvertSmudgeColor(0), 0x64000000u);
        basin.mixer.SetColor(50, 0, 0, 0);
        basin.paint(0, 0);
        EXPECT_EQ(basin.colorCache().value(0, 0), 100u); // 2/3 of 50, 1/3 of 200
        EXPECT_EQ(basin.value(0), 100u);
        basin.mixer.SetColorAverage(nullptr);
        basin.mixer.SetCacheAlpha(1);
        basin.paint(0, 0);
        EXPECT_EQ(basin.value(0), 50u);
    }
}

TEST(FastPixelMixerWater, ATextureAfterTheCacheNeedsMoreThanItsGrain) {
    std::uint8_t texel = 255;
    for (bool isAbove : {false, true}) {
        Easel easel(32, true);
        easel.mixer.SetStyleFlag(Mixer::STYLE_TEXTURE_AFTER, 1);
        easel.mixer.SetTexture(&texel, 1, 1, XCPoint(0, 0), 0, 2);
        easel.mixer.SetMixAlpha((32640.0f + isAbove) / 32768);
        easel.set(0, 0x00FFFFFF);
        easel.paint(0, 0);
        EXPECT_EQ(easel.value(0), isAbove ? 0x008DC85Au : 0x00FFFFFFu);
    }
}
