#include "offscreen/pixelview.h"
#include "ovwcmn/xcoffscreen.h"
#include "vimage/ellipserows.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

using namespace ovw::offscreen;
using ovw::vimage::cnLongFill;
using ovw::vimage::fillRepeated;

namespace {

constexpr int cnScampPixels1 = 32;
constexpr int cnScampPixels8 = 4;

/// Whether the row buffer repeats one byte, of which nothing need be read: the first four tell.
bool isUniform(const std::uint8_t* source) { return std::memcmp(source, source + 1, sizeof(ArgbPixel) - 1) == 0; }

/// Copies bytes of the row buffer.
void fillBytes(std::uint8_t* to, const std::uint8_t* source, std::size_t bytes) {
    if (isUniform(source))
        std::memset(to, *source, bytes);
    else if (bytes < cnLongFill)
        std::memcpy(to, source, bytes);
    else
        fillRepeated(to, bytes, source);
}

/// The same to byte `first` of each row from top to bottom.
void fillRows(const PixelView& view, const std::uint8_t* source, std::size_t first, std::size_t bytes, int top,
              int bottom) {
    if (isUniform(source) && bytes == static_cast<std::size_t>(view.rowBytes)) {
        std::memset(view.row(top), *source, bytes * static_cast<std::size_t>(bottom - top));
        return;
    }
    for (int y = top; y < bottom; ++y)
        fillBytes(view.row(y) + first, source, bytes);
}

/// The pixels whose centre lies in the ellipse that fills a row of n x m pixels, at a row of twice the distance dy from
/// the middle: dx^2 m^2 + dy^2 n^2 <= n^2 m^2, dx being twice the distance too, of n's parity.
class TrueEllipse {
public:
    TrueEllipse(std::int64_t n, std::int64_t m) : m_n(n), m_m(m) {}

    /// The largest dx of a row; negative when none is inside.
    std::int64_t reach(std::int64_t dy) const {
        const auto ratio = static_cast<double>(dy) / static_cast<double>(m_m);
        auto dx = static_cast<std::int64_t>(static_cast<double>(m_n) * std::sqrt(std::max(0.0, 1.0 - ratio * ratio)));
        dx -= (dx ^ (m_n - 1)) & 1; // of the parity that columns have
        while (isInside(dx + 2, dy))
            dx += 2;
        while (dx >= 0 && !isInside(dx, dy))
            dx -= 2;
        return dx;
    }

private:
    bool isInside(std::int64_t dx, std::int64_t dy) const {
        using Wide = unsigned __int128;
        // n and m reach 2^32, but then dx is odd, and both sides stay below 2^128.
        if (dx > m_n)
            return false;
        const Wide left = static_cast<Wide>(m_n - dx) * static_cast<Wide>(m_n + dx);
        const Wide right = static_cast<Wide>(dy) * static_cast<Wide>(dy);
        const Wide n2 = static_cast<Wide>(m_n) * static_cast<Wide>(m_n);
        const Wide m2 = static_cast<Wide>(m_m) * static_cast<Wide>(m_m);
        return left * m2 >= right * n2;
    }

    std::int64_t m_n;
    std::int64_t m_m;
};

} // namespace

/// The row buffer, filled with the fore colour. The image is locked.
const std::uint8_t* XCOffscreen::foreRow() {
    if (m_foreChanged) {
        withFormat(m_info.bitCount, [this]<class Format>() {
            const int padded = m_info.rowBytes * 8 / Format::cnBits;
            Format::fillRow(m_info.line, 0, padded, Format::fillValue(m_foreColor));
        });
        m_foreChanged = 0;
    }
    return m_info.line;
}

void XCOffscreen::RectFill(const tagRECT& rect) {
    if (!m_info.bits)
        return;
    const PixelView view(*this);
    XCRect area;
    if (view.rect() == rect)
        return RectFillScamp(rect);
    if (!area.IntersectRect(rect, view.rect()))
        return;
    const std::uint8_t* const source = foreRow();
    withFormat(view.depth, [&]<class Format>() {
        if constexpr (cnHasBytes<Format>)
            fillRows(view, source, static_cast<std::size_t>(area.left) * Format::cnBytes,
                     static_cast<std::size_t>(area.Width()) * Format::cnBytes, area.top, area.bottom);
        else
            for (int y = area.top; y < area.bottom; ++y)
                Format::fillPattern(view.row(y), area.left, area.Width(), *source);
    });
}

void XCOffscreen::RectFillScamp(const tagRECT& rect) {
    if (!m_info.bits)
        return;
    const PixelView view(*this);
    XCRect area;
    if (!area.IntersectRect(rect, view.rect()))
        return;
    const int group = view.depth == Ink1::cnBits ? cnScampPixels1 : view.depth == Density8::cnBits ? cnScampPixels8 : 1;
    const std::int64_t left = area.left / group * group;
    const std::int64_t right = (std::int64_t{area.right} + group - 1) / group * group;
    // A whole row takes its padding along, so that whole images are one piece of memory.
    const bool isWhole = area.left == 0 && area.right == view.width;
    const std::int64_t bytes = isWhole ? view.rowBytes : (right - left) * view.depth / 8;
    fillRows(view, foreRow(), static_cast<std::size_t>(left * view.depth / 8), static_cast<std::size_t>(bytes),
             area.top, area.bottom);
}

void XCOffscreen::FillLineRow(int length, const XCOffscreenCursor& cursor) {
    const std::int64_t last = std::int64_t{cursor.GetX()} + length - 1;
    if (length > 0 && last >= 0)
        FillLineRow(std::max(cursor.GetX(), 0), static_cast<int>(std::min<std::int64_t>(last, INT32_MAX)),
                    cursor.GetY());
}

void XCOffscreen::FillLineRow(int x0, int x1, int y) {
    if (!m_info.bits || y < 0 || y >= m_info.height)
        return;
    const int first = std::max(x0, 0);
    const int last = std::min(x1, m_info.width - 1);
    if (first > last)
        return;
    const std::uint8_t* const source = foreRow();
    std::uint8_t* const row = PixelView(*this).row(y);
    withFormat(m_info.bitCount, [&]<class Format>() {
        if constexpr (cnHasBytes<Format>)
            fillBytes(row + static_cast<std::size_t>(first) * Format::cnBytes, source,
                      static_cast<std::size_t>(last - first + 1) * Format::cnBytes);
        else
            Format::fillPattern(row, first, last - first + 1, *source);
    });
}

void XCOffscreen::ArcFill(int x0, int y0, int x1, int y1) {
    if (m_info.bits)
        ovw::vimage::EllipseRows(std::min(x0, x1), std::min(y0, y1), std::max(x0, x1), std::max(y0, y1))
            .forEachRow(0, m_info.height, [this](int first, int last, int row) { FillLineRow(first, last, row); });
}

void XCOffscreen::TrueArcFill(int x0, int y0, int x1, int y1) {
    if (!m_info.bits)
        return;
    // Twice the centre, so that it is whole.
    const std::int64_t cx = std::int64_t{x0} + x1;
    const std::int64_t cy = std::int64_t{y0} + y1;
    const TrueEllipse ellipse(std::abs(std::int64_t{x1} - x0) + 1, std::abs(std::int64_t{y1} - y0) + 1);
    const int bottom = std::min(std::max(y0, y1), m_info.height - 1);
    for (int y = std::max(std::min(y0, y1), 0); y <= bottom; ++y)
        if (const std::int64_t reach = ellipse.reach(std::abs(2 * std::int64_t{y} - cy)); reach >= 0)
            FillLineRow(static_cast<int>((cx - reach) / 2), static_cast<int>((cx + reach) / 2), y);
}

void XCOffscreen::TransparentPlot(int x, int y) {
    if (!m_info.bits || m_info.bitCount != Argb32::cnBits || !PointInOffscreen(x, y))
        return;
    std::uint8_t* const row = PixelView(*this).row(y);
    const ArgbPixel old = loadPixel<Argb32>(row, x);
    const int alpha = alphaOf(m_foreColor) == cnByteMax ? 256 : alphaOf(m_foreColor);
    const auto mix = [alpha](int from, int to) { return byteOf((from * (256 - alpha) + to * alpha) >> 8); };
    storePixel<Argb32>(row, x,
                       {byteOf(cnByteMax), mix(old.red, redOf(m_foreColor)), mix(old.green, greenOf(m_foreColor)),
                        mix(old.blue, blueOf(m_foreColor))});
}
