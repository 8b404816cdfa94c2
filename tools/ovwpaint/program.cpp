#include "program.h"

#include "command.h"
#include "failure.h"
#include "interrupt.h"

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/xcexception.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>
#include <new>
#include <string>
#include <vector>

namespace ovwpaint {

namespace {

constexpr const char* cnMainFooter =
    "Exit status: 0 done, 1 failure, 2 wrong usage, 130 interrupted.\n"
    "Example: ovwpaint draw examples/strokes/signature.inkml -o signature.png --scale 2";

std::string versionText() {
    return "ovwpaint " + std::to_string(OVWCMN_VERSION_MAJOR) + "." + std::to_string(OVWCMN_VERSION_MINOR) + "." +
           std::to_string(OVWCMN_VERSION_PATCH);
}

/// Every command, in the order of the help.
constexpr std::array cnCommands = {makeDrawCommand, makePresetsCommand, makeGalleryCommand, makeConvertCommand,
                                   makeInfoCommand, makeFillCommand,    makeSmoothCommand,  makeSettingsCommand,
                                   makePackCommand, makeUnpackCommand,  makeUnzipCommand};

/// The command line as CLI11 knows it.
struct CommandLine {
    CLI::App app{"Paints recorded pen strokes into pictures, and works with pictures and files of the library."};
    std::vector<std::unique_ptr<Command>> commands;

    CommandLine() {
        app.name("ovwpaint");
        app.set_version_flag("--version", versionText(), "Print the version");
        app.set_help_flag("-h,--help", "Print this help");
        app.require_subcommand(1);
        app.footer(cnMainFooter);
        for (const auto make : cnCommands)
            commands.push_back(make(app));
    }
};

void runCommand(CommandLine& line) {
    watchInterrupts();
    for (const std::unique_ptr<Command>& command : line.commands) {
        if (command->isChosen())
            command->run();
    }
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
