#ifndef OVW_VIMAGE_COVERAGEROW_H
#define OVW_VIMAGE_COVERAGEROW_H

#include "vimage/edgelist.h"
#include "vimage/runband.h"

#include <array>
#include <cstdint>
#include <span>

namespace ovw::vimage {

class RunWriter;

/// One row of an anti-aliased polygon: adds up what its sub-lines cover, even-odd, as runs. Its ends are kept, and only
/// pixels with an end in them are worked out, so that a span costs no more however long it is.
class CoverageRow {
public:
    /// For rows of pixels left <= x < right, no more than a band of runs has.
    CoverageRow(int left, int right) : m_left(left), m_width(right - left) {}

    /// What all sub-lines cover; nothing else may be added to the row.
    void addLines(const RowCrossings& crossings);
    /// What one sub-line covers from x = low to x = high. A line's spans come from left to right.
    void addSpan(int line, double low, double high);
    /// Adds the runs to the last row of a band, and begins the next row.
    void take(RunBand& runs);

private:
    static constexpr unsigned cnUnit = static_cast<unsigned>(255.0 / cnSubLines + 0.5); ///< of a sub-line, of 255
    static constexpr int cnPixelsAtOnce = 8;

    /// The ends that the sub-lines' spans of one rank have on one side. The row is covered behind those with an even
    /// index, up to those with an odd one.
    struct Ends {
        std::int32_t first; ///< pixel with an end
        std::int32_t last;
        std::int32_t coverage; ///< of a pixel by the lines that have the span
    };
    /// Of one end a line, from the row's left. A pixel has as many units as a sub-line covers of it; lines without the
    /// span have theirs beyond every pixel.
    using Units = std::uint32_t[cnSubLines];

    void shortenInsidePixel(int rank, int line, double low, double high);
    void beginRank();
    static void addEnd(Ends& ends, std::uint32_t units);
    void writeGroup(RunWriter& writer, int from, int to, int end) const;
    static void writePixels(std::uint8_t* written, int pixel, std::span<const Units> ends, bool begins, int covered);

    int m_left;
    int m_width;
    int m_count = 0;
    std::array<Ends, cnMaxCrossings + 1> m_ends;
    alignas(16) Units m_units[cnMaxCrossings + 1];
    std::array<int, cnSubLines> m_spansOf{}; ///< each line
};

} // namespace ovw::vimage

#endif // OVW_VIMAGE_COVERAGEROW_H
