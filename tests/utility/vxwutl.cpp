#include "ovwcmn/vxwutl.h"

#include "Platform/text.h"
#include "support/scopes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using ovw::test::CodePageScope;
using ovw::test::HooksScope;
using ovw::test::LanguageScope;

constexpr std::uint32_t cnEnglish = 1033;
constexpr std::uint32_t cnJapanese = 1041;
// The last ones are blocks of whole pages, which grow where they are or move without a copy; 0x100000 is a piece of an
// area of pages, the largest have large pages.
constexpr std::uint32_t cnSizes[] = {0, 1, 63, 64, 65, 4096, 100000, 0x100000, 0x120003, 0x280000, 0x400001, 0x700000};

bool isZero(const void* block, std::uint32_t from, std::uint32_t to) {
    const auto* const bytes = static_cast<const unsigned char*>(block);
    for (std::uint32_t i = from; i < to; ++i)
        if (bytes[i] != 0)
            return false;
    return true;
}

TEST(VxMemory, BlocksAreAlignedAndZeroWhereverTheyGrow) {
    VXHANDLE const neighbour = vxAlloc(0x100000, 0, nullptr); // keeps an area, whose pieces are used again and again
    for (const std::uint32_t from : cnSizes) {
        for (const std::uint32_t to : cnSizes) {
            int status = 0;
            VXHANDLE handle = vxAlloc(from, 0, &status);
            ASSERT_NE(handle, nullptr);
            EXPECT_EQ(vxGetHandleSize(handle), from);
            EXPECT_TRUE(isZero(handle, 0, from));
            std::memset(static_cast<void*>(handle), 0xFF, from);
            handle = vxReAlloc(handle, to, 1, &status);
            ASSERT_NE(handle, nullptr);
            EXPECT_EQ(vxGetHandleSize(handle), to);
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(handle) % 64, 0u);
            EXPECT_TRUE(isZero(handle, from, to)) << from << " to " << to;
            const auto* const bytes = static_cast<unsigned char*>(vxLock(handle));
            EXPECT_TRUE(std::all_of(bytes, bytes + std::min(from, to), [](int byte) { return byte == 0xFF; }));
            EXPECT_EQ(status, 0);
            vxFree(handle);
        }
    }
    vxFree(neighbour);
}

TEST(VxMemory, BytesThatWereCutOffComeBackAsZeros) {
    const std::pair<std::uint32_t, std::uint32_t> cases[] = {
        {1000, 10}, {0x280000, 0x120003}, {0x280000, 0x27FFFF}, {0x500000, 0x400100}, {0x280000, 0x100000}};
    for (const auto& [size, least] : cases) {
        void* block = vxAllocPtr(size, 0, nullptr);
        std::memset(block, 0xFF, size);
        block = vxReAllocPtr(block, least, 0, nullptr);
        block = vxReAllocPtr(block, size, 0, nullptr);
        EXPECT_EQ(static_cast<unsigned char*>(block)[least - 1], 0xFF);
        EXPECT_TRUE(isZero(block, least, size)) << size;
        EXPECT_EQ(vxGetPtrSize(block), size);
        vxFreePtr(block);
    }
}

TEST(VxMemory, NullAndTooManyUnlocksAreAllowed) {
    const VXHANDLE handle = vxReAlloc(nullptr, 5, 0, nullptr);
    vxUnlock(handle);
    EXPECT_EQ(vxGetLockCount(handle), 0);
    vxFree(handle);
    vxFree(nullptr);
    vxFreePtr(nullptr);
    vxUnlock(nullptr);
    EXPECT_EQ(vxLock(nullptr), nullptr);
    EXPECT_EQ(vxGetHandleSize(nullptr), 0u);
}

TEST(VxMemoryThread, ReadersLockOneBlockTogether) {
    const VXHANDLE handle = vxAlloc(100, 0, nullptr);
    const auto read = [handle] {
        for (int i = 0; i < 10000; ++i) {
            EXPECT_EQ(static_cast<unsigned char*>(vxLock(handle))[i % 100], 0);
            vxUnlock(handle);
        }
    };
    std::thread other(read);
    read();
    other.join();
    EXPECT_EQ(vxGetLockCount(handle), 0);
    vxFree(handle);
}

TEST(VxMemoryThread, EveryThreadHasItsOwnError) {
    vxSetLastError(39);
    std::thread([] {
        EXPECT_EQ(vxGetLastError(), 0);
        vxSetLastError(5);
    }).join();
    vxFree(vxAlloc(1, 0, nullptr));
    EXPECT_EQ(vxGetLastError(), 39);
    vxSetLastError(0);
}

TEST(VxText, OnlyDigitsMakeANumber) {
    const struct {
        const char* text;
        int expected;
    } cases[] = {{"0123456789", 1}, {"", 0},   {nullptr, 0}, {"-1", 0},          {"1.5", 0},
                 {" 1", 0},         {"1 ", 0}, {"1a", 0},    {"\xEF\xBC\x91", 0}};
    for (const auto& c : cases)
        EXPECT_EQ(vxIsOnlyNumberString(c.text), c.expected) << (c.text ? c.text : "null");
}

TEST(VxText, LaterBytesFollowTheCodePage) {
    const char* const text = "\x83\x5C\xE3\x81\x82";
    const struct {
        std::uint32_t page;
        const char* expected;
    } cases[] = {{65001, "000110"}, {932, "010100"}, {1252, "000000"},
                 {936, "010100"},   {949, "010100"}, {950, "010100"}};
    for (const auto& c : cases) {
        const CodePageScope page(c.page);
        for (int i = 0; i < 6; ++i)
            EXPECT_EQ(vxIsDoubleByteCheckEx(text, i), c.expected[i] - '0') << c.page << ' ' << i;
        EXPECT_EQ(vxIsDoubleByteCheckEx(text, -1), 0);
        EXPECT_EQ(vxIsDoubleByteCheckEx(nullptr, 0), 0);
    }
}

TEST(VxText, UnknownCodePagesAreRefused) {
    const CodePageScope page(932);
    for (const std::uint32_t unknown : {0u, 1u, 12345u, 0xFFFFFFFFu})
        EXPECT_EQ(vxSetCodePage(unknown), 0) << unknown;
    EXPECT_EQ(vxGetCodePage(), 932u);
}

std::string libraryString(std::uint32_t id, int size = 768) {
    std::vector<char> buffer(std::size_t(size) + 1, '-');
    const int length = vxLoadString(vxGetLibraryModule(), id, 0, buffer.data(), size);
    EXPECT_EQ(length, int(std::strlen(buffer.data())));
    EXPECT_EQ(buffer.back(), '-');
    return buffer.data();
}

TEST(VxStringTable, HoldsTwoLanguages) {
    const struct {
        std::uint32_t id;
        const char *english, *japanese;
    } cases[] = {
        {80, "Error occurred during vector data processing!", "ベクターデータの操作中にエラーが発生しました！"},
        {100, "%s has changed. Save the changes?", "%s は更新されています。保存しますか？"},
        {101, "%s is read-only.\nClose the file?",
         "%s は読み取り専用属性が指定されています！\nドキュメントを閉じてもよろしいですか？"},
        {102, "%s is read-only.", "%s は読み取り専用属性が指定されています！"},
        {200, "Don't show again", "再表示しない"},
        {0, "", ""},
        {19, "", ""},
        {65536 + 100, "", ""},
    };
    for (const auto& c : cases) {
        const LanguageScope english(cnEnglish);
        EXPECT_EQ(libraryString(c.id), c.english);
        const LanguageScope japanese(cnJapanese);
        EXPECT_EQ(libraryString(c.id), c.japanese);
    }
}

TEST(VxStringTable, TextsAreCutBetweenCharacters) {
    const LanguageScope japanese(cnJapanese);
    const std::string text = libraryString(200); // six characters of three bytes
    EXPECT_EQ(text.size(), 18u);
    EXPECT_EQ(libraryString(200, 19), text);
    EXPECT_EQ(libraryString(200, 18), text.substr(0, 15));
    EXPECT_EQ(libraryString(200, 17), text.substr(0, 15));
    EXPECT_EQ(libraryString(200, 16), text.substr(0, 15));
    EXPECT_EQ(libraryString(200, 15), text.substr(0, 12));
    EXPECT_EQ(libraryString(200, 1), "");
    char untouched = '-';
    EXPECT_EQ(vxLoadString(vxGetLibraryModule(), 200, 0, &untouched, 0), 0);
    EXPECT_EQ(untouched, '-');
    const CodePageScope page(932);
    EXPECT_EQ(libraryString(200, 4), "\x8D\xC4");
}

TEST(VxStringTable, TheLanguageFollowsTheLocale) {
    const struct {
        const char *all, *messages, *lang;
        std::uint32_t expected;
    } cases[] = {
        {"ja_JP.UTF-8", "de_DE", "de_DE", cnJapanese},
        {"", "ja", "en_US", cnJapanese},
        {"", "", "ja_JP.SJIS", cnJapanese},
        {"C", "ja_JP", "ja_JP", cnEnglish},
        {"", "jam_JM", "ja_JP", cnEnglish},
        {"", "", "", cnEnglish},
    };
    for (const auto& c : cases) {
        setenv("LC_ALL", c.all, 1);
        setenv("LC_MESSAGES", c.messages, 1);
        setenv("LANG", c.lang, 1);
        EXPECT_EQ(ovw::platform::userLanguage(), c.expected) << c.all << ' ' << c.messages << ' ' << c.lang;
    }
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"})
        unsetenv(name);
    const LanguageScope japanese(cnJapanese);
    EXPECT_EQ(vxGetLanguage(), cnJapanese);
}

// Both directions agree on every double-byte character that there is.
TEST(VxText, EveryShiftJisPairConvertsBack) {
    int pairs = 0;
    for (int lead = 0x81; lead <= 0xFC; ++lead) {
        for (int trail = 0x40; trail <= 0xFC; ++trail) {
            const char bytes[] = {char(lead), char(trail), '\0'};
            char16_t unit = 0, again = 0;
            char back[3] = {};
            using namespace ovw::platform;
            const Converted there = toUtf16(cnCodePageShiftJis, bytes, 2, &unit, 1);
            if (there.result != Conversion::done || there.length != 1)
                continue;
            ++pairs;
            ASSERT_EQ(fromUtf16(cnCodePageShiftJis, &unit, 1, back, 2).result, Conversion::done) << std::hex << lead;
            // Some characters stand in the table twice: then the other place means the same.
            ASSERT_EQ(toUtf16(cnCodePageShiftJis, back, 2, &again, 1).result, Conversion::done);
            ASSERT_EQ(again, unit) << std::hex << lead << trail;
        }
    }
    EXPECT_GT(pairs, 7000);
}

TEST(VxStringTable, TheExecutablesStringsComeFromItsHook) {
    char buffer[16] = "old";
    EXPECT_EQ(vxLoadString(nullptr, 5, 0, buffer, 16), 0);
    EXPECT_STREQ(buffer, "");
    VXHOOKS hooks{};
    hooks.loadString = [](std::uint32_t id, std::uint32_t selector, char* out, int size) {
        return std::snprintf(out, std::size_t(size), "%u/%u", id, selector);
    };
    const HooksScope scope(hooks);
    EXPECT_EQ(vxLoadString(nullptr, 5, 3, buffer, 16), 3);
    EXPECT_STREQ(buffer, "5/3");
    // Members left null keep their defaults.
    EXPECT_NE(xcGetHooks().messageBox, nullptr);
    EXPECT_EQ(xcwGetMainWnd(), nullptr);
}

} // namespace
