#include "Platform/posix/trash.h"

#include "Platform/systemerror.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ovw::platform {

namespace {

namespace fs = std::filesystem;

constexpr int cnNameAttempts = 10000;

/// Percent-encoding of everything but letters, digits and what needs no escape in a path.
std::string percentEncoded(const std::string& text) {
    std::string out;
    for (const char byte : text) {
        const auto value = static_cast<unsigned char>(byte);
        const bool plain = (value | 32) >= 'a' && (value | 32) <= 'z';
        if (plain || (value >= '0' && value <= '9') || std::string_view("/-._~").find(byte) != std::string_view::npos) {
            out += byte;
            continue;
        }
        std::array<char, 4> code;
        std::snprintf(code.data(), code.size(), "%%%02X", value);
        out += code.data();
    }
    return out;
}

std::string infoText(const fs::path& original) {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    std::array<char, 32> date;
    std::strftime(date.data(), date.size(), "%Y-%m-%dT%H:%M:%S", &local);
    return "[Trash Info]\nPath=" + percentEncoded(original.string()) + "\nDeletionDate=" + date.data() + "\n";
}

fs::path homeTrash() {
    const char* const data = std::getenv("XDG_DATA_HOME");
    if (data && *data == '/')
        return fs::path(data) / "Trash";
    const char* const home = std::getenv("HOME");
    return home && *home == '/' ? fs::path(home) / ".local/share/Trash" : fs::path();
}

bool deviceOf(const fs::path& path, dev_t& device) {
    struct stat status;
    if (::lstat(path.c_str(), &status) != 0)
        return false;
    device = status.st_dev;
    return true;
}

/// The trash at the top of the volume that holds the file.
fs::path volumeTrash(const fs::path& file) {
    fs::path top = file.parent_path();
    dev_t device = 0, above = 0;
    if (!deviceOf(top, device))
        return {};
    while (top.has_relative_path() && deviceOf(top.parent_path(), above) && above == device)
        top = top.parent_path();
    return top / (".Trash-" + std::to_string(::geteuid()));
}

bool makeTrash(const fs::path& trash) {
    std::error_code error;
    fs::create_directories(trash.parent_path(), error);
    for (const fs::path& folder : {trash, trash / "files", trash / "info"})
        if (::mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST)
            return false;
    struct stat status;
    return ::lstat(trash.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::geteuid();
}

/// Claims a name by creating its information file exclusively; "" with errno set when that fails.
std::string claimName(const fs::path& trash, const fs::path& original) {
    for (int attempt = 1; attempt < cnNameAttempts; ++attempt) {
        std::string name =
            original.filename().string() + (attempt == 1 ? std::string() : "." + std::to_string(attempt));
        const fs::path info = trash / "info" / (name + ".trashinfo");
        const int file = ::open(info.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (file < 0 && errno == EEXIST)
            continue;
        if (file < 0)
            return {};
        const std::string text = infoText(original);
        const bool written = ::write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
        ::close(file);
        if (written)
            return name;
        ::unlink(info.c_str());
        errno = ENOSPC;
        return {};
    }
    errno = EEXIST;
    return {};
}

/// 0 or an errno value.
int moveInto(const fs::path& trash, const fs::path& file) {
    if (trash.empty())
        return ENOENT;
    if (!makeTrash(trash))
        return errno ? errno : EACCES;
    const std::string name = claimName(trash, file);
    if (name.empty())
        return errno;
    if (::rename(file.c_str(), (trash / "files" / name).c_str()) == 0)
        return 0;
    const int error = errno;
    ::unlink((trash / "info" / (name + ".trashinfo")).c_str());
    return error;
}

} // namespace

int moveFileToTrash(const std::string& posix) {
    std::error_code error;
    fs::path file = fs::absolute(posix, error).lexically_normal();
    if (!file.has_filename())
        file = file.parent_path();
    struct stat status;
    if (error || !file.has_filename() || ::lstat(file.c_str(), &status) != 0)
        return cnErrorFileNotFound;
    const int code = moveInto(homeTrash(), file);
    return code == EXDEV || code == ENOENT ? systemErrorFromErrno(moveInto(volumeTrash(file), file))
                                           : systemErrorFromErrno(code);
}

} // namespace ovw::platform
