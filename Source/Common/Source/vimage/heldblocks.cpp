#include "vimage/heldblocks.h"

#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcvirtualmemory.h"
#include "ovwcmn/xcvoffscreenlock.h"

namespace ovw::vimage {

HeldBlocks::HeldBlocks(XCVOffscreen& image, bool edit) : m_image(image), m_edit(edit) {
    constexpr std::uint64_t cnBudgetShare = 4;
    // The store evicts whole pools: a locked block keeps its neighbours in memory.
    const std::uint64_t budget = image.GetVirtualMemory() ? image.GetVirtualMemory()->GetPhysicalMemorySize() : 0;
    unsigned slots = cnSlots;
    while (slots > 1 && std::uint64_t{slots} * XCVMHandlePool::cnPoolBytes > budget / cnBudgetShare)
        slots /= 2;
    m_mask = slots - 1;
}

HeldBlocks::~HeldBlocks() { releaseAll(); }

void HeldBlocks::releaseAll() {
    for (Slot& slot : m_slots)
        release(slot);
}

void HeldBlocks::release(Slot& slot) {
    if (slot.base)
        m_image.UnlockBlock(slot.index);
    slot = Slot();
}

/// Missing blocks are asked for again the next time: they may have been created meanwhile.
std::uint8_t* HeldBlocks::take(Slot& slot, int index) {
    release(slot);
    XCVOffscreenEditLock noNewBlocks;
    if (!m_edit)
        noNewBlocks.Lock(&m_image);
    try {
        slot.base = m_image.LockBlock(index);
    } catch (const XCException&) { // all that may be in the way of an eviction
        releaseAll();
        slot.base = m_image.LockBlock(index);
    }
    slot.index = index;
    return slot.base;
}

} // namespace ovw::vimage
