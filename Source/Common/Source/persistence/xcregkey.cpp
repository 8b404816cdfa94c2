#include "ovwcmn/xcregkey.h"

#include "Platform/text.h"
#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcfilepath.h"
#include "ovwcmn/xclength.h"
#include "ovwcmn/xcstring.h"
#include "persistence/settingsrecords.h"

#include <array>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace persistence = ovw::persistence;

namespace {

constexpr char cnValueFile[] = "pref.pff";
constexpr char cnTextFormat[] = "%4.1lf";
constexpr int cnLengthBytes = 24;
constexpr int cnSmallestKept = 1; // a value without bytes ends what closing keeps

/// The components of a sub-key, between "\" and ":" outside double-byte characters.
std::vector<std::string> subKeyNames(const char* subKey) {
    std::vector<std::string> names(1);
    for (std::size_t bytes; (bytes = ovw::platform::characterBytes(subKey)) > 0; subKey += bytes) {
        const bool isSeparator = bytes == 1 && (*subKey == '\\' || *subKey == ':');
        if (!isSeparator)
            names.back().append(subKey, bytes);
        else if (!names.back().empty())
            names.emplace_back();
    }
    if (names.back().empty())
        names.pop_back();
    return names;
}

/// A value as the numbers that it consists of.
template <class Part, class Value, std::size_t Bytes = sizeof(Value)>
using PartsOf = std::array<Part, Bytes / sizeof(Part)>;

/// The archive in little-endian order while it lives.
class LittleEndianScope {
public:
    explicit LittleEndianScope(XCArchive& archive)
        : m_archive(archive), m_before(archive.SetEndianMode(XCArchive::cnLittleEndian)) {}
    ~LittleEndianScope() { m_archive.SetEndianMode(m_before); }
    LittleEndianScope(const LittleEndianScope&) = delete;

private:
    XCArchive& m_archive;
    int m_before;
};

/// Goes down to the folder of a sub-key, creating what is missing if asked to; false when a folder is missing.
bool descend(XCFilePath& folder, const char* subKey, bool creates) {
    for (const std::string& name : subKeyNames(subKey)) {
        folder += name.c_str();
        if (folder.IsFolder())
            continue;
        if (!creates)
            return false;
        folder.CreateFolder();
    }
    return true;
}

} // namespace

struct XCRegKey::State {
    XCFilePath folder;
    XCFilePath file;
    std::uint16_t flags = 0;
    persistence::SettingsWriter records;
    persistence::SettingsReader reader;

    bool isReading() const { return flags & cnRead; }
    bool isWriting() const { return flags && !isReading(); }
};

XCRegKey::XCRegKey() : m_state(std::make_unique<State>()) {}

XCRegKey::~XCRegKey() {
    try {
        Close();
    } catch (const XCException&) { // nobody is left to tell
    }
}

int XCRegKey::Open(const XCFilePath& folder, const char* subKey, std::uint16_t flags) {
    XCFilePath keyFolder(folder);
    Close();
    if (!(flags & (cnRead | cnWrite)))
        return 0;
    const bool reads = flags & cnRead;
    XCFilePath file;
    if (subKey && !descend(keyFolder, subKey, !reads))
        return 0;
    if (subKey || keyFolder.IsFolder()) {
        file = keyFolder;
        file += cnValueFile;
    } else {
        file = keyFolder;
        XCFilePath(file).GetFolderPath(keyFolder);
    }
    if (reads)
        m_state->reader.open(file);
    m_state->folder = keyFolder;
    m_state->file = file;
    m_state->flags = flags;
    return 1;
}

int XCRegKey::Open(const XCRegKey& parent, const char* subKey, std::uint16_t flags) {
    return Open(XCFilePath(parent.m_state->folder), subKey, flags);
}

int XCRegKey::IsExistKey(const XCFilePath& folder, const char* subKey) {
    XCFilePath keyFolder(folder);
    return descend(keyFolder, subKey ? subKey : "", false) && keyFolder.IsFolder();
}

void XCRegKey::Close() {
    if (m_state->isWriting() && m_state->records.size() > 0)
        persistence::mergeSettings(m_state->file, m_state->records, cnSmallestKept);
    m_state->reader.close();
    m_state->records.clear();
    m_state->folder.Empty();
    m_state->file.Empty();
    m_state->flags = 0;
}

const XCFilePath& XCRegKey::GetFilePath() const { return m_state->file; }

std::uint32_t XCRegKey::GetFileSize() const {
    return m_state->isReading() ? m_state->reader.fileSize() : m_state->records.size();
}

void XCRegKey::requireWriting() const {
    if (!m_state->isWriting())
        xcThrowError(ovw::foundation::cnCodeParameter);
}

template <class Part, class Value>
void XCRegKey::setParts(const Value& value, const char* label) {
    static_assert(sizeof(Value) % sizeof(Part) == 0);
    requireWriting();
    PartsOf<Part, Value> parts;
    std::memcpy(parts.data(), &value, sizeof value);
    XCArchive& archive = m_state->records.begin(label, sizeof value);
    for (const Part part : parts)
        archive << part;
}

template <class Part, class Value>
int XCRegKey::getParts(Value& value, const char* label) {
    XCArchive* const archive = m_state->reader.find(label, sizeof value);
    if (!archive)
        return 0;
    PartsOf<Part, Value> parts;
    for (Part& part : parts)
        *archive >> part;
    std::memcpy(&value, parts.data(), sizeof value);
    return 1;
}

void XCRegKey::SetValue(const std::uint8_t& value, const char* label) { setParts<std::uint8_t>(value, label); }

void XCRegKey::SetValue(const std::int16_t& value, const char* label) { setParts<std::int16_t>(value, label); }

void XCRegKey::SetValue(const std::uint16_t& value, const char* label) { setParts<std::uint16_t>(value, label); }

void XCRegKey::SetValue(const std::int32_t& value, const char* label) { setParts<std::int32_t>(value, label); }

void XCRegKey::SetValue(const std::uint32_t& value, const char* label) { setParts<std::uint32_t>(value, label); }

void XCRegKey::SetValue(const std::int64_t& value, const char* label) { setParts<std::int64_t>(value, label); }

void XCRegKey::SetValue(const std::uint64_t& value, const char* label) { setParts<std::uint64_t>(value, label); }

void XCRegKey::SetValue(const float& value, const char* label) { setParts<float>(value, label); }

void XCRegKey::SetValue(const tagPOINT& value, const char* label) { setParts<std::int32_t>(value, label); }

void XCRegKey::SetValue(const tagSIZE& value, const char* label) { setParts<std::int32_t>(value, label); }

void XCRegKey::SetValue(const tagRECT& value, const char* label) { setParts<std::int32_t>(value, label); }

void XCRegKey::SetValue(const tagPOINTF& value, const char* label) { setParts<float>(value, label); }

void XCRegKey::SetValue(const tagSIZEF& value, const char* label) { setParts<float>(value, label); }

void XCRegKey::SetValue(const tagRECTF& value, const char* label) { setParts<float>(value, label); }

void XCRegKey::SetValue(const tagPOINTD& value, const char* label) { setParts<double>(value, label); }

void XCRegKey::SetValue(const tagSIZED& value, const char* label) { setParts<double>(value, label); }

void XCRegKey::SetValue(const tagRECTD& value, const char* label) { setParts<double>(value, label); }

void XCRegKey::SetValue(const double& value, const char* label, int asText) {
    if (asText)
        SetValue(persistence::realText(value, cnTextFormat), label);
    else
        setParts<double>(value, label);
}

void XCRegKey::SetValue(const char* text, const char* label) {
    requireWriting();
    m_state->records.addText(label, text);
}

void XCRegKey::SetValue(const XCString& text, const char* label) { SetValue(text.GetStr(), label); }

void XCRegKey::SetValue(const XCFilePath& path, const char* label) {
    XCString full;
    path.GetFullPath(full);
    SetValue(full, label);
}

void XCRegKey::SetValue(const XCLength& value, const char* label) {
    requireWriting();
    XCArchive& archive = m_state->records.begin(label, cnLengthBytes);
    const LittleEndianScope order(archive);
    archive << value.GetData() << value.GetUnit() << std::int32_t{0} << value.GetResolution();
}

void XCRegKey::SetValue(const void* data, int size, const char* label) {
    requireWriting();
    if (size < cnSmallestKept)
        xcThrowError(ovw::foundation::cnCodeParameter);
    m_state->records.begin(label, size).Write(data, static_cast<std::uint32_t>(size));
}

int XCRegKey::GetValue(std::uint8_t& value, const char* label) { return getParts<std::uint8_t>(value, label); }

int XCRegKey::GetValue(std::int16_t& value, const char* label) { return getParts<std::int16_t>(value, label); }

int XCRegKey::GetValue(std::uint16_t& value, const char* label) { return getParts<std::uint16_t>(value, label); }

int XCRegKey::GetValue(std::int32_t& value, const char* label) { return getParts<std::int32_t>(value, label); }

int XCRegKey::GetValue(std::uint32_t& value, const char* label) { return getParts<std::uint32_t>(value, label); }

int XCRegKey::GetValue(std::int64_t& value, const char* label) { return getParts<std::int64_t>(value, label); }

int XCRegKey::GetValue(std::uint64_t& value, const char* label) { return getParts<std::uint64_t>(value, label); }

int XCRegKey::GetValue(float& value, const char* label) { return getParts<float>(value, label); }

int XCRegKey::GetValue(tagPOINT& value, const char* label) { return getParts<std::int32_t>(value, label); }

int XCRegKey::GetValue(tagSIZE& value, const char* label) { return getParts<std::int32_t>(value, label); }

int XCRegKey::GetValue(tagRECT& value, const char* label) { return getParts<std::int32_t>(value, label); }

int XCRegKey::GetValue(tagPOINTF& value, const char* label) { return getParts<float>(value, label); }

int XCRegKey::GetValue(tagSIZEF& value, const char* label) { return getParts<float>(value, label); }

int XCRegKey::GetValue(tagRECTF& value, const char* label) { return getParts<float>(value, label); }

int XCRegKey::GetValue(tagPOINTD& value, const char* label) { return getParts<double>(value, label); }

int XCRegKey::GetValue(tagSIZED& value, const char* label) { return getParts<double>(value, label); }

int XCRegKey::GetValue(tagRECTD& value, const char* label) { return getParts<double>(value, label); }

int XCRegKey::GetValue(double& value, const char* label, int asText) {
    if (!asText)
        return getParts<double>(value, label);
    XCString text;
    if (!GetValue(text, label))
        return 0;
    value = persistence::realValue(text);
    return 1;
}

int XCRegKey::GetValue(XCString& text, const char* label) { return m_state->reader.findText(label, text); }

int XCRegKey::GetValue(XCFilePath& path, const char* label) {
    XCString text;
    if (!GetValue(text, label))
        return 0;
    path.SetFullPath(text);
    return 1;
}

int XCRegKey::GetValue(XCLength& value, const char* label) {
    XCArchive* const archive = m_state->reader.find(label, cnLengthBytes);
    if (!archive)
        return 0;
    const LittleEndianScope order(*archive);
    _VXLENGTH found;
    std::int32_t unused;
    *archive >> found.value >> found.unit >> unused >> found.resolution;
    value = found;
    return 1;
}

int XCRegKey::GetValue(void* data, int size, const char* label) {
    XCArchive* const archive = m_state->reader.find(label, size);
    if (!archive)
        return 0;
    archive->Read(data, static_cast<std::uint32_t>(size));
    return 1;
}

int XCRegKey::GetLabels(XCStringArray& labels) { return m_state->reader.listLabels(labels); }

int XCRegKey::GetValueSize(const char* label) { return m_state->reader.valueBytes(label); }
