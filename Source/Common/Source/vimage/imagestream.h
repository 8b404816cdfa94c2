#ifndef OVW_VIMAGE_IMAGESTREAM_H
#define OVW_VIMAGE_IMAGESTREAM_H

/// @file
/// The stream form of tiled images: a section with a header section and, when there are blocks, an extent section and a
/// data section of one record a block. Everything read is checked before it is believed: what contradicts itself throws
/// 0x2001000B, what ends early 0x20010008.

#include "ovwcmn/xcvoffscreen.h"

#include <cstdint>
#include <functional>

class IXCAbort;
class XCArchive;

namespace ovw::vimage {

/// What the stream says of the image before its pixels.
struct StreamHeader {
    int width = 0;
    int height = 0;
    int depth = 0;
    double resolution = 0;
    int blockCount = 0;
    std::uint8_t channelOrder = 0;

    static StreamHeader of(const XCVOffscreen& image, int blockCount, std::uint8_t channelOrder);
    /// The header section. Refuses versions of the future (0x2001000C), depths that do not exist and grids so large
    /// that only a hostile file can mean them.
    static StreamHeader read(XCArchive& archive);
    void write(XCArchive& archive) const;

    bool fits(const XCVOffscreen& image) const;
};

/// How the bytes of the pixels follow each other in a stream.
enum ChannelOrder : std::uint8_t {
    cnOrderPlain = 0,
    cnOrderReversed32 = 1,
    cnOrderReversed24 = 2,
    cnOrderNative32 = 3,
    cnOrderNative24 = 4,
};
std::uint8_t nativeChannelOrder(int depth);

/// The list of the blocks that the records stand for.
using BlockList = XCTArray<tagRECT, 0>;

/// The extent section, for an image whose header said how many blocks to expect; `blocks` becomes the extent's.
struct StreamExtent {
    XCRect rect;
    std::uint8_t isCompressed = 0;

    static StreamExtent read(XCArchive& archive, const XCVOffscreen& image, int blockCount, BlockList& blocks);
    void write(XCArchive& archive) const;
};

/// The records of an image's existing blocks, as they stand in the data section.
void writeRecords(XCArchive& archive, XCVOffscreen& image, const BlockList& blocks, bool compress);

/// Reads extent and records into the image, which the caller locks for editing. The query may be null; its yes throws
/// 0x20010004.
void readRecords(XCArchive& archive, XCVOffscreen& image, const StreamHeader& header, IXCAbort* abort);

/// Expands packed records into the image, which the caller locks for editing: those of the blocks, by index, that
/// `isWanted` says yes to.
void expandRecords(const PackedPixels& packed, XCVOffscreen& image, const std::function<bool(int)>& isWanted);

/// Extent and records as they stand, checked record by record without expanding any.
PackedPixels readPackedPixels(XCArchive& archive, const XCVOffscreen& image, const StreamHeader& header);

} // namespace ovw::vimage

#endif // OVW_VIMAGE_IMAGESTREAM_H
