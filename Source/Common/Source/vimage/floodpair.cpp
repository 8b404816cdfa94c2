#include "vimage/floodpair.h"

#include "vimage/floodrule.h"
#include "vimage/withformat.h"

#include <algorithm>
#include <limits>

namespace ovw::vimage {

// ---- Values

namespace {

template <int Bits, class Format>
void readValues(const std::uint8_t* row, int x, int count, const PixelRules& rules, std::uint32_t* values) {
    for (int i = 0; i < count; ++i)
        values[i] = readAs<Bits, Format>(Format::pixelAt(row, x + i), rules);
}

template <int Bits, class Format>
void fillValues(std::uint8_t* row, int x, int count, const PixelRules& rules, std::uint32_t value) {
    Format::fillRow(row, x, count, writtenValue<Bits, Format>(value, rules));
}

template <int Bits, class Format>
constexpr ValueAccess cnAccess{readValues<Bits, Format>, fillValues<Bits, Format>, readMissingAs<Bits, Format>()};

} // namespace

const ValueAccess& valueAccess(int bits, int depth) {
    return *withFormat(bits, [&]<class Values>() {
        return withFormat(depth, []<class Format>() { return &cnAccess<Values::cnBits, Format>; });
    });
}

// ---- One image

void FloodJudge::load(int x, int y) {
    const std::int64_t ownX = std::int64_t{x} - m_offset.x;
    const std::int64_t ownY = std::int64_t{y} - m_offset.y;
    const std::int64_t width = m_image.GetWidth();
    m_row = nullptr;
    m_left = 0;
    m_right = std::numeric_limits<std::int64_t>::max();
    if (ownY < 0 || ownY >= m_image.GetHeight())
        return;
    if (ownX < 0)
        m_right = m_offset.x;
    else if (ownX >= width)
        m_left = width + m_offset.x;
    else {
        const std::int64_t block = ownX & ~std::int64_t{cnBlockMask};
        m_left = block + m_offset.x;
        m_right = std::min(block + cnBlockSize, width) + m_offset.x;
        if (const std::uint8_t* const base = m_blocks.at(static_cast<int>(ownX), static_cast<int>(ownY)))
            m_row = base + (ownY & cnBlockMask) * m_image.GetBlockRowBytes();
    }
}

void FloodJudge::judge(int x, int count, bool* isMatch) const {
    std::array<std::uint32_t, cnBlockSize> values;
    if (m_row)
        m_access.read(m_row, static_cast<int>(x - m_left), count, m_image.GetPixelRules(), values.data());
    else
        std::fill_n(values.begin(), count, m_access.missing);
    for (int i = 0; i < count; ++i)
        isMatch[i] = isMatch[i] && m_match(values[static_cast<std::size_t>(i)]);
}

// ---- All together

FloodPairRow::FloodPairRow(XCVOffscreen& destination, int bits, std::uint32_t written, std::uint32_t filled,
                           bool zeroIsWhite)
    : m_image(destination), m_access(valueAccess(bits, destination.GetDepth())), m_written(written), m_filled(filled),
      m_zeroIsWhite(zeroIsWhite), m_blocks(destination, true) {}

void FloodPairRow::addJudge(XCVOffscreen& image, int bits, const XCPoint& offset, const FloodMatch& match) {
    m_judges[m_judges[0] ? 1 : 0].emplace(image, bits, offset, match);
    // A judge may read in the row that is written: then every pixel is written before the next one is read.
    if (&image == &m_image && offset.y == 0 && offset.x != 0)
        m_longest = 1;
}

void FloodPairRow::load(int x, int y) {
    m_row = m_blocks.at(x, y) + (y & cnBlockMask) * m_image.GetBlockRowBytes();
    std::int64_t left = x & ~cnBlockMask;
    std::int64_t right = std::min<std::int64_t>(left + cnBlockSize, m_image.GetWidth());
    for (std::optional<FloodJudge>& judge : m_judges)
        if (judge) {
            judge->load(x, y);
            left = std::max(left, judge->left());
            right = std::min(right, judge->right());
        }
    m_left = static_cast<int>(left);
    m_right = static_cast<int>(right);
}

/// m_is: which pixels belong to the region.
void FloodPairRow::judge(int x, int count) {
    std::fill_n(m_is.begin(), count, true);
    for (const std::optional<FloodJudge>& judge : m_judges)
        if (judge)
            judge->judge(x, count, m_is.data());
}

/// m_is: which of them are not filled.
void FloodPairRow::judgeInside(int x, int count) {
    judge(x, count);
    m_access.read(m_row, x & cnBlockMask, count, m_image.GetPixelRules(), m_values.data());
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
        const std::uint32_t seen = m_zeroIsWhite && m_values[i] == 0 ? cnWhite : m_values[i];
        m_is[i] = m_is[i] && seen != m_filled;
    }
}

int FloodPairRow::insideEnd(int x, int end) {
    for (int look = cnFirstLook; x < end; look *= 2) {
        const int count = std::min(look, end - x);
        judgeInside(x, count);
        const auto outside = std::find(m_is.begin(), m_is.begin() + count, false);
        x += static_cast<int>(outside - m_is.begin());
        if (outside != m_is.begin() + count)
            break;
    }
    return x;
}

int FloodPairRow::insideBegin(int x, int begin) {
    int first = x + 1;
    for (int look = cnFirstLook; first > begin; look *= 2) {
        const int count = std::min(look, first - begin);
        judgeInside(first - count, count);
        const auto inside = std::find(m_is.rend() - count, m_is.rend(), false) - (m_is.rend() - count);
        first -= static_cast<int>(inside);
        if (inside != count)
            break;
    }
    return first;
}

int FloodPairRow::nextMatch(int x, int end) {
    for (int look = cnFirstLook; x < end; look *= 2) {
        const int count = std::min(look, end - x);
        judge(x, count);
        const auto match = std::find(m_is.begin(), m_is.begin() + count, true);
        x += static_cast<int>(match - m_is.begin());
        if (match != m_is.begin() + count)
            break;
    }
    return x;
}

void FloodPairRow::write(int begin, int end) {
    m_access.fill(m_row, begin & cnBlockMask, end - begin, m_image.GetPixelRules(), m_written);
}

} // namespace ovw::vimage
