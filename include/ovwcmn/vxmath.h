#ifndef OVWCMN_VXMATH_H
#define OVWCMN_VXMATH_H

/// @file
/// Angles, distances, line crossings, ellipses, rounding and a curve table. The functions keep no state, throw nothing
/// and may run in any thread.
///
/// y grows downward, so a vector that points up has a positive angle. Three units of angles, fixed per function:
/// radians, degrees, and 1/4096 of a full turn (the functions named Integer). Questions are answered 0 or 1.

#include "ovwcmn/detail/toint.h"
#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/wintypes.h"

#include <cstdint>

/// @name Rounding
/// Results out of range are clamped; NaN gives 0.
/// @{
/// To the nearest, halves away from zero.
constexpr std::int32_t vxDouble2Int(double value) { return ovw::roundToInt(value); }
/// To the nearest 16-bit value, halves away from zero.
constexpr std::int16_t vxDouble2Short(double value) {
    const std::int32_t rounded = ovw::roundToInt(value);
    return static_cast<std::int16_t>(rounded < -32768 ? -32768 : rounded > 32767 ? 32767 : rounded);
}
/// value + 0.5 (from 0 on) or value - 0.5, truncated.
OVWCMN_API std::int32_t vxDoubleToIntRoundingUp(double value);
/// Truncates toward zero, but forgives a representation error of 0.00001 just below an integer.
OVWCMN_API std::int32_t vxDoubleToInt(double value);
/// a * b / c; 0 when c is closer to 0 than 1e-08.
OVWCMN_API double vxMulDivDToD(double a, double b, double c);
OVWCMN_API std::int32_t vxMulDivDToI(double a, double b, double c); ///< The same, to the nearest integer.
/// The remainder of value / modulus with value's sign and fraction. Modulus 0 gives the value, an infinite value 0.
OVWCMN_API double vxGetDoubleRemain(double value, int modulus);
OVWCMN_API int vxSgn(int value);        ///< -1, 0 or 1
OVWCMN_API double vxSgnf(double value); ///< -1, 0 or 1
/// @}

/// @name Distances and directions
/// @{
OVWCMN_API double vxPointLength(double x1, double y1, double x2, double y2); ///< Straight from point 1 to point 2.
OVWCMN_API double vxPointLengthInteger(int x1, int y1, int x2, int y2);
OVWCMN_API double vxPointLengthDouble(double x1, double y1, double x2, double y2);
/// Direction from point 1 to point 2 in radians, 0 <= result < 2 pi; 0 for equal points.
OVWCMN_API double vxRotCalc(double x1, double y1, double x2, double y2);
/// The same in 1/4096 turns, 0 to 4095.
OVWCMN_API int vxRotCalcInteger(int x1, int y1, int x2, int y2);
/// The angle brought into one turn: 0 <= result < 2 pi; 0 for an infinite angle.
OVWCMN_API double vxRotNormal(double angle);
OVWCMN_API int vxRotNormalInteger(int angle); ///< The same in 1/4096 turns, 0 to 4095.
/// Signed shortest turn from the first to the second angle; both lie in one turn.
OVWCMN_API double vxRotOffCalc(double a1, double a2);
OVWCMN_API int vxRotOffCalcInteger(int a1, int a2); ///< The same in 1/4096 turns.
/// The first angle moved toward the second by 1/div of the shortest turn, normalised; a div of 0 does not move it.
OVWCMN_API int vxRotAverageInteger(int a1, int a2, int div);
OVWCMN_API void vxRadianSinCos(double angle, double* s, double* c);   ///< Sine to *s, cosine to *c.
OVWCMN_API void vxDegreeSinCos(double degrees, double* s, double* c); ///< Sine to *s, cosine to *c.
/// Unsigned smallest difference of two angles of -360 to 720 degrees: 0 to 180.
OVWCMN_API double vxDegreeGap(double a, double b);
/// The point turned about the origin: x' = x cos a - y sin a, y' = x sin a + y cos a; radians.
OVWCMN_API tagPOINTD vxRotatePointD(tagPOINTD point, double angle);
/// The end of the segment turned to the nearest multiple of 45 degrees, its length kept.
OVWCMN_API tagPOINT vxStepLineCalc(int x1, int y1, int x2, int y2);
/// @}

/// @name Lines and segments
/// Where a point is given back its pointer may be null; it is written only when the answer is 1.
/// @{
/// y at x on the line through two points; y1 for a vertical line.
OVWCMN_API double vxGet2PointsToLineY(double x, double x1, double y1, double x2, double y2);
/// Distance from p to the nearest point of segment ab. That point goes to `foot`, its place along the segment (0 at a,
/// 1 at b) to `t`; both may be null.
OVWCMN_API double vxPtPosOnLine(tagPOINTD p, tagPOINTD a, tagPOINTD b, tagPOINTD* foot, double* t);
/// The same on the infinite line through a and b, so that `t` may lie outside 0 to 1. Without `foot`, and when a and b
/// are the same point, it is vxPtPosOnLine.
OVWCMN_API double vxPtPosOnLine2(tagPOINTD p, tagPOINTD a, tagPOINTD b, tagPOINTD* foot, double* t);
/// 1 when segments p1p2 and p3p4 meet, ends included; parallel ones never do.
OVWCMN_API int vxCrossLinePoint(tagPOINTD p1, tagPOINTD p2, tagPOINTD p3, tagPOINTD p4, tagPOINTD* out);
/// As vxCrossLinePoint, but segments that are axis-parallel in whole units come first: a vertical or horizontal p1p2
/// crosses what spans its coordinate (low end excluded), and a vertical p3p4 is met by the line through p1p2.
OVWCMN_API int vxCrossLinePoint2(tagPOINTD p1, tagPOINTD p2, tagPOINTD p3, tagPOINTD p4, tagPOINTD* out);
/// Crossing of the two infinite lines; 0 when they are parallel or one has no direction, in thousandths.
OVWCMN_API int vxCrossLinePoint3(tagPOINTD p1, tagPOINTD p2, tagPOINTD p3, tagPOINTD p4, tagPOINTD* out);
/// 1 when segment ab crosses an edge of the closed polygon of n points; the first such crossing goes to `out`.
/// `excludeA` 1 ignores crossings no farther from a than the edge is long, `excludeB` the same from b.
OVWCMN_API int vxCrossSegmentAndPoly(const tagPOINT* poly, int n, tagPOINTD a, tagPOINTD b, int excludeA, int excludeB,
                                     tagPOINTD* out);
/// @}

/// @name Ellipses
/// @{
/// `count` points on the ellipse inscribed in the rectangle of two corners, from its right end counter-clockwise on
/// screen; the ellipse is turned about its centre by rotDeg degrees, counter-clockwise on screen.
OVWCMN_API void vxGetEllipsePoint(int x1, int y1, int x2, int y2, double rotDeg, tagPOINT* out, int count);
/// Perimeter for semi-axes a and b, as the sum of the 359,999 chords between 360,000 points.
OVWCMN_API double vxGetEllipseLength(double a, double b);
/// Arc length between two of `divisions` marks that divide the full angle evenly, mark 0 at the end of axis b. Negative
/// when `to` comes before `from`. `refinement` 1 to 4 sums 10, 100, 1000 or 10000 chords a division (more counts as 4);
/// 0, or 1024 divisions and more, takes the share of the whole perimeter. No divisions give 0.
OVWCMN_API double vxGetEllipseLengthS(double a, double b, int divisions, int from, int to, int refinement);
/// @}

/// Eigenvalues and eigenvectors of the symmetric n x n matrix `a` (n row pointers): afterwards its diagonal holds the
/// eigenvalues, and the rotations have been applied to the columns of `v`, which the caller sets to the identity.
/// Elements below eps count as 0. 1 when that was reached, 0 when ten sweeps were not enough.
OVWCMN_API int vxJacobiEigenvalue(int n, double** a, double** v, double eps);

/// Fills the table with y along x, from the first point's x to just before the last one's: on a line for two points,
/// else on the quadratic B-spline of the control points, which begins and ends in the first and last of them.
/// Values are truncated. 0 without two points, without a span in x or without a table.
OVWCMN_API int vxGetBsplineIntTable(const tagPOINT* pts, int count, int* table, unsigned int tableLen);

#endif // OVWCMN_VXMATH_H
