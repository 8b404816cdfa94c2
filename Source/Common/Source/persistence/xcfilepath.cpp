#include "ovwcmn/xcfilepath.h"

#include "Platform/path.h"
#include "Utility/vxfile.h"
#include "ovwcmn/vxwutl.h"
#include "persistence/pathtext.h"

#include <cstring>
#include <string>
#include <utility>

using ovw::persistence::copyToBuffer;
using ovw::persistence::equalNoCase;
using ovw::persistence::requireFits;
using ovw::persistence::text;

namespace {

/// The text without its trailing run of "\". The root of a drive keeps one: C: alone is another folder.
std::string trimmed(std::string full) {
    if (!full.ends_with('\\'))
        return full;
    const std::string kept = vxWithoutBackDelimiter(full), withOne = kept + '\\';
    if (vxIsRootPath(kept)) // a share
        return kept;
    if (full.starts_with(withOne) && vxIsRootPath(withOne))
        return withOne;
    return vxIsRootPath(full) ? full : kept;
}

std::string trimmed(const XCString& path) { return trimmed(text(path)); }

std::size_t frontDelimiters(const char* path) { return std::strspn(path, "\\"); }

/// Replaces single-byte characters of a buffer in place.
void replaceCharacter(char* path, char from, char to) {
    XCString changed(path);
    changed.Replace(from, to);
    std::memcpy(path, changed.GetStr(), static_cast<std::size_t>(changed.GetLength()));
}

} // namespace

XCFilePath& XCFilePath::operator=(const char* path) {
    m_strPath = path;
    return *this;
}

XCFilePath& XCFilePath::operator=(const XCString& path) {
    m_strPath = path;
    return *this;
}

void XCFilePath::GetFullPath(char* out) const { copyToBuffer(out, trimmed(m_strPath)); }

void XCFilePath::GetFullPath(XCString& out) const { out = requireFits(trimmed(m_strPath), cnPathBufferSize).c_str(); }

void XCFilePath::GetNativePath(char* out) const { copyToBuffer(out, text(m_strPath)); }

void XCFilePath::GetFileName(char* out) const {
    copyToBuffer(out, vxGetFileNamefromFullPath(vxWithoutBackDelimiter(text(m_strPath))));
}

void XCFilePath::GetFileName(XCString& out) const {
    char name[cnPathBufferSize];
    GetFileName(name);
    out = name;
}

void XCFilePath::GetNameAndExtension(char* name, char* ext) const {
    const std::string path = vxWithoutBackDelimiter(text(m_strPath));
    copyToBuffer(name, vxGetFileNameDelExt(path));
    copyToBuffer(ext, vxCopyExtension(path));
}

void XCFilePath::GetNameAndExtension(XCString& name, XCString& ext) const {
    char nameBuffer[cnPathBufferSize], extBuffer[cnPathBufferSize];
    GetNameAndExtension(nameBuffer, extBuffer);
    name = nameBuffer;
    ext = extBuffer;
}

void XCFilePath::GetFolderPath(XCFilePath& out) const {
    out = requireFits(vxGetFolderfromFullPath(trimmed(m_strPath)), cnPathBufferSize).c_str();
}

void XCFilePath::GetRootPath(XCFilePath& out) const {
    std::string path = requireFits(trimmed(m_strPath), cnPathBufferSize);
    // Walking up ends at a root, or at "" when there is none.
    while (!path.empty() && !vxIsRootPath(path))
        path = vxGetFolderfromFullPath(path);
    out = path.c_str();
}

void XCFilePath::SetFileName(const char* name) {
    XCFilePath changed;
    GetFolderPath(changed);
    changed += name;
    *this = changed;
}

void XCFilePath::SetNameAndExtension(const char* name, const char* ext) {
    XCString full(name);
    if (ext && *ext && *ext != '.')
        full += '.';
    full += ext;
    SetFileName(full);
}

void XCFilePath::ChangeName(const char* name) {
    XCString old, ext;
    GetNameAndExtension(old, ext);
    SetNameAndExtension(name, ext.GetStr());
}

void XCFilePath::ChangeExtension(const char* ext) {
    XCString name, old;
    GetNameAndExtension(name, old);
    SetNameAndExtension(name.GetStr(), ext);
}

int XCFilePath::ChangeSubFolderName(const char* name) {
    XCString last;
    if (!DivideSubPath(last))
        return 0;
    CatSubPath(name);
    return 1;
}

int XCFilePath::DivideSubPath(XCString& last) {
    const std::string path = requireFits(trimmed(m_strPath), cnPathBufferSize);
    last.Empty();
    const std::size_t delimiter = vxFindLastDelimiter(path);
    if (vxIsRootPath(path) || delimiter == std::string::npos || delimiter == 0 || delimiter + 1 == path.size())
        return 0;
    last = path.substr(delimiter + 1).c_str();
    m_strPath = path.substr(0, delimiter).c_str();
    return 1;
}

XCFilePath& XCFilePath::operator+=(const char* subPath) {
    const std::string sub = subPath ? subPath : "";
    if (m_strPath.IsEmpty()) {
        m_strPath = sub.c_str();
    } else if (!sub.empty()) {
        std::string joined = vxWithoutBackDelimiter(text(m_strPath)) + '\\';
        joined = vxWithoutBackDelimiter(std::move(joined.append(sub, frontDelimiters(sub.c_str()))));
        const bool isDrive = joined.size() == 2 && vxIsRootPath(joined + '\\');
        m_strPath = (isDrive ? joined + '\\' : joined).c_str();
    }
    return *this;
}

void XCFilePath::CatSubPathForMac(const char* subPath) {
    XCString converted(subPath);
    ConvertMacToWinSubPath(converted);
    CatSubPath(converted);
}

bool XCFilePath::operator==(const XCFilePath& other) const {
    return equalNoCase(vxWithoutBackDelimiter(text(m_strPath)), vxWithoutBackDelimiter(text(other.m_strPath)));
}

int XCFilePath::IsExtensionFile(const char* ext) const {
    return equalNoCase(vxCopyExtension(vxWithoutBackDelimiter(text(m_strPath))), ext ? ext : "");
}

int XCFilePath::IsRoot() const { return vxIsRootPath(trimmed(m_strPath)); }

int XCFilePath::IsChildFolder(const XCFilePath& other) const {
    if (other.IsRoot())
        return IsRoot() && *this == other;
    for (std::string path = trimmed(other.m_strPath); !path.empty();) {
        if (*this == path.c_str())
            return 1;
        const std::string parent = vxGetFolderfromFullPath(path);
        if (vxIsRootPath(path) || parent == path)
            return 0;
        path = parent;
    }
    return 0;
}

int XCFilePath::DeleteBackDelimiter(char* path) {
    const std::string kept = vxWithoutBackDelimiter(path);
    const std::size_t removed = std::strlen(path) - kept.size();
    path[kept.size()] = '\0';
    return static_cast<int>(removed);
}

int XCFilePath::DeleteBackDelimiter(XCString& path) {
    const int removed = DeleteBackDelimiter(path.GetStr());
    path = XCString(path.GetStr());
    return removed;
}

int XCFilePath::DeleteFrontDelimiter(char* path) {
    const std::size_t removed = frontDelimiters(path);
    std::memmove(path, path + removed, std::strlen(path) - removed + 1);
    return static_cast<int>(removed);
}

int XCFilePath::DeleteFrontDelimiter(XCString& path) {
    const std::size_t removed = frontDelimiters(path.GetStr());
    path = XCString(path.GetStr() + removed);
    return static_cast<int>(removed);
}

void XCFilePath::ConvertWinToMacSubPath(char* path) { replaceCharacter(path, '\\', ':'); }

void XCFilePath::ConvertWinToMacSubPath(XCString& path) { path.Replace('\\', ':'); }

void XCFilePath::ConvertMacToWinSubPath(char* path) { replaceCharacter(path, ':', '\\'); }

void XCFilePath::ConvertMacToWinSubPath(XCString& path) { path.Replace(':', '\\'); }

XCFilePath xcPathFromPosix(const char* path) { return ovw::platform::toLibraryPath(path ? path : "").c_str(); }

XCString xcPathToPosix(const XCFilePath& path) {
    return ovw::platform::toPosixPath(static_cast<const char*>(path)).c_str();
}

int xcSetDriveRoot(char drive, const char* posixFolder) {
    return ovw::platform::setDriveRoot(drive, posixFolder ? posixFolder : "");
}
