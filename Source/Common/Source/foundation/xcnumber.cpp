#include "ovwcmn/xcnumber.h"

#include "ovwcmn/vxwutl.h"
#include "ovwcmn/xcstring.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>

namespace {

constexpr int cnMaxNumber = 9999;
constexpr int cnMaxSuffix = 3;
constexpr int cnLetters = 26;

static_assert(sizeof(XCNumber) == sizeof(_VXNUMBER));

// Digits and letters of numbers are those of ASCII, whatever the locale.
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isCapital(char c) { return c >= 'A' && c <= 'Z'; }
bool isSmall(char c) { return c >= 'a' && c <= 'z'; }
char toCapital(char c) { return static_cast<char>(isSmall(c) ? c - 'a' + 'A' : c); }

void copySuffix(char (&out)[cnMaxSuffix + 1], const char* suffix) {
    std::fill(std::begin(out), std::end(out), '\0');
    for (int i = 0; suffix && i < cnMaxSuffix && suffix[i]; ++i)
        out[i] = suffix[i];
}

/// Takes one letter more than Z back into the alphabet; whether there was one.
bool carry(int& letter) {
    if (letter <= 'Z')
        return false;
    letter -= cnLetters;
    return true;
}

/// One to three capitals, counted on.
std::string countedOn(const std::string& suffix, int step) {
    int last = suffix.back() + step;
    if (!carry(last))
        return suffix.substr(0, suffix.size() - 1) + static_cast<char>(last);
    if (suffix.size() == 1)
        return {'A', static_cast<char>(last)};
    int before = suffix[suffix.size() - 2] + 1;
    if (carry(before) && suffix.size() == 2)
        return {'A', 'A', static_cast<char>(last)};
    return suffix.substr(0, suffix.size() - 2) + static_cast<char>(before) + static_cast<char>(last);
}

bool isCountable(const std::string& suffix) {
    return !suffix.empty() && suffix.size() <= cnMaxSuffix && std::all_of(suffix.begin(), suffix.end(), isCapital);
}

} // namespace

void XCNumber::SetNumber(const _VXNUMBER& number) { SetNumber(number.number, number.suffix); }

void XCNumber::SetNumber(int number, const char* suffix) {
    m_number.number = number;
    AddSuffix(suffix);
}

void XCNumber::SetNumber(const char* text) {
    _VXNUMBER parsed;
    if (GetNumberFromString(parsed, text))
        m_number = parsed;
}

void XCNumber::GetNumber(XCString& out, const char* format) const {
    out.SetNumber(m_number.number, format);
    out += m_number.suffix;
}

void XCNumber::GetSuffix(XCString& out) const { out = m_number.suffix; }

void XCNumber::AddSuffix(const char* suffix) {
    char copied[cnMaxSuffix + 1]; // `suffix` may be this very suffix
    copySuffix(copied, suffix);
    std::copy(std::begin(copied), std::end(copied), m_number.suffix);
}

void XCNumber::IncrementSuffix(int step) {
    XCString suffix = m_number.suffix;
    IncrementSuffix(suffix, step);
    AddSuffix(suffix);
}

void XCNumber::IncrementSuffix(XCString& suffix, int step) {
    const std::string text = suffix.GetStr();
    if (step >= 1 && step <= cnLetters && isCountable(text))
        suffix = countedOn(text, step).c_str();
}

int XCNumber::GetNumberFromString(_VXNUMBER& out, const char* text) {
    _VXNUMBER parsed = {};
    const char* next = text ? text : "";
    while (isDigit(*next) && parsed.number <= cnMaxNumber)
        parsed.number = parsed.number * 10 + (*next++ - '0');
    int letters = 0;
    while ((isCapital(*next) || isSmall(*next)) && letters < cnMaxSuffix)
        parsed.suffix[letters++] = toCapital(*next++);
    const bool isValid = *next == '\0' && parsed.number >= 1 && parsed.number <= cnMaxNumber;
    out = isValid ? parsed : _VXNUMBER{};
    return isValid;
}

int XCNumber::IsValid(const char* text) {
    _VXNUMBER ignored;
    return GetNumberFromString(ignored, text);
}

_VXNUMBER XCNumber::operator+(int count) const {
    _VXNUMBER moved = m_number;
    moved.number =
        static_cast<std::int32_t>(static_cast<std::uint32_t>(moved.number) + static_cast<std::uint32_t>(count));
    return moved;
}

_VXNUMBER XCNumber::operator-(int count) const {
    _VXNUMBER moved = m_number;
    moved.number =
        static_cast<std::int32_t>(static_cast<std::uint32_t>(moved.number) - static_cast<std::uint32_t>(count));
    return moved;
}

int XCNumber::compare(const XCNumber& other) const {
    if (m_number.number != other.m_number.number)
        return m_number.number < other.m_number.number ? -1 : 1;
    return std::strcmp(m_number.suffix, other.m_number.suffix);
}
