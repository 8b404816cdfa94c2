#include "ovwcmn/xcpatterndraw.h"

#include "brush/bendstate.h"
#include "brush/methodkind.h"
#include "brush/plotpattern.h"
#include "brush/stampbounds.h"
#include "ovwcmn/ovwhooks.h"
#include "ovwcmn/vxwutl.h"
#include "ovwcmn/xccoloraverage.h"
#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcfastpixelmixer.h"
#include "ovwcmn/xcpattern.h"
#include "ovwcmn/xcpatterndrawparam.h"
#include "ovwcmn/xcplotgauss.h"
#include "ovwcmn/xcvoffscreen.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <new>

namespace {

using ovw::brush::isSmudging;
using ovw::brush::unite;

/// Interval of a bending brush, logical units.
constexpr double cnBendInterval = 4.0;
/// A segment shorter than this has one stamp position at most.
constexpr double cnPointLength = 1e-8;
/// The least advance along a segment: keeps one of absurd length from being walked for hours.
constexpr double cnLeastAdvance = 1.0 / (1 << 20);

int proceedUnlessAborted() { return vxAbort() == 0; }

XCRect scaled(const XCRect& rect, double factor) {
    const auto edge = [factor](int value) { return ovw::truncateToInt(value * factor); };
    return {edge(rect.left), edge(rect.top), edge(rect.right), edge(rect.bottom)};
}

XCRectD scaled(const XCRectD& rect, double factor) {
    return {rect.left * factor, rect.top * factor, rect.right * factor, rect.bottom * factor};
}

} // namespace

/// The pixels painted so far by a part of a stroke; adds them, in logical units, to the bounds of the whole when it
/// goes, even when the stroke is cancelled in the middle.
class XCPatternDraw::PaintedPart {
public:
    PaintedPart(const XCPatternDraw& engine, XCRect& whole) : m_engine(engine), m_whole(whole) {}
    PaintedPart(const PaintedPart&) = delete;
    PaintedPart& operator=(const PaintedPart&) = delete;
    ~PaintedPart() { unite(m_whole, m_engine.RectOffscrToLog(pixels)); }

    XCRect pixels;

private:
    const XCPatternDraw& m_engine;
    XCRect& m_whole;
};

XCPatternDraw::XCPatternDraw() : m_abortProc(proceedUnlessAborted) {}
XCPatternDraw::~XCPatternDraw() = default;

void XCPatternDraw::SetOffscreen(const PDOFFSCREENINFO& info, XCPatternDrawMethod* method) {
    m_info = info;
    if (m_info.scale == 0.0)
        m_info.scale = 1.0;
    m_logToOffscr = 1.0 / m_info.scale;
    m_divSCurveLength = 1;
    m_method = method;
}

void XCPatternDraw::resetStroke() {
    m_strokeLength = 0.0;
    m_plottedLength = 0.0;
    m_nextInterval = 0.0;
    m_direction = 0.0;
    m_positionCount = 0;
    m_dirtyRect.SetRectEmpty();
    m_isDrawing = 1;
    m_isStopped = 0;
    m_stopCode = 0;
}

int XCPatternDraw::BeginDraw(const XCPatternDrawParam* param) {
    m_vertices.Clear();
    m_param = std::make_unique<XCPatternDrawParam>(*param);
    m_param->InitRandom();
    m_colorAverage.reset();
    if (m_method && isSmudging(m_method->GetMethodKind()))
        m_colorAverage = std::make_unique<XCColorAverage>();
    if (!m_plotGauss)
        m_plotGauss = std::make_unique<XCPlotGauss>();
    resetStroke();
    m_currentPattern = nullptr;
    chooseBendPattern();
    return 1;
}

void XCPatternDraw::ReStartDraw() {
    if (!m_param)
        return;
    resetStroke();
    m_param->ResetPatternState();
    chooseBendPattern();
    if (m_colorAverage) {
        m_colorAverage->ClearAverageColor();
        m_colorAverage->StartCountAverage();
    }
}

void XCPatternDraw::EndDraw(XCRect* changed) {
    if (!m_isDrawing)
        return;
    if (m_isStopped)
        xcwDebugMessage("A stroke was stopped.\n");
    m_isDrawing = 0;
    m_isStopped = 0;
    m_param.reset();
    m_currentPattern = nullptr;
    m_bend.reset();
    m_vertices = {};
    m_colorAverage.reset();
    if (changed)
        *changed = m_dirtyRect;
}

bool XCPatternDraw::isReady() const {
    return m_isDrawing && !m_isStopped && m_method && m_method->GetOffscreen() && m_param && m_plotGauss;
}

bool XCPatternDraw::abortStroke() const {
    if (m_isStopped || (m_abortProc && m_abortProc() == 0))
        return true;
    return m_abortFlag && std::atomic_ref(*m_abortFlag).load(std::memory_order_relaxed) != 0;
}

void XCPatternDraw::throwIfAborted() const {
    if (abortStroke())
        xcThrowError(ovw::foundation::cnCodeCancelled);
}

/// Whether a first point alone cannot be drawn, because the direction of the stroke is needed.
bool XCPatternDraw::needsDirection() const {
    return m_param->IsBendPattern() || m_param->IsUseParamControl(cnRotateDirection);
}

XCStrokePoint XCPatternDraw::toPixels(const XCStrokePoint& point) const {
    XCStrokePoint pixelPoint = point;
    pixelPoint.x = ValueLogToOffscrD(point.x);
    pixelPoint.y = ValueLogToOffscrD(point.y);
    return pixelPoint;
}

void XCPatternDraw::stop(int code) {
    m_isStopped = 1;
    m_stopCode = code;
}

void XCPatternDraw::ProcessAbort() { stop(ovw::foundation::cnCodeCancelled); }

int XCPatternDraw::DrawStroke(XCRect* changed, XCStroke* stroke, int consume) {
    if (changed)
        changed->SetRectEmpty();
    if (!isReady() || !stroke)
        return 0;
    XCRect painted;
    try {
        drawVertices(painted, *stroke, consume);
    } catch (const XCException& error) {
        stop(error.GetErrorCode());
    } catch (const std::bad_alloc&) {
        stop(ovw::foundation::cnCodeNoMemory);
    } catch (...) { // an application's tip may throw what it likes
        m_vertices.Clear();
        unite(m_dirtyRect, painted);
        throw;
    }
    m_vertices.Clear();
    if (changed)
        *changed = painted;
    unite(m_dirtyRect, painted);
    return !painted.IsRectNull();
}

void XCPatternDraw::drawVertices(XCRect& painted, XCStroke& stroke, int consume) {
    double length = 0.0;
    stroke.CreateVertex(m_vertices, &length, consume);
    for (int i = 0; i + 1 < m_vertices.GetSize(); i++) {
        throwIfAborted();
        drawSegment(painted, m_vertices[i], m_vertices[i + 1]);
    }
}

void XCPatternDraw::drawSegment(XCRect& painted, const XCStrokePoint& a, const XCStrokePoint& b) {
    PaintedPart part(*this, painted);
    const double length = XCStroke::GetPointLength(&a, &b);
    const bool isFirst = m_positionCount == 0;
    if (isFirst && m_colorAverage)
        drawPosition(part.pixels, toPixels(a), 1.0);
    const double keptDirection = m_direction;
    if (needsDirection()) {
        if (isFirst) {
            m_positionCount = 1;
            return;
        }
        m_direction = XCStroke::GetStrokeDirection(&a, &b, m_direction, m_positionCount < 2);
    }
    if (m_param->IsBendPattern()) {
        throwIfAborted();
        const double startDirection = m_positionCount == 1 ? m_direction : keptDirection;
        m_positionCount++;
        drawBendedSegment(part.pixels, toPixels(a), toPixels(b), startDirection, m_direction);
    } else if (std::isfinite(length)) {
        walkSegment(part.pixels, a, b, length);
    }
    if (std::isfinite(length))
        m_strokeLength += length;
}

/// Where on the segment the next stamp position lies: 0 at its start, 1 at its end.
double XCPatternDraw::startOfSegment(double length) const {
    if (m_positionCount == 0)
        return 0.0;
    if (length == 0.0)
        return 1.0;
    return std::max((m_nextInterval - (m_strokeLength - m_plottedLength)) / length, 0.0);
}

void XCPatternDraw::walkSegment(XCRect& painted, const XCStrokePoint& a, const XCStrokePoint& b, double length) {
    for (double t = startOfSegment(length); t < 1.0;) {
        throwIfAborted();
        XCStrokePoint point;
        XCStroke::GetInterlatePoint(&point, t, &a, &b);
        point = toPixels(point);
        double intervalRatio = 1.0;
        const double interval = m_param->GetNextInterval(&point, intervalRatio, m_info.scale);
        drawPosition(painted, point, intervalRatio);
        m_positionCount++;
        m_plottedLength += m_nextInterval;
        m_nextInterval = interval;
        // An interval of 0 (continuous brushes) leaves one position to a segment.
        const bool isLast = length < cnPointLength || interval <= 0.0;
        t += isLast ? 1.0 : std::max(interval / length, cnLeastAdvance);
    }
}

/// The stamps of one position.
void XCPatternDraw::drawPosition(XCRect& painted, const XCStrokePoint& pixelPoint, double intervalRatio) {
    m_param->BeginPlotParam(&pixelPoint, intervalRatio);
    int noColor = 0;
    const std::uint32_t color = m_param->MixDrawColor(m_colorAverage.get(), &pixelPoint, noColor);
    PLOTPATTERNPARAM stamp;
    while (m_param->NextPlotParam(stamp, &pixelPoint, m_direction)) {
        stamp.color = color;
        XCRect changed;
        if (PlotPattern(&changed, stamp, pixelPoint.pressure, noColor))
            unite(painted, changed);
    }
    m_param->EndPlotParam();
}

double XCPatternDraw::DrawSinglePattern(XCRect* changed, const XCStrokePoint* point, double direction) {
    if (changed)
        changed->SetRectEmpty();
    if (!isReady())
        return 0.0;
    XCRect painted;
    double interval = 0.0;
    try {
        interval = drawSinglePosition(painted, toPixels(*point), direction);
    } catch (...) {
        unite(m_dirtyRect, painted);
        throw;
    }
    if (changed)
        *changed = painted;
    unite(m_dirtyRect, painted);
    return interval;
}

/// @param painted logical
double XCPatternDraw::drawSinglePosition(XCRect& painted, const XCStrokePoint& pixelPoint, double direction) {
    PaintedPart part(*this, painted);
    const bool isFirst = m_positionCount == 0;
    if (isFirst && m_colorAverage && m_param->IsUseMixColorParam())
        drawPosition(part.pixels, pixelPoint, 1.0); // lets a smudging brush pick up its first colour
    const double startDirection = m_positionCount == 1 ? direction : m_direction;
    m_direction = direction;
    double interval = cnBendInterval;
    if (m_param->IsBendPattern()) {
        if (!isFirst)
            drawBendedSegment(part.pixels, m_lastPoint, pixelPoint, startDirection, direction);
        m_lastPoint = pixelPoint;
    } else {
        double intervalRatio = 1.0;
        interval = m_param->GetNextInterval(&pixelPoint, intervalRatio, m_info.scale);
        if (!isFirst || !m_param->IsUseParamControl(cnRotateDirection))
            drawPosition(part.pixels, pixelPoint, intervalRatio);
    }
    m_positionCount++;
    m_nextInterval = interval;
    return interval;
}

int XCPatternDraw::PlotPattern(XCRect* changed, const PLOTPATTERNPARAM& stamp, float pressure, int noColor) {
    if (!isReady() || !stamp.pattern || stamp.opacity == 0)
        return 0;
    const ovw::brush::StampSetup setup(*m_method, stamp);
    XCFastPixelMixer mixer;
    setup.configure(mixer, *m_plotGauss, m_colorAverage.get(), noColor);
    return stamp.pattern->Draw(changed, m_method->GetOffscreen(), &mixer, {stamp.x, stamp.y}, setup.size(), pressure,
                               setup.antialias());
}

int XCPatternDraw::ValueLogToOffscr(int value) const { return ovw::truncateToInt(value * m_logToOffscr); }
int XCPatternDraw::ValueOffscrToLog(int value) const { return ovw::truncateToInt(value * m_info.scale); }
XCPoint XCPatternDraw::PosLogToOffscr(const XCPoint& position) const { return position * m_logToOffscr; }
XCPoint XCPatternDraw::PosOffscrToLog(const XCPoint& position) const { return position * m_info.scale; }
XCPointD XCPatternDraw::PosLogToOffscrD(const XCPointD& position) const { return position * m_logToOffscr; }
XCPointD XCPatternDraw::PosOffscrToLogD(const XCPointD& position) const { return position * m_info.scale; }
XCRect XCPatternDraw::RectLogToOffscr(const XCRect& rect) const { return scaled(rect, m_logToOffscr); }
XCRect XCPatternDraw::RectOffscrToLog(const XCRect& rect) const { return scaled(rect, m_info.scale); }
XCRectD XCPatternDraw::RectLogToOffscrD(const XCRectD& rect) const { return scaled(rect, m_logToOffscr); }
XCRectD XCPatternDraw::RectOffscrToLogD(const XCRectD& rect) const { return scaled(rect, m_info.scale); }
