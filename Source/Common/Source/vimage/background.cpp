#include "vimage/background.h"

#include "ovwcmn/xcvoffscreen.h"
#include "vimage/blockparts.h"
#include "vimage/withformat.h"

#include <algorithm>

namespace ovw::vimage {

namespace {

/// Half of the channel, raised halfway to white.
int paled(int channel) { return (channel >> 1) + cnByteMax / 2; }

// A partly transparent pixel in front of a colour.

BgraPixel inFront(BgraPixel v, std::uint32_t colour) {
    const auto over = [&](int channel, int below) {
        return byteOf((channel * v.alpha + below * (cnByteMax - v.alpha)) / cnByteMax);
    };
    return {over(v.blue, blueOf(colour)), over(v.green, greenOf(colour)), over(v.red, redOf(colour)), cnByteMax};
}

/// The colour's darkness is taken off, by its complement's luminance.
GreyPixel inFront(GreyPixel v, std::uint32_t colour) {
    constexpr int cnWhole = 256;
    const int taken = luminance(colour ^ cnRgbMask) * (cnWhole - v.coverage) >> 8;
    return {cnByteMax, byteOf(std::max(v.grey - taken, 0))};
}

int coverageOf(BgraPixel v) { return v.alpha; }
int coverageOf(GreyPixel v) { return v.coverage; }

template <class Format>
class BoardPainter {
    using Value = typename Format::Value;

public:
    BoardPainter(const Checkerboard& board, const PixelRules& rules, bool isBehind)
        : m_board(board), m_isBehind(isBehind), m_solid{Format::write24(board.colours[0], rules),
                                                        Format::write24(board.colours[1], rules)} {}

    void paint(std::uint8_t* base, const XCRect& part) const {
        for (int y = part.top; y < part.bottom; ++y)
            for (int x = part.left; x < part.right;) {
                const int end = std::min((x | (m_board.side - 1)) + 1, part.right); // of the square
                const int square = ((x ^ y) & m_board.side) != 0;
                paintRun(rowOf<Format>(base, y), x & cnBlockMask, end - x, square);
                x = end;
            }
    }

private:
    void paintRun(std::uint8_t* row, int x, int count, int square) const {
        if (!m_isBehind)
            return Format::fillRow(row, x, count, m_solid[square]);
        Format::changeRow(row, x, count, [&](Value v) {
            const int coverage = coverageOf(v);
            return coverage == cnByteMax ? v : coverage == 0 ? m_solid[square] : inFront(v, m_board.colours[square]);
        });
    }

    const Checkerboard& m_board;
    const bool m_isBehind;
    const Value m_solid[2];
};

} // namespace

Checkerboard checkerboard(std::uint32_t colour1, std::uint32_t colour2, int cell) {
    constexpr int cnSmallSide = 4;
    constexpr int cnLargeSide = 8;
    const std::uint32_t pale = packColour(0, paled(redOf(colour2)), paled(greenOf(colour2)), paled(blueOf(colour2)));
    return {{colour1 & cnRgbMask, colour1 == colour2 ? colour1 & cnRgbMask : pale},
            cell == cnSmallSide ? cnSmallSide : cnLargeSide};
}

void renderBoard(XCVOffscreen& image, const XCRect& rect, const Checkerboard& board, bool allBlocks, bool isBehind) {
    withFormat(image.GetDepth(), [&]<class Format>() {
        const PlacedImage placed(image);
        placed.forEachBlock(rect, [&](const XCRect& part) {
            std::uint8_t* const base = allBlocks || placed.hasBlock(part) ? placed.enter(part) : nullptr;
            if constexpr (requires(typename Format::Value v) { coverageOf(v); })
                if (base)
                    BoardPainter<Format>(board, image.GetPixelRules(), isBehind).paint(base, part);
        });
    });
}

} // namespace ovw::vimage
