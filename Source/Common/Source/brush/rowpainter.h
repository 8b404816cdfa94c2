#ifndef OVW_BRUSH_ROWPAINTER_H
#define OVW_BRUSH_ROWPAINTER_H

/// @file
/// The ways in which the rows of a polygon reach the image.

#include "ovwcmn/xcfastpixelmixer.h"
#include "ovwcmn/xcgeometry.h"
#include "ovwcmn/xcpixelmixer.h"
#include "ovwcmn/xcvoffpixelmixer.h"
#include "vimage/polygonscan.h"

#include <array>
#include <cstdint>

namespace ovw::brush {

class CoverageRow;

/// Takes the rows of one polygon, with hard or with soft edges. Everything pointed to outlives the polygon.
class RowPainter : public vimage::SpanPainter {
public:
    /// A row of the tile by its coverage, which is taken out of `row`.
    virtual void paintCoverage(CoverageRow& row, int y) = 0;

protected:
    ~RowPainter() = default;
};

/// Through the fast mixer.
class MixerRows final : public RowPainter {
public:
    explicit MixerRows(XCFastPixelMixer& mixer) : m_mixer(mixer) {}

    void enterTile(const XCRect& tile) override { m_mixer.MoveCursorToBlock(tile.left, tile.top); }
    void paintSpan(int first, int last, int y) override { m_mixer.DoLineRow(first, last, y); }
    void paintCoverage(CoverageRow& row, int y) override;

private:
    XCFastPixelMixer& m_mixer;
};

/// Through the per-pixel mixer, whose clone source follows the middle of the polygon.
class PixelMixerRows final : public RowPainter {
public:
    PixelMixerRows(XCVOffPixelMixer& mixer, XCVOffPixelMask* mask) : m_mixer(mixer), m_mask(mask) {}

    void beginFigure(const XCRect& bounds) override;
    void enterTile(const XCRect& tile) override { m_tile = tile; }
    void paintSpan(int first, int last, int y) override {
        m_mixer.DoLineRow(first, last, y, m_mask, nullptr, m_origin);
    }
    void paintCoverage(CoverageRow& row, int y) override;

private:
    XCVOffPixelMixer& m_mixer;
    XCVOffPixelMask* m_mask;
    XCRect m_tile;
    tagPOINT m_origin{0, 0};
    std::array<std::uint8_t, XCVOffscreen::cnBlockSize> m_coverage;
};

/// With one colour: hard edges replace by the image's own row fill, coverage blends the colour over the pixels.
class ColourRows final : public RowPainter {
public:
    ColourRows(XCVOffscreen& image, std::uint32_t colour, XCVOffPixelMask* mask);

    void enterTile(const XCRect& tile) override { m_blended.enterTile(tile); }
    void paintSpan(int first, int last, int y) override;
    void paintCoverage(CoverageRow& row, int y) override { m_blended.paintCoverage(row, y); }

private:
    XCVOffscreen& m_image;
    std::uint32_t m_colour;
    XCVOffPixelMask* m_mask;
    XCPixelMixerBlend m_blend;
    XCVOffPixelMixer m_mixer;
    PixelMixerRows m_blended;
};

} // namespace ovw::brush

#endif // OVW_BRUSH_ROWPAINTER_H
