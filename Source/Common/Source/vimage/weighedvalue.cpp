// Means of pixels weighted by the area that they cover.

#include "ovwcmn/xcvoffscreen.h"
#include "vimage/boxaverage.h"
#include "vimage/coveredspan.h"
#include "vimage/pixelrows.h"
#include "vimage/rowkernels.h"
#include "vimage/withformat.h"

#include <algorithm>
#include <cmath>

namespace ovw::vimage {

namespace {

/// As vxDouble2Int, half away from zero, for what is small; 0 for what is negative or no number.
int rounded(double value) {
    if (!(value > 0))
        return 0;
    const int whole = static_cast<int>(value);
    return whole + (value - whole >= 0.5);
}

int roundedByte(double value) { return std::min(rounded(std::min(value, 256.0)), cnByteMax); }

std::uint32_t densityValue(double mean) {
    const int density = rounded(std::min(mean, 256.0));
    return density < 1 ? cnTransparentWhite : packColour(std::min(density, cnByteMax), 0, 0, 0);
}

std::uint32_t meanOf(Bit1, const PixelSums& sums, double scale) { return densityValue(sums.alpha * scale * cnByteMax); }
std::uint32_t meanOf(Bit2, const PixelSums& sums, double scale) {
    const int ink = roundedByte(sums.red * scale * cnByteMax);
    return packGrey(roundedByte(sums.alpha * scale * cnByteMax), cnByteMax - ink);
}
std::uint32_t meanOf(Density8, const PixelSums& sums, double scale) { return densityValue(sums.alpha * scale); }
std::uint32_t meanOf(Rgba32, const PixelSums& sums, double scale) {
    if (sums.weight <= 0)
        return cnTransparentWhite;
    return packColour(roundedByte(sums.alpha * scale), roundedByte(sums.red / sums.weight),
                      roundedByte(sums.green / sums.weight), roundedByte(sums.blue / sums.weight));
}
std::uint32_t meanOf(CoverageGrey16, const PixelSums& sums, double scale) { return meanOf(Rgba32(), sums, scale); }
/// Without alpha: what lies outside the image darkens.
std::uint32_t meanOf(Rgb24, const PixelSums& sums, double scale) {
    return packColour(cnByteMax, roundedByte(sums.red * scale), roundedByte(sums.green * scale),
                      roundedByte(sums.blue * scale));
}

void addWeighed(PixelSums& sums, const PixelSums& other, double weight) {
    sums.blue += weight * other.blue;
    sums.green += weight * other.green;
    sums.red += weight * other.red;
    sums.alpha += weight * other.alpha;
    sums.weight += weight * other.weight;
}

/// What a pixel without a block weighs in as: nothing, but where images have no alpha it shows white.
BgraPixel missingPixel(int depth) {
    return depth == Rgb24::cnBits ? BgraPixel{cnByteMax, cnByteMax, cnByteMax, cnByteMax} : BgraPixel{};
}

/// One column of pixels, in the order in which whole images are added up.
PixelSums sumOfColumn(XCVOffscreen& image, const CoveredSpan& rows, int x) {
    const ColourReader read = pixelRows(image.GetDepth()).readWeighed;
    const std::int64_t end = std::min<std::int64_t>(rows.last + 1, image.GetHeight());
    PixelSums sums;
    for (std::int64_t y = std::max<std::int64_t>(rows.first, 0); y < end; ++y) {
        image.MoveCursor(x, static_cast<int>(y));
        BgraPixel pixel = missingPixel(image.GetDepth());
        if (image.GetBaseAddress())
            read(image.GetBaseAddress() + (y & cnBlockMask) * image.GetBlockRowBytes(), x & cnBlockMask, 1,
                 image.GetPixelRules(), &pixel);
        if (pixel.alpha)
            addWeighed(sums, {double(pixel.blue), double(pixel.green), double(pixel.red), double(pixel.alpha), 1.0},
                       rows.weight(y));
    }
    return sums;
}

} // namespace

_XCRESOLUTIONTABLE resolutionEntry(double from, double to) {
    _XCRESOLUTIONTABLE entry{truncateToInt(from), truncateToInt(to), 0, to - from, 0.0};
    if (entry.start == entry.end)
        return entry;
    entry.firstWeight = 1 - (from - entry.start);
    entry.lastWeight = to - entry.end;
    if (entry.lastWeight == 0) {
        --entry.end;
        entry.lastWeight = entry.end == entry.start ? 0.0 : 1.0;
    }
    entry.count = entry.end - entry.start;
    return entry;
}

std::uint32_t weighedValue(int depth, const PixelSums& sums, double scale) {
    return withFormat(depth, [&]<class Format>() { return meanOf(Format(), sums, scale); });
}

std::uint32_t weighedPixel(XCVOffscreen& image, const _XCRESOLUTIONTABLE& columns, const _XCRESOLUTIONTABLE& rows,
                           int x, int y, double scale) {
    const CoveredSpan across = CoveredSpan::of(columns, x), down = CoveredSpan::of(rows, y);
    const std::int64_t end = std::min<std::int64_t>(across.last + 1, image.GetWidth());
    PixelSums sums;
    for (std::int64_t column = std::max<std::int64_t>(across.first, 0); column < end; ++column)
        addWeighed(sums, sumOfColumn(image, down, static_cast<int>(column)), across.weight(column));
    return weighedValue(image.GetDepth(), sums, scale);
}

} // namespace ovw::vimage
