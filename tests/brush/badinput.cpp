#include "ovwcmn/xcpatterndraw.h"
#include "studio.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

/// Input that no application should hand over: nothing may crash, hang or take memory without bound. What hangs meets
/// the time limit that every test has.
namespace {

using namespace ovw::test;

constexpr double cnNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double cnInfinity = std::numeric_limits<double>::infinity();
constexpr int cnIntMax = std::numeric_limits<int>::max();

const double s_badNumbers[] = {cnNaN, cnInfinity, -cnInfinity, 1e300, -1e300, 3e9, -3e9};

TEST(BrushBadInput, TipsTakeAnyPlaceAndSize) {
    XCCirclePattern circle, ellipse, needle;
    ellipse.SetParameter(0.5f, 1, 0.7f);
    needle.SetParameter(1e-6f, 1, 0.7f);
    XCRectPattern rect;
    XCPolygonPattern polygon;
    for (XCPattern* tip : std::initializer_list<XCPattern*>{&circle, &ellipse, &needle, &rect, &polygon}) {
        for (const int antialias : {0, 1}) {
            Canvas canvas(8, 300, 280), untouched(8, 300, 280);
            for (const double bad : s_badNumbers) {
                tip->Draw(nullptr, canvas.image(), &canvas.mixer, XCPointD(bad, 50), 20, 1, antialias);
                tip->Draw(nullptr, canvas.image(), &canvas.mixer, XCPointD(50, bad), 20, 1, antialias);
            }
            for (const float size : {float(cnNaN), -5.0f, -float(cnInfinity)})
                tip->Draw(nullptr, canvas.image(), &canvas.mixer, XCPointD(400, 400), size, 1, antialias);
            EXPECT_TRUE(isSame(canvas.pixels(), untouched.pixels())) << "kind " << tip->kind;
            for (const float size : {30000.0f, 1e9f, 1e30f, float(cnInfinity), float(cnNaN), 0.0f, -5.0f})
                tip->Draw(nullptr, canvas.image(), &canvas.mixer, XCPointD(150, 140), size, 1, antialias);
        }
    }
}

TEST(BrushBadInput, HugeTipsFillTheImage) {
    XCCirclePattern circle;
    XCRectPattern rect;
    for (XCPattern* tip : std::initializer_list<XCPattern*>{&circle, &rect})
        for (const int antialias : {0, 1}) {
            Canvas canvas(8, 300, 280);
            XCRect changed;
            EXPECT_EQ(tip->Draw(&changed, canvas.image(), &canvas.mixer, XCPointD(150, 140), 30000, 1, antialias), 1);
            EXPECT_EQ(changed, XCRect(0, 0, 300, 280));
            for (const int x : {0, 255, 256, 299})
                EXPECT_NE(canvas.testImage().value(x, 279), 0u);
        }
}

TEST(BrushBadInput, TipsTakeAnyParameter) {
    XCCirclePattern circle;
    XCRectPattern rect;
    XCPolygonPattern polygon;
    Canvas canvas(32, 300, 280);
    for (XCPattern* tip : std::initializer_list<XCPattern*>{&circle, &rect, &polygon})
        for (const double bad : {cnNaN, cnInfinity, -cnInfinity, 1e30, -1.0, 0.0})
            for (int which = 0; which < 3; ++which)
                for (const int antialias : {0, 1}) {
                    tip->SetParameter(which == 0 ? float(bad) : 0.5f, which == 1 ? float(bad) : 1.0f,
                                      which == 2 ? float(bad) : 0.3f);
                    tip->Draw(nullptr, canvas.image(), &canvas.mixer, XCPointD(150, 140), 30, 1, antialias);
                }
}

TEST(BrushBadInput, StrokesTakeAnySample) {
    for (const Method& settings : {Method{}, Method{.useCache = 1, .cacheKind = 1}}) {
        Studio studio(32, settings);
        setRoundBrush(studio.brush, 30, 100, 200, 30);
        studio.brush.SetSizeParam({30, 0, cnControlPressure});
        for (const double bad : {cnNaN, cnInfinity, -cnInfinity}) {
            studio.draw({penAt(50, 50), penAt(bad, 60), penAt(70, bad), penAt(90, 90)});
            studio.draw({penAt(bad, bad), penAt(bad, bad)});
            studio.draw({penAt(50, 50, float(bad)), penAt(90, 90, float(bad))});
            studio.fill(0);
            studio.method.ClearTempImage();
            studio.draw({penAt(50, 50), penAt(70, 70, float(bad)), penAt(110, 110), penAt(160, 160)});
            EXPECT_NE(studio.image.value(140, 140) >> 24, 0u) << "the stroke goes on behind " << bad;
            XCStrokePoint point = penAt(bad, 60);
            studio.begin();
            studio.engine.DrawSinglePattern(nullptr, &point, bad);
        }
        studio.draw({penAt(50, 50), penAt(90, 90)});
        EXPECT_NE(studio.image.value(60, 60) >> 24, 0u) << "the engine still draws";
    }
}

TEST(BrushBadInput, StrokesWhollyOutsidePaintNothing) {
    for (const int hardness : {0, 255}) {
        Studio studio(32, {.useCache = 1, .cacheKind = 1});
        setRoundBrush(studio.brush, 30, hardness, 200, 30);
        XCRect changed(1, 2, 3, 4);
        EXPECT_EQ(studio.draw({penAt(-5000, -5000), penAt(-900, 3000), penAt(8000, 9000)}, &changed), 0);
        EXPECT_EQ(changed, XCRect());
        studio.draw({penAt(3e9, 3e9), penAt(3e9 + 500, 3e9 - 20000)}, &changed);
        EXPECT_TRUE(isSame(studio.pixels(), Studio(32).pixels()));
    }
}

TEST(BrushBadInput, BrushesTakeAnySetting) {
    for (const int extreme : {0, -1, 40000, cnIntMax, -cnIntMax - 1}) {
        Studio studio(8, {.useCache = 1, .cacheKind = 1, .densityFlag = 1});
        XCPatternDrawParam& brush = studio.brush;
        const auto expectDraws = [&] {
            studio.draw({penAt(50, 50), penAt(60, 55), penAt(61, 56)});
            brush.InitParam();
            setRoundBrush(brush, 20, 100, 200, 30);
        };
        setRoundBrush(brush, extreme, 255, 255, 30);
        expectDraws();
        setRoundBrush(brush, extreme, 0, 255, 30);
        expectDraws();
        setRoundBrush(brush, 20, extreme, 255, 30);
        expectDraws();
        setRoundBrush(brush, 20, 100, extreme, 30);
        expectDraws();
        setRoundBrush(brush, 20, 100, 255, extreme);
        expectDraws();
        brush.SetSizeParam({20, extreme, cnControlPressure});
        expectDraws();
        brush.SetIntervalParam({extreme, extreme, extreme, extreme, extreme});
        expectDraws();
        brush.SetIntervalParam({2, 30, 30, 0, extreme});
        brush.SetHardnessParam({extreme, extreme, 0});
        expectDraws();
        PDPARAM_AIRBRUSH airbrush;
        airbrush.sprayFlags = 1;
        airbrush.sprayWidthAtFull = airbrush.plotCountAtFull = extreme;
        airbrush.sprayWidthAtZero = airbrush.plotCountAtZero = -(extreme / 2);
        brush.SetAirbrushParam(airbrush);
        expectDraws();
        PDPARAM_PATTERN pattern;
        pattern.patternKind = extreme;
        pattern.patternCount = extreme;
        pattern.patternOrder = 1;
        brush.SetPatternParam(pattern);
        expectDraws();
        brush.SetRotateParam({float(cnNaN), float(cnInfinity), float(cnNaN), cnRotateRadial});
        brush.SetSizeRateParam({float(cnNaN), float(cnInfinity), cnControlSpeed});
        expectDraws();
    }
}

TEST(BrushBadInput, AnyScaleAndMethod) {
    for (const double scale : {cnNaN, cnInfinity, -1.0, 1e-300, 1e300}) {
        Studio studio(32, {}, scale);
        setRoundBrush(studio.brush, 20, 100, 200, 30);
        studio.draw({penAt(50, 50), penAt(60, 55)});
        studio.engine.RectOffscrToLog(XCRect(-cnIntMax - 1, 1, cnIntMax, 5));
    }
    for (const int kind : {-1, 3, 4, 8, 18, 19, 1000, cnIntMax})
        for (const int useCache : {0, 1}) {
            Studio studio(32, {.useCache = useCache, .kind = kind, .cacheKind = useCache ? kind : 0, .flag = 1});
            setRoundBrush(studio.brush, 20, 100, 200, 30);
            studio.draw(winding());
        }
}

} // namespace
