#include "outputfile.h"

#include "failure.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ovwpaint {

namespace {

/// What the file that is replaced allows, or what a new one would.
mode_t modeFor(const std::string& target) {
    struct stat existing = {};
    if (stat(target.c_str(), &existing) == 0)
        return existing.st_mode & 0777;
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

/// Makes a rename in the folder lasting; file systems that cannot do that are left to themselves.
void flushFolder(const std::string& folder) {
    const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    fsync(descriptor);
    close(descriptor);
}

std::string folderOf(const std::string& path) {
    const std::string folder = std::filesystem::path(path).parent_path().string();
    return folder.empty() ? "." : folder;
}

} // namespace

OutputFile::OutputFile(const std::string& path) : m_path(path) {
    std::error_code ignored;
    const std::filesystem::file_status status = std::filesystem::status(path, ignored);
    if (std::filesystem::is_directory(status))
        fail(EISDIR);
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
        m_descriptor = open(path.c_str(), O_WRONLY | O_CLOEXEC);
        if (m_descriptor < 0)
            fail(errno);
        return;
    }
    const std::filesystem::path followed = std::filesystem::canonical(path, ignored);
    m_target = followed.empty() ? path : followed.string();
    openBeside();
}

void OutputFile::openBeside() {
    m_temporary = m_target + ".XXXXXX";
    m_descriptor = mkostemp(m_temporary.data(), O_CLOEXEC);
    if (m_descriptor < 0) {
        const int error = errno;
        m_temporary.clear();
        fail(error);
    }
    fchmod(m_descriptor, modeFor(m_target));
}

OutputFile::~OutputFile() {
    if (m_descriptor >= 0)
        close(m_descriptor);
    if (!m_temporary.empty())
        unlink(m_temporary.c_str());
}

void OutputFile::write(const void* bytes, std::size_t count) {
    const char* next = static_cast<const char*>(bytes);
    while (count > 0) {
        const ssize_t written = ::write(m_descriptor, next, count);
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            fail(errno);
        next += written;
        count -= static_cast<std::size_t>(written);
    }
}

std::uint64_t OutputFile::seek(std::int64_t offset, bool fromHere) {
    const off_t place = lseek(m_descriptor, offset, fromHere ? SEEK_CUR : SEEK_SET);
    if (place < 0)
        fail(errno);
    return static_cast<std::uint64_t>(place);
}

void OutputFile::commit() {
    if (!m_temporary.empty() && fsync(m_descriptor) != 0)
        fail(errno);
    const int result = close(m_descriptor);
    m_descriptor = -1;
    if (result != 0)
        fail(errno);
    if (m_temporary.empty())
        return;
    if (rename(m_temporary.c_str(), m_target.c_str()) != 0)
        fail(errno);
    m_temporary.clear();
    flushFolder(folderOf(m_target));
}

void OutputFile::fail(int error) const { throw Failure(m_path + ": " + std::strerror(error)); }

} // namespace ovwpaint
