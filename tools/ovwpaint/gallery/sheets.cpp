#include "gallery/sheets.h"

#include <array>

namespace ovwpaint::gallery {

namespace {

constexpr std::array cnSheets = {
    SheetKind{"tips", "every tip, as stamps and as strokes", paintTips},
    SheetKind{"tip-orders", "lists of tips and their orders", paintTipOrders},
    SheetKind{"bent", "tips bent along the stroke", paintBends},
    SheetKind{"splatter", "ink splatters by their three settings", paintSplatters},
    SheetKind{"ramps", "hardness and opacity", paintRamps},
    SheetKind{"pressure", "what the pressure of the pen can drive", paintPressure},
    SheetKind{"rotation", "what can turn a tip", paintRotations},
    SheetKind{"spray", "several stamps a place", paintSprays},
    SheetKind{"depths", "the same strokes in images of every depth", paintDepths},
    SheetKind{"compositions", "all nineteen, over colours and over transparency", paintCompositions},
    SheetKind{"caches", "how the stamps of a stroke add up", paintCaches},
    SheetKind{"textures", "every mode, before and after the cache", paintTextures},
    SheetKind{"masks", "painting through a selection", paintMasks},
    SheetKind{"smudge", "dragging the colours of a picture", paintSmudges},
    SheetKind{"water", "colours that mix with what is there", paintWater},
    SheetKind{"blur", "softening a picture", paintBlurs},
    SheetKind{"clone", "painting with other pixels", paintClones},
    SheetKind{"classic", "what classic images draw, before and after smoothing", paintClassics},
};

} // namespace

std::span<const SheetKind> sheetKinds() { return cnSheets; }

} // namespace ovwpaint::gallery
