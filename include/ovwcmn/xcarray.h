#ifndef OVWCMN_XCARRAY_H
#define OVWCMN_XCARRAY_H

/// @file
/// The growable array.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/xchandle.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

namespace ovw::foundation {

/// Bytes of `count` elements; throws 8 when they do not fit 32 bits or a count does not fit an int.
OVWCMN_API std::uint32_t elementBytes(std::int64_t count, std::size_t elementSize);

} // namespace ovw::foundation

/// A movable block whose sizes and offsets count elements of T.
template <class T>
class XCTHandle {
public:
    /// @{ As XCHandle, by elements.
    void Alloc(std::int64_t count, std::uint32_t flags, int purge) { m_bytes.Alloc(bytes(count), flags, purge); }
    void ReAlloc(std::int64_t count, std::uint32_t flags) { m_bytes.ReAlloc(bytes(count), flags); }
    void BlockMove(int count, int dstOffset, int srcOffset);
    /// @}
    /// Address of the first element; null without a block. It changes only with Alloc and ReAlloc.
    T* GetData() const { return reinterpret_cast<T*>(m_bytes.GetHandle()); }

private:
    static std::uint32_t bytes(std::int64_t count) {
        return ovw::foundation::elementBytes(count,
                                             sizeof(T)); // NOLINT(bugprone-sizeof-expression): T may be a pointer
    }

    XCHandle m_bytes;
};

template <class T>
void XCTHandle<T>::BlockMove(int count, int dstOffset, int srcOffset) {
    // By addresses: an offset in bytes does not fit an int when the block is longer than 2 GiB.
    T* const data = GetData();
    if (count > 0)
        std::memmove(static_cast<void*>(data + dstOffset), data + srcOffset, bytes(count));
}

/// Plain elements, contiguous in one movable block that it owns. The block grows in steps of 256 elements and never
/// shrinks; element addresses hold until the size changes. New elements are zero bytes, but those that come back after
/// shrinking hold their old bytes. T is moved as raw bytes: a plain type or a pointer (not owned). Growing throws 8
/// when memory runs out and leaves the array as it was; nothing else throws. One array belongs to one thread at a time.
template <class T, int = 0>
class XCTArray {
public:
    XCTArray() = default;
    XCTArray(const XCTArray&) = default;
    /// @{ A copy has elements of its own; moving leaves the other array empty.
    XCTArray(XCTArray&& other) noexcept { swap(other); }
    XCTArray& operator=(const XCTArray& other) { return *this = XCTArray(other); }
    XCTArray& operator=(XCTArray&& other) noexcept;
    /// @}
    virtual ~XCTArray() = default;

    /// A negative size is 0.
    void SetSize(int size);
    int GetSize() const { return m_size; } ///< elements
    /// Elements that fit without another allocation.
    int GetCapacity() const { return m_capacity; }
    void Clear() { m_size = 0; } ///< Size 0; the block stays.

    /// @{ The index is not checked: 0 <= index < size.
    T& operator[](int index) { return GetData()[index]; }
    const T& operator[](int index) const { return GetData()[index]; }
    T& GetAt(int index) { return GetData()[index]; }
    const T& GetAt(int index) const { return GetData()[index]; }
    T* GetData() { return m_elements.GetData(); }
    const T* GetData() const { return m_elements.GetData(); }
    T* begin() { return GetData(); }
    T* end() { return GetData() + m_size; }
    const T* begin() const { return GetData(); }
    const T* end() const { return GetData() + m_size; }
    /// @}

    void PushBack(const T& element); ///< The element may lie in this array.
    /// An index outside 0 to size - 1 appends.
    void InsertAt(int index, const T& element);
    /// An index outside 0 to size - 1 does nothing.
    void RemoveAt(int index);

private:
    static constexpr int cnGrowStep = 256;

    void grow(int size);
    void swap(XCTArray& other) noexcept;
    bool holds(int index) const { return index >= 0 && index < m_size; }

    XCTHandle<T> m_elements;
    int m_capacity = 0;
    int m_size = 0;
};

template <class T, int N>
XCTArray<T, N>& XCTArray<T, N>::operator=(XCTArray&& other) noexcept {
    XCTArray taken(std::move(other));
    swap(taken);
    return *this;
}

template <class T, int N>
void XCTArray<T, N>::swap(XCTArray& other) noexcept {
    std::swap(m_elements, other.m_elements);
    std::swap(m_capacity, other.m_capacity);
    std::swap(m_size, other.m_size);
}

template <class T, int N>
void XCTArray<T, N>::grow(int size) {
    static_assert(std::is_trivially_copyable_v<T>, "elements are moved as raw bytes");
    const std::int64_t missing = static_cast<std::int64_t>(size) - m_capacity;
    const std::int64_t capacity = m_capacity + (missing + cnGrowStep - 1) / cnGrowStep * cnGrowStep;
    if (m_capacity == 0)
        m_elements.Alloc(capacity, 0, 1);
    else
        m_elements.ReAlloc(capacity, 0);
    m_capacity = static_cast<int>(capacity);
}

template <class T, int N>
void XCTArray<T, N>::SetSize(int size) {
    if (size > m_capacity)
        grow(size);
    m_size = size > 0 ? size : 0;
}

template <class T, int N>
void XCTArray<T, N>::PushBack(const T& element) {
    // The element may lie in this array, whose block moves when it grows.
    const T copy = element;
    SetSize(m_size + 1);
    GetData()[m_size - 1] = copy;
}

template <class T, int N>
void XCTArray<T, N>::InsertAt(int index, const T& element) {
    if (!holds(index))
        return PushBack(element);
    const T copy = element;
    SetSize(m_size + 1);
    m_elements.BlockMove(m_size - index - 1, index + 1, index);
    GetData()[index] = copy;
}

template <class T, int N>
void XCTArray<T, N>::RemoveAt(int index) {
    if (!holds(index))
        return;
    m_elements.BlockMove(m_size - index - 1, index, index + 1);
    --m_size;
}

#endif // OVWCMN_XCARRAY_H
