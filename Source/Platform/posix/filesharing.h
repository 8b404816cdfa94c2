#ifndef OVW_PLATFORM_POSIX_FILESHARING_H
#define OVW_PLATFORM_POSIX_FILESHARING_H

#include <cstdint>

namespace ovw::platform {

/// What one opening of a file does, and what it lets the others do meanwhile.
struct FileUse {
    bool reads;
    bool writes;
    bool sharesRead;
    bool sharesWrite;
};

/// A file's entry in the table of open files of this process, which gives openings the sharing rules of Windows: two of
/// them may exist together when each shares what the other does. Other processes are not held to it. Thread-safe.
class Sharing {
public:
    Sharing() = default;
    ~Sharing();
    Sharing(Sharing&& other) noexcept;
    Sharing& operator=(Sharing&&) = delete;

    /// Enters the open file; false when an opening that exists already forbids it.
    bool acquire(int descriptor, const FileUse& use);

private:
    std::uint64_t m_ticket = 0; // 0: no entry
};

} // namespace ovw::platform

#endif // OVW_PLATFORM_POSIX_FILESHARING_H
