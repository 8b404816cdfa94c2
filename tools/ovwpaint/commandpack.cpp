// Folders packed into one file, and unpacked from it or from a ZIP archive.

#include "command.h"
#include "failure.h"
#include "libraryprogress.h"
#include "naming.h"

#include "ovwcmn/vxwutl.h"
#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcfilecompression.h"
#include "ovwcmn/xcfilepath.h"
#include "ovwcmn/xcunzip.h"

#include <CLI/CLI.hpp>

#include <deque>
#include <filesystem>
#include <limits>

namespace ovwpaint {

namespace {

void makeFolder(const std::string& folder) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (!std::filesystem::is_directory(folder))
        throw Failure(folder + ": " + (error ? error.message() : "no folder"));
}

void requireFile(const std::string& file) {
    std::error_code ignored;
    if (!std::filesystem::exists(file, ignored))
        throw Failure(file + ": no such file");
}

class Packer final : public XCFileCompression {
public:
    explicit Packer(LibraryProgress& progress) {
        m_progress = &progress;
        m_abort = &progress;
    }
};

class PackCommand final : public Command {
public:
    explicit PackCommand(CLI::App& program)
        : Command(program.add_subcommand("pack", "Pack files and folders into one file")) {
        app().add_option("-o,--output", m_output, "The packed file to write")->required()->type_name("OUT");
        app().add_option("FILES", m_items, "What to pack; folders with everything in them")->required();
        app().add_flag("--quiet", m_quiet, "No progress bar");
        app().footer("Example: ovwpaint pack -o brushes.azxv examples/brushes");
    }

    void run() override {
        std::deque<XCFilePath> paths;
        XCTArray<XCFilePath*> items;
        for (const std::string& item : m_items) {
            requireFile(item);
            items.PushBack(&paths.emplace_back(xcPathFromPosix(item.c_str())));
        }
        LibraryProgress progress("packing", m_quiet);
        naming(m_output, [&] { Packer(progress).Compress(xcPathFromPosix(m_output.c_str()), items); });
    }

private:
    std::string m_output;
    std::vector<std::string> m_items;
    bool m_quiet = false;
};

/// What unpacking commands have in common.
class ExtractCommand : public Command {
public:
    void run() override {
        requireFile(m_file);
        makeFolder(m_folder);
        LibraryProgress progress("unpacking", m_quiet);
        naming(m_file, [&] { extract(xcPathFromPosix(m_file.c_str()), xcPathFromPosix(m_folder.c_str()), progress); });
    }

protected:
    ExtractCommand(CLI::App* command, const char* file) : Command(command) {
        app().add_option("FILE", m_file, file)->required();
        app()
            .add_option("-o,--output", m_folder, "The folder to unpack into, made if it does not exist")
            ->required()
            ->type_name("DIR");
        app()
            .add_option("--limit", m_limit, "The most that may come out, in MiB (default: 1024, or 20 times the file)")
            ->check(CLI::Range(std::uint64_t{1}, std::numeric_limits<std::uint64_t>::max() >> cnMiBShift))
            ->type_name("MIB");
        app().add_flag("--quiet", m_quiet, "No progress bar");
    }

    /// The most bytes that may come out; 0: the library's own limit.
    std::uint64_t limit() const { return m_limit << cnMiBShift; }

private:
    static constexpr int cnMiBShift = 20;

    virtual void extract(const XCFilePath& file, const XCFilePath& folder, LibraryProgress& progress) = 0;

    std::string m_file;
    std::string m_folder;
    std::uint64_t m_limit = 0;
    bool m_quiet = false;
};

class UnpackCommand final : public ExtractCommand {
public:
    explicit UnpackCommand(CLI::App& program)
        : ExtractCommand(program.add_subcommand("unpack", "Unpack a file that `pack` made"), "The packed file") {
        app().footer("Files replace those of the same name; a folder whose name is taken gets a number.\n"
                     "Example: ovwpaint unpack brushes.azxv -o brushes");
    }

private:
    void extract(const XCFilePath& file, const XCFilePath& folder, LibraryProgress& progress) override {
        Packer packer(progress);
        packer.SetUnpackLimit(limit());
        packer.Decompress(folder, file);
    }
};

class UnzipCommand final : public ExtractCommand {
public:
    explicit UnzipCommand(CLI::App& program)
        : ExtractCommand(program.add_subcommand("unzip", "Extract a ZIP archive"), "The archive") {
        app().footer("Refused, with nothing left behind: names that leave the folder, links, encrypted and damaged\n"
                     "archives.\nExample: ovwpaint unzip tips.zip -o tips");
    }

private:
    void extract(const XCFilePath& file, const XCFilePath& folder, LibraryProgress& progress) override {
        VXUNZIPOPTIONS options;
        options.maxBytes = limit();
        options.progress = &progress;
        options.abort = &progress;
        if (!xcUnzip(file, folder, &options))
            xcThrowError(vxGetLastError());
    }
};

} // namespace

std::unique_ptr<Command> makePackCommand(CLI::App& program) { return std::make_unique<PackCommand>(program); }
std::unique_ptr<Command> makeUnpackCommand(CLI::App& program) { return std::make_unique<UnpackCommand>(program); }
std::unique_ptr<Command> makeUnzipCommand(CLI::App& program) { return std::make_unique<UnzipCommand>(program); }

} // namespace ovwpaint
