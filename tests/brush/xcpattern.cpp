#include "ovwcmn/xcpattern.h"

#include "canvas.h"
#include "mixing/randomcases.h"
#include "ovwcmn/ovwhooks.h"
#include "support/scopes.h"
#include "tipreference.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <vector>

/// The application's drawing interface: keeps the last polygon that it was asked for.
class XCGdi {
public:
    int mode = 0;
    std::vector<XCPoint> points;
    std::uint32_t color = 0;
};

namespace {

using namespace ovw::test;

constexpr ImageSize cnSize{300, 280};
constexpr double cnPi = 3.14159265358979323846;

Canvas newCanvas(int depth) { return Canvas(depth, cnSize.width, cnSize.height); }

/// Reaches the fills that a circle tip chooses from.
struct CircleFills : XCCirclePattern {
    using XCCirclePattern::CircleFill;
    using XCCirclePattern::CircleFillAA;
    using XCCirclePattern::EllipseFill;
    using XCCirclePattern::EllipseFillAA;
};

/// Some centre on or near the image, now and then on a whole or half pixel.
XCPointD randomCenter(Random& random) {
    const XCPointD center(random.real(-20, cnSize.width + 20), random.real(-20, cnSize.height + 20));
    if (random.chance(4))
        return XCPointD(std::floor(center.x), std::floor(center.y * 2) / 2);
    // On the corner of four tiles.
    return random.chance(2) ? center : XCPointD(256 + random.real(-9, 9), 256 + random.real(-9, 9));
}

float randomSize(Random& random) { return float(random.chance(3) ? random.real(0.05, 6) : random.real(4, 90)); }

/// Stamps with the tip, and compares with the shape: pixels, result and `changed`.
void expectStamp(XCPattern& tip, int depth, XCPointD center, float size, int antialias, const Shape& shape) {
    Canvas actual = newCanvas(depth), expected = newCanvas(depth);
    paint(expected, shape);
    const XCRect untouched(-7, -7, -7, -7);
    XCRect changed = untouched;
    const int result = tip.Draw(&changed, actual.image(), &actual.mixer, center, size, 1.0f, antialias);
    EXPECT_TRUE(isSame(actual.pixels(), expected.pixels()))
        << depth << " bits, antialias " << antialias << ", size " << size << " at " << center.x << ", " << center.y
        << ", rates " << tip.sizeRate << " " << tip.sizeRate2 << ", rotation " << tip.rotation;
    const bool meets = shape.bounds.IsIntersectRect(XCRect(0, 0, cnSize.width, cnSize.height));
    EXPECT_EQ(result, int(meets));
    EXPECT_EQ(changed, meets ? grownAndClipped(shape.bounds, cnSize.width, cnSize.height) : untouched);
}

using ShapeOf = std::function<Shape(const XCPattern& tip, XCPointD center, double size, bool isSoft)>;

/// Stamps of random sizes and places, with random shape factors where `sizeRates` asks for them.
void expectRandomStamps(XCPattern& tip, std::uint64_t seed, int count, bool hasRates, const ShapeOf& shapeOf) {
    Random random(seed);
    for (int i = 0; i < count && !::testing::Test::HasFailure(); ++i) {
        if (hasRates)
            tip.SetParameter(float(random.real(0.05, 1.5)), float(random.real(0.3, 1.2)),
                             float(random.real(-cnPi, cnPi)));
        const XCPointD center = randomCenter(random);
        const float size = randomSize(random);
        const int antialias = random.number(0, 1);
        for (const int depth : cnAllDepths)
            expectStamp(tip, depth, center, size, antialias,
                        shapeOf(tip, center, double(size), antialias != 0 && depth >= 8));
    }
}

Shape circleShape(const XCPattern&, XCPointD center, double size, bool isSoft) {
    return isSoft ? softCircle(cnSize, center.x, center.y, size * 0.5)
                  : hardCircle(cnSize, center.x, center.y, size * 0.5);
}

Shape polygonShape(const Corners& corners, bool isSoft) {
    return isSoft ? softPolygon(cnSize, corners) : evenOddPolygon(cnSize, corners);
}

Shape ellipseShape(const XCPattern& tip, XCPointD center, double size, bool isSoft) {
    const double rx = double(tip.sizeRate) * size * 0.5, ry = double(tip.sizeRate2) * size * 0.5;
    const double angle = double(tip.rotation);
    if (rx <= 1.1 || ry <= 1.1)
        return polygonShape(
            cornersOfRect(center.x + 0.5, center.y + 0.5, rx, size * 0.8 * double(tip.sizeRate2), angle), isSoft);
    return isSoft ? softEllipse(cnSize, center.x, center.y, rx, ry, angle)
                  : hardEllipse(cnSize, center.x, center.y, rx, ry, angle);
}

TEST(XCPattern, OnlySquareRectanglesCountAsTrueCircles) {
    EXPECT_EQ(XCCirclePattern().IsTrueCircle() | XCPolygonPattern().IsTrueCircle() | XCPattern().IsTrueCircle(), 0);
    XCRectPattern rect;
    rect.SetParameter(0.7f, 0.7f, 1.0f);
    EXPECT_EQ(rect.IsTrueCircle(), 1);
    rect.SetParameter(0.7f, 0.6f, 0.0f);
    EXPECT_EQ(rect.IsTrueCircle(), 0);
}

TEST(XCCirclePattern, PaintsTheCirclesOfThePlainModel) {
    XCCirclePattern tip;
    EXPECT_EQ(tip.kind, XCPattern::cnKindCircle);
    expectRandomStamps(tip, 1, 60, false, circleShape);
}

TEST(XCCirclePattern, EqualShapeFactorsMakeACircleWhateverTheyAre) {
    XCCirclePattern tip;
    tip.SetParameter(0.5f, 0.5f, 1.0f);
    expectRandomStamps(tip, 2, 4, false, circleShape);
}

TEST(XCCirclePattern, PaintsTheEllipsesAndNeedlesOfThePlainModel) {
    XCCirclePattern tip;
    expectRandomStamps(tip, 3, 120, true, ellipseShape);
}

TEST(XCCirclePattern, HandComputedPixelsOfASoftCircle) {
    // The sample point of pixel (u, v) is (u + 1, v), the centre (11, 10): pixel (10, 10) is the middle.
    Canvas canvas = newCanvas(8);
    canvas.mixer.SetDrawCompositioin(XCFastPixelMixer::Replace);
    canvas.mixer.SetColor(0xFF000000);
    XCCirclePattern tip;
    XCRect changed;
    EXPECT_EQ(tip.Draw(&changed, canvas.image(), &canvas.mixer, XCPointD(10, 10), 5.0f, 1, 1), 1);
    const TestImage& image = canvas.testImage();
    EXPECT_EQ(image.value(10, 10), 255u);
    EXPECT_EQ(image.value(12, 10), 127u); // 2.5 - 2 on the right, where the interior ends at 11.5
    EXPECT_EQ(image.value(8, 10), 127u);
    EXPECT_EQ(image.value(10, 12), 127u);
    EXPECT_EQ(image.value(13, 10), 0u);
    // 2.5 - sqrt(5) = 0.26393 is 8648 of 32768, (8648 - 1) >> 7 = 67
    EXPECT_EQ(image.value(12, 11), 67u);
    EXPECT_EQ(changed, XCRect(7, 6, 15, 14));
}

TEST(XCCirclePattern, ReportsTheBoundsBeforeClipping) {
    Canvas canvas = newCanvas(8);
    XCRect drawn(1, 2, 3, 4);
    CircleFills::CircleFillAA(canvas.image(), 0, 0, 0.01, &canvas.mixer, drawn);
    CircleFills::CircleFill(canvas.image(), 0, 0, 0, &canvas.mixer, drawn);
    CircleFills::EllipseFillAA(canvas.image(), 9, 9, 0, 3, 0, &canvas.mixer, drawn);
    CircleFills::EllipseFill(canvas.image(), 9, 9, 3, -1, 0, &canvas.mixer, drawn);
    CircleFills::CircleFill(canvas.image(), 20, 20, -5, &canvas.mixer, drawn);
    CircleFills::CircleFillAA(canvas.image(), -500, 0, 20, &canvas.mixer, drawn);
    CircleFills::EllipseFillAA(canvas.image(), -500, 0, 20, 9, 0, &canvas.mixer, drawn);
    EXPECT_EQ(drawn, XCRect(1, 2, 3, 4));
    CircleFills::CircleFillAA(canvas.image(), 0, 5, 10, &canvas.mixer, drawn);
    EXPECT_EQ(drawn, XCRect(-9, -5, 12, 16));
    CircleFills::CircleFill(canvas.image(), 0, 5, 10.5, &canvas.mixer, drawn);
    EXPECT_EQ(drawn, XCRect(-9, -5, 12, 16));
    CircleFills::EllipseFillAA(canvas.image(), 0, 5, 10.5, 4, 1, &canvas.mixer, drawn);
    EXPECT_EQ(drawn, XCRect(-9, -5, 12, 16));
}

TEST(XCRectPattern, PaintsTheRectanglesOfThePlainModel) {
    XCRectPattern tip;
    EXPECT_EQ(tip.kind, XCPattern::cnKindRect);
    expectRandomStamps(tip, 4, 80, true, [](const XCPattern& rect, XCPointD center, double size, bool isSoft) {
        return polygonShape(cornersOfRect(center.x, center.y, size * double(rect.sizeRate),
                                          size * double(rect.sizeRate2), double(rect.rotation)),
                            isSoft);
    });
}

Corners cornersOfTip(const XCPolygonPattern& tip, XCPointD center, double size) {
    Corners result;
    for (const tagPOINTD& vertex : tip.vertices) {
        const double x = double(tip.sizeRate) * vertex.x * size / 2, y = size / 2 * vertex.y * double(tip.sizeRate2);
        const double cs = std::cos(double(tip.rotation)), sn = std::sin(double(tip.rotation));
        result.push_back({center.x + x * cs - y * sn, center.y + y * cs + x * sn});
    }
    return result;
}

TEST(XCPolygonPattern, PaintsThePolygonsOfThePlainModel) {
    for (const int corners : {3, 5, 16}) {
        XCPolygonPattern tip;
        ASSERT_EQ(tip.PresetPolygon(corners, -1, 1, -1, 1), 1);
        expectRandomStamps(tip, std::uint64_t(corners), 30, true,
                           [&](const XCPattern&, XCPointD center, double size, bool isSoft) {
                               return polygonShape(cornersOfTip(tip, center, size), isSoft);
                           });
    }
}

void expectVertices(const XCPolygonPattern& tip, const Corners& expected) {
    ASSERT_EQ(tip.vertices.GetSize(), int(expected.size()));
    for (int i = 0; i < tip.vertices.GetSize(); ++i) {
        EXPECT_NEAR(tip.vertices[i].x, expected[std::size_t(i)].x, 1e-12) << i;
        EXPECT_NEAR(tip.vertices[i].y, expected[std::size_t(i)].y, 1e-12) << i;
    }
}

TEST(XCPolygonPattern, PresetsAndScaledPoints) {
    XCPolygonPattern tip;
    EXPECT_EQ(tip.kind, XCPattern::cnKindPolygon);
    expectVertices(tip, {{0, -1}, {1, 1}, {-1, 1}});
    EXPECT_EQ(tip.PresetPolygon(17, -1, 1, -1, 1), 0);
    EXPECT_EQ(tip.PresetPolygon(2, -1, 1, -1, 1), 0);
    expectVertices(tip, {{0, -1}, {1, 1}, {-1, 1}});
    EXPECT_EQ(tip.PresetPolygon(3, -2, 3, -4, 5), 1);
    expectVertices(tip, {{0, -4}, {-2, 5}, {3, 5}});
    EXPECT_EQ(tip.PresetPolygon(4, -1, 1, -1, 1), 1);
    expectVertices(tip, {{-1, -1}, {-1, 1}, {1, 1}, {1, -1}});
    EXPECT_EQ(tip.PresetPolygon(8, -3, 1, 0, 0), 1);
    const double r = 2, d = std::sqrt(2.0);
    expectVertices(tip, {{0, r}, {-d, d}, {-r, 0}, {-d, -d}, {0, -r}, {d, -d}, {r, 0}, {d, d}});
    const tagPOINT points[] = {{1, 2}, {-3, 4}, {5, -6}};
    tip.SetPolygon(points, 3, 0.5f);
    expectVertices(tip, {{0.5, 1}, {-1.5, 2}, {2.5, -3}});
    expectVertices(XCPolygonPattern(points, 2, 2.0f), {{2, 4}, {-6, 8}});
    XCPolygonPattern copy;
    copy.SetPolygon(&tip.vertices);
    expectVertices(copy, {{0.5, 1}, {-1.5, 2}, {2.5, -3}});
    expectVertices(XCPolygonPattern(&tip.vertices), {{0.5, 1}, {-1.5, 2}, {2.5, -3}});
}

TEST(XCPolygonPattern, WithoutAreaDrawsNothing) {
    XCPolygonPattern tip;
    tip.vertices.Clear();
    for (const int antialias : {0, 1}) {
        Canvas canvas = newCanvas(32);
        XCRect changed;
        EXPECT_EQ(tip.Draw(&changed, canvas.image(), &canvas.mixer, XCPointD(-50, -50), 20, 1, antialias), 0);
        tip.Draw(&changed, canvas.image(), &canvas.mixer, XCPointD(50, 50), 20, 1, antialias);
        EXPECT_TRUE(isSame(canvas.pixels(), newCanvas(32).pixels()));
    }
}

TEST(XCPattern, PreviewsAreOutlinesForTheApplication) {
    VXHOOKS hooks{};
    hooks.fillPolygon = [](XCGdi& gdi, int mode, const tagPOINT* points, int count, std::uint32_t color) {
        gdi = {mode, {points, points + count}, color};
        return 1;
    };
    XCGdi gdi;
    XCRectPattern rect;
    XCCirclePattern circle;
    XCPolygonPattern triangle;
    EXPECT_EQ(rect.DrawGDI(gdi, 3, {50, 60}, 20, 0xFF112233), 0); // nobody draws
    const HooksScope scope(hooks);
    EXPECT_EQ(rect.DrawGDI(gdi, 3, {50, 60}, 20, 0xFF112233), 1);
    EXPECT_EQ(gdi.points, (std::vector<XCPoint>{{40, 50}, {60, 50}, {60, 70}, {40, 70}}));
    EXPECT_EQ(gdi.mode, 3);
    EXPECT_EQ(gdi.color, 0xFF112233u);
    triangle.SetParameter(1.0f, 0.5f, float(M_PI / 2)); // turned, up points to the right
    EXPECT_EQ(triangle.DrawGDI(gdi, 0, {50, 60}, 20, 0), 1);
    EXPECT_EQ(gdi.points, (std::vector<XCPoint>{{55, 60}, {45, 70}, {45, 50}}));
    circle.SetParameter(3.0f, 3.0f, 0.0f); // equal factors are a circle of the size
    EXPECT_EQ(circle.DrawGDI(gdi, 0, {50, 60}, 20, 0), 1);
    for (const XCPoint& point : gdi.points)
        EXPECT_NEAR(std::hypot(point.x - 50, point.y - 60), 10, 0.8);
    gdi.points.clear();
    EXPECT_EQ(XCPattern().DrawGDI(gdi, 0, {50, 60}, 20, 0), 0);
    EXPECT_EQ(XCImagePattern().DrawGDI(gdi, 0, {50, 60}, 20, 0), 0);
    const tagPOINT line[] = {{1, 2}, {3, 4}};
    EXPECT_EQ(XCPattern::PolygonFill(gdi, 0, line, 2, 0), 0);
    EXPECT_TRUE(gdi.points.empty());
}

} // namespace
