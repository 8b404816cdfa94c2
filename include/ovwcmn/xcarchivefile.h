#ifndef OVWCMN_XCARCHIVEFILE_H
#define OVWCMN_XCARCHIVEFILE_H

/// @file
/// Archives on files.

#include "ovwcmn/xcarchive.h"
#include "ovwcmn/xcfile.h"

/// An archive on a disk file that it owns. Who saves calls DoFlush before FileClose: closing and the destructor write
/// nothing. File errors throw XCException with the system's code; files of 4 GiB or more throw 0x20010008. One thread
/// at a time.
class OVWCMN_API XCArchiveFile : public XCArchive {
public:
    static constexpr std::uint32_t cnCacheSize = 512000; ///< what the library itself passes

    /// Loading, big-endian.
    XCArchiveFile();
    /// Flags as for Init; cache size 0 reads and writes the file directly.
    XCArchiveFile(std::uint32_t flags, std::uint32_t cacheSize);
    ~XCArchiveFile() override;

    /// Arguments as for XCFile::Create and XCFile::Open. The stream begins at the start of the file.
    void FileCreate(const XCFilePath& path, std::uint32_t creator, std::uint32_t type, std::uint32_t access,
                    std::uint32_t share, std::uint32_t creation, std::uint32_t attributes);
    /// The same for XCFile::Open.
    void FileOpen(const XCFilePath& path, std::uint32_t access, std::uint32_t share, std::uint32_t creation,
                  std::uint32_t attributes);
    /// Drops what was not flushed.
    void FileClose();
    /// 1 while a file is open.
    int IsValid() const { return m_file.IsValid(); }
    /// Hands everything over and returns when it is on the disk.
    void FlushToDisk();

protected:
    std::uint32_t WriteSelf(const void* bytes, std::uint32_t size) override;
    std::uint32_t ReadSelf(void* bytes, std::uint32_t size) override;
    std::uint32_t SeekSelf(int offset, std::uint32_t origin) override;

private:
    void begin();

    XCFile m_file;
};

#endif // OVWCMN_XCARCHIVEFILE_H
