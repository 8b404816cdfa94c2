#ifndef OVW_VIMAGE_SQUAREWALK_H
#define OVW_VIMAGE_SQUAREWALK_H

/// @file
/// The walk of the reducers: squares of source pixels, in runs that one block of the source and one of the destination
/// hold, and single ones that lie over the border of a source block or of the source.

#include "ovwcmn/xcvoffscreen.h"

#include <algorithm>
#include <cstdint>

namespace ovw::vimage {

/// On one axis: count destination pixels from `to`, made of count x factor source pixels from `from`.
struct SquareRun {
    int to;
    int count;
    int from;
    bool isWhole; ///< inside the source, in one block
};

/// The squares of one axis. Destination pixel i is made of the source pixels from origin + factor x i.
struct SquareAxis {
    int begin; ///< of the destination pixels, clipped to the image
    int end;
    std::int64_t origin;
    int factor;
    int size; ///< of the source

    static SquareAxis of(int to, int count, int toSize, int from, int factor, int fromSize) {
        const auto clip = [&](std::int64_t v) { return static_cast<int>(std::clamp<std::int64_t>(v, 0, toSize)); };
        const std::int64_t origin = from - std::int64_t{to} * factor;
        // Squares that meet the source.
        const std::int64_t first = floorDiv(-origin, factor);
        const std::int64_t last = floorDiv(fromSize - 1 - origin, factor);
        return {clip(std::max<std::int64_t>(to, first)), clip(std::min(std::int64_t{to} + count, last + 1)), origin,
                factor, fromSize};
    }

    template <class Action>
    void forEachRun(Action action) const {
        for (int i = begin; i < end;) {
            const SquareRun run = runAt(i);
            action(run);
            i += run.count;
        }
    }

private:
    static std::int64_t floorDiv(std::int64_t a, int b) { return a >= 0 ? a / b : -((-a + b - 1) / b); }

    SquareRun runAt(int i) const {
        constexpr std::int64_t cnSize = XCVOffscreen::cnBlockSize;
        const std::int64_t from = origin + std::int64_t{i} * factor;
        const std::int64_t blockEnd =
            std::min<std::int64_t>((from >> XCVOffscreen::cnBlockShift) * cnSize + cnSize, size);
        const int squares = from < 0 ? 0 : static_cast<int>((blockEnd - from) / factor);
        const int inBlock = XCVOffscreen::cnBlockSize - (i & XCVOffscreen::cnBlockMask);
        const int count = std::max(1, std::min({squares, inBlock, end - i}));
        return {i, count, static_cast<int>(from), squares > 0};
    }
};

} // namespace ovw::vimage

#endif // OVW_VIMAGE_SQUAREWALK_H
