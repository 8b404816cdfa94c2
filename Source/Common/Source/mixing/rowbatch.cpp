#include "mixing/rowbatch.h"

#include "mixing/fixedpoint.h"
#include "mixing/gaussrow.h"
#include "ovwcmn/xcplotgauss.h"

#include <algorithm>
#include <cstring>

namespace ovw::mixing {
namespace {

/// Two blocks of N bytes that may overlap each other cover N to 2 * N bytes.
template <std::size_t N>
void copyEnds(std::uint8_t* to, const std::uint8_t* from, std::size_t size) {
    std::memcpy(to, from, N);
    std::memcpy(to + size - N, from + size - N, N);
}

/// std::memcpy of the few bytes that a stamp's row has.
void copyRow(std::uint8_t* to, const std::uint8_t* from, std::size_t size) {
    constexpr std::size_t cnLong = 512;
    if (size >= cnLong) {
        std::memcpy(to, from, size);
    } else if (size >= 16) {
        for (std::size_t i = 16; i < size; i += 16)
            std::memcpy(to + i - 16, from + i - 16, 16);
        std::memcpy(to + size - 16, from + size - 16, 16);
    } else if (size >= 8) {
        copyEnds<8>(to, from, size);
    } else if (size >= 4) {
        copyEnds<4>(to, from, size);
    } else {
        for (std::size_t i = 0; i < size; ++i)
            to[i] = from[i];
    }
}

} // namespace

void RowBatch::add(const BatchRules& rules, int x, int y, int n) {
    const int column = x - rules.left;
    const int line = y - rules.top;
    const int pixelBytes = rules.dst.pixelBytes;
    Row& row = m_rowsOf[m_rows++];
    row = {rules.dst.at(column, line), nullptr, m_count, n};
    copyRow(m_dst + m_count * pixelBytes, row.dst, std::size_t(n) * std::size_t(pixelBytes));
    if (rules.hasCache()) {
        row.cache = rules.cache.at(column, line);
        copyRow(reinterpret_cast<std::uint8_t*>(m_cache + m_count), row.cache, n * sizeof(*m_cache));
        const std::uint8_t* ref = rules.ref.bits ? rules.ref.at(column, line) : rules.blank;
        copyRow(m_ref + m_count * pixelBytes, ref, std::size_t(n) * std::size_t(pixelBytes));
    }
    if (rules.gauss) {
        if (rules.gauss->StartLine(y, x))
            GaussRow::fetch(m_weights + m_count, n, padded(n), *rules.gauss, Scale15::cnOne, kernels(padded(n)));
        else
            std::fill_n(m_weights + m_count, n, 0);
    }
    m_count += n;
}

/// Whole vectors: what lies behind the last pixel has no coverage.
void RowBatch::padTo(const BatchRules& rules, int n) {
    const int pixelBytes = rules.dst.pixelBytes;
    std::fill(m_coverage + m_count, m_coverage + n, 0.0f);
    std::fill(m_weights + m_count, m_weights + n, 0);
    std::fill(m_cache + m_count, m_cache + n, std::uint16_t{0});
    std::fill(m_dst + m_count * pixelBytes, m_dst + n * pixelBytes, std::uint8_t{0});
    std::fill(m_ref + m_count * pixelBytes, m_ref + n * pixelBytes, std::uint8_t{0});
}

void RowBatch::scaleCoverages(const BatchRules& rules, const KernelTable& kernel) {
    kernel.startCoverage(m_row, m_coverage, rules.baseAlpha);
    if (rules.factor != Scale15::cnOne || rules.hasCache()) // only caches have a cap
        kernel.scaleStart(m_row, rules.factor, rules.factor);
    if (rules.gauss)
        kernel.scaleByGauss(m_row, m_weights);
}

void RowBatch::passCache(const BatchRules& rules, const KernelTable& kernel) {
    kernel.skipFull(m_row, m_cache, rules.factor);
    if (auto accumulate = kernel.accumulate[rules.accumulation])
        accumulate(m_row, m_cache);
    kernel.scaleByOpacity(m_row, rules.opacity);
}

void RowBatch::paint(const BatchRules& rules) {
    if (m_count == 0)
        return;
    const int n = padded(m_count);
    padTo(rules, n);
    const KernelTable& kernel = kernels(n);
    m_row.n = n;
    scaleCoverages(rules, kernel);
    if (rules.hasCache())
        passCache(rules, kernel);
    CompositeSpan span = rules.span;
    span.dst = m_dst;
    span.ref = m_ref;
    span.a = m_row.a;
    span.n = n;
    (kernel.*rules.compositors)[rules.composition][rules.column](span);
    for (const Row* row = m_rowsOf; row != m_rowsOf + m_rows; ++row) {
        const int pixelBytes = rules.dst.pixelBytes;
        copyRow(row->dst, m_dst + row->first * pixelBytes, std::size_t(row->n) * std::size_t(pixelBytes));
        if (rules.hasCache())
            copyRow(row->cache, reinterpret_cast<std::uint8_t*>(m_cache + row->first), row->n * sizeof(*m_cache));
    }
    m_count = 0;
    m_rows = 0;
}

} // namespace ovw::mixing
