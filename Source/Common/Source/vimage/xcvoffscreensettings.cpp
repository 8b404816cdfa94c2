#include "ovwcmn/xcvoffscreensettings.h"

#include "vimage/pixelformats.h"

using namespace ovw::vimage;

void XCVOffscreenSettings::GetClearColor(std::uint8_t* value) const {
    if (value)
        *value = m_clearByte;
}

void XCVOffscreenSettings::GetClearColor(std::uint32_t* colour) const {
    if (colour)
        *colour = m_clearColor;
}

void XCVOffscreenSettings::SetClearColor(int value) {
    if (m_depth <= 8)
        m_clearByte = static_cast<std::uint8_t>(value);
    else
        m_clearColor = static_cast<std::uint32_t>(value);
}

void XCVOffscreenSettings::GetMaskColor(std::uint32_t* colour) const {
    if (colour)
        *colour = m_maskColor;
}

std::uint32_t XCVOffscreenSettings::GetIndexColor(int i) const {
    return i >= 0 && i < cnIndexColours ? m_rules.indexColours[i] : 0;
}

void XCVOffscreenSettings::SetIndexColor(int i, std::uint32_t colour) {
    if (i >= 0 && i < cnIndexColours)
        m_rules.indexColours[i] = colour;
}

// ---- Colours

namespace {

constexpr PixelRules cnNoRules;

int isWithin(int a, int b, int margin) {
    const std::int64_t wide = margin;
    return b - wide <= a && a <= b + wide;
}

} // namespace

std::uint8_t XCVOffscreenSettings::VXCOLORREFtoBYTE1(std::uint32_t colour) { return Bit1::rowValue(colour, cnNoRules); }

std::uint8_t XCVOffscreenSettings::VXCOLORREFtoBYTE2(std::uint32_t colour) { return Bit2::rowValue(colour, cnNoRules); }

std::uint8_t XCVOffscreenSettings::VXCOLORREFtoBYTE8(std::uint32_t colour) {
    return Density8::rowValue(colour, cnNoRules);
}

std::uint32_t XCVOffscreenSettings::BYTE1toVXCOLORREF(std::uint8_t value) { return value ? cnBlack : cnWhite; }

std::uint32_t XCVOffscreenSettings::BYTE8toVXCOLORREF(std::uint8_t density) {
    return Density8::read24(density, cnNoRules);
}

int XCVOffscreenSettings::IsEqualB(std::uint8_t a, std::uint8_t b, int margin) { return isWithin(a, b, margin); }

int XCVOffscreenSettings::IsEqualRGB(std::uint32_t c1, std::uint32_t c2, int margin) {
    return isWithin(redOf(c1), redOf(c2), margin) && isWithin(greenOf(c1), greenOf(c2), margin) &&
           isWithin(blueOf(c1), blueOf(c2), margin);
}

int XCVOffscreenSettings::IsEqualRGBANoMargin(std::uint32_t c1, std::uint32_t c2) {
    if (alphaOf(c1) == 0 && alphaOf(c2) == 0)
        return 1;
    return (c1 ? c1 : cnTransparentWhite) == (c2 ? c2 : cnTransparentWhite);
}

int XCVOffscreenSettings::IsEqualRGBA(std::uint32_t c1, std::uint32_t c2, int margin) {
    if (!isWithin(alphaOf(c1), alphaOf(c2), margin))
        return 0;
    if (alphaOf(c1) == 0 || alphaOf(c2) == 0)
        return 1;
    return IsEqualRGB(c1, c2, margin);
}
