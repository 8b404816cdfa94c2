#ifndef OVWCMN_XCMATRIX_H
#define OVWCMN_XCMATRIX_H

/// @file
/// Affine maps of the plane.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/xcgeometry.h"

/// A 3 x 3 matrix that places, scales, rotates and shears. Points are column vectors: (x, y) maps to
/// (m00 x + m01 y + m02, m10 x + m11 y + m12); the third row is kept and multiplied but never divides. Every editing
/// operation multiplies its transform onto the left, so it acts after what the matrix already does. A plain value:
/// nothing here throws.
class OVWCMN_API XCMatrix2D {
public:
    /// @{ Row, then column.
    double m00, m01, m02;
    double m10, m11, m12;
    double m20, m21, m22;
    /// @}

    /// The identity.
    XCMatrix2D() { Init(); }
    /// Row by row.
    XCMatrix2D(double a00, double a01, double a02, double a10, double a11, double a12, double a20, double a21,
               double a22);
    XCMatrix2D(const XCMatrix2D&) = default;
    XCMatrix2D& operator=(const XCMatrix2D&) = default;
    virtual ~XCMatrix2D() = default;

    /// @{ The identity; nine elements row by row.
    void Init() { Set(1, 0, 0, 0, 1, 0, 0, 0, 1); }
    void Set(double a00, double a01, double a02, double a10, double a11, double a12, double a20, double a21,
             double a22);
    /// @}

    /// All nine elements exactly equal.
    bool operator==(const XCMatrix2D& other) const;
    /// @{ All nine elements, the third row included.
    XCMatrix2D& operator+=(const XCMatrix2D& other);
    XCMatrix2D& operator-=(const XCMatrix2D& other);
    /// @}
    /// @{ All nine elements, the third row included.
    XCMatrix2D& operator*=(const double& factor);
    XCMatrix2D& operator/=(const double& divisor);
    /// @}
    /// this = other x this: `other` acts after this matrix.
    XCMatrix2D& operator*=(const XCMatrix2D& other);

    XCPointD MultiplyPoint(const XCPointD& point) const; ///< Of a point, in double arithmetic.
    /// In float arithmetic.
    XCPointF MultiplyPoint(const XCPointF& point) const;
    /// In double, then truncated toward zero.
    XCPoint MultiplyPoint(const XCPoint& point) const;
    /// @{ Without the translation m02, m12.
    XCPointD MultiplyVector(const XCPointD& vector) const;
    XCPointF MultiplyVector(const XCPointF& vector) const;
    XCPoint MultiplyVector(const XCPoint& vector) const;
    /// @}
    /// Bounding box of the four mapped corners, computed in double; the integer result is truncated toward zero.
    XCRectD MultiplyBound(const XCRectD& rect) const;
    /// @{ The same for other coordinates.
    XCRectF MultiplyBound(const XCRectF& rect) const;
    XCRect MultiplyBound(const XCRect& rect) const;
    /// @}

    /// Rows and columns exchanged.
    XCMatrix2D Transpose() const { return XCMatrix2D(m00, m10, m20, m01, m11, m21, m02, m12, m22); }
    double Determinant() const; ///< of all nine elements
    /// 0, and `out` left alone, when the determinant is exactly 0. `out` may be this matrix.
    int CalcInverse(XCMatrix2D& out) const;
    /// 1 when the map mirrors.
    int IsReverseMatrix() const { return m00 * m11 - m10 * m01 < 0; }
    /// Makes elements integral that are within 1e-08 of an integer.
    void RemoveMatRoundError();
    /// Length of the image of the vector (1, 0).
    double GetScale() const;
    XCPointD GetTransfer() const { return XCPointD(m02, m12); } ///< where (0, 0) goes

    /// @{ Moves by a distance.
    void Transfer(double dx, double dy);
    void Transfer(const XCPointD& distance) { Transfer(distance.x, distance.y); }
    void Transfer(const XCPointF& distance) { Transfer(distance.x, distance.y); }
    void Transfer(const XCPoint& distance) { Transfer(distance.x, distance.y); }
    /// @}

    /// @name Scaling, rotation and shear about a centre, (0, 0) when none is given
    /// @{
    void Scale(double sx, double sy, const XCPointD& center); ///< Factors of x and y.
    /// Factors of x and y.
    void Scale(double sx, double sy, const XCPointF& center) { Scale(sx, sy, toDouble(center)); }
    /// Factors of x and y.
    void Scale(double sx, double sy, const XCPoint& center) { Scale(sx, sy, toDouble(center)); }
    void Scale(double sx, double sy) { Scale(sx, sy, XCPointD()); } ///< Factors of x and y.
    /// Clockwise on screen, where y grows downward.
    void Rotate(double degrees, const XCPointD& center);
    /// Clockwise on screen.
    void Rotate(double degrees, const XCPointF& center) { Rotate(degrees, toDouble(center)); }
    /// Clockwise on screen.
    void Rotate(double degrees, const XCPoint& center) { Rotate(degrees, toDouble(center)); }
    void Rotate(double degrees) { Rotate(degrees, XCPointD()); } ///< Clockwise on screen.
    /// x += shx y, y += shy x.
    void Shear(double shx, double shy, const XCPointD& center);
    /// X += shx y, y += shy x.
    void Shear(double shx, double shy, const XCPointF& center) { Shear(shx, shy, toDouble(center)); }
    /// X += shx y, y += shy x.
    void Shear(double shx, double shy, const XCPoint& center) { Shear(shx, shy, toDouble(center)); }
    /// @}

private:
    template <class Point>
    static XCPointD toDouble(const Point& point) {
        return XCPointD(point.x, point.y);
    }
    template <class Operation>
    static void forEachElement(Operation operation);
    void actAbout(const XCPointD& center, const XCMatrix2D& transform);
};

#endif // OVWCMN_XCMATRIX_H
