#ifndef OVWCMN_VXIMAGE_H
#define OVWCMN_VXIMAGE_H

/// @file
/// The utility library's images: plain pixels of 1, 8, 24 or 32 bits in one movable block. Classic offscreen images
/// stand on them. Nothing here throws: failures are answered by a Windows error code.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/vxwutl.h"

#include <cstdint>

/// What a locked image looks like. Rows lie top-down, each padded to whole 32 bits.
struct VXIMAGELOCK {
    std::uint8_t* base;         ///< the top row
    std::int32_t width;         ///< pixels
    std::int32_t height;        ///< pixels
    std::int32_t bitCount;      ///< bits a pixel
    std::int32_t rowBytes;      ///< bytes from one row to the next
    std::int32_t bytesPerPixel; ///< 1 for 1 and 8 bits
};

/// @name Images
/// An image is a movable block and freed by vxFree. Its block is larger than its pixels; it may not be resized.
/// @{
/// A new image, all bytes zero. 0, or 87 for a depth or size that cannot be, or 8 without memory; then *image is null.
OVWCMN_API int vxImageCreate(int width, int height, int bitCount, VXHANDLE* image);
/// Locks the block and tells where its pixels are; locks nest. 0, or 6 when the handle is null or holds no image.
OVWCMN_API int vxImageLock(VXHANDLE image, VXIMAGELOCK* lock);
/// Undoes one lock; harmless when there is none.
OVWCMN_API void vxImageUnlock(VXHANDLE image);
/// @}

#endif // OVWCMN_VXIMAGE_H
