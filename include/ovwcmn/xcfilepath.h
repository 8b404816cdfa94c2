#ifndef OVWCMN_XCFILEPATH_H
#define OVWCMN_XCFILEPATH_H

/// @file
/// Paths as values, and what can be done with the files and folders that they name.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/xcstring.h"
#include "ovwcmn/xcstringarray.h"

#include <cstdint>

class XCTime;

/// A full path in the library's form: `C:\a\b` or `\\server\share\a`, multibyte text in the current code page, at most
/// 519 bytes (error 0x20010008) and 255 a component. The text is kept as given; whatever splits it ignores a trailing
/// run of "\". Names are compared without regard to case, although files of this system differ by it: renaming to
/// another case does nothing, and two names that differ by case are two files to the system and one to comparisons.
/// Operations throw XCException with the system's code; queries never throw and answer 0. Paths are independent values:
/// one thread at a time each. To and from the paths of this system: xcPathFromPosix, xcPathToPosix.
class OVWCMN_API XCFilePath {
public:
    XCFilePath() = default;
    /// @{ The text as it is.
    XCFilePath(const char* path) : m_strPath(path) {}
    XCFilePath(const XCString& path) : m_strPath(path) {}
    /// @}
    XCFilePath(const XCFilePath& other) = default;
    /// @{ The text as it is.
    XCFilePath& operator=(const char* path);
    XCFilePath& operator=(const XCString& path);
    /// @}
    XCFilePath& operator=(const XCFilePath& other) = default;
    virtual ~XCFilePath() = default;

    /// @name The text
    /// Texts written to a `char*` are at most 520 bytes with their terminator; a longer one throws 0x20010008.
    /// @{
    /// Becomes the empty path.
    void Empty() { m_strPath.Empty(); }
    /// 1 for the empty path.
    int IsEmpty() const { return m_strPath.IsEmpty(); }
    /// The text as stored.
    operator const char*() const { return m_strPath.GetStr(); }
    /// The text as it is.
    void SetFullPath(const char* path) { m_strPath = path; }
    /// The text as it is.
    void SetFullPath(const XCString& path) { m_strPath = path; }
    /// Without trailing "\", unless the path is a root.
    void GetFullPath(char* out) const;
    void GetFullPath(XCString& out) const; ///< As the form for buffers.
    /// The text as stored.
    void GetFullPathDirect(XCString& out) const { out = m_strPath; }
    /// Bytes of the text as stored.
    int GetFullPathLength() const { return m_strPath.GetLength(); }
    /// The text as it is: files are reached by the library's form.
    void SetNativePath(const char* path) { m_strPath = path; }
    void GetNativePath(char* out) const; ///< as GetFullPath
    /// @}

    /// @name Parts of the path
    /// @{
    void GetFileName(char* out) const;     ///< The last component.
    void GetFileName(XCString& out) const; ///< The last component.
    /// The last component up to its last ".", and what follows it.
    void GetNameAndExtension(char* name, char* ext) const;
    void GetNameAndExtension(XCString& name, XCString& ext) const; ///< As the form for buffers.
    /// The path without its last component; a root is its own folder, "" that of a name alone.
    void GetFolderPath(XCFilePath& out) const;
    /// `C:\` or `\\server\share`; empty when the path has no root.
    void GetRootPath(XCFilePath& out) const;
    /// Replaces the last component.
    void SetFileName(const char* name);
    /// Replaces the last component.
    void SetFileName(const XCString& name) { SetFileName(name.GetStr()); }
    /// An empty `ext` leaves the name without an extension; a "." at its front is not doubled.
    void SetNameAndExtension(const char* name, const char* ext);
    /// As the form for plain texts.
    void SetNameAndExtension(const XCString& name, const XCString& ext) {
        SetNameAndExtension(name.GetStr(), ext.GetStr());
    }
    void ChangeName(const char* name);     ///< Replaces the last component but its extension.
    void ChangeExtension(const char* ext); ///< Replaces what follows the last ".".
    /// Replaces the last component; 0 and no change when the path has no parent.
    int ChangeSubFolderName(const char* name);
    /// Takes the last component off into `last`; 0 and no change (but `last` empty) when there is no parent.
    int DivideSubPath(XCString& last);
    /// Appends a sub-path with exactly one "\" between; to an empty path the sub-path as it is.
    XCFilePath& operator+=(const char* subPath);
    /// As the form for plain texts.
    XCFilePath& operator+=(const XCString& subPath) { return *this += subPath.GetStr(); }
    void CatSubPath(const char* subPath) { *this += subPath; }           ///< as +=
    void CatSubPath(const XCString& subPath) { *this += subPath; }       ///< as +=
    void CatSubPathForWin(const char* subPath) { *this += subPath; }     ///< as +=
    void CatSubPathForWin(const XCString& subPath) { *this += subPath; } ///< as +=
    /// Takes ":" for the separator of the sub-path.
    void CatSubPathForMac(const char* subPath);
    /// As the form for plain texts.
    void CatSubPathForMac(const XCString& subPath) { CatSubPathForMac(subPath.GetStr()); }
    /// Without trailing "\" and without regard to case.
    bool operator==(const XCFilePath& other) const;
    /// Without trailing "\" and without regard to case.
    bool operator!=(const XCFilePath& other) const { return !(*this == other); }
    /// Without trailing "\" and without regard to case.
    bool operator==(const char* other) const { return *this == XCFilePath(other); }
    /// Without trailing "\" and without regard to case.
    bool operator!=(const char* other) const { return !(*this == other); }
    /// Whether the extension is `ext` (without ".").
    int IsExtensionFile(const char* ext) const;
    /// The path becomes `relative` below `base`, with a leading "..\" for each step up: 1. An absolute `relative` is
    /// taken as it is: 0.
    int RemakePath(const XCString& relative, const XCFilePath& base);
    /// @}

    /// @name Questions to the file system
    /// @{
    int IsExistence() const; ///< 1 for a file or folder that is there
    int IsFolder() const;    ///< 1 for a folder that is there
    int IsRoot() const;      ///< by the text alone
    int IsHidden() const;    ///< by the attribute or a leading dot
    int GetReadOnly() const; ///< 1 when nobody may write the file
    /// 1 for the extension "lnk"; *isFolder (may be null) tells whether the shortcut's target is a folder.
    int IsAliasFile(int* isFolder) const;
    /// Files carry no four-character codes on this system: they read 0, match no type, and setting them does nothing.
    int IsFileType(std::uint32_t type) const;
    void GetCreaterAndType(std::uint32_t& creator, std::uint32_t& type) const; ///< Both 0.
    void SetCreaterAndType(std::uint32_t, std::uint32_t) {}                    ///< Nothing.
    /// Whether `other` is this folder or lies below it. Looks at the texts only.
    int IsChildFolder(const XCFilePath& other) const;
    int IsFolderEmpty() const; ///< 1 for a folder without entries
    /// Time of the last write; left alone for a folder that cannot be read, thrown for a file.
    void GetTime(XCTime& time) const;
    /// A text of the version resource of a Windows program or library, in its first language ("FileVersion" for null).
    /// 1; 0 and `out` empty when there is none.
    int GetVersionInfo(XCString& out, const char* key) const;
    /// 1 when a file can be created beside this path; throws when not.
    int CanSaveFile() const;
    /// @}

    /// @name Changes
    /// @{
    void SetHidden(int hidden);     ///< sets or clears the attribute
    void SetReadOnly(int readOnly); ///< takes away or gives back the right to write
    /// The path becomes the target of the shortcut file it names; 0 and no change when it cannot be read.
    int ResolveAliasFile();
    /// The path becomes the user's documents folder.
    void SetDefaultPath();
    /// The path becomes a new, empty file of mode 0600, in this path's folder or the system's temporary one; up to
    /// three bytes of the prefix begin its name. 0 and no change on failure.
    int MakeTempPath(const char* prefix, int inOwnFolder);
    /// An existing folder is fine, an existing file throws 0x2001000a. Missing parents are not created.
    void CreateFolder() const;
    void CreateFolder2() const { CreateFolder(); } ///< as CreateFolder
    /// Removes a file or a whole folder; failures are not reported.
    void Delete(int toRecycleBin) const;
    /// The same for a file only.
    void FileDelete(int toRecycleBin) const;
    /// Nothing when only the case differs.
    void Rename(const char* newName);
    /// The path becomes the next free numbered name in `folder` (prefix + number + "." + ext; `ext` and `prefix` may be
    /// null). 1; 0 and no change when the number would exceed `maximum` (0: no limit).
    int GetSequencialFilePath(const XCFilePath& folder, int digits, const char* ext, const char* prefix);
    /// The same with a largest number.
    int GetSequencialFilePath2(const XCFilePath& folder, int digits, const char* ext, const char* prefix, int maximum);
    /// @}

    /// @name Texts and whole files
    /// The deletions return the number of bytes removed. An existing target throws 0x2001000a where failIfExists or
    /// checkExisting is set.
    /// @{
    static int DeleteBackDelimiter(char* path);         ///< Removes "\" from the end.
    static int DeleteBackDelimiter(XCString& path);     ///< Removes "\" from the end.
    static int DeleteFrontDelimiter(char* path);        ///< Removes "\" from the beginning.
    static int DeleteFrontDelimiter(XCString& path);    ///< Removes "\" from the beginning.
    static void ConvertWinToMacSubPath(char* path);     ///< "\" to ":"
    static void ConvertWinToMacSubPath(XCString& path); ///< "\" to ":"
    static void ConvertMacToWinSubPath(char* path);     ///< ":" to "\"
    static void ConvertMacToWinSubPath(XCString& path); ///< ":" to "\"
    /// 1 and the way from `base` to `target` (at most 259 bytes), or 0 and the full target when they share no root
    /// or the way is longer.
    static int MakeRelativePath(XCString& out, const XCFilePath& base, const XCFilePath& target);
    /// Removes what names must not hold from every component; 1 when the path changed.
    static int ConvertCannotUseCharactors(XCString& path, int withExtension);
    /// Contents, times and attributes.
    static void CopyFileA(const XCFilePath& dest, const XCFilePath& src, int failIfExists);
    /// Between volumes it copies and deletes.
    static void MoveFileA(const XCFilePath& dest, const XCFilePath& src, int failIfExists);
    /// Copies `src` into `destFolder`, or onto it when it has the same name and alwaysAppendName is 0. Links in a
    /// folder are copied as links, never followed. What cannot be copied throws and ends the copy where it is: 80 for a
    /// file that exists, 123 for a name without a form in the code page, 25 for a pipe, 5 for a folder inside itself.
    static void CopyFolder(const XCFilePath& destFolder, const XCFilePath& src, int checkExisting,
                           int alwaysAppendName);
    /// Moves `src` into `destFolder`. Between volumes it copies: the source goes when all of it has arrived, and what
    /// has arrived goes when something fails.
    static void MoveFolder(const XCFilePath& destFolder, const XCFilePath& src, int checkExisting);
    // Bytes; 0, with the code in vxGetLastError(), on failure.
    /// Bytes; 0, with the code in vxGetLastError(), on failure.
    static std::uint32_t GetDiskClusterSize(const XCFilePath& path);
    /// Bytes; 0, with the code in vxGetLastError(), on failure.
    static std::uint32_t GetDiskSectorSize(const XCFilePath& path);
    /// Bytes of the volume; 0, with the code in vxGetLastError(), on failure.
    static std::uint64_t GetDiskSpace(const XCFilePath& path);
    /// Bytes that the user may still use; 0, with the code in vxGetLastError(), on failure.
    static std::uint64_t GetDiskFreeSpaceA(const XCFilePath& path);
    /// @}

private:
    void setAttribute(std::uint32_t bit, int on);
    std::uint32_t attributes() const;

    XCString m_strPath;
};

/// Paths that it owns.
class OVWCMN_API XCFilePathArray : public ovw::persistence::OwningArray<XCFilePath> {};

/// @name Paths of this system
/// @{
/// The library's path of a file of this system: /a/b is `C:\a\b`. A relative path is made absolute first.
OVWCMN_API XCFilePath xcPathFromPosix(const char* path);
/// The path as the system's own calls take it, UTF-8.
OVWCMN_API XCString xcPathToPosix(const XCFilePath& path);
/// Lets a drive (a letter) stand for a folder of this system instead of "/"; "" takes it back. Set at start-up. 1, or 0
/// when `drive` is no letter.
OVWCMN_API int xcSetDriveRoot(char drive, const char* posixFolder);
/// @}

#endif // OVWCMN_XCFILEPATH_H
