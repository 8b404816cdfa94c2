#include "names.h"
#include "painting.h"
#include "pngwrite.h"
#include "texture.h"

namespace ovwpaint::test {

namespace {

constexpr Colour cnWhite = 0xFFFFFFFF;
constexpr Colour cnBlack = 0xFF000000;

/// A thick line at full opacity from (20, 50) to (180, 50) of a picture of 200 x 100.
class Materials : public OvwPaint {
protected:
    Materials() { m_strokes = ink("<trace>20 50 1, 180 50 1</trace>"); }

    Picture paint(std::vector<std::string> more, const std::string& fields = "") {
        const std::string brush =
            R"({"size": 20, "drawColor": "#C86432", "cacheKind": "maximum", "intervalKind": 3, "intervalAtFull": 5)";
        const std::vector<std::string> basics = {
            "--brush", m_folder.write("b.json", brush + fields + "}"), "--width", "200", "--height", "100", "--scale",
            "1"};
        more.insert(more.begin(), basics.begin(), basics.end());
        return draw(more);
    }
};

// The paint (200, 100, 50) at full opacity on the grey 100, by the formulas of the compositions.
TEST_F(Materials, PaintsWithEveryComposition) {
    const std::string backdrop =
        writePng(m_folder.path("grey.png"), 200, 100, [](int, int) { return packColour(100, 100, 100); });
    const std::pair<const char*, Colour> cases[] = {
        {"replace", packColour(200, 100, 50)},       {"normal", packColour(200, 100, 50)},
        {"erase", packColour(100, 100, 100, 0)},     {"darken-step", packColour(49, 49, 49)},
        {"lighten-step", packColour(151, 151, 151)}, {"water", packColour(200, 100, 50)},
        {"multiply", packColour(78, 39, 20)},        {"water-multiply", packColour(78, 39, 20)},
        {"add", packColour(255, 200, 150)},          {"lighten", packColour(200, 100, 100)},
        {"darken", packColour(100, 100, 50)},        {"color-burn", packColour(57, 0, 0)},
        {"color-dodge", packColour(255, 165, 124)},  {"screen", packColour(222, 161, 130)},
        {"overlay", packColour(157, 78, 39)},        {"difference", packColour(100, 0, 50)},
        {"soft-light", packColour(140, 82, 56)},     {"hard-light", packColour(188, 78, 39)},
        {"add-fade", packColour(255, 200, 150)},
    };
    ASSERT_EQ(std::size(cases), compositionNames().size());
    for (const auto& [name, expected] : cases) {
        const Colour pixel = paint({"--backdrop", backdrop, "--composition", name}).at(100, 50);
        for (int shift = 0; shift < 32; shift += 8)
            EXPECT_NEAR(pixel >> shift & 0xFF, expected >> shift & 0xFF, 1) << name << " channel " << shift / 8;
        if (std::string(name) == "erase")
            continue; // there is no transparency at 24 bits
        EXPECT_EQ(paint({"--backdrop", backdrop, "--composition", name, "--depth", "24"}).at(100, 50), pixel) << name;
    }
    EXPECT_EQ(paint({"--backdrop", backdrop, "--composition", "13"}).pixels,
              paint({"--backdrop", backdrop}, R"(, "methodKind": "Screen")").pixels);
}

TEST_F(Materials, ShowsTheGrainOfATexture) {
    writePng(m_folder.path("t.png"), 2, 2, [](int x, int) { return x == 0 ? cnBlack : packColour(64, 64, 64); });
    const std::string texture = m_folder.path("t.png");
    const auto red = [&](std::vector<std::string> options, int x) {
        options.insert(options.begin(), {"--texture", texture});
        return static_cast<int>(redOf(paint(options).at(x, 50)));
    };
    // White ground, red of the paint 200: coverage c gives 255 - 55 c.
    EXPECT_NEAR(red({"--texture-mode", "scale"}, 100), 200, 1);
    EXPECT_NEAR(red({"--texture-mode", "scale"}, 101), 255 - 55 * 191 / 256, 1);
    EXPECT_NEAR(red({"--texture-mode", "bias", "--texture-density", "-128"}, 101), 255 - 55 * 64 / 256, 1);
    EXPECT_NEAR(red({"--texture-mode", "subtract"}, 101), 255 - 55 * 192 / 256, 1);
    EXPECT_NEAR(red({"--texture-mode", "3", "--texture-after"}, 101), 255 - 55 * 191 / 256, 1);
    const Picture option = paint({"--texture", texture, "--texture-mode", "limit"});
    EXPECT_EQ(paint({}, R"(, "texture": "t.png", "textureMode": "limit")").pixels, option.pixels)
        << "beside the brush file";
}

TEST_F(Materials, HasAGrainThatFitsTogether) {
    const GreyPicture grain = makeGrain();
    ASSERT_EQ(grain.pixels.size(), 65536u);
    long inside = 0, across = 0;
    std::vector<int> count(256);
    for (std::size_t y = 0; y < 256; ++y) {
        const auto at = [&](std::size_t x) { return static_cast<int>(grain.pixels[y * 256 + x]); };
        inside += std::abs(at(127) - at(128));
        across += std::abs(at(255) - at(0));
        for (std::size_t x = 0; x < 256; ++x)
            ++count[grain.pixels[y * 256 + x]];
    }
    EXPECT_NEAR(static_cast<double>(across) / static_cast<double>(inside), 1.0, 0.3);
    EXPECT_EQ(count, std::vector<int>(256, 256));
}

TEST_F(Materials, PaintsWhereTheMaskSelects) {
    const std::string mask = writePng(m_folder.path("m.png"), 50, 40, [](int x, int) {
        return x < 10 ? cnBlack : x < 20 ? packColour(128, 128, 128) : x < 30 ? Colour{0x00FFFFFF} : cnWhite;
    });
    const Picture picture = paint({"--mask", mask, "--mask-offset", "60,30"});
    EXPECT_EQ(picture.at(50, 50), cnWhite) << "left of the mask";
    EXPECT_EQ(picture.at(65, 50), cnWhite) << "black";
    EXPECT_NEAR(redOf(picture.at(75, 50)), 255 - 55 * 128 / 255, 1);
    EXPECT_EQ(picture.at(85, 50), cnWhite) << "transparent";
    EXPECT_EQ(picture.at(95, 50), packColour(200, 100, 50));
    EXPECT_EQ(picture.at(115, 50), cnWhite) << "right of the mask";
    EXPECT_EQ(paint({"--mask", mask, "--mask-offset", "500,-90"}).countOther(cnWhite), 0u);
}

TEST_F(Materials, PaintsOnABackdrop) {
    const std::string backdrop = writePng(m_folder.path("p.png"), 300, 260, [](int x, int y) {
        return packColour(static_cast<std::uint32_t>(x % 256), static_cast<std::uint32_t>(y % 256), 7,
                          y < 130 ? 255 : 0);
    });
    const Picture whole = draw({"--backdrop", backdrop});
    EXPECT_EQ(whole.width, 300);
    EXPECT_EQ(whole.height, 260);
    EXPECT_EQ(whole.at(2, 3), packColour(2, 3, 7));
    EXPECT_EQ(whole.at(299, 100), packColour(43, 100, 7)) << "in the next block";
    EXPECT_EQ(whole.at(2, 259), cnWhite) << "transparent: the background";
    EXPECT_EQ(draw({"--backdrop", backdrop, "--background", "transparent"}).at(2, 259) >> 24, 0u);
    EXPECT_EQ(paint({"--backdrop", backdrop}).at(199, 99), packColour(199, 99, 7)) << "cut off";
    EXPECT_EQ(paint({"--backdrop", backdrop}).at(100, 50), packColour(200, 100, 50)) << "the stroke";
    for (const char* depth : {"1", "2", "8", "16", "24"})
        EXPECT_GT(draw({"--backdrop", backdrop, "--depth", depth}).countOther(cnWhite), 1000u) << depth;
}

TEST_F(Materials, ClonesAnotherPicture) {
    const std::string source = writePng(m_folder.path("s.png"), 200, 100, [](int x, int y) {
        return packColour(static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y), 0);
    });
    const Picture picture = paint({"--clone", source, "--clone-offset", "5,-3"});
    EXPECT_EQ(picture.at(100, 50), packColour(105, 47, 0));
    EXPECT_EQ(picture.at(100, 5), cnWhite) << "off the stroke";
    EXPECT_EQ(paint({"--clone", source, "--depth", "24"}).at(60, 52), packColour(60, 52, 0));
}

// Black on the left, white on the right; the stroke goes to the right.
TEST_F(Materials, SmudgesAlongTheStroke) {
    const std::string backdrop =
        writePng(m_folder.path("p.png"), 200, 100, [](int x, int) { return x < 100 ? cnBlack : cnWhite; });
    const std::vector<std::string> size = {"--width", "200", "--height", "100", "--scale", "1", "--backdrop", backdrop};
    for (const char* depth : {"32", "24"}) {
        std::vector<std::string> options = size;
        options.insert(options.end(), {"--preset", "smudge", "--depth", depth});
        const Picture picture = draw(options);
        EXPECT_LT(redOf(picture.at(104, 50)), 250u) << depth;
        EXPECT_LE(redOf(picture.at(104, 50)), redOf(picture.at(125, 50))) << depth << ": the further the less";
        EXPECT_EQ(redOf(picture.at(40, 50)), 0u) << depth << ": nothing of its own";
        EXPECT_EQ(picture.at(104, 90), cnWhite) << depth << ": off the stroke";
    }
    std::vector<std::string> water = size;
    water.insert(water.end(), {"--preset", "water"});
    const Colour wet = draw(water).at(60, 50);
    EXPECT_GT(blueOf(wet), redOf(wet));
    EXPECT_LT(blueOf(wet), 190u) << "mixed with the black that was there";
}

TEST(Names, AreReadInEveryUsualSpelling) {
    EXPECT_EQ(valueNamed(compositionNames(), "color-burn"), 11);
    EXPECT_EQ(valueNamed(compositionNames(), "ColorBurn"), 11);
    EXPECT_FALSE(valueNamed(compositionNames(), "colour"));
    EXPECT_STREQ(nameOf(cacheNames(), 2), "maximum");
    EXPECT_EQ(nameOf(cacheNames(), 4), nullptr);
}

} // namespace

} // namespace ovwpaint::test
