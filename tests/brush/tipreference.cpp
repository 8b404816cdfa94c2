#include "tipreference.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace ovw::test {
namespace {

/// Calls visit(x, y) for every pixel of the image that the bounds hold.
template <class Visit>
void visitPixels(ImageSize image, const XCRect& bounds, Visit visit) {
    for (int y = std::max(bounds.top, 0); y < std::min(bounds.bottom, image.height); ++y)
        for (int x = std::max(bounds.left, 0); x < std::min(bounds.right, image.width); ++x)
            visit(x, y);
}

void addRamp(Shape& shape, int x, int y, double coverage) {
    if (coverage > 0)
        shape.dabs.push_back({x, y, float(std::min(coverage, 1.0))});
}

XCRect boundsAround(double centerX, double y, double r) {
    return XCRect(int(centerX - r), int(y - r), int(centerX + r) + 1, int(y + r) + 1);
}

/// Where a row meets an ellipse.
struct Chord {
    bool isThere = false;
    double left = 0, right = 0;
};

Chord chordOf(double dy, double rx, double ry, double angle, double centerX) {
    const double sn = std::sin(angle), cs = std::cos(angle);
    const double ka = rx * rx * sn * sn + ry * ry * cs * cs;
    const double kb = (ry * ry - rx * rx) * sn * cs;
    const double kc = rx * rx * cs * cs + ry * ry * sn * sn;
    const double kd = rx * rx * ry * ry;
    const double root = dy * kb * dy * kb - (dy * dy * kc - kd) * ka;
    if (root <= 0)
        return {};
    return {true, centerX - (std::sqrt(root) + dy * kb) / ka, centerX - (dy * kb - std::sqrt(root)) / ka};
}

constexpr double cnSoftRightEdge = 0.001;
constexpr double cnHardRightEdge = 1.001;

struct Crossing {
    double x;
    int winding;
};

std::vector<Crossing> crossingsOf(const Corners& corners, double s) {
    std::vector<Crossing> result;
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const tagPOINTD p = corners[i], q = corners[(i + 1) % corners.size()];
        if (p.y == q.y || s < std::min(p.y, q.y) || s > std::max(p.y, q.y))
            continue;
        const double x = s == p.y ? p.x : s == q.y ? q.x : p.x + (q.x - p.x) * ((s - p.y) / (q.y - p.y));
        result.push_back({x, p.y < q.y ? 1 : -1});
    }
    std::stable_sort(result.begin(), result.end(), [](const Crossing& a, const Crossing& b) { return a.x < b.x; });
    return result;
}

XCRect boundsOf(const Corners& corners) {
    double left = corners[0].x, top = corners[0].y, right = left, bottom = top;
    for (const tagPOINTD& corner : corners) {
        left = std::min(left, corner.x);
        right = std::max(right, corner.x);
        top = std::min(top, corner.y);
        bottom = std::max(bottom, corner.y);
    }
    return XCRect(int(left), int(top), int(right) + 1, int(bottom) + 1);
}

void addSpan(Shape& shape, ImageSize image, double x0, double x1, int y) {
    for (int x = std::max(int(x0), 0); x <= std::min(int(x1), image.width - 1); ++x)
        shape.dabs.push_back({x, y, 1.0f});
}

double fraction(double value) { return value - std::floor(value); }

/// What one of the four sub-lines of a row adds to a pixel, in 1/255.
int subLineCoverage(double lo, double hi, int x) {
    constexpr int unit = 64;
    if (int(lo) == int(hi))
        return x == int(lo) ? int(fraction(hi - lo) * unit) : 0;
    if (x == int(lo))
        return unit - int(fraction(lo) * unit);
    if (x == int(hi))
        return int(fraction(hi) * unit);
    return int(lo) < x && x < int(hi) ? unit : 0;
}

/// The coverage of every pixel of a row, in 1/255.
std::vector<int> rowCoverage(ImageSize image, const Corners& corners, int y) {
    std::vector<int> result(std::size_t(image.width) + 1);
    for (const double offset : {0.125, 0.375, 0.625, 0.875}) {
        const std::vector<Crossing> crossings = crossingsOf(corners, y + offset);
        for (std::size_t i = 0; crossings.size() % 2 == 0 && i < crossings.size(); i += 2) {
            const double lo = std::max(crossings[i].x, 0.0), hi = std::min(crossings[i + 1].x, double(image.width));
            if (crossings[i].x == crossings[i + 1].x || lo > hi || int(lo) >= image.width)
                continue;
            for (int x = int(lo); x <= int(hi); ++x)
                result[std::size_t(x)] = std::min(result[std::size_t(x)] + subLineCoverage(lo, hi, x), 255);
        }
    }
    return result;
}

template <class AddRow>
Shape hardPolygon(ImageSize image, const Corners& corners, AddRow addRow) {
    Shape shape;
    shape.isHard = true;
    shape.bounds = boundsOf(corners);
    for (int y = std::max(shape.bounds.top, 0); y < std::min(shape.bounds.bottom, image.height); ++y)
        addRow(shape, crossingsOf(corners, y + 0.125), y);
    return shape;
}

} // namespace

Shape softCircle(ImageSize image, double x, double y, double r) {
    Shape shape;
    const std::int64_t cx = std::int64_t((x + 1.0) * 32), cy = std::int64_t(y * 32), outer = std::int64_t(32 * r);
    if (outer <= 0)
        return shape;
    const std::int64_t inner = std::max<std::int64_t>(outer - 32, 0);
    shape.bounds =
        XCRect(int((cx - outer) >> 5), int((cy - outer) >> 5), int((cx + outer) >> 5) + 1, int((cy + outer) >> 5) + 1);
    visitPixels(image, shape.bounds, [&](int u, int v) {
        const std::int64_t dx = (u + 1) * 32 - cx, dy = v * 32 - cy;
        const std::int64_t chord = outer * outer - dy * dy, innerChord = inner * inner - dy * dy;
        const auto half = std::int64_t(std::sqrt(double(std::max<std::int64_t>(chord, 0))));
        if (chord <= 0 || u < (cx - half) >> 5 || u > (cx + half) >> 5)
            return;
        const auto innerHalf = std::int64_t(std::sqrt(double(std::max<std::int64_t>(innerChord, 0))));
        const bool isInterior = innerChord > 0 && u >= (cx - innerHalf) >> 5 && u < (cx + innerHalf) >> 5;
        const std::int64_t distance = dx * dx + dy * dy;
        addRamp(shape, u, v, isInterior || distance == 0 ? 1.0 : r - std::sqrt(double(distance)) / 32);
    });
    return shape;
}

Shape hardCircle(ImageSize image, double x, double y, double r) {
    Shape shape;
    shape.isHard = true;
    if (r <= 0)
        return shape;
    shape.bounds = boundsAround(x + 1, y, r);
    visitPixels(image, shape.bounds, [&](int u, int v) {
        const double chord = r * r - (v - y) * (v - y);
        if (chord <= 0)
            return;
        const double a = x + 1 - std::sqrt(chord), e = x + 1 + std::sqrt(chord) - cnHardRightEdge;
        if (e >= 0 && u >= int(a) && u <= int(e))
            shape.dabs.push_back({u, v, 1.0f});
    });
    return shape;
}

Shape softEllipse(ImageSize image, double x, double y, double rx, double ry, double angle) {
    Shape shape;
    shape.bounds = boundsAround(x + 1, y, std::max(rx, ry));
    visitPixels(image, shape.bounds, [&](int u, int v) {
        const Chord outer = chordOf(v - y, rx, ry, angle, x + 1);
        const double xl = outer.left, xr = outer.right - cnSoftRightEdge;
        if (!outer.isThere || u < int(xl) || u >= int(xr))
            return;
        const Chord inner = chordOf(v - y, std::max(rx - 1, 0.0), std::max(ry - 1, 0.0), angle, x + 1);
        const double xil = inner.isThere ? inner.left : xr;
        const double xir = inner.isThere ? inner.right - cnSoftRightEdge : xl;
        const int firstInside = inner.isThere ? int(xil) : int((xl + xr) / 2);
        const int endInside = inner.isThere ? std::max(int(xir), firstInside) : firstInside;
        if (u < firstInside)
            addRamp(shape, u, v, (u + 1 - xl) / (xil - xl));
        else if (u >= endInside)
            addRamp(shape, u, v, (xr - u - 1) / (xr - xir));
        else
            addRamp(shape, u, v, 1.0);
    });
    return shape;
}

Shape hardEllipse(ImageSize image, double x, double y, double rx, double ry, double angle) {
    Shape shape;
    shape.isHard = true;
    const XCRect bounds = boundsAround(x + 1, y, std::max(rx, ry));
    visitPixels(image, bounds, [&](int u, int v) {
        const Chord chord = chordOf(v - y, rx, ry, angle, x + 1);
        if (!chord.isThere || u < int(chord.left) || u > int(chord.right - cnHardRightEdge))
            return;
        const XCRect pixel(u, v, u + 1, v + 1);
        XCRect& b = shape.bounds;
        b = shape.dabs.empty()
                ? pixel
                : XCRect(std::min(b.left, u), b.top, std::max(b.right, u + 1), std::max(b.bottom, v + 1));
        shape.dabs.push_back({u, v, 1.0f});
    });
    return shape;
}

Shape softPolygon(ImageSize image, const Corners& corners) {
    Shape shape;
    shape.bounds = boundsOf(corners);
    for (int y = std::max(shape.bounds.top, 0); y < std::min(shape.bounds.bottom, image.height); ++y) {
        const std::vector<int> row = rowCoverage(image, corners, y);
        for (int x = 0; x < image.width; ++x)
            if (row[std::size_t(x)] > 0)
                shape.dabs.push_back({x, y, float(row[std::size_t(x)] * 0.003921568859368563)});
    }
    return shape;
}

Shape evenOddPolygon(ImageSize image, const Corners& corners) {
    return hardPolygon(image, corners, [&](Shape& shape, const std::vector<Crossing>& crossings, int y) {
        for (std::size_t i = 0; crossings.size() % 2 == 0 && i < crossings.size(); i += 2)
            if (crossings[i].x != crossings[i + 1].x)
                addSpan(shape, image, crossings[i].x, crossings[i + 1].x, y);
    });
}

Shape nonZeroPolygon(ImageSize image, const Corners& corners) {
    return hardPolygon(image, corners, [&](Shape& shape, const std::vector<Crossing>& crossings, int y) {
        int winding = 0;
        for (std::size_t i = 0; i + 1 < crossings.size(); ++i) {
            winding += crossings[i].winding;
            if (winding != 0 && crossings[i].x != crossings[i + 1].x)
                addSpan(shape, image, crossings[i].x, crossings[i + 1].x, y);
        }
    });
}

Corners cornersOfRect(double cx, double cy, double width, double height, double angle) {
    Corners result;
    const double signs[4][2] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}};
    for (const auto& sign : signs) {
        const double x = sign[0] * width * 0.5, y = sign[1] * height * 0.5;
        result.push_back(
            {cx + x * std::cos(angle) - y * std::sin(angle), cy + y * std::cos(angle) + x * std::sin(angle)});
    }
    return result;
}

void paint(Canvas& canvas, const Shape& shape) {
    for (const Dab& dab : shape.dabs) {
        canvas.mixer.MoveCursorToBlock(dab.x, dab.y);
        if (!shape.isHard)
            canvas.mixer.ScaleAntiAlpha(dab.coverage);
        canvas.mixer.DoLineRow(dab.x, dab.x, dab.y);
    }
}

} // namespace ovw::test
