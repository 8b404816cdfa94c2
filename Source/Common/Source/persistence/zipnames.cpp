#include "persistence/zipnames.h"

#include "Platform/text.h"
#include "ovwcmn/xcexception.h"
#include "persistence/packedformat.h"

#include <utility>

namespace ovw::persistence {

namespace {

bool isTextOfCodePage(const std::string& name) {
    std::u16string units(name.size(), u'\0');
    const platform::Converted converted =
        platform::toUtf16(platform::codePage(), name.data(), name.size(), units.data(), units.size());
    return converted.result == platform::Conversion::done;
}

/// A name of an encoding that nobody knows, as ASCII. Different names stay different.
std::string escaped(const std::string& name) {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string result;
    for (const char character : name) {
        const auto byte = static_cast<unsigned char>(character);
        const bool isForeign = byte >= 0x80 || character == '\\' || character == '%';
        if (isForeign)
            (result += '%') += {digits[byte >> 4], digits[byte & 15]};
        else
            result += character;
    }
    return result;
}

std::string plainComponent(const std::string& component) {
    std::string name = isTextOfCodePage(component) ? component : escaped(component);
    if (!isPlainName(name.c_str()))
        xcThrowError(foundation::cnCodeFileFormat);
    return name;
}

void enter(std::vector<std::string>& folders, const std::string& component) {
    if (component.empty() || component == ".")
        return;
    if (component != "..")
        return folders.push_back(plainComponent(component));
    if (folders.empty())
        xcThrowError(foundation::cnCodeFileFormat);
    folders.pop_back();
}

} // namespace

ZipPlace placeOf(const std::string& entryName) {
    if (entryName.empty() || entryName.front() == '/')
        xcThrowError(foundation::cnCodeFileFormat);
    ZipPlace place;
    std::size_t start = 0;
    // No "/" is part of a longer character in any code page.
    for (std::size_t slash; (slash = entryName.find('/', start)) != std::string::npos; start = slash + 1)
        enter(place.folders, entryName.substr(start, slash - start));
    const std::string last = entryName.substr(start);
    if (last == "." || last == "..")
        enter(place.folders, last);
    else if (!last.empty())
        place.file = plainComponent(last);
    return place;
}

} // namespace ovw::persistence
