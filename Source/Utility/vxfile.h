#ifndef OVW_UTILITY_VXFILE_H
#define OVW_UTILITY_VXFILE_H

/// @file
/// Files and folders of the utility library: handles with a position, whole-file operations, the parts of a path.
/// Nothing throws but std::bad_alloc: an operation answers 1, or 0 with a Windows error code in *error (may be null)
/// and in vxGetLastError(). Any thread may call; one handle belongs to one thread at a time.

#include "Platform/file.h"

#include <cstdint>
#include <string>

/// No open file.
inline constexpr std::uint32_t cnNoFileHandle = 0xFFFFFFFF;

/// Bytes of the buffers that paths are copied through, the terminator included.
inline constexpr std::size_t cnPathBufferSize = 520;

/// Opens or creates a file; access, share, creation and attributes are those of wintypes.h. A file that is created
/// temporary and delete-on-close is this process's private file (see platform::OpenRequest). The four-character codes
/// are not kept. cnNoFileHandle on failure.
std::uint32_t vxOpenFile(const char* path, std::uint32_t creator, std::uint32_t type, std::uint32_t access,
                         std::uint32_t share, std::uint32_t creation, std::uint32_t attributes, int* error);
int vxCloseFile(std::uint32_t file);

/// From the position on, which moves by *done. A short read at the end of the file is a success.
int vxReadFile(std::uint32_t file, void* buffer, std::uint32_t size, std::uint32_t* done, int* error);
int vxWriteFile(std::uint32_t file, const void* buffer, std::uint32_t size, std::uint32_t* done, int* error);

/// Moves the position; `method` is FILE_BEGIN, FILE_CURRENT or FILE_END. Beyond the end is allowed; before the
/// beginning is error 131 and changes nothing. *position (may be null) becomes the new position.
int vxSetFilePosition(std::uint32_t file, std::int64_t offset, std::uint32_t method, std::int64_t* position,
                      int* error);
/// Cuts or extends the file to the position.
int vxSetEndOfFile(std::uint32_t file);
/// Returns when all that was written is on the disk.
int vxFlushFile(std::uint32_t file);
int vxGetFileInformation(std::uint32_t file, ovw::platform::FileInformation& out);
int vxSetFileTimes(std::uint32_t file, const ovw::platform::FileTimes& times);

int vxDeleteFile(const char* path, int* error);
/// Creates one folder; missing parents are not created. *created (may be null) tells whether it is new: a name that
/// exists already is error 183.
int vxCreateFolder(const char* path, int* created, int* error);
/// Renames a file or folder. An existing target is error 183.
int vxChangeFileName(const char* from, const char* to, int* error);
/// Copies contents, attributes and the time of the last write. An existing target is error 80 with failIfExists. A copy
/// that fails leaves no half-written target.
int vxCopyFile(const char* from, const char* to, int failIfExists, int* error);

/// The target of a Windows shortcut file (.lnk).
int vxwGetShortcutLink(const char* path, std::string& target);

// The parts of a path, separated by "\" outside double-byte characters, and also by "/" in a path of the system's own
// form, which begins with one. No file is looked at.

/// Index of the last separator before `end`; npos when there is none.
std::size_t vxFindLastDelimiter(const std::string& path, std::size_t end = std::string::npos);
/// Whether the path is a root: "X:\", "\", "/", "\\server" or "\\server\share", the latter two also with a "\" behind.
bool vxIsRootPath(const std::string& path);
/// The path without its trailing run of "\".
std::string vxWithoutBackDelimiter(std::string path);
/// The text behind the last "\" or ":".
std::string vxGetFileNamefromFullPath(const std::string& path);
/// The path without its last component; a root keeps its "\" (C:\ is the folder of C:\a) and is its own folder; "" for
/// a name alone.
std::string vxGetFolderfromFullPath(const std::string& path);
/// The last component up to its last ".".
std::string vxGetFileNameDelExt(const std::string& path);
/// The last component behind its last ".", "" when it has none.
std::string vxCopyExtension(const std::string& path);

#endif // OVW_UTILITY_VXFILE_H
