#include "offscreen/squaremeans.h"

#include "vimage/pixelrows.h"
#include "vimage/rowkernels.h"

#include <bit>
#include <cstring>

namespace ovw::offscreen {

namespace {

constexpr vimage::PixelRules cnRules{}; // nothing here depends on them

} // namespace

SquareMeans::SquareMeans(const PixelView& source, int factor, bool keepsAlpha)
    : m_source(source), m_factor(factor), m_power(std::countr_zero(static_cast<unsigned>(factor))),
      m_keepsAlpha(keepsAlpha), m_depth(source.depth == Ink1::cnBits ? Density8::cnBits : source.depth) {}

const std::uint8_t* SquareMeans::row(int x, int y, int count) {
    withFormat(m_source.depth, [&]<class Format>() { average(Format(), x, y, count); });
    return m_row.data();
}

void SquareMeans::average(Argb32, int x, int y, int count) {
    constexpr std::ptrdiff_t cnBytes = Argb32::cnBytes;
    const auto* const first = reinterpret_cast<const vimage::BgraPixel*>(m_source.row(y) + x * cnBytes);
    const auto averageRow = vimage::rowKernels().averageAlphaFirst[m_power - 1];
    averageRow(first, m_source.rowBytes / cnBytes, count, m_colours.data(), m_isVisible.data());
    constexpr ArgbPixel cnNothing = Argb32::write32(cnWhite), cnAlphaBits{0xFF, 0, 0, 0};
    std::uint32_t nothing, opaque;
    std::memcpy(&nothing, &cnNothing, sizeof nothing);
    std::memcpy(&opaque, &cnAlphaBits, sizeof opaque);
    opaque = m_keepsAlpha ? 0 : opaque;
    for (int i = 0; i < count; ++i) {
        std::uint32_t word;
        std::memcpy(&word, &m_colours[static_cast<std::size_t>(i)], sizeof word);
        word = (m_isVisible[static_cast<std::size_t>(i)] ? word : nothing) | opaque;
        std::memcpy(m_row.data() + i * cnBytes, &word, sizeof word);
    }
}

void SquareMeans::average(Rgb24, int x, int y, int count) {
    const std::uint8_t* const first = m_source.row(y) + static_cast<std::ptrdiff_t>(x) * Rgb24::cnBytes;
    vimage::rowKernels().averageTriples[m_power - 1](first, m_source.rowBytes, count, m_row.data());
}

void SquareMeans::average(Density8, int x, int y, int count) {
    vimage::rowKernels().addBytes[m_power - 1](m_source.row(y) + x, m_source.rowBytes, count, m_sums.data());
    for (int i = 0; i < count; ++i)
        m_row[static_cast<std::size_t>(i)] = byteOf(m_sums[static_cast<std::size_t>(i)] >> 2 * m_power);
}

void SquareMeans::average(Ink1, int x, int y, int count) {
    for (int i = 0; i < m_factor; ++i)
        vimage::pixelRows(Ink1::cnBits)
            .read1(m_source.row(y + i), x, count * m_factor, cnRules,
                   m_bits.data() + std::ptrdiff_t{i} * vimage::cnBlockSize);
    vimage::rowKernels().addBytes[m_power - 1](m_bits.data(), vimage::cnBlockSize, count, m_sums.data());
    for (int i = 0; i < count; ++i)
        m_row[static_cast<std::size_t>(i)] = byteOf(m_sums[static_cast<std::size_t>(i)] * cnByteMax >> 2 * m_power);
}

} // namespace ovw::offscreen
