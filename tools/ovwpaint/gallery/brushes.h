#ifndef OVWPAINT_GALLERY_BRUSHES_H
#define OVWPAINT_GALLERY_BRUSHES_H

/// @file
/// Brushes that show one thing each.

#include "brush.h"
#include "colour.h"

namespace ovwpaint::gallery {

inline constexpr Colour cnInk = packColour(34, 44, 84);

// The stroke caches, as XCPatternDrawMethod::SetOffscreen numbers them.
inline constexpr int cnCacheOver = 0;
inline constexpr int cnCacheMaximum = 2;

/// A round, hard, opaque pen whose stamps lie close and leave the strongest.
inline Brush plainBrush(int size, Colour colour = cnInk) {
    Brush brush;
    brush.size.size = size;
    brush.color.drawColor = colour;
    brush.interval.intervalKind = 3;
    brush.interval.intervalAtFull = 5;
    brush.method.cacheKind = cnCacheMaximum;
    return brush;
}

inline Brush softBrush(int size, int hardness, Colour colour = cnInk) {
    Brush brush = plainBrush(size, colour);
    brush.hardness.hardness = hardness;
    return brush;
}

/// Without a cache, so that pictures with soft transparency keep it.
inline Brush imageBrush(int size, std::vector<std::string> tips, int spacing, Colour colour = cnInk) {
    Brush brush = plainBrush(size, colour);
    brush.pattern.patternKind = XCPattern::cnKindImage;
    brush.tips.patterns = std::move(tips);
    brush.interval.intervalAtFull = spacing;
    brush.method.useCache = 0;
    return brush;
}

} // namespace ovwpaint::gallery

#endif // OVWPAINT_GALLERY_BRUSHES_H
