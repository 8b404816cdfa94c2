#include "vimage/movepixels.h"

#include "ovwcmn/xcvoffscreen.h"
#include "ovwcmn/xcvoffscreenlock.h"
#include "vimage/blockparts.h"
#include "vimage/emptiness.h"
#include "vimage/withformat.h"

namespace ovw::vimage {

namespace {

/// Whether pixels without coverage stay: a move of a picture with alpha leaves what is below it alone.
template <class Format>
constexpr bool cnHasCoverage = Format::cnBits == CoverageGrey16::cnBits || Format::cnBits == Rgba32::cnBits;

bool isVisible(GreyPixel v) { return v.coverage != 0; }
bool isVisible(BgraPixel v) { return v.alpha != 0; }

template <class Format>
void moveVisible(std::uint8_t* to, std::uint8_t* from, int x, int count, typename Format::Value clear) {
    for (int i = x; i < x + count; ++i) {
        const auto value = Format::pixelAt(from, i);
        if (!isVisible(value))
            continue;
        Format::setPixel(to, i, value);
        Format::setPixel(from, i, clear);
    }
}

template <class Format>
class Mover {
public:
    Mover(XCVOffscreen& destination, XCVOffscreen& source) : m_to(destination), m_from(source) {
        source.GetClearColor(&m_clearByte);
        destination.GetClearColor(&m_clearColour);
    }

    void movePart(const XCRect& part) {
        std::uint8_t* const pixels = m_from.enter(part);
        if (!pixels)
            return moveMissing(part);
        if constexpr (cnHasCoverage<Format>)
            if (isPartClear<Format>(pixels, part, Format::cnEmptyBits))
                return;
        // The source's block changes too, and counts as edited.
        const XCVOffscreenAutoLock editLock(&m_from.image(), part.left, part.top, 1);
        std::uint8_t* const from = m_from.enter(part);
        std::uint8_t* const to = m_to.enter(part);
        const int x = part.left & cnBlockMask, count = part.Width();
        for (int y = part.top; y < part.bottom; ++y)
            moveRow(rowOf<Format>(to, y), rowOf<Format>(from, y), x, count);
    }

private:
    /// Without coverage the emptiness is moved as well, where it makes a difference.
    void moveMissing(const XCRect& part) {
        if (!cnHasCoverage<Format> && m_to.hasBlock(part))
            fillPart<Format>(m_to.enter(part), part.left, part.top, part.Width(), part.Height(),
                             Format::cnMissingValue);
    }
    void moveRow(std::uint8_t* to, std::uint8_t* from, int x, int count) const {
        if constexpr (cnHasCoverage<Format>) {
            std::uint8_t clear[4];
            Format::clearRow(clear, 0, 1, m_clearByte, m_clearColour);
            moveVisible<Format>(to, from, x, count, Format::load(clear));
        } else {
            Format::copyRow(to, x, from, x, count);
            settleRow<Format>(to, x, count);
            Format::clearRow(from, x, count, m_clearByte, m_clearColour);
        }
    }

    PlacedImage m_to;
    PlacedImage m_from;
    std::uint8_t m_clearByte = 0;    // of the source
    std::uint32_t m_clearColour = 0; // of the destination
};

} // namespace

void movePixels(XCVOffscreen& destination, const XCRect& rect, XCVOffscreen& source) {
    withFormat(destination.GetDepth(), [&]<class Format>() {
        Mover<Format> mover(destination, source);
        PlacedImage(source).forEachBlock(rect, [&](const XCRect& part) { mover.movePart(part); });
    });
}

} // namespace ovw::vimage
