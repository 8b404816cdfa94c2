#include "ovwcmn/xchandle.h"

#include "ovwcmn/xcexception.h"

#include <cstring>
#include <utility>

using ovw::foundation::cnCodeParameter;

namespace {

// Bytes of a block whose size nobody recorded.
constexpr std::uint32_t cnSizeUnknown = 0;

// Throws unless `size` bytes at `offset` lie inside a block of `blockSize` bytes.
void checkInside(std::uint32_t blockSize, std::uint32_t size, int offset) {
    if (offset < 0 || std::uint64_t{size} + static_cast<std::uint32_t>(offset) > blockSize)
        xcThrowError(cnCodeParameter);
}

struct Source {
    const void* address;
    std::uint32_t size; // cnSizeUnknown: the caller knows what it does
};

struct Target {
    void* address;
    std::uint32_t size;
};

void copyBytes(Target target, Source source, std::uint32_t size, int dstOffset, int srcOffset) {
    if (size == 0)
        return;
    if (!target.address || !source.address)
        xcThrowError(cnCodeParameter);
    if (target.size != cnSizeUnknown)
        checkInside(target.size, size, dstOffset);
    if (source.size != cnSizeUnknown)
        checkInside(source.size, size, srcOffset);
    std::memmove(static_cast<char*>(target.address) + dstOffset, static_cast<const char*>(source.address) + srcOffset,
                 size);
}

Source blockOf(VXHANDLE handle) { return {handle, vxGetHandleSize(handle)}; }

Source blockOf(const XCPointer& pointer) { return {pointer.GetPointer(), pointer.GetMemSize()}; }

std::uint32_t sizeOr(std::uint32_t size, std::uint32_t whole) { return size ? size : whole; }

} // namespace

XCHandle::XCHandle(VXHANDLE handle, std::uint32_t size, int purge) { Attach(handle, size, purge); }

// Delegating: should the copy fail, the destructor frees what was allocated.
XCHandle::XCHandle(const XCHandle& other) : XCHandle() { *this = other; }

XCHandle::XCHandle(XCHandle&& other) noexcept
    : m_handle(other.m_handle), m_size(other.m_size), m_purge(other.m_purge), m_lockCount(other.m_lockCount) {
    other.forget();
}

XCHandle& XCHandle::operator=(const XCHandle& other) {
    if (this == &other)
        return *this;
    cleanup();
    if (other.m_handle) {
        XCHandle::Alloc(other.m_size, 1, 1);
        XCHandle::Copy(other, 0, 0, 0);
    }
    return *this;
}

XCHandle& XCHandle::operator=(XCHandle&& other) noexcept {
    if (this != &other) {
        cleanup();
        m_handle = other.m_handle;
        m_size = other.m_size;
        m_purge = other.m_purge;
        m_lockCount = other.m_lockCount;
        other.forget();
    }
    return *this;
}

XCHandle::~XCHandle() { cleanup(); }

void XCHandle::cleanup() noexcept {
    if (m_handle && m_purge)
        vxFree(m_handle);
    else if (m_handle)
        vxUnlock(m_handle);
    forget();
}

void XCHandle::forget() noexcept {
    m_handle = nullptr;
    m_size = 0;
    m_purge = 1;
    m_lockCount = 0;
}

void XCHandle::Attach(VXHANDLE handle, std::uint32_t size, int purge) {
    if (handle != m_handle)
        cleanup();
    forget();
    if (!handle)
        return;
    m_handle = handle;
    m_size = size;
    m_purge = purge;
}

VXHANDLE XCHandle::Detach() {
    const VXHANDLE handle = m_handle;
    vxUnlock(handle);
    forget();
    return handle;
}

void XCHandle::Alloc(std::uint32_t size, std::uint32_t flags, int purge) {
    cleanup();
    int status = 0;
    m_handle = vxAlloc(size, flags, &status);
    if (!m_handle)
        xcThrowError(vxGetLastError());
    m_size = size;
    m_purge = purge;
}

void XCHandle::ReAlloc(std::uint32_t size, std::uint32_t flags) {
    if (!m_handle)
        return Alloc(size, flags, 1);
    int status = 0;
    const VXHANDLE resized = vxReAlloc(m_handle, size, flags, &status);
    if (!resized)
        xcThrowError(vxGetLastError());
    m_handle = resized;
    m_size = size;
    if (m_lockCount > 0)
        vxUnlock(m_handle);
    m_lockCount = 0;
}

void* XCHandle::Lock() {
    if (!m_handle)
        xcThrowError(cnCodeParameter);
    // The block carries one lock for all of the object's, so that the last Unlock really unlocks it.
    if (m_lockCount++ == 0)
        vxLock(m_handle);
    return m_handle;
}

void XCHandle::Unlock() {
    if (!m_handle)
        xcThrowError(cnCodeParameter);
    if (m_lockCount > 0 && --m_lockCount == 0)
        vxUnlock(m_handle);
}

void XCHandle::Copy(const void* src, std::uint32_t size, int dstOffset, int srcOffset) {
    copyBytes({m_handle, vxGetHandleSize(m_handle)}, {src, cnSizeUnknown}, size, dstOffset, srcOffset);
}

void XCHandle::Copy(const XCHandle& src, std::uint32_t size, int dstOffset, int srcOffset) {
    copyBytes({m_handle, vxGetHandleSize(m_handle)}, blockOf(src.m_handle), sizeOr(size, src.m_size), dstOffset,
              srcOffset);
}

void XCHandle::Copy(const XCPointer& src, std::uint32_t size, int dstOffset, int srcOffset) {
    copyBytes({m_handle, vxGetHandleSize(m_handle)}, blockOf(src), sizeOr(size, src.GetMemSize()), dstOffset,
              srcOffset);
}

void XCHandle::Copy(VXHANDLE src, std::uint32_t size, int dstOffset, int srcOffset) {
    if (!src)
        xcThrowError(cnCodeParameter);
    const Source source = blockOf(src);
    copyBytes({m_handle, vxGetHandleSize(m_handle)}, source, sizeOr(size, source.size), dstOffset, srcOffset);
}

void XCHandle::BlockMove(std::uint32_t size, int dstOffset, int srcOffset) {
    copyBytes({m_handle, vxGetHandleSize(m_handle)}, blockOf(m_handle), size, dstOffset, srcOffset);
}

XCPointer::XCPointer(void* pointer, std::uint32_t size, int purge) {
    if (!pointer)
        return;
    m_pointer = pointer;
    m_size = size;
    m_purge = purge;
}

XCPointer::XCPointer(const XCPointer& other) : XCPointer() { *this = other; }

XCPointer::XCPointer(XCPointer&& other) noexcept
    : m_pointer(other.m_pointer), m_size(other.m_size), m_purge(other.m_purge) {
    other.forget();
}

XCPointer& XCPointer::operator=(const XCPointer& other) {
    if (this == &other)
        return *this;
    cleanup();
    if (other.m_pointer) {
        XCPointer::Alloc(other.m_size, 1, 1);
        XCPointer::Copy(other, 0, 0, 0);
    }
    return *this;
}

XCPointer& XCPointer::operator=(XCPointer&& other) noexcept {
    if (this != &other) {
        cleanup();
        m_pointer = other.m_pointer;
        m_size = other.m_size;
        m_purge = other.m_purge;
        other.forget();
    }
    return *this;
}

XCPointer::~XCPointer() { cleanup(); }

void XCPointer::cleanup() noexcept {
    if (m_purge)
        vxFreePtr(m_pointer);
    forget();
}

void XCPointer::forget() noexcept {
    m_pointer = nullptr;
    m_size = 0;
    m_purge = 1;
}

void XCPointer::Attach(void* pointer, std::uint32_t size, int purge) {
    if (pointer != m_pointer)
        cleanup();
    forget();
    if (!pointer)
        return;
    m_pointer = pointer;
    m_size = size ? size : vxGetPtrSize(pointer);
    m_purge = purge;
}

void* XCPointer::Detach() {
    void* const pointer = m_pointer;
    forget();
    return pointer;
}

void XCPointer::Alloc(std::uint32_t size, std::uint32_t flags, int purge) {
    cleanup();
    int status = 0;
    m_pointer = vxAllocPtr(size, flags, &status);
    if (!m_pointer)
        xcThrowError(vxGetLastError());
    m_size = size;
    m_purge = purge;
}

void XCPointer::ReAlloc(std::uint32_t size, std::uint32_t flags) {
    if (!m_pointer)
        return Alloc(size, flags, 1);
    int status = 0;
    void* const resized = vxReAllocPtr(m_pointer, size, flags, &status);
    if (!resized)
        xcThrowError(vxGetLastError());
    m_pointer = resized;
    m_size = size;
}

void XCPointer::Copy(const void* src, std::uint32_t size, int dstOffset, int srcOffset) {
    copyBytes({m_pointer, m_size}, {src, cnSizeUnknown}, size, dstOffset, srcOffset);
}

void XCPointer::Copy(const XCHandle& src, std::uint32_t size, int dstOffset, int srcOffset) {
    if (!src.IsValid())
        xcThrowError(cnCodeParameter);
    copyBytes({m_pointer, m_size}, blockOf(src.GetHandle()), sizeOr(size, src.GetMemSize()), dstOffset, srcOffset);
}

void XCPointer::Copy(const XCPointer& src, std::uint32_t size, int dstOffset, int srcOffset) {
    copyBytes({m_pointer, m_size}, blockOf(src), sizeOr(size, src.m_size), dstOffset, srcOffset);
}

void XCPointer::Copy(VXHANDLE src, std::uint32_t size, int dstOffset, int srcOffset) {
    if (!src)
        xcThrowError(cnCodeParameter);
    const Source source = blockOf(src);
    copyBytes({m_pointer, m_size}, source, sizeOr(size, source.size), dstOffset, srcOffset);
}

void XCPointer::BlockMove(std::uint32_t size, int dstOffset, int srcOffset) {
    copyBytes({m_pointer, m_size}, blockOf(*this), size, dstOffset, srcOffset);
}

XCAutoHandle::~XCAutoHandle() { cleanup(); }

void XCAutoHandle::cleanup() noexcept {
    if (m_address) {
        vxUnlock(m_handle);
        vxFree(m_handle);
    }
    m_handle = nullptr;
    m_address = nullptr;
}

void* XCAutoHandle::operator=(VXHANDLE handle) {
    if (handle == m_handle)
        return m_address;
    cleanup();
    m_handle = handle;
    if (handle)
        m_address = vxLock(handle);
    return m_address;
}

XCAutoPointer::~XCAutoPointer() { cleanup(); }

void XCAutoPointer::cleanup() noexcept {
    vxFreePtr(m_pointer);
    m_pointer = nullptr;
}

void* XCAutoPointer::operator=(void* pointer) {
    if (pointer != m_pointer)
        cleanup();
    m_pointer = pointer;
    return m_pointer;
}
