#ifndef OVW_VIMAGE_PIXELCOLOUR_H
#define OVW_VIMAGE_PIXELCOLOUR_H

/// @file
/// Arithmetic on packed colours (0xAABBGGRR) that the pixel formats share.

#include <cstdint>

namespace ovw::vimage {

inline constexpr int cnByteMax = 255;
inline constexpr std::uint32_t cnRgbMask = 0x00FFFFFF;
inline constexpr std::uint32_t cnOpaqueAlpha = 0xFF000000;
inline constexpr std::uint32_t cnOpaqueBlack = 0xFF000000;
inline constexpr std::uint32_t cnOpaqueWhite = 0xFFFFFFFF;
inline constexpr std::uint32_t cnBlack = 0;
inline constexpr std::uint32_t cnWhite = 0x00FFFFFF;
inline constexpr std::uint32_t cnRgbTopBits = 0x00808080;
inline constexpr std::uint32_t cnTopBits = 0x80808080;

constexpr int redOf(std::uint32_t colour) { return static_cast<int>(colour & 0xFF); }
constexpr int greenOf(std::uint32_t colour) { return static_cast<int>(colour >> 8 & 0xFF); }
constexpr int blueOf(std::uint32_t colour) { return static_cast<int>(colour >> 16 & 0xFF); }
constexpr int alphaOf(std::uint32_t colour) { return static_cast<int>(colour >> 24); }

/// The channels must lie in 0 to 255.
constexpr std::uint32_t packColour(int alpha, int red, int green, int blue) {
    return static_cast<std::uint32_t>(alpha) << 24 | static_cast<std::uint32_t>(blue) << 16 |
           static_cast<std::uint32_t>(green) << 8 | static_cast<std::uint32_t>(red);
}
constexpr std::uint32_t packGrey(int alpha, int grey) { return packColour(alpha, grey, grey, grey); }

/// The images' own luminance: blue weighs twice as much as red.
constexpr int luminance(int red, int green, int blue) { return (red + 4 * green + 2 * blue) / 7; }
constexpr int luminance(std::uint32_t colour) { return luminance(redOf(colour), greenOf(colour), blueOf(colour)); }
constexpr int darkness(std::uint32_t colour) { return cnByteMax - luminance(colour); }

/// value x alpha, both 0 to 255.
constexpr int scaledBy(int value, int alpha) { return (value * (alpha + 1)) >> 8; }
constexpr int inkOf(std::uint32_t colour) { return scaledBy(darkness(colour), alphaOf(colour)); }

constexpr int inkBit(std::uint32_t colour) { return (colour & cnTopBits) != 0; }

// The behind blend: colour goes behind what is there, all values 0 to 255.
constexpr int behindOpacity(int alpha, int existingAlpha) { return alpha * (cnByteMax - existingAlpha) / cnByteMax; }
constexpr int behindChannel(int existing, int channel, int opacity) {
    const int result = existing - (cnByteMax - channel) * opacity / cnByteMax;
    return result < 0 ? 0 : result;
}
constexpr int behindAlpha(int alpha, int existingAlpha) {
    return cnByteMax - (cnByteMax - alpha) * (cnByteMax - existingAlpha) / cnByteMax;
}
constexpr std::uint32_t behindColour(std::uint32_t existing, std::uint32_t colour) {
    const std::uint32_t below = alphaOf(existing) == 0 ? cnWhite : existing;
    const int opacity = behindOpacity(alphaOf(colour), alphaOf(existing));
    return packColour(
        behindAlpha(alphaOf(colour), alphaOf(existing)), behindChannel(redOf(below), redOf(colour), opacity),
        behindChannel(greenOf(below), greenOf(colour), opacity), behindChannel(blueOf(below), blueOf(colour), opacity));
}
constexpr int overWhite(int channel, int alpha) { return cnByteMax - (cnByteMax - channel) * alpha / cnByteMax; }

} // namespace ovw::vimage

#endif // OVW_VIMAGE_PIXELCOLOUR_H
