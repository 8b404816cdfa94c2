#include "vimage/coveragerow.h"

#include <algorithm>
#include <limits>

namespace ovw::vimage {

namespace {

constexpr std::uint32_t cnNowhere = std::numeric_limits<std::int32_t>::max() / 2;

/// x in parts of a pixel from `left` on, cut to a row.
std::uint32_t unitsOf(double x, double left, double width, double unitsOfPixel) {
    double at = x - left;
    at = at < 0.0 ? 0.0 : at;
    at = at > width ? width : at;
    return static_cast<std::uint32_t>(static_cast<std::int32_t>(at * unitsOfPixel));
}

std::uint8_t byteOf(int coverage) { return static_cast<std::uint8_t>(std::min(coverage, RunBand::cnFullCoverage)); }

} // namespace

/// Joins the coverages of a row from left to right into runs.
class RunWriter {
public:
    RunWriter(RunBand& runs, int left, int width)
        : m_runs(runs), m_left(left), m_written(runs.roomFor(width + cnSlack)) {}

    /// The pixels up to `to` have one coverage, 0 to 256.
    void fill(int to, int coverage) {
        const int length = to - m_next;
        if (length <= 0)
            return;
        const bool isFull = coverage >= RunBand::cnFullCoverage;
        if (coverage == 0 || (isFull && length >= cnLongRun)) {
            finish();
            if (isFull)
                m_runs.addFull(m_left + m_next, m_left + to);
            m_next = m_start = to;
            return;
        }
        for (int i = 0; i < length; i += cnSlack)
            std::fill_n(m_written + i, cnSlack, byteOf(coverage));
        skip(to);
    }
    /// Where the coverages of the next pixels go; skip() says up to which they were written.
    std::uint8_t* next() { return m_written; }
    void skip(int to) {
        m_written += to - m_next;
        m_next = to;
    }
    void finish() {
        if (m_start < m_next)
            m_runs.addWritten(m_left + m_start, m_left + m_next);
    }

private:
    static constexpr int cnSlack = 16;   ///< pixels that are written at once, whatever is needed of them
    static constexpr int cnLongRun = 16; ///< full runs from this length on are cheaper on their own

    RunBand& m_runs;
    int m_left;
    std::uint8_t* m_written;
    int m_start = 0; ///< of the run that is being written
    int m_next = 0;
};

/// A span inside one pixel covers its length in units, which may be one less than the difference of its ends.
inline void CoverageRow::shortenInsidePixel(int rank, int line, double low, double high) {
    const std::uint32_t from = m_units[rank][line];
    std::uint32_t& to = m_units[rank + 1][line];
    if (from / cnUnit != to / cnUnit)
        return;
    const double left = std::max(low, static_cast<double>(m_left));
    const double right = std::min(high, static_cast<double>(m_left + m_width));
    to = from + (left < right ? static_cast<std::uint32_t>((right - left) * cnUnit) : 0);
}

void CoverageRow::addLines(const RowCrossings& crossings) {
    m_count = crossings.count;
    const double left = m_left;
    const double width = m_width;
    for (int i = 0, count = m_count; i < count; i++)
        for (int line = 0; line < cnSubLines; line++)
            m_units[i][line] = unitsOf(crossings.x[i][line], left, width, cnUnit);
    for (int i = 0; i < m_count; i++) {
        // On one edge, so that the outer lines have the outermost.
        const auto one = static_cast<int>(m_units[i][0] / cnUnit);
        const auto other = static_cast<int>(m_units[i][cnSubLines - 1] / cnUnit);
        m_ends[i] = {std::min(one, other), std::max(one, other), cnSubLines * cnUnit};
    }
    for (int i = 0; i < m_count; i += 2)
        if (m_ends[i].last >= m_ends[i + 1].first)
            for (int line = 0; line < cnSubLines; line++)
                shortenInsidePixel(i, line, crossings.x[i][line], crossings.x[i + 1][line]);
}

/// Makes room for one more span of every line.
void CoverageRow::beginRank() {
    for (const int i : {m_count, m_count + 1}) {
        m_ends[i] = {static_cast<int>(cnNowhere), -1, 0};
        std::fill(std::begin(m_units[i]), std::end(m_units[i]), cnNowhere);
    }
    m_count += 2;
}

inline void CoverageRow::addEnd(Ends& ends, std::uint32_t units) {
    const auto pixel = static_cast<int>(units / cnUnit);
    ends = {std::min(ends.first, pixel), std::max(ends.last, pixel), ends.coverage + static_cast<int>(cnUnit)};
}

void CoverageRow::addSpan(int line, double low, double high) {
    const int rank = 2 * m_spansOf[line]++;
    if (rank == m_count)
        beginRank();
    m_units[rank][line] = unitsOf(low, m_left, m_width, cnUnit);
    m_units[rank + 1][line] = unitsOf(high, m_left, m_width, cnUnit);
    addEnd(m_ends[rank], m_units[rank][line]);
    addEnd(m_ends[rank + 1], m_units[rank + 1][line]);
    shortenInsidePixel(rank, line, low, high);
}

void CoverageRow::take(RunBand& runs) {
    constexpr int cnShortSpan = 16; // is worked out rather than filled
    RunWriter writer(runs, m_left, m_width);
    for (int i = 0; i < m_count;) {
        // Ends that share pixels go together.
        const int from = i;
        int last = m_ends[from].last;
        int reach = last + (from % 2 == 0 ? cnShortSpan : 0);
        for (++i; i < m_count && m_ends[i].first <= reach; ++i)
            reach = last = std::max(last, m_ends[i].last);
        writeGroup(writer, from, i, std::min(last + 1, m_width));
    }
    writer.finish();
    m_count = 0;
    m_spansOf.fill(0);
}

/// The pixels up to the last with one of the ends from <= i < to.
inline void CoverageRow::writeGroup(RunWriter& writer, int from, int to, int end) const {
    int covered = from % 2 == 0 ? 0 : m_ends[from].coverage;
    int pixel = std::min(m_ends[from].first, m_width);
    writer.fill(pixel, covered);
    std::uint8_t* written = writer.next();
    for (int behind = from; pixel < end; pixel += cnPixelsAtOnce, written += cnPixelsAtOnce) {
        for (; m_ends[behind].last < pixel; ++behind) // the last end is not
            covered += behind % 2 == 0 ? m_ends[behind].coverage : -m_ends[behind].coverage;
        int ahead = behind + 1;
        while (ahead < to && m_ends[ahead].first < pixel + cnPixelsAtOnce)
            ++ahead;
        writePixels(written, pixel, {m_units + behind, m_units + ahead}, behind % 2 == 0, covered);
    }
    writer.skip(end);
}

/// Writes the coverages of eight pixels of which `covered` is covered without these ends.
// Inlined, the loops would not become vectors.
[[gnu::noinline]] void CoverageRow::writePixels(std::uint8_t* __restrict written, int pixel,
                                                std::span<const Units> ends, bool begins, int covered) {
    using Part = std::int16_t;                            // eight of them make a vector
    constexpr int cnFar = 256 * static_cast<int>(cnUnit); // further away it makes no difference
    const int left = pixel * static_cast<int>(cnUnit);
    Part sums[cnPixelsAtOnce];
    for (Part& sum : sums)
        sum = static_cast<Part>(covered);
    for (const Units& units : ends) {
        Part distances[cnSubLines];
        for (int line = 0; line < cnSubLines; line++) {
            const int distance = static_cast<int>(units[line]) - left;
            distances[line] = static_cast<Part>(std::clamp(distance, -cnFar, cnFar));
        }
        const auto flip = static_cast<Part>(begins ? 0 : -1);
        begins = !begins;
        for (int i = 0; i < cnPixelsAtOnce; i++) {
            const auto right = static_cast<Part>((i + 1) * static_cast<int>(cnUnit));
            Part behind = 0;
            for (int line = 0; line < cnSubLines; line++) {
                auto part = static_cast<Part>(right - distances[line]);
                part = part < 0 ? Part{0} : part;
                part = part > Part{cnUnit} ? Part{cnUnit} : part;
                behind = static_cast<Part>(behind + part);
            }
            sums[i] = static_cast<Part>(sums[i] + ((behind ^ flip) - flip));
        }
    }
    for (int i = 0; i < cnPixelsAtOnce; i++)
        written[i] = static_cast<std::uint8_t>(sums[i] > 255 ? Part{255} : sums[i]);
}

} // namespace ovw::vimage
