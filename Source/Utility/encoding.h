#ifndef OVW_UTILITY_ENCODING_H
#define OVW_UTILITY_ENCODING_H

/// @file
/// Text between UTF-8 and the current code page.

#include <optional>
#include <string>
#include <string_view>

namespace ovw::utility {

/// Nothing when the current code page lacks a character.
std::optional<std::string> utf8ToCodePage(std::string_view text);
/// The text itself when it is malformed: it is shown to people, who may still make something of it.
std::string codePageToUtf8(std::string_view text);
/// Copies to `buffer` of `size` bytes (at least 1) with a terminator, cut at the end of a character; the bytes copied.
int copyCut(char* buffer, int size, const char* text);

} // namespace ovw::utility

#endif // OVW_UTILITY_ENCODING_H
