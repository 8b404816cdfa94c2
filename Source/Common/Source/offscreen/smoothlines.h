#ifndef OVW_OFFSCREEN_SMOOTHLINES_H
#define OVW_OFFSCREEN_SMOOTHLINES_H

#include "offscreen/pixelview.h"

#include <vector>

namespace ovw::offscreen {

/// Colours further apart than this are a border between runs.
inline constexpr int cnBorderLevel = 42;
/// Colours closer than this are the same on two lines.
inline constexpr int cnSimilarLevel = 64;

/// Whether two colours, seen over white, differ by more than level, or their alphas by more than 200.
bool findBorder(const ArgbPixel& a, const ArgbPixel& b, int level);

/// The pixels and the runs of three lines of an image, the one looked at and its neighbours. Lines are rows, or columns
/// from the bottom up, so that position p of a column is row height - p - 1. The tables are the caller's.
class SmoothLines {
public:
    static constexpr int cnSlots = 3;
    using Runs = _LData[cnSlots];
    using RunIndex = int[cnSlots];

    /// Positions run from `from` to before `to`.
    SmoothLines(const PixelView& view, Runs* runs, RunIndex* index, bool vertical, int from, int to);

    /// Brings a line into the slot of the next line; lines come in their order, each once.
    void enter(int line);
    /// The next line becomes the current one, the current one the previous.
    void advance();
    void forgetNext() { m_counts[slot(1)] = 0; }

    /// By position, of a neighbour (-1, 1) or the current line (0).
    const ArgbPixel* pixels(int line) const { return m_pixels[slot(line)]; }
    int runCount(int line) const { return m_counts[slot(line)]; } ///< 0 where there is no such line
    const _LData& run(int line, int number) const { return m_runs[number][slot(line)]; }
    int runAt(int line, int position) const { return m_index[position][slot(line)]; }
    int from() const { return m_from; }
    int to() const { return m_to; }
    bool isVertical() const { return m_vertical; }

private:
    static constexpr int cnStripLines = 16; // columns that are read together: a cache line of a row
    static constexpr int cnBandRows = 64;   // rows of them that are turned together

    int slot(int line) const { return (m_current + line + cnSlots) % cnSlots; }
    const ArgbPixel* readRow(int line, int slot);
    const ArgbPixel* readColumn(int line);
    void fillStrip(int strip);
    int segment(const ArgbPixel* pixels, int slot);

    const PixelView& m_view;
    Runs* m_runs;
    RunIndex* m_index;
    bool m_vertical;
    int m_from;
    int m_to;
    int m_current = 0;
    int m_counts[cnSlots] = {};
    bool m_isOneRun[cnSlots] = {}; // all positions of the index name run 0
    const ArgbPixel* m_pixels[cnSlots] = {};
    std::vector<ArgbPixel> m_rows[cnSlots]; // converted rows
    std::vector<ArgbPixel> m_strips[2];     // columns of the current strip and the one before
    std::size_t m_stripStride = 0;
    int m_strip = -1;
};

} // namespace ovw::offscreen

#endif // OVW_OFFSCREEN_SMOOTHLINES_H
