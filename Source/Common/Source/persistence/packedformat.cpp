#include "persistence/packedformat.h"

#include "Platform/text.h"
#include "ovwcmn/xcarchive.h"
#include "ovwcmn/xcexception.h"
#include "ovwcmn/xczlib.h"
#include "persistence/linebreaks.h"

#include <cstring>
#include <string_view>

using ovw::foundation::cnCodeFileFormat;

namespace ovw::persistence {

namespace {

constexpr std::uint32_t cnMagic = 0x56585A41; // "AZXV"
constexpr std::uint32_t cnVersion = 0x100;
constexpr int cnOtherFileCode = 0;           // without a message
constexpr std::uint32_t cnMinEntryBytes = 2; // the kind
constexpr std::uint32_t cnNumbersBytes = 12; // of a file record: size, time, attributes
constexpr std::uint32_t cnCountBytes = 2;    // of a text
constexpr std::uint32_t cnFrameLengthBytes = 4;
constexpr std::size_t cnMaxNameBytes = 255;

XCString readName(XCArchive& archive) {
    const std::uint32_t start = archive.GetPosition();
    XCString name;
    archive >> name;
    const std::uint32_t stored = archive.GetPosition() - start - cnCountBytes;
    // A NUL within would hide what follows it.
    if (joinLineBreaks<char>(name.GetStr(), nullptr) != stored || !isPlainName(name))
        xcThrowError(cnCodeFileFormat);
    return name;
}

/// A walk over entries that looks at everything but the contents.
struct Check {
    XCArchive& archive;
    std::uint64_t left; // bytes that may still come out

    void folder(std::uint32_t count, int nesting);
    void entry(int nesting);
};

void Check::entry(int nesting) {
    if (readKind(archive) == PackedKind::folder)
        return folder(readFolderRecord(archive).entries, nesting + 1);
    const auto size = static_cast<std::uint32_t>(readFileRecord(archive).size);
    if (size == 0)
        return;
    requireFrame(archive, size);
    if (size > left)
        xcThrowError(cnCodeFileFormat);
    left -= size;
    archive.SeekSection(); // a frame is laid out as a section is
}

void Check::folder(std::uint32_t count, int nesting) {
    if (nesting > cnMaxPackedNesting)
        xcThrowError(cnCodeFileFormat);
    archive.RequireRemaining(std::uint64_t{count} * cnMinEntryBytes);
    for (std::uint32_t i = 0; i < count; ++i)
        entry(nesting);
}

} // namespace

void writeHead(XCArchive& archive, const PackedHead& head) {
    archive << cnMagic << cnVersion << head.files << head.items;
}

PackedHead readHead(XCArchive& archive) {
    std::uint32_t magic = 0, version = 0;
    archive >> magic;
    if (magic != cnMagic)
        xcThrowError(cnOtherFileCode);
    PackedHead head;
    archive >> version >> head.files >> head.items;
    return head;
}

PackedKind readKind(XCArchive& archive) {
    std::uint16_t number = 0;
    archive >> number;
    const auto kind = static_cast<PackedKind>(number);
    if (kind != PackedKind::folder && kind != PackedKind::file)
        xcThrowError(cnCodeFileFormat);
    return kind;
}

void writeFileRecord(XCArchive& archive, const PackedFileRecord& record) {
    archive.BeginSection();
    archive << record.name << record.size << record.time << record.attributes;
    archive.EndSection();
}

PackedFileRecord readFileRecord(XCArchive& archive) {
    PackedFileRecord record;
    archive.BeginSection();
    record.name = readName(archive);
    archive.RequireRemaining(cnNumbersBytes);
    archive >> record.size >> record.time >> record.attributes;
    archive.EndSection();
    if (record.size < 0)
        xcThrowError(cnCodeFileFormat);
    return record;
}

void requireFrame(XCArchive& archive, std::uint32_t size) {
    std::uint32_t streamSize = 0;
    archive >> streamSize;
    archive.RequireRemaining(streamSize);
    if (!XCZLib::CanExpandTo(size, streamSize))
        xcThrowError(cnCodeFileFormat);
    archive.Seek(-static_cast<int>(cnFrameLengthBytes), 1);
}

void writeFolderRecord(XCArchive& archive, const PackedFolderRecord& record) {
    archive << record.name << record.entries;
}

PackedFolderRecord readFolderRecord(XCArchive& archive) {
    PackedFolderRecord record;
    record.name = readName(archive);
    archive >> record.entries;
    return record;
}

void checkEntries(XCArchive& archive, std::uint32_t count, std::uint64_t limit) {
    const std::uint32_t start = archive.GetPosition();
    Check{archive, limit}.folder(count, 0);
    archive.Seek(static_cast<int>(start), 0);
}

bool isPlainName(const char* name) {
    const std::string_view text(name);
    if (text.empty() || text == "." || text == ".." || text.size() > cnMaxNameBytes)
        return false;
    for (std::size_t units = 0; *name; name += units) {
        units = platform::characterBytes(name);
        if (units == 1 && std::strchr("\\/:", *name))
            return false;
    }
    return true;
}

} // namespace ovw::persistence
