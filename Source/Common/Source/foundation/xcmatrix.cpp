#include "ovwcmn/xcmatrix.h"

#include "foundation/angles.h"

#include <algorithm>
#include <cmath>

namespace {

using ovw::cnRadiansPerDegree;

constexpr double cnRoundError = 1e-08;
constexpr double cnAlmostOne = 0.99999999;

using Element = double XCMatrix2D::*;

// Row by row.
constexpr Element cnElements[3][3] = {{&XCMatrix2D::m00, &XCMatrix2D::m01, &XCMatrix2D::m02},
                                      {&XCMatrix2D::m10, &XCMatrix2D::m11, &XCMatrix2D::m12},
                                      {&XCMatrix2D::m20, &XCMatrix2D::m21, &XCMatrix2D::m22}};

double withoutRoundError(double value) {
    const double below = std::floor(value);
    if (value - below < cnRoundError)
        return below;
    return value - below > cnAlmostOne ? below + 1 : value;
}

template <class Real>
Real mapX(const XCMatrix2D& m, Real x, Real y) {
    return static_cast<Real>(m.m00) * x + static_cast<Real>(m.m01) * y;
}

template <class Real>
Real mapY(const XCMatrix2D& m, Real x, Real y) {
    return static_cast<Real>(m.m10) * x + static_cast<Real>(m.m11) * y;
}

XCPoint truncated(const XCPointD& point) { return XCPoint(ovw::truncateToInt(point.x), ovw::truncateToInt(point.y)); }

} // namespace

XCMatrix2D::XCMatrix2D(double a00, double a01, double a02, double a10, double a11, double a12, double a20, double a21,
                       double a22) {
    Set(a00, a01, a02, a10, a11, a12, a20, a21, a22);
}

void XCMatrix2D::Set(double a00, double a01, double a02, double a10, double a11, double a12, double a20, double a21,
                     double a22) {
    m00 = a00, m01 = a01, m02 = a02;
    m10 = a10, m11 = a11, m12 = a12;
    m20 = a20, m21 = a21, m22 = a22;
}

template <class Operation>
void XCMatrix2D::forEachElement(Operation operation) {
    for (const auto& row : cnElements)
        for (const Element element : row)
            operation(element);
}

bool XCMatrix2D::operator==(const XCMatrix2D& other) const {
    bool isEqual = true;
    forEachElement([&](Element e) { isEqual = isEqual && this->*e == other.*e; });
    return isEqual;
}

XCMatrix2D& XCMatrix2D::operator+=(const XCMatrix2D& other) {
    forEachElement([&](Element e) { this->*e += other.*e; });
    return *this;
}

XCMatrix2D& XCMatrix2D::operator-=(const XCMatrix2D& other) {
    forEachElement([&](Element e) { this->*e -= other.*e; });
    return *this;
}

XCMatrix2D& XCMatrix2D::operator*=(const double& factor) {
    // A copy: the factor may be one of the elements.
    forEachElement([this, by = factor](Element e) { this->*e *= by; });
    return *this;
}

XCMatrix2D& XCMatrix2D::operator/=(const double& divisor) {
    forEachElement([this, by = divisor](Element e) { this->*e /= by; });
    return *this;
}

XCMatrix2D& XCMatrix2D::operator*=(const XCMatrix2D& other) {
    const XCMatrix2D left(other);
    const XCMatrix2D right(*this);
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            this->*cnElements[i][j] = left.*cnElements[i][0] * right.*cnElements[0][j] +
                                      left.*cnElements[i][1] * right.*cnElements[1][j] +
                                      left.*cnElements[i][2] * right.*cnElements[2][j];
    return *this;
}

XCPointD XCMatrix2D::MultiplyVector(const XCPointD& vector) const {
    return XCPointD(mapX(*this, vector.x, vector.y), mapY(*this, vector.x, vector.y));
}

XCPointF XCMatrix2D::MultiplyVector(const XCPointF& vector) const {
    return XCPointF(mapX(*this, vector.x, vector.y), mapY(*this, vector.x, vector.y));
}

XCPoint XCMatrix2D::MultiplyVector(const XCPoint& vector) const { return truncated(MultiplyVector(toDouble(vector))); }

XCPointD XCMatrix2D::MultiplyPoint(const XCPointD& point) const { return MultiplyVector(point) + GetTransfer(); }

XCPointF XCMatrix2D::MultiplyPoint(const XCPointF& point) const {
    return MultiplyVector(point) + XCPointF(static_cast<float>(m02), static_cast<float>(m12));
}

XCPoint XCMatrix2D::MultiplyPoint(const XCPoint& point) const { return truncated(MultiplyPoint(toDouble(point))); }

XCRectD XCMatrix2D::MultiplyBound(const XCRectD& rect) const {
    tagPOINTD corners[4];
    rect.SetPoint(corners);
    for (tagPOINTD& corner : corners)
        corner = MultiplyPoint(XCPointD(corner));
    const auto [left, right] = std::minmax({corners[0].x, corners[1].x, corners[2].x, corners[3].x});
    const auto [top, bottom] = std::minmax({corners[0].y, corners[1].y, corners[2].y, corners[3].y});
    return XCRectD(left, top, right, bottom);
}

XCRectF XCMatrix2D::MultiplyBound(const XCRectF& rect) const {
    const XCRectD bound = MultiplyBound(XCRectD(rect.left, rect.top, rect.right, rect.bottom));
    return XCRectF(static_cast<float>(bound.left), static_cast<float>(bound.top), static_cast<float>(bound.right),
                   static_cast<float>(bound.bottom));
}

XCRect XCMatrix2D::MultiplyBound(const XCRect& rect) const {
    const XCRectD bound = MultiplyBound(XCRectD(rect.left, rect.top, rect.right, rect.bottom));
    return XCRect(truncated(bound.TopLeft()), truncated(bound.BottomRight()));
}

double XCMatrix2D::Determinant() const {
    return m10 * m02 * m21 + m00 * m11 * m22 + m12 * m01 * m20 - m11 * m02 * m20 - m10 * m01 * m22 - m12 * m00 * m21;
}

int XCMatrix2D::CalcInverse(XCMatrix2D& out) const {
    const double determinant = Determinant();
    if (determinant == 0)
        return 0;
    out = XCMatrix2D(m11 * m22 - m12 * m21, m02 * m21 - m01 * m22, m01 * m12 - m02 * m11, //
                     m12 * m20 - m10 * m22, m00 * m22 - m02 * m20, m02 * m10 - m00 * m12, //
                     m10 * m21 - m11 * m20, m01 * m20 - m00 * m21, m00 * m11 - m01 * m10);
    out /= determinant;
    return 1;
}

void XCMatrix2D::RemoveMatRoundError() {
    forEachElement([this](Element e) { this->*e = withoutRoundError(this->*e); });
}

double XCMatrix2D::GetScale() const {
    const XCPointD image = MultiplyVector(XCPointD(1, 0));
    return std::sqrt(image.x * image.x + image.y * image.y);
}

void XCMatrix2D::Transfer(double dx, double dy) {
    m00 += dx * m20, m01 += dx * m21, m02 += dx * m22;
    m10 += dy * m20, m11 += dy * m21, m12 += dy * m22;
}

void XCMatrix2D::actAbout(const XCPointD& center, const XCMatrix2D& transform) {
    const XCPointD origin(center);
    Transfer(-origin);
    *this *= transform;
    Transfer(origin);
}

void XCMatrix2D::Scale(double sx, double sy, const XCPointD& center) {
    const XCPointD origin(center);
    Transfer(-origin);
    m00 *= sx, m01 *= sx, m02 *= sx;
    m10 *= sy, m11 *= sy, m12 *= sy;
    Transfer(origin);
}

void XCMatrix2D::Rotate(double degrees, const XCPointD& center) {
    const double angle = degrees * cnRadiansPerDegree;
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    actAbout(center, XCMatrix2D(c, -s, 0, s, c, 0, 0, 0, 1));
}

void XCMatrix2D::Shear(double shx, double shy, const XCPointD& center) {
    actAbout(center, XCMatrix2D(1, shx, 0, shy, 1, 0, 0, 0, 1));
}
