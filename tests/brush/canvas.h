#ifndef OVW_TESTS_BRUSH_CANVAS_H
#define OVW_TESTS_BRUSH_CANVAS_H

#include "ovwcmn/xcfastpixelmixer.h"
#include "support/testimage.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <vector>

/// @file
/// Images to paint into, and comparisons of what was painted.

namespace ovw::test {

constexpr int cnAllDepths[] = {1, 8, 24, 32};

/// A copy of an image's stored pixels.
struct Pixels {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> values;

    std::uint32_t at(int x, int y) const { return values[std::size_t(y) * std::size_t(width) + std::size_t(x)]; }
    friend bool operator==(const Pixels& a, const Pixels& b) = default;
};

/// A part of an image, as it is stored.
Pixels pixelsOf(const TestImage& image, const XCRect& part);
Pixels pixelsOf(const TestImage& image);
/// The smallest rectangle that holds every pixel that differs; empty when none does.
XCRect differenceOf(const Pixels& a, const Pixels& b);
/// Names the first pixel that differs.
::testing::AssertionResult isSame(const Pixels& actual, const Pixels& expected);
/// The rectangle grown by one pixel and clipped to the image.
XCRect grownAndClipped(const XCRect& rect, int width, int height);

/// The store of every test's images.
TestStore& sharedStore();

/// An image that is locked for editing, and a mixer that paints a translucent colour over it.
class Canvas {
public:
    Canvas(int depth, int width, int height);

    XCVOffscreen* image() const { return m_image.get(); }
    TestImage& testImage() { return m_image; }
    Pixels pixels() const { return pixelsOf(m_image); }

    XCFastPixelMixer mixer;

private:
    TestImage m_image;
    XCVOffscreenAutoLock m_lock;
};

} // namespace ovw::test

inline std::ostream& operator<<(std::ostream& out, const XCRect& rect) {
    return out << "(" << rect.left << ", " << rect.top << ", " << rect.right << ", " << rect.bottom << ")";
}

#endif // OVW_TESTS_BRUSH_CANVAS_H
