#include "ovwcmn/xcarchivemem.h"

#include "ovwcmn/xcexception.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace {

constexpr std::uint32_t cnInitialMode = XCArchive::cnLoading | XCArchive::cnBigEndian;
constexpr std::uint64_t cnGrowStep = 65536;
constexpr std::uint64_t cnLargeReserve = 1024; // behind a write that is longer than a step

} // namespace

XCArchiveMem::XCArchiveMem() : XCArchiveMem(cnInitialMode, 0) {}

XCArchiveMem::XCArchiveMem(std::uint32_t flags, std::uint32_t) {
    disableCache();
    Init(flags, 0);
}

XCArchiveMem::~XCArchiveMem() = default;

void XCArchiveMem::SetMode(int mode) {
    setMode(static_cast<std::uint32_t>(mode));
    m_storePosition = 0;
    restart(m_storeLength);
}

void XCArchiveMem::Attach(VXHANDLE block, std::uint32_t size) {
    MemFree();
    m_storeLength = m_capacity = std::min(size, vxGetHandleSize(block));
    m_block.Attach(block, m_capacity, 1);
    restart(m_storeLength);
}

VXHANDLE XCArchiveMem::Dettach() {
    const VXHANDLE block = m_block.Detach();
    forgetStore();
    return block;
}

void XCArchiveMem::MemFree() {
    m_block.Free();
    forgetStore();
    Init(cnInitialMode, 0);
}

void XCArchiveMem::forgetStore() {
    m_storePosition = m_storeLength = m_capacity = 0;
    restart(0);
}

/// Makes room for `size` bytes at the position.
void XCArchiveMem::Expand(std::uint32_t size) {
    const std::uint64_t needed = std::uint64_t{m_storePosition} + size;
    if (needed <= m_capacity)
        return;
    std::uint64_t capacity = m_capacity + (size < cnGrowStep ? cnGrowStep : size + cnLargeReserve);
    if (capacity < needed) // after a seek beyond the end
        capacity += (needed - capacity + cnGrowStep - 1) / cnGrowStep * cnGrowStep;
    if (capacity > std::numeric_limits<std::uint32_t>::max())
        xcThrowError(ovw::foundation::cnCodeNoMemory);
    m_block.ReAlloc(static_cast<std::uint32_t>(capacity), 0);
    m_capacity = static_cast<std::uint32_t>(capacity);
}

std::uint32_t XCArchiveMem::WriteSelf(const void* bytes, std::uint32_t size) {
    if (size == 0)
        return 0;
    Expand(size);
    std::memcpy(static_cast<unsigned char*>(m_block) + m_storePosition, bytes, size);
    m_storePosition += size;
    m_storeLength = std::max(m_storeLength, m_storePosition);
    return size;
}

std::uint32_t XCArchiveMem::ReadSelf(void* bytes, std::uint32_t size) {
    const std::uint32_t left = m_storePosition < m_storeLength ? m_storeLength - m_storePosition : 0;
    const std::uint32_t count = std::min(size, left);
    if (count > 0)
        std::memcpy(bytes, static_cast<unsigned char*>(m_block) + m_storePosition, count);
    m_storePosition += count;
    return count;
}

std::uint32_t XCArchiveMem::SeekSelf(int offset, std::uint32_t origin) {
    const std::uint32_t before = m_storePosition;
    if (origin == 0)
        m_storePosition = static_cast<std::uint32_t>(offset);
    else if (origin == 1)
        m_storePosition += static_cast<std::uint32_t>(offset);
    try {
        if (IsSaving())
            Expand(0);
    } catch (...) {
        m_storePosition = before;
        throw;
    }
    return m_storePosition;
}
