#ifndef OVWCMN_XCCOLOR_H
#define OVWCMN_XCCOLOR_H

/// @file
/// One colour in 8-bit or 16-bit channels, and the models RGB, HSV and HLS.
///
/// A packed colour has red in bits 0 to 7, green 8 to 15, blue 16 to 23, alpha 24 to 31; packed in 64 bits it has the
/// same order in 16-bit channels. In the 16-bit structs every channel is 0 to 65535: a full turn for hues, 0 to 1 for
/// the rest. From 8 to 16 bits a byte is replicated (x 257), from 16 to 8 bits the high byte is taken; results in
/// floating point are truncated. The classes are values: they own nothing and throw nothing.

#include "ovwcmn/ovwdefs.h"

#include <cstdint>

/// Red, green and blue.
struct tagVXRGBCOLOR16 {
    /// @{ 0 to 65535.
    std::uint16_t alpha;
    std::uint16_t red;
    std::uint16_t green;
    std::uint16_t blue;
    /// @}
};
using VXRGBCOLOR16 = tagVXRGBCOLOR16; ///< the short name

/// Hue, saturation and value.
struct tagVXHSVCOLOR16 {
    /// @{ 0 to 65535.
    std::uint16_t alpha;
    std::uint16_t hue;
    std::uint16_t saturation;
    std::uint16_t value;
    /// @}
};
using VXHSVCOLOR16 = tagVXHSVCOLOR16; ///< the short name

/// Hue, lightness and saturation.
struct tagVXHLSCOLOR16 {
    /// @{ 0 to 65535.
    std::uint16_t alpha;
    std::uint16_t hue;
    std::uint16_t lightness;
    std::uint16_t saturation;
    /// @}
};
using VXHLSCOLOR16 = tagVXHLSCOLOR16; ///< the short name

/// The working colour of classic offscreen images.
struct tagVXRGBCOLOR {
    /// @{ 0 to 255, but nothing keeps them there.
    int alpha;
    int red;
    int green;
    int blue;
    /// @}
};
using VXRGBCOLOR = tagVXRGBCOLOR; ///< the short name

class XCHsvColor;
class XCHlsColor;

/// A packed 32-bit colour.
class OVWCMN_API XCColor {
public:
    XCColor() = default;
    XCColor(std::uint32_t packed) : m_packed(packed) {} ///< as the head of this file says
    XCColor(const tagVXRGBCOLOR16& color);              ///< the high bytes
    /// Here alone the hue is in degrees (360 and more count as 359), saturation and value are in percent, and alpha is
    /// the low byte of its field.
    XCColor(const tagVXHSVCOLOR16& color);
    /// @{ The classes keep their own scale of 0 to 65535.
    XCColor(const XCHsvColor& color);
    XCColor(const XCHlsColor& color);
    /// @}
    XCColor(const XCColor&) = default;
    XCColor& operator=(const XCColor&) = default;
    virtual ~XCColor() = default;

    /// @{ Packed.
    std::uint32_t GetColor() const { return m_packed; }
    operator std::uint32_t() const { return m_packed; }
    void SetColor(std::uint32_t packed) { m_packed = packed; }
    /// @}

    /// @{ 0 to 255.
    std::uint8_t GetChannelR() const { return channel(0); }
    std::uint8_t GetChannelG() const { return channel(1); }
    std::uint8_t GetChannelB() const { return channel(2); }
    std::uint8_t GetChannelA() const { return channel(3); }
    void SetChannelR(std::uint8_t value) { SetChannel(0, value); }
    void SetChannelG(std::uint8_t value) { SetChannel(1, value); }
    void SetChannelB(std::uint8_t value) { SetChannel(2, value); }
    void SetChannelA(std::uint8_t value) { SetChannel(3, value); }
    /// @}
    /// Index 0 red, 1 green, 2 blue, 3 alpha; others do nothing.
    void SetChannel(std::uint32_t index, std::uint8_t value);

private:
    std::uint8_t channel(std::uint32_t index) const { return static_cast<std::uint8_t>(m_packed >> (8 * index)); }

    std::uint32_t m_packed = 0;
};

namespace ovw::foundation {

/// What the colours of four 16-bit channels have in common; Channels names three fields of the plain struct.
template <class Plain, std::uint16_t Plain::*... Channels>
class ColorBase : public Plain {
public:
    /// @{ 0 to 65535.
    std::uint16_t GetChannelA() const { return this->alpha; }
    void SetChannelA(std::uint16_t newAlpha) { this->alpha = newAlpha; }
    /// @}
    /// Index 0 to 2: the fields after alpha in their order; 3 alpha; others give 0.
    std::uint16_t GetChannel(std::uint32_t index) const { return index < 4 ? this->*s_fields[index] : 0; }
    /// Other indices do nothing.
    void SetChannel(std::uint32_t index, std::uint16_t newValue) {
        if (index < 4)
            this->*s_fields[index] = newValue;
    }

    /// All four channels are equal.
    friend bool operator==(const Plain& a, const Plain& b) {
        return a.alpha == b.alpha && ((a.*Channels == b.*Channels) && ...);
    }

protected:
    /// @{ For the colours of the models: alpha, then the channels in the order of the struct.
    ColorBase(const Plain& plain) : Plain(plain) {}
    ColorBase(std::uint16_t a, std::uint16_t c0, std::uint16_t c1, std::uint16_t c2) : Plain{a, c0, c1, c2} {}
    /// @}

private:
    static constexpr std::uint16_t Plain::*s_fields[] = {Channels..., &Plain::alpha};
};

/// @{ The channels of one model.
using RgbBase = ColorBase<tagVXRGBCOLOR16, &tagVXRGBCOLOR16::red, &tagVXRGBCOLOR16::green, &tagVXRGBCOLOR16::blue>;
using HsvBase =
    ColorBase<tagVXHSVCOLOR16, &tagVXHSVCOLOR16::hue, &tagVXHSVCOLOR16::saturation, &tagVXHSVCOLOR16::value>;
using HlsBase =
    ColorBase<tagVXHLSCOLOR16, &tagVXHLSCOLOR16::hue, &tagVXHLSCOLOR16::lightness, &tagVXHLSCOLOR16::saturation>;
/// @}

} // namespace ovw::foundation

/// A colour in red, green and blue, the model through which the others meet. Has the layout of its plain struct.
class OVWCMN_API XCRgbColor : public ovw::foundation::RgbBase {
public:
    XCRgbColor() : ColorBase(0, 0, 0, 0) {}
    /// @{ From a packed colour or any model; the last one from channels of 16 bits.
    XCRgbColor(std::uint32_t packed);
    XCRgbColor(const XCColor& color) : XCRgbColor(color.GetColor()) {}
    XCRgbColor(const tagVXRGBCOLOR16& color) : ColorBase(color) {}
    XCRgbColor(const tagVXHSVCOLOR16& color);
    XCRgbColor(const tagVXHLSCOLOR16& color);
    XCRgbColor(std::uint16_t a, std::uint16_t r, std::uint16_t g, std::uint16_t b) : ColorBase(a, r, g, b) {}
    /// @}

    /// @{ 0 to 65535.
    void SetColor(std::uint16_t a, std::uint16_t r, std::uint16_t g, std::uint16_t b) { *this = {a, r, g, b}; }
    std::uint16_t GetChannelR() const { return red; }
    std::uint16_t GetChannelG() const { return green; }
    std::uint16_t GetChannelB() const { return blue; }
    void SetChannelR(std::uint16_t newRed) { red = newRed; }
    void SetChannelG(std::uint16_t newGreen) { green = newGreen; }
    void SetChannelB(std::uint16_t newBlue) { blue = newBlue; }
    /// @}

    /// The packed colour.
    operator std::uint32_t() const;
};

/// A colour in hue, saturation and value; all four channels are 65535 at first. Has the layout of its plain struct.
class OVWCMN_API XCHsvColor : public ovw::foundation::HsvBase {
public:
    XCHsvColor() : ColorBase(65535, 65535, 65535, 65535) {}
    /// @{ From a packed colour or any model; the last one from channels of 16 bits.
    XCHsvColor(std::uint32_t packed) : XCHsvColor(XCRgbColor(packed)) {}
    XCHsvColor(const tagVXRGBCOLOR16& color);
    XCHsvColor(const XCRgbColor& color) : XCHsvColor(static_cast<const tagVXRGBCOLOR16&>(color)) {}
    XCHsvColor(const tagVXHSVCOLOR16& color) : ColorBase(color) {}
    XCHsvColor(std::uint16_t a, std::uint16_t h, std::uint16_t s, std::uint16_t v) : ColorBase(a, h, s, v) {}
    /// @}

    /// @{ 0 to 65535.
    void SetColor(std::uint16_t a, std::uint16_t h, std::uint16_t s, std::uint16_t v) { *this = {a, h, s, v}; }
    std::uint16_t GetChannelH() const { return hue; }
    std::uint16_t GetChannelS() const { return saturation; }
    std::uint16_t GetChannelV() const { return value; }
    void SetChannelH(std::uint16_t newHue) { hue = newHue; }
    void SetChannelS(std::uint16_t newSaturation) { saturation = newSaturation; }
    void SetChannelV(std::uint16_t newValue) { value = newValue; }
    /// @}

    operator tagVXRGBCOLOR16() const { return XCRgbColor(*this); } ///< in the model through which the others meet
    /// The packed colour.
    operator std::uint32_t() const { return XCRgbColor(*this); }
};

/// A colour in hue, lightness and saturation; all four channels are 65535 at first.
class OVWCMN_API XCHlsColor : public ovw::foundation::HlsBase {
public:
    XCHlsColor() : ColorBase(65535, 65535, 65535, 65535) {}
    /// @{ From a packed colour or any model; the last one from channels of 16 bits.
    XCHlsColor(std::uint32_t packed) : XCHlsColor(XCRgbColor(packed)) {}
    XCHlsColor(const tagVXRGBCOLOR16& color);
    XCHlsColor(const XCRgbColor& color) : XCHlsColor(static_cast<const tagVXRGBCOLOR16&>(color)) {}
    XCHlsColor(const tagVXHLSCOLOR16& color) : ColorBase(color) {}
    XCHlsColor(std::uint16_t a, std::uint16_t h, std::uint16_t l, std::uint16_t s) : ColorBase(a, h, l, s) {}
    /// @}
    XCHlsColor(const XCHlsColor&) = default;
    XCHlsColor& operator=(const XCHlsColor&) = default;
    virtual ~XCHlsColor() = default;

    /// @{ 0 to 65535.
    void SetColor(std::uint16_t a, std::uint16_t h, std::uint16_t l, std::uint16_t s) { *this = {a, h, l, s}; }
    std::uint16_t GetChannelH() const { return hue; }
    std::uint16_t GetChannelL() const { return lightness; }
    std::uint16_t GetChannelS() const { return saturation; }
    void SetChannelH(std::uint16_t newHue) { hue = newHue; }
    void SetChannelL(std::uint16_t newLightness) { lightness = newLightness; }
    void SetChannelS(std::uint16_t newSaturation) { saturation = newSaturation; }
    /// @}

    operator tagVXRGBCOLOR16() const { return XCRgbColor(*this); } ///< in the model through which the others meet
    /// The packed colour.
    operator std::uint32_t() const { return XCRgbColor(*this); }
};

/// A colour whose channels are 8 bits (mode 0) or 16 bits (mode 1) wide. The channels are ints, so that mixing can work
/// in them; nothing keeps them in range.
class OVWCMN_API XCComplexColor {
public:
    XCComplexColor() = default;
    /// Mode 0.
    XCComplexColor(std::uint32_t packed) { SetColor(packed); }
    XCComplexColor(int packed) { SetColor(static_cast<std::uint32_t>(packed)); } ///< mode 0; for plain numbers
    /// Mode 1, from a colour packed in 64 bits.
    XCComplexColor(std::uint64_t packed) { SetColor64(packed); }

    /// @{ SetColor sets mode 0, SetColor64 mode 1; from a packed colour or from channels.
    void SetColor(std::uint32_t packed);
    void SetColor(int a, int r, int g, int b) { assign(0, a, r, g, b); }
    void SetColor64(std::uint64_t packed);
    void SetColor64(int a, int r, int g, int b) { assign(1, a, r, g, b); }
    /// @}

    /// 0 for 8-bit channels, 1 for 16-bit channels.
    int GetMode() const { return m_mode; }
    /// @{ The channels as they are, whatever the mode; opacity is alpha.
    int GetA() const { return m_alpha; }
    int GetR() const { return m_red; }
    int GetG() const { return m_green; }
    int GetB() const { return m_blue; }
    int GetA64() const { return m_alpha; }
    int GetR64() const { return m_red; }
    int GetG64() const { return m_green; }
    int GetB64() const { return m_blue; }
    int GetOpacity() const { return m_alpha; }
    int GetOpacity64() const { return m_alpha; }
    void SetA(int alpha) { m_alpha = alpha; }
    void SetR(int red) { m_red = red; }
    void SetG(int green) { m_green = green; }
    void SetB(int blue) { m_blue = blue; }
    /// @}

    /// The packed colour; meant for mode 0, nothing is converted.
    std::uint32_t GetColor() const;
    /// The colour packed in 64 bits; meant for mode 1, nothing is converted.
    std::uint64_t GetColor64() const;
    /// The largest of red, green and blue.
    int GetBrightness() const;
    /// The darkness weighted by the opacity, 0 to 256; meant for mode 0.
    int GetInvertBrightness() const;
    /// Shifts the channels to the other mode's width; modes other than 0 and 1 do nothing.
    void Convert(int mode);

private:
    void assign(int mode, int a, int r, int g, int b);

    int m_mode = 0;
    int m_alpha = 0;
    int m_red = 0;
    int m_green = 0;
    int m_blue = 0;
};

#endif // OVWCMN_XCCOLOR_H
