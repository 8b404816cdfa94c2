#include "foundation/nomemory.h"
#include "offscreen/pixelrows.h"
#include "ovwcmn/xcoffscreen.h"
#include "ovwcmn/xcvoffscreensettings.h"

#include <algorithm>
#include <memory>
#include <vector>

using namespace ovw::offscreen;
using ovw::foundation::orNoMemory;
using ovw::foundation::vectorOf;

namespace {

/// A new mask of the locked image's size: ink where isWanted(24-bit value), without what the allowed mask (may be null)
/// leaves paper.
template <class IsWanted>
std::unique_ptr<XCOffscreen> makeMask(const PixelView& view, XCOffscreen* allowed, IsWanted isWanted) {
    auto result = orNoMemory([] { return std::make_unique<XCOffscreen>(); });
    result->Create(view.width, view.height, Ink1::cnBits, cnOpaqueWhite, 0);
    const ImageLock resultLock(result.get());
    const ImageLock allowedLock(allowed);
    const PixelView mask(*result);
    const PixelView limit = allowedLock ? PixelView(*allowed) : PixelView();
    const int width = allowed ? std::min(view.width, limit.width) : view.width;
    const int height = allowed ? std::min(view.height, limit.height) : view.height;
    std::vector<std::uint32_t> colours = vectorOf<std::uint32_t>(view.width);
    for (int y = 0; y < height; ++y) {
        readRow24(colours.data(), view.depth, view.row(y), 0, width);
        for (int x = 0; x < width; ++x)
            if (isWanted(colours[static_cast<std::size_t>(x)]))
                storePixel<Ink1>(mask.row(y), x, 1);
        if (limit.bits)
            withFormat(limit.depth, [&]<class Format>() {
                for (int x = 0; x < width; ++x)
                    if (!Format::read1(loadPixel<Format>(limit.row(y), x)))
                        storePixel<Ink1>(mask.row(y), x, 0);
            });
    }
    return result;
}

} // namespace

XCOffscreen* XCOffscreen::ExtractionColor(const tagVXRGBCOLOR16* colors, int count) {
    return ExtractionColorMaskEx(colors, count, nullptr, 0);
}

XCOffscreen* XCOffscreen::ExtractionColorMask(const tagVXRGBCOLOR16* colors, int count, XCOffscreen* mask) {
    return ExtractionColorMaskEx(colors, count, mask, 0);
}

XCOffscreen* XCOffscreen::ExtractionColorMaskEx(const tagVXRGBCOLOR16* colors, int count, XCOffscreen* mask,
                                                int margin) {
    const ImageLock lock(this);
    if (!lock)
        return nullptr;
    std::vector<std::uint32_t> wanted = vectorOf<std::uint32_t>(colors && count > 0 ? count : 0);
    for (std::size_t i = 0; i < wanted.size(); ++i)
        wanted[i] = XCRgbColor(colors[i]) & cnRgbMask;
    return makeMask(PixelView(*this), mask,
                    [&wanted, margin](std::uint32_t colour) {
                        return std::any_of(wanted.begin(), wanted.end(), [=](std::uint32_t w) {
                            return XCVOffscreenSettings::IsEqualRGB(w, colour, margin);
                        });
                    })
        .release();
}

XCOffscreen* XCOffscreen::CreateMask() {
    const ImageLock lock(this);
    if (!lock)
        return nullptr;
    return makeMask(PixelView(*this), nullptr, [](std::uint32_t colour) { return colour != cnWhite; }).release();
}
