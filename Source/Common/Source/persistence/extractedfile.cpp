#include "persistence/extractedfile.h"

#include "Platform/systemerror.h"
#include "ovwcmn/xcexception.h"
#include "persistence/filetime.h"

namespace ovw::persistence {

namespace {

constexpr char cnGrowingPrefix[] = "ovw";

} // namespace

ExtractedFile::ExtractedFile(const XCFilePath& target) : m_target(target) {
    try {
        create(m_target, CREATE_NEW);
    } catch (const XCException& error) {
        if (error.GetErrorCode() != platform::cnErrorFileExists)
            throw;
        m_replacing.emplace(target, cnGrowingPrefix);
        create(m_replacing->path(), CREATE_ALWAYS);
    }
}

void ExtractedFile::create(const XCFilePath& path, std::uint32_t creation) {
    m_file.Create(path, 0, 0, GENERIC_WRITE, FILE_SHARE_WRITE, creation, FILE_ATTRIBUTE_NORMAL);
}

ExtractedFile::~ExtractedFile() {
    m_file.Close();
    if (isNew() && !m_isFinished)
        m_target.FileDelete(0);
}

void ExtractedFile::finish(std::optional<std::int64_t> time) {
    if (time)
        setLastWrite(m_file, *time);
    if (m_replacing)
        m_file.Flush();
    m_file.Close();
    m_isFinished = true;
    if (m_replacing)
        m_replacing->commit();
}

} // namespace ovw::persistence
