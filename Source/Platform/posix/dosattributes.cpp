#include "Platform/posix/dosattributes.h"

#include "Platform/file.h"
#include "Platform/systemerror.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include <sys/xattr.h>

namespace ovw::platform {

namespace {

constexpr char cnAttributeName[] = "user.DOSATTRIB";
constexpr std::uint32_t cnStoredBits = attributeHidden | attributeSystem | attributeArchive;
constexpr std::uint32_t cnVisibleBits = attributeHidden | attributeSystem;

// Two spellings of the calls, for a path and for a descriptor.
ssize_t getValue(const char* path, char* buffer, std::size_t size) {
    return ::getxattr(path, cnAttributeName, buffer, size);
}
ssize_t getValue(int file, char* buffer, std::size_t size) { return ::fgetxattr(file, cnAttributeName, buffer, size); }
int setValue(const char* path, const char* text, std::size_t size) {
    return ::setxattr(path, cnAttributeName, text, size, 0);
}
int setValue(int file, const char* text, std::size_t size) { return ::fsetxattr(file, cnAttributeName, text, size, 0); }
int removeValue(const char* path) { return ::removexattr(path, cnAttributeName); }
int removeValue(int file) { return ::fremovexattr(file, cnAttributeName); }

template <class File>
std::uint32_t storedBits(File file) {
    std::array<char, 64> text{};
    if (getValue(file, text.data(), text.size() - 1) <= 0)
        return 0;
    return static_cast<std::uint32_t>(std::strtoul(text.data(), nullptr, 16)) & cnStoredBits;
}

template <class File>
int storeBits(File file, std::uint32_t bits) {
    bits &= cnStoredBits;
    if (bits == storedBits(file))
        return 0;
    std::array<char, 16> text;
    const int length = std::snprintf(text.data(), text.size(), "0x%x", bits);
    const int result = bits ? setValue(file, text.data(), static_cast<std::size_t>(length)) : removeValue(file);
    const bool givenUp = errno == ENOTSUP && !(bits & cnVisibleBits);
    return result == 0 || givenUp ? 0 : systemErrorFromErrno(errno);
}

bool beginsWithDot(const std::string& posix) {
    const std::string name = posix.substr(posix.rfind('/') + 1);
    return name.starts_with('.') && name != "." && name != "..";
}

} // namespace

std::uint32_t dosAttributes(const std::string& posix) {
    return storedBits(posix.c_str()) | (beginsWithDot(posix) ? attributeHidden : 0u);
}

std::uint32_t dosAttributes(int descriptor) { return storedBits(descriptor); }

int setDosAttributes(const std::string& posix, std::uint32_t attributes) {
    if (beginsWithDot(posix))
        attributes &= ~static_cast<std::uint32_t>(attributeHidden); // the dot says it already
    return storeBits(posix.c_str(), attributes);
}

int setDosAttributes(int descriptor, std::uint32_t attributes) { return storeBits(descriptor, attributes); }

} // namespace ovw::platform
