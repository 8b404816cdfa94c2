#include "strokeshaper.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace ovwpaint::test {

namespace {

struct Curve {
    XCStrokePoint start, control1, control2, end;

    XCStrokePoint at(double t) const {
        const double u = 1.0 - t;
        const auto mix = [&](double a, double b, double c, double d) {
            return u * u * u * a + 3 * u * u * t * b + 3 * u * t * t * c + t * t * t * d;
        };
        XCStrokePoint p = start;
        p.x = mix(start.x, control1.x, control2.x, end.x);
        p.y = mix(start.y, control1.y, control2.y, end.y);
        return p;
    }
};

class Recorder : public PathSink {
public:
    void start(const XCStrokePoint& point) override {
        ++starts;
        m_end = point;
    }
    void curve(const XCStrokePoint& control1, const XCStrokePoint& control2, const XCStrokePoint& end) override {
        curves.push_back({m_end, control1, control2, end});
        m_end = end;
    }

    int starts = 0;
    std::vector<Curve> curves;

private:
    XCStrokePoint m_end;
};

TraceFormat formatWith(std::initializer_list<ChannelKind> kinds) {
    TraceFormat format;
    for (const ChannelKind kind : kinds)
        format.channels.push_back({kind, 0.0, 1.0});
    format.regularCount = format.channels.size();
    return format;
}

const TraceFormat cnVector = formatWith({ChannelKind::X, ChannelKind::Y});
const TraceFormat cnRecording = formatWith({ChannelKind::X, ChannelKind::Y, ChannelKind::Force, ChannelKind::Time});

PenSample at(double x, double y, float force = 1.0f, double time = 0.0) {
    PenSample sample;
    sample.x = x, sample.y = y, sample.force = force, sample.time = time;
    return sample;
}

Recorder shape(const std::vector<PenSample>& samples, const TraceFormat& format = cnVector,
               Joining joining = Joining::Smooth, const PathMapping& mapping = {}) {
    Recorder recorder;
    StrokeShaper shaper(recorder, mapping, joining, format);
    for (const PenSample& sample : samples)
        shaper.push(sample);
    shaper.finish();
    return recorder;
}

TEST(StrokeShaper, PassesThroughEverySampleOfAVector) {
    const std::vector<PenSample> samples = {at(0, 0), at(10, 1), at(20, 4), at(29, 9), at(37, 16), at(44, 25)};
    const Recorder path = shape(samples);
    ASSERT_EQ(path.curves.size(), samples.size() - 1);
    EXPECT_EQ(path.starts, 1);
    for (std::size_t i = 0; i < path.curves.size(); ++i) {
        EXPECT_DOUBLE_EQ(path.curves[i].start.x, samples[i].x);
        EXPECT_DOUBLE_EQ(path.curves[i].end.y, samples[i + 1].y);
    }
}

// A circle of ten samples: its polygon lies up to 4.9 % inside, the curve must not show corners.
TEST(StrokeShaper, RoundsASparseCircle) {
    std::vector<PenSample> samples;
    for (int i = 0; i <= 10; ++i)
        samples.push_back(at(100 * std::cos(i * std::numbers::pi / 5), 100 * std::sin(i * std::numbers::pi / 5)));
    const Recorder path = shape(samples);
    for (std::size_t i = 1; i + 1 < path.curves.size(); ++i) { // the ends have one neighbour only
        const Curve& curve = path.curves[i];
        for (const double t : {0.25, 0.5, 0.75})
            EXPECT_NEAR(std::hypot(curve.at(t).x, curve.at(t).y), 100.0, 0.6);
        const Curve& next = path.curves[i + 1];
        const double cross = (curve.end.x - curve.control2.x) * (next.control1.y - next.start.y) -
                             (curve.end.y - curve.control2.y) * (next.control1.x - next.start.x);
        if (i + 2 < path.curves.size()) {
            EXPECT_NEAR(cross, 0.0, 1e-6) << "tangents meet";
        }
    }
}

TEST(StrokeShaper, KeepsCorners) {
    const std::vector<PenSample> square = {at(0, 0), at(50, 0), at(100, 0), at(100, 50), at(100, 100), at(0, 100)};
    for (const Curve& curve : shape(square).curves) {
        for (const double t : {0.2, 0.5, 0.8}) {
            const XCStrokePoint p = curve.at(t);
            EXPECT_NEAR(std::min({std::abs(p.y), std::abs(p.x - 100), std::abs(p.y - 100)}), 0.0, 1e-9);
        }
    }
    const Recorder cusp = shape({at(0, 0), at(50, 2), at(100, 4), at(50, 6), at(0, 8)});
    EXPECT_LE(std::max(cusp.curves[1].at(0.9).x, cusp.curves[2].at(0.1).x), 100.0) << "no loop where the pen returns";
}

TEST(StrokeShaper, JoinsByStraightLinesWhenAsked) {
    const Recorder path = shape({at(0, 0), at(30, 0), at(30, 30)}, cnVector, Joining::Straight);
    EXPECT_DOUBLE_EQ(path.curves[0].at(0.5).y, 0.0);
    EXPECT_DOUBLE_EQ(path.curves[1].at(0.5).x, 30.0);
}

TEST(StrokeShaper, CountsSamplesAtOnePlaceOnce) {
    const Recorder path =
        shape({at(5, 5, 0.1f), at(5, 5, 0.9f), at(5, 5, 0.3f), at(9, 5, 0.5f), at(9, 5, 0.4f)}, cnRecording);
    ASSERT_EQ(path.curves.size(), 1u);
    EXPECT_FLOAT_EQ(path.curves[0].start.pressure, 0.9f);
    EXPECT_FLOAT_EQ(path.curves[0].end.pressure, 0.5f);
}

TEST(StrokeShaper, MakesAPathOfATap) {
    for (const std::vector<PenSample>& tap :
         {std::vector<PenSample>{at(7, 8, 0.5f)}, std::vector<PenSample>{at(7, 8, 0.2f), at(7, 8, 0.5f)}}) {
        const Recorder path = shape(tap, cnRecording);
        ASSERT_EQ(path.curves.size(), 1u);
        EXPECT_NEAR(path.curves[0].end.x, 7.0, 0.02);
        EXPECT_FLOAT_EQ(path.curves[0].end.pressure, 0.5f);
    }
    EXPECT_EQ(shape({}).starts, 0);
}

// Positions rounded to whole pixels: what is evened out stays within half a pixel.
TEST(StrokeShaper, EvensOutTheNoiseOfRecordings) {
    std::vector<PenSample> samples;
    for (int i = 0; i < 60; ++i)
        samples.push_back(at(2.0 * i, std::round(0.4 * i), 0.5f, 8.0 * i));
    double before = 0.0, after = 0.0;
    const Recorder path = shape(samples, cnRecording);
    ASSERT_EQ(path.curves.size(), samples.size() - 1);
    for (std::size_t i = 1; i + 1 < path.curves.size(); ++i) {
        before += std::abs(samples[i].y - 0.4 * static_cast<double>(i));
        after += std::abs(path.curves[i].start.y - 0.4 * static_cast<double>(i));
        EXPECT_LE(std::hypot(path.curves[i].start.x - samples[i].x, path.curves[i].start.y - samples[i].y), 0.5001);
    }
    EXPECT_LT(after, before * 0.75);
}

TEST(StrokeShaper, CarriesThePenAlong) {
    std::vector<PenSample> samples;
    for (int i = 0; i < 40; ++i) {
        PenSample sample = at(4.0 * i, 0, 2.0f, 8.0 * i); // half a pixel a millisecond
        sample.azimuth = static_cast<float>((350 + i) % 360);
        sample.lean = 45.0f;
        samples.push_back(sample);
    }
    const Recorder path = shape(samples, cnRecording);
    const XCStrokePoint& end = path.curves.back().end;
    EXPECT_FLOAT_EQ(end.pressure, 1.0f) << "beyond the maximum counts as the maximum";
    EXPECT_NEAR(end.speed, 0.5f, 0.01f);
    EXPECT_FLOAT_EQ(end.angleA, 389.0f) << "unwrapped: 29 after passing 360";
    EXPECT_FLOAT_EQ(end.angleB, 45.0f);
    EXPECT_FLOAT_EQ(end.auxScale, 0.5f);
    EXPECT_EQ(shape(samples, cnVector).curves.back().end.speed, 0.0f) << "no time channel, no speed";
}

TEST(StrokeShaper, SurvivesTimesThatRunBackwards) {
    const Recorder path = shape(
        {at(0, 0, 1, 100), at(8, 0, 1, 50), at(16, 0, 1, 50), at(24, 0, 1, -1e300), at(32, 0, 1, 1e300)}, cnRecording);
    for (const Curve& curve : path.curves)
        EXPECT_TRUE(curve.end.speed >= 0.0f && curve.end.speed <= 1.0f);
}

TEST(StrokeShaper, MapsIntoThePicture) {
    const Recorder path = shape({at(10, 20), at(12, 20)}, cnVector, Joining::Smooth, {10, 10, 4});
    EXPECT_DOUBLE_EQ(path.curves[0].start.x, 0.0);
    EXPECT_DOUBLE_EQ(path.curves[0].start.y, 40.0);
    EXPECT_DOUBLE_EQ(path.curves[0].end.x, 8.0);
}

} // namespace

} // namespace ovwpaint::test
