#include "ovwcmn/xcstring.h"

#include "support/scopes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>

namespace {

using ovw::test::CodePageScope;
using ovw::test::errorOf;

constexpr int cnParameter = 0x20010008;
constexpr std::uint32_t cnUtf8 = 65001;
constexpr std::uint32_t cnShiftJis = 932;
constexpr std::uint32_t cnLatin = 1252;

std::u16string units(const XCWideString& text) { return text.GetStr(); }
int sign(int value) { return (value > 0) - (value < 0); }

TEST(XCWideString, IsBuiltFromAnythingAndFromItself) {
    XCWideString text(u"abc");
    text += text;
    text += text.GetStr() + 4;
    EXPECT_EQ(units(text), u"abcabcbc");
    text = text.GetStr() + 5;
    EXPECT_EQ(units(text), u"cbc");
    text += u'd';
    text += 'e';
    text += "\xE3\x81\x82";
    text += XCString("!");
    EXPECT_EQ(units(text), u"cbcde\u3042!");
    EXPECT_EQ(units(text + u"?" + text), u"cbcde\u3042!?cbcde\u3042!");
    text = static_cast<const char16_t*>(nullptr);
    EXPECT_EQ(text.IsEmpty(), 1);
    EXPECT_EQ(units(text + u""), u"");
    text = u'\0';
    EXPECT_EQ(text.GetLength(), 0);
    EXPECT_EQ(units(XCWideString(XCString("\xC3\xA9"))), u"\u00E9");
    text = 'x';
    XCWideString copy, moved(std::move(text));
    copy = moved;
    text = std::move(moved);
    EXPECT_EQ(units(copy) + units(text), u"xx");
}

TEST(XCWideString, IndicesAreChecked) {
    XCWideString text(u"abc");
    EXPECT_EQ(text.At(3), u'\0');
    EXPECT_EQ(text.GetAt(1), u'b');
    text.SetAt(1, u'\u3042');
    EXPECT_EQ(units(text), u"a\u3042c");
    EXPECT_EQ(errorOf([&] { text.At(4); }), cnParameter);
    EXPECT_EQ(errorOf([&] { text.At(-1); }), cnParameter);
    EXPECT_EQ(errorOf([&] { text.SetAt(3, u'x'); }), cnParameter);
    EXPECT_EQ(errorOf([&] { text.SetAt(-1, u'x'); }), cnParameter);
    EXPECT_EQ(XCWideString().At(0), u'\0');
}

TEST(XCWideString, ComparesAndFindsByUnits) {
    EXPECT_EQ(sign(XCWideString(u"\U0001F3A8").Compare(u"\uFF5E")), -1); // a pair begins with 0xD83C
    EXPECT_EQ(sign(XCWideString(u"aB").CompareNoCase(u"Ab")), 0);
    EXPECT_EQ(sign(XCWideString(u"_").CompareNoCase(u"A")), -1);
    EXPECT_EQ(sign(XCWideString(u"\u00C9").CompareNoCase(u"\u00E9")), -1);
    EXPECT_EQ(sign(XCWideString(u"a").Compare(nullptr)), 1);
    const XCWideString text(u"abcABC");
    EXPECT_EQ(text.Find(u"BC"), 4);
    EXPECT_EQ(text.Find(u"BC", 0, 1), 1);
    EXPECT_EQ(text.Find(u"bc", 2), -1);
    EXPECT_EQ(text.Find(u"abc", -3), 0);
    EXPECT_EQ(text.Find(u"a", 2147483647), -1);
    EXPECT_EQ(text.ReverseFind(u"abc", 1), 3);
    EXPECT_EQ(text.ReverseFind(u"abc"), 0);
    EXPECT_EQ(XCWideString().Find(u""), -1);
}

TEST(XCWideString, EditsInPlace) {
    XCWideString text(u"aZ\u00E9\uFF41[`");
    text.MakeUpper();
    EXPECT_EQ(units(text), u"AZ\u00E9\uFF41[`");
    text.MakeLower();
    EXPECT_EQ(units(text), u"az\u00E9\uFF41[`");
    text.Replace(u'\u00E9', u'e');
    EXPECT_EQ(units(text), u"aze\uFF41[`");
    EXPECT_EQ(units(text.Mid(1, 2)), u"ze");
    EXPECT_EQ(units(text.Mid(4, 2147483647)), u"[`");
    EXPECT_EQ(units(text.Mid(2)), u"e\uFF41[`");
    for (const int start : {-1, 7, 2147483647})
        EXPECT_EQ(units(text.Mid(start, 5)), u"");
    text.SwapEndian();
    EXPECT_EQ(text[0], 0x6100);
    EXPECT_EQ(text[3], 0x41FF);
    text.SwapEndian();
    EXPECT_EQ(units(text), u"aze\uFF41[`");
    XCWideString().SwapEndian();
}

TEST(XCWideString, FormatsUnits) {
    XCWideString text(u"\u3042");
    text.Format(u"%s|%5s|%-3d|%04X|%.2f|%c|%%", text.GetStr(), u"ab", 7, 0xBEEF, 1.5, u'\u3044');
    EXPECT_EQ(units(text), u"\u3042|   ab|7  |BEEF|1.50|\u3044|%");
    text.Format(u"%hs %.1s", "\xC3\xA9", u"xyz");
    EXPECT_EQ(units(text), u"\u00E9 x");
    text.Format(u"%hhd %hd %ld %lld %jd %td", 0x1FF, 0x1FFFF, -4000000000L, INT64_MIN, std::intmax_t{-2},
                std::ptrdiff_t{3});
    EXPECT_EQ(units(text), u"-1 -1 -4000000000 -9223372036854775808 -2 3");
    text.Format(u"%hhu %hx %lu %llo %ju %zX", 0x1FF, 0x1FFFF, 4000000000UL, 8ULL, std::uintmax_t{5}, std::size_t{255});
    EXPECT_EQ(units(text), u"255 ffff 4000000000 10 5 FF");
    text.Format(u"%*d|%-*d|%.*s|%*d|%y|%", 4, 1, 3, 2, 2, u"xyz", -3, 7);
    EXPECT_EQ(units(text), u"   1|2  |xy|7  |y|");
}

/// Multibyte text and its Unicode, as the vendor's tables of the code pages have them.
const struct {
    std::uint32_t page;
    const char* bytes;
    const char16_t* text;
} s_pairs[] = {
    {cnUtf8, "a\xC3\xA9\xE3\x81\x82", u"a\u00E9\u3042"},
    {cnUtf8, "\xF0\x9F\x8E\xA8", u"\U0001F3A8"},
    {cnShiftJis, "\x83\x5C\x95\x5C", u"\u30BD\u8868"},
    {cnShiftJis, "\x5C\x7E\xB1", u"\\~\uFF71"},
    {cnShiftJis, "\x81\x60\x81\x7C\x81\x61", u"\uFF5E\uFF0D\u2225"},
    {cnShiftJis, "\x87\x40\xFA\x40", u"\u2460\u2170"},
    {cnLatin, "\xE9\x80\x99", u"\u00E9\u20AC\u2122"},
};

TEST(XCWideString, ConvertsFromAndToTheCodePage) {
    for (const auto& c : s_pairs) {
        const CodePageScope page(c.page);
        XCWideString wide(u"old");
        EXPECT_EQ(XCString(c.bytes).ConvertAnsiToWide(wide), 1) << c.bytes;
        EXPECT_EQ(units(wide), c.text) << c.bytes;
        XCString narrow("old");
        EXPECT_EQ(wide.ConvertWideToAnsi(narrow), 1) << c.bytes;
        EXPECT_STREQ(narrow, c.bytes);
    }
}

TEST(XCWideString, WhatTheCodePageLacksFailsAndLeavesNothing) {
    const struct {
        std::uint32_t page;
        const char16_t* text;
    } cases[] = {
        {cnShiftJis, u"a\u20AC"}, {cnShiftJis, u"\u00A5"}, // a best fit would be the backslash
        {cnShiftJis, u"\u00E9"},  {cnLatin, u"\u3042"},      {cnLatin, u"\uFF21"},
        {cnUtf8, u"a\xD83C"},     {cnUtf8, u"\xDFA8\xD83C"},
    };
    for (const auto& c : cases) {
        const CodePageScope page(c.page);
        XCString narrow("old");
        EXPECT_EQ(XCWideString(c.text).ConvertWideToAnsi(narrow), 0);
        EXPECT_STREQ(narrow, "");
        char buffer[16] = "old";
        EXPECT_EQ(XCWideString::ConvertWideToAnsi(buffer, c.text, 16), 0);
        EXPECT_STREQ(buffer, "");
    }
    for (const char* malformed : {"\xE3\x81", "\xFF", "\xC0\xAF", "\xED\xA0\xBC"}) {
        XCWideString wide(u"old");
        EXPECT_EQ(XCString(malformed).ConvertAnsiToWide(wide), 0);
        EXPECT_EQ(wide.IsEmpty(), 1);
    }
}

TEST(XCWideString, BuffersCountTheTerminator) {
    char16_t wide[6];
    char narrow[6];
    const struct { int room, answer; } cases[] = {{4, 1}, {3, 0}, {1, 0}, {5, 1}};
    for (const auto& c : cases) {
        std::fill(std::begin(wide), std::end(wide), u'-');
        std::fill(std::begin(narrow), std::end(narrow), '-');
        EXPECT_EQ(XCWideString::ConvertAnsiToWide(wide, "abc", c.room), c.answer) << c.room;
        EXPECT_EQ(XCWideString::ConvertWideToAnsi(narrow, u"abc", c.room), c.answer) << c.room;
        EXPECT_EQ(std::u16string(wide), c.answer ? u"abc" : u"");
        EXPECT_STREQ(narrow, c.answer ? "abc" : "");
        for (int i = c.room; i < 6; ++i) {
            EXPECT_EQ(wide[i], u'-');
            EXPECT_EQ(narrow[i], '-');
        }
    }
    EXPECT_EQ(XCWideString::ConvertAnsiToWide(wide, "", 6), 1);
    EXPECT_EQ(wide[0], u'\0');
    EXPECT_EQ(XCWideString::ConvertWideToAnsi(narrow, nullptr, 6), 1);
    EXPECT_EQ(narrow[0], '\0');
    EXPECT_EQ(XCWideString::ConvertAnsiToWide(wide, "\xF0\x9F\x8E\xA8", 3), 1);
    EXPECT_EQ(std::u16string(wide), u"\U0001F3A8");
}

TEST(XCWideString, ConvertToUtf8AppendsUnitByUnit) {
    XCString out("x");
    XCWideString(u"\x7F\x80\u07FF\u0800\u3042").ConvertToUTF8(out);
    EXPECT_STREQ(out, "x\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xE3\x81\x82");
    out.Empty();
    XCWideString(u"\U0001F3A8").ConvertToUTF8(out);
    EXPECT_STREQ(out, "\xED\xA0\xBC\xED\xBE\xA8");
}

} // namespace
