#include "ovwcmn/xcarchivefile.h"

#include "ovwcmn/xcexception.h"

#include <limits>

XCArchiveFile::XCArchiveFile() { Init(cnLoading, cnCacheSize); }

XCArchiveFile::XCArchiveFile(std::uint32_t flags, std::uint32_t cacheSize) {
    if (cacheSize == 0)
        disableCache();
    Init(flags, cacheSize);
}

XCArchiveFile::~XCArchiveFile() = default;

void XCArchiveFile::FileCreate(const XCFilePath& path, std::uint32_t creator, std::uint32_t type, std::uint32_t access,
                               std::uint32_t share, std::uint32_t creation, std::uint32_t attributes) {
    restart(0);
    m_file.Create(path, creator, type, access, share, creation, attributes);
    begin();
}

void XCArchiveFile::FileOpen(const XCFilePath& path, std::uint32_t access, std::uint32_t share, std::uint32_t creation,
                             std::uint32_t attributes) {
    restart(0);
    m_file.Open(path, access, share, creation, attributes);
    begin();
}

/// Takes the length of the file that was opened; one that a position cannot reach the end of is closed again.
void XCArchiveFile::begin() {
    const std::int64_t length = m_file.GetLength();
    if (length > std::numeric_limits<std::uint32_t>::max()) {
        m_file.Close();
        xcThrowError(ovw::foundation::cnCodeParameter);
    }
    restart(static_cast<std::uint32_t>(length));
}

void XCArchiveFile::FileClose() {
    m_file.Close();
    ClearCache();
}

void XCArchiveFile::FlushToDisk() {
    DoFlush();
    m_file.Flush();
}

std::uint32_t XCArchiveFile::WriteSelf(const void* bytes, std::uint32_t size) {
    std::uint32_t done = 0;
    try {
        m_file.Write(bytes, size, &done);
    } catch (...) { // the same bytes may come again when there is room
        m_file.Seek(-std::int64_t{done}, FILE_CURRENT);
        throw;
    }
    return done;
}

std::uint32_t XCArchiveFile::ReadSelf(void* bytes, std::uint32_t size) {
    std::uint32_t done = 0;
    m_file.Read(bytes, size, &done);
    return done;
}

std::uint32_t XCArchiveFile::SeekSelf(int offset, std::uint32_t origin) {
    const std::int64_t target =
        origin == 1 ? std::int64_t{GetPosition()} + offset : std::int64_t{static_cast<std::uint32_t>(offset)};
    m_file.Seek(target, FILE_BEGIN);
    return static_cast<std::uint32_t>(target);
}
