#include "ovwcmn/xccoloraverage.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>

namespace {

using Pixel = std::array<std::uint8_t, 4>; // blue, green, red, alpha

constexpr std::uint32_t cnWrap = 16843009; // pixels of 255 that fill 32 bits

void count(XCColorAverage& average, Pixel pixel, int times = 1) {
    for (int i = 0; i < times; ++i)
        average.CountTotal32Bit(pixel.data());
}

/// The colour carried after a first dab over one colour and a second over another.
std::uint32_t carried(Pixel first, Pixel second, int stretch) {
    XCColorAverage average;
    count(average, first);
    average.ConvertSmudgeColor(stretch);
    count(average, second);
    return average.ConvertSmudgeColor(stretch);
}

} // namespace

TEST(ColorAverage, TransparentPixelsThinTheAlphaOnly) {
    XCColorAverage average;
    count(average, {10, 20, 30, 255}, 2);
    count(average, {99, 99, 99, 0}, 2);
    EXPECT_EQ(average.IsAverageColor(), 1);
    EXPECT_EQ(average.ConvertSmudgeColor(0), 0x800A141Eu);
    EXPECT_EQ(average.IsAverageColor(), 0);
}

TEST(ColorAverage, ChannelsAreRoundedToTheNearest) {
    XCColorAverage average;
    count(average, {10, 0, 1, 100}, 2);
    count(average, {11, 1, 3, 101}, 1); // blue 31 / 3, green 1 / 3, red 5 / 3, alpha 301 / 3
    EXPECT_EQ(average.ConvertSmudgeColor(0), 0x640A0002u);
}

TEST(ColorAverage, StretchIsTheShareOfTheCarriedColor) {
    Pixel red{0, 0, 100, 255};
    Pixel brighter{0, 10, 201, 251};
    EXPECT_EQ(carried(red, brighter, 0), 0xFB000AC9u);
    EXPECT_EQ(carried(red, brighter, 5), 0xFD000597u);  // red 150.5 + 0.5, green 5, alpha 253
    EXPECT_EQ(carried(red, brighter, 15), 0xFE00037Du); // a quarter: red 125.25, green 2.5, alpha 254
    EXPECT_EQ(carried(red, brighter, -5), 0xFB000AC9u);
}

TEST(ColorAverage, TransparencyOnOneSideLendsNoColor) {
    Pixel color{40, 50, 60, 255};
    Pixel clear{1, 2, 3, 0};
    EXPECT_EQ(carried(clear, color, 5), 0x7F28323Cu);  // 255 / 2 truncated
    EXPECT_EQ(carried(color, clear, 15), 0xBF28323Cu); // 255 * 3 / 4 truncated
}

TEST(ColorAverage, AStrokeStartTakesThePlainAverageAgain) {
    XCColorAverage average;
    count(average, {0, 0, 100, 255});
    average.ConvertSmudgeColor(5);
    average.StartCountAverage();
    count(average, {0, 0, 200, 255});
    EXPECT_EQ(average.ConvertSmudgeColor(5), 0xFF0000C8u);
}

TEST(ColorAverage, ClearingForgetsTheCarriedColor) {
    XCColorAverage average;
    count(average, {0, 0, 100, 255});
    average.ConvertSmudgeColor(5);
    count(average, {0, 0, 100, 255});
    average.ClearAverageColor();
    EXPECT_EQ(average.IsAverageColor(), 0);
    count(average, {0, 0, 200, 255});
    EXPECT_EQ(average.ConvertSmudgeColor(5), 0x7F0000C8u); // over a carried colour of alpha 0
}

TEST(ColorAverage, DensitiesCountAsAlpha) {
    XCColorAverage average;
    std::uint8_t densities[] = {10, 20, 0};
    for (std::uint8_t& density : densities)
        average.CountTotal8Bit(&density);
    EXPECT_EQ(average.ConvertSmudgeColor(0), 0x0A000000u);
}

TEST(ColorAverage, DensitiesGoOnWhenTheCountIsFull) {
    XCColorAverage average;
    std::uint8_t density = 200;
    for (std::uint32_t i = 0; i < cnWrap; ++i)
        average.CountTotal8Bit(&density);
    EXPECT_EQ(average.ConvertSmudgeColor(0), 0xC8000000u);
}

TEST(ColorAverage, TooManyPixelsHaveNoAlphaAndStayAColor) {
    XCColorAverage average;
    count(average, {1, 2, 3, 255}, int(cnWrap) - 1);
    EXPECT_EQ(average.ConvertSmudgeColor(0), 0xFF010203u);
    average.StartCountAverage();
    count(average, {1, 2, 3, 255}, int(cnWrap));
    EXPECT_EQ(average.ConvertSmudgeColor(0) >> 24, 0u);
}
