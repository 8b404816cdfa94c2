#include "Platform/posix/pageareas.h"

#include "Platform/memory.h"

#include <algorithm>
#include <bit>

#include <sys/mman.h>

namespace ovw::platform {

namespace {

/// Address space that begins at a large page; null when there is none.
char* mapArea(std::size_t bytes) {
    void* const memory =
        ::mmap(nullptr, bytes + cnLargePage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        return nullptr;
    char* const first = static_cast<char*>(memory);
    const std::size_t before = -reinterpret_cast<std::uintptr_t>(first) % cnLargePage;
    if (before > 0)
        ::munmap(first, before);
    if (before < cnLargePage)
        ::munmap(first + before + bytes, cnLargePage - before);
    adviseLargePages(first + before, bytes);
    return first + before;
}

} // namespace

void adviseLargePages([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t bytes) {
#if defined(MADV_HUGEPAGE)
    ::madvise(memory, bytes, MADV_HUGEPAGE);
#endif
}

PageAreas& PageAreas::instance() {
    static PageAreas& s_areas = *new PageAreas; // outlives the stores that are destroyed at exit
    return s_areas;
}

std::size_t PageAreas::pieceBytes() {
    static const std::size_t s_bytes = (std::size_t{1} << 20) + pageSize();
    return s_bytes;
}

void* PageAreas::take() {
    const std::scoped_lock lock(m_mutex);
    if (cnPieces * pieceBytes() > cnAreaBytes)
        return nullptr; // pages of an unusual size
    const auto hasRoom = [](const Area& area) { return area.base && !area.isFull(); };
    auto area = std::find_if(m_areas.begin(), m_areas.end(), hasRoom);
    if (area == m_areas.end()) {
        area = std::find_if(m_areas.begin(), m_areas.end(), [](const Area& candidate) { return !candidate.base; });
        if (area == m_areas.end() || !(area->base = mapArea(cnAreaBytes)))
            return nullptr;
    }
    const int piece = std::countr_one(area->used);
    area->used |= std::uint32_t{1} << piece;
    return area->base + static_cast<std::size_t>(piece) * pieceBytes();
}

bool PageAreas::give(void* memory) {
    const std::scoped_lock lock(m_mutex);
    char* const piece = static_cast<char*>(memory);
    const auto area =
        std::find_if(m_areas.begin(), m_areas.end(), [piece](const Area& candidate) { return candidate.holds(piece); });
    if (area == m_areas.end())
        return false;
    area->used &= ~(std::uint32_t{1} << static_cast<std::size_t>(piece - area->base) / pieceBytes());
    if (area->used == 0) {
        ::munmap(area->base, cnAreaBytes);
        area->base = nullptr;
    } else {
        ::madvise(piece, pieceBytes(), MADV_DONTNEED);
    }
    return true;
}

} // namespace ovw::platform
