// The members of the flood fill.

#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcvoffscreen.h"
#include "vimage/floodfill.h"

#include <algorithm>
#include <limits>

using namespace ovw::vimage;

namespace {

constexpr int cnCancelled = 0x20010004;

int fill(int bits, const FloodRequest& request, XCRect& changed, int* count) {
    const FloodResult result = floodFill(bits, request);
    if (!result.ran)
        return 0;
    changed = result.changed;
    if (count)
        *count = static_cast<int>(std::min<std::int64_t>(result.count, std::numeric_limits<std::int32_t>::max()));
    if (result.wasCancelled)
        xcThrowError(cnCancelled);
    return 1;
}

} // namespace

int XCVOffscreenEdits::FloodFill(XCRect& changed, const XCPoint& seed, std::uint32_t colour, XCVOffscreen* source,
                                 XCVOffscreen* second, const XCPoint& offset, const XCRect& clip, int margin,
                                 int* count, int abortable) {
    if (!source) {
        source = second;
        second = nullptr;
    }
    if (!source)
        return 0;
    const int depth = source->GetDepth();
    FloodRequest request{&image(), source, nullptr, seed, colour, offset, &clip, {}, abortable};
    if (depth == 1 || depth == 24)
        request.second = second;
    if (depth == 24)
        request.clip = nullptr;
    if (depth == 24 || (depth >= 8 && margin != 0))
        request.margin = margin;
    return fill(depth, request, changed, count);
}

int XCVOffscreenEdits::FloodFillFrom1Bit(XCVOffscreen* dest, XCRect& changed, const XCPoint& seed, std::uint32_t colour,
                                         XCVOffscreen* source, XCVOffscreen* second, const XCPoint& offset,
                                         const XCRect& clip, int* count, int abortable) {
    return fill(1, {dest, source, second, seed, colour, offset, &clip, {}, abortable}, changed, count);
}

int XCVOffscreenEdits::FloodFillFrom2Bit(XCVOffscreen* dest, XCRect& changed, const XCPoint& seed, std::uint32_t colour,
                                         XCVOffscreen* source, const XCPoint& offset, const XCRect& clip, int* count,
                                         int abortable) {
    return fill(2, {dest, source, nullptr, seed, colour, offset, &clip, {}, abortable}, changed, count);
}

int XCVOffscreenEdits::FloodFillFrom8Bit(XCVOffscreen* dest, XCRect& changed, const XCPoint& seed, std::uint32_t colour,
                                         XCVOffscreen* source, const XCPoint& offset, const XCRect& clip, int margin,
                                         int* count, int abortable) {
    return fill(8, {dest, source, nullptr, seed, colour, offset, &clip, margin, abortable}, changed, count);
}

int XCVOffscreenEdits::FloodFillFrom8BitNoMargin(XCVOffscreen* dest, XCRect& changed, const XCPoint& seed,
                                                 std::uint32_t colour, XCVOffscreen* source, const XCPoint& offset,
                                                 const XCRect& clip, int* count, int abortable) {
    return fill(8, {dest, source, nullptr, seed, colour, offset, &clip, {}, abortable}, changed, count);
}

int XCVOffscreenEdits::FloodFillFrom16Bit(XCVOffscreen* dest, XCRect& changed, const XCPoint& seed,
                                          std::uint32_t colour, XCVOffscreen* source, const XCPoint& offset,
                                          const XCRect& clip, int margin, int* count, int abortable) {
    return fill(16, {dest, source, nullptr, seed, colour, offset, &clip, margin, abortable}, changed, count);
}

int XCVOffscreenEdits::FloodFillFrom16BitNoMargin(XCVOffscreen* dest, XCRect& changed, const XCPoint& seed,
                                                  std::uint32_t colour, XCVOffscreen* source, const XCPoint& offset,
                                                  const XCRect& clip, int* count, int abortable) {
    return fill(16, {dest, source, nullptr, seed, colour, offset, &clip, {}, abortable}, changed, count);
}

int XCVOffscreenEdits::FloodFillFrom32Bit(XCVOffscreen* dest, XCRect& changed, const XCPoint& seed,
                                          std::uint32_t colour, XCVOffscreen* source, const XCPoint& offset,
                                          const XCRect& clip, int margin, int* count, int abortable) {
    return fill(32, {dest, source, nullptr, seed, colour, offset, &clip, margin, abortable}, changed, count);
}

int XCVOffscreenEdits::FloodFillFrom32BitNoMargin(XCVOffscreen* dest, XCRect& changed, const XCPoint& seed,
                                                  std::uint32_t colour, XCVOffscreen* source, const XCPoint& offset,
                                                  const XCRect& clip, int* count, int abortable) {
    return fill(32, {dest, source, nullptr, seed, colour, offset, &clip, {}, abortable}, changed, count);
}

int XCVOffscreenEdits::FloodFillFromGeneric(XCVOffscreen* dest, XCRect& changed, const XCPoint& seed,
                                            std::uint32_t colour, XCVOffscreen* source, XCVOffscreen* second,
                                            const XCPoint& offset, int margin, int* count, int abortable) {
    return fill(24, {dest, source, second, seed, colour, offset, nullptr, margin, abortable}, changed, count);
}
