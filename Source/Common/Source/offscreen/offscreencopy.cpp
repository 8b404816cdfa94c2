#include "foundation/nomemory.h"
#include "offscreen/copyrect.h"
#include "offscreen/pixelrows.h"
#include "offscreen/sourceimage.h"
#include "ovwcmn/xcoffscreen.h"
#include "ovwcmn/xcvoffscreensettings.h"
#include "vimage/largecopy.h"

#include <algorithm>
#include <cstring>
#include <vector>

using namespace ovw::offscreen;
using ovw::foundation::vectorOf;

namespace {

constexpr int cnGroup1 = 32; // pixels that a fast copy moves together
constexpr int cnGroup8 = 4;
constexpr int cnByteGroup = 8;

/// Copies all pixels of a rectangle between two images of one depth.
template <class Format>
void copyAlike(const PixelView& view, const PixelView& source, const CopyRect& rect) {
    const auto x = static_cast<int>(rect.x), sx = static_cast<int>(rect.sx), count = static_cast<int>(rect.w);
    const auto y = static_cast<int>(rect.y), sy = static_cast<int>(rect.sy), height = static_cast<int>(rect.h);
    const ovw::vimage::LargeCopy copy(rect.w * rect.h * Format::cnBits / 8);
    if (count == view.width && count == source.width)
        return copy.copy(view.row(y), source.row(sy),
                         static_cast<std::size_t>(height) * static_cast<std::size_t>(view.rowBytes));
    for (int i = 0; i < height; ++i)
        if constexpr (cnHasBytes<Format>)
            copy.copy(view.row(y + i) + static_cast<std::ptrdiff_t>(x) * Format::cnBytes,
                      source.row(sy + i) + static_cast<std::ptrdiff_t>(sx) * Format::cnBytes,
                      static_cast<std::size_t>(count) * Format::cnBytes);
        else
            Format::copyRow(view.row(y + i), x, source.row(sy + i), sx, count);
}

/// Copies all pixels of a rectangle that is clipped. Rows are taken in an order that serves copies within an image.
void copyAll(const PixelView& view, const PixelView& source, const CopyRect& rect) {
    const bool isWithin = view.bits == source.bits;
    if (view.depth == source.depth && !isWithin)
        return withFormat(view.depth, [&]<class Format>() { copyAlike<Format>(view, source, rect); });
    std::vector<std::uint8_t> overlapping; // packed rows cannot be shifted in place
    if (isWithin && view.depth == Ink1::cnBits)
        overlapping = vectorOf<std::uint8_t>(source.rowBytes);
    const bool upwards = rect.y > rect.sy;
    for (std::int64_t i = 0; i < rect.h; ++i) {
        const std::int64_t j = upwards ? rect.h - 1 - i : i;
        const std::uint8_t* from = source.row(static_cast<int>(rect.sy + j));
        if (!overlapping.empty()) {
            std::memcpy(overlapping.data(), from, overlapping.size());
            from = overlapping.data();
        }
        convertRow(view.depth, view.row(static_cast<int>(rect.y + j)), static_cast<int>(rect.x), source.depth, from,
                   static_cast<int>(rect.sx), static_cast<int>(rect.w));
    }
}

/// Copies those pixels of a clipped rectangle that select(row of the rectangle, selection) marks by 1, run by run:
/// copyRun(x, sx, count, y, sy). 1 when there was one.
template <class Select, class CopyRun>
int copySelected(const CopyRect& rect, Select select, CopyRun copyRun) {
    std::vector<std::uint8_t> selection = vectorOf<std::uint8_t>(rect.w);
    int copied = 0;
    for (std::int64_t j = 0; j < rect.h; ++j) {
        select(j, selection.data());
        const auto begin = selection.begin();
        for (auto at = begin; (at = std::find(at, selection.end(), 1)) != selection.end();) {
            const auto end = std::find(at, selection.end(), 0);
            copyRun(static_cast<int>(rect.x + (at - begin)), static_cast<int>(rect.sx + (at - begin)),
                    static_cast<int>(end - at), static_cast<int>(rect.y + j), static_cast<int>(rect.sy + j));
            copied = 1;
            at = end;
        }
    }
    return copied;
}

template <class Select>
int copySelected(const PixelView& view, const PixelView& source, const CopyRect& rect, Select select) {
    return copySelected(rect, select, [&](int x, int sx, int count, int y, int sy) {
        convertRow(view.depth, view.row(y), x, source.depth, source.row(sy), sx, count);
    });
}

/// Copies the pixels whose 24-bit value `isWanted`.
template <class IsWanted>
int copyByColour(const PixelView& view, const PixelView& source, const CopyRect& rect, IsWanted isWanted) {
    std::vector<std::uint32_t> colours = vectorOf<std::uint32_t>(std::max<std::int64_t>(rect.w, 0));
    return copySelected(view, source, rect, [&](std::int64_t j, std::uint8_t* selection) {
        readRow24(colours.data(), source.depth, source.row(static_cast<int>(rect.sy + j)), static_cast<int>(rect.sx),
                  static_cast<int>(rect.w));
        for (const std::uint32_t colour : colours)
            *selection++ = isWanted(colour);
    });
}

/// A pixel that has gone `weight` (0 to 255) of the way from one to the other.
template <class Format>
typename Format::Value mixed(typename Format::Value from, typename Format::Value to, int weight) {
    if constexpr (!cnHasBytes<Format>) {
        return weight >= cnInkDensity ? to : from;
    } else {
        std::uint8_t a[sizeof from], b[sizeof to];
        std::memcpy(a, &from, sizeof from);
        std::memcpy(b, &to, sizeof to);
        for (std::size_t i = 0; i < sizeof from; ++i)
            a[i] = byteOf((a[i] * (cnByteMax - weight) + b[i] * weight + cnByteMax / 2) / cnByteMax);
        std::memcpy(&from, a, sizeof from);
        return from;
    }
}

/// Mixes pixels of one row into another of the same depth; the first pixel of `from` is its pixel 0.
void mixRow(int depth, std::uint8_t* to, int x, const std::uint8_t* from, int count, int weight) {
    withFormat(depth, [&]<class Format>() {
        for (int i = 0; i < count; ++i)
            storePixel<Format>(to, x + i,
                               mixed<Format>(loadPixel<Format>(to, x + i), loadPixel<Format>(from, i), weight));
    });
}

} // namespace

int XCOffscreen::Copy(int x, int y, int w, int h, XCOffscreen* src, int sx, int sy) {
    if (!m_info.bits)
        return 0;
    const ImageLock lock(src);
    if (!lock)
        return 0;
    const PixelView view(*this);
    const PixelView source(*src);
    const CopyRect rect = CopyRect{x, y, w, h, sx, sy}.clipped(view.width, view.height, source.width, source.height);
    if (rect.isEmpty())
        return 0;
    copyAll(view, source, rect);
    return 1;
}

int XCOffscreen::CopyEx(int x, int y, int w, int h, XCOffscreen* src, int sx, int sy) {
    if (!m_info.bits)
        return 0;
    const SourceImage source(*this, src);
    const ImageLock maskLock(m_clipMask);
    if (!source.view().bits)
        return 0;
    const PixelView view(*this);
    const CopyRect rect =
        CopyRect{x, y, w, h, sx, sy}.clipped(view.width, view.height, source.view().width, source.view().height);
    if (rect.isEmpty() || (m_clipMask && !maskLock))
        return 0;
    const auto select = [&](std::int64_t j, std::uint8_t* selection) {
        for (std::int64_t i = 0; i < rect.w; ++i)
            selection[i] = isInClip(static_cast<int>(rect.x + i), static_cast<int>(rect.y + j));
    };
    std::vector<std::uint8_t> line = vectorOf<std::uint8_t>(view.rowBytes);
    return copySelected(rect, select, [&](int toX, int fromX, int count, int toY, int fromY) {
        std::uint8_t* const row = view.row(toY);
        const std::uint8_t* const sourceRow = source.view().row(fromY);
        if (m_transparency == cnByteMax)
            return convertRow(view.depth, row, toX, source.view().depth, sourceRow, fromX, count);
        convertRow(view.depth, line.data(), 0, source.view().depth, sourceRow, fromX, count);
        mixRow(view.depth, row, toX, line.data(), count, m_transparency);
    });
}

bool XCOffscreen::isInClip(int x, int y) const {
    if (m_clipMask) {
        const std::int64_t maskX = OffscreenToClipMaskX(x);
        const std::int64_t maskY = OffscreenToClipMaskY(y);
        // What lies before the mask by less than one of its pixels would be rounded into it.
        return x >= m_clipMaskOffsetX && y >= m_clipMaskOffsetY && maskX < m_clipMask->m_info.width &&
               maskY < m_clipMask->m_info.height &&
               m_clipMask->Get1BitPixel(static_cast<int>(maskX), static_cast<int>(maskY)) == 1;
    }
    return m_clipMode == 0 || XCRect(m_clipRect).PtInRect({x, y});
}

int XCOffscreen::CopyMask(int x, int y, int w, int h, XCOffscreen* src, int sx, int sy, XCOffscreen* mask, int mx,
                          int my) {
    if (!m_info.bits)
        return 0;
    const SourceImage source(*this, src);
    const SourceImage maskSource(*this, mask);
    const PixelView& maskView = maskSource.view();
    if (!source.view().bits || !maskView.bits)
        return 0;
    const PixelView view(*this);
    // Where the mask ends, the copy ends.
    const CopyRect inMask =
        CopyRect{x, y, w, h, mx, my}.clipped(view.width, view.height, maskView.width, maskView.height);
    const CopyRect rect =
        CopyRect{inMask.x, inMask.y, inMask.w, inMask.h, sx + (inMask.x - x), sy + (inMask.y - y)}.clipped(
            view.width, view.height, source.view().width, source.view().height);
    if (rect.isEmpty())
        return 0;
    const auto maskX = static_cast<int>(mx + (rect.x - x));
    return copySelected(view, source.view(), rect, [&](std::int64_t j, std::uint8_t* selection) {
        const std::uint8_t* const row = maskView.row(static_cast<int>(my + (rect.y + j - y)));
        withFormat(maskView.depth, [&]<class Format>() {
            for (int i = 0; i < rect.w; ++i)
                selection[i] = Format::read1(loadPixel<Format>(row, maskX + i));
        });
    });
}

int XCOffscreen::CopyMaskColor(int x, int y, int w, int h, XCOffscreen* src, int sx, int sy, std::uint32_t color) {
    return CopyMaskColorEx(x, y, w, h, src, sx, sy, color, 0);
}

int XCOffscreen::CopyMaskColorEx(int x, int y, int w, int h, XCOffscreen* src, int sx, int sy, std::uint32_t color,
                                 int margin) {
    if (!m_info.bits)
        return 0;
    const SourceImage source(*this, src);
    if (!source.view().bits)
        return 0;
    const PixelView view(*this);
    const CopyRect rect =
        CopyRect{x, y, w, h, sx, sy}.clipped(view.width, view.height, source.view().width, source.view().height);
    if (rect.isEmpty())
        return 0;
    return copyByColour(view, source.view(), rect, [key = color & cnRgbMask, margin](std::uint32_t colour) {
        return !XCVOffscreenSettings::IsEqualRGB(key, colour, margin);
    });
}

/// Copies a rectangle widened to whole groups of columns, where both images' pixels lie alike in them.
int XCOffscreen::copyWidened(int x, int y, int w, int h, XCOffscreen* src, int sx, int sy, int group) {
    if (!src || src->GetBitCount() != m_info.bitCount || (std::int64_t{x} - sx) % group != 0)
        return Copy(x, y, w, h, src, sx, sy);
    const CopyRect rect =
        CopyRect{x, y, w, h, sx, sy}.clipped(m_info.width, m_info.height, src->GetWidth(), src->GetHeight());
    if (rect.isEmpty())
        return 0;
    const std::int64_t before = rect.x % group;
    const std::int64_t length = (before + rect.w + group - 1) / group * group;
    return Copy(static_cast<int>(rect.x - before), static_cast<int>(rect.y),
                static_cast<int>(std::min<std::int64_t>(length, INT32_MAX)), static_cast<int>(rect.h), src,
                static_cast<int>(rect.sx - before), static_cast<int>(rect.sy));
}

int XCOffscreen::CopyScamp(int x, int y, int w, int h, XCOffscreen* src, int sx, int sy) {
    return copyWidened(x, y, w, h, src, sx, sy,
                       m_info.bitCount == Ink1::cnBits       ? cnGroup1
                       : m_info.bitCount == Density8::cnBits ? cnGroup8
                                                             : 1);
}

int XCOffscreen::CopyAlign8Bit(int x, int y, int w, int h, XCOffscreen* src, int sx, int sy) {
    return copyWidened(x, y, w, h, src, sx, sy, m_info.bitCount == Ink1::cnBits ? cnByteGroup : 1);
}

int XCOffscreen::CalcSafetyArea(const tagRECT* rects, tagPOINT* offsets, int count, int& width, int& height) {
    XCRect area(0, 0, width, height);
    for (int i = 0; i < count; ++i) {
        // The area in the rectangle's coordinates, in 64 bits, and back.
        const auto cut = [](int& low, int& high, std::int64_t offset, std::int64_t from, std::int64_t to) {
            const std::int64_t first = std::max(low + offset, from);
            const std::int64_t last = std::min(high + offset, to);
            low = static_cast<int>(first - offset), high = static_cast<int>(last - offset);
            return first < last;
        };
        if (!cut(area.left, area.right, offsets[i].x, rects[i].left, rects[i].right) ||
            !cut(area.top, area.bottom, offsets[i].y, rects[i].top, rects[i].bottom)) {
            width = height = 0;
            return 0;
        }
    }
    for (int i = 0; i < count; ++i) {
        offsets[i].x = static_cast<int>(std::int64_t{offsets[i].x} + area.left);
        offsets[i].y = static_cast<int>(std::int64_t{offsets[i].y} + area.top);
    }
    width = area.right - area.left;
    height = area.bottom - area.top;
    return 1;
}

void XCOffscreen::CalcAlign8BitRect(tagRECT& rect, int width) {
    rect.left = std::max(rect.left, 0) & ~(cnByteGroup - 1);
    rect.right = static_cast<int>(
        std::min<std::int64_t>((std::int64_t{rect.right} + cnByteGroup - 1) & ~std::int64_t{cnByteGroup - 1}, width));
}
