#ifndef OVWBENCH_CANVAS_H
#define OVWBENCH_CANVAS_H

/// @file
/// Images and plain memory to paint on.

#include <ovwcmn/xcvirtualmemory.h>
#include <ovwcmn/xcvoffscreen.h>

#include <cstdint>
#include <functional>
#include <vector>

namespace ovwbench {

/// Pixels of varied colour and alpha, blue in the lowest byte, rows without padding. The alpha reaches from empty to
/// opaque with both in runs, as in a painted layer.
std::vector<std::uint32_t> variedPixels(int width, int height);

/// A square 32-bit image of varied pixels, all of it in memory.
class Canvas {
public:
    explicit Canvas(int side);

    XCVOffscreen32Bit& image() { return m_image; }
    XCVirtualMemory& store() { return m_store; }
    int side() const { return m_side; }
    double megapixels() const { return static_cast<double>(m_side) * m_side / 1e6; }
    /// Puts the first pixels back.
    void restore() { copyFirstPixelsTo(m_image); }
    /// Gives another 32-bit image of the same size the first pixels.
    void copyFirstPixelsTo(XCVOffscreen& image) const;

private:
    int m_side;
    std::vector<std::uint32_t> m_first;
    XCVirtualMemory m_store;
    XCVOffscreen32Bit m_image;
};

/// Calls visit(base, block) for every block of the image, which must be locked: base is the block's memory, block its
/// part of the image.
void forEachBlock(XCVOffscreen& image, const std::function<void(std::uint8_t* base, const XCRect& block)>& visit);

/// Zeroes the memory of every block, which must have been painted on before.
void clearBlocks(XCVOffscreen& image);

/// Two stretches of memory of one size, and the plainest ways to fill one of them.
class PlainMemory {
public:
    explicit PlainMemory(std::size_t bytes) : m_from(bytes, 1), m_to(bytes, 2) {}

    void set();
    void copy();
    std::uint8_t* from() { return m_from.data(); }
    std::uint8_t* to() { return m_to.data(); }

private:
    std::vector<std::uint8_t> m_from;
    std::vector<std::uint8_t> m_to;
};

} // namespace ovwbench

#endif // OVWBENCH_CANVAS_H
