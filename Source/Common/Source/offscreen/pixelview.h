#ifndef OVW_OFFSCREEN_PIXELVIEW_H
#define OVW_OFFSCREEN_PIXELVIEW_H

#include "offscreen/withformat.h"
#include "ovwcmn/xcgeometry.h"
#include "ovwcmn/xcoffscreen.h"

#include <cstddef>
#include <cstdint>

namespace ovw::offscreen {

/// The pixels of a locked classic image, for loops over rows.
struct PixelView {
    std::uint8_t* bits = nullptr;
    int width = 0;
    int height = 0;
    int rowBytes = 0;
    int depth = 0;

    PixelView() = default;
    explicit PixelView(const XCOffscreen& image)
        : bits(image.GetBaseAddress()), width(image.GetWidth()), height(image.GetHeight()),
          rowBytes(image.GetRowBytes()), depth(image.GetBitCount()) {}

    std::uint8_t* row(int y) const { return bits + static_cast<std::ptrdiff_t>(y) * rowBytes; }
    XCRect rect() const { return XCRect(0, 0, width, height); }
    bool contains(int x, int y) const { return x >= 0 && y >= 0 && x < width && y < height; }
};

/// One pixel of a row; its place for the packed format is a byte and a mask.
template <class Format>
typename Format::Value loadPixel(const std::uint8_t* row, int x) {
    if constexpr (cnHasBytes<Format>)
        return Format::load(row + static_cast<std::ptrdiff_t>(x) * Format::cnBytes);
    else
        return Format::load(row + (x >> 3), static_cast<std::uint8_t>(0x80 >> (x & 7)));
}

template <class Format>
void storePixel(std::uint8_t* row, int x, typename Format::Value value) {
    if constexpr (cnHasBytes<Format>)
        Format::store(row + static_cast<std::ptrdiff_t>(x) * Format::cnBytes, 0, value);
    else
        Format::store(row + (x >> 3), static_cast<std::uint8_t>(0x80 >> (x & 7)), value);
}

/// Keeps a classic image locked for a scope; one without pixels, or null, is left alone.
class ImageLock {
public:
    explicit ImageLock(XCOffscreen* image) : m_image(image && image->GetBitCount() ? image : nullptr) {
        if (m_image)
            m_image->Lock();
    }
    ImageLock(const ImageLock&) = delete;
    ImageLock& operator=(const ImageLock&) = delete;
    ~ImageLock() {
        if (m_image)
            m_image->Unlock();
    }
    explicit operator bool() const { return m_image != nullptr; }

private:
    XCOffscreen* m_image;
};

} // namespace ovw::offscreen

#endif // OVW_OFFSCREEN_PIXELVIEW_H
