#ifndef OVWBENCH_SPARSECANVAS_H
#define OVWBENCH_SPARSECANVAS_H

#include <ovwcmn/xcvoffscreen.h>

#include <cstdint>
#include <vector>

namespace ovwbench {

/// A square 32-bit image on the process-wide store, with varied pixels in every step-th of its blocks, and those blocks
/// as plain memory.
class SparseCanvas {
public:
    using Block = std::vector<std::uint8_t>;
    static constexpr int cnBlock = XCVOffscreen::cnBlockSize;
    static constexpr std::size_t cnBlockBytes = std::size_t{cnBlock} * cnBlock * 4;

    SparseCanvas(int side, int step);
    ~SparseCanvas();
    SparseCanvas(const SparseCanvas&) = delete;
    SparseCanvas& operator=(const SparseCanvas&) = delete;

    XCVOffscreen& image() { return m_image; }
    const std::vector<Block>& blocks() const { return m_blocks; }
    double megabytes() const { return static_cast<double>(m_blocks.size() * cnBlockBytes) / 1e6; }
    double megapixels() const { return megabytes() / 4; }

private:
    XCVOffscreen32Bit m_image;
    std::vector<Block> m_blocks;
};

} // namespace ovwbench

#endif // OVWBENCH_SPARSECANVAS_H
