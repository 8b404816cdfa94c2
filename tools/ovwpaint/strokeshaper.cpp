#include "strokeshaper.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace ovwpaint {

namespace {

/// Curves around node i look at the nodes i - 2 to i + 3.
constexpr std::size_t cnBehind = 2;
constexpr std::size_t cnAhead = 3;

constexpr double cnDegree = std::numbers::pi / 180.0;
/// The pen comes back: always a corner.
constexpr double cnReversal = 110.0 * cnDegree;
/// A turn from here on is a corner when the path is straight before and behind it.
constexpr double cnCorner = 40.0 * cnDegree;
/// In recordings, steps shorter than this turn by the noise of the device, in pixels.
constexpr double cnMinCornerStep = 4.0;
/// How far a sample may move when noise is evened out, in pixels.
constexpr double cnMaxEvening = 0.5;
/// Weight of a new value in the running average of the speed, about three samples long.
constexpr float cnSpeedWeight = 0.3f;
/// The path of a tap in mapped units: enough for brushes that wait for a direction, nothing to be seen.
constexpr double cnTapLength = 0.01;

XCStrokePoint between(const XCStrokePoint& a, const XCStrokePoint& b, double t) {
    XCStrokePoint point;
    XCStroke::GetInterlatePoint(&point, t, &a, &b);
    return point;
}

/// The same direction as `angle`, in degrees, at most half a turn from `reference`.
float nearestTurn(float angle, float reference) { return angle - 360.0f * std::round((angle - reference) / 360.0f); }

/// Moves `control`, the control point next to `inner` of a curve from there to `far`, to where the centripetal
/// Catmull-Rom curve through `outer`, `inner` and `far` has it (Yuksel, Schaefer, Keyser: Parameterization and
/// Applications of Catmull-Rom Curves, 2011).
void bend(XCStrokePoint& control, const XCStrokePoint& outer, const XCStrokePoint& inner, const XCStrokePoint& far) {
    const double d1 = XCStroke::GetPointLength(&outer, &inner);
    const double d2 = XCStroke::GetPointLength(&inner, &far);
    if (d1 <= 0.0 || d2 <= 0.0)
        return;
    const double root = std::sqrt(d1 * d2);
    const double weight = 2.0 * d1 + 3.0 * root + d2;
    const double divisor = 3.0 * (d1 + root);
    control.x = (d1 * far.x - d2 * outer.x + weight * inner.x) / divisor;
    control.y = (d1 * far.y - d2 * outer.y + weight * inner.y) / divisor;
}

} // namespace

StrokeShaper::StrokeShaper(PathSink& sink, const PathMapping& mapping, Joining joining, const TraceFormat& format)
    : m_sink(sink), m_mapping(mapping), m_joining(joining),
      m_recorded(format.has(ChannelKind::Force) || format.has(ChannelKind::Time)),
      m_timed(format.has(ChannelKind::Time)) {}

void StrokeShaper::push(const PenSample& sample) {
    Node node = nodeOf(sample);
    m_last = sample;
    m_hasSample = true;
    if (m_nodes.empty()) {
        m_nodes.push_back(node);
        return;
    }
    Node& previous = m_nodes.back();
    node.angleA = nearestTurn(node.angleA, previous.angleA);
    if (node.x == previous.x && node.y == previous.y) {
        node.pressure = std::max(node.pressure, previous.pressure);
        previous = node;
        return;
    }
    m_nodes.push_back(node);
    emitReady(cnAhead);
}

void StrokeShaper::finish() {
    if (m_nodes.size() == 1)
        emitTap();
    else
        emitReady(1);
    m_nodes.clear();
    m_next = 0;
    m_started = m_hasSample = false;
}

StrokeShaper::Node StrokeShaper::nodeOf(const PenSample& sample) {
    constexpr float cnUprightElevation = 90.0f;
    Node node;
    node.x = sample.x;
    node.y = sample.y;
    node.pressure = std::clamp(sample.force, 0.0f, 1.0f);
    node.angleA = sample.azimuth;
    node.angleB = sample.lean;
    node.auxScale = 1.0f - sample.lean / cnUprightElevation;
    node.speed = m_timed ? smoothedSpeed(sample) : 0.0f;
    return node;
}

/// Recorders give whole milliseconds and sometimes two samples at once: a running average takes the jitter out.
float StrokeShaper::smoothedSpeed(const PenSample& sample) {
    if (!m_hasSample) {
        m_lastTimed = sample;
        return m_speed = 0.0f;
    }
    constexpr double cnLongestPause = 1.0e6;
    const int time = static_cast<int>(std::clamp(sample.time - m_lastTimed.time, -1.0, cnLongestPause));
    if (time < 1) {
        if (time < 0)
            m_lastTimed = sample;
        return m_speed;
    }
    const double way = std::hypot(sample.x - m_lastTimed.x, sample.y - m_lastTimed.y);
    const float velocity = static_cast<float>(XCStroke::GetStrokeVelocity(way, time));
    m_lastTimed = sample;
    return m_speed += (velocity - m_speed) * cnSpeedWeight;
}

/// Emits the curves that have `lookahead` nodes after their start.
void StrokeShaper::emitReady(std::size_t lookahead) {
    while (m_next + lookahead < m_nodes.size()) {
        emitCurve(m_next++);
        if (m_next > cnBehind) {
            m_nodes.pop_front();
            --m_next;
        }
    }
}

void StrokeShaper::emitCurve(std::size_t i) {
    const Node start = smoothed(i);
    const Node end = smoothed(i + 1);
    Node control1 = between(start, end, 1.0 / 3.0);
    Node control2 = between(start, end, 2.0 / 3.0);
    if (m_joining == Joining::Smooth && !isCorner(i))
        bend(control1, smoothed(i - 1), start, end);
    if (m_joining == Joining::Smooth && !isCorner(i + 1))
        bend(control2, smoothed(i + 2), end, start);
    if (!m_started)
        m_sink.start(mapped(start));
    m_started = true;
    m_sink.curve(mapped(control1), mapped(control2), mapped(end));
}

void StrokeShaper::emitTap() {
    const XCStrokePoint place = mapped(m_nodes.front());
    XCStrokePoint beside = place;
    beside.x += cnTapLength;
    m_sink.start(place);
    m_sink.curve(between(place, beside, 1.0 / 3.0), between(place, beside, 2.0 / 3.0), beside);
}

/// Node i with a little of its neighbours' middle, except at turns, which are meant, and at the ends.
StrokeShaper::Node StrokeShaper::smoothed(std::size_t i) const {
    Node node = m_nodes[i];
    if (!m_recorded || m_joining == Joining::Straight || i == 0 || i + 1 >= m_nodes.size())
        return node;
    const Node& before = m_nodes[i - 1];
    const Node& after = m_nodes[i + 1];
    node.pressure = 0.25f * before.pressure + 0.5f * node.pressure + 0.25f * after.pressure;
    if (turnAt(i) >= cnCorner && std::min(distance(i - 1, i), distance(i, i + 1)) >= cnMinCornerStep)
        return node;
    const double dx = 0.25 * (before.x + after.x) - 0.5 * node.x;
    const double dy = 0.25 * (before.y + after.y) - 0.5 * node.y;
    const double way = std::hypot(dx, dy);
    const double share = way > cnMaxEvening ? cnMaxEvening / way : 1.0;
    node.x += dx * share;
    node.y += dy * share;
    return node;
}

/// Whether the path breaks at node i: at its ends, where the pen comes back, and at a turn that stands out between two
/// straighter pieces. Turns all along a curve are a curve.
bool StrokeShaper::isCorner(std::size_t i) const {
    if (i == 0 || i + 1 >= m_nodes.size())
        return true;
    if (m_recorded && std::min(distance(i - 1, i), distance(i, i + 1)) < cnMinCornerStep)
        return false;
    const double turn = turnAt(i);
    return turn > cnReversal || (turn > cnCorner && turn > 2.0 * std::max(turnAt(i - 1), turnAt(i + 1)));
}

/// The change of direction at node i in radians, 0 to pi; 0 at the ends.
double StrokeShaper::turnAt(std::size_t i) const {
    if (i == 0 || i + 1 >= m_nodes.size())
        return 0.0;
    const double x1 = m_nodes[i].x - m_nodes[i - 1].x;
    const double y1 = m_nodes[i].y - m_nodes[i - 1].y;
    const double x2 = m_nodes[i + 1].x - m_nodes[i].x;
    const double y2 = m_nodes[i + 1].y - m_nodes[i].y;
    return std::abs(std::atan2(x1 * y2 - y1 * x2, x1 * x2 + y1 * y2));
}

double StrokeShaper::distance(std::size_t a, std::size_t b) const {
    return std::hypot(m_nodes[b].x - m_nodes[a].x, m_nodes[b].y - m_nodes[a].y);
}

XCStrokePoint StrokeShaper::mapped(const Node& node) const {
    XCStrokePoint point = node;
    point.x = (node.x - m_mapping.originX) * m_mapping.scale;
    point.y = (node.y - m_mapping.originY) * m_mapping.scale;
    return point;
}

} // namespace ovwpaint
