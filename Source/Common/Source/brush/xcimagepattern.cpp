#include "brush/ribbon.h"
#include "brush/stampbounds.h"
#include "brush/texturepainter.h"
#include "foundation/nomemory.h"
#include "ovwcmn/vxmath.h"
#include "ovwcmn/xcpattern.h"
#include "ovwcmn/xcsimpleimage.h"
#include "ovwcmn/xctexturemap.h"
#include "ovwcmn/xcvoffscreen.h"
#include "ovwcmn/xcvoffscreenlock.h"

#include <algorithm>
#include <cmath>

using ovw::foundation::orNoMemory;

namespace {

constexpr int cnMinSoftDepth = 8;
constexpr std::uint32_t cnTransparentWhite = 0x00FFFFFF;
/// A stamp's centre is that of a pixel; a hard-edged one goes half a pixel further, as its samples do.
constexpr double cnSoftShift = 0.5;
constexpr double cnHardShift = 1.0;

std::unique_ptr<XCSimpleImage> copyOf(const XCImagePattern& tip) {
    return tip.GetImage() ? std::make_unique<XCSimpleImage>(*tip.GetImage()) : nullptr;
}

/// Narrower ribbons are drawn in this width, pixels.
constexpr double cnLeastWidth = 1.0 / 64.0;
/// Places and widths that are larger have no meaning in an image.
constexpr double cnMaxCoordinate = 1e9;

bool areFinite(std::initializer_list<double> values) {
    return std::all_of(values.begin(), values.end(), [](double value) { return std::isfinite(value); });
}

bool isUsable(const BENDPATTERNEND& end) {
    const auto isSmall = [](double value) { return std::abs(value) <= cnMaxCoordinate; };
    return isSmall(end.position.x) && isSmall(end.position.y) && isSmall(end.width) && isSmall(end.direction) &&
           isSmall(end.along);
}

BENDPATTERNEND widened(BENDPATTERNEND end) {
    end.width = std::max(end.width, cnLeastWidth);
    return end;
}

/// Lets the border of a locked image be sharp in one direction, for a scope: where a ribbon repeats the image, nothing
/// shows.
class ProtectedBorder {
public:
    ProtectedBorder(XCSimpleImage& image, bool isHorizontal)
        : m_image(image), m_wasSharpX(image.GetPixel(-1, 0) == image.GetPixel(0, 0)),
          m_wasSharpY(image.GetPixel(0, -1) == image.GetPixel(0, 0)) {
        m_image.SetProtectBorder(isHorizontal, !isHorizontal);
    }
    ProtectedBorder(const ProtectedBorder&) = delete;
    ProtectedBorder& operator=(const ProtectedBorder&) = delete;
    ~ProtectedBorder() { m_image.SetProtectBorder(m_wasSharpX, m_wasSharpY); }

private:
    XCSimpleImage& m_image;
    bool m_wasSharpX;
    bool m_wasSharpY;
};

} // namespace

/// Where a stamp lies, and how the image is scaled to it.
struct XCImagePattern::PlotMapping {
    double scaleX;
    double scaleY;
    XCRect target; ///< whole pixels around the stamp
};

XCImagePattern::XCImagePattern() : XCPattern(cnKindImage) {}
XCImagePattern::XCImagePattern(const XCImagePattern& other) : XCPattern(other), m_image(copyOf(other)) {}

XCImagePattern& XCImagePattern::operator=(const XCImagePattern& other) {
    if (this != &other) {
        auto image = copyOf(other);
        XCPattern::operator=(other);
        m_image = std::move(image);
    }
    return *this;
}

XCImagePattern::~XCImagePattern() = default;

void XCImagePattern::ImportPatternOffscreen(XCVOffscreen* source) {
    if (!source || source->GetWidth() <= 0 || source->GetHeight() <= 0)
        return Cleanup();
    auto image = orNoMemory([] { return std::make_unique<XCSimpleImage>(); });
    image->CopyFromOffscreen(source);
    m_image = std::move(image);
}

XCVOffscreen* XCImagePattern::ExportPatternOffscreen() const { return m_image ? m_image->CopyToOffscreen() : nullptr; }

void XCImagePattern::GetPatternOffscreenSize(int& width, int& height) const {
    width = m_image ? m_image->GetWidth() : 0;
    height = m_image ? m_image->GetHeight() : 0;
}

void XCImagePattern::ReplaceTransparency(std::uint32_t color) {
    if (m_image)
        m_image->ReplaceColor32Bit(cnTransparentWhite, color);
}

void XCImagePattern::Cleanup() { m_image.reset(); }

/// @return whether there is anything to draw
bool XCImagePattern::GetPlotMappingParam(PlotMapping& mapping, XCPointD position, float size) const {
    const double width = m_image->GetWidth();
    const double height = m_image->GetHeight();
    const double scale = size / std::max(width, height);
    mapping.scaleX = sizeRate * scale;
    mapping.scaleY = sizeRate2 * scale;
    if (!areFinite({position.x, position.y, mapping.scaleX, mapping.scaleY, rotation}))
        return false;
    double sine = 0.0;
    double cosine = 0.0;
    vxRadianSinCos(rotation, &sine, &cosine);
    // Opposite corners lie opposite to the centre: two tell how far the stamp reaches.
    const double x = width * mapping.scaleX * 0.5;
    const double y = height * mapping.scaleY * 0.5;
    const double reachX = std::max(std::abs(x * cosine - y * sine), std::abs(x * cosine + y * sine));
    const double reachY = std::max(std::abs(x * sine + y * cosine), std::abs(x * sine - y * cosine));
    const XCRectD bounds(position.x - reachX, position.y - reachY, position.x + reachX, position.y + reachY);
    mapping.target = XCRect(bounds.IntegerExtent());
    return true;
}

int XCImagePattern::Draw(XCRect* changed, XCVOffscreen* image, XCFastPixelMixer* mixer, XCPointD position, float size,
                         float, int antialias) {
    if (!m_image || !image || !mixer || !std::isfinite(size))
        return 0;
    const int soft = antialias != 0 && image->GetDepth() >= cnMinSoftDepth;
    const double shift = soft ? cnSoftShift : cnHardShift;
    position += tagPOINTD{shift, shift};
    PlotMapping mapping;
    XCRect meeting;
    if (!GetPlotMappingParam(mapping, position, std::max(size, 1.0f)) ||
        !meeting.IntersectRect(mapping.target, image->GetRect()))
        return 0;
    const XCVOffscreenAutoLock imageLock(image, 1);
    const XCAutoLockSimpleImage tipLock(m_image.get());
    XCTextureMap(mixer, soft)
        .Texmap(image, position.x, position.y, rotation, mapping.scaleX, mapping.scaleY, m_image.get(), 0, 0,
                m_image->GetWidth(), m_image->GetHeight());
    return ovw::brush::reportStamp(changed, image, mapping.target);
}

int XCImagePattern::DrawBendedPattern(XCRect* changed, XCVOffscreen* image, XCFastPixelMixer* mixer,
                                      const BENDPATTERNEND& first, const BENDPATTERNEND& second, int side,
                                      int antialias, ovw::brush::RibbonTrail* trail) {
    if (!m_image || !image || !mixer || !isUsable(first) || !isUsable(second))
        return 0;
    if (first.width <= 0.0 && second.width <= 0.0)
        return 0;
    const XCVOffscreenAutoLock imageLock(image, 1);
    const XCAutoLockSimpleImage tipLock(m_image.get());
    const ProtectedBorder border(*m_image, side % 2 != 0);
    ovw::brush::TexturePainter painter(*image, *mixer, *m_image, {0, 0}, ovw::brush::TexturePainter::cnNearCenter,
                                       antialias != 0);
    ovw::brush::Ribbon ribbon(painter, m_image->GetWidth(), m_image->GetHeight(), side, trail);
    return ovw::brush::reportStamp(changed, image, ribbon.paint(widened(first), widened(second)));
}
