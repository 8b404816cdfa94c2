#ifndef OVW_VIMAGE_DEPTHVARIANTROWS_H
#define OVW_VIMAGE_DEPTHVARIANTROWS_H

/// @file
/// DepthVariant's row fills and row probes for the polygon rasteriser, for the source that instantiates it.

#include "vimage/depthvariant.h"
#include "vimage/polygonpaint.h"
#include "vimage/rowprobe.h"
#include "vimage/rowselection.h"

namespace ovw::vimage {

/// Walks the parts of pixels x1 to x2 of the image's cursor row that lie in the image. For each, choose(part,
/// selection) says whether any pixel is wanted; then change(pixel) replaces those that are selected, or fill(row, x,
/// count) them all where no selection applies.
template <class Format, class Change, class Fill>
void paintRow(XCVOffscreen& image, const RowSource& source, int x1, int x2, Change change, Fill fill) {
    const int y = image.GetCursorPosY();
    XCBlockGetter blocks(&image, XCRect(x1, y, endOf(x2, 1), endOf(y, 1)), 1);
    XCRect part;
    while (blocks.GetNextBlock(part)) {
        RowSelection selection;
        source.select(image, part, Format::cnBits == Bit2::cnBits, selection); // may move cursors, this image's too
        if (selection.isNone)
            continue;
        image.MoveCursor(part.left, part.top);
        if (!image.GetBaseAddress())
            continue;
        std::uint8_t* const row = rowOf<Format>(image.GetBaseAddress(), part.top);
        if (selection.isAll)
            fill(row, part.left & cnBlockMask, part.Width());
        else
            Format::changeRow(row, part.left & cnBlockMask, part.Width(), [&, i = 0](typename Format::Value v) mutable {
                return selection.is[i++] ? change(v) : v;
            });
    }
}

template <class Format>
void DepthVariant<Format>::FillLineRowForPolygon(int x1, int x2, std::uint32_t colour, int mode, XCVOffscreen* mask,
                                                 int maskOffsetX, const std::uint8_t* pattern, int patternLevel) {
    using Paint = PolygonPaint<Format>;
    if (!Paint::draws(colour, mode))
        return;
    const auto change = [&](typename Format::Value v) { return Paint::paint(v, colour, mode); };
    const auto fill = [&](std::uint8_t* row, int x, int count) {
        if constexpr (requires { Paint::runValue(colour, mode, m_rules); })
            Format::fillRow(row, x, count, Paint::runValue(colour, mode, m_rules));
        else if (mode == PolygonReplace)
            Format::fillRow(row, x, count, Paint::paint(typename Format::Value{}, colour, mode));
        else
            Format::changeRow(row, x, count, change);
    };
    paintRow<Format>(*this, RowSource{mask, maskOffsetX, pattern, patternLevel}, x1, x2, change, fill);
}

template <class Format>
void DepthVariant<Format>::FillLineRowForPolygonClipBlack(int x1, int x2, std::uint32_t colour, int mode,
                                                          XCVOffscreen* mask, int maskOffsetX,
                                                          const std::uint8_t* pattern, int patternLevel) {
    if constexpr (Format::cnBits == Bit2::cnBits) {
        if (Bit2::rowValue(colour, m_rules) != cnWhite2 || mode == PolygonRaise)
            return DepthVariant::FillLineRowForPolygon(x1, x2, colour, mode, mask, maskOffsetX, pattern, patternLevel);
        if (mode != PolygonReplace && mode != PolygonBlend)
            return;
        const auto change = [&](Bit2::Value v) { return Bit2::read2(v, m_rules) == cnTransparent2 ? cnWhite2 : v; };
        const auto fill = [&](std::uint8_t* row, int x, int count) { Bit2::changeRow(row, x, count, change); };
        paintRow<Format>(*this, RowSource{mask, maskOffsetX, pattern, patternLevel}, x1, x2, change, fill);
    }
}

template <class Format>
int DepthVariant<Format>::SearchLineRowForPolygon(int x1, int x2) {
    constexpr int cnMissing = Format::cnBits == Rgb24::cnBits ? cnByteMax : 0; // missing pixels read white
    if (x1 > x2)
        return 0;
    int found = x1 < 0 || x2 >= m_width ? cnMissing : 0;
    const int y = m_cursor.y;
    XCBlockGetter blocks(this, XCRect(x1, y, endOf(x2, 1), endOf(y, 1)), 1);
    if (!blocks.IsExist())
        return cnMissing;
    XCRect part;
    while (found < cnByteMax && blocks.GetNextBlock(part)) {
        MoveCursor(part.left, part.top);
        if (m_cursor.base)
            Format::visitRow(rowOf<Format>(m_cursor.base, y), part.left & cnBlockMask, part.Width(),
                             [&](typename Format::Value v) { found = std::max(found, searchedValue(Format(), v)); });
        else
            found = std::max(found, cnMissing);
    }
    return found;
}

template <class Format>
int DepthVariant<Format>::CheckLinePixel(int y, int& x1, int& x2) {
    if constexpr (Format::cnBits == Bit1::cnBits)
        return probeBits(*this, y, x1, x2);
    else if constexpr (Format::cnBits == Density8::cnBits)
        return probeDensities(*this, y, x1, x2);
    else
        return -1;
}

} // namespace ovw::vimage

#endif // OVW_VIMAGE_DEPTHVARIANTROWS_H
