#include "mixing/copyrows.h"

namespace ovw::mixing {

CopyRows::CopyRows(XCFastPixelMixer& mixer, const XCSimpleImage& source) : m_painter(mixer), m_source(source) {
    BatchImages images;
    const KernelPlan* plan = m_painter.planOfCopy(&source);
    m_isGathered = plan && m_painter.prepareBatch(images, *plan);
    if (m_isGathered)
        m_batch.begin(m_painter, *plan, images);
}

void CopyRows::paint(int x1, int x2, int y, const SampleLine& line, const SampleLine& lineB) {
    if (!m_isGathered)
        return m_painter.paintCopy(x1, x2, y, &m_source, line, lineB);
    m_batch.reserve(x2 - x1);
    m_batch.lookAhead(x1, y, x2 - x1);
    m_painter.aim(line, lineB);
    m_batch.add(x1, y, x2 - x1, false);
}

} // namespace ovw::mixing
