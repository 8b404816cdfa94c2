#ifndef OVW_VIMAGE_OPERATIONSOURCE_H
#define OVW_VIMAGE_OPERATIONSOURCE_H

#include "ovwcmn/xcvoffscreen.h"
#include "vimage/readinglock.h"

#include <cstdint>
#include <memory>

namespace ovw::vimage {

/// What decides how pixels read: clear colours, thresholds and index colours.
void copySettings(XCVOffscreen& to, const XCVOffscreen& from);

/// The image that an operation reads while it writes another one, locked for reading. An image has one cursor, and what
/// is to be read must not have been overwritten: where source and destination are one image, this is a copy of the
/// source's rectangle. The copy has the same size, rules and clear colours, and blocks only where the source has them.
class OperationSource {
public:
    OperationSource(XCVOffscreen& source, const XCVOffscreen& destination, const XCRect& rect)
        : m_copy(&source == &destination ? copyOf(source, rect) : nullptr), m_image(m_copy ? m_copy.get() : &source),
          m_lock(m_image) {}

    XCVOffscreen& image() const { return *m_image; }

private:
    static std::unique_ptr<XCVOffscreen> copyOf(XCVOffscreen& source, const XCRect& rect);

    std::unique_ptr<XCVOffscreen> m_copy;
    XCVOffscreen* m_image;
    ReadingLock m_lock;
};

/// start to start + length on one axis, cut to an image of that size.
XCRect clippedRect(int x, int y, std::int64_t width, std::int64_t height, const XCVOffscreen& image);

} // namespace ovw::vimage

#endif // OVW_VIMAGE_OPERATIONSOURCE_H
