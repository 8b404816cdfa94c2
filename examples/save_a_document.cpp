// A document of an application's own: points and settings in a file that is either the old one or the new one, never
// something between.
#include <ovwcmn/ovwcmn.h>

#include <cstdio>

namespace {

// [document]
class Layout : public XCDocument {
public:
    static constexpr std::uint32_t cnCreator = 0x4F565743, cnType = 0x4C41594F;
    static constexpr std::uint16_t cnVersion = 0x0102; // 1.2: reads all of 1.x, refuses 2.0

    Layout() : XCDocument(cnCreator, cnType, cnVersion) {}

    XCString title;
    XCLength margin{10, 2}; // mm
    XCNumber sheet = 1;
    XCDPoint guides;

    void Serialize(XCArchive& archive) override {
        if (archive.IsSaving()) {
            WriteVersionInfo(archive);
            archive << title << margin << sheet;
        } else {
            ReadVersionInfo(archive);
            archive >> title >> margin >> sheet;
        }
        archive.BeginSection(); // readers of 1.0 skip what they do not know
        guides.Serialize(archive, 0);
        archive.EndSection();
        if (failsToSave && archive.IsSaving())
            xcThrowError(112); // "disk full", as a failing save would
    }

    bool failsToSave = false;
};
// [/document]

void check(bool condition, const char* what) {
    std::printf("%-50s %s\n", what, condition ? "yes" : "NO");
    if (!condition)
        xcThrowError(0x20010008);
}

int codeOfOpening(XCDocument& document, XCFilePath& path) {
    try {
        document.OnOpenDocument(path);
        return 0;
    } catch (const XCException& error) {
        return error.GetErrorCode();
    }
}

void rememberLastFile(const XCFilePath& folder, const XCFilePath& path) {
    XCRegKey key;
    key.Open(folder, "Settings\\Recent", XCRegKey::cnWrite);
    key.SetValue(path, "last");
    key.Close();
}

void work(const XCFilePath& folder) {
    XCFilePath first = folder, second = folder, copy = folder, now;
    first += "first.lay";
    second += "second.lay";
    copy += "copy.lay";

    Layout layout;
    layout.title = "Page of a comic";
    layout.sheet.SetNumber("12A");
    layout.guides.AddPoint(tagPOINTD{1.5, -0.5});
    layout.PushModify();
    layout.OnSaveDocument(&first); // save as: the document had no file
    rememberLastFile(folder, first);
    check(!layout.IsModified() && first.IsExistence(), "saved, and unmodified");

    layout.margin = XCLength(1, 3);
    layout.PushModify();
    layout.SetSaveMode(XCDocument::cnCopySave);
    layout.OnSaveDocument(&copy);
    layout.GetDocumentFilePath(now);
    check(now == first && layout.IsModified(), "a copy leaves the document with its own file");

    layout.failsToSave = true;
    try {
        layout.OnSaveDocument(&second);
    } catch (const XCException& error) {
        std::printf("saving failed: %s\n", error.what());
    }
    layout.failsToSave = false;
    layout.GetDocumentFilePath(now);
    check(now == first && layout.IsModified() && !second.IsExistence(), "a failed save changes nothing");

    layout.OnSaveDocument(&second);
    Layout read;
    check(codeOfOpening(read, second) == 0, "read again");
    check(read.title == layout.title && read.margin == layout.margin && read.sheet == layout.sheet &&
              read.guides.GetCount() == 1,
          "everything is there");

    layout.SetSerializeVersion(0x0200);
    layout.OnSaveDocument(nullptr);
    check(codeOfOpening(read, second) == 0x2001000C, "a newer major version is refused");
}

} // namespace

int main() {
    try {
        XCFilePath folder = xcPathFromPosix("save_a_document.files");
        folder.Delete(0);
        folder.CreateFolder();
        work(folder);
        folder.Delete(0);
        return 0;
    } catch (const XCException& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
