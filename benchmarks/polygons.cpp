// Polygons of 3 to 10,000 edges, hard and anti-aliased, through the mixer, beside copying as many pixels.

#include "canvas.h"
#include "duel.h"

#include <benchmark/benchmark.h>
#include <ovwcmn/xcfastpixelmixer.h>
#include <ovwcmn/xcpolygon.h>
#include <ovwcmn/xcvoffscreenlock.h>

#include <cmath>
#include <numbers>
#include <string>

namespace {

constexpr int cnSide = 1024;

/// A flower of 20 petals, so that no row crosses more edges than a fill can take; 3 edges make a triangle.
XCPolyVertex flower(int edges) {
    constexpr int cnPetals = 20;
    XCPolyVertex vertices;
    for (int i = 0; i < edges; i++) {
        const double angle = 2.0 * std::numbers::pi * i / edges + 0.1;
        const double radius = cnSide * (edges == 3 ? 0.48 : 0.4 + 0.08 * std::sin(cnPetals * angle));
        vertices.Add(cnSide / 2.0 + radius * std::cos(angle), cnSide / 2.0 + radius * std::sin(angle));
    }
    return vertices;
}

double areaOf(const XCPolyVertex& polygon) {
    const std::span<const tagPOINTD> points = polygon.Vertices();
    double twice = 0.0;
    for (std::size_t i = 0; i < points.size(); i++) {
        const tagPOINTD& next = points[(i + 1) % points.size()];
        twice += points[i].x * next.y - next.x * points[i].y;
    }
    return std::abs(twice) / 2.0;
}

void fillPolygon(benchmark::State& state, int edges, bool antialias) {
    ovwbench::Canvas canvas(cnSide);
    const XCPolyVertex vertices = flower(edges);
    const double pixels = areaOf(vertices);
    ovwbench::PlainMemory plain(static_cast<std::size_t>(pixels) * 4);
    XCFastPixelMixer mixer;
    mixer.SetDstOffscreen(&canvas.image());
    mixer.SetDrawCompositioin(XCFastPixelMixer::Normal);
    mixer.SetColor(0x801E50C8);
    XCPolygon polygon(&mixer);
    const auto fill = [&] {
        XCVOffscreenAutoLock lock(&canvas.image(), 0, 0, 1);
        return antialias ? polygon.DrawPolygonAA(nullptr, &canvas.image(), &vertices, nullptr)
                         : polygon.DrawPolygon(nullptr, &canvas.image(), &vertices, nullptr);
    };
    if (!fill())
        return state.SkipWithError("the polygon was not filled");
    ovwbench::Duel duel;
    duel.unit = "Mpixel";
    duel.amount = pixels / 1e6;
    duel.work = [&] { fill(); };
    duel.limitName = "memcpy";
    duel.limit = [&] { plain.copy(); };
    duel.restore = [&] { canvas.restore(); };
    ovwbench::run(state, duel);
}

const bool s_added = [] {
    for (const bool antialias : {false, true}) {
        for (const int edges : {3, 100, 10000})
            ovwbench::add("polygon/" + std::string(antialias ? "soft" : "hard") + "/edges " + std::to_string(edges),
                          [=](benchmark::State& state) { fillPolygon(state, edges, antialias); });
    }
    return true;
}();

} // namespace
