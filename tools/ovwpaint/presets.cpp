#include "presets.h"

#include "colour.h"
#include "materials.h"
#include "texture.h"
#include "tips.h"

#include <array>
#include <cmath>
#include <numbers>

namespace ovwpaint {

namespace {

// The kinds of stroke cache, as XCPatternDrawMethod::SetOffscreen numbers them.
constexpr int cnCacheOver = 0;    // every stamp covers some more of what is left
constexpr int cnCacheCapped = 1;  // never beyond the stroke's opacity
constexpr int cnCacheMaximum = 2; // the strongest stamp counts
constexpr int cnCacheSum = 3;     // stamps add up

// The modes of textures, as XCFastPixelMixer::SetTexture numbers them.
constexpr int cnModeBias = 0;
constexpr int cnModeScale = 1;
constexpr int cnModeSubtract = 2;
constexpr int cnModeLimit = 3;

// The orders of tips in a list.
constexpr int cnOrderBackAndForth = 1;
constexpr int cnOrderRandom = 2;

constexpr int cnIntervalByFields = 3;
constexpr int cnIntervalPercent = 2;

constexpr float cnPi = std::numbers::pi_v<float>;

/// Stamps every `percent` of their size. Close stamps make even edges; one pixel is the least.
void setSpacing(Brush& brush, int percent) {
    brush.interval.intervalMode = cnIntervalPercent;
    brush.interval.intervalKind = cnIntervalByFields;
    brush.interval.intervalAtFull = percent;
}

void setSize(Brush& brush, int size, int minimum, int control) { brush.size = {size, minimum, control}; }

void setMethod(Brush& brush, int method, int cache) {
    brush.method.methodKind = method;
    brush.method.cacheKind = cache;
}

void makeInkPen(Brush& brush) {
    setSize(brush, 6, 40, cnControlPressure);
    brush.color.drawColor = packColour(20, 24, 40);
    setSpacing(brush, 8);
    setMethod(brush, XCFastPixelMixer::Normal, cnCacheMaximum);
}

void makePencil(Brush& brush) {
    setSize(brush, 4, 170, cnControlPressure);
    brush.color = {packColour(52, 52, 56), brush.color.subColor, 220, 50, cnControlPressure};
    brush.hardness.hardness = 200;
    setSpacing(brush, 25);
    setMethod(brush, XCFastPixelMixer::Normal, cnCacheOver);
    brush.method.lowDepthSoft = 1;
}

void makeMarker(Brush& brush) {
    setSize(brush, 18, 220, cnControlPressure);
    brush.color.drawColor = packColour(250, 205, 40);
    brush.color.opacity = 150;
    setSpacing(brush, 5);
    setMethod(brush, XCFastPixelMixer::Normal, cnCacheMaximum);
    brush.method.lowDepthSoft = 1;
}

void makeAirbrush(Brush& brush) {
    setSize(brush, 20, 130, cnControlRandom);
    brush.color = {packColour(40, 90, 190), brush.color.subColor, 26, 30, cnControlPressure};
    brush.hardness.hardness = 0;
    brush.airbrush.sprayFlags = cnSprayScatter;
    brush.airbrush.sprayWidthAtFull = 40;
    brush.airbrush.plotCountAtFull = 6;
    setSpacing(brush, 12);
    setMethod(brush, XCFastPixelMixer::Normal, cnCacheOver);
    brush.method.lowDepthSoft = 1;
}

void makeEraser(Brush& brush) {
    setSize(brush, 16, 100, cnControlPressure);
    brush.hardness.hardness = 220;
    setSpacing(brush, 6);
    setMethod(brush, XCFastPixelMixer::Erase, cnCacheMaximum);
}

/// An ellipse as a polygon, whose edges the rasteriser smooths in both directions; those of the circle tip's ellipses
/// only along the rows, which shows as steps on nearly level strokes.
void setEllipseTip(Brush& brush) {
    constexpr int cnVertices = 24;
    brush.pattern.patternKind = XCPattern::cnKindPolygon;
    for (int i = 0; i < cnVertices; ++i) {
        const double angle = 2.0 * std::numbers::pi * i / cnVertices;
        brush.pattern.polygon.PushBack({std::cos(angle), std::sin(angle)});
    }
}

/// The nib grows rounder as it grows smaller, so that it never becomes thinner than its stamps lie apart.
void makeTaperedEllipse(Brush& brush) {
    setEllipseTip(brush);
    setSize(brush, 16, 50, cnControlPressure);
    brush.color.drawColor = packColour(90, 20, 40);
    brush.sizeRate = {0.3f, 0.85f, cnControlPressure};
    brush.rotate.angle = cnPi / 4.0f;
    setSpacing(brush, 3);
    setMethod(brush, XCFastPixelMixer::Normal, cnCacheMaximum);
}

/// The grain takes from the paint, so that pressing harder fills it.
void makeChalk(Brush& brush) {
    setSize(brush, 22, 200, cnControlPressure);
    brush.color = {packColour(60, 80, 130), brush.color.subColor, 255, 90, cnControlPressure};
    brush.hardness.hardness = 170;
    setSpacing(brush, 6);
    setMethod(brush, XCFastPixelMixer::Normal, cnCacheMaximum);
    brush.texture = {cnGrainTexture, cnModeSubtract, 0, 0};
    brush.method.lowDepthSoft = 1;
}

/// Takes up some of what it goes over and carries it along.
void makeWater(Brush& brush) {
    setSize(brush, 26, 150, cnControlPressure);
    brush.color.drawColor = packColour(40, 110, 190);
    brush.hardness.hardness = 120;
    brush.mixColor.mixColor = 60;
    brush.mixColor.smudge = 20;
    setSpacing(brush, 5);
    setMethod(brush, XCFastPixelMixer::Water, cnCacheOver);
}

/// Adds nothing of its own.
void makeSmudge(Brush& brush) {
    setSize(brush, 30, 200, cnControlPressure);
    brush.hardness.hardness = 100;
    brush.mixColor.mixColor = 0;
    brush.mixColor.mixAlpha = 0;
    brush.mixColor.smudge = 15;
    setSpacing(brush, 5);
    setMethod(brush, XCFastPixelMixer::Water, cnCacheOver);
}

void setTips(Brush& brush, std::vector<std::string> patterns) {
    brush.pattern.patternKind = XCPattern::cnKindImage;
    brush.tips.patterns = std::move(patterns);
}

void makeStars(Brush& brush) {
    setTips(brush, {"builtin:star"});
    setSize(brush, 24, 90, cnControlPressure);
    brush.color.drawColor = packColour(214, 150, 20);
    setSpacing(brush, 130);
    setMethod(brush, XCFastPixelMixer::Normal, cnCacheOver);
}

/// The hairs lie across the stroke, whatever its direction.
void makeBristle(Brush& brush) {
    setTips(brush, {"builtin:bristle"});
    setSize(brush, 28, 120, cnControlPressure);
    brush.color.drawColor = packColour(150, 60, 40);
    brush.rotate.angleRange = cnPi;
    brush.rotate.angleControl = cnRotateDirection;
    setSpacing(brush, 4);
    setMethod(brush, XCFastPixelMixer::Normal, cnCacheMaximum);
}

/// Pictures in their own colours keep their soft edges only without a cache.
void setOwnColours(Brush& brush, std::vector<std::string> patterns) {
    setTips(brush, std::move(patterns));
    brush.method.useCache = 0;
}

/// Three pictures in their own colours, turned and scattered at random.
void makeLeaves(Brush& brush) {
    setOwnColours(brush, {"builtin:leaf-green", "builtin:leaf-gold", "builtin:leaf-red"});
    brush.pattern.patternOrder = cnOrderRandom;
    setSize(brush, 30, 130, cnControlRandom);
    brush.rotate.angleRange = cnPi;
    brush.rotate.angleControl = cnRotateRandom;
    brush.airbrush.sprayFlags = cnSprayScatter;
    brush.airbrush.sprayWidthAtFull = 46;
    brush.airbrush.plotCountAtFull = 2;
    setSpacing(brush, 50);
}

/// The leaves grow along the stroke, one colour after the other, forward and back again.
void makeGarland(Brush& brush) {
    setOwnColours(brush, {"builtin:leaf-green", "builtin:leaf-gold", "builtin:leaf-red"});
    brush.pattern.patternOrder = cnOrderBackAndForth;
    setSize(brush, 26, 140, cnControlPressure);
    brush.rotate.angleRange = cnPi;
    brush.rotate.angleControl = cnRotateDirection;
    setSpacing(brush, 70);
}

void makeSplatter(Brush& brush) {
    setTips(brush, {cnSplatterTip, cnSplatterTip, cnSplatterTip, cnSplatterTip});
    brush.pattern.patternOrder = cnOrderRandom;
    setSize(brush, 60, 60, cnControlPressure | cnControlRandom);
    brush.color.drawColor = packColour(20, 24, 40);
    brush.rotate.angleRange = cnPi;
    brush.rotate.angleControl = cnRotateRandom;
    setSpacing(brush, 60);
    setMethod(brush, XCFastPixelMixer::Normal, cnCacheOver);
}

void makeRope(Brush& brush) {
    setOwnColours(brush, {"builtin:rope"});
    setSize(brush, 20, 160, cnControlPressure);
    brush.etc.bendFlag = 1;
}

void makeDryBrush(Brush& brush) {
    setTips(brush, {"builtin:dry-strip"});
    setSize(brush, 26, 100, cnControlPressure);
    brush.color.drawColor = packColour(40, 60, 110);
    brush.etc.bendFlag = 1;
    setMethod(brush, XCFastPixelMixer::Normal, cnCacheMaximum);
}

/// A broad soft line with a texture.
void makeGrainy(Brush& brush, Colour colour, int mode, int density, int after) {
    setSize(brush, 24, 190, cnControlPressure);
    brush.color = {colour, brush.color.subColor, 255, 60, cnControlPressure};
    brush.hardness.hardness = 150;
    setSpacing(brush, 6);
    setMethod(brush, XCFastPixelMixer::Normal, cnCacheMaximum);
    brush.texture = {cnGrainTexture, mode, density, after};
    brush.method.lowDepthSoft = 1;
}

void makePastel(Brush& brush) { makeGrainy(brush, packColour(200, 90, 120), cnModeBias, -96, 0); }
void makeCharcoal(Brush& brush) { makeGrainy(brush, packColour(40, 38, 36), cnModeScale, 0, 1); }
void makeCrayon(Brush& brush) { makeGrainy(brush, packColour(30, 130, 90), cnModeLimit, 0, 0); }

void makeStencil(Brush& brush) {
    makeAirbrush(brush);
    brush.color.drawColor = packColour(200, 80, 30);
    brush.source.mask = cnStencilMask;
}

/// Stamps become one even layer, however often the pen goes over them.
void makeInkWash(Brush& brush) {
    setSize(brush, 30, 150, cnControlPressure);
    brush.color = {packColour(60, 70, 90), brush.color.subColor, 110, 60, cnControlPressure};
    brush.hardness.hardness = 60;
    setSpacing(brush, 10);
    setMethod(brush, XCFastPixelMixer::Normal, cnCacheCapped);
    brush.method.lowDepthSoft = 1;
}

/// Light that adds up where the pen lingers.
void makeGlow(Brush& brush) {
    setSize(brush, 26, 150, cnControlPressure);
    brush.color = {packColour(255, 190, 90), brush.color.subColor, 200, 10, cnControlPressure};
    brush.hardness.hardness = 0;
    setSpacing(brush, 8);
    setMethod(brush, XCFastPixelMixer::Screen, cnCacheSum);
    brush.method.densityFlag = 1;
}

void makeHighlighter(Brush& brush) {
    setSize(brush, 20, 235, cnControlPressure);
    brush.color.drawColor = packColour(255, 240, 60);
    setSpacing(brush, 5);
    setMethod(brush, XCFastPixelMixer::Multiply, cnCacheMaximum);
}

void makeTone(Brush& brush, int composition) {
    setSize(brush, 40, 150, cnControlPressure);
    brush.color = {packColour(110, 110, 110), brush.color.subColor, 160, 60, cnControlPressure};
    brush.hardness.hardness = 0;
    setSpacing(brush, 8);
    setMethod(brush, composition, cnCacheCapped);
}

void makeDodge(Brush& brush) { makeTone(brush, XCFastPixelMixer::ColorDodge); }
void makeBurn(Brush& brush) { makeTone(brush, XCFastPixelMixer::ColorBurn); }

/// Water whose colour darkens what it goes over, as glazes do.
void makeWatercolour(Brush& brush) {
    makeWater(brush);
    brush.color.drawColor = packColour(90, 150, 200);
    brush.mixColor.mixColor = 150;
    setMethod(brush, XCFastPixelMixer::WaterMultiply, cnCacheOver);
}

void makeCloneStamp(Brush& brush) {
    setSize(brush, 40, 200, cnControlPressure);
    brush.hardness.hardness = 130;
    setSpacing(brush, 6);
    brush.source.cloneFlag = 1;
    brush.source.cloneX = brush.source.cloneY = -40;
}

void makeBlur(Brush& brush) {
    setSize(brush, 36, 200, cnControlPressure);
    brush.hardness.hardness = 60;
    setSpacing(brush, 12);
    brush.source.blurRadius = 6;
}

constexpr std::array cnPresets = {
    Preset{"ink-pen", "crisp dark line, as wide as the pen is pressed", makeInkPen},
    Preset{"pencil", "soft grey line, darker under pressure", makePencil},
    Preset{"marker", "broad translucent band, even within a stroke", makeMarker},
    Preset{"airbrush", "soft blue spray, scattered around the pen", makeAirbrush},
    Preset{"eraser", "takes away what is there (see ovwpaint draw --help)", makeEraser},
    Preset{"tapered-ellipse", "slanted flat nib, thick and thin by direction and pressure", makeTaperedEllipse},
    Preset{"chalk", "grainy, fuller under pressure", makeChalk},
    Preset{"water", "wet blue paint that takes up the colours it goes over", makeWater},
    Preset{"smudge", "drags along the colours of the picture, has none itself", makeSmudge},
    Preset{"watercolour", "glazes that darken what is below, mixed with it", makeWatercolour},
    Preset{"blur", "softens what is there", makeBlur},
    Preset{"clone-stamp", "paints with what lies to the left and above, or with another picture (--clone)",
           makeCloneStamp},
    Preset{"pastel", "grain that weakens the paint by its own amount (texture mode bias)", makePastel},
    Preset{"charcoal", "grain over the whole stroke, not its stamps (texture mode scale, after)", makeCharcoal},
    Preset{"crayon", "grain that lets only so much through (texture mode limit)", makeCrayon},
    Preset{"stencil", "spray through a mask with round holes", makeStencil},
    Preset{"ink-wash", "even grey layer, never beyond its opacity (cache over-capped)", makeInkWash},
    Preset{"glow", "light that adds up where the pen lingers (screen, cache sum)", makeGlow},
    Preset{"highlighter", "yellow that leaves dark lines readable (multiply)", makeHighlighter},
    Preset{"dodge", "brightens what is there (color-dodge)", makeDodge},
    Preset{"burn", "darkens what is there (color-burn)", makeBurn},
    Preset{"stars", "a row of stars, from a tip in black and white", makeStars},
    Preset{"bristle", "streaks of hairs across the stroke, from a grey tip", makeBristle},
    Preset{"leaves", "scattered leaves in three colours of their own (list of tips, random)", makeLeaves},
    Preset{"garland", "leaves along the stroke (list of tips, back and forth)", makeGarland},
    Preset{"splatter", "blots and drops of ink, each another one", makeSplatter},
    Preset{"rope", "a picture bent along the stroke, in its own colours", makeRope},
    Preset{"dry-brush", "a grey picture bent along the stroke: streaks that follow every turn", makeDryBrush},
};

} // namespace

std::span<const Preset> presets() { return cnPresets; }

const Preset* findPreset(std::string_view name) {
    for (const Preset& preset : cnPresets) {
        if (preset.name == name)
            return &preset;
    }
    return nullptr;
}

Brush brushOf(const Preset& preset) {
    Brush brush;
    preset.adjust(brush);
    return brush;
}

} // namespace ovwpaint
