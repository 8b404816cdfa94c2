#include "mixing/plainbatch.h"

#include "mixing/kerneltable.h"
#include "mixing/shortcopy.h"
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
    if (m_count + n > cnRowPixels || m_rowCount == cnMaxRows)
        paint(plain);
    const auto size = static_cast<std::size_t>(n);
    copyRow(reinterpret_cast<std::uint8_t*>(m_pixels + m_count), reinterpret_cast<const std::uint8_t*>(pixels),
            size * sizeof(Pixel32));
    copyRow(m_coverages + m_count, coverages, size);
    m_rows[m_rowCount++] = {pixels, n};
    m_count += n;
}

void PlainBatch::paint(const PlainRows& plain) {
    if (m_count == 0)
        return;
    if (!m_hasOpacities)
        findOpacities(plain);
    const int n = (m_count + cnLanes - 1) & -cnLanes; // whole vectors
    std::fill(m_pixels + m_count, m_pixels + n, 0);
    std::fill(m_coverages + m_count, m_coverages + n, std::uint8_t{0});
    alignas(64) std::int32_t opacities[cnRowPixels];
    for (int i = 0; i < n; ++i)
        opacities[i] = m_opacities.a[m_coverages[i]];
    CompositeSpan span = plain.span;
    span.dst = reinterpret_cast<std::uint8_t*>(m_pixels);
    span.a = opacities;
    span.n = n;
    kernels(n).fastestRow[plain.composition][Depth32](span);
    const Pixel32* painted = m_pixels;
    for (const Row* row = m_rows; row != m_rows + m_rowCount; ++row) {
        copyRow(reinterpret_cast<std::uint8_t*>(row->pixels), reinterpret_cast<const std::uint8_t*>(painted),
                static_cast<std::size_t>(row->n) * sizeof(Pixel32));
        painted += row->n;
    }
    m_count = 0;
    m_rowCount = 0;
}

} // namespace ovw::mixing
