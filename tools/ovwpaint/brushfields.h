#ifndef OVWPAINT_BRUSHFIELDS_H
#define OVWPAINT_BRUSHFIELDS_H

/// @file
/// The fields of a brush by name, with the values that a brush file may give them.

#include "brush.h"
#include "names.h"

#include <cstdint>
#include <span>

namespace ovwpaint {

/// A whole number from `least` to `most`; with `bits`, any combination of the bits of `most`; with `names`, a brush
/// file may also give it by name.
struct IntegerField {
    const char* name;
    int& (*in)(Brush&);
    int least;
    int most;
    bool bits = false;
    std::span<const NamedValue> (*names)() = nullptr;

    bool accepts(std::int64_t value) const { return value >= least && value <= most && (!bits || !(value & ~most)); }
};

struct NumberField {
    const char* name;
    float& (*in)(Brush&);
    double least;
    double most;
};

struct ColourField {
    const char* name;
    std::uint32_t& (*in)(Brush&);
};

std::span<const IntegerField> integerFields();
std::span<const NumberField> numberFields();
std::span<const ColourField> colourFields();

/// What a texture's density is at most, either way.
inline constexpr int cnMaxTextureDensity = 256;

// Names of files, or of what needs no file.
inline constexpr const char* cnTextureField = "texture";
inline constexpr const char* cnMaskField = "mask";
inline constexpr const char* cnPatternsField = "patterns"; ///< a list
/// The two lists of points.
inline constexpr const char* cnPolygonField = "polygon";
inline constexpr const char* cnFixedPlotsField = "fixedPlots";

} // namespace ovwpaint

#endif // OVWPAINT_BRUSHFIELDS_H
