#ifndef OVWCMN_XCSTRINGARRAY_H
#define OVWCMN_XCSTRINGARRAY_H

/// @file
/// Arrays that own the strings they hold.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/xcarray.h"
#include "ovwcmn/xcstring.h"

#include <memory>

namespace ovw::persistence {

/// An array of pointers to objects that it owns and deletes, last to first. A copy holds copies of the objects. Growing
/// throws 8 and leaves the array as it was. One thread at a time.
template <class T>
class OwningArray {
public:
    OwningArray() = default;
    OwningArray(const OwningArray& other) { appendCopies(other); } ///< Copies the objects; throws what that throws.
    /// Deletes its objects, then holds copies of the other's; after an error it is as it was.
    OwningArray& operator=(const OwningArray& other);
    virtual ~OwningArray() { AllDelete(); }

    int GetSize() const { return m_elements.GetSize(); } ///< elements
    /// Unchecked: 0 <= index < size. The array keeps the object.
    T* GetAt(int index) const { return m_elements.GetAt(index); }
    /// Takes the object over, also when it throws.
    void PushBack(T* element) { InsertAt(GetSize(), element); }
    /// As PushBack before the element at `index`; an index outside 0 to size - 1 appends.
    void InsertAt(int index, T* element);
    /// Takes the pointer out without deleting the object, which then is the caller's.
    void RemoveAt(int index) { m_elements.RemoveAt(index); }
    /// Forgets all objects without deleting them.
    void Clear() { m_elements.Clear(); }
    /// Deletes all objects.
    void AllDelete();
    /// The pointers; what owns them stays.
    XCTArray<T*>* GetArrayPointer() { return &m_elements; }

private:
    void appendCopies(const OwningArray& other);

    XCTArray<T*> m_elements;
};

template <class T>
OwningArray<T>& OwningArray<T>::operator=(const OwningArray& other) {
    if (this != &other) {
        OwningArray copy(other);
        std::swap(m_elements, copy.m_elements);
    }
    return *this;
}

template <class T>
void OwningArray<T>::InsertAt(int index, T* element) {
    std::unique_ptr<T> owned(element);
    m_elements.InsertAt(index, element);
    owned.release();
}

template <class T>
void OwningArray<T>::AllDelete() {
    while (const int size = GetSize()) {
        delete GetAt(size - 1);
        m_elements.SetSize(size - 1);
    }
}

template <class T>
void OwningArray<T>::appendCopies(const OwningArray& other) {
    try {
        for (int i = 0; i < other.GetSize(); ++i)
            PushBack(new T(*other.GetAt(i)));
    } catch (...) {
        AllDelete();
        throw;
    }
}

} // namespace ovw::persistence

/// Texts in the current code page that it owns.
class OVWCMN_API XCStringArray : public ovw::persistence::OwningArray<XCString> {};

/// UTF-16 texts that it owns.
class OVWCMN_API XCWideStringArray : public ovw::persistence::OwningArray<XCWideString> {};

#endif // OVWCMN_XCSTRINGARRAY_H
