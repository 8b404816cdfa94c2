#include "vimage/polygonrows.h"

#include "vimage/dithertable.h"

namespace ovw::vimage {

namespace {

class ColourSpans final : public SpanPainter {
public:
    ColourSpans(XCVOffscreen& image, const PolygonColour& paint) : m_image(image), m_paint(paint) {}

    void paintSpans(const XCRect& tile, RunBand& runs) override {
        forTileSpans(tile, runs,
                     [this](int first, int last, int y) { fillPolygonRow(m_image, first, last, y, m_paint); });
    }

private:
    XCVOffscreen& m_image;
    const PolygonColour& m_paint;
};

} // namespace

void fillPolygonRow(XCVOffscreen& image, int first, int last, int y, const PolygonColour& paint) {
    const std::uint8_t* const pattern = paint.alpha < PolygonColour::cnOpaque ? ditherRow(y) : nullptr;
    image.MoveCursor(first, y);
    image.FillLineRowForPolygon(first, last, paint.colour, paint.mode, paint.mask, paint.maskOffsetX, pattern,
                                paint.alpha);
}

int fillPolygon(tagRECT* changed, XCVOffscreen& image, const tagRECT* clip, const PolygonColour& paint,
                std::span<const tagPOINTD> vertices) {
    ColourSpans painter(image, paint);
    return fillPolygon(changed, image, clip, painter, vertices, FillRule::EvenOdd);
}

} // namespace ovw::vimage
