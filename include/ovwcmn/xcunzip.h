#ifndef OVWCMN_XCUNZIP_H
#define OVWCMN_XCUNZIP_H

/// @file
/// Extraction of ZIP archives.

#include "ovwcmn/ovwdefs.h"

#include <cstdint>

class IXCAbort;
class IXCProgress;
class XCFilePath;

/// What an extraction may do, and whom it tells.
struct VXUNZIPOPTIONS {
    std::uint64_t maxBytes = 0;        ///< of all files together; 0: 1 GiB, or 20 times the archive when that is more
    std::uint32_t maxEntries = 100000; ///< files and folders
    IXCProgress* progress = nullptr;   ///< told the entries done; may be null
    IXCAbort* abort = nullptr;         ///< asked before each entry: throws 0x20010004; may be null
};

/// Extracts a ZIP archive (stored and deflated entries, zip64) into a folder that exists. 1, or 0 with the code in
/// vxGetLastError() when the file cannot be opened as an archive. Files replace those of the same name, but nothing is
/// written through a link that lies in the folder.
///
/// The directory is checked before anything is created. Throws 0x2001000B for names that leave the folder (absolute,
/// with a drive, a "\" or too many ".."), links, sizes that cannot be, damage, and archives beyond the limits; 50 for
/// encrypted entries, other methods and entries packed to 4 GiB or more; 206 for paths that are too long. After an
/// error every file and folder that the call created is gone again. Names are taken as they are stored; where they are
/// no text of the current code page, their foreign bytes become %XX.
OVWCMN_API int xcUnzip(const XCFilePath& zipFile, const XCFilePath& destFolder,
                       const VXUNZIPOPTIONS* options = nullptr);

/// Extracts a file with the extension "zip" into a new folder beside it, named after it ("name", "name1", ...), or in
/// `altParent` (may be null) when none can be created there. 1 with the folder in `outFolder`; else 0, and nothing is
/// left behind; then the code of what went wrong is in vxGetLastError().
OVWCMN_API int xcIsZipFileUnzip(const XCFilePath& file, XCFilePath& outFolder, const XCFilePath* altParent = nullptr,
                                const VXUNZIPOPTIONS* options = nullptr);

#endif // OVWCMN_XCUNZIP_H
