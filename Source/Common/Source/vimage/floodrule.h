#ifndef OVW_VIMAGE_FLOODRULE_H
#define OVW_VIMAGE_FLOODRULE_H

#include "vimage/accessors.h"

#include <cstdint>

namespace ovw::vimage {

/// When a pixel of an image is taken for one of a fill's region. Values are those of one depth's accessors; up to 8
/// bits only their lowest byte counts.
struct FloodMatch {
    std::uint32_t reference = 0;
    int margin = 0;
    std::uint32_t compared = ~std::uint32_t{0}; ///< The bits that count.
    bool zeroIsWhite = false;                   ///< A value of 0 stands for transparent white.
    bool transparentIsOne = false;              ///< Transparent pixels match whatever their colours are.

    std::uint32_t seen(std::uint32_t value) const { return zeroIsWhite && value == 0 ? cnWhite : value; }

    bool operator()(std::uint32_t value) const {
        const std::uint32_t v = seen(value) & compared;
        const std::uint32_t ref = reference & compared;
        if (margin <= 0)
            return margin == 0 && (v == ref || (transparentIsOne && alphaOf(v) == 0 && alphaOf(ref) == 0));
        if (!isNear(alphaOf(v), alphaOf(ref)))
            return false;
        if (transparentIsOne && (alphaOf(v) == 0 || alphaOf(ref) == 0))
            return true;
        return isNear(redOf(v), redOf(ref)) && isNear(greenOf(v), greenOf(ref)) && isNear(blueOf(v), blueOf(ref));
    }

private:
    bool isNear(int a, int b) const { return (a < b ? b - a : a - b) <= margin; }
};

/// The pixel that a fill stores. Fills by 16-bit values take the luminance of a colour that is not grey.
template <int Bits, class Format>
constexpr typename Format::Value writtenValue(std::uint32_t value, const PixelRules& rules) {
    return writeAs < Bits == 16 ? 32 : Bits, Format > (value, rules);
}

} // namespace ovw::vimage

#endif // OVW_VIMAGE_FLOODRULE_H
