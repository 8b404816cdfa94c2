#include "drawing.h"

#include "brushfile.h"
#include "canvas.h"
#include "failure.h"
#include "imageedits.h"
#include "imagefile.h"
#include "inkdocument.h"
#include "interrupt.h"
#include "outputfile.h"
#include "painter.h"
#include "picture.h"
#include "pngimport.h"
#include "presets.h"
#include "progress.h"
#include "store.h"

#include <filesystem>

namespace ovwpaint {

namespace {

void changeTexture(BrushTexture& texture, const DrawOptions& options) {
    if (!options.texture.empty())
        texture.texture = options.texture;
    texture.textureMode = options.textureMode.value_or(texture.textureMode);
    texture.textureDensity = options.textureDensity.value_or(texture.textureDensity);
    if (options.textureAfter)
        texture.textureAfter = 1;
}

void changeTips(Brush& brush, const DrawOptions& options) {
    if (options.tips.size() > cnMostTips)
        throw Failure("--tip: more than " + std::to_string(cnMostTips) + " tips");
    if (!options.tips.empty()) {
        brush.pattern.patternKind = XCPattern::cnKindImage;
        brush.tips.patterns = options.tips;
    }
    brush.pattern.patternOrder = options.tipOrder.value_or(brush.pattern.patternOrder);
    if (options.tipInvert)
        brush.tips.patternInvert = 1;
    if (options.tipGrey)
        brush.tips.patternGrey = 1;
    if (options.bend)
        brush.etc.bendFlag = 1;
}

void changeSource(BrushSource& source, const DrawOptions& options) {
    source.blurRadius = options.blurRadius.value_or(source.blurRadius);
    if (!options.mask.empty())
        source.mask = options.mask;
    if (!options.pictures.clone.empty()) {
        if (!source.cloneFlag)
            source.cloneX = source.cloneY = 0;
        source.cloneFlag = 1;
    }
    if (options.cloneOffset) {
        source.cloneX = options.cloneOffset->x;
        source.cloneY = options.cloneOffset->y;
        source.cloneFlag = 1;
    }
}

/// Combinations that the library has no way to paint.
void checkBrush(const Brush& brush) {
    if (brush.hasImageTips() && (brush.blurs() || brush.source.cloneFlag))
        throw Failure(std::string("image tips cannot ") + (brush.blurs() ? "blur" : "clone"));
    if (brush.etc.bendFlag && !brush.hasImageTips())
        throw Failure("a brush that bends needs an image tip (--tip)");
    if (brush.blurs() && brush.source.cloneFlag)
        throw Failure("a brush cannot both clone and blur");
}

Brush chooseBrush(const DrawOptions& options) {
    const Preset* preset = findPreset(options.preset);
    if (options.brushFile.empty() && !preset)
        throw Failure("there is no preset \"" + options.preset + "\" (see ovwpaint presets)");
    Brush brush = options.brushFile.empty() ? brushOf(*preset) : readBrushFile(options.brushFile);
    if (options.composition)
        brush.setComposition(*options.composition);
    brush.method.cacheKind = options.cacheKind.value_or(brush.method.cacheKind);
    if (options.noCache)
        brush.method.useCache = 0;
    changeTexture(brush.texture, options);
    changeTips(brush, options);
    changeSource(brush.source, options);
    checkBrush(brush);
    return options.brushSize ? brush.scaled(static_cast<double>(*options.brushSize) / brush.size.size) : brush;
}

/// The image in a depth that the brush can paint in; what has no transparency is opaque there.
Image inPaintingDepth(Image image, int depth) {
    constexpr int cnOpaqueDepth = 24;
    if (image->GetDepth() == depth)
        return image;
    if (!hasTransparency(image->GetDepth()) && image->GetDepth() != cnOpaqueDepth)
        image = withDepth(*image, cnOpaqueDepth);
    return withDepth(*image, depth);
}

/// Blurring keeps what is under a stamp in memory.
Brush scaledBrush(const Brush& brush, double factor) {
    constexpr int cnMostBlurred = 2000; // pixels
    Brush scaled = brush.scaled(factor);
    if (scaled.blurs() && scaled.size.size > cnMostBlurred)
        throw Failure("a brush that blurs may be " + std::to_string(cnMostBlurred) + " pixels wide, not " +
                      std::to_string(scaled.size.size));
    return scaled;
}

/// An eraser needs something to take away; a backdrop is that.
Colour chooseBackground(const DrawOptions& options, const Brush& brush) {
    const Colour ink = packColour(0, 0, 0);
    const Colour paper = packColour(255, 255, 255);
    return options.background.value_or(brush.erases() && options.backdrop.empty() ? ink : paper);
}

/// What is painted on, and so gives the picture its size: an image that exists, a backdrop, or nothing.
struct Ground {
    explicit Ground(const DrawOptions& options) {
        if (!options.onto.empty())
            image = readImageHeader(options.onto);
        if (!options.backdrop.empty())
            backdrop.emplace(options.backdrop);
    }

    std::optional<ImageHeader> image;
    std::optional<PngReader> backdrop;
};

/// A backdrop is as large as the picture unless that has a size of its own.
Layout chooseLayout(const DrawOptions& options, const InkSurvey& survey, const Brush& brush, const Ground& ground) {
    SizeWish size = options.size;
    if (ground.image) {
        size.width = ground.image->width;
        size.height = ground.image->height;
    } else if (ground.backdrop && !size.width && !size.height) {
        size.width = ground.backdrop->width();
        size.height = ground.backdrop->height();
    }
    try {
        return layOut(survey, brush, size);
    } catch (const Failure& failure) {
        throw Failure(options.strokes + ": " + failure.what());
    }
}

/// Pictures are painted in 32 bits where the library's brushes do not paint at their depth: in 16 bits, grey with
/// coverage; in 24 bits beyond the plainest compositions; below 8 bits what smudges.
int paintingDepth(int depth, const Brush& brush) {
    constexpr int cnColourDepth = 32;
    const bool isPlain = brush.method.methodKind <= XCFastPixelMixer::Erase && !brush.source.cloneFlag;
    if (brush.blurs())
        return cnColourDepth;
    switch (depth) {
    case 1:
    case 2: return brush.smudges() ? cnColourDepth : depth;
    case 16: return cnColourDepth;
    case 24: return isPlain ? depth : cnColourDepth;
    default: return depth;
    }
}

/// A picture without transparency cannot be erased to nothing: there the eraser paints the paper's white.
Brush adaptToDepth(Brush brush, int depth) {
    if (depth == 24 && brush.erases()) {
        brush.method.methodKind = XCFastPixelMixer::Normal;
        brush.color.drawColor = packColour(255, 255, 255);
    }
    return brush;
}

void refuseToReplaceInput(const DrawOptions& options) {
    std::error_code ignored;
    std::vector<std::string> inputs = {options.strokes, options.brushFile,      options.texture,
                                       options.mask,    options.pictures.clone, options.backdrop};
    inputs.insert(inputs.end(), options.tips.begin(), options.tips.end());
    for (const std::string& input : inputs) {
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

/// Masks and clones, which have that resolution, must agree with the image.
Canvas ontoCanvas(const DrawOptions& options, int depth, bool keepsBefore, Progress& progress) {
    Image image = inPaintingDepth(loadImage(options.onto, progress), depth);
    image->SetResolution(cnResolution);
    return Canvas(std::move(image), cnTransparent, keepsBefore);
}

} // namespace

void drawPicture(const DrawOptions& options) {
    constexpr int cnUsualDepth = 32;
    refuseToReplaceInput(options);
    Progress progress(options.run.quiet);
    const Brush chosen = chooseBrush(options);
    InkDocument document(options.strokes);
    const InkSurvey survey = document.survey();
    Ground ground(options);
    const Layout layout = chooseLayout(options, survey, chosen, ground);
    OutputFile output(options.output); // before the work, so that a bad path is known at once
    const Store store(options.run);
    const int depth = options.depth.value_or(ground.image ? ground.image->depth : cnUsualDepth);
    const Brush brush = scaledBrush(adaptToDepth(chosen, depth), layout.scale);
    const bool keepsBefore = brush.usesCache() || brush.source.cloneFlag;
    const int paintedDepth = paintingDepth(depth, chosen);
    Canvas canvas = ground.image ? ontoCanvas(options, paintedDepth, keepsBefore, progress)
                                 : Canvas(layout.width, layout.height, paintedDepth, chooseBackground(options, chosen),
                                          keepsBefore);
    xcSetRandomSeed(options.seed);
    Materials materials(brush, options.pictures, canvas);
    if (ground.backdrop)
        canvas.paste(*ground.backdrop);
    {
        Painter painter(canvas, brush, materials, options.joining);
        paint(document, painter, layout.mapping(Painter::cnUnitsPerPixel), options.joining, progress,
              survey.sampleCount);
    }
    if (ground.image)
        canvas.image().SetResolution(ground.image->resolution);
    saveImage(canvas, depth, ground.image ? formByName(options.output) : ImageForm::png, true, output, progress);
    output.commit();
}

} // namespace ovwpaint
