#ifndef OVW_VIMAGE_MERGEBEHIND_H
#define OVW_VIMAGE_MERGEBEHIND_H

#include "vimage/pixelformats.h"

namespace ovw::vimage {

/// The pixel in front flattened onto white, with the colour of the one behind mixed in by what shows of it.
constexpr BgraPixel tintedBehind(BgraPixel behind, BgraPixel front) {
    const int opacity = behindOpacity(behind.alpha, front.alpha);
    const int alpha = behindAlpha(behind.alpha, front.alpha);
    const auto channel = [&](int below, int above) {
        const int mixed = behindChannel(overWhite(above, front.alpha), below, opacity);
        if (alpha == cnByteMax)
            return byteOf(mixed);
        // 255 - (255 - mixed) x 255 / alpha, truncated after the subtraction.
        const int white = ((cnByteMax - mixed) * cnByteMax + alpha - 1) / alpha;
        return byteOf(white < cnByteMax ? cnByteMax - white : 0);
    };
    return {channel(behind.blue, front.blue), channel(behind.green, front.green), channel(behind.red, front.red),
            byteOf(alpha)};
}

/// Whether a pixel behind another one changes what is seen.
constexpr bool showsBehind(BgraPixel behind, BgraPixel front) { return behind.alpha != 0 && front.alpha != cnByteMax; }

/// Of pixels for which showsBehind holds.
constexpr BgraPixel mergedBehind(BgraPixel behind, BgraPixel front) {
    return front.alpha == 0 ? behind : tintedBehind(behind, front);
}

/// Two densities over each other.
constexpr std::uint8_t unitedDensity(int a, int b) {
    return byteOf(cnByteMax - (cnByteMax - a) * (cnByteMax - b) / cnByteMax);
}

} // namespace ovw::vimage

#endif // OVW_VIMAGE_MERGEBEHIND_H
