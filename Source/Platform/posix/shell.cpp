#include "Platform/shell.h"

#include <cstdlib>
#include <fstream>
#include <string_view>
#include <vector>

#include <pwd.h>
#include <unistd.h>

namespace ovw::platform {

namespace {

std::string variable(const char* name) {
    const char* const value = std::getenv(name);
    return value ? value : "";
}

std::string homeFolder() {
    std::string home = variable("HOME");
    if (!home.empty())
        return home;
    std::vector<char> buffer(16384);
    passwd entry{};
    passwd* found = nullptr;
    if (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found)
        home = found->pw_dir;
    return home;
}

// The value of a line NAME="VALUE" of the desktop's list, where $HOME may begin the value; "" for another line.
std::string listedFolder(std::string_view line, std::string_view name, const std::string& home) {
    constexpr std::string_view cnHome = "$HOME";
    if (!line.starts_with(name) || line.size() < name.size() + 3 || line.substr(name.size(), 2) != "=\"" ||
        line.back() != '"')
        return "";
    const std::string_view value = line.substr(name.size() + 2, line.size() - name.size() - 3);
    if (value.starts_with(cnHome))
        return home + std::string(value.substr(cnHome.size()));
    return value.starts_with('/') ? std::string(value) : "";
}

} // namespace

std::string executablePath() {
    std::string path(4096, '\0');
    const ssize_t length = ::readlink("/proc/self/exe", path.data(), path.size());
    path.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
    return path;
}

std::string documentsFolder() {
    std::string home = homeFolder();
    const std::string settings = variable("XDG_CONFIG_HOME");
    std::ifstream list((settings.empty() ? home + "/.config" : settings) + "/user-dirs.dirs");
    for (std::string line; std::getline(list, line);) {
        std::string folder = listedFolder(line, "XDG_DOCUMENTS_DIR", home);
        if (!folder.empty())
            return folder;
    }
    return home;
}

} // namespace ovw::platform
