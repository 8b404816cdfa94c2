#include "Platform/text.h"
#include "Utility/vxfile.h"

#include <algorithm>
#include <string_view>

namespace platform = ovw::platform;

namespace {

constexpr std::size_t cnNone = std::string::npos;

/// Index of the last of two single-byte characters before `end`, stepping over whole characters.
std::size_t findLast(const std::string& text, char first, char second, std::size_t end) {
    end = std::min(end, text.size());
    if (platform::asciiStandsAlone()) {
        const char wanted[] = {first, second};
        return end == 0 ? cnNone : text.find_last_of(wanted, end - 1, sizeof wanted);
    }
    std::size_t found = cnNone;
    for (std::size_t i = 0; i < end; i += std::max<std::size_t>(platform::characterBytes(text.c_str() + i), 1))
        if (text[i] == first || text[i] == second)
            found = i;
    return found;
}

bool isDriveLetter(char letter) { return (letter | 32) >= 'a' && (letter | 32) <= 'z'; }

bool isNetworkRoot(const std::string& path) {
    if (!path.starts_with("\\\\"))
        return false;
    const std::string name = vxWithoutBackDelimiter(path).erase(0, 2);
    const std::size_t first = vxFindLastDelimiter(name);
    // At most server and share: one separator, which is the last one and the first.
    return !name.empty() && (first == cnNone || (first > 0 && vxFindLastDelimiter(name, first) == cnNone));
}

} // namespace

std::size_t vxFindLastDelimiter(const std::string& path, std::size_t end) {
    return findLast(path, '\\', path.starts_with('/') ? '/' : '\\', end);
}

bool vxIsRootPath(const std::string& path) {
    const bool driveRoot = path.size() == 3 && isDriveLetter(path[0]) && path[1] == ':' && path[2] == '\\';
    return driveRoot || path == "\\" || path == "/" || isNetworkRoot(path);
}

std::string vxWithoutBackDelimiter(std::string path) {
    const std::string_view delimiters = path.starts_with('/') ? "\\/" : "\\";
    std::size_t end = 0;
    if (platform::asciiStandsAlone())
        end = path.find_last_not_of(delimiters) + 1; // 0 for none
    else
        for (std::size_t i = 0, bytes; i < path.size(); i += bytes) {
            bytes = std::max<std::size_t>(platform::characterBytes(path.c_str() + i), 1);
            if (delimiters.find(path[i]) == std::string_view::npos)
                end = i + bytes;
        }
    path.resize(end);
    return path;
}

std::string vxGetFileNamefromFullPath(const std::string& path) {
    const std::size_t last = path.starts_with('/') ? vxFindLastDelimiter(path) : findLast(path, '\\', ':', cnNone);
    return last == cnNone ? path : path.substr(last + 1);
}

std::string vxGetFolderfromFullPath(const std::string& path) {
    if (vxIsRootPath(path))
        return path;
    const std::string trimmed = vxWithoutBackDelimiter(path);
    const std::size_t last = vxFindLastDelimiter(trimmed);
    if (last == cnNone)
        return trimmed.size() == 2 && vxIsRootPath(trimmed + '\\') ? trimmed + '\\' : std::string();
    const std::string withDelimiter = trimmed.substr(0, last + 1);
    return vxIsRootPath(withDelimiter) && !isNetworkRoot(withDelimiter) ? withDelimiter
                                                                        : vxWithoutBackDelimiter(withDelimiter);
}

std::string vxGetFileNameDelExt(const std::string& path) {
    const std::string name = vxGetFileNamefromFullPath(path);
    return name.substr(0, findLast(name, '.', '.', cnNone));
}

std::string vxCopyExtension(const std::string& path) {
    const std::string name = vxGetFileNamefromFullPath(path);
    const std::size_t dot = findLast(name, '.', '.', cnNone);
    return dot == cnNone ? std::string() : name.substr(dot + 1);
}
