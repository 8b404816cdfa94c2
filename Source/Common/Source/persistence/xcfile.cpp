#include "ovwcmn/xcfile.h"

#include "Platform/systemerror.h"
#include "Utility/vxfile.h"
#include "ovwcmn/vxwutl.h"
#include "ovwcmn/xcexception.h"
#include "ovwcmn/xctime.h"
#include "persistence/filetime.h"

namespace {

constexpr std::uint32_t cnPlainFileCode = 0x41414141; // "AAAA"

} // namespace

XCFile::~XCFile() { Close(); }

void XCFile::Create(const XCFilePath& path, std::uint32_t creator, std::uint32_t type, std::uint32_t access,
                    std::uint32_t share, std::uint32_t creation, std::uint32_t attributes) {
    const XCFilePath kept(path); // NOLINT(performance-unnecessary-copy-initialization): it may be the path of this file
    Close();
    int code = 0;
    m_nHandle = vxOpenFile(kept, creator, type, access, share, creation, attributes, &code);
    if (!IsValid())
        xcThrowError(code);
    m_path = kept;
}

void XCFile::Open(const XCFilePath& path, std::uint32_t access, std::uint32_t share, std::uint32_t creation,
                  std::uint32_t attributes) {
    if (creation == CREATE_NEW || creation == CREATE_ALWAYS)
        xcThrowError(ovw::foundation::cnCodeParameter);
    Create(path, cnPlainFileCode, cnPlainFileCode, access, share, creation, attributes);
}

void XCFile::Close() {
    if (IsValid())
        vxCloseFile(m_nHandle);
    m_nHandle = cnNoFile;
    m_path.Empty();
}

void XCFile::Read(void* buffer, std::uint32_t size, std::uint32_t* done) {
    int code = 0;
    if (!vxReadFile(m_nHandle, buffer, size, done, &code))
        xcThrowError(code);
}

void XCFile::Write(const void* buffer, std::uint32_t size, std::uint32_t* done) {
    int code = 0;
    if (!vxWriteFile(m_nHandle, buffer, size, done, &code))
        xcThrowError(code);
}

void XCFile::Seek(std::int64_t offset, std::uint32_t method) {
    int code = 0;
    if (!vxSetFilePosition(m_nHandle, offset, method, nullptr, &code))
        xcThrowError(code);
}

void XCFile::SetEOF() {
    if (!vxSetEndOfFile(m_nHandle))
        xcThrowError(vxGetLastError());
}

void XCFile::Flush() {
    if (!vxFlushFile(m_nHandle))
        xcThrowError(vxGetLastError());
}

std::int64_t XCFile::GetLength() const {
    ovw::platform::FileInformation information;
    if (!vxGetFileInformation(m_nHandle, information))
        xcThrowError(vxGetLastError());
    return static_cast<std::int64_t>(information.length);
}

std::int64_t XCFile::GetPosition() const {
    std::int64_t position = 0;
    int code = 0;
    if (!vxSetFilePosition(m_nHandle, 0, FILE_CURRENT, &position, &code))
        xcThrowError(code);
    return position;
}

void XCFile::GetTime(XCTime& time) const {
    ovw::platform::FileInformation information;
    if (!vxGetFileInformation(m_nHandle, information))
        xcThrowError(vxGetLastError());
    ovw::persistence::setTime(time, information.times.lastWrite);
}

void XCFile::CopyTime(const XCFile& other) {
    ovw::platform::FileInformation information;
    if (!vxGetFileInformation(other.m_nHandle, information) || !vxSetFileTimes(m_nHandle, information.times))
        xcThrowError(vxGetLastError());
}
