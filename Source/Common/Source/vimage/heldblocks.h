#ifndef OVW_VIMAGE_HELDBLOCKS_H
#define OVW_VIMAGE_HELDBLOCKS_H

#include "ovwcmn/xcvoffscreen.h"

#include <array>
#include <cstdint>

namespace ovw::vimage {

/// Keeps some blocks of a locked image locked in the store, one a block column, for work that goes back and forth in
/// rows: entering a block again then costs a comparison. The image's cursor stays where it is. Few blocks are held at
/// once, measured against the store's budget, and none when the store fails.
class HeldBlocks {
public:
    /// With edit (the image is locked for editing then) blocks are created and marked edited.
    HeldBlocks(XCVOffscreen& image, bool edit);
    ~HeldBlocks();
    HeldBlocks(const HeldBlocks&) = delete;
    HeldBlocks& operator=(const HeldBlocks&) = delete;

    /// First byte of the block of a pixel of the image, null where it is missing. The address holds until the next call
    /// for a block of the same column.
    std::uint8_t* at(int x, int y) {
        const int index = m_image.GetBlockIndexFast(x, y);
        Slot& slot = m_slots[static_cast<unsigned>(x >> XCVOffscreen::cnBlockShift) & m_mask];
        return slot.base && slot.index == index ? slot.base : take(slot, index);
    }

private:
    static constexpr unsigned cnSlots = 64;

    struct Slot {
        int index = -1;
        std::uint8_t* base = nullptr;
    };

    std::uint8_t* take(Slot& slot, int index);
    void release(Slot& slot);
    void releaseAll();

    XCVOffscreen& m_image;
    const bool m_edit;
    unsigned m_mask = 0;
    std::array<Slot, cnSlots> m_slots;
};

} // namespace ovw::vimage

#endif // OVW_VIMAGE_HELDBLOCKS_H
