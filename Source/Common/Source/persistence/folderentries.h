#ifndef OVW_PERSISTENCE_FOLDERENTRIES_H
#define OVW_PERSISTENCE_FOLDERENTRIES_H

#include "Platform/file.h"
#include "ovwcmn/xcfilepath.h"

#include <string>
#include <vector>

namespace ovw::persistence {

/// Something that lies in a folder. A link tells of its target, but is none of its contents.
struct FolderEntry {
    XCFilePath path;
    platform::FileInformation information = {};
    std::string name = {}; ///< in its folder

    bool isLink() const { return information.isLink; }
    bool isFolder() const { return information.attributes & platform::attributeFolder; }
};

/// False, with the code in vxGetLastError(), when the path leads nowhere.
bool lookAt(const XCFilePath& path, platform::FileInformation& information);

/// All entries of a folder but "." and "..", in the order of the file system; what vanishes meanwhile is passed over.
/// Throws the system's code when the folder or an entry cannot be looked at, and 123 when the name of an entry has no
/// form in the code page: whoever takes the folder for whole would lose that entry.
std::vector<FolderEntry> folderEntries(const XCFilePath& folder);

} // namespace ovw::persistence

#endif // OVW_PERSISTENCE_FOLDERENTRIES_H
