#include "vimage/greyscale.h"

#include "ovwcmn/xcvoffscreen.h"
#include "vimage/convertrows.h"
#include "vimage/rowkernels.h"
#include "vimage/withformat.h"

namespace ovw::vimage {

namespace {

/// The grey of a pixel itself, without its coverage.
int ownGrey(GreyPixel v) { return v.grey; }

struct GreyRule {
    const PixelRules& rules;
    bool isDirect;     ///< colours as they stand, without their coverage
    std::uint8_t flip; ///< 255: 255 - grey is made
};

/// The greys of count pixels from x of a row.
template <class Format>
void readGreys(const std::uint8_t* row, int x, int count, const GreyRule& rule, std::uint8_t* greys) {
    if constexpr (Format::cnBits == Rgb24::cnBits)
        return rowKernels().luminances24(row + x * Format::cnBytes, count, rule.flip, greys);
    if constexpr (Format::cnBits == Rgba32::cnBits)
        if (rule.isDirect)
            return rowKernels().luminances32(row + x * Format::cnBytes, count, rule.flip, greys);
    for (int i = 0; i < count; ++i) {
        const auto v = Format::pixelAt(row, x + i);
        int grey = luminance(Format::read24(v, rule.rules));
        if constexpr (requires { ownGrey(v); })
            grey = rule.isDirect ? ownGrey(v) : grey;
        greys[i] = byteOf(grey ^ rule.flip);
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
    const GreyRule rule{source.GetPixelRules(), isDirect, byteOf(reverse ? 0 : cnByteMax)};
    const bool isDensity = destination.GetDepth() == Density8::cnBits;
    convertRows(destination, source, rect, dx, dy, [&](const RowPair& rows) {
        if (isDensity)
            return read(rows.from, rows.fromX, rows.count, rule, rows.to + rows.toX);
        std::uint8_t greys[cnBlockSize];
        read(rows.from, rows.fromX, rows.count, rule, greys);
        write(rows.to, rows.toX, rows.count, destination.GetPixelRules(), greys);
    });
}

} // namespace ovw::vimage
