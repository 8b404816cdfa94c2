#ifndef OVWCMN_XCFINDFILE_H
#define OVWCMN_XCFINDFILE_H

/// @file
/// The entries of a folder.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/wintypes.h"
#include "ovwcmn/xcfilepath.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// The state of one folder search.
struct tagFindInfo {
    char folder[260]; ///< the folder searched
    char name[256];   ///< of the current entry
    /// @{ 1 or 0, of the current entry.
    int isFolder;
    int isReadOnly;
    int isHidden;
    /// @}
    std::uint32_t handle;  ///< 0xFFFFFFFF when no search is open
    WIN32_FIND_DATAA data; ///< of the current entry
};

/// Walks the entries of one folder, "." and ".." included, in the order of the file system. Lists the names once, in
/// First: entries that appear later are not seen; those that vanish are passed over, as are those whose names have no
/// form in the code page. Copies walk on independently. Answers 0 or 1; throws only where it says so. One thread at a
/// time.
class OVWCMN_API XCFindFile {
public:
    XCFindFile();
    XCFindFile(const XCFindFile& other) = default;
    XCFindFile& operator=(const XCFindFile& other) = default;
    virtual ~XCFindFile() = default;

    /// 1 with the first entry; 0, with the code in vxGetLastError(), when the folder cannot be searched.
    int First(const XCFilePath& folder);
    /// 1 with the next entry; 0 at the end.
    int Next();
    void Close(); ///< nothing when no search is open

    /// At most 256 bytes with the terminator.
    void GetName(char* out) const;
    /// @{ Of the current entry.
    void GetName(XCString& out) const { out = m_info.name; }
    int IsFolder() const { return m_info.isFolder; }
    int IsHidden() const { return m_info.isHidden; }
    int IsReadOnly() const { return m_info.isReadOnly; }
    /// @}
    /// 1 for the entries "." and "..".
    int IsParentFolder() const;
    /// Folder and name; valid until the next call.
    const XCFilePath& GetFilePath();
    const XCFilePath& GetParentFolderPath(); ///< The folder searched.
    void ResetForMacOnly() {}                ///< nothing

    /// Clears the record and names the folder in it. A path of 260 bytes or more throws 206.
    static void SetupFileInfo(tagFindInfo& info, const XCFilePath& folder);
    /// Fills the record's find data for folder and name; throws the system's code.
    static void GetFileInfo(tagFindInfo& info);
    /// Name and flags of the record from its find data.
    static void SetFindInfos(tagFindInfo& info);

private:
    tagFindInfo m_info;
    XCFilePath m_path;
    XCFilePath m_parentPath;
    std::shared_ptr<const std::vector<std::string>> m_pNames;
    std::size_t m_nNext = 0;
};

#endif // OVWCMN_XCFINDFILE_H
