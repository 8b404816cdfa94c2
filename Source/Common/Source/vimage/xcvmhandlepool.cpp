#include "ovwcmn/xcvirtualmemory.h"

#include "Platform/memory.h"

#include <algorithm>
#include <iterator>
#include <utility>

void* XCVMHandle::Lock() const { return m_pPool ? m_pPool->Lock(m_nSlot) : m_hOwn ? vxLock(m_hOwn) : nullptr; }

void XCVMHandle::Unlock() const {
    if (m_pPool)
        m_pPool->Unlock();
    else if (m_hOwn)
        vxUnlock(m_hOwn);
}

XCVMHandlePool::XCVMHandlePool(VXHANDLE memory, std::uint32_t unitSize, bool isFresh)
    : m_hMemory(memory), m_nUnitSize(unitSize),
      m_nSlots(std::min(cnPoolBytes / unitSize, static_cast<std::uint32_t>(cnMaxSlots))), m_nFree(m_nSlots),
      m_nFresh(isFresh ? m_nSlots : 0) {
    for (std::uint32_t slot = 0; slot < m_nSlots; ++slot)
        m_arrFree[slot] = static_cast<std::uint8_t>(slot);
    std::fill(std::begin(m_arrOwner), std::end(m_arrOwner), nullptr);
}

XCVMHandlePool::~XCVMHandlePool() { vxFree(m_hMemory); }

VXHANDLE XCVMHandlePool::DetachMemory() { return std::exchange(m_hMemory, nullptr); }

std::uint32_t XCVMHandlePool::TakeSlot() {
    const std::uint32_t slot = m_arrFree[--m_nFree];
    // Slots that were taken before lie above the others on the stack, so fresh ones come in descending order.
    if (slot < m_nFresh) {
        m_nFresh = slot;
        ovw::platform::prefaultMemory(Lock(slot), m_nUnitSize);
        Unlock();
    }
    return slot;
}

void XCVMHandlePool::ReturnSlot(std::uint32_t slot) {
    m_arrOwner[slot] = nullptr;
    m_arrFree[m_nFree++] = static_cast<std::uint8_t>(slot);
}

void* XCVMHandlePool::Lock(std::uint32_t slot) {
    if (m_nLockCount++ == 0)
        m_pBase = static_cast<unsigned char*>(vxLock(m_hMemory));
    return m_pBase + static_cast<std::size_t>(slot) * m_nUnitSize;
}

void XCVMHandlePool::Unlock() {
    if (m_nLockCount == 0 || --m_nLockCount > 0)
        return;
    vxUnlock(m_hMemory);
    m_pBase = nullptr;
}
