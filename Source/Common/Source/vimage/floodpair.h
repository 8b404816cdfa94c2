#ifndef OVW_VIMAGE_FLOODPAIR_H
#define OVW_VIMAGE_FLOODPAIR_H

#include "ovwcmn/xcvoffscreen.h"
#include "vimage/floodrule.h"
#include "vimage/heldblocks.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

namespace ovw::vimage {

/// How rows of one depth are read and written as values of another.
struct ValueAccess {
    void (*read)(const std::uint8_t* row, int x, int count, const PixelRules& rules, std::uint32_t* values);
    void (*fill)(std::uint8_t* row, int x, int count, const PixelRules& rules, std::uint32_t value);
    std::uint32_t missing; ///< What is read where no block is.
};
/// bits: of the values; depth: of the image.
const ValueAccess& valueAccess(int bits, int depth);

/// An image that only says which pixels belong to the region, in the destination's columns.
class FloodJudge {
public:
    FloodJudge(XCVOffscreen& image, int bits, const XCPoint& offset, const FloodMatch& match)
        : m_image(image), m_access(valueAccess(bits, image.GetDepth())), m_offset(offset), m_match(match),
          m_blocks(image, false) {}

    std::int64_t left() const { return m_left; }
    std::int64_t right() const { return m_right; }
    /// The stretch of columns of row y around x that lie in one block, or all beside the image.
    void load(int x, int y);
    /// Takes isMatch[i] back where pixel x + i does not match. The pixels lie in the stretch.
    void judge(int x, int count, bool* isMatch) const;

private:
    XCVOffscreen& m_image;
    const ValueAccess& m_access;
    const XCPoint m_offset;
    const FloodMatch m_match;
    HeldBlocks m_blocks;
    const std::uint8_t* m_row = nullptr; // null: no block
    std::int64_t m_left = 0;
    std::int64_t m_right = 0;
};

/// The row of a fill that is judged by other images than the destination, or in another depth.
class FloodPairRow {
public:
    FloodPairRow(XCVOffscreen& destination, int bits, std::uint32_t written, std::uint32_t filled, bool zeroIsWhite);

    /// Two at most.
    void addJudge(XCVOffscreen& image, int bits, const XCPoint& offset, const FloodMatch& match);

    int right() const { return m_right; }
    bool hasColumn(int x) const { return x >= m_left && x < m_right; }
    int lookLeft(int x) const { return std::max(m_left, x + 1 - m_longest); }
    int lookRight(int x) const { return std::min(m_right, x + m_longest); }
    void load(int x, int y);
    int insideEnd(int x, int end);
    int insideBegin(int x, int begin);
    int nextMatch(int x, int end);
    void write(int begin, int end);

private:
    static constexpr int cnFirstLook = 4; // pixels; most runs are short

    void judge(int x, int count);
    void judgeInside(int x, int count);

    XCVOffscreen& m_image;
    const ValueAccess& m_access;
    const std::uint32_t m_written;
    const std::uint32_t m_filled;
    const bool m_zeroIsWhite;
    int m_longest = XCVOffscreen::cnBlockSize;
    HeldBlocks m_blocks;
    std::optional<FloodJudge> m_judges[2];
    std::uint8_t* m_row = nullptr;
    int m_left = 0;
    int m_right = 0;
    std::array<std::uint32_t, XCVOffscreen::cnBlockSize> m_values;
    std::array<bool, XCVOffscreen::cnBlockSize> m_is;
};

} // namespace ovw::vimage

#endif // OVW_VIMAGE_FLOODPAIR_H
