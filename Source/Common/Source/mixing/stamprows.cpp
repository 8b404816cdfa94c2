#include "mixing/stamprows.h"

#include <algorithm>
#include <cstddef>
#include <span>

namespace ovw::mixing {

StampRows::StampRows(XCFastPixelMixer& mixer)
    : m_mixer(mixer), m_painter(mixer), m_isPlain(m_painter.preparePlainRows(m_plain)),
      m_plan(m_painter.planOfCoverage()) {}

StampRows::~StampRows() {
    paintPixels();
    if (m_last > 0.0f)
        m_mixer.ScaleAntiAlpha(m_last);
}

/// The pixels gathered so far, as one span of copies.
void StampRows::paintPixels() {
    if (m_count == 0)
        return;
    const KernelTable& kernel = kernels(m_count);
    alignas(64) Pixel32 copies[cnRowPixels];
    CoverageRow row;
    row.n = m_count;
    for (int i = 0; i < m_count; ++i)
        copies[i] = *m_pixels[i];
    kernel.startCoverage(row, m_coverage, m_plain.baseAlpha);
    kernel.scaleStart(row, m_plain.paintAlpha, m_plain.paintAlpha);
    CompositeSpan span = m_plain.span;
    span.dst = reinterpret_cast<std::uint8_t*>(copies);
    span.a = row.a;
    span.n = m_count;
    kernel.fastestRow[m_plain.composition][Depth32](span);
    for (int i = 0; i < m_count; ++i)
        *m_pixels[i] = copies[i];
    m_count = 0;
}

void StampRows::paintInterior(int y, const RimmedSpan& span) {
    const int n = span.innerEnd - span.innerStart;
    if (n <= 0)
        return;
    m_last = 1.0f;
    if (m_plain.span.opacity == 0)
        return;
    CompositeSpan interior = m_plain.span;
    interior.dst = reinterpret_cast<std::uint8_t*>(m_plain.pixelAt(span.innerStart, y));
    interior.n = n;
    kernels(n).fastest[m_plain.uniformComposition][Depth32](interior);
}

void StampRows::paintRow(int y, const RimmedSpan& span, const float* coverage) {
    const std::span<const float> row(coverage, static_cast<std::size_t>(span.end - span.start));
    if (m_plan)
        m_painter.paintCoverage(*m_plan, span.start, y, row);
    if (span.innerStart < span.innerEnd) {
        m_last = 1.0f;
        return;
    }
    const auto last = std::find_if(row.rbegin(), row.rend(), [](float value) { return value > 0.0f; });
    m_last = last != row.rend() ? *last : m_last;
}

} // namespace ovw::mixing
