#ifndef OVW_VIMAGE_DEPTHVARIANT_H
#define OVW_VIMAGE_DEPTHVARIANT_H

/// @file
/// The bodies of DepthVariant, for the sources that instantiate it.

#include "ovwcmn/xcvoffscreen.h"
#include "ovwcmn/xcvoffscreenlock.h"
#include "vimage/blockparts.h"
#include "vimage/numbers.h"
#include "vimage/pixelformats.h"

#include <cassert>
#include <cstring>

namespace ovw::vimage {

template <class Format>
constexpr std::uint32_t defaultClearColour() {
    return Format::cnBits == CoverageGrey16::cnBits ? 0 : cnTransparentWhite;
}

template <class Format>
DepthVariant<Format>::DepthVariant() {
    m_firstBitMask = Format::cnFirstMask;
    DepthVariant::Initialize();
}

template <class Format>
DepthVariant<Format>::~DepthVariant() = default;

template <class Format>
void DepthVariant<Format>::Initialize() {
    XCVOffscreen::Initialize();
    m_depth = Format::cnBits;
    m_clearColor = defaultClearColour<Format>();
}

// ---- One pixel

template <class Format>
template <auto Reading>
auto DepthVariant<Format>::read() const {
    assert(m_cursor.address);
    return Reading(Format::load(m_cursor.address, m_bitMask), m_rules);
}

template <class Format>
template <auto Reading, class Result>
Result DepthVariant<Format>::readOr(Result missing) const {
    return m_cursor.address ? static_cast<Result>(read<Reading>()) : missing;
}

template <class Format>
template <auto Writing, class Argument>
void DepthVariant<Format>::write(Argument value) {
    assert(m_cursor.address);
    Format::store(m_cursor.address, m_bitMask, Writing(value, m_rules));
}

template <class Format>
std::uint8_t DepthVariant<Format>::Get1BitColorFast() const {
    return read<Format::read1>();
}
template <class Format>
std::uint8_t DepthVariant<Format>::Get2BitColorFast() const {
    return read<Format::read2>();
}
template <class Format>
std::uint8_t DepthVariant<Format>::Get8BitColorFast() const {
    return read<Format::read8>();
}
template <class Format>
std::uint32_t DepthVariant<Format>::Get16BitColorFast() const {
    return read<Format::read16>();
}
template <class Format>
std::uint32_t DepthVariant<Format>::Get24BitColorFast() const {
    return read<Format::read24>();
}
template <class Format>
std::uint32_t DepthVariant<Format>::Get32BitColorFast() const {
    return read<Format::read32>();
}
template <class Format>
std::uint8_t DepthVariant<Format>::Get8BitImageFast() const {
    return read<Format::image8>();
}
template <class Format>
std::uint32_t DepthVariant<Format>::Get24BitImageFast() const {
    return read<Format::image24>();
}
template <class Format>
std::uint8_t DepthVariant<Format>::Get8BitMaskFast() const {
    return read<Format::mask8>();
}

template <class Format>
std::uint8_t DepthVariant<Format>::Get1BitColor() const {
    return readOr<Format::read1>(std::uint8_t{0});
}
template <class Format>
std::uint8_t DepthVariant<Format>::Get2BitColor() const {
    return readOr<Format::read2>(Format::cnMissing2);
}
template <class Format>
std::uint8_t DepthVariant<Format>::Get8BitColor() const {
    return readOr<Format::read8>(std::uint8_t{0});
}
template <class Format>
std::uint32_t DepthVariant<Format>::Get16BitColor() const {
    return readOr<Format::read16>(Format::cnMissing16);
}
template <class Format>
std::uint32_t DepthVariant<Format>::Get24BitColor() const {
    return readOr<Format::read24>(cnWhite);
}
template <class Format>
std::uint32_t DepthVariant<Format>::Get32BitColor() const {
    return readOr<Format::read32>(std::uint32_t{0});
}
template <class Format>
std::uint8_t DepthVariant<Format>::Get8BitImage() const {
    return readOr<Format::image8>(std::uint8_t{0});
}
template <class Format>
std::uint32_t DepthVariant<Format>::Get24BitImage() const {
    return readOr<Format::image24>(cnWhite);
}
template <class Format>
std::uint8_t DepthVariant<Format>::Get8BitMask() const {
    return readOr<Format::mask8>(Format::cnMissingMask);
}
template <class Format>
std::uint32_t DepthVariant<Format>::GetColor() const {
    return readOr<Format::readOwn>(std::uint32_t{Format::cnMissingOwn});
}

template <class Format>
std::uint32_t DepthVariant<Format>::Get24BitColorAddress(const std::uint8_t* address) const {
    if constexpr (Format::cnBits < 8)
        return DepthVariant::Get24BitColor(); // an address alone does not name one of several pixels
    else
        return Format::read24(Format::load(address), m_rules);
}

template <class Format>
void DepthVariant<Format>::Set1BitColor(std::uint8_t value) {
    write<Format::write1>(value);
}
template <class Format>
void DepthVariant<Format>::Set2BitColor(std::uint8_t value) {
    write<Format::write2>(value);
}
template <class Format>
void DepthVariant<Format>::Set8BitColor(std::uint8_t density) {
    write<Format::write8>(density);
}
template <class Format>
void DepthVariant<Format>::Set16BitColor(std::uint32_t colour) {
    write<Format::write16>(colour);
}
template <class Format>
void DepthVariant<Format>::Set24BitColor(std::uint32_t colour) {
    write<Format::write24>(colour);
}
template <class Format>
void DepthVariant<Format>::Set32BitColor(std::uint32_t colour) {
    write<Format::write32>(colour);
}
template <class Format>
void DepthVariant<Format>::SetColor(std::uint32_t value) {
    write<Format::writeOwn>(value);
}

template <class Format>
std::uint32_t DepthVariant<Format>::MakeNativeColor(std::uint32_t colour) const {
    return Format::native(Format::write32(colour, m_rules));
}

template <class Format>
void DepthVariant<Format>::CopyCurrentColor(XCVOffscreen* source) {
    assert(source->GetDepth() == m_depth);
    if (source->GetCurrentAddress())
        DepthVariant::CopyCurrentColorFast(source);
    else
        Format::store(m_cursor.address, m_bitMask, Format::cnMissingValue);
}

template <class Format>
void DepthVariant<Format>::CopyCurrentColorFast(XCVOffscreen* source) {
    if constexpr (Format::cnBits < 8)
        SetColor(source->GetColor()); // a stored 1 of 2 bits becomes 0
    else
        Format::store(m_cursor.address, 0, Format::load(source->GetCurrentAddress()));
}

// ---- The cursor

template <class Format>
std::uint8_t* DepthVariant<Format>::NextCursorXFastest() {
    ++m_cursor.x;
    if (m_cursor.address)
        Format::stepForward(m_cursor.address, m_bitMask);
    return m_cursor.address;
}

template <class Format>
std::uint8_t* DepthVariant<Format>::PrevCursorXFastest() {
    --m_cursor.x;
    if (m_cursor.address)
        Format::stepBack(m_cursor.address, m_bitMask);
    return m_cursor.address;
}

template <class Format>
std::uint8_t* DepthVariant<Format>::NextCursorX() {
    const int x = moved(m_cursor.x, 1);
    return m_cursorArea.hasColumn(x) ? DepthVariant::NextCursorXFastest()
                                     : enterBlock(GetBlockIndex(x, m_cursor.y), x, m_cursor.y);
}

template <class Format>
std::uint8_t* DepthVariant<Format>::PrevCursorX() {
    const int x = moved(m_cursor.x, -1);
    return m_cursorArea.hasColumn(x) ? DepthVariant::PrevCursorXFastest()
                                     : enterBlock(GetBlockIndex(x, m_cursor.y), x, m_cursor.y);
}

template <class Format>
std::uint8_t* DepthVariant<Format>::SetCurrentCursorAddress(int x, int y, std::uint8_t* base) const {
    return base ? addressIn(base, x, y) : nullptr;
}

template <class Format>
std::uint8_t* DepthVariant<Format>::SetCurrentCursorAddress(int x, int y) {
    return placeCursor(x, y);
}

// ---- Whole blocks, rectangles and rows

template <class Format>
void DepthVariant<Format>::ClearBlock(std::uint8_t* block) {
    if (!block)
        block = m_cursor.base;
    if (block)
        Format::clearRow(block, 0, cnBlockSize * cnBlockSize, m_clearByte, m_clearColor);
}

template <class Format>
void DepthVariant<Format>::RectFill(const XCRect& rect, int erase, std::uint32_t colour) {
    const auto value = erase ? Format::eraseValue(m_clearColor, m_rules) : Format::fillValue(colour, m_rules);
    const XCVOffscreenAutoLock lock(this, 1);
    forEachPart(*this, rect, [&](std::uint8_t* base, const XCRect& part) {
        fillPart<Format>(base, part.left, part.top, part.Width(), part.Height(), value);
    });
}

template <class Format>
void DepthVariant<Format>::RectFill(const XCRect& rect, int erase, std::uint32_t colour, int behind) {
    if (!behind)
        return DepthVariant::RectFill(rect, erase, colour);
    const XCVOffscreenAutoLock lock(this, 1);
    forEachPart(*this, rect, [&](std::uint8_t* base, const XCRect& part) {
        for (int y = part.top; y < part.bottom; ++y)
            Format::changeRow(rowOf<Format>(base, y), part.left & cnBlockMask, part.Width(),
                              [&](typename Format::Value v) { return Format::behind(v, colour, m_rules); });
    });
}

template <class Format>
void DepthVariant<Format>::FillLineRow(int x1, int x2, int y, std::uint32_t colour, const tagRECT* clip) {
    XCRect row(x1, y, endOf(x2, 1), endOf(y, 1));
    if (clip)
        row.IntersectRect(*clip);
    const auto value = Format::rowValue(colour, m_rules);
    forEachPart(*this, row, [&](std::uint8_t* base, const XCRect& part) {
        fillPart<Format>(base, part.left, part.top, part.Width(), part.Height(), value);
    });
}

template <class Format>
void DepthVariant<Format>::FillBlock(int useColour, std::uint32_t colour) {
    if (!m_cursor.IsEnable())
        return;
    const XCVOffscreenAutoLock lock(this, m_cursor.x, m_cursor.y, 1);
    if (useColour && m_cursor.base)
        fillPart<Format>(m_cursor.base, 0, 0, cnBlockSize, cnBlockSize, Format::fillValue(colour, m_rules));
    else
        DepthVariant::ClearBlock(nullptr);
}

template <class Format>
void DepthVariant<Format>::DrawSimpleLine(int vertical, int position, std::uint32_t colour) {
    DepthVariant::DrawSimpleSegment(vertical, position, 0, vertical == 1 ? m_height : m_width, colour);
}

template <class Format>
void DepthVariant<Format>::DrawSimpleSegment(int vertical, int position, int start, int length, std::uint32_t colour) {
    const XCRect run = vertical == 1 ? XCRect(position, start, endOf(position, 1), endOf(start, length))
                                     : XCRect(start, position, endOf(start, length), endOf(position, 1));
    const auto value = Format::write32(colour, m_rules);
    forEachPart(*this, run, [&](std::uint8_t* base, const XCRect& part) {
        fillPart<Format>(base, part.left, part.top, part.Width(), part.Height(), value);
    });
}

} // namespace ovw::vimage

#endif // OVW_VIMAGE_DEPTHVARIANT_H
