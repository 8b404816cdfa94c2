#ifndef OVWCMN_XCOFFSCREENCURSOR_H
#define OVWCMN_XCOFFSCREENCURSOR_H

/// @file
/// One pixel of a classic image, read and written in any depth. Included by xcoffscreen.h.

#include "ovwcmn/ovwdefs.h"

#include <cstdint>

class XCOffscreen;

/// The channel bytes of one pixel, in memory.
struct VXCHANNELREFERENCES {
    /// @{ For reading and writing.
    std::uint8_t& red;
    std::uint8_t& green;
    std::uint8_t& blue;
    std::uint8_t& alpha;
    /// @}
};

/// Stands on one pixel of an image, which it does not own and which must stay locked while the cursor is used. Outside
/// the image it reads white and writes nothing. Throws nothing; belongs to the image's thread. Values: 1 bit 1 = ink,
/// 8 bits ink density, 24 bits 0x00BBGGRR, 32 bits 0xAABBGGRR.
class OVWCMN_API XCOffscreenCursor {
public:
    static const std::uint8_t cbBitArray[8];    ///< The bit of each pixel of a byte.
    static const std::uint8_t cbXorBitArray[8]; ///< All other bits.

    XCOffscreenCursor(XCOffscreen* image, int x, int y); ///< Anywhere, also outside the image.

    /// @{ Pixels of the image.
    int GetX() const { return m_x; }
    int GetY() const { return m_y; }
    /// @}
    /// First byte of the pixel; null outside the image.
    std::uint8_t* GetAddress() const { return m_pixel; }
    XCOffscreen* GetOffscreen() const { return m_image; } ///< the image it stands on

    /// @{ Movements, absolute, by a distance, and by one pixel; sums beyond 32 bits stop there.
    void MoveCursor(int x, int y);
    void MoveCursorX(int x);
    void MoveCursorY(int y);
    void OffsetCursor(int dx, int dy);
    void OffsetCursorX(int dx);
    void OffsetCursorY(int dy);
    void NextCursorX();
    void PrevCursorX();
    void NextCursorY() { OffsetCursorY(1); }
    void PrevCursorY() { OffsetCursorY(-1); }
    /// @}
    /// Finds the addresses again, after the image was locked anew.
    void ResetCursor();
    void ResetCursorY(); ///< the same
    /// @{ Inside the image, in both directions or one.
    int CursorInOffscreen() const { return CursorXInOffscreen() && CursorYInOffscreen(); }
    int CursorXInOffscreen() const;
    int CursorYInOffscreen() const;
    /// @}

    // ---- The pixel
    /// @{ White outside the image.
    std::uint8_t Get1BitPixel() const;
    std::uint8_t Get8BitPixel() const;
    std::uint32_t Get24BitPixel() const;
    std::uint32_t Get32BitPixel() const;
    /// @}
    /// 1 writes ink, anything else paper. Into 32 bits ink gets alpha 0, paper 255.
    void Set1BitPixel(const std::uint8_t& value);
    /// Into 32 bits, alpha becomes what the colours become.
    void Set8BitPixel(const std::uint8_t& density);
    /// @{ Nothing outside the image.
    void Set24BitPixel(const std::uint32_t& colour);
    void Set32BitPixel(const std::uint32_t& colour);
    /// @}

    /// @{ Channel bytes of a 24- or 32-bit pixel. A channel that the depth does not have is the pixel's first byte;
    /// outside the image, a byte of the cursor.
    std::uint8_t& GetRReference();
    std::uint8_t& GetGReference();
    std::uint8_t& GetBReference();
    std::uint8_t& GetAReference();
    VXCHANNELREFERENCES GetRGBAReference();
    /// @}

private:
    void findPixel();
    std::uint8_t& channel(int index);
    template <class Convert>
    auto read(Convert convert) const;
    template <class Convert>
    void write(Convert convert);

    XCOffscreen* m_image;
    int m_x;
    int m_y;
    int m_bit = 0;                   // of the pixel in its byte, counted from the highest; 1 bit only
    std::uint8_t* m_pixel = nullptr; // null outside the image
    std::uint8_t* m_row = nullptr;
    std::uint8_t m_outside[4] = {};
};

#endif // OVWCMN_XCOFFSCREENCURSOR_H
