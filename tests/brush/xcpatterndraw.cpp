#include "ovwcmn/xcpatterndraw.h"

#include "studio.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

using namespace ovw::test;

constexpr double cnPi = 3.14159265358979323846;

/// A studio whose brush stamps with a recording tip, `interval` pixels apart.
struct Recorder : Studio {
    explicit Recorder(int interval, double scale = 1.0, const Method& settings = {}) : Studio(32, settings, scale) {
        brush.SetDesignatedPattern(&tip);
        brush.SetSizeParam({10, 0, 0});
        brush.SetIntervalParam({1, interval, interval, 0, 3});
    }
    RecordingTip tip;
};

/// The place along a polyline where it has come `distance` far.
XCStrokePoint along(const std::vector<XCStrokePoint>& points, double distance) {
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
        const double length = std::hypot(points[i + 1].x - points[i].x, points[i + 1].y - points[i].y);
        if (distance < length) {
            XCStrokePoint result;
            XCStroke::GetInterlatePoint(&result, distance / length, &points[i], &points[i + 1]);
            return result;
        }
        distance -= length;
    }
    return points.back();
}

double lengthOf(const std::vector<XCStrokePoint>& points) {
    double result = 0;
    for (std::size_t i = 0; i + 1 < points.size(); ++i)
        result += std::hypot(points[i + 1].x - points[i].x, points[i + 1].y - points[i].y);
    return result;
}

TEST(XCPatternDraw, SpacingCarriesAcrossVertices) {
    for (const double scale : {1.0, 2.0, 0.5}) {
        Recorder studio(7, scale);
        EXPECT_EQ(studio.draw(winding()), 1);
        const auto count = std::size_t(std::ceil(lengthOf(winding()) / (7 * scale)));
        ASSERT_EQ(studio.tip.stamps.size(), count);
        for (std::size_t i = 0; i < count; ++i) {
            const XCStrokePoint expected = along(winding(), double(i) * 7 * scale);
            EXPECT_NEAR(studio.tip.stamps[i].x, expected.x / scale, 1e-8) << i;
            EXPECT_NEAR(studio.tip.stamps[i].y, expected.y / scale, 1e-8) << i;
            EXPECT_NEAR(studio.tip.stamps[i].pressure, expected.pressure, 1e-5) << i;
        }
    }
}

TEST(XCPatternDraw, SpacingFollowsTheSizeAtTheLastStamp) {
    Recorder studio(1);
    studio.brush.SetSizeParam({40, 0, cnControlPressure});
    studio.brush.SetIntervalParam({2, 50, 50, 0, 3});
    studio.draw(winding());
    double distance = 0;
    for (const RecordingTip::Stamp& stamp : studio.tip.stamps) {
        const XCStrokePoint expected = along(winding(), distance);
        EXPECT_NEAR(stamp.x, expected.x, 1e-4);
        EXPECT_NEAR(stamp.y, expected.y, 1e-4);
        EXPECT_NEAR(stamp.size, 40 * double(expected.pressure), 1e-4);
        distance += std::max(0.5 * 40 * double(expected.pressure), 1.0);
    }
    EXPECT_GE(distance, lengthOf(winding()));
}

TEST(XCPatternDraw, SegmentsWithoutLength) {
    Recorder studio(5);
    studio.draw({penAt(50, 50), penAt(50, 50)});
    EXPECT_EQ(studio.tip.stamps.size(), 1u);
    studio.draw({penAt(50, 50), penAt(50, 50), penAt(50, 50), penAt(50, 50)});
    EXPECT_EQ(studio.tip.stamps.size(), 2u) << "only the first position of a stroke";
    studio.tip.stamps.clear();
    studio.draw({penAt(50, 50), penAt(62, 50), penAt(62, 50), penAt(62, 50), penAt(75, 50)});
    ASSERT_EQ(studio.tip.stamps.size(), 5u);
    for (int i = 0; i < 5; ++i)
        EXPECT_DOUBLE_EQ(studio.tip.stamps[std::size_t(i)].x, 50 + 5 * i);
    studio.tip.stamps.clear();
    EXPECT_EQ(studio.draw({penAt(50, 50)}), 0) << "a single vertex paints nothing";
    EXPECT_EQ(studio.draw({}), 0);
    EXPECT_TRUE(studio.tip.stamps.empty());
}

TEST(XCPatternDraw, ContinueSwitchPlacesOnePositionASegment) {
    Recorder studio(5);
    studio.brush.SetEtcParam({1, 0, 1, 0, 0});
    studio.draw({penAt(50, 50), penAt(90, 50), penAt(90, 80), penAt(10, 80)});
    ASSERT_EQ(studio.tip.stamps.size(), 3u);
    EXPECT_EQ(studio.tip.stamps[0].x, 50);
}

TEST(XCPatternDraw, FirstSegmentOnlyFindsTheDirection) {
    Recorder studio(8);
    studio.brush.SetRotateParam({0, float(cnPi), 0, cnRotateDirection});
    const double slope = 125 / std::sqrt(2.0);
    studio.draw({penAt(100, 100), penAt(228, 100), penAt(228, 228), penAt(228 - slope, 228 + slope)});
    ASSERT_EQ(studio.tip.stamps.size(), 32u);
    EXPECT_EQ(studio.tip.stamps[0].y, 100);
    for (std::size_t i = 0; i < 16; ++i) {
        EXPECT_EQ(studio.tip.stamps[i].x, 228);
        EXPECT_NEAR(studio.tip.stamps[i].rotation, cnPi, 1e-6) << "straight down";
    }
    for (std::size_t i = 16; i < 32; ++i)
        EXPECT_NEAR(studio.tip.stamps[i].rotation, -cnPi * 3 / 4, 0.02) << "turned by 45 degrees, a degree a unit";
    EXPECT_EQ(studio.draw({penAt(100, 100), penAt(200, 100)}), 0);
}

TEST(XCPatternDraw, DirectionIsSmoothed) {
    Recorder studio(2);
    studio.brush.SetRotateParam({0, float(cnPi), 0, cnRotateDirection});
    // Up, then 30 degrees to the right for 12 units: 12 degrees follow.
    studio.draw(
        {penAt(100, 300), penAt(100, 250), penAt(100, 200), penAt(100 + 12.01 * 0.5, 200 - 12.01 * std::sqrt(0.75))});
    EXPECT_NEAR(studio.tip.stamps[0].rotation, 0, 1e-6);
    EXPECT_NEAR(studio.tip.stamps.back().rotation, 12 * cnPi / 180, 1e-6);
}

TEST(XCPatternDraw, AirbrushStampsSeveralTimesAPosition) {
    Recorder studio(20);
    PDPARAM_AIRBRUSH airbrush;
    airbrush.sprayFlags = cnSprayScatter;
    airbrush.sprayWidthAtFull = 60;
    airbrush.plotCountAtFull = 5;
    studio.brush.SetAirbrushParam(airbrush);
    studio.draw({penAt(100, 100), penAt(160, 100)});
    ASSERT_EQ(studio.tip.stamps.size(), 15u);
    for (std::size_t i = 0; i < 15; ++i)
        EXPECT_LE(std::hypot(studio.tip.stamps[i].x - (100 + 20.0 * double(i / 5)), studio.tip.stamps[i].y - 100), 30);
}

/// A brush that makes use of randomness in every way.
void setRandomBrush(XCPatternDrawParam& brush) {
    setRoundBrush(brush, 30, 120, 180, 25);
    brush.SetSizeParam({30, 40, cnControlRandom | cnControlPressure});
    brush.SetSizeRateParam({1, 0.3f, cnControlRandom});
    brush.SetRotateParam({0, 3, 0, cnRotateRandom});
    PDPARAM_AIRBRUSH airbrush;
    airbrush.sprayFlags = cnSprayScatter;
    airbrush.sprayWidthAtFull = 50;
    airbrush.plotCountAtFull = 3;
    brush.SetAirbrushParam(airbrush);
}

const Method s_methods[] = {{}, {.useCache = 1, .cacheKind = 1}, {.useCache = 1, .cacheKind = 2}};

TEST(XCPatternDraw, SampleBySampleIsTheSameAsAtOnce) {
    for (const Method& settings : s_methods) {
        Studio whole(32, settings), pieces(32, settings);
        setRandomBrush(whole.brush);
        setRandomBrush(pieces.brush);
        whole.draw(winding());
        pieces.begin();
        XCLinerStroke stroke;
        for (const XCStrokePoint& point : winding()) {
            stroke.Store(point);
            pieces.engine.DrawStroke(nullptr, &stroke, 1);
        }
        pieces.engine.EndDraw(nullptr);
        EXPECT_NE(differenceOf(whole.pixels(), Studio(32).pixels()), XCRect())
            << "stopped by " << whole.engine.GetStopCode();
        EXPECT_TRUE(isSame(pieces.pixels(), whole.pixels()));
    }
}

TEST(XCPatternDraw, BezierStrokesJoinToo) {
    Studio whole(32), pieces(32);
    setRandomBrush(whole.brush);
    setRandomBrush(pieces.brush);
    const XCStrokePoint points[] = {penAt(50, 60),   penAt(120, 20, 0.5f),  penAt(300, 90), penAt(290, 200, 0.2f),
                                    penAt(280, 260), penAt(150, 400, 0.8f), penAt(90, 300)};
    XCBezierStroke all, some;
    all.FirstStore(points[0]);
    some.FirstStore(points[0]);
    whole.begin();
    pieces.begin();
    for (int i = 1; i < 7; ++i) {
        all.Store(points[i]);
        some.Store(points[i]);
        if (i % 3 == 0)
            pieces.engine.DrawStroke(nullptr, &some, 1);
    }
    whole.engine.DrawStroke(nullptr, &all, 1);
    EXPECT_TRUE(isSame(pieces.pixels(), whole.pixels()));
}

TEST(XCPatternDraw, RedrawingRepeatsTheStroke) {
    for (const Method& settings : s_methods) {
        Studio studio(32, settings);
        setRandomBrush(studio.brush);
        studio.begin();
        XCLinerStroke stroke = polyline(winding());
        XCRect first, second;
        studio.engine.DrawStroke(&first, &stroke, 0);
        const Pixels pixels = studio.pixels();
        for (int y = 0; y < Studio::cnHeight; ++y)
            studio.image.fillRow(0, Studio::cnWidth, y, 0x00FFFFFF);
        studio.method.ClearTempImage();
        studio.engine.ReStartDraw();
        studio.engine.DrawStroke(&second, &stroke, 0);
        EXPECT_EQ(first, second);
        EXPECT_TRUE(isSame(studio.pixels(), pixels));
        XCRect all;
        studio.engine.EndDraw(&all);
        EXPECT_EQ(all, second);
        EXPECT_EQ(studio.engine.IsDrawing(), 0);
    }
}

TEST(XCPatternDraw, ChangedCoversWhatWasPainted) {
    for (const int depth : cnAllDepths) {
        Studio studio(depth);
        setRoundBrush(studio.brush, 23, 255, 255, 40);
        studio.begin();
        XCLinerStroke stroke = polyline({penAt(100.5, 90), penAt(180, 300.25)});
        XCRect changed, all;
        EXPECT_EQ(studio.engine.DrawStroke(&changed, &stroke, 1), 1);
        const XCRect painted = differenceOf(studio.pixels(), Studio(depth).pixels());
        EXPECT_TRUE(changed.left <= painted.left && changed.top <= painted.top && changed.right >= painted.right &&
                    changed.bottom >= painted.bottom)
            << changed << " around " << painted;
        EXPECT_LE(painted.left - changed.left, 2);
        EXPECT_LE(changed.right - painted.right, 3);
        EXPECT_LE(painted.top - changed.top, 3);
        studio.engine.EndDraw(&all);
        EXPECT_EQ(all, changed);
    }
}

TEST(XCPatternDraw, RectanglesAreLogical) {
    Recorder studio(100, 4.0);
    XCRect changed(1, 2, 3, 4), all;
    studio.begin();
    XCLinerStroke stroke = polyline({penAt(40, 80), penAt(80, 80)});
    EXPECT_EQ(studio.engine.DrawStroke(&changed, &stroke, 1), 1);
    EXPECT_EQ(changed, XCRect(36, 76, 48, 88)); // pixels (9, 19, 12, 22)
    const XCStrokePoint single = penAt(400, 160);
    EXPECT_EQ(studio.engine.DrawSinglePattern(&changed, &single, 0), 400);
    EXPECT_EQ(changed, XCRect(396, 156, 408, 168));
    studio.engine.EndDraw(&all);
    EXPECT_EQ(all, XCRect(36, 76, 408, 168));
}

TEST(XCPatternDraw, SinglePatternsAreStamps) {
    Recorder studio(6);
    studio.begin();
    const XCStrokePoint point = penAt(70, 80, 0.5f);
    EXPECT_EQ(studio.engine.DrawSinglePattern(nullptr, &point, 1.0), 6);
    EXPECT_EQ(studio.engine.DrawSinglePattern(nullptr, &point, 1.0), 6);
    ASSERT_EQ(studio.tip.stamps.size(), 2u);
    EXPECT_EQ(studio.tip.stamps[0], studio.tip.stamps[1]);
    EXPECT_EQ(studio.tip.stamps[0].pressure, 0.5f);
    studio.engine.EndDraw(nullptr);
    EXPECT_EQ(studio.engine.DrawSinglePattern(nullptr, &point, 1.0), 0);
    studio.brush.SetRotateParam({0, float(cnPi), 0, cnRotateDirection});
    studio.begin();
    EXPECT_EQ(studio.engine.DrawSinglePattern(nullptr, &point, 1.0), 6);
    EXPECT_EQ(studio.tip.stamps.size(), 2u) << "the first one only finds the direction";
    EXPECT_EQ(studio.engine.DrawSinglePattern(nullptr, &point, 1.0), 6);
    ASSERT_EQ(studio.tip.stamps.size(), 3u);
    EXPECT_FLOAT_EQ(studio.tip.stamps[2].rotation, 1);
}

TEST(XCPatternDraw, ConvertsCoordinates) {
    Studio studio(8, {}, 2.0);
    const XCPatternDraw& engine = studio.engine;
    EXPECT_EQ(engine.GetScaleLogToOffscr(), 0.5);
    EXPECT_EQ(engine.PosLogToOffscr(XCPoint(10, 20)), XCPoint(5, 10));
    EXPECT_EQ(engine.PosOffscrToLog(XCPoint(5, 10)), XCPoint(10, 20));
    EXPECT_EQ(engine.PosLogToOffscr(XCPoint(-7, 7)), XCPoint(-3, 3));
    EXPECT_EQ(engine.PosLogToOffscrD(XCPointD(-7, 7)), XCPointD(-3.5, 3.5));
    EXPECT_EQ(engine.PosOffscrToLogD(XCPointD(1.25, -2)), XCPointD(2.5, -4));
    EXPECT_EQ(engine.ValueLogToOffscr(-7), -3);
    EXPECT_EQ(engine.ValueLogToOffscrD(7), 3.5);
    EXPECT_EQ(engine.ValueOffscrToLog(2147483647), 2147483647) << "clamped";
    EXPECT_EQ(engine.ValueOffscrToLogD(1.5), 3);
    EXPECT_EQ(engine.RectLogToOffscr(XCRect(-3, 3, 7, 8)), XCRect(-1, 1, 3, 4));
    EXPECT_EQ(engine.RectOffscrToLog(XCRect(-3, 3, 7, 8)), XCRect(-6, 6, 14, 16));
    EXPECT_EQ(engine.RectLogToOffscrD(XCRectD(-3, 3, 7, 8)), XCRectD(-1.5, 1.5, 3.5, 4));
    EXPECT_EQ(engine.RectOffscrToLogD(XCRectD(-1.5, 3, 7, 8)), XCRectD(-3, 6, 14, 16));
    EXPECT_EQ(engine.GetClipLog(), XCRect(0, 0, 2 * Studio::cnWidth, 2 * Studio::cnHeight));
    EXPECT_EQ(engine.GetDivSCurveLength(), 1);
    EXPECT_EQ(engine.GetDrawMethod(), &studio.method);
    Studio unscaled(8, {}, 0.0);
    EXPECT_EQ(unscaled.engine.ValueOffscrToLog(7), 7);
    Studio half(8, {}, 0.5);
    EXPECT_EQ(half.engine.RectOffscrToLog(XCRect(3, 3, 7, 7)), XCRect(1, 1, 3, 3));
}

TEST(XCPatternDraw, CallsOutOfOrderDoNothing) {
    XCPatternDraw bare;
    XCPatternDrawParam brush;
    XCLinerStroke stroke = polyline(winding());
    const XCStrokePoint point = penAt(5, 5);
    XCRect changed(1, 2, 3, 4);
    PLOTPATTERNPARAM stamp;
    stamp.opacity = 255;
    for (int pass = 0; pass < 2; ++pass) { // the second time begun, but without a method
        EXPECT_EQ(bare.IsDrawing(), pass);
        EXPECT_EQ(bare.DrawStroke(&changed, &stroke, 0), 0);
        EXPECT_EQ(changed, XCRect());
        EXPECT_EQ(bare.DrawSinglePattern(nullptr, &point, 0), 0);
        EXPECT_EQ(bare.PlotPattern(nullptr, stamp, 1, 0), 0);
        EXPECT_EQ(bare.BeginDraw(&brush), 1);
    }
    bare.EndDraw(nullptr);
    bare.ReStartDraw();
    EXPECT_EQ(bare.IsDrawing(), 0);
    changed = XCRect(1, 2, 3, 4);
    bare.EndDraw(&changed);
    EXPECT_EQ(changed, XCRect(1, 2, 3, 4));
}

TEST(XCPatternDraw, BeginningAgainStartsAnew) {
    Recorder studio(10);
    studio.begin();
    XCLinerStroke stroke = polyline({penAt(50, 50), penAt(64, 50)});
    studio.engine.DrawStroke(nullptr, &stroke, 0);
    studio.begin();
    studio.engine.DrawStroke(nullptr, &stroke, 0);
    ASSERT_EQ(studio.tip.stamps.size(), 4u);
    EXPECT_EQ(studio.tip.stamps[2], studio.tip.stamps[0]);
}

TEST(XCPatternDraw, EngineKeepsItsOwnCopyOfTheBrush) {
    Recorder studio(10);
    studio.begin();
    studio.brush.SetDesignatedPattern(nullptr);
    studio.brush.SetIntervalParam({1, 1, 1, 0, 3});
    XCLinerStroke stroke = polyline({penAt(50, 50), penAt(74, 50)});
    studio.engine.DrawStroke(nullptr, &stroke, 0);
    EXPECT_EQ(studio.tip.stamps.size(), 3u);
}

TEST(XCPatternDraw, BendSwitchNeedsAnImageTip) {
    Studio studio(32);
    setRoundBrush(studio.brush, 20, 255, 255, 30);
    studio.brush.SetEtcParam({1, 0, 0, 1, 0});
    EXPECT_EQ(studio.draw(winding()), 0);
    EXPECT_TRUE(isSame(studio.pixels(), Studio(32).pixels()));
    studio.begin();
    const XCStrokePoint point = penAt(100, 100);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(studio.engine.DrawSinglePattern(nullptr, &point, 0.5), 4.0);
}

} // namespace
