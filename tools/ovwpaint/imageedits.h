#ifndef OVWPAINT_IMAGEEDITS_H
#define OVWPAINT_IMAGEEDITS_H

/// @file
/// What can be done to a whole image: each makes a new one on the process-wide store, of the same resolution. All
/// throw XCException from the block store.

#include "colour.h"
#include "names.h"

#include "ovwcmn/xcgeometry.h"
#include "ovwcmn/xcvoffscreen.h"

#include <memory>
#include <optional>
#include <span>

namespace ovwpaint {

inline constexpr Colour cnTransparent = packColour(255, 255, 255, 0);

/// Whether pixels of the depth can be transparent.
bool hasTransparency(int depth);

/// The same picture in another depth.
std::unique_ptr<XCVOffscreen> withDepth(XCVOffscreen& image, int depth);

/// The picture on an even ground; of 32 bits where 2-bit pixels may get a colour.
std::unique_ptr<XCVOffscreen> flattened(XCVOffscreen& image, Colour ground);

/// Ways to fit a picture into another size.
std::span<const NamedValue> resizeMethodNames();
/// Whether the way has a factor of its own instead of a size.
bool hasOwnFactor(int method);
/// @param size pixels; with an own factor not used
std::unique_ptr<XCVOffscreen> resized(XCVOffscreen& image, int method, const XCSize& size);

/// Turned clockwise by 0, 90, 180 or 270 degrees, then with left and right, top and bottom exchanged.
std::unique_ptr<XCVOffscreen> turned(XCVOffscreen& image, int angle, bool mirror, bool flip);

/// 8 bits of ink, darkness or with `invert` lightness; transparency counts as white.
std::unique_ptr<XCVOffscreen> greyed(XCVOffscreen& image, bool invert);

/// Ways to dither.
std::span<const NamedValue> ditherNames();
/// Black, white and, from 2 bits on, transparent by ordered dither. @param depth of the result, 1 or 2
std::unique_ptr<XCVOffscreen> dithered(XCVOffscreen& image, int mode, int depth, bool invert);

} // namespace ovwpaint

#endif // OVWPAINT_IMAGEEDITS_H
