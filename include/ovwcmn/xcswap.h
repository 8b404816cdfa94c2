#ifndef OVWCMN_XCSWAP_H
#define OVWCMN_XCSWAP_H

/// @file
/// One block of the block store and the swap file that takes the blocks which memory has no room for.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/vxwutl.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

class XCFile;
class XCFilePath;
class XCSwap;
class XCSwapBlock;
class XCVirtualMemory;
class XCVMHandlePool;

/// A node of the swap's list of all blocks.
struct XCSwapListItem {
    XCSwapBlock* block; ///< of this node; null for none
    /// @{ Null at the ends.
    XCSwapListItem* next;
    XCSwapListItem* previous;
    /// @}
};

/// A node of the cache's list of resident blocks.
struct XCVMCacheListItem {
    XCSwapBlock* block; ///< of this node; null for none
    /// @{ Null at the ends.
    XCVMCacheListItem* next;
    XCVMCacheListItem* previous;
    /// @}
};

namespace ovw::vimage {
template <class Item>
class NodeList;
}

/// The memory of one resident block: a slot of a pool, or a movable block of its own. A plain value: whoever holds it
/// last gives it back with XCVirtualMemory::FreeHandle. Requires the store's locks or sole ownership of the block.
class OVWCMN_API XCVMHandle {
public:
    /// Takes one lock and returns the address of the memory; null for an empty handle.
    void* Lock() const;
    /// Undoes one lock; nothing for an empty handle.
    void Unlock() const;
    bool IsEmpty() const { return !m_pPool && !m_hOwn; } ///< 1 without memory

    XCVMHandlePool* m_pPool = nullptr; ///< null for a block of its own
    std::uint32_t m_nSlot = 0;         ///< of the pool
    VXHANDLE m_hOwn = nullptr;         ///< null for a slot of a pool
    std::uint32_t m_nUnitSize = 0;     ///< bytes
};

/// One block of the store: its place in the swap file, its memory and its flags. The swap owns the object
/// (XCSwap::Allocate, XCSwap::Deallocate); images hold pointers to it. Its members take no lock: a caller of them
/// holds the store's locks or owns the block alone. Throws nothing but what Purge says.
class OVWCMN_API XCSwapBlock {
public:
    XCSwapBlock() = default;
    /// A place in the swap file (equal positions: none) and a size in bytes.
    XCSwapBlock(std::uint64_t begin, std::uint64_t end, std::uint64_t size);
    ~XCSwapBlock();
    XCSwapBlock(const XCSwapBlock&) = delete;
    XCSwapBlock& operator=(const XCSwapBlock&) = delete;

    /// Marks the block locked, takes one lock of its memory and records and returns the address. Locks nest: a block is
    /// kept in memory until each has been undone.
    void* Lock();
    /// Clears the locked flag and undoes one lock of the memory.
    void Unlock();
    /// Evicts the block, writing it first when it is edited and not temporary. 0 when the write fails or the block is
    /// absolutely protected (it may have been written then). Throws what XCSwap::Write throws.
    int Purge(XCSwap* swap, XCVirtualMemory* vm);
    /// Gives the memory back without writing it.
    void FreeOnMemory(XCVirtualMemory* vm);

    /// @{ Bytes from the start of the swap file; equal when it has no place.
    std::uint64_t GetBeginPos() const { return m_nBegin; }
    std::uint64_t GetEndPos() const { return m_nEnd; }
    /// @}
    /// Sets the place in the swap file; equal positions mean none.
    void SetPos(std::uint64_t begin, std::uint64_t end);
    std::uint64_t GetSize() const { return m_nSize; } ///< bytes, whole sectors

    const XCVMHandle& GetMemory() const { return m_memory; } ///< empty when not resident
    /// Also clears the edit and the locked flag.
    void SetMemory(const XCVMHandle& memory);
    /// @{ 1: the memory differs from the swap file.
    int GetEditFlag() const { return m_bEdit; }
    void SetEditFlag(int edit) { m_bEdit = edit; }
    /// @}
    int IsLocked() const { return m_bLocked; } ///< 1 after Lock, 0 after any Unlock
    /// 1 while a lock of the memory is not yet undone, so that somebody may hold its address.
    int IsInUse() const { return m_nLockCount > 0; }
    int IsOnMemory() const { return !m_memory.IsEmpty(); }       ///< 1 when resident
    int IsSwapped() const { return m_nBegin != m_nEnd; }         ///< 1 with a place in the swap file
    int IsEnable() const { return IsOnMemory() || IsSwapped(); } ///< 1 when the contents are somewhere
    int IsTemporary() const { return m_bTemporary; }             ///< see SetTemporary
    /// A temporary block is never written: eviction drops its contents.
    void SetTemporary(int temporary);
    int IsAbsoluteProtect() const { return m_bAbsoluteProtect; } ///< see SetAbsoluteProtect
    /// Protects from eviction for the value 1; any other value ends the protection and forgets the protect address.
    void SetAbsoluteProtect(int protect);
    /// The address that the last lock gave; null once the memory is freed.
    void* GetProtectAddress() const { return m_pProtect; }
    /// @{ The nodes of the lists that it is in; null in none.
    XCSwapListItem* GetSwapListItem() const { return m_pSwapItem; }
    void SetSwapListItem(XCSwapListItem* item) { m_pSwapItem = item; }
    XCVMCacheListItem* GetVMCacheListItem() const { return m_pCacheItem; }
    void SetVMCacheListItem(XCVMCacheListItem* item) { m_pCacheItem = item; }
    /// @}

    /// Temporary blocks alive in this process: while there is none, no pass over the resident blocks looks for them.
    static int GetTemporaryCount() { return s_nTemporary.load(std::memory_order_relaxed); }

private:
    std::uint64_t m_nBegin = 0;
    std::uint64_t m_nEnd = 0;
    std::uint64_t m_nSize = 0; // bytes, whole sectors
    int m_bTemporary = 0;
    int m_bAbsoluteProtect = 0;
    void* m_pProtect = nullptr;
    XCVMHandle m_memory;
    int m_bEdit = 0;
    int m_bLocked = 0;
    int m_nLockCount = 0;
    XCSwapListItem* m_pSwapItem = nullptr;
    XCVMCacheListItem* m_pCacheItem = nullptr;
    static std::atomic<int> s_nTemporary;
};

/// One free extent [begin, end) of the swap file, in bytes.
class OVWCMN_API XCGarbageBlock {
public:
    /// What came of a request.
    enum RequestType { REQUEST_TOO_SMALL = 0, REQUEST_SPLIT = 1, REQUEST_EXACT = 2 };

    XCGarbageBlock() = default;
    XCGarbageBlock(std::uint64_t begin, std::uint64_t end, std::uint64_t size); ///< an extent as it is

    /// Takes `size` bytes from the front; the place goes to *position unless the extent is too small.
    RequestType Request(std::uint64_t* position, std::uint64_t size);
    /// @{ Bytes; nothing checks them against each other.
    std::uint64_t GetSize() const { return m_nSize; }
    void SetSize(std::uint64_t size) { m_nSize = size; }
    std::uint64_t GetBeginPos() const { return m_nBegin; }
    void SetBeginPos(std::uint64_t begin) { m_nBegin = begin; }
    std::uint64_t GetEndPos() const { return m_nEnd; }
    void SetEndPos(std::uint64_t end) { m_nEnd = end; }
    /// @}
    void Resize(std::uint64_t grow);        ///< The end moves on by `grow` bytes.
    void ResizeForward(std::uint64_t grow); ///< The beginning moves back by `grow` bytes.
    /// By their beginnings.
    bool operator<(const XCGarbageBlock& other) const { return m_nBegin < other.m_nBegin; }
    /// In beginning, end and size.
    bool operator==(const XCGarbageBlock& other) const;

private:
    std::uint64_t m_nBegin = 0;
    std::uint64_t m_nEnd = 0;
    std::uint64_t m_nSize = 0;
};

/// The free extents of the swap file: an allocator that knows positions only and touches no file. First fit, in the
/// order in which extents were added. Owns its extents. Requires the store's locks. Throws std::bad_alloc.
class OVWCMN_API XCGarbage {
public:
    XCGarbage();
    virtual ~XCGarbage();
    XCGarbage(const XCGarbage&) = delete;
    XCGarbage& operator=(const XCGarbage&) = delete;

    /// Starts anew with the one free extent [0, size).
    void Create(std::uint32_t size);
    void Destroy(); ///< no extents
    /// 1 and the place in *position when an extent has `size` bytes, else 0.
    int Request(std::uint64_t* position, std::uint64_t size);
    /// Gives [begin, end) back, merged with the free neighbours on both sides.
    void Add(std::uint64_t begin, std::uint64_t end, std::uint64_t size);
    /// The file has grown by `grow` bytes from `oldEnd` on.
    void Enlarge(std::uint32_t grow, std::uint64_t oldEnd);

    /// @{ The extents in their order, 0 <= index < count.
    int GetCount() const { return static_cast<int>(m_arrExtent.size()); }
    const XCGarbageBlock& GetAt(int index) const { return *m_arrExtent[static_cast<std::size_t>(index)]; }
    /// @}

protected:
    /// A spare extent object, all zero.
    XCGarbageBlock* CreateBlock();

private:
    void append(const XCGarbageBlock& extent);
    void removeAt(std::size_t index);

    std::vector<XCGarbageBlock*> m_arrExtent;
    std::vector<XCGarbageBlock*> m_arrSpare;
    std::vector<std::unique_ptr<XCGarbageBlock[]>> m_arrBatch;
};

/// The swap file and the list of all blocks. Owns the file, which vanishes with it, and the blocks. Requires the
/// store's locks, but for the getters, which read without.
class OVWCMN_API XCSwap {
public:
    XCSwap();
    virtual ~XCSwap();
    XCSwap(const XCSwap&) = delete;
    XCSwap& operator=(const XCSwap&) = delete;

    /// Creates the file with *size bytes, which come back rounded to whole sectors. Ordinary cached input and output is
    /// used either way: `buffered` is a hint. 0 when the file cannot be made; throws 39 when the volume has too little
    /// free space and the system's code when its sector size or free space cannot be read.
    int Create(std::uint32_t* size, XCFilePath& path, int buffered);
    /// Closes and deletes the file. Blocks stay, but lose their places in it.
    void Destroy();
    /// A new block of `size` bytes, rounded up to whole sectors, without memory. Throws 8.
    XCSwapBlock* Allocate(std::uint32_t size);
    /// Gives the block's place in the file back and deletes it. Its memory must have been freed.
    void Deallocate(XCSwapBlock* block);
    /// Writes the block's bytes, giving it a place first when it has none. 0 on failure. Throws only when the file must
    /// grow and the volume has too little space (39) or cannot tell.
    int Write(void* data, XCSwapBlock* block);
    /// Fills `data` with the block's bytes; 0 when it has no place or cannot be read in full. Never throws.
    int Read(void* data, XCSwapBlock* block);

    std::uint64_t GetSwapSize() const { return m_nSwapSize.load(std::memory_order_relaxed); } ///< bytes of the file
    /// Bytes of it that hold blocks.
    std::uint64_t GetUsedTotalSize() const { return m_nUsedTotal.load(std::memory_order_relaxed); }
    std::uint32_t GetUsedBlockCount() const;                      ///< blocks allocated
    std::uint32_t GetSectorSize() const { return m_nSectorSize; } ///< bytes

private:
    int Enlarge(std::uint32_t size);
    int givePlace(XCSwapBlock& block);

    std::unique_ptr<XCFile> m_pFile;
    std::uint32_t m_nSectorSize;
    XCGarbage m_garbage;
    std::unique_ptr<ovw::vimage::NodeList<XCSwapListItem>> m_pBlocks;
    std::atomic<std::uint64_t> m_nSwapSize{0};
    std::atomic<std::uint64_t> m_nUsedTotal{0};
    std::uint32_t m_nGrowUnit = 0;
};

#endif // OVWCMN_XCSWAP_H
