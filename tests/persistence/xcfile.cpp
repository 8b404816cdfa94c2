#include "ovwcmn/xcfile.h"

#include "ovwcmn/vxwutl.h"
#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcfindfile.h"
#include "ovwcmn/xcstring.h"
#include "ovwcmn/xctime.h"
#include "support/scopes.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <set>
#include <string>

namespace {

using namespace ovw::test;
namespace fs = std::filesystem;

class XCFileTest : public testing::Test {
protected:
    int create(XCFile& file, const char* name, std::uint32_t creation, std::uint32_t share = 0) {
        return errorOf([&] {
            file.Create(m_folder.path(name), 0, 0, GENERIC_READ | GENERIC_WRITE, share, creation,
                        FILE_ATTRIBUTE_NORMAL);
        });
    }
    int open(XCFile& file, const char* name, std::uint32_t access, std::uint32_t share, std::uint32_t creation) {
        return errorOf([&] { file.Open(m_folder.path(name), access, share, creation, 0); });
    }
    TempFolder m_folder;
};

TEST_F(XCFileTest, DispositionsAndTheirErrors) {
    XCFile file;
    EXPECT_EQ(open(file, "a", GENERIC_READ, 0, CREATE_ALWAYS), 0x20010008);
    EXPECT_EQ(open(file, "a", GENERIC_READ, 0, CREATE_NEW), 0x20010008);
    EXPECT_EQ(open(file, "a", GENERIC_READ, 0, OPEN_EXISTING), 2);
    EXPECT_EQ(open(file, "no\\a", GENERIC_READ, 0, OPEN_EXISTING), 3);
    EXPECT_TRUE(m_folder.names().empty());
    EXPECT_EQ(file.IsValid(), 0);
    EXPECT_EQ(create(file, "a", CREATE_NEW), 0);
    EXPECT_EQ(file.IsValid(), 1);
    EXPECT_TRUE(file.GetFilePath() == m_folder.path("a"));
    file.Write("12345", 5);
    file.Close();
    EXPECT_TRUE(file.GetFilePath().IsEmpty());
    EXPECT_EQ(create(file, "a", CREATE_NEW), 80);
    EXPECT_EQ(m_folder.read("a"), "12345");
    EXPECT_EQ(open(file, "a", GENERIC_READ, 0, OPEN_ALWAYS), 0);
    EXPECT_EQ(file.GetLength(), 5);
    EXPECT_EQ(create(file, "a", TRUNCATE_EXISTING), 0); // closes the file before
    EXPECT_EQ(file.GetLength(), 0);
    EXPECT_EQ(open(file, "b", GENERIC_WRITE, 0, OPEN_ALWAYS), 0);
    EXPECT_EQ(m_folder.names(), (std::vector<std::string>{"a", "b"}));
    fs::create_directory(m_folder.posix("folder"));
    EXPECT_EQ(open(file, "folder", GENERIC_READ, 0, OPEN_EXISTING), 5);
    EXPECT_EQ(create(file, "folder", CREATE_ALWAYS), 5);
}

TEST_F(XCFileTest, SharingWithinTheProcess) {
    XCFile first, second, third;
    ASSERT_EQ(create(first, "a", CREATE_ALWAYS, FILE_SHARE_READ), 0);
    EXPECT_EQ(open(second, "a", GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING), 32);
    EXPECT_EQ(open(second, "a", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING), 0);
    EXPECT_EQ(open(third, "a", GENERIC_READ, 0, OPEN_EXISTING), 32);
    first.Close();
    second.Close();
    EXPECT_EQ(open(third, "a", GENERIC_READ, 0, OPEN_EXISTING), 0);
    EXPECT_EQ(open(first, "a", GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING), 32);
}

TEST_F(XCFileTest, PositionedReadsAndWrites) {
    XCFile file;
    ASSERT_EQ(create(file, "a", CREATE_ALWAYS), 0);
    std::uint32_t done = 99;
    file.Write("hello world", 11, &done);
    EXPECT_EQ(done, 11u);
    EXPECT_EQ(file.GetPosition(), 11);
    file.Seek(-5, FILE_END);
    char buffer[20] = {};
    file.Read(buffer, sizeof buffer, &done); // a short read is no failure
    EXPECT_EQ(done, 5u);
    EXPECT_STREQ(buffer, "world");
    file.Read(buffer, 1, &done);
    EXPECT_EQ(done, 0u);
    file.Seek(1, FILE_BEGIN);
    file.Seek(1, FILE_CURRENT);
    EXPECT_EQ(file.GetPosition(), 2);
    EXPECT_EQ(errorOf([&] { file.Seek(-3, FILE_CURRENT); }), 131);
    EXPECT_EQ(errorOf([&] { file.Seek(-12, FILE_END); }), 131);
    EXPECT_EQ(errorOf([&] { file.Seek(-1, FILE_BEGIN); }), 131);
    EXPECT_EQ(file.GetPosition(), 2);
    file.Seek(std::int64_t(5) << 32, FILE_BEGIN);
    EXPECT_EQ(file.GetPosition(), std::int64_t(5) << 32);
    EXPECT_EQ(file.GetLength(), 11);
    file.Seek(3, FILE_BEGIN);
    file.SetEOF();
    EXPECT_EQ(file.GetLength(), 3);
    file.Seek(6, FILE_BEGIN);
    file.Write("x", 1);
    file.Close();
    EXPECT_EQ(m_folder.read("a"), std::string("hel\0\0\0x", 7));
}

TEST_F(XCFileTest, WithoutAFileOrTheAccessOperationsThrow) {
    XCFile none;
    char byte = 0;
    EXPECT_EQ(errorOf([&] { none.Read(&byte, 1); }), 6);
    EXPECT_EQ(errorOf([&] { none.Write(&byte, 1); }), 6);
    EXPECT_EQ(errorOf([&] { none.Seek(0, FILE_BEGIN); }), 6);
    EXPECT_EQ(errorOf([&] { none.SetEOF(); }), 6);
    EXPECT_EQ(errorOf([&] { none.GetLength(); }), 6);
    EXPECT_EQ(errorOf([&] { none.GetPosition(); }), 6);
    none.Close();
    m_folder.write("a", "12");
    XCFile reader;
    ASSERT_EQ(open(reader, "a", GENERIC_READ, 0, OPEN_EXISTING), 0);
    EXPECT_EQ(errorOf([&] { reader.Write(&byte, 1); }), 5);
    EXPECT_EQ(errorOf([&] { reader.SetEOF(); }), 5);
    reader.Close();
    EXPECT_EQ(m_folder.read("a"), "12");
    reader.Create(m_folder.path("r"), 0, 0, GENERIC_WRITE, 0, CREATE_NEW, FILE_ATTRIBUTE_READONLY);
    reader.Write("1", 1);
    EXPECT_EQ(open(reader, "r", GENERIC_WRITE, 0, OPEN_EXISTING), 5) << "read-only for all but its creator";
    m_folder.path("a").SetReadOnly(1);
    EXPECT_EQ(open(reader, "a", GENERIC_WRITE, 0, OPEN_EXISTING), 5);
    reader.Create(xcPathFromPosix("/dev/full"), 0, 0, GENERIC_WRITE, FILE_SHARE_WRITE, CREATE_ALWAYS, 0);
    EXPECT_EQ(errorOf([&] { reader.Write(&byte, 1); }), 39);
}

TEST_F(XCFileTest, TimesAreCopied) {
    m_folder.write("a", "1");
    m_folder.write("b", "2");
    fs::last_write_time(m_folder.posix("a"), fs::last_write_time(m_folder.posix("b")) - std::chrono::hours(5000));
    XCFile a, b;
    ASSERT_EQ(open(a, "a", GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING), 0);
    ASSERT_EQ(open(b, "b", GENERIC_READ | GENERIC_WRITE, 0, OPEN_EXISTING), 0);
    XCTime of, other;
    a.GetTime(of);
    b.CopyTime(a);
    b.GetTime(other);
    EXPECT_TRUE(other == std::int32_t(of));
    EXPECT_EQ(fs::last_write_time(m_folder.posix("a")), fs::last_write_time(m_folder.posix("b")));
}

TEST_F(XCFileTest, FindFileListsEveryEntryOnce) {
    m_folder.write("file.txt", "");
    m_folder.write(".hidden", "");
    m_folder.write("locked", "");
    fs::create_directory(m_folder.posix("folder"));
    m_folder.path("locked").SetReadOnly(1);
    XCFindFile find;
    std::multiset<std::string> names;
    for (int more = find.First(m_folder.path()); more; more = find.Next()) {
        XCString name;
        find.GetName(name);
        names.insert(name.GetStr());
        const std::string entry = name.GetStr();
        EXPECT_EQ(find.IsParentFolder(), entry == "." || entry == "..") << entry;
        EXPECT_EQ(find.IsFolder(), find.IsParentFolder() || entry == "folder") << entry;
        EXPECT_EQ(find.IsReadOnly(), entry == "locked") << entry;
        if (!find.IsParentFolder()) {
            EXPECT_EQ(find.IsHidden(), entry == ".hidden") << entry;
            EXPECT_TRUE(find.GetFilePath() == m_folder.path(entry.c_str()));
            EXPECT_TRUE(find.GetParentFolderPath() == m_folder.path());
        }
    }
    EXPECT_EQ(names, (std::multiset<std::string>{".", "..", ".hidden", "file.txt", "folder", "locked"}));
    EXPECT_EQ(find.Next(), 0);
    find.Close();
    EXPECT_EQ(find.Next(), 0);
    m_folder.path("locked").SetReadOnly(0);
}

TEST_F(XCFileTest, SearchesThatCannotBegin) {
    m_folder.write("file", "");
    XCFindFile find;
    vxSetLastError(0);
    EXPECT_EQ(find.First(m_folder.path("missing")), 0);
    EXPECT_EQ(vxGetLastError(), 3);
    EXPECT_EQ(find.First(m_folder.path("file")), 0);
    EXPECT_NE(vxGetLastError(), 0);
    EXPECT_EQ(find.Next(), 0);
}

TEST_F(XCFileTest, CopiesOfASearchGoOnByThemselves) {
    for (const char* name : {"a", "b", "c"})
        m_folder.write(name, "");
    XCFindFile find;
    ASSERT_EQ(find.First(m_folder.path()), 1);
    find.Next();
    XCFindFile copy(find);
    int left = 0, copied = 0;
    while (find.Next())
        ++left;
    while (copy.Next())
        ++copied;
    EXPECT_EQ(left, 3);
    EXPECT_EQ(copied, 3);
}

TEST_F(XCFileTest, StringTablesComeFromFiles) {
    m_folder.write("table", "12 \"twelve\"\n");
    XCStringResource resource;
    XCFilePath table = m_folder.path("table"), missing = m_folder.path("missing");
    EXPECT_EQ(resource.AddTextFile(missing), 0);
    EXPECT_EQ(resource.AddTextFile(table), 1);
    XCString text;
    EXPECT_EQ(resource.LoadStringA(text, 12), 1);
    EXPECT_STREQ(text, "twelve");
}

TEST_F(XCFileTest, FindRecordsOfSingleEntries) {
    m_folder.write("entry", "123");
    tagFindInfo info;
    XCFindFile::SetupFileInfo(info, m_folder.path());
    EXPECT_EQ(info.handle, 0xFFFFFFFFu);
    std::strcpy(info.name, "entry");
    XCFindFile::GetFileInfo(info);
    EXPECT_STREQ(info.data.cFileName, "entry");
    EXPECT_EQ(info.data.nFileSizeLow, 3u);
    info.name[0] = 0;
    info.isFolder = 7;
    XCFindFile::SetFindInfos(info);
    EXPECT_STREQ(info.name, "entry");
    EXPECT_EQ(info.isFolder, 0);
    std::strcpy(info.name, "missing");
    EXPECT_EQ(errorOf([&] { XCFindFile::GetFileInfo(info); }), 2);
    const XCFilePath tooLong(("C:\\" + std::string(257, 'a')).c_str());
    EXPECT_EQ(errorOf([&] { XCFindFile::SetupFileInfo(info, tooLong); }), 206);
}

} // namespace
