#ifndef OVW_BRUSH_ROWPAINTER_H
#define OVW_BRUSH_ROWPAINTER_H

/// @file
/// The ways in which the rows of a polygon reach the image.

#include "ovwcmn/xcfastpixelmixer.h"
#include "ovwcmn/xcgeometry.h"
#include "ovwcmn/xcpixelmixer.h"
#include "ovwcmn/xcvoffpixelmixer.h"
#include "vimage/polygonscan.h"

#include <cstdint>

namespace ovw::brush {

/// Takes the rows of one polygon, with hard or with soft edges. Everything pointed to outlives the polygon.
class RowPainter : public vimage::SpanPainter {
public:
    /// The runs in a tile by their coverage.
    virtual void paintCoverage(const XCRect& tile, vimage::RunBand& runs) = 0;

protected:
    ~RowPainter() = default;
};

/// Through the fast mixer.
class MixerRows final : public RowPainter {
public:
    explicit MixerRows(XCFastPixelMixer& mixer) : m_mixer(mixer) {}

    void paintSpans(const XCRect& tile, vimage::RunBand& runs) override;
    void paintCoverage(const XCRect& tile, vimage::RunBand& runs) override;

private:
    XCFastPixelMixer& m_mixer;
};

/// Through the per-pixel mixer, whose clone source follows the middle of the polygon.
class PixelMixerRows final : public RowPainter {
public:
    PixelMixerRows(XCVOffPixelMixer& mixer, XCVOffPixelMask* mask) : m_mixer(mixer), m_mask(mask) {}

    void beginFigure(const XCRect& bounds) override;
    void paintSpans(const XCRect& tile, vimage::RunBand& runs) override;
    void paintCoverage(const XCRect& tile, vimage::RunBand& runs) override;

private:
    XCVOffPixelMixer& m_mixer;
    XCVOffPixelMask* m_mask;
    tagPOINT m_origin{0, 0};
};

/// With one colour: hard edges replace by the image's own row fill, coverage blends the colour over the pixels.
class ColourRows final : public RowPainter {
public:
    ColourRows(XCVOffscreen& image, std::uint32_t colour, XCVOffPixelMask* mask);

    void paintSpans(const XCRect& tile, vimage::RunBand& runs) override;
    void paintCoverage(const XCRect& tile, vimage::RunBand& runs) override { m_blended.paintCoverage(tile, runs); }

private:
    void paintSpan(int first, int last, int y);

    XCVOffscreen& m_image;
    std::uint32_t m_colour;
    XCVOffPixelMask* m_mask;
    XCPixelMixerBlend m_blend;
    XCVOffPixelMixer m_mixer;
    PixelMixerRows m_blended;
};

} // namespace ovw::brush

#endif // OVW_BRUSH_ROWPAINTER_H
