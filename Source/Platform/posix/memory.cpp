#include "Platform/memory.h"
#include "Platform/posix/pageareas.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include <sys/mman.h>
#include <unistd.h>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#endif

namespace ovw::platform {

namespace {

// Above the size of an image block, so that blocks which come and go with the swap file are recycled by the heap.
constexpr std::size_t cnPageBlockBytes = std::size_t{1} << 20;

#if defined(__SANITIZE_ADDRESS__)
// The leak checker does not look for pointers in mapped pages.
constexpr bool cnUsePages = false;
#else
constexpr bool cnUsePages = true;
#endif

std::size_t wholePages(std::size_t bytes) { return (bytes + pageSize() - 1) & ~(pageSize() - 1); }

/// The pages of a page block. Large ones take whole large pages, so that a block which grows finds its next pages
/// ready.
std::size_t mappedBytes(std::size_t bytes) {
    return bytes >= 2 * cnLargePage ? (bytes + cnLargePage - 1) & ~(cnLargePage - 1) : wholePages(bytes);
}

/// Blocks of this size are many, and come from areas.
bool isAreaPiece(std::size_t bytes) { return isPageBlock(bytes) && wholePages(bytes) == PageAreas::pieceBytes(); }

void* mapPages(std::size_t bytes) {
    void* const memory = ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        return nullptr;
    if (bytes >= 2 * cnLargePage)
        adviseLargePages(memory, bytes);
    return memory;
}

std::uint64_t physicalPages(int name) {
    const long pages = ::sysconf(name);
    return pages > 0 ? static_cast<std::uint64_t>(pages) * pageSize() : 0;
}

} // namespace

std::uint64_t totalPhysicalMemory() { return physicalPages(_SC_PHYS_PAGES); }

std::uint64_t availablePhysicalMemory() { return physicalPages(_SC_AVPHYS_PAGES); }

std::size_t pageSize() {
    static const std::size_t s_bytes = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    return s_bytes;
}

bool isPageBlock(std::size_t bytes) { return cnUsePages && bytes >= cnPageBlockBytes; }

void* allocateMemory(std::size_t bytes) {
    if (!isPageBlock(bytes))
        return std::calloc(bytes, 1);
    void* const piece = isAreaPiece(bytes) ? PageAreas::instance().take() : nullptr;
    return piece ? piece : mapPages(mappedBytes(bytes));
}

void freeMemory(void* memory, std::size_t bytes) {
    if (!isPageBlock(bytes))
        std::free(memory);
    else if (memory && !(isAreaPiece(bytes) && PageAreas::instance().give(memory)))
        ::munmap(memory, mappedBytes(bytes));
}

void* resizePageBlock(void* memory, std::size_t oldBytes, std::size_t newBytes) {
    const std::size_t oldMapped = mappedBytes(oldBytes), newMapped = mappedBytes(newBytes);
    if (isAreaPiece(oldBytes) || isAreaPiece(newBytes)) {
        void* const moved = allocateMemory(newBytes);
        if (moved) {
            std::memcpy(moved, memory, std::min(oldBytes, newBytes));
            freeMemory(memory, oldBytes);
        }
        return moved;
    }
    // The pages that are added come zeroed; the rest of a page that is kept must be cleared by hand.
    if (newBytes < oldBytes)
        std::memset(static_cast<char*>(memory) + newBytes, 0, std::min(oldBytes, newMapped) - newBytes);
    if (oldMapped == newMapped)
        return memory;
    void* const moved = ::mremap(memory, oldMapped, newMapped, MREMAP_MAYMOVE);
    if (moved == MAP_FAILED)
        return nullptr;
    if (newBytes >= 2 * cnLargePage)
        adviseLargePages(moved, newMapped);
    return moved;
}

void prefaultMemory([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t bytes) {
#if defined(MADV_POPULATE_WRITE)
    const auto address = reinterpret_cast<std::uintptr_t>(memory);
    const std::uintptr_t begin = address & ~(pageSize() - 1);
    ::madvise(reinterpret_cast<void*>(begin), wholePages(address + bytes - begin), MADV_POPULATE_WRITE);
#endif
}

void forbidAccess([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t bytes) {
#if defined(__SANITIZE_ADDRESS__)
    ASAN_POISON_MEMORY_REGION(memory, bytes);
#endif
}

void allowAccess([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t bytes) {
#if defined(__SANITIZE_ADDRESS__)
    ASAN_UNPOISON_MEMORY_REGION(memory, bytes);
#endif
}

} // namespace ovw::platform
