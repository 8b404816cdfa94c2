#include "persistence/zipreader.h"

#include "Platform/systemerror.h"
#include "ovwcmn/xcexception.h"

#include <array>
#include <cstring>
#include <limits>

#include <minizip/unzip.h>

namespace ovw::persistence {

namespace {

constexpr std::size_t cnMaxNameBytes = 511;
constexpr std::uint32_t cnEncryptedFlag = 1;
constexpr int cnUnixModeShift = 16; // in the external attributes
constexpr std::size_t cnPieceBytes = 1 << 16;

} // namespace

/// minizip's view of the file. Nothing may be thrown through it: failures are kept for later.
struct ZipReader::Callbacks {
    template <class Operation>
    static bool run(void* opaque, Operation operation) {
        auto& reader = *static_cast<ZipReader*>(opaque);
        try {
            operation(reader.m_file);
            return true;
        } catch (const XCException& error) {
            reader.m_readError = error.GetErrorCode();
            return false;
        }
    }

    static void* open(void* opaque, const void*, int) { return opaque; }
    static uLong read(void* opaque, void*, void* buffer, uLong size) {
        std::uint32_t done = 0;
        run(opaque, [&](XCFile& file) { file.Read(buffer, static_cast<std::uint32_t>(size), &done); });
        return done;
    }
    static uLong write(void*, void*, const void*, uLong) { return 0; }
    static ZPOS64_T tell(void* opaque, void*) {
        std::int64_t position = -1;
        run(opaque, [&](XCFile& file) { position = file.GetPosition(); });
        return static_cast<ZPOS64_T>(position);
    }
    static long seek(void* opaque, void*, ZPOS64_T offset, int origin) {
        static_assert(ZLIB_FILEFUNC_SEEK_SET == FILE_BEGIN && ZLIB_FILEFUNC_SEEK_END == FILE_END);
        const auto method = static_cast<std::uint32_t>(origin);
        const bool done = offset <= std::numeric_limits<std::int64_t>::max() &&
                          run(opaque, [&](XCFile& file) { file.Seek(static_cast<std::int64_t>(offset), method); });
        return done ? 0 : -1;
    }
    static int close(void*, void*) { return 0; }
    static int error(void* opaque, void*) { return static_cast<ZipReader*>(opaque)->m_readError; }
};

ZipReader::ZipReader(const XCFilePath& path) {
    m_file.Open(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING, 0);
    zlib_filefunc64_def functions = {&Callbacks::open, &Callbacks::read,  &Callbacks::write, &Callbacks::tell,
                                     &Callbacks::seek, &Callbacks::close, &Callbacks::error, this};
    m_zip = unzOpen2_64("", &functions);
}

ZipReader::~ZipReader() {
    if (m_zip)
        unzClose(m_zip);
}

void ZipReader::check(int result) const {
    if (result >= 0)
        return;
    xcThrowError(m_readError != 0 ? m_readError : foundation::cnCodeFileFormat);
}

std::uint64_t ZipReader::entryCount() const {
    unz_global_info64 information = {};
    check(unzGetGlobalInfo64(m_zip, &information));
    return information.number_entry;
}

void ZipReader::goToFirst() { check(unzGoToFirstFile(m_zip)); }

void ZipReader::goToNext() { check(unzGoToNextFile(m_zip)); }

ZipEntry ZipReader::entry() const {
    unz_file_info64 information = {};
    std::array<char, cnMaxNameBytes + 1> name = {};
    check(unzGetCurrentFileInfo64(m_zip, &information, name.data(), name.size(), nullptr, 0, nullptr, 0));
    if (information.size_filename > cnMaxNameBytes)
        xcThrowError(platform::cnErrorFileNameTooLong);
    if (std::strlen(name.data()) != information.size_filename)
        xcThrowError(foundation::cnCodeFileFormat); // a NUL within
    ZipEntry entry;
    entry.name = name.data();
    entry.size = information.uncompressed_size;
    entry.packedSize = information.compressed_size;
    entry.method = static_cast<std::uint32_t>(information.compression_method);
    entry.unixMode = static_cast<std::uint32_t>(information.external_fa) >> cnUnixModeShift;
    entry.isEncrypted = information.flag & cnEncryptedFlag;
    return entry;
}

void ZipReader::expand(const std::function<void(const void*, std::uint32_t)>& write) {
    const std::uint64_t announced = entry().size;
    check(unzOpenCurrentFile(m_zip));
    std::array<char, cnPieceBytes> piece;
    std::uint64_t total = 0;
    for (;;) {
        const int count = unzReadCurrentFile(m_zip, piece.data(), static_cast<unsigned>(piece.size()));
        check(count);
        if (count == 0)
            break;
        total += static_cast<std::uint64_t>(count);
        write(piece.data(), static_cast<std::uint32_t>(count));
    }
    check(unzCloseCurrentFile(m_zip)); // looks at the check sum
    if (total != announced)
        xcThrowError(foundation::cnCodeFileFormat);
}

} // namespace ovw::persistence
