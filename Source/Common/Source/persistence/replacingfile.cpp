#include "persistence/replacingfile.h"

#include "Platform/file.h"
#include "Platform/systemerror.h"
#include "ovwcmn/vxwutl.h"
#include "ovwcmn/wintypes.h"
#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcfile.h"

#include <string>

namespace ovw::persistence {

namespace {

/// The file system takes paths as they stand but for a "\" at the end.
std::string systemPath(const XCFilePath& path) {
    XCString full;
    path.GetFullPath(full);
    return full.GetStr();
}

/// 0 or the system's code.
int replace(const XCFilePath& from, const XCFilePath& to) {
    return platform::fileSystem().replaceFile(systemPath(from), systemPath(to));
}

void flushToDisk(const XCFilePath& path) {
    XCFile file;
    file.Open(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING, 0);
    file.Flush();
}

} // namespace

ReplacingFile::ReplacingFile(const XCFilePath& target, const char* prefix) : m_target(target), m_path(target) {
    if (m_path.MakeTempPath(prefix, 1))
        return;
    m_path.Empty();
    xcThrowError(vxGetLastError());
}

ReplacingFile::~ReplacingFile() {
    if (!m_path.IsEmpty())
        m_path.FileDelete(0);
}

void ReplacingFile::commit() { commit(m_path); }

void ReplacingFile::commit(const XCFilePath& made) {
    if (made != m_path)
        flushToDisk(made);
    int code = replace(made, m_target);
    if (code == platform::cnErrorNotSameDevice) {
        XCFilePath::CopyFileA(m_path, made, 0);
        flushToDisk(m_path);
        code = replace(m_path, m_target);
        if (code == 0)
            made.FileDelete(0);
    }
    if (code != 0) {
        vxSetLastError(code);
        xcThrowError(code);
    }
    m_path.FileDelete(0); // unless it was the one that moved
    m_path.Empty();
}

void createForWriting(XCArchiveFile& archive, const XCFilePath& path, std::uint32_t creator, std::uint32_t type) {
    archive.FileCreate(path, creator, type, GENERIC_WRITE, FILE_SHARE_WRITE, CREATE_ALWAYS, 0);
}

} // namespace ovw::persistence
