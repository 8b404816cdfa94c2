#ifndef OVW_MIXING_ROWBATCH_H
#define OVW_MIXING_ROWBATCH_H

#include "mixing/blockpixels.h"
#include "mixing/coveragerow.h"
#include "mixing/rowinputs.h"

#include <cstdint>

namespace ovw::mixing {

class SpanPainter;
struct KernelPlan;

/// The pixels of a block's images that a kernel works on; those without a say have no bits.
struct BatchImages {
    BlockPixels dst;
    BlockPixels ref; ///< No bits and a cache: nothing is below.
    BlockPixels cache;
    BlockPixels cacheColor;
    int left; ///< Of the block in the image.
    int top;
};

/// Gathers spans of a block's pixels into long ones, so that the stages and compositors run over full vectors. No pixel
/// may come twice, and nobody else may touch them before paint().
class RowBatch {
public:
    static constexpr int cnPadding = RowInputs::cnRoom;

    RowBatch() = default;
    RowBatch(const RowBatch&) = delete;
    RowBatch& operator=(const RowBatch&) = delete;

    /// Before anything else. The painter and the plan outlive the batch.
    void begin(SpanPainter& painter, const KernelPlan& plan, const BatchImages& images);
    /// Makes room for the next n pixels, at most cnRowPixels: paints first when they do not fit.
    void reserve(int n) {
        if (m_count + n > cnRowPixels || m_rows == cnMaxRows)
            paint();
    }
    /// Where the coverages of the next n pixels go, for which there is room. Only when they come with all spans.
    float* coverage() { return m_coverage + m_count; }
    /// n or somewhat more: the room behind those coverages that may be written too, so that vectors stay whole.
    static constexpr int padded(int n) { return (n + cnPadding - 1) & -cnPadding; }
    /// Has n pixels from (x, y) of the image on fetched, for add() to find them.
    void lookAhead(int x, int y, int n) const;
    /// Takes those n pixels in, which lie inside the block.
    void add(int x, int y, int n, bool hasCoverage);
    /// Paints what was gathered.
    void paint();

private:
    static constexpr int cnMaxRows = 64;
    static constexpr int cnBytes = 4; ///< of a pixel, at most

    static constexpr int cnMostParts = 4;

    struct Row {
        std::uint8_t* places[cnMostParts]; ///< in the parts' blocks
        int first;                         ///< of the gathered pixels
        int n;
    };
    /// An image of the batch and its gathered pixels.
    struct Part {
        BlockPixels image;
        std::uint8_t* pixels;
    };

    void addImage(const BlockPixels& image, std::uint8_t* pixels, bool isPainted);
    void pad();

    SpanPainter* m_painter = nullptr;
    const KernelPlan* m_plan = nullptr;
    RowPixels m_pixels{};
    bool m_readsInputs = false;
    bool m_hasCoverage = false;
    int m_left = 0;
    int m_top = 0;
    int m_count = 0;
    int m_rows = 0;
    int m_parts = 0;
    int m_paintedParts = 0; ///< the first ones, which go back to the block
    Part m_part[cnMostParts];
    Row m_rowsOf[cnMaxRows];
    RowInputs m_inputs;
    alignas(64) float m_coverage[cnRowPixels + cnPadding];
    alignas(64) std::uint16_t m_cache[cnRowPixels + 2 * cnPadding];
    alignas(64) std::uint8_t m_dst[(cnRowPixels + cnPadding) * cnBytes];
    alignas(64) std::uint8_t m_ref[(cnRowPixels + cnPadding) * cnBytes];
    alignas(64) std::uint8_t m_cacheColor[(cnRowPixels + cnPadding) * cnBytes];
};

} // namespace ovw::mixing

#endif // OVW_MIXING_ROWBATCH_H
