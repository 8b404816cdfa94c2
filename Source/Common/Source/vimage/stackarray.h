#ifndef OVW_VIMAGE_STACKARRAY_H
#define OVW_VIMAGE_STACKARRAY_H

#include "ovwcmn/xcarray.h"

#include <algorithm>
#include <array>
#include <utility>

namespace ovw::vimage {

/// An array that needs no memory from the heap before it has more than N elements. New elements hold anything. Growing
/// throws 8 when memory runs out.
template <class T, int N>
class StackArray {
public:
    StackArray() = default;
    StackArray(const StackArray&) = delete;
    StackArray& operator=(const StackArray&) = delete;

    void clear() { m_size = 0; }
    int size() const { return m_size; }
    T& operator[](int index) { return m_elements[index]; }
    const T& operator[](int index) const { return m_elements[index]; }
    /// Appends `count` elements.
    /// @return the first of them, valid until the next growth
    T* extend(int count) {
        T* const first = reserve(count);
        m_size += count;
        return first;
    }
    /// Where the next elements go, with room for `count`.
    T* reserve(int count) {
        if (count > m_capacity - m_size)
            grow(m_size + count);
        return m_elements + m_size;
    }

private:
    [[gnu::noinline]] void grow(int size) { // rare
        constexpr int cnGrowth = 4;
        XCTArray<T> larger;
        larger.SetSize(std::max(size, m_capacity * cnGrowth));
        std::copy_n(m_elements, m_size, larger.GetData());
        m_heap = std::move(larger);
        m_elements = m_heap.GetData();
        m_capacity = m_heap.GetSize();
    }

    std::array<T, N> m_inline;
    XCTArray<T> m_heap;
    T* m_elements = m_inline.data();
    int m_capacity = N;
    int m_size = 0;
};

} // namespace ovw::vimage

#endif // OVW_VIMAGE_STACKARRAY_H
