#include "ovwcmn/xcunzip.h"

#include "Platform/file.h"
#include "Platform/systemerror.h"
#include "Utility/vxfile.h"
#include "ovwcmn/vxwutl.h"
#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcfilepath.h"
#include "ovwcmn/xczlib.h"
#include "persistence/extractedfile.h"
#include "persistence/folderentries.h"
#include "persistence/progressscope.h"
#include "persistence/zipnames.h"
#include "persistence/zipreader.h"

#include <algorithm>
#include <limits>
#include <vector>

namespace platform = ovw::platform;
using namespace ovw::persistence;
using ovw::foundation::cnCodeCancelled;
using ovw::foundation::cnCodeFileFormat;

namespace {

constexpr std::uint32_t cnStored = 0;
constexpr std::uint32_t cnDeflated = 8;

constexpr std::uint32_t cnModeType = 0170000; // of a Unix mode
constexpr std::uint32_t cnModeFile = 0100000;
constexpr std::uint32_t cnModeFolder = 0040000;

/// What a run created; taken away again unless it is kept.
class CreatedThings {
public:
    CreatedThings() = default;
    ~CreatedThings();
    CreatedThings(const CreatedThings&) = delete;
    void add(const XCFilePath& path) { m_paths.push_back(path); }
    void keep() { m_paths.clear(); }

private:
    std::vector<XCFilePath> m_paths;
};

CreatedThings::~CreatedThings() {
    std::for_each(m_paths.rbegin(), m_paths.rend(), [](const XCFilePath& path) {
        if (!path.IsFolder() || path.IsFolderEmpty())
            path.Delete(0);
    });
}

XCFilePath pathOf(const XCFilePath& destFolder, const ZipPlace& place) {
    XCFilePath path(destFolder);
    for (const std::string& folder : place.folders)
        path += folder.c_str();
    if (!place.file.empty())
        path += place.file.c_str();
    return path;
}

/// Throws unless the entry can be extracted, as far as the directory tells.
void checkEntry(const ZipEntry& entry, const XCFilePath& destFolder) {
    const std::uint32_t type = entry.unixMode & cnModeType;
    if (type != 0 && type != cnModeFile && type != cnModeFolder)
        xcThrowError(cnCodeFileFormat); // a link or a device
    if (entry.isEncrypted || entry.isTooLong || (entry.method != cnStored && entry.method != cnDeflated))
        xcThrowError(platform::cnErrorNotSupported);
    const bool sizesAgree = entry.method == cnStored
                                ? entry.size == entry.packedSize
                                : XCZLib::CanExpandTo(entry.size, static_cast<std::uint32_t>(entry.packedSize));
    if (!sizesAgree)
        xcThrowError(cnCodeFileFormat);
    pathOf(destFolder, placeOf(entry.name)); // throws for names that leave it or are too long
}

/// Calls visit(entry) for every entry; the reader stands on it.
template <class Visit>
void forEachEntry(ZipReader& zip, Visit visit) {
    const std::uint64_t count = zip.entryCount();
    for (std::uint64_t i = 0; i < count; ++i) {
        if (i == 0)
            zip.goToFirst();
        else
            zip.goToNext();
        visit(zip.entry());
    }
}

void checkDirectory(ZipReader& zip, const XCFilePath& destFolder, const VXUNZIPOPTIONS& options) {
    if (zip.entryCount() > options.maxEntries)
        xcThrowError(cnCodeFileFormat);
    std::uint64_t left = expansionLimit(options.maxBytes, zip.archiveBytes());
    forEachEntry(zip, [&](const ZipEntry& entry) {
        checkEntry(entry, destFolder);
        if (entry.size > left)
            xcThrowError(cnCodeFileFormat);
        left -= entry.size;
    });
}

/// Entries on their way into the destination.
class Extraction {
public:
    explicit Extraction(const XCFilePath& destFolder) : m_destFolder(destFolder), m_folder(destFolder) {}

    void extract(ZipReader& zip, const ZipEntry& entry);
    void keep() { m_things.keep(); }

private:
    void enter(const std::vector<std::string>& names);

    XCFilePath m_destFolder;
    CreatedThings m_things;
    std::vector<std::string> m_names; // of the folder entered last, below the destination
    XCFilePath m_folder;
};

/// Makes it the folder of an entry, created as far as it is missing. What a link leads to lies elsewhere.
void Extraction::enter(const std::vector<std::string>& names) {
    if (names == m_names)
        return; // looked at for the entry before
    XCFilePath folder(m_destFolder);
    for (const std::string& name : names) {
        folder += name.c_str();
        platform::FileInformation information;
        if (!lookAt(folder, information)) {
            folder.CreateFolder();
            m_things.add(folder);
        } else if (information.isLink) {
            xcThrowError(platform::cnErrorAccessDenied);
        } else if (!(information.attributes & platform::attributeFolder)) {
            xcThrowError(ovw::foundation::cnCodeFileExists);
        }
    }
    m_folder = folder;
    m_names = names;
}

void Extraction::extract(ZipReader& zip, const ZipEntry& entry) {
    const ZipPlace place = placeOf(entry.name);
    enter(place.folders);
    if (place.file.empty())
        return;
    XCFilePath path(m_folder);
    path += place.file.c_str();
    ExtractedFile file(path);
    zip.expand([&](const void* bytes, std::uint32_t size) { file.write(bytes, size); });
    file.finish();
    if (file.isNew())
        m_things.add(path);
}

/// 1, or 0 when the file is no archive.
int extract(const XCFilePath& zipFile, const XCFilePath& destFolder, const VXUNZIPOPTIONS& options) {
    ZipReader zip(zipFile);
    if (!zip.isOpen()) {
        vxSetLastError(cnCodeFileFormat);
        return 0;
    }
    checkDirectory(zip, destFolder, options);
    ProgressScope progress(options.progress, static_cast<std::int64_t>(zip.entryCount()));
    Extraction extraction(destFolder);
    forEachEntry(zip, [&](const ZipEntry& entry) {
        if (options.abort && options.abort->IsAbort())
            xcThrowError(cnCodeCancelled);
        extraction.extract(zip, entry);
        progress.step(1);
    });
    extraction.keep();
    return 1;
}

bool canOpen(const XCFilePath& file) {
    XCFile trial;
    try {
        trial.Open(file, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING, 0);
        return true;
    } catch (const XCException& error) {
        vxSetLastError(error.GetErrorCode());
        return false;
    }
}

/// A new folder in `parent` with that name or the next free one behind it; 0 when it cannot be created.
int createNumberedFolder(const XCFilePath& parent, const XCString& name, XCFilePath& out) {
    try {
        XCString numbered(name);
        for (int number = 1;; ++number) {
            XCFilePath folder(parent);
            folder += numbered;
            int created = 0, code = 0;
            const bool isFree = !folder.IsExistence();
            if (isFree && !vxCreateFolder(folder, &created, &code))
                return 0;
            if (isFree) {
                out = folder;
                return 1;
            }
            numbered.Format("%s%d", name.GetStr(), number);
        }
    } catch (const XCException& error) { // the path became too long
        vxSetLastError(error.GetErrorCode());
        return 0;
    }
}

} // namespace

int xcUnzip(const XCFilePath& zipFile, const XCFilePath& destFolder, const VXUNZIPOPTIONS* options) {
    return canOpen(zipFile) ? extract(zipFile, destFolder, options ? *options : VXUNZIPOPTIONS()) : 0;
}

int xcIsZipFileUnzip(const XCFilePath& file, XCFilePath& outFolder, const XCFilePath* altParent,
                     const VXUNZIPOPTIONS* options) {
    if (!file.IsExtensionFile("zip"))
        return 0;
    XCFilePath parent, target;
    file.GetFolderPath(parent);
    XCString name, ext;
    file.GetNameAndExtension(name, ext);
    if (!createNumberedFolder(parent, name, target) && !(altParent && createNumberedFolder(*altParent, name, target)))
        return 0;
    try {
        if (xcUnzip(file, target, options)) {
            outFolder = target;
            return 1;
        }
    } catch (const XCException& error) {
        vxSetLastError(error.GetErrorCode());
    }
    const int code = vxGetLastError();
    target.Delete(0);
    vxSetLastError(code);
    return 0;
}
