#ifndef OVWPAINT_GALLERY_SHEETS_H
#define OVWPAINT_GALLERY_SHEETS_H

/// @file
/// What the gallery shows, a sheet a feature.

#include "gallery/sheet.h"

#include <span>

namespace ovwpaint::gallery {

/// What sheets paint pictures over: see ground.h.
using PhotoMaker = std::function<Ground(int width, int height)>;

struct SheetKind {
    const char* name; ///< of its file, without ".png"
    const char* description;
    Sheet (*paint)(const PhotoMaker& photo);
};

std::span<const SheetKind> sheetKinds();

// The sheets, by file.
Sheet paintTips(const PhotoMaker&);
Sheet paintTipOrders(const PhotoMaker&);
Sheet paintBends(const PhotoMaker&);
Sheet paintSplatters(const PhotoMaker&);
Sheet paintRamps(const PhotoMaker&);
Sheet paintPressure(const PhotoMaker&);
Sheet paintRotations(const PhotoMaker&);
Sheet paintSprays(const PhotoMaker&);
Sheet paintDepths(const PhotoMaker&);
Sheet paintCompositions(const PhotoMaker&);
Sheet paintCaches(const PhotoMaker&);
Sheet paintTextures(const PhotoMaker&);
Sheet paintMasks(const PhotoMaker&);
Sheet paintSmudges(const PhotoMaker& photo);
Sheet paintWater(const PhotoMaker&);
Sheet paintBlurs(const PhotoMaker& photo);
Sheet paintClones(const PhotoMaker& photo);
Sheet paintClassics(const PhotoMaker&);

} // namespace ovwpaint::gallery

#endif // OVWPAINT_GALLERY_SHEETS_H
