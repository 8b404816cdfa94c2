#ifndef OVWCMN_XCVIRTUALMEMORY_H
#define OVWCMN_XCVIRTUALMEMORY_H

/// @file
/// The block store: fixed-size blocks of bytes, as many in memory as a budget allows, the others in a swap file.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/xcswap.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

class XCCriticalSection;

/// A chunk of 1 MiB, divided into equal slots for blocks of one size class. Owns its memory. Requires the store's
/// locks.
class OVWCMN_API XCVMHandlePool {
public:
    static constexpr std::uint32_t cnPoolBytes = 0x100000; ///< bytes of a chunk

    /// Takes `memory`, a movable block of cnPoolBytes, over; `isFresh` when nobody has touched it yet.
    XCVMHandlePool(VXHANDLE memory, std::uint32_t unitSize, bool isFresh);
    ~XCVMHandlePool();
    XCVMHandlePool(const XCVMHandlePool&) = delete;
    XCVMHandlePool& operator=(const XCVMHandlePool&) = delete;

    bool HasFreeSlot() const { return m_nFree > 0; }     ///< 1 while a slot is free
    bool IsEmpty() const { return m_nFree == m_nSlots; } ///< 1 while no slot is taken
    /// Gives up the memory; the pool is good for nothing but destruction then.
    VXHANDLE DetachMemory();
    /// Needs a free one.
    std::uint32_t TakeSlot();
    /// Forgets its owner too.
    void ReturnSlot(std::uint32_t slot);
    /// Slots, free or not.
    std::uint32_t GetSlotCount() const { return m_nSlots; }
    /// @{ The block in a slot; null for a free one.
    XCSwapBlock* GetOwner(std::uint32_t slot) const { return m_arrOwner[slot]; }
    void SetOwner(std::uint32_t slot, XCSwapBlock* block) { m_arrOwner[slot] = block; }
    /// @}
    /// @{ The slot's address; locks of the chunk nest.
    void* Lock(std::uint32_t slot);
    void Unlock();
    /// @}

private:
    static constexpr std::size_t cnMaxSlots = 256;

    VXHANDLE m_hMemory;
    std::uint32_t m_nUnitSize;
    std::uint32_t m_nSlots;
    std::uint32_t m_nFree;
    std::uint32_t m_nFresh; // slots below have never been taken
    std::uint8_t m_arrFree[cnMaxSlots];
    XCSwapBlock* m_arrOwner[cnMaxSlots];
    int m_nLockCount = 0;
    unsigned char* m_pBase = nullptr;
};

/// The resident blocks in the order in which they came into memory, and the paging policy: first in, first out,
/// temporary blocks before the others. Does no input or output of its own: blocks write themselves through the swap
/// that is passed in. Requires the store's locks, but for the getters.
class OVWCMN_API XCVMCache {
public:
    XCVMCache();
    virtual ~XCVMCache();
    XCVMCache(const XCVMCache&) = delete;
    XCVMCache& operator=(const XCVMCache&) = delete;

    /// Sets the budget, all of it free.
    void Create(std::uint32_t size);
    /// Frees the memory of every resident block without writing it.
    void Destroy();
    /// 1 when `size` bytes of the budget are free or can be made free by eviction. Throws what XCSwap::Write throws.
    int Request(XCSwap* swap, std::uint32_t size);
    /// Evicts at least one block, and goes on until `size` bytes are free; 0 when that cannot be reached.
    int RequestMainWork(XCSwap* swap, std::uint32_t size);
    /// Evicts this block; 0 when it is locked, absolutely protected or cannot be written.
    int Purge(XCSwap* swap, XCSwapBlock* block);
    /// Makes the block resident in `memory`. Throws std::bad_alloc, nothing changed then.
    void Add(XCSwapBlock* block, const XCVMHandle& memory);
    /// Frees the block's memory without writing it.
    void Remove(XCSwapBlock* block);
    void SetOwnerVM(XCVirtualMemory* vm) { m_pOwner = vm; } ///< not owned; takes the memory of evicted blocks back
    /// The budget in bytes.
    std::uint32_t GetCacheSize() const { return m_nCacheSize.load(std::memory_order_relaxed); }
    /// The free part of the budget in bytes, negative while locks keep more than the budget in memory.
    std::int32_t GetMarginSize() const;
    std::uint32_t GetUsedSize() const; ///< bytes of resident blocks

private:
    enum class Outcome { reached, failed, exhausted };

    Outcome evictPass(XCSwap* swap, std::int64_t size, bool onlyTemporary);
    bool mayEvict(const XCSwapBlock& block, bool onlyTemporary) const;
    bool evict(XCSwap* swap, XCVMCacheListItem*& item);
    bool evictOne(XCSwap* swap, XCSwapBlock* block);
    void leave(XCSwapBlock* block);
    void addMargin(std::int64_t bytes);

    XCVirtualMemory* m_pOwner = nullptr;
    std::atomic<std::uint32_t> m_nCacheSize{0};
    std::atomic<std::int64_t> m_nMargin{0};
    std::unique_ptr<ovw::vimage::NodeList<XCVMCacheListItem>> m_pResident;
};

/// The block store that images keep their pixels in. Owns budget, pools, swap file and blocks; memory that becomes free
/// it keeps for the next blocks, up to 256 MiB and half of the budget, which spares the system clearing new pages.
/// Failures are thrown as XCException: 8 when memory or budget is short, 39 when the volume of the swap file is full,
/// 0x200132C8 and 0x200132C9 when the swap file cannot be made. One store may be used from several threads: "Takes:
/// both" means the library-wide critical section and then the store's own. A block itself belongs to one thread at a
/// time.
class OVWCMN_API XCVirtualMemory {
public:
    XCVirtualMemory();
    virtual ~XCVirtualMemory();
    XCVirtualMemory(const XCVirtualMemory&) = delete;
    XCVirtualMemory& operator=(const XCVirtualMemory&) = delete;

    /// Sets the store up with a budget of `size` bytes and a swap file in `folder`, or in the system's temporary folder
    /// when that is null. With cleanup 1, swap files that dead processes left there are deleted: in a given folder,
    /// which should hold nothing else, all files of this user with "SWP" in their names (any case); in the temporary
    /// folder those named as swap files are. A store that was set up before is destroyed first. Takes: the library-wide
    /// section.
    void Create(std::uint32_t size, XCFilePath* folder, int cleanup);
    /// Frees the memory of all blocks and deletes the swap file: blocks lose their contents. Takes: both.
    void Destroy();
    /// A new block of at least `size` bytes, resident, unlocked, contents unspecified. Never null. Takes: both.
    XCSwapBlock* Allocate(std::uint32_t size);
    /// Makes the block resident, even beyond the budget, and returns its memory, which stays in place until each Lock
    /// has been undone by an Unlock. With edit, it will be written before it leaves memory. *wasRead (may be null)
    /// becomes 1 when the contents came from the swap file, and is left alone otherwise. Takes: both.
    void* Lock(XCSwapBlock* block, int edit, int* wasRead);
    /// Undoes one Lock; nothing when the block is not resident. Takes: both.
    void Unlock(XCSwapBlock* block);
    /// Deletes the block and its contents; nothing for null. Takes: both.
    void Free(XCSwapBlock* block);
    /// Evicts the block now. 0 when it is locked, absolutely protected, or cannot be written. Takes: both.
    int Purge(XCSwapBlock* block);

    /// Memory of `size` bytes, from a pool for the pooled sizes. Throws the allocation's error. Takes: both.
    int AllocHandle(std::uint32_t size, XCVMHandle& handle);
    /// The same after evicting something first; up to ten retries, counted in `retry`. Takes: both.
    int AllocHandle2(std::uint32_t size, XCVMHandle& handle, int& retry);
    /// Gives the memory (of `size` bytes) back and empties the handle. Takes: both.
    void FreeHandle(XCVMHandle& handle, std::uint32_t size);

    // The statistics take no lock.
    std::uint64_t GetSwapFileSize() const { return m_pSwap->GetSwapSize(); } ///< bytes of the swap file
    /// Bytes of the swap file that hold blocks.
    std::uint64_t GetUsedDiskSize() const { return m_pSwap->GetUsedTotalSize(); }
    /// The budget in bytes.
    std::uint32_t GetPhysicalMemorySize() const { return m_nPhysicalSize.load(std::memory_order_relaxed); }
    /// Bytes of resident blocks.
    std::uint32_t GetUsedPhysicalMemorySize() const { return m_cache.GetUsedSize(); }
    /// Bytes of the budget that are free.
    std::uint32_t GetFreePhysicalMemorySize() const;
    /// Blocks that exist, in memory or not.
    std::uint32_t GetUsedBlockCount() const { return m_pSwap->GetUsedBlockCount(); }
    /// The system's page size in bytes.
    std::uint32_t GetMinimumUnitSize() const { return m_nMinimumUnitSize.load(std::memory_order_relaxed); }

private:
    static constexpr std::uint32_t cnDefaultPageSize = 32768;
    static constexpr std::size_t cnSizeClasses = 5;

    class Recycling;

    /// The pools of one size class; none before m_nFirstFree has a free slot.
    struct PoolClass {
        std::vector<std::unique_ptr<XCVMHandlePool>> pools;
        std::size_t firstFree = 0;
    };

    PoolClass* poolClassOf(std::uint32_t size);
    void allocPooled(PoolClass& pools, std::uint32_t size, XCVMHandle& handle);
    void freePooled(const XCVMHandle& handle);
    void allocResidentMemory(std::uint32_t size, XCVMHandle& handle);
    VXHANDLE takeMemory(std::uint32_t size, bool& isFresh);
    void giveMemory(VXHANDLE memory) noexcept;
    std::int64_t idleLimit() const;
    void trimSpareMemory(std::int64_t bytes) noexcept;
    void makeRoom(std::uint32_t size, int edit);
    void makeResident(XCSwapBlock* block, int* wasRead);
    void readBack(XCSwapBlock* block, const XCVMHandle& memory);
    void createSwapFile(std::uint32_t& size, XCFilePath* folder, int cleanup);

    std::unique_ptr<XCSwap> m_pSwap;
    std::atomic<std::uint32_t> m_nPhysicalSize{0};
    std::atomic<std::uint32_t> m_nMinimumUnitSize{cnDefaultPageSize};
    XCVMCache m_cache;
    std::array<PoolClass, cnSizeClasses> m_arrPools;
    std::vector<VXHANDLE> m_arrSpare; // freed memory, kept for the next allocation
    std::int64_t m_nSpareBytes = 0;
    int m_nRecycling = 0; // operations under way that recycle memory
    std::unique_ptr<XCCriticalSection> m_pSection;
};

/// How the process-wide store is to be created.
struct _CREATEVMPARAM {
    std::uint32_t reserved; ///< 0
    XCFilePath* folder;     ///< of the swap file; null for the system's temporary folder
    std::int32_t mode;      ///< of xcGetAllocateMemorySize
    std::int32_t percent;   ///< of the physical memory
};

/// Creates the process-wide store, cleaning left-over swap files up; nothing when it exists already.
OVWCMN_API void xcCreateVirtualMemory(_CREATEVMPARAM* param);
OVWCMN_API void xcDestroyVirtualMemory(); ///< Deletes the process-wide store's blocks and swap file.
/// The process-wide store, created or not. Never null.
OVWCMN_API XCVirtualMemory* xcGetVirtualMemory();
/// A budget in bytes, at most 0x7FFFFFFF: the default percentage of the physical memory (mode 0), or `percent` within
/// the minimum and the maximum (mode 1); 0 for any other mode.
OVWCMN_API std::uint64_t xcGetAllocateMemorySize(int mode, int percent);
/// @{ Bounds and default of a budget, in percent of the physical memory; set them at start-up.
OVWCMN_API int xcGetMinVMAllocationPercent();
OVWCMN_API int xcGetMaxVMAllocationPercent();
OVWCMN_API int xcGetDefaultVMAllocationPercent();
OVWCMN_API void xcSetMinVMAllocationPercent(int percent);
OVWCMN_API void xcSetMaxVMAllocationPercent(int percent);
OVWCMN_API void xcSetDefaultVMAllocationPercent(int percent);
/// @}

#endif // OVWCMN_XCVIRTUALMEMORY_H
