// The members that convert pixels to grey and to black and white, and lay backgrounds: they check, lock and hand on.

#include "ovwcmn/xcvoffscreen.h"
#include "ovwcmn/xcvoffscreenlock.h"
#include "vimage/background.h"
#include "vimage/colourcount.h"
#include "vimage/flatten.h"
#include "vimage/greyscale.h"
#include "vimage/operationsource.h"
#include "vimage/pixelformats.h"

using namespace ovw::vimage;

namespace {

constexpr int cnEdit = 1;

} // namespace

void XCVOffscreenEdits::RenderBackground(const XCRect& rect, std::uint32_t colour1, std::uint32_t colour2,
                                         int allBlocks, int cell) {
    const XCVOffscreenAutoLock lock(&image(), cnEdit);
    renderBoard(image(), rect, checkerboard(colour1, colour2, cell), allBlocks != 0, true);
}

void XCVOffscreenEdits::RenderBackgroundFill(const XCRect& rect, std::uint32_t colour1, std::uint32_t colour2,
                                             int allBlocks, int cell) {
    const XCVOffscreenAutoLock lock(&image(), cnEdit);
    renderBoard(image(), rect, checkerboard(colour1, colour2, cell), allBlocks != 0, false);
}

void XCVOffscreenEdits::ReverseImage(XCVOffscreen* mask, int x, int y, int w, int h) {
    if (!mask || w <= 0 || h <= 0)
        return;
    const XCRect rect = clippedRect(x, y, w, h, *mask);
    const OperationSource source(*mask, image(), rect);
    const XCVOffscreenAutoLock lock(&image(), cnEdit);
    flattenByMask(image(), source.image(), rect);
}

void XCVOffscreenEdits::Monochromic(int dx, int dy, int w, int h, XCVOffscreen* src, int sx, int sy, int reverse,
                                    int mode) {
    if (!src || w <= 0 || h <= 0)
        return;
    const XCRect rect = clippedRect(sx, sy, w, h, *src);
    const OperationSource source(*src, image(), rect);
    const XCVOffscreenAutoLock lock(&image(), cnEdit);
    const bool hasCoverage = src->GetDepth() == CoverageGrey16::cnBits || src->GetDepth() == Rgba32::cnBits;
    convertToMono(image(), source.image(), rect, std::int64_t{dx} - sx, std::int64_t{dy} - sy, mode == 0 && hasCoverage,
                  reverse != 0);
}

void XCVOffscreenEdits::Grayish(int dx, int dy, int w, int h, XCVOffscreen* src, int sx, int sy, int reverse) {
    if (GetDepth() == CoverageGrey16::cnBits) {
        Copy(dx, dy, w, h, src, sx, sy, reverse);
        return;
    }
    if (!src || w <= 0 || h <= 0)
        return;
    const XCRect rect = clippedRect(sx, sy, w, h, *src);
    const OperationSource source(*src, image(), rect);
    const XCVOffscreenAutoLock lock(&image(), cnEdit);
    const bool isDirect =
        dx == sx && dy == sy && GetDepth() == Density8::cnBits && src->GetDepth() >= CoverageGrey16::cnBits;
    convertToGrey(image(), source.image(), rect, std::int64_t{dx} - sx, std::int64_t{dy} - sy, isDirect, reverse != 0);
}

int XCVOffscreenEdits::GetUseColorCount() {
    const ReadingLock lock(&image());
    return countColours(image());
}
