#ifndef OVW_FOUNDATION_CHARACTERCASE_H
#define OVW_FOUNDATION_CHARACTERCASE_H

/// @file
/// Case of letters: only the ASCII letters have one here, whatever the locale.

namespace ovw::foundation {

template <class Unit>
constexpr Unit lowerAscii(Unit unit) {
    return unit >= 'A' && unit <= 'Z' ? static_cast<Unit>(unit + ('a' - 'A')) : unit;
}

template <class Unit>
constexpr Unit upperAscii(Unit unit) {
    return unit >= 'a' && unit <= 'z' ? static_cast<Unit>(unit - ('a' - 'A')) : unit;
}

} // namespace ovw::foundation

#endif // OVW_FOUNDATION_CHARACTERCASE_H
