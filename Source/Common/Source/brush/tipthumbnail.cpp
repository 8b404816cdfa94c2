// The preview of an image tip.

#include "ovwcmn/xcpattern.h"
#include "ovwcmn/xcsimpleimage.h"
#include "ovwcmn/xcvirtualmemory.h"
#include "ovwcmn/xcvoffscreen.h"
#include "ovwcmn/xcvoffscreenlock.h"

#include <algorithm>
#include <cstdint>
#include <memory>

namespace {

constexpr std::uint32_t cnBlack = 0xFF000000;
constexpr std::uint32_t cnWhite = 0xFFFFFFFF;

/// The pixels along one axis that a pixel of a smaller image stands for. Lengths are in parts of a pixel, of which
/// there are as many as the small image has pixels: whole numbers, so that the areas add up exactly.
class Stretch {
public:
    Stretch(int index, int length, int smallLength)
        : m_parts(smallLength), m_start(std::int64_t{index} * length), m_end(m_start + length) {}

    int first() const { return static_cast<int>(m_start / m_parts); }
    int last() const { return static_cast<int>((m_end - 1) / m_parts); }
    /// How much of a pixel belongs to the stretch.
    std::int64_t weight(int pixel) const {
        const std::int64_t pixelStart = std::int64_t{pixel} * m_parts;
        return std::min(m_end, pixelStart + m_parts) - std::max(m_start, pixelStart);
    }

private:
    std::int64_t m_parts;
    std::int64_t m_start;
    std::int64_t m_end;
};

/// Weighted sums over an area. Colours count by their alpha.
struct AreaMean {
    std::int64_t area = 0;
    std::int64_t alpha = 0;
    std::int64_t red = 0;
    std::int64_t green = 0;
    std::int64_t blue = 0;

    void add(std::uint32_t color, std::int64_t weight) {
        const std::int64_t opaque = weight * (color >> 24);
        area += weight;
        alpha += opaque;
        red += opaque * (color & 0xFF);
        green += opaque * (color >> 8 & 0xFF);
        blue += opaque * (color >> 16 & 0xFF);
    }
    std::uint32_t color() const {
        if (alpha == 0)
            return cnWhite & ~cnBlack; // transparent white
        return rounded(red, alpha) | rounded(green, alpha) << 8 | rounded(blue, alpha) << 16 |
               rounded(alpha, area) << 24;
    }

private:
    static std::uint32_t rounded(std::int64_t sum, std::int64_t by) {
        return static_cast<std::uint32_t>((sum + by / 2) / by);
    }
};

/// A pixel of a tip as a colour, 0xAABBGGRR; 1 and 8 bits are black of some alpha.
std::uint32_t colorOf(const std::uint8_t* pixel, int bitCount) {
    switch (bitCount) {
    case 1: return pixel[0] ? cnBlack : 0;
    case 2: return pixel[0] < 2 ? 0 : pixel[0] == 2 ? cnWhite : cnBlack;
    case 8: return static_cast<std::uint32_t>(pixel[0]) << 24;
    case 16: return pixel[1] * 0x00010101u | static_cast<std::uint32_t>(pixel[0]) << 24;
    default: {
        const std::uint32_t alpha = bitCount == 32 ? pixel[3] : 0xFF;
        return pixel[2] | static_cast<std::uint32_t>(pixel[1]) << 8 | static_cast<std::uint32_t>(pixel[0]) << 16 |
               alpha << 24;
    }
    }
}

std::uint32_t meanOf(const XCSimpleImage& image, const Stretch& columns, const Stretch& rows) {
    AreaMean mean;
    for (int y = rows.first(); y <= rows.last(); y++)
        for (int x = columns.first(); x <= columns.last(); x++)
            mean.add(colorOf(image.GetPixel(x, y), image.GetOrgBitCount()), columns.weight(x) * rows.weight(y));
    return mean.color();
}

int thumbnailDepth(int bitCount) {
    switch (bitCount) {
    case 1:
    case 8: return 8;
    case 24: return 24;
    default: return 32;
    }
}

/// A side of the thumbnail of an image whose longer side is `longest`.
int thumbnailSide(int side, int longest) {
    constexpr int cnMost = XCImagePattern::cnThumbnailSize;
    return longest <= cnMost ? side : std::max(static_cast<int>(std::int64_t{side} * cnMost / longest), 1);
}

} // namespace

XCVOffscreen* XCImagePattern::CreateThumbnail() const {
    const XCSimpleImage* const image = GetImage();
    if (!image)
        return nullptr;
    const int longest = std::max(image->GetWidth(), image->GetHeight());
    const int width = thumbnailSide(image->GetWidth(), longest);
    const int height = thumbnailSide(image->GetHeight(), longest);
    std::unique_ptr<XCVOffscreen> thumbnail(XCVOffscreen::CreateOffscreen(thumbnailDepth(image->GetOrgBitCount())));
    thumbnail->Create(xcGetVirtualMemory(), width, height, 0.0);
    const XCAutoLockSimpleImage tipLock(GetImage());
    const XCVOffscreenAutoLock lock(thumbnail.get(), 1);
    for (int y = 0; y < height; y++) {
        const Stretch rows(y, image->GetHeight(), height);
        for (int x = 0; x < width; x++) {
            const std::uint32_t color = meanOf(*image, Stretch(x, image->GetWidth(), width), rows);
            if (!thumbnail->MoveCursor(x, y))
                continue;
            if (thumbnail->GetDepth() == 8)
                thumbnail->Set8BitColor(static_cast<std::uint8_t>(color >> 24));
            else
                thumbnail->Set32BitColor(color);
        }
    }
    return thumbnail.release();
}
