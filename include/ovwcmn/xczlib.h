#ifndef OVWCMN_XCZLIB_H
#define OVWCMN_XCZLIB_H

/// @file
/// Compressed blocks.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/vxwutl.h"

#include <cstdint>
#include <memory>

class XCArchive;

namespace ovw::persistence {
class BlockCodec;
}

/// Compresses blocks of memory into frames and expands them: n in 32 bits, then n bytes of a zlib stream (RFC 1950). A
/// frame does not tell the size of what is in it. Where a form has a work buffer (`chunk`, of `chunkSize` bytes, may be
/// null), it saves an allocation a call when it is as large as the block. Damaged streams, wrong levels and blocks that
/// do not compress into 4 GiB throw 8, as lack of memory does. Keeps its tables between calls; copies share nothing but
/// the level. One thread at a time.
class OVWCMN_API XCZLib {
public:
    XCZLib();
    /// @{ See the class.
    XCZLib(const XCZLib& other);
    XCZLib& operator=(const XCZLib& other);
    /// @}
    virtual ~XCZLib();

    /// 0 (stored) to 9 (smallest); -1, the initial one, stands for 6.
    void SetCompressionLevel(int level);

    /// @name Compressing
    /// *outLen (may be null) becomes the size of the frame, n + 4.
    /// @{
    /// Writes a frame in the archive's byte order.
    /// The frame goes to the archive.
    void Compress(XCArchive& archive, const void* src, std::uint32_t srcLen, std::uint32_t* outLen = nullptr,
                  std::uint8_t* chunk = nullptr, std::uint32_t chunkSize = 0);
    /// The same through the caller's block (vxAllocPtr, or null with capacity 0), which is replaced by a larger one
    /// when it must be, and holds the frame afterwards.
    void Compress(XCArchive& archive, const void* src, std::uint32_t srcLen, std::uint8_t*& block,
                  std::uint32_t& capacity, std::uint8_t* chunk = nullptr, std::uint32_t chunkSize = 0);
    /// A frame in a new fixed block, which the caller frees with vxFreePtr.
    void Compress(void** out, const void* src, std::uint32_t srcLen, std::uint32_t* outLen, int bigEndian);
    /// A frame in a new movable block, which the caller frees with vxFree.
    void CompressToHandle(VXHANDLE& out, const void* src, std::uint32_t srcLen, std::uint32_t* outLen, int bigEndian);
    /// @}

    /// @name Expanding
    /// Each gives the bytes that came out. They may be fewer than `dstLen`: then the rest of `dst` is left alone. More
    /// than `dstLen`, and a stream that breaks off, throw 8. A frame that is longer than what the archive (its
    /// innermost open section) still holds throws 0x20010008.
    /// @{
    /// The frame is read from the archive.
    std::uint32_t Decompress(XCArchive& archive, void* dst, std::uint32_t dstLen);
    /// Through the caller's block, which is replaced when it holds less than n bytes.
    std::uint32_t Decompress(XCArchive& archive, void* dst, std::uint32_t dstLen, std::uint8_t*& block,
                             std::uint32_t& capacity, std::uint8_t* chunk = nullptr, std::uint32_t chunkSize = 0);
    /// `src` is a whole frame: the caller has checked that its n bytes are there.
    std::uint32_t Decompress(const void* src, void* dst, std::uint32_t dstLen, int bigEndian,
                             std::uint8_t* chunk = nullptr, std::uint32_t chunkSize = 0);
    /// For readers that know the size, and faster: anything but `dstLen` bytes is an error (8). After an error `dst`
    /// holds no meaning.
    void DecompressWhole(XCArchive& archive, void* dst, std::uint32_t dstLen);
    /// Through the caller's block, as Decompress.
    void DecompressWhole(XCArchive& archive, void* dst, std::uint32_t dstLen, std::uint8_t*& block,
                         std::uint32_t& capacity);
    /// `src` is a whole frame.
    void DecompressWhole(const void* src, void* dst, std::uint32_t dstLen, int bigEndian);
    /// n of a frame in memory.
    static std::uint32_t GetStreamSize(const void* src, int bigEndian);
    /// Whether n bytes of a stream can expand to `size` bytes: what to ask before allocating an announced size.
    static int CanExpandTo(std::uint64_t size, std::uint32_t streamSize);
    /// @}

private:
    ovw::persistence::BlockCodec& codec();

    int m_level = -1;
    std::unique_ptr<ovw::persistence::BlockCodec> m_codec;
};

#endif // OVWCMN_XCZLIB_H
