#include "vimage/flatten.h"

#include "ovwcmn/xcvoffscreen.h"
#include "vimage/convertrows.h"
#include "vimage/withformat.h"

#include <algorithm>

namespace ovw::vimage {

namespace {

bool isBlack(std::uint8_t mask) { return (mask & 1) != 0; }

/// Over black a channel loses what the pixel lacks in coverage.
std::uint8_t overBlack(int channel, int coverage) { return byteOf(std::max(channel - (cnByteMax - coverage), 0)); }

// A pixel made opaque by a mask value that is not 0.

BgraPixel flattened(Rgba32, BgraPixel v, std::uint8_t mask) {
    if (isBlack(mask))
        return {overBlack(v.blue, v.alpha), overBlack(v.green, v.alpha), overBlack(v.red, v.alpha), cnByteMax};
    if (v.alpha == 0)
        return {cnByteMax, cnByteMax, cnByteMax, cnByteMax};
    v.alpha = cnByteMax;
    return v;
}

GreyPixel flattened(CoverageGrey16, GreyPixel v, std::uint8_t mask) {
    if (isBlack(mask))
        return {cnByteMax, overBlack(v.grey, v.coverage)};
    return {cnByteMax, v.coverage == 0 ? std::uint8_t{cnByteMax} : v.grey};
}

std::uint8_t flattened(Bit2, std::uint8_t v, std::uint8_t mask) {
    return v >= cnWhite2 ? v : isBlack(mask) ? cnBlack2 : cnWhite2;
}

template <class Format>
constexpr bool cnIsFlattened = requires(typename Format::Value v) {
    flattened(Format(), v, std::uint8_t{});
};

template <class Format>
void flattenRow(std::uint8_t* row, int x, int count, const std::uint8_t* mask) {
    if constexpr (cnIsFlattened<Format>)
        Format::changeRow(row, x, count, [&, i = 0](typename Format::Value v) mutable {
            const std::uint8_t m = mask[i++];
            return m != 0 ? flattened(Format(), v, m) : v;
        });
}

using MaskReader = void (*)(const std::uint8_t* row, int x, int count, const PixelRules& rules, std::uint8_t* values);

/// A mask pixel's first byte.
template <class Format>
void readBytes(const std::uint8_t* row, int x, int count, const PixelRules&, std::uint8_t* values) {
    for (int i = 0; i < count; ++i)
        values[i] = row[(x + i) * Format::cnBits / 8];
}
template <class Format>
void readDensities(const std::uint8_t* row, int x, int count, const PixelRules& rules, std::uint8_t* values) {
    for (int i = 0; i < count; ++i)
        values[i] = Format::read8(Format::pixelAt(row, x + i), rules);
}

/// 2-bit images take the mask's ink.
MaskReader maskReader(const XCVOffscreen& mask, bool readsInk) {
    return withFormat(mask.GetDepth(),
                      [=]<class Format>() { return readsInk ? &readDensities<Format> : &readBytes<Format>; });
}

} // namespace

void flattenByMask(XCVOffscreen& image, XCVOffscreen& mask, const XCRect& rect) {
    const bool isFlattened = withFormat(image.GetDepth(), []<class Format>() { return cnIsFlattened<Format>; });
    if (!isFlattened || mask.GetDepth() < Density8::cnBits)
        return;
    const auto flatten = withFormat(image.GetDepth(), []<class Format>() { return &flattenRow<Format>; });
    const MaskReader read = maskReader(mask, image.GetDepth() == Bit2::cnBits);
    convertRows(image, mask, rect, 0, 0, [&](const RowPair& rows) {
        std::uint8_t values[cnBlockSize];
        read(rows.from, rows.fromX, rows.count, mask.GetPixelRules(), values);
        flatten(rows.to, rows.toX, rows.count, values);
    });
}

} // namespace ovw::vimage
