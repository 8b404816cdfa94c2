// From a stroke point to the values of a stamp: control bits, scales, rotation, spacing and smudge colour.

#include "ovwcmn/xcpatterndrawparam.h"

#include "foundation/angles.h"
#include "ovwcmn/vxmath.h"
#include "ovwcmn/vxwutl.h"
#include "ovwcmn/xccoloraverage.h"
#include "ovwcmn/xcstroke.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numbers>

namespace {

using ovw::cnRadiansPerDegree;

constexpr double cnTurn = 2.0 * std::numbers::pi;
constexpr int cnIntervalAsSet = 3; ///< the intervalKind that uses intervalAtFull and intervalAtZero

std::int32_t clampToInt(std::int64_t value) {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, INT32_MIN, INT32_MAX));
}

constexpr int alphaOf(std::uint32_t color) { return static_cast<int>(color >> 24); }
constexpr std::uint32_t withAlpha(std::uint32_t color, int alpha) {
    return (color & 0x00FFFFFF) | static_cast<std::uint32_t>(alpha) << 24;
}

/// Limits an angle of 0 to 2 pi, seen as a turn either way, to the range.
double limitTurn(double angle, double range) {
    if (angle <= std::numbers::pi)
        return std::min(angle, range);
    return -std::min(cnTurn - angle, range);
}

/// The colour of two colours with their alphas, the drawn one weighted by the square of `share` (0 to 1).
std::uint32_t mixChannels(std::uint32_t drawn, std::uint32_t picked, double share) {
    const double drawnWeight = share * share * alphaOf(drawn);
    const double pickedWeight = (1.0 - share * share) * alphaOf(picked);
    std::uint32_t mixed = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        const double sum = drawnWeight * ((drawn >> shift) & 0xFF) + pickedWeight * ((picked >> shift) & 0xFF);
        mixed |= static_cast<std::uint32_t>(0.5 + sum / (drawnWeight + pickedWeight)) << shift;
    }
    return mixed;
}

} // namespace

double XCPatternDrawParam::convertParamScale(int control, const XCStrokePoint* point) {
    double scale = 1.0;
    if (control & cnControlPressure)
        scale = point->pressure;
    if (control & cnControlAuxScale)
        scale = point->auxScale;
    if (control & cnControlSpeed)
        scale = 1.0 - point->speed;
    if (control & cnControlRandom)
        scale *= xcRandom(&m_settings.workingSeed);
    return scale;
}

/// From minimum / 255 at a control of 0 to 1 at a control of 1.
float XCPatternDrawParam::minBasedScale(int minimum, int control, const XCStrokePoint* point) {
    if (control == 0)
        return 1.0f;
    const double least = minimum / 255.0;
    return static_cast<float>(least + (1.0 - least) * convertParamScale(control, point));
}

int XCPatternDrawParam::rangeBasedValue(int atFull, int atZero, int control, const XCStrokePoint* point) {
    const double range = static_cast<double>(atFull) - atZero;
    return clampToInt(std::int64_t{ovw::truncateToInt(range * convertParamScale(control, point))} + atZero);
}

float XCPatternDrawParam::ConvertPatternScale(const XCStrokePoint* point) {
    return minBasedScale(m_settings.size.sizeMin, m_settings.size.sizeControl, point);
}

float XCPatternDrawParam::ConvertOpacityScale(const XCStrokePoint* point) {
    return minBasedScale(m_settings.color.opacityMin, m_settings.color.opacityControl, point);
}

float XCPatternDrawParam::ConvertHardnessScale(const XCStrokePoint* point) {
    return minBasedScale(m_settings.hardness.hardnessMin, m_settings.hardness.hardnessControl, point);
}

float XCPatternDrawParam::ConvertMixColorScale(const XCStrokePoint* point) {
    return minBasedScale(m_settings.mixColor.mixColorMin, m_settings.mixColor.mixColorControl, point);
}

float XCPatternDrawParam::ConvertMixAlphaScale(const XCStrokePoint* point) {
    return minBasedScale(m_settings.mixColor.mixAlphaMin, m_settings.mixColor.mixAlphaControl, point);
}

float XCPatternDrawParam::ConvertSizeRate(const XCStrokePoint* point) {
    const PDPARAM_SIZERATE& rate = m_settings.sizeRate;
    const double range = static_cast<double>(rate.rateAtFull) - rate.rateAtZero;
    return static_cast<float>(range * convertParamScale(rate.rateControl, point) + rate.rateAtZero);
}

int XCPatternDrawParam::ConvertPlotCount(const XCStrokePoint* point) {
    const PDPARAM_AIRBRUSH& airbrush = m_settings.airbrush;
    if (airbrush.sprayFlags == 0)
        return 1;
    const int count =
        rangeBasedValue(airbrush.plotCountAtFull, airbrush.plotCountAtZero, airbrush.plotCountControl, point);
    return std::clamp(count, 1, PDPARAM_AIRBRUSH::cnMaxPlots);
}

int XCPatternDrawParam::ConvertInterval(const XCStrokePoint* point) {
    const PDPARAM_INTERVAL& interval = m_settings.interval;
    if (interval.intervalMode == 0)
        return 1;
    int result = 0;
    if (interval.intervalKind == cnIntervalAsSet) {
        double scale = convertParamScale(interval.intervalControl, point);
        if (interval.intervalControl & cnControlSpeed)
            scale = 1.0 - scale; // here the interval follows the speed itself
        const double range = static_cast<double>(interval.intervalAtFull) - interval.intervalAtZero;
        result = clampToInt(std::int64_t{ovw::truncateToInt(range * scale)} + interval.intervalAtZero);
    } else {
        const double softness = (255.0 - m_settings.hardness.hardness) / 100.0 + 1.0;
        result = ovw::truncateToInt(softness * ((4.0 - interval.intervalKind) * 3.0));
    }
    return interval.intervalMode == 1 ? std::max(result, 1) : result;
}

double XCPatternDrawParam::GetNextInterval(const XCStrokePoint* point, double& intervalToSize, double factor) {
    if (m_settings.etc.continueFlag)
        return 0.0;
    double stampSize = m_settings.size.size;
    double interval = 0.0;
    switch (m_settings.interval.intervalMode) {
    case 1: interval = ConvertInterval(point); break;
    case 2:
        stampSize *= ConvertPatternScale(point);
        interval = ConvertInterval(point) / 100.0 * stampSize;
        break;
    default: break;
    }
    // What is no number counts as the least, so that the stroke goes on behind a bad sample.
    const auto atLeast = [](double least, double v) { return std::isfinite(v) ? std::max(least, v) : least; };
    stampSize = atLeast(0.001, stampSize);
    interval = atLeast(1.0, interval);
    intervalToSize = interval / stampSize;
    return factor > 0.0 ? interval * factor : interval;
}

/// The angle that the controls add, radians.
double XCPatternDrawParam::rotationOffset(const XCStrokePoint* point, double direction, const XCPointD& stampPosition) {
    const PDPARAM_ROTATE& rotate = m_settings.rotate;
    if (rotate.angleControl & cnRotateRandom)
        return (2.0 * xcRandom(&m_settings.workingSeed) - 1.0) * rotate.angleRange;
    double angle = 0.0;
    if (rotate.angleControl & cnRotateAngleA)
        angle = point->angleA * cnRadiansPerDegree;
    else if (rotate.angleControl & cnRotateAngleB)
        angle = point->angleB * cnRadiansPerDegree;
    else if (rotate.angleControl & cnRotateDirection)
        angle = direction;
    else if (rotate.angleControl & cnRotateRadial)
        angle = std::atan2(stampPosition.y - point->y, stampPosition.x - point->x) - std::numbers::pi / 2.0;
    angle = vxRotNormal(angle);
    return rotate.angleRange >= 0.0f ? limitTurn(angle, rotate.angleRange) : angle;
}

float XCPatternDrawParam::ConvertRotate(const XCStrokePoint* point, double direction, const XCPointD& stampPosition) {
    const PDPARAM_ROTATE& rotate = m_settings.rotate;
    if (rotate.angleControl == 0)
        return rotate.angle;
    double offset = rotationOffset(point, direction, stampPosition);
    if (offset != 0.0 && rotate.angleStep > 0.0f)
        offset = rotate.angleStep * std::trunc(offset / rotate.angleStep);
    return static_cast<float>(rotate.angle + offset);
}

XCPattern* XCPatternDrawParam::nextBackAndForth(int count) {
    const int index = m_settings.patternIndex;
    const int last = m_settings.patternDirection == 0 ? count - 1 : 0;
    const bool turns = index == last;
    if (turns)
        m_settings.patternDirection = 1 - m_settings.patternDirection;
    m_settings.patternIndex += m_settings.patternDirection == 0 ? 1 : -1;
    return m_settings.pattern.patterns[index];
}

XCPattern* XCPatternDrawParam::ConvertPattern() {
    const PDPARAM_PATTERN& list = m_settings.pattern;
    const int count = std::min<int>(list.patternCount, std::size(list.patterns));
    if (count < 1)
        return nullptr;
    if (count == 1)
        return list.patterns[0];
    int& index = m_settings.patternIndex;
    if (index < 0 || index >= count) // left from a longer list
        index = 0;
    switch (list.patternOrder) {
    case 0: {
        XCPattern* current = list.patterns[index];
        index = (index + 1) % count;
        return current;
    }
    case 1: return nextBackAndForth(count);
    case 2:
        index = std::min(static_cast<int>(xcRandom(&m_settings.workingSeed) * count), count - 1);
        return list.patterns[index];
    default: return list.patterns[index];
    }
}

std::uint32_t XCPatternDrawParam::MixDrawColor(XCColorAverage* average, const XCStrokePoint* point, int& noColor) {
    const std::uint32_t drawn = m_settings.color.drawColor;
    if (!average || !IsUseMixColorParam())
        return drawn;
    if (!average->IsAverageColor()) {
        noColor = 1;
        return 0;
    }
    const PDPARAM_MIXCOLOR& mix = m_settings.mixColor;
    const std::uint32_t picked = average->ConvertSmudgeColor(mix.smudge);
    const int ownAlpha = ovw::truncateToInt(static_cast<double>(mix.mixAlpha) * ConvertMixAlphaScale(point));
    int alpha = ownAlpha >= 255 ? alphaOf(drawn) : alphaOf(picked);
    if (ownAlpha > 0 && ownAlpha < 255)
        alpha = ((255 - ownAlpha) * alphaOf(picked) + alphaOf(drawn) * ownAlpha + 127) / 255;
    if (alpha == 0)
        return 0x00FFFFFF;
    const int ownColor = ovw::truncateToInt(static_cast<double>(mix.mixColor) * ConvertMixColorScale(point));
    if (ownColor >= 255 || alphaOf(picked) == 0)
        return withAlpha(drawn, alpha);
    if (ownColor <= 0 || alphaOf(drawn) == 0)
        return withAlpha(picked, alpha);
    return withAlpha(mixChannels(drawn, picked, ownColor / 255.0), alpha);
}
