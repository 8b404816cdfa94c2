#ifndef OVWCMN_XCSIMPLEIMAGE_H
#define OVWCMN_XCSIMPLEIMAGE_H

/// @file
/// A plain image in one block of memory, as brush tips and textures are sampled from.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/xchandle.h"

#include <cstdint>

class XCVOffscreen;

/// A top-down copy of a tiled image, rows without padding, in a memory block that it owns. 1- and 2-bit pixels take a
/// byte each (0 to 1, 0 to 3); the others lie as in the tiled image. Pixels are reached while an XCAutoLockSimpleImage
/// holds the image. Throws 8 when memory runs out. Several threads may read an image that is locked.
class OVWCMN_API XCSimpleImage {
public:
    XCSimpleImage() = default;
    /// Copies the pixels; the copy is not locked.
    XCSimpleImage(const XCSimpleImage& other);
    XCSimpleImage& operator=(const XCSimpleImage&) = delete;
    virtual ~XCSimpleImage() = default;

    /// @{ Pixels.
    int GetWidth() const { return m_width; }
    int GetHeight() const { return m_height; }
    /// @}
    /// Bits that a pixel takes here, at least 8.
    int GetBitCount() const { return m_bitCount > 8 ? m_bitCount : 8; }
    /// The depth of the tiled image; 0 for an image without pixels.
    int GetOrgBitCount() const { return m_bitCount; }
    /// Bytes of a pixel.
    int GetChannel() const { return m_bytesPerPixel; }
    /// First byte of a pixel of the locked image. Outside the image: four zero bytes, not to be written, or the nearest
    /// pixel where the border of that axis is protected.
    std::uint8_t* GetPixel(int x, int y) const {
        if (!isInside(x, m_width) || !isInside(y, m_height))
            return pixelBeyond(x, y);
        return pixelAt(x, y);
    }
    /// Non-zero: coordinates beyond that axis mean the nearest pixel.
    void SetProtectBorder(int x, int y) { m_protectBorderX = x, m_protectBorderY = y; }

    /// Becomes a copy of the tiled image, whose missing blocks read as zero bytes, on 32 bits as transparent white.
    void CopyFromOffscreen(XCVOffscreen* image);
    /// A new tiled image on the process-wide store; the caller owns it. Null when there are no pixels.
    XCVOffscreen* CopyToOffscreen();
    /// Replaces 32-bit pixels of exactly one colour; colours are 0xAABBGGRR.
    void ReplaceColor32Bit(std::uint32_t from, std::uint32_t to);

private:
    friend class XCAutoLockSimpleImage;
    friend class XCOffscreen; // which can become one

    static bool isInside(int v, int size) { return static_cast<std::uint32_t>(v) < static_cast<std::uint32_t>(size); }
    std::uint8_t* pixelAt(int x, int y) const {
        return m_pixels + static_cast<std::ptrdiff_t>(y) * m_rowBytes +
               static_cast<std::ptrdiff_t>(x) * m_bytesPerPixel;
    }
    std::uint8_t* pixelBeyond(int x, int y) const;
    void allocate(int bitCount, int width, int height);

    XCHandle m_memory;
    std::uint8_t* m_pixels = nullptr; // while locked
    int m_bitCount = 0;
    int m_width = 0;
    int m_height = 0;
    int m_rowBytes = 0;
    int m_bytesPerPixel = 1;
    int m_protectBorderX = 0;
    int m_protectBorderY = 0;
};

/// Keeps a simple image locked for a scope. The image must outlive the guard. Locking an image without pixels throws
/// 0x20010008 and holds nothing.
class OVWCMN_API XCAutoLockSimpleImage {
public:
    XCAutoLockSimpleImage() = default;
    explicit XCAutoLockSimpleImage(XCSimpleImage* image); ///< locks it; null locks nothing
    XCAutoLockSimpleImage(const XCAutoLockSimpleImage&) = delete;
    XCAutoLockSimpleImage& operator=(const XCAutoLockSimpleImage&) = delete;
    ~XCAutoLockSimpleImage();

    /// A lock held before ends first; null locks nothing.
    void LockImage(XCSimpleImage* image);

private:
    void unlock();

    XCSimpleImage* m_image = nullptr;
};

#endif // OVWCMN_XCSIMPLEIMAGE_H
