#include "ovwcmn/xcstring.h"

#include "Platform/text.h"
#include "foundation/charactercase.h"
#include "ovwcmn/vxwutl.h"
#include "ovwcmn/xcexception.h"
#include "ovwcmn/xchandle.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>

using ovw::foundation::cnCodeNoMemory;
using ovw::foundation::cnCodeParameter;
using ovw::foundation::lowerAscii;
using ovw::foundation::upperAscii;
using ovw::platform::characterBytes;

namespace {

constexpr char cnLengthUnknown = '-';
constexpr std::int64_t cnBlockExtra = 2; // length byte and terminator
constexpr std::int64_t cnLongestText = 0x7FFFFFFF - cnBlockExtra;
constexpr int cnLongestPascal = 255;
constexpr std::uint32_t cnGlobalResource = 0xFFFF;

const char* orEmpty(const char* text) { return text ? text : ""; }

std::int64_t lengthOf(const char* text) { return static_cast<std::int64_t>(std::strlen(text)); }

// A block for a text of `length` bytes, all zero but the length byte.
char* newBlock(std::int64_t length) {
    if (length > cnLongestText)
        xcThrowError(cnCodeNoMemory);
    int status = 0;
    auto* const block = static_cast<char*>(vxAllocPtr(static_cast<std::uint32_t>(length + cnBlockExtra), 0, &status));
    if (!block)
        xcThrowError(cnCodeNoMemory);
    block[0] = cnLengthUnknown;
    return block;
}

// The number that the bytes of a character spell; letters of one byte are folded when the case does not matter.
std::uint32_t characterValue(const char* text, std::size_t bytes, bool noCase) {
    if (bytes == 1)
        return static_cast<std::uint8_t>(noCase ? lowerAscii(*text) : *text);
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < bytes; ++i)
        value = (value << 8) | static_cast<std::uint8_t>(text[i]);
    return value;
}

int compareCharacters(const char* a, const char* b, bool noCase) {
    for (;;) {
        const std::size_t bytesA = characterBytes(a);
        const std::size_t bytesB = characterBytes(b);
        if (bytesA == 0 || bytesB == 0)
            return static_cast<int>(bytesA != 0) - static_cast<int>(bytesB != 0);
        const std::uint32_t valueA = characterValue(a, bytesA, noCase);
        const std::uint32_t valueB = characterValue(b, bytesB, noCase);
        if (valueA != valueB)
            return valueA < valueB ? -1 : 1;
        a += bytesA;
        b += bytesB;
    }
}

// Whether all characters of `wanted` stand at `text`, which begins a character.
bool standsAt(const char* text, const char* wanted, bool noCase) {
    while (*wanted) {
        const std::size_t bytes = characterBytes(wanted);
        if (characterBytes(text) != bytes ||
            characterValue(text, bytes, noCase) != characterValue(wanted, bytes, noCase))
            return false;
        text += bytes;
        wanted += bytes;
    }
    return true;
}

// Calls `change` for every character of one byte, which it may change.
template <class Change>
void forSingleBytes(char* text, Change change) {
    while (const std::size_t bytes = characterBytes(text)) {
        if (bytes == 1)
            change(*text);
        text += bytes;
    }
}

bool isForbiddenInNames(char character) {
    return std::string_view("\\/:*?\"<>|.").find(character) != std::string_view::npos;
}

} // namespace

XCString::XCString() : m_block(newBlock(0)) {}

XCString::XCString(const char* text) : m_block(nullptr) {
    const std::int64_t length = lengthOf(orEmpty(text));
    m_block = newBlock(length);
    std::memcpy(m_block + 1, orEmpty(text), static_cast<std::size_t>(length));
}

XCString::XCString(const XCString& other) : XCString(other.GetStr()) {}

XCString::XCString(XCString&& other) : XCString() { *this = std::move(other); }

XCString::~XCString() {
    vxFreePtr(m_block);
    vxFreePtr(m_subBlock);
}

XCString& XCString::operator=(const char* text) {
    assign(orEmpty(text), lengthOf(orEmpty(text)));
    return *this;
}

XCString& XCString::operator=(const XCString& other) { return *this = other.GetStr(); }

XCString& XCString::operator=(XCString&& other) noexcept {
    std::swap(m_block, other.m_block);
    std::swap(m_subBlock, other.m_subBlock);
    return *this;
}

XCString& XCString::operator=(char character) {
    assign(&character, character ? 1 : 0);
    return *this;
}

XCString& XCString::operator+=(const char* text) {
    append(orEmpty(text), lengthOf(orEmpty(text)));
    return *this;
}

XCString& XCString::operator+=(const XCString& other) { return *this += other.GetStr(); }

XCString& XCString::operator+=(char character) {
    append(&character, character ? 1 : 0);
    return *this;
}

void XCString::allocStr(std::int64_t length) {
    length = std::max<std::int64_t>(length, 0);
    if (GetLength() == length)
        return;
    char* const block = newBlock(length);
    const std::uint32_t kept = std::min(vxGetPtrSize(m_block), static_cast<std::uint32_t>(length + cnBlockExtra));
    std::memcpy(block + 1, m_block + 1, kept - cnBlockExtra);
    vxFreePtr(m_block);
    m_block = block;
}

// `text` may lie in the block.
void XCString::assign(const char* text, std::int64_t length) {
    if (GetLength() == length) {
        std::memmove(m_block + 1, text, static_cast<std::size_t>(length));
        return;
    }
    char* const block = newBlock(length);
    std::memcpy(block + 1, text, static_cast<std::size_t>(length));
    vxFreePtr(m_block);
    m_block = block;
}

void XCString::append(const char* text, std::int64_t length) {
    if (length == 0)
        return;
    const std::int64_t old = GetLength();
    char* const block = newBlock(old + length);
    std::memcpy(block + 1, m_block + 1, static_cast<std::size_t>(old));
    std::memcpy(block + 1 + old, text, static_cast<std::size_t>(length));
    vxFreePtr(m_block);
    m_block = block;
}

void XCString::GetStr(char* out, int size) const {
    if (!out || size < 1)
        return;
    const auto length = std::min<std::size_t>(std::strlen(GetStr()) + 1, static_cast<std::size_t>(size));
    std::memcpy(out, GetStr(), length);
}

int XCString::GetLength() const { return static_cast<int>(std::strlen(GetStr())); }

void XCString::SetLength(int length) { allocStr(length); }

void XCString::Empty() { assign("", 0); }

char& XCString::At(int index) {
    if (index < 0 || index > GetLength())
        xcThrowError(cnCodeParameter);
    return m_block[1 + index];
}

char XCString::At(int index) const { return const_cast<XCString*>(this)->At(index); }

int XCString::IsDoubleByte(int index) const {
    return index >= 0 && index < GetLength() && vxIsDoubleByteCheckEx(GetStr(), index);
}

int XCString::Compare(const char* other) const { return compareCharacters(GetStr(), orEmpty(other), false); }

int XCString::CompareNoCase(const char* other) const { return compareCharacters(GetStr(), orEmpty(other), true); }

int XCString::Find(const char* text, int start, int noCase) const {
    if (IsEmpty())
        return -1;
    const int last = GetLength() - static_cast<int>(std::strlen(orEmpty(text)));
    for (int p = 0; p <= last; p += static_cast<int>(std::max<std::size_t>(characterBytes(GetStr() + p), 1)))
        if (p >= start && standsAt(GetStr() + p, orEmpty(text), noCase != 0))
            return p;
    return -1;
}

int XCString::ReverseFind(const char* text, int noCase) const {
    if (IsEmpty())
        return -1;
    int found = -1;
    const int last = GetLength() - static_cast<int>(std::strlen(orEmpty(text)));
    for (int p = 0; p <= last; p += static_cast<int>(std::max<std::size_t>(characterBytes(GetStr() + p), 1)))
        if (standsAt(GetStr() + p, orEmpty(text), noCase != 0))
            found = p;
    return found;
}

void XCString::MakeLower() {
    forSingleBytes(GetStr(), [](char& c) { c = lowerAscii(c); });
}

void XCString::MakeUpper() {
    forSingleBytes(GetStr(), [](char& c) { c = upperAscii(c); });
}

void XCString::Replace(char from, char to) {
    forSingleBytes(GetStr(), [from, to](char& c) {
        if (c == from)
            c = to;
    });
}

int XCString::Replace(const char* find, const char* with) {
    const std::int64_t findLength = lengthOf(orEmpty(find));
    const std::int64_t withLength = lengthOf(orEmpty(with));
    int count = 0;
    const auto forPieces = [&](auto onMatch, auto onCharacter) {
        for (const char* text = GetStr(); *text;) {
            const bool match = standsAt(text, find, false);
            const auto bytes = match ? static_cast<std::size_t>(findLength) : characterBytes(text);
            match ? onMatch() : onCharacter(text, bytes);
            text += bytes;
        }
    };
    if (findLength == 0)
        return 0;
    forPieces([&] { ++count; }, [](const char*, std::size_t) {});
    if (count == 0)
        return 0;
    char* const block = newBlock(GetLength() + count * (withLength - findLength));
    char* out = block + 1;
    forPieces([&] { out = std::copy_n(orEmpty(with), withLength, out); },
              [&](const char* text, std::size_t bytes) { out = std::copy_n(text, bytes, out); });
    vxFreePtr(m_block);
    m_block = block;
    return count;
}

char* XCString::Mid(int start, int count) {
    const int rest = GetLength() - start;
    const bool isInside = start >= 0 && count >= 0 && rest >= 0;
    const int length = isInside ? std::min(count, rest) : 0;
    char* const block = newBlock(length);
    if (length > 0)
        std::memcpy(block + 1, GetStr() + start, static_cast<std::size_t>(length));
    vxFreePtr(m_subBlock);
    m_subBlock = block;
    return m_subBlock + 1;
}

int XCString::ConvertFileName() {
    XCAutoPointer kept(newBlock(GetLength()));
    char* const begin = static_cast<char*>(kept.GetPointer()) + 1;
    char* end = begin;
    for (const char* text = GetStr(); *text;) {
        const std::size_t bytes = characterBytes(text);
        if (bytes != 1 || !isForbiddenInNames(*text))
            end = std::copy_n(text, bytes, end);
        text += bytes;
    }
    const char* first = begin;
    while (first < end && *first == ' ')
        ++first;
    *end = '\0';
    while (end > first && end[-1] == ' ' &&
           !ovw::platform::isTrailByte(first, static_cast<std::size_t>(end - 1 - first)))
        *--end = '\0';
    if (std::strcmp(first, GetStr()) == 0)
        return 0;
    *this = first;
    return 1;
}

char* XCString::GetPascal() {
    m_block[0] = static_cast<char>(std::min(GetLength(), cnLongestPascal));
    return m_block;
}

void XCString::GetPascal(char* out) {
    const char* const block = GetPascal();
    std::memcpy(out, block, static_cast<std::uint8_t>(block[0]) + std::size_t{1});
}

void XCString::SetPascal(const char* pascal) {
    if (!pascal)
        return Empty();
    const std::size_t length = static_cast<std::uint8_t>(pascal[0]);
    const void* const end = std::memchr(pascal + 1, '\0', length);
    assign(pascal + 1, end ? static_cast<const char*>(end) - (pascal + 1) : static_cast<std::int64_t>(length));
}

int XCString::ConvertAnsiToWide(XCWideString& out) const {
    out.Empty();
    const int length = GetLength();
    XCPointer units;
    units.Alloc(static_cast<std::uint32_t>(
        std::min<std::uint64_t>((std::uint64_t(length) + 1) * sizeof(char16_t), 0xFFFFFFFF)));
    auto* const text = static_cast<char16_t*>(units.GetPointer());
    if (!XCWideString::ConvertAnsiToWide(text, GetStr(), length + 1))
        return 0;
    out = text;
    return 1;
}

int XCString::LoadStringA(std::uint32_t id, std::uint32_t selector, HINSTANCE module) {
    constexpr int cnSize = 1024;
    if (selector == cnGlobalResource) {
        Empty();
        return xcGetStringResource()->LoadStringA(*this, static_cast<int>(std::min(id, cnGlobalResource + 1)));
    }
    char text[cnSize];
    const int length = vxLoadString(module, id, selector, text, cnSize);
    *this = text;
    return length > 0;
}
