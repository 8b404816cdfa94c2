#include "brushfields.h"
#include "command.h"
#include "commandoptions.h"
#include "drawhelp.h"
#include "drawing.h"
#include "texture.h"
#include "tips.h"

#include <CLI/CLI.hpp>

#include <limits>

namespace ovwpaint {

namespace {

class DrawCommand final : public Command {
public:
    explicit DrawCommand(CLI::App& program)
        : Command(program.add_subcommand("draw", "Paint the strokes of an InkML file into a PNG picture")) {
        app().add_option("STROKES", m_options.strokes, "The recording, an InkML file")->required();
        app().add_option("-o,--output", m_options.output, "The picture to write")->required()->type_name("OUT.png");
        addPictureOptions();
        addBrushOptions();
        addTipOptions();
        addTextureOptions();
        addMaterialOptions();
        addRunOptions(app(), m_options.run);
        app().footer(drawHelp());
    }

    void run() override {
        if (!m_background.empty())
            m_options.background = parseColour(m_background);
        if (m_maskOffset)
            m_options.pictures.maskOffset = *m_maskOffset;
        drawPicture(m_options);
    }

private:
    void addPictureOptions();
    void addBrushOptions();
    void addTipOptions();
    void addTextureOptions();
    void addMaterialOptions();

    DrawOptions m_options;
    std::string m_background;
    std::optional<XCPoint> m_maskOffset;
};

void DrawCommand::addPictureOptions() {
    app()
        .add_option("--width", m_options.size.width, "Width of the picture in pixels")
        ->check(CLI::Range(1, cnMaxSide))
        ->type_name("N");
    app()
        .add_option("--height", m_options.size.height, "Height of the picture in pixels")
        ->check(CLI::Range(1, cnMaxSide))
        ->type_name("N");
    app()
        .add_option("--scale", m_options.size.scale, "Enlarge drawing and brush by this factor")
        ->check(CLI::Validator(checkScale, ""))
        ->type_name("F");
    app()
        .add_option("--background", m_background, "Colour of the page (see below)")
        ->check(CLI::Validator(checkColour, ""))
        ->type_name("COLOUR");
    app()
        .add_option("--depth", m_options.depth,
                    "Bits a pixel: 1, 2 or 8 (ink), 16 (grey with alpha), 24 or 32 (colour)")
        ->check(CLI::IsMember({1, 2, 8, 16, 24, 32}))
        ->type_name("BITS[32]");
}

void DrawCommand::addBrushOptions() {
    CLI::Option* preset = app()
                              .add_option("--preset", m_options.preset, "A brush of `ovwpaint presets`")
                              ->check(oneOf(presetNames()))
                              ->type_name("NAME")
                              ->capture_default_str();
    app().add_option("--brush", m_options.brushFile, "A brush file")->type_name("FILE.json")->excludes(preset);
    app()
        .add_option("--size", m_options.brushSize, "Diameter of the brush in pixels, before --scale")
        ->check(CLI::Range(1, 10000))
        ->type_name("N");
    addName(app(), "--composition", m_options.composition, compositionNames(),
            "How the paint meets the picture (see below)");
    addName(app(), "--cache", m_options.cacheKind, cacheNames(), "How the stamps of a stroke add up (see below)");
    app().add_flag("--no-cache", m_options.noCache, "Put every stamp straight onto the picture");
    app()
        .add_option("--seed", m_options.seed, "Start of the random numbers, for scatter and splatters")
        ->check(CLI::Range(std::uint32_t{0}, std::numeric_limits<std::uint32_t>::max()))
        ->type_name("N")
        ->capture_default_str();
    app().add_flag(
        "--straight", [this](std::int64_t) { m_options.joining = Joining::Straight; },
        "Join the samples by straight lines instead of smooth curves");
}

void DrawCommand::addTipOptions() {
    app()
        .add_option("--tip", m_options.tips,
                    "Stamp this picture, a file or a built-in tip (see below); may be given up to " +
                        std::to_string(cnMostTips) + " times")
        ->allow_extra_args(false)
        ->type_name("FILE.png");
    addName(app(), "--tip-order", m_options.tipOrder, tipOrderNames(), "How several tips take turns");
    app().add_flag("--tip-invert", m_options.tipInvert, "What is bright in a tip covers, not what is dark");
    app().add_flag("--tip-grey", m_options.tipGrey,
                   "Take a coloured tip for a grey one: the brush's colour, by darkness");
    app().add_flag("--bend", m_options.bend, "Bend the tip along the stroke instead of stamping it");
    app()
        .add_option("--blur", m_options.blurRadius, "Soften what is there by so many pixels instead of painting")
        ->check(CLI::Range(0, cnMaxBlurRadius))
        ->type_name("N");
}

void DrawCommand::addTextureOptions() {
    app()
        .add_option("--texture", m_options.texture,
                    "A picture whose grain the brush shows, or " + std::string(cnGrainTexture))
        ->type_name("FILE.png");
    addName(app(), "--texture-mode", m_options.textureMode, textureModeNames(), "How the texture works (see below)");
    app()
        .add_option("--texture-density", m_options.textureDensity, "For the mode bias: the higher, the more paint")
        ->check(CLI::Range(-cnMaxTextureDensity, cnMaxTextureDensity))
        ->type_name("N");
    app().add_flag("--texture-after", m_options.textureAfter, "Let the texture work on the stroke, not on each stamp");
}

void DrawCommand::addMaterialOptions() {
    CLI::Option* backdrop =
        app()
            .add_option("--backdrop", m_options.backdrop, "A picture to paint on, at the left and top")
            ->type_name("FILE.png");
    CLI::Option* onto = app().add_option("--onto", m_options.onto,
                                         "Paint into this picture, PNG or an image stream, in its size and depth");
    onto->type_name("FILE")->excludes(backdrop);
    for (const char* option : {"--width", "--height", "--background"})
        onto->excludes(option);
    CLI::Option* mask =
        app()
            .add_option("--mask", m_options.mask,
                        "A selection: white is painted, black and all outside is not; or " + std::string(cnStencilMask))
            ->type_name("FILE.png");
    addPoint(app(), "--mask-offset", m_maskOffset, "Where the selection's corner lies in the picture")->needs(mask);
    app()
        .add_option("--clone", m_options.pictures.clone, "Paint with the pixels of this picture")
        ->type_name("FILE.png");
    addPoint(app(), "--clone-offset", m_options.cloneOffset,
             "What to add to a place for the place to clone; without --clone, in the picture itself");
}

} // namespace

std::unique_ptr<Command> makeDrawCommand(CLI::App& program) { return std::make_unique<DrawCommand>(program); }

} // namespace ovwpaint
