// What the file system knows about a path.

#include "ovwcmn/xcfilepath.h"

#include "Platform/file.h"
#include "Platform/systemerror.h"
#include "Utility/vxfile.h"
#include "ovwcmn/ovwhooks.h"
#include "ovwcmn/vxwutl.h"
#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcfile.h"
#include "persistence/filetime.h"
#include "persistence/folderentries.h"
#include "persistence/pathtext.h"
#include "persistence/versionresource.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace platform = ovw::platform;
using ovw::persistence::text;

namespace {

constexpr std::uint32_t cnUnknownClusterBytes = 32768;
constexpr std::uint32_t cnUnknownSectorBytes = 512;

/// The volume of a path, or of the nearest folder above it that exists: the volumes of this system meet inside the
/// tree, not at the root. 0 or the system code.
int findVolume(std::string path, platform::VolumeInformation& out) {
    for (;;) {
        const int code = platform::fileSystem().volume(path, out);
        const bool isMissing = code == platform::cnErrorFileNotFound || code == platform::cnErrorPathNotFound;
        std::string parent = vxGetFolderfromFullPath(path);
        if (!isMissing || parent.empty() || parent == path)
            return code;
        path = std::move(parent);
    }
}

/// What the file system tells of a path; false, with the code in vxGetLastError(), when it tells nothing.
bool informationOf(const XCFilePath& path, platform::FileInformation& out) {
    if (path.IsEmpty() || path.GetFullPathLength() >= static_cast<int>(cnPathBufferSize))
        return false;
    return ovw::persistence::lookAt(path, out);
}

/// One member of the volume's description; `unsupported` for a volume that cannot tell, 0 on any other failure.
template <class Value>
Value volumeValue(const XCFilePath& path, Value unsupported, Value (*value)(const platform::VolumeInformation&)) {
    platform::VolumeInformation volume;
    const int code = findVolume(vxWithoutBackDelimiter(static_cast<const char*>(path)), volume);
    if (code == 0)
        return value(volume);
    vxSetLastError(code);
    return code == platform::cnErrorNotSupported ? unsupported : Value{0};
}

} // namespace

std::uint32_t XCFilePath::attributes() const {
    platform::FileInformation information;
    return informationOf(*this, information) ? information.attributes : 0;
}

int XCFilePath::IsExistence() const {
    platform::FileInformation information;
    return informationOf(*this, information);
}

int XCFilePath::IsFolder() const { return (attributes() & platform::attributeFolder) != 0; }

int XCFilePath::IsHidden() const { return (attributes() & platform::attributeHidden) != 0; }

int XCFilePath::GetReadOnly() const { return (attributes() & platform::attributeReadOnly) != 0; }

void XCFilePath::SetHidden(int hidden) { setAttribute(platform::attributeHidden, hidden); }

void XCFilePath::SetReadOnly(int readOnly) { setAttribute(platform::attributeReadOnly, readOnly); }

void XCFilePath::setAttribute(std::uint32_t bit, int on) {
    platform::FileSystem& files = platform::fileSystem();
    platform::FileInformation information;
    const std::string path = text(m_strPath);
    int code = files.information(path, information);
    const std::uint32_t wanted = on ? information.attributes | bit : information.attributes & ~bit;
    if (code == 0 && wanted != information.attributes)
        code = files.setAttributes(path, wanted);
    if (code != 0) {
        vxSetLastError(code);
        xcThrowError(code);
    }
}

int XCFilePath::IsAliasFile(int* isFolder) const {
    const int isAlias = IsExtensionFile("lnk");
    if (isFolder) {
        XCFilePath target(*this);
        *isFolder = isAlias && target.ResolveAliasFile() ? target.IsFolder() : 0;
    }
    return isAlias;
}

int XCFilePath::ResolveAliasFile() {
    std::string target;
    if (!vxwGetShortcutLink(m_strPath.GetStr(), target))
        return 0;
    m_strPath = target.c_str();
    return 1;
}

int XCFilePath::IsFileType(std::uint32_t) const { return 0; }

void XCFilePath::GetCreaterAndType(std::uint32_t& creator, std::uint32_t& type) const { creator = type = 0; }

int XCFilePath::IsFolderEmpty() const {
    constexpr std::size_t cnOwnAndParent = 2;
    std::vector<std::string> names;
    return IsFolder() && platform::fileSystem().list(text(m_strPath), names) == 0 && names.size() <= cnOwnAndParent;
}

void XCFilePath::GetTime(XCTime& time) const {
    if (!IsFolder()) {
        XCFile file;
        file.Open(*this, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, 0);
        file.GetTime(time);
        return;
    }
    platform::FileInformation information;
    if (informationOf(*this, information))
        ovw::persistence::setTime(time, information.times.lastWrite);
}

int XCFilePath::GetVersionInfo(XCString& out, const char* key) const try {
    out.Empty();
    XCFile file;
    file.Open(*this, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING, 0);
    const std::optional<std::string> resource = ovw::persistence::versionResource(file);
    const XCWideString wideKey(key ? key : "FileVersion");
    const std::optional<std::u16string> found =
        resource ? ovw::persistence::versionText(*resource, wideKey.GetStr()) : std::nullopt;
    return found && XCWideString(found->c_str()).ConvertWideToAnsi(out);
} catch (const XCException&) {
    return 0; // a question: a file that cannot be read has no version
}

int XCFilePath::CanSaveFile() const {
    XCFilePath trial(*this);
    if (!trial.MakeTempPath("xcd", 1))
        xcThrowError(vxGetLastError());
    XCFile file;
    file.Create(trial, 0, 0, GENERIC_WRITE, FILE_SHARE_WRITE, CREATE_ALWAYS, FILE_FLAG_DELETE_ON_CLOSE);
    return 1;
}

void XCFilePath::SetDefaultPath() {
    char folder[cnPathBufferSize] = {};
    if (!xcwSHGetFolderPath(nullptr, CSIDL_PERSONAL, folder, static_cast<int>(sizeof folder)))
        xcThrowError(platform::cnErrorPathNotFound);
    *this = folder;
}

std::uint32_t XCFilePath::GetDiskClusterSize(const XCFilePath& path) {
    return volumeValue<std::uint32_t>(path, cnUnknownClusterBytes, [](const platform::VolumeInformation& volume) {
        return volume.sectorBytes * volume.clusterSectors;
    });
}

std::uint32_t XCFilePath::GetDiskSectorSize(const XCFilePath& path) {
    return volumeValue<std::uint32_t>(path, cnUnknownSectorBytes,
                                      [](const platform::VolumeInformation& volume) { return volume.sectorBytes; });
}

std::uint64_t XCFilePath::GetDiskSpace(const XCFilePath& path) {
    return volumeValue<std::uint64_t>(path, 0,
                                      [](const platform::VolumeInformation& volume) { return volume.totalBytes; });
}

std::uint64_t XCFilePath::GetDiskFreeSpaceA(const XCFilePath& path) {
    return volumeValue<std::uint64_t>(path, 0,
                                      [](const platform::VolumeInformation& volume) { return volume.freeBytes; });
}
