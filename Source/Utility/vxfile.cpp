#include "Utility/vxfile.h"

#include "Platform/systemerror.h"
#include "ovwcmn/vxwutl.h"

#include <limits>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

namespace platform = ovw::platform;

namespace {

constexpr std::size_t cnCopyBytes = 1 << 18;

struct OpenEntry {
    std::unique_ptr<platform::OpenFile> file;
    std::uint64_t position = 0;
};

using EntryPointer = std::shared_ptr<OpenEntry>;

/// The open files by handle. Never destroyed: static objects may close their files late.
class HandleTable {
public:
    std::uint32_t add(EntryPointer entry) {
        const std::lock_guard lock(m_guard);
        do
            ++m_last;
        while (m_last == 0 || m_last == cnNoFileHandle || m_entries.contains(m_last));
        m_entries.emplace(m_last, std::move(entry));
        return m_last;
    }

    EntryPointer find(std::uint32_t handle) {
        const std::lock_guard lock(m_guard);
        const auto found = m_entries.find(handle);
        return found == m_entries.end() ? nullptr : found->second;
    }

    EntryPointer remove(std::uint32_t handle) {
        const std::lock_guard lock(m_guard);
        auto node = m_entries.extract(handle);
        return node.empty() ? nullptr : std::move(node.mapped());
    }

private:
    std::mutex m_guard;
    std::unordered_map<std::uint32_t, EntryPointer> m_entries;
    std::uint32_t m_last = 0;
};

HandleTable& handles() {
    static HandleTable& s_handles = *new HandleTable;
    return s_handles;
}

/// Turns a system code into the answer of an operation.
int answer(int code, int* error) {
    if (code == 0)
        return 1;
    vxSetLastError(code);
    if (error)
        *error = code;
    return 0;
}

/// Runs an operation, which returns a system code, on an open file.
template <class Operation>
int onFile(std::uint32_t handle, int* error, Operation operation) {
    const EntryPointer entry = handles().find(handle);
    return answer(entry ? operation(*entry) : platform::cnErrorInvalidHandle, error);
}

int moved(OpenEntry& entry, std::int64_t offset, std::uint32_t method, std::int64_t* position) {
    std::uint64_t base = 0;
    if (method == FILE_CURRENT) {
        base = entry.position;
    } else if (method == FILE_END) {
        platform::FileInformation information;
        if (const int code = entry.file->information(information))
            return code;
        base = information.length;
    } else if (method != FILE_BEGIN) {
        return platform::cnErrorInvalidParameter;
    }
    std::int64_t target;
    if (__builtin_add_overflow(static_cast<std::int64_t>(base), offset, &target))
        return platform::cnErrorInvalidParameter;
    if (target < 0)
        return platform::cnErrorNegativeSeek;
    entry.position = static_cast<std::uint64_t>(target);
    if (position)
        *position = target;
    return 0;
}

platform::OpenRequest requestOf(std::uint32_t access, std::uint32_t share, std::uint32_t creation,
                                std::uint32_t attributes) {
    platform::OpenRequest request;
    request.read = access & GENERIC_READ;
    request.write = access & GENERIC_WRITE;
    request.shareRead = share & FILE_SHARE_READ;
    request.shareWrite = share & FILE_SHARE_WRITE;
    request.disposition = static_cast<platform::Disposition>(creation);
    request.attributes =
        attributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE);
    request.deleteOnClose = attributes & FILE_FLAG_DELETE_ON_CLOSE;
    const bool creates = creation == CREATE_NEW || creation == CREATE_ALWAYS;
    request.isPrivate = creates && request.deleteOnClose && (attributes & FILE_ATTRIBUTE_TEMPORARY);
    return request;
}

int copyContents(platform::OpenFile& from, platform::OpenFile& to) {
    std::vector<char> buffer(cnCopyBytes);
    for (std::uint64_t position = 0;;) {
        std::size_t done = 0;
        if (const int code = from.readAt(buffer.data(), buffer.size(), position, done))
            return code;
        if (done == 0)
            return 0;
        std::size_t written = 0;
        if (const int code = to.writeAt(buffer.data(), done, position, written))
            return code;
        position += done;
    }
}

int copyFile(const char* from, const char* to, bool failIfExists) {
    platform::FileSystem& files = platform::fileSystem();
    std::unique_ptr<platform::OpenFile> source, target;
    platform::FileInformation information;
    if (const int code = files.open(from, requestOf(GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, 0), source))
        return code;
    if (const int code = source->information(information))
        return code;
    platform::OpenRequest request = requestOf(GENERIC_WRITE, 0, failIfExists ? CREATE_NEW : CREATE_ALWAYS, 0);
    constexpr std::uint32_t ownerMayWrite = 0200; // until all is there: being read-only is an attribute
    if (!information.isSpecial)
        request.permissions = information.permissions | ownerMayWrite;
    if (const int code = files.open(to, request, target))
        return code;
    const int code = copyContents(*source, *target);
    // A volume without times and attributes, or a target of another user, still takes the contents.
    if (code == 0)
        target->setTimes(information.times);
    platform::FileInformation made;
    const bool isFile = target->information(made) == 0 && !made.isSpecial; // a device stays what it is
    target.reset();
    if (code != 0 && isFile)
        files.removeFile(to);
    else if (information.attributes != platform::attributeNormal)
        files.setAttributes(to, information.attributes);
    return code;
}

} // namespace

std::uint32_t vxOpenFile(const char* path, std::uint32_t, std::uint32_t, std::uint32_t access, std::uint32_t share,
                         std::uint32_t creation, std::uint32_t attributes, int* error) {
    auto entry = std::make_shared<OpenEntry>();
    int code = platform::cnErrorInvalidParameter;
    if (path && creation >= CREATE_NEW && creation <= TRUNCATE_EXISTING)
        code = platform::fileSystem().open(path, requestOf(access, share, creation, attributes), entry->file);
    return answer(code, error) ? handles().add(std::move(entry)) : cnNoFileHandle;
}

int vxCloseFile(std::uint32_t file) {
    return answer(handles().remove(file) ? 0 : platform::cnErrorInvalidHandle, nullptr);
}

int vxReadFile(std::uint32_t file, void* buffer, std::uint32_t size, std::uint32_t* done, int* error) {
    std::size_t count = 0;
    const int result = onFile(file, error, [&](OpenEntry& entry) {
        const int code = entry.file->readAt(buffer, size, entry.position, count);
        entry.position += count;
        return code;
    });
    if (done)
        *done = static_cast<std::uint32_t>(count);
    return result;
}

int vxWriteFile(std::uint32_t file, const void* buffer, std::uint32_t size, std::uint32_t* done, int* error) {
    std::size_t count = 0;
    const int result = onFile(file, error, [&](OpenEntry& entry) {
        const int code = entry.file->writeAt(buffer, size, entry.position, count);
        entry.position += count;
        return code;
    });
    if (done)
        *done = static_cast<std::uint32_t>(count);
    return result;
}

int vxSetFilePosition(std::uint32_t file, std::int64_t offset, std::uint32_t method, std::int64_t* position,
                      int* error) {
    return onFile(file, error, [&](OpenEntry& entry) { return moved(entry, offset, method, position); });
}

int vxSetEndOfFile(std::uint32_t file) {
    return onFile(file, nullptr, [](OpenEntry& entry) { return entry.file->setLength(entry.position); });
}

int vxFlushFile(std::uint32_t file) {
    return onFile(file, nullptr, [](OpenEntry& entry) { return entry.file->flush(); });
}

int vxGetFileInformation(std::uint32_t file, platform::FileInformation& out) {
    return onFile(file, nullptr, [&](OpenEntry& entry) { return entry.file->information(out); });
}

int vxSetFileTimes(std::uint32_t file, const platform::FileTimes& times) {
    return onFile(file, nullptr, [&](OpenEntry& entry) { return entry.file->setTimes(times); });
}

int vxDeleteFile(const char* path, int* error) { return answer(platform::fileSystem().removeFile(path), error); }

int vxCreateFolder(const char* path, int* created, int* error) {
    const int result = answer(platform::fileSystem().createFolder(path), error);
    if (created)
        *created = result;
    return result;
}

int vxChangeFileName(const char* from, const char* to, int* error) {
    platform::FileInformation information;
    platform::FileSystem& files = platform::fileSystem();
    const bool exists = files.information(to, information) == 0;
    return answer(exists ? platform::cnErrorAlreadyExists : files.rename(from, to), error);
}

int vxCopyFile(const char* from, const char* to, int failIfExists, int* error) {
    return answer(copyFile(from, to, failIfExists), error);
}
