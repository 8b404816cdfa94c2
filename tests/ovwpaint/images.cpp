// The commands that work on saved images.
#include "interrupt.h"
#include "painting.h"
#include "pngwrite.h"

#include "ovwcmn/xcgeometry.h"

#include <tuple>

namespace ovwpaint::test {

namespace {

constexpr Colour cnWhite = packColour(255, 255, 255);
constexpr Colour cnBlack = packColour(0, 0, 0);
constexpr Colour cnRed = packColour(255, 0, 0);

class OvwPaintImages : public OvwPaint {
protected:
    void run(const std::vector<std::string>& arguments) {
        const Outcome result = runWith(arguments);
        EXPECT_EQ(result.code, cnExitDone) << testing::PrintToString(arguments);
        EXPECT_EQ(result.errors, "") << testing::PrintToString(arguments);
        m_output = result.output;
    }

    Picture convert(const std::string& input, std::vector<std::string> more) {
        more.insert(more.begin(), {"convert", input, "-o", m_picture});
        run(more);
        return readPng(m_picture);
    }

    /// Two colours, half covered ones and nothing, over more than one block.
    const std::string m_mixed = writePng(m_folder.path("mixed.png"), 300, 20, [](int x, int y) {
        const Colour colours[] = {cnWhite, cnBlack, packColour(200, 30, 90), packColour(10, 200, 60, 130),
                                  packColour(255, 255, 255, 0)};
        return colours[(x / 3 + y / 5) % 5];
    });
    std::string m_output;
};

TEST_F(OvwPaintImages, GoThroughStreamsAndBackAtEveryDepth) {
    const std::string stream = m_folder.path("s.image");
    const std::string before = m_folder.path("before.png");
    for (const char* depth : {"1", "2", "8", "16", "24", "32"}) {
        run({"convert", m_mixed, "-o", before, "--depth", depth});
        for (const char* form : {"--quiet", "--raw"}) {
            run({"convert", before, "-o", stream, form});
            run({"info", stream, "--header"});
            EXPECT_NE(m_output.find("300 x 20 pixels\ndepth       " + std::string(depth)), std::string::npos)
                << m_output;
            run({"convert", stream, "-o", m_picture});
            EXPECT_EQ(fileText(m_picture), fileText(before)) << depth << form;
        }
    }
    EXPECT_EQ(std::filesystem::file_size(stream), 2 * (1 + 4 + 4 * 65536) + 60u)
        << "two raw blocks of 32 bits, four section lengths, header (27 bytes) and extent (17)";
    EXPECT_EQ(readPng(m_picture).pixels, readPng(m_mixed).pixels);
}

TEST_F(OvwPaintImages, AreTurnedAndMirrored) {
    const std::string corner =
        writePng(m_folder.path("c.png"), 3, 2, [](int x, int y) { return x == 0 && y == 0 ? cnRed : cnBlack; });
    const struct {
        std::vector<std::string> arguments;
        XCSize size;
        XCPoint red;
    } cases[] = {{{"--rotate", "90"}, {2, 3}, {1, 0}},
                 {{"--rotate", "180"}, {3, 2}, {2, 1}},
                 {{"--rotate", "270"}, {2, 3}, {0, 2}},
                 {{"--mirror"}, {3, 2}, {2, 0}},
                 {{"--flip"}, {3, 2}, {0, 1}},
                 {{"--rotate", "90", "--mirror"}, {2, 3}, {0, 0}},
                 {{"--rotate", "270", "--flip"}, {2, 3}, {0, 0}}};
    for (const auto& turn : cases) {
        const Picture picture = convert(corner, turn.arguments);
        ASSERT_EQ(XCSize(picture.width, picture.height), turn.size);
        EXPECT_EQ(picture.at(turn.red.x, turn.red.y), cnRed) << testing::PrintToString(turn.arguments);
        EXPECT_EQ(picture.countOther(cnBlack), 1u);
    }
}

// Squares of 8 pixels and one colour are the same in every way of resizing.
TEST_F(OvwPaintImages, AreResizedInEveryWay) {
    const auto squares = [](int side) {
        return [side](int x, int y) { return (x / side + y / side) % 2 ? cnRed : cnBlack; };
    };
    const std::string board = writePng(m_folder.path("b.png"), 64, 32, squares(8));
    const std::tuple<const char*, int, bool> methods[] = {
        {"high", 4, true},         {"low", 4, true},           {"near-factor", 4, true},  {"nearest", 16, true},
        {"half", 4, false},        {"quarter", 2, false},      {"eighth", 1, false},      {"double", 16, false},
        {"fourfold", 32, false},   {"half-all", 4, false},     {"quarter-all", 2, false}, {"eighth-all", 1, false},
        {"double-all", 16, false}, {"fourfold-all", 32, false}};
    for (const auto& [method, side, needsSize] : methods) {
        std::vector<std::string> arguments = {"--method", method};
        if (needsSize)
            arguments.insert(arguments.end(), {"--resize", std::to_string(side * 8) + "x" + std::to_string(side * 4)});
        const std::string expected = writePng(m_folder.path("e.png"), side * 8, side * 4, squares(side));
        EXPECT_EQ(convert(board, arguments).pixels, readPng(expected).pixels) << method;
    }
}

TEST_F(OvwPaintImages, AreFlattenedAndTurnedGreyOrMono) {
    EXPECT_EQ(convert(m_mixed, {"--background", "#FF0000"}).countOther(0), 6000u);
    for (const Colour pixel : readPng(m_picture).pixels)
        ASSERT_EQ(alphaOf(pixel), 255u);
    const Picture mixed = readPng(m_mixed);
    const Picture grey = convert(m_mixed, {"--grey"});
    const Picture inverted = convert(m_mixed, {"--grey", "--invert"});
    for (std::size_t i = 0; i < 6000; ++i) {
        const Colour colour = over(mixed.pixels[i], cnWhite);
        ASSERT_NEAR(static_cast<int>(redOf(grey.pixels[i])), static_cast<int>(greyOf(colour)), 1);
        ASSERT_EQ(redOf(grey.pixels[i]) + redOf(inverted.pixels[i]), 255u);
    }
    for (const char* dither : {"edges", "even"}) {
        const Picture mono = convert(m_mixed, {"--mono", dither});
        EXPECT_EQ(mono.at(0, 0), cnWhite);
        EXPECT_EQ(mono.at(4, 0), cnBlack);
        EXPECT_EQ(alphaOf(mono.at(13, 0)), 0u);
    }
    EXPECT_EQ(convert(m_mixed, {"--mono", "edges", "--depth", "1"}).bitDepth, 1);
}

TEST_F(OvwPaintImages, TellAboutThemselves) {
    const std::string stream = m_folder.path("s.image");
    run({"convert", m_mixed, "-o", stream});
    run({"info", stream});
    EXPECT_EQ(m_output, "form        image stream\nsize        300 x 20 pixels\ndepth       32 bits a pixel\n"
                        "resolution  96 pixels an inch\nblocks      2 of 2 (2 x 1)\nextent      (0, 0) to (300, 20)\n"
                        "memory      524288 bytes\ncolours     4\n");
}

TEST_F(OvwPaintImages, AreFilledUpToTheirEdges) {
    const std::string ring = writePng(m_folder.path("r.png"), 9, 9, [](int x, int y) {
        const int distance = std::max(std::abs(x - 4), std::abs(y - 4));
        return distance == 3 ? cnBlack : distance == 2 ? packColour(250, 250, 250) : cnWhite;
    });
    run({"fill", ring, "-o", m_picture, "--at", "4,4", "--colour", "#FF0000"});
    EXPECT_EQ(m_output.substr(0, 9), "9 pixels ");
    EXPECT_EQ(readPng(m_picture).at(4, 3), cnRed);
    run({"fill", ring, "-o", m_picture, "--at", "4,4", "--colour", "#FF0000", "--margin", "5"});
    EXPECT_EQ(m_output.substr(0, 10), "25 pixels ");
    run({"fill", m_picture, "-o", m_picture, "--at", "0,0", "--colour", "#FF0000", "--source", m_mixed});
    EXPECT_EQ(m_output.substr(0, 10), "12 pixels ") << "of 3 x 5, three are red already";
    EXPECT_EQ(readPng(m_picture).at(1, 4), cnRed);
    const Outcome outside = runWith({"fill", ring, "-o", m_picture, "--at", "9,0", "--colour", "white"});
    EXPECT_EQ(outside.code, cnExitFailure);
}

TEST_F(OvwPaintImages, ArePaintedOntoAtEveryDepth) {
    const std::string image = m_folder.path("s.image");
    for (const char* depth : {"1", "2", "8", "16", "24", "32"}) {
        run({"convert", m_mixed, "-o", image, "--depth", depth, "--resize", "120x80"});
        const std::vector<Colour> before = convert(image, {}).pixels;
        for (const char* preset : {"ink-pen", "pencil"}) {
            run({"draw", m_strokes, "--onto", image, "-o", image, "--preset", preset});
            const Picture after = convert(image, {});
            EXPECT_NE(after.pixels, before) << depth;
            EXPECT_EQ(after.at(0, 79), before[79 * 120]) << "away from the strokes, at " << depth;
        }
        run({"info", image, "--header"});
        EXPECT_NE(m_output.find("120 x 80 pixels\ndepth       " + std::string(depth)), std::string::npos) << m_output;
    }
}

TEST_F(OvwPaintImages, AreSmoothed) {
    const std::string stair =
        writePng(m_folder.path("stair.png"), 40, 20, [](int x, int y) { return y < 5 + x / 8 ? cnBlack : cnWhite; });
    run({"smooth", stair, "-o", m_picture});
    const Picture smooth = readPng(m_picture);
    int mixed = 0;
    for (const Colour pixel : smooth.pixels)
        mixed += pixel != cnBlack && pixel != cnWhite;
    EXPECT_GT(mixed, 8);
    EXPECT_EQ(smooth.at(3, 1), cnBlack);
    EXPECT_EQ(smooth.at(3, 18), cnWhite);
}

TEST_F(OvwPaintImages, StayWhenACommandFailsOrIsInterrupted) {
    const std::string old = m_folder.write("out.png", "old");
    const std::string text = m_folder.write("text", "no picture at all");
    const std::pair<std::vector<std::string>, int> cases[] = {
        {{"convert", text, "-o", old}, cnExitFailure},
        {{"convert", m_folder.path("none"), "-o", old}, cnExitFailure},
        {{"convert", m_folder.path(""), "-o", old}, cnExitFailure},
        {{"convert", m_mixed, "-o", old, "--method", "low"}, cnExitFailure},
        {{"convert", m_mixed, "-o", old, "--method", "half", "--resize", "9x9"}, cnExitFailure},
        {{"convert", m_mixed, "-o", old, "--grey", "--mono", "even"}, cnExitFailure},
        {{"convert", m_mixed, "-o", old, "--resize", "9x"}, cnExitUsage},
        {{"convert", m_mixed, "-o", old, "--rotate", "45"}, cnExitUsage},
        {{"convert", m_mixed, "-o", "/dev/full"}, cnExitFailure},
        {{"info", text}, cnExitFailure},
        {{"fill", text, "-o", old, "--at", "1,1", "--colour", "red"}, cnExitFailure},
        {{"smooth", text, "-o", old}, cnExitFailure},
        {{"draw", m_strokes, "--onto", text, "-o", old}, cnExitFailure},
        {{"draw", m_strokes, "--onto", m_mixed, "-o", old, "--width", "9"}, cnExitUsage},
    };
    for (const auto& [arguments, code] : cases) {
        const Outcome result = runWith(arguments);
        EXPECT_EQ(result.code, code) << testing::PrintToString(arguments);
        EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1) << result.errors;
    }
    const std::string stream = m_folder.path("s.image");
    run({"convert", m_mixed, "-o", stream});
    *interruptFlag() = 1;
    for (const std::string& input : {m_mixed, stream})
        for (const std::string& output : {old, text})
            EXPECT_EQ(runWith({"convert", input, "-o", output}).code, cnExitInterrupted);
    *interruptFlag() = 0;
    EXPECT_EQ(fileText(old), "old");
    EXPECT_EQ(fileText(text), "no picture at all");
}

TEST_F(OvwPaintImages, ThatAreCutShortAreRefused) {
    const std::string stream = m_folder.path("s.image");
    run({"convert", m_mixed, "-o", stream});
    const std::string whole = fileText(stream);
    for (const std::size_t size : {std::size_t{0}, std::size_t{7}, std::size_t{60}, whole.size() - 1}) {
        m_folder.write("s.image", whole.substr(0, size));
        EXPECT_EQ(runWith({"convert", stream, "-o", m_picture}).code, cnExitFailure) << size;
    }
    EXPECT_FALSE(std::filesystem::exists(m_picture));
}

} // namespace

} // namespace ovwpaint::test
