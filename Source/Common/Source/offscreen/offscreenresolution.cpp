#include "foundation/nomemory.h"
#include "offscreen/copyrect.h"
#include "offscreen/pixelmean.h"
#include "offscreen/pixelrows.h"
#include "offscreen/sourceimage.h"
#include "offscreen/squaremeans.h"
#include "ovwcmn/xcoffscreen.h"
#include "vimage/coveredspan.h"
#include "vimage/numbers.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

using namespace ovw::offscreen;
using ovw::foundation::orNoMemory;
using ovw::vimage::AreaSpans;
using ovw::vimage::AxisPlan;
using ovw::vimage::CoveredSpan;
using ovw::vimage::endOf;
using ovw::vimage::NearestMap;
using ovw::vimage::WholeSpans;

namespace {

/// Fits one length into another.
struct Axis {
    AxisPlan plan;
    int size, sourceSize; // of the images

    // The destination's pixels that lie in its image.
    int begin() const { return std::clamp(plan.to, 0, size); }
    int end() const { return std::clamp(endOf(plan.to, plan.count), begin(), size); }
    std::int64_t nearest(int i) const { return NearestMap::ofRatio(plan)(i); }
    bool isInSource(std::int64_t v) const { return v >= 0 && v < sourceSize; }
    /// What each of the destination's pixels covers, by area or in whole pixels.
    template <class Spans>
    std::vector<CoveredSpan> spans() const {
        std::vector<CoveredSpan> result;
        for (int i = begin(); i < end(); ++i)
            result.push_back(Spans(plan)(i));
        return result;
    }
};

/// The part of a span that lies in an image of some size; empty when begin >= end.
struct Inside {
    int begin, end;
    bool isWhole;

    Inside(const CoveredSpan& span, int size)
        : begin(static_cast<int>(std::clamp<std::int64_t>(span.first, 0, size))),
          end(static_cast<int>(std::clamp<std::int64_t>(span.last + 1, 0, size))),
          isWhole(span.first >= 0 && span.last < size) {}
};

/// The mean of the pixels that both spans cover, by area; false when there is none.
template <class Format>
bool averageParts(const PixelView& view, const CoveredSpan& columns, const CoveredSpan& rows, double area,
                  std::uint32_t& colour) {
    PixelMean<Format, PixelParts> mean;
    const Inside across(columns, view.width), down(rows, view.height);
    for (int y = down.begin; y < down.end; ++y) {
        const std::uint8_t* const row = view.row(y);
        const double weight = rows.weight(y);
        for (int x = across.begin; x < across.end; ++x)
            mean.add(loadPixel<Format>(row, x), weight * columns.weight(x));
    }
    if (mean.isEmpty())
        return false;
    if (across.isWhole && down.isWhole)
        mean.setWeight(area);
    colour = mean.colour();
    return true;
}

template <class Format>
bool averageWhole(const PixelView& view, const CoveredSpan& columns, const CoveredSpan& rows, std::uint32_t& colour) {
    PixelMean<Format, WholePixels> mean;
    const Inside across(columns, view.width), down(rows, view.height);
    for (int y = down.begin; y < down.end; ++y) {
        const std::uint8_t* const row = view.row(y);
        for (int x = across.begin; x < across.end; ++x)
            mean.add(loadPixel<Format>(row, x), 1);
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

    /// Means of all that the destination's pixels cover: meanOf<Format>(view, columns, rows, colour).
    template <class Spans, class MeanOf>
    void average(bool keepAlpha, MeanOf meanOf) const {
        const std::vector<CoveredSpan> columns = m_x.spans<Spans>(), rows = m_y.spans<Spans>();
        withFormats([&]<class Format, class Source>() {
            for (int y = m_y.begin(); y < m_y.end(); ++y) {
                const CoveredSpan& down = rows[static_cast<std::size_t>(y - m_y.begin())];
                std::uint8_t* const row = m_view.row(y);
                int x = m_x.begin();
                for (const CoveredSpan& across : columns) {
                    if (std::uint32_t colour; meanOf.template operator()<Source>(m_source, across, down, colour))
                        storePixel<Format>(row, x, keepAlpha ? Format::write32(colour) : Format::write24(colour));
                    ++x;
                }
            }
        });
    }
    void averageArea() const {
        const double area = AreaSpans(m_x.plan).scale() * AreaSpans(m_y.plan).scale();
        average<AreaSpans>(false, [area]<class Format>(const PixelView& view, const CoveredSpan& columns,
                                                       const CoveredSpan& rows, std::uint32_t& colour) {
            return averageParts<Format>(view, columns, rows, area, colour);
        });
    }
    void averageWholePixels(bool keepAlpha) const {
        if (const int factor = squareFactor())
            return averageSquares(factor, keepAlpha);
        average<WholeSpans>(keepAlpha, []<class Format>(const PixelView& view, const CoveredSpan& columns,
                                                        const CoveredSpan& rows, std::uint32_t& colour) {
            return averageWhole<Format>(view, columns, rows, colour);
        });
    }
    /// A row of the nearest pixels, in the source's depth, then converted.
    void takeNearest() const {
        std::vector<std::uint8_t> line(static_cast<std::size_t>(m_x.end() - m_x.begin()) * sizeof(ArgbPixel));
        for (int y = m_y.begin(); y < m_y.end(); ++y) {
            if (!m_y.isInSource(m_y.nearest(y)))
                continue;
            const auto [first, end] = gather(line.data(), m_source.row(static_cast<int>(m_y.nearest(y))));
            convertRow(m_view.depth, m_view.row(y), first, m_source.depth, line.data(), 0, end - first);
        }
    }

private:
    template <class Action>
    void withFormats(Action action) const {
        withFormat(m_view.depth, [&]<class Format>() {
            withFormat(m_source.depth, [&]<class Source>() { action.template operator()<Format, Source>(); });
        });
    }
    /// The side of the squares that become pixels, where all of them are whole and lie in the source; else 0.
    int squareFactor() const {
        const int factor = m_x.plan.sourceCount / m_x.plan.count;
        const auto isWhole = [factor](const Axis& axis) {
            return axis.plan.sourceCount == std::int64_t{axis.plan.count} * factor && axis.nearest(axis.begin()) >= 0 &&
                   axis.nearest(axis.end()) <= axis.sourceSize;
        };
        return SquareMeans::isFactor(factor) && isWhole(m_x) && isWhole(m_y) ? factor : 0;
    }
    void averageSquares(int factor, bool keepAlpha) const {
        SquareMeans means(m_source, factor, keepAlpha);
        for (int y = m_y.begin(); y < m_y.end(); ++y)
            for (int x = m_x.begin(), count = 0; x < m_x.end(); x += count) {
                count = std::min(means.largestCount(), m_x.end() - x);
                const std::uint8_t* const line =
                    means.row(static_cast<int>(m_x.nearest(x)), static_cast<int>(m_y.nearest(y)), count);
                convertRow(m_view.depth, m_view.row(y), x, means.depth(), line, 0, count);
            }
    }
    /// The destination's columns that have a nearest pixel, and these pixels at the start of line.
    std::pair<int, int> gather(std::uint8_t* line, const std::uint8_t* row) const {
        int first = m_x.begin(), end = m_x.end();
        while (first < end && !m_x.isInSource(m_x.nearest(first)))
            ++first;
        while (end > first && !m_x.isInSource(m_x.nearest(end - 1)))
            --end;
        withFormat(m_source.depth, [&]<class Format>() {
            for (int x = first; x < end; ++x)
                storePixel<Format>(line, x - first, loadPixel<Format>(row, static_cast<int>(m_x.nearest(x))));
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
    const Fitting fitting(view, from, Axis{{dx, dw, sx, sw}, view.width, from.width},
                          Axis{{dy, dh, sy, sh}, view.height, from.height});
    orNoMemory([&] { fit(fitting, view.depth == Argb32::cnBits && from.depth == Argb32::cnBits); });
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
    const auto spanOf = [](double v, double length) {
        const double whole = std::floor(v);
        return CoveredSpan::of(ovw::vimage::resolutionEntry(v - whole, v - whole + length),
                               static_cast<std::int64_t>(whole));
    };
    const PixelView view(*this);
    std::uint32_t colour = cnWhite;
    withFormat(view.depth,
               [&]<class Format>() { averageParts<Format>(view, spanOf(x, w), spanOf(y, h), w * h, colour); });
    return colour & cnRgbMask;
}

std::uint32_t XCOffscreen::CalcPixValueHalf(int x, int y) {
    const ImageLock lock(this);
    if (!lock)
        return cnWhite;
    const PixelView view(*this);
    const auto pairAt = [](std::int64_t v) { return CoveredSpan{v, v + 1, 1, 1}; };
    std::uint32_t colour = cnWhite;
    withFormat(view.depth, [&]<class Format>() { averageWhole<Format>(view, pairAt(x), pairAt(y), colour); });
    return colour & cnRgbMask;
}
