#include "ovwcmn/xclength.h"
#include "ovwcmn/xcstring.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

// Micrometres of a unit, and of a pixel at 300 to the inch.
constexpr double cnInch = 25400;
constexpr double cnSizes[] = {cnInch / 300, 10000, 1000,  cnInch, cnInch / 6,
                              cnInch / 72,  250,   351.4, 375.9,  cnInch / 600};

TEST(XCLength, ConvertsBetweenAllUnits) {
    for (int from = 0; from < 10; ++from) {
        const XCLength length(7.25, from, 300);
        for (int to = 0; to < 10; ++to) {
            const double expected = 7.25 * cnSizes[from] / cnSizes[to];
            EXPECT_NEAR(length.GetAs(to), expected, 1e-12 * expected) << from << " as " << to;
        }
        const double pixels = 7.25 * cnSizes[from] / cnInch * 1200;
        EXPECT_NEAR(length.GetAsPixelD(1200), pixels, 1e-12 * pixels) << from;
        EXPECT_EQ(length.GetAsPixel(1200), std::lround(pixels)) << from;
    }
}

TEST(XCLength, GivesRoundValuesWithoutError) {
    const XCLength inch(1, 3, 300);
    EXPECT_EQ(inch.GetAsPixel(300), 300);
    const double expected[] = {300, 2.54, 25.4, 1, 6, 72, 101.6};
    for (int unit = 0; unit < 7; ++unit)
        EXPECT_DOUBLE_EQ(inch.GetAs(unit), expected[unit]) << unit;
    EXPECT_EQ(inch.GetAs(9), 600);
    EXPECT_EQ(XCLength(12, 5).GetAs(4), 1);
    EXPECT_EQ(XCLength(1, 4).GetAs(3), 1.0 / 6);
    EXPECT_EQ(XCLength(3, 2).GetAs(6), 12);
}

TEST(XCLength, GivesNothingForWhatHasNoSize) {
    const XCLength pixels(5, 0);
    for (int unit = 1; unit < 12; ++unit)
        EXPECT_EQ(pixels.GetAs(unit), 0) << unit;
    EXPECT_EQ(pixels.GetAs(0), 5);
    EXPECT_EQ(pixels.GetAsPixel(300), 0);
    EXPECT_EQ(XCLength(5, 2).GetAs(0), 0);
    EXPECT_EQ(XCLength(5, 2).GetAs(10), 0);
    EXPECT_EQ(XCLength(5, -1).GetAs(2), 0);
    EXPECT_EQ(XCLength(5, -1).GetAs(-1), 5);
    EXPECT_EQ(XCLength(1e300, 3).GetAsPixel(300), std::numeric_limits<int>::max());
    EXPECT_EQ(XCLength(NAN, 3).GetAsPixel(300), 0);
}

TEST(XCLength, CountsFixedPixelsByThePreferredUnit) {
    EXPECT_EQ(XCLength(1.4, 9).GetAsPixelUsingPref(9, 300), 1);
    EXPECT_EQ(XCLength(1, 3).GetAsPixelUsingPref(9, 300), 600);
    EXPECT_EQ(XCLength(1, 3).GetAsPixelUsingPref(2, 300), 300);
    EXPECT_DOUBLE_EQ(XCLength(1, 3).GetAsPixelDUsingPref(9, 300), 600);
}

TEST(XCLength, SetsOnlyWhatIsGiven) {
    XCLength length(3, 2, 300);
    length.Set(4, -2, 0);
    EXPECT_TRUE(length == XCLength(4, 2, 300));
    length.Set(5, 1, -7);
    EXPECT_TRUE(length == XCLength(5, 1, 300));
    EXPECT_TRUE(length * 2 == XCLength(10, 1, 300));
    EXPECT_TRUE(length / 2 != length);
    EXPECT_TRUE(XCLength() == (_VXLENGTH{0, -1, 0}));
}

TEST(XCLength, ShowsItselfForPeople) {
    const XCLength length(2.54, 1, 300);
    const struct {
        int unit, asInteger, withUnit, longName;
        const char* expected;
    } cases[] = {
        {3, 0, 1, 0, "1.000in"}, {3, 0, 1, 1, "1.000inch"}, {0, 0, 1, 1, "300pixels"}, {0, 0, 1, 0, "300px"},
        {1, 0, 0, 0, "2.54"},    {2, 1, 1, 0, "25mm"},      {9, 0, 1, 0, "600.0px"},   {4, 0, 1, 0, "6.00pica"},
        {7, 0, 1, 0, "72pt"},    {6, 0, 1, 0, "101.60Q"},   {12, 0, 1, 1, "0"},
    };
    for (const auto& c : cases) {
        XCString text;
        length.GetLengthStr(text, c.unit, c.asInteger, c.withUnit, c.longName);
        EXPECT_STREQ(text.GetStr(), c.expected) << c.unit;
    }
}

} // namespace
