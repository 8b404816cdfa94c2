// Counts heap allocations by standing in front of the C library's allocator, for the whole process: operator new ends
// there too. The GNU C library gives its allocator under these second names.

#include "allocations.h"

#include <atomic>
#include <cstddef>

namespace {

std::atomic<std::uint64_t> s_count{0};

void countOne() { s_count.fetch_add(1, std::memory_order_relaxed); }

} // namespace

extern "C" {

void* __libc_malloc(std::size_t bytes);
void* __libc_calloc(std::size_t count, std::size_t bytes);
void* __libc_realloc(void* memory, std::size_t bytes);

[[gnu::visibility("default")]] void* malloc(std::size_t bytes) {
    countOne();
    return __libc_malloc(bytes);
}

[[gnu::visibility("default")]] void* calloc(std::size_t count, std::size_t bytes) {
    countOne();
    return __libc_calloc(count, bytes);
}

[[gnu::visibility("default")]] void* realloc(void* memory, std::size_t bytes) {
    countOne();
    return __libc_realloc(memory, bytes);
}
}

std::uint64_t ovwbench::allocationCount() { return s_count.load(std::memory_order_relaxed); }
