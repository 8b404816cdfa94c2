#ifndef OVW_MIXING_STAMPROWS_H
#define OVW_MIXING_STAMPROWS_H

#include "mixing/coveragerow.h"
#include "mixing/pixel32.h"
#include "mixing/plainbatch.h"
#include "mixing/rowbatch.h"
#include "mixing/rowsahead.h"
#include "mixing/spanpainter.h"

#include <algorithm>
#include <cstdint>
#include <span>

namespace ovw::mixing {

/// Pixels start <= x < end of a row: a rim on both sides, and full coverage from innerStart to innerEnd.
struct RimmedSpan {
    int start;
    int innerStart;
    int innerEnd;
    int end;
};

/// Paints the rows of one stamp in the mixer's current block: what ScaleAntiAlpha and DoLineRow for each pixel of a rim
/// and then for its interior do, and leave behind. What depends on settings alone is decided once, so the mixer must
/// not change while this lives. Rows are short: they are gathered into long spans, of plain paint their rims alone. No
/// pixel may be painted twice.
class StampRows {
public:
    /// reach: what the stamp may touch, in ascending rows inside the block.
    StampRows(XCFastPixelMixer& mixer, const XCRect& reach);
    StampRows(const StampRows&) = delete;
    StampRows& operator=(const StampRows&) = delete;
    ~StampRows();

    /// A span inside the block. coverageAt(x) is the coverage of a pixel of the rim, at most 1; the others are skipped
    /// when it is not above 0.
    template <class CoverageAt>
    void paint(int y, const RimmedSpan& span, CoverageAt coverageAt) {
        m_ahead.advanceTo(y);
        if (m_road == Road::Plain) {
            for (int x = span.start; x < span.innerStart; x++)
                addPixel(x, y, coverageAt(x));
            for (int x = span.innerEnd; x < span.end; x++)
                addPixel(x, y, coverageAt(x));
            return paintInterior(y, span);
        }
        float* coverage = coverageOf(span.end - span.start);
        for (int x = span.start; x < span.innerStart; x++)
            coverage[x - span.start] = coverageAt(x);
        for (int x = span.innerEnd; x < span.end; x++)
            coverage[x - span.start] = coverageAt(x);
        if (span.innerStart < span.innerEnd)
            std::fill(coverage + (span.innerStart - span.start), coverage + (span.innerEnd - span.start), 1.0f);
        paintRow(y, span, coverage);
    }

    /// Pixels x + i of row y inside the block, each with its coverage in 255ths. Those of 0 are skipped.
    void paintCoverages(int x, int y, std::span<const std::uint8_t> coverages);
    /// Pixels from <= x < to of row y inside the block, covered in full.
    void paintFull(int from, int to, int y);

    /// Whether paintCircle is faster than paint.
    bool prefersCircles() const { return m_road == Road::Batched; }
    /// A row through a circle, whose first pixel is that of the span.
    void paintCircle(int y, const RimmedSpan& span, const CircleRow& circle);

private:
    enum class Road {
        Plain,   ///< One colour and opacity.
        Batched, ///< Every row is gathered.
        RowByRow,
        Nowhere
    };

    void addPixel(int x, int y, float coverage) {
        if (!(coverage > 0.0f))
            return;
        m_pixels[m_count] = m_plain.pixelAt(x, y);
        m_coverage[m_count] = coverage;
        m_last = coverage;
        if (++m_count == cnRowPixels)
            paintPixels();
    }
    float* coverageOf(int n) {
        m_batch.reserve(n);
        return m_batch.coverage();
    }
    Road chooseRoad();
    void lookAhead(const XCRect& reach);
    void paintPixels();
    void paintInterior(int y, const RimmedSpan& span);
    void paintRow(int y, const RimmedSpan& span, const float* coverage);

    XCFastPixelMixer& m_mixer;
    SpanPainter m_painter;
    const KernelPlan* m_plan; ///< of rows that are not plain; null paints nothing
    PlainRows m_plain;
    BatchImages m_images;
    Road m_road;
    RowsAhead m_ahead;
    float m_last = 0.0f; ///< the coverage that the mixer is left with, 0 for none
    int m_count = 0;
    Pixel32* m_pixels[cnRowPixels];
    float m_coverage[cnRowPixels];
    RowBatch m_batch;
    PlainBatch m_plainBatch;
};

} // namespace ovw::mixing

#endif // OVW_MIXING_STAMPROWS_H
