#include "ovwcmn/xcfilecompression.h"

#include "Platform/file.h"
#include "Platform/systemerror.h"
#include "Utility/vxfile.h"
#include "ovwcmn/vxwutl.h"
#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcfile.h"
#include "ovwcmn/xcprogress.h"
#include "persistence/extractedfile.h"
#include "persistence/folderentries.h"
#include "persistence/packedformat.h"
#include "persistence/progressscope.h"
#include "persistence/replacingfile.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace platform = ovw::platform;
using namespace ovw::persistence;

namespace {

constexpr std::uint32_t cnSavingFlags = XCArchive::cnSaving | XCArchive::cnLittleEndian;
constexpr std::uint32_t cnLoadingFlags = XCArchive::cnLoading | XCArchive::cnLittleEndian;
constexpr int cnFolderDigits = 4;
constexpr std::uint32_t cnKeptAttributes = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN;

/// Closes the archive's file, whatever happens.
class ArchiveScope {
public:
    explicit ArchiveScope(XCArchiveFile& archive) : m_archive(archive) {}
    ~ArchiveScope() { m_archive.FileClose(); }
    ArchiveScope(const ArchiveScope&) = delete;

private:
    XCArchiveFile& m_archive;
};

/// The last component whole: a ":" in it is part of the name on this system.
XCString packableName(const XCFilePath& path) {
    const std::string text = vxWithoutBackDelimiter(static_cast<const char*>(path));
    const std::size_t delimiter = vxFindLastDelimiter(text);
    const std::string name = delimiter == std::string::npos ? text : text.substr(delimiter + 1);
    if (!isPlainName(name.c_str()))
        xcThrowError(platform::cnErrorInvalidName);
    return name.c_str();
}

std::int32_t seconds32(std::int64_t seconds) {
    using Limits = std::numeric_limits<std::int32_t>;
    return seconds < Limits::min() || seconds > Limits::max() ? -1 : static_cast<std::int32_t>(seconds);
}

/// The file's contents; `record` becomes what stands before them.
XCPointer readFile(const XCFilePath& path, PackedFileRecord& record) {
    platform::FileInformation information;
    if (!lookAt(path, information))
        xcThrowError(vxGetLastError());
    record.time = seconds32(information.times.lastWrite.seconds);
    record.attributes = information.attributes;
    XCFile file;
    file.Open(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING, 0);
    const std::int64_t size = file.GetLength();
    if (size > std::numeric_limits<std::int32_t>::max())
        xcThrowError(ovw::foundation::cnCodeParameter);
    XCPointer contents;
    std::uint32_t done = 0;
    if (size > 0) {
        contents.Alloc(static_cast<std::uint32_t>(size), 0);
        file.Read(contents, static_cast<std::uint32_t>(size), &done);
    }
    record.size = static_cast<std::int32_t>(done);
    return contents;
}

/// After time and contents. A volume that keeps no such attributes still takes the file.
void restoreAttributes(const XCFilePath& path, std::uint32_t attributes) {
    if (const std::uint32_t kept = attributes & cnKeptAttributes)
        platform::fileSystem().setAttributes(static_cast<const char*>(path), kept);
}

void createNewFolder(const XCFilePath& folder) {
    int created = 0, code = 0;
    if (!vxCreateFolder(folder, &created, &code))
        xcThrowError(code);
}

} // namespace

XCFileCompression::XCFileCompression() = default;

XCFileCompression::~XCFileCompression() = default;

bool XCFileCompression::stepOrStop() {
    if (m_progress)
        m_progress->Step(1);
    return m_abort && m_abort->IsAbort();
}

// ---- Packing --------------------------------------------------------------------------------------------------------

int XCFileCompression::Compress(const XCFilePath& packedFile, const XCTArray<XCFilePath*>& items) {
    ReplacingFile growing(packedFile, "ovw");
    m_ownFiles.clear();
    for (const XCFilePath& path : {packedFile, growing.path()})
        if (platform::FileInformation information; lookAt(path, information))
            m_ownFiles.push_back({information.device, information.node});
    const std::vector<FolderEntry> entries = itemsOf(items);
    PackedHead head;
    head.items = static_cast<std::uint32_t>(entries.size());
    for (const FolderEntry& entry : entries)
        head.files += entry.isFolder() ? static_cast<std::uint32_t>(GetFileCount(entry.path)) : 1;
    const ProgressScope progress(m_progress, head.files);
    m_archive.Init(cnSavingFlags, XCArchiveFile::cnCacheSize);
    createForWriting(m_archive, growing.path(), 0, 0);
    const ArchiveScope closing(m_archive);
    writeHead(m_archive, head);
    const int result = compressEntries(entries);
    m_archive.FlushToDisk();
    m_archive.FileClose();
    growing.commit();
    return result;
}

bool XCFileCompression::isOwnFile(const FolderEntry& entry) const {
    const std::array<std::uint64_t, 2> id = {entry.information.device, entry.information.node};
    return std::ranges::find(m_ownFiles, id) != m_ownFiles.end();
}

std::vector<FolderEntry> XCFileCompression::itemsOf(const XCTArray<XCFilePath*>& paths) const {
    std::vector<FolderEntry> items;
    for (const XCFilePath* const path : paths) {
        FolderEntry item;
        if (!path || !lookAt(*path, item.information) || item.information.isSpecial || isOwnFile(item))
            continue;
        item.path = *path;
        items.push_back(std::move(item));
    }
    return items;
}

std::vector<FolderEntry> XCFileCompression::entriesOf(const XCFilePath& folder) const {
    std::vector<FolderEntry> entries = folderEntries(folder);
    std::erase_if(entries, [this](const FolderEntry& entry) {
        const bool isLinkToFolder = entry.isLink() && entry.isFolder(); // it may lead in circles
        return isLinkToFolder || entry.information.isSpecial || isOwnFile(entry);
    });
    return entries;
}

int XCFileCompression::GetFileCount(const XCFilePath& folder) { return countFiles(folder, 1); }

int XCFileCompression::countFiles(const XCFilePath& folder, int nesting) const {
    if (nesting > cnMaxPackedNesting)
        xcThrowError(platform::cnErrorFileNameTooLong);
    int count = 0;
    for (const FolderEntry& entry : entriesOf(folder))
        count += entry.isFolder() ? countFiles(entry.path, nesting + 1) : 1;
    return count;
}

int XCFileCompression::compressEntries(const std::vector<FolderEntry>& entries) {
    for (const FolderEntry& entry : entries) {
        m_archive << static_cast<std::uint16_t>(entry.isFolder() ? PackedKind::folder : PackedKind::file);
        if (!(entry.isFolder() ? CompressFolder(entry.path) : CompressFile(entry.path)))
            return 0;
    }
    return 1;
}

int XCFileCompression::CompressFolder(const XCFilePath& folder) {
    const std::vector<FolderEntry> entries = entriesOf(folder);
    writeFolderRecord(m_archive, {packableName(folder), static_cast<std::uint32_t>(entries.size())});
    return compressEntries(entries);
}

int XCFileCompression::CompressFile(const XCFilePath& file) {
    if (stepOrStop())
        return 0;
    PackedFileRecord record;
    record.name = packableName(file);
    const XCPointer contents = readFile(file, record);
    writeFileRecord(m_archive, record);
    if (record.size > 0)
        m_zlib.Compress(m_archive, contents.GetPointer(), static_cast<std::uint32_t>(record.size));
    return 1;
}

// ---- Unpacking ------------------------------------------------------------------------------------------------------

int XCFileCompression::Decompress(const XCFilePath& destFolder, const XCFilePath& packedFile) {
    m_archive.Init(cnLoadingFlags, XCArchiveFile::cnCacheSize);
    m_archive.FileOpen(packedFile, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, 0);
    const ArchiveScope closing(m_archive);
    const PackedHead head = readHead(m_archive);
    checkEntries(m_archive, head.items, expansionLimit(m_unpackLimit, m_archive.GetLength()));
    const ProgressScope progress(m_progress, head.files);
    return decompressEntries(destFolder, head.items);
}

int XCFileCompression::decompressEntries(const XCFilePath& destFolder, std::uint32_t count) {
    for (std::uint32_t i = 0; i < count; ++i) {
        const bool isFolderNext = readKind(m_archive) == PackedKind::folder;
        if (!(isFolderNext ? DecompressFolder(destFolder) : DecompressFile(destFolder)))
            return 0;
    }
    return 1;
}

int XCFileCompression::DecompressFolder(const XCFilePath& destFolder) {
    const PackedFolderRecord record = readFolderRecord(m_archive);
    XCFilePath folder(destFolder);
    folder += record.name;
    if (folder.IsExistence())
        folder.GetSequencialFilePath(destFolder, cnFolderDigits, nullptr, record.name);
    createNewFolder(folder);
    return decompressEntries(folder, record.entries);
}

int XCFileCompression::DecompressFile(const XCFilePath& destFolder) {
    if (stepOrStop())
        return 0;
    const PackedFileRecord record = readFileRecord(m_archive);
    if (record.size == 0)
        return 1;
    const auto size = static_cast<std::uint32_t>(record.size);
    requireFrame(m_archive, size);
    XCPointer contents;
    contents.Alloc(size, 0);
    m_zlib.DecompressWhole(m_archive, contents, size);
    XCFilePath path(destFolder);
    path += record.name;
    ExtractedFile file(path);
    file.write(contents, size);
    file.finish(record.time == -1 ? std::nullopt : std::optional<std::int64_t>(record.time));
    restoreAttributes(path, record.attributes);
    return 1;
}
