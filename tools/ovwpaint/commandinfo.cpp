#include "command.h"
#include "commandoptions.h"
#include "imagefile.h"
#include "interrupt.h"
#include "store.h"

#include <CLI/CLI.hpp>

#include <cinttypes>
#include <cstdio>

namespace ovwpaint {

namespace {

void printHeader(ImageForm form, const ImageHeader& header) {
    std::printf("form        %s\n", form == ImageForm::png ? "PNG picture" : "image stream");
    std::printf("size        %d x %d pixels\n", header.width, header.height);
    std::printf("depth       %d bits a pixel\n", header.depth);
    std::printf("resolution  %g pixels an inch\n", header.resolution);
}

void printBlocks(const XCVOffscreen& image) {
    int across = 0;
    int down = 0;
    const int count = image.GetBlockCount(&across, &down);
    int existing = 0;
    for (int i = 0; i < count; ++i)
        existing += image.GetBlockExist(i);
    std::printf("blocks      %d of %d (%d x %d)\n", existing, count, across, down);
}

void printExtent(XCVOffscreen& image) {
    tagRECT extent;
    if (image.GetExtentRect(extent, nullptr, 0))
        std::printf("extent      (%d, %d) to (%d, %d)\n", extent.left, extent.top, extent.right, extent.bottom);
    else
        std::printf("extent      empty\n");
}

/// Counting ends early, so that photographs cost little; other depths have no colours to count.
void printColours(XCVOffscreen& image) {
    constexpr int cnMostCounted = 256;
    const int count = image.GetUseColorCount();
    if (count > cnMostCounted)
        std::printf("colours     more than %d\n", cnMostCounted);
    else if (count >= 0)
        std::printf("colours     %d\n", count);
}

class InfoCommand final : public Command {
public:
    explicit InfoCommand(CLI::App& program)
        : Command(program.add_subcommand("info", "Tell about a picture: size, depth, blocks, extent, colours")) {
        app().add_option("FILE", m_file, "The picture, PNG or an image stream")->required();
        app().add_flag("--header", m_headerOnly, "Only what can be told without the pixels");
        addRunOptions(app(), m_run);
        app().footer("The extent is what is not empty, right and bottom excluded (24 bits: whole blocks). Memory is "
                     "that of the blocks.\nColours are counted in pictures of 24 and 32 bits.\n"
                     "Example: ovwpaint info picture.png");
    }

    void run() override {
        printHeader(formOfFile(m_file), readImageHeader(m_file));
        if (!m_headerOnly)
            printPixels();
    }

private:
    void printPixels() {
        const Store store(m_run);
        Progress progress(m_run.quiet);
        const Image image = loadImage(m_file, progress);
        progress.wipe();
        printBlocks(*image);
        printExtent(*image);
        std::printf("memory      %" PRIu64 " bytes\n", image->GetUsedMemory(0, 0));
        throwIfInterrupted();
        printColours(*image);
    }

    std::string m_file;
    bool m_headerOnly = false;
    RunOptions m_run;
};

} // namespace

std::unique_ptr<Command> makeInfoCommand(CLI::App& program) { return std::make_unique<InfoCommand>(program); }

} // namespace ovwpaint
