#include "ovwcmn/xcfastpixelmixer.h"

#include "mixing/blockpart.h"
#include "mixing/spanpainter.h"
#include "ovwcmn/xcvoffscreen.h"

#include <algorithm>
#include <cmath>

using ovw::mixing::SpanPainter;

namespace {

constexpr double cnFullStep = 32768.0; // of source coordinates
constexpr double cnHalfStep = 16384.0;

/// A product of 1.15 scale as the alpha fields hold it: truncated, 0 to 32768, not a number 0.
std::uint32_t alphaField(float value) {
    if (!(value > 0.0f))
        return 0;
    return static_cast<std::uint32_t>(std::min(value, static_cast<float>(XCFastPixelMixer::cnFixFloatConstant)));
}

std::int32_t fixed(double value, double scale) { return ovw::truncateToInt(value * scale); }

} // namespace

XCFastPixelMixer::~XCFastPixelMixer() = default;

void XCFastPixelMixer::SetColor(std::uint32_t color) {
    m_a = static_cast<std::uint8_t>(color >> 24);
    m_r = static_cast<std::uint8_t>(color);
    m_g = static_cast<std::uint8_t>(color >> 8);
    m_b = static_cast<std::uint8_t>(color >> 16);
}

void XCFastPixelMixer::SetColor(std::uint8_t a, std::uint8_t r, std::uint8_t g, std::uint8_t b) {
    m_a = a;
    m_r = r;
    m_g = g;
    m_b = b;
}

void XCFastPixelMixer::SetMixAlpha(float alpha) {
    m_mixAlpha = alphaField(alpha * cnFixFloatConstant);
    if (!m_cache)
        m_baseAlpha = m_mixAlpha;
}

void XCFastPixelMixer::SetCacheAlpha(float alpha) {
    m_cacheAlpha = alphaField(alpha * cnFixFloatConstant);
    if (m_cache)
        m_baseAlpha = m_cacheAlpha;
}

void XCFastPixelMixer::ScaleAntiAlpha(float factor) {
    (m_cache ? m_cacheAlpha : m_mixAlpha) = alphaField(static_cast<float>(m_baseAlpha) * factor);
}

void XCFastPixelMixer::SetMask(XCVOffscreen* mask, const XCPoint& offset) {
    m_mask = mask;
    m_maskOffsetX = offset.x;
    m_maskOffsetY = offset.y;
    m_maskScale = 1;
    if (mask && m_dst && m_dst->GetResolution() != 0.0)
        m_maskScale = ovw::truncateToInt(mask->GetResolution() / m_dst->GetResolution());
}

void XCFastPixelMixer::SetCloneOffscreen(XCVOffscreen* source, const XCPoint& offset) {
    m_clone = source;
    m_cloneOffsetX = offset.x;
    m_cloneOffsetY = offset.y;
}

void XCFastPixelMixer::SetBlurImage(std::uint8_t* bits, int rowBytes, const XCPoint& offset) {
    m_blurBits = bits;
    m_blurRowBytes = rowBytes;
    m_cloneOffsetX = offset.x;
    m_cloneOffsetY = offset.y;
}

void XCFastPixelMixer::SetTexture(std::uint8_t* bits, int rowBytes, int height, const XCPoint& offset, int density,
                                  int mode) {
    m_textureBits = bits;
    m_textureRowBytes = rowBytes;
    m_textureHeight = height;
    m_textureOffsetX = offset.x;
    m_textureOffsetY = offset.y;
    m_textureDensity = density;
    m_textureMode = mode;
}

void XCFastPixelMixer::SetSrcUVParam(double u, double v, double du, double dv) {
    m_u = fixed(u, cnFullStep);
    m_v = fixed(v, cnFullStep);
    m_du = fixed(du, cnFullStep);
    m_dv = fixed(dv, cnFullStep);
}

void XCFastPixelMixer::SetSrcVParam(double v) { m_v = fixed(v, cnFullStep); }

void XCFastPixelMixer::SetSrcUVParamAntiAlias(double u, double v, double du, double dv, double uB, double vB,
                                              double duB, double dvB) {
    m_u = fixed(u, cnFullStep);
    m_v = fixed(v, cnFullStep);
    m_du = fixed(du, cnHalfStep);
    m_dv = fixed(dv, cnHalfStep);
    m_uB = fixed(uB, cnFullStep);
    m_vB = fixed(vB, cnFullStep);
    m_duB = fixed(duB, cnHalfStep);
    m_dvB = fixed(dvB, cnHalfStep);
}

void XCFastPixelMixer::SetSrcVParamAntiAlias(double v, double vB) {
    m_v = fixed(v, cnFullStep);
    m_vB = fixed(vB, cnFullStep);
}

void XCFastPixelMixer::MoveCursorToBlock(int x, int y) {
    for (XCVOffscreen* image : {m_dst, m_cache, m_cacheColor, m_composite}) {
        if (image)
            image->MoveCursor(x, y);
    }
    m_blockLeft = x & -XCVOffscreen::cnBlockSize;
    m_blockTop = y & -XCVOffscreen::cnBlockSize;
}

void XCFastPixelMixer::DoLineRow(int x1, int x2, int y) { SpanPainter(*this).paintSpan(x1, x2, y); }

void XCFastPixelMixer::DoLineRowCopy(int x1, int x2, int y, XCSimpleImage* src) {
    SpanPainter(*this).paintCopy(x1, x2, y, src);
}

namespace ovw::mixing {

void paintBlockPart(XCFastPixelMixer& mixer, const XCRect& part) {
    if (part.left >= part.right || part.top >= part.bottom)
        return;
    mixer.MoveCursorToBlock(part.left, part.top);
    SpanPainter(mixer).paintPart(part);
}

} // namespace ovw::mixing
