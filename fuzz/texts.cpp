// Texts: string tables, paths, numbers.

#include "support.h"

#include "ovwcmn/vxwutl.h"
#include "ovwcmn/xclength.h"
#include "ovwcmn/xcnumber.h"
#include "ovwcmn/xcstring.h"

#include <iterator>

namespace ovw::fuzz {

namespace {

/// The code page that the input asks for, UTF-8 again afterwards.
class ChosenCodePage {
public:
    explicit ChosenCodePage(Input& input) {
        constexpr std::uint32_t cnPages[] = {65001, 932, 1252};
        vxSetCodePage(cnPages[takeByte(input) % std::size(cnPages)]);
    }
    ~ChosenCodePage() { vxSetCodePage(65001); }
    ChosenCodePage(const ChosenCodePage&) = delete;
    ChosenCodePage& operator=(const ChosenCodePage&) = delete;
};

} // namespace

void stringTable(Input input) {
    const ChosenCodePage page(input);
    mayThrow([&] {
        XCStringResource resource;
        resource.AddText(reinterpret_cast<const char*>(input.data()), static_cast<std::uint32_t>(input.size()));
        for (const int id : {0, 1, 12, 65535, 70000}) {
            XCString text;
            XCWideString wide;
            char buffer[16];
            resource.LoadStringA(text, id);
            resource.LoadStringA(wide, id);
            resource.LoadStringA(buffer, int(sizeof buffer) - 1, id);
        }
    });
}

/// Two paths, divided by the first line break.
void pathText(Input input) {
    const ChosenCodePage page(input);
    const std::string text = textOf(input);
    const std::size_t end = text.find('\n');
    mayThrow([&] {
        const XCFilePath base(text.substr(0, end).c_str());
        XCFilePath path(end == std::string::npos ? "" : text.c_str() + end + 1);
        XCString name, extension, relative, safe = text.c_str();
        XCFilePath folder;
        path.GetFullPath(name);
        path.GetNameAndExtension(name, extension);
        path.GetFolderPath(folder);
        path.GetRootPath(folder);
        XCFilePath::MakeRelativePath(relative, base, path);
        folder.RemakePath(relative, base);
        base.IsChildFolder(path);
        XCFilePath::ConvertCannotUseCharactors(safe, 1);
        xcPathToPosix(path);
        path += base;
        path.ChangeExtension("png");
        for (int i = 0; i < 1000 && path.DivideSubPath(name); ++i)
            path.SetFileName("x");
    });
}

void numberText(Input input) {
    const ChosenCodePage page(input);
    const std::string text = textOf(input);
    mayThrow([&] {
        XCNumber number;
        number.SetNumber(text.c_str());
        XCString shown;
        number.GetNumber(shown, "%d");
        XCString value(text.c_str());
        value.GetINT32();
        value.GetINT64();
    });
}

} // namespace ovw::fuzz
