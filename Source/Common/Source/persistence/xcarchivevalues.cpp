// How numbers, identifiers, colours and texts stand in an archive.

#include "ovwcmn/xcarchive.h"

#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcstring.h"
#include "ovwcmn/xctime.h"
#include "persistence/linebreaks.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <string_view>

using ovw::foundation::cnCodeFileFormat;
using ovw::foundation::cnCodeParameter;
using ovw::persistence::hasReturn;
using ovw::persistence::joinLineBreaks;
using ovw::persistence::splitLineBreaks;

static_assert(std::endian::native == std::endian::little, "values are reversed for big-endian streams only");

namespace {

constexpr std::uint32_t cnMaxValueBytes = 8;

// A number before a text of the kind whose length has no fixed width.
constexpr std::uint8_t cnWideLength = 255;      // 16 bits follow
constexpr std::uint16_t cnWidestLength = 65535; // 32 bits follow
constexpr std::uint16_t cnEmptyLength = 65534;

void swapUnits(char16_t* units, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        units[i] = static_cast<char16_t>(units[i] << 8 | units[i] >> 8);
}

/// Room for that many units and a terminator; zero.
template <class Unit>
Unit* allocateText(XCPointer& block, std::uint64_t units) {
    const std::uint64_t bytes = (units + 1) * sizeof(Unit);
    if (bytes > std::numeric_limits<std::uint32_t>::max())
        xcThrowError(ovw::foundation::cnCodeNoMemory);
    block.Alloc(static_cast<std::uint32_t>(bytes), 0);
    return static_cast<Unit*>(block.GetPointer());
}

/// The text as the stream holds it: itself, or a copy in `block` when there are line breaks to join. Throws when its
/// bytes cannot be counted.
template <class Unit>
std::basic_string_view<Unit> storedText(const Unit* text, XCPointer& block) {
    std::basic_string_view<Unit> stored(text);
    if (hasReturn(stored)) {
        Unit* const joined = allocateText<Unit>(block, stored.size());
        stored = {joined, joinLineBreaks(text, joined)};
    }
    if (stored.size() * sizeof(Unit) > std::numeric_limits<std::uint16_t>::max())
        xcThrowError(cnCodeParameter);
    return stored;
}

/// `block` holds a text of the stream; then the text in memory, to which it points.
template <class Unit>
const Unit* loadedText(XCPointer& block) {
    const auto* const stored = static_cast<const Unit*>(block.GetPointer());
    if (!hasReturn(std::basic_string_view<Unit>(stored)))
        return stored;
    XCPointer loaded;
    splitLineBreaks(stored, allocateText<Unit>(loaded, splitLineBreaks<Unit>(stored, nullptr)));
    block = std::move(loaded);
    return static_cast<const Unit*>(block.GetPointer());
}

} // namespace

XCArchive& XCArchive::writeValue(const void* value, std::uint32_t size) {
    if (!(m_mode & cnBigEndian) || size == 1) {
        Write(value, size);
        return *this;
    }
    std::uint8_t reversed[cnMaxValueBytes];
    const auto* const bytes = static_cast<const std::uint8_t*>(value);
    std::reverse_copy(bytes, bytes + size, reversed);
    Write(reversed, size);
    return *this;
}

XCArchive& XCArchive::readValue(void* value, std::uint32_t size) {
    const std::uint32_t before = m_position;
    auto* const bytes = static_cast<std::uint8_t*>(value);
    std::fill_n(bytes, size, std::uint8_t{0});
    Read(value, size);
    if (m_position - before != size)
        std::fill_n(bytes, size, std::uint8_t{0}); // half a number is none
    else if (m_mode & cnBigEndian)
        std::reverse(bytes, bytes + size);
    return *this;
}

XCArchive& XCArchive::operator<<(const _GUID& value) {
    *this << value.Data1 << value.Data2 << value.Data3;
    Write(value.Data4, sizeof value.Data4);
    return *this;
}

XCArchive& XCArchive::operator>>(_GUID& value) {
    value = {};
    *this >> value.Data1 >> value.Data2 >> value.Data3;
    Read(value.Data4, sizeof value.Data4);
    return *this;
}

XCArchive& XCArchive::operator<<(const tagVXRGBCOLOR16& color) {
    return *this << color.red << color.green << color.blue << color.alpha;
}

XCArchive& XCArchive::operator>>(tagVXRGBCOLOR16& color) {
    return *this >> color.red >> color.green >> color.blue >> color.alpha;
}

XCArchive& XCArchive::operator<<(const tagVXHSVCOLOR16& color) {
    return *this << color.hue << color.saturation << color.value << color.alpha;
}

XCArchive& XCArchive::operator>>(tagVXHSVCOLOR16& color) {
    return *this >> color.hue >> color.saturation >> color.value >> color.alpha;
}

// ---- Texts ----------------------------------------------------------------------------------------------------------

XCArchive& XCArchive::operator<<(const XCString& text) {
    WriteString(text.GetStr());
    return *this;
}

XCArchive& XCArchive::operator<<(const char* text) {
    WriteString(text ? text : "");
    return *this;
}

XCArchive& XCArchive::operator>>(XCString& text) {
    ReadString(text);
    return *this;
}

XCArchive& XCArchive::operator<<(const XCWideString& text) {
    WriteWideString(text);
    return *this;
}

XCArchive& XCArchive::operator>>(XCWideString& text) {
    ReadWideString(text);
    return *this;
}

void XCArchive::WriteString(const char* text) {
    XCPointer block;
    const std::string_view stored = storedText(text, block);
    *this << static_cast<std::uint16_t>(stored.size());
    Write(stored.data(), static_cast<std::uint32_t>(stored.size()));
}

void XCArchive::WriteWideString(const XCWideString& text) {
    XCPointer block, swapped;
    const std::u16string_view stored = storedText(text.GetStr(), block);
    const auto bytes = static_cast<std::uint16_t>(stored.size() * sizeof(char16_t));
    const void* units = stored.data();
    if (m_mode & cnBigEndian) {
        char16_t* const copy = allocateText<char16_t>(swapped, stored.size());
        std::copy(stored.begin(), stored.end(), copy);
        swapUnits(copy, stored.size());
        units = copy;
    }
    *this << bytes;
    Write(units, bytes);
}

void XCArchive::ReadString(XCString& text) {
    std::uint16_t bytes = 0;
    *this >> bytes;
    RequireRemaining(bytes);
    text.Empty();
    if (bytes == 0)
        return;
    XCPointer stored;
    Read(allocateText<char>(stored, bytes), bytes);
    text = loadedText<char>(stored);
}

void XCArchive::ReadWideString(XCWideString& text) {
    std::uint16_t bytes = 0;
    *this >> bytes;
    RequireRemaining(bytes);
    if (bytes % sizeof(char16_t) != 0)
        xcThrowError(cnCodeFileFormat);
    text.Empty();
    if (bytes == 0)
        return;
    XCPointer stored;
    char16_t* const units = allocateText<char16_t>(stored, bytes / sizeof(char16_t));
    Read(units, bytes);
    if (m_mode & cnBigEndian)
        swapUnits(units, bytes / sizeof(char16_t));
    text = loadedText<char16_t>(stored);
}

void XCArchive::ReadMKString(XCString& text) {
    const std::uint32_t bytes = ReadMKStringLength();
    RequireRemaining(bytes);
    text.Empty();
    if (bytes == 0)
        return;
    XCPointer stored;
    char* const read = allocateText<char>(stored, bytes);
    Read(read, bytes);
    text = read;
}

std::uint32_t XCArchive::ReadMKStringLength() {
    std::uint8_t length = 0;
    *this >> length;
    if (length != cnWideLength)
        return length;
    std::uint16_t wideLength = 0;
    *this >> wideLength;
    if (wideLength != cnWidestLength)
        return wideLength == cnEmptyLength ? 0 : wideLength;
    std::uint32_t widestLength = 0;
    *this >> widestLength;
    return widestLength;
}

XCArchive& operator<<(XCArchive& archive, const XCTime& time) { return archive << static_cast<std::int32_t>(time); }

XCArchive& operator>>(XCArchive& archive, XCTime& time) {
    std::int32_t seconds = 0;
    archive >> seconds;
    time = seconds;
    return archive;
}
