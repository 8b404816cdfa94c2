#include "ovwcmn/xcsimpleimage.h"

#include "ovwcmn/xcexception.h"
#include "ovwcmn/xcvirtualmemory.h"
#include "ovwcmn/xcvoffscreen.h"
#include "ovwcmn/xcvoffscreenlock.h"
#include "vimage/blockparts.h"
#include "vimage/withformat.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>

using namespace ovw::vimage;

namespace {

std::uint8_t s_dummyPixel[4] = {}; // never written

/// The bytes of a pixel that a missing block stands for.
template <class Format>
constexpr typename Format::Value blankPixel() {
    if constexpr (Format::cnBits == Rgba32::cnBits)
        return Rgba32::ofColour(cnTransparentWhite);
    else
        return {};
}

template <class Format>
constexpr bool isPacked() {
    return Format::cnBits < 8;
}

/// Calls visit(address, mask) for each pixel of a row of packed pixels.
template <class Format, class Visit>
void forEachPacked(std::uint8_t* row, int x, int count, Visit visit) {
    std::uint8_t* address = row + (x * Format::cnBits >> 3);
    auto mask = static_cast<std::uint8_t>(Format::cnFirstMask >> (x * Format::cnBits & 7));
    for (int i = 0; i < count; ++i, Format::stepForward(address, mask))
        visit(address, mask);
}

/// Pixels x to x + count - 1 of a row of block memory, out to plain pixels.
template <class Format>
void unpackRow(std::uint8_t* plain, std::uint8_t* row, int x, int count) {
    if constexpr (isPacked<Format>())
        forEachPacked<Format>(row, x, count, [&plain](const std::uint8_t* address, std::uint8_t mask) {
            *plain++ = Format::load(address, mask);
        });
    else
        std::memcpy(plain, row + x * Format::cnBytes, static_cast<std::size_t>(count) * Format::cnBytes);
}

template <class Format>
void packRow(const std::uint8_t* plain, std::uint8_t* row, int x, int count) {
    if constexpr (isPacked<Format>())
        forEachPacked<Format>(row, x, count, [&plain](std::uint8_t* address, std::uint8_t mask) {
            Format::store(address, mask, *plain++);
        });
    else
        std::memcpy(row + x * Format::cnBytes, plain, static_cast<std::size_t>(count) * Format::cnBytes);
}

/// Whether a row of plain pixels is what a missing block stands for. On 24 bits nothing is: missing blocks read white.
template <class Format>
bool isRowBlank(const std::uint8_t* plain, int count) {
    if constexpr (Format::cnBits == Rgb24::cnBits)
        return false;
    const auto blank = blankPixel<Format>();
    const auto* const blankBytes = reinterpret_cast<const std::uint8_t*>(&blank);
    for (int i = 0; i < count; ++i)
        if (std::memcmp(plain + i * sizeof blank, blankBytes, sizeof blank) != 0)
            return false;
    return true;
}

} // namespace

XCSimpleImage::XCSimpleImage(const XCSimpleImage& other)
    : m_memory(other.m_memory), m_bitCount(other.m_bitCount), m_width(other.m_width), m_height(other.m_height),
      m_rowBytes(other.m_rowBytes), m_bytesPerPixel(other.m_bytesPerPixel), m_protectBorderX(other.m_protectBorderX),
      m_protectBorderY(other.m_protectBorderY) {}

std::uint8_t* XCSimpleImage::pixelBeyond(int x, int y) const {
    const bool hasX = isInside(x, m_width) || (m_protectBorderX && m_width > 0);
    const bool hasY = isInside(y, m_height) || (m_protectBorderY && m_height > 0);
    if (!hasX || !hasY)
        return s_dummyPixel;
    return pixelAt(std::clamp(x, 0, m_width - 1), std::clamp(y, 0, m_height - 1));
}

/// Takes memory first: an image that cannot get it stays as it is.
void XCSimpleImage::allocate(int bitCount, int width, int height) {
    const int bytesPerPixel = bitCount <= 8 ? 1 : bitCount / 8;
    const std::int64_t rowBytes = std::int64_t{width} * bytesPerPixel;
    if (rowBytes > std::numeric_limits<std::int32_t>::max() ||
        (height > 0 && rowBytes > std::numeric_limits<std::uint32_t>::max() / height))
        xcThrowError(ovw::foundation::cnCodeNoMemory);
    XCHandle memory;
    if (const auto bytes = static_cast<std::uint32_t>(rowBytes * height); bytes > 0)
        memory.Alloc(bytes);
    m_memory = std::move(memory);
    m_pixels = nullptr;
    m_bitCount = bitCount;
    m_width = width;
    m_height = height;
    m_rowBytes = static_cast<int>(rowBytes);
    m_bytesPerPixel = bytesPerPixel;
}

void XCSimpleImage::CopyFromOffscreen(XCVOffscreen* image) {
    if (!image)
        return;
    const XCVOffscreenAutoLock readLock(image, 0);
    const XCVOffscreenEditLock noNewBlocks(image);
    allocate(image->GetDepth(), image->GetWidth(), image->GetHeight());
    if (!m_memory.IsValid())
        return;
    const XCAutoLockSimpleImage lock(this);
    withFormat(m_bitCount, [this, image]<class Format>() {
        using Plain = ByteLayout<typename Format::Value>;
        for (int y = 0; y < m_height; ++y)
            Plain::fillRow(pixelAt(0, y), 0, m_width, blankPixel<Format>());
        forEachPart(*image, image->GetRect(), [this](std::uint8_t* base, const XCRect& part) {
            for (int y = part.top; y < part.bottom; ++y)
                unpackRow<Format>(pixelAt(part.left, y), rowOf<Format>(base, y), part.left & cnBlockMask, part.Width());
        });
    });
}

XCVOffscreen* XCSimpleImage::CopyToOffscreen() {
    std::unique_ptr<XCVOffscreen> image(XCVOffscreen::CreateOffscreen(m_bitCount));
    if (!image)
        return nullptr;
    image->Create(xcGetVirtualMemory(), m_width, m_height, 0);
    if (!m_memory.IsValid())
        return image.release();
    const XCAutoLockSimpleImage lock(this);
    const XCVOffscreenAutoLock writeLock(image.get(), 1);
    withFormat(m_bitCount, [this, &image]<class Format>() {
        XCBlockGetter blocks(image.get(), image->GetRect(), 1);
        XCRect part;
        while (blocks.GetNextBlock(part)) {
            bool isBlank = true;
            for (int y = part.top; isBlank && y < part.bottom; ++y)
                isBlank = isRowBlank<Format>(pixelAt(part.left, y), part.Width());
            if (isBlank)
                continue;
            image->MoveCursor(part.left, part.top);
            for (int y = part.top; y < part.bottom; ++y)
                packRow<Format>(pixelAt(part.left, y), rowOf<Format>(image->GetBaseAddress(), y), 0, part.Width());
        }
    });
    return image.release();
}

void XCSimpleImage::ReplaceColor32Bit(std::uint32_t from, std::uint32_t to) {
    if (m_bitCount != Rgba32::cnBits || !m_memory.IsValid())
        return;
    const XCAutoLockSimpleImage lock(this);
    for (int y = 0; y < m_height; ++y)
        Rgba32::changeRow(pixelAt(0, y), 0, m_width, [from, to](Rgba32::Value pixel) {
            return Rgba32::colourOf(pixel) == from ? Rgba32::ofColour(to) : pixel;
        });
}

XCAutoLockSimpleImage::XCAutoLockSimpleImage(XCSimpleImage* image) { LockImage(image); }

XCAutoLockSimpleImage::~XCAutoLockSimpleImage() { unlock(); }

void XCAutoLockSimpleImage::LockImage(XCSimpleImage* image) {
    unlock();
    if (!image)
        return;
    image->m_pixels = static_cast<std::uint8_t*>(image->m_memory.Lock());
    m_image = image;
}

void XCAutoLockSimpleImage::unlock() {
    if (!m_image)
        return;
    m_image->m_memory.Unlock();
    if (m_image->m_memory.GetLockCount() == 0)
        m_image->m_pixels = nullptr;
    m_image = nullptr;
}
