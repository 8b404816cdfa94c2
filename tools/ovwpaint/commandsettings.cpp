// Settings in preference files and in keys: folders with their values in a file.

#include "command.h"
#include "commandoptions.h"
#include "failure.h"
#include "naming.h"
#include "settingsvalue.h"

#include "ovwcmn/xcpreferencefile.h"
#include "ovwcmn/xcregkey.h"
#include "ovwcmn/xcstringarray.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <type_traits>

namespace ovwpaint {

namespace {

/// Where settings are kept, open for reading or for writing. Throws Failure and XCException.
class PreferenceFile {
public:
    PreferenceFile(const std::string& path, bool forWriting) {
        if (!m_file.OpenPreferenceFile(forWriting, xcPathFromPosix(path.c_str())))
            throw Failure(path + ": no such file");
    }
    template <class Value>
    void set(const char* label, const Value& value) {
        m_file.SetPreferenceFile(label, value);
    }
    template <class Value>
    bool get(const char* label, Value& value) {
        return m_file.GetPreferenceFile(label, value);
    }
    void setBytes(const char* label, const std::vector<std::uint8_t>& bytes) {
        m_file.SetPreferenceFile(label, static_cast<int>(bytes.size()), static_cast<const void*>(bytes.data()));
    }
    bool getBytes(const char* label, std::vector<std::uint8_t>& bytes) {
        return m_file.GetPreferenceFile(label, static_cast<int>(bytes.size()), static_cast<void*>(bytes.data()));
    }
    int sizeOf(const char* label) { return m_file.GetValueSize(label); }
    void listLabels(XCStringArray& labels) { m_file.GetLabels(labels); }
    void close() { m_file.ClosePreferenceFile(); }

private:
    XCPreferenceFile m_file;
};

class Key {
public:
    Key(const std::string& folder, bool forWriting) {
        if (!m_key.Open(xcPathFromPosix(folder.c_str()), nullptr, forWriting ? XCRegKey::cnWrite : XCRegKey::cnRead))
            throw Failure(folder + ": no such folder");
    }
    template <class Value>
    void set(const char* label, const Value& value) {
        m_key.SetValue(value, label);
    }
    template <class Value>
    bool get(const char* label, Value& value) {
        return m_key.GetValue(value, label);
    }
    void setBytes(const char* label, const std::vector<std::uint8_t>& bytes) {
        m_key.SetValue(static_cast<const void*>(bytes.data()), static_cast<int>(bytes.size()), label);
    }
    bool getBytes(const char* label, std::vector<std::uint8_t>& bytes) {
        return m_key.GetValue(static_cast<void*>(bytes.data()), static_cast<int>(bytes.size()), label);
    }
    int sizeOf(const char* label) { return m_key.GetValueSize(label); }
    void listLabels(XCStringArray& labels) { m_key.GetLabels(labels); }
    void close() { m_key.Close(); }

private:
    XCRegKey m_key;
};

/// A type of values: from and to text. setText is false when the text is no such value, getText when the label has
/// none.
template <class Store>
struct ValueType {
    const char* name;
    bool (*setText)(Store& store, const char* label, const std::string& text);
    bool (*getText)(Store& store, const char* label, std::string& text);
};

template <class Store, class Value>
constexpr ValueType<Store> valueType(const char* name) {
    return {name,
            [](Store& store, const char* label, const std::string& text) {
                Value value{};
                if (!parseValue(text, value))
                    return false;
                store.set(label, value);
                return true;
            },
            [](Store& store, const char* label, std::string& text) {
                Value value{};
                if (!store.get(label, value))
                    return false;
                text = formatValue(value);
                return true;
            }};
}

template <class Store>
std::vector<std::uint8_t> readBytes(Store& store, const char* label) {
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(std::max(store.sizeOf(label), 0)));
    if (!bytes.empty())
        store.getBytes(label, bytes);
    return bytes;
}

template <class Store>
constexpr ValueType<Store> bytesType(const char* name) {
    return {name,
            [](Store& store, const char* label, const std::string& text) {
                const auto bytes = parseBytes(text);
                if (!bytes)
                    return false;
                store.setBytes(label, *bytes);
                return true;
            },
            [](Store& store, const char* label, std::string& text) {
                text = formatBytes(readBytes(store, label));
                return true;
            }};
}

constexpr std::array cnPreferenceTypes = {
    valueType<PreferenceFile, XCString>("text"),        valueType<PreferenceFile, std::int16_t>("int16"),
    valueType<PreferenceFile, std::uint16_t>("uint16"), valueType<PreferenceFile, std::int32_t>("int32"),
    valueType<PreferenceFile, std::uint32_t>("uint32"), valueType<PreferenceFile, float>("float"),
    valueType<PreferenceFile, double>("double"),        valueType<PreferenceFile, XCFilePath>("path"),
    valueType<PreferenceFile, tagRECT>("rect"),         bytesType<PreferenceFile>("data"),
    valueType<PreferenceFile, XCLength>("length"),      valueType<PreferenceFile, tagVXRGBCOLOR16>("colour"),
    valueType<PreferenceFile, _VXNUMBER>("number"),
};

constexpr std::array cnKeyTypes = {
    valueType<Key, XCString>("text"),        valueType<Key, std::int16_t>("int16"),
    valueType<Key, std::uint16_t>("uint16"), valueType<Key, std::int32_t>("int32"),
    valueType<Key, std::uint32_t>("uint32"), valueType<Key, float>("float"),
    valueType<Key, double>("double"),        valueType<Key, XCFilePath>("path"),
    valueType<Key, tagRECT>("rect"),         bytesType<Key>("data"),
    valueType<Key, std::uint8_t>("uint8"),   valueType<Key, std::int64_t>("int64"),
    valueType<Key, std::uint64_t>("uint64"), valueType<Key, tagPOINT>("point"),
    valueType<Key, tagSIZE>("size"),         valueType<Key, tagPOINTF>("pointf"),
    valueType<Key, tagSIZEF>("sizef"),       valueType<Key, tagRECTF>("rectf"),
    valueType<Key, tagPOINTD>("pointd"),     valueType<Key, tagSIZED>("sized"),
    valueType<Key, tagRECTD>("rectd"),       valueType<Key, XCLength>("length"),
};

const auto& typesOf(const PreferenceFile&) { return cnPreferenceTypes; }
const auto& typesOf(const Key&) { return cnKeyTypes; }

std::vector<std::string> typeNames() {
    std::vector<std::string> names;
    for (const auto& type : cnKeyTypes)
        names.emplace_back(type.name);
    for (const auto& type : cnPreferenceTypes)
        if (std::find(names.begin(), names.end(), type.name) == names.end())
            names.emplace_back(type.name);
    return names;
}

struct SettingsOptions {
    std::string file;
    std::string label;
    std::string value;
    std::string type = "text";
};

template <class Store>
const ValueType<Store>& chooseType(const Store& store, const SettingsOptions& options) {
    const auto& types = typesOf(store);
    const auto found =
        std::find_if(types.begin(), types.end(), [&](const auto& type) { return type.name == options.type; });
    if (found == types.end())
        throw Failure(options.file + ": settings there have no type \"" + options.type + "\"");
    return *found;
}

/// Labels come from files: nothing of them may move the terminal's cursor.
std::string printable(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7F'; }, '?');
    return text;
}

template <class Store>
void listSettings(const SettingsOptions& options) {
    Store store(options.file, false);
    XCStringArray labels;
    store.listLabels(labels);
    for (int i = 0; i < labels.GetSize(); ++i) {
        const char* const label = labels.GetAt(i)->GetStr();
        const std::vector<std::uint8_t> bytes = readBytes(store, label);
        std::printf("%s\t%zu\t%s\n", printable(label).c_str(), bytes.size(), describeBytes(bytes).c_str());
    }
}

template <class Store>
void getSetting(const SettingsOptions& options) {
    Store store(options.file, false);
    std::string text;
    const char* const label = options.label.c_str();
    const bool isThere = chooseType(store, options).getText(store, label, text);
    const int bytes = store.sizeOf(label);
    // A value of several records has none of the plain label.
    if (bytes < 0 && (!isThere || options.type == "data"))
        throw Failure(options.file + ": there is no \"" + options.label + "\"");
    if (!isThere)
        throw Failure(options.file + ": \"" + options.label + "\" has " + std::to_string(bytes) +
                      " bytes, not those of " + options.type);
    std::printf("%s\n", text.c_str());
}

template <class Store>
void setSetting(const SettingsOptions& options) {
    Store store(options.file, true);
    if (!chooseType(store, options).setText(store, options.label.c_str(), options.value))
        throw Failure("\"" + options.value + "\" is no value of the type " + options.type);
    store.close();
}

class SettingsCommand final : public Command {
public:
    explicit SettingsCommand(CLI::App& program)
        : Command(program.add_subcommand("settings", "List, read and write settings in preference files and keys")) {
        app().require_subcommand(1);
        m_list = addAction("list", "List every label with the bytes of its value and the value: text in quotation "
                                   "marks, else hexadecimal");
        m_get = addAction("get", "Print the value of a label");
        m_set = addAction("set", "Set the value of a label; the others stay");
        for (CLI::App* action : {m_get, m_set})
            addLabel(*action);
        m_set->add_option("VALUE", m_options.value, "The value")->required();
        app().footer(
            "Files do not tell the types of their values. Types: text, int16, uint16, int32, uint32, float,\n"
            "double, path, rect (left,top,right,bottom), length (value,unit,resolution), data (hexadecimal);\n"
            "in keys also uint8, int64, uint64, point and size (x,y), and pointf, sizef, rectf, pointd, sized,\n"
            "rectd of single and double precision; in preference files also colour (alpha,red,green,blue,\n"
            "16 bits) and number (12A). Units: 0 pixel, 1 cm, 2 mm, 3 inch, 4 pica, 5 point, 6 Q, 7 and 8\n"
            "points of 0.3514 and 0.3759 mm, 9 pixel of 600 an inch.\n"
            "Example: ovwpaint settings set brush.pff Size 12 --type int32");
    }

    void run() override {
        std::error_code ignored;
        if (std::filesystem::is_directory(m_options.file, ignored))
            naming(m_options.file, [this] { runOn<Key>(); });
        else
            naming(m_options.file, [this] { runOn<PreferenceFile>(); });
    }

private:
    CLI::App* addAction(const char* name, const char* description) {
        CLI::App* const action = app().add_subcommand(name, description);
        action->add_option("FILE", m_options.file, "A preference file, or the folder of a key")->required();
        return action;
    }

    void addLabel(CLI::App& action) {
        action.add_option("LABEL", m_options.label, "The label")->required();
        action.add_option("--type", m_options.type, "How to read and write the value")
            ->check(oneOf(typeNames()))
            ->type_name("TYPE")
            ->capture_default_str();
    }

    template <class Store>
    void runOn() {
        if (m_list->parsed())
            listSettings<Store>(m_options);
        else if (m_get->parsed())
            getSetting<Store>(m_options);
        else
            setSetting<Store>(m_options);
    }

    SettingsOptions m_options;
    CLI::App* m_list = nullptr;
    CLI::App* m_get = nullptr;
    CLI::App* m_set = nullptr;
};

} // namespace

std::unique_ptr<Command> makeSettingsCommand(CLI::App& program) { return std::make_unique<SettingsCommand>(program); }

} // namespace ovwpaint
