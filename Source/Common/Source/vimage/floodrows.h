#ifndef OVW_VIMAGE_FLOODROWS_H
#define OVW_VIMAGE_FLOODROWS_H

/// @file
/// What a flood fill sees of its images: one row, in stretches of columns that lie in one block of each image. load(x,
/// y) goes to the stretch of a pixel of the destination, whose block it creates; right() is its end. insideEnd and
/// insideBegin give the end of a run of pixels that are of the region and not yet filled, nextMatch the next pixel of
/// the region, filled or not; all look at the stretch only. From pixel x, a call of the first two may look as far as
/// lookRight(x) and lookLeft(x) before what it found must be written.

#include "ovwcmn/xcvoffscreen.h"
#include "vimage/accessors.h"
#include "vimage/floodrule.h"
#include "vimage/heldblocks.h"
#include "vimage/pixelruns.h"

#include <algorithm>
#include <cstdint>

namespace ovw::vimage {

/// Fills that judge the region by the very image that they fill, in its own depth. IsExact: one pixel value makes the
/// region.
template <class Format, bool IsExact>
class FloodOwnRow {
public:
    using Value = typename Format::Value;

    /// filled: what a written pixel reads back.
    FloodOwnRow(XCVOffscreen& image, const FloodMatch& match, std::uint32_t written, std::uint32_t filled)
        : m_blocks(image, true), m_width(image.GetWidth()), m_rules(image.GetPixelRules()), m_match(match),
          m_filled(filled), m_region(valueOf(match.reference)),
          m_written(writtenValue<Format::cnBits, Format>(written, m_rules)), m_regionRuns(m_region) {}

    int right() const { return m_right; }
    int lookLeft(int) const { return m_left; }
    int lookRight(int) const { return m_right; }
    void load(int x, int y) {
        if (!hasColumn(x) || y >> XCVOffscreen::cnBlockShift != m_blockRow)
            loadBlock(x, y);
        m_row = rowOf<Format>(m_base, y);
    }
    bool hasColumn(int x) const { return x >= m_left && x < m_right; }

    int insideEnd(int x, int end) const {
        if constexpr (IsExact)
            return m_left + m_regionRuns.endOfRun(m_row, x - m_left, end - m_left);
        while (x < end && isInside(x))
            ++x;
        return x;
    }
    int insideBegin(int x, int begin) const {
        if constexpr (IsExact)
            return m_left + m_regionRuns.beginOfRun(m_row, x - m_left, begin - m_left);
        while (x >= begin && isInside(x))
            --x;
        return x + 1;
    }
    int nextMatch(int x, int end) const {
        if constexpr (IsExact)
            return m_left + m_regionRuns.next(m_row, x - m_left, end - m_left);
        while (x < end && !m_match(valueAt(x)))
            ++x;
        return x;
    }
    void write(int begin, int end) {
        constexpr int cnFew = 8;
        if (end - begin > cnFew)
            return Format::fillRow(m_row, begin - m_left, end - begin, m_written);
        for (int x = begin; x < end; ++x)
            Format::setPixel(m_row, x - m_left, m_written);
    }

private:
    [[gnu::noinline]] void loadBlock(int x, int y) { // rare
        m_base = m_blocks.at(x, y);
        m_blockRow = y >> XCVOffscreen::cnBlockShift;
        m_left = x & ~cnBlockMask;
        m_right = std::min(m_left + cnBlockSize, m_width);
    }
    Value valueOf(std::uint32_t value) const { return writeAs<Format::cnBits, Format>(value, m_rules); }
    std::uint32_t valueAt(int x) const {
        return readAs<Format::cnBits, Format>(Format::pixelAt(m_row, x - m_left), m_rules);
    }
    bool isInside(int x) const {
        const std::uint32_t value = valueAt(x);
        return m_match.seen(value) != m_filled && m_match(value);
    }

    HeldBlocks m_blocks;
    const int m_width;
    const PixelRules& m_rules;
    const FloodMatch m_match;
    const std::uint32_t m_filled;
    const Value m_region;
    const Value m_written;
    const RunFinder<Format> m_regionRuns;
    std::uint8_t* m_base = nullptr;
    std::uint8_t* m_row = nullptr;
    int m_blockRow = -1;
    int m_left = 0;
    int m_right = 0;
};

} // namespace ovw::vimage

#endif // OVW_VIMAGE_FLOODROWS_H
