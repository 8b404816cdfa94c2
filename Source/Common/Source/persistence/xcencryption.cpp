#include "ovwcmn/xcencryption.h"

#include "Platform/clock.h"
#include "ovwcmn/wintypes.h"
#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcfile.h"
#include "ovwcmn/xcprogress.h"
#include "ovwcmn/xcstring.h"
#include "persistence/feal.h"
#include "persistence/progressscope.h"
#include "persistence/replacingfile.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <mutex>
#include <random>
#include <string>
#include <vector>

namespace persistence = ovw::persistence;
using persistence::cnFealBlock;
using persistence::ProgressScope;

namespace {

constexpr std::size_t cnRounds = 128;
constexpr std::uint32_t cnChunkBytes = 51200;
constexpr std::size_t cnMaxKeyText = 63;
constexpr std::size_t cnLengthBytes = 4;
static_assert(cnChunkBytes % cnFealBlock == 0);

using Schedule = persistence::FealSchedule<cnRounds>;

struct Cipher {
    std::recursive_mutex guard; // a progress sink may encipher something itself
    std::array<std::uint8_t, persistence::cnFealKey> key = {};
    Schedule schedule;
};

Cipher& cipher() {
    static Cipher s_cipher;
    return s_cipher;
}

std::uint32_t paddedSize(std::uint32_t size) {
    constexpr std::uint32_t block = cnFealBlock;
    return (size + block - 1) / block * block;
}

void openForReading(XCFile& file, const XCFilePath& path) {
    file.Open(path, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, 0);
}

std::string checkedKey(const char* key) {
    std::string text = key ? key : "";
    if (text.size() > cnMaxKeyText)
        xcThrowError(ovw::foundation::cnCodeParameter);
    return text;
}

/// The head: the length in little-endian order, then the text.
void writeKeyHead(XCFile& file, const std::string& key) {
    const auto length = static_cast<std::uint8_t>(key.size());
    const std::uint8_t bytes[cnLengthBytes] = {length, 0, 0, 0};
    file.Write(bytes, cnLengthBytes);
    file.Write(key.data(), length);
}

void readExactly(XCFile& file, void* bytes, std::uint32_t size) {
    std::uint32_t done = 0;
    file.Read(bytes, size, &done);
    if (done != size)
        xcThrowError(ovw::foundation::cnCodeParameter);
}

std::string readKeyHead(XCFile& file) {
    std::uint8_t bytes[cnLengthBytes];
    readExactly(file, bytes, cnLengthBytes);
    const std::uint32_t length = bytes[0] | bytes[1] << 8 | bytes[2] << 16 | static_cast<std::uint32_t>(bytes[3]) << 24;
    if (length > cnMaxKeyText)
        xcThrowError(ovw::foundation::cnCodeFileFormat);
    char text[cnMaxKeyText + 1] = {};
    readExactly(file, text, length);
    return text;
}

/// Deciphers from the file's position on, never more than `size` bytes.
void decipherInto(const Schedule& schedule, XCFile& in, char* buffer, int size) {
    std::vector<std::uint8_t> chunk(cnChunkBytes);
    for (std::int64_t written = 0; written < size;) {
        const auto wanted = static_cast<std::uint32_t>(std::min<std::int64_t>(cnChunkBytes, size - written));
        std::uint32_t done = 0;
        in.Read(chunk.data(), paddedSize(wanted), &done);
        if (done == 0)
            break;
        std::fill(chunk.begin() + done, chunk.end(), std::uint8_t{0});
        persistence::fealBlocks(schedule, chunk.data(), paddedSize(done));
        const std::uint32_t count = std::min(wanted, paddedSize(done));
        std::memcpy(buffer + written, chunk.data(), count);
        written += count;
    }
}

/// Numbers that differ from call to call and from process to process.
std::mt19937& generator() {
    static std::mt19937 s_generator([] {
        std::seed_seq seed{ovw::platform::wallSeconds(), std::int64_t{std::random_device()()}};
        return std::mt19937(seed);
    }());
    return s_generator;
}

int digitOf(char character) {
    if (character >= '0' && character <= '9')
        return character - '0';
    if (character >= 'A' && character <= 'F')
        return character - 'A' + 10;
    if (character >= 'a' && character <= 'f')
        return character - 'a' + 10;
    return character & 0xF;
}

void setKey(const char* text) {
    std::string digits = text ? text : "";
    digits.resize(2 * persistence::cnFealKey, '0');
    const std::lock_guard lock(cipher().guard);
    for (std::size_t i = 0; i < persistence::cnFealKey; ++i)
        cipher().key[i] = static_cast<std::uint8_t>(digitOf(digits[2 * i]) * 16 + digitOf(digits[2 * i + 1]));
}

void makeSchedule(bool encrypt) {
    const std::lock_guard lock(cipher().guard);
    const Schedule enciphering = persistence::fealEncipheringSchedule<cnRounds>(cipher().key);
    cipher().schedule = encrypt ? enciphering : persistence::fealDecipheringSchedule(enciphering);
}

Schedule currentSchedule() {
    const std::lock_guard lock(cipher().guard);
    return cipher().schedule;
}

/// Sets key and schedule of the process and returns a copy of the schedule, which no other thread can change.
Schedule scheduleFor(const std::string& key, bool encrypt) {
    const std::lock_guard lock(cipher().guard);
    setKey(key.c_str());
    makeSchedule(encrypt);
    return currentSchedule();
}

struct Listeners {
    IXCProgress* progress;
    IXCAbort* abort;
};

/// Chunk by chunk from the files' positions on. 1, or 0 when the abort query stopped it.
int transformFile(const Schedule& schedule, XCFile& in, XCFile& out, std::uint32_t limit, const Listeners& listeners) {
    ProgressScope progress(listeners.progress, in.GetLength());
    std::vector<std::uint8_t> buffer(cnChunkBytes);
    std::int64_t left = in.GetLength() - in.GetPosition();
    for (std::uint32_t chunk = 0, done = 0; left > 0; ++chunk, left -= done) {
        if (listeners.abort && listeners.abort->IsAbort())
            return 0;
        std::fill(buffer.begin(), buffer.end(), std::uint8_t{0});
        in.Read(buffer.data(), cnChunkBytes, &done);
        if (done == 0)
            break; // somebody cut the file meanwhile
        const std::uint32_t padded = paddedSize(done);
        if (limit == 0 || chunk < limit)
            persistence::fealBlocks(schedule, buffer.data(), padded);
        out.Write(buffer.data(), padded);
        progress.step(done);
    }
    return 1;
}

/// Lets `work(source, target)` fill a file that then takes the place of `out`. What was stopped does so too, but never
/// replaces its own input.
template <class Work>
int rewrite(const XCFilePath& in, const XCFilePath& out, Work work) {
    XCFile source;
    openForReading(source, in);
    persistence::ReplacingFile replacing(out, "xce");
    XCFile target;
    target.Create(replacing.path(), 0, 0, GENERIC_WRITE, FILE_SHARE_WRITE, CREATE_ALWAYS, 0);
    const int result = work(source, target);
    if (!result && in == out)
        return 0;
    target.Flush();
    target.Close();
    source.Close();
    replacing.commit();
    return result;
}

} // namespace

XCEncryption::~XCEncryption() = default;

void XCEncryption::MakeEncKey(XCString& key) {
    constexpr std::uint32_t cnGroupValues = 32767;
    const std::lock_guard lock(cipher().guard);
    const std::uint32_t first = generator()() % cnGroupValues, second = generator()() % cnGroupValues;
    key.Format("%04x%04x", first, second);
}

int XCEncryption::Encrypt(const char* key, const XCFilePath& in, const XCFilePath& out, std::uint32_t limit) {
    const Schedule schedule = scheduleFor(checkedKey(key), true);
    return rewrite(in, out, [&](XCFile& source, XCFile& target) {
        return transformFile(schedule, source, target, limit, {m_progress, m_abort});
    });
}

int XCEncryption::Decrypt(const char* key, const XCFilePath& in, const XCFilePath& out, std::uint32_t limit) {
    const Schedule schedule = scheduleFor(checkedKey(key), false);
    return rewrite(in, out, [&](XCFile& source, XCFile& target) {
        return transformFile(schedule, source, target, limit, {m_progress, m_abort});
    });
}

int XCEncryption::Decrypt(const char* key, char* buffer, int size, const XCFilePath& in) {
    const Schedule schedule = scheduleFor(checkedKey(key), false);
    XCFile source;
    openForReading(source, in);
    decipherInto(schedule, source, buffer, size);
    return 1;
}

int XCEncryption::EncryptWithKey(const char* key, const XCFilePath& in, const XCFilePath& out) {
    const std::string text = checkedKey(key);
    const Schedule schedule = scheduleFor(text, true);
    return rewrite(in, out, [&](XCFile& source, XCFile& target) {
        writeKeyHead(target, text);
        return transformFile(schedule, source, target, 0, {m_progress, m_abort});
    });
}

int XCEncryption::DecryptWithKey(const XCFilePath& in, const XCFilePath& out) {
    return rewrite(in, out, [&](XCFile& source, XCFile& target) {
        const Schedule schedule = scheduleFor(readKeyHead(source), false);
        return transformFile(schedule, source, target, 0, {m_progress, m_abort});
    });
}

int XCEncryption::DecryptWithKey(char* buffer, int size, const XCFilePath& in) {
    XCFile source;
    openForReading(source, in);
    decipherInto(scheduleFor(readKeyHead(source), false), source, buffer, size);
    return 1;
}

void XCEncryption::KeySet(const char* text) { setKey(text); }

void XCEncryption::MakeKey(int encrypt) { makeSchedule(encrypt != 0); }

void XCEncryption::Feal(const unsigned char* in, unsigned char* out) {
    std::memmove(out, in, cnFealBlock);
    persistence::fealBlocks(currentSchedule(), out, cnFealBlock);
}

int XCEncryption::HexCode(char character) { return digitOf(character); }

int XCEncryption::Ecb(XCFile& in, XCFile& out, std::uint32_t limit) {
    return transformFile(currentSchedule(), in, out, limit, {m_progress, m_abort});
}
