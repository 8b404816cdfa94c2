#ifndef OVW_PERSISTENCE_LINEBREAKS_H
#define OVW_PERSISTENCE_LINEBREAKS_H

#include "Platform/text.h"

#include <cstddef>
#include <string_view>

/// @file
/// Line breaks of texts in archives: CR in the stream, CR LF in memory. Texts are char (the current code page) or
/// char16_t and end with a terminator, which is neither counted nor written.

namespace ovw::persistence {

inline std::size_t characterUnits(const char* text) { return platform::characterBytes(text); }
inline std::size_t characterUnits(const char16_t* text) { return *text ? 1 : 0; }

/// Whether the text may have another form in the stream: without a CR it has not, whatever the code page.
template <class Unit>
bool hasReturn(std::basic_string_view<Unit> text) {
    return text.find(Unit('\r')) != text.npos;
}

/// Writes the form of the stream to `out` (null: counts only); the number of its units.
template <class Unit>
std::size_t joinLineBreaks(const Unit* text, Unit* out) {
    std::size_t count = 0;
    bool afterReturn = false;
    while (const std::size_t units = characterUnits(text)) {
        const bool isPartOfBreak = afterReturn && *text == '\n';
        for (std::size_t i = 0; i < units && !isPartOfBreak; ++i, ++count)
            if (out)
                out[count] = text[i];
        afterReturn = units == 1 && *text == '\r';
        text += units;
    }
    return count;
}

/// Units of the form of the stream.
template <class Unit>
std::size_t joinedLength(const Unit* text) {
    const std::basic_string_view<Unit> whole(text);
    return hasReturn(whole) ? joinLineBreaks<Unit>(text, nullptr) : whole.size();
}

/// Writes the form of memory to `out` (null: counts only); the number of its units.
template <class Unit>
std::size_t splitLineBreaks(const Unit* text, Unit* out) {
    std::size_t count = 0;
    const auto put = [&](Unit unit) {
        if (out)
            out[count] = unit;
        ++count;
    };
    while (const std::size_t units = characterUnits(text)) {
        const bool isReturn = units == 1 && *text == '\r';
        for (std::size_t i = 0; i < units; ++i)
            put(text[i]);
        if (isReturn)
            put('\n');
        text += units;
    }
    return count;
}

} // namespace ovw::persistence

#endif // OVW_PERSISTENCE_LINEBREAKS_H
