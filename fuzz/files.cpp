// Files of the library's own formats, and ZIP archives.

#include "support.h"

#include "ovwcmn/xcencryption.h"
#include "ovwcmn/xcfilecompression.h"
#include "ovwcmn/xclength.h"
#include "ovwcmn/xcpreferencefile.h"
#include "ovwcmn/xcregkey.h"
#include "ovwcmn/xcunzip.h"

#include <cstdlib>

namespace ovw::fuzz {

namespace {

/// A folder to unpack into, in a folder whose only other entry is the input.
class Destination {
public:
    explicit Destination(Input input) : m_input(input) { path().CreateFolder(); }
    ~Destination() {
        if (m_input.folder().names().size() != 2)
            std::abort(); // something was written outside
    }
    Destination(const Destination&) = delete;
    Destination& operator=(const Destination&) = delete;

    const XCFilePath& input() const { return m_input.path(); }
    XCFilePath path() const { return m_input.folder().path("out"); }

private:
    InputFile m_input;
};

constexpr const char* cnLabels[] = {"a", "Width", "Width_D", "x_Left"};

} // namespace

void packedFile(Input input) {
    const Destination destination(input);
    mayThrow([&] { XCFileCompression().Decompress(destination.path(), destination.input()); });
}

void zipFile(Input input) {
    const Destination destination(input);
    VXUNZIPOPTIONS options;
    options.maxBytes = 1 << 22;
    mayThrow([&] { xcUnzip(destination.input(), destination.path(), &options); });
}

void preferenceFile(Input input) {
    const InputFile file(input);
    mayThrow([&] {
        XCPreferenceFile preferences;
        preferences.OpenPreferenceFile(0, file.path());
        for (const char* const label : cnLabels) {
            XCString text;
            XCLength length;
            tagRECT rect;
            std::uint32_t number = 0;
            char buffer[8];
            preferences.GetPreferenceFile(label, text);
            preferences.GetPreferenceFile(label, length);
            preferences.GetPreferenceFile(label, rect);
            preferences.GetPreferenceFile(label, number);
            preferences.GetPreferenceFile(label, buffer, int(sizeof buffer));
        }
        preferences.OpenPreferenceFile(1, file.path());
        preferences.SetPreferenceFile("Width", 5);
        preferences.ClosePreferenceFile();
    });
}

void settingsKey(Input input) {
    const InputFile file(input, "pref.pff");
    mayThrow([&] {
        XCRegKey key;
        key.Open(file.folder().path(), nullptr, XCRegKey::cnRead);
        for (const char* const label : cnLabels) {
            XCString text;
            XCLength length;
            tagRECTD rect;
            key.GetValue(text, label);
            key.GetValue(length, label);
            key.GetValue(rect, label);
        }
        key.Open(file.folder().path(), nullptr, XCRegKey::cnWrite);
        key.SetValue(1.5, "a");
        key.Close();
    });
}

void cipherFile(Input input) {
    const InputFile file(input);
    mayThrow([&] {
        char buffer[100];
        XCEncryption cipher;
        cipher.DecryptWithKey(buffer, int(sizeof buffer), file.path());
        cipher.DecryptWithKey(file.path(), file.folder().path("plain"));
    });
}

} // namespace ovw::fuzz
