#include "foundation/nomemory.h"
#include "offscreen/pixelview.h"
#include "ovwcmn/xcgeometry.h"
#include "ovwcmn/xcoffscreen.h"

#include <algorithm>
#include <vector>

using namespace ovw::offscreen;
using ovw::foundation::orNoMemory;

namespace {

/// Pixels of an image that equal the seed's, to be overwritten by another value.
template <class Format>
class OwnRegion {
public:
    OwnRegion(const PixelView& view, typename Format::Value reference, typename Format::Value fill)
        : m_view(view), m_reference(reference), m_fill(fill) {}

    int width() const { return m_view.width; }
    int height() const { return m_view.height; }
    void enterRow(int y) { m_row = m_view.row(y); }
    bool isInside(int x) const { return loadPixel<Format>(m_row, x) == m_reference; }
    void fill(int left, int right) { Format::fillRow(m_row, left, right - left + 1, m_fill); }

private:
    PixelView m_view;
    typename Format::Value m_reference;
    typename Format::Value m_fill;
    std::uint8_t* m_row = nullptr;
};

/// Pixels of an image that equal the seed's and have no ink yet in a mask.
template <class Format>
class MaskedRegion {
public:
    MaskedRegion(const PixelView& view, const PixelView& mask, typename Format::Value reference)
        : m_view(view), m_mask(mask), m_reference(reference) {}

    int width() const { return std::min(m_view.width, m_mask.width); }
    int height() const { return std::min(m_view.height, m_mask.height); }
    void enterRow(int y) { m_row = m_view.row(y), m_maskRow = m_mask.row(y); }
    bool isInside(int x) const { return loadPixel<Format>(m_row, x) == m_reference && !loadPixel<Ink1>(m_maskRow, x); }
    void fill(int left, int right) { Ink1::fillRow(m_maskRow, left, right - left + 1, 1); }

private:
    PixelView m_view;
    PixelView m_mask;
    typename Format::Value m_reference;
    const std::uint8_t* m_row = nullptr;
    std::uint8_t* m_maskRow = nullptr;
};

/// Fills what hangs together with a seed inside the region, run by run: a run found leaves what borders on it, in one
/// direction of rows, to be looked at later.
template <class Region>
class SeedFill {
public:
    explicit SeedFill(Region region) : m_region(region) {}

    /// The bounds of what was filled, empty when the seed is not inside.
    XCRect run(const tagPOINT& seed) {
        m_region.enterRow(seed.y);
        if (!m_region.isInside(seed.x))
            return m_bounds;
        const Run found = fillRun(seed.x, seed.y);
        push(found, -1);
        push(found, 1);
        while (!m_pending.empty()) {
            const Pending next = m_pending.back();
            m_pending.pop_back();
            explore(next);
        }
        return m_bounds;
    }

private:
    struct Run {
        int left, right, y; // both ends included
    };
    struct Pending {
        int left, right, y; // pixels that a filled run borders on
        int direction;      // away from that run
    };

    void push(const Run& run, int direction) { pushPart(run.left, run.right, run.y, direction); }
    void pushPart(int left, int right, int y, int direction) {
        const int row = y + direction;
        if (left <= right && row >= 0 && row < m_region.height())
            m_pending.push_back({left, right, row, direction});
    }
    Run fillRun(int x, int y) {
        Run run{x, x, y};
        while (run.left > 0 && m_region.isInside(run.left - 1))
            --run.left;
        while (run.right + 1 < m_region.width() && m_region.isInside(run.right + 1))
            ++run.right;
        m_region.fill(run.left, run.right);
        const XCRect rect(run.left, y, run.right + 1, y + 1);
        m_bounds = m_bounds.IsRectEmpty()
                       ? rect
                       : XCRect(std::min(m_bounds.left, rect.left), std::min(m_bounds.top, rect.top),
                                std::max(m_bounds.right, rect.right), std::max(m_bounds.bottom, rect.bottom));
        return run;
    }
    void explore(const Pending& part) {
        m_region.enterRow(part.y);
        for (int x = part.left; x <= part.right; ++x) {
            if (!m_region.isInside(x))
                continue;
            const Run run = fillRun(x, part.y);
            push(run, part.direction);
            // Where the run reaches past the part, it may lead back.
            pushPart(run.left, part.left - 1, part.y, -part.direction);
            pushPart(part.right + 1, run.right, part.y, -part.direction);
            x = run.right;
        }
    }

    Region m_region;
    XCRect m_bounds;
    std::vector<Pending> m_pending;
};

int report(const XCRect& filled, tagRECT* changed) {
    if (filled.IsRectEmpty())
        return 0;
    if (changed)
        *changed = filled;
    return 1;
}

} // namespace

int XCOffscreen::SeedScanFill(const tagPOINT& seed, tagRECT* changed) {
    const PixelView view(*this);
    if (!view.bits || !view.contains(seed.x, seed.y))
        return 0;
    return withFormat(view.depth, [&]<class Format>() {
        const auto reference = loadPixel<Format>(view.row(seed.y), seed.x);
        const auto fill = Format::fillValue(m_foreColor);
        if (reference == fill)
            return 0;
        return orNoMemory(
            [&] { return report(SeedFill(OwnRegion<Format>(view, reference, fill)).run(seed), changed); });
    });
}

int XCOffscreen::SeedScanFill1BitMask(XCOffscreen& mask, const tagPOINT& seed, tagRECT* changed) {
    const PixelView view(*this);
    const PixelView maskView(mask);
    if (!view.bits || !maskView.bits || maskView.depth != Ink1::cnBits || !view.contains(seed.x, seed.y) ||
        !maskView.contains(seed.x, seed.y))
        return 0;
    return withFormat(view.depth, [&]<class Format>() {
        const auto reference = loadPixel<Format>(view.row(seed.y), seed.x);
        return orNoMemory(
            [&] { return report(SeedFill(MaskedRegion<Format>(view, maskView, reference)).run(seed), changed); });
    });
}
