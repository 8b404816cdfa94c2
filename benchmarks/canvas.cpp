#include "canvas.h"

#include <benchmark/benchmark.h>
#include <ovwcmn/xcblockgetter.h>
#include <ovwcmn/xcvoffscreenlock.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace ovwbench {

namespace {

constexpr int cnPixelBytes = 4;

} // namespace

std::vector<std::uint32_t> variedPixels(int width, int height) {
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (int y = 0; y < height; y++) {
        for (int x = 0; x < width; x++) {
            const double wave = std::sin(x * 0.021) + std::cos(y * 0.017); // -2 to 2
            const auto alpha = static_cast<std::uint32_t>(std::clamp(128.0 + wave * 120.0, 0.0, 255.0));
            const auto red = static_cast<std::uint32_t>(x & 255);
            const auto green = static_cast<std::uint32_t>(y & 255);
            const auto blue = static_cast<std::uint32_t>((x * 7 + y * 13) >> 2 & 255);
            pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)] =
                alpha << 24 | red << 16 | green << 8 | blue;
        }
    }
    return pixels;
}

Canvas::Canvas(int side) : m_side(side), m_first(variedPixels(side, side)) {
    constexpr std::uint32_t cnBudget = 512u << 20;
    m_store.Create(cnBudget, nullptr, 0);
    m_image.Create(&m_store, side, side, 72.0);
    restore();
}

void Canvas::copyFirstPixelsTo(XCVOffscreen& image) const {
    XCVOffscreenAutoLock lock(&image, 0, 0, 1);
    forEachBlock(image, [&](std::uint8_t* base, const XCRect& block) {
        const auto rowBytes = static_cast<std::size_t>(block.right - block.left) * cnPixelBytes;
        for (int y = block.top; y < block.bottom; y++) {
            const std::size_t first = static_cast<std::size_t>(y) * static_cast<std::size_t>(m_side);
            std::memcpy(base, &m_first[first + static_cast<std::size_t>(block.left)], rowBytes);
            base += XCVOffscreen::cnBlockSize * cnPixelBytes;
        }
    });
}

void forEachBlock(XCVOffscreen& image, const std::function<void(std::uint8_t* base, const XCRect& block)>& visit) {
    XCBlockGetter blocks(&image, image.GetRect(), 1);
    for (XCRect block; blocks.GetNextBlock(block);) {
        image.MoveCursor(block.left, block.top);
        visit(image.GetBaseAddress(), block);
    }
}

void clearBlocks(XCVOffscreen& image) {
    XCVOffscreenAutoLock lock(&image, 0, 0, 1);
    const int blockBytes = XCVOffscreen::cnBlockSize * XCVOffscreen::cnBlockSize * image.GetDepth() / 8;
    forEachBlock(image, [blockBytes](std::uint8_t* base, const XCRect&) {
        std::memset(base, 0, static_cast<std::size_t>(blockBytes));
    });
}

void PlainMemory::set() {
    std::memset(m_to.data(), 3, m_to.size());
    benchmark::ClobberMemory();
}

void PlainMemory::copy() {
    std::memcpy(m_to.data(), m_from.data(), m_to.size());
    benchmark::ClobberMemory();
}

} // namespace ovwbench
