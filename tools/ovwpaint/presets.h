#ifndef OVWPAINT_PRESETS_H
#define OVWPAINT_PRESETS_H

/// @file
/// The brushes that come with the program.

#include "brush.h"

#include <span>
#include <string_view>

namespace ovwpaint {

struct Preset {
    std::string_view name;
    std::string_view description;
    void (*adjust)(Brush&); ///< from a default brush
};

std::span<const Preset> presets();
/// Null for an unknown name.
const Preset* findPreset(std::string_view name);
Brush brushOf(const Preset& preset);

} // namespace ovwpaint

#endif // OVWPAINT_PRESETS_H
