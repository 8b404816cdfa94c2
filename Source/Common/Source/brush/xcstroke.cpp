#include "ovwcmn/xcstroke.h"

#include "ovwcmn/vxmath.h"
#include "ovwcmn/vxwutl.h"
#include "ovwcmn/xcgeometry.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double cnDegree = 2.0 * std::numbers::pi / 360.0;
/// Turns up to this angle count as wobble of the hand.
constexpr double cnWobble = 5.0 * cnDegree;
constexpr double cnSharpTurn = std::numbers::pi / 2.0;

/// Distance of Bézier vertices in logical units.
constexpr double cnVertexSpacing = 5.0;
/// Chords that a segment's length is estimated with.
constexpr int cnChords = 8;
/// Keeps a segment of absurd length from filling the memory.
constexpr int cnMaxSegmentVertices = 1 << 20;

/// How many of 0, step, 2 * step, ... lie below 1.
int stepsBelowOne(double step) {
    int count = static_cast<int>(1.0 / step);
    while (count * step < 1.0)
        count++;
    while (count > 1 && (count - 1) * step >= 1.0)
        count--;
    return count;
}

} // namespace

XCStroke::~XCStroke() = default;

void XCStroke::GetInterlatePoint(XCStrokePoint* out, double t, const XCStrokePoint* a, const XCStrokePoint* b) {
    const XCStrokePoint from = *a;
    const XCStrokePoint to = *b;
    const auto between = [t](double start, double end) { return start + (end - start) * t; };
    const auto betweenF = [&](float start, float end) { return static_cast<float>(between(start, end)); };
    out->x = between(from.x, to.x);
    out->y = between(from.y, to.y);
    out->pressure = betweenF(from.pressure, to.pressure);
    out->angleA = betweenF(from.angleA, to.angleA);
    out->auxScale = betweenF(from.auxScale, to.auxScale);
    out->angleB = betweenF(from.angleB, to.angleB);
    out->speed = betweenF(from.speed, to.speed);
}

double XCStroke::GetPointLength(const XCStrokePoint* a, const XCStrokePoint* b) {
    return vxPointLength(a->x, a->y, b->x, b->y);
}

double XCStroke::GetStrokeDirection(const XCStrokePoint* a, const XCStrokePoint* b, double previous, int raw) {
    if (a->x == b->x && a->y == b->y)
        return previous;
    const double current = vxRotNormal(std::numbers::pi / 2.0 - vxRotCalc(a->x, a->y, b->x, b->y));
    if (raw)
        return current;
    const double turn = vxRotOffCalc(previous, current);
    if (std::abs(turn) > cnSharpTurn)
        return current;
    if (std::abs(turn) <= cnWobble)
        return previous;
    const int degrees = ovw::truncateToInt(std::abs(turn) * 360.0 / (2.0 * std::numbers::pi));
    const int followed = std::clamp(ovw::truncateToInt(GetPointLength(a, b)), 1, std::max(degrees, 1));
    return vxRotNormal(previous + std::copysign(followed * cnDegree, turn));
}

double XCStroke::GetStrokeVelocity(double distance, int time) {
    return time < 1 ? 0.0 : std::clamp(distance / time, 0.0, 1.0);
}

XCLinerStroke::~XCLinerStroke() = default;

void XCLinerStroke::FirstStore(const XCStrokePoint& point) {
    Clear();
    m_samples.PushBack(point);
}

void XCLinerStroke::Store(const XCStrokePoint& point) { m_samples.PushBack(point); }

void XCLinerStroke::Clear() {
    m_samples.Clear();
    m_hasHeldPoint = 0;
}

void XCLinerStroke::CreateVertex(XCTArray<XCStrokePoint>& vertices, double* length, int consume) {
    if (m_hasHeldPoint)
        vertices.PushBack(m_heldPoint);
    const int count = m_samples.GetSize();
    double total = 0.0;
    for (int i = 0; i < count; i++) {
        vertices.PushBack(m_samples[i]);
        if (i > 0)
            total += GetPointLength(&m_samples[i - 1], &m_samples[i]);
    }
    if (consume && count > 0) {
        m_heldPoint = vertices[vertices.GetSize() - 1];
        m_hasHeldPoint = 1;
        m_samples.Clear();
    }
    if (length)
        *length = total;
}

XCBezierStroke::~XCBezierStroke() = default;

XCBezierStroke::Channels XCBezierStroke::channelsOf(const XCStrokePoint& point) {
    return {point.x, point.y, point.pressure, point.angleA, point.auxScale, point.angleB, point.speed};
}

double XCBezierStroke::evaluate(const Segment& segment, int channel, double t) {
    const double s0 = segment.control[0][channel];
    const double s1 = segment.control[1][channel];
    const double s2 = segment.control[2][channel];
    const double s3 = segment.control[3][channel];
    if (s1 == s0 && s2 == s1 && s3 == s2)
        return s0;
    const double u = 1.0 - t;
    return u * u * u * s0 + 3.0 * u * u * t * s1 + 3.0 * u * t * t * s2 + t * t * t * s3;
}

XCStrokePoint XCBezierStroke::vertexAt(const Segment& segment, double t) {
    Channels at;
    for (int channel = 0; channel < cnChannels; channel++)
        at[channel] = evaluate(segment, channel, t);
    const auto narrow = [&at](int channel) { return static_cast<float>(at[channel]); };
    return {at[0], at[1], narrow(2), narrow(3), narrow(4), narrow(5), narrow(6)};
}

double XCBezierStroke::lengthOf(const Segment& segment) {
    double total = 0.0;
    double x = segment.control[0][0];
    double y = segment.control[0][1];
    for (int k = 1; k <= cnChords; k++) {
        const double t = static_cast<double>(k) / cnChords;
        const double nextX = evaluate(segment, 0, t);
        const double nextY = evaluate(segment, 1, t);
        total += std::sqrt((nextX - x) * (nextX - x) + (nextY - y) * (nextY - y));
        x = nextX;
        y = nextY;
    }
    return std::isfinite(total) ? total : 0.0;
}

/// @return the segment's length
double XCBezierStroke::appendVertices(const Segment& segment, XCTArray<XCStrokePoint>& vertices) {
    const double length = lengthOf(segment);
    if (length == 0.0) {
        vertices.PushBack(vertexAt(segment, 0.0));
        return 0.0;
    }
    const double step = std::max(cnVertexSpacing / length, 1.0 / cnMaxSegmentVertices);
    const int count = stepsBelowOne(step);
    const int first = vertices.GetSize();
    vertices.SetSize(first + count); // at once: the array grows in small steps
    for (int i = 0; i < count; i++)
        vertices[first + i] = vertexAt(segment, i * step);
    return length;
}

void XCBezierStroke::FirstStore(const XCStrokePoint& point) {
    Clear();
    m_lastEnd = channelsOf(point);
    // A segment without extent: it yields the start point as one vertex.
    m_segments.PushBack(Segment{{m_lastEnd, m_lastEnd, m_lastEnd, m_lastEnd}});
}

void XCBezierStroke::Store(const XCStrokePoint& point) {
    if (m_bufferedCount < 2) {
        m_buffered[m_bufferedCount] = point;
        m_bufferedCount++;
        return;
    }
    const Channels end = channelsOf(point);
    m_segments.PushBack(Segment{{m_lastEnd, channelsOf(m_buffered[0]), channelsOf(m_buffered[1]), end}});
    m_lastEnd = end;
    m_bufferedCount = 0;
}

void XCBezierStroke::Clear() {
    m_segments.Clear();
    m_bufferedCount = 0;
    m_hasHeldPoint = 0;
}

void XCBezierStroke::CreateVertex(XCTArray<XCStrokePoint>& vertices, double* length, int consume) {
    if (m_hasHeldPoint)
        vertices.PushBack(m_heldPoint);
    double total = 0.0;
    for (int i = 0; i < m_segments.GetSize(); i++)
        total += appendVertices(m_segments[i], vertices);
    if (consume && m_segments.GetSize() > 0) {
        m_heldPoint = vertices[vertices.GetSize() - 1];
        m_hasHeldPoint = 1;
        m_segments.Clear();
        m_bufferedCount = 0;
    }
    if (length)
        *length = total;
}

void XCBezierStroke::CreatePreview(const XCRect& area) {
    const int margin = area.Width() / 16;
    const int amplitude = std::min(area.Height() / 4, 20);
    const XCPoint center = area.CenterPoint();
    const auto sample = [](double x, double y, float pressure) {
        return XCStrokePoint{std::trunc(x), std::trunc(y), pressure, 0.0f, 1.0f, 0.0f, 0.0f};
    };
    const double above = center.y - amplitude * 0.5;
    const double below = center.y + amplitude * 0.5;
    const double highest = static_cast<double>(center.y) - amplitude;
    const double lowest = static_cast<double>(center.y) + amplitude;
    FirstStore(sample(static_cast<double>(area.left) + margin, below, 0.01f));
    Store(sample(0.4 * center.x, above, 0.4f));
    Store(sample(0.7 * center.x, highest, 0.8f));
    Store(sample(center.x, center.y, 1.0f));
    Store(sample(1.3 * center.x, lowest, 0.8f));
    Store(sample(1.6 * center.x, below, 0.4f));
    Store(sample(static_cast<double>(area.right) - margin, above, 0.01f));
}
