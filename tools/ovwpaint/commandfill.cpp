#include "command.h"
#include "commandoptions.h"
#include "failure.h"
#include "imagefile.h"
#include "interrupt.h"
#include "store.h"

#include "ovwcmn/xcexception.h"

#include <CLI/CLI.hpp>

#include <cstdio>

namespace ovwpaint {

namespace {

/// Lets the library's long operations see the user's wish to stop while it lives.
class AbortScope {
public:
    AbortScope() {
        XCAbort::SetCallback([] { return isInterrupted() ? 1 : 0; });
    }
    ~AbortScope() { XCAbort::SetCallback(nullptr); }
    AbortScope(const AbortScope&) = delete;
    AbortScope& operator=(const AbortScope&) = delete;
};

struct Filled {
    XCRect area;
    int count = 0;
};

class FillCommand final : public Command {
public:
    explicit FillCommand(CLI::App& program)
        : Command(program.add_subcommand("fill", "Fill what hangs together with a pixel and has its colour")) {
        app().add_option("IN", m_input, "The picture, PNG or an image stream")->required();
        app()
            .add_option("-o,--output", m_output,
                        "The file to write, may be IN: PNG when it ends in .png, else a stream")
            ->required()
            ->type_name("OUT");
        addPoint(app(), "--at", m_seed, "The pixel to begin at")->required();
        app()
            .add_option("--colour,--color", m_colour, "What to fill with")
            ->required()
            ->check(CLI::Validator(checkColour, ""))
            ->type_name("COLOUR");
        app()
            .add_option("--margin", m_margin, "How far each channel may be from the pixel's")
            ->check(CLI::Range(0, 255))
            ->type_name("N")
            ->capture_default_str();
        app().add_option("--source", m_source, "Go by the colours of this picture instead")->type_name("FILE");
        addRunOptions(app(), m_run);
        app().footer("Prints how many pixels were filled, and the rectangle that was looked at (right and bottom\n"
                     "excluded). Pictures of 1 to 16 bits show the colour in black, white or grey.\n"
                     "Example: ovwpaint fill outline.png -o filled.png --at 120,80 --colour '#FFCC00' --margin 20");
    }

    void run() override {
        Progress progress(m_run.quiet);
        formOfFile(m_input);
        OutputFile output(m_output);
        const Store store(m_run);
        Image image = loadImage(m_input, progress);
        const Image source = m_source.empty() ? nullptr : loadImage(m_source, progress);
        const Filled filled = fill(*image, source ? *source : *image);
        saveImage(std::move(image), m_output, output, progress);
        output.commit();
        progress.wipe();
        std::printf("%d pixels in (%d, %d) to (%d, %d)\n", filled.count, filled.area.left, filled.area.top,
                    filled.area.right, filled.area.bottom);
    }

private:
    Filled fill(XCVOffscreen& image, XCVOffscreen& source) const {
        const XCRect whole(0, 0, image.GetWidth(), image.GetHeight());
        if (!whole.PtInRect(*m_seed))
            throw Failure(m_input + ": --at lies outside its " + std::to_string(whole.right) + " x " +
                          std::to_string(whole.bottom) + " pixels");
        const AbortScope abort;
        Filled filled;
        try {
            if (!image.FloodFill(filled.area, *m_seed, *parseColour(m_colour), &source, nullptr, XCPoint(), whole,
                                 m_margin, &filled.count, 1))
                return {};
        } catch (const XCException&) {
            throwIfInterrupted();
            throw;
        }
        return filled;
    }

    std::string m_input;
    std::string m_output;
    std::string m_source;
    std::string m_colour;
    std::optional<XCPoint> m_seed;
    int m_margin = 0;
    RunOptions m_run;
};

} // namespace

std::unique_ptr<Command> makeFillCommand(CLI::App& program) { return std::make_unique<FillCommand>(program); }

} // namespace ovwpaint
