#include "ovwcmn/xcunzip.h"

#include "ovwcmn/vxwutl.h"
#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcprogress.h"
#include "support/scopes.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <zlib.h>

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

namespace {

using namespace ovw::test;
namespace fs = std::filesystem;
using Names = std::vector<std::string>;

std::string number(std::uint64_t value, int bytes) {
    std::string result;
    for (int i = 0; i < bytes; ++i)
        result.push_back(static_cast<char>(value >> (8 * i)));
    return result;
}

std::string deflated(const std::string& contents) {
    std::vector<Bytef> zlib(compressBound(contents.size()));
    uLongf size = zlib.size();
    compress(zlib.data(), &size, reinterpret_cast<const Bytef*>(contents.data()), contents.size());
    return {zlib.begin() + 2, zlib.begin() + static_cast<std::ptrdiff_t>(size) - 4}; // without head and check sum
}

/// An entry, and what its directory says otherwise than the truth.
struct Entry {
    std::string name;
    std::string contents;
    int method = 8;
    int flags = 0;
    std::uint32_t mode = 0100644;
    std::int64_t announced = -1; ///< size; -1: the true one
    std::uint32_t sumChange = 0;
    bool longSizes = false; ///< in a field of their own
};

std::string dataOf(const Entry& entry) { return entry.method == 8 ? deflated(entry.contents) : entry.contents; }

/// What the local head and the directory share, from the version to the length of the extra field.
std::string commonHead(const Entry& entry, std::size_t extraBytes) {
    const auto sum =
        crc32(0, reinterpret_cast<const Bytef*>(entry.contents.data()), static_cast<uInt>(entry.contents.size()));
    const std::uint64_t size =
        entry.announced >= 0 ? static_cast<std::uint64_t>(entry.announced) : entry.contents.size();
    return number(20, 2) + number(static_cast<std::uint64_t>(entry.flags), 2) +
           number(static_cast<std::uint64_t>(entry.method), 2) + number(0x21526400, 4) +
           number(sum ^ entry.sumChange, 4) + number(dataOf(entry).size(), 4) +
           number(entry.longSizes ? 0xFFFFFFFF : size, 4) + number(entry.name.size(), 2) + number(extraBytes, 2);
}

std::string zipOf(const std::vector<Entry>& entries, const std::string& before = "") {
    std::string file = before, directory;
    for (const Entry& entry : entries) {
        const std::string data = dataOf(entry);
        const std::string extra = entry.longSizes ? number(0x5455, 2) + number(1, 2) + "t" + number(1, 2) +
                                                        number(8, 2) + number(entry.contents.size(), 8)
                                                  : "";
        directory += "PK\1\2" + number(0x0314, 2) + commonHead(entry, extra.size()) + number(0, 6) +
                     number(std::uint64_t{entry.mode} << 16, 4) + number(file.size(), 4) + entry.name + extra;
        file += "PK\3\4" + commonHead(entry, extra.size()) + entry.name + extra + data;
    }
    return file + directory + "PK\5\6" + number(0, 4) + number(entries.size(), 2) + number(entries.size(), 2) +
           number(directory.size(), 4) + number(file.size(), 4) + number(0, 2);
}

class XCUnzip : public testing::Test {
protected:
    XCUnzip() { fs::create_directory(m_folder.posix("out")); }

    int unzip(const std::string& archive, const VXUNZIPOPTIONS& options = {}) {
        fs::remove(m_folder.posix("a.zip")); // some file systems write a file to the disk when it is overwritten
        m_folder.write("a.zip", archive);
        return xcUnzip(m_folder.path("a.zip"), m_folder.path("out"), &options);
    }
    int unzipError(const std::string& archive, const VXUNZIPOPTIONS& options = {}) {
        return errorOf([&] { unzip(archive, options); });
    }
    Names names(const char* folder = "out") const {
        Names result;
        for (const auto& entry : fs::recursive_directory_iterator(m_folder.posix(folder)))
            result.push_back(entry.path().lexically_relative(m_folder.posix(folder)).string());
        std::sort(result.begin(), result.end());
        return result;
    }

    TempFolder m_folder;
};

TEST_F(XCUnzip, FoldersAndFilesOfEveryKind) {
    const std::string large(300000, 'z');
    const std::string archive = zipOf({{"folder/", "", 0, 0, 040755},
                                       {"folder/sub/file.txt", "deflated"},
                                       {"stored", "as it is", 0},
                                       {"nothing", ""},
                                       {"large", large},
                                       {"long", large, 8, 0, 0100600, -1, 0, true},
                                       {"longstored", "0123456789", 0, 0, 0, -1, 0, true},
                                       {"./x/../y//z", "inside"}},
                                      "something before the archive");
    EXPECT_EQ(unzip(archive), 1);
    EXPECT_EQ(names(), (Names{"folder", "folder/sub", "folder/sub/file.txt", "large", "long", "longstored", "nothing",
                              "stored", "y", "y/z"}));
    EXPECT_EQ(m_folder.read("out/folder/sub/file.txt"), "deflated");
    EXPECT_EQ(m_folder.read("out/stored"), "as it is");
    EXPECT_EQ(m_folder.read("out/large"), large);
    EXPECT_EQ(m_folder.read("out/long"), large);
    EXPECT_EQ(m_folder.read("out/longstored"), "0123456789");
    EXPECT_EQ(unzip(archive), 1); // over what is there
    EXPECT_EQ(unzip(zipOf({})), 1);
}

TEST_F(XCUnzip, WhatIsNoArchiveAnswersZero) {
    const std::string archive = zipOf({{"a", "contents"}});
    for (const std::string& file :
         {std::string(), std::string("a text that is no archive at all"), archive.substr(0, archive.size() - 25)}) {
        EXPECT_EQ(unzip(file), 0);
        EXPECT_EQ(vxGetLastError(), 0x2001000B);
    }
    EXPECT_EQ(xcUnzip(m_folder.path("missing.zip"), m_folder.path("out")), 0);
    EXPECT_EQ(vxGetLastError(), 2);
}

TEST_F(XCUnzip, HostileArchivesCreateNothing) {
    const Entry good = {"good", "contents"};
    const struct {
        const char* what;
        Entry entry;
        int code;
    } cases[] = {
        {"parent", {"../evil", "x"}, 0x2001000B},
        {"parent, deeper", {"a/b/../../../evil", "x"}, 0x2001000B},
        {"parent at the end", {"a/../..", "x"}, 0x2001000B},
        {"absolute", {"/evil", "x"}, 0x2001000B},
        {"drive", {"C:/evil", "x"}, 0x2001000B},
        {"drive without folder", {"C:evil", "x"}, 0x2001000B},
        {"backslash", {"..\\evil", "x"}, 0x2001000B},
        {"share", {"\\\\server\\share\\evil", "x"}, 0x2001000B},
        {"no name", {"", "x"}, 0x2001000B},
        {"NUL in the name", {std::string("a\0b", 3), "x"}, 0x2001000B},
        {"long component", {std::string(256, 'n'), "x"}, 0x2001000B},
        {"long name", {std::string(512, 'n'), "x"}, 206},
        {"link", {"link", "/etc/passwd", 0, 0, 0120777}, 0x2001000B},
        {"device", {"null", "", 0, 0, 0020666}, 0x2001000B},
        {"encrypted", {"secret", "x", 0, 1}, 50},
        {"another method", {"bzip2", "x", 12}, 50},
        {"size that cannot be", {"huge", "x", 8, 0, 0100644, 0x7FFFFFFF}, 0x2001000B},
        {"stored size that lies", {"more", "x", 0, 0, 0100644, 2}, 0x2001000B},
        {"less than announced", {"less", "x", 8, 0, 0100644, 2}, 0x2001000B},
        {"more than announced", {"more", std::string(3000, 'x'), 8, 0, 0100644, 100}, 0x2001000B},
        {"check sum", {"sum", "x", 8, 0, 0100644, -1, 1}, 0x2001000B},
        {"a file for a folder", {"good/below", "x"}, 0x2001000A},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.what);
        EXPECT_EQ(unzipError(zipOf({{"folder/deep/first", "x"}, good, each.entry})), each.code);
        EXPECT_EQ(names(), Names());
    }
    EXPECT_EQ(m_folder.names(), (Names{"a.zip", "out"}));
}

TEST_F(XCUnzip, DamageAnywhereNeverLooksWhole) {
    const std::string archive = zipOf({{"a", "some contents, some more contents"}, {"b/c", "more"}});
    for (std::size_t at = 0; at < archive.size(); ++at) {
        std::string damaged = archive;
        damaged[at] = static_cast<char>(~damaged[at]);
        int result = 0;
        if (errorOf([&] { result = unzip(damaged); }) != 0 || result == 0) {
            EXPECT_EQ(names(), Names()) << at;
            continue;
        }
        for (const std::string& name : names())
            if (fs::is_regular_file(m_folder.posix("out") / name)) {
                const std::string contents = m_folder.read("out/" + name);
                EXPECT_TRUE(contents == "some contents, some more contents" || contents == "more") << at;
            }
        fs::remove_all(m_folder.posix("out"));
        fs::create_directory(m_folder.posix("out"));
    }
}

TEST_F(XCUnzip, LinksInTheDestinationAreNotFollowed) {
    fs::create_directory(m_folder.posix("elsewhere"));
    m_folder.write("victim", "kept");
    fs::create_directory_symlink("../elsewhere", m_folder.posix("out/folder"));
    fs::create_symlink("../victim", m_folder.posix("out/file"));
    EXPECT_EQ(unzipError(zipOf({{"folder/evil", "x"}})), 5);
    EXPECT_EQ(names("elsewhere"), Names());
    EXPECT_EQ(unzip(zipOf({{"file", "new"}})), 1);
    EXPECT_EQ(m_folder.read("victim"), "kept");
    EXPECT_EQ(m_folder.read("out/file"), "new");
}

TEST_F(XCUnzip, LimitsAgainstBombs) {
    const std::string zeros(100000, '\0');
    const std::string archive = zipOf({{"a", zeros}, {"b", zeros}});
    VXUNZIPOPTIONS options;
    options.maxBytes = 199999;
    EXPECT_EQ(unzipError(archive, options), 0x2001000B);
    EXPECT_EQ(names(), Names());
    options.maxBytes = 200000;
    options.maxEntries = 1;
    EXPECT_EQ(unzipError(archive, options), 0x2001000B);
    options.maxEntries = 2;
    EXPECT_EQ(unzip(archive, options), 1);
    // The limit that stands without being set, from the directory alone: 3 x 400 MiB that could be deflated so far.
    Entry large = {"1", std::string(500000, '\0'), 0};
    large.contents.replace(0, 1, "x");
    std::vector<Entry> many(3, large);
    for (Entry& entry : many) {
        entry.method = 8;
        entry.announced = 400 << 20;
        entry.contents.clear();
        for (std::uint32_t i = 0, random = 1; i < 420000; ++i, random = random * 1664525 + 1013904223)
            entry.contents.push_back(static_cast<char>(random >> 24));
    }
    EXPECT_EQ(unzipError(zipOf(many)), 0x2001000B);
}

TEST_F(XCUnzip, StoppingTakesEverythingBack) {
    struct Application : IXCProgress, IXCAbort {
        void Begin(std::uint32_t newTotal) override { total = newTotal; }
        void Step(std::uint32_t count) override { steps += count; }
        void End() override { ++ends; }
        int IsAbort() override { return steps == 2; }
        std::uint32_t total = 0, steps = 0, ends = 0;
    } application;
    VXUNZIPOPTIONS options;
    options.progress = &application;
    options.abort = &application;
    m_folder.write("out/mine", "kept");
    EXPECT_EQ(unzipError(zipOf({{"f/a", "1"}, {"g/b", "2"}, {"c", "3"}}), options), 0x20010004);
    EXPECT_EQ(application.total + 10 * application.steps + 100 * application.ends, 123u);
    EXPECT_EQ(names(), Names{"mine"});
}

TEST_F(XCUnzip, NamesOfOtherEncodings) {
    const std::string so = "\x83\x5C\x81\x5B.txt"; // in code page 932; the second byte is a backslash
    EXPECT_EQ(unzip(zipOf({{so, "x"}, {"\xE9t\xE9", "y"}})), 1);
    EXPECT_EQ(names(), (Names{"%83%5C%81[.txt", "%E9t%E9"}));
    fs::remove_all(m_folder.posix("out"));
    fs::create_directory(m_folder.posix("out"));
    const CodePageScope shiftJis(932);
    EXPECT_EQ(unzip(zipOf({{so, "x"}})), 1);
    EXPECT_EQ(names(), Names{"\u30BD\u30FC.txt"});
}

TEST_F(XCUnzip, IntoANewFolderBesideTheArchive) {
    m_folder.write("A.ZIP", zipOf({{"x", "1"}}));
    m_folder.write("a.txt", zipOf({{"x", "1"}}));
    m_folder.write("bad.zip", zipOf({{"x", "1"}, {"../evil", "2"}}));
    fs::create_directory(m_folder.posix("A"));
    XCFilePath out("untouched");
    EXPECT_EQ(xcIsZipFileUnzip(m_folder.path("a.txt"), out), 0);
    EXPECT_EQ(xcIsZipFileUnzip(m_folder.path("bad.zip"), out), 0);
    EXPECT_EQ(vxGetLastError(), 0x2001000B);
    EXPECT_TRUE(out == "untouched");
    EXPECT_FALSE(m_folder.has("bad"));
    EXPECT_EQ(xcIsZipFileUnzip(m_folder.path("A.ZIP"), out), 1);
    EXPECT_TRUE(out == m_folder.path("A1"));
    EXPECT_EQ(m_folder.read("A1/x"), "1");
    EXPECT_EQ(xcIsZipFileUnzip(m_folder.path("A.ZIP"), out), 1);
    EXPECT_TRUE(out == m_folder.path("A2"));
    // No folder can be made beside a path through a file: the other parent is taken.
    const XCFilePath other = m_folder.path("out");
    const XCFilePath nowhere = m_folder.path("a.txt\\b.zip");
    EXPECT_EQ(xcIsZipFileUnzip(nowhere, out), 0);
    EXPECT_EQ(xcIsZipFileUnzip(nowhere, out, &other), 0); // and there is no archive either
    EXPECT_EQ(names(), Names());
}

} // namespace
