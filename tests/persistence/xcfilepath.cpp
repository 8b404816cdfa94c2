#include "ovwcmn/xcfilepath.h"

#include "support/scopes.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace {

using ovw::test::CodePageScope;
using ovw::test::errorOf;

std::string text(const XCFilePath& path) { return static_cast<const char*>(path); }
std::string text(const XCString& string) { return string.GetStr(); }

std::string fullPath(const char* path) {
    XCString out;
    XCFilePath(path).GetFullPath(out);
    return text(out);
}
std::string folderOf(const char* path) {
    XCFilePath out;
    XCFilePath(path).GetFolderPath(out);
    return text(out);
}
std::string nameOf(const char* path) {
    XCString out;
    XCFilePath(path).GetFileName(out);
    return text(out);
}
std::string rootOf(const char* path) {
    XCFilePath out;
    XCFilePath(path).GetRootPath(out);
    return text(out);
}

struct Texts {
    const char* in;
    const char* out;
};

TEST(XCFilePath, TrailingSeparatorsStayInTheTextButNotInTheFullPath) {
    for (Texts t : {Texts{"C:\\a\\b\\\\", "C:\\a\\b"},
                    {"C:\\a", "C:\\a"},
                    {"C:\\", "C:\\"},
                    {"C:\\\\", "C:\\"},
                    {"", ""},
                    {"a\\", "a"},
                    {"\\\\server\\share\\", "\\\\server\\share"},
                    {"\\\\server\\share\\a\\", "\\\\server\\share\\a"}})
        EXPECT_EQ(fullPath(t.in), t.out) << t.in;
    XCFilePath path("C:\\a\\");
    XCString direct;
    path.GetFullPathDirect(direct);
    EXPECT_EQ(text(direct), "C:\\a\\");
    EXPECT_EQ(path.GetFullPathLength(), 5);
    char buffer[520];
    path.GetNativePath(buffer);
    EXPECT_STREQ(buffer, "C:\\a\\");
    path.GetFullPath(buffer);
    EXPECT_STREQ(buffer, "C:\\a");
    path.Empty();
    EXPECT_TRUE(path.IsEmpty());
}

TEST(XCFilePath, NameFolderAndRoot) {
    struct Case {
        const char *path, *name, *folder, *root;
    };
    for (const Case& c : {Case{"C:\\a\\b.txt", "b.txt", "C:\\a", "C:\\"}, Case{"C:\\a\\b\\\\", "b", "C:\\a", "C:\\"},
                          Case{"C:\\a", "a", "C:\\", "C:\\"},
                          Case{"\\\\server\\share\\a", "a", "\\\\server\\share", "\\\\server\\share"},
                          Case{"a", "a", "", ""}, Case{"+:\\a", "a", "+:", ""}}) { // no drive, and no endless way up
        EXPECT_EQ(nameOf(c.path), c.name) << c.path;
        std::string folder = folderOf(c.path);
        EXPECT_EQ(XCFilePath(folder.c_str()), XCFilePath(c.folder)) << c.path << ": " << folder;
        EXPECT_EQ(rootOf(c.path), c.root) << c.path;
    }
}

TEST(XCFilePath, NameAndExtension) {
    struct Case {
        const char *path, *name, *ext;
    };
    for (const Case& c :
         {Case{"C:\\a\\b.txt", "b", "txt"}, Case{"C:\\a.d\\b", "b", ""}, Case{"C:\\b.tar.gz", "b.tar", "gz"},
          Case{"C:\\b.", "b", ""}, Case{"C:\\a\\b.c\\", "b", "c"}}) {
        XCString name, ext;
        XCFilePath(c.path).GetNameAndExtension(name, ext);
        EXPECT_EQ(text(name), c.name) << c.path;
        EXPECT_EQ(text(ext), c.ext) << c.path;
    }
    XCFilePath path("C:\\a\\b.TXT");
    EXPECT_EQ(path.IsExtensionFile("txt"), 1);
    EXPECT_EQ(path.IsExtensionFile("tx"), 0);
    EXPECT_EQ(path.IsFileType(0), 0);
}

TEST(XCFilePath, ReplacingParts) {
    XCFilePath path("C:\\a\\b.txt");
    path.SetFileName("c.png");
    EXPECT_EQ(text(path), "C:\\a\\c.png");
    path.ChangeName("d");
    EXPECT_EQ(text(path), "C:\\a\\d.png");
    path.ChangeExtension("bmp");
    EXPECT_EQ(text(path), "C:\\a\\d.bmp");
    path.ChangeExtension(".tif");
    EXPECT_EQ(text(path), "C:\\a\\d.tif");
    path.SetNameAndExtension("e", "xyz");
    EXPECT_EQ(text(path), "C:\\a\\e.xyz");
    EXPECT_EQ(path.ChangeSubFolderName("f"), 1);
    EXPECT_EQ(text(path), "C:\\a\\f");
    XCFilePath root("C:\\"), alone("a");
    EXPECT_EQ(root.ChangeSubFolderName("f") + alone.ChangeSubFolderName("f"), 0);
    EXPECT_EQ(text(root), "C:\\");
    EXPECT_EQ(text(alone), "a");
}

TEST(XCFilePath, DividingOffTheLastComponent) {
    XCFilePath path("C:\\a\\b\\");
    XCString last;
    EXPECT_EQ(path.DivideSubPath(last), 1);
    EXPECT_EQ(text(last), "b");
    EXPECT_EQ(text(path), "C:\\a");
    EXPECT_EQ(path.DivideSubPath(last), 1);
    EXPECT_EQ(text(last), "a");
    EXPECT_EQ(text(path), "C:");
    for (const char* whole : {"", "C:\\", "name", "\\name"}) {
        XCFilePath none(whole);
        last = "old";
        EXPECT_EQ(none.DivideSubPath(last), 0) << whole;
        EXPECT_EQ(text(last), "");
        EXPECT_EQ(text(none), whole);
    }
}

TEST(XCFilePath, AppendingPutsOneSeparatorBetween) {
    struct Case {
        const char *path, *sub, *result;
    };
    for (const Case& c : {Case{"C:\\a\\", "\\b\\", "C:\\a\\b"}, Case{"C:\\", "\\", "C:\\"}, Case{"", "b\\", "b\\"},
                          Case{"C:\\a\\\\", "", "C:\\a\\\\"}, Case{"C:\\", "b", "C:\\b"},
                          Case{"C:\\a", "b\\c", "C:\\a\\b\\c"}, Case{"C:\\a", "b:c", "C:\\a\\b:c"}}) {
        XCFilePath path(c.path);
        path += c.sub;
        EXPECT_EQ(text(path), c.result) << c.path << " + " << c.sub;
    }
    XCFilePath mac("C:\\a");
    mac.CatSubPathForMac("b:c:d");
    EXPECT_EQ(text(mac), "C:\\a\\b\\c\\d");
    XCString sub("a\\b\\c");
    XCFilePath::ConvertWinToMacSubPath(sub);
    EXPECT_EQ(text(sub), "a:b:c");
    XCString front("\\\\a\\"), back("\\a\\\\\\");
    EXPECT_EQ(XCFilePath::DeleteFrontDelimiter(front), 2);
    EXPECT_EQ(text(front), "a\\");
    EXPECT_EQ(XCFilePath::DeleteBackDelimiter(back), 3);
    EXPECT_EQ(text(back), "\\a");
    char buffer[] = "\\a\\b";
    XCFilePath::ConvertWinToMacSubPath(buffer);
    EXPECT_STREQ(buffer, ":a:b");
    XCFilePath::ConvertMacToWinSubPath(buffer);
    EXPECT_EQ(XCFilePath::DeleteFrontDelimiter(buffer), 1);
    EXPECT_STREQ(buffer, "a\\b");
}

TEST(XCFilePath, ComparesWithoutCaseAndTrailingSeparators) {
    EXPECT_TRUE(XCFilePath("C:\\A\\") == "c:\\a");
    EXPECT_TRUE(XCFilePath("C:\\A\\\\") == XCFilePath("c:\\a"));
    EXPECT_TRUE(XCFilePath("C:\\A") != "c:\\ab");
    EXPECT_FALSE(XCFilePath("C:\\\xC3\x84") == "C:\\\xC3\xA4"); // only ASCII letters fold
}

TEST(XCFilePath, RelativePathsThereAndBack) {
    struct Case {
        const char *base, *target, *relative;
        int result;
    };
    for (const Case& c :
         {Case{"C:\\a\\b", "C:\\a\\c\\d", "..\\c\\d", 1}, Case{"C:\\a", "C:\\a\\b\\c", "b\\c", 1},
          Case{"C:\\a\\b", "C:\\a", "..\\", 1}, Case{"C:\\x", "D:\\x", "D:\\x", 0}, Case{"C:\\a\\", "c:\\A\\\\", "", 1},
          Case{"C:\\abc\\d", "C:\\abd\\e", "..\\..\\abd\\e", 1}, Case{"C:\\a", "C:\\ab", "..\\ab", 1},
          Case{"C:\\ab", "C:\\a", "..\\a", 1}, Case{"ab\\c", "ax\\c", "..\\..\\ax\\c", 1},
          Case{"xyz", "xyw", "..\\xyw", 1}, Case{"C:\\a\\b\\c\\d", "C:\\a", "..\\..\\..\\", 1},
          Case{"\\\\srv\\s\\a", "\\\\SRV\\s\\b", "..\\b", 1}, Case{"\\\\srv\\s\\a", "\\\\srv\\t\\b", "..\\..\\t\\b", 1},
          Case{"\\\\srv\\s\\a", "\\\\srw\\s\\a", "\\\\srw\\s\\a", 0},
          Case{"\\\\srv\\s\\a", "\\\\srvx\\s\\a", "\\\\srvx\\s\\a", 0}, Case{"C:\\a", "\\\\s\\a", "\\\\s\\a", 0},
          Case{"C:\\d", "C:\\d\\a:b", "C:\\d\\a:b", 0}}) { // "a:b" would be taken for a drive
        XCString out;
        XCFilePath base(c.base), target(c.target), back("old");
        EXPECT_EQ(XCFilePath::MakeRelativePath(out, base, target), c.result) << c.base << " to " << c.target;
        EXPECT_EQ(text(out), c.relative) << c.base << " to " << c.target;
        EXPECT_EQ(back.RemakePath(out, base), c.result);
        EXPECT_TRUE(back == target) << text(back) << " is not " << c.target;
    }
    XCString out;
    EXPECT_EQ(XCFilePath::MakeRelativePath(out, "C:\\a", "C\\a"), 0); // a drive and a name
    EXPECT_EQ(text(out), "C\\a");
}

TEST(XCFilePath, RemakingTakesAbsoluteTextsAsTheyAre) {
    XCFilePath path;
    EXPECT_EQ(path.RemakePath("D:x", "C:\\a"), 0);
    EXPECT_EQ(text(path), "D:x");
    EXPECT_EQ(path.RemakePath("\\\\s\\t", "C:\\a"), 0);
    EXPECT_EQ(text(path), "\\\\s\\t");
    EXPECT_EQ(path.RemakePath("..\\b\\c", "C:\\a\\d"), 1);
    EXPECT_EQ(text(path), "C:\\a\\b\\c");
    EXPECT_EQ(path.RemakePath("..\\..\\..\\..\\b", "C:\\a"), 1); // not above the root
    EXPECT_EQ(text(path), "C:\\b");
}

TEST(XCFilePath, ChildFoldersByText) {
    struct Case {
        const char *folder, *other;
        int result;
    };
    for (const Case& c : {Case{"C:\\a", "C:\\a", 1}, Case{"C:\\A\\", "c:\\a\\b\\c", 1}, Case{"C:\\a", "C:\\ab", 0},
                          Case{"C:\\a\\b", "C:\\a", 0}, Case{"C:\\", "C:\\", 1}, Case{"C:\\", "D:\\", 0},
                          Case{"C:\\a", "C:\\", 0}, Case{"D:\\a", "C:\\a\\b", 0}})
        EXPECT_EQ(XCFilePath(c.folder).IsChildFolder(c.other), c.result) << c.folder << " and " << c.other;
}

TEST(XCFilePath, ForbiddenCharactersLeaveTheComponents) {
    XCString clean("C:\\a\\b.txt");
    EXPECT_EQ(XCFilePath::ConvertCannotUseCharactors(clean, 1), 0);
    EXPECT_EQ(text(clean), "C:\\a\\b.txt");
    XCString dirty("C:\\a?b\\c*<d>|.t?t");
    EXPECT_EQ(XCFilePath::ConvertCannotUseCharactors(dirty, 1), 1);
    for (char c : std::string_view("?*<>|"))
        EXPECT_EQ(text(dirty).find(c), std::string::npos) << text(dirty);
    EXPECT_EQ(text(dirty).rfind("C:\\a", 0), 0u) << text(dirty);
    for (Texts t : {Texts{"a\\b.?", "a\\b"},
                    {"a\\b.", "a\\b"},
                    {"na?me", "name"},
                    {"ab:\\c", "ab\\c"},
                    {"a\\?\\b", "a\\b"},
                    {"\\a?", "\\a"},
                    {"a?\\\\b", "a\\b"},
                    {"\\\\s?\\t?", "\\\\s?\\t"}}) {
        XCString path(t.in);
        EXPECT_EQ(XCFilePath::ConvertCannotUseCharactors(path, 1), 1) << t.in;
        EXPECT_EQ(text(path), t.out);
    }
}

// In code page 932 the second byte of a character may be 0x5C, the separator's.
TEST(XCFilePath, SecondBytesAreNoSeparators) {
    CodePageScope japanese(932);
    const std::string hyou = "\x95\x5C", so = "\x83\x5C"; // two such characters
    const std::string path = "C:\\" + hyou + "\\" + so + "a." + hyou;
    EXPECT_EQ(nameOf(path.c_str()), so + "a." + hyou);
    EXPECT_EQ(folderOf(path.c_str()), "C:\\" + hyou);
    EXPECT_EQ(fullPath(("C:\\" + hyou + "\\").c_str()), "C:\\" + hyou);
    EXPECT_EQ(fullPath(("C:\\" + hyou).c_str()), "C:\\" + hyou);
    XCString end((hyou).c_str());
    EXPECT_EQ(XCFilePath::DeleteBackDelimiter(end), 0);
    XCFilePath joined(("C:\\" + hyou).c_str());
    joined += so.c_str();
    EXPECT_EQ(text(joined), "C:\\" + hyou + "\\" + so);
    XCString last;
    EXPECT_EQ(joined.DivideSubPath(last), 1);
    EXPECT_EQ(text(last), so);
    XCString relative;
    XCFilePath base(("C:\\" + so + "\\x").c_str()), target(("C:\\" + so + "\\" + hyou).c_str());
    EXPECT_EQ(XCFilePath::MakeRelativePath(relative, base, target), 1);
    EXPECT_EQ(text(relative), "..\\" + hyou);
    XCFilePath back;
    EXPECT_EQ(back.RemakePath(relative, base), 1);
    EXPECT_TRUE(back == target);
    XCString mac(("a\\" + hyou + "\\b").c_str());
    XCFilePath::ConvertWinToMacSubPath(mac);
    EXPECT_EQ(text(mac), "a:" + hyou + ":b");
    // Characters that share their first byte only part before it.
    XCFilePath one(("C:\\" + so + "\\a").c_str()), two("C:\\\x83\x5D\\a");
    XCFilePath::MakeRelativePath(relative, one, two);
    EXPECT_EQ(text(relative), "..\\..\\\x83\x5D\\a");
}

TEST(XCFilePath, TooLongTextsAreRefused) {
    const std::string longest = "C:\\" + std::string(255, 'a') + "\\" + std::string(255, 'b') + "\\cccc";
    ASSERT_EQ(longest.size(), 519u);
    char buffer[520];
    XCFilePath fits(longest.c_str());
    fits.GetFullPath(buffer);
    EXPECT_EQ(longest, buffer);
    EXPECT_EQ(nameOf(longest.c_str()), "cccc");
    XCFilePath tooLong((longest + "d").c_str());
    EXPECT_EQ(errorOf([&] { tooLong.GetFullPath(buffer); }), 0x20010008);
    EXPECT_EQ(errorOf([&] { tooLong.CreateFolder(); }), 0x20010008);
    EXPECT_EQ(tooLong.IsExistence(), 0);
    EXPECT_EQ(tooLong.IsFolder(), 0);

    XCString out;
    const XCFilePath far(("C:\\x\\" + std::string(255, 'a') + "\\b").c_str());
    EXPECT_EQ(XCFilePath::MakeRelativePath(out, "C:\\x", far), 1);
    EXPECT_EQ(out.GetLength(), 257);
    for (const char* base : {"C:\\y\\z", "D:\\"}) { // 265 bytes, and none in common
        EXPECT_EQ(XCFilePath::MakeRelativePath(out, base, far), 0);
        EXPECT_EQ(text(out), text(far));
    }
    XCFilePath remade("C:\\old");
    EXPECT_EQ(errorOf([&] { remade.RemakePath(std::string(256, 'c').c_str(), "C:\\a"); }), 0x20010008);
    EXPECT_EQ(text(remade), "C:\\old");
}

TEST(XCFilePath, ToAndFromTheSystem) {
    EXPECT_EQ(text(xcPathFromPosix("/a/b c")), "C:\\a\\b c");
    EXPECT_EQ(text(xcPathToPosix("C:\\a\\b")), "/a/b");
    EXPECT_EQ(text(xcPathToPosix("/tmp/x")), "/tmp/x");
    EXPECT_EQ(xcSetDriveRoot('1', "/tmp"), 0);
    EXPECT_EQ(xcSetDriveRoot('w', "/tmp/drive"), 1);
    EXPECT_EQ(text(xcPathToPosix("W:\\a\\b")), "/tmp/drive/a/b");
    EXPECT_EQ(text(xcPathFromPosix("/tmp/drive/a")), "W:\\a");
    EXPECT_EQ(text(xcPathFromPosix("/tmp/driven/a")), "C:\\tmp\\driven\\a");
    EXPECT_EQ(xcSetDriveRoot('W', ""), 1);
    CodePageScope japanese(932);
    EXPECT_EQ(text(xcPathToPosix("C:\\\x95\x5C\\a")), "/\xE8\xA1\xA8/a");
    EXPECT_EQ(text(xcPathFromPosix("/\xE8\xA1\xA8/a")), "C:\\\x95\x5C\\a");
}

TEST(XCStringArray, OwnsWhatItHolds) {
    XCStringArray strings;
    strings.PushBack(new XCString("b"));
    strings.InsertAt(0, new XCString("a"));
    strings.InsertAt(99, new XCString("c"));
    XCStringArray copy(strings);
    ASSERT_EQ(copy.GetSize(), 3);
    EXPECT_NE(copy.GetAt(0), strings.GetAt(0));
    EXPECT_EQ(text(*copy.GetAt(2)), "c");
    std::unique_ptr<XCString> taken(copy.GetAt(1));
    copy.RemoveAt(1);
    EXPECT_EQ(text(*copy.GetAt(1)), "c");
    copy = strings;
    copy = *&copy;
    EXPECT_EQ(copy.GetSize(), 3);
    strings.AllDelete();
    EXPECT_EQ(strings.GetSize(), 0);
    EXPECT_EQ(text(*copy.GetAt(1)), "b");
}

} // namespace
