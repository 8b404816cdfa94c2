#ifndef OVW_MIXING_ROWBATCH_H
#define OVW_MIXING_ROWBATCH_H

#include "mixing/blockpixels.h"
#include "mixing/coveragerow.h"
#include "mixing/kerneltable.h"

#include <cstdint>

class XCPlotGauss;

namespace ovw::mixing {

/// What the rows of a stamp have in common whose pixels depend on coverage, falloff and stroke cache alone.
struct BatchRules {
    float baseAlpha;     ///< What coverages scale.
    std::int32_t factor; ///< What the alpha is multiplied with; also the most that the cache may hold.
    XCPlotGauss* gauss;  ///< Null without a falloff.
    Accumulation accumulation;
    std::int32_t opacity; ///< Of the stroke, with a cache.
    const CompositorTable KernelTable::*compositors;
    int composition;
    DepthColumn column;
    CompositeSpan span; ///< The members that are not each row's.
    BlockPixels dst;
    BlockPixels cache;         ///< No bits: no cache.
    BlockPixels ref;           ///< No bits and a cache: blank is below.
    const std::uint8_t* blank; ///< A row of pixels.
    int left;                  ///< Of the block in the image.
    int top;

    bool hasCache() const { return cache.bits != nullptr; }
};

/// Gathers rows of a block's pixels into long ones, so that the stages and compositors run over full vectors. No pixel
/// may come twice, and nobody else may touch them before paint().
class RowBatch {
public:
    static constexpr int cnPadding = 16; ///< lanes of the widest vectors

    RowBatch() = default;
    RowBatch(const RowBatch&) = delete;
    RowBatch& operator=(const RowBatch&) = delete;

    /// Where the coverages of the next n pixels go, at most cnRowPixels; paints first when they do not fit.
    float* coverageOf(const BatchRules& rules, int n) {
        if (m_count + n > cnRowPixels || m_rows == cnMaxRows)
            paint(rules);
        return m_coverage + m_count;
    }
    /// n or somewhat more: the room behind those coverages that may be written too, so that vectors stay whole.
    static constexpr int padded(int n) { return (n + cnPadding - 1) & -cnPadding; }
    /// Takes those n pixels in, from (x, y) of the image on.
    void add(const BatchRules& rules, int x, int y, int n);
    /// Paints what was gathered.
    void paint(const BatchRules& rules);

private:
    static constexpr int cnMaxRows = 64;
    static constexpr int cnBytes = 4; ///< of a pixel, at most

    struct Row {
        std::uint8_t* dst;
        std::uint8_t* cache;
        int first;
        int n;
    };

    void padTo(const BatchRules& rules, int n);
    void scaleCoverages(const BatchRules& rules, const KernelTable& kernel);
    void passCache(const BatchRules& rules, const KernelTable& kernel);

    int m_count = 0;
    int m_rows = 0;
    Row m_rowsOf[cnMaxRows];
    CoverageRow m_row;
    alignas(64) float m_coverage[cnRowPixels + cnPadding];
    alignas(64) std::int32_t m_weights[cnRowPixels + cnPadding];
    alignas(64) std::uint16_t m_cache[cnRowPixels];
    alignas(64) std::uint8_t m_dst[cnRowPixels * cnBytes];
    alignas(64) std::uint8_t m_ref[cnRowPixels * cnBytes];
};

} // namespace ovw::mixing

#endif // OVW_MIXING_ROWBATCH_H
