#include "ovwcmn/xcvoffscreen.h"

#include "ovwcmn/xcvoffscreenlock.h"
#include "vimage/blockparts.h"
#include "vimage/numbers.h"
#include "vimage/withformat.h"

#include <cstring>
#include <memory>

using namespace ovw::vimage;

XCVOffscreen::XCVOffscreen() = default;

XCVOffscreen::~XCVOffscreen() { XCVOffscreen::Destroy(); }

void XCVOffscreen::Initialize() {
    m_vm = nullptr;
    m_width = m_height = 0;
    m_resolution = 0;
    m_offset = XCPoint();
    m_rowBytes = 0;
    m_blocksAcross = m_blocksDown = 0;
    m_lockCount = 0;
    m_editMode = 0;
    m_protectRect.SetRectEmpty();
    m_cursor = XCVOffscreenCursor();
    m_cursorArea.SetRectEmpty();
    m_clearByte = 0;
    m_clearColor = m_maskColor = cnTransparentWhite;
    m_enableClear = 1;
    m_transparency = cnOpaque;
    m_loadImage = 1;
    m_editLockChecker = 0;
}

// ---- Making images

template <class Format>
struct VariantOf;
template <>
struct VariantOf<Bit1> {
    using Type = XCVOffscreen1Bit;
};
template <>
struct VariantOf<Bit2> {
    using Type = XCVOffscreen2Bit;
};
template <>
struct VariantOf<Density8> {
    using Type = XCVOffscreen8Bit;
};
template <>
struct VariantOf<CoverageGrey16> {
    using Type = XCVOffscreen16Bit;
};
template <>
struct VariantOf<Rgb24> {
    using Type = XCVOffscreen24Bit;
};
template <>
struct VariantOf<Rgba32> {
    using Type = XCVOffscreen32Bit;
};

XCVOffscreen* XCVOffscreen::CreateOffscreen(int depth) {
    return withFormat(depth, []<class Format>() -> XCVOffscreen* { return new typename VariantOf<Format>::Type; });
}

void XCVOffscreen::DeleteOffscreen(XCVOffscreen* image) { delete image; }

XCVOffscreen* XCVOffscreen::CreateSameSizeOffscr() const { return CreateSameSizeOffscr(m_resolution); }

XCVOffscreen* XCVOffscreen::CreateSameSizeOffscr(double resolution) const {
    std::unique_ptr<XCVOffscreen> image(CreateOffscreen(m_depth));
    if (image)
        image->Create(m_vm, m_width, m_height, resolution);
    return image.release();
}

XCVOffscreen* XCVOffscreen::CreateAndCopyAll() {
    std::unique_ptr<XCVOffscreen> copy(CreateSameSizeOffscr());
    if (!copy)
        return nullptr;
    copy->m_clearByte = m_clearByte;
    copy->m_clearColor = m_clearColor;
    const XCVOffscreenAutoLock readLock(this, 0);
    const XCVOffscreenEditLock noNewBlocks(this);
    const XCVOffscreenAutoLock writeLock(copy.get(), 1);
    const std::size_t blockBytes = static_cast<std::size_t>(m_rowBytes) * cnBlockSize;
    forEachPart(*this, GetRect(), [&](const std::uint8_t* base, const XCRect& part) {
        copy->MoveCursor(part.left, part.top);
        std::memcpy(copy->GetBaseAddress(), base, blockBytes);
    });
    return copy.release();
}

// ---- Geometry

int XCVOffscreen::GetBlockCount(int* across, int* down) const {
    if (across)
        *across = m_blocksAcross;
    if (down)
        *down = m_blocksDown;
    return m_blocksAcross * m_blocksDown;
}

XCRect XCVOffscreen::GetBlockRect(int index) const { return hasCell(index) ? m_blocks[index].GetRect() : XCRect(); }

int XCVOffscreen::GetBlockAreaIndex(const XCRect& rect, int& firstColumn, int& lastColumn, int& firstRow,
                                    int& lastRow) const {
    XCRect met;
    if (!met.IntersectRect(rect, GetRect()))
        return 0;
    firstColumn = met.left >> cnBlockShift;
    lastColumn = (met.right - 1) >> cnBlockShift;
    firstRow = met.top >> cnBlockShift;
    lastRow = (met.bottom - 1) >> cnBlockShift;
    return (lastRow - firstRow + 1) * (lastColumn - firstColumn + 1);
}

int XCVOffscreen::GetBlockArea(const XCRect& rect, int index, tagRECT* out, int clip) const {
    if (!hasCell(index))
        return 0;
    const XCRect& block = m_blocks[index].GetRect();
    XCRect met;
    if (!met.IntersectRect(block, rect))
        return 0;
    if (out)
        *out = clip == 1 ? met : block;
    return 1;
}

int XCVOffscreen::GetBlockArea(const XCRect& rect, XCTArray<tagRECT, 0>& list, int clip) const {
    list.Clear();
    XCBlockGetter blocks(this, rect, 1);
    XCRect part;
    while (blocks.GetNextBlock(part))
        list.PushBack(clip ? part : GetBlockRect(GetBlockIndexFast(part.left, part.top)));
    return list.GetSize();
}

namespace {

int convertPoint(const XCVOffscreen* from, const XCVOffscreen* to, int value) {
    const double own = from->GetResolution();
    const double other = to ? to->GetResolution() : own;
    return own == other || own == 0 || other == 0 ? value : clampedInt(value * other / own);
}

} // namespace

int XCVOffscreen::ConvertPointX(const XCVOffscreen* other, int x) const { return convertPoint(this, other, x); }

int XCVOffscreen::ConvertPointY(const XCVOffscreen* other, int y) const { return convertPoint(this, other, y); }

// ---- Settings

void XCVOffscreen::GetClearColor(std::uint8_t* value) const {
    if (value)
        *value = m_clearByte;
}

void XCVOffscreen::GetClearColor(std::uint32_t* colour) const {
    if (colour)
        *colour = m_clearColor;
}

void XCVOffscreen::SetClearColor(int value) {
    if (m_depth <= 8)
        m_clearByte = static_cast<std::uint8_t>(value);
    else
        m_clearColor = static_cast<std::uint32_t>(value);
}

void XCVOffscreen::GetMaskColor(std::uint32_t* colour) const {
    if (colour)
        *colour = m_maskColor;
}

std::uint32_t XCVOffscreen::GetIndexColor(int i) const {
    return i >= 0 && i < cnIndexColours ? m_rules.indexColours[i] : 0;
}

void XCVOffscreen::SetIndexColor(int i, std::uint32_t colour) {
    if (i >= 0 && i < cnIndexColours)
        m_rules.indexColours[i] = colour;
}
