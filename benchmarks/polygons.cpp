// Polygons through the mixer, beside copying as many pixels: of 3 to 10,000 edges, hard and anti-aliased; a star with
// many short spans a row; and triangles that are small, so that setting up counts.

#include "canvas.h"
#include "duel.h"

#include <benchmark/benchmark.h>
#include <ovwcmn/xcfastpixelmixer.h>
#include <ovwcmn/xcpolygon.h>
#include <ovwcmn/xcvoffscreenlock.h>

#include <cmath>
#include <functional>
#include <numbers>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int cnSide = 1024;
constexpr std::uint32_t cnOpaque = 0xFF1E50C8;
constexpr std::uint32_t cnHalf = 0x801E50C8;

/// Corners around the middle of the canvas; radiusAt(i, angle) is that of a corner, a share of the side.
template <class RadiusAt>
XCPolyVertex around(int corners, RadiusAt radiusAt) {
    XCPolyVertex vertices;
    for (int i = 0; i < corners; i++) {
        const double angle = 2.0 * std::numbers::pi * i / corners + 0.1;
        const double radius = cnSide * radiusAt(i, angle);
        vertices.Add(cnSide / 2.0 + radius * std::cos(angle), cnSide / 2.0 + radius * std::sin(angle));
    }
    return vertices;
}

/// A flower of 20 petals, so that no row crosses more edges than a fill can take; 3 edges make a triangle.
XCPolyVertex flower(int edges) {
    constexpr int cnPetals = 20;
    return around(edges,
                  [edges](int, double angle) { return edges == 3 ? 0.48 : 0.4 + 0.08 * std::sin(cnPetals * angle); });
}

XCPolyVertex star() {
    return around(100, [](int i, double) { return i % 2 == 0 ? 0.49 : 0.21; });
}

/// Equilateral triangles of about 17 pixels all over the canvas.
std::vector<XCPolyVertex> triangles(int count) {
    constexpr double cnRadius = 10.0;
    std::mt19937 random(5);
    std::uniform_real_distribution<double> place(cnRadius, cnSide - cnRadius);
    std::uniform_real_distribution<double> turn(0.0, 2.0 * std::numbers::pi);
    std::vector<XCPolyVertex> all(static_cast<std::size_t>(count));
    for (XCPolyVertex& triangle : all) {
        const double x = place(random), y = place(random), angle = turn(random);
        for (int corner = 0; corner < 3; corner++) {
            const double to = angle + corner * 2.0 * std::numbers::pi / 3.0;
            triangle.Add(x + cnRadius * std::cos(to), y + cnRadius * std::sin(to));
        }
    }
    return all;
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

void fillPolygons(benchmark::State& state, const std::vector<XCPolyVertex>& polygons, std::uint32_t color,
                  bool antialias) {
    ovwbench::Canvas canvas(cnSide);
    double pixels = 0.0;
    for (const XCPolyVertex& vertices : polygons)
        pixels += areaOf(vertices);
    ovwbench::PlainMemory plain(static_cast<std::size_t>(pixels) * 4);
    XCFastPixelMixer mixer;
    mixer.SetDstOffscreen(&canvas.image());
    mixer.SetDrawCompositioin(XCFastPixelMixer::Normal);
    mixer.SetColor(color);
    XCPolygon polygon(&mixer);
    const auto fill = [&] {
        XCVOffscreenAutoLock lock(&canvas.image(), 0, 0, 1);
        int filled = 1;
        for (const XCPolyVertex& vertices : polygons)
            filled &= antialias ? polygon.DrawPolygonAA(nullptr, &canvas.image(), &vertices, nullptr)
                                : polygon.DrawPolygon(nullptr, &canvas.image(), &vertices, nullptr);
        return filled;
    };
    if (!fill())
        return state.SkipWithError("a polygon was not filled");
    ovwbench::Duel duel;
    duel.unit = "Mpixel";
    duel.amount = pixels / 1e6;
    duel.work = [&] { fill(); };
    duel.limitName = "memcpy";
    duel.limit = [&] { plain.copy(); };
    duel.restore = [&] { canvas.restore(); };
    duel.items = static_cast<double>(polygons.size());
    ovwbench::run(state, duel);
}

using Polygons = std::vector<XCPolyVertex>;

void add(const std::string& name, std::uint32_t color, bool antialias, const std::function<Polygons()>& make) {
    ovwbench::add("polygon/" + name, [=](benchmark::State& state) { fillPolygons(state, make(), color, antialias); });
}

const bool s_added = [] {
    for (const bool antialias : {false, true}) {
        for (const int edges : {3, 100, 10000})
            add(std::string(antialias ? "soft" : "hard") + "/edges " + std::to_string(edges), cnHalf, antialias,
                [edges] { return Polygons{flower(edges)}; });
    }
    for (const std::uint32_t color : {cnOpaque, cnHalf}) {
        const std::string paint = color == cnOpaque ? "opaque" : "50 %";
        add("soft/star, " + paint, color, true, [] { return Polygons{star()}; });
        add("soft/triangles, " + paint, color, true, [] { return triangles(10000); });
    }
    return true;
}();

} // namespace
