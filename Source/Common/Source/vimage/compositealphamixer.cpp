// Compositing of a colour through an alpha image: where tiled images meet the mixing code.

#include "ovwcmn/xcblockgetter.h"
#include "ovwcmn/xccolor.h"
#include "ovwcmn/xcvoffpixelmixer.h"
#include "ovwcmn/xcvoffscreen.h"
#include "vimage/compositealpha.h"
#include "vimage/numbers.h"
#include "vimage/pixelcolour.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace ovw::vimage {

namespace {

/// One row of a part that lies in one block.
class AlphaRow {
public:
    /// 0 when no pixel of the row has ink.
    int readWeights(XCVOffscreen& alpha, const XCRect& part, int y) {
        const std::uint8_t* const inks = alpha.MoveCursor(part.left, y);
        if (!inks)
            return 0;
        m_left = part.left;
        m_first = 0;
        m_end = part.Width();
        std::memcpy(m_inks.data(), inks, static_cast<std::size_t>(m_end));
        const auto hasInk = [&](int i) { return m_inks[static_cast<std::size_t>(i)] != 0; };
        while (m_first < m_end && !hasInk(m_first))
            ++m_first;
        while (m_first < m_end && !hasInk(m_end - 1))
            --m_end;
        return m_end - m_first;
    }

    /// The source pixels between the first and the last one with ink.
    void readBases(XCVOffscreen& source, int y) {
        source.MoveCursor(m_left + m_first, y);
        for (int i = m_first; i < m_end; ++i, source.NextCursorXFastest())
            m_bases[static_cast<std::size_t>(i)] = source.Get32BitColor();
    }
    void clearBases() { m_bases.fill(cnWhite); }

    /// dx: from the columns that were read to those of the destination.
    void mix(XCVOffscreen& destination, std::int64_t dx, int y, XCVOffPixelMixer& mixer,
             const XCComplexColor& colour) const {
        destination.MoveCursor(static_cast<int>(m_left + m_first + dx), y);
        for (int i = m_first; i < m_end; ++i) {
            if (i > m_first)
                destination.NextCursorX();
            const auto at = static_cast<std::size_t>(i);
            if (m_inks[at])
                mixer.Do(XCComplexColor(m_bases[at]), colour, weightOf(mixer, m_inks[at]));
        }
    }

private:
    static int weightOf(const XCVOffPixelMixer& mixer, int ink) {
        return static_cast<int>(std::int64_t{mixer.GetAlpha()} * ink / cnByteMax);
    }

    int m_left = 0;
    int m_first = 0; // from m_left
    int m_end = 0;
    std::array<std::uint8_t, XCVOffscreen::cnBlockSize> m_inks;
    std::array<std::uint32_t, XCVOffscreen::cnBlockSize> m_bases;
};

/// start to start + length on one axis, cut to an image.
int begin(std::int64_t start, int size) { return static_cast<int>(std::clamp<std::int64_t>(start, 0, size)); }
int end(std::int64_t start, std::int64_t length, int size) { return begin(start + length, size); }

} // namespace

AlphaCopy AlphaCopy::clippedTo(const XCVOffscreen& destination) const {
    AlphaCopy result = *this;
    const auto clip = [](std::int64_t& to, std::int64_t& from, std::int64_t& length, int size) {
        const std::int64_t cut = std::max<std::int64_t>(-to, 0);
        to += cut;
        from += cut;
        length = std::min(length - cut, size - to);
    };
    clip(result.dx, result.sx, result.width, destination.GetWidth());
    clip(result.dy, result.sy, result.height, destination.GetHeight());
    return result;
}

void compositeAlpha(XCVOffscreen& destination, const AlphaCopy& copy, XCVOffscreen& source, XCVOffscreen& alpha,
                    XCVOffPixelMixer& mixer) {
    XCComplexColor colour = mixer.GetColor();
    colour.Convert(0);
    const XCRect read(begin(copy.sx, alpha.GetWidth()), begin(copy.sy, alpha.GetHeight()),
                      end(copy.sx, copy.width, alpha.GetWidth()), end(copy.sy, copy.height, alpha.GetHeight()));
    AlphaRow row;
    XCBlockGetter blocks(&alpha, read, 1);
    XCRect part;
    while (blocks.GetNextBlock(part)) {
        if (!alpha.GetBlockExist(part.left, part.top))
            continue;
        const bool hasSource = source.GetBlockExist(part.left, part.top) != 0;
        if (!hasSource)
            row.clearBases();
        for (int y = part.top; y < part.bottom; ++y) {
            if (!row.readWeights(alpha, part, y))
                continue;
            if (hasSource)
                row.readBases(source, y);
            row.mix(destination, copy.dx - copy.sx, static_cast<int>(y + copy.dy - copy.sy), mixer, colour);
        }
    }
}

} // namespace ovw::vimage
