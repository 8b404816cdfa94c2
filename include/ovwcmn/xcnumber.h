#ifndef OVWCMN_XCNUMBER_H
#define OVWCMN_XCNUMBER_H

/// @file
/// Sheet numbers.

#include "ovwcmn/ovwdefs.h"

#include <cstdint>

class XCArchive;
class XCString;

/// A sheet number as it is stored.
struct _VXNUMBER {
    std::int32_t number; ///< 1 to 9999; 0 when empty
    char suffix[4];      ///< up to three characters and the terminator
};

/// A sheet number, 1 to 9999, with a suffix of up to three letters: 12, 12A, 12AB. Ordered by number, then by suffix
/// byte for byte: 12 < 12A < 12B < 13. An int stands for the number without suffix. A value type, laid out as
/// _VXNUMBER; null texts are empty. Only the archive functions and texts throw (no memory: 8; end of data: 0x20010008).
class OVWCMN_API XCNumber {
public:
    XCNumber() = default;
    /// @{ A plain number has no suffix.
    XCNumber(int number) : m_number{number, {}} {}
    XCNumber(const _VXNUMBER& number) { SetNumber(number); }
    XCNumber& operator=(int number) { return *this = XCNumber(number); }
    XCNumber& operator=(const _VXNUMBER& number) { return *this = XCNumber(number); }
    operator _VXNUMBER() const { return m_number; }
    /// @}

    /// Number 0 without suffix.
    void Empty() { m_number = {}; }
    int IsEmpty() const { return m_number.number == 0 && IsEmptySuffix(); } ///< 1 for number 0 without suffix
    /// @{ Without and with the suffix.
    int GetNumber() const { return m_number.number; }
    void GetNumber(_VXNUMBER& out) const { out = m_number; }
    /// @}
    /// The number in a printf format, then the suffix.
    void GetNumber(XCString& out, const char* format) const;
    /// @{ Number and suffix; see AddSuffix.
    void SetNumber(const _VXNUMBER& number);
    void SetNumber(int number, const char* suffix);
    /// @}
    /// As GetNumberFromString; a text that is not valid changes nothing.
    void SetNumber(const char* text);

    /// "" without one.
    void GetSuffix(XCString& out) const;
    /// 1 without suffix.
    int IsEmptySuffix() const { return m_number.suffix[0] == '\0'; }
    /// The number stays.
    void DeleteSuffix() { AddSuffix(nullptr); }
    /// The first three characters replace the suffix, in the case given.
    void AddSuffix(const char* suffix);
    /// Counts the suffix on by 1 to 26 letters: B to C, Z to AA, AZ to BA, ZZ to AAA; of three letters the first stays.
    /// Other steps, and suffixes that are not one to three capital letters, change nothing.
    void IncrementSuffix(int step);
    static void IncrementSuffix(XCString& suffix, int step); ///< The same for a suffix alone.

    /// Digits (1 to 9999), then up to three letters, which become capitals. 1 when the text is that; else 0 and `out`
    /// empty.
    static int GetNumberFromString(_VXNUMBER& out, const char* text);
    static int IsValid(const char* text); ///< whether GetNumberFromString takes it

    /// @{ By number, then by suffix; an int is a number without suffix.
    bool operator==(const XCNumber& other) const { return compare(other) == 0; }
    bool operator!=(const XCNumber& other) const { return compare(other) != 0; }
    bool operator<=(const XCNumber& other) const { return compare(other) <= 0; }
    bool operator<(const XCNumber& other) const { return compare(other) < 0; }
    bool operator>=(const XCNumber& other) const { return compare(other) >= 0; }
    bool operator>(const XCNumber& other) const { return compare(other) > 0; }
    bool operator==(int number) const { return *this == XCNumber(number); }
    bool operator!=(int number) const { return *this != XCNumber(number); }
    bool operator<=(int number) const { return *this <= XCNumber(number); }
    bool operator<(int number) const { return *this < XCNumber(number); }
    bool operator>=(int number) const { return *this >= XCNumber(number); }
    bool operator>(int number) const { return *this > XCNumber(number); }
    /// @}
    /// The number moved (wrapping as 32 bits do), the suffix kept.
    _VXNUMBER operator+(int count) const;
    _VXNUMBER operator-(int count) const; ///< The number moved back, as +.

    /// The number as a 32-bit integer, then the four bytes of the suffix.
    void WriteArchive(XCArchive& archive) const;
    void ReadArchive(XCArchive& archive); ///< As WriteArchive.

private:
    int compare(const XCNumber& other) const;

    _VXNUMBER m_number = {};
};

/// @{ As WriteArchive and ReadArchive.
OVWCMN_API XCArchive& operator<<(XCArchive& archive, const _VXNUMBER& number);
OVWCMN_API XCArchive& operator>>(XCArchive& archive, _VXNUMBER& number);
OVWCMN_API XCArchive& operator<<(XCArchive& archive, const XCNumber& number);
OVWCMN_API XCArchive& operator>>(XCArchive& archive, XCNumber& number);
/// @}

#endif // OVWCMN_XCNUMBER_H
