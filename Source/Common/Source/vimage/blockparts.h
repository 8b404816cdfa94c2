#ifndef OVW_VIMAGE_BLOCKPARTS_H
#define OVW_VIMAGE_BLOCKPARTS_H

/// @file
/// The walk over the blocks of one or several images together: every operation on whole images is a loop over the rows
/// of the parts that it gives.

#include "ovwcmn/xcblockgetter.h"
#include "ovwcmn/xcvoffscreen.h"

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <span>

namespace ovw::vimage {

/// Walks the parts of a rectangle that lie in one block each, row by row, and calls action(base, part) with the block's
/// first byte for those that exist or that the image's edit mode creates. The cursor moves; the caller holds the lock.
template <class Action>
void forEachPart(XCVOffscreen& image, const XCRect& rect, Action action) {
    XCBlockGetter blocks(&image, rect, 1);
    XCRect part;
    while (blocks.GetNextBlock(part)) {
        image.MoveCursor(part.left, part.top);
        if (std::uint8_t* const base = image.GetBaseAddress())
            action(base, part);
    }
}

/// An image in coordinates that it shares with others, usually those of the destination: (x, y) there is its pixel
/// (x + dx, y + dy). A view, which owns nothing; the caller locks the image.
class PlacedImage {
public:
    explicit PlacedImage(XCVOffscreen& image, std::int64_t dx = 0, std::int64_t dy = 0)
        : m_image(&image), m_dx(dx), m_dy(dy) {}

    XCVOffscreen& image() const { return *m_image; }
    /// What of rect, in shared coordinates, lies in the image; empty when nothing does.
    XCRect clipped(const XCRect& rect) const {
        return XCRect(cut(rect.left, m_dx, m_image->GetWidth()), cut(rect.top, m_dy, m_image->GetHeight()),
                      cut(rect.right, m_dx, m_image->GetWidth()), cut(rect.bottom, m_dy, m_image->GetHeight()));
    }
    /// In the image's own coordinates; rect lies in the image.
    XCRect own(const XCRect& rect) const {
        return XCRect(ownX(rect.left), ownY(rect.top), ownX(rect.right), ownY(rect.bottom));
    }
    int ownX(int x) const { return static_cast<int>(x + m_dx); }
    int ownY(int y) const { return static_cast<int>(y + m_dy); }

    // Of a part that lies in one block of the image, as forEachSharedPart gives it.
    bool hasBlock(const XCRect& part) const { return m_image->GetBlockExist(index(part)) != 0; }
    int index(const XCRect& part) const { return m_image->GetBlockIndex(ownX(part.left), ownY(part.top)); }
    /// The block's first byte, null where it is missing and edit mode does not create it. The image's cursor moves, so
    /// that the address of another block of it ends.
    std::uint8_t* enter(const XCRect& part) const {
        m_image->MoveCursor(ownX(part.left), ownY(part.top));
        return m_image->GetBaseAddress();
    }
    /// The same for a block of which every byte will be written: a new block is not cleared first.
    std::uint8_t* enterToOverwrite(const XCRect& part) const {
        const ClearOff clearOff(*m_image);
        return enter(part);
    }
    /// Calls action(part), in shared coordinates, for what of rect lies in each block, whether it exists or not.
    template <class Action>
    void forEachBlock(const XCRect& rect, Action action) const {
        XCBlockGetter blocks(m_image, own(clipped(rect)), 1);
        XCRect part;
        while (blocks.GetNextBlock(part))
            action(XCRect(sharedX(part.left), sharedY(part.top), sharedX(part.right), sharedY(part.bottom)));
    }

private:
    class ClearOff {
    public:
        explicit ClearOff(XCVOffscreen& image) : m_image(image), m_saved(image.IsEnableClear()) {
            image.EnableClear(0);
        }
        ~ClearOff() { m_image.EnableClear(m_saved); }
        ClearOff(const ClearOff&) = delete;

    private:
        XCVOffscreen& m_image;
        int m_saved;
    };

    /// v, a shared coordinate, moved to the nearest edge of the image where it lies outside.
    static int cut(int v, std::int64_t d, int size) {
        return static_cast<int>(std::clamp<std::int64_t>(v, asInt(-d), asInt(size - d)));
    }
    static std::int64_t asInt(std::int64_t v) { return std::clamp<std::int64_t>(v, INT32_MIN, INT32_MAX); }
    int sharedX(int x) const { return static_cast<int>(x - m_dx); }
    int sharedY(int y) const { return static_cast<int>(y - m_dy); }

    XCVOffscreen* m_image;
    std::int64_t m_dx;
    std::int64_t m_dy;
};

/// Calls action(part) for the parts of rect that lie in every image, and in one block of each. The blocks of the first
/// image are the outermost loop. Nothing is entered: the action asks for what it needs, and a block of the destination
/// comes into being only then. No image may stand in the list twice: it has only one cursor.
template <class Action>
void forEachSharedPart(const XCRect& rect, std::span<const PlacedImage> images, const Action& action) {
    if (images.empty())
        return action(rect);
    images.front().forEachBlock(rect, [&](const XCRect& part) { forEachSharedPart(part, images.subspan(1), action); });
}

template <class Action>
void forEachSharedPart(const XCRect& rect, std::initializer_list<PlacedImage> images, const Action& action) {
    forEachSharedPart(rect, std::span(images.begin(), images.size()), action);
}

} // namespace ovw::vimage

#endif // OVW_VIMAGE_BLOCKPARTS_H
