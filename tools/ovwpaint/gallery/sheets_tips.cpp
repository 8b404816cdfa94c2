// Tips: shapes, pictures, lists, bends and splatters.

#include "gallery/brushes.h"
#include "gallery/sheets.h"
#include "names.h"
#include "tips.h"

#include <cmath>
#include <numbers>

namespace ovwpaint::gallery {

namespace {

Brush polygonBrush(int size, int corners) {
    Brush brush = plainBrush(size);
    brush.pattern.patternKind = XCPattern::cnKindPolygon;
    for (int i = 0; i < corners; ++i) {
        const double angle = 2.0 * std::numbers::pi * i / corners;
        brush.pattern.polygon.PushBack({std::sin(angle), -std::cos(angle)});
    }
    return brush;
}

Brush ofSize(Brush brush, int size) {
    brush.size.size = size;
    return brush;
}

/// Stamps from small to large, one turned, and a stroke.
Cell tipCell(const Brush& brush) {
    constexpr int cnWidth = 420, cnHeight = 76;
    Cell cell(cnWidth, cnHeight);
    double x = 12.0;
    for (const int size : {4, 8, 16, 32, 64}) {
        x += size * 0.5;
        cell.tap(ofSize(brush, size), x, cnHeight * 0.5);
        x += size * 0.5 + 10.0;
    }
    Brush turned = ofSize(brush, 32);
    turned.rotate.angle = std::numbers::pi_v<float> / 6.0f;
    cell.tap(turned, x + 16.0, cnHeight * 0.5);
    const Path wave = waveIn(180, cnHeight);
    return std::move(cell.stroke(ofSize(brush, 20), [=](double t) {
        XCStrokePoint point = wave(t);
        point.x += cnWidth - 180.0;
        return point;
    }));
}

Brush ellipseBrush(float rate) {
    Brush brush = plainBrush(20);
    brush.sizeRate.rateAtFull = rate;
    return brush;
}

Brush rectBrush() {
    Brush brush = plainBrush(20);
    brush.pattern.patternKind = XCPattern::cnKindRect;
    return brush;
}

Brush bendingBrush(const char* tip, int size, float angle) {
    Brush brush = imageBrush(size, {tip}, 5);
    brush.etc.bendFlag = 1;
    brush.rotate.angle = angle;
    return brush;
}

Brush splatterBrush(int size, float spread, float softness, float density) {
    Brush brush = imageBrush(size, {cnSplatterTip}, 60);
    brush.tips.splatterSpread = spread;
    brush.tips.splatterSoftness = softness;
    brush.tips.splatterDensity = density;
    return brush;
}

} // namespace

Sheet paintTips(const PhotoMaker&) {
    Sheet sheet(2);
    sheet.add(tipCell(plainBrush(20)), "circle");
    sheet.add(tipCell(softBrush(20, 100)), "circle, hardness 100");
    sheet.add(tipCell(ellipseBrush(0.4f)), "ellipse, size rate 0.4");
    sheet.add(tipCell(ellipseBrush(0.15f)), "ellipse, size rate 0.15");
    sheet.add(tipCell(rectBrush()), "rectangle");
    sheet.add(tipCell(polygonBrush(20, 3)), "polygon of 3");
    sheet.add(tipCell(polygonBrush(20, 6)), "polygon of 6");
    for (const BuiltInTip& tip : builtInTips()) {
        const std::string name = std::string(tip.name).substr(cnBuiltInPrefix.size());
        sheet.add(tipCell(imageBrush(20, {tip.name}, tip.depth == 1 ? 100 : 40)),
                  "image " + name + ", " + std::to_string(tip.depth) + (tip.depth == 1 ? " bit" : " bits"));
    }
    sheet.add(tipCell(splatterBrush(20, 0.5f, 0.2f, 0.3f)), "splatter");
    return sheet;
}

Sheet paintTipOrders(const PhotoMaker&) {
    constexpr int cnWidth = 420, cnHeight = 70;
    Sheet sheet(1);
    for (const NamedValue& order : tipOrderNames()) {
        Brush brush =
            imageBrush(30, {"builtin:leaf-green", "builtin:leaf-gold", "builtin:leaf-red", "builtin:star"}, 90);
        brush.pattern.patternOrder = order.value;
        brush.rotate.angleRange = std::numbers::pi_v<float>;
        brush.rotate.angleControl = cnRotateDirection;
        sheet.add(std::move(Cell(cnWidth, cnHeight).stroke(brush, waveIn(cnWidth, cnHeight))), order.name);
    }
    return sheet;
}

Sheet paintBends(const PhotoMaker&) {
    constexpr int cnWidth = 200, cnHeight = 150;
    const auto cell = [](const Brush& brush, const Path& path, int pieces) {
        return std::move(Cell(cnWidth, cnHeight).stroke(brush, path, pieces));
    };
    Sheet sheet(4);
    for (int side = 0; side < 4; ++side) {
        const Brush brush =
            bendingBrush("builtin:leaf-gold", 26, static_cast<float>(side) * std::numbers::pi_v<float> / 2.0f);
        sheet.add(cell(brush, waveIn(cnWidth, cnHeight), 24), "side " + std::to_string(side) + " ahead");
    }
    for (const char* tip : {"builtin:rope", "builtin:dry-strip"}) {
        const std::string name = std::string(tip).substr(cnBuiltInPrefix.size());
        sheet.add(cell(bendingBrush(tip, 24, 0.0f), loopIn(cnWidth, cnHeight), 48), name + ", loop");
        sheet.add(cell(bendingBrush(tip, 18, 0.0f), spiralIn(cnWidth, cnHeight), 60), name + ", spiral");
        sheet.add(cell(bendingBrush(tip, 24, 0.0f), zigzagIn(cnWidth, cnHeight), 6), name + ", corners");
        Brush pressed = bendingBrush(tip, 40, 0.0f);
        pressed.size.sizeControl = cnControlPressure;
        sheet.add(cell(pressed, swellIn(cnWidth, cnHeight), 24), name + ", by pressure");
    }
    return sheet;
}

Sheet paintSplatters(const PhotoMaker&) {
    constexpr int cnSide = 130;
    Sheet sheet(6);
    for (const float softness : {0.0f, 0.8f}) {
        for (const float spread : {0.2f, 0.5f, 1.0f}) {
            for (const float density : {0.1f, 0.5f}) {
                Cell cell(cnSide, cnSide);
                cell.tap(splatterBrush(110, spread, softness, density), cnSide * 0.5, cnSide * 0.5);
                const auto text = [](float value) { return std::to_string(value).substr(0, 3); };
                sheet.add(std::move(cell), text(spread) + ", " + text(softness) + ", " + text(density));
            }
        }
    }
    return sheet;
}

} // namespace ovwpaint::gallery
