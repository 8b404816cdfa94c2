#include "Platform/file.h"

#include "Platform/path.h"
#include "Platform/posix/dosattributes.h"
#include "Platform/posix/filesharing.h"
#include "Platform/posix/trash.h"
#include "Platform/systemerror.h"
#include "Platform/text.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <limits>
#include <system_error>
#include <tuple>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace ovw::platform {

namespace {

constexpr mode_t cnOrdinaryMode = 0666; // less the umask
constexpr mode_t cnPrivateMode = 0600;
constexpr mode_t cnAnyWrite = S_IWUSR | S_IWGRP | S_IWOTH;
constexpr std::uint32_t cnSectorBytes = 512;
constexpr int cnPrivateAttempts = 16;

int lastError() { return systemErrorFromErrno(errno); }

/// A descriptor that closes itself.
class Descriptor {
public:
    explicit Descriptor(int value = -1) : m_value(value) {}
    ~Descriptor() { reset(); }
    Descriptor(Descriptor&& other) noexcept : m_value(std::exchange(other.m_value, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        reset();
        m_value = std::exchange(other.m_value, -1);
        return *this;
    }
    int get() const { return m_value; }
    bool isOpen() const { return m_value >= 0; }

private:
    void reset() {
        if (m_value >= 0)
            ::close(m_value);
    }

    int m_value;
};

template <class Call>
auto retryInterrupted(Call call) {
    decltype(call()) result;
    do
        result = call();
    while (result < 0 && errno == EINTR);
    return result;
}

bool existsAsFolder(const std::string& posix) {
    struct stat status;
    return ::stat(posix.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

std::string parentOf(const std::string& posix) {
    const std::size_t end = posix.find_last_not_of('/');
    if (end == std::string::npos)
        return "/";
    const std::size_t slash = posix.rfind('/', end);
    return slash == std::string::npos ? "." : slash == 0 ? "/" : posix.substr(0, slash);
}

/// The code of errno, which a missing folder above the file turns from 2 into 3.
int pathError(const std::string& posix) {
    const int code = lastError();
    if (posix.empty() || (code == cnErrorFileNotFound && !existsAsFolder(parentOf(posix))))
        return cnErrorPathNotFound;
    return code;
}

FileTime fileTime(const statx_timestamp& time) { return {time.tv_sec, static_cast<std::int32_t>(time.tv_nsec)}; }

timespec systemTime(const FileTime& time) { return {static_cast<time_t>(time.seconds), time.nanoseconds}; }

std::uint32_t modeAttributes(mode_t mode) {
    return (S_ISDIR(mode) ? attributeFolder : 0u) | (mode & cnAnyWrite ? 0u : attributeReadOnly);
}

/// What statx tells of a descriptor with an empty path, or of AT_FDCWD with a path. False with errno set on failure.
bool look(int descriptor, const char* posix, int flags, FileInformation& out) {
    struct statx status;
    if (::statx(descriptor, posix, flags, STATX_BASIC_STATS | STATX_BTIME, &status) != 0)
        return false;
    out.isLink = S_ISLNK(status.stx_mode);
    out.attributes = modeAttributes(status.stx_mode);
    out.permissions = status.stx_mode & FileSystem::cnAllPermissions;
    out.isSpecial = !S_ISREG(status.stx_mode) && !S_ISDIR(status.stx_mode);
    out.length = S_ISDIR(status.stx_mode) ? 0 : status.stx_size;
    out.device = makedev(status.stx_dev_major, status.stx_dev_minor);
    out.node = status.stx_ino;
    out.times.creation = fileTime(status.stx_mask & STATX_BTIME ? status.stx_btime : status.stx_ctime);
    out.times.lastAccess = fileTime(status.stx_atime);
    out.times.lastWrite = fileTime(status.stx_mtime);
    return true;
}

void finishAttributes(std::uint32_t stored, FileInformation& out) {
    out.attributes |= stored;
    if (out.attributes == 0)
        out.attributes = attributeNormal;
}

/// off_t is signed: positions beyond it do not exist.
bool isPosition(std::uint64_t position, std::size_t size) {
    constexpr auto limit = static_cast<std::uint64_t>(std::numeric_limits<off_t>::max());
    return position <= limit && size <= limit - position;
}

class PosixFile final : public OpenFile {
public:
    PosixFile(Descriptor descriptor, Sharing sharing, std::string posix, bool deleteOnClose)
        : m_descriptor(std::move(descriptor)), m_sharing(std::move(sharing)), m_posix(std::move(posix)),
          m_deleteOnClose(deleteOnClose) {}

    ~PosixFile() override {
        if (m_deleteOnClose && isStillOurs())
            ::unlink(m_posix.c_str());
    }

    int readAt(void* buffer, std::size_t size, std::uint64_t position, std::size_t& done) override;
    int writeAt(const void* buffer, std::size_t size, std::uint64_t position, std::size_t& done) override;

    int setLength(std::uint64_t bytes) override {
        if (!isPosition(bytes, 0))
            return cnErrorInvalidParameter;
        const int result = retryInterrupted([&] { return ::ftruncate(file(), static_cast<off_t>(bytes)); });
        return result == 0 ? 0 : writeError();
    }

    int flush() override {
        return retryInterrupted([&] { return ::fsync(file()); }) == 0 ? 0 : lastError();
    }

    int information(FileInformation& out) override {
        FileInformation found;
        if (!look(file(), "", AT_EMPTY_PATH, found))
            return lastError();
        finishAttributes(dosAttributes(file()), found);
        out = found;
        return 0;
    }

    int setTimes(const FileTimes& times) override {
        const timespec values[] = {systemTime(times.lastAccess), systemTime(times.lastWrite)};
        return ::futimens(file(), values) == 0 ? 0 : lastError();
    }

private:
    int file() const { return m_descriptor.get(); }

    /// A descriptor without the right to write reports EBADF or EINVAL, which Windows calls a denied access.
    int writeError() const {
        const bool mayWrite = (::fcntl(file(), F_GETFL) & O_ACCMODE) != O_RDONLY;
        return mayWrite ? lastError() : cnErrorAccessDenied;
    }

    bool isStillOurs() const {
        struct stat open, named;
        return ::fstat(file(), &open) == 0 && ::lstat(m_posix.c_str(), &named) == 0 && open.st_dev == named.st_dev &&
               open.st_ino == named.st_ino;
    }

    Descriptor m_descriptor;
    Sharing m_sharing;
    std::string m_posix;
    bool m_deleteOnClose;
};

int PosixFile::readAt(void* buffer, std::size_t size, std::uint64_t position, std::size_t& done) {
    done = 0;
    if (!isPosition(position, size))
        return cnErrorInvalidParameter;
    while (done < size) {
        const auto offset = static_cast<off_t>(position + done);
        const ssize_t count =
            retryInterrupted([&] { return ::pread(file(), static_cast<char*>(buffer) + done, size - done, offset); });
        if (count < 0)
            return errno == EBADF ? cnErrorAccessDenied : lastError();
        if (count == 0)
            break;
        done += static_cast<std::size_t>(count);
    }
    return 0;
}

int PosixFile::writeAt(const void* buffer, std::size_t size, std::uint64_t position, std::size_t& done) {
    done = 0;
    if (!isPosition(position, size))
        return cnErrorInvalidParameter;
    while (done < size) {
        const auto offset = static_cast<off_t>(position + done);
        const ssize_t count = retryInterrupted(
            [&] { return ::pwrite(file(), static_cast<const char*>(buffer) + done, size - done, offset); });
        if (count < 0)
            return errno == EBADF ? cnErrorAccessDenied : writeError();
        if (count == 0)
            return cnErrorDiskFull;
        done += static_cast<std::size_t>(count);
    }
    return 0;
}

/// Opens by the disposition, but leaves the contents of an existing file alone; `created` tells a new one. The file may
/// appear or vanish between the two looks at it: then the error of the second counts.
int openByDisposition(const std::string& posix, const OpenRequest& request, Descriptor& out, bool& created) {
    const bool empties =
        request.disposition == Disposition::createAlways || request.disposition == Disposition::truncateExisting;
    const int access = request.write || empties ? (request.read || empties ? O_RDWR : O_WRONLY) : O_RDONLY;
    const bool mayExist = request.disposition != Disposition::createNew;
    const bool mayCreate =
        request.disposition != Disposition::openExisting && request.disposition != Disposition::truncateExisting;
    const auto tryOpen = [&](int flags) {
        flags |= access | O_CLOEXEC | O_NONBLOCK; // a pipe would wait for its other end
        out = Descriptor(retryInterrupted([&] { return ::open(posix.c_str(), flags, request.permissions); }));
        return out.isOpen();
    };
    created = false;
    if (mayExist && tryOpen(0))
        return 0;
    if (mayExist && (errno != ENOENT || !mayCreate))
        return pathError(posix);
    created = tryOpen(O_CREAT | O_EXCL);
    return created ? 0 : pathError(posix);
}

/// A new file that only this user can open, under the lock that removeUnlessHeld respects. A clean-up that runs between
/// creation and lock may take the name away again: then the next attempt creates it afresh.
int openPrivate(const std::string& posix, bool mayReplace, Descriptor& out) {
    for (int attempt = 0; attempt < cnPrivateAttempts; ++attempt) {
        if (mayReplace && ::unlink(posix.c_str()) != 0 && errno != ENOENT)
            return pathError(posix);
        constexpr int flags = O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
        out = Descriptor(retryInterrupted([&] { return ::open(posix.c_str(), flags, cnPrivateMode); }));
        if (!out.isOpen())
            return pathError(posix);
        const bool locked = ::flock(out.get(), LOCK_EX | LOCK_NB) == 0;
        if (!locked && errno != EWOULDBLOCK)
            return 0; // a volume without locks: nobody can clean up there either
        struct stat status;
        if (locked && ::fstat(out.get(), &status) == 0 && status.st_nlink > 0)
            return 0;
    }
    return cnErrorSharingViolation;
}

/// What Windows refuses although the system would not: folders as files, and writing to a read-only file as root. A
/// pipe has no positions.
int refuseOpened(const Descriptor& descriptor, const OpenRequest& request, bool created) {
    struct stat status;
    if (::fstat(descriptor.get(), &status) != 0)
        return lastError();
    if (S_ISFIFO(status.st_mode))
        return systemErrorFromErrno(ESPIPE);
    const bool denied = S_ISDIR(status.st_mode) || (request.write && !created && !(status.st_mode & cnAnyWrite));
    return denied ? cnErrorAccessDenied : 0;
}

/// A device has no contents to lose.
int emptyOpened(const Descriptor& descriptor) {
    struct stat status;
    if (::fstat(descriptor.get(), &status) != 0)
        return lastError();
    return !S_ISREG(status.st_mode) || ::ftruncate(descriptor.get(), 0) == 0 ? 0 : lastError();
}

/// To everyone who opens the file from now on.
void forbidWriting(int descriptor) {
    struct stat status;
    if (::fstat(descriptor, &status) == 0)
        std::ignore = ::fchmod(descriptor, status.st_mode & 07777 & ~cnAnyWrite);
}

class PosixFileSystem final : public FileSystem {
public:
    int open(const std::string& path, const OpenRequest& request, std::unique_ptr<OpenFile>& out) override;
    int information(const std::string& path, FileInformation& out) override;
    int setAttributes(const std::string& path, std::uint32_t attributes) override;
    int removeFile(const std::string& path) override;
    int removeFolder(const std::string& path) override;
    int createFolder(const std::string& path, std::uint32_t permissions) override;
    int rename(const std::string& from, const std::string& to) override;
    int replaceFile(const std::string& from, const std::string& to) override;
    int copyLink(const std::string& from, const std::string& to) override;
    int list(const std::string& folder, std::vector<std::string>& names) override;
    int volume(const std::string& path, VolumeInformation& out) override;
    int temporaryFolder(std::string& out) override;
    int createUnique(const std::string& folder, const std::string& prefix, std::string& path) override;
    int removeUnlessHeld(const std::string& path) override;
    int moveToTrash(const std::string& path) override { return moveFileToTrash(toPosixPath(path)); }
};

int PosixFileSystem::open(const std::string& path, const OpenRequest& request, std::unique_ptr<OpenFile>& out) {
    const std::string posix = toPosixPath(path);
    Descriptor descriptor;
    bool created = request.isPrivate;
    const bool mayReplace = request.disposition == Disposition::createAlways;
    if (const int code = request.isPrivate ? openPrivate(posix, mayReplace, descriptor)
                                           : openByDisposition(posix, request, descriptor, created))
        return code;
    if (const int code = refuseOpened(descriptor, request, created))
        return code;
    Sharing sharing;
    if (!sharing.acquire(descriptor.get(), {request.read, request.write, request.shareRead, request.shareWrite}))
        return cnErrorSharingViolation;
    const bool empties = mayReplace || request.disposition == Disposition::truncateExisting;
    if (empties && !created)
        if (const int code = emptyOpened(descriptor))
            return code;
    if (created && request.attributes)
        setDosAttributes(descriptor.get(), request.attributes);
    if (created && (request.attributes & attributeReadOnly))
        forbidWriting(descriptor.get());
    out = std::make_unique<PosixFile>(std::move(descriptor), std::move(sharing), posix, request.deleteOnClose);
    return 0;
}

int PosixFileSystem::information(const std::string& path, FileInformation& out) {
    const std::string posix = toPosixPath(path);
    FileInformation found, target;
    if (!look(AT_FDCWD, posix.c_str(), AT_SYMLINK_NOFOLLOW, found))
        return pathError(posix);
    if (found.isLink) {
        if (!look(AT_FDCWD, posix.c_str(), 0, target)) { // a link to nowhere is still an entry
            target.isSpecial = true;
            target.times.lastWrite = found.times.lastWrite;
        }
        found = target;
        found.isLink = true;
    }
    finishAttributes(dosAttributes(posix), found);
    out = found;
    return 0;
}

int PosixFileSystem::setAttributes(const std::string& path, std::uint32_t attributes) {
    const std::string posix = toPosixPath(path);
    struct stat status;
    if (::stat(posix.c_str(), &status) != 0)
        return pathError(posix);
    const mode_t open = (status.st_mode | S_IWUSR) & 07777, closed = status.st_mode & 07777 & ~cnAnyWrite;
    const bool wasReadOnly = !(status.st_mode & cnAnyWrite);
    // The extended attribute of a file that nobody may write can be written by nobody either.
    if (wasReadOnly && ::chmod(posix.c_str(), open) != 0)
        return lastError();
    const int code = setDosAttributes(posix, attributes);
    const bool isReadOnly = code ? wasReadOnly : (attributes & attributeReadOnly) != 0;
    if (isReadOnly && ::chmod(posix.c_str(), closed) != 0)
        return lastError();
    return code;
}

int PosixFileSystem::removeFile(const std::string& path) {
    const std::string posix = toPosixPath(path);
    struct stat status;
    if (::lstat(posix.c_str(), &status) != 0)
        return pathError(posix);
    if (S_ISDIR(status.st_mode) || (S_ISREG(status.st_mode) && !(status.st_mode & cnAnyWrite)))
        return cnErrorAccessDenied;
    return ::unlink(posix.c_str()) == 0 ? 0 : pathError(posix);
}

int PosixFileSystem::removeFolder(const std::string& path) {
    const std::string posix = toPosixPath(path);
    if (!existsAsFolder(posix))
        return pathError(posix);
    std::error_code error;
    std::filesystem::remove_all(posix, error);
    return error ? systemErrorFromErrno(error.value()) : 0;
}

int PosixFileSystem::createFolder(const std::string& path, std::uint32_t permissions) {
    const std::string posix = toPosixPath(path);
    if (::mkdir(posix.c_str(), permissions) == 0)
        return 0;
    if (errno == EEXIST)
        return cnErrorAlreadyExists;
    return errno == ENOENT || posix.empty() ? cnErrorPathNotFound : lastError();
}

int PosixFileSystem::rename(const std::string& from, const std::string& to) {
    const std::string source = toPosixPath(from), target = toPosixPath(to);
    if (::renameat2(AT_FDCWD, source.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0)
        return 0;
    if (errno == EEXIST)
        return cnErrorAlreadyExists;
    const bool isUnknown = errno == EINVAL || errno == ENOSYS; // to the volume, or to the kernel
    return isUnknown && ::rename(source.c_str(), target.c_str()) == 0 ? 0 : pathError(source);
}

/// The mode of a file made without any wish of its own. (The umask can be read only by setting it; the kernel tells it
/// in a file, without a moment in which another thread creates files under the wrong one.)
mode_t newFileMode() {
    mode_t mask = S_IWGRP | S_IWOTH;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> status(std::fopen("/proc/self/status", "re"), std::fclose);
    std::array<char, 256> line;
    while (status && std::fgets(line.data(), line.size(), status.get()))
        if (std::sscanf(line.data(), "Umask: %o", &mask) == 1)
            break;
    return cnOrdinaryMode & ~mask;
}

/// Makes a change of names in the folder lasting. Volumes that cannot do that are left to themselves.
void flushFolder(const std::string& posix) {
    const Descriptor folder(::open(posix.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.isOpen())
        retryInterrupted([&] { return ::fsync(folder.get()); });
}

int PosixFileSystem::replaceFile(const std::string& from, const std::string& to) {
    const std::string source = toPosixPath(from), target = toPosixPath(to);
    struct stat status;
    const bool exists = ::stat(target.c_str(), &status) == 0;
    if (exists && (!S_ISREG(status.st_mode) || !(status.st_mode & cnAnyWrite)))
        return cnErrorAccessDenied;
    const mode_t mode = exists ? status.st_mode & 0777 : newFileMode();
    if (::chmod(source.c_str(), mode) != 0)
        return pathError(source);
    if (exists)
        if (const std::uint32_t attributes = dosAttributes(target) & ~attributeReadOnly)
            setDosAttributes(source, attributes); // a volume without attributes still takes the file
    if (::rename(source.c_str(), target.c_str()) != 0)
        return pathError(source);
    flushFolder(parentOf(target));
    return 0;
}

int PosixFileSystem::copyLink(const std::string& from, const std::string& to) {
    std::error_code error;
    std::filesystem::copy_symlink(toPosixPath(from), toPosixPath(to), error);
    return error ? systemErrorFromErrno(error.value()) : 0;
}

int PosixFileSystem::list(const std::string& folder, std::vector<std::string>& names) {
    const std::string posix = toPosixPath(folder);
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(::opendir(posix.c_str()), ::closedir);
    if (!stream)
        return errno == ENOENT ? cnErrorPathNotFound : lastError();
    std::vector<std::string> found;
    errno = 0;
    while (const dirent* entry = ::readdir(stream.get())) {
        found.push_back(toLibraryName(entry->d_name));
        errno = 0;
    }
    if (errno != 0)
        return lastError();
    names.swap(found);
    return 0;
}

int PosixFileSystem::volume(const std::string& path, VolumeInformation& out) {
    const std::string posix = toPosixPath(path);
    struct statvfs status;
    if (retryInterrupted([&] { return ::statvfs(posix.c_str(), &status); }) != 0)
        return pathError(posix);
    const std::uint64_t unit = status.f_frsize ? status.f_frsize : status.f_bsize;
    VolumeInformation found;
    found.sectorBytes = unit % cnSectorBytes == 0 ? cnSectorBytes : static_cast<std::uint32_t>(unit);
    found.clusterSectors = static_cast<std::uint32_t>(unit / std::max(found.sectorBytes, 1u));
    found.totalBytes = status.f_blocks * unit;
    found.freeBytes = status.f_bavail * unit;
    out = found;
    return 0;
}

int PosixFileSystem::temporaryFolder(std::string& out) {
    const char* chosen = std::getenv("TMPDIR");
    if (!chosen || *chosen != '/' || !existsAsFolder(chosen))
        chosen = "/tmp";
    out = childPath(toLibraryPath(chosen), "");
    return 0;
}

/// Where the search for a free number starts; another one at every call, in every process.
std::uint32_t temporaryNumber() {
    static std::atomic<std::uint32_t> s_calls{0};
    const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
    constexpr std::uint64_t mixer = 0x9E3779B97F4A7C15; // 2^64 / golden ratio
    const auto seed = static_cast<std::uint64_t>(now) ^ (static_cast<std::uint64_t>(::getpid()) << 32) ^
                      (static_cast<std::uint64_t>(s_calls.fetch_add(1)) << 16);
    return static_cast<std::uint32_t>((seed * mixer) >> 48);
}

int PosixFileSystem::createUnique(const std::string& folder, const std::string& prefix, std::string& path) {
    constexpr std::uint32_t numbers = 0x10000;
    constexpr std::size_t prefixBytes = 3;
    const std::string base = childPath(folder, prefix.substr(0, wholeCharacters(prefix.c_str(), prefixBytes)));
    const std::uint32_t first = temporaryNumber();
    for (std::uint32_t i = 0; i < numbers; ++i) {
        std::array<char, 16> suffix;
        std::snprintf(suffix.data(), suffix.size(), "%X.tmp", (first + i) % numbers);
        const std::string candidate = base + suffix.data();
        const std::string posix = toPosixPath(candidate);
        const Descriptor file(::open(posix.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, cnPrivateMode));
        if (file.isOpen()) {
            path = candidate;
            return 0;
        }
        if (errno != EEXIST && errno != EINTR)
            return pathError(posix);
    }
    return cnErrorFileExists;
}

int PosixFileSystem::removeUnlessHeld(const std::string& path) {
    const std::string posix = toPosixPath(path);
    const Descriptor file(::open(posix.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!file.isOpen())
        return errno == ELOOP ? cnErrorAccessDenied : pathError(posix);
    struct stat open, named;
    if (::fstat(file.get(), &open) != 0)
        return lastError();
    if (!S_ISREG(open.st_mode) || open.st_uid != ::geteuid())
        return cnErrorAccessDenied;
    if (::flock(file.get(), LOCK_EX | LOCK_NB) != 0)
        return cnErrorSharingViolation;
    // The name may have passed to another file since it was opened.
    if (::lstat(posix.c_str(), &named) != 0 || named.st_dev != open.st_dev || named.st_ino != open.st_ino)
        return cnErrorSharingViolation;
    return ::unlink(posix.c_str()) == 0 ? 0 : lastError();
}

std::atomic<FileSystem*> s_replacement{nullptr};

} // namespace

FileSystem& fileSystem() {
    static PosixFileSystem s_system;
    FileSystem* const replacement = s_replacement.load(std::memory_order_acquire);
    return replacement ? *replacement : s_system;
}

FileSystem* replaceFileSystem(FileSystem* other) { return s_replacement.exchange(other, std::memory_order_acq_rel); }

} // namespace ovw::platform
