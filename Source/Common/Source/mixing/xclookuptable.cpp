#include "ovwcmn/xclookuptable.h"

#include <algorithm>
#include <cstddef>

namespace {

constexpr int cnType8Bit = 1;
constexpr int cnType16Bit = 2;
constexpr std::size_t cnEntries8 = 256;
constexpr std::size_t cnEntries16 = 65536;

constexpr std::size_t bytesOf(int type) {
    return type == cnType16Bit ? cnEntries16 * sizeof(std::uint16_t) : cnEntries8;
}

/// Calls work(entries, count) with the entries of a table of this type as they are stored.
template <class Work>
void withEntries(int type, void* memory, Work work) {
    if (type == cnType16Bit)
        work(static_cast<std::uint16_t*>(memory), cnEntries16);
    else
        work(static_cast<std::uint8_t*>(memory), cnEntries8);
}

} // namespace

XCLookUpTable::XCLookUpTable(const XCLookUpTable& src) : XCPointer() { Copy(src); }

XCLookUpTable& XCLookUpTable::operator=(const XCLookUpTable& src) {
    Copy(src);
    return *this;
}

void XCLookUpTable::Create(int type) {
    Destroy();
    Alloc(static_cast<std::uint32_t>(bytesOf(type)), 1, 1);
    m_type = type;
    Init();
}

void XCLookUpTable::Destroy() {
    Free();
    m_type = 0;
}

// The memory can be changed through the base class.
bool XCLookUpTable::hasEntries() const { return IsValid() && GetMemSize() >= bytesOf(m_type); }

void XCLookUpTable::Init() {
    if (!hasEntries())
        return;
    withEntries(m_type, *this, []<class Entry>(Entry* entries, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i)
            entries[i] = static_cast<Entry>(i);
    });
}

std::uint8_t* XCLookUpTable::Get32BitTable() const {
    return m_type == cnType8Bit && hasEntries() ? static_cast<std::uint8_t*>(static_cast<void*>(*this)) : nullptr;
}

std::uint16_t* XCLookUpTable::Get64BitTable() const {
    return m_type == cnType16Bit && hasEntries() ? static_cast<std::uint16_t*>(static_cast<void*>(*this)) : nullptr;
}

void XCLookUpTable::Reverse(int mirror, int invert) {
    if (!hasEntries())
        return;
    withEntries(m_type, *this, [mirror, invert]<class Entry>(Entry* entries, std::size_t count) {
        if (mirror)
            std::reverse(entries, entries + count);
        if (invert) {
            for (std::size_t i = 0; i < count; ++i)
                entries[i] = static_cast<Entry>(count - 1 - entries[i]);
        }
    });
}

void XCLookUpTable::Copy(const XCLookUpTable& src) {
    if (this == &src)
        return;
    if (!src.hasEntries()) {
        Destroy();
        return;
    }
    if (!hasEntries() || m_type != src.m_type)
        Create(src.m_type);
    Copy(static_cast<const XCPointer&>(src), static_cast<std::uint32_t>(bytesOf(m_type)), 0, 0);
}

void XCLookUpTable::Merge(XCLookUpTable& other) {
    if (!other.hasEntries())
        return;
    // A copy, because a table may be merged with itself.
    const XCLookUpTable second(other);
    if (!hasEntries() || m_type != second.m_type)
        Create(second.m_type);
    withEntries(m_type, *this, [&second]<class Entry>(Entry* entries, std::size_t count) {
        const auto* const mapped = static_cast<const Entry*>(second.GetPointer());
        for (std::size_t i = 0; i < count; ++i)
            entries[i] = mapped[entries[i]];
    });
}

void XCLookUpTable::Merge(XCLookUpTable& first, XCLookUpTable& second) {
    if (this == &second) {
        XCLookUpTable kept(second);
        Copy(first);
        Merge(kept);
        return;
    }
    Copy(first);
    Merge(second);
}
