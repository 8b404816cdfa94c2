#include "ovwcmn/xcvirtualmemory.h"

#include "Platform/file.h"
#include "Platform/memory.h"
#include "Platform/systemerror.h"
#include "foundation/nomemory.h"
#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcfilepath.h"
#include "ovwcmn/xcfindfile.h"
#include "vimage/storelocks.h"

#include <algorithm>
#include <string_view>

using ovw::foundation::orNoMemory;
using ovw::vimage::librarySection;
using ovw::vimage::StoreLocks;

namespace {

constexpr int cnErrorNoSwapFile = 0x200132C8;
constexpr int cnErrorNoSwapName = 0x200132C9;
constexpr int cnMaxRetries = 10;
constexpr char cnSwapPrefix[] = "SWP";
constexpr std::size_t cnMaxSpares = 256;
/// Bytes of spare memory that outlast an operation, and the part of the budget that they may take.
constexpr std::int64_t cnMaxIdleBytes = std::int64_t{cnMaxSpares} * XCVMHandlePool::cnPoolBytes;
constexpr std::int64_t cnIdlePartOfBudget = 2;

constexpr std::uint32_t cnPooledSizes[] = {8192, 16384, 65536, 131072, 262144};

/// Whether MakeTempPath could have made a swap file of that name.
bool isSwapFileName(std::string_view name) {
    constexpr std::string_view prefix = cnSwapPrefix, suffix = ".tmp";
    constexpr std::size_t maxDigits = 4;
    if (name.size() <= prefix.size() + suffix.size() || name.size() > prefix.size() + maxDigits + suffix.size())
        return false;
    const std::string_view digits = name.substr(prefix.size(), name.size() - prefix.size() - suffix.size());
    return name.substr(0, prefix.size()) == prefix && name.substr(name.size() - suffix.size()) == suffix &&
           digits.find_first_not_of("0123456789ABCDEF") == std::string_view::npos;
}

/// Deletes the swap files that dead processes left. In a folder that the application chose for them, the prefix
/// anywhere in a name tells them; in the system's temporary folder, where a stranger's random name may hold these
/// letters, only a name that MakeTempPath gives does. Names with a leading dot are those of other programs, which keep
/// their own swap files so.
void cleanUp(const XCFilePath& swapPath, bool isChosenFolder) {
    XCFilePath folder;
    swapPath.GetFolderPath(folder);
    XCFindFile search;
    for (int found = search.First(folder); found; found = search.Next()) {
        XCString name;
        search.GetName(name);
        const bool isSwapName = isChosenFolder ? name[0] != '.' && name.Find(cnSwapPrefix, 0, 1) >= 0
                                               : isSwapFileName(static_cast<const char*>(name));
        if (isSwapName && !search.IsFolder() && search.GetFilePath() != swapPath)
            ovw::platform::fileSystem().removeUnlessHeld(static_cast<const char*>(search.GetFilePath()));
    }
}

} // namespace

/// An operation that may evict blocks. All the memory that an eviction frees is kept for the allocation that the
/// eviction makes room for: paging then neither returns pages to the system nor has it clear new ones. What exceeds the
/// budget is freed at its end.
class XCVirtualMemory::Recycling {
public:
    explicit Recycling(XCVirtualMemory& store) : m_store(store) { ++m_store.m_nRecycling; }
    ~Recycling() {
        if (--m_store.m_nRecycling == 0)
            m_store.trimSpareMemory(m_store.idleLimit());
    }
    Recycling(const Recycling&) = delete;
    Recycling& operator=(const Recycling&) = delete;

private:
    XCVirtualMemory& m_store;
};

XCVirtualMemory::XCVirtualMemory()
    : m_pSwap(orNoMemory([] { return std::make_unique<XCSwap>(); })),
      m_pSection(orNoMemory([] { return std::make_unique<XCCriticalSection>(); })) {
    m_pSection->Initialize();
    orNoMemory([this] { m_arrSpare.reserve(cnMaxSpares); });
    m_cache.SetOwnerVM(this);
}

XCVirtualMemory::~XCVirtualMemory() { Destroy(); }

void XCVirtualMemory::Create(std::uint32_t size, XCFilePath* folder, int cleanup) {
    XCCriticalSectionAutoLeave lock(&librarySection());
    Destroy();
    orNoMemory([&] { createSwapFile(size, folder, cleanup); });
    m_nMinimumUnitSize.store(static_cast<std::uint32_t>(ovw::platform::pageSize()), std::memory_order_relaxed);
    m_nPhysicalSize.store(size, std::memory_order_relaxed);
    m_cache.Create(size);
}

void XCVirtualMemory::createSwapFile(std::uint32_t& size, XCFilePath* folder, int cleanup) {
    XCFilePath path;
    if (folder) {
        path = *folder;
        path += "dummy.tmp";
    }
    if (!path.MakeTempPath(cnSwapPrefix, folder ? 1 : 0))
        xcThrowError(cnErrorNoSwapName);
    int made = 0;
    try {
        if (cleanup == 1)
            cleanUp(path, folder != nullptr);
        made = m_pSwap->Create(&size, path, 0);
    } catch (...) {
        path.Delete(0);
        throw;
    }
    if (!made) {
        path.Delete(0);
        xcThrowError(cnErrorNoSwapFile);
    }
}

void XCVirtualMemory::Destroy() {
    const StoreLocks locks(m_pSection.get());
    m_cache.Destroy();
    trimSpareMemory(0);
    m_pSwap->Destroy();
    m_nPhysicalSize.store(0, std::memory_order_relaxed);
    m_nMinimumUnitSize.store(cnDefaultPageSize, std::memory_order_relaxed);
}

XCSwapBlock* XCVirtualMemory::Allocate(std::uint32_t size) {
    const StoreLocks locks(m_pSection.get());
    const Recycling recycling(*this);
    return orNoMemory([&] {
        const auto deallocate = [this](XCSwapBlock* block) { m_pSwap->Deallocate(block); };
        std::unique_ptr<XCSwapBlock, decltype(deallocate)> block(m_pSwap->Allocate(size), deallocate);
        if (!block)
            xcThrowError(cnErrorNoSwapFile);
        if (!m_cache.Request(m_pSwap.get(), static_cast<std::uint32_t>(block->GetSize())))
            xcThrowError(ovw::foundation::cnCodeNoMemory);
        makeResident(block.get(), nullptr);
        return block.release();
    });
}

void* XCVirtualMemory::Lock(XCSwapBlock* block, int edit, int* wasRead) {
    if (!block)
        xcThrowError(ovw::foundation::cnCodeParameter);
    const StoreLocks locks(m_pSection.get());
    if (!block->IsOnMemory()) {
        const Recycling recycling(*this);
        orNoMemory([&] {
            makeRoom(static_cast<std::uint32_t>(block->GetSize()), edit);
            makeResident(block, wasRead);
        });
    }
    if (edit)
        block->SetEditFlag(1);
    return block->Lock();
}

void XCVirtualMemory::Unlock(XCSwapBlock* block) {
    const StoreLocks locks(m_pSection.get());
    if (block && block->IsOnMemory())
        block->Unlock();
}

void XCVirtualMemory::Free(XCSwapBlock* block) {
    const StoreLocks locks(m_pSection.get());
    m_cache.Remove(block);
    m_pSwap->Deallocate(block);
}

int XCVirtualMemory::Purge(XCSwapBlock* block) {
    const StoreLocks locks(m_pSection.get());
    const Recycling recycling(*this);
    return orNoMemory([&] { return m_cache.Purge(m_pSwap.get(), block); });
}

/// Evicts blocks for one that is to be locked, which may exceed the budget. A full disk stops editing, but not reading:
/// whatever was painted can still be saved.
void XCVirtualMemory::makeRoom(std::uint32_t size, int edit) {
    try {
        m_cache.Request(m_pSwap.get(), size);
    } catch (const XCException&) {
        if (edit)
            throw;
    }
}

/// Gives the block memory, filled from the swap file if its contents are there. Nothing changes when it throws.
void XCVirtualMemory::makeResident(XCSwapBlock* block, int* wasRead) {
    XCVMHandle memory;
    allocResidentMemory(static_cast<std::uint32_t>(block->GetSize()), memory);
    try {
        const bool reads = !block->IsTemporary() && block->IsSwapped();
        if (reads)
            readBack(block, memory);
        m_cache.Add(block, memory);
        if (reads && wasRead)
            *wasRead = 1;
    } catch (...) {
        FreeHandle(memory, static_cast<std::uint32_t>(block->GetSize()));
        throw;
    }
}

void XCVirtualMemory::readBack(XCSwapBlock* block, const XCVMHandle& memory) {
    vxSetLastError(0);
    const int done = m_pSwap->Read(memory.Lock(), block);
    memory.Unlock();
    if (done)
        return;
    const int code = vxGetLastError();
    xcThrowError(code ? code : ovw::platform::cnErrorReadFault);
}

/// AllocHandle, and when memory is short once more after evicting blocks.
void XCVirtualMemory::allocResidentMemory(std::uint32_t size, XCVMHandle& handle) {
    try {
        if (AllocHandle(size, handle))
            return;
    } catch (const XCException&) {
        int retry = 0;
        if (AllocHandle2(size, handle, retry) == 1)
            return;
    }
    xcThrowError(ovw::foundation::cnCodeNoMemory);
}

int XCVirtualMemory::AllocHandle(std::uint32_t size, XCVMHandle& handle) {
    const StoreLocks locks(m_pSection.get());
    return orNoMemory([&] {
        bool isFresh = false;
        if (PoolClass* const pools = poolClassOf(size))
            allocPooled(*pools, size, handle);
        else
            handle = {nullptr, 0, takeMemory(size, isFresh), size};
        return 1;
    });
}

int XCVirtualMemory::AllocHandle2(std::uint32_t size, XCVMHandle& handle, int& retry) {
    const StoreLocks locks(m_pSection.get());
    const Recycling recycling(*this);
    for (;; ++retry) {
        const std::uint32_t usedBefore = m_cache.GetUsedSize();
        if (!m_cache.RequestMainWork(m_pSwap.get(), size) || m_cache.GetUsedSize() >= usedBefore)
            xcThrowError(ovw::foundation::cnCodeNoMemory);
        try {
            return AllocHandle(size, handle);
        } catch (const XCException&) {
            if (retry >= cnMaxRetries)
                return 0;
        }
    }
}

void XCVirtualMemory::FreeHandle(XCVMHandle& handle, std::uint32_t) {
    const StoreLocks locks(m_pSection.get());
    if (handle.m_pPool)
        freePooled(handle);
    else if (handle.m_hOwn)
        giveMemory(handle.m_hOwn);
    handle = {};
}

XCVirtualMemory::PoolClass* XCVirtualMemory::poolClassOf(std::uint32_t size) {
    const auto* const found = std::find(std::begin(cnPooledSizes), std::end(cnPooledSizes), size);
    return found == std::end(cnPooledSizes) ? nullptr : &m_arrPools[static_cast<std::size_t>(found - cnPooledSizes)];
}

void XCVirtualMemory::allocPooled(PoolClass& pools, std::uint32_t size, XCVMHandle& handle) {
    while (pools.firstFree < pools.pools.size() && !pools.pools[pools.firstFree]->HasFreeSlot())
        ++pools.firstFree;
    if (pools.firstFree == pools.pools.size()) {
        pools.pools.reserve(pools.pools.size() + 1);
        const auto dropMemory = [](VXHANDLE memory) { vxFree(memory); };
        bool isFresh = false;
        std::unique_ptr<VXHANDLE__, decltype(dropMemory)> memory(takeMemory(XCVMHandlePool::cnPoolBytes, isFresh));
        pools.pools.push_back(std::make_unique<XCVMHandlePool>(memory.get(), size, isFresh));
        static_cast<void>(memory.release());
    }
    XCVMHandlePool* const pool = pools.pools[pools.firstFree].get();
    handle = {pool, pool->TakeSlot(), nullptr, size};
}

void XCVirtualMemory::freePooled(const XCVMHandle& handle) {
    PoolClass* const pools = poolClassOf(handle.m_nUnitSize);
    XCVMHandlePool* const pool = handle.m_pPool;
    pool->ReturnSlot(handle.m_nSlot);
    const auto isPool = [pool](const auto& candidate) { return candidate.get() == pool; };
    const auto place = std::find_if(pools->pools.begin(), pools->pools.end(), isPool);
    pools->firstFree = std::min(pools->firstFree, static_cast<std::size_t>(place - pools->pools.begin()));
    if (pool->IsEmpty() && place != pools->pools.end()) {
        giveMemory(pool->DetachMemory());
        pools->pools.erase(place);
    }
}

/// Memory of exactly that size, recycled if possible. Throws the code that the allocation reports.
VXHANDLE XCVirtualMemory::takeMemory(std::uint32_t size, bool& isFresh) {
    const auto fits = [size](VXHANDLE memory) { return vxGetHandleSize(memory) == size; };
    // The latest first: the processor's caches may still hold it.
    const auto spare = std::find_if(m_arrSpare.rbegin(), m_arrSpare.rend(), fits);
    isFresh = spare == m_arrSpare.rend();
    if (!isFresh) {
        const VXHANDLE memory = *spare;
        m_arrSpare.erase(std::next(spare).base());
        m_nSpareBytes -= size;
        return memory;
    }
    int status = 0;
    VXHANDLE memory = vxAlloc(size, 0, &status);
    if (!memory && !m_arrSpare.empty()) {
        trimSpareMemory(0);
        memory = vxAlloc(size, 0, &status);
    }
    if (!memory)
        xcThrowError(status ? status : ovw::foundation::cnCodeNoMemory);
    return memory;
}

/// Pools are kept after the operation too: an image that is emptied and painted on again, as a stroke's temporary one
/// is, or a layer's that is turned into a new one, then finds its pages.
void XCVirtualMemory::giveMemory(VXHANDLE memory) noexcept {
    const std::uint32_t size = vxGetHandleSize(memory);
    const bool isWanted =
        m_nRecycling > 0 || (size == XCVMHandlePool::cnPoolBytes && m_nSpareBytes + size <= idleLimit());
    if (!isWanted || m_arrSpare.size() == cnMaxSpares) {
        vxFree(memory);
        return;
    }
    m_arrSpare.push_back(memory);
    m_nSpareBytes += size;
}

/// How many bytes may be spare between two operations: resident blocks and spare memory stay within the budget.
std::int64_t XCVirtualMemory::idleLimit() const {
    const std::int64_t share = GetPhysicalMemorySize() / cnIdlePartOfBudget;
    return std::min({cnMaxIdleBytes, share, static_cast<std::int64_t>(m_cache.GetMarginSize())});
}

/// Frees spare memory until at most so many bytes are left.
void XCVirtualMemory::trimSpareMemory(std::int64_t bytes) noexcept {
    while (!m_arrSpare.empty() && m_nSpareBytes > bytes) {
        m_nSpareBytes -= vxGetHandleSize(m_arrSpare.back());
        vxFree(m_arrSpare.back());
        m_arrSpare.pop_back();
    }
}

std::uint32_t XCVirtualMemory::GetFreePhysicalMemorySize() const {
    const std::uint32_t budget = GetPhysicalMemorySize();
    return budget - std::min(budget, GetUsedPhysicalMemorySize());
}
