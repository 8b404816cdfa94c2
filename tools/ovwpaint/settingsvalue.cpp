#include "settingsvalue.h"

#include <algorithm>

namespace ovwpaint {

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
    constexpr std::uint8_t cnDelete = 127;
    const auto isPrintable = [](std::uint8_t byte) { return byte >= ' ' && byte != cnDelete; };
    if (bytes.empty() || !std::all_of(bytes.begin(), bytes.end(), isPrintable))
        return formatBytes(bytes);
    return '"' + std::string(bytes.begin(), bytes.end()) + '"';
}

} // namespace ovwpaint
