// Paint: compositions, caches, textures, masks, smudging, water, blur and clones.

#include "gallery/brushes.h"
#include "gallery/ground.h"
#include "gallery/sheets.h"
#include "names.h"
#include "presets.h"
#include "texture.h"

namespace ovwpaint::gallery {

namespace {

constexpr Colour cnClear = packColour(255, 255, 255, 0);
constexpr int cnPhotoWidth = 250, cnPhotoHeight = 170;

/// Grounds of every kind, and a wide stroke over them.
Cell compositionCell(int composition) {
    constexpr int cnWidth = 200, cnHeight = 70, cnColoured = 110;
    Brush brush = softBrush(34, 190, packColour(224, 120, 40));
    brush.color.opacity = 220;
    brush.setComposition(composition);
    // Replacing paints no soft rim over what is there, it leaves one.
    if (composition == XCFastPixelMixer::Replace) {
        brush.hardness.hardness = 255;
        brush.etc.overSampling = 0;
    }
    Cell cell(cnWidth, cnHeight, cnClear);
    return std::move(cell.fill(bandsUpTo(cnColoured)).stroke(brush, waveIn(cnWidth, cnHeight)));
}

Brush grainy(int mode, int density, int after) {
    Brush brush = softBrush(34, 200);
    brush.color.opacityControl = cnControlPressure;
    brush.texture = {cnGrainTexture, mode, density, after};
    return brush;
}

Cell photoCell(const PhotoMaker& photo) {
    Cell cell(cnPhotoWidth, cnPhotoHeight);
    cell.fill(photo(cnPhotoWidth, cnPhotoHeight));
    return cell;
}

/// Three strokes across the whole picture.
Cell overPhoto(const PhotoMaker& photo, const Brush& brush, const PictureWish& wish = {}) {
    Cell cell = photoCell(photo);
    for (const double y : {0.25, 0.5, 0.75}) {
        const Path wave = waveIn(cnPhotoWidth, cnPhotoHeight / 3);
        cell.stroke(
            brush,
            [=](double t) {
                XCStrokePoint point = wave(t);
                point.y += cnPhotoHeight * (y - 1.0 / 6.0);
                return point;
            },
            24, wish);
    }
    return cell;
}

Brush smudging(int smudge, int hardness, int mixColor) {
    Brush brush = softBrush(34, hardness, packColour(210, 60, 90));
    brush.method.cacheKind = cnCacheOver;
    brush.setComposition(XCFastPixelMixer::Water);
    brush.mixColor.mixColor = mixColor;
    brush.mixColor.mixAlpha = mixColor;
    brush.mixColor.smudge = smudge;
    return brush;
}

Brush blurring(int radius, int hardness) {
    Brush brush = softBrush(36, hardness);
    brush.interval.intervalAtFull = 12;
    brush.source.blurRadius = radius;
    return brush;
}

Brush cloning(int x, int y) {
    Brush brush = softBrush(44, 120);
    brush.source.cloneFlag = 1;
    brush.source.cloneX = x;
    brush.source.cloneY = y;
    return brush;
}

} // namespace

Sheet paintCompositions(const PhotoMaker&) {
    Sheet sheet(4);
    for (const NamedValue& composition : compositionNames())
        sheet.add(compositionCell(composition.value), composition.name);
    return sheet;
}

Sheet paintCaches(const PhotoMaker&) {
    constexpr int cnWidth = 250, cnHeight = 120;
    Sheet sheet(3);
    for (const NamedValue& cache : cacheNames()) {
        for (const int spacing : {5, 30}) {
            Brush brush = softBrush(34, spacing == 5 ? 255 : 60);
            brush.color.opacity = 120;
            brush.color.opacityControl = cnControlPressure;
            brush.method.cacheKind = cache.value;
            brush.method.densityFlag = 1;
            brush.interval.intervalAtFull = spacing;
            sheet.add(std::move(Cell(cnWidth, cnHeight).stroke(brush, loopIn(cnWidth, cnHeight), 48)),
                      std::string(cache.name) + ", interval " + std::to_string(spacing));
        }
    }
    Brush direct = softBrush(34, 60);
    direct.color.opacity = 120;
    direct.interval.intervalAtFull = 30;
    direct.method.useCache = 0;
    sheet.add(std::move(Cell(cnWidth, cnHeight).stroke(direct, loopIn(cnWidth, cnHeight), 48)),
              "no cache, interval 30");
    return sheet;
}

Sheet paintTextures(const PhotoMaker&) {
    constexpr int cnWidth = 250, cnHeight = 66;
    Sheet sheet(3);
    const auto add = [&](const Brush& brush, const std::string& caption) {
        sheet.add(std::move(Cell(cnWidth, cnHeight).stroke(brush, rampIn(cnWidth, cnHeight))), caption);
    };
    for (const NamedValue& mode : textureModeNames()) {
        for (const int after : {0, 1})
            add(grainy(mode.value, 0, after), std::string(mode.name) + (after ? ", after" : ", before"));
    }
    for (const int density : {-192, -96, 96, 192})
        add(grainy(0, density, 0), "bias, density " + std::to_string(density));
    return sheet;
}

Sheet paintMasks(const PhotoMaker&) {
    constexpr int cnWidth = 280, cnHeight = 150;
    Sheet sheet(3);
    Brush brushes[] = {plainBrush(60), brushOf(*findPreset("airbrush")), brushOf(*findPreset("leaves"))};
    const char* captions[] = {"a round pen", "an airbrush", "image tips"};
    for (int i = 0; i < 3; ++i) {
        brushes[i].source.mask = cnStencilMask;
        brushes[i].airbrush.sprayWidthAtFull *= 2;
        sheet.add(std::move(Cell(cnWidth, cnHeight).stroke(brushes[i], waveIn(cnWidth, cnHeight))), captions[i]);
    }
    PictureWish wish;
    for (const int offset : {12, 24, 90}) {
        wish.maskOffset = {offset, offset};
        Brush brush = plainBrush(60);
        brush.source.mask = cnStencilMask;
        sheet.add(std::move(Cell(cnWidth, cnHeight).stroke(brush, waveIn(cnWidth, cnHeight), 24, wish)),
                  "moved by " + std::to_string(offset));
    }
    return sheet;
}

Sheet paintSmudges(const PhotoMaker& photo) {
    Sheet sheet(3);
    sheet.add(photoCell(photo), "as it was");
    sheet.add(overPhoto(photo, smudging(10, 120, 0)), "smudge 10");
    sheet.add(overPhoto(photo, smudging(50, 120, 0)), "smudge 50");
    sheet.add(overPhoto(photo, smudging(100, 120, 0)), "smudge 100");
    sheet.add(overPhoto(photo, smudging(15, 255, 0)), "smudge 15, hard");
    sheet.add(overPhoto(photo, smudging(15, 120, 90)), "smudge 15, a third of red");
    return sheet;
}

Sheet paintWater(const PhotoMaker&) {
    constexpr int cnWidth = 260, cnHeight = 76, cnColoured = 170;
    Sheet sheet(3);
    for (const int composition : {XCFastPixelMixer::Water, XCFastPixelMixer::WaterMultiply}) {
        for (const int mixColor : {40, 120, 255}) {
            Brush brush = softBrush(36, 150, packColour(30, 130, 210));
            brush.method.cacheKind = cnCacheOver;
            brush.setComposition(composition);
            brush.mixColor.mixColor = mixColor;
            brush.mixColor.smudge = 30;
            Cell cell(cnWidth, cnHeight, cnClear);
            cell.fill(bandsUpTo(cnColoured)).stroke(brush, waveIn(cnWidth, cnHeight));
            sheet.add(std::move(cell),
                      std::string(nameOf(compositionNames(), composition)) + ", mix " + std::to_string(mixColor));
        }
    }
    return sheet;
}

Sheet paintBlurs(const PhotoMaker& photo) {
    Sheet sheet(3);
    sheet.add(photoCell(photo), "as it was");
    for (const int radius : {2, 6, 20})
        sheet.add(overPhoto(photo, blurring(radius, 60)), "radius " + std::to_string(radius));
    sheet.add(overPhoto(photo, blurring(6, 255)), "radius 6, hard");
    constexpr int cnColoured = 190;
    Cell cell(cnPhotoWidth, cnPhotoHeight, cnClear);
    cell.fill(bandsUpTo(cnColoured)).stroke(blurring(8, 60), waveIn(cnPhotoWidth, cnPhotoHeight));
    sheet.add(std::move(cell), "radius 8, transparency");
    return sheet;
}

Sheet paintClones(const PhotoMaker& photo) {
    const Path acrossHills = lineFrom(110.0, 90.0, 220.0, 70.0);
    Sheet sheet(3);
    sheet.add(photoCell(photo), "as it was");
    sheet.add(std::move(photoCell(photo).stroke(cloning(0, -60), lineFrom(40.0, 130.0, 210.0, 120.0))),
              "from 60 above");
    sheet.add(std::move(photoCell(photo).stroke(cloning(-70, 0), acrossHills)), "from 70 to the left");
    return sheet;
}

} // namespace ovwpaint::gallery
