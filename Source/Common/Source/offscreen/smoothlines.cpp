#include "offscreen/smoothlines.h"

#include "vimage/turnrows.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>

namespace ovw::offscreen {

namespace {

constexpr int cnAlphaBorder = 200;
constexpr int cnEqualPixels = 16;      // that are looked at together
constexpr std::size_t cnStripGap = 20; // pixels between columns in a strip, so that they do not share cache sets

constexpr int overWhite(int channel, int alpha) {
    return (channel * alpha + cnByteMax * (cnByteMax - alpha)) / cnByteMax;
}

/// Pixels of a row of 24 bits, at least one, with full alpha.
void readOpaque(const std::uint8_t* row, int x, int count, ArgbPixel* pixels) {
    static_assert(Argb32::cnAlpha == 0 && Argb32::cnRed == 1 && Rgb24::cnRed == 0);
    const std::uint8_t* from = row + static_cast<std::ptrdiff_t>(x) * Rgb24::cnBytes;
    pixels[0] = {cnByteMax, from[0], from[1], from[2]};
    for (int i = 1; i < count; ++i) {
        from += Rgb24::cnBytes;
        std::memcpy(&pixels[i], from - 1, sizeof pixels[i]); // and a byte of the pixel before
        pixels[i].alpha = cnByteMax;
    }
}

/// Whether a stretch of pixels, each beside the one before it, is of one colour.
bool areEqual(const ArgbPixel* pixels) {
    std::uint32_t before[cnEqualPixels], at[cnEqualPixels], difference = 0;
    std::memcpy(before, pixels - 1, sizeof before);
    std::memcpy(at, pixels, sizeof at);
    for (int i = 0; i < cnEqualPixels; ++i)
        difference |= before[i] ^ at[i];
    return difference == 0;
}

/// The first position from p on, before `to`, whose pixel differs from the one before.
int endOfEqual(const ArgbPixel* pixels, int p, int to) {
    while (p + cnEqualPixels <= to && areEqual(pixels + p))
        p += cnEqualPixels;
    while (p < to && pixels[p] == pixels[p - 1])
        ++p;
    return p;
}

constexpr tagVXRGBCOLOR average(const ArgbPixel& a, const ArgbPixel& b) {
    return {(a.alpha + b.alpha) / 2, (a.red + b.red) / 2, (a.green + b.green) / 2, (a.blue + b.blue) / 2};
}

} // namespace

bool findBorder(const ArgbPixel& a, const ArgbPixel& b, int level) {
    if (a == b)
        return false;
    const auto difference = [&](int x, int y) { return std::abs(overWhite(x, a.alpha) - overWhite(y, b.alpha)); };
    return std::abs(a.alpha - b.alpha) > cnAlphaBorder ||
           difference(a.red, b.red) + difference(a.green, b.green) + difference(a.blue, b.blue) > level;
}

SmoothLines::SmoothLines(const PixelView& view, Runs* runs, RunIndex* index, bool vertical, int from, int to)
    : m_view(view), m_runs(runs), m_index(index), m_vertical(vertical), m_from(from), m_to(to) {
    const auto length = static_cast<std::size_t>(to);
    if (vertical) {
        m_stripStride = length + cnStripGap;
        for (std::vector<ArgbPixel>& strip : m_strips)
            strip.resize(m_stripStride * cnStripLines);
    } else if (view.depth != Argb32::cnBits) {
        for (std::vector<ArgbPixel>& row : m_rows)
            row.resize(length);
    }
}

void SmoothLines::enter(int line) {
    const int at = slot(1);
    m_pixels[at] = m_vertical ? readColumn(line) : readRow(line, at);
    m_counts[at] = segment(m_pixels[at], at);
}

void SmoothLines::advance() { m_current = slot(1); }

/// 32-bit rows are read where they are: nothing changes before both passes are over.
const ArgbPixel* SmoothLines::readRow(int line, int slot) {
    const std::uint8_t* const row = m_view.row(line);
    if (m_view.depth == Argb32::cnBits)
        return reinterpret_cast<const ArgbPixel*>(row);
    readOpaque(row, m_from, m_to - m_from, m_rows[slot].data() + m_from);
    return m_rows[slot].data();
}

const ArgbPixel* SmoothLines::readColumn(int line) {
    const int strip = line / cnStripLines;
    if (strip != m_strip)
        fillStrip(strip);
    return m_strips[strip % 2].data() + static_cast<std::size_t>(line % cnStripLines) * m_stripStride;
}

/// Turns some columns of the image into lines, a band of rows at a time.
void SmoothLines::fillStrip(int strip) {
    constexpr std::ptrdiff_t cnPixelBytes = sizeof(ArgbPixel);
    m_strip = strip;
    const int left = strip * cnStripLines;
    const int count = std::min(cnStripLines, m_view.width - left);
    auto* const columns = reinterpret_cast<std::uint8_t*>(m_strips[strip % 2].data());
    std::array<ArgbPixel, cnStripLines * cnBandRows> band;
    for (int p = m_from; p < m_to; p += cnBandRows) {
        const int rows = std::min(cnBandRows, m_to - p);
        const auto rowAt = [this, p](int i) { return m_view.row(m_view.height - p - i - 1); };
        vimage::PixelGrid from{rowAt(0) + left * cnPixelBytes, -std::ptrdiff_t{m_view.rowBytes}};
        if (m_view.depth != Argb32::cnBits) {
            for (int i = 0; i < rows; ++i)
                readOpaque(rowAt(i), left, count, band.data() + std::ptrdiff_t{i} * cnStripLines);
            from = {reinterpret_cast<std::uint8_t*>(band.data()), cnStripLines * cnPixelBytes};
        }
        const vimage::PixelGrid to{columns + p * cnPixelBytes,
                                   static_cast<std::ptrdiff_t>(m_stripStride) * cnPixelBytes};
        vimage::transposePixels<vimage::Rgba32>(to, from, count, rows, false);
    }
}

/// Cuts a line into runs, whose first and last pixel give the colour; returns their number.
int SmoothLines::segment(const ArgbPixel* pixels, int slot) {
    int count = 0;
    for (int start = m_from; start < m_to; ++count) {
        int end = start + 1;
        while ((end = endOfEqual(pixels, end, m_to)) < m_to && !findBorder(pixels[end - 1], pixels[end], cnBorderLevel))
            ++end;
        m_runs[count][slot] = {start, end, average(pixels[start], pixels[end - 1])};
        // Lines of one run mostly follow each other.
        if (start > m_from || end < m_to || !m_isOneRun[slot])
            for (int p = start; p < end; ++p)
                m_index[p][slot] = count;
        start = end;
    }
    m_isOneRun[slot] = count == 1;
    return count;
}

} // namespace ovw::offscreen
