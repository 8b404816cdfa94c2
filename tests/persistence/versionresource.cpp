#include "persistence/versionresource.h"
#include "ovwcmn/xcfilepath.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using ovw::test::TempFolder;

std::string number(std::uint64_t value, int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i)
        text += static_cast<char>(value >> 8 * i);
    return text;
}

std::string padded(std::string text, std::size_t to) {
    text.resize((text.size() + to - 1) / to * to);
    return text;
}

std::string wide(const std::string& text) {
    std::string units;
    for (const char c : text)
        units += number(static_cast<unsigned char>(c), 2);
    return units + number(0, 2);
}

std::string node(const std::string& name, const std::string& value, bool isText, const std::string& children = "") {
    const std::size_t valueLength = isText ? value.size() / 2 : value.size();
    std::string rest = number(static_cast<std::uint32_t>(valueLength), 2) + number(isText, 2) + wide(name);
    rest = padded(number(0, 2) + rest, 4) + value;
    rest = (children.empty() ? rest : padded(rest, 4) + children).substr(2);
    return padded(number(static_cast<std::uint32_t>(rest.size() + 2), 2) + rest, 4);
}

std::string resource() {
    const std::string strings = node("CompanyName", wide("Nobody"), true) + node("FileVersion", wide("1.2.3"), true) +
                                node("Name", number(0x30A2, 2) + number(0, 2), true);
    const std::string other = node("FileVersion", wide("9"), true);
    return node(
        "VS_VERSION_INFO", std::string(52, '\1'), false,
        node("StringFileInfo", "", true, node("040904E4", "", true, other) + node("041104b0", "", true, strings)) +
            node("VarFileInfo", "", true, node("Translation", number(0x0411, 2) + number(0x04B0, 2), false)));
}

/// A program of one section, which holds nothing but the version resource, at `cnSection` in the file.
constexpr std::uint32_t cnSection = 0x200, cnAddress = 0x3000;

std::string folderOf(std::uint32_t id, std::uint32_t offset) {
    return std::string(12, '\0') + number(0, 2) + number(1, 2) + number(id, 4) + number(offset, 4);
}

std::string program(bool isWide) {
    const std::string data = resource();
    constexpr std::uint32_t folderBit = 0x80000000;
    std::string section = folderOf(16, folderBit | 24) + folderOf(1, folderBit | 48) + folderOf(0x411, 72);
    section += number(cnAddress + 88, 4) + number(static_cast<std::uint32_t>(data.size()), 4) + number(0, 8) + data;
    section = padded(section, 512);
    const std::uint32_t directories = isWide ? 112 : 96;
    std::string optional = number(isWide ? 0x20B : 0x10B, 2) + std::string(directories - 6, '\0') + number(16, 4);
    optional += std::string(16, '\0') + number(cnAddress, 4) + number(512, 4) + std::string(13 * 8, '\0');
    std::string file = "MZ" + std::string(58, '\0') + number(64, 4) + std::string("PE\0\0", 4) + number(0x14C, 2);
    file +=
        number(1, 2) + std::string(12, '\0') + number(static_cast<std::uint32_t>(optional.size()), 2) + number(0, 2);
    file += optional + padded(".rsrc", 8) + number(512, 4) + number(cnAddress, 4);
    file += number(static_cast<std::uint32_t>(section.size()), 4) + number(cnSection, 4) + std::string(16, '\0');
    file.resize(cnSection);
    return file + section;
}

TEST(VersionResource, GivesTheTextsOfTheFirstLanguage) {
    const TempFolder folder;
    for (const bool isWide : {false, true}) {
        folder.write("a.dll", program(isWide));
        XCString text;
        EXPECT_EQ(folder.path("a.dll").GetVersionInfo(text, nullptr), 1);
        EXPECT_STREQ(text.GetStr(), "1.2.3");
        EXPECT_EQ(folder.path("a.dll").GetVersionInfo(text, "companyname"), 1);
        EXPECT_STREQ(text.GetStr(), "Nobody");
        EXPECT_EQ(folder.path("a.dll").GetVersionInfo(text, "Name"), 1);
        EXPECT_STREQ(text.GetStr(), "\xE3\x82\xA2");
        for (const char* const missing : {"File", "Nothing", ""}) {
            text = "old";
            EXPECT_EQ(folder.path("a.dll").GetVersionInfo(text, missing), 0);
            EXPECT_TRUE(text.IsEmpty());
        }
    }
    XCString text = "old";
    EXPECT_EQ(folder.path("none").GetVersionInfo(text, nullptr), 0);
    EXPECT_TRUE(text.IsEmpty());
}

// Cut or changed anywhere, a program gives a text or none.
TEST(VersionResource, ReadsDamagedProgramsWithoutHarm) {
    const TempFolder folder;
    const std::string whole = program(true);
    const auto ask = [&](const std::string& bytes) {
        folder.write("a.dll", bytes);
        XCString text;
        folder.path("a.dll").GetVersionInfo(text, nullptr);
    };
    for (std::size_t i = 0; i < cnSection + 88; ++i) {
        if (whole[i] == 0)
            continue;
        std::string damaged = whole;
        damaged[i] = '\xFF';
        ask(damaged);
        ask(whole.substr(0, i));
    }
    const std::string bytes = resource();
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        std::string damaged = bytes;
        for (const char c : {'\0', '\1', '\x7F', '\xFF'}) {
            damaged[i] = c;
            ovw::persistence::versionText(damaged, u"FileVersion");
        }
        ovw::persistence::versionText(std::string_view(bytes).substr(0, i), u"FileVersion");
    }
}

} // namespace
