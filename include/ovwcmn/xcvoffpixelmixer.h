#ifndef OVWCMN_XCVOFFPIXELMIXER_H
#define OVWCMN_XCVOFFPIXELMIXER_H

/// @file
/// The pixel mixers applied to tiled images, through the image's cursor, and the selection masks that they honour.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/wintypes.h"
#include "ovwcmn/xccolor.h"

#include <cstdint>

class XCPixelMixer;
class XCVOffscreen;

namespace ovw::mixing {
struct PixelRoutines;
} // namespace ovw::mixing

/// Says which pixels of a destination are free to be painted, by up to four selection images of any resolution; the
/// queries ask the first. The images belong to the caller, who locks them; the mask moves their cursors. What the block
/// store throws passes on. One thread at a time.
class OVWCMN_API XCVOffPixelMask {
public:
    static constexpr int cnMasks = 4; ///< selection images

    /// One selection image.
    struct MaskInfo {
        int kind;            ///< 0: a normal mask, its ink scales the weight; else an extension, its ink lets through
        XCVOffscreen* image; ///< null: no mask
        int reserved;        ///< for the application
        int offsetX;         ///< where the mask begins, in pixels of the destination
        int offsetY;         ///< downward
    };

    XCVOffPixelMask() { Initialize(); }

    /// Forgets the images. Entry 0 is then of a kind that is not 0: SetMaskInfo sets the kind together with the image.
    void Initialize();
    /// @{ Both throw 0x20010008 for indices outside 0 to 3.
    MaskInfo& GetMaskInfo(int index);
    void SetMaskInfo(int index, const MaskInfo& info);
    /// @}
    /// @{ What the first entry is; 0 without an image.
    int IsNormalMask() const { return m_masks[0].image && m_masks[0].kind == 0; }
    int IsExtensionMask() const { return m_masks[0].image && m_masks[0].kind != 0; }
    /// @}

    /// @{ Whether (x, y) of the destination is free, and how much, 0 to 255. Without a mask image it is free, and the
    /// value is 0: ask IsNormalMask first. The X forms stay in the row that MoveCursorY set.
    int IsMaskFreeEx(XCVOffscreen* dst, int x, int y) const;
    int GetMaskFreeValue(XCVOffscreen* dst, int x, int y) const;
    int IsMaskFreeXEx(XCVOffscreen* dst, int x) const;
    int GetMaskFreeValueX(XCVOffscreen* dst, int x) const;
    /// @}
    /// Moves the cursor of every mask image to a row of the destination; its column stays.
    void MoveCursorY(XCVOffscreen* dst, int y) const;

    /// Modes: 1 the colours differ, 2 they are equal, 3 the alphas differ, 4 the alphas are equal; others answer 0.
    static int IsMaskCompare(int mode, std::uint32_t a, std::uint32_t b);

    /// A new image of src's depth and pixels at another resolution, on the process's store (0x20010008 without one);
    /// the caller owns it. Null for a null src.
    static XCVOffscreen* CreateMask(XCVOffscreen* src, double resolution);

private:
    MaskInfo m_masks[cnMasks];
};

/// Applies a chain of pixel mixers to pixels and rows of one image: the flexible way, for the rules that the fast mixer
/// does not have. Pixels of 1 and 8 bits are mixed as ink, of 2 and 32 bits as colours with alpha, of 16 and 24 bits as
/// opaque colours (a 16-bit pixel that is mixed becomes opaque).
///
/// The mixer is a value that owns nothing: the chain and all images must outlive the drawing. The caller locks the
/// destination for editing and the other images for reading, and no two of them may be one image, as each has only one
/// cursor. Pixels outside the destination and in blocks that do not exist are passed over. Nothing is thrown but what
/// the block store throws. One thread at a time.
class OVWCMN_API XCVOffPixelMixer {
public:
    XCVOffPixelMixer();

    void SetDstOffscreen(XCVOffscreen* dst); ///< Null: nothing is drawn.
    /// Mixes by the rules of a depth other than the image's; nothing is drawn for depths that do not exist.
    void SetDstOffscreen(int depth, XCVOffscreen* dst);
    /// The destination's depth, 0 without one.
    int GetMixerBitCount() const;

    // ---- The chain. Each answers the former first mixer. A chain that would close to a ring is not linked.
    XCPixelMixer* SetNode(XCPixelMixer* mixer); ///< Makes it, with what hangs behind it, the chain.
    /// Appends a mixer.
    XCPixelMixer* PushNode(XCPixelMixer* mixer);
    /// Puts a mixer, with the chain behind it, in front; null empties the chain.
    XCPixelMixer* FrontNode(XCPixelMixer* mixer);
    XCPixelMixer* GetMixer() const { return m_chain; } ///< the first of the chain

    // ---- Colours; those of 16-bit channels are converted when they are used.
    /// @{ What rows and pixels are painted with when nothing else is given.
    const XCComplexColor& GetColor() const { return m_color; }
    void SetColor(const XCComplexColor& color) { m_color = color; }
    const XCComplexColor& GetSubColor() const { return m_subColor; }
    void SetSubColor(const XCComplexColor& color) { m_subColor = color; }
    /// @}
    /// The weight where none is given: 0 to 255, which is kept as given and cut to a byte when it is used.
    int GetAlpha() const { return m_alpha; }
    /// The same for 16-bit channels: alpha x 257.
    int GetAlpha64() const { return m_alpha16; }
    void SetAlpha(int alpha); ///< sets both
    /// Not 0: ink is taken from the colour's darkness, by its largest channel, instead of its alpha.
    void Use8BitColorBrightness(int use);
    int IsUse8BitColorBrightness() const { return m_useBrightness; } ///< 0 or 1, as set

    // ---- Clone: a row's pixel at `origin` + the left-top offset is copied from `point` of the source.
    /// @{ The source (null: no cloning) and the places that belong together.
    void SetCloneOffscreen(XCVOffscreen* src, tagPOINT point);
    void SetCloneLeftTopOffset(tagPOINT offset) { m_cloneOffset = offset; }
    XCVOffscreen* GetCloneOffscreen() const { return m_clone; }
    /// @}
    /// @{ Move the source's cursor, counted from the point less the offset; without a source they do nothing.
    void RelativeCloneCursor(int x, int y);
    void RelativeCloneCursorX(int x);
    void RelativeCloneCursorY(int y);
    void NextCloneCursorX();
    void NextCloneCursorY();
    /// @}

    // ---- The pixel under the destination's cursor, which stays. Weights are 0 to 255.
    /// @{ Mixes this mixer's colour or another into the pixel, by this mixer's alpha or the weight.
    void Do();
    void Do(int weight);
    void Do(const XCComplexColor& color);
    void Do(const XCComplexColor& color, int weight);
    /// @}
    /// Mixes the colour into another one and stores the result, whatever the pixel was.
    void Do(const XCComplexColor& base, const XCComplexColor& color, int weight);
    /// Mixes the pixel under the source's cursor; 0x00FFFFFF where the source has none.
    void DoClone();
    void DoClone(int weight); ///< The same with a weight.

    // ---- Rows; the cursors of destination and clone source end behind the last pixel. Mask and colour may be null: no
    // mask, the mixer's colour.
    /// Pixels x1 to x2, both included. A normal mask scales the weight.
    void DoLineRow(int x1, int x2, int y, XCVOffPixelMask* mask, XCComplexColor* color, tagPOINT origin);
    /// The same with a weight of its own for each pixel: coverage[0] belongs to x1, pixels of coverage 0 are skipped.
    void DoLineRowBuffer(std::uint8_t* coverage, int x1, int x2, int y, XCVOffPixelMask* mask, XCComplexColor* color,
                         tagPOINT origin);
    /// Pixels x1 to x2 - 1 of the cursor's row, the first from (u, v) of the source, every further one (du, dv) beyond.
    /// Sources without alpha lend the mixer's colours their coverage, the others lend their colour.
    void DoLineRowCopy(int x1, int x2, XCVOffscreen* src, double u, double v, double du, double dv,
                       XCVOffPixelMask* mask);

private:
    void selectRoutines();
    bool canMix() const;
    void mix(std::uint32_t color, int weight);
    void drawRow(const std::uint8_t* coverage, int x1, int x2, int y, XCVOffPixelMask* mask,
                 const XCComplexColor* color, tagPOINT origin);

    const ovw::mixing::PixelRoutines* m_routines = nullptr; ///< of the depth; null: nothing is drawn
    int m_depth = 0;
    XCPixelMixer* m_chain = nullptr;
    XCVOffscreen* m_destination = nullptr;
    XCComplexColor m_color;
    XCComplexColor m_subColor;
    int m_alpha = 255;
    int m_alpha16 = 65535;
    int m_useBrightness = 0;
    XCVOffscreen* m_clone = nullptr;
    tagPOINT m_clonePoint{0, 0};
    tagPOINT m_cloneOffset{0, 0};
};

#endif // OVWCMN_XCVOFFPIXELMIXER_H
