#ifndef OVWPAINT_COMMAND_H
#define OVWPAINT_COMMAND_H

/// @file
/// A command of the program; each stands in a file of its own and is listed in program.cpp.

#include <memory>

namespace CLI {
class App;
}

namespace ovwpaint {

/// Declares its options to the command line when it is made, and works with what these filled in.
class Command {
public:
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;
    virtual ~Command() = default;

    /// Whether the command line names this command.
    bool isChosen() const;
    /// Throws Failure, Interrupted or XCException.
    virtual void run() = 0;

protected:
    /// @param app the part of the command line that is this command's
    explicit Command(CLI::App* app) : m_app(*app) {}
    CLI::App& app() { return m_app; }

private:
    CLI::App& m_app;
};

std::unique_ptr<Command> makeDrawCommand(CLI::App& program);
std::unique_ptr<Command> makePresetsCommand(CLI::App& program);
std::unique_ptr<Command> makeGalleryCommand(CLI::App& program);
std::unique_ptr<Command> makeConvertCommand(CLI::App& program);
std::unique_ptr<Command> makeInfoCommand(CLI::App& program);
std::unique_ptr<Command> makeFillCommand(CLI::App& program);
std::unique_ptr<Command> makeSmoothCommand(CLI::App& program);
std::unique_ptr<Command> makeSettingsCommand(CLI::App& program);
std::unique_ptr<Command> makePackCommand(CLI::App& program);
std::unique_ptr<Command> makeUnpackCommand(CLI::App& program);
std::unique_ptr<Command> makeUnzipCommand(CLI::App& program);

} // namespace ovwpaint

#endif // OVWPAINT_COMMAND_H
