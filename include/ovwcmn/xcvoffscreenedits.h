#ifndef OVWCMN_XCVOFFSCREENEDITS_H
#define OVWCMN_XCVOFFSCREENEDITS_H

/// @file
/// Operations on whole tiled images and on rectangles of them. Part of XCVOffscreen.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/wintypes.h"
#include "ovwcmn/xcgeometry.h"
#include "ovwcmn/xcvoffscreeninterface.h"

#include <cstdint>

class XCVOffPixelMask;
class XCVOffPixelMixer;
class XCVOffscreen;

/// The operations that need of an image only what everybody may ask of it. They lock the images they get for their
/// duration unless a line says otherwise, pass over pixels outside the images, and cost what the existing blocks cost.
/// Other images belong to the caller and to the same thread. Failures of the store are thrown as XCException, with all
/// locks released; what was changed by then stays changed. Colours are 0xAABBGGRR.
class OVWCMN_API XCVOffscreenEdits : public XCVOffscreenInterface {
public:
    // ---- Extents
    int GetExtentRect(tagRECT& out, tagRECT* limit, int useStored) override;
    /// The bounds of the existing blocks, by whole blocks, so that they may reach beyond the image; 0 and an empty
    /// rectangle when there is none.
    int GetExtentBlock(tagRECT& out) const;
    /// Whether r, or the image, has no visible pixel; existing blocks of 24-bit images are never empty.
    int IsExtentEmpty(const XCRect& r);
    int IsExtentEmpty(); ///< Whether the image has no visible pixel.
    void Optimize() override;
    void OptimizeBlock(tagRECT r) override;

    // ---- Lines
    void DrawSegment(int x1, int y1, int x2, int y2, int width, std::uint32_t colour, int behind,
                     int fitWidth) override;
    void DrawSegment2(int x1, int y1, int x2, int y2, int width, std::uint32_t colour, int behind,
                      int fitWidth) override;

    // ---- Edits of every pixel. Blocks in which nothing changes do not count as edited.
    /// 32 bits: makes the pixels of that red, green and blue transparent. Other depths: nothing.
    void ClearAlpha(std::uint32_t colour);
    /// 24 and 32 bits: a transparent oldColour stands for every transparent pixel. Missing blocks stay missing.
    void ReplaceColor(std::uint32_t newColour, std::uint32_t oldColour);

    // ---- Flood fill
    /// Gives the pixels around seed that are connected with it, sideways or up and down, and that source has in the
    /// seed's colour, give or take margin in each byte, the value of colour; second narrows the region where source has
    /// 1 or 24 bits. Pixel (x, y) belongs to source's (x - offset.x, y - offset.y); source null: second takes its
    /// place. changed becomes the explored rows and columns, *count (may be null) the number of pixels written.
    /// abortable 1: asks XCAbort, and a cancel throws 0x20010004 with both completed. 0 without a change when the seed
    /// lies outside image or clip or is filled already. A 24-bit source fills up to the edges of this image, whatever
    /// clip is.
    int FloodFill(XCRect& changed, const XCPoint& seed, std::uint32_t colour, XCVOffscreen* source,
                  XCVOffscreen* second, const XCPoint& offset, const XCRect& clip, int margin, int* count,
                  int abortable);
    /// @{ The fill by values of one depth, whatever the images' depths are; 0 without dest or source.
    static int FloodFillFrom1Bit(XCVOffscreen* dest, XCRect& changed, const XCPoint& seed, std::uint32_t colour,
                                 XCVOffscreen* source, XCVOffscreen* second, const XCPoint& offset, const XCRect& clip,
                                 int* count, int abortable);
    static int FloodFillFrom2Bit(XCVOffscreen* dest, XCRect& changed, const XCPoint& seed, std::uint32_t colour,
                                 XCVOffscreen* source, const XCPoint& offset, const XCRect& clip, int* count,
                                 int abortable);
    static int FloodFillFrom8Bit(XCVOffscreen* dest, XCRect& changed, const XCPoint& seed, std::uint32_t colour,
                                 XCVOffscreen* source, const XCPoint& offset, const XCRect& clip, int margin,
                                 int* count, int abortable);
    static int FloodFillFrom8BitNoMargin(XCVOffscreen* dest, XCRect& changed, const XCPoint& seed, std::uint32_t colour,
                                         XCVOffscreen* source, const XCPoint& offset, const XCRect& clip, int* count,
                                         int abortable);
    static int FloodFillFrom16Bit(XCVOffscreen* dest, XCRect& changed, const XCPoint& seed, std::uint32_t colour,
                                  XCVOffscreen* source, const XCPoint& offset, const XCRect& clip, int margin,
                                  int* count, int abortable);
    static int FloodFillFrom16BitNoMargin(XCVOffscreen* dest, XCRect& changed, const XCPoint& seed,
                                          std::uint32_t colour, XCVOffscreen* source, const XCPoint& offset,
                                          const XCRect& clip, int* count, int abortable);
    static int FloodFillFrom32Bit(XCVOffscreen* dest, XCRect& changed, const XCPoint& seed, std::uint32_t colour,
                                  XCVOffscreen* source, const XCPoint& offset, const XCRect& clip, int margin,
                                  int* count, int abortable);
    static int FloodFillFrom32BitNoMargin(XCVOffscreen* dest, XCRect& changed, const XCPoint& seed,
                                          std::uint32_t colour, XCVOffscreen* source, const XCPoint& offset,
                                          const XCRect& clip, int* count, int abortable);
    static int FloodFillFromGeneric(XCVOffscreen* dest, XCRect& changed, const XCPoint& seed, std::uint32_t colour,
                                    XCVOffscreen* source, XCVOffscreen* second, const XCPoint& offset, int margin,
                                    int* count, int abortable);
    /// @}

    // ---- Backgrounds and conversions. w x h from (x, y).
    /// Puts a checkerboard behind the pixels of rect, which become opaque; 16 and 32 bits. Squares have 4 pixels when
    /// cell is 4, else 8; colour2 is paled halfway to white unless it is colour1. Missing blocks only with allBlocks.
    void RenderBackground(const XCRect& rect, std::uint32_t colour1, std::uint32_t colour2, int allBlocks, int cell);
    /// The same over the pixels.
    void RenderBackgroundFill(const XCRect& rect, std::uint32_t colour1, std::uint32_t colour2, int allBlocks,
                              int cell);
    /// 2, 16 and 32 bits: makes transparent and partly transparent pixels opaque, over white where mask, of at least 8
    /// bits, has an even value above 0 in its first byte, over black where it is odd.
    void ReverseImage(XCVOffscreen* mask, int x, int y, int w, int h);
    /// Stores pixels of src, from (sx, sy), as transparent, white or black by ordered dither; mode 0 dithers only where
    /// 16- and 32-bit pixels are neither nearly transparent nor nearly opaque. reverse exchanges black with the rest.
    /// What src has in missing blocks is left out.
    void Monochromic(int dx, int dy, int w, int h, XCVOffscreen* src, int sx, int sy, int reverse, int mode);
    /// Stores the darkness of pixels of src as densities, with reverse their lightness; into 16 bits it is Copy. An
    /// 8-bit image takes the greys of the same place without coverage or alpha, every other way goes over black.
    void Grayish(int dx, int dy, int w, int h, XCVOffscreen* src, int sx, int sy, int reverse);
    /// The number of Get24BitColor's values, at most 257; -1 unless the image has 24 or 32 bits.
    int GetUseColorCount();

    // ---- Round shapes; clip null: the whole image. Nothing is drawn outside the image.
    /// An outline, one pixel wide, where the mask (may be null) is free. The mixer paints into this image, which the
    /// caller locks for editing; the points on the axes and diagonals are mixed more than once.
    void Circle(int cx, int cy, int r, int unused, XCVOffPixelMixer* mixer, XCVOffPixelMask* mask, const tagRECT* clip,
                std::uint8_t* unusedToo);
    /// A disc of diameter d with its left-top corner at (x, y), d + 1 pixels wide up to d = 3. Modes, mask and screen
    /// (16 x 16 thresholds) are those of FillLineRowForPolygon; the caller locks both images.
    void CircleFill(int x, int y, int d, const std::uint32_t& colour, int mode, XCVOffscreen* maskImage,
                    const tagPOINT& maskOffset, const tagRECT* clip, std::uint8_t* pattern, int patternLevel);
    /// The ellipse that touches the pixels x1 <= x2 and y1 <= y2. Locks for editing.
    void ArcFill(int x1, int y1, int x2, int y2, std::uint32_t colour, const tagRECT* clip);

    // ---- Compositing
    /// Mixes the mixer's colour into the pixels of src, w x h from (sx, sy), weighted by alpha's ink, and stores them
    /// from (dx, dy) of this image, for which the mixer is set up. Nothing happens unless alpha has 8 bits and src's
    /// size and resolution. Locks all three.
    void CompositAlpha(int dx, int dy, int w, int h, XCVOffscreen* src, XCVOffscreen* alpha, int sx, int sy,
                       XCVOffPixelMixer* mixer);

protected:
    ~XCVOffscreenEdits() override = default;

private:
    friend class XCVOffscreen; // the only class that derives from it
    XCVOffscreenEdits() = default;

    XCVOffscreen& image();
};

#endif // OVWCMN_XCVOFFSCREENEDITS_H
