#include "vimage/operationsource.h"

#include "vimage/blockparts.h"
#include "vimage/pixelformats.h"
#include "vimage/withformat.h"

#include <algorithm>

namespace ovw::vimage {

void copySettings(XCVOffscreen& to, const XCVOffscreen& from) {
    std::uint8_t byte = 0;
    std::uint32_t colour = 0;
    from.GetClearColor(&byte);
    from.GetClearColor(&colour);
    to.SetClearColor(byte);
    to.SetClearColor(colour);
    to.SetMonoBWThreshold(from.GetMonoBWThreshold());
    to.SetMonoTransThreshold(from.GetMonoTransThreshold());
    for (int i = 0; i < cnIndexColours; ++i)
        to.SetIndexColor(i, from.GetIndexColor(i));
}

std::unique_ptr<XCVOffscreen> OperationSource::copyOf(XCVOffscreen& source, const XCRect& rect) {
    std::unique_ptr<XCVOffscreen> copy(source.CreateSameSizeOffscr());
    copySettings(*copy, source);
    const ReadingLock readLock(&source);
    const XCVOffscreenAutoLock writeLock(copy.get(), 1);
    withFormat(source.GetDepth(), [&]<class Format>() {
        forEachPart(source, rect, [&](std::uint8_t* from, const XCRect& part) {
            copy->MoveCursor(part.left, part.top);
            std::uint8_t* const to = copy->GetBaseAddress();
            for (int y = part.top; y < part.bottom; ++y)
                Format::copyRow(rowOf<Format>(to, y), part.left & cnBlockMask, rowOf<Format>(from, y),
                                part.left & cnBlockMask, part.Width());
        });
    });
    return copy;
}

XCRect clippedRect(int x, int y, std::int64_t width, std::int64_t height, const XCVOffscreen& image) {
    const auto clip = [](std::int64_t v, int size) { return static_cast<int>(std::clamp<std::int64_t>(v, 0, size)); };
    return XCRect(clip(x, image.GetWidth()), clip(y, image.GetHeight()), clip(x + width, image.GetWidth()),
                  clip(y + height, image.GetHeight()));
}

} // namespace ovw::vimage
