#include "command.h"
#include "commandoptions.h"
#include "imageedits.h"
#include "imagefile.h"
#include "interrupt.h"
#include "store.h"

#include "ovwcmn/xcblockgetter.h"
#include "ovwcmn/xcoffscreen.h"
#include "ovwcmn/xcvoffscreenlock.h"

#include <CLI/CLI.hpp>

namespace ovwpaint {

namespace {

constexpr int cnRgbDepth = 24;
constexpr int cnColourDepth = 32;

/// The filter makes mixes of visible colours opaque; pixels that were soft before stay so.
void keepSoftAlpha(XCVOffscreen& smooth, XCVOffscreen& before) {
    constexpr std::size_t cnAlpha = 3, cnPixelBytes = 4, cnOpaque = 255;
    constexpr std::size_t cnBlockBytes =
        std::size_t{XCVOffscreen::cnBlockSize} * XCVOffscreen::cnBlockSize * cnPixelBytes;
    const XCVOffscreenAutoLock lock(&smooth, -1, -1, 1), beforeLock(&before, -1, -1, 0);
    XCBlockGetter blocks(&before, before.GetRect(), 1);
    for (XCRect block; blocks.GetNextBlock(block);) {
        before.MoveCursor(block.left, block.top);
        const std::uint8_t* const soft = before.GetBaseAddress();
        if (!soft)
            continue;
        smooth.MoveCursor(block.left, block.top);
        std::uint8_t* const pixels = smooth.GetBaseAddress();
        for (std::size_t i = cnAlpha; i < cnBlockBytes; i += cnPixelBytes)
            if (pixels[i] == cnOpaque && soft[i] != 0)
                pixels[i] = soft[i];
    }
}

/// Smoothing mixes colours, so what has fewer bits becomes 24 bits, or 32 with transparency.
Image smoothed(Image image) {
    const int depth = image->GetDepth();
    const int wanted = hasTransparency(depth) ? cnColourDepth : cnRgbDepth;
    if (depth != wanted)
        image = withDepth(*image, wanted);
    const double resolution = image->GetResolution();
    XCOffscreen classic;
    classic.CopyFromOffscreen(image.get());
    throwIfInterrupted();
    classic.Lock();
    classic.DoSmoothing(nullptr, nullptr, nullptr, nullptr, nullptr);
    classic.Unlock();
    throwIfInterrupted();
    Image result(classic.CopyToOffscreen());
    result->SetResolution(resolution);
    if (wanted == cnColourDepth)
        keepSoftAlpha(*result, *image);
    return result;
}

class SmoothCommand final : public Command {
public:
    explicit SmoothCommand(CLI::App& program)
        : Command(program.add_subcommand("smooth", "Take the staircase out of line art")) {
        app().add_option("IN", m_input, "The picture, PNG or an image stream")->required();
        app()
            .add_option("-o,--output", m_output,
                        "The file to write, may be IN: PNG when it ends in .png, else a stream")
            ->required()
            ->type_name("OUT.png");
        addRunOptions(app(), m_run);
        app().footer("Pictures with transparency come out with 32 bits, others with 24.\n"
                     "Example: ovwpaint smooth scan.png -o smooth.png");
    }

    void run() override {
        Progress progress(m_run.quiet);
        formOfFile(m_input);
        OutputFile output(m_output);
        const Store store(m_run);
        saveImage(smoothed(loadImage(m_input, progress)), m_output, output, progress);
        output.commit();
    }

private:
    std::string m_input;
    std::string m_output;
    RunOptions m_run;
};

} // namespace

std::unique_ptr<Command> makeSmoothCommand(CLI::App& program) { return std::make_unique<SmoothCommand>(program); }

} // namespace ovwpaint
