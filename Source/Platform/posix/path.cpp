#include "Platform/path.h"

#include "Platform/text.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>
#include <vector>

namespace ovw::platform {

namespace {

constexpr std::size_t cnDrives = 26;
constexpr std::size_t cnDefaultDrive = 'C' - 'A';

/// Roots without a trailing "/"; "" stands for "/".
struct DriveTable {
    std::array<std::string, cnDrives> roots;
};

/// Never destroyed: static objects may use paths late.
DriveTable& drives() {
    static DriveTable& s_drives = *new DriveTable;
    return s_drives;
}

/// 0 to 25, or cnDrives for what is no letter.
std::size_t driveIndex(char letter) {
    const int index = (letter | 32) - 'a';
    return index >= 0 && index < static_cast<int>(cnDrives) ? static_cast<std::size_t>(index) : cnDrives;
}

std::string withSlashes(const std::string& text) {
    std::string out = text;
    for (std::size_t i = 0; i < text.size(); i += std::max<std::size_t>(characterBytes(text.c_str() + i), 1))
        if (text[i] == '\\')
            out[i] = '/';
    return out;
}

std::string withBackslashes(std::string text) {
    std::ranges::replace(text, '/', '\\');
    return text;
}

/// Between code pages; false when a character has no counterpart.
bool convert(std::uint32_t from, std::uint32_t to, std::string_view text, std::string& out) {
    if (from == to) {
        out = text;
        return true;
    }
    std::vector<char16_t> wide(text.size());
    const Converted units = toUtf16(from, text.data(), text.size(), wide.data(), wide.size());
    if (units.result != Conversion::done)
        return false;
    std::string bytes(3 * units.length, '\0');
    const Converted result = fromUtf16(to, wide.data(), units.length, bytes.data(), bytes.size());
    bytes.resize(result.length);
    if (result.result == Conversion::done)
        out = std::move(bytes);
    return result.result == Conversion::done;
}

/// Text that is none of the code page goes to the system byte for byte.
std::string inSystemEncoding(const std::string& text) {
    std::string out;
    return convert(codePage(), cnCodePageUtf8, text, out) ? out : text;
}

/// The drive with the deepest root above the path (cnDrives: none), and how much of the path that root covers.
std::size_t driveOf(const std::string& posix, std::size_t& covered) {
    std::size_t best = cnDefaultDrive;
    covered = 0;
    for (std::size_t i = 0; i < cnDrives; ++i) {
        const std::string& root = drives().roots[i];
        const bool isAbove = posix.starts_with(root) && (posix.size() == root.size() || posix[root.size()] == '/');
        if (isAbove && root.size() > covered) {
            best = i;
            covered = root.size();
        }
    }
    for (std::size_t i = 0; covered == 0 && i < cnDrives; ++i)
        if (best = (cnDefaultDrive + i) % cnDrives; drives().roots[best].empty())
            return best;
    return covered ? best : cnDrives;
}

} // namespace

std::string toPosixPath(std::string_view path) {
    const std::string text(path.substr(0, path.find('\0')));
    const bool onDrive = text.size() >= 2 && text[1] == ':' && driveIndex(text[0]) < cnDrives;
    std::string rest = inSystemEncoding(withSlashes(onDrive ? text.substr(2) : text));
    if (!onDrive)
        return rest;
    const std::string& root = drives().roots[driveIndex(text[0])];
    return root + (rest.starts_with('/') ? rest : '/' + rest);
}

std::string toLibraryPath(std::string_view posixPath) {
    std::error_code error;
    std::string given(posixPath);
    std::string absolute = std::filesystem::absolute(given, error).string();
    if (error)
        absolute = given;
    std::size_t covered = 0;
    const std::size_t drive = driveOf(absolute, covered);
    std::string rest;
    if (drive == cnDrives || absolute.find('\\') != std::string::npos ||
        !convert(cnCodePageUtf8, codePage(), absolute.substr(covered), rest))
        return given;
    if (!rest.starts_with('/'))
        rest.insert(rest.begin(), '/');
    return std::string{static_cast<char>('A' + drive), ':'} + withBackslashes(std::move(rest));
}

std::string toLibraryName(std::string_view posixName) {
    std::string out;
    const bool hasForm =
        posixName.find('\\') == std::string_view::npos && convert(cnCodePageUtf8, codePage(), posixName, out);
    return hasForm ? out : std::string();
}

std::string childPath(const std::string& folder, const std::string& name) {
    const std::string slashes = withSlashes(folder);
    return folder.empty() || slashes.ends_with('/') ? folder + name : folder + '\\' + name;
}

bool setDriveRoot(char drive, std::string_view posixRoot) {
    const std::size_t index = driveIndex(drive);
    if (index >= cnDrives)
        return false;
    while (posixRoot.ends_with('/'))
        posixRoot.remove_suffix(1);
    drives().roots[index] = posixRoot;
    return true;
}

} // namespace ovw::platform
