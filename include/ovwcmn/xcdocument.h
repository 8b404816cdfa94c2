#ifndef OVWCMN_XCDOCUMENT_H
#define OVWCMN_XCDOCUMENT_H

/// @file
/// The base of documents.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/xcfilepath.h"
#include "ovwcmn/xcstring.h"

#include <cstdint>

class XCArchive;

/// What all documents share: file or provisional name, a counter of changes, the version at the head of the file, and
/// saving that never leaves half a file: the document grows beside its file and replaces it in one step when it is
/// whole and on the disk. Derive, override Serialize (it begins with WriteVersionInfo or ReadVersionInfo) and what else
/// is needed. File errors throw the system's code, and a save or open that throws leaves path, counter and modes as
/// they were. One thread at a time.
class OVWCMN_API XCDocument {
public:
    static constexpr std::uint16_t cnSaveAs = 1;   ///< bits of the save mode
    static constexpr std::uint16_t cnCopySave = 2; ///< the document keeps its own file

    /// The high byte of `version` is the major version.
    XCDocument(std::uint32_t creator, std::uint32_t fileType, std::uint16_t version);
    /// @{ As CopyMembers.
    XCDocument(const XCDocument& other);
    XCDocument& operator=(const XCDocument& other);
    /// @}

    // In the order of the interface.
    virtual ~XCDocument();
    /// Version of the file being read or written.
    virtual std::uint16_t GetSerializeVersion() const;
    /// The next save writes this version.
    virtual void SetSerializeVersion(std::uint16_t version);
    virtual void ClearSerializeVersion();      ///< Back to the version that the constructor got.
    virtual std::uint16_t GetSaveMode() const; ///< cnSaveAs, cnCopySave, both or 0
    /// For the next save.
    virtual void SetSaveMode(std::uint16_t mode);
    /// Also when a copy is saved.
    virtual int IsSaveAs() const;
    virtual int IsCopySave() const; ///< whether the save mode has cnCopySave
    /// By the flag or the file's attribute; 0 for a new document.
    virtual int IsReadOnly() const;
    virtual void SetReadOnly(int readOnly); ///< the flag only, not the file's attribute
    /// 1 while the document has no file.
    virtual int IsNewDocument() const;
    /// 1 after a save whose encrypt hook made another file.
    virtual int IsDecryptOpen() const;
    /// Remembers path and modify count, once.
    virtual void PushBackup();
    virtual void PopBackup(); ///< back to what PushBackup remembered
    /// Byte order of the archive (XCArchive::cnLittleEndian here).
    virtual int GetEndianMode(int forReading) const;
    /// The archive's extension mode (0 here).
    virtual std::uint32_t GetArchiveExtMode(int forReading) const;
    virtual int IsModified() const;       ///< 1 unless the count is 0
    virtual int IsAllNewDocument() const; ///< as IsNewDocument; for documents of several files
    virtual void InitModify();            ///< count 0
    /// A change and its undoing.
    virtual void PushModify();
    virtual void PopModify();           ///< count - 1
    virtual int GetModifyCount() const; ///< changes not undone since the last save
    /// 1; the document becomes new and unmodified.
    virtual int OnNewDocument(void* parameter);
    /// 1 when the document was read.
    virtual int OnOpenDocument(XCFilePath& path);
    /// Saves to the document's file (null) or as another one; with the bit for a copy in the save mode the document
    /// then goes back to its own file and count. 1.
    virtual int OnSaveDocument(XCFilePath* newPath);
    /// Path of a deciphered copy to read instead; empty: there is none.
    virtual XCFilePath OnOpenDocumentDecrypt(XCFilePath& path);
    /// Path of the file to install as the document, made from `plain`, or `plain` itself; an empty one throws 123.
    virtual XCFilePath OnSaveDocumentEncrypt(XCFilePath& plain);
    /// Asks whether to save the changes: IDYES, IDNO or IDCANCEL. An unmodified document with a file is not asked about
    /// (IDNO); a new one always is.
    virtual int VerifySaveDocument();
    /// The application's dialogs; IDCANCEL here.
    virtual int FileOpenDialog(XCFilePath& path);
    virtual int FileSaveDialog(XCFilePath& path, int mode); ///< `mode` is the application's. IDCANCEL here.
    /// The contents, in either direction; nothing here.
    virtual void Serialize(XCArchive& archive);
    /// The head of the file: file type (another throws 0x2001000B), version (a newer major one throws 0x2001000C).
    virtual void ReadVersionInfo(XCArchive& archive);
    virtual void WriteVersionInfo(XCArchive& archive); ///< File type and version, as ReadVersionInfo expects them.

    std::uint32_t GetCreater() const { return m_creator; }   ///< the four-character code of the application
    std::uint32_t GetFileType() const { return m_fileType; } ///< the code at the head of the file
    std::uint16_t GetVersion() const { return m_version; }   ///< the version that the constructor got
    /// 1 when there is one; likewise the names.
    int GetDocumentFilePath(XCFilePath& path) const;
    void SetDocumentFilePath(const XCFilePath& path); ///< "" makes the document new
    int GetDocumentFileName(XCString& name) const;    ///< 0 and an empty name for a new document
    /// Of a new document.
    int GetNewDocumentName(XCString& name) const;
    /// The document becomes new.
    void SetNewDocumentName(const char* name);

protected:
    /// All but the text, the backup and the encrypted flag.
    virtual void CopyMembers(const XCDocument& other);

    XCString m_text; ///< the derived class's

private:
    void readFile(const XCFilePath& path);
    void saveFile();

    XCString m_newDocumentName;
    XCFilePath m_path;
    int m_modifyCount = 0;
    int m_isReadOnly = 0;
    int m_isEncrypted = 0;
    XCFilePath m_backupPath;
    int m_backupModifyCount = 0;
    std::uint16_t m_version;
    std::uint16_t m_serializeVersion;
    int m_isSerializeVersionSet = 0;
    std::uint16_t m_saveMode = 0;
    std::uint32_t m_creator;
    std::uint32_t m_fileType;
};

#endif // OVWCMN_XCDOCUMENT_H
