#ifndef OVWPAINT_PAINTER_H
#define OVWPAINT_PAINTER_H

/// @file
/// Paints paths with a brush.

#include "brush.h"
#include "canvas.h"
#include "materials.h"
#include "strokeshaper.h"

#include "ovwcmn/xcpatterndraw.h"

namespace ovwpaint {

/// A path in, paint on the canvas out. The path is in units of 1 / cnUnitsPerPixel pixels: the library's curves become
/// chords of five units, which must not show. Throws Interrupted when the user stops it, XCException and Failure when
/// the block store fails. A stroke begins with start() and ends with endStroke().
class Painter : public PathSink {
public:
    static constexpr double cnUnitsPerPixel = 4.0;

    /// @param brush with lengths in the canvas' pixels
    Painter(Canvas& canvas, const Brush& brush, Materials& materials, Joining joining);
    ~Painter() override;

    void start(const XCStrokePoint& point) override;
    void curve(const XCStrokePoint& control1, const XCStrokePoint& control2, const XCStrokePoint& end) override;
    /// Paints what is left of the stroke; nothing when none was started.
    void endStroke();

private:
    void beginStroke();
    void prepareAlong(const XCStrokePoint& a, const XCStrokePoint& b, const XCStrokePoint& c, const XCStrokePoint& d);
    void flush();
    void throwIfStopped();

    Canvas& m_canvas;
    const Brush m_brush;
    const double m_reach;
    XCPatternDrawParam m_param;
    XCPatternDrawMethod m_method;
    XCPatternDraw m_draw;
    XCBezierStroke m_bezier;
    XCLinerStroke m_polyline;
    XCStroke& m_stroke;
    XCStrokePoint m_end; ///< of the path so far
    int m_pending = 0;   ///< curves stored and not painted yet
    bool m_painting = false;
};

} // namespace ovwpaint

#endif // OVWPAINT_PAINTER_H
