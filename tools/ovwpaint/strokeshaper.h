#ifndef OVWPAINT_STROKESHAPER_H
#define OVWPAINT_STROKESHAPER_H

/// @file
/// From pen samples to a smooth path.

#include "penformat.h"

#include "ovwcmn/xcstroke.h"

#include <deque>

namespace ovwpaint {

/// Receives a path: its start, then cubic Bézier curves, each going on from the end of the one before.
class PathSink {
public:
    virtual ~PathSink() = default;
    virtual void start(const XCStrokePoint& point) = 0;
    virtual void curve(const XCStrokePoint& control1, const XCStrokePoint& control2, const XCStrokePoint& end) = 0;

protected:
    PathSink() = default;
};

/// Where samples land: (sample - origin) * scale.
struct PathMapping {
    double originX = 0.0;
    double originY = 0.0;
    double scale = 1.0;
};

/// How samples are joined.
enum class Joining {
    Smooth, ///< curves through the samples, corners kept
    Straight
};

/// Turns the samples of a stroke into a path, with a delay of four samples and no list of them. Samples at one place
/// count once, with their largest force: a pen that rests paints one mark. A recording (samples with force or time) has
/// noise, of the device and of rounded coordinates, which is evened out by at most half a pixel.
/// angleA becomes the pen's azimuth, angleB its lean, auxScale how upright it is (1: upright or unknown), speed its
/// speed in pixels a millisecond, at most 1.
class StrokeShaper {
public:
    StrokeShaper(PathSink& sink, const PathMapping& mapping, Joining joining, const TraceFormat& format);

    void push(const PenSample& sample);
    /// Ends the stroke: the path reaches the last sample. A stroke at one place becomes a path of (almost) no length.
    void finish();

private:
    /// A sample as a point of the path, still in the drawing's units.
    using Node = XCStrokePoint;

    Node nodeOf(const PenSample& sample);
    float smoothedSpeed(const PenSample& sample);
    void emitReady(std::size_t lookahead);
    void emitCurve(std::size_t i);
    void emitTap();
    Node smoothed(std::size_t i) const;
    bool isCorner(std::size_t i) const;
    double turnAt(std::size_t i) const;
    double distance(std::size_t a, std::size_t b) const;
    XCStrokePoint mapped(const Node& node) const;

    PathSink& m_sink;
    const PathMapping m_mapping;
    const Joining m_joining;
    const bool m_recorded;
    const bool m_timed;
    std::deque<Node> m_nodes; ///< the samples around the next curve
    std::size_t m_next = 0;   ///< the node where the next curve starts
    bool m_hasSample = false;
    PenSample m_last;      ///< the sample before
    PenSample m_lastTimed; ///< the last sample at which the time had moved on
    float m_speed = 0.0f;
    bool m_started = false;
};

} // namespace ovwpaint

#endif // OVWPAINT_STROKESHAPER_H
