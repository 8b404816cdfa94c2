#ifndef OVWCMN_XCHANDLE_H
#define OVWCMN_XCHANDLE_H

/// @file
/// Owners and scope guards of the utility library's memory blocks.

#include "ovwcmn/vxwutl.h"

#include <concepts>

class XCPointer;

/// One movable block: owns it (purge flag set) or borrows it (purge flag clear, then it is only unlocked on cleanup).
/// Copying duplicates the bytes. Allocation failures throw the utility library's error code (8: no memory); locking an
/// empty object, a null source and a copy that would leave a block throw 0x20010008.
/// One object belongs to one thread at a time; several threads may copy from the same object.
class OVWCMN_API XCHandle {
public:
    XCHandle() = default;
    /// Adopts `handle` without locking it.
    explicit XCHandle(VXHANDLE handle, std::uint32_t size = 0, int purge = 1);
    /// @{ A copy has a block of its own; moving leaves the other object empty.
    XCHandle(const XCHandle& other);
    XCHandle(XCHandle&& other) noexcept;
    XCHandle& operator=(const XCHandle& other);
    XCHandle& operator=(XCHandle&& other) noexcept;
    /// @}
    virtual ~XCHandle();

    /// Gives up what it has, then adopts `handle` without locking it.
    virtual void Attach(VXHANDLE handle, std::uint32_t size, int purge);
    /// Unlocks the block once, never frees it; the caller owns it from then on.
    virtual VXHANDLE Detach();
    /// A new block of zero bytes; gives up what it had.
    virtual void Alloc(std::uint32_t size, std::uint32_t flags = 1, int purge = 1);
    /// On failure the object keeps its block. Forgets all locks.
    virtual void ReAlloc(std::uint32_t size, std::uint32_t flags = 1);
    /// Copies to `dstOffset` of this block; `size` 0 is the source's whole size.
    virtual void Copy(const XCHandle& src, std::uint32_t size, int dstOffset, int srcOffset);
    /// @{ The same from other sources.
    virtual void Copy(const XCPointer& src, std::uint32_t size, int dstOffset, int srcOffset);
    virtual void Copy(VXHANDLE src, std::uint32_t size, int dstOffset, int srcOffset);
    virtual void Copy(const void* src, std::uint32_t size, int dstOffset, int srcOffset);
    /// @}
    /// Moves bytes inside the block; the ranges may overlap.
    virtual void BlockMove(std::uint32_t size, int dstOffset, int srcOffset);

    void Free() { cleanup(); } ///< back to an empty object
    void* Lock();              ///< The block's address; locks nest.
    void Unlock();             ///< Undoes one Lock.
    /// `Lock` calls not yet matched by `Unlock`.
    int GetLockCount() const { return m_lockCount; }

    /// @{ The block, null when empty.
    VXHANDLE GetHandle() const { return m_handle; }
    operator void*() const { return m_handle; }
    operator unsigned char*() const { return reinterpret_cast<unsigned char*>(m_handle); }
    /// @}
    /// Bytes, as given at allocation or attachment.
    std::uint32_t GetMemSize() const { return m_size; }
    int IsValid() const { return m_handle != nullptr; } ///< 1 while a block is held
    /// @{ 1: owns the block.
    int GetPurgeFlag() const { return m_purge; }
    void SetPurgeFlag(int purge) { m_purge = purge; }
    /// @}

private:
    void cleanup() noexcept;
    void forget() noexcept;

    VXHANDLE m_handle = nullptr;
    std::uint32_t m_size = 0;
    int m_purge = 1;
    int m_lockCount = 0;
};

/// One fixed block, owned (purge flag set) or borrowed (left alone on cleanup). Otherwise as XCHandle, without locks;
/// copying from an XCHandle without a block throws as locking it does.
class OVWCMN_API XCPointer {
public:
    XCPointer() = default;
    /// Adopts `pointer`.
    explicit XCPointer(void* pointer, std::uint32_t size = 0, int purge = 1);
    /// @{ A copy has a block of its own; moving leaves the other object empty.
    XCPointer(const XCPointer& other);
    XCPointer(XCPointer&& other) noexcept;
    XCPointer& operator=(const XCPointer& other);
    XCPointer& operator=(XCPointer&& other) noexcept;
    /// @}
    virtual ~XCPointer();

    /// `size` 0 asks the utility library, which must then have allocated the block.
    virtual void Attach(void* pointer, std::uint32_t size, int purge);
    virtual void* Detach(); ///< The caller owns the block from then on.
    /// A new block of zero bytes; gives up what it had.
    virtual void Alloc(std::uint32_t size, std::uint32_t flags = 1, int purge = 1);
    /// On failure the object keeps its block.
    virtual void ReAlloc(std::uint32_t size, std::uint32_t flags = 1);
    /// Copies to `dstOffset` of this block; `size` 0 is the source's whole size.
    virtual void Copy(const XCHandle& src, std::uint32_t size, int dstOffset, int srcOffset);
    /// @{ The same from other sources.
    virtual void Copy(const XCPointer& src, std::uint32_t size, int dstOffset, int srcOffset);
    virtual void Copy(VXHANDLE src, std::uint32_t size, int dstOffset, int srcOffset);
    virtual void Copy(const void* src, std::uint32_t size, int dstOffset, int srcOffset);
    /// @}
    /// Moves bytes inside the block; the ranges may overlap.
    virtual void BlockMove(std::uint32_t size, int dstOffset, int srcOffset);

    void Free() { cleanup(); } ///< back to an empty object
    /// @{ The block, null when empty.
    void* GetPointer() const { return m_pointer; }
    operator void*() const { return m_pointer; }
    operator unsigned char*() const { return static_cast<unsigned char*>(m_pointer); }
    /// @}
    /// Bytes, as given at allocation or attachment.
    std::uint32_t GetMemSize() const { return m_size; }
    int IsValid() const { return m_pointer != nullptr; } ///< 1 while a block is held
    /// @{ 1: owns the block.
    int GetPurgeFlag() const { return m_purge; }
    void SetPurgeFlag(int purge) { m_purge = purge; }
    /// @}

private:
    void cleanup() noexcept;
    void forget() noexcept;

    void* m_pointer = nullptr;
    std::uint32_t m_size = 0;
    int m_purge = 1;
};

/// Keeps a raw handle locked while it lives, then unlocks and frees it.
class OVWCMN_API XCAutoHandle {
public:
    XCAutoHandle() = default;
    explicit XCAutoHandle(VXHANDLE handle) { *this = handle; } ///< takes and locks it
    XCAutoHandle(const XCAutoHandle&) = delete;
    XCAutoHandle& operator=(const XCAutoHandle&) = delete;
    virtual ~XCAutoHandle();

    /// Frees what is held, then takes and locks `handle`; returns the block's address, null for null.
    void* operator=(VXHANDLE handle);
    /// @{ The locked block; null without one.
    void* GetPointer() const { return m_address; }
    operator void*() const { return m_address; }
    operator unsigned char*() const { return static_cast<unsigned char*>(m_address); }
    /// @}

private:
    void cleanup() noexcept;

    VXHANDLE m_handle = nullptr;
    void* m_address = nullptr;
};

/// Keeps an XCHandle locked while it lives and shows its block as elements of T. The XCHandle must outlive the guard.
/// Locking an empty XCHandle throws 0x20010008.
template <class T>
class XCTAutoLockHandle {
public:
    XCTAutoLockHandle() = default;
    explicit XCTAutoLockHandle(XCHandle& handle) { Lock(&handle); } ///< locks it
    XCTAutoLockHandle(const XCTAutoLockHandle&) = delete;
    XCTAutoLockHandle& operator=(const XCTAutoLockHandle&) = delete;
    ~XCTAutoLockHandle() { Unlock(); }

    /// Locks `handle`, or the remembered one when it is null; a lock already held is given back first.
    T* Lock(XCHandle* handle = nullptr);
    void Unlock(); ///< Gives one lock back; the handle stays remembered.
    /// 1 when a handle is remembered and it holds a block.
    int IsValid() const { return m_handle && m_handle->IsValid(); }
    /// Forgets handle and address without unlocking.
    void Init() {
        m_handle = nullptr;
        m_address = nullptr;
    }
    /// Unchecked. Takes every integer, so that the conversion to a pointer does not compete.
    template <std::integral Index>
    T& operator[](Index index) const {
        return m_address[index];
    }
    operator T*() const { return m_address; } ///< null while nothing is locked

private:
    XCHandle* m_handle = nullptr;
    T* m_address = nullptr;
};

template <class T>
T* XCTAutoLockHandle<T>::Lock(XCHandle* handle) {
    Unlock();
    if (handle)
        m_handle = handle;
    if (m_handle)
        m_address = static_cast<T*>(m_handle->Lock());
    return m_address;
}

template <class T>
void XCTAutoLockHandle<T>::Unlock() {
    // An owner that was emptied meanwhile has nothing left to unlock.
    if (m_address && m_handle->IsValid())
        m_handle->Unlock();
    m_address = nullptr;
}

/// Frees a fixed block when it goes out of scope; keeps a second pointer beside it that it does not own.
class OVWCMN_API XCAutoPointer {
public:
    /// Manages the first, keeps the second.
    explicit XCAutoPointer(void* pointer = nullptr, void* second = nullptr) : m_second(second), m_pointer(pointer) {}
    XCAutoPointer(const XCAutoPointer&) = delete;
    XCAutoPointer& operator=(const XCAutoPointer&) = delete;
    virtual ~XCAutoPointer();

    /// Frees what is held, then manages `pointer`; returns it.
    void* operator=(void* pointer);
    void* GetPointer() const { return m_pointer; } ///< the managed block
    void* GetSecond() const { return m_second; }   ///< the other pointer
    /// @{ The managed block.
    operator void*() const { return m_pointer; }
    operator unsigned char*() const { return static_cast<unsigned char*>(m_pointer); }
    /// @}

private:
    void cleanup() noexcept;

    void* m_second;
    void* m_pointer;
};

#endif // OVWCMN_XCHANDLE_H
