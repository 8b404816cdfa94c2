#include "foundation/nomemory.h"
#include "offscreen/copyrect.h"
#include "offscreen/pixelview.h"
#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcfont.h"
#include "ovwcmn/xcoffscreen.h"

#include <algorithm>
#include <cstdint>
#include <new>
#include <string>
#include <string_view>
#include <vector>

using namespace ovw::offscreen;
using ovw::foundation::orNoMemory;

namespace {

/// A line's coverage, kept.
struct TextLine {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> coverage; // width x height
    bool isComplete = false;

    static void keep(void* context, const VXTEXTBITMAP& bitmap) {
        auto& line = *static_cast<TextLine*>(context);
        try {
            for (int y = 0; y < bitmap.height; ++y) {
                const std::uint8_t* const row = bitmap.coverage + static_cast<std::ptrdiff_t>(y) * bitmap.rowBytes;
                line.coverage.insert(line.coverage.end(), row, row + bitmap.width);
            }
        } catch (const std::bad_alloc&) {
            return; // told by isComplete: nothing may be thrown through the hook
        }
        line.width = bitmap.width;
        line.height = bitmap.height;
        line.isComplete = true;
    }
};

/// Cuts the first line off the text, with its line break. No byte of a double-byte character is a CR or LF.
std::string takeLine(std::string_view& text) {
    const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
    std::string line(text.substr(0, end));
    const std::size_t breakBytes = text.substr(end, 2) == "\r\n" ? 2 : end < text.size() ? 1 : 0;
    text.remove_prefix(end + breakBytes);
    return line;
}

/// All lines of a text; none when there is no such font.
std::vector<TextLine> linesOf(const char* text, const XCFont& font) {
    std::vector<TextLine> lines;
    for (std::string_view rest(text); !rest.empty();) {
        TextLine line;
        if (!xcGetTextProc()(takeLine(rest).c_str(), font, &TextLine::keep, &line))
            return {};
        if (!line.isComplete)
            xcThrowError(ovw::foundation::cnCodeNoMemory);
        lines.push_back(std::move(line));
    }
    return lines;
}

constexpr int mix(int from, int to, int weight) {
    return (from * (cnByteMax - weight) + to * weight + cnByteMax / 2) / cnByteMax;
}

// An opaque colour over a pixel, by coverage.
std::uint8_t overPixel(std::uint8_t old, std::uint8_t ink, int weight, Density8) {
    return byteOf(mix(old, ink, weight));
}
std::uint8_t overPixel(std::uint8_t old, std::uint8_t ink, int weight, Ink1) {
    return weight >= cnInkDensity ? ink : old;
}
RgbPixel overPixel(RgbPixel old, RgbPixel ink, int weight, Rgb24) {
    return {byteOf(mix(old.red, ink.red, weight)), byteOf(mix(old.green, ink.green, weight)),
            byteOf(mix(old.blue, ink.blue, weight))};
}
ArgbPixel overPixel(ArgbPixel old, ArgbPixel ink, int weight, Argb32) {
    if (weight == 0)
        return old;
    const int alpha = mix(old.alpha, cnByteMax, weight);
    const int share = (weight * cnByteMax + alpha / 2) / alpha; // the ink's share of what is visible
    return {byteOf(alpha), byteOf(mix(old.red, ink.red, share)), byteOf(mix(old.green, ink.green, share)),
            byteOf(mix(old.blue, ink.blue, share))};
}

void drawLine(const PixelView& view, const XCRect& area, std::uint32_t colour, const TextLine& line, std::int64_t x,
              std::int64_t y) {
    const CopyRect rect = CopyRect{x - area.left, y - area.top, line.width, line.height, 0, 0}.clipped(
        area.Width(), area.Height(), line.width, line.height);
    withFormat(view.depth, [&]<class Format>() {
        const auto ink = Format::write24(colour);
        for (std::int64_t j = 0; j < rect.h; ++j) {
            std::uint8_t* const row = view.row(static_cast<int>(area.top + rect.y + j));
            const std::uint8_t* const coverage = line.coverage.data() + (rect.sy + j) * line.width + rect.sx;
            for (std::int64_t i = 0; i < rect.w; ++i) {
                const auto at = static_cast<int>(area.left + rect.x + i);
                storePixel<Format>(row, at, overPixel(loadPixel<Format>(row, at), ink, coverage[i], Format()));
            }
        }
    });
}

/// Where something of a length stands between two edges.
std::int64_t aligned(std::int64_t low, std::int64_t high, std::int64_t length, bool atMiddle, bool atEnd) {
    return atMiddle ? low + (high - low - length) / 2 : atEnd ? high - length : low;
}

} // namespace

int XCOffscreen::DrawString(const char* text, tagRECT rect, XCFont& font, int format) {
    if (!m_info.bits || !text)
        return 0;
    const std::vector<TextLine> lines = orNoMemory([&] { return linesOf(text, font); });
    std::int64_t height = 0;
    for (const TextLine& line : lines)
        height += line.height;
    const PixelView view(*this);
    XCRect area;
    area.IntersectRect(rect, view.rect());
    std::int64_t y = aligned(rect.top, rect.bottom, height, format & DT_VCENTER, format & DT_BOTTOM);
    for (const TextLine& line : lines) {
        const std::int64_t x = aligned(rect.left, rect.right, line.width, format & DT_CENTER, format & DT_RIGHT);
        if (!area.IsRectEmpty())
            drawLine(view, area, m_foreColor, line, x, y);
        y += line.height;
    }
    return static_cast<int>(std::min<std::int64_t>(height, INT32_MAX));
}
