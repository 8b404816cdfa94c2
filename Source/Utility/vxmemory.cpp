#include "ovwcmn/vxwutl.h"

#include "Platform/systemerror.h"
#include "Utility/block.h"

namespace platform = ovw::platform;
namespace utility = ovw::utility;

namespace {

thread_local int s_lastError = 0;

// Passes a new block on; a missing one is lack of memory.
void* orNoMemory(void* block, int* status) {
    if (!block) {
        s_lastError = platform::cnErrorNotEnoughMemory;
        if (status)
            *status = platform::cnErrorNotEnoughMemory;
    }
    return block;
}

void* resize(void* block, std::uint32_t size, int* status) {
    return orNoMemory(block ? utility::resizeBlock(block, size) : utility::allocateBlock(size), status);
}

} // namespace

int vxGetLastError() { return s_lastError; }

void vxSetLastError(int code) { s_lastError = code; }

VXHANDLE vxAlloc(std::uint32_t size, std::uint32_t, int* status) {
    return static_cast<VXHANDLE>(orNoMemory(utility::allocateBlock(size), status));
}

VXHANDLE vxReAlloc(VXHANDLE handle, std::uint32_t size, std::uint32_t, int* status) {
    return static_cast<VXHANDLE>(resize(handle, size, status));
}

void* vxLock(VXHANDLE handle) {
    if (handle)
        utility::lockBlock(handle);
    else
        s_lastError = platform::cnErrorInvalidHandle;
    return handle;
}

void vxUnlock(VXHANDLE handle) {
    if (handle)
        utility::unlockBlock(handle);
}

int vxGetLockCount(VXHANDLE handle) { return utility::blockLocks(handle); }

void vxFree(VXHANDLE handle) { utility::freeBlock(handle); }

std::uint32_t vxGetHandleSize(VXHANDLE handle) { return utility::blockSize(handle); }

void* vxAllocPtr(std::uint32_t size, std::uint32_t, int* status) {
    return orNoMemory(utility::allocateBlock(size), status);
}

void* vxReAllocPtr(void* pointer, std::uint32_t size, std::uint32_t, int* status) {
    return resize(pointer, size, status);
}

void vxFreePtr(void* pointer) { utility::freeBlock(pointer); }

std::uint32_t vxGetPtrSize(void* pointer) { return utility::blockSize(pointer); }
