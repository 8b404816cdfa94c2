#ifndef OVW_TESTS_OFFSCREEN_CLASSICTEST_H
#define OVW_TESTS_OFFSCREEN_CLASSICTEST_H

#include "ovwcmn/xcgeometry.h"
#include "ovwcmn/xcoffscreen.h"
#include "ovwcmn/xcoffscreenlock.h"

#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <vector>

/// @file
/// Classic images for tests, and their pixels by number.

namespace ovw::test {

inline constexpr int cnClassicDepths[] = {1, 8, 24, 32};

/// A classic image that stays locked, white at first.
class ClassicImage {
public:
    ClassicImage(int width, int height, int depth, std::uint32_t colour = 0xFFFFFFFF) {
        m_image.Create(width, height, depth, colour, 1);
        m_image.Lock();
    }
    ClassicImage(const ClassicImage& other) : m_image(other.m_image) { m_image.Lock(); }

    XCOffscreen& operator*() { return m_image; }
    XCOffscreen* operator->() { return &m_image; }
    XCOffscreen* get() { return &m_image; }

    /// The 32-bit values of all pixels, row by row.
    std::vector<std::uint32_t> pixels() {
        std::vector<std::uint32_t> values;
        for (int y = 0; y < m_image.GetHeight(); ++y)
            for (int x = 0; x < m_image.GetWidth(); ++x)
                values.push_back(m_image.Get32BitPixel(x, y));
        return values;
    }
    void setAll(const std::function<std::uint32_t(int x, int y)>& colourOf) {
        for (int y = 0; y < m_image.GetHeight(); ++y)
            for (int x = 0; x < m_image.GetWidth(); ++x)
                m_image.Set32BitPixel(colourOf(x, y), x, y);
    }
    void scribble(unsigned seed) {
        std::mt19937 random(seed);
        setAll([&random](int, int) { return static_cast<std::uint32_t>(random()); });
    }
    /// Ink where the text has '#'.
    void draw(const std::vector<std::string>& rows, std::uint32_t ink = 0xFF000000) {
        for (int y = 0; y < static_cast<int>(rows.size()); ++y)
            for (int x = 0; x < static_cast<int>(rows[y].size()); ++x)
                if (rows[y][x] == '#')
                    m_image.Set32BitPixel(ink, x, y);
    }

private:
    XCOffscreen m_image;
};

} // namespace ovw::test

#endif // OVW_TESTS_OFFSCREEN_CLASSICTEST_H
