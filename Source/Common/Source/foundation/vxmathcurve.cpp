// Ellipses, eigenvalues and the curve table of vxmath.h.

#include "ovwcmn/vxmath.h"

#include "foundation/angles.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

using ovw::cnRadiansPerDegree;

constexpr double cnDegreesPerTurn = 360;
constexpr int cnEllipsePoints = 360000;
constexpr int cnMaximumDivisions = 1024; // from here on arcs are shares of the perimeter
constexpr int cnMaximumRefinement = 4;
constexpr int cnMaximumSweeps = 10;
constexpr int cnSplineSteps = 32; // samples a control point

// The end of axis b is mark 0, the marks run toward the positive end of axis a.
tagPOINTD ellipsePoint(double a, double b, double degrees) {
    const double angle = degrees * cnRadiansPerDegree;
    return {std::sin(angle) * a, -std::cos(angle) * b};
}

// The chords between marks first and last, `marks` of which make a full turn.
double chordSum(double a, double b, std::int64_t marks, std::int64_t first, std::int64_t last) {
    const auto pointAt = [&](std::int64_t i) {
        return ellipsePoint(a, b, static_cast<double>(i) * cnDegreesPerTurn / static_cast<double>(marks));
    };
    double sum = 0;
    tagPOINTD previous = pointAt(first);
    for (std::int64_t i = first + 1; i <= last; ++i) {
        const tagPOINTD point = pointAt(i);
        const double dx = point.x - previous.x;
        const double dy = point.y - previous.y;
        sum += std::sqrt(dx * dx + dy * dy);
        previous = point;
    }
    return sum;
}

// The rotation that zeroes a[i][j], as sine and cosine (Jacobi; the smaller of the two angles).
struct Rotation {
    double s;
    double c;

    Rotation(double** a, int i, int j) {
        const double theta = (a[j][j] - a[i][i]) / (2 * a[i][j]);
        const double tangent = std::copysign(1 / (std::abs(theta) + std::hypot(theta, 1)), theta);
        c = 1 / std::hypot(tangent, 1);
        s = tangent * c;
    }
    void apply(double& x, double& y) const {
        const double turned = c * x - s * y;
        y = s * x + c * y;
        x = turned;
    }
};

void rotateAway(int n, double** a, double** v, int i, int j) {
    const Rotation rotation(a, i, j);
    for (int k = 0; k < n; ++k)
        rotation.apply(a[k][i], a[k][j]);
    for (int k = 0; k < n; ++k)
        rotation.apply(a[i][k], a[j][k]);
    for (int k = 0; k < n; ++k)
        rotation.apply(v[k][i], v[k][j]);
    a[i][j] = 0;
    a[j][i] = 0;
}

// A table of values along x; positions count its entries, 0 at the first control point.
class CurveTable {
public:
    CurveTable(int* table, unsigned int length, double firstX, double lastX)
        : m_table(table), m_length(length), m_firstX(firstX), m_span(lastX - firstX) {}

    // Enters every position between two points of the curve; a curve that turns back overwrites what it passes again.
    void fill(tagPOINTD from, tagPOINTD to) const {
        const double fromPosition = position(from.x);
        const double toPosition = position(to.x);
        const double low = std::ceil(std::min(fromPosition, toPosition));
        const double high = std::floor(std::max(fromPosition, toPosition));
        // The curve may swing out of the table on either side.
        const double length = m_length;
        const auto first = static_cast<std::int64_t>(std::clamp(low, 0.0, length));
        const auto last = static_cast<std::int64_t>(std::clamp(high, -1.0, length - 1));
        for (std::int64_t k = first; k <= last; ++k)
            m_table[k] = valueAt(static_cast<double>(k), fromPosition, from.y, toPosition, to.y);
    }

private:
    double position(double x) const { return (x - m_firstX) * m_length / m_span; }

    // Truncated, but whole values that rounding errors left just short stay whole: an identity curve is the identity.
    static int valueAt(double k, double fromPosition, double fromY, double toPosition, double toY) {
        constexpr double cnRoundError = 1e-9;
        const double passed =
            fromPosition == toPosition ? toY - fromY : (k - fromPosition) * (toY - fromY) / (toPosition - fromPosition);
        const double value = fromY + passed;
        return ovw::truncateToInt(value + std::copysign(cnRoundError, value));
    }

    int* m_table;
    unsigned int m_length;
    double m_firstX;
    double m_span; // negative when the points run to the left
};

tagPOINTD toDouble(tagPOINT point) { return {static_cast<double>(point.x), static_cast<double>(point.y)}; }

// The point as far beyond `end` as `inner` lies before it.
tagPOINTD mirrored(tagPOINTD end, tagPOINTD inner) { return {2 * end.x - inner.x, 2 * end.y - inner.y}; }

// The quadratic uniform B-spline of three control points at s, 0 to 1.
tagPOINTD splinePoint(const tagPOINTD (&p)[3], double s) {
    const double w0 = 0.5 * (1 - s) * (1 - s);
    const double w1 = s - s * s + 0.5;
    const double w2 = 0.5 * s * s;
    return {w0 * p[0].x + w1 * p[1].x + w2 * p[2].x, w0 * p[0].y + w1 * p[1].y + w2 * p[2].y};
}

} // namespace

void vxGetEllipsePoint(int x1, int y1, int x2, int y2, double rotDeg, tagPOINT* out, int count) {
    const double angle = -rotDeg * cnRadiansPerDegree;
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    const auto [left, right] = std::minmax({static_cast<double>(x1), static_cast<double>(x2)});
    const auto [top, bottom] = std::minmax({static_cast<double>(y1), static_cast<double>(y2)});
    const double axisX = (right - left) * 0.5;
    const double axisY = (bottom - top) * 0.5;
    const double centerX = (left + right) * 0.5;
    const double centerY = (top + bottom) * 0.5;
    for (int i = 0; i < count; ++i) {
        const double theta = i * cnDegreesPerTurn / count * cnRadiansPerDegree;
        const double x = std::cos(theta) * axisX;
        const double y = -(std::sin(theta) * axisY);
        out[i] = {vxDouble2Int(x * c - y * s + centerX), vxDouble2Int(x * s + y * c + centerY)};
    }
}

double vxGetEllipseLength(double a, double b) { return chordSum(a, b, cnEllipsePoints, 0, cnEllipsePoints - 1); }

double vxGetEllipseLengthS(double a, double b, int divisions, int from, int to, int refinement) {
    if (divisions <= 0)
        return 0;
    const std::int64_t difference = std::int64_t{to} - from;
    if (refinement <= 0 || divisions >= cnMaximumDivisions)
        return vxGetEllipseLength(a, b) * static_cast<double>(difference) / divisions;

    std::int64_t chords = 1;
    for (int i = 0; i < std::min(refinement, cnMaximumRefinement); ++i)
        chords *= 10;
    const std::int64_t marks = divisions * chords;
    // Whole turns are measured once.
    const std::int64_t turns = std::abs(difference) / divisions;
    const std::int64_t rest = std::abs(difference) % divisions * chords;
    const std::int64_t start = (std::min(from, to) % divisions + divisions) % divisions * chords;
    double length = chordSum(a, b, marks, start, start + rest);
    if (turns > 0)
        length += static_cast<double>(turns) * chordSum(a, b, marks, 0, marks);
    return difference < 0 ? -length : length;
}

int vxJacobiEigenvalue(int n, double** a, double** v, double eps) {
    for (int sweep = 0; sweep < cnMaximumSweeps; ++sweep) {
        bool hasRotated = false;
        for (int i = 0; i < n; ++i)
            for (int j = i + 1; j < n; ++j) {
                // An exact 0 needs no rotation whatever eps is.
                if (!(std::abs(a[i][j]) >= eps) || a[i][j] == 0)
                    continue;
                rotateAway(n, a, v, i, j);
                hasRotated = true;
            }
        if (!hasRotated)
            return 1;
    }
    return 0;
}

int vxGetBsplineIntTable(const tagPOINT* pts, int count, int* table, unsigned int tableLen) {
    if (count < 2 || tableLen == 0 || pts[0].x == pts[count - 1].x)
        return 0;
    const CurveTable curve(table, tableLen, pts[0].x, pts[count - 1].x);
    if (count == 2)
        curve.fill(toDouble(pts[0]), toDouble(pts[1]));
    for (int i = 1; i + 1 < count; ++i) {
        tagPOINTD controls[3] = {toDouble(pts[i - 1]), toDouble(pts[i]), toDouble(pts[i + 1])};
        // Through the mirror images the curve begins and ends in the end points themselves.
        if (i == 1)
            controls[0] = mirrored(controls[0], controls[1]);
        if (i + 2 == count)
            controls[2] = mirrored(controls[2], controls[1]);
        tagPOINTD previous = splinePoint(controls, 0);
        for (int j = 1; j <= cnSplineSteps; ++j) {
            const tagPOINTD sample = splinePoint(controls, static_cast<double>(j) / cnSplineSteps);
            curve.fill(previous, sample);
            previous = sample;
        }
    }
    return 1;
}
