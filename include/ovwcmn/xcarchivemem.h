#ifndef OVWCMN_XCARCHIVEMEM_H
#define OVWCMN_XCARCHIVEMEM_H

/// @file
/// Archives in memory.

#include "ovwcmn/xcarchive.h"

/// An archive in a movable block that it owns and that grows while saving. Reading past the end reads short, without
/// an error. Lack of memory, and growing beyond 4 GiB, throw 8. One thread at a time.
class OVWCMN_API XCArchiveMem : public XCArchive {
public:
    /// Loading, big-endian, without a block.
    XCArchiveMem();
    /// Flags as for Init; the cache size has no meaning here.
    XCArchiveMem(std::uint32_t flags, std::uint32_t cacheSize);
    ~XCArchiveMem() override;

    /// Replaces the whole mode word (without an order bit: little-endian) and goes back to the start.
    void SetMode(int mode);
    /// Takes the block over; the archive is then loading and big-endian, whatever it was. `size` is cut to the block's.
    void Attach(VXHANDLE block, std::uint32_t size);
    /// Gives the block away, whose size may be more than GetLength() told before.
    VXHANDLE Dettach();
    /// Frees the block; the archive is as new.
    void MemFree();
    /// The block's address; throws 0x20010008 without one. It moves while saving.
    void* Lock() { return m_block.Lock(); }
    void Unlock() { m_block.Unlock(); } ///< Undoes one Lock.
    /// 1 while a block is held.
    int IsValid() const { return m_block.IsValid(); }

protected:
    std::uint32_t WriteSelf(const void* bytes, std::uint32_t size) override;
    std::uint32_t ReadSelf(void* bytes, std::uint32_t size) override;
    std::uint32_t SeekSelf(int offset, std::uint32_t origin) override;

private:
    void Expand(std::uint32_t size);
    void forgetStore();

    XCHandle m_block;
    std::uint32_t m_storePosition = 0;
    std::uint32_t m_storeLength = 0;
    std::uint32_t m_capacity = 0;
};

#endif // OVWCMN_XCARCHIVEMEM_H
