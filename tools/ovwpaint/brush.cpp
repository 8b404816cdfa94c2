#include "brush.h"

#include <algorithm>
#include <cmath>

namespace ovwpaint {

namespace {

/// Lengths stay whole pixels, as the records hold them, and at least one.
int scaledLength(int length, double factor) {
    constexpr double cnLongest = 1.0e6;
    return static_cast<int>(std::clamp(std::round(length * factor), 1.0, cnLongest));
}

} // namespace

void Brush::setComposition(int composition) {
    method.methodKind = composition;
    if (composition == XCFastPixelMixer::Replace)
        method.useCache = 0;
    else if (composition > XCFastPixelMixer::LightenStep)
        method.useCache = 1;
}

Brush Brush::scaled(double factor) const {
    constexpr int cnIntervalInPixels = 1;
    Brush brush = *this;
    brush.size.size = scaledLength(size.size, factor);
    brush.airbrush.sprayWidthAtFull = scaledLength(airbrush.sprayWidthAtFull, factor);
    brush.airbrush.sprayWidthAtZero = scaledLength(airbrush.sprayWidthAtZero, factor);
    if (blurs())
        brush.source.blurRadius = std::min(scaledLength(source.blurRadius, factor), cnMaxBlurRadius);
    if (interval.intervalMode == cnIntervalInPixels) {
        brush.interval.intervalAtFull = scaledLength(interval.intervalAtFull, factor);
        brush.interval.intervalAtZero = scaledLength(interval.intervalAtZero, factor);
    }
    return brush;
}

double Brush::reach() const {
    // The falloff of a soft stamp reaches up to 1.75 times its radius; a turned square sqrt(2) times.
    constexpr double cnSoftReach = 1.75;
    constexpr double cnEdge = 2.0;
    double aspect = std::max(1.0, static_cast<double>(sizeRate.rateAtFull));
    if (sizeRate.rateControl != 0)
        aspect = std::max(aspect, static_cast<double>(sizeRate.rateAtZero));
    double corner = 1.0;
    for (int i = 0; i < pattern.polygon.GetSize(); ++i) {
        const tagPOINTD& vertex = pattern.polygon[i];
        corner = std::max(corner, std::hypot(vertex.x, vertex.y));
    }
    const double stamp = size.size * 0.5 * aspect * corner * cnSoftReach;
    const double spray =
        (airbrush.sprayFlags & cnSprayScatter) == 0
            ? 0.0
            : std::max(airbrush.sprayWidthAtFull, airbrush.sprayWidthControl != 0 ? airbrush.sprayWidthAtZero : 0) *
                  0.5;
    return stamp + spray + source.blurRadius + cnEdge;
}

void Brush::applyTo(XCPatternDrawParam& param) const {
    param.SetPatternParam(pattern);
    param.SetSizeParam(size);
    param.SetColorParam(color);
    param.SetHardnessParam(hardness);
    param.SetMixColorParam(mixColor);
    param.SetSizeRateParam(sizeRate);
    param.SetRotateParam(rotate);
    param.SetIntervalParam(interval);
    param.SetAirbrushParam(airbrush);
    param.SetEtcParam(etc);
}

} // namespace ovwpaint
