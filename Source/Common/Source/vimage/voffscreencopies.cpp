// The copying and resampling members of tiled images: they check, lock and forward.

#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcvirtualmemory.h"
#include "ovwcmn/xcvoffscreen.h"
#include "ovwcmn/xcvoffscreenlock.h"
#include "vimage/boxaverage.h"
#include "vimage/copypixels.h"
#include "vimage/mergebehind.h"
#include "vimage/movepixels.h"
#include "vimage/numbers.h"
#include "vimage/operationsource.h"
#include "vimage/quarterturn.h"
#include "vimage/reduce.h"
#include "vimage/spread.h"

#include <memory>

using namespace ovw::vimage;

namespace {

constexpr int cnClearMissing = 1;

bool hasPixels(const XCVOffscreen* source, int w, int h) { return source && w > 0 && h > 0; }

} // namespace

// ---- Copies

int XCVOffscreen::Copy(int x, int y, int w, int h, XCVOffscreen* src, int sx, int sy, int flag) {
    if (m_depth == 0)
        return 1;
    if (!hasPixels(src, w, h))
        return 0;
    if (src->GetDepth() != m_depth) {
        CommonCopy(x, y, w, h, src, sx, sy, flag, 0, 0);
        return 0;
    }
    const CopyPlan plan{x, y, w, h, sx, sy};
    if (plan.area(*this, *src).IsRectEmpty())
        return 0;
    const OperationSource source(*src, *this, clippedRect(sx, sy, w, h, *src));
    const XCVOffscreenAutoLock lock(this, 1);
    if (plan.isWhole(*this, *src)) {
        const BlockChanges changes = copyBlocks(*this, source.image());
        return changes.copied || changes.released;
    }
    return copyPixels(*this, plan, source.image(), flag == cnClearMissing);
}

int XCVOffscreen::CopyAll(XCVOffscreen* src) {
    if (!src || src->GetWidth() != m_width || src->GetHeight() != m_height || src->GetDepth() != m_depth)
        return 0;
    if (src == this)
        return IsBlockExist();
    const OperationSource source(*src, *this, src->GetRect());
    const XCVOffscreenAutoLock lock(this, 1);
    return copyBlocks(*this, source.image()).copied;
}

XCVOffscreen* XCVOffscreen::CreateAndCopyAll() {
    std::unique_ptr<XCVOffscreen> copy(CreateSameSizeOffscr());
    if (!copy)
        return nullptr;
    copy->m_clearByte = m_clearByte;
    copy->m_clearColor = m_clearColor;
    copy->CopyAll(this);
    return copy.release();
}

int XCVOffscreen::CommonCopy(int x, int y, int w, int h, XCVOffscreen* src, int sx, int sy, int, int merge, int) {
    if (!hasPixels(src, w, h))
        return 0;
    const CopyPlan plan{x, y, w, h, sx, sy};
    if (!merge && src->GetDepth() == m_depth && plan.isWhole(*this, *src))
        return CopyAll(src);
    if (plan.area(*this, *src).IsRectEmpty())
        return 0;
    const OperationSource source(*src, *this, clippedRect(sx, sy, w, h, *src));
    const XCVOffscreenAutoLock lock(this, 1);
    return convertPixels(*this, plan, source.image(), merge != 0);
}

void XCVOffscreen::StretchCopy(int x, int y, int w, int h, XCVOffscreen* src, int sx, int sy, int sw, int sh) {
    if (!hasPixels(src, w, h) || sw <= 0 || sh <= 0 || src->GetDepth() != m_depth)
        return;
    const OperationSource source(*src, *this, clippedRect(sx, sy, sw, sh, *src));
    const XCVOffscreenAutoLock lock(this, 1);
    spreadPixels(*this, NearestMap::ofScale({x, w, sx, sw}, double(sw) / w),
                 NearestMap::ofScale({y, h, sy, sh}, double(sh) / h), source.image(), Spreading::Native);
}

// ---- Resolution

namespace {

void reduce(XCVOffscreen& to, const CopyPlan& plan, XCVOffscreen* src, int factor, Reduction reduction) {
    if (!hasPixels(src, plan.width, plan.height))
        return;
    const OperationSource source(
        *src, to,
        clippedRect(plan.sx, plan.sy, std::int64_t{plan.width} * factor, std::int64_t{plan.height} * factor, *src));
    const XCVOffscreenAutoLock lock(&to, 1);
    reducePixels(to, plan, source.image(), factor, reduction);
}

void reduceAll(XCVOffscreen& to, XCVOffscreen* src, int factor) {
    if (!src)
        return;
    const CopyPlan whole{
        0, 0, static_cast<int>(ceilDiv(src->GetWidth(), factor)), static_cast<int>(ceilDiv(src->GetHeight(), factor)),
        0, 0};
    reduce(to, whole, src, factor, Reduction::Whole);
}

Reduction reductionOf(int merge) { return merge ? Reduction::Behind : Reduction::Replace; }

void enlarge(XCVOffscreen& to, const CopyPlan& plan, XCVOffscreen* src, int factor, int merge) {
    if (!hasPixels(src, plan.width, plan.height))
        return;
    const int sourceWidth = static_cast<int>(ceilDiv(plan.width, factor));
    const int sourceHeight = static_cast<int>(ceilDiv(plan.height, factor));
    const OperationSource source(*src, to, clippedRect(plan.sx, plan.sy, sourceWidth, sourceHeight, *src));
    const XCVOffscreenAutoLock lock(&to, 1);
    spreadPixels(to, NearestMap::ofFactor({plan.x, plan.width, plan.sx, sourceWidth}, factor),
                 NearestMap::ofFactor({plan.y, plan.height, plan.sy, sourceHeight}, factor), source.image(),
                 merge ? Spreading::Behind : Spreading::Replace);
}

void enlargeAll(XCVOffscreen& to, XCVOffscreen* src, int factor) {
    if (!src)
        return;
    const auto enlarged = [&](int size) { return ovw::truncateToInt(static_cast<double>(size) * factor); };
    enlarge(to, {0, 0, enlarged(src->GetWidth()), enlarged(src->GetHeight()), 0, 0}, src, factor, 0);
}

} // namespace

void XCVOffscreen::ChangeResolutionHalf(int x, int y, int w, int h, XCVOffscreen* src, int sx, int sy, int merge) {
    reduce(*this, {x, y, w, h, sx, sy}, src, 2, reductionOf(merge));
}
void XCVOffscreen::ChangeResolutionQuarter(int x, int y, int w, int h, XCVOffscreen* src, int sx, int sy, int merge) {
    reduce(*this, {x, y, w, h, sx, sy}, src, 4, reductionOf(merge));
}
void XCVOffscreen::ChangeResolutionOctantal(int x, int y, int w, int h, XCVOffscreen* src, int sx, int sy, int merge) {
    reduce(*this, {x, y, w, h, sx, sy}, src, 8, reductionOf(merge));
}
void XCVOffscreen::ChangeResolutionHalfAll(XCVOffscreen* src) { reduceAll(*this, src, 2); }
void XCVOffscreen::ChangeResolutionQuarterAll(XCVOffscreen* src) { reduceAll(*this, src, 4); }
void XCVOffscreen::ChangeResolutionOctantalAll(XCVOffscreen* src) { reduceAll(*this, src, 8); }
void XCVOffscreen::ChangeResolutionDouble(int x, int y, int w, int h, XCVOffscreen* src, int sx, int sy, int merge) {
    enlarge(*this, {x, y, w, h, sx, sy}, src, 2, merge);
}
void XCVOffscreen::ChangeResolutionFourfold(int x, int y, int w, int h, XCVOffscreen* src, int sx, int sy, int merge) {
    enlarge(*this, {x, y, w, h, sx, sy}, src, 4, merge);
}
void XCVOffscreen::ChangeResolutionDoubleAll(XCVOffscreen* src) { enlargeAll(*this, src, 2); }
void XCVOffscreen::ChangeResolutionFourfoldAll(XCVOffscreen* src) { enlargeAll(*this, src, 4); }

void XCVOffscreen::ChangeResolutionLow(int x, int y, int w, int h, XCVOffscreen* src, int sx, int sy, int sw, int sh,
                                       int merge) {
    if (!hasPixels(src, w, h) || sw <= 0 || sh <= 0)
        return;
    const AxisPlan columns{x, w, sx, sw}, rows{y, h, sy, sh};
    const OperationSource source(*src, *this, clippedRect(sx, sy, sw, sh, *src));
    const XCVOffscreenAutoLock lock(this, 1);
    if (w < sw || h < sh)
        averageWhole(*this, columns, rows, source.image(), merge != 0);
    else
        spreadPixels(*this, NearestMap::ofRatio(columns), NearestMap::ofRatio(rows), source.image(),
                     merge ? Spreading::RaiseVisible : Spreading::ReplaceVisible);
}

namespace {

/// Two rectangles, each cut to its image.
struct ResolutionPlan {
    XCRect to;
    XCRect from;

    bool isEmpty() const { return to.IsRectEmpty() || from.IsRectEmpty(); }
    /// Whether the source is the destination times or divided by a factor, on both axes, up to a slack.
    bool isReduction(int factor, int slack) const {
        return isNear(to.Width(), factor, from.Width(), slack) && isNear(to.Height(), factor, from.Height(), slack);
    }
    bool isEnlargement(int factor, int slack) const {
        return isNear(from.Width(), factor, to.Width(), slack) && isNear(from.Height(), factor, to.Height(), slack);
    }
    CopyPlan copy() const { return {to.left, to.top, to.Width(), to.Height(), from.left, from.top}; }
    AxisPlan columns() const { return {to.left, to.Width(), from.left, from.Width()}; }
    AxisPlan rows() const { return {to.top, to.Height(), from.top, from.Height()}; }

private:
    static bool isNear(int size, int factor, int other, int slack) {
        const std::int64_t difference = std::int64_t{size} * factor - other;
        return difference <= slack && -difference <= slack;
    }
};

} // namespace

void XCVOffscreen::ChangeResolution(int x, int y, int w, int h, XCVOffscreen* src, int sx, int sy, int sw, int sh,
                                    CHANGE_RESOLUTION_MODE mode, int merge) {
    if (!hasPixels(src, w, h))
        return;
    const ResolutionPlan plan{clippedRect(x, y, w, h, *this), clippedRect(sx, sy, sw, sh, *src)};
    const XCRect &to = plan.to, &from = plan.from;
    if (plan.isEmpty())
        return;
    if (to.Width() == from.Width() && to.Height() == from.Height()) {
        if (merge)
            CommonCopy(to.left, to.top, to.Width(), to.Height(), src, from.left, from.top, cnClearMissing, merge, 0);
        else
            Copy(to.left, to.top, to.Width(), to.Height(), src, from.left, from.top, cnClearMissing);
    } else if (mode == CHANGE_RESOLUTION_LOW) {
        ChangeResolutionLow(to.left, to.top, to.Width(), to.Height(), src, from.left, from.top, from.Width(),
                            from.Height(), merge);
    } else if (mode == CHANGE_RESOLUTION_HIGH) {
        if (plan.isReduction(2, 0) || plan.isReduction(4, 0))
            return reduce(*this, plan.copy(), src, plan.isReduction(2, 0) ? 2 : 4, reductionOf(merge));
        const OperationSource source(*src, *this, from);
        const XCVOffscreenAutoLock lock(this, 1);
        averageAreas(*this, plan.columns(), plan.rows(), source.image(), merge != 0);
    }
}

void XCVOffscreen::ChangeResolution2(int x, int y, int w, int h, XCVOffscreen* src, int sx, int sy, int sw, int sh,
                                     CHANGE_RESOLUTION_MODE mode, int merge) {
    if (!hasPixels(src, w, h))
        return;
    const ResolutionPlan plan{clippedRect(x, y, w, h, *this), clippedRect(sx, sy, sw, sh, *src)};
    const bool isSameSize = plan.to.Width() == plan.from.Width() && plan.to.Height() == plan.from.Height();
    if (plan.isEmpty() || isSameSize)
        return ChangeResolution(x, y, w, h, src, sx, sy, sw, sh, mode, merge);
    // The slack takes up the rounding of sizes that are no multiples of the factor.
    const struct {
        bool fits;
        void (XCVOffscreen::*change)(int, int, int, int, XCVOffscreen*, int, int, int);
    } choices[] = {
        {plan.isEnlargement(4, 4), &XCVOffscreen::ChangeResolutionFourfold},
        {plan.isEnlargement(2, 2), &XCVOffscreen::ChangeResolutionDouble},
        {plan.isReduction(2, 2), &XCVOffscreen::ChangeResolutionHalf},
        {plan.isReduction(4, 4), &XCVOffscreen::ChangeResolutionQuarter},
        {plan.isReduction(8, 8), &XCVOffscreen::ChangeResolutionOctantal},
    };
    for (const auto& choice : choices)
        if (choice.fits)
            return (this->*choice.change)(plan.to.left, plan.to.top, plan.to.Width(), plan.to.Height(), src,
                                          plan.from.left, plan.from.top, merge);
    ChangeResolution(x, y, w, h, src, sx, sy, sw, sh, mode, merge);
}

void XCVOffscreen::SetResolutionTable(_XCRESOLUTIONTABLE* table, const double& from, const double& to) {
    *table = resolutionEntry(from, to);
}

void XCVOffscreen::CalcPixelValue(const _XCRESOLUTIONTABLE* columns, const _XCRESOLUTIONTABLE* rows, int x, int y,
                                  double scale, std::uint32_t& out) {
    if (m_depth != 0)
        out = weighedPixel(*this, *columns, *rows, x, y, scale);
}

// ---- Merging behind

void XCVOffscreen::AlphaMergePixel(std::uint32_t colour, std::uint32_t current) {
    const BgraPixel behind = Rgba32::ofColour(colour), front = Rgba32::ofColour(current);
    if (m_cursor.address && showsBehind(behind, front))
        Set32BitColor(Rgba32::colourOf(mergedBehind(behind, front)));
}

void XCVOffscreen::AlphaMergePixel(std::uint32_t colour, std::uint32_t current, int x, int y) {
    MoveCursor(x, y);
    AlphaMergePixel(colour, current);
}

void XCVOffscreen::AlphaMergePixelCore(const std::uint8_t* src, std::uint8_t* dst) {
    const BgraPixel behind = Rgba32::load(src), front = Rgba32::load(dst);
    if (showsBehind(behind, front))
        Rgba32::store(dst, 0, mergedBehind(behind, front));
}

void XCVOffscreen::AlphaMergeColorPixel(std::uint32_t colour, std::uint32_t current) {
    const BgraPixel behind = Rgba32::ofColour(colour), front = Rgba32::ofColour(current);
    if (m_cursor.address && behind.alpha != 0 && front.alpha != 0)
        Set32BitColor(Rgba32::colourOf(tintedBehind(behind, front)));
}

// ---- Moving and turning

void XCVOffscreen::Move(int x, int y, int w, int h, XCVOffscreen* src) {
    if (!hasPixels(src, w, h) || src == this || src->GetDepth() != m_depth || src->GetWidth() != m_width ||
        src->GetHeight() != m_height)
        return;
    const ReadingLock sourceLock(src);
    const XCVOffscreenAutoLock lock(this, 1);
    movePixels(*this, clippedRect(x, y, w, h, *this), *src);
}

void XCVOffscreen::MoveAndRevision(int x, int y, int w, int h, XCVOffscreen* src) { Move(x, y, w, h, src); }

std::unique_ptr<XCVOffscreen> XCVOffscreen::createTurned(int width, int height) const {
    std::unique_ptr<XCVOffscreen> image(CreateOffscreen(m_depth));
    if (!image)
        xcThrowError(ovw::foundation::cnCodeParameter);
    image->Create(xcGetVirtualMemory(), width, height, m_resolution);
    image->m_clearByte = m_clearByte;
    image->m_clearColor = m_clearColor;
    return image;
}

XCVOffscreen* XCVOffscreen::CreateAndRotate90() {
    constexpr int cnBackwards = 270;
    std::unique_ptr<XCVOffscreen> image = createTurned(m_height, m_width);
    const ReadingLock readLock(this);
    const XCVOffscreenAutoLock writeLock(image.get(), 1);
    turnPixels(*image, *this, Orientation::of(cnBackwards, false, false));
    return image.release();
}

XCVOffscreen* XCVOffscreen::CreateAndRotateOffscreen(int angle, int flipX, int flipY, XCPoint& shift) {
    if (angle != 0 && angle != 90 && angle != 180 && angle != 270)
        xcThrowError(ovw::foundation::cnCodeParameter);
    const Orientation orientation = Orientation::of(angle, flipX != 0, flipY != 0);
    int gridWidth = m_blocksAcross * cnBlockSize, gridHeight = m_blocksDown * cnBlockSize;
    int width = m_width, height = m_height;
    if (orientation.isTransposed) {
        std::swap(gridWidth, gridHeight);
        std::swap(width, height);
    }
    std::unique_ptr<XCVOffscreen> image = createTurned(gridWidth, gridHeight);
    const ReadingLock readLock(this);
    const XCVOffscreenAutoLock writeLock(image.get(), 1);
    turnBlocks(*image, *this, orientation);
    shift = XCPoint(orientation.reversesX ? gridWidth - width : 0, orientation.reversesY ? gridHeight - height : 0);
    return image.release();
}
