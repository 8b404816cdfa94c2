#include "ovwcmn/xcfilepath.h"

#include "ovwcmn/vxwutl.h"
#include "ovwcmn/xcfile.h"
#include "ovwcmn/xcfindfile.h"
#include "ovwcmn/xctime.h"
#include "support/crashingdisk.h"
#include "support/scopes.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <ctime>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace ovw::test;
namespace fs = std::filesystem;

std::string nameOf(const XCFilePath& path) {
    XCString name;
    path.GetFileName(name);
    return name.GetStr();
}

class XCFilePathDisk : public testing::Test {
protected:
    XCFilePath path(const char* name) const { return m_folder.path(name); }

    TempFolder m_folder;
};

TEST_F(XCFilePathDisk, QueriesAnswerAndNeverThrow) {
    m_folder.write("file", "12");
    fs::create_directory(m_folder.posix("folder"));
    const XCFilePath missing = path("missing\\deeper"), empty, file = path("file"), folder = path("folder");
    EXPECT_EQ(file.IsExistence(), 1);
    EXPECT_EQ(folder.IsExistence(), 1);
    EXPECT_EQ(file.IsFolder(), 0);
    EXPECT_EQ(folder.IsFolder(), 1);
    EXPECT_EQ(folder.IsFolderEmpty(), 1);
    EXPECT_EQ(file.IsFolderEmpty(), 0);
    EXPECT_EQ(m_folder.path().IsFolderEmpty(), 0);
    EXPECT_EQ(XCFilePath("C:\\").IsRoot(), 1);
    EXPECT_EQ(folder.IsRoot(), 0);
    for (const XCFilePath& none : {missing, empty}) {
        EXPECT_EQ(none.IsExistence() + none.IsFolder() + none.IsFolderEmpty() + none.IsHidden() + none.GetReadOnly(),
                  0);
        EXPECT_EQ(XCFilePath::GetDiskSpace("?:\\"), 0u);
    }
    EXPECT_GT(XCFilePath::GetDiskSectorSize(folder), 0u);
    EXPECT_EQ(XCFilePath::GetDiskClusterSize(folder) % XCFilePath::GetDiskSectorSize(folder), 0u);
    EXPECT_GT(XCFilePath::GetDiskSpace(folder), XCFilePath::GetDiskFreeSpaceA(folder));
    EXPECT_GT(XCFilePath::GetDiskFreeSpaceA(folder), 0u);
}

TEST_F(XCFilePathDisk, AttributesReadAndSet) {
    fs::permissions(m_folder.posix(), fs::perms::all);
    const OrdinaryUserScope user; // whose files they are from here on
    m_folder.write("file", "x");
    m_folder.write(".dot", "x");
    XCFilePath file = path("file");
    EXPECT_EQ(file.IsHidden() + file.GetReadOnly(), 0);
    EXPECT_EQ(path(".dot").IsHidden(), 1);
    file.SetReadOnly(1);
    EXPECT_EQ(file.GetReadOnly(), 1);
    EXPECT_EQ(fs::status(m_folder.posix("file")).permissions() & fs::perms::owner_write, fs::perms::none);
    file.SetReadOnly(0);
    EXPECT_EQ(file.GetReadOnly(), 0);
    const int error = errorOf([&] { file.SetHidden(1); });
    if (error == 0) {
        EXPECT_EQ(file.IsHidden(), 1);
        EXPECT_EQ(file.GetReadOnly(), 0);
        file.SetReadOnly(1);
        file.SetHidden(0);
        EXPECT_EQ(file.IsHidden(), 0);
        EXPECT_EQ(file.GetReadOnly(), 1);
    } else {
        EXPECT_EQ(error, 50); // a volume without extended attributes
    }
    XCFilePath missing = path("missing");
    EXPECT_EQ(errorOf([&] { missing.SetReadOnly(1); }), 2);
}

TEST_F(XCFilePathDisk, CreateFolder) {
    path("new").CreateFolder();
    EXPECT_TRUE(fs::is_directory(m_folder.posix("new")));
    path("new\\").CreateFolder();
    m_folder.write("file", "");
    EXPECT_EQ(errorOf([&] { path("file").CreateFolder(); }), 0x2001000A);
    EXPECT_EQ(errorOf([&] { path("missing\\deeper").CreateFolder(); }), 3);
}

TEST_F(XCFilePathDisk, DeleteTakesFilesAndWholeFolders) {
    m_folder.write("file", "");
    fs::create_directories(m_folder.posix("folder/deep"));
    m_folder.write("folder/deep/a", "");
    fs::create_directory(m_folder.posix("kept"));
    m_folder.write("kept/file", "safe");
    fs::create_symlink("../kept/file", m_folder.posix("folder/link"));
    fs::create_directory_symlink("../kept", m_folder.posix("folder/deep/link"));
    fs::create_directory_symlink("kept", m_folder.posix("link"));
    path("folder").FileDelete(0);
    EXPECT_TRUE(m_folder.has("folder"));
    path("file").FileDelete(0);
    path("folder").Delete(0);
    path("link\\").Delete(0);
    path("missing").Delete(0);
    XCFilePath().Delete(0);
    EXPECT_EQ(m_folder.names(), std::vector<std::string>{"kept"});
    EXPECT_EQ(m_folder.read("kept/file"), "safe");
}

// The freedesktop.org trash: the file, and beside it where it was and when it was deleted.
TEST_F(XCFilePathDisk, TheRecycleBinKeepsWhatItTakes) {
    const EnvironmentScope data("XDG_DATA_HOME", m_folder.posix("data").string());
    fs::create_directories(m_folder.posix("a b%/deep"));
    m_folder.write("a b%/deep/file", "1");
    m_folder.write("file", "2");
    path("a b%\\deep\\file").Delete(1);
    path("file").FileDelete(1);
    path("a b%").FileDelete(1); // a folder is no file
    path("a b%").Delete(1);
    EXPECT_EQ(m_folder.names(), (std::vector<std::string>{"data"}));
    EXPECT_EQ(m_folder.read("data/Trash/files/file"), "1");
    EXPECT_EQ(m_folder.read("data/Trash/files/file.2"), "2"); // the name was taken
    EXPECT_TRUE(fs::is_directory(m_folder.posix("data/Trash/files/a b%/deep")));
    const std::string info = m_folder.read("data/Trash/info/a b%.trashinfo");
    const std::string head = "[Trash Info]\nPath=" + m_folder.posix().string() + "/a%20b%25\nDeletionDate=";
    ASSERT_TRUE(info.starts_with(head)) << info;
    std::tm date{};
    EXPECT_STREQ(strptime(info.c_str() + head.size(), "%Y-%m-%dT%H:%M:%S", &date), "\n");
    EXPECT_EQ(fs::status(m_folder.posix("data/Trash")).permissions(), fs::perms::owner_all);
}

TEST_F(XCFilePathDisk, CopyAndMoveFiles) {
    m_folder.write("a", "from");
    m_folder.write("b", "there already");
    EXPECT_EQ(errorOf([&] { XCFilePath::CopyFileA(path("b"), path("a"), 1); }), 0x2001000A);
    EXPECT_EQ(m_folder.read("b"), "there already");
    XCFilePath::CopyFileA(path("b"), path("a"), 0);
    EXPECT_EQ(m_folder.read("b"), "from");
    EXPECT_EQ(errorOf([&] { XCFilePath::CopyFileA(path("c"), path("missing"), 0); }), 2);
    EXPECT_FALSE(m_folder.has("c"));
    EXPECT_EQ(errorOf([&] { XCFilePath::CopyFileA(path("no\\c"), path("a"), 0); }), 3);
    EXPECT_EQ(errorOf([&] { XCFilePath::CopyFileA(path("a"), path("a"), 0); }) != 0, true);
    EXPECT_EQ(m_folder.read("a"), "from");

    m_folder.write("m", "moved");
    EXPECT_EQ(errorOf([&] { XCFilePath::MoveFileA(path("a"), path("m"), 1); }), 0x2001000A);
    XCFilePath::MoveFileA(path("a"), path("m"), 0);
    EXPECT_EQ(m_folder.read("a"), "moved");
    EXPECT_FALSE(m_folder.has("m"));
    EXPECT_EQ(errorOf([&] { XCFilePath::MoveFileA(path("n"), path("m"), 0); }), 2);
    m_folder.write("kept", "k");
    EXPECT_EQ(errorOf([&] { XCFilePath::MoveFileA(path("kept"), path("m"), 0); }), 2); // nothing to put in its place
    XCFilePath::MoveFileA(path("kept"), path("kept"), 0);
    EXPECT_EQ(m_folder.read("kept"), "k");
}

TEST_F(XCFilePathDisk, RenameKeepsTheFolder) {
    m_folder.write("old", "x");
    XCFilePath file = path("old");
    file.Rename("OLD");
    EXPECT_TRUE(m_folder.has("old"));
    EXPECT_EQ(nameOf(file), "old");
    file.Rename("new.txt");
    EXPECT_EQ(m_folder.names(), std::vector<std::string>{"new.txt"});
    EXPECT_EQ(nameOf(file), "new.txt");
    XCFilePath missing = path("missing");
    EXPECT_EQ(errorOf([&] { missing.Rename("other"); }), 2);
    EXPECT_EQ(nameOf(missing), "missing");
}

TEST_F(XCFilePathDisk, FoldersCopyAndMoveWhole) {
    fs::create_directories(m_folder.posix("src/in/deep"));
    m_folder.write("src/a", "1");
    m_folder.write("src/in/deep/b", "2");
    fs::create_directory(m_folder.posix("dest"));
    XCFilePath::CopyFolder(path("dest"), path("src"), 1, 0);
    EXPECT_EQ(m_folder.read("dest/src/a"), "1");
    EXPECT_EQ(m_folder.read("dest/src/in/deep/b"), "2");
    EXPECT_EQ(errorOf([&] { XCFilePath::CopyFolder(path("dest"), path("src"), 1, 0); }), 0x2001000A);
    EXPECT_EQ(errorOf([&] { XCFilePath::CopyFolder(path("dest"), path("src"), 0, 0); }), 80); // its files exist
    fs::create_directory(m_folder.posix("other"));
    XCFilePath::CopyFolder(path("other\\SRC"), path("src"), 0, 0); // the same name: the target itself
    EXPECT_EQ(m_folder.read("other/SRC/a"), "1");
    XCFilePath::MoveFolder(path("other"), path("src"), 1);
    EXPECT_FALSE(m_folder.has("src"));
    EXPECT_EQ(m_folder.read("other/src/in/deep/b"), "2");
    EXPECT_EQ(errorOf([&] { XCFilePath::MoveFolder(path("other"), path("dest\\src"), 1); }), 0x2001000A);
    EXPECT_NE(errorOf([&] { XCFilePath::MoveFolder(path("other"), path("missing"), 0); }), 0);
    EXPECT_NE(errorOf([&] { XCFilePath::CopyFolder(path("other\\src"), path("other"), 0, 1); }),
              0); // into itself: ends
}

/// Names and contents of a tree; links with what they say.
std::map<std::string, std::string> treeOf(const TempFolder& folder, const std::string& name) {
    std::map<std::string, std::string> tree;
    if (!folder.has(name))
        return tree;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder.posix(name))) {
        const std::string inside = entry.path().lexically_relative(folder.posix(name)).string();
        if (entry.is_symlink())
            tree[inside] = "-> " + fs::read_symlink(entry.path()).string();
        else
            tree[inside] = entry.is_directory() ? "/" : folder.read(name + "/" + inside);
    }
    return tree;
}

void makeTree(const TempFolder& folder, const std::string& name) {
    fs::create_directories(folder.posix(name + "/in/deep"));
    fs::create_directories(folder.posix("outside"));
    folder.write("outside/secret", "s");
    folder.write(name + "/a:b", "1");
    folder.write(name + "/in/deep/c", "2");
    for (const auto& [link, target] :
         {std::pair{"/out", "../outside"}, {"/file", "../outside/secret"}, {"/in/circle", ".."}, {"/nowhere", "none"}})
        fs::create_symlink(target, folder.posix(name + link));
}

TEST_F(XCFilePathDisk, CopiesOfFoldersFollowNoLink) {
    makeTree(m_folder, "src");
    fs::create_directory(m_folder.posix("dest"));
    XCFilePath::CopyFolder(path("dest"), path("src"), 1, 0);
    EXPECT_EQ(treeOf(m_folder, "dest/src"), treeOf(m_folder, "src"));
    EXPECT_EQ(treeOf(m_folder, "src").size(), 8u);
    // Into itself by a way that its name does not tell.
    fs::create_directory_symlink("src/in", m_folder.posix("inside"));
    EXPECT_EQ(errorOf([&] { XCFilePath::CopyFolder(path("inside"), path("src"), 0, 1); }), 5);
    EXPECT_LT(treeOf(m_folder, "src").size(), 20u);
}

TEST_F(XCFilePathDisk, CopiesGrantNoMoreThanTheirSources) {
    const auto permissions = [&](const char* name) { return fs::status(m_folder.posix(name)).permissions(); };
    const mode_t umaskBefore = ::umask(022);
    fs::create_directory(m_folder.posix("dest"));
    for (const int mode : {0600, 0640, 0755, 0444}) {
        fs::create_directories(m_folder.posix("src"));
        m_folder.write("src/file", "x");
        fs::permissions(m_folder.posix("src/file"), fs::perms(mode));
        fs::permissions(m_folder.posix("src"), fs::perms(mode | 0300));
        XCFilePath::CopyFileA(path("copy"), path("src\\file"), 1);
        XCFilePath::CopyFolder(path("dest\\src"), path("src"), 0, 0);
        EXPECT_EQ(permissions("copy"), fs::perms(mode));
        EXPECT_EQ(permissions("dest/src/file"), fs::perms(mode));
        EXPECT_EQ(permissions("dest/src"), fs::perms(mode | 0700));
        for (const char* name : {"src", "copy", "dest/src"})
            fs::remove_all(m_folder.posix(name));
    }
    ::umask(umaskBefore);
}

/// Every place lies on a volume of its own.
class FarVolumes : public CrashingDisk {
public:
    using CrashingDisk::CrashingDisk;
    int rename(const std::string&, const std::string&) override { return ovw::platform::cnErrorNotSameDevice; }
};

TEST_F(XCFilePathDisk, FoldersMoveBetweenVolumesWholeOrNotAtAll) {
    makeTree(m_folder, "whole");
    const auto whole = treeOf(m_folder, "whole");
    bool isOver = false;
    for (int call = 1; !isOver; ++call) {
        for (const char* name : {"src", "dest"})
            fs::remove_all(m_folder.posix(name));
        makeTree(m_folder, "src");
        const FarVolumes disk(call);
        const int code = errorOf([&] { XCFilePath::MoveFolder(path("dest"), path("src"), 0); });
        EXPECT_EQ(treeOf(m_folder, code ? "src" : "dest"), whole) << call;
        EXPECT_TRUE(code || !m_folder.has("src")) << call;
        isOver = disk.calls() < call;
    }
    const FarVolumes disk;
    XCFilePath::MoveFileA(path("moved"), path("dest\\file"), 0);
    EXPECT_EQ(fs::read_symlink(m_folder.posix("moved")), "../outside/secret");
    EXPECT_FALSE(m_folder.has("dest/file"));
}

TEST_F(XCFilePathDisk, ReadOnlyFilesMoveBetweenVolumesWholeOrNotAtAll) {
    bool isOver = false;
    for (int call = 1; !isOver; ++call) {
        for (const char* name : {"file", "moved"})
            fs::remove(m_folder.posix(name));
        m_folder.write("file", "x");
        path("file").SetReadOnly(1);
        const FarVolumes disk(call);
        const int code = errorOf([&] { XCFilePath::MoveFileA(path("moved"), path("file"), 0); });
        EXPECT_EQ(m_folder.has("moved"), code == 0) << call;
        EXPECT_EQ(m_folder.has("file"), code != 0) << call;
        isOver = disk.calls() < call;
    }
}

TEST_F(XCFilePathDisk, WhatAFolderCannotGiveIsTold) {
    fs::create_directories(m_folder.posix("foreign"));
    fs::create_directories(m_folder.posix("piped"));
    fs::create_directory(m_folder.posix("dest"));
    m_folder.write("foreign/a\\b", "a separator of the library");
    ASSERT_EQ(mkfifo(m_folder.posix("piped/pipe").c_str(), 0600), 0);
    EXPECT_EQ(errorOf([&] { XCFilePath::CopyFolder(path("dest"), path("foreign"), 0, 1); }), 123);
    EXPECT_EQ(errorOf([&] { XCFilePath::CopyFolder(path("dest"), path("piped"), 0, 1); }), 25); // and nobody waits
    EXPECT_EQ(path("foreign").IsFolderEmpty(), 0);
}

TEST_F(XCFilePathDisk, MissingPermissionsAreTold) {
    fs::permissions(m_folder.posix(), fs::perms::all);
    for (const char* name : {"locked/in", "closed/in", "open"})
        fs::create_directories(m_folder.posix(name));
    for (const char* name : {"locked/file", "closed/file", "unreadable", "open/file"})
        m_folder.write(name, "x");
    fs::permissions(m_folder.posix("open"), fs::perms::all);
    fs::permissions(m_folder.posix("locked"), fs::perms(0555));
    for (const char* name : {"closed", "unreadable"})
        fs::permissions(m_folder.posix(name), fs::perms::none);
    {
        const OrdinaryUserScope user;
        const XCFilePath inLocked = path("locked\\new"), file = path("locked\\file"), inOpen = path("open\\new");
        const std::pair<const char*, std::function<void()>> refused[] = {
            {"create", [&] { XCFile().Create(inLocked, 0, 0, GENERIC_WRITE, 0, CREATE_ALWAYS, 0); }},
            {"read", [&] { XCFile().Open(path("unreadable"), GENERIC_READ, 0, OPEN_EXISTING, 0); }},
            {"reach", [&] { XCFile().Open(path("closed\\file"), GENERIC_READ, 0, OPEN_EXISTING, 0); }},
            {"create folder", [&] { inLocked.CreateFolder(); }},
            {"copy there", [&] { XCFilePath::CopyFileA(inLocked, path("open\\file"), 1); }},
            {"copy from there", [&] { XCFilePath::CopyFileA(inOpen, path("unreadable"), 1); }},
            {"move away", [&] { XCFilePath::MoveFileA(inOpen, file, 1); }},
            {"replace", [&] { XCFilePath::MoveFileA(file, path("open\\file"), 0); }},
            {"rename", [&] { XCFilePath(file).Rename("other"); }},
            {"copy folder", [&] { XCFilePath::CopyFolder(path("open"), path("closed"), 0, 1); }},
            {"move folder", [&] { XCFilePath::MoveFolder(path("open"), path("locked\\in"), 0); }},
            {"save", [&] { inLocked.CanSaveFile(); }},
        };
        for (const auto& [name, operation] : refused)
            EXPECT_EQ(errorOf(operation), 5) << name;
        file.Delete(0);
        path("locked").Delete(0);
        EXPECT_EQ(path("closed\\file").IsExistence() + path("closed").IsFolderEmpty(), 0);
        XCFindFile find;
        EXPECT_EQ(find.First(path("closed")), 0);
        EXPECT_EQ(vxGetLastError(), 5);
        EXPECT_EQ(XCFilePath(inLocked).MakeTempPath("tmp", 1), 0);
        EXPECT_EQ(vxGetLastError(), 5);
    }
    for (const char* name : {"closed", "locked"})
        fs::permissions(m_folder.posix(name), fs::perms::all);
    EXPECT_EQ(treeOf(m_folder, "locked"), (std::map<std::string, std::string>{{"in", "/"}, {"file", "x"}}));
    EXPECT_EQ(treeOf(m_folder, "open"), (std::map<std::string, std::string>{{"file", "x"}}));
}

TEST_F(XCFilePathDisk, NumberedNamesFillTheFirstGap) {
    auto next = [&](int digits, const char* ext, const char* prefix, int maximum = 0) {
        XCFilePath result("C:\\unset");
        return result.GetSequencialFilePath2(m_folder.path(), digits, ext, prefix, maximum) ? nameOf(result) : "none";
    };
    EXPECT_EQ(next(4, nullptr, "ab"), "ab0001");
    for (const char* name : {"ab0001", "ab0002", "AB0004", "x9", "ab", "ab0003.txt"})
        m_folder.write(name, "");
    m_folder.write(".ab0003", ""); // hidden
    EXPECT_EQ(next(4, "txt", "ab"), "ab0004.txt");
    fs::remove(m_folder.posix("ab0003.txt"));
    EXPECT_EQ(next(4, nullptr, "ab"), "ab0003");
    EXPECT_EQ(next(0, nullptr, "ab"), "ab3");
    EXPECT_EQ(next(2, "TXT", nullptr), "01.TXT");
    EXPECT_EQ(next(9, nullptr, "007"), "003"); // digits only: a pattern
    EXPECT_EQ(next(9, nullptr, "7"), "3");
    m_folder.write("ab0003", "");
    EXPECT_EQ(next(4, nullptr, "ab", 4), "none");
    EXPECT_EQ(next(4, nullptr, "ab", 5), "ab0005");
    m_folder.write("p99999999999999999999", "");
    EXPECT_NE(next(1, nullptr, "p"), "");
    m_folder.write("z.7z", ""); // the digit is none of the name's
    EXPECT_EQ(next(1, "7z", "z"), "z1.7z");
    EXPECT_EQ(next(1, "", "z"), "z8");
    XCFilePath plain;
    EXPECT_EQ(plain.GetSequencialFilePath(m_folder.path(), 3, "png", "q"), 1);
    EXPECT_EQ(nameOf(plain), "q001.png");
}

TEST_F(XCFilePathDisk, TemporaryNamesAreNewPrivateFiles) {
    XCFilePath first = path("whatever"), second = path("whatever");
    ASSERT_EQ(first.MakeTempPath("SWP", 1), 1);
    ASSERT_EQ(second.MakeTempPath("SWP", 1), 1);
    EXPECT_TRUE(first != second);
    EXPECT_EQ(m_folder.names().size(), 2u);
    struct stat status;
    ASSERT_EQ(stat(m_folder.posix(nameOf(first)).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600u);
    EXPECT_EQ(status.st_size, 0);
    EXPECT_EQ(nameOf(first).substr(0, 3), "SWP");
    XCFilePath nowhere = path("missing\\x");
    EXPECT_EQ(nowhere.MakeTempPath("SWP", 1), 0);
    EXPECT_EQ(nameOf(nowhere), "x");
    XCFilePath system;
    EXPECT_EQ(system.MakeTempPath("abcdef", 0), 1);
    EXPECT_EQ(nameOf(system).substr(0, 3), "abc");
    EXPECT_EQ(system.IsExistence(), 1);
    system.Delete(0);
    const CodePageScope japanese(932); // the folder's name ends in the separator's byte
    const XCFilePath so = path("\x83\x5C");
    so.CreateFolder();
    XCFilePath below(so), folder;
    below += "x";
    EXPECT_EQ(below.MakeTempPath("SW\x83\x5C", 1), 1);
    below.GetFolderPath(folder);
    EXPECT_TRUE(folder == so);
    EXPECT_EQ(nameOf(below).find('\x83'), std::string::npos); // half of a character
}

TEST_F(XCFilePathDisk, CanSaveLeavesNothingBehind) {
    EXPECT_EQ(path("new file").CanSaveFile(), 1);
    EXPECT_TRUE(m_folder.names().empty());
    EXPECT_NE(errorOf([&] { path("missing\\file").CanSaveFile(); }), 0);
}

std::string littleEndian(std::size_t value, int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i)
        text += static_cast<char>(value >> 8 * i);
    return text;
}

std::string wide(const std::string& text) {
    std::string units;
    for (const char c : text + '\0')
        units += c, units += '\0';
    return units;
}

/// A shell link with a list of items to be skipped; its target in one byte a character or, in its newer form, in two.
std::string shortcut(const std::string& base, const std::string& rest, bool isWide) {
    const std::size_t head = isWide ? 0x24 : 0x1C;
    const std::string narrow = base + '\0' + rest + '\0', units = isWide ? wide(base) + wide(rest) : "";
    std::string info = littleEndian(head + narrow.size() + units.size(), 4) + littleEndian(head, 4) +
                       littleEndian(1, 4) + littleEndian(0, 8) + littleEndian(0, 4) +
                       littleEndian(head + base.size() + 1, 4);
    info.replace(16, 4, littleEndian(head, 4));
    if (isWide)
        info += littleEndian(head + narrow.size(), 4) + littleEndian(head + narrow.size() + wide(base).size(), 4);
    const std::string classId("\x01\x14\x02\0\0\0\0\0\xC0\0\0\0\0\0\0\x46", 16);
    return littleEndian(0x4C, 4) + classId + littleEndian(3, 4) + std::string(0x4C - 24, '\0') + littleEndian(5, 2) +
           "items" + info + narrow + units;
}

TEST_F(XCFilePathDisk, ShortcutsLeadToTheirTargets) {
    XCString folder;
    m_folder.path().GetFullPath(folder);
    const std::string base = folder.GetStr(), whole = shortcut(base, "", false);
    m_folder.write("folder.lnk", whole);
    m_folder.write("narrow.lnk", shortcut(base, "\\narrow", false));
    m_folder.write("wide.lnk", shortcut(base, "\\wide", true));
    m_folder.write("cut.lnk", whole.substr(0, whole.size() - 4));
    m_folder.write("other.lnk", std::string(200, 'x'));
    const std::pair<const char*, std::string> cases[] = {
        {"folder.lnk", base}, {"narrow.lnk", base + "\\narrow"}, {"wide.lnk", base + "\\wide"}};
    for (const auto& [name, target] : cases) {
        XCFilePath resolved = path(name);
        EXPECT_EQ(resolved.ResolveAliasFile(), 1) << name;
        EXPECT_STREQ(resolved, target.c_str());
    }
    for (const char* name : {"cut.lnk", "other.lnk", "missing.lnk"}) {
        XCFilePath kept = path(name);
        EXPECT_EQ(kept.ResolveAliasFile(), 0) << name;
        EXPECT_TRUE(kept == path(name));
    }
    int isFolder = -1;
    EXPECT_EQ(path("folder.LNK").IsAliasFile(nullptr), 1);
    EXPECT_EQ(path("folder.lnk").IsAliasFile(&isFolder) + isFolder, 2);
    EXPECT_EQ(path("wide.lnk").IsAliasFile(&isFolder) + isFolder, 1);
    EXPECT_EQ(path("file").IsAliasFile(&isFolder) + isFolder, 0);
}

TEST_F(XCFilePathDisk, TheDocumentsFolderIsTheDesktops) {
    const EnvironmentScope settings("XDG_CONFIG_HOME", m_folder.posix().string());
    const std::string home = std::getenv("HOME") ? std::getenv("HOME") : "";
    const std::pair<const char*, std::string> cases[] = {
        {"# a list\nXDG_DESKTOP_DIR=\"/d\"\nXDG_DOCUMENTS_DIR=\"/my/texts\"\n", "/my/texts"},
        {"XDG_DOCUMENTS_DIR=\"$HOME/Texts\"\n", home + "/Texts"},
        {"XDG_DOCUMENTS_DIR=\"relative\"\n", home},
        {"XDG_DOCUMENTS_DIR=\n", home},
    };
    for (const auto& [list, expected] : cases) {
        m_folder.write("user-dirs.dirs", list);
        XCFilePath documents;
        documents.SetDefaultPath();
        EXPECT_EQ(std::string(xcPathToPosix(documents).GetStr()), expected.empty() ? "/" : expected) << list;
    }
}

TEST_F(XCFilePathDisk, TimesInWinterAndSummer) {
    TimeZoneScope zone("CET-1CEST,M3.5.0,M10.5.0/3");
    m_folder.write("file", "x");
    fs::create_directory(m_folder.posix("folder"));
    for (std::time_t seconds : {std::time_t(1231135680), std::time_t(1246860480)}) {
        const timespec times[2] = {{seconds, 0}, {seconds, 0}};
        for (const char* name : {"file", "folder"}) {
            ASSERT_EQ(utimensat(AT_FDCWD, m_folder.posix(name).c_str(), times, 0), 0);
            XCTime time;
            path(name).GetTime(time);
            EXPECT_EQ(std::int32_t(time), seconds) << name;
        }
    }
    XCTime time;
    EXPECT_EQ(errorOf([&] { path("missing").GetTime(time); }), 2);
}

TEST_F(XCFilePathDisk, NamesOfTheCodePageOnTheDisk) {
    {
        CodePageScope japanese(932);
        path("\x95\x5C").CreateFolder();
        EXPECT_EQ(path("\x95\x5C").IsFolder(), 1);
        XCFile file;
        file.Create(path("\x95\x5C\\\x83\x5C.txt"), 0, 0, GENERIC_WRITE, 0, CREATE_NEW, 0);
    }
    EXPECT_TRUE(m_folder.has("\xE8\xA1\xA8/\xE3\x82\xBD.txt"));
}

} // namespace
