#include "ovwcmn/xcnumber.h"
#include "ovwcmn/xcstring.h"

#include <gtest/gtest.h>

namespace {

XCNumber numbered(int number, const char* suffix) {
    XCNumber result;
    result.SetNumber(number, suffix);
    return result;
}

std::string shown(const XCNumber& number) {
    XCString text;
    number.GetNumber(text, "%d");
    return text.GetStr();
}

TEST(XCNumber, ParsesDigitsAndUpToThreeLetters) {
    const struct {
        const char* text;
        const char* expected; // null: not valid
    } cases[] = {
        {"12", "12"},
        {"12a", "12A"},
        {"7xYz", "7XYZ"},
        {"9999", "9999"},
        {"0012", "12"},
        {"10000", nullptr},
        {"10000A", nullptr},
        {"0", nullptr},
        {"00A", nullptr},
        {"a", nullptr},
        {"", nullptr},
        {nullptr, nullptr},
        {"12-a", nullptr},
        {"12abcd", nullptr},
        {"12A3", nullptr},
        {" 12", nullptr},
        {"-5", nullptr},
        {"+5", nullptr},
        {"4294967297", nullptr},
        {"99999999999999999999", nullptr},
        {"12\xC3\x84", nullptr},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text ? c.text : "null");
        XCNumber number = 5;
        number.SetNumber(c.text);
        EXPECT_EQ(shown(number), c.expected ? c.expected : "5");
        EXPECT_EQ(XCNumber::IsValid(c.text), c.expected != nullptr);
        _VXNUMBER out = {77, "Q"};
        EXPECT_EQ(XCNumber::GetNumberFromString(out, c.text), c.expected != nullptr);
        EXPECT_EQ(shown(out), c.expected ? c.expected : "0");
    }
}

TEST(XCNumber, CountsTheSuffixOn) {
    const struct {
        const char* suffix;
        int step;
        const char* expected;
    } cases[] = {
        {"B", 1, "C"},     {"Z", 1, "AA"},    {"Z", 26, "AZ"},  {"Y", 3, "AB"},      {"AZ", 1, "BA"},
        {"AB", 26, "BB"},  {"ZZ", 1, "AAA"},  {"ZZ", 2, "AAB"}, {"ZY", 4, "AAC"},    {"AZZ", 1, "AAA"},
        {"AAZ", 1, "ABA"}, {"ZZZ", 1, "ZAA"}, {"", 1, ""},      {"ABCD", 1, "ABCD"}, {"a", 1, "a"},
        {"A1", 1, "A1"},   {"A", 0, "A"},     {"A", 27, "A"},   {"C", -1, "C"},
    };
    for (const auto& c : cases) {
        XCString suffix = c.suffix;
        XCNumber::IncrementSuffix(suffix, c.step);
        EXPECT_STREQ(suffix.GetStr(), c.expected) << c.suffix << " + " << c.step;
    }
    XCNumber number = numbered(12, "Z");
    number.IncrementSuffix(1);
    EXPECT_EQ(shown(number), "12AA");
}

TEST(XCNumber, OrdersByNumberThenSuffixByteForByte) {
    const XCNumber ordered[] = {11, 12, numbered(12, "A"), numbered(12, "AB"), numbered(12, "B"), numbered(12, "a"),
                                13};
    for (int i = 0; i < 7; ++i) {
        for (int j = 0; j < 7; ++j) {
            EXPECT_EQ(ordered[i] < ordered[j], i < j);
            EXPECT_EQ(ordered[i] == ordered[j], i == j);
            EXPECT_EQ(ordered[i] >= ordered[j], i >= j);
        }
    }
    EXPECT_TRUE(ordered[2] > 12 && ordered[2] < 13 && ordered[2] != 12);
}

TEST(XCNumber, KeepsThreeCharactersOfASuffixAndMovesTheNumberAlone) {
    XCNumber number = numbered(12, "abcdef");
    EXPECT_EQ(shown(number), "12abc");
    EXPECT_EQ(shown(number + 3), "15abc");
    EXPECT_EQ(shown(number - 13), "-1abc");
    EXPECT_EQ((XCNumber(2147483647) + 1).number, -2147483647 - 1);
    number = 4;
    EXPECT_TRUE(number.IsEmptySuffix());
    XCString text;
    numbered(7, "B").GetNumber(text, "%04d");
    EXPECT_STREQ(text.GetStr(), "0007B");
    EXPECT_TRUE(XCNumber().IsEmpty() && !numbered(0, "A").IsEmpty());
}

} // namespace
