#ifndef OVW_TESTS_VIMAGE_PICTURE_H
#define OVW_TESTS_VIMAGE_PICTURE_H

#include "ovwcmn/xcgeometry.h"

#include "pixelreference.h"
#include "support/testimage.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <random>
#include <string>
#include <vector>

/// @file
/// The pixels that a test expects in a tiled image.

namespace ovw::test {

inline constexpr int cnDepths[] = {1, 2, 8, 16, 24, 32};

constexpr std::uint32_t clearOf(int depth) { return depth >= 24 ? 0x00FFFFFF : 0; }

/// The stored numbers of an image, row by row. Missing blocks count as clear.
class Picture {
public:
    explicit Picture(const TestImage& image)
        : m_width(image->GetWidth()), m_height(image->GetHeight()),
          m_pixels(std::size_t(m_width) * std::size_t(m_height), clearOf(image.depth())) {
        for (int y = 0; y < m_height; ++y)
            image.visitRow(0, m_width, y, 0, [&](std::uint8_t* base, int column, int row, int x) {
                if (base)
                    at(x, y) = storedPixel(base, image->GetBlockRowBytes(), image.depth(), column, row);
            });
    }

    std::uint32_t& at(int x, int y) { return m_pixels[std::size_t(y) * std::size_t(m_width) + std::size_t(x)]; }
    bool isInside(int x, int y) const { return x >= 0 && y >= 0 && x < m_width && y < m_height; }
    void fill(XCRect r, const std::function<std::uint32_t(std::uint32_t)>& change) {
        for (int y = std::max(r.top, 0); y < std::min(r.bottom, m_height); ++y)
            for (int x = std::max(r.left, 0); x < std::min(r.right, m_width); ++x)
                at(x, y) = change(at(x, y));
    }
    void fill(XCRect r, std::uint32_t value) {
        fill(r, [&](std::uint32_t) { return value; });
    }
    /// "" or the first pixel that differs.
    std::string difference(const TestImage& image) const {
        const Picture other(image);
        for (std::size_t i = 0; i < m_pixels.size(); ++i)
            if (m_pixels[i] != other.m_pixels[i]) {
                char out[100];
                std::snprintf(out, sizeof out, "(%d, %d) is %x instead of %x", int(i) % m_width, int(i) / m_width,
                              other.m_pixels[i], m_pixels[i]);
                return out;
            }
        return "";
    }

private:
    int m_width, m_height;
    std::vector<std::uint32_t> m_pixels;
};

/// Random pixels; many of them are opaque or transparent.
inline void scribble(TestImage& image, XCRect r, unsigned seed = 1) {
    std::mt19937 random(seed);
    for (int y = r.top; y < r.bottom; ++y)
        image.visitRow(r.left, r.right, y, 1, [&](std::uint8_t* base, int column, int row, int) {
            std::uint32_t p = std::uint32_t(random());
            if (random() % 3 == 0)
                p |= image.depth() == 16 ? 0xFFu : 0xFF000000u;
            else if (random() % 3 == 0)
                p &= image.depth() == 16 ? ~0xFFu : 0x00FFFFFFu;
            storePixel(base, image->GetBlockRowBytes(), image.depth(), column, row,
                       image.depth() <= 8 ? p & ((1u << image.depth()) - 1) : p);
        });
}

/// What FillLineRow stores.
inline std::uint32_t rowFilled(int depth, std::uint32_t c) {
    switch (depth) {
    case 1: return XCVOffscreen::VXCOLORREFtoBYTE1(c);
    case 2: return XCVOffscreen::VXCOLORREFtoBYTE2(c);
    case 8: return XCVOffscreen::VXCOLORREFtoBYTE8(c);
    default: return expectedStored(depth, depth == 16 ? 16 : 24, c, {});
    }
}

} // namespace ovw::test

#endif // OVW_TESTS_VIMAGE_PICTURE_H
