#include "vimage/imagestream.h"

#include "ovwcmn/xcarchive.h"
#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcprogress.h"
#include "ovwcmn/xczlib.h"
#include "vimage/blockrecords.h"

#include <algorithm>

namespace ovw::vimage {

namespace {

constexpr std::uint16_t cnVersion = 0x0100;
constexpr int cnNewestMajor = 1;
constexpr std::uint32_t cnHeaderBytes = 4 * sizeof(std::int32_t) + sizeof(double) + 1; // behind the version
constexpr std::uint32_t cnExtentBytes = 4 * sizeof(std::int32_t) + 1;
constexpr std::int64_t cnMostBlocks = std::int64_t{1} << 20;

[[noreturn]] void refuse() { xcThrowError(foundation::cnCodeFileFormat); }

std::int64_t blocksAlong(int size) {
    return (std::int64_t{size} + XCVOffscreenGrid::cnBlockMask) >> XCVOffscreenGrid::cnBlockShift;
}

void checkImage(const StreamHeader& header) {
    constexpr int cnDepths[] = {1, 2, 8, 16, 24, 32};
    if (std::ranges::find(cnDepths, header.depth) == std::end(cnDepths) || header.width < 0 || header.height < 0 ||
        header.blockCount < 0 || blocksAlong(header.width) * blocksAlong(header.height) > cnMostBlocks)
        refuse();
}

std::uint32_t blockBytes(const XCVOffscreen& image) {
    return static_cast<std::uint32_t>(image.GetBlockRowBytes()) * XCVOffscreenGrid::cnBlockSize;
}

/// Bytes of a pixel that the stream holds in reverse order; 0 when they stand as the image wants them.
int reversedBytes(int depth, std::uint8_t order) {
    if (depth == 32 && order == cnOrderReversed32)
        return 4;
    return depth == 24 && order == cnOrderReversed24 ? 3 : 0;
}

void reversePixels(std::uint8_t* bytes, std::uint32_t size, int pixelBytes) {
    for (std::uint8_t* const end = bytes + size; bytes < end; bytes += pixelBytes)
        std::swap(bytes[0], bytes[pixelBytes - 1]), pixelBytes == 4 ? std::swap(bytes[1], bytes[2]) : void();
}

/// Memory of the block under the cursor, with the order of the channels put right when it was filled.
template <class Fill>
void fillBlock(XCVOffscreen& image, const tagRECT& block, std::uint8_t channelOrder, Fill fill) {
    image.MoveCursor(block.left, block.top);
    std::uint8_t* const base = image.GetBaseAddress();
    fill(base);
    if (const int pixelBytes = reversedBytes(image.GetDepth(), channelOrder))
        reversePixels(base, blockBytes(image), pixelBytes);
}

} // namespace

// ---- Header and extent

StreamHeader StreamHeader::of(const XCVOffscreen& image, int blockCount, std::uint8_t channelOrder) {
    return {image.GetWidth(), image.GetHeight(), image.GetDepth(), image.GetResolution(), blockCount, channelOrder};
}

StreamHeader StreamHeader::read(XCArchive& archive) {
    archive.BeginSection();
    std::uint16_t version = 0;
    archive.RequireRemaining(sizeof version);
    archive >> version;
    if (version >> 8 > cnNewestMajor)
        xcThrowError(foundation::cnCodeFileVersion);
    archive.RequireRemaining(cnHeaderBytes);
    StreamHeader header;
    archive >> header.width >> header.height >> header.depth >> header.resolution >> header.blockCount >>
        header.channelOrder;
    archive.EndSection();
    checkImage(header);
    return header;
}

void StreamHeader::write(XCArchive& archive) const {
    archive.BeginSection();
    archive << cnVersion << width << height << depth << resolution << blockCount << channelOrder;
    archive.EndSection();
}

bool StreamHeader::fits(const XCVOffscreen& image) const {
    return width == image.GetWidth() && height == image.GetHeight() && depth == image.GetDepth() &&
           resolution == image.GetResolution();
}

std::uint8_t nativeChannelOrder(int depth) {
    return depth == 32 ? cnOrderNative32 : depth == 24 ? cnOrderNative24 : cnOrderPlain;
}

StreamExtent StreamExtent::read(XCArchive& archive, const XCVOffscreen& image, int blockCount, BlockList& blocks) {
    archive.BeginSection();
    archive.RequireRemaining(cnExtentBytes);
    StreamExtent extent;
    archive >> extent.rect.left >> extent.rect.top >> extent.rect.right >> extent.rect.bottom >> extent.isCompressed;
    archive.EndSection();
    int column = 0, lastColumn = 0, row = 0, lastRow = 0;
    if (image.GetBlockAreaIndex(extent.rect, column, lastColumn, row, lastRow) != blockCount)
        refuse(); // before a list is made of what may be a million blocks
    image.GetBlockArea(extent.rect, blocks, 0);
    return extent;
}

void StreamExtent::write(XCArchive& archive) const {
    archive.BeginSection();
    archive << rect.left << rect.top << rect.right << rect.bottom << isCompressed;
    archive.EndSection();
}

// ---- Records

void writeRecords(XCArchive& archive, XCVOffscreen& image, const BlockList& blocks, bool compress) {
    const std::uint32_t size = blockBytes(image);
    XCZLib zlib;
    WorkBlock frame;
    for (const tagRECT& block : blocks) {
        image.MoveCursor(block.left, block.top);
        const std::uint8_t* const base = image.GetBaseAddress();
        archive << static_cast<std::uint8_t>(base != nullptr);
        if (!base)
            continue;
        archive << size;
        if (compress)
            zlib.Compress(archive, base, size, frame.bytes, frame.capacity);
        else
            archive.Write(base, size);
    }
}

void readRecords(XCArchive& archive, XCVOffscreen& image, const StreamHeader& header, IXCAbort* abort) {
    BlockList blocks;
    const StreamExtent extent = StreamExtent::read(archive, image, header.blockCount, blocks);
    archive.BeginSection();
    ArchiveRecords records(archive, extent.isCompressed, blockBytes(image));
    for (const tagRECT& block : blocks) {
        if (abort && abort->IsAbort())
            xcThrowError(foundation::cnCodeCancelled);
        if (records.isPresent())
            fillBlock(image, block, header.channelOrder, [&](std::uint8_t* to) { records.read(to); });
    }
    archive.EndSection();
}

void expandRecords(const PackedPixels& packed, XCVOffscreen& image, const std::function<bool(int)>& isWanted) {
    BlockList blocks;
    image.GetBlockArea(packed.extent, blocks, 0);
    MemoryRecords records(packed, blockBytes(image));
    for (const tagRECT& block : blocks) {
        if (!records.isPresent())
            continue;
        if (isWanted(image.GetBlockIndex(block.left, block.top)))
            fillBlock(image, block, packed.channelOrder, [&](std::uint8_t* to) { records.read(to); });
        else
            records.skip();
    }
}

PackedPixels readPackedPixels(XCArchive& archive, const XCVOffscreen& image, const StreamHeader& header) {
    BlockList blocks;
    const StreamExtent extent = StreamExtent::read(archive, image, header.blockCount, blocks);
    PackedPixels packed;
    packed.width = header.width;
    packed.height = header.height;
    packed.extent = extent.rect;
    packed.blockCount = header.blockCount;
    packed.isCompressed = extent.isCompressed;
    packed.channelOrder = header.channelOrder;
    packed.byteOrder = archive.GetEndianMode();

    archive.BeginSection();
    archive.RequireRemaining(static_cast<std::uint32_t>(packed.blockCount)); // a byte a record at least
    const std::uint32_t size = archive.GetRemainingSectionSize();
    packed.data.Alloc(size);
    archive.Read(XCTAutoLockHandle<std::uint8_t>(packed.data), size);
    archive.EndSection();

    MemoryRecords records(packed, blockBytes(image));
    for (int i = 0; i < packed.blockCount; ++i)
        if (records.isPresent())
            records.skip();
    return packed;
}

} // namespace ovw::vimage
