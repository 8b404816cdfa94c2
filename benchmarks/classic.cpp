// Classic images, depth by depth: fills and lines beside memset of the bytes that they write; copies, halves and turns
// beside memcpy of the bytes that they read. Rectangles inside an image are held against memory moved row by row.
// Smoothing has no limit of that kind: it is to reach pixels a second, by how much of the picture is edges.

#include "canvas.h"
#include "duel.h"

#include <benchmark/benchmark.h>
#include <ovwcmn/xcgeometry.h>
#include <ovwcmn/xcoffscreen.h>
#include <ovwcmn/xcvoffscreen.h>

#include <cmath>
#include <cstring>
#include <memory>
#include <random>
#include <string>

namespace {

constexpr int cnSide = 4096;
constexpr int cnInset = 3; ///< of rectangles inside an image: no byte of 1 bit begins there
constexpr int cnDepths[] = {1, 8, 24, 32};
constexpr std::uint32_t cnInk = 0xFF1E50C8;
constexpr std::uint32_t cnBlack = 0xFF000000;
constexpr std::uint32_t cnWhite = 0xFFFFFFFF;
constexpr double cnMillion = 1e6;

/// A square image that stays locked.
class Square {
public:
    explicit Square(int side, int depth, std::uint32_t colour = cnWhite) {
        m_image.Create(side, side, depth, colour, 1);
        m_image.Lock();
        m_image.SetForeColor(depth == 1 ? cnBlack : cnInk);
    }
    XCOffscreen& operator*() { return m_image; }
    XCOffscreen* operator->() { return &m_image; }
    XCOffscreen* get() { return &m_image; }
    /// Colours and alphas in runs, as in a painted layer.
    void paint() {
        const auto pixels = ovwbench::variedPixels(m_image.GetWidth(), m_image.GetHeight());
        auto next = pixels.begin();
        for (int y = 0; y < m_image.GetHeight(); y++) {
            XCOffscreenCursor cursor(&m_image, 0, y);
            for (int x = 0; x < m_image.GetWidth(); x++, cursor.NextCursorX())
                cursor.Set32BitPixel(*next++);
        }
    }

private:
    XCOffscreen m_image;
};

/// A rectangle inside an image: where its rows lie and how many bytes they have.
struct Inside {
    std::size_t first, bytes, stride;
    int rows;

    static Inside of(const XCOffscreen& image) {
        const auto width = static_cast<std::size_t>(image.GetWidth() - 2 * cnInset);
        const auto depth = static_cast<std::size_t>(image.GetBitCount());
        return {cnInset * depth / 8, width * depth / 8, static_cast<std::size_t>(image.GetRowBytes()),
                image.GetHeight() - 2 * cnInset};
    }
    std::size_t at(int row) const { return static_cast<std::size_t>(row + cnInset) * stride + first; }
    void set(ovwbench::PlainMemory& plain) const {
        for (int y = 0; y < rows; y++)
            std::memset(plain.to() + at(y), 3, bytes);
        benchmark::ClobberMemory();
    }
    void copy(ovwbench::PlainMemory& plain) const {
        for (int y = 0; y < rows; y++)
            std::memcpy(plain.to() + at(y), plain.from() + at(y), bytes);
        benchmark::ClobberMemory();
    }
};

XCRect rectInside(int side) { return XCRect(cnInset, cnInset, side - cnInset, side - cnInset); }

double megapixels(int width, int height) { return static_cast<double>(width) * height / cnMillion; }

ovwbench::Duel duelOf(double amount, double aim) {
    ovwbench::Duel duel;
    duel.unit = "Mpixel";
    duel.amount = amount;
    duel.aim = aim;
    return duel;
}

void fill(benchmark::State& state, int depth, bool isWhole) {
    Square image(cnSide, depth);
    ovwbench::PlainMemory plain(image->GetBufferSize());
    const Inside inside = Inside::of(*image);
    const XCRect rect = isWhole ? XCRect(0, 0, cnSide, cnSide) : rectInside(cnSide);
    ovwbench::Duel duel = duelOf(megapixels(rect.Width(), rect.Height()), 0.80);
    duel.work = [&] { image->RectFill(rect); };
    duel.limitName = isWhole ? "memset" : "memset by rows";
    duel.limit = [&] { isWhole ? plain.set() : inside.set(plain); };
    ovwbench::run(state, duel);
}

/// Lines all over the image, from edge to edge; it is small enough for a cache.
void lines(benchmark::State& state, int depth, int width) {
    constexpr int cnLines = 256, cnLineSide = 512;
    Square image(cnLineSide, depth);
    const auto draw = [&] {
        for (int i = 0; i < cnLines; i++) {
            const int from = i * cnLineSide / cnLines;
            const int to = cnLineSide - 1 - from;
            if (i % 2 == 0)
                image->Line(from, 0, to, cnLineSide - 1, width);
            else
                image->Line(0, from, cnLineSide - 1, to, width);
        }
    };
    const double pixels = static_cast<double>(cnLines) * cnLineSide * width;
    ovwbench::PlainMemory plain(static_cast<std::size_t>(pixels * depth / 8));
    ovwbench::Duel duel = duelOf(pixels / cnMillion, 0.0);
    duel.work = draw;
    duel.limitName = "memset";
    duel.limit = [&] { plain.set(); };
    ovwbench::run(state, duel);
}

/// shift: bits that come to stand elsewhere in their bytes are computed, and held against no aim.
void copy(benchmark::State& state, int depth, bool isWhole, int shift) {
    Square from(cnSide, depth), to(cnSide, depth);
    from.paint();
    ovwbench::PlainMemory plain(from->GetBufferSize());
    const Inside inside = Inside::of(*from);
    const XCRect rect = isWhole ? XCRect(0, 0, cnSide, cnSide) : rectInside(cnSide);
    const bool isComputed = depth < 8 && shift % 8 != 0;
    ovwbench::Duel duel = duelOf(megapixels(rect.Width(), rect.Height()), isComputed ? 0.0 : 0.80);
    duel.work = [&] {
        to->Copy(rect.left - shift, rect.top, rect.Width(), rect.Height(), from.get(), rect.left, rect.top);
    };
    duel.limitName = isWhole ? "memcpy" : "memcpy by rows";
    duel.limit = [&] { isWhole ? plain.copy() : inside.copy(plain); };
    ovwbench::run(state, duel);
}

/// There and back between a classic and a tiled image.
void convert(benchmark::State& state, int depth) {
    Square image(cnSide, depth);
    image.paint();
    XCOffscreen back;
    ovwbench::PlainMemory plain(image->GetBufferSize());
    ovwbench::Duel duel = duelOf(megapixels(cnSide, cnSide), 0.0);
    duel.work = [&] {
        const std::unique_ptr<XCVOffscreen> tiled(image->CopyToOffscreen());
        back.CopyFromOffscreen(tiled.get());
    };
    duel.limitName = "2 memcpy";
    duel.limit = [&] {
        plain.copy();
        plain.copy();
    };
    ovwbench::run(state, duel);
}

/// Work that reads a whole image, beside memcpy of it: change(image).
template <class Change>
void change(benchmark::State& state, int depth, double aim, const Change& change) {
    Square from(cnSide, depth);
    from.paint();
    ovwbench::PlainMemory plain(from->GetBufferSize());
    ovwbench::Duel duel = duelOf(megapixels(cnSide, cnSide), aim);
    duel.work = [&] { change(*from); };
    duel.limitName = "memcpy";
    duel.limit = [&] { plain.copy(); };
    ovwbench::run(state, duel);
}

void resample(benchmark::State& state, int depth, int toSide, int quality, double aim) {
    Square to(toSide, depth);
    change(state, depth, aim, [&](XCOffscreen& from) {
        to->ChangeResolution(0, 0, toSide, toSide, &from, 0, 0, cnSide, cnSide, quality);
    });
}

void turn(benchmark::State& state, int depth, int angle, double aim) {
    Square to(cnSide, depth);
    change(state, depth, aim, [&](XCOffscreen& from) { to->RotationImage(from, 0, 0, cnSide, cnSide, angle, 0, 0); });
}

void flip(benchmark::State& state, int depth, int direction, double aim) {
    Square to(cnSide, depth);
    change(state, depth, aim, [&](XCOffscreen& from) { to->FlipImage(from, 0, 0, cnSide, cnSide, direction); });
}

/// Wavy pen lines of three pixels; `distance` apart.
void drawWaves(XCOffscreen& image, int distance) {
    image.SetForeColor(cnBlack);
    const int side = image.GetWidth();
    const auto heightAt = [](int x) { return static_cast<int>(std::lround(24.0 * std::sin(x / 61.0))); };
    constexpr int cnPiece = 16;
    for (int y = -distance; y < side + distance; y += distance)
        for (int x = 0; x < side; x += cnPiece)
            image.Line(x, y + heightAt(x), x + cnPiece, y + heightAt(x + cnPiece), 3);
}

/// The share of pixels that differ from the next in their row or column, in %.
double shareOfEdges(XCOffscreen& image) {
    const int rowBytes = image.GetRowBytes(), pixelBytes = image.GetPixelSize();
    const std::uint8_t* const bits = image.GetBaseAddress();
    std::int64_t edges = 0;
    for (int y = 0; y + 1 < image.GetHeight(); y++) {
        const std::uint8_t* at = bits + static_cast<std::ptrdiff_t>(y) * rowBytes;
        for (int x = 0; x + 1 < image.GetWidth(); x++, at += pixelBytes)
            edges += std::memcmp(at, at + pixelBytes, static_cast<std::size_t>(pixelBytes)) != 0 ||
                     std::memcmp(at, at + rowBytes, static_cast<std::size_t>(pixelBytes)) != 0;
    }
    return 100.0 * static_cast<double>(edges) / (static_cast<double>(image.GetWidth()) * image.GetHeight());
}

/// distance: of the lines in pixels; 0 leaves the picture of one colour.
void smooth(benchmark::State& state, int depth, int distance, double aimed) {
    Square image(cnSide, depth);
    if (distance > 0)
        drawWaves(*image, distance);
    ovwbench::PlainMemory plain(image->GetBufferSize());
    std::memcpy(plain.from(), image->GetBaseAddress(), image->GetBufferSize());
    ovwbench::Duel duel = duelOf(megapixels(cnSide, cnSide), 0.0);
    duel.aimedFigure = aimed;
    duel.work = [&] { image->DoSmoothing(nullptr, nullptr, nullptr, nullptr, nullptr); };
    duel.restore = [&] { std::memcpy(image->GetBaseAddress(), plain.from(), image->GetBufferSize()); };
    char name[32];
    std::snprintf(name, sizeof name, "memcpy; %.1f %% edges", shareOfEdges(*image));
    duel.limitName = name;
    duel.limit = [&] { plain.copy(); };
    ovwbench::run(state, duel);
}

template <class... Arguments>
void addOne(const std::string& name, void (*body)(benchmark::State&, Arguments...), Arguments... arguments) {
    ovwbench::add("classic " + name, [=](benchmark::State& state) { body(state, arguments...); });
}

void addDepth(int depth) {
    const std::string bits = "/" + std::to_string(depth) + " ";
    addOne("fill" + bits + "whole", fill, depth, true);
    addOne("fill" + bits + "inside", fill, depth, false);
    addOne("lines" + bits + "1 pixel wide", lines, depth, 1);
    addOne("lines" + bits + "12 pixels wide", lines, depth, 12);
    addOne("copy" + bits + "whole", copy, depth, true, 0);
    addOne("copy" + bits + "inside", copy, depth, false, 0);
    addOne("copy" + bits + "moved by 2", copy, depth, false, 2);
    addOne("convert" + bits + "to tiled and back", convert, depth);
    // Bits are too few bytes to be held against memory.
    const double aimed = depth == 1 ? 0.0 : 0.25;
    addOne("resize" + bits + "half", resample, depth, cnSide / 2, 2, aimed);
    addOne("resize" + bits + "half low", resample, depth, cnSide / 2, 1, aimed);
    addOne("resize" + bits + "0.37 area", resample, depth, cnSide * 37 / 100, 2, 0.0);
    addOne("resize" + bits + "0.37 nearest", resample, depth, cnSide * 37 / 100, 0, 0.0);
    addOne("turn" + bits + "90", turn, depth, 90, depth == 32 ? 0.30 : 0.0);
    addOne("turn" + bits + "180", turn, depth, 180, 0.0);
    addOne("turn" + bits + "mirror", flip, depth, 0, 0.0);
    addOne("turn" + bits + "upside down", flip, depth, 1, 0.0);
}

const bool s_added = [] {
    for (const int depth : cnDepths)
        addDepth(depth);
    for (const int depth : {24, 32}) {
        const std::string bits = "smooth/" + std::to_string(depth) + " ";
        addOne(bits + "solid", smooth, depth, 0, 100.0);
        addOne(bits + "line art", smooth, depth, 60, 15.0);
        addOne(bits + "dense", smooth, depth, 8, 0.0);
    }
    return true;
}();

} // namespace
