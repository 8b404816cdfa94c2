#ifndef OVW_PLATFORM_POSIX_DOSATTRIBUTES_H
#define OVW_PLATFORM_POSIX_DOSATTRIBUTES_H

#include <cstdint>
#include <string>

namespace ovw::platform {

// The attribute bits that a mode cannot hold (hidden, system, archive): in the extended attribute user.DOSATTRIB, as
// hexadecimal text. Hidden is also what begins with a dot.
std::uint32_t dosAttributes(const std::string& posix);
std::uint32_t dosAttributes(int descriptor);

/// 0 or the system code; archive alone is given up silently where the volume keeps no extended attributes.
int setDosAttributes(const std::string& posix, std::uint32_t attributes);
int setDosAttributes(int descriptor, std::uint32_t attributes);

} // namespace ovw::platform

#endif // OVW_PLATFORM_POSIX_DOSATTRIBUTES_H
