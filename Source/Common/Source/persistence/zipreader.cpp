#include "persistence/zipreader.h"

#include "Platform/systemerror.h"
#include "ovwcmn/xcexception.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <span>
#include <utility>

#include <minizip/unzip.h>
#include <zlib.h>

namespace ovw::persistence {

namespace {

constexpr std::size_t cnMaxNameBytes = 511;
constexpr std::uint32_t cnEncryptedFlag = 1;
constexpr int cnUnixModeShift = 16; // in the external attributes
constexpr std::uint64_t cnPieceBytes = 1 << 16;
constexpr std::uint32_t cnWindowBytes = 1 << 15;

constexpr char cnEndSignature[] = {'P', 'K', 5, 6};
constexpr std::size_t cnEndRecordBytes = 22;

constexpr std::size_t cnExtraHeadBytes = 4; // identifier and size
constexpr std::uint32_t cnLongSizes = 1;    // the identifier of sizes of 64 bits
constexpr std::uint64_t cnSizeElsewhere = 0xFFFFFFFF;

std::uint64_t littleEndian(std::span<const std::uint8_t> bytes) {
    std::uint64_t value = 0;
    for (std::size_t i = bytes.size(); i-- > 0;)
        value = value << 8 | bytes[i];
    return value;
}

/// Where the size does not fit 32 bits, an extra field begins with it; minizip 1.1 misses that on systems whose long
/// has 64 bits.
std::uint64_t longSize(std::span<const std::uint8_t> extra) {
    while (extra.size() >= cnExtraHeadBytes) {
        const std::size_t size = littleEndian(extra.subspan(2, 2));
        const bool isLongSizes = littleEndian(extra.first(2)) == cnLongSizes;
        extra = extra.subspan(cnExtraHeadBytes);
        if (isLongSizes && size >= sizeof(std::uint64_t) && size <= extra.size())
            return littleEndian(extra.first(sizeof(std::uint64_t)));
        extra = extra.subspan(std::min(size, extra.size()));
    }
    return cnSizeElsewhere;
}

} // namespace

/// minizip's view of the file. Nothing may be thrown through it: failures are kept for later.
struct ZipReader::Callbacks {
    template <class Operation>
    static bool run(void* opaque, Operation operation) {
        auto& reader = *static_cast<ZipReader*>(opaque);
        try {
            operation(reader);
            return true;
        } catch (const XCException& error) {
            reader.m_readError = error.GetErrorCode();
            return false;
        }
    }

    static void* open(void* opaque, const void*, int) { return opaque; }
    static uLong read(void* opaque, void*, void* buffer, uLong size) {
        std::size_t done = 0;
        run(opaque, [&](ZipReader& reader) { done = reader.read(static_cast<char*>(buffer), size); });
        return done;
    }
    static uLong write(void*, void*, const void*, uLong) { return 0; }
    static ZPOS64_T tell(void* opaque, void*) { return static_cast<ZipReader*>(opaque)->m_position; }
    static long seek(void* opaque, void*, ZPOS64_T offset, int origin) {
        const bool done = run(opaque, [&](ZipReader& reader) {
            const std::uint64_t base = origin == ZLIB_FILEFUNC_SEEK_SET   ? 0
                                       : origin == ZLIB_FILEFUNC_SEEK_CUR ? reader.m_position
                                                                          : reader.archiveBytes();
            reader.m_position = base + offset;
        });
        return done ? 0 : -1;
    }
    static int close(void*, void*) { return 0; }
    static int error(void* opaque, void*) { return static_cast<ZipReader*>(opaque)->m_readError; }
};

ZipReader::ZipReader(const XCFilePath& path) {
    m_file.Open(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING, 0);
    m_length = static_cast<std::uint64_t>(m_file.GetLength());
    zlib_filefunc64_def functions = {&Callbacks::open, &Callbacks::read,  &Callbacks::write, &Callbacks::tell,
                                     &Callbacks::seek, &Callbacks::close, &Callbacks::error, this};
    m_zip = unzOpen2_64("", &functions);
    m_isEmpty = !m_zip && isEmptyArchive();
}

ZipReader::~ZipReader() {
    if (m_zip)
        unzClose(m_zip);
}

/// Whether the file is an end record (with its comment) that tells of no entries.
bool ZipReader::isEmptyArchive() {
    char record[cnEndRecordBytes];
    m_position = 0;
    if (read(record, sizeof record) != sizeof record || std::memcmp(record, cnEndSignature, sizeof cnEndSignature) != 0)
        return false;
    const auto* const comment = reinterpret_cast<const std::uint8_t*>(record) + cnEndRecordBytes - 2;
    const auto isZero = [](char byte) { return byte == 0; };
    return std::all_of(record + sizeof cnEndSignature, record + cnEndRecordBytes - 2, isZero) &&
           archiveBytes() == cnEndRecordBytes + static_cast<std::uint64_t>(comment[0] + 256 * comment[1]);
}

/// The window that holds the position, read from the file if need be; null at the end of the file.
const ZipReader::Window* ZipReader::windowAt(std::uint64_t position) {
    for (std::size_t i = 0; i < m_windows.size(); ++i)
        if (m_windows[i].holds(position))
            return &m_windows[m_recent = i];
    if (position >= archiveBytes())
        return nullptr;
    m_recent = 1 - m_recent;
    Window& window = m_windows[m_recent];
    std::vector<char> bytes = std::exchange(window.bytes, {}); // nothing is held until it is read
    std::uint32_t count = 0;
    bytes.resize(cnWindowBytes);
    m_file.Seek(static_cast<std::int64_t>(position), FILE_BEGIN);
    m_file.Read(bytes.data(), cnWindowBytes, &count);
    bytes.resize(count);
    window = {std::move(bytes), position};
    return count > 0 ? &window : nullptr;
}

/// From the position on, which moves; fewer bytes at the end of the file.
std::size_t ZipReader::read(char* to, std::size_t size) {
    std::size_t done = 0;
    while (done < size) {
        const Window* const window = windowAt(m_position);
        if (!window)
            break;
        const std::uint64_t inWindow = m_position - window->start;
        const std::size_t count = std::min<std::size_t>(size - done, window->bytes.size() - inWindow);
        std::memcpy(to + done, window->bytes.data() + inWindow, count);
        done += count;
        m_position += count;
    }
    return done;
}

void ZipReader::check(int result) const {
    if (result >= 0)
        return;
    xcThrowError(m_readError != 0 ? m_readError : foundation::cnCodeFileFormat);
}

std::uint64_t ZipReader::entryCount() const {
    if (m_isEmpty)
        return 0;
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
    entry.isTooLong = entry.packedSize >= cnSizeElsewhere;
    if (entry.size == cnSizeElsewhere)
        entry.size = longSize(extraField(information.size_file_extra));
    entry.checkSum = static_cast<std::uint32_t>(information.crc);
    entry.method = static_cast<std::uint32_t>(information.compression_method);
    entry.unixMode = static_cast<std::uint32_t>(information.external_fa) >> cnUnixModeShift;
    entry.isEncrypted = information.flag & cnEncryptedFlag;
    return entry;
}

std::vector<std::uint8_t> ZipReader::extraField(std::size_t size) const {
    std::vector<std::uint8_t> extra(size);
    check(unzGetCurrentFileInfo64(m_zip, nullptr, nullptr, 0, extra.data(), extra.size(), nullptr, 0));
    return extra;
}

std::size_t ZipReader::expandPiece(char* to, std::uint64_t size) {
    const int count = unzReadCurrentFile(m_zip, to, static_cast<unsigned>(std::min<std::uint64_t>(size, cnPieceBytes)));
    check(count);
    return static_cast<std::size_t>(count);
}

// Size and check sum are looked at here, since minizip takes sizes of 64 bits for unknown ones and then checks nothing.
void ZipReader::expand(const std::function<void(const void*, std::uint32_t)>& write) {
    const ZipEntry expected = entry();
    check(unzOpenCurrentFile(m_zip));
    std::array<char, cnPieceBytes> piece;
    std::uint64_t left = expected.size;
    uLong sum = crc32(0, nullptr, 0);
    while (left > 0) {
        const std::size_t count = expandPiece(piece.data(), left);
        if (count == 0)
            break;
        left -= count;
        sum = crc32(sum, reinterpret_cast<const Bytef*>(piece.data()), static_cast<uInt>(count));
        write(piece.data(), static_cast<std::uint32_t>(count));
    }
    const bool goesOn = expected.method != 0 && expandPiece(piece.data(), 1) != 0;
    unzCloseCurrentFile(m_zip);
    if (left > 0 || goesOn || sum != expected.checkSum)
        xcThrowError(foundation::cnCodeFileFormat);
}

} // namespace ovw::persistence
