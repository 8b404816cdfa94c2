#ifndef OVW_VIMAGE_RUNBAND_H
#define OVW_VIMAGE_RUNBAND_H

#include "ovwcmn/xcgeometry.h"
#include "ovwcmn/xcvoffscreengrid.h"
#include "vimage/stackarray.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace ovw::vimage {

/// What a polygon covers of a row of blocks: the runs of each pixel row, from left to right. A polygon's rows are
/// worked out once, and painted block by block.
class RunBand {
public:
    static constexpr int cnFullCoverage = 255;
    /// The widest band, in pixels.
    static constexpr int cnMaxWidth = 16 * XCVOffscreenGrid::cnBlockSize;

    /// Begins anew, above the first row.
    void begin(const XCRect& area) {
        m_left = area.left;
        m_top = area.top;
        m_rowCount = 0;
        m_runs.clear();
        m_coverages.clear();
    }
    void beginRow() {
        m_nextOf[m_rowCount] = m_endOf[m_rowCount] = m_runs.size();
        ++m_rowCount;
    }
    /// Pixels from <= x < to of that row, covered in full. Both ends ascend from run to run; a run may overlap the one
    /// before by a pixel.
    void addFull(int from, int to) { addRun({narrow(from), narrow(to), cnNoCoverages}); }
    /// Where the coverages of the next run go, 0 to 255 for each pixel, with room for n.
    std::uint8_t* roomFor(int n) { return m_coverages.reserve(n); }
    /// Pixels from <= x < to of that row, whose coverages were written there.
    void addWritten(int from, int to) {
        addRun({narrow(from), narrow(to), m_coverages.size()});
        m_coverages.extend(to - from);
    }
    /// Calls visit(from, to, coverages) for what a row's runs have in left <= x < right; coverages are those of each
    /// pixel (0 to 255), null for full ones. Later calls for a row go on to the right.
    template <class Visit>
    void visitRow(int y, int left, int right, Visit visit) {
        const int row = y - m_top;
        if (row >= m_rowCount)
            return;
        int& next = m_nextOf[row];
        const int end = m_endOf[row];
        while (next < end && m_runs[next].to <= left - m_left)
            ++next;
        for (int i = next; i < end && m_runs[i].from < right - m_left; ++i) {
            const Run& run = m_runs[i];
            const int from = std::max(run.from + m_left, left);
            const int skipped = from - (run.from + m_left);
            visit(from, std::min(run.to + m_left, right),
                  run.coverages >= 0 ? &m_coverages[run.coverages + skipped] : nullptr);
            next = i; // it may reach into the next block
        }
    }

private:
    static constexpr int cnNoCoverages = -1;

    struct Run {
        std::uint16_t from; ///< from the band's left
        std::uint16_t to;
        std::int32_t coverages; ///< the first pixel's in m_coverages
    };

    void addRun(const Run& run) {
        *m_runs.extend(1) = run;
        m_endOf[m_rowCount - 1] = m_runs.size();
    }
    std::uint16_t narrow(int x) const { return static_cast<std::uint16_t>(x - m_left); }

    StackArray<Run, 1024> m_runs; // the stamps of usual tips need no heap
    StackArray<std::uint8_t, 8192> m_coverages;
    int m_rowCount = 0;
    int m_left = 0;
    int m_top = 0;
    std::array<std::int32_t, XCVOffscreenGrid::cnBlockSize> m_nextOf; ///< run of each row to be visited
    std::array<std::int32_t, XCVOffscreenGrid::cnBlockSize> m_endOf;
};

} // namespace ovw::vimage

#endif // OVW_VIMAGE_RUNBAND_H
