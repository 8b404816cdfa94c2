#include "brushfile.h"

#include "brushfields.h"
#include "colour.h"
#include "failure.h"
#include "inkread.h"
#include "presets.h"

#include <gtest/gtest.h>

namespace ovwpaint::test {

namespace {

std::string brushFailure(const std::string& json) {
    try {
        parseBrush(json, "b.json");
    } catch (const Failure& failure) {
        return failure.what();
    }
    return "";
}

TEST(BrushFile, FillsTheFieldsByName) {
    const Brush brush = parseBrush("\xEF\xBB\xBF"
                                   R"({
        "size": 12, "sizeMin": 40, "sizeControl": 3, "hardness": 0, "opacity": 128,
        "drawColor": "#102030", "subColor": "#0f08", "rateAtFull": 0.25, "angle": -1, "angleControl": 72,
        "methodKind": 2, "cacheKind": 3, "useCache": 0, "patternKind": 2,
        "polygon": [[0, -1], [1, 1], [-1, 0.5]], "fixedPlots": [[0.5, 0]]})",
                                   "b.json");
    EXPECT_EQ(brush.size.size, 12);
    EXPECT_EQ(brush.size.sizeMin, 40);
    EXPECT_EQ(brush.size.sizeControl, 3);
    EXPECT_EQ(brush.hardness.hardness, 0);
    EXPECT_EQ(brush.color.opacity, 128);
    EXPECT_EQ(brush.color.drawColor, 0xFF302010u);
    EXPECT_EQ(brush.color.subColor, 0x8800FF00u);
    EXPECT_EQ(brush.sizeRate.rateAtFull, 0.25f);
    EXPECT_EQ(brush.rotate.angle, -1.0f);
    EXPECT_EQ(brush.method.methodKind, 2);
    EXPECT_EQ(brush.method.cacheKind, 3);
    EXPECT_EQ(brush.method.useCache, 0);
    ASSERT_EQ(brush.pattern.polygon.GetSize(), 3);
    EXPECT_EQ(brush.pattern.polygon[2].y, 0.5);
    EXPECT_EQ(brush.airbrush.fixedPlots[0].x, 0.5);
    EXPECT_EQ(brush.interval.intervalAtFull, PDPARAM_INTERVAL().intervalAtFull) << "left out: the default";
}

TEST(BrushFile, NamesTheFieldThatIsWrong) {
    struct Case {
        std::string json;
        const char* message; ///< how it begins
    };
    const Case cases[] = {
        {R"({"siz": 3})", "b.json: field \"siz\": no such field"},
        {R"({"PDPARAM_SIZE": {"size": 3}})", "b.json: field \"PDPARAM_SIZE\": no such field"},
        {R"({"size": "3"})", "b.json: field \"size\": a whole number is needed, not string"},
        {R"({"size": 3.5})", "b.json: field \"size\": a whole number is needed, not number"},
        {R"({"size": true})", "b.json: field \"size\": a whole number is needed, not boolean"},
        {R"({"size": 0})", "b.json: field \"size\": 0 is out of range (1 to 10000)"},
        {R"({"size": 18446744073709551615})", "b.json: field \"size\": 18446744073709551615 is out of range"},
        {R"({"sizeMin": 256})", "b.json: field \"sizeMin\": 256 is out of range (0 to 255)"},
        {R"({"sizeControl": 8})", "b.json: field \"sizeControl\": 8 is out of range (a sum of the bits of 39)"},
        {R"({"rateAtFull": 1e9})", "b.json: field \"rateAtFull\": 1000000000.0 is out of range (0.0 to 100.0)"},
        {R"({"rateAtFull": null})", "b.json: field \"rateAtFull\": a number is needed, not null"},
        {R"({"drawColor": "#12"})", "b.json: field \"drawColor\": \"#12\" is no colour"},
        {R"({"drawColor": 4278190080})", "b.json: field \"drawColor\": a colour such as \"#204080FF\" is needed"},
        {R"({"polygon": [[0, 0], [1, 1]]})", "b.json: field \"polygon\": 2 points are out of range (3 to 1000)"},
        {R"({"polygon": [[0], [1, 1], [2, 2]]})", "b.json: field \"polygon\": a list of points [x, y] is needed"},
        {R"({"polygon": [[0, 99], [1, 1], [2, 2]]})", "b.json: field \"polygon\": [0,99] is out of range"},
        {R"({"patterns": []})", "b.json: field \"patterns\": 0 tips are out of range (1 to 32)"},
        {R"({"patterns": "t.png"})",
         "b.json: field \"patterns\": a list of the names of PNG files is needed, not string"},
        {R"({"patterns": [3]})", "b.json: field \"patterns\": the name of a PNG file is needed, not number"},
        {R"({"patterns": [""]})", "b.json: field \"patterns\": \"\" is no file name"},
        {R"({"patterns": ["none.png"]})", "b.json: field \"patterns\": none.png: no such file"},
        {R"({"patterns": ["builtin:moon"]})",
         "b.json: field \"patterns\": \"builtin:moon\" is none of builtin:splatter"},
        {R"({"patternKind": "image"})", "b.json: field \"patternKind\": image tips are needed in \"patterns\""},
        {R"({"splatterSpread": 1.5})", "b.json: field \"splatterSpread\": 1.5 is out of range (0.0 to 1.0)"},
        {R"({"blurRadius": 201})", "b.json: field \"blurRadius\": 201 is out of range (0 to 200)"},
        {R"({"mask": 1})", "b.json: field \"mask\": the name of a PNG file is needed, not number"},
        {R"({"size": 3, "opacity": 5, "size": 3})", "b.json: field \"size\": given twice"},
        {R"({"size": NaN})", "b.json: parse error at line 1, column 10"},
        {R"({"size": 3)", "b.json: parse error at line 1"},
        {R"({"\ud800": 3})", "b.json: parse error at line 1"},
        {"", "b.json: parse error at line 1"},
        {"[1]", "b.json: a brush is a JSON object, this is array"},
        {"3", "b.json: a brush is a JSON object, this is number"},
        {"{\"size\": " + std::string(10000, '['), "b.json: nested too deeply for a brush"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(brushFailure(c.json).substr(0, std::string(c.message).size()), c.message) << c.json.substr(0, 80);
    EXPECT_THROW(readBrushFile("/nonexistent/brush.json"), Failure);
}

TEST(BrushFile, ReadsBackWhatItWrites) {
    for (const Preset& preset : presets()) {
        const std::string text = formatBrush(brushOf(preset));
        EXPECT_EQ(formatBrush(parseBrush(text, "b.json")), text) << preset.name;
    }
    Brush brush;
    brush.sizeRate.rateAtFull = 0.1f;
    brush.airbrush.sprayFlags = cnSprayScatter | cnSprayFixedPlots;
    brush.airbrush.plotCountAtFull = 2;
    brush.airbrush.fixedPlots[1] = {0.25, -1.0};
    const Brush read = parseBrush(formatBrush(brush), "b.json");
    EXPECT_EQ(read.sizeRate.rateAtFull, 0.1f);
    EXPECT_EQ(read.airbrush.fixedPlots[1].y, -1.0);
}

TEST(BrushFile, DefaultsAndPresetsAreWithinTheRanges) {
    for (const Preset& preset : presets()) {
        Brush brush = brushOf(preset);
        for (const IntegerField& field : integerFields())
            EXPECT_TRUE(field.accepts(field.in(brush))) << preset.name << ' ' << field.name;
        for (const NumberField& field : numberFields())
            EXPECT_TRUE(field.in(brush) >= field.least && field.in(brush) <= field.most) << field.name;
    }
}

TEST(Colour, ReadsNamesAndHexadecimal) {
    EXPECT_EQ(parseColour("White"), 0xFFFFFFFFu);
    EXPECT_EQ(parseColour("#123"), 0xFF332211u);
    EXPECT_EQ(parseColour("#1234"), 0x44332211u);
    EXPECT_EQ(parseColour("#A1b2C3"), 0xFFC3B2A1u);
    EXPECT_EQ(parseColour("#A1B2C3D4"), 0xD4C3B2A1u);
    EXPECT_EQ(formatColour(0xD4C3B2A1u), "#A1B2C3D4");
    for (const char* bad : {"", "#", "#12", "#12345", "#1234567", "#12345G", "#-12", "mauve", "123"})
        EXPECT_FALSE(parseColour(bad)) << bad;
}

} // namespace

} // namespace ovwpaint::test
