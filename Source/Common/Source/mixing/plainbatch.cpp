#include "mixing/plainbatch.h"

#include "mixing/kerneltable.h"
#include "mixing/spanpainter.h"

#include <algorithm>

namespace ovw::mixing {

void PlainBatch::findOpacities(const PlainRows& plain) {
    const int n = static_cast<int>(cnCoverageOfBytes.size());
    m_opacities.n = n;
    kernels(n).startCoverage(m_opacities, cnCoverageOfBytes.data(), plain.baseAlpha);
    kernels(n).scaleStart(m_opacities, plain.paintAlpha, plain.paintAlpha);
    m_hasOpacities = true;
}

void PlainBatch::add(const PlainRows& plain, Pixel32* pixels, const std::uint8_t* coverages, int n) {
    if (!m_hasOpacities)
        findOpacities(plain);
    if (m_count + n > cnRowPixels || m_rowCount == cnMaxRows)
        paint(plain);
    Pixel32* const copies = m_pixels + m_count;
    std::int32_t* const opacities = m_opacity + m_count;
    for (int i = 0; i < n; ++i) {
        copies[i] = pixels[i];
        opacities[i] = m_opacities.a[coverages[i]];
    }
    m_rows[m_rowCount++] = {pixels, n};
    m_count += n;
}

void PlainBatch::paint(const PlainRows& plain) {
    if (m_count == 0)
        return;
    const int n = (m_count + cnLanes - 1) & -cnLanes; // whole vectors
    std::fill(m_pixels + m_count, m_pixels + n, 0);
    std::fill(m_opacity + m_count, m_opacity + n, 0);
    CompositeSpan span = plain.span;
    span.dst = reinterpret_cast<std::uint8_t*>(m_pixels);
    span.a = m_opacity;
    span.n = n;
    kernels(n).fastestRow[plain.composition][Depth32](span);
    const Pixel32* painted = m_pixels;
    for (const Row* row = m_rows; row != m_rows + m_rowCount; ++row) {
        for (int i = 0; i < row->n; ++i)
            row->pixels[i] = painted[i];
        painted += row->n;
    }
    m_count = 0;
    m_rowCount = 0;
}

} // namespace ovw::mixing
