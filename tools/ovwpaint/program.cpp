#include "program.h"

#include "brushfile.h"
#include "drawing.h"
#include "failure.h"
#include "interrupt.h"
#include "presets.h"

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/xcexception.h"

#include <CLI/CLI.hpp>

#include <algorithm>
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

constexpr const char* cnDrawFooter =
    "Size: without --width and --height the picture is the drawing at 96 pixels an inch with a margin around it. With\n"
    "one or both, the drawing is fitted into the picture; with --scale as well, it is centred at that scale. The "
    "brush\n"
    "grows with the drawing.\n"
    "\n"
    "Depth: pictures of 16 bits are painted in colour and turned grey at the end, since brushes do not paint into "
    "such\n"
    "images. Brushes with lowDepthSoft dither at 1 and 2 bits, others paint solid.\n"
    "\n"
    "Background: white; for the eraser (and for brushes of methodKind 2) black ink, so that there is something to "
    "take\n"
    "away. Where the eraser went the picture is transparent, or white at depths without transparency (1, 8, 24).\n"
    "Colours are names such as white, black or transparent, #RGB, #RGBA, #RRGGBB or #RRGGBBAA.\n"
    "\n"
    "Pen: the channel F is the pressure; the azimuth (OA, or from OTx and OTy) becomes angleA, the lean away from "
    "upright\n"
    "(from OE, or OTx and OTy) angleB, both in degrees; auxScale is 1 for an upright pen and 0 for a lying one; speed "
    "is\n"
    "that of the pen in pixels a millisecond, from T. Pen-up traces are not painted.\n"
    "\n"
    "Brush files are JSON, one object with the fields of the brush by name; ovwpaint presets --json NAME prints one.\n"
    "\n"
    "The output appears when it is complete; until then, and after a failure, a file of that name stays as it was.\n"
    "Exit status: 0 done, 1 failure, 2 wrong usage, 130 interrupted.";

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
    void addPresets();
};

void CommandLine::addDraw() {
    draw = app.add_subcommand("draw", "Paint the strokes of an InkML file into a PNG picture");
    draw->add_option("STROKES", options.strokes, "The recording, an InkML file")->required();
    draw->add_option("-o,--output", options.output, "The picture to write")->required()->type_name("OUT.png");
    addPictureOptions();
    addBrushOptions();
    draw->add_option("--memory", options.memory, "Memory for the picture, in MiB; the rest goes to a swap file")
        ->check(CLI::Range(1, 2047))
        ->type_name("MIB")
        ->capture_default_str();
    draw->add_option("--swap", options.swapFolder, "Folder of the swap file (default: the temporary folder)")
        ->type_name("FOLDER");
    draw->add_flag("--quiet", options.quiet, "No progress bar");
    draw->footer(cnDrawFooter);
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
    draw->add_option("--seed", options.seed, "Start of the random numbers, for scatter")
        ->check(CLI::Range(std::uint32_t{0}, std::numeric_limits<std::uint32_t>::max()))
        ->type_name("N")
        ->capture_default_str();
    draw->add_flag(
        "--straight", [this](std::int64_t) { options.joining = Joining::Straight; },
        "Join the samples by straight lines instead of smooth curves");
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
