#include "brushfile.h"
#include "command.h"
#include "commandoptions.h"
#include "failure.h"
#include "presets.h"

#include <CLI/CLI.hpp>

#include <iomanip>
#include <iostream>

namespace ovwpaint {

namespace {

class PresetsCommand final : public Command {
public:
    explicit PresetsCommand(CLI::App& program)
        : Command(program.add_subcommand("presets", "List the brushes, or print one as a brush file")) {
        app()
            .add_option("--json", m_printed, "Print this preset as a brush file to start from")
            ->check(oneOf(presetNames()))
            ->type_name("NAME");
    }

    void run() override {
        if (!m_printed.empty()) {
            std::cout << formatBrush(brushOf(*findPreset(m_printed)));
        } else {
            for (const Preset& preset : presets())
                std::cout << std::left << std::setw(18) << preset.name << preset.description << '\n';
        }
        if (!std::cout.flush())
            throw Failure("standard output: cannot be written");
    }

private:
    std::string m_printed;
};

} // namespace

std::unique_ptr<Command> makePresetsCommand(CLI::App& program) { return std::make_unique<PresetsCommand>(program); }

} // namespace ovwpaint
