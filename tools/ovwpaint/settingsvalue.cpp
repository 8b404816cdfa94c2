#include "settingsvalue.h"

#include <algorithm>

namespace ovwpaint {

namespace {

/// How many bytes the character of UTF-8 has that begins with this one; 0 for none that is printable.
std::size_t characterBytes(std::uint8_t first) {
    constexpr std::uint8_t cnDelete = 0x7F, cnTwo = 0xC2, cnThree = 0xE0, cnFour = 0xF0, cnBeyond = 0xF5;
    if (first < cnTwo)
        return first >= ' ' && first < cnDelete;
    return first < cnThree ? 2 : first < cnFour ? 3 : first < cnBeyond ? 4 : 0;
}

bool isText(const std::vector<std::uint8_t>& bytes) {
    for (std::size_t i = 0; i < bytes.size();) {
        const std::size_t count = characterBytes(bytes[i]);
        if (count == 0 || count > bytes.size() - i)
            return false;
        const auto next = bytes.begin() + static_cast<std::ptrdiff_t>(i);
        if (!std::all_of(next + 1, next + static_cast<std::ptrdiff_t>(count),
                         [](std::uint8_t byte) { return (byte & 0xC0) == 0x80; }))
            return false;
        i += count;
    }
    return true;
}

} // namespace

std::optional<std::vector<std::uint8_t>> parseBytes(std::string_view text) {
    constexpr int cnHexadecimal = 16;
    if (text.size() % 2 != 0)
        return std::nullopt;
    std::vector<std::uint8_t> bytes;
    for (std::size_t i = 0; i < text.size(); i += 2) {
        std::uint8_t byte = 0;
        const char* const end = text.data() + i + 2;
        const auto [rest, error] = std::from_chars(end - 2, end, byte, cnHexadecimal);
        if (error != std::errc() || rest != end)
            return std::nullopt;
        bytes.push_back(byte);
    }
    return bytes;
}

std::string formatBytes(const std::vector<std::uint8_t>& bytes) {
    constexpr char cnDigits[] = "0123456789abcdef";
    std::string text;
    for (const std::uint8_t byte : bytes) {
        text += cnDigits[byte >> 4];
        text += cnDigits[byte & 15];
    }
    return text;
}

std::string describeBytes(const std::vector<std::uint8_t>& bytes) {
    if (bytes.empty() || !isText(bytes))
        return formatBytes(bytes);
    return '"' + std::string(bytes.begin(), bytes.end()) + '"';
}

} // namespace ovwpaint
