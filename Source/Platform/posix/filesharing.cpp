#include "Platform/posix/filesharing.h"

#include <algorithm>
#include <mutex>
#include <utility>
#include <vector>

#include <sys/stat.h>

namespace ovw::platform {

namespace {

struct Entry {
    std::uint64_t ticket;
    dev_t device;
    ino_t node;
    FileUse use;
};

struct Table {
    std::mutex guard;
    std::vector<Entry> entries;
    std::uint64_t lastTicket = 0;
};

/// Never destroyed: files may be closed by the destructors of static objects.
Table& table() {
    static Table& s_table = *new Table;
    return s_table;
}

bool shares(const FileUse& owner, const FileUse& guest) {
    return (owner.sharesRead || !guest.reads) && (owner.sharesWrite || !guest.writes);
}

} // namespace

Sharing::Sharing(Sharing&& other) noexcept : m_ticket(std::exchange(other.m_ticket, 0)) {}

Sharing::~Sharing() {
    if (m_ticket == 0)
        return;
    const std::lock_guard lock(table().guard);
    std::erase_if(table().entries, [this](const Entry& entry) { return entry.ticket == m_ticket; });
}

bool Sharing::acquire(int descriptor, const FileUse& use) {
    struct stat status;
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode))
        return true; // devices and pipes are shared freely
    Table& files = table();
    const std::lock_guard lock(files.guard);
    const bool refused = std::ranges::any_of(files.entries, [&](const Entry& entry) {
        const bool sameFile = entry.device == status.st_dev && entry.node == status.st_ino;
        return sameFile && !(shares(entry.use, use) && shares(use, entry.use));
    });
    if (refused)
        return false;
    files.entries.push_back({++files.lastTicket, status.st_dev, status.st_ino, use});
    m_ticket = files.lastTicket;
    return true;
}

} // namespace ovw::platform
