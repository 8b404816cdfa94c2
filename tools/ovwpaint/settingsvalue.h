#ifndef OVWPAINT_SETTINGSVALUE_H
#define OVWPAINT_SETTINGSVALUE_H

/// @file
/// Values of settings as text.

#include "ovwcmn/wintypes.h"
#include "ovwcmn/xccolor.h"
#include "ovwcmn/xcfilepath.h"
#include "ovwcmn/xcgeometry.h"
#include "ovwcmn/xclength.h"
#include "ovwcmn/xcnumber.h"
#include "ovwcmn/xcstring.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
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
template <class Number, std::size_t Count>
struct Numbers {
    using Array = std::array<Number, Count>;
};
template <>
struct NumbersOf<tagPOINT> : Numbers<std::int32_t, 2> {};
template <>
struct NumbersOf<tagSIZE> : Numbers<std::int32_t, 2> {};
template <>
struct NumbersOf<tagRECT> : Numbers<std::int32_t, 4> {};
template <>
struct NumbersOf<tagPOINTF> : Numbers<float, 2> {};
template <>
struct NumbersOf<tagSIZEF> : Numbers<float, 2> {};
template <>
struct NumbersOf<tagRECTF> : Numbers<float, 4> {};
template <>
struct NumbersOf<tagPOINTD> : Numbers<double, 2> {};
template <>
struct NumbersOf<tagSIZED> : Numbers<double, 2> {};
template <>
struct NumbersOf<tagRECTD> : Numbers<double, 4> {};
template <>
struct NumbersOf<tagVXRGBCOLOR16> : Numbers<std::uint16_t, 4> {};

template <class Value>
concept NumberGroup = requires {
    typename NumbersOf<Value>::Array;
};

/// Just these numbers.
template <class First, class... More>
bool parseList(std::string_view text, First& first, More&... more) {
    const std::size_t comma = text.find(',');
    if ((comma == std::string_view::npos) != (sizeof...(more) == 0) || !parseValue(text.substr(0, comma), first))
        return false;
    if constexpr (sizeof...(more) > 0)
        return parseList(text.substr(comma + 1), more...);
    return true;
}

template <NumberGroup Value>
bool parseValue(std::string_view text, Value& value) {
    typename NumbersOf<Value>::Array numbers;
    if (!std::apply([&](auto&... number) { return parseList(text, number...); }, numbers))
        return false;
    static_assert(sizeof numbers == sizeof value);
    std::memcpy(&value, numbers.data(), sizeof value);
    return true;
}

template <NumberGroup Value>
std::string formatValue(const Value& value) {
    typename NumbersOf<Value>::Array numbers;
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

/// Value, unit code and resolution.
inline bool parseValue(std::string_view text, XCLength& value) {
    _VXLENGTH parts;
    const bool isLength = parseList(text, parts.value, parts.unit, parts.resolution);
    if (isLength)
        value = parts;
    return isLength;
}
inline std::string formatValue(const XCLength& value) {
    return formatValue(value.GetData()) + ',' + formatValue(value.GetUnit()) + ',' + formatValue(value.GetResolution());
}

/// A sheet number with its suffix.
inline bool parseValue(const std::string& text, _VXNUMBER& value) {
    return XCNumber::GetNumberFromString(value, text.c_str());
}
inline std::string formatValue(const _VXNUMBER& value) { return formatValue(value.number) + value.suffix; }

/// Bytes as two hexadecimal digits each.
std::optional<std::vector<std::uint8_t>> parseBytes(std::string_view text);
std::string formatBytes(const std::vector<std::uint8_t>& bytes);
/// Printable bytes as they are, in quotation marks, others as formatBytes has them.
std::string describeBytes(const std::vector<std::uint8_t>& bytes);

} // namespace ovwpaint

#endif // OVWPAINT_SETTINGSVALUE_H
