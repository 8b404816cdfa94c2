#include "canvas.h"

#include <algorithm>

namespace ovw::test {

Pixels pixelsOf(const TestImage& image, const XCRect& part) {
    Pixels result{part.Width(), part.Height(), {}};
    const int rowBytes = image->GetBlockRowBytes();
    const std::uint32_t unpainted = image.depth() >= 24 ? 0x00FFFFFF : 0; // what a pixel without a block shows
    for (int y = part.top; y < part.bottom; ++y)
        image.visitRow(part.left, part.right, y, 0, [&](std::uint8_t* base, int column, int row, int) {
            result.values.push_back(base ? storedPixel(base, rowBytes, image.depth(), column, row) : unpainted);
        });
    return result;
}

Pixels pixelsOf(const TestImage& image) { return pixelsOf(image, XCRect(0, 0, image->GetWidth(), image->GetHeight())); }

XCRect differenceOf(const Pixels& a, const Pixels& b) {
    XCRect result(a.width, a.height, 0, 0);
    for (int y = 0; y < a.height; ++y)
        for (int x = 0; x < a.width; ++x)
            if (a.at(x, y) != b.at(x, y))
                result = XCRect(std::min(result.left, x), std::min(result.top, y), std::max(result.right, x + 1),
                                std::max(result.bottom, y + 1));
    return result.right == 0 ? XCRect() : result;
}

::testing::AssertionResult isSame(const Pixels& actual, const Pixels& expected) {
    if (actual == expected)
        return ::testing::AssertionSuccess();
    for (int y = 0; y < expected.height; ++y)
        for (int x = 0; x < expected.width; ++x)
            if (actual.at(x, y) != expected.at(x, y))
                return ::testing::AssertionFailure()
                       << std::hex << "0x" << actual.at(x, y) << " instead of 0x" << expected.at(x, y) << std::dec
                       << " at (" << x << ", " << y << "), all differences in " << differenceOf(actual, expected);
    return ::testing::AssertionFailure() << "other sizes";
}

XCRect grownAndClipped(const XCRect& rect, int width, int height) {
    const XCRect clipped(std::max(rect.left - 1, 0), std::max(rect.top - 1, 0), std::min(rect.right + 1, width),
                         std::min(rect.bottom + 1, height));
    return clipped.IsRectEmpty() ? XCRect() : clipped;
}

TestStore& sharedStore() {
    static TestStore store;
    return store;
}

Canvas::Canvas(int depth, int width, int height)
    : m_image(sharedStore(), depth, width, height), m_lock(m_image.get(), 1) {
    mixer.SetDstOffscreen(m_image.get());
    mixer.SetDrawCompositioin(XCFastPixelMixer::Normal);
    mixer.SetColor(0xC88DC85A);
}

} // namespace ovw::test
