#include "imageedits.h"

#include "ovwcmn/xcvirtualmemory.h"

#include <algorithm>
#include <array>

namespace ovwpaint {

namespace {

using Image = std::unique_ptr<XCVOffscreen>;

constexpr int cnInkDepth = 1;
constexpr int cnIndexDepth = 2;
constexpr int cnGreyDepth = 8;
constexpr int cnRgbDepth = 24;
constexpr int cnColourDepth = 32;

Image newImage(const XCVOffscreen& like, int width, int height, int depth) {
    Image image(XCVOffscreen::CreateOffscreen(depth));
    image->Create(xcGetVirtualMemory(), width, height, like.GetResolution());
    return image;
}

/// The image itself, or `made` from it in a depth that an operation can read.
XCVOffscreen& inDepth(XCVOffscreen& image, int depth, Image& made) {
    made = withDepth(image, depth);
    return *made;
}

// ---- Resizing

using Fit = void (*)(XCVOffscreen& to, XCVOffscreen& from);
using FactorFit = void (XCVOffscreen::*)(int, int, int, int, XCVOffscreen*, int, int, int);
using FactorFitAll = void (XCVOffscreen::*)(XCVOffscreen*);

template <CHANGE_RESOLUTION_MODE mode>
void fitByMode(XCVOffscreen& to, XCVOffscreen& from) {
    to.ChangeResolution(0, 0, to.GetWidth(), to.GetHeight(), &from, 0, 0, from.GetWidth(), from.GetHeight(), mode, 0);
}

void fitNearly(XCVOffscreen& to, XCVOffscreen& from) {
    to.ChangeResolution2(0, 0, to.GetWidth(), to.GetHeight(), &from, 0, 0, from.GetWidth(), from.GetHeight(),
                         CHANGE_RESOLUTION_HIGH, 0);
}

void stretch(XCVOffscreen& to, XCVOffscreen& from) {
    to.StretchCopy(0, 0, to.GetWidth(), to.GetHeight(), &from, 0, 0, from.GetWidth(), from.GetHeight());
}

template <FactorFit fit>
void fitByFactor(XCVOffscreen& to, XCVOffscreen& from) {
    (to.*fit)(0, 0, to.GetWidth(), to.GetHeight(), &from, 0, 0, 0);
}

template <FactorFitAll fit>
void fitAll(XCVOffscreen& to, XCVOffscreen& from) {
    (to.*fit)(&from);
}

struct ResizeMethod {
    NamedValue name;
    int enlargement; ///< 0: any size
    int reduction;
    Fit fit;
};

using Tiled = XCVOffscreen;

constexpr std::array cnResizeMethods = {
    ResizeMethod{{"high", 0}, 0, 0, fitByMode<CHANGE_RESOLUTION_HIGH>},
    ResizeMethod{{"low", 1}, 0, 0, fitByMode<CHANGE_RESOLUTION_LOW>},
    ResizeMethod{{"near-factor", 2}, 0, 0, fitNearly},
    ResizeMethod{{"nearest", 3}, 0, 0, stretch},
    ResizeMethod{{"half", 4}, 1, 2, fitByFactor<&Tiled::ChangeResolutionHalf>},
    ResizeMethod{{"quarter", 5}, 1, 4, fitByFactor<&Tiled::ChangeResolutionQuarter>},
    ResizeMethod{{"eighth", 6}, 1, 8, fitByFactor<&Tiled::ChangeResolutionOctantal>},
    ResizeMethod{{"double", 7}, 2, 1, fitByFactor<&Tiled::ChangeResolutionDouble>},
    ResizeMethod{{"fourfold", 8}, 4, 1, fitByFactor<&Tiled::ChangeResolutionFourfold>},
    ResizeMethod{{"half-all", 9}, 1, 2, fitAll<&Tiled::ChangeResolutionHalfAll>},
    ResizeMethod{{"quarter-all", 10}, 1, 4, fitAll<&Tiled::ChangeResolutionQuarterAll>},
    ResizeMethod{{"eighth-all", 11}, 1, 8, fitAll<&Tiled::ChangeResolutionOctantalAll>},
    ResizeMethod{{"double-all", 12}, 2, 1, fitAll<&Tiled::ChangeResolutionDoubleAll>},
    ResizeMethod{{"fourfold-all", 13}, 4, 1, fitAll<&Tiled::ChangeResolutionFourfoldAll>},
};

constexpr auto cnResizeMethodNames = [] {
    std::array<NamedValue, cnResizeMethods.size()> names{};
    for (std::size_t i = 0; i < names.size(); ++i)
        names[i] = cnResizeMethods[i].name;
    return names;
}();

const ResizeMethod& resizeMethod(int method) { return cnResizeMethods[static_cast<std::size_t>(method)]; }

/// Rests that fill no pixel are left out.
XCSize sizeByFactor(const XCVOffscreen& image, const ResizeMethod& method) {
    const auto side = [&method](int pixels) {
        const std::int64_t wanted = static_cast<std::int64_t>(pixels) * method.enlargement / method.reduction;
        return static_cast<int>(std::clamp<std::int64_t>(wanted, 1, INT32_MAX));
    };
    return {side(image.GetWidth()), side(image.GetHeight())};
}

constexpr std::array cnDithers = {
    NamedValue{"edges", 0}, // what is nearly transparent, opaque, white or black becomes just that
    NamedValue{"even", 1},
};

} // namespace

bool hasTransparency(int depth) { return depth == cnIndexDepth || depth == 16 || depth == cnColourDepth; }

Image withDepth(XCVOffscreen& image, int depth) {
    Image converted = newImage(image, image.GetWidth(), image.GetHeight(), depth);
    converted->CommonCopy(0, 0, image.GetWidth(), image.GetHeight(), &image, 0, 0, 0, 0, 0);
    return converted;
}

Image flattened(XCVOffscreen& image, Colour ground) {
    constexpr int cnCell = 8; // of a checkerboard whose colours are the same
    const bool isIndexed = image.GetDepth() == cnIndexDepth;
    Image flat = isIndexed ? withDepth(image, cnColourDepth) : Image(image.CreateAndCopyAll());
    flat->RenderBackground(XCRect(0, 0, flat->GetWidth(), flat->GetHeight()), ground, ground, 1, cnCell);
    return flat;
}

std::span<const NamedValue> resizeMethodNames() { return cnResizeMethodNames; }

bool hasOwnFactor(int method) { return resizeMethod(method).enlargement != 0; }

Image resized(XCVOffscreen& image, int method, const XCSize& size) {
    const ResizeMethod& chosen = resizeMethod(method);
    const XCSize wanted = hasOwnFactor(method) ? sizeByFactor(image, chosen) : size;
    Image result = newImage(image, wanted.cx, wanted.cy, image.GetDepth());
    chosen.fit(*result, image);
    return result;
}

Image turned(XCVOffscreen& image, int angle, bool mirror, bool flip) {
    XCPoint shift;
    const Image grid(image.CreateAndRotateOffscreen(angle, mirror, flip, shift));
    const bool isUpright = angle % 180 == 0;
    const int width = isUpright ? image.GetWidth() : image.GetHeight();
    const int height = isUpright ? image.GetHeight() : image.GetWidth();
    Image result = newImage(image, width, height, image.GetDepth());
    result->Copy(0, 0, width, height, grid.get(), shift.x, shift.y, 0);
    return result;
}

Image greyed(XCVOffscreen& image, bool invert) {
    Image made;
    XCVOffscreen& source = image.GetDepth() == cnInkDepth      ? inDepth(image, cnRgbDepth, made)
                           : hasTransparency(image.GetDepth()) ? *(made = flattened(image, packColour(255, 255, 255)))
                                                               : image;
    const int width = image.GetWidth();
    const int height = image.GetHeight();
    Image grey = newImage(image, width, height, cnGreyDepth);
    if (invert)
        grey->RectFill(XCRect(0, 0, width, height), 0, packColour(0, 0, 0)); // where the source has no block
    grey->Grayish(0, 0, width, height, &source, 0, 0, invert);
    return grey;
}

std::span<const NamedValue> ditherNames() { return cnDithers; }

Image dithered(XCVOffscreen& image, int mode, int depth, bool invert) {
    // Dithering goes by the darkness of 16- and 32-bit pixels; of other depths by less.
    Image made;
    XCVOffscreen& source =
        image.GetDepth() == cnGreyDepth || image.GetDepth() == cnRgbDepth ? inDepth(image, cnColourDepth, made) : image;
    const int width = image.GetWidth();
    const int height = image.GetHeight();
    Image ink = newImage(image, width, height, depth);
    if (invert)
        ink->RectFill(XCRect(0, 0, width, height), 0, packColour(0, 0, 0));
    ink->Monochromic(0, 0, width, height, &source, 0, 0, invert, mode);
    return ink;
}

} // namespace ovwpaint
