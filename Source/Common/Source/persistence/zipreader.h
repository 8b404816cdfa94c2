#ifndef OVW_PERSISTENCE_ZIPREADER_H
#define OVW_PERSISTENCE_ZIPREADER_H

#include "ovwcmn/xcfile.h"

#include <cstdint>
#include <functional>
#include <string>

namespace ovw::persistence {

/// An entry as the archive's directory tells it.
struct ZipEntry {
    std::string name; ///< as stored; folders end in "/"
    std::uint64_t size = 0;
    std::uint64_t packedSize = 0;
    std::uint32_t method = 0;
    std::uint32_t unixMode = 0; ///< 0 from systems without
    bool isEncrypted = false;
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
    bool isOpen() const { return m_zip; }
    /// As the archive announces it.
    std::uint64_t entryCount() const;
    std::uint64_t archiveBytes() const { return static_cast<std::uint64_t>(m_file.GetLength()); }
    void goToFirst();
    void goToNext();
    ZipEntry entry() const;
    /// Hands the contents of the entry over in pieces; throws unless they are exactly what the directory says.
    void expand(const std::function<void(const void*, std::uint32_t)>& write);

    struct Callbacks;

private:
    void check(int result) const;

    XCFile m_file;
    void* m_zip = nullptr;
    int m_readError = 0; // the code of the last failure of the file itself
};

} // namespace ovw::persistence

#endif // OVW_PERSISTENCE_ZIPREADER_H
