#include "vimage/spread.h"

#include "ovwcmn/xcvoffscreen.h"
#include "vimage/blockparts.h"
#include "vimage/largecopy.h"
#include "vimage/pixelrows.h"
#include "vimage/rowkernels.h"
#include "vimage/withformat.h"

#include <array>
#include <cstring>

namespace ovw::vimage {

namespace {

/// For conversions between equal depths, which depend on none.
constexpr PixelRules cnNoRules;

/// Neighbouring destination pixels, in one block, of which the source pixels lie in one block.
struct SpreadRun {
    int to;
    int count;
    int from; ///< of the first pixel
};

template <class Action>
void forEachSpreadRun(int begin, int end, const NearestMap& map, int size, const Action& action) {
    for (int i = begin; i < end;) {
        const std::int64_t from = map(i);
        const std::int64_t block = from >> XCVOffscreen::cnBlockShift;
        const int first = i;
        while (++i < end && map(i) >> XCVOffscreen::cnBlockShift == block && map(i) < size) {
        }
        if (from >= 0 && from < size)
            action(SpreadRun{first, i - first, static_cast<int>(from)});
    }
}

/// Where each pixel of a run lies in a row of the source.
struct RunPlaces {
    std::array<std::uint8_t, cnBlockSize> from{}; ///< in the run's source pixels
    int sourceCount = 0;
    int factor = 0; ///< 2 or 4 when every source pixel is taken that often, else 0

    RunPlaces(const SpreadRun& run, const NearestMap& map) {
        for (int i = 0; i < run.count; ++i)
            from[static_cast<std::size_t>(i)] = byteOf(static_cast<int>(map(run.to + i) - run.from));
        sourceCount = from[static_cast<std::size_t>(run.count - 1)] + 1;
        factor = isRepeated(2, run.count) ? 2 : isRepeated(4, run.count) ? 4 : 0;
    }

private:
    bool isRepeated(int times, int count) const {
        for (int i = 0; i < count; ++i)
            if (from[static_cast<std::size_t>(i)] != i / times)
                return false;
        return true;
    }
};

/// Pixels of one kind, from a source row to a destination row, each where it belongs.
template <class Pixel>
struct SpreadRow {
    // As long as whole squares of the largest factor.
    std::array<Pixel, cnBlockSize + 4> pixels;

    void take(const Pixel* row, const RunPlaces& places, int count) {
        for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i)
            pixels[i] = row[places.from[i]];
    }
};

template <>
void SpreadRow<BgraPixel>::take(const BgraPixel* row, const RunPlaces& places, int count) {
    if (places.factor)
        return rowKernels().repeat[places.factor == 4](row, places.sourceCount, pixels.data());
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i)
        pixels[i] = row[places.from[i]];
}

/// Stored pixels as they stand.
template <class Format>
class NativeSpread {
public:
    explicit NativeSpread(Spreading spreading) : m_fillsMissing(spreading == Spreading::Native) {}

    bool fillsMissing() const { return m_fillsMissing; }
    void read(const std::uint8_t* row, int x, const RunPlaces& places, int count) {
        if constexpr (Format::cnBits == Rgba32::cnBits) {
            m_row.take(reinterpret_cast<const Value*>(row) + x, places, count);
        } else {
            std::array<Value, cnBlockSize> values;
            for (int i = 0; i < places.sourceCount; ++i)
                values[static_cast<std::size_t>(i)] = Format::pixelAt(row, x + i);
            m_row.take(values.data(), places, count);
        }
    }
    void readMissing(int count) { std::fill_n(m_row.pixels.data(), count, Format::cnMissingValue); }
    void write(std::uint8_t* row, int x, int count, const LargeCopy& copy) const {
        if constexpr (Format::cnBits >= 8)
            copy.copy(row + x * Format::cnBytes, reinterpret_cast<const std::uint8_t*>(m_row.pixels.data()),
                      static_cast<std::size_t>(count) * Format::cnBytes);
        else
            for (int i = 0; i < count; ++i) // a stored 1 of 2 bits becomes 0
                Format::setPixel(
                    row, x + i,
                    Format::writeOwn(Format::readOwn(m_row.pixels[static_cast<std::size_t>(i)], cnNoRules), cnNoRules));
    }

private:
    using Value = typename Format::Value;
    bool m_fillsMissing;
    SpreadRow<Value> m_row;
};

class DensitySpread {
public:
    explicit DensitySpread(Spreading spreading)
        : m_fillsMissing(spreading == Spreading::ReplaceVisible), m_write(writerOf(spreading)) {}

    bool fillsMissing() const { return m_fillsMissing; }
    void read(const std::uint8_t* row, int x, const RunPlaces& places, int count) {
        m_row.take(row + x, places, count);
    }
    void readMissing(int count) { std::fill_n(m_row.pixels.data(), count, std::uint8_t{0}); }
    void write(std::uint8_t* row, int x, int count, const LargeCopy&) const {
        m_write(row, x, count, cnNoRules, m_row.pixels.data());
    }

private:
    static ByteWriter writerOf(Spreading spreading) {
        const PixelRows& rows = pixelRows(Density8::cnBits);
        return spreading == Spreading::Behind         ? rows.unite
               : spreading == Spreading::RaiseVisible ? rows.writeNonZero
                                                      : rows.write;
    }

    bool m_fillsMissing;
    ByteWriter m_write;
    SpreadRow<std::uint8_t> m_row;
};

class ColourSpread {
public:
    ColourSpread(const XCVOffscreen& destination, const XCVOffscreen& source, Spreading spreading)
        : m_toRules(destination.GetPixelRules()), m_fromRules(source.GetPixelRules()),
          m_read(pixelRows(source.GetDepth()).read32), m_visibleOnly(spreading != Spreading::Replace) {
        const bool isBehind = spreading == Spreading::Behind || spreading == Spreading::RaiseVisible;
        const PixelRows& to = pixelRows(destination.GetDepth());
        m_write = isBehind ? to.writeBehind : to.write32;
    }

    bool fillsMissing() const { return false; }
    void read(const std::uint8_t* row, int x, const RunPlaces& places, int count) {
        m_read(row, x, places.sourceCount, m_fromRules, m_colours.data());
        m_row.take(m_colours.data(), places, count);
        for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i)
            m_isWanted[i] = !m_visibleOnly || m_row.pixels[i].alpha != 0;
    }
    void readMissing(int) {}
    void write(std::uint8_t* row, int x, int count, const LargeCopy&) const {
        m_write(row, x, count, m_toRules, m_row.pixels.data(), m_isWanted.data());
    }

private:
    const PixelRules& m_toRules;
    const PixelRules& m_fromRules;
    ColourReader m_read;
    ColourWriter m_write;
    bool m_visibleOnly;
    std::array<BgraPixel, cnBlockSize> m_colours;
    std::array<std::uint8_t, cnBlockSize> m_isWanted;
    SpreadRow<BgraPixel> m_row;
};

template <class Rows>
class Spreader {
public:
    Spreader(XCVOffscreen& destination, const NearestMap& columns, const NearestMap& rows, XCVOffscreen& source,
             Rows rowKind)
        : m_destination(destination), m_source(source), m_columns(columns), m_rows(rows), m_row(std::move(rowKind)) {}

    void run() {
        const XCRect area(m_columns.begin(), m_rows.begin(), m_columns.end(), m_rows.end());
        PlacedImage(m_destination).forEachBlock(area, [&](const XCRect& part) { spreadToBlock(part); });
    }

private:
    template <class Action>
    void forEachCell(const XCRect& part, const Action& action) const {
        forEachSpreadRun(part.top, part.bottom, m_rows, m_source.GetHeight(), [&](const SpreadRun& y) {
            forEachSpreadRun(part.left, part.right, m_columns, m_source.GetWidth(),
                             [&](const SpreadRun& x) { action(x, y); });
        });
    }
    /// Missing pixels count as long as the block exists anyway.
    void spreadToBlock(const XCRect& part) {
        bool fillsMissing = m_row.fillsMissing() && m_destination.GetBlockExist(part.left, part.top);
        if (m_row.fillsMissing())
            forEachCell(part, [&](const SpreadRun& x, const SpreadRun& y) {
                fillsMissing |= m_source.GetBlockExist(x.from, y.from) != 0;
            });
        forEachCell(part, [&](const SpreadRun& x, const SpreadRun& y) {
            m_source.MoveCursor(x.from, y.from);
            const std::uint8_t* const base = m_source.GetBaseAddress();
            if (base || fillsMissing)
                spreadCell(x, y, base);
        });
    }
    void spreadCell(const SpreadRun& x, const SpreadRun& y, const std::uint8_t* from) {
        m_destination.MoveCursor(x.to, y.to);
        const int rowBytes = m_destination.GetBlockRowBytes();
        std::uint8_t* row = m_destination.GetBaseAddress() + (y.to & cnBlockMask) * rowBytes;
        const RunPlaces places(x, m_columns);
        if (!from)
            m_row.readMissing(x.count);
        std::int64_t before = -1;
        for (int j = 0; j < y.count; ++j, row += rowBytes) {
            const std::int64_t sourceY = m_rows(y.to + j);
            if (from && sourceY != before)
                m_row.read(from + (sourceY & cnBlockMask) * m_source.GetBlockRowBytes(), x.from & cnBlockMask, places,
                           x.count);
            before = sourceY;
            m_row.write(row, x.to & cnBlockMask, x.count, m_copy);
        }
    }

    XCVOffscreen& m_destination;
    XCVOffscreen& m_source;
    const NearestMap& m_columns;
    const NearestMap& m_rows;
    const LargeCopy m_copy{m_destination, m_columns.end() - m_columns.begin(), m_rows.end() - m_rows.begin()};
    Rows m_row;
};

/// Whether pixels can be copied as they stand: where their colour would come back the same.
bool isNative(int to, int from, Spreading spreading) {
    return spreading == Spreading::Native || (spreading == Spreading::Replace && to == from && to > Density8::cnBits);
}

} // namespace

void spreadPixels(XCVOffscreen& destination, const NearestMap& columns, const NearestMap& rows, XCVOffscreen& source,
                  Spreading spreading) {
    const int to = destination.GetDepth(), from = source.GetDepth();
    const auto run = [&](auto rowKind) { Spreader(destination, columns, rows, source, std::move(rowKind)).run(); };
    if (isNative(to, from, spreading))
        withFormat(to, [&]<class Format>() { run(NativeSpread<Format>(spreading)); });
    else if (to == Density8::cnBits && from == to)
        run(DensitySpread(spreading));
    else
        run(ColourSpread(destination, source, spreading));
}

} // namespace ovw::vimage
