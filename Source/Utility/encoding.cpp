#include "Utility/encoding.h"

#include "Platform/text.h"

#include <cstring>

namespace ovw::utility {

namespace {

constexpr std::size_t cnBytesPerUnit = 3;

std::optional<std::string> convert(std::uint32_t from, std::uint32_t to, std::string_view text) {
    std::u16string wide(text.size(), u'\0');
    const platform::Converted decoded = platform::toUtf16(from, text.data(), text.size(), wide.data(), wide.size());
    if (decoded.result != platform::Conversion::done)
        return std::nullopt;
    std::string result(decoded.length * cnBytesPerUnit, '\0');
    const platform::Converted encoded =
        platform::fromUtf16(to, wide.data(), decoded.length, result.data(), result.size());
    if (encoded.result != platform::Conversion::done)
        return std::nullopt;
    result.resize(encoded.length);
    return result;
}

} // namespace

std::optional<std::string> utf8ToCodePage(std::string_view text) {
    return convert(platform::cnCodePageUtf8, platform::codePage(), text);
}

std::string codePageToUtf8(std::string_view text) {
    return convert(platform::codePage(), platform::cnCodePageUtf8, text).value_or(std::string(text));
}

int copyCut(char* buffer, int size, const char* text) {
    const std::size_t length = platform::wholeCharacters(text, static_cast<std::size_t>(size) - 1);
    std::memcpy(buffer, text, length);
    buffer[length] = '\0';
    return static_cast<int>(length);
}

} // namespace ovw::utility
