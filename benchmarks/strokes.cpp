// Whole recorded strokes, painted sample by sample as a pen delivers them with brushes of ovwpaint, beside copying the
// rows of all their dabs.

#ifdef OVWBENCH_RECORDINGS

#include "dabcopy.h"
#include "duel.h"

#include "inkdocument.h"
#include "presets.h"

#include <ovwcmn/xcpatterndraw.h>

#include <algorithm>

namespace {

constexpr int cnSide = 2048;
/// Pixels a unit of the recordings: as for print.
constexpr double cnScale = 3.0;
constexpr std::uint32_t cnSeed = 1;

using Strokes = std::vector<std::vector<XCStrokePoint>>;

std::size_t sampleCount(const Strokes& strokes) {
    std::size_t count = 0;
    for (const auto& stroke : strokes)
        count += stroke.size();
    return count;
}

/// The strokes of a recording, moved into the image.
Strokes readRecording(const std::string& name) {
    ovwpaint::InkDocument document(std::string(OVWBENCH_RECORDINGS "/") + name + ".inkml");
    const ovwpaint::InkSurvey survey = document.survey();
    const double extent = std::max(survey.right - survey.left, survey.bottom - survey.top);
    const double scale = std::min(cnScale, cnSide * 0.9 / std::max(extent, 1.0));
    const double margin = cnSide * 0.05;
    Strokes strokes;
    for (const ovwpaint::Trace& trace : document.traces()) {
        strokes.emplace_back();
        ovwpaint::TraceDecoder decoder = document.decode(trace);
        for (ovwpaint::PenSample sample; decoder.next(sample);) {
            XCStrokePoint point;
            point.x = (sample.x - survey.left) * scale + margin;
            point.y = (sample.y - survey.top) * scale + margin;
            point.pressure = std::min(sample.force, 1.0f);
            strokes.back().push_back(point);
        }
    }
    return strokes;
}

/// A round tip that remembers what it stamped.
class RememberingTip : public XCCirclePattern {
public:
    int Draw(XCRect* changed, XCVOffscreen* image, XCFastPixelMixer* mixer, XCPointD position, float size,
             float pressure, int antialias) override {
        dabs.push_back({position.x, position.y, size * 0.5});
        return XCCirclePattern::Draw(changed, image, mixer, position, size, pressure, antialias);
    }

    std::vector<ovwbench::Dab> dabs;
};

/// A brush on a canvas.
class Painter {
public:
    Painter(ovwbench::Canvas& canvas, const ovwpaint::Brush& brush) {
        m_before.Create(&canvas.store(), cnSide, cnSide, 72.0);
        canvas.copyFirstPixelsTo(m_before);
        brush.applyTo(m_brush);
        const ovwpaint::BrushMethod& method = brush.method;
        m_method.SetOffscreen(&canvas.image(), 1, method.useCache ? &m_before : nullptr, &m_brush, method.methodKind,
                              method.cacheKind, method.methodFlag, method.densityFlag, method.lowDepthSoft);
        m_engine.SetOffscreen({}, &m_method);
    }

    void paint(const Strokes& strokes) {
        xcSetRandomSeed(cnSeed);
        for (const auto& stroke : strokes)
            paint(stroke);
    }

    std::vector<ovwbench::Dab> dabsOf(const Strokes& strokes) {
        RememberingTip tip;
        m_brush.SetDesignatedPattern(&tip);
        paint(strokes);
        m_brush.SetDesignatedPattern(nullptr);
        return tip.dabs;
    }

private:
    /// Each on the image as it was first: what matters here is the work, which stays the same.
    void paint(const std::vector<XCStrokePoint>& samples) {
        m_method.ClearTempImage();
        m_method.BeginMethod();
        m_engine.BeginDraw(&m_brush);
        m_stroke.FirstStore(samples.front());
        for (std::size_t i = 1; i < samples.size(); i++) {
            m_stroke.Store(samples[i]);
            XCRect changed;
            m_engine.DrawStroke(&changed, &m_stroke, 1);
        }
        m_engine.EndDraw(nullptr);
        m_method.EndMethod();
    }

    XCVOffscreen32Bit m_before;
    XCPatternDrawParam m_brush;
    XCPatternDrawMethod m_method;
    XCPatternDraw m_engine;
    XCLinerStroke m_stroke;
};

void paintStrokes(benchmark::State& state, const std::string& recording, const ovwpaint::Brush& brush) {
    const Strokes strokes = readRecording(recording);
    ovwbench::Canvas canvas(cnSide);
    Painter painter(canvas, brush);
    ovwbench::DabCopy plain(cnSide);
    const std::vector<ovwbench::Dab> dabs = painter.dabsOf(strokes);
    ovwbench::Duel duel;
    duel.unit = "samples";
    duel.amount = duel.items = static_cast<double>(sampleCount(strokes));
    duel.pixels = ovwbench::pixelsOf(dabs);
    duel.work = [&] { painter.paint(strokes); };
    duel.limitName = "memcpy of the rows";
    duel.limit = [&] { plain.copy(dabs); };
    duel.restore = [&] { canvas.restore(); };
    ovwbench::run(state, duel);
}

const bool s_added = [] {
    for (const std::string recording : {"signature", "spiral"}) {
        for (const char* name : {"ink-pen", "pencil", "marker", "airbrush"}) {
            const ovwpaint::Preset& preset = *ovwpaint::findPreset(name);
            ovwbench::add("stroke/" + recording + "/" + name, [recording, &preset](benchmark::State& state) {
                paintStrokes(state, recording, ovwpaint::brushOf(preset).scaled(cnScale));
            });
        }
    }
    for (const int size : {5, 50, 500}) {
        ovwbench::add("stroke/signature/marker of size " + std::to_string(size), [size](benchmark::State& state) {
            ovwpaint::Brush brush = ovwpaint::brushOf(*ovwpaint::findPreset("marker"));
            brush.size.size = size;
            paintStrokes(state, "signature", brush);
        });
    }
    return true;
}();

} // namespace

#endif // OVWBENCH_RECORDINGS
