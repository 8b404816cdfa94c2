#include "painter.h"

#include "failure.h"
#include "interrupt.h"

#include "ovwcmn/xcvirtualmemory.h"

#include <algorithm>
#include <cmath>

namespace ovwpaint {

namespace {

/// Curves handed to the engine at once: bounds its vertex list and the time between two looks at the progress.
constexpr int cnBatch = 256;

/// Tells whether the engine still takes strokes: a stopped one does not ask for their vertices.
class ProbeStroke final : public XCStroke {
public:
    void FirstStore(const XCStrokePoint&) override {}
    void Store(const XCStrokePoint&) override {}
    void Clear() override {}
    void CreateVertex(XCTArray<XCStrokePoint>&, double*, int) override { m_asked = true; }
    bool asked() const { return m_asked; }

private:
    bool m_asked = false;
};

int toPixel(double units) {
    constexpr double cnLimit = 1.0e9;
    return static_cast<int>(std::clamp(std::floor(units / Painter::cnUnitsPerPixel), -cnLimit, cnLimit));
}

} // namespace

Painter::Painter(Canvas& canvas, const Brush& brush, Materials& materials, Joining joining)
    : m_canvas(canvas), m_brush(brush), m_reach(brush.reach() * cnUnitsPerPixel),
      m_stroke(joining == Joining::Straight ? static_cast<XCStroke&>(m_polyline) : m_bezier) {
    m_brush.applyTo(m_param);
    materials.applyTo(m_param);
    materials.applyTo(m_method);
    PDOFFSCREENINFO info;
    info.scale = cnUnitsPerPixel;
    info.clip = canvas.image().GetRect();
    m_draw.SetOffscreen(info, &m_method);
    m_draw.SetAbortFlag(interruptFlag());
}

Painter::~Painter() {
    if (m_painting) {
        m_draw.EndDraw(nullptr);
        m_method.EndMethod();
    }
}

void Painter::start(const XCStrokePoint& point) {
    beginStroke();
    m_stroke.FirstStore(point);
    // A brush that waits for a direction spends the first two vertices on it. Curves begin with their start twice, too.
    if (&m_stroke == &m_polyline)
        m_stroke.Store(point);
    m_end = point;
}

/// The engine's own switch for painting without a cache would also turn the method 1 into 0; leaving the reference out
/// keeps the method.
void Painter::beginStroke() {
    m_method.SetOffscreen(&m_canvas.image(), 1, m_brush.usesCache() ? m_canvas.before() : nullptr, &m_param,
                          m_brush.method.methodKind, m_brush.method.cacheKind, m_brush.method.methodFlag,
                          m_brush.method.densityFlag, m_brush.method.lowDepthSoft);
    m_method.BeginMethod();
    m_draw.BeginDraw(&m_param);
    m_painting = true;
}

void Painter::curve(const XCStrokePoint& control1, const XCStrokePoint& control2, const XCStrokePoint& end) {
    prepareAlong(m_end, control1, control2, end);
    if (&m_stroke == &m_bezier) {
        m_stroke.Store(control1);
        m_stroke.Store(control2);
    }
    m_stroke.Store(end);
    m_end = end;
    if (++m_pending == cnBatch)
        flush();
}

/// Prepares the blocks that the brush meets on its way along the curve a to d: within the bounds of its control points,
/// halved (de Casteljau) until these are small, so that a long diagonal does not prepare a whole square.
void Painter::prepareAlong(const XCStrokePoint& a, const XCStrokePoint& b, const XCStrokePoint& c,
                           const XCStrokePoint& d) {
    constexpr double cnSmall = XCVOffscreen::cnBlockSize * cnUnitsPerPixel;
    const auto [left, right] = std::minmax({a.x, b.x, c.x, d.x});
    const auto [top, bottom] = std::minmax({a.y, b.y, c.y, d.y});
    if (std::min(right - left, bottom - top) <= cnSmall) {
        m_canvas.prepare(XCRect(toPixel(left - m_reach), toPixel(top - m_reach), toPixel(right + m_reach) + 1,
                                toPixel(bottom + m_reach) + 1));
        return;
    }
    const auto middle = [](const XCStrokePoint& p, const XCStrokePoint& q) {
        XCStrokePoint point;
        XCStroke::GetInterlatePoint(&point, 0.5, &p, &q);
        return point;
    };
    const XCStrokePoint ab = middle(a, b), bc = middle(b, c), cd = middle(c, d);
    const XCStrokePoint abc = middle(ab, bc), bcd = middle(bc, cd);
    const XCStrokePoint half = middle(abc, bcd);
    prepareAlong(a, ab, abc, half);
    prepareAlong(half, bcd, cd, d);
}

void Painter::flush() {
    m_draw.DrawStroke(nullptr, &m_stroke, 1);
    m_pending = 0;
    throwIfStopped();
}

/// The engine keeps errors to itself and stops. What stopped it is most likely still there: ask the store.
void Painter::throwIfStopped() {
    throwIfInterrupted();
    ProbeStroke probe;
    m_draw.DrawStroke(nullptr, &probe, 0);
    if (probe.asked())
        return;
    constexpr std::uint32_t cnLargestBlock = 262144;
    xcGetVirtualMemory()->Free(xcGetVirtualMemory()->Allocate(cnLargestBlock));
    throw Failure("painting stopped: not enough memory or space in the swap folder");
}

void Painter::endStroke() {
    if (!m_painting)
        return;
    // A curve's end only comes out as the start of the next curve: this one of no length.
    if (&m_stroke == &m_bezier) {
        for (int i = 0; i < 3; ++i)
            m_stroke.Store(m_end);
    }
    flush();
    XCRect changed;
    m_draw.EndDraw(&changed);
    m_method.EndMethod();
    m_painting = false;
    m_canvas.settle(XCRect(toPixel(changed.left) - 1, toPixel(changed.top) - 1, toPixel(changed.right) + 2,
                           toPixel(changed.bottom) + 2));
}

} // namespace ovwpaint
