#ifndef OVW_PLATFORM_PATH_H
#define OVW_PLATFORM_PATH_H

/// @file
/// The two forms of a path: the library's own, with "\" between components and in the current code page, and the
/// system's. Everything above this folder keeps the library's form; the services here translate at the last moment.

#include <string>
#include <string_view>

namespace ovw::platform {

/// The system's form: X:\a\b becomes the drive's root + /a/b, "\" becomes "/" outside double-byte characters. A text
/// that begins with "/" is in the system's form already (but for a "\" that was appended to it).
std::string toPosixPath(std::string_view path);

/// The library's form of an existing or future file of the system, made absolute first: /a/b becomes C:\a\b, or a path
/// on the drive whose root lies deepest above it. A name that holds "\" has no such form: the text comes back as it is.
std::string toLibraryPath(std::string_view posixPath);

/// A name of one component, as the system keeps it, in the library's form; "" when it has none.
std::string toLibraryName(std::string_view posixName);

/// The path of an entry of a folder, with one separator between: the folder's own "\" may be half of a character.
std::string childPath(const std::string& folder, const std::string& name);

/// Gives a drive (a letter) another root than "/"; "" takes it back. False when `drive` is no letter. Set at start-up.
bool setDriveRoot(char drive, std::string_view posixRoot);

} // namespace ovw::platform

#endif // OVW_PLATFORM_PATH_H
