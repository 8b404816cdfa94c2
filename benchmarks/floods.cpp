// Flood fills of an 8-bit image: one large region, a comb of teeth of one pixel, a maze of corridors of three. Figures
// are pixels filled; the limit writes the whole picture.

#include "canvas.h"
#include "duel.h"

#include <ovwcmn/xcvoffscreenlock.h>

#include <algorithm>
#include <cstring>
#include <random>

namespace {

constexpr int cnSide = 4096;
constexpr std::size_t cnPixels = std::size_t{cnSide} * cnSide;
constexpr std::uint8_t cnWall = 255;
using Plane = std::vector<std::uint8_t>;

std::uint8_t& at(Plane& plane, int x, int y) {
    return plane[static_cast<std::size_t>(y) * cnSide + static_cast<std::size_t>(x)];
}

Plane open() { return Plane(cnPixels, 0); }

/// Joined at the top.
Plane comb() {
    Plane plane = open();
    for (int y = 2; y < cnSide; y++)
        for (int x = 1; x < cnSide; x += 2)
            at(plane, x, y) = cnWall;
    return plane;
}

/// A binary tree maze: every cell is open to the right or downward.
Plane maze() {
    constexpr int cnCell = 4, cnCorridor = 3, cnCells = cnSide / cnCell;
    Plane plane(cnPixels, cnWall);
    std::mt19937 random(1);
    const auto carve = [&](int left, int top, int width, int height) {
        for (int y = top; y < top + height; y++)
            std::fill_n(&at(plane, left, y), width, std::uint8_t{0});
    };
    for (int y = 0; y < cnCells; y++)
        for (int x = 0; x < cnCells; x++) {
            const bool isRight = y == cnCells - 1 || (x < cnCells - 1 && random() % 2 == 0);
            const int reach = isRight ? std::min(cnCell + cnCorridor, cnSide - x * cnCell) : cnCorridor;
            carve(x * cnCell, y * cnCell, reach, isRight ? cnCorridor : cnCell + cnCorridor);
        }
    return plane;
}

void copyTo(XCVOffscreen& image, const Plane& plane) {
    XCVOffscreenAutoLock lock(&image, 0, 0, 1);
    ovwbench::forEachBlock(image, [&](std::uint8_t* base, const XCRect& block) {
        for (int y = block.top; y < block.bottom; y++, base += XCVOffscreen::cnBlockSize)
            std::memcpy(base, &plane[static_cast<std::size_t>(y) * cnSide + static_cast<std::size_t>(block.left)],
                        static_cast<std::size_t>(block.Width()));
    });
}

void fill(benchmark::State& state, Plane (*draw)()) {
    const Plane plane = draw();
    XCVirtualMemory store;
    store.Create(64u << 20, nullptr, 0);
    XCVOffscreen8Bit image;
    image.Create(&store, cnSide, cnSide, 72.0);
    ovwbench::PlainMemory plain(cnPixels);
    ovwbench::Duel duel;
    duel.unit = "Mpixel";
    duel.amount = static_cast<double>(std::count(plane.begin(), plane.end(), 0)) / 1e6;
    duel.restore = [&] { copyTo(image, plane); };
    duel.work = [&] {
        XCRect changed;
        int count = 0;
        XCVOffscreen::FloodFillFrom8BitNoMargin(&image, changed, XCPoint(0, 0), 0x80000000u, &image, XCPoint(0, 0),
                                                image.GetRect(), &count, 0);
    };
    duel.limitName = "memset of all";
    duel.limit = [&] { plain.set(); };
    ovwbench::run(state, duel);
}

const bool s_added = [] {
    const auto addOne = [](const char* name, Plane (*draw)()) {
        ovwbench::add(std::string("flood/") + name, [=](benchmark::State& state) { fill(state, draw); });
    };
    addOne("open", open);
    addOne("comb of 1 pixel", comb);
    addOne("maze of 3 pixels", maze);
    return true;
}();

} // namespace
