#ifndef OVWPAINT_BRUSH_H
#define OVWPAINT_BRUSH_H

/// @file
/// A brush as the program handles it: the library's records of settings, and the drawing method that goes with them.

#include "ovwcmn/xcfastpixelmixer.h"
#include "ovwcmn/xcpatterndrawparam.h"

#include <cstddef>
#include <string>
#include <type_traits>
#include <vector>

namespace ovwpaint {

inline constexpr int cnMaxBlurRadius = 200; ///< pixels
/// How many tips a list may hold.
inline constexpr std::size_t cnMostTips = std::extent_v<decltype(PDPARAM_PATTERN::patterns)>;

/// How stamps meet the picture; see XCPatternDrawMethod::SetOffscreen.
struct BrushMethod {
    int useCache = 1; ///< 0 puts every stamp straight onto the picture
    int methodKind = XCFastPixelMixer::Normal;
    int cacheKind = 0;
    int methodFlag = 1;
    int densityFlag = 0;
    int lowDepthSoft = 0;
};

/// The grain of the ground; see XCPatternDrawMethod::SetTextureImage.
struct BrushTexture {
    std::string texture; ///< a file or a built-in texture (see texture.h); empty: none
    int textureMode = 1;
    int textureDensity = 0;
    int textureAfter = 0;
};

/// The pictures of image tips; see tips.h.
struct BrushTips {
    std::vector<std::string> patterns; ///< files or built-in tips, at most cnMostTips
    int patternInvert = 0;             ///< 1: what is bright covers
    int patternGrey = 0;               ///< 1: pictures with colours cover by their darkness, as grey ones do
    float splatterSpread = 0.4f;       ///< of splatters, 0 to 1: from drops alike to small and large ones
    float splatterSoftness = 0.2f;     ///< of their rims, 0 to 1
    float splatterDensity = 0.2f;      ///< 0 to 1: from few drops to many
};

/// What a brush paints with in place of its colour, and where.
struct BrushSource {
    int cloneFlag = 0;  ///< 1: with other pixels of the picture
    int cloneX = 0;     ///< pixel (x, y) is painted with (x + cloneX, y + cloneY)
    int cloneY = 0;     ///< pixels of the picture
    int blurRadius = 0; ///< with the mean of the pixels up to so many pixels away; 0: no blurring
    std::string mask;   ///< a selection: a file or cnStencilMask; empty: everywhere
};

struct Brush {
    PDPARAM_PATTERN pattern; ///< without the tips themselves
    BrushTips tips;
    PDPARAM_SIZE size;
    PDPARAM_COLOR color;
    PDPARAM_HARDNESS hardness;
    PDPARAM_MIXCOLOR mixColor;
    PDPARAM_SIZERATE sizeRate;
    PDPARAM_ROTATE rotate;
    PDPARAM_INTERVAL interval;
    PDPARAM_AIRBRUSH airbrush;
    PDPARAM_ETC etc;
    BrushMethod method;
    BrushTexture texture;
    BrushSource source;

    bool hasImageTips() const { return pattern.patternKind == XCPattern::cnKindImage; }
    bool blurs() const { return source.blurRadius > 0; }
    /// Whether stamps accumulate in a cache. Cloned and blurred pixels never meet it.
    bool usesCache() const { return method.useCache != 0 && !source.cloneFlag && !blurs(); }
    bool erases() const { return method.methodKind == XCFastPixelMixer::Erase; }
    bool smudges() const {
        return method.methodKind == XCFastPixelMixer::Water || method.methodKind == XCFastPixelMixer::WaterMultiply;
    }
    /// Sets the method's kind, and whether it uses a cache where it would draw nothing otherwise.
    void setComposition(int composition);
    /// The same brush with every length multiplied by `factor`.
    Brush scaled(double factor) const;
    /// How far from the pen's place the brush paints at most, in pixels.
    double reach() const;
    void applyTo(XCPatternDrawParam& param) const;
};

} // namespace ovwpaint

#endif // OVWPAINT_BRUSH_H
