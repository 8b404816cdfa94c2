#ifndef OVW_PERSISTENCE_PACKEDFORMAT_H
#define OVW_PERSISTENCE_PACKEDFORMAT_H

#include "ovwcmn/xcstring.h"

#include <cstdint>

class XCArchive;

/// @file
/// The records of packed folders. Reading throws 0x20010008 where the archive ends too early and 0x2001000B for records
/// that contradict themselves.

namespace ovw::persistence {

inline constexpr int cnMaxPackedNesting = 260; ///< folders within each other: a path holds no more

enum class PackedKind : std::uint16_t { folder = 1, file = 2 };

struct PackedHead {
    std::uint32_t files = 0; ///< in all folders; nobody relies on it
    std::uint32_t items = 0;
};

/// A file but for its contents.
struct PackedFileRecord {
    XCString name;
    std::int32_t size = 0;
    std::int32_t time = 0; ///< of the last write: seconds since 1970, -1 for none
    std::uint32_t attributes = 0;
};

void writeHead(XCArchive& archive, const PackedHead& head);
/// Throws 0 for another kind of file.
PackedHead readHead(XCArchive& archive);

PackedKind readKind(XCArchive& archive);

void writeFileRecord(XCArchive& archive, const PackedFileRecord& record);
PackedFileRecord readFileRecord(XCArchive& archive);
/// Throws unless the frame at the position is there and can expand to `size` bytes. Does not move.
void requireFrame(XCArchive& archive, std::uint32_t size);

/// Name and number of entries of a folder.
struct PackedFolderRecord {
    XCString name;
    std::uint32_t entries = 0;
};

void writeFolderRecord(XCArchive& archive, const PackedFolderRecord& record);
PackedFolderRecord readFolderRecord(XCArchive& archive);

/// Walks the entries at the position and back, without expanding anything. Throws 0x2001000B also when the files have
/// more than `limit` bytes together.
void checkEntries(XCArchive& archive, std::uint32_t count, std::uint64_t limit);

/// Whether a name is one component that stays in its folder, here and on other systems.
bool isPlainName(const char* name);

} // namespace ovw::persistence

#endif // OVW_PERSISTENCE_PACKEDFORMAT_H
