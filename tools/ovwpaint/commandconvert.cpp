#include "command.h"
#include "commandoptions.h"
#include "conversion.h"
#include "imageedits.h"
#include "layout.h"

#include <CLI/CLI.hpp>

#include <charconv>

namespace ovwpaint {

namespace {

std::optional<XCSize> parseSize(const std::string& text) {
    XCSize size;
    const char* const end = text.data() + text.size();
    const auto [cross, badWidth] = std::from_chars(text.data(), end, size.cx);
    if (badWidth != std::errc() || cross == end || *cross != 'x')
        return std::nullopt;
    const auto [rest, badHeight] = std::from_chars(cross + 1, end, size.cy);
    const auto isSide = [](std::int32_t value) { return value >= 1 && value <= cnMaxSide; };
    if (badHeight != std::errc() || rest != end || !isSide(size.cx) || !isSide(size.cy))
        return std::nullopt;
    return size;
}

std::string convertHelp() {
    return "Steps are taken in this order: flatten (--background), more bits (--depth), resize, turn, mirror, grey or\n"
           "mono, fewer bits (--depth). Without --depth the picture keeps its bits.\n"
           "Methods: " +
           listOf(resizeMethodNames()) +
           "\n(high is the default; half to fourfold-all have a factor of their own instead of --resize)\n"
           "Dithers: edges (what is nearly black or white becomes just that), even\n"
           "Example: ovwpaint convert scan.png -o small.png --depth 8 --resize 400x300";
}

class ConvertCommand final : public Command {
public:
    explicit ConvertCommand(CLI::App& program)
        : Command(program.add_subcommand("convert", "Convert a picture: PNG, image stream, depth, size, direction")) {
        app().add_option("IN", m_options.input, "The picture, PNG or an image stream")->required();
        app()
            .add_option("-o,--output", m_options.output, "The file to write: PNG when it ends in .png, else a stream")
            ->required()
            ->type_name("OUT");
        addPixelOptions();
        addSizeOptions();
        app().add_flag("--raw", m_options.raw, "A stream with uncompressed blocks");
        addRunOptions(app(), m_options.run);
        app().footer(convertHelp());
    }

    void run() override {
        if (!m_background.empty())
            m_options.background = parseColour(m_background);
        convertImage(m_options);
    }

private:
    void addPixelOptions() {
        app()
            .add_option("--depth", m_options.depth,
                        "Bits a pixel: 1, 2 or 8 (ink), 16 (grey with alpha), 24 or 32 (colour)")
            ->check(CLI::IsMember({1, 2, 8, 16, 24, 32}))
            ->type_name("BITS");
        app()
            .add_option("--background", m_background, "Put this colour behind what is transparent")
            ->check(CLI::Validator(checkColour, ""))
            ->type_name("COLOUR");
        app().add_flag("--grey,--gray", m_options.grey, "To shades of grey");
        addName(app(), "--mono", m_options.mono, ditherNames(), "To black and white by a dither (see below)");
        app().add_flag("--invert", m_options.invert, "With --grey or --mono: exchange light and dark");
    }

    void addSizeOptions() {
        const auto takeSize = [this](const std::string& text) {
            m_options.size = parseSize(text);
            if (!m_options.size)
                throw CLI::ValidationError("--resize", "\"" + text + "\" is no size such as 640x480");
        };
        app()
            .add_option_function<std::string>("--resize", takeSize, "Fit the picture into another size")
            ->type_name("WxH");
        addName(app(), "--method", m_options.method, resizeMethodNames(), "How to resize (see below)");
        app()
            .add_option("--rotate", m_options.angle, "Turn clockwise by 90, 180 or 270 degrees")
            ->check(CLI::IsMember({0, 90, 180, 270}))
            ->type_name("DEGREES");
        app().add_flag("--mirror", m_options.mirror, "Exchange left and right");
        app().add_flag("--flip", m_options.flip, "Exchange top and bottom");
    }

    ConvertOptions m_options;
    std::string m_background;
};

} // namespace

std::unique_ptr<Command> makeConvertCommand(CLI::App& program) { return std::make_unique<ConvertCommand>(program); }

} // namespace ovwpaint
