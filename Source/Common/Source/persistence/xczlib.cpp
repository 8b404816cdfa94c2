#include "ovwcmn/xczlib.h"

#include "foundation/nomemory.h"
#include "ovwcmn/xcarchive.h"
#include "ovwcmn/xcexception.h"
#include "persistence/blockcodec.h"
#include "persistence/byteorder.h"

#include <cstring>
#include <limits>
#include <utility>

using ovw::foundation::cnCodeNoMemory;
using ovw::persistence::BlockCodec;
using ovw::persistence::Bytes;
using ovw::persistence::ConstBytes;

namespace {

constexpr std::uint32_t cnLengthBytes = 4; // of a frame, before the stream
constexpr std::uint32_t cnMaxFrame = std::numeric_limits<std::uint32_t>::max();

// Deflate makes at most 258 bytes of two bits; the rest is head and check sum.
constexpr std::uint64_t cnMaxExpansion = 1032;
constexpr std::uint64_t cnExpansionSlack = 64;

ConstBytes bytesOf(const void* src, std::uint32_t size) { return {static_cast<const std::uint8_t*>(src), size}; }

Bytes bytesOf(void* dst, std::uint32_t size) { return {static_cast<std::uint8_t*>(dst), size}; }

std::uint32_t frameSize(std::size_t streamSize) {
    if (streamSize > cnMaxFrame - cnLengthBytes)
        xcThrowError(cnCodeNoMemory);
    return static_cast<std::uint32_t>(streamSize) + cnLengthBytes;
}

/// A whole frame in `out`, when there is room for the worst, else in the codec's own buffer.
Bytes makeFrame(BlockCodec& codec, ConstBytes block, Bytes out, bool bigEndian) {
    const std::size_t needed = codec.bound(block.size()) + cnLengthBytes;
    const Bytes room = out.size() >= needed ? out : codec.scratch(needed);
    const std::uint32_t size = frameSize(codec.compress(block, room.subspan(cnLengthBytes)));
    ovw::persistence::storeNumber(room.data(), size - cnLengthBytes, bigEndian);
    return room.first(size);
}

bool isBigEndian(const XCArchive& archive) { return archive.ModeChk(XCArchive::cnBigEndian); }

void report(std::uint32_t* outLen, std::size_t size) {
    if (outLen)
        *outLen = static_cast<std::uint32_t>(size);
}

/// The caller's block with at least `size` bytes. Its contents are lost when it is replaced.
void reserve(std::uint8_t*& block, std::uint32_t& capacity, std::uint32_t size) {
    if (capacity >= size && block)
        return;
    vxFreePtr(block);
    block = nullptr;
    capacity = 0;
    int code = cnCodeNoMemory;
    block = static_cast<std::uint8_t*>(vxAllocPtr(size, 0, &code));
    if (!block)
        xcThrowError(code);
    capacity = size;
}

/// Reads n and the stream into the caller's block.
ConstBytes readStream(XCArchive& archive, std::uint8_t*& block, std::uint32_t& capacity) {
    std::uint32_t size = 0;
    archive >> size;
    archive.RequireRemaining(size);
    if (size == 0)
        xcThrowError(cnCodeNoMemory); // not even an empty block has an empty stream
    reserve(block, capacity, size);
    archive.Read(block, size);
    return {block, size};
}

/// The stream of a frame in memory.
ConstBytes streamIn(const void* src, bool bigEndian) {
    return bytesOf(static_cast<const std::uint8_t*>(src) + cnLengthBytes, XCZLib::GetStreamSize(src, bigEndian));
}

Bytes spareFor(BlockCodec& codec, std::uint32_t size, std::uint8_t* chunk, std::uint32_t chunkSize) {
    return chunk && chunkSize >= size ? Bytes(chunk, chunkSize) : codec.scratch(size);
}

std::uint32_t expand(BlockCodec& codec, ConstBytes stream, Bytes out, Bytes spare) {
    return static_cast<std::uint32_t>(codec.expand(stream, out, spare));
}

void expandWhole(BlockCodec& codec, ConstBytes stream, Bytes out) {
    if (codec.expand(stream, out, {}) != out.size())
        xcThrowError(cnCodeNoMemory);
}

/// A block of the utility library that is freed unless it is given away.
struct FixedBlock {
    std::uint8_t* address = nullptr;
    std::uint32_t capacity = 0;
    FixedBlock() = default;
    FixedBlock(const FixedBlock&) = delete;
    ~FixedBlock() { vxFreePtr(address); }
};

} // namespace

XCZLib::XCZLib() = default;

XCZLib::XCZLib(const XCZLib& other) : m_level(other.m_level) {}

XCZLib& XCZLib::operator=(const XCZLib& other) {
    m_level = other.m_level;
    return *this;
}

XCZLib::~XCZLib() = default;

void XCZLib::SetCompressionLevel(int level) { m_level = level; }

BlockCodec& XCZLib::codec() {
    if (!m_codec || m_codec->level() != m_level)
        m_codec = ovw::foundation::orNoMemory([this] { return std::make_unique<BlockCodec>(m_level); });
    return *m_codec;
}

void XCZLib::Compress(XCArchive& archive, const void* src, std::uint32_t srcLen, std::uint32_t* outLen,
                      std::uint8_t* chunk, std::uint32_t chunkSize) {
    const Bytes frame = makeFrame(codec(), bytesOf(src, srcLen), {chunk, chunk ? chunkSize : 0}, isBigEndian(archive));
    archive.Write(frame.data(), static_cast<std::uint32_t>(frame.size()));
    report(outLen, frame.size());
}

void XCZLib::Compress(XCArchive& archive, const void* src, std::uint32_t srcLen, std::uint8_t*& block,
                      std::uint32_t& capacity, std::uint8_t*, std::uint32_t) {
    const Bytes frame = makeFrame(codec(), bytesOf(src, srcLen), {block, block ? capacity : 0}, isBigEndian(archive));
    const auto size = static_cast<std::uint32_t>(frame.size());
    reserve(block, capacity, size);
    if (frame.data() != block)
        std::memcpy(block, frame.data(), size);
    archive.Write(block, size);
}

void XCZLib::Compress(void** out, const void* src, std::uint32_t srcLen, std::uint32_t* outLen, int bigEndian) {
    const Bytes frame = makeFrame(codec(), bytesOf(src, srcLen), {}, bigEndian);
    FixedBlock block;
    reserve(block.address, block.capacity, static_cast<std::uint32_t>(frame.size()));
    std::memcpy(block.address, frame.data(), frame.size());
    *out = std::exchange(block.address, nullptr);
    report(outLen, frame.size());
}

void XCZLib::CompressToHandle(VXHANDLE& out, const void* src, std::uint32_t srcLen, std::uint32_t* outLen,
                              int bigEndian) {
    const Bytes frame = makeFrame(codec(), bytesOf(src, srcLen), {}, bigEndian);
    int code = cnCodeNoMemory;
    const VXHANDLE block = vxAlloc(static_cast<std::uint32_t>(frame.size()), 0, &code);
    if (!block)
        xcThrowError(code);
    std::memcpy(vxLock(block), frame.data(), frame.size());
    vxUnlock(block);
    out = block;
    report(outLen, frame.size());
}

std::uint32_t XCZLib::Decompress(XCArchive& archive, void* dst, std::uint32_t dstLen) {
    FixedBlock block;
    return Decompress(archive, dst, dstLen, block.address, block.capacity);
}

std::uint32_t XCZLib::Decompress(XCArchive& archive, void* dst, std::uint32_t dstLen, std::uint8_t*& block,
                                 std::uint32_t& capacity, std::uint8_t* chunk, std::uint32_t chunkSize) {
    const ConstBytes stream = readStream(archive, block, capacity);
    return expand(codec(), stream, bytesOf(dst, dstLen), spareFor(codec(), dstLen, chunk, chunkSize));
}

std::uint32_t XCZLib::Decompress(const void* src, void* dst, std::uint32_t dstLen, int bigEndian, std::uint8_t* chunk,
                                 std::uint32_t chunkSize) {
    const ConstBytes stream = streamIn(src, bigEndian);
    return expand(codec(), stream, bytesOf(dst, dstLen), spareFor(codec(), dstLen, chunk, chunkSize));
}

void XCZLib::DecompressWhole(XCArchive& archive, void* dst, std::uint32_t dstLen, std::uint8_t*& block,
                             std::uint32_t& capacity) {
    const ConstBytes stream = readStream(archive, block, capacity);
    expandWhole(codec(), stream, bytesOf(dst, dstLen));
}

void XCZLib::DecompressWhole(XCArchive& archive, void* dst, std::uint32_t dstLen) {
    FixedBlock block;
    DecompressWhole(archive, dst, dstLen, block.address, block.capacity);
}

void XCZLib::DecompressWhole(const void* src, void* dst, std::uint32_t dstLen, int bigEndian) {
    expandWhole(codec(), streamIn(src, bigEndian), bytesOf(dst, dstLen));
}

std::uint32_t XCZLib::GetStreamSize(const void* src, int bigEndian) {
    return ovw::persistence::loadNumber(src, bigEndian);
}

int XCZLib::CanExpandTo(std::uint64_t size, std::uint32_t streamSize) {
    return size <= cnMaxExpansion * streamSize + cnExpansionSlack;
}
