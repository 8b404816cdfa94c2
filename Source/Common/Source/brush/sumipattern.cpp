// The ink splatter, painted as a picture for a tip.

#include "ovwcmn/xcpatterndraw.h"
#include "ovwcmn/xcpatterndrawparam.h"
#include "ovwcmn/xcstroke.h"
#include "ovwcmn/xcvirtualmemory.h"
#include "ovwcmn/xcvoffscreen.h"

#include <algorithm>
#include <cstdint>

namespace {

constexpr int cnFullHardness = 255;
constexpr int cnLeastDrops = 10;
constexpr int cnRings = 4;
/// Where the innermost ring begins, of the radius.
constexpr double cnInnerRadius = 0.1;
constexpr int cnMethodNormal = 1;
constexpr int cnCacheMax = 2;

/// @return pixels, the diameter of the largest drops
int dropSize(int size, double sizeSpread) {
    const double largest = 0.25 * size;
    const double least = std::max(size * 0.025, 1.0);
    const double drop = least + (largest - least) * sizeSpread;
    return ovw::truncateToInt(std::min(drop, largest));
}

int dropCount(double density) {
    const double count = cnLeastDrops + 246.0 * density;
    return std::clamp(ovw::truncateToInt(count), cnRings, PDPARAM_AIRBRUSH::cnMaxPlots);
}

void setDrops(XCPatternDrawParam& brush, int drop, double softness) {
    PDPARAM_SIZE size;
    size.size = drop;
    size.sizeControl = cnControlRandom;
    brush.SetSizeParam(size);
    PDPARAM_HARDNESS hardness;
    hardness.hardness = std::clamp(ovw::truncateToInt((1.0 - softness) * cnFullHardness), 1, cnFullHardness);
    brush.SetHardnessParam(hardness);
    PDPARAM_SIZERATE rate;
    rate.rateAtZero = 0.5f;
    rate.rateControl = cnControlRandom;
    brush.SetSizeRateParam(rate);
    PDPARAM_ROTATE rotate;
    rotate.angleRange = 180.0f;
    rotate.angleStep = 1.0f;
    rotate.angleControl = cnRotateRandom;
    brush.SetRotateParam(rotate);
}

void setRings(XCPatternDrawParam& brush, int size, int drops) {
    PDPARAM_AIRBRUSH airbrush;
    airbrush.sprayFlags = cnSprayScatter;
    airbrush.sprayWidthAtFull = size;
    airbrush.plotCountAtFull = drops;
    XCPatternDrawParam::AirbrushFixedPlot_FireWork(airbrush, drops / cnRings, cnInnerRadius);
    brush.SetAirbrushParam(airbrush);
}

void splash(XCVOffscreen& image, XCPatternDrawParam& brush, double center) {
    XCPatternDrawMethod method;
    method.SetOffscreen(&image, 1, nullptr, &brush, cnMethodNormal, cnCacheMax, 1, 0, 0);
    XCPatternDraw engine;
    engine.SetOffscreen(PDOFFSCREENINFO(), &method);
    XCStrokePoint point{};
    point.x = center;
    point.y = center;
    point.pressure = 1.0f;
    point.auxScale = 1.0f;
    XCLinerStroke stroke;
    stroke.FirstStore(point);
    stroke.Store(point);
    method.BeginMethod();
    engine.BeginDraw(&brush);
    engine.DrawStroke(nullptr, &stroke, 1);
    engine.EndDraw(nullptr);
    method.EndMethod();
}

} // namespace

void XCPatternDraw::CreateSumiPattern(XCVOffscreen* image, int size, double sizeSpread, double softness, double density,
                                      int overSampling, double resolution) {
    if (!image || size <= 0)
        return;
    const int drop = dropSize(size, std::clamp(sizeSpread, 0.0, 1.0));
    XCPatternDrawParam brush;
    setDrops(brush, drop, softness);
    setRings(brush, size, dropCount(density));
    PDPARAM_ETC etc;
    etc.overSampling = overSampling;
    brush.SetEtcParam(etc);
    const auto side = static_cast<int>(std::min(std::int64_t{size} + drop, std::int64_t{INT32_MAX}));
    image->Create(xcGetVirtualMemory(), side, side, resolution);
    splash(*image, brush, (static_cast<double>(size) + drop) / 2.0);
}
