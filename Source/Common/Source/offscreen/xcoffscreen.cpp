#include "ovwcmn/xcoffscreen.h"

#include "offscreen/pixelview.h"
#include "ovwcmn/xcexception.h"

#include <algorithm>
#include <limits>

using namespace ovw::offscreen;
using ovw::foundation::cnCodeNoMemory;
using ovw::foundation::cnCodeParameter;

namespace {

constexpr int cnClipNone = 0;
constexpr int cnClipRectangle = 1;
constexpr int cnClipMask = 2;

constexpr bool isDepth(int bitCount) {
    return bitCount == Ink1::cnBits || bitCount == Density8::cnBits || bitCount == Rgb24::cnBits ||
           bitCount == Argb32::cnBits;
}

constexpr std::int64_t alignUp(std::int64_t bits, std::int64_t unit) { return (bits + unit - 1) & ~(unit - 1); }

} // namespace

XCOffscreen::XCOffscreen() = default;

XCOffscreen::XCOffscreen(const XCOffscreen& other)
    : m_image(other.m_image), m_line(other.m_line), m_info(other.m_info), m_foreColor(other.m_foreColor),
      m_fore1Bit(other.m_fore1Bit), m_fore8Bit(other.m_fore8Bit), m_foreChanged(other.m_foreChanged),
      m_transparency(other.m_transparency), m_alphaRate(other.m_alphaRate), m_alphaRest(other.m_alphaRest),
      m_mode(other.m_mode), m_layerKind(other.m_layerKind), m_clipMode(other.m_clipMode), m_clipRect(other.m_clipRect),
      m_clipMask(other.m_clipMask), m_clipMaskOffsetX(other.m_clipMaskOffsetX),
      m_clipMaskOffsetY(other.m_clipMaskOffsetY), m_clipMaskRatio(other.m_clipMaskRatio) {
    m_info.bits = nullptr;
    m_info.line = nullptr;
}

XCOffscreen::~XCOffscreen() { Destroy(); }

void XCOffscreen::Create(int width, int height, int bitCount, std::uint32_t color, int fill) {
    Destroy();
    if (width <= 0 || height <= 0)
        xcThrowError(cnCodeParameter);
    CalcBufferSize(width, height, bitCount);
    VXHANDLE image;
    if (const int error = vxImageCreate(width, height, bitCount, &image))
        xcThrowError(error == cnCodeNoMemory ? error : cnCodeParameter);
    try {
        adopt(image);
    } catch (...) {
        vxFree(image);
        throw;
    }
    if (fill != 1)
        return;
    const ImageLock lock(this);
    const std::uint32_t previous = m_foreColor;
    SetForeColor(color);
    RectFill(PixelView(*this).rect());
    SetForeColor(previous);
}

void XCOffscreen::SetRTImage(VXHANDLE image) {
    VXIMAGELOCK lock;
    if (vxImageLock(image, &lock))
        xcThrowError(cnCodeParameter);
    vxImageUnlock(image);
    if (image == m_image.GetHandle())
        return;
    Destroy();
    adopt(image);
}

/// Takes an image of the utility library; on failure it stays the caller's and this image is empty.
void XCOffscreen::adopt(VXHANDLE image) {
    VXIMAGELOCK lock;
    if (const int error = vxImageLock(image, &lock))
        xcThrowError(error);
    vxImageUnlock(image);
    m_line.Alloc(CalcRowLineBufferSize(lock.width, lock.bitCount));
    m_image.Attach(image, vxGetHandleSize(image), 1);
    m_info = Info();
    m_info.width = lock.width;
    m_info.height = lock.height;
    m_info.bitCount = lock.bitCount;
    m_info.rowBytes = lock.rowBytes;
    m_info.bytesPerPixel = lock.bytesPerPixel;
    withFormat(lock.bitCount, [this]<class Format>() {
        if constexpr (requires { Format::cnRed; }) {
            m_info.alphaIndex = Format::cnAlpha;
            m_info.redIndex = Format::cnRed;
            m_info.greenIndex = Format::cnGreen;
            m_info.blueIndex = Format::cnBlue;
        }
    });
    m_foreChanged = 1;
}

void XCOffscreen::Destroy() {
    while (m_lockCount > 0)
        Unlock();
    m_image.Free();
    m_line.Free();
    m_info = Info();
}

void XCOffscreen::Lock() {
    if (m_lockCount > 0) {
        ++m_lockCount;
        return;
    }
    if (vxImageLock(m_image.GetHandle(), &m_info.lock))
        xcThrowError(cnCodeNoMemory);
    m_info.line = static_cast<std::uint8_t*>(vxLock(m_line.GetHandle()));
    m_info.bits = m_info.lock.base;
    m_lockCount = 1;
}

void XCOffscreen::Unlock() {
    if (m_lockCount == 0 || --m_lockCount > 0)
        return;
    vxUnlock(m_line.GetHandle());
    vxImageUnlock(m_image.GetHandle());
    m_info.line = nullptr;
    m_info.bits = nullptr;
}

std::uint32_t XCOffscreen::GetBufferSize() const {
    return static_cast<std::uint32_t>(m_info.rowBytes) * static_cast<std::uint32_t>(m_info.height);
}

std::int64_t XCOffscreen::Align32Bit(int bits) { return alignUp(bits, 32); }
std::int64_t XCOffscreen::Align64Bit(int bits) { return alignUp(bits, 64); }

std::uint32_t XCOffscreen::CalcRowLineBufferSize(int width, int bitCount) {
    if (!isDepth(bitCount) || width < 0)
        xcThrowError(cnCodeParameter);
    const std::int64_t bytes = alignUp(std::int64_t{width} * bitCount, 32) / 8;
    if (bytes > std::numeric_limits<std::int32_t>::max())
        xcThrowError(cnCodeParameter);
    return static_cast<std::uint32_t>(bytes);
}

std::uint32_t XCOffscreen::CalcBufferSize(int width, int height, int bitCount) {
    const std::int64_t rowBytes = CalcRowLineBufferSize(width, bitCount);
    if (height < 0 || rowBytes * height > std::numeric_limits<std::uint32_t>::max())
        xcThrowError(cnCodeParameter);
    return static_cast<std::uint32_t>(rowBytes * height);
}

void XCOffscreen::SetForeColor(const std::uint32_t& color) {
    if (color == m_foreColor)
        return;
    m_foreColor = color;
    m_fore8Bit = Density8::fillValue(color);
    m_fore1Bit = Density8::read1(m_fore8Bit);
    m_foreChanged = 1;
}

void XCOffscreen::SetForeColor(tagVXRGBCOLOR16 color) { SetForeColor(XCRgbColor(color) & cnRgbMask); }

void XCOffscreen::SetTransparency(int transparency) {
    m_transparency = std::clamp(transparency, 0, cnByteMax);
    m_alphaRate = static_cast<double>(m_transparency) / cnByteMax;
    m_alphaRest = 1.0 - m_alphaRate;
}

void XCOffscreen::SetClipRect(const tagRECT& rect) {
    ResetClip();
    if (XCRect(rect).IsRectNull())
        return;
    m_clipMode = cnClipRectangle;
    m_clipRect = rect;
}

void XCOffscreen::SetClipMask(XCOffscreen* mask, int offsetX, int offsetY, int ratio) {
    ResetClip();
    if (!mask)
        return;
    m_clipMode = cnClipMask;
    m_clipMask = mask;
    m_clipMaskOffsetX = offsetX;
    m_clipMaskOffsetY = offsetY;
    m_clipMaskRatio = ratio == 0 ? 1 : ratio;
}

void XCOffscreen::ResetClip() {
    m_clipMode = cnClipNone;
    m_clipRect = {};
    m_clipMask = nullptr;
    m_clipMaskOffsetX = 0;
    m_clipMaskOffsetY = 0;
    m_clipMaskRatio = 1;
}

std::int64_t XCOffscreen::ClipMaskToOffscreen(int v) const {
    const std::int64_t ratio = m_clipMaskRatio;
    return ratio >= 1 ? v / ratio : v * -ratio;
}

std::int64_t XCOffscreen::ClipMaskToOffscreenX(int v) const { return ClipMaskToOffscreen(v) + m_clipMaskOffsetX; }
std::int64_t XCOffscreen::ClipMaskToOffscreenY(int v) const { return ClipMaskToOffscreen(v) + m_clipMaskOffsetY; }

std::int64_t XCOffscreen::OffscreenToClipMask(std::int64_t v) const {
    const std::int64_t ratio = m_clipMaskRatio;
    return ratio > 0 ? v * ratio : v / -ratio;
}

std::int64_t XCOffscreen::OffscreenToClipMaskX(int v) const {
    return OffscreenToClipMask(std::int64_t{v} - m_clipMaskOffsetX);
}
std::int64_t XCOffscreen::OffscreenToClipMaskY(int v) const {
    return OffscreenToClipMask(std::int64_t{v} - m_clipMaskOffsetY);
}
