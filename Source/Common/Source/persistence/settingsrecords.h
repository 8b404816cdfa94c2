#ifndef OVW_PERSISTENCE_SETTINGSRECORDS_H
#define OVW_PERSISTENCE_SETTINGSRECORDS_H

#include "ovwcmn/xcarchivefile.h"
#include "ovwcmn/xcarchivemem.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

class XCString;
class XCStringArray;

/// @file
/// Settings as labelled records, one after another: the label as an archive's text, the value's size (16 bits, signed),
/// the value; big-endian. The size of a text value is the text's own count. An empty label, a negative size, and
/// whatever is cut off end the list. The first record with a label wins.

namespace ovw::persistence {

inline constexpr std::uint32_t cnSettingsFileType = 0x57504620;

/// Where the records of some bytes lie. The bytes must outlive the index and stay in place.
class SettingsIndex {
public:
    struct Record {
        std::string_view label; ///< as stored
        std::uint32_t begin;    ///< of the record
        std::uint32_t size;     ///< where the size stands
        std::uint32_t end;

        int valueBytes() const { return static_cast<int>(end - size) - 2; }
    };

    SettingsIndex() = default;
    /// A size below `smallest` ends the list too.
    explicit SettingsIndex(std::string_view bytes, int smallest = 0);

    /// In their order, later records of a label included.
    const std::vector<Record>& records() const { return m_records; }
    /// Null when there is none. Labels as they are stored.
    const Record* findStored(std::string_view label) const;
    /// The same for a label as the application knows it.
    const Record* find(const char* label) const;

private:
    std::vector<Record> m_records;
    std::unordered_map<std::string_view, std::size_t> m_byLabel;
};

/// New records in the order in which they are added. What does not fit a record throws 0x20010008 and adds nothing: an
/// empty label, a value of over 32767 bytes.
class SettingsWriter {
public:
    static constexpr int cnMaxValueBytes = 32767;

    void clear();
    /// Label and size; the caller writes just so many bytes behind them.
    XCArchive& begin(const char* label, std::int64_t size);
    /// A null or empty text is stored as a single space.
    void addText(const char* label, const char* text);
    std::string_view bytes();
    std::uint32_t size() const { return m_archive.GetLength(); }

    /// Throws when a label cannot be stored; null is an empty one.
    static void requireLabel(const char* label);

private:
    XCArchiveMem m_archive{XCArchive::cnSaving | XCArchive::cnBigEndian, 0};
};

/// The records of a file that is open for reading, of which it takes a copy at the first question.
class SettingsReader {
public:
    /// A missing file has no records.
    void open(const XCFilePath& path);
    void close();
    std::uint32_t fileSize() const { return m_file.IsValid() ? m_file.GetLength() : 0; }

    /// The archive at the value of a label of just, or of at least, so many bytes; null when there is none.
    XCArchive* find(const char* label, int bytes);
    XCArchive* findAtLeast(const char* label, int bytes);
    /// Bytes of a label's value; -1 when there is none.
    int valueBytes(const char* label);
    /// Appends every label once, in the order of the file; how many.
    int listLabels(XCStringArray& labels);
    /// False when there is none. A single space reads as the empty text.
    bool findText(const char* label, XCString& text);

private:
    bool load();
    const SettingsIndex::Record* record(const char* label);
    XCArchive* valueOf(const SettingsIndex::Record& record);

    XCArchiveFile m_file{XCArchive::cnLoading | XCArchive::cnBigEndian, 0}; // read in one go: no cache
    XCArchiveMem m_copy;
    SettingsIndex m_index;
    bool m_isLoaded = false;
};

/// Replaces a file by the new records and, behind them, those of the file whose labels are not among the new ones. Of a
/// damaged file the whole records before the damage are kept. `smallest` as for SettingsIndex.
void mergeSettings(const XCFilePath& path, SettingsWriter& records, int smallest);
/// Replaces a file by the new records.
void replaceSettings(const XCFilePath& path, SettingsWriter& records);

/// Numbers as text, with a decimal point in every locale.
XCString realText(double value, const char* format);
double realValue(const XCString& text);

} // namespace ovw::persistence

#endif // OVW_PERSISTENCE_SETTINGSRECORDS_H
