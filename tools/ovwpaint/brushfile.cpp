#include "brushfile.h"

#include "brushfields.h"
#include "colour.h"
#include "failure.h"
#include "materials.h"
#include "texture.h"
#include "tips.h"

#include <nlohmann/json.hpp>

#include <cerrno>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

namespace ovwpaint {

namespace {

using Json = nlohmann::json;

constexpr std::size_t cnMaxFileBytes = 1 << 20;

/// Fills a brush from the members of a JSON object.
class BrushParser {
public:
    BrushParser(const std::string& name, const std::filesystem::path& folder) : m_name(name), m_folder(folder) {}

    Brush parse(std::string_view text) {
        const Json json = parseJson(text);
        if (!json.is_object())
            throw Failure(m_name + ": a brush is a JSON object, this is " + json.type_name());
        for (const auto& [field, value] : json.items())
            assign(field, value);
        if (!m_brush.tips.patterns.empty() && !json.contains("patternKind"))
            m_brush.pattern.patternKind = XCPattern::cnKindImage;
        if (m_brush.hasImageTips() && m_brush.tips.patterns.empty())
            fail("patternKind", std::string("image tips are needed in \"") + cnPatternsField + "\"");
        return m_brush;
    }

private:
    Json parseJson(std::string_view text);
    void assign(const std::string& field, const Json& value);
    void assignName(const IntegerField& field, const std::string& name);
    void assignInteger(const IntegerField& field, const Json& value);
    void assignNumber(const NumberField& field, const Json& value);
    void assignColour(const ColourField& field, const Json& value);
    void assignTexture(const Json& value);
    void assignMask(const Json& value);
    void assignPatterns(const Json& value);
    void assignPolygon(const Json& value);
    void assignFixedPlots(const Json& value);
    std::string fileName(const std::string& field, const Json& value) const;
    tagPOINTD point(const std::string& field, const Json& value, double limit) const;
    [[noreturn]] void fail(const std::string& field, const std::string& what) const {
        throw Failure(m_name + ": field \"" + field + "\": " + what);
    }

    const std::string m_name;
    const std::filesystem::path m_folder; ///< where the names of files start
    Brush m_brush;
};

/// The library's messages carry an error number in brackets in front, which tells the user nothing.
std::string withoutErrorNumber(const std::string& message) {
    const std::size_t end = message.find("] ");
    return end == std::string::npos ? message : message.substr(end + 2);
}

Json BrushParser::parseJson(std::string_view text) {
    // A list of points lies at depth 1, a point at 2, its numbers at 3; what is deeper cannot be a brush.
    constexpr int cnMaxDepth = 3;
    std::set<std::string> seen;
    const auto watch = [&](int depth, Json::parse_event_t event, Json& parsed) {
        if (depth > cnMaxDepth)
            throw Failure(m_name + ": nested too deeply for a brush");
        if (depth == 1 && event == Json::parse_event_t::key && !seen.insert(parsed.get<std::string>()).second)
            fail(parsed.get<std::string>(), "given twice");
        return true;
    };
    try {
        return Json::parse(text.begin(), text.end(), watch);
    } catch (const Json::exception& error) {
        throw Failure(m_name + ": " + withoutErrorNumber(error.what()));
    }
}

void BrushParser::assign(const std::string& name, const Json& value) {
    for (const IntegerField& field : integerFields()) {
        if (name == field.name)
            return assignInteger(field, value);
    }
    for (const NumberField& field : numberFields()) {
        if (name == field.name)
            return assignNumber(field, value);
    }
    for (const ColourField& field : colourFields()) {
        if (name == field.name)
            return assignColour(field, value);
    }
    if (name == cnTextureField)
        return assignTexture(value);
    if (name == cnMaskField)
        return assignMask(value);
    if (name == cnPatternsField)
        return assignPatterns(value);
    if (name == cnPolygonField)
        return assignPolygon(value);
    if (name == cnFixedPlotsField)
        return assignFixedPlots(value);
    fail(name, "no such field");
}

void BrushParser::assignName(const IntegerField& field, const std::string& name) {
    const std::optional<int> value = valueNamed(field.names(), name);
    if (!value)
        fail(field.name, Json(name).dump() + " is none of " + listOf(field.names()));
    field.in(m_brush) = *value;
}

void BrushParser::assignInteger(const IntegerField& field, const Json& value) {
    if (field.names && value.is_string())
        return assignName(field, value.get_ref<const std::string&>());
    if (!value.is_number_integer())
        fail(field.name, std::string("a whole number is needed, not ") + value.type_name());
    // A number beyond 63 bits is unsigned and would wrap to a negative one, which no field takes either.
    const std::int64_t number = value.get<std::int64_t>();
    if (value.is_number_unsigned() && number < 0)
        fail(field.name, value.dump() + " is out of range");
    if (!field.accepts(number)) {
        const std::string range = field.bits ? "a sum of the bits of " + std::to_string(field.most)
                                             : std::to_string(field.least) + " to " + std::to_string(field.most);
        fail(field.name, value.dump() + " is out of range (" + range + ")");
    }
    field.in(m_brush) = static_cast<int>(number);
}

void BrushParser::assignNumber(const NumberField& field, const Json& value) {
    if (!value.is_number())
        fail(field.name, std::string("a number is needed, not ") + value.type_name());
    const double number = value.get<double>();
    if (!(number >= field.least && number <= field.most))
        fail(field.name,
             value.dump() + " is out of range (" + Json(field.least).dump() + " to " + Json(field.most).dump() + ")");
    field.in(m_brush) = static_cast<float>(number);
}

void BrushParser::assignColour(const ColourField& field, const Json& value) {
    if (!value.is_string())
        fail(field.name, std::string("a colour such as \"#204080FF\" is needed, not ") + value.type_name());
    const std::optional<Colour> colour = parseColour(value.get_ref<const std::string&>());
    if (!colour)
        fail(field.name, value.dump() + " is no colour");
    field.in(m_brush) = *colour;
}

std::string BrushParser::fileName(const std::string& field, const Json& value) const {
    if (!value.is_string())
        fail(field, std::string("the name of a PNG file is needed, not ") + value.type_name());
    const std::string& name = value.get_ref<const std::string&>();
    if (name.empty() || name.find('\0') != std::string::npos)
        fail(field, value.dump() + " is no file name");
    const std::filesystem::path path = m_folder / name;
    std::error_code ignored;
    if (!std::filesystem::exists(path, ignored))
        fail(field, path.string() + ": no such file");
    return path.string();
}

void BrushParser::assignTexture(const Json& value) {
    const bool isBuiltIn = value.is_string() && value.get_ref<const std::string&>() == cnGrainTexture;
    m_brush.texture.texture = isBuiltIn ? cnGrainTexture : fileName(cnTextureField, value);
}

void BrushParser::assignMask(const Json& value) {
    const bool isBuiltIn = value.is_string() && value.get_ref<const std::string&>() == cnStencilMask;
    m_brush.source.mask = isBuiltIn ? cnStencilMask : fileName(cnMaskField, value);
}

void BrushParser::assignPatterns(const Json& value) {
    if (!value.is_array())
        fail(cnPatternsField, std::string("a list of the names of PNG files is needed, not ") + value.type_name());
    if (value.empty() || value.size() > cnMostTips)
        fail(cnPatternsField, std::to_string(value.size()) + " tips are out of range (1 to 32)");
    for (const Json& tip : value) {
        const bool isBuiltIn = tip.is_string() && tip.get_ref<const std::string&>().starts_with(cnBuiltInPrefix);
        if (isBuiltIn && !isBuiltInTip(tip.get_ref<const std::string&>()))
            fail(cnPatternsField, tip.dump() + " is none of " + builtInTipNames());
        m_brush.tips.patterns.push_back(isBuiltIn ? tip.get<std::string>() : fileName(cnPatternsField, tip));
    }
}

tagPOINTD BrushParser::point(const std::string& field, const Json& value, double limit) const {
    if (!value.is_array() || value.size() != 2 || !value[0].is_number() || !value[1].is_number())
        fail(field, "a list of points [x, y] is needed");
    const tagPOINTD point{value[0].get<double>(), value[1].get<double>()};
    if (!(std::abs(point.x) <= limit && std::abs(point.y) <= limit))
        fail(field, value.dump() + " is out of range (" + Json(-limit).dump() + " to " + Json(limit).dump() + ")");
    return point;
}

void BrushParser::assignPolygon(const Json& value) {
    constexpr std::size_t cnMostVertices = 1000;
    constexpr double cnTipLimit = 10.0;
    if (!value.is_array())
        fail(cnPolygonField, "a list of points [x, y] is needed");
    if (value.size() < 3 || value.size() > cnMostVertices)
        fail(cnPolygonField, std::to_string(value.size()) + " points are out of range (3 to 1000)");
    m_brush.pattern.polygon.Clear();
    for (const Json& vertex : value)
        m_brush.pattern.polygon.PushBack(point(cnPolygonField, vertex, cnTipLimit));
}

void BrushParser::assignFixedPlots(const Json& value) {
    constexpr double cnPlotLimit = 10.0;
    if (!value.is_array())
        fail(cnFixedPlotsField, "a list of points [x, y] is needed");
    if (value.size() > PDPARAM_AIRBRUSH::cnMaxPlots)
        fail(cnFixedPlotsField, std::to_string(value.size()) + " points are out of range (0 to 256)");
    std::size_t i = 0;
    for (const Json& plot : value)
        m_brush.airbrush.fixedPlots[i++] = point(cnFixedPlotsField, plot, cnPlotLimit);
}

/// A float as the shortest decimal that reads back as the same float.
double shortest(float value) { return std::stod(nlohmann::json(value).dump()); }

nlohmann::ordered_json pointList(const tagPOINTD* points, int count) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (int i = 0; i < count; ++i)
        list.push_back({points[i].x, points[i].y});
    return list;
}

} // namespace

Brush readBrushFile(const std::string& path) {
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw Failure(path + ": " + std::strerror(errno != 0 ? errno : ENOENT));
    std::string text(cnMaxFileBytes + 1, '\0');
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (file.bad() || (file.fail() && !file.eof()))
        throw Failure(path + ": cannot be read");
    text.resize(static_cast<std::size_t>(file.gcount()));
    if (text.size() > cnMaxFileBytes)
        throw Failure(path + ": too large for a brush");
    return parseBrush(text, path, std::filesystem::path(path).parent_path().string());
}

Brush parseBrush(std::string_view json, const std::string& name, const std::string& folder) {
    return BrushParser(name, folder).parse(json);
}

std::string formatBrush(const Brush& brush) {
    Brush copy = brush; // the fields hand out references
    nlohmann::ordered_json json;
    for (const ColourField& field : colourFields())
        json[field.name] = formatColour(field.in(copy));
    for (const IntegerField& field : integerFields()) {
        const char* name = field.names ? nameOf(field.names(), field.in(copy)) : nullptr;
        if (name)
            json[field.name] = name;
        else
            json[field.name] = field.in(copy);
    }
    for (const NumberField& field : numberFields())
        json[field.name] = shortest(field.in(copy));
    if (!copy.texture.texture.empty())
        json[cnTextureField] = copy.texture.texture;
    if (!copy.source.mask.empty())
        json[cnMaskField] = copy.source.mask;
    if (!copy.tips.patterns.empty())
        json[cnPatternsField] = copy.tips.patterns;
    if (copy.pattern.polygon.GetSize() > 0)
        json[cnPolygonField] = pointList(&copy.pattern.polygon[0], copy.pattern.polygon.GetSize());
    if (copy.airbrush.sprayFlags & cnSprayFixedPlots)
        json[cnFixedPlotsField] = pointList(copy.airbrush.fixedPlots, copy.airbrush.plotCountAtFull);
    return json.dump(2) + "\n";
}

} // namespace ovwpaint
