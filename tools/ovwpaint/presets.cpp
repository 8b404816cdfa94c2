#include "presets.h"

#include "colour.h"
#include "texture.h"

#include <array>
#include <cmath>
#include <numbers>

namespace ovwpaint {

namespace {

// The kinds of stroke cache, as XCPatternDrawMethod::SetOffscreen numbers them.
constexpr int cnCacheOver = 0;    // every stamp covers some more of what is left
constexpr int cnCacheMaximum = 2; // the strongest stamp counts

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
    constexpr int cnModeSubtract = 2;
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
