#ifndef OVW_TESTS_VIMAGE_PLANE_H
#define OVW_TESTS_VIMAGE_PLANE_H

#include "picture.h"

#include <array>

/// @file
/// A slow and plain model of a tiled image: stored numbers, and which blocks exist. The rules of copies and resampling
/// are written on it pixel by pixel, with the conversions of pixelreference.h.

namespace ovw::test {

class Plane {
public:
    explicit Plane(const TestImage& image)
        : m_depth(image.depth()), m_width(image->GetWidth()), m_height(image->GetHeight()), m_picture(image) {
        for (int y = 0; y < m_height; y += 256)
            for (int x = 0; x < m_width; x += 256)
                m_exists.push_back(image->GetBlockExist(x, y));
    }

    int depth() const { return m_depth; }
    int width() const { return m_width; }
    int height() const { return m_height; }
    bool isInside(std::int64_t x, std::int64_t y) const { return x >= 0 && y >= 0 && x < m_width && y < m_height; }
    bool exists(std::int64_t x, std::int64_t y) const { return isInside(x, y) && m_exists[block(int(x), int(y))]; }
    std::uint32_t stored(std::int64_t x, std::int64_t y) { return m_picture.at(int(x), int(y)); }
    Readings readings(std::int64_t x, std::int64_t y) {
        const std::uint32_t twoBits[4] = {0, 0, 0xFFFFFFFF, 0xFF000000}, ink[4] = {0, 0xFF000000, 0, 0};
        return expectedReadings(m_depth, stored(x, y), {}, m_depth == 2 ? twoBits : ink);
    }
    /// 0 where there is no pixel.
    std::uint32_t colour(std::int64_t x, std::int64_t y) { return exists(x, y) ? readings(x, y).bit32 : 0; }

    void store(int x, int y, std::uint32_t value) {
        m_picture.at(x, y) = value;
        m_exists[block(x, y)] = true;
    }
    void write(int x, int y, int bits, std::uint32_t value) { store(x, y, expectedStored(m_depth, bits, value, {})); }
    void write32(int x, int y, std::uint32_t colour) { write(x, y, 32, colour); }
    void mergeBehind(int x, int y, std::uint32_t colour) {
        const std::uint32_t front = readings(x, y).bit32;
        m_exists[block(x, y)] = true;
        if (alphaOf(colour) == 0 || alphaOf(front) == 255)
            return;
        write32(x, y, alphaOf(front) == 0 ? colour : merged(colour, front));
    }
    void unite(int x, int y, int density) {
        store(x, y, std::uint32_t(255 - (255 - int(stored(x, y))) * (255 - density) / 255));
    }
    void release(int x, int y) {
        m_exists[block(x, y)] = false;
        m_picture.fill(XCRect(x & ~255, y & ~255, (x & ~255) + 256, (y & ~255) + 256), clearOf(m_depth));
    }
    /// "" or what differs.
    std::string difference(const TestImage& image) const {
        for (int y = 0; y < m_height; y += 256)
            for (int x = 0; x < m_width; x += 256)
                if (bool(image->GetBlockExist(x, y)) != bool(m_exists[block(x, y)]))
                    return "the block at (" + std::to_string(x) + ", " + std::to_string(y) + ") " +
                           (m_exists[block(x, y)] ? "is missing" : "exists");
        return m_picture.difference(image);
    }

private:
    std::size_t block(int x, int y) const { return std::size_t((y >> 8) * ((m_width + 255) / 256) + (x >> 8)); }
    static std::uint32_t merged(std::uint32_t s, std::uint32_t d) {
        const int sA = alphaOf(s), dA = alphaOf(d);
        const int w = sA == 255 ? 255 - dA : sA * (255 - dA) / 255;
        const int resultAlpha = sA == 255 ? 255 : 255 - (255 - sA) * (255 - dA) / 255;
        auto channel = [&](int sk, int dk) {
            const int flat = 255 - (255 - dk) * dA / 255;
            const int x = std::max(0, flat - (255 - sk) * w / 255);
            if (resultAlpha == 255)
                return std::uint32_t(x);
            return std::uint32_t(std::max(0.0, 255 - (255.0 - x) * 255 / resultAlpha));
        };
        return std::uint32_t(resultAlpha) << 24 | channel(blueOf(s), blueOf(d)) << 16 |
               channel(greenOf(s), greenOf(d)) << 8 | channel(redOf(s), redOf(d));
    }

    int m_depth, m_width, m_height;
    Picture m_picture;
    std::vector<char> m_exists;
};

/// What some pixels add up to, transparent ones apart.
struct ColourSums {
    double red = 0, green = 0, blue = 0, alpha = 0, visible = 0;

    void add(std::uint32_t c, double weight = 1) {
        if (alphaOf(c) == 0)
            return;
        red += weight * redOf(c), green += weight * greenOf(c), blue += weight * blueOf(c),
            alpha += weight * alphaOf(c);
        visible += weight;
    }
};

inline std::uint32_t pack(int a, int r, int g, int b) {
    return std::uint32_t(a) << 24 | std::uint32_t(b) << 16 | std::uint32_t(g) << 8 | std::uint32_t(r);
}

/// An image of 2 x 2 blocks of which the last is missing; visible pixels are rare in the second.
inline void paintThreeBlocks(TestImage& image, unsigned seed) {
    scribble(image, XCRect(200, 180, 256, 256), seed);
    scribble(image, XCRect(256, 200, std::min(image->GetWidth(), 330), 256), seed + 1);
    scribble(image, XCRect(190, 256, 256, std::min(image->GetHeight(), 300)), seed + 2);
}

struct Transfer {
    int x, y, w, h, sx, sy;
};

} // namespace ovw::test

#endif // OVW_TESTS_VIMAGE_PLANE_H
