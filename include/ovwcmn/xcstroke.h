#ifndef OVWCMN_XCSTROKE_H
#define OVWCMN_XCSTROKE_H

/// @file
/// Strokes: pen samples in, the vertices that the drawing engine walks along out.

#include <array>

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/xcarray.h"

class XCRect;

/// One pen sample, and one vertex of a stroke. A plain value.
struct XCStrokePoint {
    double x = 0.0;        ///< logical units
    double y = 0.0;        ///< logical units
    float pressure = 1.0f; ///< 0 to 1
    float angleA = 0.0f;   ///< first pen angle, degrees
    float auxScale = 1.0f; ///< second pen scalar, 0 to 1
    float angleB = 0.0f;   ///< second pen angle, degrees
    float speed = 0.0f;    ///< 0 to 1, as GetStrokeVelocity gives it
};

/// A brush gesture that is being collected: `FirstStore` at pen-down, `Store` for every further sample, and
/// `CreateVertex` as often as the engine draws. Owns its samples. Growing may throw XCException (out of memory); the
/// stroke then keeps what it held. One thread at a time.
class OVWCMN_API XCStroke {
public:
    virtual ~XCStroke();
    /// Empties the stroke and begins it at the point.
    virtual void FirstStore(const XCStrokePoint& point) = 0;
    /// Goes on to the point.
    virtual void Store(const XCStrokePoint& point) = 0;
    /// Empties the stroke.
    virtual void Clear() = 0;
    /// Appends the vertices of what is stored. `length` (may be null) receives their logical length. With `consume` the
    /// samples are used up and the next call starts with a copy of the last vertex handed out; without it they stay.
    virtual void CreateVertex(XCTArray<XCStrokePoint>& vertices, double* length, int consume) = 0;

    /// All seven fields of a + (b - a) * t; t is not clamped. `out` may be one of the ends.
    static void GetInterlatePoint(XCStrokePoint* out, double t, const XCStrokePoint* a, const XCStrokePoint* b);
    static double GetPointLength(const XCStrokePoint* a, const XCStrokePoint* b); ///< logical units
    /// The drawing direction from a to b in radians, 0 to 2 pi: up is 0, right pi / 2, down pi. It follows `previous`
    /// by at most one degree a logical unit, except for turns above 90 degrees; `raw` switches that smoothing off.
    static double GetStrokeDirection(const XCStrokePoint* a, const XCStrokePoint* b, double previous, int raw);
    /// distance / time, at most 1; 0 when no time passed.
    static double GetStrokeVelocity(double distance, int time);

protected:
    XCStroke() = default;
    XCStroke(const XCStroke&) = default;
    XCStroke& operator=(const XCStroke&) = default;
};

/// A polyline: the samples are the vertices.
class OVWCMN_API XCLinerStroke final : public XCStroke {
public:
    ~XCLinerStroke() override;
    void FirstStore(const XCStrokePoint& point) override;
    void Store(const XCStrokePoint& point) override;
    void Clear() override;
    /// The length leaves out the way from the held point to the first sample.
    void CreateVertex(XCTArray<XCStrokePoint>& vertices, double* length, int consume) override;

private:
    XCTArray<XCStrokePoint> m_samples;
    int m_hasHeldPoint = 0;
    XCStrokePoint m_heldPoint; ///< the last vertex that a consuming CreateVertex handed out
};

/// Consecutive cubic Bézier segments: after `FirstStore` the samples come in triples (control, control, end), and all
/// seven fields of a sample follow the curve. Vertices lie about 5 logical units apart; the end of a segment appears as
/// the start of the next one only.
class OVWCMN_API XCBezierStroke final : public XCStroke {
public:
    ~XCBezierStroke() override;
    void FirstStore(const XCStrokePoint& point) override;
    void Store(const XCStrokePoint& point) override;
    void Clear() override;
    /// Consuming drops a triple that is not complete; the next one goes on from the last end point.
    void CreateVertex(XCTArray<XCStrokePoint>& vertices, double* length, int consume) override;
    /// Replaces the stroke by an S-shaped sample that previews a brush in the rectangle.
    void CreatePreview(const XCRect& area);

private:
    static constexpr int cnChannels = 7;
    using Channels = std::array<double, cnChannels>;
    /// The four control values of every channel.
    struct Segment {
        std::array<Channels, 4> control;
    };

    static Channels channelsOf(const XCStrokePoint& point);
    static double evaluate(const Segment& segment, int channel, double t);
    static XCStrokePoint vertexAt(const Segment& segment, double t);
    static double lengthOf(const Segment& segment);
    static double appendVertices(const Segment& segment, XCTArray<XCStrokePoint>& vertices);

    XCTArray<Segment> m_segments;
    Channels m_lastEnd{};
    std::array<XCStrokePoint, 2> m_buffered;
    int m_bufferedCount = 0;
    int m_hasHeldPoint = 0;
    XCStrokePoint m_heldPoint;
};

#endif // OVWCMN_XCSTROKE_H
