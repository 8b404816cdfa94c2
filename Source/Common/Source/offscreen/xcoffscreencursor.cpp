#include "ovwcmn/xcoffscreen.h"

#include "offscreen/pixelview.h"

#include <limits>

using namespace ovw::offscreen;

const std::uint8_t XCOffscreenCursor::cbBitArray[8] = {0x80, 0x40, 0x20, 0x10, 0x08, 0x04, 0x02, 0x01};
const std::uint8_t XCOffscreenCursor::cbXorBitArray[8] = {0x7F, 0xBF, 0xDF, 0xEF, 0xF7, 0xFB, 0xFD, 0xFE};

namespace {

int moved(int v, int d) {
    using Limits = std::numeric_limits<std::int32_t>;
    const std::int64_t sum = std::int64_t{v} + d;
    return static_cast<int>(sum < Limits::min() ? Limits::min() : sum > Limits::max() ? Limits::max() : sum);
}

} // namespace

XCOffscreenCursor::XCOffscreenCursor(XCOffscreen* image, int x, int y) : m_image(image), m_x(x), m_y(y) {
    ResetCursor();
}

int XCOffscreenCursor::CursorXInOffscreen() const { return m_x >= 0 && m_x < m_image->m_info.width; }
int XCOffscreenCursor::CursorYInOffscreen() const { return m_y >= 0 && m_y < m_image->m_info.height; }

void XCOffscreenCursor::ResetCursor() { ResetCursorY(); }

void XCOffscreenCursor::ResetCursorY() {
    const XCOffscreen::Info& info = m_image->m_info;
    m_row = info.bits && CursorYInOffscreen() ? info.bits + static_cast<std::ptrdiff_t>(m_y) * info.rowBytes : nullptr;
    findPixel();
}

void XCOffscreenCursor::findPixel() {
    const XCOffscreen::Info& info = m_image->m_info;
    const bool isPacked = info.bitCount == Ink1::cnBits;
    m_bit = isPacked ? m_x & 7 : 0;
    if (!m_row || !CursorXInOffscreen())
        m_pixel = nullptr;
    else
        m_pixel = m_row + (isPacked ? m_x >> 3 : static_cast<std::ptrdiff_t>(m_x) * info.bytesPerPixel);
}

void XCOffscreenCursor::MoveCursor(int x, int y) {
    m_x = x;
    MoveCursorY(y);
}

void XCOffscreenCursor::MoveCursorX(int x) {
    m_x = x;
    findPixel();
}

void XCOffscreenCursor::MoveCursorY(int y) {
    m_y = y;
    ResetCursorY();
}

void XCOffscreenCursor::OffsetCursor(int dx, int dy) { MoveCursor(moved(m_x, dx), moved(m_y, dy)); }
void XCOffscreenCursor::OffsetCursorX(int dx) { MoveCursorX(moved(m_x, dx)); }
void XCOffscreenCursor::OffsetCursorY(int dy) { MoveCursorY(moved(m_y, dy)); }

void XCOffscreenCursor::NextCursorX() {
    if (!m_pixel || m_x + 1 >= m_image->m_info.width)
        return OffsetCursorX(1);
    ++m_x;
    if (m_image->m_info.bitCount != Ink1::cnBits)
        m_pixel += m_image->m_info.bytesPerPixel;
    else if (++m_bit == 8)
        m_bit = 0, ++m_pixel;
}

void XCOffscreenCursor::PrevCursorX() {
    if (!m_pixel || m_x == 0)
        return OffsetCursorX(-1);
    --m_x;
    if (m_image->m_info.bitCount != Ink1::cnBits)
        m_pixel -= m_image->m_info.bytesPerPixel;
    else if (--m_bit < 0)
        m_bit = 7, --m_pixel;
}

template <class Convert>
auto XCOffscreenCursor::read(Convert convert) const {
    return withFormat(m_image->m_info.bitCount, [&]<class Format>() {
        return convert.template operator()<Format>(Format::load(m_pixel, cbBitArray[m_bit]));
    });
}

template <class Convert>
void XCOffscreenCursor::write(Convert convert) {
    if (m_pixel)
        withFormat(m_image->m_info.bitCount, [&]<class Format>() {
            Format::store(m_pixel, cbBitArray[m_bit], convert.template operator()<Format>());
        });
}

std::uint8_t XCOffscreenCursor::Get1BitPixel() const {
    return m_pixel ? read([]<class Format>(auto v) { return Format::read1(v); }) : 0;
}

std::uint8_t XCOffscreenCursor::Get8BitPixel() const {
    return m_pixel ? read([]<class Format>(auto v) { return Format::read8(v); }) : 0;
}

std::uint32_t XCOffscreenCursor::Get24BitPixel() const {
    return m_pixel ? read([]<class Format>(auto v) { return Format::read24(v); }) : cnWhite;
}

std::uint32_t XCOffscreenCursor::Get32BitPixel() const {
    return m_pixel ? read([]<class Format>(auto v) { return Format::read32(v); }) : cnOpaqueWhite;
}

void XCOffscreenCursor::Set1BitPixel(const std::uint8_t& value) {
    write([value]<class Format>() { return Format::write1(value); });
}

void XCOffscreenCursor::Set8BitPixel(const std::uint8_t& density) {
    write([density]<class Format>() { return Format::write8(density); });
}

void XCOffscreenCursor::Set24BitPixel(const std::uint32_t& colour) {
    write([colour]<class Format>() { return Format::write24(colour); });
}

void XCOffscreenCursor::Set32BitPixel(const std::uint32_t& colour) {
    write([colour]<class Format>() { return Format::write32(colour); });
}

std::uint8_t& XCOffscreenCursor::channel(int index) { return m_pixel ? m_pixel[index] : m_outside[index]; }
std::uint8_t& XCOffscreenCursor::GetRReference() { return channel(m_image->m_info.redIndex); }
std::uint8_t& XCOffscreenCursor::GetGReference() { return channel(m_image->m_info.greenIndex); }
std::uint8_t& XCOffscreenCursor::GetBReference() { return channel(m_image->m_info.blueIndex); }
std::uint8_t& XCOffscreenCursor::GetAReference() { return channel(m_image->m_info.alphaIndex); }

VXCHANNELREFERENCES XCOffscreenCursor::GetRGBAReference() {
    return {GetRReference(), GetGReference(), GetBReference(), GetAReference()};
}
