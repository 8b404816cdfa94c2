// Settings, random state and the sequence of stamps. The conversions stand in xcpatterndrawparamconvert.cpp.

#include "ovwcmn/xcpatterndrawparam.h"

#include "ovwcmn/vxmath.h"
#include "ovwcmn/xcsimpleimage.h"
#include "ovwcmn/xcstroke.h"

#include <algorithm>
#include <iterator>
#include <numbers>

namespace {

/// Bits a pixel of a tip's image, 32 for every image with colours of its own; 0 for other tips and empty ones.
int bitCountOf(const XCPattern* tip) {
    const auto* imageTip = dynamic_cast<const XCImagePattern*>(tip);
    const int bitCount = imageTip && imageTip->GetImage() ? imageTip->GetImage()->GetOrgBitCount() : 0;
    return bitCount >= 24 ? 32 : bitCount;
}

/// The bits that hold the pixels of both kinds of images: two colours and densities together need all 32.
int combinedBitCount(int a, int b) {
    const int larger = std::max(a, b);
    const int smaller = std::min(a, b);
    return smaller == 2 && larger > 2 ? 32 : larger;
}

} // namespace

XCPatternDrawParam::XCPatternDrawParam() { InitRandom(); }

XCPatternDrawParam::XCPatternDrawParam(const XCPatternDrawParam& other) : m_settings(other.m_settings) {}

XCPatternDrawParam& XCPatternDrawParam::operator=(const XCPatternDrawParam& other) {
    if (this != &other) {
        m_settings = other.m_settings;
        m_template = {};
        EndPlotParam();
    }
    return *this;
}

XCPatternDrawParam::~XCPatternDrawParam() = default;

void XCPatternDrawParam::InitParam() {
    InitPatternParam();
    InitSizeParam();
    InitColorParam();
    InitHardnessParam();
    InitMixColorParam();
    InitSizeRateParam();
    InitRotateParam();
    InitIntervalParam();
    InitAirbrushParam();
    InitEtcParam();
    InitRandom();
    m_settings.designatedPattern = nullptr;
}

void XCPatternDrawParam::InitRandom() {
    const auto seed = static_cast<std::uint32_t>(xcRandom(nullptr) * 32767.0);
    m_settings.initialSeed = seed;
    m_settings.workingSeed = seed;
}

void XCPatternDrawParam::ResetPatternState() {
    m_settings.patternIndex = 0;
    m_settings.patternDirection = 0;
    m_settings.workingSeed = m_settings.initialSeed;
}

int XCPatternDrawParam::IsUseParamControl(int mask) const {
    const Settings& s = m_settings;
    const int used = s.size.sizeControl | s.color.opacityControl | s.hardness.hardnessControl |
                     s.mixColor.mixColorControl | s.mixColor.mixAlphaControl | s.sizeRate.rateControl |
                     s.rotate.angleControl | s.interval.intervalControl | s.airbrush.sprayWidthControl |
                     s.airbrush.plotCountControl;
    return (used & mask) != 0;
}

int XCPatternDrawParam::IsUseMixColorParam() const {
    const PDPARAM_MIXCOLOR& mix = m_settings.mixColor;
    return mix.mixColor != 255 || mix.mixAlpha != 255 || mix.mixColorControl != 0 || mix.mixAlphaControl != 0;
}

int XCPatternDrawParam::IsOpaquePattern() const {
    if (m_settings.color.opacity < 255 || m_settings.color.opacityControl != 0)
        return 0;
    switch (m_settings.pattern.patternKind) {
    case XCPattern::cnKindCircle:
        return m_settings.hardness.hardness == 255 && m_settings.hardness.hardnessControl == 0;
    case XCPattern::cnKindRect:
    case XCPattern::cnKindPolygon: return 1;
    case XCPattern::cnKindImage: {
        const std::span<XCPattern* const> tips = chosenTips();
        return std::none_of(tips.begin(), tips.end(), [](const XCPattern* tip) { return bitCountOf(tip) >= 8; });
    }
    default: return 0;
    }
}

int XCPatternDrawParam::GetIamgePatternBitCount() const {
    if (!m_settings.designatedPattern && m_settings.pattern.patternKind != XCPattern::cnKindImage)
        return 0;
    int combined = 0;
    for (const XCPattern* tip : chosenTips())
        combined = combinedBitCount(combined, bitCountOf(tip));
    return combined;
}

/// The designated tip, else the tips of the list.
std::span<XCPattern* const> XCPatternDrawParam::chosenTips() const {
    if (m_settings.designatedPattern)
        return {&m_settings.designatedPattern, 1};
    const PDPARAM_PATTERN& pattern = m_settings.pattern;
    const int count = std::clamp(pattern.patternCount, 0, static_cast<int>(std::size(pattern.patterns)));
    return {pattern.patterns, static_cast<std::size_t>(count)};
}

/// The tip of the tip kind as if newly built, or null when designated or listed tips are used.
XCPattern* XCPatternDrawParam::defaultTip() {
    const PDPARAM_PATTERN& pattern = m_settings.pattern;
    if (m_settings.designatedPattern)
        return nullptr;
    switch (pattern.patternKind) {
    case XCPattern::cnKindImage:
        if (pattern.patternCount >= 1)
            return nullptr;
        [[fallthrough]];
    case XCPattern::cnKindCircle: return &m_circle;
    case XCPattern::cnKindRect: return &m_rect;
    case XCPattern::cnKindPolygon:
        if (!m_polygon)
            m_polygon = std::make_unique<XCPolygonPattern>();
        m_polygon->SetPolygon(&m_settings.pattern.polygon);
        return m_polygon.get();
    default: return nullptr;
    }
}

void XCPatternDrawParam::fillTemplate(double intervalRatio) {
    const Settings& s = m_settings;
    m_template = {};
    m_template.color = s.color.drawColor;
    m_template.subColor = s.color.subColor;
    m_template.size = static_cast<float>(s.size.size);
    m_template.opacity = s.color.opacity;
    m_template.hardness = s.hardness.hardness;
    m_template.intervalRatio = m_plotCount == 1 ? static_cast<float>(intervalRatio) : 1.0f;
    m_template.etcValue = s.etc.etcValue;
    m_template.sizeFixed = s.size.sizeControl == 0;
    m_template.hardnessFixed = s.hardness.hardnessControl == 0;
    m_template.overSampling = s.etc.overSampling;
}

void XCPatternDrawParam::BeginPlotParam(const XCStrokePoint* point, double intervalRatio) {
    m_plotCount = ConvertPlotCount(point);
    m_plotIndex = 0;
    m_previousPlot = {};
    fillTemplate(intervalRatio);
    m_defaultPattern = defaultTip();
    if (m_defaultPattern)
        m_defaultPattern->SetParameter(1.0f, 1.0f, 0.0f);
}

int XCPatternDrawParam::NextPlotParam(PLOTPATTERNPARAM& out, const XCStrokePoint* point, double direction) {
    if (m_plotIndex >= m_plotCount)
        return 0;
    // Any of these may draw a random number: a redrawn stroke repeats them in this order.
    out = m_template;
    const XCPointD position = ConvertPlotPoint(point);
    XCPattern* tip = m_defaultPattern ? m_defaultPattern : m_settings.designatedPattern;
    if (!tip)
        tip = ConvertPattern();
    if (!tip)
        return 0;
    out.pattern = tip;
    out.x = position.x;
    out.y = position.y;
    out.sizeScale = ConvertPatternScale(point);
    out.opacityScale = ConvertOpacityScale(point);
    out.hardnessScale = ConvertHardnessScale(point);
    const float angle = ConvertRotate(point, direction, position);
    tip->SetParameter(ConvertSizeRate(point), 1.0f, angle);
    m_plotIndex++;
    m_previousPlot = position;
    return 1;
}

void XCPatternDrawParam::EndPlotParam() {
    m_plotCount = 0;
    m_plotIndex = 0;
    m_previousPlot = {};
    m_defaultPattern = nullptr;
}

void XCPatternDrawParam::ParamForBendPattern(const XCStrokePoint* first, const XCStrokePoint* second,
                                             PLOTPATTERNPARAM& out, float& secondScale, int& side) {
    const Settings& s = m_settings;
    out.color = s.color.drawColor;
    out.subColor = s.color.subColor;
    out.size = static_cast<float>(s.size.size);
    out.opacity = s.color.opacity;
    out.sizeScale = ConvertPatternScale(first);
    out.opacityScale = ConvertOpacityScale(first);
    out.etcValue = s.etc.etcValue;
    out.overSampling = s.etc.overSampling;
    secondScale = ConvertPatternScale(second);
    const double degrees = s.rotate.angle * (180.0 / std::numbers::pi);
    const bool isTurned = degrees >= 45.0 && degrees < 315.0;
    side = isTurned ? 1 + static_cast<int>((degrees - 45.0) / 90.0) : 0;
}
