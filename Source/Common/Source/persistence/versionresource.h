#ifndef OVW_PERSISTENCE_VERSIONRESOURCE_H
#define OVW_PERSISTENCE_VERSIONRESOURCE_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// @file
/// The version resource of Windows programs and libraries (the "Portable Executable" format).

class XCFile;

namespace ovw::persistence {

/// The bytes of the file's version resource; nothing when it has none or is no such program. Throws the system's code.
std::optional<std::string> versionResource(XCFile& file);

/// The text of a key in the resource's string table for its first language and code page; nothing when it has none.
/// Whatever the bytes are, nothing outside them is read.
std::optional<std::u16string> versionText(std::string_view resource, std::u16string_view key);

} // namespace ovw::persistence

#endif // OVW_PERSISTENCE_VERSIONRESOURCE_H
