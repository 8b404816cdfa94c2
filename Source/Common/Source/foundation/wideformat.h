#ifndef OVW_FOUNDATION_WIDEFORMAT_H
#define OVW_FOUNDATION_WIDEFORMAT_H

/// @file
/// printf for UTF-16 text.

#include <cstdarg>
#include <string>

namespace ovw::foundation {

/// Conversions: d i u o x X c s p f F e E g G a A and %%, with flags, width, precision (also *) and the sizes hh h l ll
/// j z t I64. %s and %c take char16_t text and units; %hs, %hc and %S, %C multibyte ones, which are converted from the
/// current code page (what cannot be converted counts as empty). Other conversions stand as text. Throws
/// std::bad_alloc.
std::u16string formatWide(const char16_t* format, std::va_list arguments);

} // namespace ovw::foundation

#endif // OVW_FOUNDATION_WIDEFORMAT_H
