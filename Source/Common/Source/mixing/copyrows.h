#ifndef OVW_MIXING_COPYROWS_H
#define OVW_MIXING_COPYROWS_H

#include "mixing/fetchsource.h"
#include "mixing/rowbatch.h"
#include "mixing/spanpainter.h"

namespace ovw::mixing {

/// Paints the rows of one image stamp in the mixer's current block: what DoLineRowCopy does for each span. What depends
/// on settings alone is decided once, so neither the mixer nor the source may change while this lives. Rows are
/// gathered into long spans, but for 1 and 2 bits and for masks that are painted on. No pixel may be painted twice.
class CopyRows {
public:
    /// source: locked.
    CopyRows(XCFastPixelMixer& mixer, const XCSimpleImage& source);
    CopyRows(const CopyRows&) = delete;
    CopyRows& operator=(const CopyRows&) = delete;
    ~CopyRows() { m_batch.paint(); }

    /// Pixels x1 to x2 - 1 of row y, inside the block. line: where the samples of the first pixel begin, lineB those of
    /// the second row of 2 x 2 samples, with half steps then.
    void paint(int x1, int x2, int y, const SampleLine& line, const SampleLine& lineB);

private:
    SpanPainter m_painter;
    const XCSimpleImage& m_source;
    bool m_isGathered;
    RowBatch m_batch;
};

} // namespace ovw::mixing

#endif // OVW_MIXING_COPYROWS_H
