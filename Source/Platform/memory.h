#ifndef OVW_PLATFORM_MEMORY_H
#define OVW_PLATFORM_MEMORY_H

/// @file
/// Physical memory and blocks of memory. Thread-safe, never throws, never blocks for long.

#include <cstddef>
#include <cstdint>

namespace ovw::platform {

/// Bytes of physical memory in the machine; 0 when the system does not tell.
std::uint64_t totalPhysicalMemory();
/// Bytes of physical memory that new blocks could take without swapping; 0 when the system does not tell.
std::uint64_t availablePhysicalMemory();
/// Bytes of a page, a power of two.
std::size_t pageSize();

/// Blocks of at least this many bytes are pages of their own: they begin at a page, are fresh (so that their zeros cost
/// nothing until they are touched) and go back to the system when they are freed. Smaller ones come from the heap.
bool isPageBlock(std::size_t bytes);

/// `bytes` (at least 1) bytes, all zero, at a multiple of 16; null when memory runs out.
void* allocateMemory(std::size_t bytes);
/// Frees what allocateMemory gave for the same `bytes`; null is allowed.
void freeMemory(void* memory, std::size_t bytes);
/// Changes the size of a page block to that of another page block; what is added is zero. The block may move. Null when
/// memory runs out: then the block is as it was. Both sizes must satisfy isPageBlock.
void* resizePageBlock(void* memory, std::size_t oldBytes, std::size_t newBytes);

/// Has the pages of a part of a block ready in one step, which costs a fraction of touching them one by one. A hint:
/// the contents do not change, and a system that cannot do it does nothing.
void prefaultMemory(void* memory, std::size_t bytes);

/// Tells a checking build that nobody may touch these bytes of a block until allowAccess; otherwise does nothing.
void forbidAccess(void* memory, std::size_t bytes);
void allowAccess(void* memory, std::size_t bytes);

} // namespace ovw::platform

#endif // OVW_PLATFORM_MEMORY_H
