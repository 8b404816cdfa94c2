#ifndef OVWPAINT_COMMANDOPTIONS_H
#define OVWPAINT_COMMANDOPTIONS_H

/// @file
/// Options that several commands have, and the texts that they take.

#include "names.h"
#include "runoptions.h"

#include "ovwcmn/xcgeometry.h"

#include <CLI/App.hpp>

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace ovwpaint {

std::vector<std::string> presetNames();

// Validators: the answer is empty when the text is right, else what is wrong with it.
std::string checkColour(const std::string& text);
std::string checkScale(const std::string& text);
/// One of the names; unlike CLI::IsMember it does not put them all into the help.
CLI::Validator oneOf(std::vector<std::string> names);

/// An option that takes "X,Y", whole numbers no further from 0 than pictures are large.
CLI::Option* addPoint(CLI::App& app, const std::string& option, std::optional<XCPoint>& value,
                      const std::string& description);
/// An option that takes one of the names or its number.
CLI::Option* addName(CLI::App& app, const std::string& option, std::optional<int>& value,
                     std::span<const NamedValue> names, const std::string& description);

void addRunOptions(CLI::App& app, RunOptions& options);

} // namespace ovwpaint

#endif // OVWPAINT_COMMANDOPTIONS_H
