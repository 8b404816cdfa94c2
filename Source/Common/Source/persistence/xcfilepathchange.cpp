// Creating, copying, moving and deleting what a path names.

#include "ovwcmn/xcfilepath.h"

#include "Platform/file.h"
#include "Platform/systemerror.h"
#include "Utility/vxfile.h"
#include "ovwcmn/vxwutl.h"
#include "ovwcmn/xcexception.h"
#include "persistence/folderentries.h"
#include "persistence/pathtext.h"

#include <string>
#include <vector>

namespace platform = ovw::platform;
using namespace ovw::persistence;

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

/// A copy of a file, a folder with all that it holds, or a link, which is not followed.
class TreeCopy {
public:
    void copy(const XCFilePath& target, const FolderEntry& src);
    /// Creates the target as the source is, if need be, and copies all entries of the source into it.
    void copyEntries(const XCFilePath& target, const XCFilePath& src);

private:
    /// Whether it is the copy that is being made, which never ends inside its own source.
    bool isOwn(const FolderEntry& entry) const { return m_isBegun && m_top.isSameFile(entry.information); }

    platform::FileInformation m_top;
    bool m_isBegun = false;
};

void TreeCopy::copy(const XCFilePath& target, const FolderEntry& src) {
    if (src.isLink()) {
        if (const int code = platform::fileSystem().copyLink(static_cast<const char*>(src.path), trimmed(target)))
            fail(code);
    } else if (!src.isFolder()) {
        copyOrThrow(src.path, target, 1);
    } else if (isOwn(src)) {
        fail(platform::cnErrorAccessDenied);
    } else {
        copyEntries(target, src.path);
    }
}

void TreeCopy::copyEntries(const XCFilePath& target, const XCFilePath& src) {
    platform::FileSystem& files = platform::fileSystem();
    const std::vector<FolderEntry> entries = folderEntries(src);
    const bool isNew = !target.IsExistence();
    platform::FileInformation information;
    const bool isKnown = lookAt(src, information);
    constexpr std::uint32_t ownersAll = 0700; // who must put the entries in
    if (isNew)
        if (const int code = files.createFolder(static_cast<const char*>(target), information.permissions | ownersAll))
            fail(code);
    m_isBegun = m_isBegun || lookAt(target, m_top);
    for (const FolderEntry& entry : entries) {
        XCFilePath made(target);
        made += entry.name.c_str();
        copy(made, entry);
    }
    // Last: a folder that is read-only on this system takes no entries.
    if (isNew && isKnown)
        files.setAttributes(static_cast<const char*>(target), information.attributes);
}

/// 0 or the system's code. A link goes, not what it leads to.
int removeWhole(const XCFilePath& path) {
    platform::FileSystem& files = platform::fileSystem();
    const std::string full = trimmed(path);
    FolderEntry entry;
    if (const int code = files.information(full, entry.information))
        return code;
    return entry.isFolder() && !entry.isLink() ? files.removeFolder(full) : files.removeFile(full);
}

/// The same for what has a copy elsewhere: as in moving within a volume, being read-only does not keep a file.
int removeMoved(const XCFilePath& path, const FolderEntry& entry) {
    platform::FileSystem& files = platform::fileSystem();
    const std::uint32_t attributes = entry.information.attributes;
    const bool isKept = !entry.isFolder() && !entry.isLink() && (attributes & platform::attributeReadOnly);
    if (isKept)
        files.setAttributes(trimmed(path), attributes & ~platform::attributeReadOnly);
    const int code = removeWhole(path);
    if (code != 0 && isKept)
        files.setAttributes(trimmed(path), attributes);
    return code;
}

/// To another volume: the source goes when all of it has arrived; what has arrived goes when something fails.
void moveAcross(const XCFilePath& target, const XCFilePath& src) {
    FolderEntry entry = {trimmed(src).c_str()};
    if (!lookAt(entry.path, entry.information))
        xcThrowError(vxGetLastError());
    try {
        TreeCopy().copy(target, entry);
    } catch (const XCException&) {
        if (entry.isFolder() && !entry.isLink())
            removeWhole(target); // files take care of themselves
        throw;
    }
    const int code = removeMoved(src, entry);
    if (code == 0)
        return;
    if (!entry.isFolder() || entry.isLink()) // of a folder some may be gone already
        removeMoved(target, entry);
    fail(code);
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
    if (toRecycleBin)
        platform::fileSystem().moveToTrash(trimmed(*this));
    else
        removeWhole(*this);
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
    if (code == platform::cnErrorNotSameDevice && !src.IsFolder())
        moveAcross(dest, src);
    else if (code != 0)
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
    TreeCopy().copyEntries(target, src);
}

void XCFilePath::MoveFolder(const XCFilePath& destFolder, const XCFilePath& src, int checkExisting) {
    if (checkExisting)
        refuseExisting(destFolder, src);
    XCFilePath target(destFolder);
    if (destFolder.IsFolder())
        target += fileName(src).c_str();
    const int code = target.IsExistence() ? platform::cnErrorAlreadyExists
                                          : platform::fileSystem().rename(trimmed(src), trimmed(target));
    if (code == platform::cnErrorNotSameDevice)
        moveAcross(target, src);
    else if (code != 0)
        fail(code);
}
