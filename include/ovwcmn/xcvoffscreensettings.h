#ifndef OVWCMN_XCVOFFSCREENSETTINGS_H
#define OVWCMN_XCVOFFSCREENSETTINGS_H

/// @file
/// What a tiled image is besides its pixels, and colour arithmetic that needs no image. Part of XCVOffscreen.

#include "ovwcmn/detail/packedpixels.h"
#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/xcgeometry.h"
#include "ovwcmn/xcvoffscreenblock.h"

#include <cstdint>

/// Depth, place and settings of a tiled image; plain values that belong to the image's thread. Colours are 0xAABBGGRR.
/// Throws nothing.
class OVWCMN_API XCVOffscreenSettings {
public:
    int GetDepth() const { return m_depth; } ///< bits a pixel
    /// The position of pixel (0, 0) in the caller's coordinates; growing on the left or top moves it.
    XCPoint GetOffset() const { return m_offset; }
    void SetOffset(const XCPoint& offset) { m_offset = offset; } ///< as GetOffset
    /// @{ In the caller's unit, e.g. pixels an inch; changing it leaves the pixels alone.
    double GetResolution() const { return m_resolution; }
    void SetResolution(double resolution) { m_resolution = resolution; }
    /// @}
    /// @{ What cleared pixels become; the pointer may be null.
    void GetClearColor(std::uint8_t* value) const;
    void GetClearColor(std::uint32_t* colour) const;
    /// @}
    void SetClearColor(std::uint8_t value) { m_clearByte = value; }     ///< Of 1-, 2- and 8-bit images.
    void SetClearColor(std::uint32_t colour) { m_clearColor = colour; } ///< Of 16-, 24- and 32-bit images.
    /// As the colour above.
    void SetClearColor(unsigned long colour) { SetClearColor(static_cast<std::uint32_t>(colour)); }
    void SetClearColor(int value); ///< The byte up to 8 bits, else the colour, so that a plain number needs no cast.
    /// @{ Kept for the caller.
    void GetMaskColor(std::uint32_t* colour) const;
    void SetMaskColor(std::uint32_t colour) { m_maskColor = colour; }
    /// @}
    int IsEnableClear() const { return m_enableClear; }      ///< Whether new blocks are cleared.
    void EnableClear(int enable) { m_enableClear = enable; } ///< 0: new blocks keep what their memory holds
    /// @{ 0 to 256; kept for the caller.
    int GetTransparency() const { return m_transparency; }
    void SetTransparency(int transparency) { m_transparency = transparency; }
    /// @}
    int GetSpecialtyOffscr() const { return m_specialty; }                   ///< Kept for the caller.
    void SetSpecialtyOffscr(int value) { m_specialty = value; }              ///< kept for the caller
    const ovw::vimage::PixelRules& GetPixelRules() const { return m_rules; } ///< What conversions depend on.
    /// @{ Luminance below the first threshold is black, coverage above the second is ink; Def: by 128 and 127.
    int GetMonoBWThreshold() const { return m_rules.blackWhite; }
    int GetMonoTransThreshold() const { return m_rules.transparency; }
    void SetMonoBWThreshold(int threshold) { m_rules.blackWhite = threshold; }
    void SetMonoTransThreshold(int threshold) { m_rules.transparency = threshold; }
    int IsMonoBlack(int value) const { return value < m_rules.blackWhite; }
    int IsMonoNotTrans(int value) const { return value > m_rules.transparency; }
    static int IsMonoBlackDef(int value) { return value < ovw::vimage::cnDefaultBlackWhite; }
    static int IsMonoNotTransDef(int value) { return value > ovw::vimage::cnDefaultTransparency; }
    /// @}
    std::uint32_t GetIndexColor(int i) const;               ///< 0 beyond 0 to 255.
    void SetIndexColor(int i, std::uint32_t colour);        ///< nothing beyond 0 to 255
    int IsLoadImage() const { return m_loadImage; }         ///< Whether the pixels are all present.
    void SetLoadImage(int loaded) { m_loadImage = loaded; } ///< for readers of streams

    // ---- Colour helpers
    /// @{ Values of one depth as another has them: 1 bit, 2 bits, 8 bits of density, 0xAABBGGRR.
    static std::uint8_t VXCOLORREFtoBYTE1(std::uint32_t colour);
    static std::uint8_t VXCOLORREFtoBYTE2(std::uint32_t colour);
    static std::uint8_t VXCOLORREFtoBYTE8(std::uint32_t colour);
    static std::uint32_t BYTE1toVXCOLORREF(std::uint8_t value);
    static std::uint32_t BYTE8toVXCOLORREF(std::uint8_t density);
    /// @}
    /// @{ Whether values are equal, give or take the margin in each channel; what has no alpha is equal to its like.
    static int IsEqualB(std::uint8_t a, std::uint8_t b, int margin);
    static int IsEqualRGB(std::uint32_t c1, std::uint32_t c2, int margin);
    static int IsEqualRGBA(std::uint32_t c1, std::uint32_t c2, int margin);
    static int IsEqualRGBANoMargin(std::uint32_t c1, std::uint32_t c2);
    /// @}

protected:
    XCVOffscreenSettings() = default;
    XCVOffscreenSettings(const XCVOffscreenSettings&) = delete;
    XCVOffscreenSettings& operator=(const XCVOffscreenSettings&) = delete;
    ~XCVOffscreenSettings() = default;

    /// @{ What the functions above get and set.
    int m_depth = 0;
    double m_resolution = 0;
    XCPoint m_offset;
    std::uint8_t m_clearByte = 0;
    std::uint32_t m_clearColor = ovw::vimage::cnTransparentWhite;
    std::uint32_t m_maskColor = ovw::vimage::cnTransparentWhite;
    int m_enableClear = 1;
    int m_transparency = ovw::vimage::cnOpaque;
    int m_specialty = 0;
    ovw::vimage::PixelRules m_rules;
    int m_loadImage = 1;
    /// @}
    /// The pixels, as far as they are still to be loaded, or a copy of them.
    ovw::vimage::PackedPixels m_packed; // the pixels, as far as they are still to be loaded, or a copy of them
};

#endif // OVWCMN_XCVOFFSCREENSETTINGS_H
