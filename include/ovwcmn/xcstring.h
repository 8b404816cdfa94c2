#ifndef OVWCMN_XCSTRING_H
#define OVWCMN_XCSTRING_H

/// @file
/// Text in the current code page and in UTF-16.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/wintypes.h"

#include <concepts>
#include <cstdint>

class XCWideString;

/// Multibyte text in the current code page (vxSetCodePage), one allocation sized exactly to the text. Positions and
/// lengths count bytes; no scan mistakes a later byte of a character for a character of its own. "Without regard to
/// case" folds the ASCII letters only. Null texts are empty ones. Lack of memory throws 8. One thread at a time.
class OVWCMN_API XCString {
public:
    XCString();
    /// @{ A copy has a text of its own; moving leaves the other one empty.
    XCString(const char* text);
    XCString(const XCString& other);
    XCString(XCString&& other);
    /// @}
    virtual ~XCString();

    /// @{ The text, or one character.
    XCString& operator=(const char* text);
    XCString& operator=(const XCString& other);
    XCString& operator=(XCString&& other) noexcept;
    XCString& operator=(char character);
    /// @}
    /// @{ Appends the text or character.
    XCString& operator+=(const char* text);
    XCString& operator+=(const XCString& other);
    XCString& operator+=(char character);
    /// @}

    /// @{ The text with its terminator.
    char* GetStr() { return m_block + 1; }
    const char* GetStr() const { return m_block + 1; }
    operator char*() { return m_block + 1; }
    operator const char*() const { return m_block + 1; }
    /// @}
    /// Copies at most `size` bytes with the terminator: a text of `size` bytes or more is cut and not terminated.
    void GetStr(char* out, int size) const;
    /// @{ Bytes of the text up to its terminator.
    int GetLength() const;
    int GetCount() const { return GetLength(); }
    /// @}
    int IsEmpty() const { return m_block[1] == '\0'; } ///< 1 for ""
    /// Gives the block room for `length` bytes of text, cutting a longer text; GetLength stays the text's length.
    void SetLength(int length);
    void Empty(); ///< becomes ""
    /// @{ Unchecked. Takes every integer, so that the conversion to a pointer does not compete.
    template <std::integral Index>
    char& operator[](Index index) {
        return m_block[1 + index];
    }
    template <std::integral Index>
    char operator[](Index index) const {
        return m_block[1 + index];
    }
    /// @}
    /// @{ At(length) is the terminator; throws 0x20010008 for other indices outside the text.
    char& At(int index);
    char At(int index) const;
    /// @}
    /// 1 when the byte is any byte of a character but its first; 0 outside the text.
    int IsDoubleByte(int index) const;

    /// @{ By characters, a character being the number that its bytes spell: negative, 0 or positive.
    int Compare(const char* other) const;
    int Compare(const XCString& other) const { return Compare(other.GetStr()); }
    /// @}
    /// @{ The same without regard to case.
    int CompareNoCase(const char* other) const;
    int CompareNoCase(const XCString& other) const { return CompareNoCase(other.GetStr()); }
    /// @}
    /// @{ As Compare.
    bool operator==(const char* other) const { return Compare(other) == 0; }
    bool operator==(const XCString& other) const { return Compare(other) == 0; }
    bool operator!=(const char* other) const { return Compare(other) != 0; }
    bool operator!=(const XCString& other) const { return Compare(other) != 0; }
    bool operator<(const char* other) const { return Compare(other) < 0; }
    bool operator<(const XCString& other) const { return Compare(other) < 0; }
    bool operator<=(const char* other) const { return Compare(other) <= 0; }
    bool operator<=(const XCString& other) const { return Compare(other) <= 0; }
    bool operator>(const char* other) const { return Compare(other) > 0; }
    bool operator>(const XCString& other) const { return Compare(other) > 0; }
    bool operator>=(const char* other) const { return Compare(other) >= 0; }
    bool operator>=(const XCString& other) const { return Compare(other) >= 0; }
    // Texts that may be changed: without these the built-in comparison of pointers would compete.
    template <std::same_as<char> Char>
    bool operator==(Char* other) const {
        return Compare(other) == 0;
    }
    template <std::same_as<char> Char>
    bool operator!=(Char* other) const {
        return Compare(other) != 0;
    }
    template <std::same_as<char> Char>
    bool operator<(Char* other) const {
        return Compare(other) < 0;
    }
    template <std::same_as<char> Char>
    bool operator<=(Char* other) const {
        return Compare(other) <= 0;
    }
    template <std::same_as<char> Char>
    bool operator>(Char* other) const {
        return Compare(other) > 0;
    }
    template <std::same_as<char> Char>
    bool operator>=(Char* other) const {
        return Compare(other) >= 0;
    }
    /// @}

    /// First position from `start` at which `text` stands, -1 when there is none. Never inside a character.
    int Find(const char* text, int start = 0, int noCase = 0) const;
    /// Last position at which `text` stands, -1 when there is none.
    int ReverseFind(const char* text, int noCase = 0) const;
    void MakeLower(); ///< ASCII letters only
    void MakeUpper(); ///< ASCII letters only
    /// Replaces single-byte characters.
    void Replace(char from, char to);
    /// Number of replacements; what is put in is not searched again, an empty `find` gives 0.
    int Replace(const char* find, const char* with);
    /// At most `count` bytes from `start`; valid until the next Mid or the string's end. Outside the text: "".
    char* Mid(int start, int count);

    /// 1 for an empty text, and for digits and "." with a "-" in the first place only.
    int IsNumber() const;
    /// @{ The number at the beginning of the text, 0 when there is none; integers out of range become the nearest one.
    std::int32_t GetINT32() const;
    std::int64_t GetINT64() const;
    double GetDOUBLE() const;
    float GetFLOAT() const;
    /// @}

    /// @{ The value in a printf format; %I64d and kin are understood.
    void SetNumber(std::int32_t value, const char* format = "%d");
    void SetNumber(std::uint32_t value, const char* format = "%u");
    void SetNumber(float value, const char* format = "%f");
    void SetNumber(double value, const char* format = "%f");
    void SetNumber64(std::int64_t value, const char* format = "%lld");
    /// @}
    /// @{ The formatted value is appended.
    void AddNumber(std::int32_t value, const char* format = "%d");
    void AddNumber(std::uint32_t value, const char* format = "%u");
    void AddNumber(float value, const char* format = "%f");
    void AddNumber(double value, const char* format = "%f");
    void AddNumber64(std::int64_t value, const char* format = "%lld");
    /// @}
    void Format(const char* format, ...); ///< printf into this string.
    /// A number of bytes for people: "%d byte", then "%4.1f KB" to "%4.1f TB".
    void ByteToString(std::int64_t bytes);

    /// Removes what a file name without extension must not hold; 1 when the text changed. It may become empty.
    int ConvertFileName();

    /// The block with min(length, 255) in front of the text; valid until the text changes.
    char* GetPascal();
    /// Copies the length byte and that many bytes of text.
    void GetPascal(char* out);
    void SetPascal(const char* pascal); ///< from a length byte and that many bytes

    /// 1 on success; `out` is empty when a character cannot be converted.
    int ConvertAnsiToWide(XCWideString& out) const;
    /// Selector 0xFFFF: from the global string resource; else from a module's string table (null: the executable's).
    /// 1 when there is such a text; else the string becomes empty.
    int LoadStringA(std::uint32_t id, std::uint32_t selector = 0xFFFF, HINSTANCE module = nullptr);

private:
    void allocStr(std::int64_t length);
    void assign(const char* text, std::int64_t length);
    void append(const char* text, std::int64_t length);

    char* m_block =
        nullptr; // length byte, text, terminator: always the text's length + 2 bytes, or what SetLength asked
    char* m_subBlock = nullptr; // the last result of Mid, laid out alike
};

/// UTF-16 text; positions and lengths count code units. Multibyte text is converted from and to the current code page;
/// what cannot be converted becomes an empty text. Null texts are empty ones. Lack of memory throws 8. One thread at a
/// time.
class OVWCMN_API XCWideString {
public:
    XCWideString() = default;
    /// @{ A copy has a text of its own; moving leaves the other one empty.
    XCWideString(const char16_t* text);
    XCWideString(const char* text);
    XCWideString(const XCWideString& other);
    XCWideString(XCWideString&& other) noexcept;
    XCWideString(const XCString& text);
    /// @}
    virtual ~XCWideString();

    /// @{ The text, or one unit or character.
    XCWideString& operator=(const XCWideString& other);
    XCWideString& operator=(XCWideString&& other) noexcept;
    XCWideString& operator=(const char16_t* text);
    XCWideString& operator=(char16_t unit);
    XCWideString& operator=(const char* text);
    XCWideString& operator=(const XCString& text);
    XCWideString& operator=(char character);
    /// @}
    /// @{ Appends the text, unit or character.
    XCWideString& operator+=(const XCWideString& other);
    XCWideString& operator+=(const char16_t* text);
    XCWideString& operator+=(char16_t unit);
    XCWideString& operator+=(const char* text);
    XCWideString& operator+=(const XCString& text);
    XCWideString& operator+=(char character);
    /// @}
    /// @{ Both texts, one behind the other.
    XCWideString operator+(const XCWideString& other) const;
    XCWideString operator+(const char16_t* text) const;
    /// @}

    /// Never null.
    const char16_t* GetStr() const { return m_text ? m_text : u""; }
    /// Never null.
    operator const char16_t*() const { return GetStr(); }
    /// Code units.
    int GetLength() const;
    /// 1 for the empty text.
    int IsEmpty() const { return m_text == nullptr; }
    /// Becomes the empty text.
    void Empty();
    /// GetAt, SetAt and At throw 0x20010008 outside the text; At and GetAt(length) are the terminator.
    char16_t GetAt(int index) const { return At(index); }
    /// @{ See GetAt.
    void SetAt(int index, char16_t unit);
    char16_t At(int index) const;
    /// @}
    /// Unchecked.
    template <std::integral Index>
    char16_t operator[](Index index) const {
        return GetStr()[index];
    }

    /// @{ By code units: negative, 0 or positive.
    int Compare(const char16_t* other) const;
    int Compare(const XCWideString& other) const { return Compare(other.GetStr()); }
    /// @}
    /// @{ The same without regard to the case of ASCII letters.
    int CompareNoCase(const char16_t* other) const;
    int CompareNoCase(const XCWideString& other) const { return CompareNoCase(other.GetStr()); }
    /// @}
    /// @{ As Compare.
    bool operator==(const char16_t* other) const { return Compare(other) == 0; }
    bool operator==(const XCWideString& other) const { return Compare(other) == 0; }
    bool operator!=(const char16_t* other) const { return Compare(other) != 0; }
    bool operator!=(const XCWideString& other) const { return Compare(other) != 0; }
    bool operator<(const char16_t* other) const { return Compare(other) < 0; }
    bool operator<(const XCWideString& other) const { return Compare(other) < 0; }
    bool operator<=(const char16_t* other) const { return Compare(other) <= 0; }
    bool operator<=(const XCWideString& other) const { return Compare(other) <= 0; }
    bool operator>(const char16_t* other) const { return Compare(other) > 0; }
    bool operator>(const XCWideString& other) const { return Compare(other) > 0; }
    bool operator>=(const char16_t* other) const { return Compare(other) >= 0; }
    bool operator>=(const XCWideString& other) const { return Compare(other) >= 0; }
    /// @}

    /// @{ As XCString's, by code units.
    int Find(const char16_t* text, int start = 0, int noCase = 0) const;
    int ReverseFind(const char16_t* text, int noCase = 0) const;
    /// @}
    /// @{ ASCII letters only.
    void MakeLower();
    void MakeUpper();
    /// @}
    void Replace(char16_t from, char16_t to); ///< every such unit
    /// @{ At most `count` units from `start`, or all; empty outside the text.
    XCWideString Mid(int start, int count) const;
    XCWideString Mid(int start) const;
    /// @}
    /// printf with UTF-16 texts: %s and %c take char16_t text and units, %hs and %hc multibyte ones.
    void Format(const char16_t* format, ...);
    /// Text `id` of a module's string table, converted; selector 0xFFFF is the global string resource.
    int LoadStringA(std::uint32_t id, std::uint32_t selector = 0xFFFF, HINSTANCE module = nullptr);

    /// Exchanges the bytes of every unit.
    void SwapEndian() { SwapWideCharEndian(m_text); }
    static void SwapWideCharEndian(char16_t* text); ///< up to the terminator; null is allowed

    /// 1 on success; `out` is empty when the code page lacks a character.
    int ConvertWideToAnsi(XCString& out) const;
    /// Appends the text to `out`, each unit by itself: the halves of a pair become three bytes each.
    void ConvertToUTF8(XCString& out) const;
    /// Into buffers whose size counts the terminator; 1 on success. What cannot be converted or does not fit gives 0
    /// and an empty output.
    static int ConvertAnsiToWide(char16_t* out, const char* in, int outLen);
    static int ConvertWideToAnsi(char* out, const char16_t* in, int outLen); ///< The other way.

private:
    void resize(std::int64_t length);
    void assign(const char16_t* text, std::int64_t length);
    void append(const char16_t* text, std::int64_t length);

    char16_t* m_text = nullptr; // null for the empty text
};

#endif // OVWCMN_XCSTRING_H
