#include "offscreen/smoothlines.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace ovw::offscreen {

namespace {

constexpr int cnAlphaBorder = 200;
constexpr std::size_t cnStripGap = 20; // pixels between columns in a strip, so that they do not share cache sets

constexpr int overWhite(int channel, int alpha) {
    return (channel * alpha + cnByteMax * (cnByteMax - alpha)) / cnByteMax;
}

ArgbPixel toArgb(ArgbPixel v) { return v; }
ArgbPixel toArgb(RgbPixel v) { return {cnByteMax, v.red, v.green, v.blue}; }

/// The first position from p on, before `to`, whose pixel differs from the one before.
int endOfEqual(const ArgbPixel* pixels, int p, int to) {
    // Two pairs of neighbours at a time.
    for (; p + 1 < to; p += 2) {
        std::uint64_t before, at;
        std::memcpy(&before, pixels + p - 1, sizeof before);
        std::memcpy(&at, pixels + p, sizeof at);
        if (before != at)
            break;
    }
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
    for (int p = m_from; p < m_to; ++p)
        m_rows[slot][static_cast<std::size_t>(p)] = toArgb(loadPixel<Rgb24>(row, p));
    return m_rows[slot].data();
}

const ArgbPixel* SmoothLines::readColumn(int line) {
    const int strip = line / cnStripLines;
    if (strip != m_strip)
        fillStrip(strip);
    return m_strips[strip % 2].data() + static_cast<std::size_t>(line % cnStripLines) * m_stripStride;
}

/// Turns some columns of the image into lines.
void SmoothLines::fillStrip(int strip) {
    m_strip = strip;
    const int left = strip * cnStripLines;
    const int count = std::min(cnStripLines, m_view.width - left);
    ArgbPixel* const columns = m_strips[strip % 2].data();
    const auto turn = [&]<class Format>() {
        for (int p = m_from; p < m_to; ++p) {
            const std::uint8_t* const row = m_view.row(m_view.height - p - 1);
            ArgbPixel* to = columns + p;
            for (int x = left; x < left + count; ++x, to += m_stripStride)
                *to = toArgb(loadPixel<Format>(row, x));
        }
    };
    if (m_view.depth == Argb32::cnBits)
        turn.template operator()<Argb32>();
    else
        turn.template operator()<Rgb24>();
}

/// Cuts a line into runs, whose first and last pixel give the colour; returns their number.
int SmoothLines::segment(const ArgbPixel* pixels, int slot) {
    int count = 0;
    for (int start = m_from; start < m_to; ++count) {
        int end = start + 1;
        while ((end = endOfEqual(pixels, end, m_to)) < m_to && !findBorder(pixels[end - 1], pixels[end], cnBorderLevel))
            ++end;
        m_runs[count][slot] = {start, end, average(pixels[start], pixels[end - 1])};
        for (int p = start; p < end; ++p)
            m_index[p][slot] = count;
        start = end;
    }
    return count;
}

} // namespace ovw::offscreen
