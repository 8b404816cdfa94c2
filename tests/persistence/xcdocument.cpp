#include "ovwcmn/xcdocument.h"
#include "ovwcmn/ovwhooks.h"
#include "ovwcmn/xcarchive.h"
#include "support/crashingdisk.h"
#include "support/scopes.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using ovw::test::CrashingDisk;
using ovw::test::errorOf;
using ovw::test::HooksScope;
using ovw::test::LanguageScope;
using ovw::test::TempFolder;

constexpr std::uint32_t cnType = 0x44434241; // "ABCD" in little-endian order

class Note : public XCDocument {
public:
    Note() : XCDocument(1, cnType, 0x0203) {}
    XCString text;
    XCFilePath cipherTo; // what the encrypt hook makes of the file, or nothing
    int failsWith = 0;

    void Serialize(XCArchive& archive) override {
        if (archive.IsSaving()) {
            WriteVersionInfo(archive);
            archive << text;
        } else {
            ReadVersionInfo(archive);
            archive >> text;
        }
        if (failsWith)
            xcThrow();
    }
    XCFilePath OnSaveDocumentEncrypt(XCFilePath& plain) override {
        if (cipherTo.IsEmpty())
            return plain;
        XCFilePath::CopyFileA(cipherTo, plain, 0);
        return plain = cipherTo; // the argument is the hook's
    }

private:
    void xcThrow() const { throw XCException(failsWith); }
};

std::string stored(const std::string& text, char minor = 3, char major = 2) {
    return std::string("ABCD") + minor + major + static_cast<char>(text.size()) + '\0' + text;
}

TEST(XCDocument, SavesAndSavesAsAndSavesACopy) {
    const TempFolder folder;
    Note note;
    EXPECT_TRUE(note.IsNewDocument() && note.IsAllNewDocument());
    note.text = "one";
    note.PushModify();
    XCFilePath first = folder.path("first"), second = folder.path("second"), copy = folder.path("copy"), now;
    EXPECT_EQ(note.OnSaveDocument(&first), 1);
    EXPECT_EQ(folder.read("first"), stored("one"));
    EXPECT_FALSE(note.IsModified() || note.IsNewDocument() || note.IsSaveAs());

    note.text = "two";
    note.PushModify();
    note.PushModify();
    note.SetSaveMode(XCDocument::cnCopySave);
    EXPECT_TRUE(note.IsSaveAs() && note.IsCopySave());
    EXPECT_EQ(note.OnSaveDocument(&copy), 1);
    EXPECT_EQ(folder.read("copy"), stored("two"));
    EXPECT_EQ(note.GetModifyCount(), 2);
    EXPECT_TRUE(note.GetDocumentFilePath(now) && now == first);
    EXPECT_EQ(note.GetSaveMode(), 0);

    EXPECT_EQ(note.OnSaveDocument(&second), 1);
    EXPECT_TRUE(note.GetDocumentFilePath(now) && now == second);
    note.text = "three";
    EXPECT_EQ(note.OnSaveDocument(nullptr), 1);
    EXPECT_EQ(folder.read("second"), stored("three"));
    EXPECT_EQ(folder.read("first"), stored("one"));
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"copy", "first", "second"}));
    EXPECT_EQ(errorOf([] { Note().OnSaveDocument(nullptr); }), 123);
    XCFilePath nowhere = folder.path("none\\x");
    EXPECT_EQ(errorOf([&] { note.OnSaveDocument(&nowhere); }), 123);
}

TEST(XCDocument, ReadsFilesUpToItsMajorVersion) {
    const TempFolder folder;
    XCFilePath path = folder.path("file");
    const struct {
        std::string bytes;
        int code;
        int version;
    } cases[] = {
        {stored("x", 0, 0), 0, 0x0000},
        {stored("x", 3, 2), 0, 0x0203},
        {stored("x", '\xFF', 2), 0, 0x02FF},
        {stored("x", 0, 3), 0x2001000C, 0x0203},
        {"ABCE" + stored("x").substr(4), 0x2001000B, 0x0203},
        {"ABCD", 0x20010008, 0x0203},
        {"", 0x20010008, 0x0203},
    };
    for (const auto& c : cases) {
        folder.write("file", c.bytes);
        Note note;
        XCFilePath own("C:\\own"), now;
        note.SetDocumentFilePath(own);
        note.PushModify();
        EXPECT_EQ(errorOf([&] { note.OnOpenDocument(path); }), c.code);
        EXPECT_EQ(note.GetSerializeVersion(), c.version);
        note.GetDocumentFilePath(now);
        EXPECT_TRUE(now == (c.code ? own : path)) << "a file that was not read is not the document's";
        EXPECT_EQ(note.IsModified(), c.code != 0);
    }
}

TEST(XCDocument, WritesTheVersionAskedForOnce) {
    const TempFolder folder;
    Note note;
    XCFilePath path = folder.path("file");
    note.SetSerializeVersion(0x0105);
    note.OnSaveDocument(&path);
    EXPECT_EQ(folder.read("file"), stored("", 5, 1));
    EXPECT_EQ(note.GetSerializeVersion(), 0x0203);
    note.OnOpenDocument(path);
    EXPECT_EQ(note.GetSerializeVersion(), 0x0105);
    note.OnSaveDocument(nullptr);
    EXPECT_EQ(folder.read("file"), stored(""));
}

TEST(XCDocument, InstallsWhatTheEncryptHookMade) {
    const TempFolder folder;
    Note note;
    XCFilePath path = folder.path("file"), copy = folder.path("copy");
    note.text = "secret";
    note.OnSaveDocument(&path);
    note.cipherTo = folder.path("cipher");
    note.SetSaveMode(XCDocument::cnCopySave);
    note.OnSaveDocument(&copy);
    EXPECT_FALSE(note.IsDecryptOpen());
    note.OnSaveDocument(nullptr);
    EXPECT_TRUE(note.IsDecryptOpen());
    EXPECT_EQ(folder.read("file"), stored("secret"));
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"copy", "file"}));
    note.OnOpenDocument(path);
    EXPECT_FALSE(note.IsDecryptOpen());
}

TEST(XCDocument, SurvivesAFailedSave) {
    const TempFolder folder;
    XCFilePath path = folder.path("file"), other = folder.path("other"), now;
    for (const CrashingDisk::Fault fault : {CrashingDisk::Fault::oneCall, CrashingDisk::Fault::powerCut}) {
        for (int call = 1, failed = 1; failed; ++call) {
            Note note;
            note.text = "old";
            note.OnSaveDocument(&path);
            note.text = "new";
            note.PushModify();
            {
                CrashingDisk disk(call, fault);
                failed = errorOf([&] { note.OnSaveDocument(nullptr); }) != 0;
                ASSERT_LE(call, disk.calls() + 1);
            }
            EXPECT_EQ(folder.read("file"), stored(failed ? "old" : "new")) << "call " << call;
            EXPECT_EQ(note.IsModified(), failed);
        }
    }
    Note note;
    note.SetDocumentFilePath(path);
    note.PushModify();
    note.failsWith = 39;
    EXPECT_EQ(errorOf([&] { note.OnSaveDocument(&other); }), 39);
    EXPECT_TRUE(note.GetDocumentFilePath(now) && now == path && note.IsModified() && !note.IsSaveAs());
    EXPECT_FALSE(folder.has("other"));
    path.SetReadOnly(1);
    note.failsWith = 0;
    EXPECT_TRUE(note.IsReadOnly());
    EXPECT_EQ(errorOf([&] { note.OnSaveDocument(nullptr); }), 5);
}

std::string s_question;
int s_answer = IDCANCEL;

TEST(XCDocument, AsksBeforeChangesAreLost) {
    const LanguageScope language(1033);
    VXHOOKS hooks = {};
    hooks.messageBox = [](HWND, const char* text, const char*, std::uint32_t style, int) {
        s_question =
            std::string(text) + (style == (MB_YESNOCANCEL | MB_ICONQUESTION | MB_SETFOREGROUND) ? "" : " other");
        return s_answer;
    };
    const HooksScope scope(hooks);
    Note note;
    note.SetNewDocumentName("Untitled 1");
    EXPECT_EQ(note.VerifySaveDocument(), IDCANCEL);
    EXPECT_EQ(s_question, "Untitled 1 has changed. Save the changes?");
    note.SetDocumentFilePath("C:\\pictures\\cat.abc");
    s_question.clear();
    EXPECT_EQ(note.VerifySaveDocument(), IDNO);
    EXPECT_EQ(s_question, "");
    note.PushModify();
    s_answer = IDYES;
    EXPECT_EQ(note.VerifySaveDocument(), IDYES);
    EXPECT_EQ(s_question, "cat.abc has changed. Save the changes?");
}

TEST(XCDocument, CopiesItsStateButNotItsBackup) {
    Note note;
    note.SetDocumentFilePath("C:\\a");
    note.PushBackup();
    note.PushModify();
    note.SetReadOnly(1);
    note.SetSerializeVersion(0x0101);
    note.SetDocumentFilePath("C:\\b");
    Note copy(note);
    XCFilePath path;
    copy.GetDocumentFilePath(path);
    EXPECT_TRUE(path == "C:\\b" && copy.IsModified() && copy.IsReadOnly() && copy.GetSerializeVersion() == 0x0101);
    copy.PopBackup();
    EXPECT_TRUE(copy.IsNewDocument() && !copy.IsModified());
    note.PopBackup();
    EXPECT_TRUE(note.GetDocumentFilePath(path) && path == "C:\\a" && !note.IsModified());
    copy.PushModify();
    copy.PushModify();
    copy.PopModify();
    note = copy;
    EXPECT_EQ(note.GetModifyCount(), 1);
    EXPECT_EQ(note.IsAllNewDocument(), 1);
    note.SetDocumentFilePath("C:\\c");
    EXPECT_EQ(note.OnNewDocument(nullptr) && note.IsNewDocument() && !note.IsModified(), 1);
}

} // namespace
