#ifndef OVWPAINT_MATERIALS_H
#define OVWPAINT_MATERIALS_H

/// @file
/// What a brush paints with besides its settings.

#include "blurtip.h"
#include "brush.h"
#include "canvas.h"
#include "picture.h"

#include "ovwcmn/xcpatterndraw.h"

#include <memory>
#include <string>
#include <vector>

namespace ovwpaint {

/// The name of a selection with round holes, as large as the picture.
inline constexpr const char* cnStencilMask = "builtin:stencil";

/// Places of the pictures that a drawing is painted through or from.
struct PictureWish {
    XCPoint maskOffset; ///< where the mask's left top corner lies in the picture
    std::string clone;  ///< the file of the picture to clone; empty: the picture itself
};

/// Owns tips, texture, mask and clone source, and must outlive the painting. Throws what reading pictures throws.
class Materials {
public:
    /// @param canvas to paint on
    Materials(const Brush& brush, const PictureWish& wish, Canvas& canvas);
    Materials(const Materials&) = delete;
    Materials& operator=(const Materials&) = delete;

    void applyTo(XCPatternDrawMethod& method);
    /// Gives the brush its tips.
    void applyTo(XCPatternDrawParam& param);

private:
    void loadTips(const Brush& brush);
    void loadMask(const std::string& nameOrPath);
    void loadClone(const std::string& path);

    Canvas& m_canvas;
    std::vector<std::unique_ptr<XCImagePattern>> m_tips;
    std::unique_ptr<BlurTip> m_blur;
    const BrushTexture m_textureSettings;
    GreyPicture m_texture;
    std::unique_ptr<XCVOffscreen> m_mask;
    const XCPoint m_maskOffset;
    std::unique_ptr<XCVOffscreen> m_clone;
    XCVOffscreen* m_cloneSource = nullptr; ///< the picture above, or the canvas' own before the stroke
    const XCPoint m_cloneOffset;
};

} // namespace ovwpaint

#endif // OVWPAINT_MATERIALS_H
