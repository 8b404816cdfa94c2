#include "foundation/wideformat.h"

#include "ovwcmn/xcstring.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string_view>

namespace ovw::foundation {

namespace {

enum class Size { normal, charSize, shortSize, longSize, longLongSize, maximum, size, difference };

// One conversion of a format, without its argument.
struct Conversion {
    std::string flags;
    int width = 0;
    int precision = -1; // -1: none given
    Size size = Size::normal;
    char kind = '\0';
};

constexpr struct {
    std::u16string_view text;
    Size size;
} cnSizes[] = {{u"hh", Size::charSize}, {u"h", Size::shortSize},      {u"ll", Size::longLongSize},
               {u"l", Size::longSize},  {u"I64", Size::longLongSize}, {u"j", Size::maximum},
               {u"z", Size::size},      {u"t", Size::difference}};

constexpr std::string_view cnFlags = "-+ #0";
constexpr std::string_view cnSigned = "di";
constexpr std::string_view cnUnsigned = "uoxX";
constexpr std::string_view cnReal = "fFeEgGaA";

bool isOneOf(std::string_view set, char16_t unit) {
    return unit < 0x80 && unit != 0 && set.find(static_cast<char>(unit)) != std::string_view::npos;
}

// The arguments of one call; a struct, so that functions may share their progress.
struct Arguments {
    std::va_list list;
};

// A number in the format, or * for the next argument; saturates.
int readNumber(std::u16string_view& format, Arguments& arguments) {
    constexpr int cnLargest = 1 << 24;
    if (format.starts_with(u'*')) {
        format.remove_prefix(1);
        return std::clamp(va_arg(arguments.list, int), -cnLargest, cnLargest);
    }
    int value = 0;
    for (; isOneOf("0123456789", format.empty() ? u'\0' : format[0]); format.remove_prefix(1))
        value = std::min(value * 10 + (format[0] - u'0'), cnLargest);
    return value;
}

// What follows a %. The kind stays 0 when the format ends early.
Conversion readConversion(std::u16string_view& format, Arguments& arguments) {
    Conversion conversion;
    for (; isOneOf(cnFlags, format.empty() ? u'\0' : format[0]); format.remove_prefix(1))
        conversion.flags += static_cast<char>(format[0]);
    conversion.width = readNumber(format, arguments);
    if (conversion.width < 0) {
        conversion.flags += '-';
        conversion.width = -conversion.width;
    }
    if (format.starts_with(u'.')) {
        format.remove_prefix(1);
        conversion.precision = std::max(readNumber(format, arguments), -1);
    }
    for (const auto& size : cnSizes) {
        if (format.starts_with(size.text)) {
            conversion.size = size.size;
            format.remove_prefix(size.text.size());
            break;
        }
    }
    if (!format.empty() && format[0] < 0x80) {
        conversion.kind = static_cast<char>(format[0]);
        format.remove_prefix(1);
    }
    return conversion;
}

std::intmax_t nextSigned(Size size, Arguments& arguments) {
    switch (size) {
    case Size::charSize: return static_cast<signed char>(va_arg(arguments.list, int));
    case Size::shortSize: return static_cast<short>(va_arg(arguments.list, int));
    case Size::longSize: return va_arg(arguments.list, long);
    case Size::longLongSize: return va_arg(arguments.list, long long);
    case Size::maximum: return va_arg(arguments.list, std::intmax_t);
    case Size::size:
    case Size::difference: return va_arg(arguments.list, std::ptrdiff_t);
    default: return va_arg(arguments.list, int);
    }
}

std::uintmax_t nextUnsigned(Size size, Arguments& arguments) {
    switch (size) {
    case Size::charSize: return static_cast<unsigned char>(va_arg(arguments.list, int));
    case Size::shortSize: return static_cast<unsigned short>(va_arg(arguments.list, int));
    case Size::longSize: return va_arg(arguments.list, unsigned long);
    case Size::longLongSize: return va_arg(arguments.list, unsigned long long);
    case Size::maximum: return va_arg(arguments.list, std::uintmax_t);
    case Size::size:
    case Size::difference: return va_arg(arguments.list, std::size_t);
    default: return va_arg(arguments.list, unsigned int);
    }
}

// A number through the C library, whose output is ASCII.
template <class Value>
std::u16string number(const Conversion& conversion, const char* size, Value value) {
    const std::string format = "%" + conversion.flags + "*.*" + size + conversion.kind;
    const int length = std::snprintf(nullptr, 0, format.c_str(), conversion.width, conversion.precision, value);
    std::string text(static_cast<std::size_t>(std::max(length, 0)) + 1, '\0');
    std::snprintf(text.data(), text.size(), format.c_str(), conversion.width, conversion.precision, value);
    text.pop_back();
    return {text.begin(), text.end()};
}

std::u16string padded(const Conversion& conversion, std::u16string text) {
    const auto width = static_cast<std::size_t>(conversion.width);
    if (text.size() < width) {
        const bool isLeft = conversion.flags.find('-') != std::string::npos;
        text.insert(isLeft ? text.size() : 0, width - text.size(), u' ');
    }
    return text;
}

// Reads no more of the text than the precision allows, so that it may lack a terminator.
std::u16string wideText(const char16_t* text, int precision) {
    std::u16string result;
    for (text = text ? text : u"(null)"; precision != 0 && *text; ++text, --precision)
        result += *text;
    return result;
}

std::u16string multibyteText(const char* text, int precision) {
    std::string given;
    for (text = text ? text : "(null)"; precision != 0 && *text; ++text, --precision)
        given += *text;
    return XCWideString(given.c_str()).GetStr();
}

bool isMultibyte(const Conversion& conversion) {
    return conversion.size == Size::shortSize ||
           (conversion.size == Size::normal && (conversion.kind == 'S' || conversion.kind == 'C'));
}

std::u16string formatText(const Conversion& conversion, Arguments& arguments) {
    if (isMultibyte(conversion))
        return padded(conversion, multibyteText(va_arg(arguments.list, const char*), conversion.precision));
    return padded(conversion, wideText(va_arg(arguments.list, const char16_t*), conversion.precision));
}

std::u16string formatUnit(const Conversion& conversion, Arguments& arguments) {
    const int value = va_arg(arguments.list, int);
    if (!isMultibyte(conversion))
        return padded(conversion, std::u16string(1, static_cast<char16_t>(value)));
    const char text[] = {static_cast<char>(value), '\0'};
    return padded(conversion, multibyteText(text, -1));
}

std::u16string formatOne(const Conversion& conversion, Arguments& arguments) {
    const auto kind = static_cast<char16_t>(conversion.kind);
    if (isOneOf(cnSigned, kind))
        return number(conversion, "j", nextSigned(conversion.size, arguments));
    if (isOneOf(cnUnsigned, kind))
        return number(conversion, "j", nextUnsigned(conversion.size, arguments));
    if (isOneOf(cnReal, kind))
        return number(conversion, "", va_arg(arguments.list, double));
    if (isOneOf("sS", kind))
        return formatText(conversion, arguments);
    if (isOneOf("cC", kind))
        return formatUnit(conversion, arguments);
    if (kind == u'p')
        return number(conversion, "", va_arg(arguments.list, void*));
    return kind ? std::u16string(1, kind) : std::u16string();
}

} // namespace

std::u16string formatWide(const char16_t* format, std::va_list list) {
    Arguments arguments;
    va_copy(arguments.list, list);
    std::u16string result;
    for (std::u16string_view rest = format; !rest.empty();) {
        const char16_t unit = rest[0];
        rest.remove_prefix(1);
        if (unit == u'%')
            result += formatOne(readConversion(rest, arguments), arguments);
        else
            result += unit;
    }
    va_end(arguments.list);
    return result;
}

} // namespace ovw::foundation
