#include "vimage/colourcount.h"

#include "ovwcmn/xcblockgetter.h"
#include "ovwcmn/xcvoffscreen.h"
#include "vimage/withformat.h"

#include <array>
#include <cstdint>

namespace ovw::vimage {

namespace {

constexpr int cnMostColours = 256;

/// A set of up to cnMostColours values and one more, by open addressing.
class ColourSet {
public:
    void add(std::uint32_t colour) {
        if (isFull() || (m_count > 0 && colour == m_latest))
            return;
        m_latest = colour;
        unsigned place = colour * cnSpread >> cnPlaceShift;
        while (m_isUsed[place] && m_colours[place] != colour)
            place = (place + 1) % cnPlaces;
        if (m_isUsed[place])
            return;
        m_isUsed[place] = true;
        m_colours[place] = colour;
        ++m_count;
    }
    bool isFull() const { return m_count > cnMostColours; }
    int count() const { return m_count; }

private:
    static constexpr unsigned cnPlaces = 1024;
    static constexpr int cnPlaceShift = 22;               // to the 10 highest bits
    static constexpr std::uint32_t cnSpread = 0x9E3779B1; // 2^32 by the golden ratio

    std::array<std::uint32_t, cnPlaces> m_colours{};
    std::array<bool, cnPlaces> m_isUsed{};
    std::uint32_t m_latest = 0;
    int m_count = 0;
};

template <class Format>
void addPart(std::uint8_t* base, const XCRect& part, const PixelRules& rules, ColourSet& colours) {
    for (int y = part.top; y < part.bottom && !colours.isFull(); ++y)
        Format::visitRow(rowOf<Format>(base, y), part.left & cnBlockMask, part.Width(),
                         [&](typename Format::Value v) { colours.add(Format::read24(v, rules)); });
}

template <class Format>
int countColours(XCVOffscreen& image) {
    ColourSet colours;
    XCBlockGetter blocks(&image, image.GetRect(), 1);
    XCRect part;
    while (!colours.isFull() && blocks.GetNextBlock(part)) {
        image.MoveCursor(part.left, part.top);
        if (std::uint8_t* const base = image.GetBaseAddress())
            addPart<Format>(base, part, image.GetPixelRules(), colours);
        else
            colours.add(cnWhite);
    }
    return colours.count();
}

} // namespace

int countColours(XCVOffscreen& image) {
    constexpr int cnNotCounted = -1;
    return withFormat(image.GetDepth(), [&]<class Format>() {
        if constexpr (Format::cnBits >= Rgb24::cnBits)
            return countColours<Format>(image);
        else
            return cnNotCounted;
    });
}

} // namespace ovw::vimage
