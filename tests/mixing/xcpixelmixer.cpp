#include "ovwcmn/xcpixelmixer.h"

#include "support/testimage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <vector>

namespace {

using namespace ovw::test;

std::uint8_t mixed8(XCPixelMixer& mixer, int p, int value, int weight) {
    auto pixel = std::uint8_t(p);
    mixer.Do8Bit(&pixel, std::uint8_t(value), std::uint8_t(weight));
    return pixel;
}

std::uint32_t mixed24(XCPixelMixer& mixer, std::uint32_t p, std::uint32_t colour, int weight) {
    mixer.Do24Bit(&p, colour, std::uint8_t(weight));
    return p;
}

std::uint32_t mixed32(XCPixelMixer& mixer, std::uint32_t p, std::uint32_t colour, int weight) {
    mixer.Do32Bit(&p, colour, std::uint8_t(weight));
    return p;
}

int channelOf(std::uint32_t colour, int index) { return int(colour >> 8 * index & 0xFF); }
std::uint32_t pixelOf(const std::array<int, 4>& channels) {
    return std::uint32_t(channels[0] | channels[1] << 8 | channels[2] << 16) | std::uint32_t(channels[3]) << 24;
}

/// Every mixer whose pixel depends on nothing but its arguments.
struct Rules {
    XCPixelMixer store;
    XCPixelMixerBlend blend;
    XCPixelMixerWeightCopy copy;
    XCPixelMixerAddAndSubtract add;
    XCPixelMixerAddAndSubtract subtract{1};
    XCPixelMixerDarkenAndLighten darken;
    XCPixelMixerDarkenAndLighten lighten{1};
    XCPixelMixerCorrect erase;
    XCPixelMixerCorrect correctDark{1};
    XCPixelMixerCorrect correctLight{2};
    XCPixelMixerCorrect correctOther{3};
    XCPixelMixerAlphaEdit alphaAdd{0};
    XCPixelMixerAlphaEdit alphaSubtract;
    XCPixelMixerAlphaEdit alphaOther{2};
};

// ---- The rules once more, in the plainest way: on one channel, or on one pixel channel by channel.

using InkRule = std::function<int(int p, int value, int w)>;
using ColourRule = std::function<std::array<int, 4>(std::array<int, 4> p, std::array<int, 4> c, int w)>;

int plainBlend8(int p, int value, int w) {
    if (value == 0 || w == 0 || p == 255)
        return p;
    int a = w == 255 ? value : value * w / 255;
    return p == 0 ? a : std::min(255, p + (255 - p) * a / 255);
}

int plainCorrect8(int mode, int p, int value, int w) {
    if (value == 0 || w == 0)
        return p;
    int t = ((value + 1) * w) >> 8;
    if (mode == 0)
        return std::max(0, p - t);
    if (p < 1)
        return p;
    return mode == 1 ? std::min(255, p + t / 5) : std::max(0, p - t / 5);
}

std::array<int, 4> plainBlend32(std::array<int, 4> p, std::array<int, 4> c, int w) {
    if (c[3] == 0 || w == 0)
        return p;
    int a = w < 255 ? c[3] * w / 255 : c[3];
    if (a == 255)
        return {c[0], c[1], c[2], 255};
    if (p[3] == 0)
        return {c[0], c[1], c[2], a};
    std::array<int, 4> result{};
    double q = (255.0 - a) * p[3] / 255.0;
    for (int i = 0; i < 3; ++i) {
        if (p[3] == 255)
            result[i] = 255 - ((255 - c[i]) * a + (255 - p[i]) * (255 - a)) / 255;
        else
            result[i] = std::max(0, 255 - int(((255 - c[i]) * a + (255 - p[i]) * q) / (a + q) + 0.5));
    }
    result[3] = p[3] == 255 ? 255 : std::min(255, int(a + q + 0.5));
    return result[3] < 1 ? std::array<int, 4>{255, 255, 255, 0} : result;
}

std::array<int, 4> plainCorrect32(int mode, std::array<int, 4> p, std::array<int, 4> c, int w) {
    if (c[3] == 0 || w == 0)
        return p;
    int t = ((c[3] + 1) * w) >> 8;
    if (mode == 0)
        p[3] = std::max(0, p[3] - t);
    else if (p[3] > 0)
        for (int i = 0; i < 3; ++i)
            p[i] = mode == 1 ? std::max(0, p[i] - t / 5) : std::min(255, p[i] + t / 5);
    return p;
}

ColourRule onColours(InkRule rule) {
    return [rule](std::array<int, 4> p, std::array<int, 4> c, int w) {
        for (int i = 0; i < 3; ++i)
            p[i] = rule(p[i], c[i], w);
        return p;
    };
}

ColourRule onAlpha(InkRule rule, bool takesColour) {
    return [rule, takesColour](std::array<int, 4> p, std::array<int, 4> c, int w) {
        int alpha = rule(p[3], c[3], w);
        if (takesColour && alpha != p[3])
            p = c;
        p[3] = alpha;
        return p;
    };
}

int plainCopy(int p, int value, int w) { return w == 255 ? value : p + (value - p) * w / 255; }
int plainAdd(int p, int value, int w) { return std::min(255, p + value * w / 255); }
int plainSubtract(int p, int value, int w) { return std::max(0, p - value * w / 255); }
int plainDarken(int p, int value, int w) { return std::max(p, (value + 1) * w >> 8); }
int plainLighten(int p, int value, int w) { return std::min(p, (value + 1) * w >> 8); }
int plainAlphaAdd(int p, int, int w) { return std::min(255, p + w); }
int plainAlphaSubtract(int p, int, int w) { return std::max(0, p - w); }

struct PlainRule {
    const char* name;
    XCPixelMixer* mixer;
    InkRule ink;
    ColourRule colour;
};

std::vector<PlainRule> plainRules(Rules& rules) {
    using namespace std::placeholders;
    const ColourRule copyAll = [](std::array<int, 4> p, std::array<int, 4> c, int w) {
        for (int i = 0; i < 4; ++i)
            p[i] = plainCopy(p[i], c[i], w);
        return p;
    };
    const auto correct8 = [](int mode) { return std::bind(plainCorrect8, mode, _1, _2, _3); };
    const auto correct32 = [](int mode) { return std::bind(plainCorrect32, mode, _1, _2, _3); };
    const InkRule keepInk = [](int p, int, int) { return p; };
    return {
        {"store", &rules.store, [](int, int value, int) { return value; }, [](auto, auto c, int) { return c; }},
        {"blend", &rules.blend, plainBlend8, plainBlend32},
        {"copy", &rules.copy, plainCopy, copyAll},
        {"add", &rules.add, plainAdd, onColours(plainAdd)},
        {"subtract", &rules.subtract, plainSubtract, onColours(plainSubtract)},
        {"darken", &rules.darken, plainDarken, onAlpha(plainDarken, true)},
        {"lighten", &rules.lighten, plainLighten, onAlpha(plainLighten, true)},
        {"erase", &rules.erase, correct8(0), correct32(0)},
        {"correct dark", &rules.correctDark, correct8(1), correct32(1)},
        {"correct light", &rules.correctLight, correct8(2), correct32(2)},
        {"correct other", &rules.correctOther, keepInk, onColours(keepInk)},
        {"alpha add", &rules.alphaAdd, plainAlphaAdd, onAlpha(plainAlphaAdd, false)},
        {"alpha subtract", &rules.alphaSubtract, plainAlphaSubtract, onAlpha(plainAlphaSubtract, false)},
        {"alpha other", &rules.alphaOther, keepInk, onColours(keepInk)},
    };
}

/// Opens what the mixers keep for derived rules.
struct OpenSmudge : XCPixelMixerSmudge {
    using XCPixelMixerSmudge::AddColorChannel;
    using XCPixelMixerSmudge::AddColorChannel64;
    using XCPixelMixerSmudge::AddColorChannel8;
    using XCPixelMixerSmudge::SubtractColorChannel;
};

struct OpenGaussian : XCPixelMixerGaussian {
    using XCPixelMixerGaussian::GetGaussValue;
};

} // namespace

TEST(PixelMixer, InkByHand) {
    Rules rules;
    XCPixelMixerAddAndSubtract addInRange;
    XCPixelMixerAddAndSubtract subtractInRange(1);
    addInRange.SetChannelRange(16, 235);
    subtractInRange.SetChannelRange(16, 235);
    const struct {
        XCPixelMixer& mixer;
        int p, value, weight, expected;
    } cases[] = {
        {rules.store, 10, 77, 0, 77},
        {rules.blend, 0, 200, 255, 200},
        {rules.blend, 0, 200, 128, 100},   // 200 * 128 / 255
        {rules.blend, 100, 200, 128, 160}, // 155 * 100 / 255 = 60
        {rules.blend, 100, 255, 255, 255},
        {rules.blend, 100, 200, 0, 100},
        {rules.blend, 100, 0, 255, 100},
        {rules.copy, 100, 200, 128, 150},
        {rules.copy, 200, 100, 128, 150}, // -50.2 truncates to -50
        {rules.copy, 200, 100, 255, 100},
        {rules.add, 200, 100, 255, 255},
        {rules.add, 200, 100, 127, 249},
        {rules.subtract, 50, 100, 255, 0},
        {rules.subtract, 50, 100, 0, 50},
        {addInRange, 200, 100, 255, 235},
        {subtractInRange, 50, 100, 255, 16},
        {subtractInRange, 5, 1, 1, 16}, // 1 / 255 is 0, but the minimum holds
        {subtractInRange, 5, 1, 0, 5},
        {rules.darken, 100, 255, 128, 128},
        {rules.darken, 200, 255, 128, 200},
        {rules.lighten, 200, 255, 128, 128},
        {rules.lighten, 100, 255, 128, 100},
        {rules.erase, 100, 255, 64, 36},
        {rules.erase, 30, 255, 64, 0},
        {rules.correctDark, 100, 255, 255, 151},
        {rules.correctDark, 0, 255, 255, 0},
        {rules.correctDark, 250, 255, 255, 255},
        {rules.correctLight, 100, 255, 255, 49},
        {rules.correctLight, 1, 255, 255, 0},
        {rules.alphaAdd, 250, 0, 10, 255},
        {rules.alphaSubtract, 100, 0, 30, 70},
        {rules.alphaSubtract, 20, 0, 30, 0},
    };
    for (const auto& c : cases)
        EXPECT_EQ(mixed8(c.mixer, c.p, c.value, c.weight), c.expected)
            << "case " << &c - cases << ": " << c.p << ' ' << c.value << ' ' << c.weight;
}

TEST(PixelMixer, ColoursByHand) {
    Rules rules;
    XCPixelMixerBlend keepAlpha;
    keepAlpha.SetNotChangeAlpha(1);
    const struct {
        XCPixelMixer& mixer;
        std::uint32_t p, colour;
        int weight;
        std::uint32_t expected;
    } cases[] = {
        {rules.store, 0x11223344, 0x55667788, 0, 0x55667788},
        {rules.blend, 0x00112233, 0xFF445566, 128, 0x80445566},
        {rules.blend, 0x00112233, 0xFF445566, 255, 0xFF445566},
        {rules.blend, 0x40112233, 0x00445566, 255, 0x40112233},
        {rules.blend, 0x00112233, 0xFF445566, 0, 0x00112233},
        {rules.blend, 0xFF000000, 0xFFFFFFFF, 128, 0xFF808080},
        {rules.blend, 0x80000000, 0xFFFFFFFF, 128, 0xC0AAAAAA}, // q 63.75, alpha 191.75, 255 - 84.78
        {keepAlpha, 0x00112233, 0xFF445566, 128, 0x00445566},
        {keepAlpha, 0x80000000, 0xFFFFFFFF, 128, 0x80AAAAAA},
        {keepAlpha, 0x80000000, 0xFF123456, 255, 0x80123456},
        {rules.copy, 0x00000000, 0xFF643264, 128, 0x80321932}, // 128, 50, 25, 50
        {rules.add, 0x40C8C810, 0x00641020, 255, 0x40FFD830},
        {rules.subtract, 0x40C8C810, 0x00641020, 255, 0x4064B800},
        {rules.darken, 0x40112233, 0xFF445566, 128, 0x80445566},
        {rules.darken, 0x80112233, 0xFF445566, 128, 0x80112233}, // equal coverage
        {rules.lighten, 0xC0112233, 0xFF445566, 128, 0x80445566},
        {rules.lighten, 0x40112233, 0xFF445566, 128, 0x40112233},
        {rules.erase, 0xFF112233, 0xFF000000, 64, 0xBF112233},
        {rules.correctDark, 0xFF405060, 0xFF000000, 255, 0xFF0D1D2D},
        {rules.correctDark, 0x00405060, 0xFF000000, 255, 0x00405060},
        {rules.correctLight, 0x01FF5060, 0xFF000000, 255, 0x01FF8393},
        {rules.correctLight, 0xFF405060, 0x00000000, 255, 0xFF405060},
        {rules.alphaAdd, 0x40112233, 0, 0x50, 0x90112233},
        {rules.alphaSubtract, 0x40112233, 0, 0x50, 0x00112233},
    };
    for (const auto& c : cases)
        EXPECT_EQ(mixed32(c.mixer, c.p, c.colour, c.weight), c.expected) << std::hex << "case " << &c - cases;
}

TEST(PixelMixer, OpaqueColoursByHand) {
    Rules rules;
    EXPECT_EQ(mixed24(rules.blend, 0xFF000000, 0x80FFFFFF, 255), 0x00808080u);
    EXPECT_EQ(mixed24(rules.blend, 0xFFFFFFFF, 0x80000000, 255), 0x007F7F7Fu); // -128 of 255
    EXPECT_EQ(mixed24(rules.blend, 0xFF000000, 0xFFABCDEF, 255), 0x00ABCDEFu);
    EXPECT_EQ(mixed24(rules.blend, 0xFF123456, 0x00FFFFFF, 255), 0xFF123456u);
    EXPECT_EQ(mixed24(rules.blend, 0xFF123456, 0xFFFFFFFF, 0), 0xFF123456u);
    for (const PlainRule& rule : plainRules(rules)) {
        const std::uint32_t expected = rule.mixer == &rules.blend ? 0x00123456 : 0x44FFFFFF; // alpha 1 moves nothing
        EXPECT_EQ(mixed24(*rule.mixer, 0xFF123456, 0x44FFFFFF, 7), expected) << rule.name;
    }
}

TEST(PixelMixer, InkAsThePlainRules) {
    Rules rules;
    for (const PlainRule& rule : plainRules(rules))
        for (int p = 0; p < 256; ++p)
            for (int value : {0, 1, 2, 5, 64, 100, 127, 128, 200, 254, 255})
                for (int w = 0; w < 256; ++w)
                    ASSERT_EQ(mixed8(*rule.mixer, p, value, w), rule.ink(p, value, w))
                        << rule.name << ' ' << p << ' ' << value << ' ' << w;
}

TEST(PixelMixer, ColoursAsThePlainRules) {
    Rules rules;
    std::mt19937 random(42);
    const auto channels = [](std::uint32_t colour) {
        return std::array<int, 4>{channelOf(colour, 0), channelOf(colour, 1), channelOf(colour, 2),
                                  channelOf(colour, 3)};
    };
    constexpr std::uint32_t cnAlphas[] = {0, 1, 2, 127, 128, 254, 255};
    for (int i = 0; i < 40000; ++i) {
        std::uint32_t p = std::uint32_t(random());
        std::uint32_t colour = std::uint32_t(random());
        if (i % 2)
            p = (p & 0x00FFFFFF) | cnAlphas[random() % 7] << 24;
        if (i % 3)
            colour = (colour & 0x00FFFFFF) | cnAlphas[random() % 7] << 24;
        int w = i % 5 ? int(random() % 256) : i % 2 * 255;
        for (const PlainRule& rule : plainRules(rules))
            ASSERT_EQ(mixed32(*rule.mixer, p, colour, w), pixelOf(rule.colour(channels(p), channels(colour), w)))
                << rule.name << std::hex << ' ' << p << ' ' << colour << ' ' << w;
    }
}

TEST(PixelMixer, TwoBitPixelsAreStoredByEveryRule) {
    Rules rules;
    for (const PlainRule& rule : plainRules(rules)) {
        std::uint8_t p = 3;
        rule.mixer->Do2Bit(&p, 2, 0);
        EXPECT_EQ(p, 2) << rule.name;
    }
}

TEST(PixelMixer, StoredChannelsStayBytesInAnyRange) {
    XCPixelMixerAddAndSubtract add;
    XCPixelMixerAddAndSubtract subtract(1);
    add.SetChannelRange(0, std::numeric_limits<int>::max());
    subtract.SetChannelRange(std::numeric_limits<int>::max(), 0);
    EXPECT_EQ(mixed8(add, 200, 200, 255), 255);
    EXPECT_EQ(mixed8(subtract, 200, 10, 255), 255);
    add.SetChannelRange(0, std::numeric_limits<int>::min());
    EXPECT_EQ(mixed8(add, 200, 200, 255), 0);
    EXPECT_EQ(OpenSmudge::SubtractColorChannel(std::numeric_limits<int>::min(), 1), 0);
    EXPECT_EQ(OpenSmudge::SubtractColorChannel(1, std::numeric_limits<int>::min()), std::numeric_limits<int>::max());
}

// ---- Smudge

TEST(PixelMixerSmudge, PaintsWithTheCarriedColour) {
    const struct {
        std::uint32_t p, carried;
        int weight;
        std::uint32_t expected;
    } cases[] = {
        {0xC8112233, 0x00000000, 128, 0x64112233}, // 200 - 200 * 128 / 255
        {0xC8112233, 0x00FFFFFF, 255, 0x00112233}, {0x00000000, 0xC8112233, 128, 0x64112233},
        {0x00FFFFFF, 0xFF112233, 255, 0xFF112233}, {0x00FFFFFF, 0x00FFFFFF, 128, 0x00FFFFFF},
        {0x64646464, 0xC8C8C8C8, 128, 0x96969696}, // 100 toward 200
        {0x00000001, 0xFF0000FF, 255, 0xFF0000FF}, // transparent, but not empty
    };
    for (const auto& c : cases) {
        XCPixelMixerSmudge smudge;
        XCPixelMixerSmudge sampling(1);
        EXPECT_EQ(mixed32(smudge, c.p, c.carried, c.weight), c.expected) << std::hex << c.p << ' ' << c.carried;
        EXPECT_EQ(mixed32(sampling, c.p, c.carried, c.weight), c.p);
        std::uint32_t painted = 1;
        std::uint32_t sampled = 2;
        EXPECT_EQ(smudge.GetAverageColor(painted), 1);
        EXPECT_EQ(sampling.GetAverageColor(sampled), 1);
        EXPECT_EQ(painted, sampled);
    }
}

TEST(PixelMixerSmudge, EmptyPixelsThinTheAverageOnly) {
    XCPixelMixerSmudge smudge(1);
    std::uint32_t average = 0x12345678;
    EXPECT_EQ(smudge.GetAverageColor(average), 0);
    EXPECT_EQ(average, 0x12345678u);
    mixed32(smudge, 0, 0, 0);
    mixed32(smudge, 0x00FFFFFF, 0, 0);
    EXPECT_EQ(smudge.GetAverageColor(average), 1);
    EXPECT_EQ(average, 0u);
    mixed32(smudge, 0xFF0000FF, 0, 0);
    mixed32(smudge, 0xFF0000FF, 0, 0);
    EXPECT_EQ(smudge.GetAverageColor(average), 1);
    EXPECT_EQ(average, 0x7F0000FFu);
    std::uint64_t wide = 0;
    EXPECT_EQ(smudge.GetAverageColor64(wide), 1); // not thinned, not scaled up
    EXPECT_EQ(wide, 0x00FF0000000000FFu);
    smudge.ClearAverageColor();
    EXPECT_EQ(smudge.GetAverageColor(average), 0);
    EXPECT_EQ(smudge.GetAverageColor64(wide), 0);
}

TEST(PixelMixerSmudge, InkCountsAsAlphaEvenWhereThereIsNone) {
    XCPixelMixerSmudge smudge;
    EXPECT_EQ(mixed8(smudge, 100, 200, 128), 150);
    EXPECT_EQ(mixed8(smudge, 0, 200, 0), 0);
    std::uint32_t average = 0;
    EXPECT_EQ(smudge.GetAverageColor(average), 1);
    EXPECT_EQ(average, 0x32000000u);
}

TEST(PixelMixerSmudge, WideChannelsDoNotWrap) {
    OpenSmudge smudge;
    for (int i = 0; i < 100000; ++i)
        smudge.AddColorChannel64(0xFFFF111122223333);
    std::uint64_t wide = 0;
    EXPECT_EQ(smudge.GetAverageColor64(wide), 1);
    EXPECT_EQ(wide, 0xFFFF111122223333u);
}

TEST(PixelMixerSmudge, AFullSumGoesOnFromItsAverage) {
    constexpr int cnFull = 0x01010101;
    OpenSmudge smudge;
    std::uint32_t average = 0;
    for (int i = 1; i < cnFull; ++i)
        smudge.AddColorChannel(200, 10, 20, 30);
    smudge.GetAverageColor(average);
    EXPECT_EQ(average, 0xC81E140Au);
    smudge.AddColorChannel(200, 10, 20, 30);
    smudge.GetAverageColor(average);
    EXPECT_EQ(average, 0xC81E140Au);
    smudge.AddColorChannel(100, 0, 0, 0); // the second pixel now
    smudge.GetAverageColor(average);
    EXPECT_EQ(average, 0x960F0A05u);
}

TEST(PixelMixerSmudge, ACopyCountsOnItsOwn) {
    XCPixelMixerSmudge smudge(1);
    mixed32(smudge, 0xFF0000FF, 0, 0);
    XCPixelMixerSmudge copy(smudge);
    mixed32(copy, 0xFF00FF01, 0, 0);
    std::uint32_t average = 0;
    smudge.GetAverageColor(average);
    EXPECT_EQ(average, 0xFF0000FFu);
    copy.GetAverageColor(average);
    EXPECT_EQ(average, 0xFF007F80u);
    EXPECT_EQ(copy.sampleOnly, 1);
}

// ---- The mixers that go by the place of the pixel

namespace {

/// w at a distance from the centre, as the falloff is described.
int plainFalloff(int dx, int dy, int rx, int ry, int baseup, int w) {
    const auto axis = [](int distance, int radius) {
        int twice = 2 * std::abs(distance);
        return 384 * (twice == 0 ? 0 : twice - 1) / radius;
    };
    const auto table = [](int k) { return int(std::exp(-k * k / (2.0 * 128 * 128)) * 4096); };
    int i = axis(dx, rx);
    int j = axis(dy, ry);
    if (i > 384 || j > 384)
        return 0;
    double scale = std::max(1.0, std::max(rx, ry) / 16.0);
    long long v = (long long)((table(i) * table(j) >> 12) * 127 * scale) >> 12;
    return int(std::min<long long>(w, v * w / baseup));
}

class PixelMixerPlace : public testing::Test {
protected:
    TestStore m_store;
    TestImage m_map{m_store, 8, 100, 100};
};

} // namespace

TEST_F(PixelMixerPlace, GaussianByHand) {
    OpenGaussian gaussian;
    EXPECT_EQ(gaussian.GetGaussValue(200), 200u); // neither map nor base-up
    gaussian.SetMapInfo(m_map.get(), {50.9, 50.9}, 20.9, 10.2);
    EXPECT_EQ(gaussian.GetGaussValue(200), 200u); // no base-up
    gaussian.SetBaseup(127);
    const struct {
        int x, y, expected;
    } cases[] = {
        {50, 50, 200}, // the centre
        {51, 50, 200}, // 4051 * 127 * 1.25 is 157: cut at the weight
        {55, 50, 100}, // step 172: 1660 * 127 * 1.25 is 64, of 127
        {60, 50, 3},   // step 364: 71
        {61, 50, 0},   // 2 * 11 - 1 > 20
        {50, 56, 0},   // 2 * 6 - 1 > 10
        {39, 50, 0},
    };
    for (const auto& c : cases) {
        m_map->MoveCursor(c.x, c.y);
        EXPECT_EQ(int(gaussian.GetGaussValue(200)), c.expected) << c.x << ' ' << c.y;
    }
}

TEST_F(PixelMixerPlace, GaussianAsThePlainFalloff) {
    OpenGaussian gaussian;
    const struct {
        double rx, ry;
        int baseup;
    } settings[] = {{20, 10, 127}, {16, 16, 127}, {60, 60, 127}, {60, 5, 40}, {3, 3, 255}, {1, 1, 1}};
    for (const auto& s : settings) {
        gaussian.SetMapInfo(m_map.get(), {40, 30}, s.rx, s.ry);
        gaussian.SetBaseup(std::uint8_t(s.baseup));
        for (int y = 0; y < 100; y += 3)
            for (int x = 0; x < 100; ++x) {
                m_map->MoveCursor(x, y);
                for (int w : {0, 1, 100, 255})
                    ASSERT_EQ(int(gaussian.GetGaussValue(std::uint32_t(w))),
                              plainFalloff(x - 40, y - 30, int(s.rx), int(s.ry), s.baseup, w))
                        << x << ' ' << y << ' ' << s.rx << ' ' << w;
            }
    }
}

TEST_F(PixelMixerPlace, GaussianTakesAnyRadius) {
    OpenGaussian gaussian;
    gaussian.SetBaseup(127);
    m_map->MoveCursor(0, 0);
    const double nan = std::nan("");
    const double infinity = std::numeric_limits<double>::infinity();
    for (double radius : {0.0, 0.5, nan}) {
        gaussian.SetMapInfo(m_map.get(), {0, nan}, radius, radius);
        EXPECT_EQ(gaussian.GetGaussValue(255), 255u);
        gaussian.SetMapInfo(m_map.get(), {2, 0}, radius, radius);
        EXPECT_EQ(gaussian.GetGaussValue(255), 0u);
    }
    gaussian.SetMapInfo(m_map.get(), {10, 0}, -40, -40);
    EXPECT_EQ(gaussian.GetGaussValue(200), std::uint32_t(plainFalloff(10, 0, 40, 40, 127, 200)));
    gaussian.SetMapInfo(m_map.get(), {0, 0}, infinity, 1e300);
    EXPECT_EQ(gaussian.GetGaussValue(255), 255u);
    gaussian.SetMapInfo(m_map.get(), {-infinity, 1e300}, 1, 1);
    EXPECT_EQ(gaussian.GetGaussValue(255), 0u);
}

TEST_F(PixelMixerPlace, WithoutANextMixerNothingIsMixed) {
    XCPixelMixerGaussian gaussian;
    XCPixelMixerDither dither;
    for (XCPixelMixer* mixer : {static_cast<XCPixelMixer*>(&gaussian), static_cast<XCPixelMixer*>(&dither)}) {
        EXPECT_EQ(mixer->GetNext(), nullptr);
        EXPECT_EQ(mixed8(*mixer, 7, 255, 255), 7);
        EXPECT_EQ(mixed24(*mixer, 7, 0xFFFFFFFF, 255), 7u);
        EXPECT_EQ(mixed32(*mixer, 7, 0xFFFFFFFF, 255), 7u);
    }
}
