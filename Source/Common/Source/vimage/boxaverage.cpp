#include "vimage/boxaverage.h"

#include "foundation/nomemory.h"
#include "ovwcmn/xcvoffscreen.h"
#include "vimage/blockparts.h"
#include "vimage/coveredspan.h"
#include "vimage/pixelrows.h"
#include "vimage/rowkernels.h"

#include <array>
#include <cstring>
#include <memory>
#include <vector>

namespace ovw::vimage {

namespace {

constexpr int cnBandRows = 8; // of the destination, so that a source block is entered once for all of them

constexpr int cnRowsAtOnce = 8; // of the source

using BlockRow = std::array<BgraPixel, cnBlockSize>;

/// Pixels that images without alpha show where they have no block.
constexpr auto cnWhiteRow = [] {
    BlockRow row{};
    row.fill({cnByteMax, cnByteMax, cnByteMax, cnByteMax});
    return row;
}();

/// What is stored of the sums.
struct StoredRow {
    BlockRow colours;
    std::array<std::uint8_t, cnBlockSize> values; ///< the colours' alphas
};

/// How sums become pixels, and how these are stored.
class AreaRule {
public:
    AreaRule(const XCVOffscreen& destination, const XCVOffscreen& source, double scale, bool behind)
        : m_depth(source.GetDepth()), m_scale(scale), m_rules(destination.GetPixelRules()) {
        const PixelRows& to = pixelRows(destination.GetDepth());
        m_read = pixelRows(m_depth).readWeighed;
        const bool hasOwnAlpha = m_depth == CoverageGrey16::cnBits || m_depth == Rgba32::cnBits;
        if (destination.GetDepth() == Density8::cnBits && (behind || !hasOwnAlpha))
            m_writeBytes = behind ? to.writeNonZero : to.write;
        else
            m_writeColours = behind ? to.writeBehind : to.write32;
    }

    ColourReader reader() const { return m_read; }
    bool writesMissing() const { return true; }
    bool countsMissing() const { return m_depth == Rgb24::cnBits; }
    /// covered(i): how many source pixels lie under pixel i.
    template <class Covered>
    void makeColours(const PixelSums* sums, int count, const Covered&, BgraPixel* colours) const {
        if (m_depth == CoverageGrey16::cnBits || m_depth == Rgba32::cnBits)
            return rowKernels().weighedColours(sums, count, m_scale, colours);
        for (int i = 0; i < count; ++i)
            colours[i] = Rgba32::ofColour(weighedValue(m_depth, sums[i], m_scale));
    }
    void write(std::uint8_t* row, int x, int count, const StoredRow& stored) const {
        if (m_writeBytes)
            m_writeBytes(row, x, count, m_rules, stored.values.data());
        else
            m_writeColours(row, x, count, m_rules, stored.colours.data(), nullptr);
    }

private:
    int m_depth;
    double m_scale;
    const PixelRules& m_rules;
    ColourReader m_read;
    ByteWriter m_writeBytes = nullptr;
    ColourWriter m_writeColours = nullptr;
};

class WholeRule {
public:
    WholeRule(const XCVOffscreen& destination, const XCVOffscreen& source, bool behind)
        : m_rules(destination.GetPixelRules()) {
        const PixelRows& to = pixelRows(destination.GetDepth());
        const PixelRows& from = pixelRows(source.GetDepth());
        const bool isDensity = destination.GetDepth() == Density8::cnBits && source.GetDepth() == Density8::cnBits;
        m_read = isDensity ? from.readWeighed : from.read32;
        if (isDensity)
            m_writeBytes = behind ? to.writeNonZero : to.write;
        else
            m_writeColours = behind ? to.writeBehind : to.write32;
    }

    ColourReader reader() const { return m_read; }
    bool writesMissing() const { return m_writeBytes != nullptr; }
    bool countsMissing() const { return false; }
    template <class Covered>
    void makeColours(const PixelSums* sums, int count, const Covered& covered, BgraPixel* colours) const {
        for (int i = 0; i < count; ++i)
            colours[i] = pixelOf(sums[i], covered(i));
    }
    void write(std::uint8_t* row, int x, int count, const StoredRow& stored) const {
        if (m_writeBytes)
            m_writeBytes(row, x, count, m_rules, stored.values.data());
        else
            m_writeColours(row, x, count, m_rules, stored.colours.data(), stored.values.data());
    }

private:
    static BgraPixel pixelOf(const PixelSums& sums, double covered) {
        if (sums.weight <= 0)
            return {};
        const auto mean = [&](double sum) { return byteOf(static_cast<int>(sum / sums.weight)); };
        return {mean(sums.blue), mean(sums.green), mean(sums.red), byteOf(static_cast<int>(sums.alpha / covered))};
    }

    const PixelRules& m_rules;
    ColourReader m_read;
    ByteWriter m_writeBytes = nullptr;
    ColourWriter m_writeColours = nullptr;
};

/// A block column of the source, as far as the part of the destination covers it.
struct SourceColumns {
    int begin;
    int end;
};

template <class Map, class Rule>
class BoxAverager {
public:
    BoxAverager(XCVOffscreen& destination, const Map& columns, const Map& rows, XCVOffscreen& source, const Rule& rule)
        : m_destination(destination), m_source(source), m_columns(columns), m_rows(rows), m_rule(rule),
          m_isDirect(source.GetDepth() == Rgba32::cnBits), m_kernels(rowKernels()),
          m_work(foundation::orNoMemory([] { return std::make_unique<Work>(); })) {}

    void run() {
        const XCRect area(m_columns.begin(), m_rows.begin(), m_columns.end(), m_rows.end());
        PlacedImage(m_destination).forEachBlock(area, [&](const XCRect& part) { averageToBlock(part); });
    }

private:
    struct Work {
        ColumnSums columns;
        std::array<BlockRow, cnRowsAtOnce> rows;    ///< of the source, converted
        std::array<CoveredSpan, cnBlockSize> spans; ///< of the part's columns
        std::array<ColumnRun, cnBlockSize> runs;
        std::array<std::array<PixelSums, cnBlockSize>, cnBandRows> sums;
        StoredRow stored;
    };

    void averageToBlock(const XCRect& part) {
        for (int i = part.left; i < part.right; ++i)
            m_work->spans[static_cast<std::size_t>(i - part.left)] = m_columns(i);
        if (!hasSource(part) && !(m_rule.writesMissing() && m_destination.GetBlockExist(part.left, part.top)))
            return;
        m_destination.MoveCursor(part.left, part.top);
        for (int top = part.top; top < part.bottom; top += cnBandRows)
            averageBand(part, top, std::min(top + cnBandRows, part.bottom));
    }
    const CoveredSpan& spanAt(int column) const { return m_work->spans[static_cast<std::size_t>(column)]; }
    /// The source pixels of a part's columns.
    SourceColumns sourceColumns(const XCRect& part) const {
        return {clampedTo(spanAt(0).first, m_source.GetWidth()),
                clampedTo(spanAt(part.Width() - 1).last + 1, m_source.GetWidth())};
    }
    static int clampedTo(std::int64_t v, int size) { return static_cast<int>(std::clamp<std::int64_t>(v, 0, size)); }

    bool hasSource(const XCRect& part) const {
        const SourceColumns columns = sourceColumns(part);
        const XCRect covered(columns.begin, clampedTo(m_rows(part.top).first, m_source.GetHeight()), columns.end,
                             clampedTo(m_rows(part.bottom - 1).last + 1, m_source.GetHeight()));
        bool exists = false;
        PlacedImage(m_source).forEachBlock(
            covered, [&](const XCRect& block) { exists = exists || m_source.GetBlockExist(block.left, block.top); });
        return exists;
    }

    void averageBand(const XCRect& part, int top, int bottom) {
        for (int y = top; y < bottom; ++y)
            std::memset(static_cast<void*>(&m_work->sums[static_cast<std::size_t>(y - top)]), 0,
                        static_cast<std::size_t>(part.Width()) * sizeof(PixelSums));
        const SourceColumns all = sourceColumns(part);
        int firstColumn = 0;
        for (int begin = all.begin; begin < all.end;) {
            const SourceColumns columns{begin, std::min((begin | cnBlockMask) + 1, all.end)};
            while (spanAt(firstColumn).last < columns.begin)
                ++firstColumn;
            const int runs = collectRuns(columns, firstColumn, part.Width());
            for (int y = top; y < bottom; ++y)
                if (addColumns(columns, m_rows(y)))
                    m_kernels.addRuns(
                        m_work->columns, m_work->runs.data(), runs,
                        &m_work->sums[static_cast<std::size_t>(y - top)][static_cast<std::size_t>(firstColumn)]);
            begin = columns.end;
        }
        for (int y = top; y < bottom; ++y)
            storeRow(part, y, m_work->sums[static_cast<std::size_t>(y - top)]);
    }

    /// The sums of the columns over the rows of one destination row. False when none of them counts.
    bool addColumns(const SourceColumns& columns, const CoveredSpan& rows) {
        bool exists = false;
        const int end = clampedTo(rows.last + 1, m_source.GetHeight());
        for (int y = clampedTo(rows.first, m_source.GetHeight()); y < end;) {
            const int blockEnd = std::min((y | cnBlockMask) + 1, end);
            m_source.MoveCursor(columns.begin, y);
            const std::uint8_t* const base = m_source.GetBaseAddress();
            if (base || m_rule.countsMissing()) {
                addRows(base, XCRect(columns.begin, y, columns.end, blockEnd), rows, !exists);
                exists = true;
            }
            y = blockEnd;
        }
        return exists;
    }
    /// The sums of a part of a block, which may lack memory.
    void addRows(const std::uint8_t* base, const XCRect& part, const CoveredSpan& rows, bool isFirst) {
        for (int top = part.top; top < part.bottom; top += cnRowsAtOnce) {
            std::array<WeighedRow, cnRowsAtOnce> weighed;
            const int count = std::min(part.bottom - top, cnRowsAtOnce);
            for (int i = 0; i < count; ++i)
                weighed[static_cast<std::size_t>(i)] = {
                    base ? rowOf(base, part.left, top + i, part.Width(), m_work->rows[static_cast<std::size_t>(i)])
                         : cnWhiteRow.data(),
                    rows.weight(top + i)};
            m_kernels.addRows(weighed.data(), count, part.Width(), isFirst && top == part.top, m_work->columns);
        }
    }
    const BgraPixel* rowOf(const std::uint8_t* base, int x, int y, int count, BlockRow& converted) {
        const std::uint8_t* const row = base + (y & cnBlockMask) * m_source.GetBlockRowBytes();
        if (m_isDirect)
            return reinterpret_cast<const BgraPixel*>(row) + (x & cnBlockMask);
        m_rule.reader()(row, x & cnBlockMask, count, m_source.GetPixelRules(), converted.data());
        return converted.data();
    }

    /// What the part's columns from the first on cover of some columns of the source; their number.
    int collectRuns(const SourceColumns& columns, int firstColumn, int width) {
        int count = 0;
        for (int i = firstColumn; i < width && spanAt(i).first < columns.end; ++i) {
            const CoveredSpan& span = spanAt(i);
            const std::int64_t begin = std::max<std::int64_t>(span.first, columns.begin);
            const std::int64_t end = std::min<std::int64_t>(span.last + 1, columns.end);
            m_work->runs[static_cast<std::size_t>(count++)] = {static_cast<int>(begin - columns.begin),
                                                               static_cast<int>(end - columns.begin),
                                                               span.weight(begin), span.weight(end - 1)};
        }
        return count;
    }

    void storeRow(const XCRect& part, int y, const std::array<PixelSums, cnBlockSize>& row) {
        const double height = static_cast<double>(m_rows(y).pixels());
        StoredRow& stored = m_work->stored;
        m_rule.makeColours(
            row.data(), part.Width(), [&](int i) { return height * static_cast<double>(spanAt(i).pixels()); },
            stored.colours.data());
        for (std::size_t i = 0; i < static_cast<std::size_t>(part.Width()); ++i)
            stored.values[i] = stored.colours[i].alpha;
        m_rule.write(m_destination.GetBaseAddress() + (y & cnBlockMask) * m_destination.GetBlockRowBytes(),
                     part.left & cnBlockMask, part.Width(), stored);
    }

    XCVOffscreen& m_destination;
    XCVOffscreen& m_source;
    const Map& m_columns;
    const Map& m_rows;
    const Rule& m_rule;
    bool m_isDirect;
    const RowKernels& m_kernels;
    std::unique_ptr<Work> m_work;
};

} // namespace

void averageWhole(XCVOffscreen& destination, const AxisPlan& columns, const AxisPlan& rows, XCVOffscreen& source,
                  bool behind) {
    const WholeRule rule(destination, source, behind);
    const WholeSpans across(columns), down(rows);
    BoxAverager(destination, across, down, source, rule).run();
}

void averageAreas(XCVOffscreen& destination, const AxisPlan& columns, const AxisPlan& rows, XCVOffscreen& source,
                  bool behind) {
    const AreaSpans across(columns), down(rows);
    const AreaRule rule(destination, source, 1.0 / (across.scale() * down.scale()), behind);
    BoxAverager(destination, across, down, source, rule).run();
}

} // namespace ovw::vimage
