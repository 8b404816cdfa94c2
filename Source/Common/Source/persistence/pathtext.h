#ifndef OVW_PERSISTENCE_PATHTEXT_H
#define OVW_PERSISTENCE_PATHTEXT_H

#include "ovwcmn/xcstring.h"

#include <cstddef>
#include <string>
#include <vector>

namespace ovw::persistence {

/// Writes a text and its terminator to a buffer of cnPathBufferSize bytes; throws 0x20010008 when it is longer.
void copyToBuffer(char* out, const std::string& text);

/// The text; throws 0x20010008 when it does not fit a buffer of `bufferSize` bytes.
const std::string& requireFits(const std::string& text, std::size_t bufferSize);

/// Where two texts stop having the same characters from `start` on, without regard to the case of ASCII letters.
std::size_t commonLength(const std::string& a, const std::string& b, std::size_t start);

/// Without regard to the case of ASCII letters.
bool equalNoCase(const std::string& a, const std::string& b);

/// The texts between the "\" that are separators.
std::vector<std::string> splitComponents(const std::string& path);

inline std::string text(const XCString& string) { return string.GetStr(); }

} // namespace ovw::persistence

#endif // OVW_PERSISTENCE_PATHTEXT_H
