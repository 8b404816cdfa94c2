#include "drawing.h"

#include "brushfile.h"
#include "canvas.h"
#include "failure.h"
#include "inkdocument.h"
#include "interrupt.h"
#include "outputfile.h"
#include "painter.h"
#include "pngexport.h"
#include "presets.h"
#include "progress.h"

#include "ovwcmn/xcfilepath.h"
#include "ovwcmn/xcvirtualmemory.h"

#include <filesystem>

namespace ovwpaint {

namespace {

/// The process-wide block store for as long as pictures are on it.
class Store {
public:
    Store(int memoryMiB, const std::string& folder) {
        constexpr int cnMiBShift = 20;
        const std::uint32_t budget = static_cast<std::uint32_t>(memoryMiB) << cnMiBShift;
        if (folder.empty()) {
            xcGetVirtualMemory()->Create(budget, nullptr, 1);
            return;
        }
        if (!std::filesystem::is_directory(folder))
            throw Failure(folder + ": no such folder for the swap file");
        XCFilePath path = xcPathFromPosix((std::filesystem::absolute(folder) / "").c_str());
        xcGetVirtualMemory()->Create(budget, &path, 1);
    }
    ~Store() { xcGetVirtualMemory()->Destroy(); }
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;
};

Brush chooseBrush(const DrawOptions& options) {
    const Preset* preset = findPreset(options.preset);
    if (options.brushFile.empty() && !preset)
        throw Failure("there is no preset \"" + options.preset + "\" (see ovwpaint presets)");
    const Brush brush = options.brushFile.empty() ? brushOf(*preset) : readBrushFile(options.brushFile);
    return options.brushSize ? brush.scaled(static_cast<double>(*options.brushSize) / brush.size.size) : brush;
}

/// An eraser needs something to take away.
Colour chooseBackground(const DrawOptions& options, const Brush& brush) {
    const Colour ink = packColour(0, 0, 0);
    const Colour paper = packColour(255, 255, 255);
    return options.background.value_or(brush.erases() ? ink : paper);
}

Layout chooseLayout(const DrawOptions& options, const InkSurvey& survey, const Brush& brush) {
    try {
        return layOut(survey, brush, options.size);
    } catch (const Failure& failure) {
        throw Failure(options.strokes + ": " + failure.what());
    }
}

/// The library's brushes do not paint into images of 16 bits, grey with coverage: those are painted in 32.
int paintingDepth(int depth) { return depth == 16 ? 32 : depth; }

/// A picture without transparency cannot be erased to nothing: there the eraser paints the paper's white.
Brush adaptToDepth(Brush brush, int depth) {
    constexpr int cnMethodNormal = 1;
    if (depth == 24 && brush.erases()) {
        brush.method.methodKind = cnMethodNormal;
        brush.color.drawColor = packColour(255, 255, 255);
    }
    return brush;
}

void refuseToReplaceInput(const DrawOptions& options) {
    std::error_code ignored;
    for (const std::string& input : {options.strokes, options.brushFile}) {
        if (!input.empty() && std::filesystem::equivalent(input, options.output, ignored))
            throw Failure(options.output + ": the output would replace the input");
    }
}

void paint(const InkDocument& document, Painter& painter, const PathMapping& mapping, Joining joining,
           Progress& progress, std::uint64_t sampleCount) {
    constexpr std::uint64_t cnSamplesPerLook = 1024;
    std::optional<StrokeShaper> shaper;
    const auto finishStroke = [&] {
        if (shaper)
            shaper->finish();
        painter.endStroke();
    };
    std::uint64_t done = 0;
    PenSample sample;
    for (const Trace& trace : document.traces()) {
        if (!trace.continues || !shaper) {
            finishStroke();
            shaper.emplace(painter, mapping, joining, document.formatOf(trace));
        }
        TraceDecoder decoder = document.decode(trace);
        while (decoder.next(sample)) {
            shaper->push(sample);
            if (++done % cnSamplesPerLook == 0)
                progress.show("painting", done, sampleCount);
        }
        throwIfInterrupted();
    }
    finishStroke();
}

} // namespace

void drawPicture(const DrawOptions& options) {
    refuseToReplaceInput(options);
    Progress progress(options.quiet);
    const Brush chosen = chooseBrush(options);
    InkDocument document(options.strokes);
    const InkSurvey survey = document.survey();
    const Layout layout = chooseLayout(options, survey, chosen);
    OutputFile output(options.output); // before the work, so that a bad path is known at once
    const Store store(options.memory, options.swapFolder);
    Canvas canvas(layout.width, layout.height, paintingDepth(options.depth), chooseBackground(options, chosen),
                  chosen.method.useCache != 0);
    xcSetRandomSeed(options.seed);
    {
        Painter painter(canvas, adaptToDepth(chosen, options.depth).scaled(layout.scale), options.joining);
        paint(document, painter, layout.mapping(Painter::cnUnitsPerPixel), options.joining, progress,
              survey.sampleCount);
    }
    writePng(canvas, options.depth, output, progress);
    output.commit();
}

} // namespace ovwpaint
