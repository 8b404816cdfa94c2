#include "persistence/folderentries.h"

#include "Platform/systemerror.h"
#include "ovwcmn/vxwutl.h"
#include "ovwcmn/xcexception.h"

#include <string>
#include <utility>

namespace ovw::persistence {

namespace {

[[noreturn]] void fail(int code) {
    vxSetLastError(code);
    xcThrowError(code);
}

bool isMissing(int code) { return code == platform::cnErrorFileNotFound || code == platform::cnErrorPathNotFound; }

} // namespace

bool lookAt(const XCFilePath& path, platform::FileInformation& information) {
    const int code = platform::fileSystem().information(static_cast<const char*>(path), information);
    if (code != 0)
        vxSetLastError(code);
    return code == 0;
}

std::vector<FolderEntry> folderEntries(const XCFilePath& folder) {
    std::vector<std::string> names;
    if (const int code = platform::fileSystem().list(static_cast<const char*>(folder), names))
        fail(code);
    std::vector<FolderEntry> entries;
    for (const std::string& name : names) {
        if (name.empty())
            fail(platform::cnErrorInvalidName);
        if (name == "." || name == "..")
            continue;
        FolderEntry entry = {folder, {}, name};
        entry.path += name.c_str();
        if (lookAt(entry.path, entry.information))
            entries.push_back(std::move(entry));
        else if (!isMissing(vxGetLastError()))
            fail(vxGetLastError());
    }
    return entries;
}

} // namespace ovw::persistence
