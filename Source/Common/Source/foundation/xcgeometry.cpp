#include "ovwcmn/xcgeometry.h"

#include "ovwcmn/vxmath.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace {

// Arrays of the plain structs and of the classes stand for each other, and a corner of a rectangle is seen as a point.
template <class Class, class Plain>
constexpr bool cnSameLayout =
    sizeof(Class) == sizeof(Plain) && alignof(Class) == alignof(Plain) &&
    std::is_trivially_copyable_v<Class>&& std::is_standard_layout_v<Class>&& std::is_base_of_v<Plain, Class>;

static_assert(cnSameLayout<XCPoint, tagPOINT> && cnSameLayout<XCSize, tagSIZE> && cnSameLayout<XCRect, tagRECT>);
static_assert(cnSameLayout<XCPointF, tagPOINTF> && cnSameLayout<XCSizeF, tagSIZEF> && cnSameLayout<XCRectF, tagRECTF>);
static_assert(cnSameLayout<XCPointD, tagPOINTD> && cnSameLayout<XCSizeD, tagSIZED> && cnSameLayout<XCRectD, tagRECTD>);

template <class Rect, class Point>
constexpr bool cnCornersArePoints = offsetof(Rect, left) == 0 && offsetof(Rect, top) == offsetof(Point, y) &&
                                    offsetof(Point, x) == 0 && offsetof(Rect, right) == sizeof(Point) &&
                                    offsetof(Rect, bottom) == sizeof(Point) + offsetof(Point, y);

static_assert(cnCornersArePoints<tagRECT, XCPoint> && cnCornersArePoints<tagRECTF, XCPointF> &&
              cnCornersArePoints<tagRECTD, XCPointD>);

template <class Point>
Point rotated(const Point& point, double angle) {
    using Coordinate = decltype(point.x);
    const tagPOINTD turned = vxRotatePointD({point.x, point.y}, angle);
    return Point(static_cast<Coordinate>(turned.x), static_cast<Coordinate>(turned.y));
}

// Whether a source of this size fills the height of a frame of that size; otherwise it fills the width.
bool fillsHeight(double sourceWidth, double sourceHeight, double frameWidth, double frameHeight) {
    if (sourceWidth >= sourceHeight)
        return std::max(frameWidth / frameHeight, 1.0) > sourceWidth / sourceHeight;
    return std::max(frameHeight / frameWidth, 1.0) <= sourceHeight / sourceWidth;
}

// Half of what a fitted side leaves free, for a side of at least one unit.
std::int32_t marginOf(std::int64_t frameSide, double fittedSide) {
    const std::int64_t side = std::max<std::int64_t>(static_cast<std::int64_t>(fittedSide), 1);
    return static_cast<std::int32_t>((frameSide - side) / 2);
}

} // namespace

void XCRect::CalcDestRect(const tagRECT& src, const tagRECT& dst) {
    // In 64 bits: the sides of a rectangle reach 2^32.
    const std::int64_t sourceWidth = std::int64_t{src.right} - src.left;
    const std::int64_t sourceHeight = std::int64_t{src.bottom} - src.top;
    const std::int64_t frameWidth = std::int64_t{dst.right} - dst.left;
    const std::int64_t frameHeight = std::int64_t{dst.bottom} - dst.top;
    const bool isSameSize = frameWidth == sourceWidth && frameHeight == sourceHeight;
    CopyRect(dst);
    if (isSameSize || std::min({sourceWidth, sourceHeight, frameWidth, frameHeight}) <= 0)
        return;

    const double width = static_cast<double>(sourceWidth);
    const double height = static_cast<double>(sourceHeight);
    if (fillsHeight(width, height, static_cast<double>(frameWidth), static_cast<double>(frameHeight)))
        DeflateRect(marginOf(frameWidth, width * (static_cast<double>(frameHeight) / height)), 0);
    else
        DeflateRect(0, marginOf(frameHeight, height * (static_cast<double>(frameWidth) / width)));
}

void XCPointF::Rotate(double angle) { *this = rotated(*this, angle); }

void XCPointD::Rotate(double angle) { *this = rotated(*this, angle); }

int XCPointD::IsEqual(const tagPOINTD* other) const {
    return vxDouble2Int(x) == vxDouble2Int(other->x) && vxDouble2Int(y) == vxDouble2Int(other->y);
}

tagRECT XCRectD::IntegerExtent() const {
    return {ovw::truncateToInt(std::floor(left)), ovw::truncateToInt(std::floor(top)),
            ovw::truncateToInt(std::ceil(right)), ovw::truncateToInt(std::ceil(bottom))};
}
