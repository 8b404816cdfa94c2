#ifndef OVW_VIMAGE_ROWSELECTION_H
#define OVW_VIMAGE_ROWSELECTION_H

#include <array>
#include <cstdint>

class XCRect;
class XCVOffscreen;

namespace ovw::vimage {

/// Which pixels of a row part, at most a block wide, are to be painted.
struct RowSelection {
    bool isAll = true;
    bool isNone = false;
    std::array<std::uint8_t, 256> is; // by pixel of the part, when neither all nor none
};

/// What selects pixels of a row: a row of 16 thresholds against a level, and the ink of a mask image; null for either
/// lets everything through. The mask is locked and its cursor stands on the row to read.
struct RowSource {
    XCVOffscreen* mask;
    int maskOffsetX;
    const std::uint8_t* pattern;
    int patternLevel;

    /// Selects pixels of part, a piece of one row of image. asksMask: let the mask say at once that it is full or empty
    /// there.
    void select(const XCVOffscreen& image, const XCRect& part, bool asksMask, RowSelection& selection) const;

private:
    int maskState(const XCVOffscreen& image, const XCRect& part) const;
};

} // namespace ovw::vimage

#endif // OVW_VIMAGE_ROWSELECTION_H
