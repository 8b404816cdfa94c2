#include "inkread.h"

#include <gtest/gtest.h>

#include <cmath>

namespace ovwpaint::test {

namespace {

const std::string cnPlainXY = R"(<channel name="X"/><channel name="Y"/>)";

struct PositionCase {
    const char* what;
    std::string xml;
    std::vector<std::pair<double, double>> expected;
};

std::vector<std::pair<double, double>> positionsOf(const Strokes& strokes) {
    std::vector<std::pair<double, double>> positions;
    for (const std::vector<PenSample>& stroke : strokes) {
        for (const PenSample& sample : stroke)
            positions.emplace_back(sample.x, sample.y);
    }
    return positions;
}

TEST(InkDocument, ReadsTheWaysOfWritingPositions) {
    const std::string swapped = R"(<channel name="Z"/><channel name="Y"/><channel name="X"/>)";
    const PositionCase cases[] = {
        {"implied format", "<ink><trace>1 2, 3 4</trace></ink>", {{1, 2}, {3, 4}}},
        {"comma at the end", "<ink><trace>1 2, 3 4,</trace></ink>", {{1, 2}, {3, 4}}},
        {"nothing between commas", "<ink><trace>1 2,, ,3 4</trace></ink>", {{1, 2}, {3, 4}}},
        {"an empty trace", "<ink><trace/><trace> </trace><trace>5 6</trace></ink>", {{5, 6}}},
        {"line breaks", "<ink><trace>\r\n1\r\n2,\r\n3\t4\r\n</trace></ink>", {{1, 2}, {3, 4}}},
        {"a comment inside", "<ink><trace>1 2, 3<!-- here --> 4</trace></ink>", {{1, 2}, {3, 4}}},
        {"character data", "<ink><trace><![CDATA[1 2, 3 4]]></trace></ink>", {{1, 2}, {3, 4}}},
        {"signs and exponents", "<ink><trace>-1.5e1 +2, .5-.25</trace></ink>", {{-15, 2}, {0.5, -0.25}}},
        {"hexadecimal", "<ink><trace>#10 #fF</trace></ink>", {{16, 255}}},
        {"tiny", "<ink><trace>1e-999 1</trace></ink>", {{0, 1}}},
        {"forty digits", "<ink><trace>1.000000000000000000000000000000000000001 2</trace></ink>", {{1, 2}}},
        {"differences", "<ink><trace>10 20, '1'-2, 3 4</trace></ink>", {{10, 20}, {11, 18}, {14, 22}}},
        {"second differences",
         "<ink><trace>0 0,'10'20,\"1\"2,1 2</trace></ink>",
         {{0, 0}, {10, 20}, {21, 42}, {33, 66}}},
        {"back to values", "<ink><trace>1 1,'1'1,!9!9,8 8</trace></ink>", {{1, 1}, {2, 2}, {9, 9}, {8, 8}}},
        {"wildcards", "<ink><trace>1 2, * 3, 4 ?</trace></ink>", {{1, 2}, {1, 3}, {4, 3}}},
        {"no position yet", "<ink><trace>? 2, 4 *</trace></ink>", {{4, 2}}},
        {"other order", inkWith(swapped, "<trace contextRef=\"#c\">9 2 1, 9 4 3</trace>"), {{1, 2}, {3, 4}}},
        {"only context implied", inkWith(swapped, "<trace>9 2 1</trace>"), {{1, 2}}},
        {"values beyond the channels", inkWith(cnPlainXY, "<trace>1 2 7 8, 3 4</trace>"), {{1, 2}, {3, 4}}},
        {"a format without context",
         "<ink><traceFormat><channel name=\"Y\"/><channel name=\"X\"/></traceFormat><trace>2 1</trace></ink>",
         {{1, 2}}},
        {"the standard's own context", "<ink><trace contextRef=\"#DefaultContext\">1 2</trace></ink>", {{1, 2}}},
        {"upwards",
         inkWith(R"(<channel name="X"/><channel name="Y" orientation="-ve"/>)", "<trace>1 2</trace>"),
         {{1, -2}}},
        {"intermittent channel",
         inkWith(cnPlainXY + R"(<intermittentChannels><channel name="B" type="boolean"/></intermittentChannels>)",
                 "<trace>1 2 T, 3 4, 5 6 F</trace>"),
         {{1, 2}, {3, 4}, {5, 6}}},
    };
    for (const PositionCase& c : cases)
        EXPECT_EQ(positionsOf(readInk(c.xml)), c.expected) << c.what;
}

TEST(InkDocument, ConvertsUnitsToPixelsAt96AnInch) {
    struct Case {
        const char* channel;
        const char* property;
        double x; ///< of the value 200
    };
    const Case cases[] = {
        {R"(<channel name="X" units="in"/>)", "", 200 * 96.0},
        {R"(<channel name="X" units="cm"/>)", "", 200 * 96.0 / 2.54},
        {R"(<channel name="X" units="mm"/>)", "", 200 * 96.0 / 25.4},
        {R"(<channel name="X" units="pt"/>)", "", 200 * 96.0 / 72},
        {R"(<channel name="X" units="dev"/>)", "", 200},
        {R"(<channel name="X" type="integer" units="in"/>)",
         R"(<channelProperty channel="X" name="resolution" value="1000" units="1/in"/>)", 19.2},
        {R"(<channel name="X" type="integer" units="cm"/>)",
         R"(<channelProperty channel="X" name="resolution" value="1000" units="1/cm"/>)", 200 * 96 / 2.54 / 1000},
        // Decimal values are in the unit itself, whatever the resolution of the device.
        {R"(<channel name="X" type="decimal" units="mm"/>)",
         R"(<channelProperty channel="X" name="resolution" value="10" units="1/mm"/>)", 200 * 96.0 / 25.4},
        {R"(<channel name="X" type="integer" units="dev"/>)",
         R"(<channelProperty channel="X" name="resolution" value="0" units="1/dev"/>)", 200},
    };
    for (const Case& c : cases) {
        const Strokes strokes =
            readInk(inkWith(std::string(c.channel) + R"(<channel name="Y"/>)", "<trace>200 1</trace>", c.property));
        EXPECT_NEAR(strokes.at(0).at(0).x, c.x, 1e-9) << c.channel << c.property;
    }
}

TEST(InkDocument, BringsTheForceIntoZeroToOne) {
    struct Case {
        const char* channel;
        const char* trace;
        std::vector<float> forces;
    };
    const Case cases[] = {
        {R"(<channel name="F" type="integer" max="32767"/>)", "0 0 0, 0 0 32767", {0.0f, 1.0f}},
        {R"(<channel name="F" min="100" max="300"/>)", "0 0 100, 0 0 200, 0 0 300", {0.0f, 0.5f, 1.0f}},
        {R"(<channel name="F"/>)", "0 0 0.25, 0 0 1", {0.25f, 1.0f}},
        // Without a maximum the largest force is it.
        {R"(<channel name="F" type="integer"/>)", "0 0 512, 0 0 1024", {0.5f, 1.0f}},
        {R"(<channel name="B"/>)", "0 0 7", {1.0f}},
    };
    for (const Case& c : cases) {
        const Strokes strokes = readInk(inkWith(cnPlainXY + c.channel, "<trace>" + std::string(c.trace) + "</trace>"));
        std::vector<float> forces;
        for (const PenSample& sample : strokes.at(0))
            forces.push_back(sample.force);
        EXPECT_EQ(forces, c.forces) << c.channel;
    }
}

TEST(InkDocument, ReadsBothFormsOfTilt) {
    const Strokes spherical =
        readInk(inkWith(cnPlainXY + R"(<channel name="OA"/><channel name="OE"/>)", "<trace>0 0 350 30</trace>"));
    EXPECT_FLOAT_EQ(spherical[0][0].azimuth, 350.0f);
    EXPECT_FLOAT_EQ(spherical[0][0].lean, 60.0f);
    const Strokes axes = readInk(inkWith(cnPlainXY + R"(<channel name="OTx"/><channel name="OTy"/>)",
                                         "<trace>0 0 0 45, 0 0 -45 0, 0 0 0 0</trace>"));
    EXPECT_NEAR(axes[0][0].azimuth, 90.0f, 1e-4);
    EXPECT_NEAR(axes[0][0].lean, 45.0f, 1e-4);
    EXPECT_NEAR(axes[0][1].azimuth, 180.0f, 1e-4);
    EXPECT_NEAR(axes[0][2].lean, 0.0f, 1e-4);
    const Strokes radians =
        readInk(inkWith(cnPlainXY + R"(<channel name="OA" units="rad"/><channel name="T" units="s"/>)",
                        "<trace>0 0 1.5707963267948966 2</trace>"));
    EXPECT_NEAR(radians[0][0].azimuth, 90.0f, 1e-4);
    EXPECT_DOUBLE_EQ(radians[0][0].time, 2000.0);
}

TEST(InkDocument, PaintsTheTracesThatTheFileDraws) {
    const std::string xml = R"(<i:ink xmlns:i="http://www.w3.org/2003/InkML">
        <i:definitions>
          <i:context xml:id="a"><i:traceFormat><i:channel name="X"/><i:channel name="Y"/></i:traceFormat></i:context>
          <i:context xml:id="b"><i:traceFormat><i:channel name="Y"/><i:channel name="X"/></i:traceFormat></i:context>
          <i:context xml:id="b2" contextRef="#b"/>
          <i:trace xml:id="kept">90 90</i:trace>
        </i:definitions>
        <i:annotationXML><trace>91 91</trace></i:annotationXML>
        <i:trace contextRef="#a" type="penUp">92 92</i:trace>
        <i:traceGroup contextRef="#b"><i:traceGroup>
          <i:trace>1 2</i:trace><i:trace contextRef="#a">3 4</i:trace>
        </i:traceGroup></i:traceGroup>
        <i:trace contextRef="#b2">5 6</i:trace>
        <i:context contextRef="#b"/>
        <i:trace>7 8</i:trace>
        <i:traceView traceDataRef="#kept"/>
      </i:ink>)";
    const std::vector<std::pair<double, double>> expected = {{2, 1}, {3, 4}, {6, 5}, {8, 7}};
    EXPECT_EQ(positionsOf(readInk(xml)), expected);
}

TEST(InkDocument, ReadsUtf16WithByteOrderMark) {
    std::string utf16("\xFF\xFE", 2);
    for (const char c : std::string("<?xml version=\"1.0\" encoding=\"UTF-16\"?><ink><trace>1 2</trace></ink>"))
        utf16.append({c, '\0'});
    EXPECT_EQ(positionsOf(readInk(utf16)).size(), 1u);
}

TEST(InkDocument, TellsWhichTraceAndSampleIsBad) {
    struct Case {
        std::string xml;
        const char* message;
    };
    const std::string good = "<trace>1 2</trace>";
    const Case cases[] = {
        {"<ink>" + good + "<trace>1 2, nan 3</trace></ink>", "test.inkml: trace 2, sample 2: \"nan\" is no number"},
        {"<ink><trace>inf 3</trace></ink>", "test.inkml: trace 1, sample 1: \"inf\" is no number"},
        {"<ink><trace>1e999 3</trace></ink>", "test.inkml: trace 1, sample 1: \"1e999\" is no finite number"},
        {"<ink><trace>1 2, 3</trace></ink>", "test.inkml: trace 1, sample 2: too few values (1 for 2 channels)"},
        {"<ink><trace>1 2; 3 4</trace></ink>", "test.inkml: trace 1, sample 1: \";\" is no number"},
        {"<ink><trace>1 2e10</trace></ink>",
         "test.inkml: trace 1, sample 1: the position lies beyond 1000000000 pixels"},
        {"<ink><trace>1 2,\"1e308\"0,1e308 0,1e308 0</trace></ink>",
         "test.inkml: trace 1, sample 2: the position lies beyond 1000000000 pixels"},
        {"<ink><trace contextRef=\"#x\">1 2</trace></ink>",
         "test.inkml: trace 1: nothing in the file has the id of the reference \"#x\""},
        {inkWith("<channel name=\"X\"/>", "<trace>1</trace>"),
         "test.inkml: trace 1: its trace format has no channels X and Y"},
        {"<svg/>", "test.inkml: no InkML: the root element is <svg>, not <ink>"},
        {"", "test.inkml: no XML in it"},
        {"just text", "test.inkml: no XML in it"},
        {"<ink><trace>1 2</trace>", "test.inkml: Start-end tags mismatch (at byte 22)"},
        {R"(<ink><context xml:id="a" contextRef="#b"/><context xml:id="b" contextRef="#a"/>
            <trace contextRef="#a">1 2</trace></ink>)",
         "test.inkml: trace 1: contexts refer to each other in a circle"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(failureOf(c.xml), c.message);
    EXPECT_THROW(InkDocument("/nonexistent/strokes.inkml"), Failure);
}

TEST(InkDocument, ExpandsNoEntities) {
    const std::string bomb = R"(<!DOCTYPE ink [<!ENTITY a "1 2, "><!ENTITY b "&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;">
        <!ENTITY c SYSTEM "file:///etc/passwd">]><ink><trace>&b;&c;</trace></ink>)";
    EXPECT_EQ(failureOf(bomb), "test.inkml: trace 1, sample 1: \"&b;&c;\" is no number");
}

TEST(InkDocument, BoundsTheNesting) {
    const auto nested = [](int depth) {
        std::string xml = "<ink>";
        for (int i = 0; i < depth; ++i)
            xml += "<traceGroup>";
        xml += "<trace>1 2</trace>";
        for (int i = 0; i < depth; ++i)
            xml += "</traceGroup>";
        return xml + "</ink>";
    };
    EXPECT_EQ(failureOf(nested(100)), "");
    EXPECT_EQ(failureOf(nested(10000)), "test.inkml: elements nested deeper than 256");
}

TEST(InkDocument, SurveysExtentAndCount) {
    const TemporaryFolder folder;
    InkDocument document(folder.write("a.inkml", "<ink><trace>-5 2, 7 1</trace><trace>0 30</trace></ink>"));
    const InkSurvey survey = document.survey();
    EXPECT_EQ(survey.sampleCount, 3u);
    EXPECT_EQ(survey.left, -5);
    EXPECT_EQ(survey.top, 1);
    EXPECT_EQ(survey.right, 7);
    EXPECT_EQ(survey.bottom, 30);
    InkDocument empty(folder.write("b.inkml", "<ink><trace/></ink>"));
    EXPECT_TRUE(empty.survey().empty());
}

} // namespace

} // namespace ovwpaint::test
