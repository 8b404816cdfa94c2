#include "mixing/copyrows.h"

namespace ovw::mixing {

CopyRows::CopyRows(XCFastPixelMixer& mixer, const XCSimpleImage& source, const XCRect& reach)
    : m_painter(mixer), m_source(source) {
    BatchImages images;
    const KernelPlan* plan = m_painter.planOfCopy(&source);
    m_isGathered = plan && m_painter.prepareBatch(images, *plan);
    if (!m_isGathered)
        return;
    m_batch.begin(m_painter, *plan, images);
    m_ahead.addImages(images, reach);
    m_ahead.begin(reach.top, reach.bottom);
}

void CopyRows::paint(int x1, int x2, int y, const SampleLine& line, const SampleLine& lineB) {
    if (!m_isGathered)
        return m_painter.paintCopy(x1, x2, y, &m_source, line, lineB);
    m_ahead.advanceTo(y);
    if (!m_painter.place(x1, x2 - 1, y))
        return;
    m_painter.aim(line, lineB);
    m_batch.reserve(m_painter.count());
    m_batch.add(false);
}

} // namespace ovw::mixing
