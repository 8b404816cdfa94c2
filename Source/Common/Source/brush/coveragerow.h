#ifndef OVW_BRUSH_COVERAGEROW_H
#define OVW_BRUSH_COVERAGEROW_H

#include "ovwcmn/xcvoffscreengrid.h"

#include <array>
#include <cstdint>

class XCFastPixelMixer;

namespace ovw::brush {

/// One row of an anti-aliased polygon inside one block: the sub-lines' spans are added up and painted as one row.
/// Only the changes of coverage along the row are kept, so that a span costs its two ends, however long it is.
class CoverageRow {
public:
    /// Sub-lines of a row.
    static constexpr int cnSubLines = 4;

    /// Begins a row of pixels left <= x < right, at most a block wide.
    CoverageRow(int left, int right) : m_left(left), m_right(right) {}

    /// Adds what a sub-line covers from x = low to x = high.
    void addSpan(double low, double high);
    /// Paints what was added since the last time and begins the next row.
    void paint(XCFastPixelMixer& mixer, int y);
    /// Stores it, 0 to 255 for each pixel of the row, and begins the next row.
    /// @return false, with nothing stored, when nothing was added
    bool take(std::uint8_t* coverage);

private:
    static constexpr int cnUnit = static_cast<int>(255.0 / cnSubLines + 0.5); ///< coverage of a sub-line, of 255
    static constexpr int cnWordBits = 64;
    /// A pixel beyond the last is where its coverage ends, and one more where that one's does.
    static constexpr int cnCells = XCVOffscreenGrid::cnBlockSize + 2;

    template <class Run>
    void takeRuns(Run run);
    void addStep(int cell, int change);
    void addPixel(int cell, int coverage);

    int m_left;
    int m_right;
    std::array<std::int32_t, cnCells> m_steps{}; ///< change of coverage from the pixel before
    std::array<std::uint64_t, (cnCells + cnWordBits - 1) / cnWordBits> m_touched{}; ///< steps that may not be 0
};

} // namespace ovw::brush

#endif // OVW_BRUSH_COVERAGEROW_H
