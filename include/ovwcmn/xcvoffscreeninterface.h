#ifndef OVWCMN_XCVOFFSCREENINTERFACE_H
#define OVWCMN_XCVOFFSCREENINTERFACE_H

/// @file
/// The operations of a tiled image that depend on its depth or that a kind of image may replace. Part of XCVOffscreen.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/wintypes.h"
#include "ovwcmn/xcgeometry.h"
#include "ovwcmn/xcvoffscreengrid.h"

#include <cstdint>

class XCVOffscreen;
class XCVirtualMemory;

/// How ChangeResolution samples.
enum CHANGE_RESOLUTION_MODE : std::int32_t {
    CHANGE_RESOLUTION_LOW = 0,  ///< Whole source pixels, averaged or repeated.
    CHANGE_RESOLUTION_HIGH = 1, ///< Exact halves and quarters, else averages weighted by area.
};

/// How one destination column or row covers source pixels: first to first + count, of which those between the two ends
/// weigh 1.
struct _XCRESOLUTIONTABLE {
    int start;          ///< the first source pixel
    int end;            ///< the last one's place
    int count;          ///< end - start
    double firstWeight; ///< of pixel start
    double lastWeight;  ///< of pixel start + count; 0 when count is 0
};

/// The virtual operations of XCVOffscreen in the order that the interface fixes; XCVOffscreen tells of ownership,
/// errors and threads. Here an operation that depends on the depth answers 0 and does nothing.
class OVWCMN_API XCVOffscreenInterface : public XCVOffscreenGrid {
public:
    virtual ~XCVOffscreenInterface() = default;

protected:
    virtual void Initialize() = 0; ///< Settings and counters as in a new image.

public:
    /// Lays out the grid; no block memory is taken. resolution is in the caller's unit, e.g. pixels an inch. An
    /// existing grid is destroyed first. Throws 0x20010008 for negative sizes and for grids beyond 32 bits.
    virtual void Create(XCVirtualMemory* vm, int width, int height, double resolution) = 0;
    /// Frees every block; thresholds, index colours and the specialty flag stay.
    virtual void Destroy() = 0;
    /// Grows the image by whole blocks on the left and top, by pixels on the right and bottom, until it holds rect.
    /// *out (may be null) becomes (L, T, L + width, T + height) with the pixels L, T added left and above.
    virtual int AllocateRect(const XCRect& rect, XCRect* out) = 0;
    /// Removes one block column or row with its pixels; 0 when only one is left.
    virtual int DeallocateBlock(DEALLOCATE_BLOCK_TYPE type) = 0;
    /// Removes the whole blocks around rect. offset: the pixels removed left and above. 0 when a step failed.
    virtual int DeallocateRect(XCRect rect, XCPoint& offset) = 0;
    /// Fills the block memory at block (the current block when null) with the clear colour.
    virtual void ClearBlock(std::uint8_t* /*block*/) {}
    /// @{ One pixel to the right or left; the new address, as XCVOffscreen says.
    virtual std::uint8_t* NextCursorX() { return nullptr; }
    virtual std::uint8_t* NextCursorXFastest() { return nullptr; }
    virtual std::uint8_t* PrevCursorX() { return nullptr; }
    virtual std::uint8_t* PrevCursorXFastest() { return nullptr; }
    /// @}

    /// The pixel under the cursor as a value of the image's own depth.
    virtual std::uint32_t GetColor() const { return 0; }
    /// @{ Readers of the pixel under the cursor as another depth's value. The plain forms answer a default at a null
    /// address, the Fast forms require an address.
    virtual std::uint8_t Get1BitColorFast() const { return 0; }
    virtual std::uint8_t Get1BitColor() const { return 0; }
    virtual std::uint8_t Get2BitColorFast() const { return 0; }
    virtual std::uint8_t Get2BitColor() const { return 0; }
    virtual std::uint8_t Get8BitColorFast() const { return 0; }
    virtual std::uint8_t Get8BitColor() const { return 0; }
    virtual std::uint32_t Get16BitColorFast() const { return 0; }
    virtual std::uint32_t Get16BitColor() const { return 0; }
    virtual std::uint32_t Get24BitColorFast() const { return 0; }
    virtual std::uint32_t Get24BitColor() const { return 0; }
    /// @}
    /// The 24-bit reading of the pixel at address; 1- and 2-bit images read the pixel under the cursor.
    virtual std::uint32_t Get24BitColorAddress(const std::uint8_t* /*address*/) const { return 0; }
    /// @{ The same for 32 bits.
    virtual std::uint32_t Get32BitColorFast() const { return 0; }
    virtual std::uint32_t Get32BitColor() const { return 0; }
    /// @}
    /// @{ Writers of the pixel under the cursor; all require an address. SetColor takes a value of the image's own
    /// depth.
    virtual void SetColor(std::uint32_t /*value*/) {}
    virtual void Set1BitColor(std::uint8_t /*value*/) {}
    virtual void Set2BitColor(std::uint8_t /*value*/) {}
    virtual void Set8BitColor(std::uint8_t /*density*/) {}
    virtual void Set16BitColor(std::uint32_t /*colour*/) {}
    virtual void Set24BitColor(std::uint32_t /*colour*/) {}
    virtual void Set32BitColor(std::uint32_t /*colour*/) {}
    /// @}
    /// @{ Copies the pixel under the cursor of source, an image of the same depth.
    virtual void CopyCurrentColor(XCVOffscreen* /*source*/) {}
    virtual void CopyCurrentColorFast(XCVOffscreen* /*source*/) {}
    /// @}
    /// A colour as a value of the image's own depth, as SetColor takes it.
    virtual std::uint32_t MakeNativeColor(std::uint32_t /*colour*/) const { return 0; }
    /// @{ The pixel as a picture, without its coverage, and the coverage alone.
    virtual std::uint8_t Get8BitImageFast() const { return 0; }
    virtual std::uint8_t Get8BitImage() const { return 0; }
    virtual std::uint32_t Get24BitImageFast() const { return 0; }
    virtual std::uint32_t Get24BitImage() const { return 0; }
    virtual std::uint8_t Get8BitMaskFast() const { return 0; }
    virtual std::uint8_t Get8BitMask() const { return 0; }
    /// @}

    /// Copies w x h pixels from (sx, sy) of src to (x, y), cut to both images; another depth goes by CommonCopy, with
    /// the answer 0. Where src has no block: destination blocks that are covered whole are released when the offset is
    /// a multiple of the block size; elsewhere flag 1 clears the pixels, 0 leaves them. Within one image the pixels are
    /// read before any is written. 1 when something was copied, cleared or released.
    virtual int Copy(int x, int y, int w, int h, XCVOffscreen* src, int sx, int sy, int flag) = 0;
    /// Nearest neighbour, between images of one depth.
    virtual void StretchCopy(int x, int y, int w, int h, XCVOffscreen* src, int sx, int sy, int sw, int sh) = 0;

    /// Fills rect with colour, or with the clear value when erase is set. With behind the colour goes behind the pixels
    /// that are there. Locks for editing.
    virtual void RectFill(const XCRect& /*rect*/, int /*erase*/, std::uint32_t /*colour*/, int /*behind*/) {}
    /// The same over the pixels that are there.
    virtual void RectFill(const XCRect& /*rect*/, int /*erase*/, std::uint32_t /*colour*/) {}
    /// Fills the whole current block with colour, or with the clear colour when useColour is 0. Locks for editing.
    virtual void FillBlock(int /*useColour*/, std::uint32_t /*colour*/) {}
    /// @{ One pixel thick, a column when vertical is 1, else a row; clipped to the image. The caller locks for editing.
    virtual void DrawSimpleLine(int /*vertical*/, int /*position*/, std::uint32_t /*colour*/) {}
    virtual void DrawSimpleSegment(int /*vertical*/, int /*position*/, int /*start*/, int /*length*/,
                                   std::uint32_t /*colour*/) {}
    /// @}
    /// A straight line with a square pen of width x width pixels (0 and less: none), whose left-top corner goes from
    /// (x1, y1) to (x2, y2); pixels outside the image are passed over. behind 1 puts the colour behind the pixels, once
    /// for every place of the pen. fitWidth 1 thins the pen of a slanted line, so that the line looks no thicker than
    /// a level one; the thinner pen stays in the middle of the thick one. Locks for editing.
    virtual void DrawSegment(int x1, int y1, int x2, int y2, int width, std::uint32_t colour, int behind,
                             int fitWidth) = 0;
    /// The same, but the thinner pen keeps its left-top corner.
    virtual void DrawSegment2(int x1, int y1, int x2, int y2, int width, std::uint32_t colour, int behind,
                              int fitWidth) = 0;
    /// 1- and 8-bit images: 1 when pixels x1 to x2 of row y are all ink, 0 when none is, else -1, which x1 and x2 may
    /// then enclose more closely: test every pixel between. 1 bit goes by whole bytes, and x2 comes back exclusive.
    virtual int CheckLinePixel(int /*y*/, int& /*x1*/, int& /*x2*/) { return -1; }
    /// The tight bounds of what is not empty in the image and *limit (may be null); 0 and an empty rectangle without
    /// any. 24 bits: those of the blocks. With useStored 1, delayed pixels answer with their stored extent and stay
    /// delayed.
    virtual int GetExtentRect(tagRECT& out, tagRECT* limit, int useStored) = 0;
    /// The address that (x, y) has in the current block if that block lies at base.
    virtual std::uint8_t* SetCurrentCursorAddress(int /*x*/, int /*y*/, std::uint8_t* base) const { return base; }
    /// Sets the cursor's address (not its position) to pixel (x, y) of the current block.
    virtual std::uint8_t* SetCurrentCursorAddress(int /*x*/, int /*y*/) { return nullptr; }
    /// Frees the blocks that are empty in the image, never on 24 bits. Not while the image is locked or delayed.
    virtual void Optimize() = 0;
    /// The same for the block of r's top-left pixel, when r covers what the image shows of it. The block under the
    /// cursor of a locked image stays.
    virtual void OptimizeBlock(tagRECT r) = 0;
    /// Fills pixels x1 to x2 (inclusive) of the cursor's row where the screen row pattern (16 thresholds, by x) and the
    /// mask's ink let it (both may be null). Modes: 0 replace, 1 raise, 2 blend, 3 erase. The caller locks both images
    /// and sets both cursors' rows; mask pixel x + maskOffsetX belongs to pixel x.
    virtual void FillLineRowForPolygon(int /*x1*/, int /*x2*/, std::uint32_t /*colour*/, int /*mode*/,
                                       XCVOffscreen* /*mask*/, int /*maskOffsetX*/, const std::uint8_t* /*pattern*/,
                                       int /*patternLevel*/) {}
    /// 2-bit images: as above, but white never covers black.
    virtual void FillLineRowForPolygonClipBlack(int /*x1*/, int /*x2*/, std::uint32_t /*colour*/, int /*mode*/,
                                                XCVOffscreen* /*mask*/, int /*maskOffsetX*/,
                                                const std::uint8_t* /*pattern*/, int /*patternLevel*/) {}
    /// Fills pixels x1 to x2 (inclusive) of row y, clipped to the image and *clip (may be null). The caller locks.
    virtual void FillLineRow(int /*x1*/, int /*x2*/, int /*y*/, std::uint32_t /*colour*/, const tagRECT* /*clip*/) {}
    /// The largest coverage (on 24 bits: red byte) of pixels x1 to x2 of the cursor's row. The caller locks.
    virtual int SearchLineRowForPolygon(int /*x1*/, int /*x2*/) { return 0; }

    // ---- Resampling. A null source or an empty rectangle does nothing; pixels outside an image are passed over, and
    // where the source has no block the destination stays. merge: the new pixels go behind those that are there.
    /// Averages whole source pixels when shrinking, takes the nearest when enlarging.
    virtual void ChangeResolutionLow(int x, int y, int w, int h, XCVOffscreen* src, int sx, int sy, int sw, int sh,
                                     int merge) = 0;
    /// @{ From squares of 2, 4 or 8 source pixels from (sx, sy) on; transparent pixels thin the result's alpha only.
    virtual void ChangeResolutionHalf(int x, int y, int w, int h, XCVOffscreen* src, int sx, int sy, int merge) = 0;
    virtual void ChangeResolutionQuarter(int x, int y, int w, int h, XCVOffscreen* src, int sx, int sy, int merge) = 0;
    virtual void ChangeResolutionOctantal(int x, int y, int w, int h, XCVOffscreen* src, int sx, int sy, int merge) = 0;
    /// @}
    /// @{ The whole source, to (0, 0). Between 1-bit images ink is counted, and pixels are only ever set.
    virtual void ChangeResolutionHalfAll(XCVOffscreen* src) = 0;
    virtual void ChangeResolutionQuarterAll(XCVOffscreen* src) = 0;
    virtual void ChangeResolutionOctantalAll(XCVOffscreen* src) = 0;
    /// @}
    /// @{ To squares of 2 or 4 equal pixels; w and h are the destination's.
    virtual void ChangeResolutionDouble(int x, int y, int w, int h, XCVOffscreen* src, int sx, int sy, int merge) = 0;
    virtual void ChangeResolutionFourfold(int x, int y, int w, int h, XCVOffscreen* src, int sx, int sy, int merge) = 0;
    virtual void ChangeResolutionDoubleAll(XCVOffscreen* src) = 0;
    virtual void ChangeResolutionFourfoldAll(XCVOffscreen* src) = 0;
    /// @}
    /// The weighted mean of the pixels that a column and a row entry, moved by (x, y), cover in this image: 0xAABBGGRR,
    /// of 1- and 8-bit images the density as alpha. scale: 1 / the area of a destination pixel. The caller locks.
    virtual void CalcPixelValue(const _XCRESOLUTIONTABLE* columns, const _XCRESOLUTIONTABLE* rows, int x, int y,
                                double scale, std::uint32_t& out) = 0;

protected:
    XCVOffscreenInterface() = default;
};

#endif // OVWCMN_XCVOFFSCREENINTERFACE_H
