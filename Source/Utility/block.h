#ifndef OVW_UTILITY_BLOCK_H
#define OVW_UTILITY_BLOCK_H

/// @file
/// Memory blocks that know their size: the common ground of movable and fixed memory.

#include <cstdint>

namespace ovw::utility {

/// Alignment of every block, so that pixel loops may load whole vectors.
inline constexpr std::uint32_t cnBlockAlignment = 64;

/// A new block of `size` bytes (0 is allowed), all zero; null when memory runs out.
void* allocateBlock(std::uint32_t size);
/// The block with another size: contents kept up to the smaller one, zeros behind. May move. Null when memory runs out:
/// then the block is as it was.
void* resizeBlock(void* block, std::uint32_t size);
/// Null is allowed.
void freeBlock(void* block);
/// Bytes; 0 for null.
std::uint32_t blockSize(const void* block);

/// Lock counts are kept for callers that ask; they guard nothing, since blocks move only when they are resized. The
/// count never falls below 0. Any thread may lock and unlock.
void lockBlock(void* block);
void unlockBlock(void* block);
int blockLocks(const void* block);

} // namespace ovw::utility

#endif // OVW_UTILITY_BLOCK_H
