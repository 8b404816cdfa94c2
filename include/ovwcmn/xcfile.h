#ifndef OVWCMN_XCFILE_H
#define OVWCMN_XCFILE_H

/// @file
/// Open files.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/wintypes.h"
#include "ovwcmn/xcfilepath.h"

#include <cstdint>

class XCTime;

/// An open file with a position, closed by its destructor. Access, sharing, creation and attributes are the values of
/// wintypes.h; sharing is kept to within this process. Every failure throws XCException with the system's code (6 when
/// no file is open). One thread at a time.
class OVWCMN_API XCFile {
public:
    XCFile() = default;
    XCFile(const XCFile&) = delete;
    XCFile& operator=(const XCFile&) = delete;
    virtual ~XCFile();

    /// Closes any open file, then opens or creates this one. The four-character codes are not kept on this system.
    void Create(const XCFilePath& path, std::uint32_t creator, std::uint32_t type, std::uint32_t access,
                std::uint32_t share, std::uint32_t creation, std::uint32_t attributes);
    /// The same for files that exist: CREATE_NEW and CREATE_ALWAYS throw 0x20010008.
    void Open(const XCFilePath& path, std::uint32_t access, std::uint32_t share, std::uint32_t creation,
              std::uint32_t attributes);
    /// Nothing when no file is open.
    void Close();
    /// 1 while a file is open.
    int IsValid() const { return m_nHandle != cnNoFile; }
    /// The handle.
    operator void*() const { return reinterpret_cast<void*>(static_cast<std::uintptr_t>(m_nHandle)); }
    /// Of the open file; empty when none is.
    const XCFilePath& GetFilePath() const { return m_path; }

    /// *done (may be null) becomes the bytes read; fewer than `size` at the end of the file only.
    void Read(void* buffer, std::uint32_t size, std::uint32_t* done = nullptr);
    /// *done (may be null) becomes the bytes written.
    void Write(const void* buffer, std::uint32_t size, std::uint32_t* done = nullptr);
    /// `method` is FILE_BEGIN, FILE_CURRENT or FILE_END. Beyond the end is allowed; before the beginning throws 131.
    void Seek(std::int64_t offset, std::uint32_t method);
    /// The file ends at the position.
    void SetEOF();
    /// Returns when all that was written is on the disk.
    void Flush();
    std::int64_t GetLength() const;   ///< bytes
    std::int64_t GetPosition() const; ///< bytes from the beginning
    /// Time of the last write.
    void GetTime(XCTime& time) const;
    /// Takes over the other file's times (this system cannot set a creation time).
    void CopyTime(const XCFile& other);

private:
    static constexpr std::uint32_t cnNoFile = 0xFFFFFFFF;

    std::uint32_t m_nHandle = cnNoFile;
    XCFilePath m_path;
};

#endif // OVWCMN_XCFILE_H
