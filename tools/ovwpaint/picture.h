#ifndef OVWPAINT_PICTURE_H
#define OVWPAINT_PICTURE_H

/// @file
/// Pictures that take part in painting: PNG files as tiled images, as selections and as textures. All throw what
/// PngReader throws; those that make tiled images also XCException from the block store.

#include "colour.h"
#include "pngimport.h"

#include "ovwcmn/xcvoffscreen.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace ovwpaint {

class Progress;

/// Pixels an inch of every image here; masks and targets must agree.
inline constexpr double cnResolution = 96.0;

/// An image without blocks on the process-wide store.
std::unique_ptr<XCVOffscreen> makeImage(int width, int height, int depth);
/// Sets the pixels of a row, those that lie in the image, each to what `change` makes of the colour. Images of 1 and 2
/// bits take what is darker than middle grey for ink, those of 8 bits the darkness.
void storeRow(XCVOffscreen& image, const PngRow& row, const std::function<Colour(Colour)>& change);

/// The picture as an image of that depth; where there is no transparency, over white. `progress` may be null.
std::unique_ptr<XCVOffscreen> readImage(PngReader& picture, int depth, Progress* progress);
std::unique_ptr<XCVOffscreen> readImage(const std::string& path, int depth);
/// The picture as a selection of 8 bits: white selects, black and transparent do not.
std::unique_ptr<XCVOffscreen> readSelection(const std::string& path);

/// Rows of bytes without padding.
struct GreyPicture {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels;
};

/// The brightness of the picture over white.
GreyPicture readGrey(const std::string& path);

} // namespace ovwpaint

#endif // OVWPAINT_PICTURE_H
