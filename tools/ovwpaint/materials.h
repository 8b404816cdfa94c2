#ifndef OVWPAINT_MATERIALS_H
#define OVWPAINT_MATERIALS_H

/// @file
/// What a brush paints with besides its settings.

#include "brush.h"
#include "picture.h"

#include "ovwcmn/xcpatterndraw.h"

#include <memory>
#include <string>

namespace ovwpaint {

/// Pictures that a drawing is painted through or from; an empty name stands for none.
struct PictureWish {
    std::string mask;
    XCPoint maskOffset; ///< where the mask's left top corner lies in the picture
    std::string clone;
    XCPoint cloneOffset; ///< pixel (x, y) is painted with (x, y) plus this
};

/// Owns texture, mask and clone source, and must outlive the painting. Throws what reading pictures throws.
class Materials {
public:
    /// @param depth of the picture to paint
    Materials(const Brush& brush, const PictureWish& wish, int depth);
    Materials(const Materials&) = delete;
    Materials& operator=(const Materials&) = delete;

    void applyTo(XCPatternDrawMethod& method);

private:
    const BrushTexture m_textureSettings;
    GreyPicture m_texture;
    std::unique_ptr<XCVOffscreen> m_mask;
    const XCPoint m_maskOffset;
    std::unique_ptr<XCVOffscreen> m_clone;
    const XCPoint m_cloneOffset;
};

} // namespace ovwpaint

#endif // OVWPAINT_MATERIALS_H
