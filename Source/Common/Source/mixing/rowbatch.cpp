#include "mixing/rowbatch.h"

#include "mixing/shortcopy.h"
#include "mixing/spanpainter.h"

#include <algorithm>
#include <cstring>

namespace ovw::mixing {
void RowBatch::begin(SpanPainter& painter, const KernelPlan& plan, const BatchImages& images) {
    m_painter = &painter;
    m_plan = &plan;
    m_readsInputs = painter.prepare(plan);
    m_left = images.left;
    m_top = images.top;
    addImage(images.dst, m_dst, true);
    addImage(images.cache, reinterpret_cast<std::uint8_t*>(m_cache), true);
    addImage(images.cacheColor, m_cacheColor, true);
    addImage(images.ref, m_ref, false);
    m_pixels.dst = m_dst;
    m_pixels.ref = images.ref.bits ? m_ref : nullptr;
    m_pixels.cache = images.cache.bits ? m_cache : nullptr;
    m_pixels.cacheColor = images.cacheColor.bits ? m_cacheColor : nullptr;
}

void RowBatch::addImage(const BlockPixels& image, std::uint8_t* pixels, bool isPainted) {
    if (!image.bits)
        return;
    m_part[m_parts++] = {image, pixels};
    m_paintedParts += isPainted ? 1 : 0;
}

void RowBatch::lookAhead(int x, int y, int n) const {
    constexpr std::ptrdiff_t cnLineBytes = 64; // of a cache line
    for (const Part* part = m_part; part != m_part + m_parts; ++part) {
        const std::uint8_t* row = part->image.at(x - m_left, y - m_top);
        const std::ptrdiff_t last = std::ptrdiff_t{n} * part->image.pixelBytes - 1;
        for (std::ptrdiff_t i = 0; i < last; i += cnLineBytes)
            __builtin_prefetch(row + i);
        __builtin_prefetch(row + last);
    }
}

void RowBatch::add(int x, int y, int n, bool hasCoverage) {
    if (m_readsInputs) {
        m_painter->goTo(x, y, n);
        // A span without a falloff does not show.
        if (!m_painter->fetchInputs(m_inputs, m_count, *m_plan))
            return;
    }
    m_hasCoverage = hasCoverage;
    Row& row = m_rowsOf[m_rows++];
    row.first = m_count;
    row.n = n;
    for (int i = 0; i < m_parts; ++i) {
        const BlockPixels& image = m_part[i].image;
        row.places[i] = image.at(x - m_left, y - m_top);
        copyRow(m_part[i].pixels + row.first * image.pixelBytes, row.places[i],
                std::size_t(n) * std::size_t(image.pixelBytes));
    }
    m_count += n;
}

/// Whole vectors: what lies behind the last pixel has no coverage.
void RowBatch::pad() {
    std::fill_n(m_coverage + m_count, cnPadding, 0.0f);
    for (const Part* part = m_part; part != m_part + m_parts; ++part)
        std::memset(part->pixels + m_count * part->image.pixelBytes, 0, cnPadding * cnBytes);
}

void RowBatch::paint() {
    if (m_count == 0)
        return;
    m_pixels.filled = m_count;
    m_pixels.n = padded(m_count);
    pad();
    m_painter->work(*m_plan, m_inputs, m_pixels, m_hasCoverage ? m_coverage : nullptr);
    for (const Row* row = m_rowsOf; row != m_rowsOf + m_rows; ++row) {
        for (int i = 0; i < m_paintedParts; ++i) {
            const int pixelBytes = m_part[i].image.pixelBytes;
            copyRow(row->places[i], m_part[i].pixels + row->first * pixelBytes,
                    std::size_t(row->n) * std::size_t(pixelBytes));
        }
    }
    m_count = 0;
    m_rows = 0;
}

} // namespace ovw::mixing
