#include "ovwcmn/xcpreferencefile.h"

#include "ovwcmn/xccolor.h"
#include "ovwcmn/xcfilepath.h"
#include "ovwcmn/xclength.h"
#include "ovwcmn/xcnumber.h"
#include "ovwcmn/xcstring.h"
#include "persistence/settingsrecords.h"

#include <algorithm>
#include <array>
#include <string>

namespace persistence = ovw::persistence;
using persistence::SettingsReader;
using persistence::SettingsWriter;

namespace {

constexpr char cnLengthFormat[] = "%5.2lf";
constexpr int cnNumberBytes = 8;

enum class Mode { read, writeNew, writeOver };

template <class Value>
void addNumber(SettingsWriter& records, const char* label, Value value) {
    records.begin(label, sizeof value) << value;
}

template <class Value>
int readNumber(XCArchive* archive, Value& value) {
    if (!archive)
        return 0;
    *archive >> value;
    return 1;
}

/// The labels of a value that takes several records.
template <std::size_t N>
std::array<std::string, N> partLabels(const char* label, const std::array<const char*, N>& suffixes) {
    std::array<std::string, N> labels;
    std::transform(suffixes.begin(), suffixes.end(), labels.begin(),
                   [&](const char* suffix) { return (label ? label : "") + std::string(suffix); });
    return labels;
}

template <std::size_t N>
void requireLabels(const std::array<std::string, N>& labels) {
    for (const std::string& label : labels)
        SettingsWriter::requireLabel(label.c_str());
}

/// Adds all records or, when a label is refused, none.
template <class Value, std::size_t N>
void addParts(SettingsWriter& records, const std::array<std::string, N>& labels, const std::array<Value, N>& parts) {
    requireLabels(labels);
    for (std::size_t i = 0; i < N; ++i)
        addNumber(records, labels[i].c_str(), parts[i]);
}

template <class Value, std::size_t N>
bool readParts(SettingsReader& reader, const std::array<std::string, N>& labels, std::array<Value, N>& parts) {
    for (std::size_t i = 0; i < N; ++i)
        if (!readNumber(reader.find(labels[i].c_str(), sizeof(Value)), parts[i]))
            return false;
    return true;
}

constexpr std::array<const char*, 4> cnColorParts = {"_A", "_R", "_G", "_B"};
constexpr std::array<const char*, 4> cnRectParts = {"_Left", "_Top", "_Right", "_Bottom"};
constexpr std::array<const char*, 3> cnLengthParts = {"_D", "_U", "_R"};

} // namespace

struct XCPreferenceFile::State {
    SettingsWriter records;
    SettingsReader reader;
    Mode mode = Mode::read;
    XCFilePath path;
};

XCPreferenceFile::XCPreferenceFile() : m_state(std::make_unique<State>()) {}

XCPreferenceFile::~XCPreferenceFile() = default;

int XCPreferenceFile::OpenPreferenceFile(int forWriting, const XCFilePath& path) {
    const XCFilePath kept(path); // NOLINT(performance-unnecessary-copy-initialization): it may be the path of this file
    ClosePreferenceFile();
    const int exists = kept.IsExistence();
    m_state->records.clear();
    if (!forWriting)
        m_state->reader.open(kept);
    m_state->path = kept;
    m_state->mode = !forWriting ? Mode::read : exists ? Mode::writeOver : Mode::writeNew;
    return forWriting ? 1 : exists;
}

void XCPreferenceFile::ClosePreferenceFile() {
    if (!IsValid())
        return;
    if (m_state->mode == Mode::writeOver)
        persistence::mergeSettings(m_state->path, m_state->records, 0);
    else if (m_state->mode == Mode::writeNew)
        persistence::replaceSettings(m_state->path, m_state->records);
    m_state->reader.close();
    m_state->records.clear();
    m_state->path.Empty();
    m_state->mode = Mode::read;
}

int XCPreferenceFile::IsValid() const { return !m_state->path.IsEmpty(); }

const XCFilePath& XCPreferenceFile::GetFilePath() const { return m_state->path; }

void XCPreferenceFile::SetPreferenceFile(const char* label, std::int16_t value) {
    addNumber(m_state->records, label, value);
}

void XCPreferenceFile::SetPreferenceFile(const char* label, std::uint16_t value) {
    addNumber(m_state->records, label, value);
}

void XCPreferenceFile::SetPreferenceFile(const char* label, std::int32_t value) {
    addNumber(m_state->records, label, value);
}

void XCPreferenceFile::SetPreferenceFile(const char* label, std::uint32_t value) {
    addNumber(m_state->records, label, value);
}

void XCPreferenceFile::SetPreferenceFile(const char* label, float value) { addNumber(m_state->records, label, value); }

void XCPreferenceFile::SetPreferenceFile(const char* label, double value, const char* format) {
    SetPreferenceFile(label, persistence::realText(value, format));
}

void XCPreferenceFile::SetPreferenceFile(const char* label, int size, const void* data) {
    m_state->records.begin(label, size).Write(data, static_cast<std::uint32_t>(size));
}

void XCPreferenceFile::SetPreferenceFile(const char* label, const char* text) { m_state->records.addText(label, text); }

void XCPreferenceFile::SetPreferenceFile(const char* label, const XCString& text) {
    m_state->records.addText(label, text.GetStr());
}

void XCPreferenceFile::SetPreferenceFile(const char* label, const XCFilePath& path) {
    XCString full;
    path.GetFullPath(full);
    SetPreferenceFile(label, full);
}

void XCPreferenceFile::SetPreferenceFile(const char* label, const _VXNUMBER& number) {
    m_state->records.begin(label, cnNumberBytes) << number;
}

void XCPreferenceFile::SetPreferenceFile(const char* label, const tagVXRGBCOLOR16& color) {
    addParts(m_state->records, partLabels(label, cnColorParts),
             std::array{color.alpha, color.red, color.green, color.blue});
}

void XCPreferenceFile::SetPreferenceFile(const char* label, const XCLength& length) {
    const auto labels = partLabels(label, cnLengthParts);
    requireLabels(labels);
    SetPreferenceFile(labels[0].c_str(), length.GetData(), cnLengthFormat);
    SetPreferenceFile(labels[1].c_str(), length.GetUnit());
    SetPreferenceFile(labels[2].c_str(), length.GetResolution(), cnLengthFormat);
}

void XCPreferenceFile::SetPreferenceFile(const char* label, const tagRECT& rect) {
    addParts(m_state->records, partLabels(label, cnRectParts),
             std::array{rect.left, rect.top, rect.right, rect.bottom});
}

int XCPreferenceFile::GetPreferenceFile(const char* label, std::int16_t& value) {
    return readNumber(m_state->reader.find(label, sizeof value), value);
}

int XCPreferenceFile::GetPreferenceFile(const char* label, std::uint16_t& value) {
    return readNumber(m_state->reader.find(label, sizeof value), value);
}

int XCPreferenceFile::GetPreferenceFile(const char* label, std::int32_t& value) {
    return readNumber(m_state->reader.find(label, sizeof value), value);
}

int XCPreferenceFile::GetPreferenceFile(const char* label, std::uint32_t& value) {
    return readNumber(m_state->reader.findAtLeast(label, sizeof value), value);
}

int XCPreferenceFile::GetPreferenceFile(const char* label, float& value) {
    return readNumber(m_state->reader.find(label, sizeof value), value);
}

int XCPreferenceFile::GetPreferenceFile(const char* label, double& value) {
    XCString text;
    if (!m_state->reader.findText(label, text))
        return 0;
    value = persistence::realValue(text);
    return 1;
}

int XCPreferenceFile::GetPreferenceFile(const char* label, char* buffer, int size) {
    XCString text;
    if (!m_state->reader.findText(label, text))
        return 0;
    text.GetStr(buffer, size);
    return 1;
}

int XCPreferenceFile::GetPreferenceFile(const char* label, int size, void* data) {
    XCArchive* const archive = m_state->reader.find(label, size);
    if (!archive)
        return 0;
    archive->Read(data, static_cast<std::uint32_t>(size));
    return 1;
}

int XCPreferenceFile::GetPreferenceFile(const char* label, XCString& text) {
    return m_state->reader.findText(label, text);
}

int XCPreferenceFile::GetPreferenceFile(const char* label, XCFilePath& path) {
    XCString text;
    if (!m_state->reader.findText(label, text))
        return 0;
    path.SetFullPath(text);
    return 1;
}

int XCPreferenceFile::GetPreferenceFile(const char* label, _VXNUMBER& number) {
    return readNumber(m_state->reader.findAtLeast(label, cnNumberBytes), number);
}

int XCPreferenceFile::GetPreferenceFile(const char* label, tagVXRGBCOLOR16& color) {
    std::array<std::uint16_t, 4> parts;
    if (!readParts(m_state->reader, partLabels(label, cnColorParts), parts))
        return 0;
    color = {parts[0], parts[1], parts[2], parts[3]};
    return 1;
}

int XCPreferenceFile::GetPreferenceFile(const char* label, XCLength& length) {
    const auto labels = partLabels(label, cnLengthParts);
    _VXLENGTH found = {};
    if (!GetPreferenceFile(labels[0].c_str(), found.value) || !GetPreferenceFile(labels[1].c_str(), found.unit) ||
        !GetPreferenceFile(labels[2].c_str(), found.resolution))
        return 0;
    length = found;
    return 1;
}

int XCPreferenceFile::GetPreferenceFile(const char* label, tagRECT& rect) {
    std::array<std::int32_t, 4> parts;
    if (!readParts(m_state->reader, partLabels(label, cnRectParts), parts))
        return 0;
    rect = {parts[0], parts[1], parts[2], parts[3]};
    return 1;
}

int XCPreferenceFile::GetLabels(XCStringArray& labels) { return m_state->reader.listLabels(labels); }

int XCPreferenceFile::GetValueSize(const char* label) { return m_state->reader.valueBytes(label); }
