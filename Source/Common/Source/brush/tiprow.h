#ifndef OVW_BRUSH_TIPROW_H
#define OVW_BRUSH_TIPROW_H

namespace ovw::brush {

/// Pixels of the longest span: the width of a block.
inline constexpr int cnLongestSpan = 256;

/// Truncates toward zero within low <= result <= high.
inline int truncateWithin(double value, int low, int high) {
    if (!(value > low))
        return low;
    return value >= high ? high : static_cast<int>(value);
}

} // namespace ovw::brush

#endif // OVW_BRUSH_TIPROW_H
