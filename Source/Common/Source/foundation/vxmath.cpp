#include "ovwcmn/vxmath.h"

#include "foundation/angles.h"

#include <cmath>
#include <cstdint>

namespace {

using ovw::cnRadiansPerDegree;

constexpr double cnTwoPi = 6.283185307179586;
constexpr double cnEighthTurn = cnTwoPi / 8;
constexpr double cnDegreesPerTurn = 360;
constexpr int cnUnitsPerTurn = 4096; // the Integer functions count 1/4096 turns
constexpr double cnTiny = 1e-08;     // divisors and squared lengths below it count as 0
constexpr double cnForgivenError = 0.00001;

// The value pushed away from zero, then truncated.
std::int32_t truncateBeyond(double value, double push) {
    return ovw::truncateToInt(value >= 0 ? value + push : value - push);
}

// `turn` is a full turn in the angles' unit; a half turn keeps its sign.
template <class T>
T shortestTurn(T from, T to, T turn) {
    const T distance = to - from;
    const T length = distance < 0 ? -distance : distance;
    const T otherWay = turn - length;
    if (otherWay >= length)
        return distance;
    return distance > 0 ? -otherWay : otherWay;
}

double intoFirstTurnDegrees(double degrees) {
    if (degrees < 0)
        return degrees + cnDegreesPerTurn;
    return degrees >= cnDegreesPerTurn ? degrees - cnDegreesPerTurn : degrees;
}

} // namespace

std::int32_t vxDoubleToIntRoundingUp(double value) { return truncateBeyond(value, 0.5); }

std::int32_t vxDoubleToInt(double value) { return truncateBeyond(value, cnForgivenError); }

double vxMulDivDToD(double a, double b, double c) { return -cnTiny < c && c < cnTiny ? 0 : a * b / c; }

std::int32_t vxMulDivDToI(double a, double b, double c) { return vxDouble2Int(vxMulDivDToD(a, b, c)); }

double vxGetDoubleRemain(double value, int modulus) {
    if (!std::isfinite(value))
        return 0;
    if (modulus == 0)
        return value;
    // In doubles, so that any value has its whole part; fmod is exact and keeps the sign of the value.
    const double whole = std::trunc(value);
    return std::fmod(whole, modulus) + (value - whole);
}

int vxSgn(int value) { return (value > 0) - (value < 0); }

double vxSgnf(double value) { return (value > 0) - (value < 0); }

double vxPointLength(double x1, double y1, double x2, double y2) {
    const double dx = x2 - x1;
    const double dy = y2 - y1;
    return std::sqrt(dx * dx + dy * dy);
}

double vxPointLengthInteger(int x1, int y1, int x2, int y2) { return vxPointLength(x1, y1, x2, y2); }

double vxPointLengthDouble(double x1, double y1, double x2, double y2) { return vxPointLength(x1, y1, x2, y2); }

double vxRotNormal(double angle) {
    if (!std::isfinite(angle))
        return 0;
    double inTurn = std::fmod(angle, cnTwoPi);
    if (inTurn < 0)
        inTurn += cnTwoPi;
    // A tiny negative angle rounds to the full turn itself.
    return inTurn < cnTwoPi ? inTurn : 0;
}

double vxRotCalc(double x1, double y1, double x2, double y2) { return vxRotNormal(std::atan2(y1 - y2, x2 - x1)); }

int vxRotCalcInteger(int x1, int y1, int x2, int y2) {
    if (x1 == x2 && y1 == y2)
        return 0;
    if (x1 == x2)
        return y2 <= y1 ? cnUnitsPerTurn / 4 : cnUnitsPerTurn * 3 / 4;
    if (y1 == y2)
        return x2 > x1 ? 0 : cnUnitsPerTurn / 2;
    return static_cast<int>(vxRotCalc(x1, y1, x2, y2) * cnUnitsPerTurn / cnTwoPi);
}

int vxRotNormalInteger(int angle) { return angle & (cnUnitsPerTurn - 1); }

double vxRotOffCalc(double a1, double a2) { return shortestTurn(a1, a2, cnTwoPi); }

int vxRotOffCalcInteger(int a1, int a2) { return static_cast<int>(shortestTurn<std::int64_t>(a1, a2, cnUnitsPerTurn)); }

int vxRotAverageInteger(int a1, int a2, int div) {
    if (div == 0)
        return vxRotNormalInteger(a1);
    std::int64_t start = a1;
    const std::int64_t difference = start - a2;
    if (difference < -cnUnitsPerTurn / 2)
        start += cnUnitsPerTurn;
    if (difference > cnUnitsPerTurn / 2)
        start -= cnUnitsPerTurn;
    return vxRotNormalInteger(static_cast<int>((a2 - start) / div + start));
}

void vxRadianSinCos(double angle, double* s, double* c) {
    const double inTurn = vxRotNormal(angle);
    *s = std::sin(inTurn);
    *c = std::cos(inTurn);
}

void vxDegreeSinCos(double degrees, double* s, double* c) {
    double inTurn = degrees - std::trunc(degrees / cnDegreesPerTurn) * cnDegreesPerTurn;
    if (inTurn < 0)
        inTurn += cnDegreesPerTurn;
    *s = std::sin(inTurn * cnRadiansPerDegree);
    *c = std::cos(inTurn * cnRadiansPerDegree);
}

double vxDegreeGap(double a, double b) {
    const double gap = std::abs(intoFirstTurnDegrees(a) - intoFirstTurnDegrees(b));
    return gap > cnDegreesPerTurn / 2 ? cnDegreesPerTurn - gap : gap;
}

tagPOINTD vxRotatePointD(tagPOINTD point, double angle) {
    const double s = std::sin(angle);
    const double c = std::cos(angle);
    return {point.x * c - point.y * s, point.x * s + point.y * c};
}

tagPOINT vxStepLineCalc(int x1, int y1, int x2, int y2) {
    constexpr int cnStepDegrees = 45;
    const double turned = vxRotCalc(x1, y1, x2, y2) + cnEighthTurn / 2;
    const int steps = vxDouble2Int(turned * cnDegreesPerTurn / cnTwoPi) / cnStepDegrees;
    const double snapped = steps * cnStepDegrees * cnRadiansPerDegree;
    const double length = vxPointLength(x1, y1, x2, y2);
    // Whole numbers: a double holds the sum exactly, and the conversion clamps it.
    return {vxDouble2Int(static_cast<double>(x1) + vxDouble2Int(std::cos(snapped) * length)),
            vxDouble2Int(static_cast<double>(y1) - vxDouble2Int(std::sin(snapped) * length))};
}
