#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcfile.h"
#include "ovwcmn/xcfilepath.h"
#include "ovwcmn/xchandle.h"

// The string tables live below the files, so the way from one to the other lies here.
int XCStringResource::AddTextFile(XCFilePath& path) {
    constexpr std::int64_t cnLongestFile = 0x7FFFFFFF;
    try {
        XCFile file;
        file.Open(path, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL);
        const std::int64_t length = file.GetLength();
        if (length > cnLongestFile)
            return 0;
        XCPointer text;
        text.Alloc(static_cast<std::uint32_t>(length));
        std::uint32_t size = 0;
        file.Read(text.GetPointer(), text.GetMemSize(), &size);
        return AddText(static_cast<const char*>(text.GetPointer()), size);
    } catch (const std::exception&) {
        return 0;
    }
}
