#ifndef OVW_OFFSCREEN_SOURCEIMAGE_H
#define OVW_OFFSCREEN_SOURCEIMAGE_H

#include "foundation/nomemory.h"
#include "offscreen/pixelview.h"

#include <memory>
#include <optional>

namespace ovw::offscreen {

/// The source of a copy, locked; a copy of it when it is the destination too.
class SourceImage {
public:
    SourceImage(const XCOffscreen& destination, XCOffscreen* source) {
        if (source == &destination)
            m_copy = foundation::orNoMemory([&] { return std::make_unique<XCOffscreen>(destination); });
        m_lock.emplace(m_copy ? m_copy.get() : source);
        if (*m_lock)
            m_view = PixelView(m_copy ? *m_copy : *source);
    }
    const PixelView& view() const { return m_view; }

private:
    std::unique_ptr<XCOffscreen> m_copy;
    std::optional<ImageLock> m_lock;
    PixelView m_view;
};

} // namespace ovw::offscreen

#endif // OVW_OFFSCREEN_SOURCEIMAGE_H
