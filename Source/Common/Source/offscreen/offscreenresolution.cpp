#include "offscreen/copyrect.h"
#include "offscreen/pixelmean.h"
#include "offscreen/pixelrows.h"
#include "offscreen/sourceimage.h"
#include "offscreen/squaremeans.h"
#include "ovwcmn/xcoffscreen.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

using namespace ovw::offscreen;

namespace {

/// Fits one length into another.
struct Axis {
    std::int64_t at, length; // in the destination
    std::int64_t source, sourceLength;
    std::int64_t size, sourceSize; // of the images

    // The destination's pixels, counted from `at`, that lie in its image.
    std::int64_t begin() const { return std::clamp<std::int64_t>(-at, 0, length); }
    std::int64_t end() const { return std::clamp<std::int64_t>(size - at, begin(), length); }
    std::int64_t nearest(std::int64_t i) const { return source + i * sourceLength / length; }
    bool isInSource(std::int64_t v) const { return v >= 0 && v < sourceSize; }
};

/// The whole source pixels of a destination pixel: one when enlarging.
struct WholeSpan {
    std::int64_t first, end;

    static WholeSpan of(const Axis& axis, std::int64_t i) {
        const std::int64_t first = axis.nearest(i);
        const std::int64_t end = axis.sourceLength > axis.length ? axis.nearest(i + 1) : first + 1;
        return {std::max<std::int64_t>(first, 0), std::min(end, axis.sourceSize)};
    }
};

/// How a piece of a line covers pixels: those between the first and the last count whole.
struct PartSpan {
    std::int64_t first, last; // cut to the image; none when first > last
    double firstWeight, lastWeight;
    bool isWhole; // nothing was cut

    /// The pixels of an image of this size, moved by `offset`, between two positions.
    static PartSpan of(double from, double to, std::int64_t offset, std::int64_t size) {
        const auto start = static_cast<std::int64_t>(std::floor(from));
        auto end = static_cast<std::int64_t>(std::floor(to));
        PartSpan span{start, end, 1 - (from - static_cast<double>(start)), to - static_cast<double>(end), true};
        if (start == end)
            span.firstWeight = span.lastWeight = to - from;
        else if (span.lastWeight == 0)
            span.last = --end, span.lastWeight = end == start ? span.firstWeight : 1;
        span.first += offset, span.last += offset;
        span.cut(size);
        return span;
    }
    double weightOf(std::int64_t v) const { return v == first ? firstWeight : v == last ? lastWeight : 1; }

private:
    void cut(std::int64_t size) {
        isWhole = first >= 0 && last < size;
        if (first < 0)
            first = 0, firstWeight = last == 0 ? lastWeight : 1;
        if (last >= size)
            last = size - 1, lastWeight = first == last ? firstWeight : 1;
    }
};

/// The mean of the pixels that both spans cover; false when there is none.
template <class Format>
bool averageParts(const PixelView& view, const PartSpan& columns, const PartSpan& rows, double area,
                  std::uint32_t& colour) {
    PixelMean<Format, PixelParts> mean;
    for (std::int64_t y = rows.first; y <= rows.last; ++y) {
        const std::uint8_t* const row = view.row(static_cast<int>(y));
        const double weight = rows.weightOf(y);
        for (std::int64_t x = columns.first; x <= columns.last; ++x)
            mean.add(loadPixel<Format>(row, static_cast<int>(x)), weight * columns.weightOf(x));
    }
    if (mean.isEmpty())
        return false;
    if (columns.isWhole && rows.isWhole)
        mean.setWeight(area);
    colour = mean.colour();
    return true;
}

template <class Format>
bool averageWhole(const PixelView& view, const WholeSpan& columns, const WholeSpan& rows, std::uint32_t& colour) {
    PixelMean<Format, WholePixels> mean;
    for (std::int64_t y = rows.first; y < rows.end; ++y) {
        const std::uint8_t* const row = view.row(static_cast<int>(y));
        for (std::int64_t x = columns.first; x < columns.end; ++x)
            mean.add(loadPixel<Format>(row, static_cast<int>(x)), 1);
    }
    if (mean.isEmpty())
        return false;
    colour = mean.colour();
    return true;
}

/// A fitting of a rectangle of one image into one of another.
class Fitting {
public:
    Fitting(const PixelView& view, const PixelView& source, const Axis& x, const Axis& y)
        : m_view(view), m_source(source), m_x(x), m_y(y) {}

    /// Stores, for every destination pixel in its image, the colour that meanOf(i, j, colour) finds for it.
    template <class MeanOf>
    void run(bool keepAlpha, MeanOf meanOf) const {
        withFormat(m_view.depth, [&]<class Format>() {
            for (std::int64_t j = m_y.begin(); j < m_y.end(); ++j) {
                std::uint8_t* const row = m_view.row(static_cast<int>(m_y.at + j));
                for (std::int64_t i = m_x.begin(); i < m_x.end(); ++i)
                    if (std::uint32_t colour; meanOf(i, j, colour))
                        storePixel<Format>(row, static_cast<int>(m_x.at + i),
                                           keepAlpha ? Format::write32(colour) : Format::write24(colour));
            }
        });
    }
    void averageArea() const {
        const double rx = static_cast<double>(m_x.sourceLength) / static_cast<double>(m_x.length);
        const double ry = static_cast<double>(m_y.sourceLength) / static_cast<double>(m_y.length);
        const std::vector<PartSpan> columns = spans(m_x, rx);
        const std::vector<PartSpan> rows = spans(m_y, ry);
        withFormat(m_source.depth, [&]<class Format>() {
            run(false, [&](std::int64_t i, std::int64_t j, std::uint32_t& colour) {
                return averageParts<Format>(m_source, columns[static_cast<std::size_t>(i - m_x.begin())],
                                            rows[static_cast<std::size_t>(j - m_y.begin())], rx * ry, colour);
            });
        });
    }
    void averageWholePixels(bool keepAlpha) const {
        if (const int factor = squareFactor())
            return averageSquares(factor, keepAlpha);
        std::vector<WholeSpan> columns;
        for (std::int64_t i = m_x.begin(); i < m_x.end(); ++i)
            columns.push_back(WholeSpan::of(m_x, i));
        withFormat(m_source.depth, [&]<class Format>() {
            run(keepAlpha, [&](std::int64_t i, std::int64_t j, std::uint32_t& colour) {
                return averageWhole<Format>(m_source, columns[static_cast<std::size_t>(i - m_x.begin())],
                                            WholeSpan::of(m_y, j), colour);
            });
        });
    }
    /// A row of the nearest pixels, in the source's depth, then converted.
    void takeNearest() const {
        std::vector<std::uint8_t> line(static_cast<std::size_t>(m_x.end() - m_x.begin()) * sizeof(ArgbPixel));
        for (std::int64_t j = m_y.begin(); j < m_y.end(); ++j) {
            if (!m_y.isInSource(m_y.nearest(j)))
                continue;
            const auto [first, end] = gather(line.data(), m_source.row(static_cast<int>(m_y.nearest(j))));
            convertRow(m_view.depth, m_view.row(static_cast<int>(m_y.at + j)), static_cast<int>(m_x.at + first),
                       m_source.depth, line.data(), 0, static_cast<int>(end - first));
        }
    }

private:
    /// The side of the squares that become pixels, where all of them are whole and lie in the source; else 0.
    int squareFactor() const {
        const std::int64_t factor = m_x.sourceLength / m_x.length;
        const auto isWhole = [factor](const Axis& axis) {
            return axis.sourceLength == axis.length * factor && axis.nearest(axis.begin()) >= 0 &&
                   axis.nearest(axis.end()) <= axis.sourceSize;
        };
        return SquareMeans::isFactor(factor) && isWhole(m_x) && isWhole(m_y) ? static_cast<int>(factor) : 0;
    }
    void averageSquares(int factor, bool keepAlpha) const {
        SquareMeans means(m_source, factor, keepAlpha);
        for (std::int64_t j = m_y.begin(); j < m_y.end(); ++j)
            for (std::int64_t i = m_x.begin(); i < m_x.end(); i += means.largestCount()) {
                const auto count = static_cast<int>(std::min<std::int64_t>(means.largestCount(), m_x.end() - i));
                const std::uint8_t* const line =
                    means.row(static_cast<int>(m_x.nearest(i)), static_cast<int>(m_y.nearest(j)), count);
                convertRow(m_view.depth, m_view.row(static_cast<int>(m_y.at + j)), static_cast<int>(m_x.at + i),
                           means.depth(), line, 0, count);
            }
    }
    static std::vector<PartSpan> spans(const Axis& axis, double ratio) {
        std::vector<PartSpan> result;
        for (std::int64_t i = axis.begin(); i < axis.end(); ++i)
            result.push_back(PartSpan::of(static_cast<double>(i) * ratio, static_cast<double>(i + 1) * ratio,
                                          axis.source, axis.sourceSize));
        return result;
    }
    /// The destination's columns that have a nearest pixel, and these pixels at the start of line.
    std::pair<std::int64_t, std::int64_t> gather(std::uint8_t* line, const std::uint8_t* row) const {
        std::int64_t first = m_x.begin();
        std::int64_t end = m_x.end();
        while (first < end && !m_x.isInSource(m_x.nearest(first)))
            ++first;
        while (end > first && !m_x.isInSource(m_x.nearest(end - 1)))
            --end;
        withFormat(m_source.depth, [&]<class Format>() {
            for (std::int64_t i = first; i < end; ++i)
                storePixel<Format>(line, static_cast<int>(i - first),
                                   loadPixel<Format>(row, static_cast<int>(m_x.nearest(i))));
        });
        return {first, end};
    }

    const PixelView& m_view;
    const PixelView& m_source;
    Axis m_x;
    Axis m_y;
};

} // namespace

/// Calls fit(fitting, whether both have 32 bits) when both images have pixels and the lengths are not empty.
template <class Fit>
void XCOffscreen::fitInto(int dx, int dy, int dw, int dh, XCOffscreen* src, int sx, int sy, int sw, int sh, Fit fit) {
    if (!m_info.bits || !src || dw <= 0 || dh <= 0 || sw <= 0 || sh <= 0)
        return;
    const SourceImage source(*this, src);
    if (!source.view().bits)
        return;
    const PixelView view(*this);
    const PixelView& from = source.view();
    fit(Fitting(view, from, Axis{dx, dw, sx, sw, view.width, from.width},
                Axis{dy, dh, sy, sh, view.height, from.height}),
        view.depth == Argb32::cnBits && from.depth == Argb32::cnBits);
}

void XCOffscreen::ChangeResolution(int dx, int dy, int dw, int dh, XCOffscreen* src, int sx, int sy, int sw, int sh,
                                   int quality) {
    constexpr int cnLow = 1;
    constexpr int cnMostLow = 0;
    if (dw == sw && dh == sh) {
        Copy(dx, dy, dw, dh, src, sx, sy);
        return;
    }
    if (quality == cnLow)
        return ChangeResolutionLow(dx, dy, dw, dh, src, sx, sy, sw, sh);
    if (quality == cnMostLow)
        return ChangeResolutionMostLow(dx, dy, dw, dh, src, sx, sy, sw, sh);
    const bool isHalf = sw == std::int64_t{dw} * 2 && sh == std::int64_t{dh} * 2 && !dx && !dy && !sx && !sy;
    fitInto(dx, dy, dw, dh, src, sx, sy, sw, sh, [isHalf](const Fitting& fitting, bool) {
        if (isHalf)
            fitting.averageWholePixels(false);
        else
            fitting.averageArea();
    });
}

void XCOffscreen::ChangeResolutionLow(int dx, int dy, int dw, int dh, XCOffscreen* src, int sx, int sy, int sw,
                                      int sh) {
    fitInto(dx, dy, dw, dh, src, sx, sy, sw, sh,
            [](const Fitting& fitting, bool keepAlpha) { fitting.averageWholePixels(keepAlpha); });
}

void XCOffscreen::ChangeResolutionMostLow(int dx, int dy, int dw, int dh, XCOffscreen* src, int sx, int sy, int sw,
                                          int sh) {
    fitInto(dx, dy, dw, dh, src, sx, sy, sw, sh, [](const Fitting& fitting, bool) { fitting.takeNearest(); });
}

std::uint32_t XCOffscreen::CalcPixelValue(double x, double y, double w, double h) {
    const ImageLock lock(this);
    // Beyond these an image has no pixels, and positions need not be told apart.
    constexpr double cnFarthest = 4294967296.0;
    const bool isFinite = std::abs(x) < cnFarthest && std::abs(y) < cnFarthest && w < cnFarthest && h < cnFarthest;
    if (!lock || !isFinite || !(w > 0) || !(h > 0))
        return cnWhite;
    const PixelView view(*this);
    std::uint32_t colour = cnWhite;
    withFormat(view.depth, [&]<class Format>() {
        averageParts<Format>(view, PartSpan::of(x, x + w, 0, view.width), PartSpan::of(y, y + h, 0, view.height), w * h,
                             colour);
    });
    return colour & cnRgbMask;
}

std::uint32_t XCOffscreen::CalcPixValueHalf(int x, int y) {
    const ImageLock lock(this);
    if (!lock)
        return cnWhite;
    const PixelView view(*this);
    const auto spanOf = [](std::int64_t v, std::int64_t size) {
        return WholeSpan{std::max<std::int64_t>(v, 0), std::min(v + 2, size)};
    };
    std::uint32_t colour = cnWhite;
    withFormat(view.depth, [&]<class Format>() {
        averageWhole<Format>(view, spanOf(x, view.width), spanOf(y, view.height), colour);
    });
    return colour & cnRgbMask;
}
