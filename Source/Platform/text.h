#ifndef OVW_PLATFORM_TEXT_H
#define OVW_PLATFORM_TEXT_H

/// @file
/// Code pages, multibyte text and the user's language. Nothing throws; code pages are named by their Windows numbers.
/// Thread-safe, but set the code page before other threads convert.

#include <cstddef>
#include <cstdint>

namespace ovw::platform {

inline constexpr std::uint32_t cnCodePageUtf8 = 65001;
inline constexpr std::uint32_t cnCodePageShiftJis = 932;

inline constexpr std::uint32_t cnLanguageEnglish = 1033;
inline constexpr std::uint32_t cnLanguageJapanese = 1041;

/// Makes `page` the process's code page (65001 at start). False, and nothing changed, when the system cannot convert
/// it.
bool setCodePage(std::uint32_t page);
std::uint32_t codePage();

/// Bytes of the character at `text` in the current code page, 0 at the terminator. A lead byte of a double-byte page
/// takes the byte behind it whatever it is, but stands alone before the terminator. In UTF-8 a byte that begins no
/// well-formed character stands alone. Never reads past the terminator.
std::size_t characterBytes(const char* text);
/// Whether no byte below 0x80 is part of a longer character: so it is in every code page but the double-byte ones.
bool asciiStandsAlone();
/// Whether the byte at `index` (at most the index of the terminator) is any byte of a character but its first.
bool isTrailByte(const char* text, std::size_t index);
/// The longest length of at most `limit` bytes at which `text` may be cut without cutting a character.
std::size_t wholeCharacters(const char* text, std::size_t limit);

enum class Conversion {
    done,
    noRoom,     ///< the output ends too early
    unmappable, ///< malformed input, or a character that the target lacks; best-fit characters count as lacking
};

struct Converted {
    Conversion result;
    std::size_t length; ///< units written; what lies in the output after a failure has no meaning
};

/// Converts `bytes` bytes of `page` to at most `room` UTF-16 units, without a terminator. `bytes` units always suffice.
Converted toUtf16(std::uint32_t page, const char* text, std::size_t bytes, char16_t* out, std::size_t room);
/// Converts `units` UTF-16 units to at most `room` bytes of `page`, without a terminator. 3 bytes a unit always
/// suffice. A surrogate without its partner is unmappable.
Converted fromUtf16(std::uint32_t page, const char16_t* text, std::size_t units, char* out, std::size_t room);

/// While it lives, the calling thread prints and reads numbers with a decimal point, whatever the process's locale.
class PlainNumbers {
public:
    PlainNumbers();
    ~PlainNumbers();
    PlainNumbers(const PlainNumbers&) = delete;
    PlainNumbers& operator=(const PlainNumbers&) = delete;

private:
    void* m_before;
};

/// Language of the user's locale: cnLanguageJapanese or, for every other, cnLanguageEnglish.
std::uint32_t userLanguage();

} // namespace ovw::platform

#endif // OVW_PLATFORM_TEXT_H
