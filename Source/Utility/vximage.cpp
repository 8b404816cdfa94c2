#include "ovwcmn/vximage.h"

#include "Platform/systemerror.h"

#include <cstddef>
#include <limits>

namespace platform = ovw::platform;

namespace {

constexpr std::uint32_t cnImageMark = 0x474D4956;
constexpr std::uint32_t cnPixelOffset = 64; // keeps the pixels aligned as the block is

/// Stands before the pixels.
struct ImageHead {
    std::uint32_t mark;
    std::int32_t width;
    std::int32_t height;
    std::int32_t bitCount;
};
static_assert(sizeof(ImageHead) <= cnPixelOffset);

constexpr bool isDepth(int bitCount) { return bitCount == 1 || bitCount == 8 || bitCount == 24 || bitCount == 32; }

constexpr std::int64_t rowBytesOf(std::int64_t width, int bitCount) { return (width * bitCount + 31) / 32 * 4; }

/// Bytes of the block that holds an image, or 0 when there can be no such image.
std::uint32_t blockBytes(int width, int height, int bitCount) {
    if (!isDepth(bitCount) || width <= 0 || height <= 0)
        return 0;
    const std::int64_t rowBytes = rowBytesOf(width, bitCount);
    constexpr std::int64_t limit = std::numeric_limits<std::uint32_t>::max() - std::int64_t{cnPixelOffset};
    if (rowBytes > std::numeric_limits<std::int32_t>::max() || rowBytes > limit / height)
        return 0;
    return static_cast<std::uint32_t>(rowBytes * height) + cnPixelOffset;
}

const ImageHead* headOf(VXHANDLE image) {
    if (!image || vxGetHandleSize(image) < cnPixelOffset)
        return nullptr;
    const auto* const head = reinterpret_cast<const ImageHead*>(image);
    const bool isImage =
        head->mark == cnImageMark && blockBytes(head->width, head->height, head->bitCount) == vxGetHandleSize(image);
    return isImage ? head : nullptr;
}

int failed(int code) {
    vxSetLastError(code);
    return code;
}

} // namespace

int vxImageCreate(int width, int height, int bitCount, VXHANDLE* image) {
    *image = nullptr;
    const std::uint32_t bytes = blockBytes(width, height, bitCount);
    if (bytes == 0)
        return failed(platform::cnErrorInvalidParameter);
    const VXHANDLE block = vxAlloc(bytes, 0, nullptr);
    if (!block)
        return failed(platform::cnErrorNotEnoughMemory);
    *reinterpret_cast<ImageHead*>(block) = {cnImageMark, width, height, bitCount};
    *image = block;
    return 0;
}

int vxImageLock(VXHANDLE image, VXIMAGELOCK* lock) {
    const ImageHead* const head = headOf(image);
    if (!head)
        return failed(platform::cnErrorInvalidHandle);
    auto* const pixels = static_cast<std::uint8_t*>(vxLock(image)) + cnPixelOffset;
    *lock = {pixels,
             head->width,
             head->height,
             head->bitCount,
             static_cast<std::int32_t>(rowBytesOf(head->width, head->bitCount)),
             head->bitCount <= 8 ? 1 : head->bitCount / 8};
    return 0;
}

void vxImageUnlock(VXHANDLE image) { vxUnlock(image); }
