#include "materials.h"

#include "texture.h"

namespace ovwpaint {

Materials::Materials(const Brush& brush, const PictureWish& wish, int depth)
    : m_textureSettings(brush.texture), m_maskOffset(wish.maskOffset), m_cloneOffset(wish.cloneOffset) {
    if (!m_textureSettings.texture.empty())
        m_texture = loadTexture(m_textureSettings.texture);
    if (!wish.mask.empty())
        m_mask = readSelection(wish.mask);
    if (!wish.clone.empty())
        m_clone = readImage(wish.clone, depth);
}

void Materials::applyTo(XCPatternDrawMethod& method) {
    method.SetTextureImage(m_texture.pixels.empty() ? nullptr : m_texture.pixels.data(), m_texture.width,
                           m_texture.height, XCPoint(0, 0), m_textureSettings.textureDensity,
                           m_textureSettings.textureMode, m_textureSettings.textureAfter);
    method.SetMaskOffscreen(m_mask.get(), m_maskOffset);
    method.SetCloneSrcOffscreen(m_clone.get(), m_cloneOffset);
}

} // namespace ovwpaint
