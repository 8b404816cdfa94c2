#include "ovwcmn/xcfindfile.h"

#include "Platform/file.h"
#include "Platform/systemerror.h"
#include "ovwcmn/vxwutl.h"
#include "ovwcmn/xcexception.h"
#include "persistence/filetime.h"

#include <cstring>
#include <limits>

namespace platform = ovw::platform;

namespace {

constexpr std::uint32_t cnNoSearch = 0xFFFFFFFF;
constexpr std::uint32_t cnOpenSearch = 1;

/// False, and an empty text, when the text with its terminator does not fit.
template <std::size_t Size>
bool copyText(char (&out)[Size], const char* text) {
    const std::size_t length = std::strlen(text);
    out[0] = '\0';
    if (length >= Size)
        return false;
    std::memcpy(out, text, length + 1);
    return true;
}

void clearInfo(tagFindInfo& info) {
    info = {};
    info.handle = cnNoSearch;
}

/// 0 and the find data of folder + name, or the system code.
int findEntry(tagFindInfo& info) {
    XCFilePath path(info.folder);
    path += info.name;
    platform::FileInformation found;
    if (const int code = platform::fileSystem().information(static_cast<const char*>(path), found))
        return code;
    XCString name(info.name);
    if (name.IsEmpty())
        path.GetFileName(name);
    WIN32_FIND_DATAA& data = info.data;
    data = {};
    data.dwFileAttributes = found.attributes;
    data.ftCreationTime = ovw::persistence::toFileTime(found.times.creation);
    data.ftLastAccessTime = ovw::persistence::toFileTime(found.times.lastAccess);
    data.ftLastWriteTime = ovw::persistence::toFileTime(found.times.lastWrite);
    data.nFileSizeHigh = static_cast<std::uint32_t>(found.length >> 32);
    data.nFileSizeLow = static_cast<std::uint32_t>(found.length);
    return copyText(data.cFileName, name.GetStr()) ? 0 : platform::cnErrorFileNameTooLong;
}

} // namespace

XCFindFile::XCFindFile() { clearInfo(m_info); }

int XCFindFile::First(const XCFilePath& folder) {
    const XCFilePath kept(folder); // NOLINT(performance-unnecessary-copy-initialization): it may be this search's own
    Close();
    vxSetLastError(0);
    auto names = std::make_shared<std::vector<std::string>>();
    int code = copyText(m_info.folder, kept) ? 0 : platform::cnErrorFileNameTooLong;
    if (code == 0)
        code = platform::fileSystem().list(m_info.folder, *names);
    if (code == 0) {
        m_info.handle = cnOpenSearch;
        m_pNames = std::move(names);
        if (Next())
            return 1;
        code = platform::cnErrorFileNotFound;
    }
    Close();
    vxSetLastError(code);
    return 0;
}

int XCFindFile::Next() {
    while (m_pNames && m_nNext < m_pNames->size()) {
        const std::string& name = (*m_pNames)[m_nNext++];
        tagFindInfo entry = m_info;
        if (name.empty() || !copyText(entry.name, name.c_str()) || findEntry(entry) != 0)
            continue; // it cannot be named here, or has vanished meanwhile
        SetFindInfos(entry);
        m_info = entry;
        return 1;
    }
    vxSetLastError(platform::cnErrorNoMoreFiles);
    return 0;
}

void XCFindFile::Close() {
    clearInfo(m_info);
    m_pNames.reset();
    m_nNext = 0;
}

void XCFindFile::GetName(char* out) const { std::strcpy(out, m_info.name); }

int XCFindFile::IsParentFolder() const {
    return std::strcmp(m_info.name, ".") == 0 || std::strcmp(m_info.name, "..") == 0;
}

const XCFilePath& XCFindFile::GetFilePath() {
    m_path = m_info.folder;
    m_path += m_info.name;
    return m_path;
}

const XCFilePath& XCFindFile::GetParentFolderPath() {
    m_parentPath = m_info.folder;
    return m_parentPath;
}

void XCFindFile::SetupFileInfo(tagFindInfo& info, const XCFilePath& folder) {
    clearInfo(info);
    if (!copyText(info.folder, folder))
        xcThrowError(platform::cnErrorFileNameTooLong);
}

void XCFindFile::GetFileInfo(tagFindInfo& info) {
    if (const int code = findEntry(info)) {
        vxSetLastError(code);
        xcThrowError(code);
    }
}

void XCFindFile::SetFindInfos(tagFindInfo& info) {
    const std::uint32_t attributes = info.data.dwFileAttributes;
    if (!copyText(info.name, info.data.cFileName))
        xcThrowError(platform::cnErrorFileNameTooLong);
    info.isFolder = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    info.isReadOnly = (attributes & FILE_ATTRIBUTE_READONLY) != 0;
    info.isHidden = (attributes & FILE_ATTRIBUTE_HIDDEN) != 0;
}
