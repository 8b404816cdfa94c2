#ifndef OVWPAINT_BRUSH_H
#define OVWPAINT_BRUSH_H

/// @file
/// A brush as the program handles it: the library's records of settings, and the drawing method that goes with them.

#include "ovwcmn/xcfastpixelmixer.h"
#include "ovwcmn/xcpatterndrawparam.h"

#include <string>

namespace ovwpaint {

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

struct Brush {
    PDPARAM_PATTERN pattern;
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
