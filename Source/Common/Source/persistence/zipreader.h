#ifndef OVW_PERSISTENCE_ZIPREADER_H
#define OVW_PERSISTENCE_ZIPREADER_H

#include "ovwcmn/xcfile.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace ovw::persistence {

/// An entry as the archive's directory tells it.
struct ZipEntry {
    std::string name; ///< as stored; folders end in "/"
    std::uint64_t size = 0;
    std::uint64_t packedSize = 0;
    std::uint32_t method = 0;
    std::uint32_t checkSum = 0; ///< CRC-32 of the contents
    std::uint32_t unixMode = 0; ///< 0 from systems without
    bool isEncrypted = false;
    bool isTooLong = false; ///< minizip 1.1 cannot find its end
};

/// Walks the directory of a ZIP archive and expands its entries, through minizip. Throws 0x2001000B for damage, the
/// system's code when reading fails.
class ZipReader {
public:
    explicit ZipReader(const XCFilePath& path);
    ~ZipReader();
    ZipReader(const ZipReader&) = delete;
    ZipReader& operator=(const ZipReader&) = delete;

    /// Whether the file is an archive.
    bool isOpen() const { return m_zip || m_isEmpty; }
    /// As the archive announces it.
    std::uint64_t entryCount() const;
    std::uint64_t archiveBytes() const { return m_length; }
    void goToFirst();
    void goToNext();
    ZipEntry entry() const;
    /// Hands the contents of the entry over in pieces; throws unless they are exactly what the directory says.
    void expand(const std::function<void(const void*, std::uint32_t)>& write);

    struct Callbacks;

private:
    /// Bytes of the file.
    struct Window {
        std::vector<char> bytes;
        std::uint64_t start = 0;

        bool holds(std::uint64_t position) const { return position >= start && position - start < bytes.size(); }
    };

    const Window* windowAt(std::uint64_t position);
    void check(int result) const;
    std::vector<std::uint8_t> extraField(std::size_t size) const;
    bool isEmptyArchive();
    std::size_t read(char* to, std::size_t size);
    std::size_t expandPiece(char* to, std::uint64_t size);

    XCFile m_file;
    std::uint64_t m_length = 0;
    std::uint64_t m_position = 0;
    std::array<Window, 2> m_windows; // minizip reads byte by byte, from the directory and from an entry in turns
    std::size_t m_recent = 0;        // the one that was looked into last
    void* m_zip = nullptr;
    bool m_isEmpty = false; // which minizip takes for no archive
    int m_readError = 0;    // the code of the last failure of the file itself
};

} // namespace ovw::persistence

#endif // OVW_PERSISTENCE_ZIPREADER_H
