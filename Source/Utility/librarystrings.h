#ifndef OVW_UTILITY_LIBRARYSTRINGS_H
#define OVW_UTILITY_LIBRARYSTRINGS_H

/// @file
/// The library's own messages.

#include <cstdint>

namespace ovw::utility {

/// One message in both languages, as UTF-8. The English text is ASCII, so that every code page can hold it.
struct LibraryString {
    std::uint16_t id;
    const char* english;
    const char* japanese;
};

/// Null when there is no such message.
const LibraryString* findLibraryString(std::uint32_t id);

} // namespace ovw::utility

#endif // OVW_UTILITY_LIBRARYSTRINGS_H
