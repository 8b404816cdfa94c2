#include "ovwcmn/xcswap.h"

#include "Platform/systemerror.h"
#include "foundation/nomemory.h"
#include "ovwcmn/vxwutl.h"
#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcfile.h"
#include "vimage/nodelist.h"

#include <exception>
#include <limits>
#include <new>

using ovw::foundation::orNoMemory;

namespace {

constexpr std::uint32_t cnDefaultSectorSize = 512;
constexpr std::uint32_t cnSwapFileType = 0x53574150; // "SWAP"
constexpr std::uint64_t cnMaxRoundedSize = 0x7FFFFFFF;

std::uint64_t roundUp(std::uint64_t size, std::uint64_t unit) { return (size + unit - 1) / unit * unit; }

/// A swap size of whole sectors; one that the rounding takes beyond 31 bits loses two sectors instead.
std::uint32_t wholeSectors(std::uint32_t size, std::uint32_t sector) {
    std::uint64_t rounded = roundUp(size, sector);
    if (rounded > cnMaxRoundedSize)
        rounded = (static_cast<std::uint64_t>(size) / sector - 1) * sector;
    return static_cast<std::uint32_t>(rounded);
}

/// Throws the code that a failed system call left, or `fallback` when it left none.
[[noreturn]] void throwLastError(int fallback) {
    const int code = vxGetLastError();
    xcThrowError(code ? code : fallback);
}

void requireFreeSpace(const XCFilePath& path, std::uint64_t size) {
    vxSetLastError(0);
    const std::uint64_t free = XCFilePath::GetDiskFreeSpaceA(path);
    if (free == 0)
        throwLastError(ovw::platform::cnErrorDiskFull);
    if (free < size)
        xcThrowError(ovw::platform::cnErrorDiskFull);
}

/// Runs file operations; 1, or 0 when one of them throws.
template <class Operation>
int succeeds(Operation operation) {
    try {
        return operation() ? 1 : 0;
    } catch (const std::exception&) {
        return 0;
    }
}

} // namespace

XCSwap::XCSwap()
    : m_pFile(orNoMemory([] { return std::make_unique<XCFile>(); })), m_nSectorSize(cnDefaultSectorSize),
      m_pBlocks(orNoMemory([] { return std::make_unique<ovw::vimage::NodeList<XCSwapListItem>>(); })) {}

XCSwap::~XCSwap() {
    Destroy();
    for (const XCSwapListItem* item = m_pBlocks->head(); item; item = item->next)
        delete item->block;
}

int XCSwap::Create(std::uint32_t* size, XCFilePath& path, int) {
    Destroy();
    vxSetLastError(0);
    const std::uint32_t sector = orNoMemory([&] { return XCFilePath::GetDiskSectorSize(path); });
    if (sector == 0)
        throwLastError(ovw::platform::cnErrorPathNotFound);
    const std::uint32_t rounded = wholeSectors(*size, sector);
    orNoMemory([&] { requireFreeSpace(path, rounded); });
    constexpr std::uint32_t attributes = FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE | FILE_FLAG_NO_BUFFERING;
    const int made = succeeds([&] {
        m_pFile->Create(path, 0, cnSwapFileType, GENERIC_READ | GENERIC_WRITE, 0, CREATE_ALWAYS, attributes);
        m_pFile->Seek(rounded, FILE_BEGIN);
        m_pFile->SetEOF();
        m_garbage.Create(rounded);
        return true;
    });
    if (!made) {
        Destroy();
        return 0;
    }
    m_nSectorSize = sector;
    m_nGrowUnit = rounded;
    m_nSwapSize.store(rounded, std::memory_order_relaxed);
    *size = rounded;
    return 1;
}

void XCSwap::Destroy() {
    m_pFile->Close();
    m_garbage.Destroy();
    for (const XCSwapListItem* item = m_pBlocks->head(); item; item = item->next)
        item->block->SetPos(0, 0);
    m_nSwapSize.store(0, std::memory_order_relaxed);
    m_nUsedTotal.store(0, std::memory_order_relaxed);
    m_nGrowUnit = 0;
}

XCSwapBlock* XCSwap::Allocate(std::uint32_t size) {
    const std::uint64_t rounded = roundUp(size ? size : 1, m_nSectorSize);
    if (rounded > std::numeric_limits<std::uint32_t>::max())
        xcThrowError(ovw::foundation::cnCodeNoMemory);
    return orNoMemory([&] {
        auto block = std::make_unique<XCSwapBlock>(0, 0, rounded);
        block->SetSwapListItem(m_pBlocks->append(block.get()));
        return block.release();
    });
}

void XCSwap::Deallocate(XCSwapBlock* block) {
    if (!block)
        return;
    if (block->IsSwapped()) {
        m_nUsedTotal.store(GetUsedTotalSize() - block->GetSize(), std::memory_order_relaxed);
        // Without memory for an extent object this piece of the file stays unused until the store is destroyed.
        succeeds([&] {
            m_garbage.Add(block->GetBeginPos(), block->GetEndPos(), block->GetSize());
            return true;
        });
    }
    m_pBlocks->remove(block->GetSwapListItem());
    delete block;
}

int XCSwap::Write(void* data, XCSwapBlock* block) {
    if (!m_pFile->IsValid() || (!block->IsSwapped() && !givePlace(*block)))
        return 0;
    return succeeds([&] {
        const auto size = static_cast<std::uint32_t>(block->GetSize());
        std::uint32_t done = 0;
        m_pFile->Seek(static_cast<std::int64_t>(block->GetBeginPos()), FILE_BEGIN);
        m_pFile->Write(data, size, &done);
        return done == size;
    });
}

int XCSwap::Read(void* data, XCSwapBlock* block) {
    if (!block->IsSwapped())
        return 0;
    return succeeds([&] {
        const auto size = static_cast<std::uint32_t>(block->GetSize());
        std::uint32_t done = 0;
        m_pFile->Seek(static_cast<std::int64_t>(block->GetBeginPos()), FILE_BEGIN);
        m_pFile->Read(data, size, &done);
        return done == size;
    });
}

std::uint32_t XCSwap::GetUsedBlockCount() const { return m_pBlocks->count(); }

/// 0 also when memory is short. The extent is noted before the file counts as longer: after a failure the next try
/// starts from the old end.
int XCSwap::givePlace(XCSwapBlock& block) try {
    const std::uint64_t size = block.GetSize();
    std::uint64_t position = 0;
    if (!m_garbage.Request(&position, size)) {
        const std::uint64_t grow = roundUp(size, m_nGrowUnit ? m_nGrowUnit : size);
        if (grow > std::numeric_limits<std::uint32_t>::max() || !Enlarge(static_cast<std::uint32_t>(grow)))
            return 0;
        const std::uint64_t oldSize = GetSwapSize();
        m_garbage.Enlarge(static_cast<std::uint32_t>(grow), oldSize);
        m_nSwapSize.store(oldSize + grow, std::memory_order_relaxed);
        if (!m_garbage.Request(&position, size))
            return 0;
    }
    block.SetPos(position, position + size);
    m_nUsedTotal.store(GetUsedTotalSize() + size, std::memory_order_relaxed);
    return 1;
} catch (const std::bad_alloc&) {
    return 0;
}

int XCSwap::Enlarge(std::uint32_t size) {
    requireFreeSpace(m_pFile->GetFilePath(), size);
    return succeeds([&] {
        m_pFile->Seek(size, FILE_END);
        m_pFile->SetEOF();
        return true;
    });
}
