#include "brush/coveragerow.h"

#include "mixing/coveragespan.h"
#include "ovwcmn/xcfastpixelmixer.h"

#include <algorithm>
#include <bit>
#include <cstddef>

namespace ovw::brush {

namespace {

/// Uniform runs from this length on are cheaper as a span of their own than as a part of a coverage row.
constexpr int cnRunWorthSpan = 16;

/// What an accumulated coverage of 0 to 255 is to the mixer.
constexpr std::array<float, 256> coverageFactors() {
    std::array<float, 256> factors{};
    for (int i = 0; i < 255; i++)
        factors[i] = static_cast<float>(i) * 0.003921568859368563f;
    factors[255] = 1.0f;
    return factors;
}
constexpr std::array<float, 256> s_coverageFactors = coverageFactors();

/// Collects runs of equal coverage: long ones become spans, what lies between them coverage rows.
class RunPainter {
public:
    RunPainter(XCFastPixelMixer& mixer, int y) : m_mixer(mixer), m_y(y) {}
    ~RunPainter() = default;

    void add(int from, int to, int coverage) {
        if (to - from >= cnRunWorthSpan) {
            flush();
            if (coverage > 0) {
                m_mixer.ScaleAntiAlpha(s_coverageFactors[coverage]);
                m_mixer.DoLineRow(from, to - 1, m_y);
            }
            return;
        }
        if (m_count == 0) {
            if (coverage == 0)
                return;
            m_start = from;
        }
        std::fill_n(m_pending.begin() + m_count, to - from, s_coverageFactors[coverage]);
        m_count += to - from;
    }

    void flush() {
        if (m_count > 0)
            mixing::paintCoverageRow(m_mixer, m_start, m_y, {m_pending.data(), static_cast<std::size_t>(m_count)});
        m_count = 0;
    }

private:
    XCFastPixelMixer& m_mixer;
    int m_y;
    int m_start = 0;
    int m_count = 0;
    std::array<float, XCVOffscreenGrid::cnBlockSize> m_pending;
};

double fraction(double value) { return value - static_cast<int>(value); }

} // namespace

void CoverageRow::addStep(int cell, int change) {
    m_steps[cell] += change;
    m_touched[cell / cnWordBits] |= std::uint64_t{1} << (cell % cnWordBits);
}

void CoverageRow::addPixel(int cell, int coverage) {
    if (coverage == 0)
        return;
    addStep(cell, coverage);
    addStep(cell + 1, -coverage);
}

void CoverageRow::addSpan(double low, double high) {
    low = std::max(low, static_cast<double>(m_left));
    high = std::min(high, static_cast<double>(m_right));
    if (!(low <= high) || low >= m_right)
        return;
    const int first = static_cast<int>(low) - m_left;
    const int last = static_cast<int>(high) - m_left;
    if (first == last)
        return addPixel(first, static_cast<int>(fraction(high - low) * cnUnit));
    // The pixels between, and what the partly covered ends differ from that by.
    addPixel(first, cnUnit - static_cast<int>(fraction(low) * cnUnit));
    addPixel(last, static_cast<int>(fraction(high) * cnUnit));
    if (first + 1 < last) {
        addStep(first + 1, cnUnit);
        addStep(last, -cnUnit);
    }
}

/// Calls run(from, to, coverage) for the runs of equal coverage up to the last change, and clears the row.
template <class Run>
void CoverageRow::takeRuns(Run run) {
    int coverage = 0;
    int from = 0;
    for (std::size_t word = 0; word < m_touched.size(); word++) {
        for (std::uint64_t bits = m_touched[word]; bits != 0; bits &= bits - 1) {
            const int cell = static_cast<int>(word) * cnWordBits + std::countr_zero(bits);
            const int end = std::min(cell, m_right - m_left);
            if (from < end)
                run(from, end, std::min(coverage, 255));
            coverage += m_steps[cell];
            m_steps[cell] = 0;
            from = cell;
        }
        m_touched[word] = 0;
    }
}

void CoverageRow::paint(XCFastPixelMixer& mixer, int y) {
    RunPainter runs(mixer, y);
    takeRuns([&](int from, int to, int coverage) { runs.add(m_left + from, m_left + to, coverage); });
    runs.flush();
}

bool CoverageRow::take(std::uint8_t* coverage) {
    if (std::all_of(m_touched.begin(), m_touched.end(), [](std::uint64_t word) { return word == 0; }))
        return false;
    std::fill_n(coverage, m_right - m_left, std::uint8_t{0});
    takeRuns([coverage](int from, int to, int value) {
        std::fill(coverage + from, coverage + to, static_cast<std::uint8_t>(value));
    });
    return true;
}

} // namespace ovw::brush
