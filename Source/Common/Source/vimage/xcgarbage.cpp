#include "ovwcmn/xcswap.h"

namespace {

constexpr std::size_t cnBatchExtents = 256;

} // namespace

XCGarbageBlock::XCGarbageBlock(std::uint64_t begin, std::uint64_t end, std::uint64_t size)
    : m_nBegin(begin), m_nEnd(end), m_nSize(size) {}

XCGarbageBlock::RequestType XCGarbageBlock::Request(std::uint64_t* position, std::uint64_t size) {
    if (m_nSize < size)
        return REQUEST_TOO_SMALL;
    *position = m_nBegin;
    if (m_nSize == size)
        return REQUEST_EXACT;
    m_nBegin += size;
    m_nSize -= size;
    return REQUEST_SPLIT;
}

void XCGarbageBlock::Resize(std::uint64_t grow) {
    m_nEnd += grow;
    m_nSize += grow;
}

void XCGarbageBlock::ResizeForward(std::uint64_t grow) {
    m_nBegin -= grow;
    m_nSize += grow;
}

bool XCGarbageBlock::operator==(const XCGarbageBlock& other) const {
    return m_nBegin == other.m_nBegin && m_nEnd == other.m_nEnd && m_nSize == other.m_nSize;
}

XCGarbage::XCGarbage() = default;

XCGarbage::~XCGarbage() = default;

void XCGarbage::Create(std::uint32_t size) {
    Destroy();
    if (size > 0)
        append({0, size, size});
}

void XCGarbage::Destroy() {
    m_arrExtent.clear();
    m_arrSpare.clear();
    m_arrBatch.clear();
}

int XCGarbage::Request(std::uint64_t* position, std::uint64_t size) {
    for (std::size_t i = 0; i < m_arrExtent.size(); ++i) {
        const XCGarbageBlock::RequestType type = m_arrExtent[i]->Request(position, size);
        if (type == XCGarbageBlock::REQUEST_EXACT)
            removeAt(i);
        if (type != XCGarbageBlock::REQUEST_TOO_SMALL)
            return 1;
    }
    return 0;
}

void XCGarbage::Add(std::uint64_t begin, std::uint64_t end, std::uint64_t size) {
    XCGarbageBlock merged(begin, end, size);
    bool hasFront = false, hasBack = false;
    for (std::size_t i = 0; i < m_arrExtent.size() && !(hasFront && hasBack);) {
        const XCGarbageBlock& extent = *m_arrExtent[i];
        if (extent.GetEndPos() == begin) {
            merged.ResizeForward(extent.GetSize());
            hasFront = true;
        } else if (extent.GetBeginPos() == end) {
            merged.Resize(extent.GetSize());
            hasBack = true;
        } else {
            ++i;
            continue;
        }
        removeAt(i);
    }
    append(merged);
}

void XCGarbage::Enlarge(std::uint32_t grow, std::uint64_t oldEnd) {
    for (XCGarbageBlock* extent : m_arrExtent) {
        if (extent->GetEndPos() == oldEnd) {
            extent->Resize(grow);
            return;
        }
    }
    append({oldEnd, oldEnd + grow, grow});
}

XCGarbageBlock* XCGarbage::CreateBlock() {
    if (m_arrSpare.empty()) {
        auto batch = std::make_unique<XCGarbageBlock[]>(cnBatchExtents);
        m_arrBatch.reserve(m_arrBatch.size() + 1);
        // With room for every extent there is, giving one back never allocates.
        m_arrSpare.reserve((m_arrBatch.size() + 1) * cnBatchExtents);
        for (std::size_t i = cnBatchExtents; i-- > 0;)
            m_arrSpare.push_back(&batch[i]);
        m_arrBatch.push_back(std::move(batch));
    }
    XCGarbageBlock* const block = m_arrSpare.back();
    m_arrSpare.pop_back();
    *block = {};
    return block;
}

void XCGarbage::append(const XCGarbageBlock& extent) {
    if (m_arrExtent.size() == m_arrExtent.capacity())
        m_arrExtent.reserve(m_arrExtent.size() + cnBatchExtents);
    XCGarbageBlock* const block = CreateBlock();
    *block = extent;
    m_arrExtent.push_back(block);
}

void XCGarbage::removeAt(std::size_t index) {
    m_arrSpare.push_back(m_arrExtent[index]);
    m_arrExtent.erase(m_arrExtent.begin() + static_cast<std::ptrdiff_t>(index));
}
