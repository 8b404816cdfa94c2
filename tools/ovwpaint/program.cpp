#include "program.h"

#include "brushfields.h"
#include "brushfile.h"
#include "drawhelp.h"
#include "drawing.h"
#include "failure.h"
#include "interrupt.h"
#include "names.h"
#include "presets.h"
#include "texture.h"

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/xcexception.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iomanip>
#include <iostream>
#include <limits>
#include <new>

namespace ovwpaint {

namespace {

constexpr const char* cnMainFooter =
    "Exit status: 0 done, 1 failure, 2 wrong usage, 130 interrupted.\n"
    "Example: ovwpaint draw examples/strokes/signature.inkml -o signature.png --scale 2";

std::string versionText() {
    return "ovwpaint " + std::to_string(OVWCMN_VERSION_MAJOR) + "." + std::to_string(OVWCMN_VERSION_MINOR) + "." +
           std::to_string(OVWCMN_VERSION_PATCH);
}

std::vector<std::string> presetNames() {
    std::vector<std::string> names;
    for (const Preset& preset : presets())
        names.emplace_back(preset.name);
    return names;
}

std::string checkColour(const std::string& text) {
    return parseColour(text) ? "" : "\"" + text + "\" is no colour: give #RRGGBB, #RRGGBBAA or one of " + colourNames();
}

/// The comparison is written so that "nan" fails it.
std::string checkScale(const std::string& text) {
    char* end = nullptr;
    const double scale = std::strtod(text.c_str(), &end);
    if (*end == '\0' && scale >= 1.0 / cnMaxScale && scale <= cnMaxScale)
        return "";
    return "\"" + text + "\" is no factor from 0.001 to 1000";
}

/// "X,Y", both whole numbers no further from 0 than pictures are large.
std::optional<XCPoint> parsePoint(const std::string& text) {
    XCPoint point;
    const char* const end = text.data() + text.size();
    const auto [comma, badX] = std::from_chars(text.data(), end, point.x);
    if (badX != std::errc() || comma == end || *comma != ',')
        return std::nullopt;
    const auto [rest, badY] = std::from_chars(comma + 1, end, point.y);
    const auto isNear = [](std::int32_t value) { return value >= -cnMaxSide && value <= cnMaxSide; };
    if (badY != std::errc() || rest != end || !isNear(point.x) || !isNear(point.y))
        return std::nullopt;
    return point;
}

/// The command line as CLI11 knows it, and what it filled in.
struct CommandLine {
    CLI::App app{"Paints recorded pen strokes into pictures."};
    CLI::App* draw = nullptr;
    CLI::App* list = nullptr;
    DrawOptions options;
    std::string background;
    std::string printedPreset;

    CommandLine() {
        app.name("ovwpaint");
        app.set_version_flag("--version", versionText(), "Print the version");
        app.set_help_flag("-h,--help", "Print this help");
        app.require_subcommand(1);
        app.footer(cnMainFooter);
        addDraw();
        addPresets();
    }

    void addDraw();
    void addPictureOptions();
    void addBrushOptions();
    void addTextureOptions();
    void addMaterialOptions();
    void addName(const char* option, std::optional<int>& value, std::span<const NamedValue> names,
                 const char* description);
    void addPoint(const char* option, XCPoint& value, const char* description, CLI::Option* owner);
    void addPresets();
};

void CommandLine::addDraw() {
    draw = app.add_subcommand("draw", "Paint the strokes of an InkML file into a PNG picture");
    draw->add_option("STROKES", options.strokes, "The recording, an InkML file")->required();
    draw->add_option("-o,--output", options.output, "The picture to write")->required()->type_name("OUT.png");
    addPictureOptions();
    addBrushOptions();
    addTextureOptions();
    addMaterialOptions();
    draw->add_option("--memory", options.memory, "Memory for the picture, in MiB; the rest goes to a swap file")
        ->check(CLI::Range(1, 2047))
        ->type_name("MIB")
        ->capture_default_str();
    draw->add_option("--swap", options.swapFolder, "Folder of the swap file (default: the temporary folder)")
        ->type_name("FOLDER");
    draw->add_flag("--quiet", options.quiet, "No progress bar");
    draw->footer(drawHelp());
}

void CommandLine::addPictureOptions() {
    draw->add_option("--width", options.size.width, "Width of the picture in pixels")
        ->check(CLI::Range(1, cnMaxSide))
        ->type_name("N");
    draw->add_option("--height", options.size.height, "Height of the picture in pixels")
        ->check(CLI::Range(1, cnMaxSide))
        ->type_name("N");
    draw->add_option("--scale", options.size.scale, "Enlarge drawing and brush by this factor")
        ->check(CLI::Validator(checkScale, ""))
        ->type_name("F");
    draw->add_option("--background", background, "Colour of the page (see below)")
        ->check(CLI::Validator(checkColour, ""))
        ->type_name("COLOUR");
    draw->add_option("--depth", options.depth, "Bits a pixel: 1, 2 or 8 (ink), 16 (grey with alpha), 24 or 32 (colour)")
        ->check(CLI::IsMember({1, 2, 8, 16, 24, 32}))
        ->type_name("BITS")
        ->capture_default_str();
}

void CommandLine::addBrushOptions() {
    CLI::Option* preset = draw->add_option("--preset", options.preset, "A brush of `ovwpaint presets`")
                              ->check(CLI::IsMember(presetNames()))
                              ->type_name("NAME")
                              ->capture_default_str();
    draw->add_option("--brush", options.brushFile, "A brush file")->type_name("FILE.json")->excludes(preset);
    draw->add_option("--size", options.brushSize, "Diameter of the brush in pixels, before --scale")
        ->check(CLI::Range(1, 10000))
        ->type_name("N");
    addName("--composition", options.composition, compositionNames(), "How the paint meets the picture (see below)");
    addName("--cache", options.cacheKind, cacheNames(), "How the stamps of a stroke add up (see below)");
    draw->add_option("--seed", options.seed, "Start of the random numbers, for scatter")
        ->check(CLI::Range(std::uint32_t{0}, std::numeric_limits<std::uint32_t>::max()))
        ->type_name("N")
        ->capture_default_str();
    draw->add_flag(
        "--straight", [this](std::int64_t) { options.joining = Joining::Straight; },
        "Join the samples by straight lines instead of smooth curves");
}

void CommandLine::addTextureOptions() {
    draw->add_option("--texture", options.texture,
                     "A picture whose grain the brush shows, or " + std::string(cnGrainTexture))
        ->type_name("FILE.png");
    addName("--texture-mode", options.textureMode, textureModeNames(), "How the texture works (see below)");
    draw->add_option("--texture-density", options.textureDensity, "For the mode bias: the higher, the more paint")
        ->check(CLI::Range(-cnMaxTextureDensity, cnMaxTextureDensity))
        ->type_name("N");
    draw->add_flag("--texture-after", options.textureAfter, "Let the texture work on the stroke, not on each stamp");
}

void CommandLine::addMaterialOptions() {
    draw->add_option("--backdrop", options.backdrop, "A picture to paint on, at the left and top")
        ->type_name("FILE.png");
    CLI::Option* mask =
        draw->add_option("--mask", options.pictures.mask, "A selection: white is painted, black and all outside is not")
            ->type_name("FILE.png");
    addPoint("--mask-offset", options.pictures.maskOffset, "Where the selection's corner lies in the picture", mask);
    CLI::Option* clone = draw->add_option("--clone", options.pictures.clone, "Paint with the pixels of this picture")
                             ->type_name("FILE.png");
    addPoint("--clone-offset", options.pictures.cloneOffset, "What to add to a place for the place to clone", clone);
}

void CommandLine::addPoint(const char* option, XCPoint& value, const char* description, CLI::Option* owner) {
    draw->add_option_function<std::string>(
            option,
            [&value, option](const std::string& text) {
                const std::optional<XCPoint> point = parsePoint(text);
                if (!point)
                    throw CLI::ValidationError(option, "\"" + text + "\" is no point such as 30,-20");
                value = *point;
            },
            description)
        ->type_name("X,Y")
        ->needs(owner);
}

/// An option that takes one of the names or its number.
void CommandLine::addName(const char* option, std::optional<int>& value, std::span<const NamedValue> names,
                          const char* description) {
    const auto toNumber = [names](std::string& text) -> std::string {
        std::optional<int> number = valueNamed(names, text);
        for (const NamedValue& named : names) {
            if (text == std::to_string(named.value))
                number = named.value;
        }
        if (!number)
            return "\"" + text + "\" is none of " + listOf(names);
        text = std::to_string(*number);
        return "";
    };
    draw->add_option(option, value, description)->transform(CLI::Validator(toNumber, ""))->type_name("NAME");
}

void CommandLine::addPresets() {
    list = app.add_subcommand("presets", "List the brushes, or print one as a brush file");
    list->add_option("--json", printedPreset, "Print this preset as a brush file to start from")
        ->check(CLI::IsMember(presetNames()))
        ->type_name("NAME");
}

void printPresets(const std::string& asFile) {
    if (!asFile.empty()) {
        std::cout << formatBrush(brushOf(*findPreset(asFile)));
    } else {
        for (const Preset& preset : presets())
            std::cout << std::left << std::setw(18) << preset.name << preset.description << '\n';
    }
    if (!std::cout.flush())
        throw Failure("standard output: cannot be written");
}

void runCommand(CommandLine& line) {
    if (line.list->parsed())
        return printPresets(line.printedPreset);
    if (!line.background.empty())
        line.options.background = parseColour(line.background);
    watchInterrupts();
    drawPicture(line.options);
}

/// One line without line breaks, whatever the message.
int report(std::string message, int code) {
    std::replace(message.begin(), message.end(), '\n', ' ');
    while (!message.empty() && message.back() == ' ')
        message.pop_back();
    std::fprintf(stderr, "ovwpaint: %s\n", message.c_str());
    return code;
}

int reportLibraryError(const XCException& error) {
    constexpr int cnCodeNoMemory = 8;
    const std::string hint = error.GetErrorCode() == cnCodeNoMemory ? " (a larger --memory may help)" : "";
    return report(error.what() + hint, cnExitFailure);
}

int parseAndRun(int argc, const char* const* argv) {
    CommandLine line;
    try {
        line.app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success))
            return line.app.exit(error); // help and version
        return report(std::string(error.what()) + " (see ovwpaint --help)", cnExitUsage);
    }
    runCommand(line);
    return cnExitDone;
}

} // namespace

int runProgram(int argc, const char* const* argv) noexcept {
    try {
        return parseAndRun(argc, argv);
    } catch (const Interrupted&) {
        return report("interrupted", cnExitInterrupted);
    } catch (const XCException& error) {
        return reportLibraryError(error);
    } catch (const std::bad_alloc&) {
        return report("not enough memory", cnExitFailure);
    } catch (const std::exception& error) {
        return report(error.what(), cnExitFailure);
    }
}

} // namespace ovwpaint
