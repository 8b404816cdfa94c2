#include "persistence/settingsrecords.h"

#include "Platform/text.h"
#include "ovwcmn/wintypes.h"
#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcstring.h"
#include "ovwcmn/xcstringarray.h"
#include "persistence/linebreaks.h"
#include "persistence/replacingfile.h"

#include <cstring>
#include <new>
#include <utility>

namespace ovw::persistence {

namespace {

constexpr std::uint32_t cnCountBytes = 2;
constexpr std::size_t cnMaxLabelBytes = 65535;
constexpr char cnEmptyText[] = " ";
constexpr char cnTemporaryPrefix[] = "tmp";

std::uint32_t bigEndian16(std::string_view bytes, std::uint32_t position) {
    return static_cast<std::uint32_t>(static_cast<std::uint8_t>(bytes[position]) << 8 |
                                      static_cast<std::uint8_t>(bytes[position + 1]));
}

/// The text as an archive stores it.
std::string storedForm(const char* text) {
    std::string stored(joinedLength(text), '\0');
    joinLineBreaks(text, stored.data());
    return stored;
}

std::string_view bytesOf(XCArchiveMem& archive) {
    if (!archive.IsValid())
        return {};
    const auto* const bytes = static_cast<const char*>(archive.Lock());
    archive.Unlock(); // the block moves only when it grows
    return {bytes, archive.GetLength()};
}

/// Makes the archive a copy of an open file that is not empty.
void attachWholeFile(XCArchiveMem& archive, XCArchiveFile& file) {
    XCHandle block;
    block.Alloc(file.GetLength(), 1, 1);
    file.Seek(0, 0);
    file.Read(block.Lock(), file.GetLength());
    block.Unlock();
    archive.Attach(block.Detach(), file.GetLength());
}

/// Whether the file exists and is open now.
bool openExisting(XCArchiveFile& file, const XCFilePath& path) {
    if (!path.IsExistence())
        return false;
    file.FileOpen(path, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, 0);
    return true;
}

void write(XCArchive& archive, std::string_view bytes) {
    if (!bytes.empty())
        archive.Write(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
}

template <class Write>
void replaceFile(const XCFilePath& path, Write writeRecords) {
    replaceByArchive(path, cnTemporaryPrefix, 0, cnSettingsFileType, XCArchive::cnBigEndian, writeRecords);
}

} // namespace

SettingsIndex::SettingsIndex(std::string_view bytes, int smallest) {
    const std::uint64_t total = bytes.size();
    std::uint64_t position = 0;
    while (position + cnCountBytes <= total) {
        const auto begin = static_cast<std::uint32_t>(position);
        const std::uint64_t size = position + cnCountBytes + bigEndian16(bytes, begin);
        if (size + cnCountBytes > total)
            break;
        std::string_view label = bytes.substr(begin + cnCountBytes, size - begin - cnCountBytes);
        label = label.substr(0, label.find('\0')); // where a text read from it ends
        const auto valueBytes = static_cast<std::int16_t>(bigEndian16(bytes, static_cast<std::uint32_t>(size)));
        if (label.empty() || valueBytes < smallest ||
            size + cnCountBytes + static_cast<std::uint64_t>(valueBytes) > total)
            break;
        position = size + cnCountBytes + static_cast<std::uint64_t>(valueBytes);
        m_records.push_back({label, begin, static_cast<std::uint32_t>(size), static_cast<std::uint32_t>(position)});
    }
    m_byLabel.reserve(m_records.size());
    for (std::size_t i = 0; i < m_records.size(); ++i)
        m_byLabel.emplace(m_records[i].label, i);
}

const SettingsIndex::Record* SettingsIndex::findStored(std::string_view label) const {
    const auto found = m_byLabel.find(label);
    return found == m_byLabel.end() ? nullptr : &m_records[found->second];
}

const SettingsIndex::Record* SettingsIndex::find(const char* label) const {
    if (!label)
        return nullptr;
    return std::strchr(label, '\r') ? findStored(storedForm(label)) : findStored(label);
}

void SettingsWriter::clear() {
    m_archive.MemFree();
    m_archive.Init(XCArchive::cnSaving | XCArchive::cnBigEndian, 0);
}

void SettingsWriter::requireLabel(const char* label) {
    const std::size_t stored = label ? joinedLength(label) : 0;
    if (stored == 0 || stored > cnMaxLabelBytes)
        xcThrowError(foundation::cnCodeParameter);
}

XCArchive& SettingsWriter::begin(const char* label, std::int64_t size) {
    requireLabel(label);
    if (size < 0 || size > cnMaxValueBytes)
        xcThrowError(foundation::cnCodeParameter);
    return m_archive << label << static_cast<std::int16_t>(size);
}

void SettingsWriter::addText(const char* label, const char* text) {
    requireLabel(label);
    const char* const stored = text && *text ? text : cnEmptyText;
    if (joinedLength(stored) > cnMaxValueBytes)
        xcThrowError(foundation::cnCodeParameter);
    m_archive << label << stored;
}

std::string_view SettingsWriter::bytes() { return bytesOf(m_archive); }

void SettingsReader::open(const XCFilePath& path) {
    close();
    openExisting(m_file, path);
}

void SettingsReader::close() {
    m_file.FileClose();
    m_index = {};
    m_copy.MemFree();
    m_isLoaded = false;
}

bool SettingsReader::load() {
    if (m_isLoaded)
        return true;
    if (!m_file.IsValid() || m_file.GetLength() == 0)
        return false;
    try {
        attachWholeFile(m_copy, m_file);
        m_index = SettingsIndex(bytesOf(m_copy));
    } catch (const std::bad_alloc&) {
        return false;
    } catch (const XCException& error) {
        if (error.GetErrorCode() != foundation::cnCodeNoMemory)
            throw;
        return false; // a question that cannot be answered now
    }
    m_isLoaded = true;
    return true;
}

const SettingsIndex::Record* SettingsReader::record(const char* label) {
    return load() ? m_index.find(label) : nullptr;
}

XCArchive* SettingsReader::valueOf(const SettingsIndex::Record& record) {
    m_copy.Seek(static_cast<int>(record.size + cnCountBytes), 0);
    return &m_copy;
}

XCArchive* SettingsReader::find(const char* label, int bytes) {
    const SettingsIndex::Record* const found = record(label);
    return found && found->valueBytes() == bytes ? valueOf(*found) : nullptr;
}

XCArchive* SettingsReader::findAtLeast(const char* label, int bytes) {
    const SettingsIndex::Record* const found = record(label);
    return found && found->valueBytes() >= bytes ? valueOf(*found) : nullptr;
}

int SettingsReader::valueBytes(const char* label) {
    const SettingsIndex::Record* const found = record(label);
    return found ? found->valueBytes() : -1;
}

int SettingsReader::listLabels(XCStringArray& labels) {
    if (!load())
        return 0;
    int count = 0;
    for (const SettingsIndex::Record& record : m_index.records()) {
        if (m_index.findStored(record.label) != &record)
            continue; // an earlier one wins
        XCString label;
        m_copy.Seek(static_cast<int>(record.begin), 0);
        m_copy >> label;
        labels.PushBack(new XCString(label));
        ++count;
    }
    return count;
}

bool SettingsReader::findText(const char* label, XCString& text) {
    const SettingsIndex::Record* const found = record(label);
    if (!found)
        return false;
    m_copy.Seek(static_cast<int>(found->size), 0); // the size is the text's count
    m_copy >> text;
    if (text == cnEmptyText)
        text.Empty();
    return true;
}

void mergeSettings(const XCFilePath& path, SettingsWriter& records, int smallest) {
    XCArchiveMem old;
    {
        XCArchiveFile file(XCArchive::cnLoading | XCArchive::cnBigEndian, 0);
        if (openExisting(file, path) && file.GetLength() > 0)
            attachWholeFile(old, file);
    }
    const SettingsIndex written(records.bytes());
    const std::string_view oldBytes = bytesOf(old);
    const SettingsIndex kept(oldBytes, smallest);
    replaceFile(path, [&](XCArchive& archive) {
        write(archive, records.bytes());
        for (const SettingsIndex::Record& record : kept.records())
            if (!written.findStored(record.label))
                write(archive, oldBytes.substr(record.begin, record.end - record.begin));
    });
}

void replaceSettings(const XCFilePath& path, SettingsWriter& records) {
    replaceFile(path, [&](XCArchive& archive) { write(archive, records.bytes()); });
}

XCString realText(double value, const char* format) {
    const platform::PlainNumbers plain;
    XCString text;
    text.SetNumber(value, format);
    return text;
}

double realValue(const XCString& text) {
    const platform::PlainNumbers plain;
    return text.GetDOUBLE();
}

} // namespace ovw::persistence
