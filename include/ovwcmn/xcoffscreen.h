#ifndef OVWCMN_XCOFFSCREEN_H
#define OVWCMN_XCOFFSCREEN_H

/// @file
/// The classic image: plain pixels in one block of memory, with its own drawing operations.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/vximage.h"
#include "ovwcmn/wintypes.h"
#include "ovwcmn/xccolor.h"
#include "ovwcmn/xchandle.h"
#include "ovwcmn/xcoffscreencursor.h"

#include <cstdint>

class XCArchive;
class XCFont;
class XCSimpleImage;
class XCVOffscreen;

/// One run of similar pixels of a line, while an image is smoothed.
struct _LData {
    int start;            ///< the first pixel
    int end;              ///< behind the last pixel
    tagVXRGBCOLOR colour; ///< of its pixels
};

/// A raster image of 1, 8, 24 or 32 bits a pixel, top-down, its rows padded to 32 bits. 1 bit: 1 = ink, the first pixel
/// in the highest bit; 8 bits: ink density; 24 bits: bytes red, green, blue; 32 bits: alpha, red, green, blue. Colours
/// are 0xAABBGGRR. Owns its pixels; other images stay their owner's. Pixels are reached between Lock and Unlock:
/// drawing into an image that has none or is not locked does nothing, and images that are only read are locked by the
/// operation. Throws 8 when memory runs out and 0x20010008 for impossible arguments. One thread at a time.
class OVWCMN_API XCOffscreen {
public:
    XCOffscreen();
    /// Copies pixels and settings; the copy is not locked.
    XCOffscreen(const XCOffscreen& other);
    XCOffscreen& operator=(const XCOffscreen&) = delete;
    virtual ~XCOffscreen();

    // ---- Pixels and their memory
    /// A new image, filled with color when fill is 1, else zero bytes. What was there is destroyed first. After an
    /// error there are no pixels.
    void Create(int width, int height, int bitCount, std::uint32_t color, int fill);
    void Destroy(); ///< also ends every lock
    /// Takes over an image of the utility library. Throws 0x20010008 for any other block, which stays the caller's.
    void SetRTImage(VXHANDLE image);
    /// Locks nest. Locking an image without pixels throws 8.
    void Lock();
    /// Nothing when it is not locked.
    void Unlock();
    /// Locks not yet undone.
    int GetLockCount() const { return m_lockCount; }
    /// The top row; null unless locked.
    std::uint8_t* GetBaseAddress() const { return m_info.bits; }
    std::uint32_t GetBufferSize() const; ///< bytes of all rows; 0 without pixels
    /// @{ Pixels.
    int GetWidth() const { return m_info.width; }
    int GetHeight() const { return m_info.height; }
    /// @}
    int GetBitCount() const { return m_info.bitCount; } ///< 0 without pixels
    /// Bytes of a pixel, 1 for 1 and 8 bits.
    int GetPixelSize() const { return m_info.bytesPerPixel; }
    /// Bytes from one row to the next.
    int GetRowBytes() const { return m_info.rowBytes; }
    /// (0, 0, width, height).
    void GetRect(tagRECT& rect) const { rect = {0, 0, m_info.width, m_info.height}; }
    /// 1 inside the image.
    int PointInOffscreen(const int& x, const int& y) const {
        return x >= 0 && y >= 0 && x < m_info.width && y < m_info.height;
    }
    /// @{ Rounded up to a multiple of 32 or 64.
    static std::int64_t Align32Bit(int bits);
    static std::int64_t Align64Bit(int bits);
    /// @}
    /// Bytes of a row, of an image. Throw 0x20010008 for other depths, negative sizes and results beyond 32 bits.
    static std::uint32_t CalcRowLineBufferSize(int width, int bitCount);
    static std::uint32_t CalcBufferSize(int width, int height, int bitCount); ///< The same for a whole image.

    // ---- Settings
    /// @{ 0xAABBGGRR, or the high bytes of 16-bit channels.
    void SetForeColor(const std::uint32_t& color);
    void SetForeColor(tagVXRGBCOLOR16 color);
    std::uint32_t GetForeColor() const { return m_foreColor; }
    /// @}
    std::uint8_t Get1BitForeColor() const { return m_fore1Bit; } ///< ink for everything darker than half
    std::uint8_t Get8BitForeColor() const { return m_fore8Bit; } ///< 255 - (red + green + blue) / 3
    /// Cut to 0 to 255.
    void SetTransparency(int transparency);
    int GetTransparency() const { return m_transparency; } ///< 0 to 255
    /// @{ Kept for the caller.
    void SetMode(int mode) { m_mode = mode; }
    int GetMode() const { return m_mode; }
    void SetLayerKind(int kind) { m_layerKind = kind; }
    int GetLayerKind() const { return m_layerKind; }
    /// @}
    /// @{ The clip, which CopyEx keeps to: 0 none, 1 a rectangle, 2 the ink of a mask image, which is not owned. A
    /// ratio above 1 is that many mask pixels for one of this image; below -1, image pixels for one of the mask.
    void SetClipRect(const tagRECT& rect);
    void GetClipRect(tagRECT& rect) const { rect = m_clipRect; }
    void SetClipMask(XCOffscreen* mask, int offsetX, int offsetY, int ratio);
    void ResetClip();
    int GetClipMode() const { return m_clipMode; }
    /// @}

    /// @{ Values as XCOffscreenCursor has them; outside the image white is read and nothing written.
    std::uint8_t Get1BitPixel(const int& x, const int& y) { return XCOffscreenCursor(this, x, y).Get1BitPixel(); }
    std::uint8_t Get8BitPixel(const int& x, const int& y) { return XCOffscreenCursor(this, x, y).Get8BitPixel(); }
    std::uint32_t Get24BitPixel(const int& x, const int& y) { return XCOffscreenCursor(this, x, y).Get24BitPixel(); }
    std::uint32_t Get32BitPixel(const int& x, const int& y) { return XCOffscreenCursor(this, x, y).Get32BitPixel(); }
    void Set1BitPixel(const std::uint8_t& v, const int& x, const int& y) { cursorAt(x, y).Set1BitPixel(v); }
    void Set8BitPixel(const std::uint8_t& d, const int& x, const int& y) { cursorAt(x, y).Set8BitPixel(d); }
    void Set24BitPixel(const std::uint32_t& c, const int& x, const int& y) { cursorAt(x, y).Set24BitPixel(c); }
    void Set32BitPixel(const std::uint32_t& c, const int& x, const int& y) { cursorAt(x, y).Set32BitPixel(c); }
    /// @}

    // ---- The whole image
    /// Saves to or loads from the archive; reverse: as inverted bytes, for 1 and 8 bits. A failed load leaves no
    /// pixels. Throws 0x2001000B for a record that contradicts itself.
    void Serialize(XCArchive& archive, int reverse);
    /// Inverts every byte of the rows of a locked 1- or 8-bit image.
    void Reverse();
    /// The tight bounds of what is not white; 0 and an empty rectangle when there is nothing.
    int GetExtentRect(tagRECT& rect);
    /// @{ Other kinds of images. Becoming one, 2- and 16-bit pixels turn into 32 bits; the rest keep their depth. New
    /// tiled images are on the process-wide store and the caller's.
    void CopyFromOffscreen(XCVOffscreen* image);
    XCVOffscreen* CopyToOffscreen(); ///< Null without pixels.
    void CopyFromSimpleImage(XCSimpleImage* image);
    void CopyToSimpleImage(XCSimpleImage& image);
    /// @}

    // ---- Fills, in the fore colour (the row buffer's: 1 bit is ink only for black). Clipped to the image.
    void RectFill(const tagRECT& rect); ///< behind right and bottom is outside
    /// The same, widened to whole groups of 32 (1 bit) or 4 (8 bits) pixels.
    void RectFillScamp(const tagRECT& rect);
    /// From the cursor's pixel to the right; nothing for a length below 1.
    void FillLineRow(int length, const XCOffscreenCursor& cursor);
    void FillLineRow(int x0, int x1, int y); ///< Both ends included.
    /// The ellipse about the middle of the rectangle that reaches its corners' rows and columns; the last ones stay
    /// free where a side is odd.
    void ArcFill(int x0, int y0, int x1, int y1);
    /// Every pixel whose centre lies in the ellipse that fills the pixels x0 to x1 and y0 to y1, both included.
    void TrueArcFill(int x0, int y0, int x1, int y1);
    /// By the even-odd rule, as XCPolygon fills; 0 and nothing filled when a row crosses more than 255 sides.
    int FillPolygon(tagPOINT* points, int count);
    /// From the first to the last crossing of each row.
    int FillPolygonConvex(tagPOINT* points, int count);
    /// Fills the pixels that hang together with the seed, by their sides, and equal it. 1 and the bounds of what was
    /// filled in *changed (may be null); 0 for a seed outside or filled already.
    int SeedScanFill(const tagPOINT& seed, tagRECT* changed);
    /// The same, but sets ink in the mask, a locked 1-bit image; ink that is there stops it.
    int SeedScanFill1BitMask(XCOffscreen& mask, const tagPOINT& seed, tagRECT* changed);

    // ---- Lines, in the fore colour, by squares of width x width pixels
    void Line(int x0, int y0, int x1, int y1, int width); ///< From one end to the other, both included.
    void RectFrame(const tagRECT& rect, int width);       ///< Four lines along the first and last rows and columns.
    /// 32 bits: mixes the fore colour into one pixel by its alpha.
    void TransparentPlot(int x, int y);
    /// Draws text with the edges of its letters mixed in, clipped to rect; line breaks are CR, LF or both. format: a
    /// sum of DT_ constants. Returns the height of the text; 0 when there is no font, and nothing is drawn.
    int DrawString(const char* text, tagRECT rect, XCFont& font, int format);

    /// @{ Copies: w x h pixels from (sx, sy) of src to (x, y), clipped to both images. Other depths are converted
    /// (24-bit reading and writing). Within one image they are read before any is written. 1 when a pixel was copied.
    int Copy(int x, int y, int w, int h, XCOffscreen* src, int sx, int sy);
    /// @}
    /// Inside the clip of this image, and mixed by its transparency.
    int CopyEx(int x, int y, int w, int h, XCOffscreen* src, int sx, int sy);
    /// Widened to whole groups as RectFillScamp, where both images' pixels lie alike in them.
    int CopyScamp(int x, int y, int w, int h, XCOffscreen* src, int sx, int sy);
    /// Widened to whole bytes of 1-bit images, where both images' pixels lie alike in them.
    int CopyAlign8Bit(int x, int y, int w, int h, XCOffscreen* src, int sx, int sy);
    /// Where the mask, from (mx, my), has ink.
    int CopyMask(int x, int y, int w, int h, XCOffscreen* src, int sx, int sy, XCOffscreen* mask, int mx, int my);
    /// Without the pixels of the colour.
    int CopyMaskColor(int x, int y, int w, int h, XCOffscreen* src, int sx, int sy, std::uint32_t color);
    /// Without the pixels whose channels differ from the colour's by no more than margin.
    int CopyMaskColorEx(int x, int y, int w, int h, XCOffscreen* src, int sx, int sy, std::uint32_t color, int margin);
    /// For every i, lets (0, 0, width, height) moved by offsets[i] lie in rects[i]: cuts the area, moves the offsets to
    /// its corner. 0, and sizes of 0, when nothing is left.
    static int CalcSafetyArea(const tagRECT* rects, tagPOINT* offsets, int count, int& width, int& height);
    /// Widens rect to multiples of 8 columns, inside 0 to width.
    static void CalcAlign8BitRect(tagRECT& rect, int width);

    // ---- Mirrors and quarter turns
    static constexpr int cnFlipHorizontal = 0; ///< left and right change places
    static constexpr int cnFlipVertical = 1;   ///< top and bottom change places
    /// A mirrored image of the same depth, which the caller owns; null without pixels.
    XCOffscreen* CreateFlipImage(int direction);
    /// Puts a rectangle of src, mirrored in itself, in the same place of this image.
    void FlipImage(XCOffscreen& src, int x, int y, int w, int h, int direction);
    /// Puts w x h pixels from (sx, sy) of src, turned clockwise by 0, 90, 180 or 270 degrees, at (x, y).
    void RotationImage(XCOffscreen& src, int sx, int sy, int w, int h, int angle, int x, int y);
    /// Becomes src turned clockwise, then mirrored from left to right when flip is 1.
    void CreateRotationImage(XCOffscreen& src, int angle, int flip);

    // ---- Resolution: fits a rectangle of src into one of this image, clipped to both
    /// quality 1 is Low, 0 MostLow, others average by area and make 32-bit pixels opaque. Equal sizes are copied.
    void ChangeResolution(int dx, int dy, int dw, int dh, XCOffscreen* src, int sx, int sy, int sw, int sh,
                          int quality);
    /// Averages whole source pixels when reducing, takes the nearest when enlarging.
    void ChangeResolutionLow(int dx, int dy, int dw, int dh, XCOffscreen* src, int sx, int sy, int sw, int sh);
    /// Takes the nearest pixel.
    void ChangeResolutionMostLow(int dx, int dy, int dw, int dh, XCOffscreen* src, int sx, int sy, int sw, int sh);
    /// The mean, by area, of this image over w x h from (x, y), as a 24-bit value; transparent pixels have no part.
    std::uint32_t CalcPixelValue(double x, double y, double w, double h);
    /// The mean of 2 x 2 pixels, truncated.
    std::uint32_t CalcPixValueHalf(int x, int y);

    // ---- New 1-bit masks of this image's size, which the caller owns; null without pixels
    /// Of the pixels of any of the colours (8 bits a channel).
    XCOffscreen* ExtractionColor(const tagVXRGBCOLOR16* colors, int count);
    /// The same where mask (may be null) has ink; Ex: with channels that may differ by margin.
    XCOffscreen* ExtractionColorMask(const tagVXRGBCOLOR16* colors, int count, XCOffscreen* mask);
    /// With channels that may differ by margin.
    XCOffscreen* ExtractionColorMaskEx(const tagVXRGBCOLOR16* colors, int count, XCOffscreen* mask, int margin);
    /// Of all pixels that are not white.
    XCOffscreen* CreateMask();

    // ---- Smoothing
    /// Takes the staircase out of line art, on 24 and 32 bits; nothing on other depths. area null: the whole image,
    /// else it and one pixel around it. The rest may be null: two 32-bit images of at least this size, white with alpha
    /// 0, and tables of max(width, height) entries, to be used again from call to call.
    void DoSmoothing(tagRECT* area, XCOffscreen* work1, XCOffscreen* work2, _LData (*runs)[][3], int (*runIndex)[][3]);

private:
    /// What the image is made of.
    struct Info {
        std::uint32_t size = 76;      // of the record, as older images have it
        std::uint8_t* bits = nullptr; // while locked
        int width = 0;
        int height = 0;
        int bitCount = 0;
        int rowBytes = 0;
        int bytesPerPixel = 0;
        // Offsets in a pixel.
        int alphaIndex = 0;
        int redIndex = 0;
        int greenIndex = 0;
        int blueIndex = 0;
        VXIMAGELOCK lock = {};
        std::uint8_t* line = nullptr; // while locked
    };
    friend class XCOffscreenCursor;

    XCOffscreenCursor cursorAt(int x, int y) { return XCOffscreenCursor(this, x, y); }
    void adopt(VXHANDLE image);
    void Read(XCArchive& archive, int reverse);
    void Write(XCArchive& archive, int reverse);
    const std::uint8_t* foreRow();
    int copyWidened(int x, int y, int w, int h, XCOffscreen* src, int sx, int sy, int group);
    bool isInClip(int x, int y) const;
    template <class Fit>
    void fitInto(int dx, int dy, int dw, int dh, XCOffscreen* src, int sx, int sy, int sw, int sh, Fit fit);
    void FillLineRowForPolygon(int x0, int x1, int y);
    int fillPolygon(const tagPOINT* points, int count, bool convex);
    // Lengths and positions between this image and the clip mask.
    std::int64_t ClipMaskToOffscreen(int v) const;
    std::int64_t ClipMaskToOffscreenX(int v) const;
    std::int64_t ClipMaskToOffscreenY(int v) const;
    std::int64_t OffscreenToClipMask(std::int64_t v) const;
    std::int64_t OffscreenToClipMaskX(int v) const;
    std::int64_t OffscreenToClipMaskY(int v) const;

    XCHandle m_image;
    XCHandle m_line; // a row of the fore colour
    Info m_info;
    int m_lockCount = 0;
    std::uint32_t m_foreColor = 0;
    std::uint8_t m_fore1Bit = 1;
    std::uint8_t m_fore8Bit = 255;
    int m_foreChanged = 1; // the row buffer does not hold the fore colour
    int m_transparency = 255;
    double m_alphaRate = 1.0;
    double m_alphaRest = 0.0;
    int m_mode = 0;
    int m_layerKind = 0;
    int m_clipMode = 0;
    tagRECT m_clipRect = {};
    XCOffscreen* m_clipMask = nullptr;
    int m_clipMaskOffsetX = 0;
    int m_clipMaskOffsetY = 0;
    int m_clipMaskRatio = 1;
};

#endif // OVWCMN_XCOFFSCREEN_H
