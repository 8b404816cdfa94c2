#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcstring.h"
#include "support/scopes.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <thread>

namespace {

using ovw::test::CodePageScope;
using ovw::test::HooksScope;

constexpr const char* cnMissing = "(missing)";

int add(XCStringResource& resource, std::string_view text) {
    return resource.AddText(text.data(), std::uint32_t(text.size()));
}

std::string look(const XCStringResource& resource, int id) {
    XCString text;
    return resource.LoadStringA(text, id) ? text.GetStr() : cnMissing;
}

/// Text `id` of a table read from `text`.
std::string parsed(std::string_view text, int id) {
    XCStringResource resource;
    add(resource, text);
    return look(resource, id);
}

TEST(XCStringResource, ReadsLines) {
    XCStringResource resource;
    ASSERT_EQ(add(resource, "\xEF\xBB\xBF"
                            "12 \"a\"b\"c\" rest\r\n"
                            "\r\r\n\n"
                            "12 \"second\"\n"
                            " \t 13\t \tjunk \"between\" junk\r"
                            "  // 14 \"comment\"\n"
                            "15 \"no end\n"
                            "16 no quotes\n"
                            "17 \"\"\n"
                            "18 \"//\"\n"
                            "019 \"zero first\"\n"
                            "65535 \"last\""),
              1);
    const struct {
        int id;
        const char* text;
    } cases[] = {
        {12, "a\"b\"c"},    {13, "between"}, {14, cnMissing},         {15, cnMissing}, {16, cnMissing},
        {17, ""},           {18, "//"},      {19, "zero first"},      {65535, "last"}, {0, cnMissing},
        {65536, cnMissing}, {-1, cnMissing}, {65536 + 12, cnMissing},
    };
    for (const auto& c : cases)
        EXPECT_EQ(look(resource, c.id), c.text) << c.id;
}

TEST(XCStringResource, IgnoresLinesWithoutAPlainNumber) {
    const char* const ids[] = {"12x",    "+12", "-12", "0",   "65536", "4294967308", "18446744073709551628",
                               "\"12\"", "0xC", "1.2", "12/", "/ 12",  "x 12",       "12\"text\""};
    for (const char* id : ids) {
        XCStringResource resource;
        add(resource, std::string(id) + " \"text\"\n77 \"next\"");
        for (const int number : {12, 1, 65535})
            EXPECT_EQ(look(resource, number), cnMissing) << id;
        EXPECT_EQ(look(resource, 77), "next") << id;
    }
}

TEST(XCStringResource, ReadsEscapes) {
    EXPECT_EQ(parsed(R"(1 "a\\b\nc\rd\te")", 1), "a\\b\nc\rd\te");
    EXPECT_EQ(parsed(R"(1 "\\n")", 1), "\\n");
    EXPECT_EQ(parsed(R"(1 "\q\"\0\x")", 1), "\\q\\\"\\0\\x");
    EXPECT_EQ(parsed(R"(1 "end\")", 1), "end\\");
}

TEST(XCStringResource, SecondBytesAreNoSigns) {
    const CodePageScope page(932);
    EXPECT_EQ(parsed("1 \"\x83\x5Cn\"", 1), "\x83\x5Cn");
    EXPECT_EQ(parsed("1 \"\x83\x5C\\n\"", 1), "\x83\x5C\n");
    EXPECT_EQ(parsed("1 \"\xB1\\n\"", 1), "\xB1\n"); // a half-width katakana leads nothing
    EXPECT_EQ(parsed("1 \x83\x5C\"a\" \x83", 1), "a");
}

TEST(XCStringResource, SurvivesAnyBytes) {
    XCStringResource resource;
    EXPECT_EQ(add(resource, std::string_view("1 \"a\0b\"\n2 \"c\"\n\0003 \"d\"", 21)), 1);
    EXPECT_EQ(look(resource, 2), "c");
    EXPECT_EQ(look(resource, 3), cnMissing);
    const std::string quotes(1 << 20, '"');
    EXPECT_EQ(parsed("1 " + quotes, 1), quotes.substr(2));
    EXPECT_EQ(parsed(std::string(1 << 20, '1').append(" \"a\""), 1), cnMissing);
    EXPECT_EQ(parsed(std::string(1 << 20, '\\').append("\n1 \"a\""), 1), "a");
    EXPECT_EQ(add(resource, ""), 0);
    EXPECT_EQ(resource.AddText(nullptr, 0), 0);
    for (const std::uint32_t page : {932u, 65001u}) {
        const CodePageScope scope(page);
        std::string all;
        for (int round = 0; round < 3; ++round)
            for (int byte = 0; byte < 256; ++byte)
                all += {'1', ' ', '"', char(byte)};
        add(resource, all);
    }
}

TEST(XCStringResource, EarlierTablesWin) {
    XCStringResource resource;
    add(resource, "1 \"first\"");
    add(resource, "1 \"second\"\n2 \"two\"");
    EXPECT_EQ(look(resource, 1), "first");
    EXPECT_EQ(look(resource, 2), "two");
    XCString text("old");
    EXPECT_EQ(resource.LoadStringA(text, 3), 0);
    EXPECT_STREQ(text, "");
}

TEST(XCStringResourceThread, LooksUpWhileTablesAreAdded) {
    XCStringResource resource;
    add(resource, "1 \"one\"");
    std::thread other([&] {
        for (int i = 0; i < 200; ++i)
            EXPECT_EQ(look(resource, 1), "one");
    });
    for (int i = 0; i < 200; ++i)
        add(resource, "2 \"two\"");
    other.join();
    EXPECT_EQ(look(resource, 2), "two");
}

TEST(XCStringResource, BuffersAreZeroedAndMayLackATerminator) {
    XCStringResource resource;
    add(resource, "1 \"abcdef\"\n2 \"\xE3\x81\x82x\"");
    const struct {
        int id, size, answer;
        const char* expected; // 8 bytes
    } cases[] = {
        {1, 8, 1, "abcdef\0\0"},   {1, 7, 1, "abcdef\0-"},    {1, 6, 1, "abcdef--"}, {1, 3, 1, "abc-----"},
        {0, 4, 0, "\0\0\0\0----"}, {5, 4, 0, "\0\0\0\0----"}, {1, 0, 0, "--------"},
    };
    for (const auto& c : cases) {
        char buffer[9] = "--------";
        EXPECT_EQ(resource.LoadStringA(buffer, c.size, c.id), c.answer) << c.id << ' ' << c.size;
        EXPECT_EQ(std::memcmp(buffer, c.expected, 8), 0) << c.id << ' ' << c.size;
    }
    char16_t wide[4] = {u'-', u'-', u'-', u'-'};
    EXPECT_EQ(resource.LoadStringA(wide, 3, 2), 1);
    EXPECT_EQ(std::u16string(wide, 4), std::u16string(u"\u3042x\0-", 4));
    EXPECT_EQ(resource.LoadStringA(wide, 2, 1), 1);
    EXPECT_EQ(std::u16string(wide, 4), std::u16string(u"ab\0-", 4));
    EXPECT_EQ(resource.LoadStringA(wide, 4, 0), 0);
    EXPECT_EQ(std::u16string(wide, 4), std::u16string(4, u'\0'));
    XCWideString text;
    EXPECT_EQ(resource.LoadStringA(text, 2), 1);
    EXPECT_EQ(std::u16string(text.GetStr()), u"\u3042x");
}

TEST(XCStringResource, TakesResourcesOfTheApplication) {
    VXHOOKS hooks{};
    hooks.loadResource = [](HINSTANCE, HRSRC resource, std::uint32_t* size) -> const void* {
        static const char text[] = "3 \"three\"trailing";
        *size = resource == reinterpret_cast<HRSRC>(1) ? 9 : 0;
        return resource == reinterpret_cast<HRSRC>(3) ? nullptr : text;
    };
    const HooksScope scope(hooks);
    XCStringResource resource;
    EXPECT_EQ(resource.AddResource(nullptr, nullptr), 0);
    EXPECT_EQ(resource.AddResource(nullptr, reinterpret_cast<HRSRC>(2)), 0);
    EXPECT_EQ(resource.AddResource(nullptr, reinterpret_cast<HRSRC>(3)), 0);
    EXPECT_EQ(resource.AddResource(nullptr, reinterpret_cast<HRSRC>(1)), 1);
    EXPECT_EQ(look(resource, 3), "three");
}

TEST(XCStringResource, StringsLoadFromTheGlobalOneAndFromModules) {
    add(*xcGetStringResource(), "60001 \"\xE3\x81\x82\"");
    XCString text;
    EXPECT_EQ(text.LoadStringA(60001), 1);
    EXPECT_STREQ(text, "\xE3\x81\x82");
    EXPECT_EQ(text.LoadStringA(60002), 0);
    EXPECT_STREQ(text, "");
    XCWideString wide;
    EXPECT_EQ(wide.LoadStringA(60001), 1);
    EXPECT_EQ(std::u16string(wide.GetStr()), u"\u3042");
    const ovw::test::LanguageScope language(1033);
    EXPECT_EQ(text.LoadStringA(6, 0, vxGetLibraryModule()), 1);
    EXPECT_STREQ(text, "Incorrect parameter!");
}

} // namespace
