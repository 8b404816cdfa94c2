#include "materials.h"

#include "texture.h"
#include "tips.h"

#include "ovwcmn/xcvoffscreenlock.h"

#include <algorithm>
#include <cmath>

namespace ovwpaint {

namespace {

/// Holes of 40 pixels in rows that lie 48 apart, every other one shifted.
std::unique_ptr<XCVOffscreen> makeStencil(int width, int height) {
    constexpr int cnDepth = 8;
    constexpr int cnPitch = 48;
    constexpr double cnRadius = 20.0;
    std::unique_ptr<XCVOffscreen> image = makeImage(width, height, cnDepth);
    const XCVOffscreenAutoLock lock(image.get(), 1);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const int shifted = x + y / cnPitch % 2 * cnPitch / 2;
            const double distance = std::hypot(shifted % cnPitch - cnPitch * 0.5, y % cnPitch - cnPitch * 0.5);
            const double coverage = std::clamp(cnRadius - distance + 0.5, 0.0, 1.0);
            if (coverage <= 0.0)
                continue; // no block for what selects nothing
            image->MoveCursor(x, y);
            image->Set8BitColor(static_cast<std::uint8_t>(coverage * 255.0 + 0.5));
        }
    }
    return image;
}

std::unique_ptr<XCPattern> shapeOf(const PDPARAM_PATTERN& pattern) {
    switch (pattern.patternKind) {
    case XCPattern::cnKindRect: return std::make_unique<XCRectPattern>();
    case XCPattern::cnKindPolygon: return std::make_unique<XCPolygonPattern>(&pattern.polygon);
    default: return std::make_unique<XCCirclePattern>();
    }
}

} // namespace

Materials::Materials(const Brush& brush, const PictureWish& wish, Canvas& canvas)
    : m_canvas(canvas), m_textureSettings(brush.texture), m_maskOffset(wish.maskOffset),
      m_cloneOffset(brush.source.cloneX, brush.source.cloneY) {
    if (!m_textureSettings.texture.empty())
        m_texture = loadTexture(m_textureSettings.texture);
    if (!brush.source.mask.empty())
        loadMask(brush.source.mask);
    if (brush.source.cloneFlag)
        loadClone(wish.clone);
    if (brush.hasImageTips())
        loadTips(brush);
    else if (brush.blurs())
        m_blur = std::make_unique<BlurTip>(shapeOf(brush.pattern), brush.source.blurRadius);
}

void Materials::loadTips(const Brush& brush) {
    for (const std::string& name : brush.tips.patterns)
        m_tips.push_back(loadTip(name, brush.tips));
}

void Materials::loadMask(const std::string& nameOrPath) {
    m_mask = nameOrPath == cnStencilMask ? makeStencil(m_canvas.width(), m_canvas.height()) : readSelection(nameOrPath);
}

void Materials::loadClone(const std::string& path) {
    if (!path.empty())
        m_clone = readImage(path, m_canvas.depth());
    m_cloneSource = m_clone ? m_clone.get() : m_canvas.before();
}

void Materials::applyTo(XCPatternDrawMethod& method) {
    method.SetTextureImage(m_texture.pixels.empty() ? nullptr : m_texture.pixels.data(), m_texture.width,
                           m_texture.height, XCPoint(0, 0), m_textureSettings.textureDensity,
                           m_textureSettings.textureMode, m_textureSettings.textureAfter);
    method.SetMaskOffscreen(m_mask.get(), m_maskOffset);
    method.SetCloneSrcOffscreen(m_cloneSource, m_cloneOffset);
}

void Materials::applyTo(XCPatternDrawParam& param) {
    PDPARAM_PATTERN pattern;
    param.GetPatternParam(pattern);
    pattern.patternCount = 0;
    for (const std::unique_ptr<XCImagePattern>& tip : m_tips)
        pattern.patterns[pattern.patternCount++] = tip.get();
    param.SetPatternParam(pattern);
    param.SetDesignatedPattern(m_blur.get());
}

} // namespace ovwpaint
