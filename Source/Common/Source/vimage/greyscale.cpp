#include "vimage/greyscale.h"

#include "ovwcmn/xcvoffscreen.h"
#include "vimage/convertrows.h"
#include "vimage/rowkernels.h"
#include "vimage/withformat.h"

namespace ovw::vimage {

namespace {

/// The grey of a pixel itself, without its coverage.
int ownGrey(GreyPixel v) { return v.grey; }

/// The greys of count pixels from x of a row.
template <class Format>
void readGreys(const std::uint8_t* row, int x, int count, const PixelRules& rules, bool isDirect, std::uint8_t* greys) {
    if constexpr (Format::cnBits == Rgb24::cnBits)
        return rowKernels().luminances24(row + x * Format::cnBytes, count, greys);
    if constexpr (Format::cnBits == Rgba32::cnBits)
        if (isDirect)
            return rowKernels().luminances32(row + x * Format::cnBytes, count, greys);
    for (int i = 0; i < count; ++i) {
        const auto v = Format::pixelAt(row, x + i);
        int grey = luminance(Format::read24(v, rules));
        if constexpr (requires { ownGrey(v); })
            grey = isDirect ? ownGrey(v) : grey;
        greys[i] = byteOf(grey);
    }
}

template <class Format>
void writeDensities(std::uint8_t* row, int x, int count, const PixelRules& rules, const std::uint8_t* densities) {
    for (int i = 0; i < count; ++i)
        Format::setPixel(row, x + i, Format::write8(densities[i], rules));
}

} // namespace

void convertToGrey(XCVOffscreen& destination, XCVOffscreen& source, const XCRect& rect, std::int64_t dx,
                   std::int64_t dy, bool isDirect, bool reverse) {
    const auto read = withFormat(source.GetDepth(), []<class Format>() { return &readGreys<Format>; });
    const auto write = withFormat(destination.GetDepth(), []<class Format>() { return &writeDensities<Format>; });
    const std::uint8_t flip = reverse ? 0 : cnByteMax;
    convertRows(destination, source, rect, dx, dy, [&](const RowPair& rows) {
        std::uint8_t greys[cnBlockSize];
        read(rows.from, rows.fromX, rows.count, source.GetPixelRules(), isDirect, greys);
        for (int i = 0; i < rows.count; ++i)
            greys[i] ^= flip; // 255 - grey
        write(rows.to, rows.toX, rows.count, destination.GetPixelRules(), greys);
    });
}

} // namespace ovw::vimage
