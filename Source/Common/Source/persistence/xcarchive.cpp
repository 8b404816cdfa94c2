// The stream itself: mode, position, cache and sections. What is written in it stands in xcarchivevalues.cpp.

#include "ovwcmn/xcarchive.h"

#include "foundation/nomemory.h"
#include "ovwcmn/xcexception.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

using ovw::foundation::cnCodeFileFormat;
using ovw::foundation::cnCodeParameter;

namespace {

constexpr std::uint32_t cnMaxPosition = std::numeric_limits<std::uint32_t>::max();
constexpr std::uint32_t cnOrderBits = XCArchive::cnLittleEndian | XCArchive::cnBigEndian;
constexpr std::uint32_t cnLengthBytes = 4; // of a section
constexpr std::uint32_t cnCopyBytes = 1 << 16;
constexpr std::uint32_t cnLargePiece = 1 << 15;    // is read past the cache
constexpr std::uint32_t cnBetweenPieces = 1 << 12; // read ahead behind one: as a rule a few numbers before the next

} // namespace

XCArchive::XCArchive() = default;

XCArchive::~XCArchive() = default;

// ---- Mode -----------------------------------------------------------------------------------------------------------

void XCArchive::Init(std::uint32_t flags, std::uint32_t cacheSize) {
    m_mode = (flags & cnSaving ? cnSaving : cnLoading) | (flags & cnLittleEndian ? cnLittleEndian : cnBigEndian) |
             (flags & cnMultibyteText);
    m_extMode = 0;
    ClearCache();
    allocateCache(m_isCached ? cacheSize : 0);
}

void XCArchive::allocateCache(std::uint32_t size) {
    m_cacheSize = 0;
    m_cache.Free();
    if (size > 0)
        m_cache.Alloc(size, 0, 1);
    m_cacheSize = size;
}

int XCArchive::SetEndianMode(int order) {
    const std::uint32_t wanted = static_cast<std::uint32_t>(order) & cnOrderBits;
    const int before = GetEndianMode();
    if (wanted == cnLittleEndian || wanted == cnBigEndian)
        m_mode = (m_mode & ~cnOrderBits) | wanted;
    return before;
}

void XCArchive::restart(std::uint32_t length) {
    ClearCache();
    m_position = 0;
    m_length = length;
    m_sectionSizes.clear();
    m_sectionStarts.clear();
}

// ---- Position -------------------------------------------------------------------------------------------------------

std::uint32_t XCArchive::Seek(int offset, std::uint32_t origin) {
    const std::int64_t base = origin == 1 ? GetPosition() : 0;
    return seekTo(origin <= 1 ? base + offset : 0);
}

std::uint32_t XCArchive::seekTo(std::int64_t target) {
    if (IsSaving())
        DoFlush();
    if (IsLoading())
        target = std::min<std::int64_t>(target, m_length);
    if (target < 0 || target > cnMaxPosition)
        xcThrowError(cnCodeParameter);
    const std::uint32_t oldPosition = m_position;
    m_position = SeekSelf(static_cast<int>(static_cast<std::uint32_t>(target)), 0);
    m_length = std::max(m_length, m_position);
    if (IsLoading())
        moveInCache(oldPosition);
    return GetPosition();
}

void XCArchive::moveInCache(std::uint32_t oldPosition) {
    const std::int64_t index = std::int64_t{m_cacheIndex} + m_position - oldPosition;
    if (m_cacheState == CacheState::readAhead && index >= 0 && index < m_cacheFill)
        m_cacheIndex = static_cast<std::uint32_t>(index);
    else
        ClearCache();
}

// ---- Writing --------------------------------------------------------------------------------------------------------

void XCArchive::Write(const void* bytes, std::uint32_t size) {
    if (IsLoading() || size > cnMaxPosition - GetPosition())
        xcThrowError(cnCodeParameter);
    if (size == 0)
        return;
    if (m_isCached)
        WriteCache(bytes, size);
    else
        writeStore(bytes, size);
}

void XCArchive::writeStore(const void* bytes, std::uint32_t size) {
    m_position += WriteSelf(bytes, size);
    m_length = std::max(m_length, m_position);
}

void XCArchive::WriteCache(const void* bytes, std::uint32_t size) {
    if (m_cacheState == CacheState::readAhead)
        DoFlush();
    if (size > m_cacheSize - m_cacheIndex)
        DoFlush();
    if (size >= m_cacheSize)
        return writeStore(bytes, size); // it would only pass through
    std::memcpy(static_cast<unsigned char*>(m_cache) + m_cacheIndex, bytes, size);
    m_cacheIndex += size;
    m_cacheFill = m_cacheIndex;
    m_cacheState = CacheState::unwritten;
}

void XCArchive::DoFlush() {
    if (!m_isCached)
        return;
    if (m_cacheState == CacheState::unwritten && m_cacheFill > 0)
        writeStore(static_cast<unsigned char*>(m_cache), m_cacheFill);
    ClearCache();
}

void XCArchive::ClearCache() {
    m_cacheIndex = 0;
    m_cacheFill = 0;
    m_cacheState = CacheState::empty;
}

// ---- Reading --------------------------------------------------------------------------------------------------------

void XCArchive::Read(void* bytes, std::uint32_t size) {
    if (m_isCached)
        ReadCache(bytes, size);
    else
        m_position += ReadSelf(bytes, size);
}

void XCArchive::ReadCache(void* bytes, std::uint32_t size) {
    if (m_cacheState == CacheState::unwritten)
        DoFlush();
    if (m_length <= m_position)
        xcThrowError(cnCodeParameter);
    auto* to = static_cast<std::uint8_t*>(bytes);
    const bool isLarge = size >= std::min(m_cacheSize, cnLargePiece);
    while (size > 0) {
        const std::uint32_t done = isLarge && isCacheReadOut() ? readPastCache(to, size) : readFromCache(to, size);
        if (done == 0)
            xcThrowError(cnCodeParameter);
        m_position += done;
        to += done;
        size -= done;
    }
}

/// Some of the bytes at the position, as far as the cache holds them once it is not empty; 0 at the end. Leaves the
/// position to the caller.
std::uint32_t XCArchive::readFromCache(std::uint8_t* to, std::uint32_t size) {
    if (isCacheReadOut())
        fillCache(m_cacheState == CacheState::passedBy ? cnBetweenPieces : m_cacheSize);
    const std::uint32_t count = std::min(size, m_cacheFill - m_cacheIndex);
    if (count > 0)
        std::memcpy(to, static_cast<unsigned char*>(m_cache) + m_cacheIndex, count);
    m_cacheIndex += count;
    return count;
}

/// As readFromCache, for a large piece, whose bytes would only pass through the cache.
std::uint32_t XCArchive::readPastCache(std::uint8_t* to, std::uint32_t size) {
    ClearCache();
    if (m_length <= m_position)
        return 0;
    SeekSelf(static_cast<int>(m_position), 0);
    const std::uint32_t count = ReadSelf(to, std::min(size, m_length - m_position));
    m_cacheState = CacheState::passedBy;
    return count;
}

void XCArchive::LoadCache() { fillCache(m_cacheSize); }

/// Reads ahead, `most` bytes or what the cache has room for.
void XCArchive::fillCache(std::uint32_t most) {
    ClearCache();
    const std::uint32_t count = m_position < m_length ? std::min({m_length - m_position, m_cacheSize, most}) : 0;
    if (count == 0)
        return;
    SeekSelf(static_cast<int>(m_position), 0);
    m_cacheFill = ReadSelf(static_cast<unsigned char*>(m_cache), count);
    if (m_cacheFill > 0)
        m_cacheState = CacheState::readAhead;
}

// ---- Sections -------------------------------------------------------------------------------------------------------

void XCArchive::BeginSection() {
    ovw::foundation::orNoMemory([this] {
        m_sectionSizes.reserve(m_sectionSizes.size() + 1);
        m_sectionStarts.reserve(m_sectionStarts.size() + 1);
    });
    if (IsLoading())
        m_sectionSizes.push_back(readSectionLength());
    else
        *this << std::uint32_t{0}; // until EndSection knows the length
    m_sectionStarts.push_back(GetPosition());
}

/// Throws when the section would end behind what encloses it.
std::uint32_t XCArchive::readSectionLength() {
    RequireRemaining(cnLengthBytes);
    std::uint32_t length = 0;
    *this >> length;
    if (length > GetRemainingSize())
        xcThrowError(cnCodeFileFormat);
    return length;
}

void XCArchive::EndSection() {
    if (m_sectionStarts.empty())
        return;
    const std::uint32_t start = m_sectionStarts.back();
    if (IsLoading()) {
        const std::uint32_t rest = GetRemainingSectionSize();
        if (rest > 0)
            seekTo(std::int64_t{GetPosition()} + rest);
        if (!m_sectionSizes.empty())
            m_sectionSizes.pop_back();
    } else {
        endSavedSection(start);
    }
    m_sectionStarts.pop_back();
}

void XCArchive::endSavedSection(std::uint32_t start) {
    const std::uint32_t end = GetPosition();
    if (end < start)
        xcThrowError(cnCodeParameter); // somebody went back behind the section's beginning
    const std::uint32_t length = end - start;
    const std::uint32_t lengthPosition = start - cnLengthBytes;
    if (m_cacheState == CacheState::unwritten && lengthPosition >= m_position) {
        // Still in the cache: no need to send everything behind it to the store first.
        unsigned char* const field = static_cast<unsigned char*>(m_cache) + (lengthPosition - m_position);
        std::memcpy(field, &length, cnLengthBytes);
        if (m_mode & cnBigEndian)
            std::reverse(field, field + cnLengthBytes);
        return;
    }
    seekTo(lengthPosition);
    *this << length;
    seekTo(end);
}

void XCArchive::SeekSection() {
    const std::uint32_t length = readSectionLength();
    seekTo(std::int64_t{GetPosition()} + length);
}

void XCArchive::CopySection(XCArchive& src) {
    std::uint32_t left = 0;
    src >> left;
    src.RequireRemaining(left);
    *this << left;
    XCPointer buffer;
    if (left > 0)
        buffer.Alloc(std::min(left, cnCopyBytes), 0);
    while (left > 0) {
        const std::uint32_t count = std::min(left, cnCopyBytes);
        src.Read(buffer, count);
        Write(buffer, count);
        left -= count;
    }
}

std::uint32_t XCArchive::GetSectionSize() const { return m_sectionSizes.empty() ? 0 : m_sectionSizes.back(); }

std::uint32_t XCArchive::GetRemainingSectionSize() const {
    if (m_sectionSizes.empty())
        return 0;
    const std::uint64_t end = std::uint64_t{m_sectionStarts.back()} + m_sectionSizes.back();
    return end > GetPosition() ? static_cast<std::uint32_t>(end - GetPosition()) : 0;
}

std::uint32_t XCArchive::GetRemainingSize() const {
    const std::uint32_t inStream = GetLength() > GetPosition() ? GetLength() - GetPosition() : 0;
    return m_sectionSizes.empty() ? inStream : std::min(inStream, GetRemainingSectionSize());
}

void XCArchive::RequireRemaining(std::uint64_t size) const {
    if (size > GetRemainingSize())
        xcThrowError(cnCodeParameter);
}

void XCArchive::WriteSectionData(XCHandle& block) {
    const std::uint32_t size = block.IsValid() ? block.GetMemSize() : 0;
    *this << size;
    if (size > 0)
        Write(static_cast<unsigned char*>(block), size);
}

void XCArchive::ReadSectionData(XCHandle& block) {
    std::uint32_t size = 0;
    *this >> size;
    RequireRemaining(size);
    if (size == 0)
        return block.Free();
    XCHandle read; // nothing takes the block's place until it is whole
    read.Alloc(size, 0, 1);
    Read(static_cast<unsigned char*>(read), size);
    block = std::move(read);
}
