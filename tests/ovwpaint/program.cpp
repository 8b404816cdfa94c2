#include "interrupt.h"
#include "painting.h"
#include "pngwrite.h"
#include "presets.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace ovwpaint::test {

namespace {

constexpr Colour cnWhite = 0xFFFFFFFF;
constexpr Colour cnBlack = 0xFF000000;

TEST_F(OvwPaint, PaintsStrokesAndTaps) {
    const Picture picture = draw({"--width", "200", "--height", "100", "--scale", "1", "--brush",
                                  m_folder.write("b.json", R"({"size": 6, "drawColor": "#FF0000", "cacheKind": 2})")});
    ASSERT_EQ(picture.width, 200);
    ASSERT_EQ(picture.height, 100);
    // The extent, (10, 10) to (90, 40), is centred: (50, 25) lies at (100, 50).
    EXPECT_EQ(picture.at(110, 65), 0xFF0000FFu) << "the tap";
    EXPECT_EQ(picture.at(61, 35), 0xFF0000FFu) << "the line's start";
    EXPECT_EQ(picture.at(139, 35), 0xFF0000FFu) << "the line's end";
    EXPECT_EQ(picture.at(110, 50), cnWhite);
    EXPECT_EQ(picture.at(0, 0), cnWhite);
}

TEST_F(OvwPaint, PaintsTheSamePictureAgain) {
    const std::vector<std::string> airbrush = {"--preset", "airbrush", "--seed", "5"};
    const Picture first = draw(airbrush);
    EXPECT_EQ(draw(airbrush).pixels, first.pixels);
    EXPECT_NE(draw({"--preset", "airbrush", "--seed", "6"}).pixels, first.pixels);
}

TEST_F(OvwPaint, PaintsAtEveryDepth) {
    const std::pair<const char*, std::pair<int, int>> forms[] = {
        {"1", {1, PNG_COLOR_TYPE_GRAY}}, {"2", {2, PNG_COLOR_TYPE_PALETTE}},
        {"8", {8, PNG_COLOR_TYPE_GRAY}}, {"16", {8, PNG_COLOR_TYPE_GRAY_ALPHA}},
        {"24", {8, PNG_COLOR_TYPE_RGB}}, {"32", {8, PNG_COLOR_TYPE_RGB_ALPHA}},
    };
    for (const char* preset : {"ink-pen", "pencil", "leaves", "splatter", "rope", "dry-brush"}) {
        for (const auto& [depth, form] : forms) {
            const Picture picture = draw({"--preset", preset, "--depth", depth});
            EXPECT_EQ(picture.bitDepth, form.first) << depth;
            EXPECT_EQ(picture.colourType, form.second) << depth;
            EXPECT_GT(picture.countOther(cnWhite), 20u) << preset << " at " << depth;
            EXPECT_EQ(picture.at(0, 0), cnWhite) << preset << " at " << depth;
        }
    }
}

// A picture with light, dark and coloured parts shows the work of them all, also of those that only smudge or blur.
TEST_F(OvwPaint, PaintsWithEveryPreset) {
    const Colour colours[] = {cnWhite, packColour(90, 60, 30), packColour(180, 200, 160), cnBlack};
    const std::string backdrop =
        writePng(m_folder.path("p.png"), 90, 50, [&](int x, int y) { return colours[(x / 7 + y / 9) % 4]; });
    const std::vector<std::string> common = {"--backdrop", backdrop, "--scale", "0.8", "--depth"};
    for (const char* depth : {"8", "32"}) {
        const auto paint = [&](std::vector<std::string> brush) {
            brush.insert(brush.begin(), common.begin(), common.end());
            brush.insert(brush.begin() + static_cast<std::ptrdiff_t>(common.size()), depth);
            return draw(brush).pixels;
        };
        const std::vector<Colour> untouched = paint({"--mask", backdrop, "--mask-offset", "500,500"});
        for (const Preset& preset : presets())
            EXPECT_NE(paint({"--preset", std::string(preset.name)}), untouched) << preset.name << " at " << depth;
    }
}

TEST_F(OvwPaint, ErasesFromInkByDefault) {
    const Picture picture = draw({"--preset", "eraser"});
    EXPECT_EQ(picture.at(0, 0), cnBlack);
    bool erased = false;
    for (const Colour pixel : picture.pixels)
        erased = erased || alphaOf(pixel) == 0;
    EXPECT_TRUE(erased);
    EXPECT_GT(draw({"--preset", "eraser", "--depth", "24"}).countOther(cnBlack), 0u) << "paints white without alpha";
}

TEST_F(OvwPaint, LetsTheBackgroundThrough) {
    EXPECT_EQ(draw({"--background", "#10203040"}).at(0, 0), 0x40302010u);
    EXPECT_EQ(draw({"--background", "#000000", "--depth", "8"}).at(0, 0), cnBlack);
    EXPECT_EQ(draw({"--background", "#00000080", "--depth", "24"}).at(0, 0), 0xFF7F7F7Fu) << "over white paper";
    EXPECT_EQ(draw({"--background", "transparent", "--depth", "2"}).at(0, 0) >> 24, 0u);
}

// The strokes are painted one over the other, each composed with the picture as the one before left it.
TEST_F(OvwPaint, KeepsEarlierStrokesUnderLaterOnes) {
    m_strokes = ink("<trace>10 50 1, 90 50 1</trace><trace>50 10 1, 50 90 1</trace>");
    const std::string marker = m_folder.write("b.json", R"({"size": 20, "drawColor": "#000000", "opacity": 128,
        "cacheKind": 2, "intervalKind": 3, "intervalAtFull": 5})");
    const Picture picture = draw({"--brush", marker, "--width", "300", "--height", "300", "--scale", "1"});
    const auto grey = [&](int x, int y) { return static_cast<int>(redOf(picture.at(x, y))); };
    EXPECT_NEAR(grey(120, 150), 127, 2) << "even along a stroke, though its stamps overlap";
    EXPECT_NEAR(grey(130, 150), 127, 2);
    EXPECT_NEAR(grey(150, 120), 127, 2);
    EXPECT_NEAR(grey(150, 150), 63, 2) << "darker where two strokes cross";
}

TEST_F(OvwPaint, PaintsTheSameAcrossBlocksAsInsideOne) {
    m_strokes = ink("<trace>0 0 1, 30 8 0.4, 60 0 0.8</trace>");
    const auto paint = [&](const char* side) {
        return draw({"--preset", "pencil", "--width", side, "--height", side, "--scale", "1"});
    };
    const Picture inside = paint("200"); // around (100, 100)
    const Picture across = paint("512"); // around (256, 256), where four blocks meet
    for (int y = -40; y < 40; ++y) {
        for (int x = -60; x < 60; ++x)
            ASSERT_EQ(across.at(256 + x, 256 + y), inside.at(100 + x, 100 + y)) << x << ' ' << y;
    }
}

TEST_F(OvwPaint, JoinsContinuedTraces) {
    const std::string whole = "<trace>10 10 1, 30 20 1, 50 10 1, 70 20 1</trace>";
    const std::string parts = R"(<trace continuation="begin">10 10 1, 30 20 1</trace>
                                 <trace continuation="end">50 10 1, 70 20 1</trace>)";
    m_strokes = ink(whole);
    const Picture expected = draw();
    m_strokes = ink(parts);
    EXPECT_EQ(draw().pixels, expected.pixels);
}

TEST_F(OvwPaint, PaintsAStrokeAtOnePlaceAsADot) {
    m_strokes = ink("<trace>5 5 1, 5 5 1, 5 5 1</trace>");
    for (const char* control : {"0", "64"}) { // 64: the tip follows the direction, of which there is none
        const std::string brush =
            m_folder.write("b.json", std::string(R"({"size": 9, "rateAtFull": 0.5, "angleControl": )") + control + "}");
        EXPECT_GT(draw({"--brush", brush}).countOther(cnWhite), 10u) << control;
    }
}

TEST_F(OvwPaint, WorksWithLittleMemoryAndItsOwnSwapFolder) {
    const Picture expected = draw({"--scale", "12"});
    const std::string swap = m_folder.path("swap");
    std::filesystem::create_directory(swap);
    EXPECT_EQ(draw({"--scale", "12", "--memory", "4", "--swap", swap}).pixels, expected.pixels);
    EXPECT_TRUE(std::filesystem::is_empty(swap));
}

TEST_F(OvwPaint, ReplacesTheOutputOnlyWhenItIsDone) {
    m_folder.write("out.png", "old");
    chmod(m_picture.c_str(), 0640);
    const std::string bad = m_folder.write("bad.inkml", "<ink><trace>1 2, nan 3</trace></ink>");
    const Outcome failed = runWith({"draw", bad, "-o", m_picture});
    EXPECT_EQ(failed.code, cnExitFailure);
    EXPECT_EQ(failed.errors, "ovwpaint: " + bad + ": trace 1, sample 2: \"nan\" is no number\n");
    EXPECT_EQ(fileText(m_picture), "old");
    const std::size_t before = m_folder.fileCount();
    draw();
    EXPECT_EQ(m_folder.fileCount(), before) << "nothing is left beside it";
    struct stat status = {};
    ASSERT_EQ(stat(m_picture.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0640u);
}

TEST_F(OvwPaint, StopsWhenInterrupted) {
    m_folder.write("out.png", "old");
    const std::size_t before = m_folder.fileCount();
    *interruptFlag() = 1;
    const Outcome result = runWith({"draw", m_strokes, "-o", m_picture});
    *interruptFlag() = 0;
    EXPECT_EQ(result.code, cnExitInterrupted);
    EXPECT_EQ(result.errors, "ovwpaint: interrupted\n");
    EXPECT_EQ(fileText(m_picture), "old");
    EXPECT_EQ(m_folder.fileCount(), before);
}

TEST_F(OvwPaint, FollowsALinkToTheOutput) {
    m_folder.write("real.png", "old");
    std::filesystem::create_symlink("real.png", m_picture);
    draw();
    EXPECT_TRUE(std::filesystem::is_symlink(m_picture));
    EXPECT_GT(readPng(m_folder.path("real.png")).width, 0);
}

TEST_F(OvwPaint, ReportsFailuresInOneLine) {
    const std::pair<std::vector<std::string>, int> cases[] = {
        {{}, cnExitUsage},
        {{"draw"}, cnExitUsage},
        {{"draw", m_strokes}, cnExitUsage},
        {{"draw", m_strokes, "-o", m_picture, "--depth", "7"}, cnExitUsage},
        {{"draw", m_strokes, "-o", m_picture, "--width", "0"}, cnExitUsage},
        {{"draw", m_strokes, "-o", m_picture, "--scale", "nan"}, cnExitUsage},
        {{"draw", m_strokes, "-o", m_picture, "--background", "mauve"}, cnExitUsage},
        {{"draw", m_strokes, "-o", m_picture, "--preset", "quill"}, cnExitUsage},
        {{"draw", m_strokes, "-o", m_picture, "--seed", "-1"}, cnExitUsage},
        {{"draw", m_strokes, "-o", m_picture, "--preset", "pencil", "--brush", "b.json"}, cnExitUsage},
        {{"draw", m_strokes, "-o", m_picture, "--composition", "mauve"}, cnExitUsage},
        {{"draw", m_strokes, "-o", m_picture, "--cache", "4"}, cnExitUsage},
        {{"draw", m_strokes, "-o", m_picture, "--texture-mode", "4"}, cnExitUsage},
        {{"draw", m_strokes, "-o", m_picture, "--texture-density", "300"}, cnExitUsage},
        {{"draw", m_strokes, "-o", m_picture, "--tip-order", "shuffled"}, cnExitUsage},
        {{"draw", m_strokes, "-o", m_picture, "--blur", "-1"}, cnExitUsage},
        {{"draw", m_strokes, "-o", m_picture, "--bend"}, cnExitFailure},
        {{"draw", m_strokes, "-o", m_picture, "--tip", m_folder.path("none.png")}, cnExitFailure},
        {{"draw", m_strokes, "-o", m_picture, "--tip", m_strokes}, cnExitFailure},
        {{"draw", m_strokes, "-o", m_picture, "--tip", "builtin:star", "--blur", "3"}, cnExitFailure},
        {{"draw", m_strokes, "-o", m_picture, "--tip", "builtin:star", "--clone-offset", "3,3"}, cnExitFailure},
        {{"draw", m_strokes, "-o", m_picture, "--preset", "blur", "--clone-offset", "3,3"}, cnExitFailure},
        {{"draw", m_strokes, "-o", m_picture, "--preset", "blur", "--size", "5000"}, cnExitFailure},
        {{"draw", m_strokes, "-o", m_picture, "--mask-offset", "1,2"}, cnExitUsage},
        {{"draw", m_strokes, "-o", m_picture, "--mask", "m.png", "--mask-offset", "1"}, cnExitUsage},
        {{"draw", m_strokes, "-o", m_picture, "--clone", "m.png", "--clone-offset", "1,99999999"}, cnExitUsage},
        {{"draw", m_strokes, "-o", m_picture, "--texture", m_folder.path("none.png")}, cnExitFailure},
        {{"draw", m_strokes, "-o", m_picture, "--mask", m_strokes}, cnExitFailure},
        {{"draw", m_strokes, "-o", m_picture, "--clone", m_folder.path("")}, cnExitFailure},
        {{"draw", m_strokes, "-o", m_picture, "--backdrop", m_folder.path("none.png")}, cnExitFailure},
        {{"presets", "--json", "quill"}, cnExitUsage},
        {{"draw", m_folder.path("none.inkml"), "-o", m_picture}, cnExitFailure},
        {{"draw", m_folder.path(""), "-o", m_picture}, cnExitFailure},
        {{"draw", m_strokes, "-o", m_folder.path("none/out.png")}, cnExitFailure},
        {{"draw", m_strokes, "-o", m_folder.path("")}, cnExitFailure},
        {{"draw", m_strokes, "-o", m_strokes}, cnExitFailure},
        {{"draw", m_strokes, "-o", m_picture, "--swap", m_folder.path("none")}, cnExitFailure},
        {{"draw", m_strokes, "-o", m_picture, "--brush", m_folder.path("none.json")}, cnExitFailure},
        {{"draw", m_folder.write("far.inkml", "<ink><trace>0 0, 900000 9</trace></ink>"), "-o", m_picture},
         cnExitFailure},
        {{"draw", m_strokes, "-o", "/dev/full"}, cnExitFailure},
    };
    for (const auto& [arguments, code] : cases) {
        const Outcome result = runWith(arguments);
        const std::string what = testing::PrintToString(arguments);
        EXPECT_EQ(result.code, code) << what;
        EXPECT_TRUE(result.errors.starts_with("ovwpaint: ")) << what;
        EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1) << what << result.errors;
        EXPECT_EQ(result.output, "") << what;
    }
    EXPECT_FALSE(std::filesystem::exists(m_picture));
    EXPECT_GT(readInk(fileText(m_strokes)).size(), 0u) << "the input is untouched";
}

TEST_F(OvwPaint, AnswersHelpVersionAndPresets) {
    for (const std::vector<std::string>& arguments : {std::vector<std::string>{"--help"},
                                                      {"draw", "--help"},
                                                      {"--version"},
                                                      {"presets"},
                                                      {"presets", "--json", "pencil"}}) {
        const Outcome result = runWith(arguments);
        EXPECT_EQ(result.code, cnExitDone);
        EXPECT_NE(result.output, "");
        EXPECT_EQ(result.errors, "");
    }
    EXPECT_NE(runWith({"draw", "--help"}).output.find("130 interrupted"), std::string::npos);
    const std::string list = runWith({"presets"}).output;
    for (const Preset& preset : presets())
        EXPECT_NE(list.find(preset.name), std::string::npos) << preset.name;
}

TEST_F(OvwPaint, PaintsTheSamplesOfTheRepository) {
    int count = 0;
    for (const std::filesystem::directory_entry& entry : std::filesystem::directory_iterator(OVWPAINT_SAMPLES)) {
        m_strokes = entry.path().string();
        EXPECT_GT(draw().countOther(cnWhite), 1000u) << m_strokes;
        ++count;
    }
    EXPECT_GE(count, 4);
}

TEST_F(OvwPaint, PaintsWithTheBrushesOfTheRepository) {
    const std::string backdrop = writePng(m_folder.path("p.png"), 90, 50, [](int x, int y) {
        return x / 6 % 2 == y / 6 % 2 ? cnWhite : packColour(120, 90, 60);
    });
    const std::vector<Colour> untouched =
        draw({"--backdrop", backdrop, "--mask", backdrop, "--mask-offset", "99,0"}).pixels;
    int count = 0;
    for (const std::filesystem::directory_entry& entry :
         std::filesystem::directory_iterator(OVWPAINT_SAMPLES "/../brushes")) {
        if (entry.path().extension() != ".json")
            continue;
        EXPECT_NE(draw({"--backdrop", backdrop, "--brush", entry.path().string()}).pixels, untouched) << entry.path();
        ++count;
    }
    EXPECT_GE(count, 8);
}

TEST_F(OvwPaint, StartsFromAPresetPrintedAsABrushFile) {
    const std::string brush = m_folder.write("b.json", runWith({"presets", "--json", "tapered-ellipse"}).output);
    EXPECT_EQ(draw({"--brush", brush}).pixels, draw({"--preset", "tapered-ellipse"}).pixels);
}

} // namespace

} // namespace ovwpaint::test
