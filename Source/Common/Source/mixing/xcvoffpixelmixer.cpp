#include "ovwcmn/xcvoffpixelmixer.h"

#include "mixing/byteweight.h"
#include "mixing/pixelroutines.h"
#include "mixing/saturated.h"
#include "ovwcmn/xcpixelmixer.h"
#include "ovwcmn/xcvoffscreen.h"
#include "vimage/pixelcolour.h"
#include "vimage/pixelformats.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

using namespace ovw::vimage;
using ovw::mixing::saturated;
using ovw::mixing::withAlpha;

namespace {

constexpr std::uint32_t cnByteToWide = 257;

std::uint32_t packed(XCComplexColor color) {
    color.Convert(0);
    const auto byteOf = [](int channel) { return channel & 0xFF; };
    return packColour(byteOf(color.GetA()), byteOf(color.GetR()), byteOf(color.GetG()), byteOf(color.GetB()));
}

/// A weight scaled by another one of 0 to 255.
int scaledWeight(int weight, int by) { return static_cast<int>(((std::int64_t{weight} + 1) * by) >> 8); }

XCPixelMixer* lastOf(XCPixelMixer* chain) {
    while (chain && chain->GetNext())
        chain = chain->GetNext();
    return chain;
}

/// What a mask says to the pixels of one row of the destination.
class MaskRow {
public:
    MaskRow(const XCVOffPixelMask* mask, XCVOffscreen* dst, int y) : m_mask(mask), m_dst(dst) {
        if (!mask)
            return;
        mask->MoveCursorY(dst, y);
        m_isNormal = mask->IsNormalMask();
        m_isExtension = mask->IsExtensionMask();
    }

    /// Whether pixel x may be painted; then `scaled` is about this pixel.
    bool isFree(int x) {
        if (m_isNormal)
            m_value = m_mask->GetMaskFreeValueX(m_dst, x);
        return m_isNormal ? m_value != 0 : !m_isExtension || m_mask->IsMaskFreeXEx(m_dst, x);
    }
    int scaled(int weight) const { return m_isNormal ? scaledWeight(weight, m_value) : weight; }

private:
    const XCVOffPixelMask* m_mask;
    XCVOffscreen* m_dst;
    bool m_isNormal = false;
    bool m_isExtension = false;
    int m_value = 0;
};

/// Calls paint(x) for those of the pixels x1 <= x < end that lie in the image's columns, with the image's cursor on
/// them. The clone source's cursor (may be null) goes along, from where it is; both end behind the row.
template <class Paint>
void walkRow(XCVOffscreen& image, XCVOffscreen* clone, int x1, std::int64_t end, int y, Paint paint) {
    int x = std::max(x1, 0);
    image.MoveCursor(x, y);
    for (const std::int64_t inside = std::min<std::int64_t>(end, image.GetWidth()); x < inside; x++) {
        paint(x);
        image.NextCursorX();
        if (clone)
            clone->NextCursorX();
    }
    if (x1 >= end || x == end)
        return;
    image.OffsetCursorX(saturated(end - x));
    if (clone)
        clone->OffsetCursorX(saturated(end - x));
}

// ---- Sources of a row copy

/// A source coordinate along a row, in 16.16 fixed point.
class SourceCoordinate {
public:
    SourceCoordinate(double start, double step) : m_start(toFixed(start)), m_step(toFixed(step)) {}

    /// The pixel of step i; outside of every image where 64 bits do not hold the coordinate.
    int pixelAt(std::int64_t i) const {
        std::int64_t coordinate = 0;
        if (__builtin_mul_overflow(m_step, i, &coordinate) || __builtin_add_overflow(coordinate, m_start, &coordinate))
            return -1;
        return saturated(coordinate >> cnBits);
    }

private:
    static constexpr int cnBits = 16;

    static std::int64_t toFixed(double value) {
        constexpr double cnLimit = 0x1p62;
        const double fixed = value * (1 << cnBits);
        return std::isnan(fixed) ? 0 : static_cast<std::int64_t>(std::clamp(fixed, -cnLimit, cnLimit));
    }

    std::int64_t m_start;
    std::int64_t m_step;
};

/// What a row copy paints with; packed colours.
struct CopyColours {
    std::uint32_t main;
    std::uint32_t sub;
    bool isToInk; ///< the destination has 1 or 8 bits
};

// The colour that the pixel under the source's cursor lends, before any mask; none where nothing is painted.
using SourceRule = std::optional<std::uint32_t> (*)(const XCVOffscreen& src, const CopyColours& colours);

std::optional<std::uint32_t> ownColour(const XCVOffscreen& src, const CopyColours& colours) {
    const std::uint32_t pixel = src.Get32BitColor();
    if (alphaOf(pixel) == 0)
        return std::nullopt;
    return withAlpha(pixel, scaledWeight(alphaOf(pixel), alphaOf(colours.main)));
}

std::optional<std::uint32_t> oneOfTwo(const XCVOffscreen& src, const CopyColours& colours) {
    const std::uint32_t pixel = src.Get32BitColor();
    if (pixel == cnOpaqueBlack)
        return colours.main;
    if (pixel == 0 || colours.isToInk)
        return std::nullopt;
    return colours.sub;
}

std::optional<std::uint32_t> mainByInk(const XCVOffscreen& src, const CopyColours& colours) {
    const int ink = src.Get8BitColor();
    if (ink == 0)
        return std::nullopt;
    return withAlpha(colours.main, scaledWeight(alphaOf(colours.main), ink));
}

SourceRule sourceRuleFor(int srcDepth, int dstDepth) {
    if (srcDepth == Bit2::cnBits)
        return oneOfTwo;
    return srcDepth > Density8::cnBits && dstDepth != Bit2::cnBits ? ownColour : mainByInk;
}

} // namespace

XCVOffPixelMixer::XCVOffPixelMixer() : m_color(cnOpaqueBlack), m_subColor(cnOpaqueWhite) {}

void XCVOffPixelMixer::SetDstOffscreen(XCVOffscreen* dst) { SetDstOffscreen(dst ? dst->GetDepth() : 0, dst); }

void XCVOffPixelMixer::SetDstOffscreen(int depth, XCVOffscreen* dst) {
    m_depth = depth;
    m_destination = dst;
    selectRoutines();
}

void XCVOffPixelMixer::selectRoutines() { m_routines = ovw::mixing::pixelRoutinesFor(m_depth, m_useBrightness != 0); }

int XCVOffPixelMixer::GetMixerBitCount() const { return m_destination ? m_destination->GetDepth() : 0; }

// ---- The chain

XCPixelMixer* XCVOffPixelMixer::SetNode(XCPixelMixer* mixer) { return std::exchange(m_chain, mixer); }

XCPixelMixer* XCVOffPixelMixer::PushNode(XCPixelMixer* mixer) {
    XCPixelMixer* const former = m_chain;
    if (!former)
        m_chain = mixer;
    else if (XCPixelMixer* const last = lastOf(former); last != lastOf(mixer))
        last->m_next = mixer;
    return former;
}

XCPixelMixer* XCVOffPixelMixer::FrontNode(XCPixelMixer* mixer) {
    XCPixelMixer* const former = m_chain;
    if (XCPixelMixer* const last = lastOf(mixer); last && last != lastOf(former))
        last->m_next = former;
    m_chain = mixer;
    return former;
}

// ---- Settings

void XCVOffPixelMixer::SetAlpha(int alpha) {
    m_alpha = alpha;
    m_alpha16 = static_cast<int>(static_cast<std::uint32_t>(alpha) * cnByteToWide);
}

void XCVOffPixelMixer::Use8BitColorBrightness(int use) {
    m_useBrightness = use;
    selectRoutines();
}

void XCVOffPixelMixer::SetCloneOffscreen(XCVOffscreen* src, tagPOINT point) {
    m_clone = src;
    m_clonePoint = point;
}

void XCVOffPixelMixer::RelativeCloneCursor(int x, int y) {
    if (m_clone)
        m_clone->MoveCursor(saturated(std::int64_t{m_clonePoint.x} - m_cloneOffset.x + x),
                            saturated(std::int64_t{m_clonePoint.y} - m_cloneOffset.y + y));
}

void XCVOffPixelMixer::RelativeCloneCursorX(int x) {
    if (m_clone)
        m_clone->MoveCursorX(saturated(std::int64_t{m_clonePoint.x} - m_cloneOffset.x + x));
}

void XCVOffPixelMixer::RelativeCloneCursorY(int y) {
    if (m_clone)
        m_clone->MoveCursorY(saturated(std::int64_t{m_clonePoint.y} - m_cloneOffset.y + y));
}

void XCVOffPixelMixer::NextCloneCursorX() {
    if (m_clone)
        m_clone->NextCursorX();
}

void XCVOffPixelMixer::NextCloneCursorY() {
    if (m_clone)
        m_clone->NextCursorY();
}

// ---- Single pixels

bool XCVOffPixelMixer::canMix() const {
    return m_routines && m_chain && m_destination && m_destination->GetCurrentAddress();
}

void XCVOffPixelMixer::mix(std::uint32_t color, int weight) {
    if (canMix())
        m_routines->mix(*m_destination, *m_chain, color, static_cast<std::uint8_t>(weight));
}

void XCVOffPixelMixer::Do() { mix(packed(m_color), m_alpha); }

void XCVOffPixelMixer::Do(int weight) { mix(packed(m_color), weight); }

void XCVOffPixelMixer::Do(const XCComplexColor& color) { mix(packed(color), m_alpha); }

void XCVOffPixelMixer::Do(const XCComplexColor& color, int weight) { mix(packed(color), weight); }

void XCVOffPixelMixer::Do(const XCComplexColor& base, const XCComplexColor& color, int weight) {
    if (canMix())
        m_routines->mixInto(*m_destination, *m_chain, packed(base), packed(color), static_cast<std::uint8_t>(weight));
}

void XCVOffPixelMixer::DoClone() { DoClone(m_alpha); }

void XCVOffPixelMixer::DoClone(int weight) {
    if (m_clone)
        mix(m_clone->GetCurrentAddress() ? m_clone->Get32BitColor() : cnWhite, weight);
}

// ---- Rows

void XCVOffPixelMixer::DoLineRow(int x1, int x2, int y, XCVOffPixelMask* mask, XCComplexColor* color, tagPOINT origin) {
    drawRow(nullptr, x1, x2, y, mask, color, origin);
}

void XCVOffPixelMixer::DoLineRowBuffer(std::uint8_t* coverage, int x1, int x2, int y, XCVOffPixelMask* mask,
                                       XCComplexColor* color, tagPOINT origin) {
    if (coverage)
        drawRow(coverage, x1, x2, y, mask, color, origin);
}

/// coverage: null where every pixel is covered.
void XCVOffPixelMixer::drawRow(const std::uint8_t* coverage, int x1, int x2, int y, XCVOffPixelMask* mask,
                               const XCComplexColor* color, tagPOINT origin) {
    if (!m_destination)
        return;
    const std::uint32_t paint = packed(color ? *color : m_color);
    MaskRow maskRow(mask, m_destination, y);
    RelativeCloneCursor(saturated(std::int64_t{std::max(x1, 0)} - origin.x), saturated(std::int64_t{y} - origin.y));
    walkRow(*m_destination, m_clone, x1, std::int64_t{x2} + 1, y, [&](int x) {
        const int covered = coverage ? coverage[std::int64_t{x} - x1] : 0;
        if ((coverage && covered == 0) || !maskRow.isFree(x))
            return;
        const int weight = maskRow.scaled(coverage ? scaledWeight(m_alpha, covered) : m_alpha);
        if (m_clone)
            DoClone(weight);
        else
            mix(paint, weight);
    });
}

void XCVOffPixelMixer::DoLineRowCopy(int x1, int x2, XCVOffscreen* src, double u, double v, double du, double dv,
                                     XCVOffPixelMask* mask) {
    if (!m_destination || !src)
        return;
    const int dstDepth = GetMixerBitCount();
    const SourceRule sourceRule = sourceRuleFor(src->GetDepth(), dstDepth);
    const CopyColours colours{packed(m_color), packed(m_subColor),
                              dstDepth == Bit1::cnBits || dstDepth == Density8::cnBits};
    const SourceCoordinate column(u, du);
    const SourceCoordinate row(v, dv);
    const int y = m_destination->GetCursorPosY();
    MaskRow maskRow(mask, m_destination, y);
    walkRow(*m_destination, nullptr, x1, x2, y, [&](int x) {
        const std::int64_t step = std::int64_t{x} - x1;
        src->MoveCursor(column.pixelAt(step), row.pixelAt(step));
        const std::optional<std::uint32_t> colour = sourceRule(*src, colours);
        if (colour && maskRow.isFree(x))
            mix(withAlpha(*colour, maskRow.scaled(alphaOf(*colour))), m_alpha);
    });
}
