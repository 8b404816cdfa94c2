#ifndef OVW_MIXING_COVERAGEROW_H
#define OVW_MIXING_COVERAGEROW_H

#include <cstdint>

namespace ovw::mixing {

/// A span lies in one block, so this many pixels are the most.
constexpr int cnRowPixels = 256;

/// What the stages of a kernel know about the pixels of a span. The arrays are left uninitialised: a stage reads only
/// what an earlier one has filled, up to n.
struct CoverageRow {
    int n;
    /// Coverage, then opacity. A pixel of 0 is neither cached nor painted.
    alignas(64) std::int32_t a[cnRowPixels];
    /// The most that a may become in the cache.
    alignas(64) std::int32_t cap[cnRowPixels];
    /// -1 for a pixel that the span visits, 0 for one that a mask or source skips. Only kernels that sample the colours
    /// below keep it: a visited pixel of coverage 0 is sampled, a skipped one is not.
    alignas(64) std::int32_t live[cnRowPixels];
};

} // namespace ovw::mixing

#endif // OVW_MIXING_COVERAGEROW_H
