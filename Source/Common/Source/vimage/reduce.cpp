#include "vimage/reduce.h"

#include "ovwcmn/xcvoffscreen.h"
#include "vimage/blockparts.h"
#include "vimage/pixelrows.h"
#include "vimage/rowkernels.h"
#include "vimage/squarewalk.h"

#include <array>
#include <bit>

namespace ovw::vimage {

namespace {

/// The source pixels of one cell of the walk, as colours or bytes. Those of a 32-bit or 8-bit block are used where they
/// lie; others go through a buffer, a destination row at a time. A cell over the border of blocks, which is only one
/// square wide or high, is gathered whole, with zeros where there are no pixels.
template <class Pixel>
class SquareRows {
public:
    using Reader = void (*)(const std::uint8_t*, int, int, const PixelRules&, Pixel*);

    SquareRows(XCVOffscreen& source, Reader reader, int factor)
        : m_source(source), m_reader(reader), m_factor(factor),
          m_isDirect(source.GetDepth() == 8 * static_cast<int>(sizeof(Pixel))) {}

    /// False when none of its pixels lies in a block that exists.
    bool enter(const SquareRun& x, const SquareRun& y) {
        m_x = x.from, m_y = y.from;
        m_stride = std::ptrdiff_t{x.count} * m_factor;
        if (!x.isWhole || !y.isWhole) {
            m_base = nullptr;
            return gather(x.count * m_factor, y.count * m_factor);
        }
        m_source.MoveCursor(m_x, m_y);
        m_base = m_source.GetBaseAddress();
        return m_base != nullptr;
    }
    std::ptrdiff_t stride() const { return m_base && m_isDirect ? cnBlockSize : m_stride; }
    /// The first source row of destination row j of the cell.
    const Pixel* row(int j) {
        if (!m_base)
            return &m_pixels[static_cast<std::size_t>(j * m_factor * m_stride)];
        const std::uint8_t* const first = m_base + ((m_y & cnBlockMask) + j * m_factor) * m_source.GetBlockRowBytes();
        if (m_isDirect)
            return reinterpret_cast<const Pixel*>(first) + (m_x & cnBlockMask);
        for (int y = 0; y < m_factor; ++y)
            m_reader(first + y * m_source.GetBlockRowBytes(), m_x & cnBlockMask, static_cast<int>(m_stride),
                     m_source.GetPixelRules(), &m_pixels[static_cast<std::size_t>(y * m_stride)]);
        return m_pixels.data();
    }

private:
    bool gather(int width, int height) {
        m_pixels.fill(Pixel{});
        bool exists = false;
        forEachPart(m_source, XCRect(m_x, m_y, m_x + width, m_y + height), [&](std::uint8_t* base, const XCRect& part) {
            exists = true;
            for (int y = part.top; y < part.bottom; ++y)
                m_reader(base + (y & cnBlockMask) * m_source.GetBlockRowBytes(), part.left & cnBlockMask, part.Width(),
                         m_source.GetPixelRules(),
                         &m_pixels[static_cast<std::size_t>((y - m_y) * m_stride + part.left - m_x)]);
        });
        return exists;
    }

    XCVOffscreen& m_source;
    Reader m_reader;
    int m_factor;
    bool m_isDirect;
    int m_x = 0;
    int m_y = 0;
    std::ptrdiff_t m_stride = 0;
    const std::uint8_t* m_base = nullptr;
    std::array<Pixel, cnLargestFactor * cnBlockSize> m_pixels;
};

/// Averages colours; transparent pixels thin the alpha, but leave the colour alone.
class ColourSquares {
public:
    ColourSquares(const XCVOffscreen& destination, XCVOffscreen& source, int factor, Reduction reduction)
        : m_rows(source, reader(destination, source, reduction), factor), m_rules(destination.GetPixelRules()),
          m_average(rowKernels().averageColours[std::countr_zero(static_cast<unsigned>(factor)) - 1]) {
        const PixelRows& to = pixelRows(destination.GetDepth());
        m_write = reduction == Reduction::Behind ? to.writeBehind : to.write32;
    }

    bool enter(const SquareRun& x, const SquareRun& y) { return m_rows.enter(x, y); }
    void makeRow(int j, std::uint8_t* to, int toX, int count) {
        const bool isAll = m_average(m_rows.row(j), m_rows.stride(), count, m_colours.data(), m_isVisible.data());
        m_write(to, toX, count, m_rules, m_colours.data(), isAll ? nullptr : m_isVisible.data());
    }

private:
    static ColourReader reader(const XCVOffscreen& destination, const XCVOffscreen& source, Reduction reduction) {
        const bool hasAlpha =
            destination.GetDepth() == CoverageGrey16::cnBits || destination.GetDepth() == Rgba32::cnBits;
        const PixelRows& from = pixelRows(source.GetDepth());
        return reduction == Reduction::Whole && hasAlpha ? from.readSolid : from.read32;
    }

    SquareRows<BgraPixel> m_rows;
    const PixelRules& m_rules;
    ColourWriter m_write;
    ColourAverager m_average;
    std::array<BgraPixel, cnBlockSize> m_colours;
    std::array<std::uint8_t, cnBlockSize> m_isVisible;
};

/// Averages densities, or counts bits of ink.
class ByteSquares {
public:
    ByteSquares(const XCVOffscreen& destination, XCVOffscreen& source, int factor, Reduction reduction)
        : m_isCount(source.GetDepth() == Bit1::cnBits),
          m_rows(source, m_isCount ? pixelRows(Bit1::cnBits).read1 : pixelRows(Density8::cnBits).read8, factor),
          m_rules(destination.GetPixelRules()) {
        const int power = std::countr_zero(static_cast<unsigned>(factor));
        m_add = rowKernels().addBytes[power - 1];
        m_shift = 2 * power;
        m_threshold = m_rules.transparency >> (8 - m_shift);
        const PixelRows& to = pixelRows(destination.GetDepth());
        m_write = m_isCount ? to.writeNonZero : reduction == Reduction::Behind ? to.unite : to.write;
    }

    bool enter(const SquareRun& x, const SquareRun& y) { return m_rows.enter(x, y); }
    void makeRow(int j, std::uint8_t* to, int toX, int count) {
        m_add(m_rows.row(j), m_rows.stride(), count, m_sums.data());
        for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i)
            m_values[i] = m_isCount ? m_sums[i] > m_threshold : byteOf(m_sums[i] >> m_shift);
        m_write(to, toX, count, m_rules, m_values.data());
    }

private:
    bool m_isCount;
    SquareRows<std::uint8_t> m_rows;
    const PixelRules& m_rules;
    ByteAdder m_add;
    int m_shift;
    int m_threshold;
    ByteWriter m_write;
    std::array<std::uint16_t, cnBlockSize> m_sums;
    std::array<std::uint8_t, cnBlockSize> m_values;
};

template <class Squares>
void reduceWith(Squares squares, XCVOffscreen& destination, const CopyPlan& plan, const XCVOffscreen& source,
                int factor) {
    const SquareAxis across =
        SquareAxis::of(plan.x, plan.width, destination.GetWidth(), plan.sx, factor, source.GetWidth());
    const SquareAxis down =
        SquareAxis::of(plan.y, plan.height, destination.GetHeight(), plan.sy, factor, source.GetHeight());
    down.forEachRun([&](const SquareRun& y) {
        across.forEachRun([&](const SquareRun& x) {
            if (!squares.enter(x, y))
                return;
            destination.MoveCursor(x.to, y.to);
            std::uint8_t* row = destination.GetBaseAddress() + (y.to & cnBlockMask) * destination.GetBlockRowBytes();
            for (int j = 0; j < y.count; ++j, row += destination.GetBlockRowBytes())
                squares.makeRow(j, row, x.to & cnBlockMask, x.count);
        });
    });
}

bool isOfBytes(int to, int from, Reduction reduction) {
    return to == from && (to == Density8::cnBits || (to == Bit1::cnBits && reduction == Reduction::Whole));
}

} // namespace

void reducePixels(XCVOffscreen& destination, const CopyPlan& plan, XCVOffscreen& source, int factor,
                  Reduction reduction) {
    if (isOfBytes(destination.GetDepth(), source.GetDepth(), reduction))
        reduceWith(ByteSquares(destination, source, factor, reduction), destination, plan, source, factor);
    else
        reduceWith(ColourSquares(destination, source, factor, reduction), destination, plan, source, factor);
}

} // namespace ovw::vimage
