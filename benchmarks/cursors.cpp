// Pixels read through the cursor of an image, beside the same reads from a plain array.

#include "canvas.h"
#include "duel.h"

#include <benchmark/benchmark.h>
#include <ovwcmn/xcvoffscreenlock.h>

#include <random>

namespace {

constexpr int cnSide = 1024;
constexpr int cnRandomReads = 1 << 18;

struct Place {
    int x;
    int y;
};

std::vector<Place> rowByRow() {
    std::vector<Place> places;
    for (int y = 0; y < cnSide; y++) {
        for (int x = 0; x < cnSide; x++)
            places.push_back({x, y});
    }
    return places;
}

std::vector<Place> anywhere() {
    std::mt19937 random(1);
    std::uniform_int_distribution<int> coordinate(0, cnSide - 1);
    std::vector<Place> places;
    for (int i = 0; i < cnRandomReads; i++)
        places.push_back({coordinate(random), coordinate(random)});
    return places;
}

/// Steps along the rows with NextCursorX.
void stepThrough(XCVOffscreen& image) {
    for (int y = 0; y < cnSide; y++) {
        image.MoveCursor(0, y);
        for (int x = 0; x < cnSide; x++) {
            benchmark::DoNotOptimize(image.Get32BitColor());
            image.NextCursorX();
        }
    }
}

void moveThrough(XCVOffscreen& image, const std::vector<Place>& places) {
    for (const auto [x, y] : places) {
        image.MoveCursor(x, y);
        benchmark::DoNotOptimize(image.Get32BitColor());
    }
}

void readPixels(benchmark::State& state, const std::vector<Place>& places, bool steps) {
    ovwbench::Canvas canvas(cnSide);
    const std::vector<std::uint32_t> plain = ovwbench::variedPixels(cnSide, cnSide);
    XCVOffscreen& image = canvas.image();
    XCVOffscreenAutoLock lock(&image, 0, 0, 0);
    ovwbench::Duel duel;
    duel.unit = "Mreads";
    duel.amount = static_cast<double>(places.size()) / 1e6;
    duel.work = [&] { steps ? stepThrough(image) : moveThrough(image, places); };
    duel.limitName = "array";
    duel.limit = [&] {
        for (const auto [x, y] : places)
            benchmark::DoNotOptimize(plain[static_cast<std::size_t>(y * cnSide + x)]);
    };
    ovwbench::run(state, duel);
}

const bool s_added = [] {
    ovwbench::add("cursor/steps along rows", [](benchmark::State& state) { readPixels(state, rowByRow(), true); });
    ovwbench::add("cursor/moves along rows", [](benchmark::State& state) { readPixels(state, rowByRow(), false); });
    ovwbench::add("cursor/moves anywhere", [](benchmark::State& state) { readPixels(state, anywhere(), false); });
    return true;
}();

} // namespace
