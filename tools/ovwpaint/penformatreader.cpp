#include "penformatreader.h"

#include "inkxml.h"

#include <array>
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <string>

namespace ovwpaint {

namespace {

constexpr double cnPixelsPerInch = 96.0;
constexpr double cnMillimetresPerInch = 25.4;

struct NamedKind {
    std::string_view name;
    ChannelKind kind;
};

constexpr std::array cnChannelKinds = {
    NamedKind{"X", ChannelKind::X},        NamedKind{"Y", ChannelKind::Y},
    NamedKind{"F", ChannelKind::Force},    NamedKind{"T", ChannelKind::Time},
    NamedKind{"OA", ChannelKind::Azimuth}, NamedKind{"OE", ChannelKind::Elevation},
    NamedKind{"OTx", ChannelKind::TiltX},  NamedKind{"OTy", ChannelKind::TiltY},
};

struct NamedUnit {
    std::string_view name;
    double size;
};

/// Pixels, milliseconds and degrees in one unit. "dev" and names that are not listed count as one.
constexpr std::array cnUnits = {
    NamedUnit{"in", cnPixelsPerInch},
    NamedUnit{"m", cnPixelsPerInch / cnMillimetresPerInch * 1000.0},
    NamedUnit{"cm", cnPixelsPerInch / cnMillimetresPerInch * 10.0},
    NamedUnit{"mm", cnPixelsPerInch / cnMillimetresPerInch},
    NamedUnit{"pt", cnPixelsPerInch / 72.0},
    NamedUnit{"pc", cnPixelsPerInch / 6.0},
    NamedUnit{"s", 1000.0},
    NamedUnit{"us", 0.001},
    NamedUnit{"rad", 180.0 / std::numbers::pi},
};

double unitSize(std::string_view unit) {
    for (const NamedUnit& known : cnUnits) {
        if (known.name == unit)
            return known.size;
    }
    return 1.0;
}

ChannelKind kindOf(std::string_view name) {
    for (const NamedKind& known : cnChannelKinds) {
        if (known.name == name)
            return known.kind;
    }
    return ChannelKind::Other;
}

/// A number in an attribute; `missing` when there is none or it is not finite.
double numberOf(pugi::xml_node node, const char* attribute, double missing) {
    const char* text = node.attribute(attribute).as_string();
    char* end = nullptr;
    const double number = std::strtod(text, &end);
    return end != text && std::isfinite(number) ? number : missing;
}

/// The element that tells a channel's resolution, or an empty node.
pugi::xml_node resolutionOf(pugi::xml_node source, std::string_view channel) {
    const pugi::xml_node properties = childElement(source, "channelProperties");
    for (pugi::xml_node property : properties.children()) {
        if (attributeText(property, "channel") == channel && attributeText(property, "name") == "resolution")
            return property;
    }
    return {};
}

/// How much one step of a channel's values is, in pixels, milliseconds or degrees. Whole numbers, and numbers in
/// device units, count steps of the resolution, as "1000 a cm"; other numbers are in the channel's own unit.
double stepSize(pugi::xml_node channel, pugi::xml_node source) {
    const std::string_view unit = attributeText(channel, "units");
    const bool counts = attributeText(channel, "type") == "integer" || unit.empty() || unit == "dev";
    const pugi::xml_node property = resolutionOf(source, attributeText(channel, "name"));
    const double resolution = numberOf(property, "value", 0.0);
    if (!counts || !(resolution > 0.0))
        return unitSize(unit);
    const std::string_view per = attributeText(property, "units");
    return unitSize(per.starts_with("1/") ? per.substr(2) : unit) / resolution;
}

Channel readForce(pugi::xml_node channel, bool& maximumKnown) {
    const double maximum = numberOf(channel, "max", 0.0);
    const double minimum = numberOf(channel, "min", 0.0);
    maximumKnown = maximum > minimum;
    return {ChannelKind::Force, minimum, maximumKnown ? 1.0 / (maximum - minimum) : 1.0};
}

void readChannel(pugi::xml_node element, pugi::xml_node source, TraceFormat& format) {
    const ChannelKind kind = kindOf(attributeText(element, "name"));
    Channel channel{kind, 0.0, 1.0};
    if (kind == ChannelKind::Force) {
        channel = readForce(element, format.forceMaximumKnown);
    } else if (kind != ChannelKind::Other) {
        const bool reversed = attributeText(element, "orientation") == "-ve";
        channel.scale = stepSize(element, source) * (reversed ? -1.0 : 1.0);
    }
    format.channels.push_back(channel);
}

TraceFormat impliedFormat() {
    TraceFormat format;
    format.channels = {{ChannelKind::X, 0.0, 1.0}, {ChannelKind::Y, 0.0, 1.0}};
    format.regularCount = format.channels.size();
    return format;
}

} // namespace

TraceFormat readTraceFormat(pugi::xml_node element, pugi::xml_node source) {
    TraceFormat format;
    for (pugi::xml_node child : element.children()) {
        if (isElement(child, "channel"))
            readChannel(child, source, format);
    }
    if (format.channels.empty())
        return impliedFormat();
    format.regularCount = format.channels.size();
    const pugi::xml_node intermittent = childElement(element, "intermittentChannels");
    for (pugi::xml_node child : intermittent.children()) {
        if (isElement(child, "channel"))
            readChannel(child, source, format);
    }
    return format;
}

} // namespace ovwpaint
