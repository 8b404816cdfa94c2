#ifndef OVWCMN_XCFASTPIXELMIXER_H
#define OVWCMN_XCFASTPIXELMIXER_H

/// @file
/// The span compositor through which fills, brushes, polygons and textures write pixels into tiled images.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/xcgeometry.h"

#include <cstdint>

class XCColorAverage;
class XCPlotGauss;
class XCSimpleImage;
class XCVOffscreen;

namespace ovw::mixing {
class SpanPainter;
}

/// Composites paint into one block of an image, a horizontal run of pixels (a span) at a time.
///
/// The mixer is a value: copies share the images, buffers and helpers it points to, and own none of them; all must
/// outlive the drawing calls, be locked as their own rules say, and the destination, cache and colour cache be locked
/// for editing. Drawing throws nothing: settings without a meaning draw nothing. (Moving to a block, or reading a mask
/// or clone source, passes on what the block store throws.) One thread at a time uses a mixer and what it points to.
///
/// Opacities and coverages are unsigned 1.15 numbers: 32768 is full. Set the caches before the alphas, see
/// SetCacheAlpha.
class OVWCMN_API XCFastPixelMixer {
public:
    /// @{ The fixed point of opacities and coverages.
    static constexpr int cnFixFloatBit = 15;
    static constexpr int cnFixFloatConstant = 1 << cnFixFloatBit;
    /// @}

    /// Bits of the style.
    enum Style : std::uint32_t {
        /// Multiply the coverage by the plotter's falloff.
        STYLE_GAUSS = 0x1,
        /// 1 and 2 bits: let the ordered dither choose the pixels.
        STYLE_DITHER = 0x2,
        /// Cache accumulation: keep the larger coverage.
        STYLE_CACHE_MAX = 0x10,
        /// Cache accumulation: new coverage over old (first choice when several bits are set).
        STYLE_CACHE_OVER = 0x20,
        /// Cache accumulation: the sum.
        STYLE_CACHE_ADD = 0x40,
        /// Water compositions: feed the colour average, paint nothing.
        STYLE_SAMPLE_ONLY = 0x100,
        /// 24 bits without a cache: stamp the source image's own colours.
        STYLE_IMAGE_COLOR = 0x200,
        /// Sample source images 2 x 2 a pixel.
        STYLE_ANTIALIAS = 0x400,
        /// Let the texture change the opacity after the cache, not the coverage before it.
        STYLE_TEXTURE_AFTER = 0x1000
    };

    /// How paint meets the pixel below.
    enum DrawComposition : int {
        /// @{ The formulas stand in the guide's page of compositions.
        Replace = 0,
        Normal = 1,
        Erase = 2,
        DarkenStep = 3,
        LightenStep = 4,
        Water = 5,
        Multiply = 6,
        WaterMultiply = 7,
        Add = 8,
        Lighten = 9,
        Darken = 10,
        ColorBurn = 11,
        ColorDodge = 12,
        Screen = 13,
        Overlay = 14,
        Difference = 15,
        SoftLight = 16,
        HardLight = 17,
        AddFade = 18
        /// @}
    };

    /// Nothing set, every alpha full.
    XCFastPixelMixer() = default;
    XCFastPixelMixer(const XCFastPixelMixer&) = default;
    XCFastPixelMixer& operator=(const XCFastPixelMixer&) = default;
    virtual ~XCFastPixelMixer();

    /// @{ All bits at once, or some on or off.
    void SetStyle(std::uint32_t style) { m_style = style; }
    void SetStyleFlag(std::uint32_t bits, int on) { m_style = on ? m_style | bits : m_style & ~bits; }
    /// @}
    /// 1 if any of the bits is set.
    int GetStyleFlag(std::uint32_t bits) const { return (m_style & bits) != 0; }
    /// A DrawComposition; other values draw nothing.
    void SetDrawCompositioin(int composition) { m_composition = composition; }

    void SetDstOffscreen(XCVOffscreen* image) { m_dst = image; } ///< Where spans go; null: nowhere.
    /// 16 bits a pixel, each a coverage in 1.15 in machine order, all 0 at the start of a stroke. Null: no cache.
    void SetCacheOffscreen(XCVOffscreen* image) { m_cache = image; }
    /// The colours of the stroke, in the destination's depth. Image stamps may keep them in 24 bits, on 1- and 2-bit
    /// destinations in 8 or 24.
    void SetCacheColorOffscreen(XCVOffscreen* image) { m_cacheColor = image; }
    /// The destination as it was before the stroke.
    void SetCompositeOffscreen(XCVOffscreen* image) { m_composite = image; }

    /// 0xAABBGGRR.
    void SetColor(std::uint32_t color);
    /// The same by channels, 0 to 255.
    void SetColor(std::uint8_t a, std::uint8_t r, std::uint8_t g, std::uint8_t b);
    std::uint8_t GetMixA() const { return m_a; } ///< the colour's alpha, 0 to 255
    /// 0xAABBGGRR: the second colour of two-colour source images.
    void SetSubColor(std::uint32_t color) { m_subColor = color; }

    /// Opacity of the paint, 0 to 1 (clamped; not a number is 0). Without a cache also what ScaleAntiAlpha scales from.
    void SetMixAlpha(float alpha);
    /// Opacity with which coverage enters the cache, 0 to 1 (clamped). With a cache set already, also what
    /// ScaleAntiAlpha scales from.
    void SetCacheAlpha(float alpha);
    /// Scales the alpha in force (the cache's with a cache, else the paint's) from its configured value, for one dab.
    void ScaleAntiAlpha(float factor);

    /// A selection of 1 or 8 bits, null for none; pixel (x, y) reads the mask at (x * scale - offset.x, y * scale -
    /// offset.y), scale being the mask's resolution over the destination's, truncated. Set the destination first.
    void SetMask(XCVOffscreen* mask, const XCPoint& offset);
    /// Pixel (x, y) is cloned from (x + offset.x, y + offset.y) of the source. Null: no cloning.
    void SetCloneOffscreen(XCVOffscreen* source, const XCPoint& offset);
    /// 32-bit pixels; pixel (x, y) takes the one at column x + offset.x, row y + offset.y. Null: no blurring.
    void SetBlurImage(std::uint8_t* bits, int rowBytes, const XCPoint& offset);
    /// 8-bit texels, repeated over the plane; offset is added to pixel coordinates. Modes 0 to 3: scale with a bias of
    /// density, scale, subtract, limit; other modes change nothing. Null: no texture; else neither size may be 0.
    void SetTexture(std::uint8_t* bits, int rowBytes, int height, const XCPoint& offset, int density, int mode);
    /// The falloff that STYLE_GAUSS needs.
    void SetPlotGauss(XCPlotGauss* plotter) { m_plotGauss = plotter; }
    /// What the water compositions feed with the colours they meet.
    void SetColorAverage(XCColorAverage* average) { m_colorAverage = average; }
    /// Not 0: the alpha of 32-bit destinations is never written.
    void SetNotChangeAlpha(int keep) { m_keepAlpha = keep; }
    int IsNotChangeAlpha() const { return m_keepAlpha; }  ///< as set
    int IsUseCache() const { return m_cache != nullptr; } ///< 1 with a cache

    /// Where in the source image the next DoLineRowCopy begins, and its step a pixel, in source pixels.
    void SetSrcUVParam(double u, double v, double du, double dv);
    void SetSrcVParam(double v); ///< SetSrcUVParam for the same column and steps.
    /// The same for 2 x 2 samples: two lines of samples, each with its step a pixel.
    void SetSrcUVParamAntiAlias(double u, double v, double du, double dv, double uB, double vB, double duB, double dvB);
    void SetSrcVParamAntiAlias(double v, double vB); ///< SetSrcUVParamAntiAlias for the same columns and steps.

    /// Makes the block of pixel (x, y) the one that spans fall into, in the destination and the images beside it.
    void MoveCursorToBlock(int x, int y);
    /// Paints the mixer's colour over pixels x1 to x2, both included, of row y. What lies outside the block is left
    /// out.
    void DoLineRow(int x1, int x2, int y);
    /// Paints pixels x1 to x2 - 1 of row y through a source image, which must be locked.
    void DoLineRowCopy(int x1, int x2, int y, XCSimpleImage* src);

private:
    friend class ovw::mixing::SpanPainter;

    std::uint32_t m_style = 0;
    int m_composition = Replace;
    XCVOffscreen* m_dst = nullptr;
    XCVOffscreen* m_cache = nullptr;
    XCVOffscreen* m_cacheColor = nullptr;
    XCVOffscreen* m_composite = nullptr;
    int m_blockLeft = 0;
    int m_blockTop = 0;
    XCVOffscreen* m_mask = nullptr;
    int m_maskOffsetX = 0;
    int m_maskOffsetY = 0;
    int m_maskScale = 0;
    XCVOffscreen* m_clone = nullptr;
    int m_cloneOffsetX = 0; // of the clone source or the blur image
    int m_cloneOffsetY = 0;
    std::uint8_t m_a = 0;
    std::uint8_t m_r = 0;
    std::uint8_t m_g = 0;
    std::uint8_t m_b = 0;
    std::uint32_t m_mixAlpha = cnFixFloatConstant;
    std::uint32_t m_cacheAlpha = cnFixFloatConstant;
    std::uint32_t m_baseAlpha = cnFixFloatConstant; // what ScaleAntiAlpha scales from
    std::uint32_t m_subColor = 0;
    int m_keepAlpha = 0;
    XCPlotGauss* m_plotGauss = nullptr;
    std::uint8_t* m_blurBits = nullptr;
    int m_blurRowBytes = 0;
    XCColorAverage* m_colorAverage = nullptr;
    // Source coordinates in 1.15; the steps of 2 x 2 samples are half steps.
    std::int32_t m_u = 0;
    std::int32_t m_v = 0;
    std::int32_t m_du = 0;
    std::int32_t m_dv = 0;
    std::int32_t m_uB = 0;
    std::int32_t m_vB = 0;
    std::int32_t m_duB = 0;
    std::int32_t m_dvB = 0;
    std::uint8_t* m_textureBits = nullptr;
    int m_textureRowBytes = 0;
    int m_textureHeight = 0;
    int m_textureOffsetX = 0;
    int m_textureOffsetY = 0;
    int m_textureDensity = 0;
    int m_textureMode = 0;
};

#endif // OVWCMN_XCFASTPIXELMIXER_H
