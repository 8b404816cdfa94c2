#ifndef OVWCMN_XCFILECOMPRESSION_H
#define OVWCMN_XCFILECOMPRESSION_H

/// @file
/// Packed folders.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/xcarchivefile.h"
#include "ovwcmn/xcarray.h"
#include "ovwcmn/xcfilepath.h"
#include "ovwcmn/xczlib.h"

#include <array>
#include <cstdint>
#include <vector>

class IXCAbort;
class IXCProgress;

namespace ovw::persistence {
struct FolderEntry;
}

/// Packs files and folders into one file and unpacks it again. A derived class may set the application's progress bar
/// and abort question, which are asked and told once a file. Files must be smaller than 2 GiB, a packed file than 4 GiB
/// (0x20010008). File errors throw the system's code. One thread at a time.
///
/// Names, contents, times of the last write, and the attributes read-only and hidden come back; files of no bytes do
/// not. A link to a file is packed as the file; links to folders, and what is neither file nor folder, are passed over.
class OVWCMN_API XCFileCompression {
public:
    XCFileCompression();
    XCFileCompression(const XCFileCompression&) = delete;
    XCFileCompression& operator=(const XCFileCompression&) = delete;
    virtual ~XCFileCompression();

    /// The most bytes that all files of one unpacking may have together; 0: 1 GiB, or 20 times the packed file when
    /// that is more.
    void SetUnpackLimit(std::uint64_t bytes) { m_unpackLimit = bytes; }

    /// Packs the items that exist; the packed file itself is left out. It grows beside `packedFile` and takes its name
    /// when it is whole: after an error `packedFile` is as it was. 0 when stopped: then it is cut off. Names that could
    /// not be unpacked throw 123, folders nested too deep for that 206.
    int Compress(const XCFilePath& packedFile, const XCTArray<XCFilePath*>& items);
    /// Unpacks into a folder that exists. Files replace those of the same name; a folder whose name is taken gets the
    /// next free number behind it. 0 when stopped: what was unpacked stays. Throws 0 for a file of another kind. A file
    /// whose structure is damaged, or that goes beyond the limit, throws 0x2001000B or 0x20010008 before anything is
    /// created; damaged contents throw 8 and leave the files before them.
    int Decompress(const XCFilePath& destFolder, const XCFilePath& packedFile);

protected:
    /// @name Records, at the archive's position
    /// 0 when stopped.
    /// @{
    int CompressFile(const XCFilePath& file);           ///< the file with its name and attributes
    int CompressFolder(const XCFilePath& folder);       ///< the folder with all that is in it
    int DecompressFile(const XCFilePath& destFolder);   ///< the next record, a file
    int DecompressFolder(const XCFilePath& destFolder); ///< the next record, a folder
    /// Files below a folder that would be packed; the folders themselves do not count.
    int GetFileCount(const XCFilePath& folder);
    /// @}

    XCArchiveFile m_archive;           ///< the packed file
    IXCProgress* m_progress = nullptr; ///< told the files done; may be null
    IXCAbort* m_abort = nullptr;       ///< asked before each file; may be null

private:
    int compressEntries(const std::vector<ovw::persistence::FolderEntry>& entries);
    int decompressEntries(const XCFilePath& destFolder, std::uint32_t count);
    std::vector<ovw::persistence::FolderEntry> itemsOf(const XCTArray<XCFilePath*>& paths) const;
    std::vector<ovw::persistence::FolderEntry> entriesOf(const XCFilePath& folder) const;
    bool isOwnFile(const ovw::persistence::FolderEntry& entry) const;
    int countFiles(const XCFilePath& folder, int nesting) const;
    bool stepOrStop();

    std::uint64_t m_unpackLimit = 0;
    XCZLib m_zlib; // keeps its working memory from file to file
    // By device and node: neither the file that is packed nor the one that grows goes into itself.
    std::vector<std::array<std::uint64_t, 2>> m_ownFiles;
};

#endif // OVWCMN_XCFILECOMPRESSION_H
