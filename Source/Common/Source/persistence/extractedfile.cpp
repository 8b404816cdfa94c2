#include "persistence/extractedfile.h"

#include "persistence/filetime.h"

namespace ovw::persistence {

namespace {

constexpr char cnGrowingPrefix[] = "ovw";

} // namespace

ExtractedFile::ExtractedFile(const XCFilePath& target) : m_target(target) {
    if (target.IsExistence())
        m_replacing.emplace(target, cnGrowingPrefix);
    // Where the name is free, only a file that is new by then is opened.
    const std::uint32_t creation = isNew() ? CREATE_NEW : CREATE_ALWAYS;
    m_file.Create(isNew() ? m_target : m_replacing->path(), 0, 0, GENERIC_WRITE, FILE_SHARE_WRITE, creation,
                  FILE_ATTRIBUTE_NORMAL);
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
