#ifndef OVW_VIMAGE_BLOCKRECORDS_H
#define OVW_VIMAGE_BLOCKRECORDS_H

/// @file
/// The records of an image stream one after the other, out of an archive and out of memory. Of both: ask isPresent()
/// first, and after a yes call read() or skip() once.

#include "ovwcmn/detail/packedpixels.h"
#include "ovwcmn/xcarchive.h"
#include "ovwcmn/xcexception.h"
#include "ovwcmn/xczlib.h"
#include "persistence/byteorder.h"

#include <cstdint>
#include <cstring>

namespace ovw::vimage {

/// A block that the compression enlarges as it needs.
struct WorkBlock {
    std::uint8_t* bytes = nullptr;
    std::uint32_t capacity = 0;

    WorkBlock() = default;
    WorkBlock(const WorkBlock&) = delete;
    WorkBlock& operator=(const WorkBlock&) = delete;
    ~WorkBlock() {
        if (bytes)
            vxFreePtr(bytes);
    }
};

/// Whether a block follows, as its first byte says.
inline bool checkedPresence(std::uint8_t present) {
    if (present > 1)
        xcThrowError(foundation::cnCodeFileFormat);
    return present != 0;
}

class ArchiveRecords {
public:
    ArchiveRecords(XCArchive& archive, bool isCompressed, std::uint32_t blockBytes)
        : m_archive(archive), m_isCompressed(isCompressed), m_blockBytes(blockBytes) {}

    bool isPresent() {
        std::uint8_t present = 0;
        m_archive.RequireRemaining(sizeof present);
        m_archive >> present;
        return checkedPresence(present);
    }
    void read(std::uint8_t* to) {
        std::uint32_t size = 0;
        m_archive.RequireRemaining(sizeof size);
        m_archive >> size;
        if (size != m_blockBytes)
            xcThrowError(foundation::cnCodeFileFormat);
        if (m_isCompressed)
            return m_zlib.DecompressWhole(m_archive, to, size, m_frame.bytes, m_frame.capacity);
        m_archive.RequireRemaining(size);
        m_archive.Read(to, size);
    }

private:
    XCArchive& m_archive;
    const bool m_isCompressed;
    const std::uint32_t m_blockBytes;
    XCZLib m_zlib;
    WorkBlock m_frame;
};

class MemoryRecords {
public:
    MemoryRecords(const PackedPixels& packed, std::uint32_t blockBytes)
        : m_handle(packed.data.GetHandle()), m_next(static_cast<const std::uint8_t*>(vxLock(m_handle))),
          m_left(packed.data.GetMemSize()), m_isCompressed(packed.isCompressed),
          m_isBigEndian(packed.byteOrder == static_cast<int>(XCArchive::cnBigEndian)), m_blockBytes(blockBytes) {}
    MemoryRecords(const MemoryRecords&) = delete;
    MemoryRecords& operator=(const MemoryRecords&) = delete;
    ~MemoryRecords() { vxUnlock(m_handle); }

    bool isPresent() { return checkedPresence(*take(1)); }
    void read(std::uint8_t* to) {
        const std::uint8_t* const pixels = takePixels();
        if (m_isCompressed)
            m_zlib.DecompressWhole(pixels, to, m_blockBytes, m_isBigEndian);
        else
            std::memcpy(to, pixels, m_blockBytes);
    }
    void skip() { takePixels(); }

private:
    const std::uint8_t* take(std::uint32_t size) {
        if (size > m_left)
            xcThrowError(foundation::cnCodeParameter);
        const std::uint8_t* const taken = m_next;
        m_next += size;
        m_left -= size;
        return taken;
    }
    std::uint32_t takeNumber() { return persistence::loadNumber(take(sizeof(std::uint32_t)), m_isBigEndian); }

    /// The bytes of a block, or the frame that holds them.
    const std::uint8_t* takePixels() {
        if (takeNumber() != m_blockBytes)
            xcThrowError(foundation::cnCodeFileFormat);
        if (!m_isCompressed)
            return take(m_blockBytes);
        const std::uint8_t* const frame = m_next;
        const std::uint32_t streamSize = takeNumber();
        take(streamSize);
        if (!XCZLib::CanExpandTo(m_blockBytes, streamSize))
            xcThrowError(foundation::cnCodeFileFormat);
        return frame;
    }

    VXHANDLE m_handle;
    const std::uint8_t* m_next;
    std::uint32_t m_left;
    const bool m_isCompressed;
    const bool m_isBigEndian;
    const std::uint32_t m_blockBytes;
    XCZLib m_zlib;
};

} // namespace ovw::vimage

#endif // OVW_VIMAGE_BLOCKRECORDS_H
