#ifndef OVW_PLATFORM_FILE_H
#define OVW_PLATFORM_FILE_H

/// @file
/// Files, folders and volumes. Paths are in the library's form (path.h). Every function that returns `int` gives 0 or
/// the Windows system code of the failure (systemerror.h), and then leaves its results alone; nothing throws but
/// std::bad_alloc. Any function may block on the disk, and may be called from any thread.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace ovw::platform {

/// Attribute bits, as Windows numbers them. Read-only is the lack of every write permission; hidden, system and archive
/// live in the extended attribute user.DOSATTRIB, and a leading dot counts as hidden.
enum FileAttribute : std::uint32_t {
    attributeReadOnly = 0x1,
    attributeHidden = 0x2,
    attributeSystem = 0x4,
    attributeFolder = 0x10,
    attributeArchive = 0x20,
    attributeNormal = 0x80, ///< none of the others
};

struct FileTime {
    std::int64_t seconds = 0; ///< since 1970, UTC
    std::int32_t nanoseconds = 0;
};

struct FileTimes {
    FileTime creation; ///< the change time where the system keeps no birth time
    FileTime lastAccess;
    FileTime lastWrite;
};

struct FileInformation {
    std::uint32_t attributes = 0;
    std::uint32_t permissions = 0; ///< of owner, group and others: 0 to 0777
    std::uint64_t length = 0;      ///< bytes
    FileTimes times;
    bool isLink = false;                ///< the name is a symbolic link; the rest tells of its target, if it has one
    bool isSpecial = false;             ///< neither file nor folder: a pipe, a device, a link to nowhere
    std::uint64_t device = 0, node = 0; ///< together the file itself, by whatever path it is reached

    bool isSameFile(const FileInformation& other) const { return device == other.device && node == other.node; }
};

struct VolumeInformation {
    std::uint32_t sectorBytes = 0;
    std::uint32_t clusterSectors = 0;
    std::uint64_t totalBytes = 0;
    std::uint64_t freeBytes = 0; ///< for this user
};

/// What becomes of an existing and of a missing file; the values are those of the Windows interface.
enum class Disposition : std::uint32_t {
    createNew = 1,        ///< existing: error 80
    createAlways = 2,     ///< existing: emptied
    openExisting = 3,     ///< missing: error 2 (3 when a folder of the path is missing)
    openAlways = 4,       ///< missing: created
    truncateExisting = 5, ///< emptied; missing: error 2
};

struct OpenRequest {
    bool read = false;
    bool write = false;
    bool shareRead = false;  ///< others of this process may read meanwhile; else they get error 32
    bool shareWrite = false; ///< likewise write
    Disposition disposition = Disposition::openExisting;
    std::uint32_t attributes = 0;     ///< of a file that is created
    std::uint32_t permissions = 0666; ///< likewise; the umask takes from them
    bool deleteOnClose = false;
    /// The file is this process's alone: an existing file of the name is replaced, never opened, and never reached
    /// through a link; mode 0600; marked as held until it is closed (removeUnlessHeld). Wants a creating disposition.
    bool isPrivate = false;
};

/// An open file; closed by its destructor. Positions in bytes from the start.
class OpenFile {
public:
    virtual ~OpenFile() = default;
    /// Reads up to `size` bytes; `done` is less at the end of the file only.
    virtual int readAt(void* buffer, std::size_t size, std::uint64_t position, std::size_t& done) = 0;
    /// Writes all bytes, or fails having written `done` of them. A gap before `position` reads as zeros.
    virtual int writeAt(const void* buffer, std::size_t size, std::uint64_t position, std::size_t& done) = 0;
    /// Cuts or extends; what is added reads as zeros and need not take space on the disk.
    virtual int setLength(std::uint64_t bytes) = 0;
    /// Returns when all that was written is on the disk.
    virtual int flush() = 0;
    virtual int information(FileInformation& out) = 0;
    /// Sets the times of last access and last write; a creation time cannot be set.
    virtual int setTimes(const FileTimes& times) = 0;
};

/// The file system as the library sees it. The one interface of this folder: tests put a fake in its place.
class FileSystem {
public:
    static constexpr std::uint32_t cnAllPermissions = 0777;

    virtual ~FileSystem() = default;
    virtual int open(const std::string& path, const OpenRequest& request, std::unique_ptr<OpenFile>& out) = 0;
    virtual int information(const std::string& path, FileInformation& out) = 0;
    /// Error 50 when the volume keeps no extended attributes and hidden or system is asked for.
    virtual int setAttributes(const std::string& path, std::uint32_t attributes) = 0;
    /// Removes a file or a link. Error 5 for a folder and for a read-only file.
    virtual int removeFile(const std::string& path) = 0;
    /// Removes a folder with all that it holds, following no link.
    virtual int removeFolder(const std::string& path) = 0;
    /// With the permissions, from which the umask takes. Error 183 when the name exists, 3 when the parent does not.
    virtual int createFolder(const std::string& path, std::uint32_t permissions = cnAllPermissions) = 0;
    /// Renames a file or folder. Error 183 when the name exists, 17 between volumes.
    virtual int rename(const std::string& from, const std::string& to) = 0;
    /// Puts a finished file in the place of another, or of none, in one step: the name leads to the old contents or to
    /// the new ones, also after a crash, provided that `from` was flushed. The file takes over the permissions and
    /// attributes of the one it replaces, else those of any new file. Error 5 when `to` is read-only or no file.
    virtual int replaceFile(const std::string& from, const std::string& to) = 0;
    /// Makes `to` a link that says what the link `from` says. Error 80 when the name exists.
    virtual int copyLink(const std::string& from, const std::string& to) = 0;
    /// The names in a folder, "." and ".." included, in the order of the file system; "" stands for an entry whose name
    /// has no form in the code page.
    virtual int list(const std::string& folder, std::vector<std::string>& names) = 0;
    /// Of the volume that holds the path, which must exist.
    virtual int volume(const std::string& path, VolumeInformation& out) = 0;
    /// The system's folder for temporary files, with a "\" at its end.
    virtual int temporaryFolder(std::string& out) = 0;
    /// Creates an empty file of mode 0600 with a new name: up to three bytes of whole characters of the prefix, hex
    /// digits and ".tmp".
    virtual int createUnique(const std::string& folder, const std::string& prefix, std::string& path) = 0;
    /// Removes a regular file of this user that no living process holds as its private file; else error 32 or 5.
    virtual int removeUnlessHeld(const std::string& path) = 0;
    /// Moves a file or folder into the user's trash, from where a desktop can restore it.
    virtual int moveToTrash(const std::string& path) = 0;
};

/// The system's file system, or the one put in its place. Never null in effect.
FileSystem& fileSystem();

/// Puts another file system in place (null: the system's own) and returns the one before. For tests, with one thread.
FileSystem* replaceFileSystem(FileSystem* other);

} // namespace ovw::platform

#endif // OVW_PLATFORM_FILE_H
