// Strokes: hardness, opacity, pressure, rotation, spray and depths.

#include "gallery/brushes.h"
#include "gallery/sheets.h"
#include "presets.h"

#include <array>
#include <cmath>
#include <numbers>

namespace ovwpaint::gallery {

namespace {

struct NamedBrush {
    const char* caption;
    Brush brush;
};

void addAll(Sheet& sheet, const std::vector<NamedBrush>& brushes, int width, int height, Path (*path)(int, int)) {
    for (const NamedBrush& named : brushes)
        sheet.add(std::move(Cell(width, height).stroke(named.brush, path(width, height), 48)), named.caption);
}

Cell rampCell(const Brush& brush) {
    constexpr int cnWidth = 130, cnHeight = 116;
    Brush stamp = brush;
    stamp.size.size = 56;
    Cell cell(cnWidth, cnHeight);
    cell.tap(stamp, cnWidth * 0.5, cnHeight * 0.32);
    return std::move(cell.stroke(brush, lineFrom(20.0, cnHeight * 0.76, cnWidth - 20.0, cnHeight * 0.88)));
}

template <class Change>
Brush changed(Brush brush, Change change) {
    change(brush);
    return brush;
}

/// The wave with a pen that leans all around.
Path turningPenIn(int width, int height) {
    const Path wave = waveIn(width, height);
    return [=](double t) {
        XCStrokePoint point = wave(t);
        point.angleA = static_cast<float>(360.0 * t);
        return point;
    };
}

/// The wave, slow in the middle and fast at the ends.
Path hastyIn(int width, int height) {
    const Path wave = waveIn(width, height);
    return [=](double t) {
        XCStrokePoint point = wave(t);
        point.speed = static_cast<float>(std::abs(2.0 * t - 1.0));
        return point;
    };
}

Brush turning(int control, float step) {
    Brush brush = plainBrush(26);
    brush.sizeRate.rateAtFull = 0.25f;
    brush.interval.intervalAtFull = 45;
    brush.rotate.angleRange = std::numbers::pi_v<float>;
    brush.rotate.angleControl = control;
    brush.rotate.angleStep = step;
    return brush;
}

Brush spraying(int flags, int width, int count) {
    Brush brush = plainBrush(6);
    brush.airbrush.sprayFlags = flags;
    brush.airbrush.sprayWidthAtFull = width;
    brush.airbrush.plotCountAtFull = count;
    brush.interval.intervalMode = 1;
    brush.interval.intervalAtFull = 10;
    return brush;
}

Brush ringed() {
    constexpr int cnPerRing = 12;
    Brush brush = spraying(cnSprayScatter, 56, 36);
    brush.size.size = 4;
    brush.interval.intervalAtFull = 60;
    XCPatternDrawParam::AirbrushFixedPlot_FireWork(brush.airbrush, cnPerRing, 0.3);
    return brush;
}

} // namespace

Sheet paintRamps(const PhotoMaker&) {
    constexpr int cnStep = 51, cnFull = 255;
    Sheet sheet(6);
    for (int hardness = 0; hardness <= cnFull; hardness += cnStep)
        sheet.add(rampCell(softBrush(26, hardness)), "hardness " + std::to_string(hardness));
    for (int opacity = cnStep; opacity <= cnFull; opacity += cnStep) {
        Brush brush = plainBrush(26);
        brush.color.opacity = opacity;
        sheet.add(rampCell(brush), "opacity " + std::to_string(opacity));
    }
    Brush both = softBrush(26, 0);
    both.color.opacity = 100;
    sheet.add(rampCell(both), "hardness 0, opacity 100");
    return sheet;
}

Sheet paintPressure(const PhotoMaker&) {
    constexpr int cnWidth = 280, cnHeight = 64;
    constexpr int cnHalf = 128;
    const Brush plain = plainBrush(24);
    Sheet sheet(3);
    addAll(
        sheet,
        {{"size", changed(plain, [](Brush& b) { b.size.sizeControl = cnControlPressure; })},
         {"size, at least half", changed(plain,
                                         [](Brush& b) {
                                             b.size = {24, cnHalf, cnControlPressure};
                                         })},
         {"opacity", changed(plain, [](Brush& b) { b.color.opacityControl = cnControlPressure; })},
         {"size and opacity", changed(plain,
                                      [](Brush& b) {
                                          b.size.sizeControl = cnControlPressure;
                                          b.color.opacityControl = cnControlPressure;
                                      })},
         {"hardness", changed(plain, [](Brush& b) { b.hardness.hardnessControl = cnControlPressure; })},
         {"size rate", changed(plain,
                               [](Brush& b) {
                                   b.sizeRate = {1.0f, 0.1f, cnControlPressure};
                               })},
         {"interval", changed(plain,
                              [](Brush& b) {
                                  b.interval.intervalAtFull = 20;
                                  b.interval.intervalAtZero = 150;
                                  b.interval.intervalControl = cnControlPressure;
                              })},
         {"size, random", changed(plain, [](Brush& b) { b.size.sizeControl = cnControlPressure | cnControlRandom; })}},
        cnWidth, cnHeight, rampIn);
    addAll(sheet,
           {{"size by speed", changed(plain,
                                      [](Brush& b) {
                                          b.size = {24, 40, cnControlSpeed};
                                      })}},
           cnWidth, cnHeight, hastyIn);
    return sheet;
}

Sheet paintRotations(const PhotoMaker&) {
    constexpr int cnWidth = 280, cnHeight = 90;
    Brush radial = turning(cnRotateRadial, 0.0f);
    radial.airbrush.sprayFlags = cnSprayScatter;
    radial.airbrush.sprayWidthAtFull = 50;
    radial.airbrush.plotCountAtFull = 4;
    radial.size.size = 14;
    radial.interval.intervalAtFull = 100;
    Sheet sheet(3);
    addAll(sheet,
           {{"fixed", turning(0, 0.0f)},
            {"direction", turning(cnRotateDirection, 0.0f)},
            {"direction in steps", turning(cnRotateDirection, std::numbers::pi_v<float> / 4.0f)},
            {"pen azimuth", turning(cnRotateAngleA, 0.0f)},
            {"random", turning(cnRotateRandom, 0.0f)},
            {"radial, sprayed", radial}},
           cnWidth, cnHeight, turningPenIn);
    return sheet;
}

Sheet paintSprays(const PhotoMaker&) {
    constexpr int cnWidth = 280, cnHeight = 100;
    Brush soft = spraying(cnSprayScatter, 60, 6);
    soft.hardness.hardness = 0;
    soft.color.opacity = 90;
    soft.size = {16, 60, cnControlRandom};
    soft.method.cacheKind = cnCacheOver;
    Brush wide = spraying(cnSprayScatter, 70, 8);
    wide.airbrush.sprayWidthAtZero = 6;
    wide.airbrush.sprayWidthControl = cnControlPressure;
    Sheet sheet(3);
    addAll(sheet,
           {{"scattered", spraying(cnSprayScatter, 60, 8)},
            {"scattered, soft", soft},
            {"width by pressure", wide},
            {"fixed rings", ringed()}},
           cnWidth, cnHeight, rampIn);
    return sheet;
}

Sheet paintDepths(const PhotoMaker&) {
    constexpr int cnWidth = 200, cnHeight = 110;
    Sheet sheet(3);
    for (const int depth : {1, 2, 8, 24, 32}) {
        Cell cell(cnWidth, cnHeight, packColour(255, 255, 255), depth);
        Brush soft = softBrush(30, 0, packColour(30, 60, 150));
        soft.method.lowDepthSoft = 1;
        soft.color.opacityControl = cnControlPressure;
        cell.stroke(soft, rampIn(cnWidth, cnHeight / 2), 24);
        const Path wave = swellIn(cnWidth, cnHeight / 2);
        Brush pen = plainBrush(12, packColour(20, 20, 20));
        pen.size.sizeControl = cnControlPressure;
        cell.stroke(pen, [=](double t) {
            XCStrokePoint point = wave(t);
            point.y += cnHeight / 2.0;
            return point;
        });
        sheet.add(std::move(cell), std::to_string(depth) + (depth == 1 ? " bit" : " bits"));
    }
    return sheet;
}

} // namespace ovwpaint::gallery
