#include "ovwcmn/xcstring.h"

#include "Platform/text.h"
#include "foundation/charactercase.h"
#include "foundation/wideformat.h"
#include "ovwcmn/vxwutl.h"
#include "ovwcmn/xcexception.h"
#include "ovwcmn/xchandle.h"

#include <algorithm>
#include <cstdarg>
#include <cstring>
#include <new>
#include <string>
#include <utility>

namespace platform = ovw::platform;
using ovw::foundation::cnCodeNoMemory;
using ovw::foundation::cnCodeParameter;
using ovw::foundation::lowerAscii;
using ovw::foundation::upperAscii;

namespace {

using Traits = std::char_traits<char16_t>;

constexpr std::int64_t cnLongestText = 0x7FFFFFFE;

const char16_t* orEmpty(const char16_t* text) { return text ? text : u""; }

std::int64_t lengthOf(const char16_t* text) { return static_cast<std::int64_t>(Traits::length(text)); }

char16_t folded(char16_t unit, bool noCase) { return noCase ? lowerAscii(unit) : unit; }

int compareUnits(const char16_t* a, const char16_t* b, bool noCase) {
    while (*a && folded(*a, noCase) == folded(*b, noCase)) {
        ++a;
        ++b;
    }
    return static_cast<int>(folded(*a, noCase)) - static_cast<int>(folded(*b, noCase));
}

bool standsAt(const char16_t* text, const char16_t* wanted, bool noCase) {
    while (*wanted && folded(*text, noCase) == folded(*wanted, noCase)) {
        ++text;
        ++wanted;
    }
    return *wanted == u'\0';
}

// Zeroed bytes that hold the multibyte form of any text of `units` units, with its terminator.
void* newBytes(std::int64_t units) {
    constexpr std::int64_t cnBytesPerUnit = 3;
    int status = cnCodeNoMemory;
    const std::int64_t size = units * cnBytesPerUnit + 1;
    void* const bytes = size > 0x7FFFFFFF ? nullptr : vxAllocPtr(static_cast<std::uint32_t>(size), 0, &status);
    if (!bytes)
        xcThrowError(status);
    return bytes;
}

// The UTF-8 form of one unit by itself; returns the place behind it.
char* writeUtf8(unsigned int unit, char* out) {
    if (unit < 0x80) {
        *out++ = static_cast<char>(unit);
        return out;
    }
    if (unit < 0x800) {
        *out++ = static_cast<char>(0xC0 | unit >> 6);
    } else {
        *out++ = static_cast<char>(0xE0 | unit >> 12);
        *out++ = static_cast<char>(0x80 | ((unit >> 6) & 0x3F));
    }
    *out++ = static_cast<char>(0x80 | (unit & 0x3F));
    return out;
}

template <class Change>
void forUnits(char16_t* text, Change change) {
    for (; text && *text; ++text)
        *text = change(*text);
}

} // namespace

XCWideString::XCWideString(const char16_t* text) { assign(orEmpty(text), lengthOf(orEmpty(text))); }

XCWideString::XCWideString(const char* text) : XCWideString() { *this = text; }

XCWideString::XCWideString(const XCWideString& other) : XCWideString(other.GetStr()) {}

XCWideString::XCWideString(XCWideString&& other) noexcept : m_text(std::exchange(other.m_text, nullptr)) {}

XCWideString::XCWideString(const XCString& text) : XCWideString(text.GetStr()) {}

XCWideString::~XCWideString() { vxFreePtr(m_text); }

XCWideString& XCWideString::operator=(const XCWideString& other) { return *this = other.GetStr(); }

XCWideString& XCWideString::operator=(XCWideString&& other) noexcept {
    std::swap(m_text, other.m_text);
    return *this;
}

XCWideString& XCWideString::operator=(const char16_t* text) {
    assign(orEmpty(text), lengthOf(orEmpty(text)));
    return *this;
}

XCWideString& XCWideString::operator=(char16_t unit) {
    assign(&unit, unit ? 1 : 0);
    return *this;
}

XCWideString& XCWideString::operator=(const char* text) { return *this = XCString(text); }

XCWideString& XCWideString::operator=(const XCString& text) {
    text.ConvertAnsiToWide(*this);
    return *this;
}

XCWideString& XCWideString::operator=(char character) {
    const char text[] = {character, '\0'};
    return *this = text;
}

XCWideString& XCWideString::operator+=(const XCWideString& other) { return *this += other.GetStr(); }

XCWideString& XCWideString::operator+=(const char16_t* text) {
    append(orEmpty(text), lengthOf(orEmpty(text)));
    return *this;
}

XCWideString& XCWideString::operator+=(char16_t unit) {
    append(&unit, unit ? 1 : 0);
    return *this;
}

XCWideString& XCWideString::operator+=(const char* text) { return *this += XCWideString(text); }

XCWideString& XCWideString::operator+=(const XCString& text) { return *this += XCWideString(text); }

XCWideString& XCWideString::operator+=(char character) {
    const char text[] = {character, '\0'};
    return *this += text;
}

XCWideString XCWideString::operator+(const XCWideString& other) const { return *this + other.GetStr(); }

XCWideString XCWideString::operator+(const char16_t* text) const {
    XCWideString result = *this;
    result += text;
    return result;
}

// The block for `length` units: what fits of the text, then zeros.
void XCWideString::resize(std::int64_t length) {
    if (length <= 0)
        return Empty();
    if (length > cnLongestText)
        xcThrowError(cnCodeNoMemory);
    const auto bytes = static_cast<std::uint32_t>((length + 1) * static_cast<std::int64_t>(sizeof(char16_t)));
    int status = 0;
    void* const block = vxReAllocPtr(m_text, bytes, 0, &status);
    if (!block)
        xcThrowError(status);
    m_text = static_cast<char16_t*>(block);
    m_text[length] = u'\0';
}

// `text` may lie in the block; so it is copied into a block of its own.
void XCWideString::assign(const char16_t* text, std::int64_t length) {
    XCWideString copy;
    copy.resize(length);
    if (length > 0)
        Traits::copy(copy.m_text, text, static_cast<std::size_t>(length));
    std::swap(m_text, copy.m_text);
}

void XCWideString::append(const char16_t* text, std::int64_t length) {
    if (length == 0)
        return;
    const std::int64_t old = GetLength();
    // Text of this very string moves with the block.
    const bool isOwn = m_text && text >= m_text && text <= m_text + old;
    const std::ptrdiff_t offset = isOwn ? text - m_text : 0;
    resize(old + length);
    Traits::copy(m_text + old, isOwn ? m_text + offset : text, static_cast<std::size_t>(length));
}

int XCWideString::GetLength() const { return static_cast<int>(lengthOf(GetStr())); }

void XCWideString::Empty() {
    vxFreePtr(m_text);
    m_text = nullptr;
}

void XCWideString::SetAt(int index, char16_t unit) {
    if (index < 0 || index >= GetLength())
        xcThrowError(cnCodeParameter);
    if (unit == u'\0')
        return resize(index);
    m_text[index] = unit;
}

char16_t XCWideString::At(int index) const {
    if (index < 0 || index > GetLength())
        xcThrowError(cnCodeParameter);
    return GetStr()[index];
}

int XCWideString::Compare(const char16_t* other) const { return compareUnits(GetStr(), orEmpty(other), false); }

int XCWideString::CompareNoCase(const char16_t* other) const { return compareUnits(GetStr(), orEmpty(other), true); }

int XCWideString::Find(const char16_t* text, int start, int noCase) const {
    if (IsEmpty())
        return -1;
    const std::int64_t last = GetLength() - lengthOf(orEmpty(text));
    for (int p = std::max(start, 0); p <= last; ++p)
        if (standsAt(m_text + p, orEmpty(text), noCase != 0))
            return p;
    return -1;
}

int XCWideString::ReverseFind(const char16_t* text, int noCase) const {
    if (IsEmpty())
        return -1;
    for (std::int64_t p = GetLength() - lengthOf(orEmpty(text)); p >= 0; --p)
        if (standsAt(m_text + p, orEmpty(text), noCase != 0))
            return static_cast<int>(p);
    return -1;
}

void XCWideString::MakeLower() { forUnits(m_text, lowerAscii<char16_t>); }

void XCWideString::MakeUpper() { forUnits(m_text, upperAscii<char16_t>); }

void XCWideString::Replace(char16_t from, char16_t to) {
    forUnits(m_text, [from, to](char16_t unit) { return unit == from ? to : unit; });
    resize(GetLength());
}

XCWideString XCWideString::Mid(int start, int count) const {
    XCWideString result;
    const int rest = GetLength() - start;
    if (start >= 0 && count > 0 && rest > 0)
        result.assign(GetStr() + start, std::min(count, rest));
    return result;
}

XCWideString XCWideString::Mid(int start) const { return Mid(start, GetLength()); }

void XCWideString::Format(const char16_t* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::u16string text;
    bool isFormatted = true;
    try {
        text = ovw::foundation::formatWide(orEmpty(format), arguments);
    } catch (const std::bad_alloc&) {
        isFormatted = false;
    }
    va_end(arguments);
    if (!isFormatted)
        xcThrowError(cnCodeNoMemory);
    *this = text.c_str();
}

int XCWideString::LoadStringA(std::uint32_t id, std::uint32_t selector, HINSTANCE module) {
    XCString text;
    const int isLoaded = text.LoadStringA(id, selector, module);
    return text.ConvertAnsiToWide(*this) && isLoaded;
}

void XCWideString::SwapWideCharEndian(char16_t* text) {
    forUnits(text, [](char16_t unit) { return static_cast<char16_t>((unit << 8) | (unit >> 8)); });
}

int XCWideString::ConvertWideToAnsi(XCString& out) const {
    out.Empty();
    const XCAutoPointer bytes(newBytes(GetLength()));
    auto* const text = static_cast<char*>(bytes.GetPointer());
    const int isConverted = ConvertWideToAnsi(text, GetStr(), static_cast<int>(vxGetPtrSize(text)));
    out = text;
    return isConverted;
}

void XCWideString::ConvertToUTF8(XCString& out) const {
    const XCAutoPointer bytes(newBytes(GetLength()));
    auto* end = static_cast<char*>(bytes.GetPointer());
    for (const char16_t* text = GetStr(); *text; ++text)
        end = writeUtf8(*text, end);
    out += static_cast<const char*>(bytes.GetPointer());
}

int XCWideString::ConvertAnsiToWide(char16_t* out, const char* in, int outLen) {
    if (!out || outLen < 1)
        return 0;
    out[0] = u'\0';
    if (!in || !*in)
        return 1;
    const platform::Converted converted =
        platform::toUtf16(platform::codePage(), in, std::strlen(in), out, static_cast<std::size_t>(outLen) - 1);
    const bool isDone = converted.result == platform::Conversion::done;
    out[isDone ? converted.length : 0] = u'\0';
    return isDone;
}

int XCWideString::ConvertWideToAnsi(char* out, const char16_t* in, int outLen) {
    if (!out || outLen < 1)
        return 0;
    out[0] = '\0';
    if (!in || !*in)
        return 1;
    const platform::Converted converted =
        platform::fromUtf16(platform::codePage(), in, Traits::length(in), out, static_cast<std::size_t>(outLen) - 1);
    const bool isDone = converted.result == platform::Conversion::done;
    out[isDone ? converted.length : 0] = '\0';
    return isDone;
}
