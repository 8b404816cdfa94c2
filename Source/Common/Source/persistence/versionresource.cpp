#include "persistence/versionresource.h"

#include "ovwcmn/wintypes.h"
#include "ovwcmn/xcfile.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace ovw::persistence {

namespace {

constexpr std::uint32_t cnMostResourceBytes = 1 << 20;
constexpr std::uint32_t cnMostEntries = 4096;
constexpr int cnNotFound = -1;

std::uint32_t littleEndian(std::string_view bytes, std::size_t position, int count) {
    std::uint32_t value = 0;
    for (int i = 0; i < count; ++i)
        if (position + static_cast<std::size_t>(i) < bytes.size())
            value |=
                static_cast<std::uint32_t>(static_cast<std::uint8_t>(bytes[position + static_cast<std::size_t>(i)]))
                << 8 * i;
    return value;
}

std::uint32_t number16(std::string_view bytes, std::size_t position) { return littleEndian(bytes, position, 2); }
std::uint32_t number32(std::string_view bytes, std::size_t position) { return littleEndian(bytes, position, 4); }

/// A program file as far as its resources.
class ProgramFile {
public:
    explicit ProgramFile(XCFile& file) : m_file(file) {}

    /// Whether the file is a program with resources.
    bool findResources();
    std::optional<std::string> version();

private:
    struct Entry {
        std::uint32_t offset;
        bool isFolder;
    };

    /// What the file holds of a range.
    std::string read(std::uint64_t position, std::uint32_t size);
    bool findSection(std::uint64_t table, std::uint32_t count, std::uint32_t address);
    /// An entry of a resource folder by its number, or the first one.
    std::optional<Entry> entry(std::uint32_t folder, int id);

    XCFile& m_file;
    std::uint64_t m_position = 0; // of the resources in the file
    std::uint32_t m_address = 0;  // of the same in a running program
};

std::string ProgramFile::read(std::uint64_t position, std::uint32_t size) {
    std::string bytes(size, '\0');
    std::uint32_t done = 0;
    m_file.Seek(static_cast<std::int64_t>(position), FILE_BEGIN);
    m_file.Read(bytes.data(), size, &done);
    bytes.resize(done);
    return bytes;
}

bool ProgramFile::findResources() {
    constexpr std::uint32_t dosHeaderBytes = 64, dosHeaderNext = 60, fileHeaderBytes = 24;
    constexpr std::uint32_t wideMagic = 0x20B, directories = 96, wideDirectories = 112, resourceDirectory = 2;
    const std::string dos = read(0, dosHeaderBytes);
    if (dos.size() < dosHeaderBytes || dos.substr(0, 2) != "MZ")
        return false;
    const std::uint64_t header = number32(dos, dosHeaderNext);
    const std::string program = read(header, fileHeaderBytes);
    if (program.size() < fileHeaderBytes || program.substr(0, 4) != std::string("PE\0\0", 4))
        return false;
    const std::uint32_t sections = number16(program, 6), optionalBytes = number16(program, 20);
    const std::string optional = read(header + fileHeaderBytes, optionalBytes);
    const std::uint32_t first = number16(optional, 0) == wideMagic ? wideDirectories : directories;
    const std::uint32_t address = number32(optional, first + resourceDirectory * 8);
    return address != 0 && number32(optional, first - 4) > resourceDirectory &&
           findSection(header + fileHeaderBytes + optionalBytes, sections, address);
}

bool ProgramFile::findSection(std::uint64_t table, std::uint32_t count, std::uint32_t address) {
    constexpr std::uint32_t sectionBytes = 40;
    const std::string sections = read(table, std::min(count, cnMostEntries) * sectionBytes);
    for (std::size_t i = 0; i + sectionBytes <= sections.size(); i += sectionBytes) {
        const std::uint32_t start = number32(sections, i + 12), bytes = number32(sections, i + 16);
        if (address < start || address - start >= bytes)
            continue;
        m_position = std::uint64_t{number32(sections, i + 20)} + (address - start);
        m_address = address;
        return true;
    }
    return false;
}

std::optional<ProgramFile::Entry> ProgramFile::entry(std::uint32_t folder, int id) {
    constexpr std::uint32_t headerBytes = 16, entryBytes = 8, folderBit = 0x80000000;
    const std::string header = read(m_position + folder, headerBytes);
    const std::uint32_t count = std::min(number16(header, 12) + number16(header, 14), cnMostEntries);
    const std::string entries = read(m_position + folder + headerBytes, count * entryBytes);
    for (std::size_t i = 0; i + entryBytes <= entries.size(); i += entryBytes) {
        const std::uint32_t offset = number32(entries, i + 4);
        if (id == cnNotFound || number32(entries, i) == static_cast<std::uint32_t>(id))
            return Entry{offset & ~folderBit, (offset & folderBit) != 0};
    }
    return std::nullopt;
}

std::optional<std::string> ProgramFile::version() {
    constexpr int versionType = 16;
    constexpr std::uint32_t dataEntryBytes = 16;
    // Folders by type, by name, by language.
    const std::optional<Entry> type = entry(0, versionType);
    const std::optional<Entry> name = type && type->isFolder ? entry(type->offset, cnNotFound) : std::nullopt;
    const std::optional<Entry> language = name && name->isFolder ? entry(name->offset, cnNotFound) : std::nullopt;
    if (!language || language->isFolder)
        return std::nullopt;
    const std::string data = read(m_position + language->offset, dataEntryBytes);
    const std::uint32_t address = number32(data, 0), bytes = number32(data, 4);
    if (data.size() < dataEntryBytes || address < m_address || bytes > cnMostResourceBytes)
        return std::nullopt;
    return read(m_position + (address - m_address), bytes);
}

/// A node of the resource: total length, value length, kind (each 16 bits), name, padding, value, padding, children.
struct Node {
    std::u16string name;
    std::string_view value;
    std::string_view children;
    std::size_t length; ///< with the padding behind it
};

std::size_t aligned(std::size_t position) { return (position + 3) / 4 * 4; }

std::u16string textAt(std::string_view bytes, std::size_t position) {
    std::u16string text;
    for (; position + 2 <= bytes.size(); position += 2) {
        const auto unit = static_cast<char16_t>(number16(bytes, position));
        if (unit == 0)
            break;
        text += unit;
    }
    return text;
}

std::string_view part(std::string_view bytes, std::size_t begin, std::size_t size) {
    return bytes.substr(std::min(begin, bytes.size()), size);
}

std::optional<Node> nodeAt(std::string_view bytes) {
    constexpr std::size_t headerBytes = 6;
    const std::size_t length = number16(bytes, 0);
    if (length < headerBytes || length > bytes.size())
        return std::nullopt;
    const std::string_view whole = bytes.substr(0, length);
    const bool isText = number16(whole, 4) == 1; // whose length counts characters
    const std::size_t valueBytes = number16(whole, 2) * (isText ? 2 : 1);
    Node node;
    node.name = textAt(whole, headerBytes);
    const std::size_t value = aligned(headerBytes + 2 * (node.name.size() + 1));
    node.value = part(whole, value, valueBytes);
    node.children = part(whole, aligned(value + valueBytes), std::string_view::npos);
    node.length = aligned(length);
    return node;
}

/// The child of a name (ASCII letters in either case), or the first one for an empty name.
std::optional<Node> child(const std::optional<Node>& parent, std::u16string_view name) {
    const auto lower = [](char16_t c) { return c >= u'A' && c <= u'Z' ? char16_t(c - u'A' + u'a') : c; };
    const auto isSame = [&](char16_t a, char16_t b) { return lower(a) == lower(b); };
    std::string_view rest = parent ? parent->children : std::string_view();
    while (std::optional<Node> node = nodeAt(rest)) {
        if (name.empty() || std::equal(name.begin(), name.end(), node->name.begin(), node->name.end(), isSame))
            return node;
        rest = part(rest, node->length, std::string_view::npos);
    }
    return std::nullopt;
}

} // namespace

std::optional<std::string> versionResource(XCFile& file) {
    ProgramFile program(file);
    return program.findResources() ? program.version() : std::nullopt;
}

std::optional<std::u16string> versionText(std::string_view resource, std::u16string_view key) {
    const std::optional<Node> root = nodeAt(resource);
    const std::optional<Node> translation = child(child(root, u"VarFileInfo"), u"Translation");
    if (!translation || translation->value.size() < 4 || key.empty())
        return std::nullopt;
    std::array<char, 9> digits;
    std::snprintf(digits.data(), digits.size(), "%04x%04x", number16(translation->value, 0),
                  number16(translation->value, 2));
    const std::u16string table(digits.begin(), digits.end() - 1);
    const std::optional<Node> found = child(child(child(root, u"StringFileInfo"), table), key);
    return found ? std::optional(textAt(found->value, 0)) : std::nullopt;
}

} // namespace ovw::persistence
