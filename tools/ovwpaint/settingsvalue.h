#ifndef OVWPAINT_SETTINGSVALUE_H
#define OVWPAINT_SETTINGSVALUE_H

/// @file
/// Values of settings as text.

#include "ovwcmn/wintypes.h"
#include "ovwcmn/xccolor.h"
#include "ovwcmn/xcfilepath.h"
#include "ovwcmn/xcstring.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace ovwpaint {

/// A number of the type and nothing else.
template <class Number>
bool parseValue(std::string_view text, Number& number) requires std::is_arithmetic_v<Number> {
    const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && rest == text.data() + text.size();
}

template <class Number>
std::string formatValue(Number number) requires std::is_arithmetic_v<Number> {
    std::array<char, 64> digits;
    return {digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr};
}

/// What consists of numbers of one kind, which stand in the text with commas between.
template <class Value>
struct NumbersOf;
template <>
struct NumbersOf<tagPOINT> : std::array<std::int32_t, 2> {};
template <>
struct NumbersOf<tagSIZE> : std::array<std::int32_t, 2> {};
template <>
struct NumbersOf<tagRECT> : std::array<std::int32_t, 4> {};
template <>
struct NumbersOf<tagVXRGBCOLOR16> : std::array<std::uint16_t, 4> {};

template <class Value>
concept NumberGroup = requires {
    sizeof(NumbersOf<Value>);
};

template <NumberGroup Value>
bool parseValue(std::string_view text, Value& value) {
    NumbersOf<Value> numbers;
    for (auto& number : numbers) {
        const bool isLast = &number == &numbers.back();
        const std::size_t comma = text.find(',');
        if ((comma == std::string_view::npos) != isLast || !parseValue(text.substr(0, comma), number))
            return false;
        text.remove_prefix(isLast ? text.size() : comma + 1);
    }
    static_assert(sizeof numbers == sizeof value);
    std::memcpy(&value, numbers.data(), sizeof value);
    return true;
}

template <NumberGroup Value>
std::string formatValue(const Value& value) {
    NumbersOf<Value> numbers;
    std::memcpy(numbers.data(), &value, sizeof value);
    std::string text;
    for (const auto number : numbers)
        text += (text.empty() ? "" : ",") + formatValue(number);
    return text;
}

inline bool parseValue(const std::string& text, XCString& value) {
    value = text.c_str();
    return true;
}
inline std::string formatValue(const XCString& value) { return value.GetStr(); }

inline bool parseValue(const std::string& text, XCFilePath& value) {
    value = xcPathFromPosix(text.c_str());
    return true;
}
inline std::string formatValue(const XCFilePath& value) { return xcPathToPosix(value).GetStr(); }

/// Bytes as two hexadecimal digits each.
std::optional<std::vector<std::uint8_t>> parseBytes(std::string_view text);
std::string formatBytes(const std::vector<std::uint8_t>& bytes);
/// Printable bytes as they are, in quotation marks, others as formatBytes has them.
std::string describeBytes(const std::vector<std::uint8_t>& bytes);

} // namespace ovwpaint

#endif // OVWPAINT_SETTINGSVALUE_H
