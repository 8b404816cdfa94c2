#include "command.h"
#include "commandoptions.h"
#include "failure.h"
#include "gallery/ground.h"
#include "gallery/sheets.h"
#include "outputfile.h"
#include "pngexport.h"
#include "progress.h"
#include "store.h"

#include "ovwcmn/xcpatterndrawparam.h"

#include <CLI/CLI.hpp>

#include <filesystem>
#include <iomanip>
#include <sstream>

namespace ovwpaint {

namespace {

std::vector<std::string> sheetNames() {
    std::vector<std::string> names;
    for (const gallery::SheetKind& sheet : gallery::sheetKinds())
        names.emplace_back(sheet.name);
    return names;
}

std::string galleryHelp() {
    std::ostringstream help;
    help << "Sheets:\n";
    for (const gallery::SheetKind& sheet : gallery::sheetKinds())
        help << "  " << std::left << std::setw(14) << sheet.name << sheet.description << '\n';
    help
        << "\nThe folder is made if it does not exist; sheets in it are replaced one by one, each when it is complete.";
    return help.str();
}

class GalleryCommand final : public Command {
public:
    explicit GalleryCommand(CLI::App& program)
        : Command(program.add_subcommand("gallery",
                                         "Paint a picture of each thing that brushes and classic images can do")) {
        app().add_option("-o,--output", m_folder, "The folder for the pictures")->required()->type_name("DIR");
        app()
            .add_option("--only", m_only, "Paint this sheet; may be given several times")
            ->allow_extra_args(false)
            ->check(oneOf(sheetNames()))
            ->type_name("NAME");
        app()
            .add_option("--photo", m_photo, "The picture to smudge, blur and clone instead of a painted landscape")
            ->type_name("FILE.png");
        app().add_flag("--quiet", m_quiet, "No progress bar");
        app().footer(galleryHelp());
    }

    void run() override;

private:
    bool isWanted(const std::string& name) const {
        return m_only.empty() || std::find(m_only.begin(), m_only.end(), name) != m_only.end();
    }
    gallery::PhotoMaker photoMaker() const;
    void paint(const gallery::SheetKind& kind) const;

    std::string m_folder;
    std::vector<std::string> m_only;
    std::string m_photo;
    bool m_quiet = false;
};

void GalleryCommand::run() {
    constexpr int cnMemory = 128; // MiB
    std::error_code error;
    std::filesystem::create_directories(m_folder, error);
    if (!std::filesystem::is_directory(m_folder))
        throw Failure(m_folder + ": " + (error ? error.message() : "no folder"));
    const Store store(cnMemory, "");
    Progress progress(m_quiet);
    std::uint64_t done = 0;
    for (const gallery::SheetKind& kind : gallery::sheetKinds()) {
        progress.show("painting", done++, gallery::sheetKinds().size());
        if (isWanted(kind.name))
            paint(kind);
    }
}

gallery::PhotoMaker GalleryCommand::photoMaker() const {
    if (m_photo.empty())
        return gallery::landscape;
    return [path = m_photo](int width, int height) { return gallery::photograph(path, width, height); };
}

/// Every sheet begins with the same random numbers, so that it looks the same alone.
void GalleryCommand::paint(const gallery::SheetKind& kind) const {
    constexpr int cnOpaqueDepth = 24;
    OutputFile file((std::filesystem::path(m_folder) / (std::string(kind.name) + ".png")).string());
    xcSetRandomSeed(1);
    gallery::Sheet sheet = kind.paint(photoMaker());
    Progress silent(true); // the bar counts sheets
    writePng(*sheet.compose(), cnOpaqueDepth, file, silent);
    file.commit();
}

} // namespace

std::unique_ptr<Command> makeGalleryCommand(CLI::App& program) { return std::make_unique<GalleryCommand>(program); }

} // namespace ovwpaint
