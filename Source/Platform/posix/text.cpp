#include "Platform/text.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <span>
#include <type_traits>

#include <iconv.h>
#include <locale.h>

namespace ovw::platform {

namespace {

struct ByteRange {
    std::uint8_t first;
    std::uint8_t last;

    bool operator==(const ByteRange&) const = default;
};

// What the system calls a code page, and the bytes that open its double-byte characters.
struct CodePage {
    std::uint32_t number;
    const char* name;
    std::array<ByteRange, 2> leads;
};

constexpr ByteRange cnNoRange{1, 0};
constexpr std::array<ByteRange, 2> cnSingleByte{cnNoRange, cnNoRange};
constexpr std::array<ByteRange, 2> cnUpperHalf{ByteRange{0x81, 0xFE}, cnNoRange};

constexpr CodePage cnCodePages[] = {
    {cnCodePageUtf8, "UTF-8", cnSingleByte},
    {cnCodePageShiftJis, "CP932", {ByteRange{0x81, 0x9F}, ByteRange{0xE0, 0xFC}}},
    {936, "CP936", cnUpperHalf},
    {949, "CP949", cnUpperHalf},
    {950, "CP950", cnUpperHalf},
    {874, "CP874", cnSingleByte},
    {1250, "CP1250", cnSingleByte},
    {1251, "CP1251", cnSingleByte},
    {1252, "CP1252", cnSingleByte},
    {1253, "CP1253", cnSingleByte},
    {1254, "CP1254", cnSingleByte},
    {1255, "CP1255", cnSingleByte},
    {1256, "CP1256", cnSingleByte},
    {1257, "CP1257", cnSingleByte},
    {1258, "CP1258", cnSingleByte},
};

constexpr const char* cnUtf16Name = std::endian::native == std::endian::little ? "UTF-16LE" : "UTF-16BE";

std::atomic<const CodePage*> s_current = &cnCodePages[0];

const CodePage* findPage(std::uint32_t number) {
    const auto* const found = std::ranges::find(cnCodePages, number, &CodePage::number);
    return found == std::end(cnCodePages) ? nullptr : found;
}

bool opensDoubleByte(const CodePage& page, char byte) {
    const auto value = static_cast<std::uint8_t>(byte);
    return std::ranges::any_of(page.leads, [value](ByteRange r) { return value >= r.first && value <= r.last; });
}

// A converter of the system. One is kept for each thread and direction, since opening one is slow.
class Converter {
public:
    Converter() = default;
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;
    ~Converter() { close(); }

    bool open(const char* to, const char* from) {
        if (m_to == to && m_from == from)
            return true;
        close();
        m_converter = ::iconv_open(to, from);
        if (m_converter == cnClosed)
            return false;
        m_to = to;
        m_from = from;
        return true;
    }

    // All of `in`, starting from the initial state.
    Converted convert(std::span<const char> in, std::span<char> out) {
        ::iconv(m_converter, nullptr, nullptr, nullptr, nullptr);
        char* source = const_cast<char*>(in.data());
        std::size_t sourceLeft = in.size();
        char* target = out.data();
        std::size_t targetLeft = out.size();
        const bool converted = ::iconv(m_converter, &source, &sourceLeft, &target, &targetLeft) != cnFailed &&
                               ::iconv(m_converter, nullptr, nullptr, &target, &targetLeft) != cnFailed;
        const Conversion failure = errno == E2BIG ? Conversion::noRoom : Conversion::unmappable;
        return {converted ? Conversion::done : failure, out.size() - targetLeft};
    }

private:
    void close() {
        if (m_converter != cnClosed)
            ::iconv_close(m_converter);
        m_converter = cnClosed;
        m_to = m_from = nullptr;
    }

    static inline const iconv_t cnClosed = reinterpret_cast<iconv_t>(-1);
    static constexpr auto cnFailed = static_cast<std::size_t>(-1);

    iconv_t m_converter = cnClosed;
    const char* m_to = nullptr; // names in cnCodePages, compared by address
    const char* m_from = nullptr;
};

thread_local Converter s_toUtf16;
thread_local Converter s_fromUtf16;

Converted decodeWithSystem(const CodePage& page, std::span<const char> text, std::span<char16_t> out) {
    if (!s_toUtf16.open(cnUtf16Name, page.name))
        return {Conversion::unmappable, 0};
    Converted bytes = s_toUtf16.convert(text, {reinterpret_cast<char*>(out.data()), out.size_bytes()});
    bytes.length /= sizeof(char16_t);
    return bytes;
}

bool isHighSurrogate(char16_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool isLowSurrogate(char16_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

// Units of the character at the beginning of `text`, 0 for half a pair.
std::size_t characterUnits(std::span<const char16_t> text) {
    if (isHighSurrogate(text[0]))
        return text.size() > 1 && isLowSurrogate(text[1]) ? 2 : 0;
    return isLowSurrogate(text[0]) ? 0 : 1;
}

// One character of at most 4 bytes. Converting it back tells a best fit, which the system would accept silently.
Converted encodeCharacter(const CodePage& page, std::span<const char16_t> character, std::span<char> out) {
    const Converted encoded =
        s_fromUtf16.convert({reinterpret_cast<const char*>(character.data()), character.size_bytes()}, out);
    if (encoded.result != Conversion::done)
        return encoded;
    char16_t back[4];
    const Converted decoded = decodeWithSystem(page, out.first(encoded.length), back);
    const bool same =
        decoded.result == Conversion::done && std::ranges::equal(character, std::span(back, decoded.length));
    return {same ? Conversion::done : Conversion::unmappable, encoded.length};
}

Converted encodeWithSystem(const CodePage& page, std::span<const char16_t> text, std::span<char> out) {
    if (!s_fromUtf16.open(page.name, cnUtf16Name))
        return {Conversion::unmappable, 0};
    std::size_t length = 0;
    while (!text.empty()) {
        const std::size_t units = characterUnits(text);
        if (units == 0)
            return {Conversion::unmappable, length};
        const Converted one = encodeCharacter(page, text.first(units), out.subspan(length));
        if (one.result != Conversion::done)
            return {one.result, length};
        length += one.length;
        text = text.subspan(units);
    }
    return {Conversion::done, length};
}

bool isContinuation(char byte) { return (static_cast<std::uint8_t>(byte) & 0xC0) == 0x80; }

// Bytes of the well-formed UTF-8 character at `text`, 0 when there is none. A byte is read only after the ones before
// it were found to be part of a character, so that a terminator ends the reading.
std::size_t utf8Bytes(const char* text, std::size_t available) {
    const auto lead = static_cast<std::uint8_t>(text[0]);
    if (lead < 0x80)
        return 1;
    const std::size_t bytes = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || bytes > available || !isContinuation(text[1]))
        return 0;
    const auto second = static_cast<std::uint8_t>(text[1]);
    // No overlong forms, no surrogates, nothing above U+10FFFF.
    if ((lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) || (lead == 0xF0 && second < 0x90) ||
        (lead == 0xF4 && second > 0x8F))
        return 0;
    for (std::size_t i = 2; i < bytes; ++i)
        if (!isContinuation(text[i]))
            return 0;
    return bytes;
}

char32_t utf8Value(const char* text, std::size_t bytes) {
    if (bytes == 1)
        return static_cast<std::uint8_t>(text[0]);
    char32_t value = static_cast<std::uint8_t>(text[0]) & (0x7Fu >> bytes);
    for (std::size_t i = 1; i < bytes; ++i)
        value = (value << 6) | (static_cast<std::uint8_t>(text[i]) & 0x3Fu);
    return value;
}

Converted decodeUtf8(std::span<const char> text, std::span<char16_t> out) {
    std::size_t length = 0;
    while (!text.empty()) {
        const std::size_t bytes = utf8Bytes(text.data(), text.size());
        if (bytes == 0)
            return {Conversion::unmappable, length};
        const char32_t value = utf8Value(text.data(), bytes);
        const std::size_t units = value > 0xFFFF ? 2 : 1;
        if (length + units > out.size())
            return {Conversion::noRoom, length};
        if (units == 1) {
            out[length] = static_cast<char16_t>(value);
        } else {
            out[length] = static_cast<char16_t>(0xD7C0 + (value >> 10));
            out[length + 1] = static_cast<char16_t>(0xDC00 | (value & 0x3FF));
        }
        length += units;
        text = text.subspan(bytes);
    }
    return {Conversion::done, length};
}

// Writes 1 to 4 bytes and returns their number.
std::size_t writeUtf8(char32_t value, char (&out)[4]) {
    const std::size_t bytes = value < 0x80 ? 1 : value < 0x800 ? 2 : value < 0x10000 ? 3 : 4;
    if (bytes == 1) {
        out[0] = static_cast<char>(value);
        return 1;
    }
    for (std::size_t i = bytes - 1; i > 0; --i, value >>= 6)
        out[i] = static_cast<char>(0x80 | (value & 0x3F));
    out[0] = static_cast<char>((0xF00u >> bytes) | value);
    return bytes;
}

Converted encodeUtf8(std::span<const char16_t> text, std::span<char> out) {
    std::size_t length = 0;
    while (!text.empty()) {
        const std::size_t units = characterUnits(text);
        if (units == 0)
            return {Conversion::unmappable, length};
        const char32_t value = units == 1 ? text[0] : (char32_t{text[0]} << 10) + text[1] - 0x35FDC00;
        char bytes[4];
        const std::size_t count = writeUtf8(value, bytes);
        if (length + count > out.size())
            return {Conversion::noRoom, length};
        std::copy_n(bytes, count, out.data() + length);
        length += count;
        text = text.subspan(units);
    }
    return {Conversion::done, length};
}

// Every code page holds ASCII as it stands: copies the ASCII beginning of `text`, as far as it fits.
template <class From, class To>
std::size_t copyAscii(std::span<const From> text, std::span<To> out) {
    const std::size_t limit = std::min(text.size(), out.size());
    std::size_t count = 0;
    for (; count < limit && static_cast<std::make_unsigned_t<From>>(text[count]) < 0x80; ++count)
        out[count] = static_cast<To>(text[count]);
    return count;
}

} // namespace

bool setCodePage(std::uint32_t page) {
    const CodePage* const found = findPage(page);
    if (!found)
        return false;
    Converter probe;
    if (!probe.open(cnUtf16Name, found->name))
        return false;
    s_current = found;
    return true;
}

std::uint32_t codePage() { return s_current.load(std::memory_order_relaxed)->number; }

std::size_t characterBytes(const char* text) {
    if (static_cast<std::uint8_t>(*text) < 0x80)
        return *text ? 1 : 0; // begins no longer character in any code page
    const CodePage& page = *s_current.load(std::memory_order_relaxed);
    if (page.number == cnCodePageUtf8)
        return std::max<std::size_t>(utf8Bytes(text, 4), 1);
    return opensDoubleByte(page, text[0]) && text[1] ? 2 : 1;
}

bool asciiStandsAlone() { return s_current.load(std::memory_order_relaxed)->leads == cnSingleByte; }

bool isTrailByte(const char* text, std::size_t index) {
    const CodePage& page = *s_current.load(std::memory_order_relaxed);
    if (!text[index])
        return false;
    if (page.number == cnCodePageUtf8) {
        for (std::size_t back = 1; back <= 3 && back <= index && isContinuation(text[index - back + 1]); ++back)
            if (!isContinuation(text[index - back]))
                return utf8Bytes(text + index - back, 4) > back;
        return false;
    }
    // A byte that opens nothing ends a character; of the lead bytes that follow it, every second one opens a character.
    std::size_t start = index;
    while (start > 0 && opensDoubleByte(page, text[start - 1]))
        --start;
    return (index - start) % 2 != 0;
}

std::size_t wholeCharacters(const char* text, std::size_t limit) {
    const std::size_t length = ::strnlen(text, limit + 1);
    if (length <= limit)
        return length;
    while (limit > 0 && isTrailByte(text, limit))
        --limit;
    return limit;
}

Converted toUtf16(std::uint32_t page, const char* text, std::size_t bytes, char16_t* out, std::size_t room) {
    const CodePage* const found = findPage(page);
    if (!found)
        return {Conversion::unmappable, 0};
    const std::span<const char> source(text, bytes);
    const std::span<char16_t> target(out, room);
    const std::size_t ascii = copyAscii(source, target);
    if (ascii == bytes)
        return {Conversion::done, ascii};
    Converted rest = page == cnCodePageUtf8 ? decodeUtf8(source.subspan(ascii), target.subspan(ascii))
                                            : decodeWithSystem(*found, source.subspan(ascii), target.subspan(ascii));
    rest.length += ascii;
    return rest;
}

Converted fromUtf16(std::uint32_t page, const char16_t* text, std::size_t units, char* out, std::size_t room) {
    const CodePage* const found = findPage(page);
    if (!found)
        return {Conversion::unmappable, 0};
    const std::span<const char16_t> source(text, units);
    const std::span<char> target(out, room);
    const std::size_t ascii = copyAscii(source, target);
    if (ascii == units)
        return {Conversion::done, ascii};
    Converted rest = page == cnCodePageUtf8 ? encodeUtf8(source.subspan(ascii), target.subspan(ascii))
                                            : encodeWithSystem(*found, source.subspan(ascii), target.subspan(ascii));
    rest.length += ascii;
    return rest;
}

PlainNumbers::PlainNumbers() {
    static const locale_t s_plain = ::newlocale(LC_ALL_MASK, "C", nullptr);
    m_before = s_plain ? ::uselocale(s_plain) : nullptr;
}

PlainNumbers::~PlainNumbers() {
    if (m_before)
        ::uselocale(static_cast<locale_t>(m_before));
}

std::uint32_t userLanguage() {
    // The first of these that is set and not empty names the language of messages.
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* const value = std::getenv(name);
        if (value && *value)
            return std::strncmp(value, "ja", 2) == 0 && !std::isalpha(static_cast<unsigned char>(value[2]))
                       ? cnLanguageJapanese
                       : cnLanguageEnglish;
    }
    return cnLanguageEnglish;
}

} // namespace ovw::platform
