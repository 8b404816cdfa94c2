#include "ovwcmn/xcdocument.h"

#include "Platform/systemerror.h"
#include "ovwcmn/ovwhooks.h"
#include "ovwcmn/xcarchivefile.h"
#include "ovwcmn/xcexception.h"
#include "persistence/replacingfile.h"

#include <optional>
#include <utility>

namespace persistence = ovw::persistence;

namespace {

constexpr std::uint32_t cnAskToSave = 0xE2400064; // "%s has changed. Save the changes?": Yes, No, Cancel
constexpr std::uint32_t cnHeadBytes = 6;

/// Puts a value back unless it was told to keep what it became.
template <class Value>
class Restorer {
public:
    explicit Restorer(Value& value) : m_value(value), m_before(value) {}
    ~Restorer() {
        if (!m_isKept)
            m_value = std::move(m_before);
    }
    Restorer(const Restorer&) = delete;
    Restorer& operator=(const Restorer&) = delete;
    void keep() { m_isKept = true; }

private:
    Value& m_value;
    Value m_before;
    bool m_isKept = false;
};

[[noreturn]] void failByName() { xcThrowError(ovw::platform::cnErrorInvalidName); }

} // namespace

XCDocument::XCDocument(std::uint32_t creator, std::uint32_t fileType, std::uint16_t version)
    : m_version(version), m_serializeVersion(version), m_creator(creator), m_fileType(fileType) {}

XCDocument::XCDocument(const XCDocument& other) : XCDocument(other.m_creator, other.m_fileType, other.m_version) {
    XCDocument::CopyMembers(other);
}

XCDocument& XCDocument::operator=(const XCDocument& other) {
    if (this != &other)
        CopyMembers(other);
    return *this;
}

XCDocument::~XCDocument() = default;

void XCDocument::CopyMembers(const XCDocument& other) {
    m_newDocumentName = other.m_newDocumentName;
    m_path = other.m_path;
    m_modifyCount = other.m_modifyCount;
    m_creator = other.m_creator;
    m_fileType = other.m_fileType;
    m_version = other.m_version;
    m_serializeVersion = other.m_serializeVersion;
    m_isSerializeVersionSet = other.m_isSerializeVersionSet;
    m_isReadOnly = other.m_isReadOnly;
    m_saveMode = other.m_saveMode;
}

std::uint16_t XCDocument::GetSerializeVersion() const { return m_serializeVersion; }

void XCDocument::SetSerializeVersion(std::uint16_t version) {
    m_serializeVersion = version;
    m_isSerializeVersionSet = 1;
}

void XCDocument::ClearSerializeVersion() {
    m_serializeVersion = m_version;
    m_isSerializeVersionSet = 0;
}

std::uint16_t XCDocument::GetSaveMode() const { return m_saveMode; }

void XCDocument::SetSaveMode(std::uint16_t mode) { m_saveMode = mode; }

int XCDocument::IsSaveAs() const { return (m_saveMode & (cnSaveAs | cnCopySave)) != 0; }

int XCDocument::IsCopySave() const { return (m_saveMode & cnCopySave) != 0; }

int XCDocument::IsReadOnly() const {
    if (IsNewDocument())
        return 0;
    return m_isReadOnly ? 1 : m_path.GetReadOnly();
}

void XCDocument::SetReadOnly(int readOnly) { m_isReadOnly = readOnly; }

int XCDocument::IsNewDocument() const { return m_path.IsEmpty(); }

int XCDocument::IsDecryptOpen() const { return m_isEncrypted; }

void XCDocument::PushBackup() {
    m_backupPath = m_path;
    m_backupModifyCount = m_modifyCount;
}

void XCDocument::PopBackup() {
    m_path = m_backupPath;
    m_modifyCount = m_backupModifyCount;
}

int XCDocument::GetEndianMode(int) const { return static_cast<int>(XCArchive::cnLittleEndian); }

std::uint32_t XCDocument::GetArchiveExtMode(int) const { return 0; }

int XCDocument::IsModified() const { return m_modifyCount != 0; }

int XCDocument::IsAllNewDocument() const { return IsNewDocument(); }

void XCDocument::InitModify() { m_modifyCount = 0; }

void XCDocument::PushModify() { ++m_modifyCount; }

void XCDocument::PopModify() { --m_modifyCount; }

int XCDocument::GetModifyCount() const { return m_modifyCount; }

int XCDocument::OnNewDocument(void*) {
    InitModify();
    m_path.Empty();
    return 1;
}

int XCDocument::OnOpenDocument(XCFilePath& path) {
    // A document that could not be read must not be saved over the file.
    Restorer oldPath(m_path);
    Restorer oldEncrypted(m_isEncrypted);
    Restorer oldVersion(m_serializeVersion);
    m_path = path;
    m_isEncrypted = 0;
    const XCFilePath deciphered = OnOpenDocumentDecrypt(path);
    readFile(deciphered.IsEmpty() ? path : deciphered);
    oldPath.keep();
    oldEncrypted.keep();
    oldVersion.keep();
    InitModify();
    return 1;
}

void XCDocument::readFile(const XCFilePath& path) {
    XCArchiveFile archive(XCArchive::cnLoading | static_cast<std::uint32_t>(GetEndianMode(1)),
                          XCArchiveFile::cnCacheSize);
    archive.SetExtMode(GetArchiveExtMode(1));
    archive.FileOpen(path, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, 0);
    Serialize(archive);
}

int XCDocument::OnSaveDocument(XCFilePath* newPath) {
    Restorer oldPath(m_path);
    Restorer oldMode(m_saveMode);
    Restorer oldVersion(m_serializeVersion);
    if (newPath) {
        PushBackup();
        m_path = *newPath;
        m_saveMode |= cnSaveAs;
    }
    saveFile();
    oldPath.keep();
    oldMode.keep();
    oldVersion.keep();
    if (IsCopySave())
        PopBackup();
    else
        InitModify();
    SetSaveMode(0);
    ClearSerializeVersion();
    return 1;
}

void XCDocument::saveFile() {
    if (m_path.IsEmpty())
        failByName();
    std::optional<persistence::ReplacingFile> file;
    try {
        file.emplace(m_path, "xcd");
    } catch (const XCException&) { // whatever is wrong with the folder
        failByName();
    }
    XCArchiveFile archive(XCArchive::cnSaving | static_cast<std::uint32_t>(GetEndianMode(0)),
                          XCArchiveFile::cnCacheSize);
    archive.SetExtMode(GetArchiveExtMode(0));
    persistence::createForWriting(archive, file->path(), m_creator, m_fileType);
    Serialize(archive);
    archive.FlushToDisk();
    archive.FileClose();
    XCFilePath plain(file->path());
    const XCFilePath made = OnSaveDocumentEncrypt(plain);
    if (made.IsEmpty())
        failByName();
    const bool isOther = made != file->path(); // the hook may have changed `plain`
    file->commit(made);
    if (isOther && !IsCopySave())
        m_isEncrypted = 1;
}

XCFilePath XCDocument::OnOpenDocumentDecrypt(XCFilePath&) { return {}; }

XCFilePath XCDocument::OnSaveDocumentEncrypt(XCFilePath& plain) { return plain; }

int XCDocument::VerifySaveDocument() {
    if (!IsNewDocument() && !IsModified())
        return IDNO;
    XCString name;
    if (!GetNewDocumentName(name))
        GetDocumentFileName(name);
    XCAlert alert;
    alert.SetAlertID(cnAskToSave, ovw::foundation::cnCodeNone, name);
    return alert.doAlert(xcwGetMainWnd());
}

int XCDocument::FileOpenDialog(XCFilePath&) { return IDCANCEL; }

int XCDocument::FileSaveDialog(XCFilePath&, int) { return IDCANCEL; }

void XCDocument::Serialize(XCArchive&) {}

void XCDocument::ReadVersionInfo(XCArchive& archive) {
    archive.RequireRemaining(cnHeadBytes);
    std::uint32_t type = 0;
    std::uint16_t version = 0;
    archive >> type;
    if (type != m_fileType)
        xcThrowError(ovw::foundation::cnCodeFileFormat);
    archive >> version;
    if (version >> 8 > m_version >> 8)
        xcThrowError(ovw::foundation::cnCodeFileVersion);
    m_serializeVersion = version;
}

void XCDocument::WriteVersionInfo(XCArchive& archive) {
    const std::uint16_t version = m_isSerializeVersionSet ? m_serializeVersion : m_version;
    archive << m_fileType << version;
    m_serializeVersion = version;
}

int XCDocument::GetDocumentFilePath(XCFilePath& path) const {
    path = m_path;
    return !m_path.IsEmpty();
}

void XCDocument::SetDocumentFilePath(const XCFilePath& path) { m_path = path; }

int XCDocument::GetDocumentFileName(XCString& name) const {
    m_path.GetFileName(name);
    return !name.IsEmpty();
}

int XCDocument::GetNewDocumentName(XCString& name) const {
    if (!IsNewDocument())
        return 0;
    name = m_newDocumentName;
    return 1;
}

void XCDocument::SetNewDocumentName(const char* name) {
    m_newDocumentName = name;
    m_path.Empty();
}
