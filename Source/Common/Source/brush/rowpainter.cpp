#include "brush/rowpainter.h"

#include "mixing/spanpainter.h"
#include "mixing/stamprows.h"
#include "ovwcmn/xcvoffscreen.h"
#include "vimage/polygonrows.h"

#include <algorithm>
#include <array>
#include <limits>

namespace ovw::brush {

namespace {

using vimage::RunBand;

/// Half of a length between two coordinates, toward zero; it fits an int whatever they are.
int halfLength(int from, int to) { return static_cast<int>((std::int64_t{to} - from) / 2); }

} // namespace

void MixerRows::paintSpans(const XCRect& tile, RunBand& runs) {
    m_mixer.MoveCursorToBlock(tile.left, tile.top);
    // What DoLineRow does for each span, with the kernel chosen once.
    mixing::SpanPainter painter(m_mixer);
    if (const mixing::KernelPlan* plan = painter.planOfSpan())
        vimage::forTileSpans(tile, runs, [&](int first, int last, int y) { painter.paintSpan(*plan, first, last, y); });
}

void MixerRows::paintCoverage(const XCRect& tile, RunBand& runs) {
    m_mixer.MoveCursorToBlock(tile.left, tile.top);
    mixing::StampRows rows(m_mixer, tile);
    for (int y = tile.top; y < tile.bottom; y++)
        runs.visitRow(y, tile.left, tile.right, [&](int from, int to, const std::uint8_t* coverages) {
            if (coverages)
                rows.paintCoverages(from, y, {coverages, static_cast<std::size_t>(to - from)});
            else
                rows.paintFull(from, to, y);
        });
}

void PixelMixerRows::beginFigure(const XCRect& bounds) {
    m_origin = {bounds.left, bounds.top};
    m_mixer.SetCloneLeftTopOffset({halfLength(bounds.left, bounds.right), halfLength(bounds.top, bounds.bottom)});
}

void PixelMixerRows::paintSpans(const XCRect& tile, RunBand& runs) {
    vimage::forTileSpans(tile, runs, [this](int first, int last, int y) {
        m_mixer.DoLineRow(first, last, y, m_mask, nullptr, m_origin);
    });
}

void PixelMixerRows::paintCoverage(const XCRect& tile, RunBand& runs) {
    std::array<std::uint8_t, XCVOffscreen::cnBlockSize> coverage;
    for (int y = tile.top; y < tile.bottom; y++) {
        bool isCovered = false;
        coverage.fill(0);
        runs.visitRow(y, tile.left, tile.right, [&](int from, int to, const std::uint8_t* coverages) {
            const auto first = coverage.begin() + (from - tile.left);
            if (coverages)
                std::copy_n(coverages, to - from, first);
            else
                std::fill_n(first, to - from, std::uint8_t{RunBand::cnFullCoverage});
            isCovered = true;
        });
        if (isCovered)
            m_mixer.DoLineRowBuffer(coverage.data(), tile.left, tile.right - 1, y, m_mask, nullptr, m_origin);
    }
}

ColourRows::ColourRows(XCVOffscreen& image, std::uint32_t colour, XCVOffPixelMask* mask)
    : m_image(image), m_colour(colour), m_mask(mask), m_blended(m_mixer, mask) {
    m_mixer.SetDstOffscreen(&image);
    m_mixer.SetNode(&m_blend);
    m_mixer.SetColor(XCComplexColor(colour));
}

void ColourRows::paintSpans(const XCRect& tile, RunBand& runs) {
    vimage::forTileSpans(tile, runs, [this](int first, int last, int y) { paintSpan(first, last, y); });
}

void ColourRows::paintSpan(int first, int last, int y) {
    constexpr int cnReplace = 0;
    vimage::PolygonColour paint{m_colour, cnReplace};
    if (m_mask) {
        const int offset = m_mask->GetMaskInfo(0).offsetX;
        m_mask->MoveCursorY(&m_image, y);
        paint.mask = m_mask->GetMaskInfo(0).image;
        paint.maskOffsetX = -std::max(offset, -std::numeric_limits<int>::max());
    }
    vimage::fillPolygonRow(m_image, first, last, y, paint);
}

} // namespace ovw::brush
