#include "ovwcmn/xcswap.h"
#include "ovwcmn/xcvirtualmemory.h"

std::atomic<int> XCSwapBlock::s_nTemporary{0};

XCSwapBlock::XCSwapBlock(std::uint64_t begin, std::uint64_t end, std::uint64_t size)
    : m_nBegin(begin), m_nEnd(end), m_nSize(size) {}

XCSwapBlock::~XCSwapBlock() { SetTemporary(0); }

void* XCSwapBlock::Lock() {
    m_bLocked = 1;
    ++m_nLockCount;
    m_pProtect = m_memory.Lock();
    return m_pProtect;
}

void XCSwapBlock::Unlock() {
    m_bLocked = 0;
    if (m_nLockCount == 0)
        return;
    --m_nLockCount;
    m_memory.Unlock();
}

int XCSwapBlock::Purge(XCSwap* swap, XCVirtualMemory* vm) {
    if (m_bEdit && !m_bTemporary) {
        struct MemoryLock {
            const XCVMHandle& memory;
            void* address = memory.Lock();
            ~MemoryLock() { memory.Unlock(); }
        } lock{m_memory};
        if (!swap->Write(lock.address, this))
            return 0;
    }
    m_bEdit = 0;
    if (m_bAbsoluteProtect)
        return 0;
    FreeOnMemory(vm);
    return 1;
}

void XCSwapBlock::FreeOnMemory(XCVirtualMemory* vm) {
    for (; m_nLockCount > 0; --m_nLockCount)
        m_memory.Unlock();
    m_bLocked = 0;
    vm->FreeHandle(m_memory, static_cast<std::uint32_t>(m_nSize));
    m_memory = {};
    m_pProtect = nullptr;
}

void XCSwapBlock::SetPos(std::uint64_t begin, std::uint64_t end) {
    m_nBegin = begin;
    m_nEnd = end;
}

void XCSwapBlock::SetMemory(const XCVMHandle& memory) {
    m_memory = memory;
    m_bEdit = 0;
    m_bLocked = 0;
    m_nLockCount = 0;
}

void XCSwapBlock::SetTemporary(int temporary) {
    s_nTemporary.fetch_add((temporary ? 1 : 0) - (m_bTemporary ? 1 : 0), std::memory_order_relaxed);
    m_bTemporary = temporary;
}

void XCSwapBlock::SetAbsoluteProtect(int protect) {
    m_bAbsoluteProtect = protect == 1;
    if (!m_bAbsoluteProtect)
        m_pProtect = nullptr;
}
