#include "commandoptions.h"

#include "colour.h"
#include "command.h"
#include "layout.h"
#include "presets.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <cstdlib>

namespace ovwpaint {

namespace {

std::optional<XCPoint> parsePoint(const std::string& text) {
    XCPoint point;
    const char* const end = text.data() + text.size();
    const auto [comma, badX] = std::from_chars(text.data(), end, point.x);
    if (badX != std::errc() || comma == end || *comma != ',')
        return std::nullopt;
    const auto [rest, badY] = std::from_chars(comma + 1, end, point.y);
    const auto isNear = [](std::int32_t value) { return value >= -cnMaxSide && value <= cnMaxSide; };
    if (badY != std::errc() || rest != end || !isNear(point.x) || !isNear(point.y))
        return std::nullopt;
    return point;
}

} // namespace

bool Command::isChosen() const { return m_app.parsed(); }

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

CLI::Validator oneOf(std::vector<std::string> names) {
    const auto check = [names = std::move(names)](const std::string& text) -> std::string {
        if (std::find(names.begin(), names.end(), text) != names.end())
            return "";
        std::string list;
        for (const std::string& name : names)
            list += (list.empty() ? "" : ", ") + name;
        return "\"" + text + "\" is none of " + list;
    };
    return CLI::Validator(check, "");
}

CLI::Option* addPoint(CLI::App& app, const std::string& option, std::optional<XCPoint>& value,
                      const std::string& description) {
    const auto take = [&value, option](const std::string& text) {
        value = parsePoint(text);
        if (!value)
            throw CLI::ValidationError(option, "\"" + text + "\" is no point such as 30,-20");
    };
    return app.add_option_function<std::string>(option, take, description)->type_name("X,Y");
}

CLI::Option* addName(CLI::App& app, const std::string& option, std::optional<int>& value,
                     std::span<const NamedValue> names, const std::string& description) {
    const auto toNumber = [names](std::string& text) -> std::string {
        std::optional<int> number = valueNamed(names, text);
        for (const NamedValue& named : names) {
            if (text == std::to_string(named.value))
                number = named.value;
        }
        if (!number)
            return "\"" + text + "\" is none of " + listOf(names);
        text = std::to_string(*number);
        return "";
    };
    return app.add_option(option, value, description)->transform(CLI::Validator(toNumber, ""))->type_name("NAME");
}

void addRunOptions(CLI::App& app, RunOptions& options) {
    app.add_option("--memory", options.memory, "Memory for the picture, in MiB; the rest goes to a swap file")
        ->check(CLI::Range(1, 2047))
        ->type_name("MIB")
        ->capture_default_str();
    app.add_option("--swap", options.swapFolder, "Folder of the swap file (default: the temporary folder)")
        ->type_name("FOLDER");
    app.add_flag("--quiet", options.quiet, "No progress bar");
}

} // namespace ovwpaint
