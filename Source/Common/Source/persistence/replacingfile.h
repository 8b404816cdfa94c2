#ifndef OVW_PERSISTENCE_REPLACINGFILE_H
#define OVW_PERSISTENCE_REPLACINGFILE_H

#include "ovwcmn/xcarchivefile.h"
#include "ovwcmn/xcfilepath.h"

#include <cstdint>

namespace ovw::persistence {

/// A new version of a file. It grows under another name beside the old one, and takes its place in one step when it is
/// whole and on the disk: whatever happens meanwhile, the name leads to the old version or to the new one. What is
/// abandoned is removed.
class ReplacingFile {
public:
    /// Creates the file that grows. Up to three bytes of `prefix` begin its name. Throws the system's code.
    ReplacingFile(const XCFilePath& target, const char* prefix);
    ~ReplacingFile();
    ReplacingFile(const ReplacingFile&) = delete;
    ReplacingFile& operator=(const ReplacingFile&) = delete;

    const XCFilePath& path() const { return m_path; }
    /// The file, flushed and closed by now, becomes the target.
    void commit();
    /// The same with another file that was made from it, on any volume.
    void commit(const XCFilePath& made);

private:
    XCFilePath m_target;
    XCFilePath m_path;
};

/// Opens a file for writing, with the usual access.
void createForWriting(XCArchiveFile& archive, const XCFilePath& path, std::uint32_t creator, std::uint32_t type);

/// Replaces a file by what `write(XCArchive&)` writes.
template <class Write>
void replaceByArchive(const XCFilePath& target, const char* prefix, std::uint32_t creator, std::uint32_t type,
                      std::uint32_t order, Write write) {
    ReplacingFile file(target, prefix);
    XCArchiveFile archive(XCArchive::cnSaving | order, XCArchiveFile::cnCacheSize);
    createForWriting(archive, file.path(), creator, type);
    write(archive);
    archive.FlushToDisk();
    archive.FileClose();
    file.commit();
}

} // namespace ovw::persistence

#endif // OVW_PERSISTENCE_REPLACINGFILE_H
