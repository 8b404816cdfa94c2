// The bending brush of the drawing engine.

#include "brush/bendstate.h"
#include "brush/plotpattern.h"
#include "brush/stampbounds.h"
#include "foundation/nomemory.h"
#include "ovwcmn/xcfastpixelmixer.h"
#include "ovwcmn/xcpattern.h"
#include "ovwcmn/xcpatterndraw.h"
#include "ovwcmn/xcpatterndrawparam.h"
#include "ovwcmn/xcplotgauss.h"
#include "ovwcmn/xcsimpleimage.h"

#include <algorithm>
#include <cmath>

using ovw::foundation::orNoMemory;

namespace {

/// An anti-aliased ribbon is not narrower than a small stamp, pixels.
constexpr double cnLeastSoftWidth = 1.8;

XCImagePattern* imageTipOf(XCPattern* tip) {
    auto* imageTip = dynamic_cast<XCImagePattern*>(tip);
    return imageTip && imageTip->GetImage() ? imageTip : nullptr;
}

int coverageOf(const XCSimpleImage& image, int x, int y) {
    const std::uint8_t* const pixel = image.GetPixel(x, y);
    switch (image.GetOrgBitCount()) {
    case 32: return pixel[3];
    case 24: return 255;
    case 8: return pixel[0];
    default: return pixel[0] != 0 ? 255 : 0;
    }
}

/// How much of an image, seen from its left side or from its top, is covered by less than half.
double emptyPart(const XCSimpleImage& image, bool isFromTop, bool isReversed) {
    const int depth = isFromTop ? image.GetHeight() : image.GetWidth();
    const int breadth = isFromTop ? image.GetWidth() : image.GetHeight();
    for (int i = 0; i < depth; i++)
        for (int j = 0; j < breadth; j++) {
            const int line = isReversed ? depth - 1 - i : i;
            if (coverageOf(image, isFromTop ? j : line, isFromTop ? line : j) >= 128)
                return static_cast<double>(i) / depth;
        }
    return 0.0; // faint all over
}

/// A ribbon is one long stamp: its pieces never add up, nor does it where it meets itself.
void keepLargerCoverage(XCFastPixelMixer& mixer) {
    mixer.SetStyleFlag(XCFastPixelMixer::STYLE_CACHE_OVER | XCFastPixelMixer::STYLE_CACHE_ADD, 0);
    mixer.SetStyleFlag(XCFastPixelMixer::STYLE_CACHE_MAX, 1);
}

} // namespace

namespace ovw::brush {

void BendState::advance(BENDPATTERNEND& first, BENDPATTERNEND& second, double widthFirst, double widthSecond,
                        double imageRatio, double widthFactor) {
    first.width = m_isStarted ? m_width : widthFirst * widthFactor;
    second.width = widthSecond * widthFactor;
    const double length = std::hypot(second.position.x - first.position.x, second.position.y - first.position.y);
    const double repeat = std::max((widthFirst + widthSecond) * 0.5 * imageRatio, cnLeastRepeat);
    first.along = m_along;
    second.along = m_along + (std::isfinite(length) ? length / repeat : 0.0);
    m_along = std::fmod(second.along, 1.0);
    m_width = second.width;
    m_isStarted = true;
}

void BendState::coverTrail(XCSimpleImage& image, int side, bool isHarmless) {
    if (!isHarmless)
        return m_trail.setInset({});
    if (!m_emptySides) {
        const XCAutoLockSimpleImage lock(&image);
        const bool isFromTop = side % 2 != 0;
        const bool isReversed = side == 1 || side == 2;
        m_emptySides = {1.0, emptyPart(image, isFromTop, isReversed), emptyPart(image, isFromTop, !isReversed)};
    }
    m_trail.setInset(*m_emptySides);
}

} // namespace ovw::brush

/// Chooses the tip that bends along the whole stroke; a stroke that begins again keeps its own.
void XCPatternDraw::chooseBendPattern() {
    m_bend.reset();
    if (!m_param->IsBendPattern())
        return;
    m_bend = orNoMemory([] { return std::make_unique<ovw::brush::BendState>(); });
    XCPattern* tip = m_param->GetDesignatedPattern();
    if (!tip)
        tip = m_param->ConvertPattern(); // may draw a random number, which a stroke that begins again draws again
    if (!m_currentPattern)
        m_currentPattern = tip;
    if (!m_currentPattern)
        return;
    PDPARAM_SIZERATE rate;
    m_param->GetSizeRateParam(rate);
    m_currentPattern->SetParameter(rate.rateAtFull, 1.0f, 0.0f);
}

/// @param a, b in pixels
void XCPatternDraw::drawBendedSegment(XCRect& painted, const XCStrokePoint& a, const XCStrokePoint& b,
                                      double startDirection, double endDirection) {
    XCImagePattern* const tip = imageTipOf(m_currentPattern);
    if (!tip || !m_bend)
        return;
    PLOTPATTERNPARAM stamp;
    float secondScale = 0.0f;
    int side = 0;
    m_param->ParamForBendPattern(&a, &b, stamp, secondScale, side);
    if (stamp.opacity == 0 || !std::isfinite(stamp.sizeScale) || !std::isfinite(secondScale))
        return;
    const double least = stamp.overSampling ? cnLeastSoftWidth : 0.0;
    const double widthFirst = std::max(static_cast<double>(stamp.size) * stamp.sizeScale, least);
    const double widthSecond = std::max(static_cast<double>(stamp.size) * secondScale, least);
    const double width = tip->GetImage()->GetWidth();
    const double height = tip->GetImage()->GetHeight();
    BENDPATTERNEND first{{a.x, a.y}, startDirection, 0.0, 0.0};
    BENDPATTERNEND second{{b.x, b.y}, endDirection, 0.0, 0.0};
    m_bend->advance(first, second, widthFirst, widthSecond, side % 2 == 0 ? height / width : width / height,
                    tip->sizeRate);

    // The mixer is set up as for a stamp of the segment's mean size.
    stamp.pattern = tip;
    stamp.x = a.x;
    stamp.y = a.y;
    stamp.sizeScale = (stamp.sizeScale + secondScale) * 0.5f;
    stamp.hardness = 255;
    stamp.hardnessScale = 1.0f;
    stamp.intervalRatio = 1.0f;
    const ovw::brush::StampSetup setup(*m_method, stamp);
    XCFastPixelMixer mixer;
    setup.configure(mixer, *m_plotGauss, m_colorAverage.get(), 0);
    keepLargerCoverage(mixer);
    const bool isOpaque = stamp.opacity == 255 && stamp.opacityScale >= 1.0f && stamp.color >> 24 == 255;
    m_bend->coverTrail(*tip->GetImage(), side, mixer.IsUseCache() || isOpaque);
    XCRect changed;
    if (tip->DrawBendedPattern(&changed, m_method->GetOffscreen(), &mixer, first, second, side, setup.antialias(),
                               &m_bend->trail()))
        ovw::brush::unite(painted, changed);
}
