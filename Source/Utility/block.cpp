#include "Utility/block.h"

#include "Platform/memory.h"

#include <algorithm>
#include <atomic>
#include <cassert>
#include <cstddef>
#include <cstring>
#include <new>

namespace ovw::utility {

namespace {

constexpr std::uint32_t cnLiveBlock = 0x6B6C624F;
constexpr std::uint32_t cnDeadBlock = 0x64616544;

// Lies right before the block's address. The memory obtained from the platform begins `offset` bytes before the block:
// room for the header, and what it takes to reach the alignment.
struct Header {
    std::uint32_t size;
    std::uint32_t offset;
    std::atomic<std::int32_t> locks;
    std::uint32_t mark;
};

constexpr std::size_t cnOverhead = sizeof(Header) + cnBlockAlignment - 1;

Header* headerOf(const void* block) {
    auto* const header = reinterpret_cast<Header*>(const_cast<char*>(static_cast<const char*>(block)) - sizeof(Header));
    assert(header->mark == cnLiveBlock);
    return header;
}

std::size_t rawBytes(std::uint32_t size) { return size + cnOverhead; }

// Bytes between the end of the block and the end of its memory.
std::size_t slack(const Header& header) { return rawBytes(header.size) - header.offset - header.size; }

void* placeBlock(void* raw, std::uint32_t size) {
    const auto address = reinterpret_cast<std::uintptr_t>(raw);
    const auto aligned = (address + cnOverhead) & ~std::uintptr_t{cnBlockAlignment - 1};
    const auto offset = static_cast<std::uint32_t>(aligned - address);
    char* const block = static_cast<char*>(raw) + offset;
    auto* const header = new (block - sizeof(Header)) Header{size, offset, 0, cnLiveBlock};
    platform::forbidAccess(block + size, slack(*header));
    return block;
}

// Page blocks keep their place within a page, so that the system can move them without copying.
void* resizePages(void* block, std::uint32_t size) {
    Header* const header = headerOf(block);
    const std::uint32_t offset = header->offset;
    char* const raw = static_cast<char*>(block) - offset;
    void* const moved = platform::resizePageBlock(raw, rawBytes(header->size), rawBytes(size));
    if (!moved)
        return nullptr;
    char* const result = static_cast<char*>(moved) + offset;
    Header* const placed = headerOf(result);
    // What a shrunken block no longer holds must be zero when it grows again; the platform sees to the rest of the
    // page.
    if (size < placed->size)
        std::memset(result + size, 0, rawBytes(size) - offset - size);
    placed->size = size;
    return result;
}

} // namespace

void* allocateBlock(std::uint32_t size) {
    void* const raw = platform::allocateMemory(rawBytes(size));
    return raw ? placeBlock(raw, size) : nullptr;
}

void* resizeBlock(void* block, std::uint32_t size) {
    Header* const header = headerOf(block);
    if (header->size == size)
        return block;
    if (platform::isPageBlock(rawBytes(header->size)) && platform::isPageBlock(rawBytes(size)))
        return resizePages(block, size);
    void* const result = allocateBlock(size);
    if (!result)
        return nullptr;
    std::memcpy(result, block, std::min(header->size, size));
    headerOf(result)->locks = header->locks.load();
    freeBlock(block);
    return result;
}

void freeBlock(void* block) {
    if (!block)
        return;
    Header* const header = headerOf(block);
    header->mark = cnDeadBlock;
    platform::allowAccess(static_cast<char*>(block) + header->size, slack(*header));
    platform::freeMemory(static_cast<char*>(block) - header->offset, rawBytes(header->size));
}

std::uint32_t blockSize(const void* block) { return block ? headerOf(block)->size : 0; }

void lockBlock(void* block) { headerOf(block)->locks.fetch_add(1, std::memory_order_relaxed); }

void unlockBlock(void* block) {
    std::atomic<std::int32_t>& locks = headerOf(block)->locks;
    std::int32_t count = locks.load(std::memory_order_relaxed);
    while (count > 0 && !locks.compare_exchange_weak(count, count - 1, std::memory_order_relaxed)) {
    }
}

int blockLocks(const void* block) { return block ? headerOf(block)->locks.load(std::memory_order_relaxed) : 0; }

} // namespace ovw::utility
