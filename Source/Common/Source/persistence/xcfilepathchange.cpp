// Creating, copying, moving and deleting what a path names.

#include "ovwcmn/xcfilepath.h"

#include "Platform/file.h"
#include "Platform/systemerror.h"
#include "Utility/vxfile.h"
#include "ovwcmn/vxwutl.h"
#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcfindfile.h"
#include "persistence/pathtext.h"

#include <string>

namespace platform = ovw::platform;
using ovw::persistence::equalNoCase;
using ovw::persistence::text;

namespace {

constexpr char cnFolderIconFile[] = "Icon?"; // another system's folder icon, which holds nothing to copy

std::string trimmed(const XCFilePath& path) {
    XCString full;
    path.GetFullPath(full);
    return text(full);
}

std::string fileName(const XCFilePath& path) {
    XCString name;
    path.GetFileName(name);
    return text(name);
}

[[noreturn]] void fail(int code) {
    vxSetLastError(code);
    xcThrowError(code);
}

void copyOrThrow(const XCFilePath& from, const XCFilePath& to, int failIfExists) {
    int code = 0;
    if (!vxCopyFile(from, to, failIfExists, &code))
        fail(code);
}

/// Throws when the folder already holds something of the source's name without its extension.
void refuseExisting(const XCFilePath& destFolder, const XCFilePath& src) {
    XCString name, ext;
    src.GetNameAndExtension(name, ext);
    XCFilePath target(destFolder);
    target += name;
    if (target.IsExistence())
        xcThrowError(ovw::foundation::cnCodeFileExists);
}

/// Creates the target as the source is, if need be, and copies all entries of the source into it.
void copyEntries(const XCFilePath& target, const XCFilePath& src) {
    platform::FileSystem& files = platform::fileSystem();
    const bool isNew = !target.IsExistence();
    if (isNew)
        if (const int code = files.createFolder(static_cast<const char*>(target)))
            fail(code);
    XCFindFile search;
    for (int found = search.First(src); found; found = search.Next()) {
        if (search.IsParentFolder())
            continue;
        const XCFilePath entry(search.GetFilePath());
        XCFilePath copy(target);
        copy += fileName(entry).c_str();
        if (search.IsFolder())
            XCFilePath::CopyFolder(target, entry, 0, 1);
        else
            copyOrThrow(entry, copy, 1);
    }
    // Last: a folder that is read-only on this system takes no entries.
    platform::FileInformation information;
    if (isNew && files.information(static_cast<const char*>(src), information) == 0)
        files.setAttributes(static_cast<const char*>(target), information.attributes);
}

} // namespace

int XCFilePath::MakeTempPath(const char* prefix, int inOwnFolder) {
    platform::FileSystem& files = platform::fileSystem();
    std::string folder, created;
    int code = 0;
    if (inOwnFolder)
        folder = vxGetFolderfromFullPath(vxIsRootPath(text(m_strPath)) ? text(m_strPath)
                                                                       : vxWithoutBackDelimiter(text(m_strPath)));
    else
        code = files.temporaryFolder(folder);
    if (code == 0)
        code = files.createUnique(folder, prefix ? prefix : "", created);
    if (code == 0 && created.size() >= cnPathBufferSize) {
        files.removeFile(created);
        code = platform::cnErrorFileNameTooLong;
    }
    if (code != 0) {
        vxSetLastError(code);
        return 0;
    }
    m_strPath = created.c_str();
    return 1;
}

void XCFilePath::CreateFolder() const {
    int created = 0, code = 0;
    if (vxCreateFolder(trimmed(*this).c_str(), &created, &code))
        return;
    if (code != platform::cnErrorAlreadyExists)
        xcThrowError(code);
    if (!IsFolder())
        xcThrowError(ovw::foundation::cnCodeFileExists);
}

void XCFilePath::Delete(int toRecycleBin) const {
    if (IsEmpty() || !IsExistence())
        return;
    platform::FileSystem& files = platform::fileSystem();
    const std::string path = trimmed(*this);
    platform::FileInformation information;
    files.information(path, information);
    if (toRecycleBin)
        files.moveToTrash(path);
    else if ((information.attributes & platform::attributeFolder) && !information.isLink)
        files.removeFolder(path);
    else
        files.removeFile(path);
}

void XCFilePath::FileDelete(int toRecycleBin) const {
    if (IsExistence() && !IsFolder())
        Delete(toRecycleBin);
}

void XCFilePath::CopyFileA(const XCFilePath& dest, const XCFilePath& src, int failIfExists) {
    vxSetLastError(0);
    if (equalNoCase(static_cast<const char*>(src), cnFolderIconFile))
        return;
    int code = 0;
    if (vxCopyFile(src, dest, failIfExists, &code))
        return;
    xcThrowError(code == platform::cnErrorFileExists ? ovw::foundation::cnCodeFileExists : code);
}

void XCFilePath::MoveFileA(const XCFilePath& dest, const XCFilePath& src, int failIfExists) {
    vxSetLastError(0);
    int code = 0;
    const std::string from = trimmed(src), to = trimmed(dest);
    if (dest.IsExistence()) {
        if (failIfExists)
            xcThrowError(ovw::foundation::cnCodeFileExists);
        if (from == to)
            return;
        if (!src.IsExistence())
            xcThrowError(vxGetLastError()); // before the target is gone
        if (!vxDeleteFile(dest, &code))
            xcThrowError(code);
    }
    code = platform::fileSystem().rename(from, to);
    if (code == platform::cnErrorNotSameDevice && !src.IsFolder()) {
        copyOrThrow(src, dest, 1);
        code = vxDeleteFile(src, &code) ? 0 : code;
    }
    if (code != 0)
        fail(code);
}

void XCFilePath::Rename(const char* newName) {
    if (equalNoCase(fileName(*this), newName ? newName : ""))
        return;
    XCFilePath changed(*this);
    changed.SetFileName(newName);
    int code = 0;
    if (!vxChangeFileName(trimmed(*this).c_str(), trimmed(changed).c_str(), &code))
        xcThrowError(code);
    *this = changed;
}

void XCFilePath::CopyFolder(const XCFilePath& destFolder, const XCFilePath& src, int checkExisting,
                            int alwaysAppendName) {
    if (checkExisting)
        refuseExisting(destFolder, src);
    const std::string name = fileName(src);
    XCFilePath target(destFolder);
    if (alwaysAppendName || !equalNoCase(fileName(destFolder), name))
        target += name.c_str();
    if (!src.IsFolder()) {
        copyOrThrow(src, target, 1);
        return;
    }
    if (src.IsChildFolder(target))
        fail(platform::cnErrorAccessDenied); // a folder copied into itself would never end
    copyEntries(target, src);
}

void XCFilePath::MoveFolder(const XCFilePath& destFolder, const XCFilePath& src, int checkExisting) {
    if (checkExisting)
        refuseExisting(destFolder, src);
    XCFilePath target(destFolder);
    if (destFolder.IsFolder())
        target += fileName(src).c_str();
    const int code = target.IsExistence() ? platform::cnErrorAlreadyExists
                                          : platform::fileSystem().rename(trimmed(src), trimmed(target));
    if (code == platform::cnErrorNotSameDevice) {
        CopyFolder(destFolder, src, 0, 1);
        src.Delete(0);
    } else if (code != 0) {
        fail(code);
    }
}
