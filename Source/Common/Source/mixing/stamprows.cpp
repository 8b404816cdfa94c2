#include "mixing/stamprows.h"

#include <algorithm>
#include <cstddef>
#include <span>

namespace ovw::mixing {

StampRows::StampRows(XCFastPixelMixer& mixer, const XCRect& reach)
    : m_mixer(mixer), m_painter(mixer), m_plan(m_painter.planOfCoverage()), m_road(chooseRoad()) {
    if (m_road == Road::Batched)
        m_batch.begin(m_painter, *m_plan, m_images);
    lookAhead(reach);
}

StampRows::Road StampRows::chooseRoad() {
    if (!m_plan)
        return Road::Nowhere;
    if (m_painter.preparePlainRows(m_plain))
        return Road::Plain;
    return m_painter.prepareBatch(m_images, *m_plan) ? Road::Batched : Road::RowByRow;
}

void StampRows::lookAhead(const XCRect& reach) {
    if (m_road == Road::Plain) {
        const BlockPixels block = {reinterpret_cast<std::uint8_t*>(m_plain.block),
                                   m_plain.rowPixels * int{sizeof(Pixel32)}, sizeof(Pixel32)};
        m_ahead.addImage(block, reach - tagPOINT{m_plain.left, m_plain.top});
    } else if (m_road == Road::Batched) {
        m_ahead.addImages(m_images, reach);
    }
    m_ahead.begin(reach.top, reach.bottom);
}

StampRows::~StampRows() {
    paintPixels();
    m_plainBatch.paint(m_plain);
    m_batch.paint();
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
    m_plain.span.dst = reinterpret_cast<std::uint8_t*>(m_plain.pixelAt(span.innerStart, y));
    m_plain.span.n = n;
    kernels(n).fastest[m_plain.uniformComposition][Depth32](m_plain.span);
}

void StampRows::paintCoverages(int x, int y, std::span<const std::uint8_t> coverages) {
    const int n = static_cast<int>(coverages.size());
    m_ahead.advanceTo(y);
    if (m_road != Road::Plain) {
        float* coverage = coverageOf(n);
        std::transform(coverages.begin(), coverages.end(), coverage,
                       [](std::uint8_t byte) { return cnCoverageOfBytes[byte]; });
        return paintRow(y, {x, x + n, x + n, x + n}, coverage);
    }
    m_plainBatch.add(m_plain, m_plain.pixelAt(x, y), coverages.data(), n);
    while (!coverages.empty() && coverages.back() == 0)
        coverages = coverages.first(coverages.size() - 1);
    m_last = coverages.empty() ? m_last : cnCoverageOfBytes[coverages.back()];
}

void StampRows::paintFull(int from, int to, int y) {
    m_ahead.advanceTo(y);
    if (m_road == Road::Plain)
        return paintInterior(y, {from, from, to, to});
    float* coverage = coverageOf(to - from);
    std::fill_n(coverage, to - from, 1.0f);
    paintRow(y, {from, from, to, to}, coverage);
}

void StampRows::paintCircle(int y, const RimmedSpan& span, const CircleRow& circle) {
    m_ahead.advanceTo(y);
    const int n = span.end - span.start;
    float* coverage = coverageOf(n);
    const int whole = n <= 2 * RowBatch::cnPadding ? RowBatch::padded(n) : n;
    kernels(whole).circleRow(coverage, whole, circle);
    paintRow(y, span, coverage);
}

void StampRows::paintRow(int y, const RimmedSpan& span, const float* coverage) {
    const std::span<const float> row(coverage, static_cast<std::size_t>(span.end - span.start));
    if (m_road == Road::Batched)
        m_batch.add(span.start, y, span.end - span.start, true);
    else if (m_road == Road::RowByRow)
        m_painter.paintCoverage(*m_plan, span.start, y, row);
    if (span.innerStart < span.innerEnd) {
        m_last = 1.0f;
        return;
    }
    const auto last = std::find_if(row.rbegin(), row.rend(), [](float value) { return value > 0.0f; });
    m_last = last != row.rend() ? *last : m_last;
}

} // namespace ovw::mixing
