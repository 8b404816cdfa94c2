#include "brushfields.h"

#include "ovwcmn/xcfastpixelmixer.h"

#include <array>

namespace ovwpaint {

namespace {

constexpr int cnMaxByte = 255;
constexpr int cnMaxLength = 10000;  // pixels
constexpr int cnMaxPercent = 10000; // of the stamp's size
constexpr int cnMaxComposition = XCFastPixelMixer::AddFade;
constexpr int cnMaxTipOrder = 2;
constexpr int cnMaxCloneOffset = 100000; // pixels
constexpr int cnMaxCacheKind = 3;
constexpr int cnMaxTextureMode = 3;
constexpr int cnScaleBits = cnControlRandom | cnControlPressure | cnControlAuxScale | cnControlSpeed;
constexpr int cnRotateBits = cnRotateRandom | cnRotateAngleA | cnRotateAngleB | cnRotateDirection | cnRotateRadial;
constexpr int cnSprayBits = cnSprayScatter | cnSprayFixedPlots | cnSprayTrailing;
constexpr double cnMaxRate = 100.0;
constexpr double cnMaxAngle = 100.0; // radians

// One line a field, in the order of the records.
#define FIELD(record, field)                                                                                           \
#field, [](Brush & brush) -> auto& { return brush.record.field; }

constexpr std::array cnIntegerFields = {
    IntegerField{FIELD(pattern, patternKind), 0, XCPattern::cnKindImage, false, tipNames},
    IntegerField{FIELD(pattern, patternOrder), 0, cnMaxTipOrder, false, tipOrderNames},
    IntegerField{FIELD(tips, patternInvert), 0, 1},
    IntegerField{FIELD(tips, patternGrey), 0, 1},
    IntegerField{FIELD(size, size), 1, cnMaxLength},
    IntegerField{FIELD(size, sizeMin), 0, cnMaxByte},
    IntegerField{FIELD(size, sizeControl), 0, cnScaleBits, true},
    IntegerField{FIELD(color, opacity), 0, cnMaxByte},
    IntegerField{FIELD(color, opacityMin), 0, cnMaxByte},
    IntegerField{FIELD(color, opacityControl), 0, cnScaleBits, true},
    IntegerField{FIELD(hardness, hardness), 0, cnMaxByte},
    IntegerField{FIELD(hardness, hardnessMin), 0, cnMaxByte},
    IntegerField{FIELD(hardness, hardnessControl), 0, cnScaleBits, true},
    IntegerField{FIELD(mixColor, mixColor), 0, cnMaxByte},
    IntegerField{FIELD(mixColor, mixColorMin), 0, cnMaxByte},
    IntegerField{FIELD(mixColor, mixColorControl), 0, cnScaleBits, true},
    IntegerField{FIELD(mixColor, mixAlpha), 0, cnMaxByte},
    IntegerField{FIELD(mixColor, mixAlphaMin), 0, cnMaxByte},
    IntegerField{FIELD(mixColor, mixAlphaControl), 0, cnScaleBits, true},
    IntegerField{FIELD(mixColor, smudge), 0, cnMaxLength},
    IntegerField{FIELD(sizeRate, rateControl), 0, cnScaleBits, true},
    IntegerField{FIELD(rotate, angleControl), 0, cnRotateBits, true},
    IntegerField{FIELD(interval, intervalMode), 0, 2},
    IntegerField{FIELD(interval, intervalAtFull), 0, cnMaxPercent},
    IntegerField{FIELD(interval, intervalAtZero), 0, cnMaxPercent},
    IntegerField{FIELD(interval, intervalControl), 0, cnScaleBits, true},
    IntegerField{FIELD(interval, intervalKind), 0, 3},
    IntegerField{FIELD(airbrush, sprayFlags), 0, cnSprayBits, true},
    IntegerField{FIELD(airbrush, sprayWidthAtFull), 0, cnMaxLength},
    IntegerField{FIELD(airbrush, sprayWidthAtZero), 0, cnMaxLength},
    IntegerField{FIELD(airbrush, sprayWidthControl), 0, cnScaleBits, true},
    IntegerField{FIELD(airbrush, plotCountAtFull), 1, PDPARAM_AIRBRUSH::cnMaxPlots},
    IntegerField{FIELD(airbrush, plotCountAtZero), 1, PDPARAM_AIRBRUSH::cnMaxPlots},
    IntegerField{FIELD(airbrush, plotCountControl), 0, cnScaleBits, true},
    IntegerField{FIELD(etc, overSampling), 0, 1},
    IntegerField{FIELD(etc, fadeStep), 0, cnMaxByte},
    IntegerField{FIELD(etc, continueFlag), 0, 1},
    IntegerField{FIELD(etc, bendFlag), 0, 1},
    IntegerField{FIELD(etc, etcValue), 0, cnMaxLength},
    IntegerField{FIELD(method, useCache), 0, 1},
    IntegerField{FIELD(method, methodKind), 0, cnMaxComposition, false, compositionNames},
    IntegerField{FIELD(method, cacheKind), 0, cnMaxCacheKind, false, cacheNames},
    IntegerField{FIELD(method, methodFlag), 0, 1},
    IntegerField{FIELD(method, densityFlag), 0, 1},
    IntegerField{FIELD(method, lowDepthSoft), 0, 1},
    IntegerField{FIELD(texture, textureMode), 0, cnMaxTextureMode, false, textureModeNames},
    IntegerField{FIELD(texture, textureDensity), -cnMaxTextureDensity, cnMaxTextureDensity},
    IntegerField{FIELD(texture, textureAfter), 0, 1},
    IntegerField{FIELD(source, cloneFlag), 0, 1},
    IntegerField{FIELD(source, cloneX), -cnMaxCloneOffset, cnMaxCloneOffset},
    IntegerField{FIELD(source, cloneY), -cnMaxCloneOffset, cnMaxCloneOffset},
    IntegerField{FIELD(source, blurRadius), 0, cnMaxBlurRadius},
};

constexpr std::array cnNumberFields = {
    NumberField{FIELD(sizeRate, rateAtFull), 0.0, cnMaxRate},
    NumberField{FIELD(sizeRate, rateAtZero), 0.0, cnMaxRate},
    NumberField{FIELD(rotate, angle), -cnMaxAngle, cnMaxAngle},
    NumberField{FIELD(rotate, angleRange), -cnMaxAngle, cnMaxAngle},
    NumberField{FIELD(rotate, angleStep), 0.0, cnMaxAngle},
    NumberField{FIELD(tips, splatterSpread), 0.0, 1.0},
    NumberField{FIELD(tips, splatterSoftness), 0.0, 1.0},
    NumberField{FIELD(tips, splatterDensity), 0.0, 1.0},
};

constexpr std::array cnColourFields = {
    ColourField{FIELD(color, drawColor)},
    ColourField{FIELD(color, subColor)},
};

#undef FIELD

} // namespace

std::span<const IntegerField> integerFields() { return cnIntegerFields; }
std::span<const NumberField> numberFields() { return cnNumberFields; }
std::span<const ColourField> colourFields() { return cnColourFields; }

} // namespace ovwpaint
