#include "ovwcmn/xcvoffpixelmixer.h"

#include "mixing/saturated.h"
#include "ovwcmn/detail/toint.h"
#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcvirtualmemory.h"
#include "ovwcmn/xcvoffscreen.h"
#include "vimage/pixelcolour.h"

#include <memory>

using ovw::mixing::saturated;

namespace {

/// Moves the cursor of a mask image to the pixel that belongs to a column, or row, of the destination.
void moveToColumn(const XCVOffPixelMask::MaskInfo& mask, const XCVOffscreen* dst, int x) {
    mask.image->MoveCursorX(dst->ConvertPointX(mask.image, saturated(std::int64_t{x} - mask.offsetX)));
}

void moveToRow(const XCVOffPixelMask::MaskInfo& mask, const XCVOffscreen* dst, int y) {
    mask.image->MoveCursorY(dst->ConvertPointY(mask.image, saturated(std::int64_t{y} - mask.offsetY)));
}

} // namespace

void XCVOffPixelMask::Initialize() {
    // The byte size of the entries with 32-bit pointers.
    constexpr int cnTableSize = 80;
    for (MaskInfo& mask : m_masks)
        mask = {};
    m_masks[0].kind = cnTableSize;
}

XCVOffPixelMask::MaskInfo& XCVOffPixelMask::GetMaskInfo(int index) {
    if (index < 0 || index >= cnMasks)
        xcThrowError(ovw::foundation::cnCodeParameter);
    return m_masks[index];
}

void XCVOffPixelMask::SetMaskInfo(int index, const MaskInfo& info) { GetMaskInfo(index) = info; }

int XCVOffPixelMask::IsMaskFreeEx(XCVOffscreen* dst, int x, int y) const {
    if (m_masks[0].image)
        moveToRow(m_masks[0], dst, y);
    return IsMaskFreeXEx(dst, x);
}

int XCVOffPixelMask::GetMaskFreeValue(XCVOffscreen* dst, int x, int y) const {
    if (m_masks[0].image)
        moveToRow(m_masks[0], dst, y);
    return GetMaskFreeValueX(dst, x);
}

int XCVOffPixelMask::IsMaskFreeXEx(XCVOffscreen* dst, int x) const {
    if (!m_masks[0].image)
        return 1;
    moveToColumn(m_masks[0], dst, x);
    return m_masks[0].image->Get1BitColor() != 0;
}

int XCVOffPixelMask::GetMaskFreeValueX(XCVOffscreen* dst, int x) const {
    if (!m_masks[0].image)
        return 0;
    moveToColumn(m_masks[0], dst, x);
    return m_masks[0].image->Get8BitColor();
}

void XCVOffPixelMask::MoveCursorY(XCVOffscreen* dst, int y) const {
    for (const MaskInfo& mask : m_masks)
        if (mask.image)
            moveToRow(mask, dst, y);
}

int XCVOffPixelMask::IsMaskCompare(int mode, std::uint32_t a, std::uint32_t b) {
    const bool isSameColour = a == b;
    const bool isSameAlpha = (a ^ b) <= ovw::vimage::cnRgbMask;
    const bool answers[] = {false, !isSameColour, isSameColour, !isSameAlpha, isSameAlpha};
    return mode >= 1 && mode <= 4 && answers[mode];
}

XCVOffscreen* XCVOffPixelMask::CreateMask(XCVOffscreen* src, double resolution) {
    if (!src)
        return nullptr;
    const int width = ovw::truncateToInt(src->GetWidth() * resolution / src->GetResolution());
    const int height = ovw::truncateToInt(src->GetHeight() * resolution / src->GetResolution());
    std::unique_ptr<XCVOffscreen> mask(XCVOffscreen::CreateOffscreen(src->GetDepth()));
    mask->Create(xcGetVirtualMemory(), width, height, resolution);
    mask->ChangeResolution2(0, 0, width, height, src, 0, 0, src->GetWidth(), src->GetHeight(), CHANGE_RESOLUTION_LOW,
                            0);
    return mask.release();
}
