#include "brush/rowpainter.h"

#include "brush/coveragerow.h"
#include "ovwcmn/xcvoffscreen.h"
#include "vimage/polygonrows.h"

#include <algorithm>
#include <limits>

namespace ovw::brush {

namespace {

/// Half of a length between two coordinates, toward zero; it fits an int whatever they are.
int halfLength(int from, int to) { return static_cast<int>((std::int64_t{to} - from) / 2); }

} // namespace

void MixerRows::paintCoverage(CoverageRow& row, int y) { row.paint(m_mixer, y); }

void PixelMixerRows::beginFigure(const XCRect& bounds) {
    m_origin = {bounds.left, bounds.top};
    m_mixer.SetCloneLeftTopOffset({halfLength(bounds.left, bounds.right), halfLength(bounds.top, bounds.bottom)});
}

void PixelMixerRows::paintCoverage(CoverageRow& row, int y) {
    if (row.take(m_coverage.data()))
        m_mixer.DoLineRowBuffer(m_coverage.data(), m_tile.left, m_tile.right - 1, y, m_mask, nullptr, m_origin);
}

ColourRows::ColourRows(XCVOffscreen& image, std::uint32_t colour, XCVOffPixelMask* mask)
    : m_image(image), m_colour(colour), m_mask(mask), m_blended(m_mixer, mask) {
    m_mixer.SetDstOffscreen(&image);
    m_mixer.SetNode(&m_blend);
    m_mixer.SetColor(XCComplexColor(colour));
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
