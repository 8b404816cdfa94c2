#include "ovwcmn/xcvirtualmemory.h"

#include "foundation/nomemory.h"
#include "vimage/nodelist.h"

#include <algorithm>
#include <limits>

using ovw::foundation::orNoMemory;

// Invariants: a block is in the list exactly while it is on memory, and then knows its node; the margin is the cache
// size less the sizes of the blocks in the list.

XCVMCache::XCVMCache()
    : m_pResident(orNoMemory([] { return std::make_unique<ovw::vimage::NodeList<XCVMCacheListItem>>(); })) {}

XCVMCache::~XCVMCache() = default;

void XCVMCache::Create(std::uint32_t size) {
    m_nCacheSize.store(size, std::memory_order_relaxed);
    m_nMargin.store(size, std::memory_order_relaxed);
}

void XCVMCache::Destroy() {
    while (const XCVMCacheListItem* const item = m_pResident->head())
        Remove(item->block);
    Create(0);
}

int XCVMCache::Request(XCSwap* swap, std::uint32_t size) {
    return m_nMargin.load(std::memory_order_relaxed) >= size ? 1 : RequestMainWork(swap, size);
}

int XCVMCache::RequestMainWork(XCSwap* swap, std::uint32_t size) {
    Outcome outcome = Outcome::exhausted;
    if (XCSwapBlock::GetTemporaryCount() > 0)
        outcome = evictPass(swap, size, true);
    if (outcome == Outcome::exhausted)
        outcome = evictPass(swap, size, false);
    return outcome == Outcome::reached;
}

XCVMCache::Outcome XCVMCache::evictPass(XCSwap* swap, std::int64_t size, bool onlyTemporary) {
    for (XCVMCacheListItem* item = m_pResident->head(); item;) {
        if (!mayEvict(*item->block, onlyTemporary)) {
            item = item->next;
            continue;
        }
        if (!evict(swap, item))
            return Outcome::failed;
        if (m_nMargin.load(std::memory_order_relaxed) >= size)
            return Outcome::reached;
    }
    return Outcome::exhausted;
}

bool XCVMCache::mayEvict(const XCSwapBlock& block, bool onlyTemporary) const {
    const auto isFree = [onlyTemporary](const XCSwapBlock& one) {
        return !one.IsLocked() && !one.IsInUse() && !one.IsAbsoluteProtect() && (one.IsTemporary() || !onlyTemporary);
    };
    const XCVMHandlePool* const pool = block.GetMemory().m_pPool;
    if (!pool)
        return isFree(block);
    for (std::uint32_t slot = 0; slot < pool->GetSlotCount(); ++slot)
        if (const XCSwapBlock* const owner = pool->GetOwner(slot); owner && !isFree(*owner))
            return false;
    return true;
}

/// Evicts the blocks of the candidate's pool in slot order, up to and with the candidate; `item` becomes the node
/// behind it. Other blocks leave the list first, so the candidate's neighbour is a node that stays.
bool XCVMCache::evict(XCSwap* swap, XCVMCacheListItem*& item) {
    XCSwapBlock* const candidate = item->block;
    const XCVMHandlePool* const pool = candidate->GetMemory().m_pPool;
    for (std::uint32_t slot = 0; pool && pool->GetOwner(slot) != candidate; ++slot)
        if (XCSwapBlock* const owner = pool->GetOwner(slot); owner && !evictOne(swap, owner))
            return false;
    XCVMCacheListItem* const next = item->next;
    if (!evictOne(swap, candidate))
        return false;
    item = next;
    return true;
}

bool XCVMCache::evictOne(XCSwap* swap, XCSwapBlock* block) {
    if (!block->Purge(swap, m_pOwner))
        return false;
    leave(block);
    return true;
}

int XCVMCache::Purge(XCSwap* swap, XCSwapBlock* block) {
    if (!block || !block->IsOnMemory())
        return 1;
    return !block->IsLocked() && !block->IsInUse() && evictOne(swap, block);
}

void XCVMCache::Add(XCSwapBlock* block, const XCVMHandle& memory) {
    block->SetVMCacheListItem(m_pResident->append(block));
    block->SetMemory(memory);
    if (memory.m_pPool)
        memory.m_pPool->SetOwner(memory.m_nSlot, block);
    addMargin(-static_cast<std::int64_t>(block->GetSize()));
}

void XCVMCache::Remove(XCSwapBlock* block) {
    if (!block || !block->GetVMCacheListItem())
        return;
    block->FreeOnMemory(m_pOwner);
    leave(block);
}

void XCVMCache::leave(XCSwapBlock* block) {
    addMargin(static_cast<std::int64_t>(block->GetSize()));
    m_pResident->remove(block->GetVMCacheListItem());
    block->SetVMCacheListItem(nullptr);
}

void XCVMCache::addMargin(std::int64_t bytes) {
    m_nMargin.store(m_nMargin.load(std::memory_order_relaxed) + bytes, std::memory_order_relaxed);
}

std::int32_t XCVMCache::GetMarginSize() const {
    using Limits = std::numeric_limits<std::int32_t>;
    const std::int64_t margin = m_nMargin.load(std::memory_order_relaxed);
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(margin, Limits::min(), Limits::max()));
}

std::uint32_t XCVMCache::GetUsedSize() const {
    // Read without locks, the two may belong to different moments.
    const std::int64_t used = static_cast<std::int64_t>(GetCacheSize()) - m_nMargin.load(std::memory_order_relaxed);
    return static_cast<std::uint32_t>(std::clamp<std::int64_t>(used, 0, std::numeric_limits<std::uint32_t>::max()));
}
