#include "canvas.h"

#include "picture.h"

#include "ovwcmn/xcblockgetter.h"
#include "ovwcmn/xcvoffscreenlock.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace ovwpaint {

namespace {

std::size_t blockBytes(const XCVOffscreen& image) {
    return static_cast<std::size_t>(image.GetBlockRowBytes()) * XCVOffscreen::cnBlockSize;
}

} // namespace

Canvas::Canvas(int width, int height, int depth, Colour background, bool keepBefore)
    : Canvas(makeImage(width, height, depth), background, keepBefore) {}

Canvas::Canvas(std::unique_ptr<XCVOffscreen> image, Colour background, bool keepBefore)
    : m_background(shownColour(background, image->GetDepth())), m_image(std::move(image)) {
    setBackground(*m_image);
    if (keepBefore)
        m_before.reset(m_image->CreateAndCopyAll()); // with the clear colour
}

/// New blocks get the clear colour, which for 1 and 8 bits is a byte.
void Canvas::setBackground(XCVOffscreen& image) const {
    const std::uint32_t native = image.MakeNativeColor(m_background);
    switch (image.GetDepth()) {
    case 1: image.SetClearColor(static_cast<std::uint8_t>(native != 0 ? 0xFF : 0)); break;
    case 2: break;
    case 8: image.SetClearColor(static_cast<std::uint8_t>(native)); break;
    default: image.SetClearColor(native); break;
    }
}

void Canvas::prepare(const XCRect& area) {
    XCBlockGetter blocks(m_image.get(), area, 0);
    for (XCRect block; blocks.GetNextBlock(block);) {
        makeBlock(*m_image, block.left, block.top);
        if (m_before)
            makeBlock(*m_before, block.left, block.top);
    }
}

void Canvas::makeBlock(XCVOffscreen& image, int x, int y) const {
    if (image.GetBlockExist(x, y))
        return;
    const XCVOffscreenAutoLock lock(&image, x, y, 1);
    // New blocks of 2 bits are transparent, whatever the clear colour.
    constexpr std::uint32_t cnFourPixels = 0x55;
    if (image.GetDepth() == 2)
        std::memset(image.GetBaseAddress(), static_cast<int>(image.MakeNativeColor(m_background) * cnFourPixels),
                    blockBytes(image));
    image.ResetBlockEdited(image.GetBlockIndex(x, y));
}

void Canvas::settle(const XCRect& area) {
    if (!m_before)
        return;
    XCBlockGetter blocks(m_image.get(), area, 0);
    for (XCRect block; blocks.GetNextBlock(block);) {
        const int index = m_image->GetBlockIndex(block.left, block.top);
        if (!m_image->CheckBlockEdited(index))
            continue;
        const XCVOffscreenAutoLock source(m_image.get(), block.left, block.top, 0);
        const XCVOffscreenAutoLock target(m_before.get(), block.left, block.top, 1);
        std::memcpy(m_before->GetBaseAddress(), m_image->GetBaseAddress(), blockBytes(*m_image));
        m_image->ResetBlockEdited(index);
    }
}

void Canvas::paste(PngReader& picture) {
    const XCRect area(0, 0, std::min(width(), picture.width()), std::min(height(), picture.height()));
    prepare(area);
    const auto onBackground = [this](Colour colour) { return over(colour, m_background); };
    picture.read([&](const PngRow& row) { storeRow(*m_image, row, onBackground); });
    settle(area);
}

Colour shownColour(Colour colour, int depth) {
    constexpr std::uint32_t cnWhite = 255;
    const bool transparency = depth == 2 || depth == 16 || depth == 32;
    if (transparency)
        return colour;
    const std::uint32_t alpha = alphaOf(colour);
    const auto overWhite = [alpha](std::uint32_t channel) {
        return (channel * alpha + cnWhite * (255 - alpha) + 127) / 255;
    };
    return packColour(overWhite(redOf(colour)), overWhite(greenOf(colour)), overWhite(blueOf(colour)));
}

} // namespace ovwpaint
