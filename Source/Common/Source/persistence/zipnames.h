#ifndef OVW_PERSISTENCE_ZIPNAMES_H
#define OVW_PERSISTENCE_ZIPNAMES_H

#include <string>
#include <vector>

namespace ovw::persistence {

/// Where an entry of a ZIP archive goes, below the destination.
struct ZipPlace {
    std::vector<std::string> folders;
    std::string file; ///< "" for a folder
};

/// Components between "/"; "." and empty ones are dropped, ".." takes one back. Throws 0x2001000B for a name that
/// leaves the destination or could do so on another system.
ZipPlace placeOf(const std::string& entryName);

} // namespace ovw::persistence

#endif // OVW_PERSISTENCE_ZIPNAMES_H
