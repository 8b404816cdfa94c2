#include "tips.h"

#include "painting.h"
#include "pngwrite.h"

#include <set>

namespace ovwpaint::test {

namespace {

constexpr Colour cnWhite = 0xFFFFFFFF;
constexpr Colour cnBlack = 0xFF000000;

/// Stamps of image tips on pictures of 200 x 100.
class Tips : public OvwPaint {
protected:
    /// One stamp of `size` around the middle, without anti-aliasing.
    Picture stamp(const std::string& tip, int size, std::vector<std::string> more = {}) {
        m_strokes = ink("<trace>50 50 1</trace>");
        return paint(R"("overSampling": 0, "size": )" + std::to_string(size) + R"(, "drawColor": "#FF0000",)" +
                         R"("patterns": [")" + tip + "\"]",
                     std::move(more));
    }
    /// A line of stamps of 10 pixels, 10 apart, from x = 55 on.
    Picture line(const std::string& patterns) {
        m_strokes = ink("<trace>0 0 1, 90 0 1</trace>");
        return paint(R"("size": 10, "intervalKind": 3, "intervalAtFull": 100, "overSampling": 0, "patterns": )" +
                     patterns);
    }
    Picture paint(const std::string& fields, std::vector<std::string> more = {}) {
        const std::vector<std::string> basics = {
            "--brush", m_folder.write("b.json", "{" + fields + "}"), "--width", "200", "--height", "100", "--scale",
            "1"};
        more.insert(more.begin(), basics.begin(), basics.end());
        return draw(more);
    }
};

// At its own size and without anti-aliasing a tip is painted as it is.
TEST_F(Tips, StampPicturesOfEveryDepthAsTheyAre) {
    writeRawPng(m_folder.path("bits.png"), 8, 1, PNG_COLOR_TYPE_GRAY, 0,
                {{0x0F}, {0xF0}, {0x55}, {0xFF}, {0}, {0}, {0}, {0x7E}});
    writePng(m_folder.path("colours.png"), 8, 8, [](int x, int y) {
        return packColour(static_cast<std::uint32_t>(x * 30), static_cast<std::uint32_t>(y * 30), 9, y < 2 ? 0 : 255);
    });
    const Picture bits = stamp("bits.png", 8);
    const Picture colours = stamp("colours.png", 8);
    const int left = 97, top = 47; // a hard stamp goes half a pixel further
    const int rows[] = {0x0F, 0xF0, 0x55, 0xFF, 0, 0, 0, 0x7E};
    for (int y = 0; y < 8; ++y) {
        for (int x = 0; x < 8; ++x) {
            const Colour bit = rows[y] >> (7 - x) & 1 ? cnWhite : 0xFF0000FFu;
            EXPECT_EQ(bits.at(left + x, top + y), bit) << x << ' ' << y;
            const Colour own = packColour(static_cast<std::uint32_t>(x * 30), static_cast<std::uint32_t>(y * 30), 9);
            EXPECT_EQ(colours.at(left + x, top + y), y < 2 ? cnWhite : own) << x << ' ' << y;
        }
    }
    EXPECT_EQ(colours.countOther(cnWhite), 48u);
}

TEST_F(Tips, CoverByDarknessOrBrightness) {
    writeRawPng(m_folder.path("grey.png"), 4, 8, PNG_COLOR_TYPE_GRAY, 0,
                {{0, 64, 128, 255}, {0, 64, 128, 255}, {0, 64, 128, 255}, {0, 64, 128, 255}});
    writePng(m_folder.path("colour.png"), 4, 4, [](int x, int) { return packColour(128, 128, 128, x == 0 ? 0 : 255); });
    const Picture colour = stamp("colour.png", 4, {"--tip-grey"});
    EXPECT_EQ(colour.at(99, 50), cnWhite) << "transparent";
    EXPECT_NEAR(greenOf(colour.at(101, 50)), 128, 1);
    EXPECT_EQ(redOf(colour.at(101, 50)), 255u) << "the brush's colour";
    // Without a colour or a transparent pixel a picture is grey, though its file could hold both.
    writePng(m_folder.path("grey_rgba.png"), 4, 4, [](int x, int) {
        const auto level = static_cast<std::uint32_t>(x == 3 ? 255 : x * 64);
        return packColour(level, level, level);
    });
    for (const char* tip : {"grey.png", "grey_rgba.png"}) {
        const Picture dark = stamp(tip, 4), bright = stamp(tip, 4, {"--tip-invert"});
        for (int x = 0; x < 4; ++x) {
            const int level = x == 3 ? 255 : x * 64;
            EXPECT_NEAR(greenOf(dark.at(99 + x, 50)), level, 1) << tip << x;
            EXPECT_NEAR(greenOf(bright.at(99 + x, 50)), 255 - level, 1) << tip << x;
        }
    }
}

TEST_F(Tips, TakeTurnsInTheirOrder) {
    const Colour colours[] = {packColour(255, 0, 0), packColour(0, 255, 0), packColour(0, 0, 255)};
    std::string list = "[";
    for (int i = 0; i < 3; ++i) {
        const std::string name = std::to_string(i) + ".png";
        // One pixel is transparent, so that the picture counts as one with colours.
        writePng(m_folder.path(name), 9, 9, [&](int x, int y) { return x + y == 0 ? 0 : colours[i]; });
        list += (i == 0 ? "\"" : ", \"") + name + "\"";
    }
    const auto order = [&](const char* name) {
        const Picture picture = line(list + R"(], "patternOrder": ")" + name + "\"");
        std::string tips;
        for (int stamp = 0; stamp < 8; ++stamp) {
            const Colour colour = picture.at(56 + stamp * 10, 51);
            tips += std::string("RGB")[std::find(std::begin(colours), std::end(colours), colour) - colours];
        }
        return tips;
    };
    EXPECT_EQ(order("cyclic"), "RGBRGBRG");
    EXPECT_EQ(order("back-and-forth"), "RGBGRGBG");
    const std::string random = order("random");
    EXPECT_GT(std::set<char>(random.begin(), random.end()).size(), 1u) << random;
    EXPECT_EQ(order("random"), random) << "the same again";
}

TEST_F(Tips, PaintTheSameAcrossBlocksAsInsideOne) {
    m_strokes = ink("<trace>0 0 1, 30 8 0.4, 60 0 0.8</trace>");
    for (const char* preset : {"bristle", "garland", "rope", "dry-brush", "blur"}) {
        const auto paintOn = [&](int side) {
            const std::string backdrop = writePng(m_folder.path("p.png"), side, side, [&](int x, int y) {
                return (x - side / 2) / 5 % 2 == (y - side / 2) / 5 % 2 ? cnWhite : packColour(90, 120, 200);
            });
            return draw({"--preset", preset, "--backdrop", backdrop, "--scale", "1"});
        };
        const Picture inside = paintOn(200); // around (100, 100)
        const Picture across = paintOn(512); // around (256, 256), where four blocks meet
        for (int y = -50; y < 50; ++y) {
            for (int x = -80; x < 80; ++x)
                ASSERT_EQ(across.at(256 + x, 256 + y), inside.at(100 + x, 100 + y)) << preset << x << ' ' << y;
        }
    }
}

TEST_F(Tips, BendAlongTheStroke) {
    writePng(m_folder.path("t.png"), 16, 16,
             [](int x, int) { return x < 8 ? packColour(255, 0, 0) : packColour(0, 0, 255, x == 15 ? 254 : 255); });
    m_strokes = ink("<trace>0 0 1, 80 0 1</trace>");
    const std::string fields = R"("size": 20, "bendFlag": 1, "patterns": ["t.png"])";
    for (const std::vector<std::string>& joining : {std::vector<std::string>{}, {"--straight"}}) {
        const Picture right = paint(fields, joining); // to the right: the tip's left side is up
        EXPECT_EQ(right.at(100, 45), packColour(255, 0, 0));
        EXPECT_EQ(right.at(100, 55), packColour(0, 0, 255));
        EXPECT_EQ(right.at(100, 62), cnWhite);
    }
    m_strokes = ink("<trace>80 0 1, 0 0 1</trace>");
    EXPECT_EQ(paint(fields).at(100, 55), packColour(255, 0, 0)) << "and back again";
}

TEST_F(Tips, SplatterAnotherWayEachTime) {
    const auto splatter = [&](const char* seed) { return stamp(cnSplatterTip, 60, {"--seed", seed}); };
    const Picture first = splatter("1");
    EXPECT_GT(first.countOther(cnWhite), 100u);
    EXPECT_EQ(splatter("1").pixels, first.pixels);
    EXPECT_NE(splatter("2").pixels, first.pixels);
}

TEST_F(Tips, BlurWhatIsThere) {
    const std::string backdrop =
        writePng(m_folder.path("p.png"), 200, 100, [](int x, int) { return x < 100 ? cnBlack : cnWhite; });
    m_strokes = ink("<trace>50 50 1</trace>");
    const Picture picture = paint(R"("size": 60, "blurRadius": 8)", {"--backdrop", backdrop});
    for (int x = 85; x < 115; ++x)
        EXPECT_LE(redOf(picture.at(x - 1, 50)), redOf(picture.at(x, 50))) << x;
    EXPECT_NEAR(redOf(picture.at(99, 50)), 128, 30);
    EXPECT_EQ(picture.at(70, 50), cnBlack) << "even ground stays";
    EXPECT_EQ(picture.at(99, 90), cnBlack) << "off the stroke";
}

TEST_F(Tips, CloneThePictureItself) {
    const std::string backdrop =
        writePng(m_folder.path("p.png"), 200, 100, [](int x, int y) { return x < 20 && y < 20 ? cnBlack : cnWhite; });
    m_strokes = ink("<trace>50 50 1</trace>");
    const Picture picture =
        paint(R"("size": 16, "cloneFlag": 1, "cloneX": -90, "cloneY": -40)", {"--backdrop", backdrop});
    EXPECT_EQ(picture.at(100, 50), cnBlack);
    EXPECT_EQ(picture.at(115, 50), cnWhite);
    EXPECT_GT(picture.countOther(cnWhite), 400u + 150u);
}

TEST_F(Tips, SurviveEverySize) {
    m_strokes = ink("<trace>50 50 1, 60 60 0</trace><trace>900 900 1</trace>");
    const std::string fields[] = {
        R"("patterns": ["builtin:leaf-red", "builtin:star"], "size": 10000)",
        R"("patterns": ["builtin:rope"], "size": 10000, "bendFlag": 1)",
        R"("patterns": ["builtin:crumb"], "size": 1, "sizeControl": 2, "rateAtFull": 0)",
        R"("patterns": ["builtin:splatter"], "size": 1)",
        R"("size": 10000, "mask": "builtin:stencil", "texture": "builtin:grain")",
        R"("size": 2000, "blurRadius": 200)",
    };
    for (const std::string& field : fields)
        EXPECT_EQ(paint(field).width, 200) << field;
}

} // namespace

} // namespace ovwpaint::test
