// Where the stamps of an airbrush position fall.

#include "ovwcmn/xcpatterndrawparam.h"

#include "ovwcmn/vxmath.h"
#include "ovwcmn/vxwutl.h"
#include "ovwcmn/xcstroke.h"

#include <algorithm>

namespace {

/// On the way from `from` to `to`, `reach` away from `from`; `to` itself when it lies within reach.
tagPOINTD trailingPoint(const tagPOINTD& from, const tagPOINTD& to, double reach) {
    const double distance = vxPointLength(from.x, from.y, to.x, to.y);
    if (reach <= 0.0 || distance <= reach)
        return to;
    return {from.x + (to.x - from.x) * reach / distance, from.y + (to.y - from.y) * reach / distance};
}

} // namespace

/// A bell-shaped distribution, cut off at a disc of diameter `width`.
tagPOINTD XCPatternDrawParam::gaussianScatter(const XCStrokePoint* point, int width) {
    double gx = 0.0;
    double gy = 0.0;
    do {
        gx = xcGetGaussRand(&m_settings.workingSeed);
        gy = xcGetGaussRand(&m_settings.workingSeed);
    } while (gx * gx + gy * gy > 0.25);
    return {point->x + gx * width, point->y + gy * width};
}

tagPOINTD XCPatternDrawParam::ConvertPlotPoint(const XCStrokePoint* point) {
    const PDPARAM_AIRBRUSH& airbrush = m_settings.airbrush;
    if (!(airbrush.sprayFlags & cnSprayScatter))
        return {point->x, point->y};
    const int width =
        rangeBasedValue(airbrush.sprayWidthAtFull, airbrush.sprayWidthAtZero, airbrush.sprayWidthControl, point);
    if (airbrush.sprayFlags & cnSprayFixedPlots) {
        const tagPOINTD& plot = airbrush.fixedPlots[std::min(m_plotIndex, PDPARAM_AIRBRUSH::cnMaxPlots - 1)];
        const int half = width / 2;
        return {point->x + plot.x * half, point->y + plot.y * half};
    }
    if (airbrush.sprayFlags & cnSprayTrailing)
        return trailingPoint(m_previousPlot, {point->x, point->y}, width * 0.5);
    return gaussianScatter(point, width);
}

void XCPatternDrawParam::AirbrushFixedPlot_FireWork(PDPARAM_AIRBRUSH& airbrush, int perRing, double inner) {
    airbrush.sprayFlags |= cnSprayFixedPlots;
    const int total = std::min(airbrush.plotCountAtFull, PDPARAM_AIRBRUSH::cnMaxPlots);
    if (perRing < 1 || total < 1)
        return;
    const int rings = (total - 1) / perRing + 1;
    const double angleStep = 360.0 / perRing;
    const double ringWidth = (1.0 - inner) / rings;
    double angle = 0.0;
    for (int i = 0; i < total; i++) {
        const int ring = i / perRing;
        if (ring > 0 && i % perRing == 0)
            angle += angleStep * 0.5;
        const double bandStart = ring * ringWidth + inner - ringWidth * 0.5;
        const double radius = bandStart + xcRandom(nullptr) * ringWidth;
        double sine = 0.0;
        double cosine = 0.0;
        vxDegreeSinCos(angle, &sine, &cosine);
        airbrush.fixedPlots[i] = {cosine * radius, sine * radius};
        angle += angleStep;
    }
}
