#ifndef OVWCMN_XCVOFFSCREENBLOCK_H
#define OVWCMN_XCVOFFSCREENBLOCK_H

/// @file
/// The small parts of a tiled image: a cell of its grid, its cursor, its conversion rules.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/xcgeometry.h"

#include <cstdint>

class XCSwapBlock;

/// The border at which blocks are removed.
enum DEALLOCATE_BLOCK_TYPE : std::int32_t {
    /// @{ One column or row of blocks.
    DEALLOCATE_LEFT = 0,
    DEALLOCATE_TOP = 1,
    DEALLOCATE_RIGHT = 2,
    DEALLOCATE_BOTTOM = 3,
    /// @}
};

/// What is at a place of an image.
enum AREA_TYPE : std::int32_t {
    AREA_NONE = 0,  ///< Outside the image, or a block that is missing.
    AREA_EMPTY = 1, ///< A block without data: neither resident nor in the swap file.
    AREA_DATA = 2,  ///< A block with data.
};

namespace ovw::vimage {

/// @{ The thresholds of a new image.
inline constexpr int cnDefaultTransparency = 127;
inline constexpr int cnDefaultBlackWhite = 128;
/// @}
inline constexpr int cnIndexColours = 256; ///< entries of the colour table
/// Of an image's transparency setting.
inline constexpr int cnOpaque = 256;                            // of an image's transparency setting
inline constexpr std::uint32_t cnTransparentWhite = 0x00FFFFFF; ///< what is not painted

/// What an image's conversions between depths depend on: coverage above `transparency` counts as ink, luminance below
/// `blackWhite` as black; entries 1 to 3 of the index colours are the colours of 1-, 2- and 8-bit ink.
struct PixelRules {
    /// @{ As the struct says.
    int transparency = cnDefaultTransparency;
    int blackWhite = cnDefaultBlackWhite;
    std::uint32_t indexColours[cnIndexColours] = {};
    /// @}
};

/// The image's part of the block under the cursor, empty without one: steps out of it look for a new block.
struct CursorArea : XCRect {
    /// @{ Whether the place lies in it.
    bool hasColumn(int x) const { return isBetween(x, left, right); }
    bool hasRow(int y) const { return isBetween(y, top, bottom); }
    bool holds(int x, int y) const { return hasColumn(x) && hasRow(y); }
    /// @}

private:
    static bool isBetween(int v, int first, int end) {
        const auto offset = static_cast<std::uint32_t>(v) - static_cast<std::uint32_t>(first);
        return offset < static_cast<std::uint32_t>(end - first);
    }
};

} // namespace ovw::vimage

/// One cell of the grid. It does not own its swap block: the image frees it.
class OVWCMN_API XCVOffscreenBlock {
public:
    XCVOffscreenBlock() = default;
    /// A whole block, and its memory or null.
    XCVOffscreenBlock(const XCRect& rect, XCSwapBlock* swapBlock) : m_rect(rect), m_swapBlock(swapBlock) {}

    const XCRect& GetRect() const { return m_rect; }          ///< Never clipped to the image.
    XCSwapBlock* GetSwapBlock() const { return m_swapBlock; } ///< null: the block is missing
    /// Null: the block is missing. The edit counter grows when addEdit is 1.
    void SetSwapBlock(XCSwapBlock* swapBlock, int addEdit) {
        m_swapBlock = swapBlock;
        if (addEdit == 1)
            AddEditCounter();
    }
    /// @{ Counts edits, up to the largest int.
    void AddEditCounter() { m_editCounter = m_editCounter < 0x7FFFFFFF ? m_editCounter + 1 : m_editCounter; }
    void ResetEditCounter() { m_editCounter = 0; }
    int IsEdited() const { return m_editCounter != 0; }
    /// @}
    /// @{ In pixels of the image.
    int IsInside(int x, int y) const { return IsInsideX(x) && IsInsideY(y); }
    int IsInsideX(int x) const { return m_rect.left <= x && x < m_rect.right; }
    int IsInsideY(int y) const { return m_rect.top <= y && y < m_rect.bottom; }
    /// @}

private:
    XCRect m_rect;
    XCSwapBlock* m_swapBlock = nullptr;
    int m_editCounter = 0;
};

/// Where an image is being read or written.
struct OVWCMN_API XCVOffscreenCursor {
    int index = -1;                  ///< Of the current block; -1 when there is none.
    std::uint8_t* base = nullptr;    ///< First byte of the block; null while it is missing.
    std::uint8_t* address = nullptr; ///< Of the pixel.
    /// @{ Pixels of the image.
    int x = 0;
    int y = 0;
    /// @}

    int IsEnable() const { return index >= 0; } ///< whether there is a current block
};

#endif // OVWCMN_XCVOFFSCREENBLOCK_H
