#include "vimage/rowselection.h"

#include "ovwcmn/xcvoffscreen.h"
#include "vimage/numbers.h"

namespace ovw::vimage {

namespace {

constexpr int cnPatternMask = 15;
constexpr int cnMixed = -1;

bool haveOneScale(const XCVOffscreen& image, const XCVOffscreen& mask) {
    return image.GetResolution() == mask.GetResolution() || image.GetResolution() == 0 || mask.GetResolution() == 0;
}

} // namespace

/// 1 when the mask is ink all over the part, 0 when it is nowhere, else -1. Its cursor stays where it is.
int RowSource::maskState(const XCVOffscreen& image, const XCRect& part) const {
    if (!haveOneScale(image, *mask))
        return cnMixed;
    int first = endOf(part.left, maskOffsetX);
    int last = endOf(part.right - 1, maskOffsetX);
    return mask->CheckLinePixel(mask->GetCursorPosY(), first, last);
}

void RowSource::select(const XCVOffscreen& image, const XCRect& part, bool asksMask, RowSelection& selection) const {
    const int state = !mask ? 1 : asksMask ? maskState(image, part) : cnMixed;
    selection.isNone = state == 0;
    selection.isAll = state == 1 && !pattern;
    if (selection.isNone || selection.isAll)
        return;
    selection.isNone = true;
    for (int x = part.left; x < part.right; ++x) {
        bool isSelected = !pattern || patternLevel >= pattern[x & cnPatternMask];
        if (isSelected && state == cnMixed) {
            mask->MoveCursorX(image.ConvertPointX(mask, endOf(x, maskOffsetX)));
            isSelected = mask->Get1BitColor() != 0;
        }
        selection.is[static_cast<std::size_t>(x - part.left)] = isSelected;
        selection.isNone &= !isSelected;
    }
}

} // namespace ovw::vimage
