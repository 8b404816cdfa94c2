#include "ovwcmn/xcstring.h"

#include "support/scopes.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace {

using ovw::test::CodePageScope;
using ovw::test::errorOf;

constexpr int cnParameter = 0x20010008;
constexpr std::uint32_t cnUtf8 = 65001;
constexpr std::uint32_t cnShiftJis = 932;
constexpr std::uint32_t cnLatin = 1252;

int sign(int value) { return (value > 0) - (value < 0); }

/// Every double-byte character of Shift-JIS whose second byte is `trail`.
std::vector<std::string> shiftJisPairs(char trail) {
    std::vector<std::string> pairs;
    for (int lead = 0x81; lead <= 0xFC; ++lead)
        if (lead <= 0x9F || lead >= 0xE0)
            pairs.push_back({char(lead), trail});
    return pairs;
}

TEST(XCString, IsBuiltFromAnythingAndFromItself) {
    EXPECT_STREQ(XCString().GetStr(), "");
    EXPECT_STREQ(XCString(static_cast<const char*>(nullptr)).GetStr(), "");
    XCString text("abc");
    text += text;
    EXPECT_STREQ(text, "abcabc");
    text += text.GetStr() + 4;
    EXPECT_STREQ(text, "abcabcbc");
    text = text.GetStr() + 3;
    EXPECT_STREQ(text, "abcbc");
    text = *&text;
    EXPECT_STREQ(text, "abcbc");
    text += 'd';
    text += static_cast<const char*>(nullptr);
    EXPECT_STREQ(text, "abcbcd");
    XCString taken(std::move(text));
    text = 'x';
    EXPECT_STREQ(text, "x");
    EXPECT_STREQ(taken, "abcbcd");
    taken = static_cast<const char*>(nullptr);
    EXPECT_EQ(taken.IsEmpty(), 1);
    taken = '\0';
    EXPECT_EQ(taken.GetLength(), 0);
}

TEST(XCString, LengthCutsButNeverExtends) {
    XCString text("abcdef");
    text.SetLength(4);
    EXPECT_STREQ(text, "abcd");
    text.SetLength(1000);
    EXPECT_STREQ(text, "abcd");
    EXPECT_EQ(text.GetLength(), 4);
    std::memset(text.GetStr(), 'x', 1000); // the room is there
    EXPECT_EQ(text.GetLength(), 1000);
    text.SetLength(-1);
    EXPECT_STREQ(text, "");
}

TEST(XCString, AtReachesTheTerminatorAndNoFurther) {
    XCString text("abc");
    EXPECT_EQ(text.At(2), 'c');
    EXPECT_EQ(text.At(3), '\0');
    EXPECT_EQ(errorOf([&] { text.At(4); }), cnParameter);
    EXPECT_EQ(errorOf([&] { text.At(-1); }), cnParameter);
    text[std::ptrdiff_t{1}] = 'B'; // an index of every integer type means the text's, not the pointer's
    EXPECT_EQ(text[std::size_t{1}] + text[2L], 'B' + 'c');
}

TEST(XCString, GetStrFillsABufferWithoutATerminator) {
    char buffer[] = "------";
    XCString("abcd").GetStr(buffer, 4);
    EXPECT_STREQ(buffer, "abcd--");
    XCString("x").GetStr(buffer, 4);
    EXPECT_EQ(std::memcmp(buffer, "x\0cd--", 7), 0);
    XCString("yz").GetStr(buffer, 0);
    XCString("yz").GetStr(buffer, -1);
    EXPECT_EQ(buffer[0], 'x');
}

TEST(XCString, KnowsTheLaterBytesOfCharacters) {
    const struct {
        std::uint32_t page;
        const char* text;
        const char* expected; // '1' for a later byte; one more for the terminator
    } cases[] = {
        {cnShiftJis, "\x83\x5C", "010"},
        {cnShiftJis, "A\xB1\xB2\x5C", "00000"},              // half-width katakana
        {cnShiftJis, "\x82\xA0\x82\xA0", "01010"},           // 0xA0 0x82 is no character
        {cnShiftJis, "\x83\x83\x5C", "0100"},                // a lead byte as second byte
        {cnShiftJis, "a\x83", "000"},                        // a lead byte before the terminator
        {cnShiftJis, "\xFC\x4B\x80\x41\xFD\x41", "0100000"}, // the borders of the lead bytes
        {cnUtf8, "a\xE3\x81\x82z", "001100"},
        {cnUtf8, "\xF0\x9F\x8E\xA8", "01110"},
        {cnUtf8, "\xE3\x81", "000"}, // cut off
        {cnLatin, "\x83\x5C\xE9", "0000"},
    };
    for (const auto& c : cases) {
        const CodePageScope page(c.page);
        const XCString text(c.text);
        for (int i = 0; c.expected[i]; ++i)
            EXPECT_EQ(text.IsDoubleByte(i), c.expected[i] - '0') << c.page << ' ' << c.text << ' ' << i;
        EXPECT_EQ(text.IsDoubleByte(-1), 0);
        EXPECT_EQ(text.IsDoubleByte(text.GetLength() + 1), 0);
    }
}

TEST(XCString, OrdersCharactersNotBytes) {
    const struct {
        std::uint32_t page;
        const char *a, *b;
        int exact, noCase;
    } cases[] = {
        {cnUtf8, "abc", "abc", 0, 0},
        {cnUtf8, "ab", "abc", -1, -1},
        {cnUtf8, "abC", "abc", -1, 0},
        {cnUtf8, "_", "A", 1, -1},                // folded to lower case
        {cnUtf8, "\xC3\x89", "\xC3\xA9", -1, -1}, // only the ASCII letters have a case
        {cnUtf8, "", nullptr, 0, 0},
        {cnUtf8, "z", "\xC3\xA9", -1, -1},
        {cnShiftJis, "\xB1", "\x82\xA0", -1, -1}, // a single byte comes before every double-byte character
        {cnShiftJis, "\x82\x81", "\x82\x60", 1, 1},
        {cnShiftJis, "\x83\x61", "\x83\x41", 1, 1}, // second bytes that look like letters
        {cnShiftJis, "\x83\x41z", "\x83\x41Z", 1, 0},
        {cnLatin, "\xB1", "\x82\xA0", 1, 1},
    };
    for (const auto& c : cases) {
        const CodePageScope page(c.page);
        EXPECT_EQ(sign(XCString(c.a).Compare(c.b)), c.exact) << c.page << ' ' << c.a;
        EXPECT_EQ(sign(XCString(c.a).CompareNoCase(c.b)), c.noCase) << c.page << ' ' << c.a;
        EXPECT_EQ(sign(XCString(c.b).Compare(XCString(c.a))), -c.exact) << c.page << ' ' << c.a;
        EXPECT_EQ(XCString(c.a) < c.b, c.exact < 0);
        EXPECT_EQ(XCString(c.a) >= XCString(c.b), c.exact >= 0);
        EXPECT_EQ(XCString(c.a) == XCString(c.b).GetStr(), c.exact == 0); // a text, not a place in memory
    }
}

TEST(XCString, FindsNothingInsideCharacters) {
    const struct {
        std::uint32_t page;
        const char *text, *find;
        int start, noCase, first, last;
    } cases[] = {
        {cnUtf8, "abcabc", "abc", 0, 0, 0, 3},
        {cnUtf8, "abcabc", "abc", 1, 0, 3, 3},
        {cnUtf8, "abcabc", "abc", 4, 0, -1, 3},
        {cnUtf8, "abcabc", "abc", -9, 0, 0, 3},
        {cnUtf8, "abc", "abcd", 0, 0, -1, -1},
        {cnUtf8, "aBc", "bC", 0, 0, -1, -1},
        {cnUtf8, "aBc", "bC", 0, 1, 1, 1},
        {cnUtf8, "", "a", 0, 0, -1, -1},
        {cnUtf8, "abc", "a", 2147483647, 0, -1, 0},
        {cnUtf8, "\xE3\x81\x82", "\x81", 0, 0, -1, -1},
        {cnShiftJis, "\x83\x5C\\", "\\", 0, 0, 2, 2},
        {cnShiftJis, "\x83\x5C", "\\", 0, 0, -1, -1},
        {cnShiftJis, "\x83\x83\x41\x42", "\x83\x41", 0, 0, -1, -1},
        {cnShiftJis, "x\x83\x41\x83\x41", "\x83\x41", 0, 0, 1, 3},
        {cnShiftJis, "\x83\x61", "\x83\x41", 0, 1, -1, -1},
        {cnLatin, "\x83\x5C", "\\", 0, 0, 1, 1},
    };
    for (const auto& c : cases) {
        const CodePageScope page(c.page);
        EXPECT_EQ(XCString(c.text).Find(c.find, c.start, c.noCase), c.first) << c.text << ' ' << c.find;
        EXPECT_EQ(XCString(c.text).ReverseFind(c.find, c.noCase), c.last) << c.text << ' ' << c.find;
    }
    EXPECT_EQ(XCString("abc").Find(""), 0);
    EXPECT_EQ(XCString("abc").Find(nullptr), 0);
    EXPECT_EQ(XCString("").Find(""), -1);
    const CodePageScope page(cnShiftJis);
    for (const std::string& pair : shiftJisPairs('\\'))
        EXPECT_EQ(XCString((pair + pair).c_str()).Find("\\"), -1) << pair;
}

TEST(XCString, CaseAndReplacementPassOverCharactersWhole) {
    const CodePageScope page(cnShiftJis);
    XCString text("aZ\x83\x41\x83\x61[`{@");
    text.MakeUpper();
    EXPECT_STREQ(text, "AZ\x83\x41\x83\x61[`{@");
    text.MakeLower();
    EXPECT_STREQ(text, "az\x83\x41\x83\x61[`{@");
    XCString path("\x83\x5C\\\x83\x5C\\");
    path.Replace('\\', '/');
    EXPECT_STREQ(path, "\x83\x5C/\x83\x5C/");
    XCString kana("\x83\x83\x41\xB1");
    kana.Replace('\x83', 'x');
    kana.Replace('\xB1', 'y');
    EXPECT_STREQ(kana, "\x83\x83\x41y");
}

TEST(XCString, ReplacesTextsOnce) {
    const struct {
        const char *text, *find, *with, *result;
        int count;
    } cases[] = {
        {"aXbXc", "X", "--", "a--b--c", 2},
        {"aXbXc", "X", "", "abc", 2},
        {"aaa", "aa", "b", "ba", 1},
        {"aa", "a", "aa", "aaaa", 2},
        {"abc", "", "x", "abc", 0},
        {"abc", nullptr, "x", "abc", 0},
        {"abc", "abc", nullptr, "", 1},
        {"abc", "d", "x", "abc", 0},
        {"", "a", "b", "", 0},
        {"abab", "ab", "aba", "abaaba", 2},
        {"\x83\x5C\\", "\\", "/", "\x83\x5C/", 1},
    };
    const CodePageScope page(cnShiftJis);
    for (const auto& c : cases) {
        XCString text(c.text);
        EXPECT_EQ(text.Replace(c.find, c.with), c.count) << c.text;
        EXPECT_STREQ(text, c.result);
    }
    XCString text("abab");
    EXPECT_EQ(text.Replace(text.GetStr() + 2, text.GetStr() + 1), 2);
    EXPECT_STREQ(text, "babbab");
}

TEST(XCString, MidStaysInsideTheText) {
    const struct {
        int start, count;
        const char* expected;
    } cases[] = {{1, 3, "bcd"},
                 {3, 10, "de"},
                 {6, 1, ""},
                 {5, 1, ""},
                 {0, 2147483647, "abcde"},
                 {4, 2147483647, "e"},
                 {-1, 3, ""},
                 {1, -1, ""},
                 {2147483647, 2147483647, ""},
                 {0, 0, ""}};
    XCString text("abcde");
    for (const auto& c : cases)
        EXPECT_STREQ(text.Mid(c.start, c.count), c.expected) << c.start << ',' << c.count;
    text = text.Mid(1, 3);
    EXPECT_STREQ(text, "bcd");
    text += text.Mid(0, 2);
    EXPECT_STREQ(text, "bcdbc");
}

TEST(XCString, ReadsNumbers) {
    const struct {
        const char* text;
        int isNumber;
        std::int32_t int32;
        std::int64_t int64;
        double real;
    } cases[] = {
        {"", 1, 0, 0, 0},
        {"-1.5", 1, -1, -1, -1.5},
        {"1..2", 1, 1, 1, 1},
        {"1-", 0, 1, 1, 1},
        {"12abc", 0, 12, 12, 12},
        {" \t42", 0, 42, 42, 42},
        {"+7", 0, 7, 7, 7},
        {"abc", 0, 0, 0, 0},
        {"1e3", 0, 1, 1, 1000},
        {"\xEF\xBC\x91", 0, 0, 0, 0}, // a full-width digit
        {"4294967296", 1, 2147483647, 4294967296, 4294967296.0},
        {"-4294967296", 1, -2147483647 - 1, -4294967296, -4294967296.0},
        {"99999999999999999999", 1, 2147483647, INT64_MAX, 1e20},
        {"-99999999999999999999", 1, -2147483647 - 1, INT64_MIN, -1e20},
    };
    for (const auto& c : cases) {
        const XCString text(c.text);
        EXPECT_EQ(text.IsNumber(), c.isNumber) << c.text;
        EXPECT_EQ(text.GetINT32(), c.int32) << c.text;
        EXPECT_EQ(text.GetINT64(), c.int64) << c.text;
        EXPECT_EQ(text.GetDOUBLE(), c.real) << c.text;
        EXPECT_EQ(text.GetFLOAT(), float(c.real)) << c.text;
    }
}

TEST(XCString, WritesNumbersOfAnyLength) {
    XCString text;
    text.SetNumber(std::int32_t{-5}, "%04d|");
    text.AddNumber(std::uint32_t{4294967295}, "%u|");
    text.AddNumber64(INT64_MIN, "%I64d|");
    text.AddNumber64(7, "%03lld|");
    text.AddNumber(1.5f, "%.2f|");
    text.AddNumber(-0.25, "%g");
    EXPECT_STREQ(text, "-005|4294967295|-9223372036854775808|007|1.50|-0.25");
    text.SetNumber(1e300, "%f");
    EXPECT_EQ(text.GetLength(), 301 + 7);
    text.SetNumber(std::uint32_t{4294967295});
    text.AddNumber(std::int32_t{-7});
    EXPECT_STREQ(text, "4294967295-7");
    text.SetNumber(0.5f, "%f");
    EXPECT_STREQ(text, "0.500000");
    text.Format("%s-%s-%d", text.GetStr(), text.GetStr() + 6, 12);
    EXPECT_STREQ(text, "0.500000-00-12");
    text.Format("%5000s", "x");
    EXPECT_EQ(text.GetLength(), 5000);
}

TEST(XCString, ShowsBytesInTheirUnit) {
    const struct {
        std::int64_t bytes;
        const char* expected;
    } cases[] = {
        {0, "0 byte"},
        {1023, "1023 byte"},
        {1024, " 1.0 KB"},
        {1536, " 1.5 KB"},
        {1048575, "1024.0 KB"},
        {1048576, " 1.0 MB"},
        {1073741824, " 1.0 GB"},
        {1099511627776, " 1.0 TB"},
        {-5, "-5 byte"},
        {-3000000000, "-3000000000 byte"},
        {INT64_MIN, "-9223372036854775808 byte"},
    };
    for (const auto& c : cases) {
        XCString text;
        text.ByteToString(c.bytes);
        EXPECT_STREQ(text, c.expected);
    }
}

TEST(XCString, BecomesAFileName) {
    const struct {
        const char *text, *expected;
    } cases[] = {
        {" a:b.c ", "abc"},
        {"abc", "abc"},
        {"\\/:*?\"<>|.", ""},
        {"   ", ""},
        {". a .", "a"},
        {"a b", "a b"},
        {"", ""},
        {"\x83\x5C\x83\x7C\\|", "\x83\x5C\x83\x7C"},
        {"\x81\x40", "\x81\x40"}, // a wide space is no space
        {"x\x83", "x\x83"},
    };
    const CodePageScope page(cnShiftJis);
    for (const auto& c : cases) {
        XCString text(c.text);
        EXPECT_EQ(text.ConvertFileName(), std::strcmp(c.text, c.expected) != 0) << c.text;
        EXPECT_STREQ(text, c.expected);
    }
    for (const char trail : {'\\', '|'}) {
        for (const std::string& pair : shiftJisPairs(trail)) {
            XCString text(pair.c_str());
            EXPECT_EQ(text.ConvertFileName(), 0) << pair;
            EXPECT_STREQ(text, pair.c_str());
        }
    }
}

TEST(XCString, PascalTextHoldsAtMost255Bytes) {
    XCString text(std::string(300, 'a').c_str());
    char* const pascal = text.GetPascal();
    EXPECT_EQ(static_cast<unsigned char>(pascal[0]), 255);
    EXPECT_EQ(pascal[300], 'a');
    char out[258] = {};
    text.GetPascal(out);
    EXPECT_EQ(static_cast<unsigned char>(out[0]), 255);
    EXPECT_EQ(out[255], 'a');
    EXPECT_EQ(out[256], '\0');
    text.SetPascal("\x03"
                   "abcdef");
    EXPECT_STREQ(text, "abc");
    text.SetPascal(text.GetPascal());
    EXPECT_STREQ(text, "abc");
}

} // namespace
