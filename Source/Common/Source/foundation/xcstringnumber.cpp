#include "ovwcmn/xcstring.h"

#include "ovwcmn/vxwutl.h"
#include "ovwcmn/xcexception.h"
#include "ovwcmn/xchandle.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <limits>
#include <utility>

using ovw::foundation::cnCodeNoMemory;

namespace {

// The format with the conversions "%I64d" and kin of other compilers spelled as C does, "%lld". Never longer.
XCString portableFormat(const char* format) {
    constexpr const char* cnWideMark = "I64";
    XCString result = format;
    const char* in = result.GetStr();
    char* out = result.GetStr();
    while (*in) {
        const bool isConversion = *in == '%';
        *out++ = *in++;
        if (!isConversion)
            continue;
        const std::size_t flags = std::strspn(in, "-+ #0123456789.*");
        out = std::copy_n(in, flags, out);
        in += flags;
        if (std::strncmp(in, cnWideMark, std::strlen(cnWideMark)) == 0) {
            out = std::fill_n(out, 2, 'l');
            in += std::strlen(cnWideMark);
        } else if (*in == '%') {
            *out++ = *in++;
        }
    }
    *out = '\0';
    return result;
}

// printf into a string of just the size.
XCString formatted(const char* format, std::va_list arguments) {
    const XCString portable = portableFormat(format);
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, portable, arguments);
    XCAutoPointer text;
    if (length > 0) {
        int status = 0;
        text = vxAllocPtr(static_cast<std::uint32_t>(length) + 1, 0, &status);
    }
    auto* const buffer = static_cast<char*>(text.GetPointer());
    if (buffer)
        std::vsnprintf(buffer, static_cast<std::size_t>(length) + 1, portable, again);
    va_end(again);
    if (length > 0 && !buffer)
        xcThrowError(cnCodeNoMemory);
    return buffer;
}

XCString formattedNumber(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    XCString result = formatted(format, arguments);
    va_end(arguments);
    return result;
}

} // namespace

void XCString::SetNumber(std::int32_t value, const char* format) { *this = formattedNumber(format, value); }

void XCString::SetNumber(std::uint32_t value, const char* format) { *this = formattedNumber(format, value); }

void XCString::SetNumber(float value, const char* format) { *this = formattedNumber(format, double{value}); }

void XCString::SetNumber(double value, const char* format) { *this = formattedNumber(format, value); }

void XCString::SetNumber64(std::int64_t value, const char* format) { *this = formattedNumber(format, value); }

void XCString::AddNumber(std::int32_t value, const char* format) { *this += formattedNumber(format, value); }

void XCString::AddNumber(std::uint32_t value, const char* format) { *this += formattedNumber(format, value); }

void XCString::AddNumber(float value, const char* format) { *this += formattedNumber(format, double{value}); }

void XCString::AddNumber(double value, const char* format) { *this += formattedNumber(format, value); }

void XCString::AddNumber64(std::int64_t value, const char* format) { *this += formattedNumber(format, value); }

void XCString::Format(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    XCString result = formatted(format, arguments);
    va_end(arguments);
    *this = std::move(result);
}

void XCString::ByteToString(std::int64_t bytes) {
    constexpr struct {
        double unit;
        const char* format;
    } cnUnits[] = {
        {1024.0, "%4.1f KB"}, {1048576.0, "%4.1f MB"}, {1073741824.0, "%4.1f GB"}, {1099511627776.0, "%4.1f TB"}};
    const auto count = static_cast<double>(bytes);
    if (count < cnUnits[0].unit)
        return SetNumber64(bytes, "%lld byte");
    const auto* unit = std::end(cnUnits) - 1;
    while (count < unit->unit)
        --unit;
    SetNumber(count / unit->unit, unit->format);
}

int XCString::IsNumber() const {
    for (const char* text = GetStr(); *text; ++text) {
        const bool isLeadingMinus = *text == '-' && text == GetStr();
        if (!isLeadingMinus && *text != '.' && (*text < '0' || *text > '9'))
            return 0;
    }
    return 1;
}

std::int32_t XCString::GetINT32() const {
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(GetINT64(), Limits::min(), Limits::max()));
}

std::int64_t XCString::GetINT64() const { return std::strtoll(GetStr(), nullptr, 10); }

double XCString::GetDOUBLE() const { return std::strtod(GetStr(), nullptr); }

float XCString::GetFLOAT() const { return static_cast<float>(GetDOUBLE()); }
