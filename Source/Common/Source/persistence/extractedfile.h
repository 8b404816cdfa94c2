#ifndef OVW_PERSISTENCE_EXTRACTEDFILE_H
#define OVW_PERSISTENCE_EXTRACTEDFILE_H

#include "ovwcmn/xcfile.h"
#include "persistence/replacingfile.h"

#include <algorithm>
#include <cstdint>
#include <optional>

namespace ovw::persistence {

/// The most bytes that may come out of an archive: `wanted`, or for 0 what an honest one hardly reaches.
constexpr std::uint64_t expansionLimit(std::uint64_t wanted, std::uint64_t archiveBytes) {
    constexpr std::uint64_t cnLeast = 1u << 30, cnRatio = 20;
    return wanted ? wanted : std::max(cnLeast, cnRatio * archiveBytes);
}

/// A file that comes out of an archive. It is removed unless it is finished, replaces an existing file in one step, and
/// is never written through a link that lies in its place.
class ExtractedFile {
public:
    explicit ExtractedFile(const XCFilePath& target);
    ~ExtractedFile();
    ExtractedFile(const ExtractedFile&) = delete;
    ExtractedFile& operator=(const ExtractedFile&) = delete;

    void write(const void* bytes, std::uint32_t size) { m_file.Write(bytes, size); }
    /// Whether no file of the name was there.
    bool isNew() const { return !m_replacing; }
    /// `time` is that of the last write, in seconds since 1970.
    void finish(std::optional<std::int64_t> time = {});

private:
    void create(const XCFilePath& path, std::uint32_t creation);

    XCFilePath m_target;
    std::optional<ReplacingFile> m_replacing; // when the name is taken
    XCFile m_file;
    bool m_isFinished = false;
};

} // namespace ovw::persistence

#endif // OVW_PERSISTENCE_EXTRACTEDFILE_H
