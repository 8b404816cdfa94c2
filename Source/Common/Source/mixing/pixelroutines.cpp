#include "mixing/pixelroutines.h"

#include "ovwcmn/xccolor.h"
#include "ovwcmn/xcpixelmixer.h"
#include "ovwcmn/xcvoffscreen.h"
#include "vimage/pixelcolour.h"

#include <algorithm>

namespace ovw::mixing {

namespace {

// What a chain works on: the type of the pixel, how it is read and written, what a colour is to it, and the operation
// of the mixers that takes it.

struct Ink {
    using Pixel = std::uint8_t;
    static Pixel read(const XCVOffscreen& image) { return image.Get8BitColor(); }
    static void write(XCVOffscreen& image, Pixel pixel) { image.Set8BitColor(pixel); }
    static Pixel baseOf(std::uint32_t colour) { return static_cast<Pixel>(vimage::alphaOf(colour)); }
    static Pixel paintOf(std::uint32_t colour) { return baseOf(colour); }
    static constexpr auto cnOperation = &XCPixelMixer::Do8Bit;
};

struct InkByBrightness : Ink {
    static Pixel paintOf(std::uint32_t colour) {
        return static_cast<Pixel>(std::min(XCComplexColor(colour).GetInvertBrightness(), vimage::cnByteMax));
    }
};

struct Opaque {
    using Pixel = std::uint32_t;
    static Pixel read(const XCVOffscreen& image) { return image.Get24BitColor(); }
    static void write(XCVOffscreen& image, Pixel pixel) { image.Set24BitColor(pixel); }
    static Pixel baseOf(std::uint32_t colour) { return colour; }
    static Pixel paintOf(std::uint32_t colour) { return colour; }
    static constexpr auto cnOperation = &XCPixelMixer::Do24Bit;
};

struct WithAlpha : Opaque {
    static Pixel read(const XCVOffscreen& image) { return image.Get32BitColor(); }
    static void write(XCVOffscreen& image, Pixel pixel) { image.Set32BitColor(pixel); }
    static constexpr auto cnOperation = &XCPixelMixer::Do32Bit;
};

template <class Access>
void mixPixel(XCVOffscreen& image, XCPixelMixer& chain, std::uint32_t colour, std::uint8_t weight) {
    typename Access::Pixel pixel = Access::read(image);
    (chain.*Access::cnOperation)(&pixel, Access::paintOf(colour), weight);
    Access::write(image, pixel);
}

template <class Access>
void mixIntoColour(XCVOffscreen& image, XCPixelMixer& chain, std::uint32_t base, std::uint32_t colour,
                   std::uint8_t weight) {
    typename Access::Pixel pixel = Access::baseOf(base);
    (chain.*Access::cnOperation)(&pixel, Access::paintOf(colour), weight);
    Access::write(image, pixel);
}

template <class Access>
constexpr PixelRoutines cnRoutines = {&mixPixel<Access>, &mixIntoColour<Access>};

struct DepthRoutines {
    int depth;
    const PixelRoutines* byAlpha;
    const PixelRoutines* byBrightness;
};

constexpr DepthRoutines cnDepths[] = {
    {1, &cnRoutines<Ink>, &cnRoutines<InkByBrightness>}, {2, &cnRoutines<WithAlpha>, &cnRoutines<WithAlpha>},
    {8, &cnRoutines<Ink>, &cnRoutines<InkByBrightness>}, {16, &cnRoutines<Opaque>, &cnRoutines<Opaque>},
    {24, &cnRoutines<Opaque>, &cnRoutines<Opaque>},      {32, &cnRoutines<WithAlpha>, &cnRoutines<WithAlpha>},
};

} // namespace

const PixelRoutines* pixelRoutinesFor(int depth, bool inkByBrightness) {
    for (const DepthRoutines& routines : cnDepths)
        if (routines.depth == depth)
            return inkByBrightness ? routines.byBrightness : routines.byAlpha;
    return nullptr;
}

} // namespace ovw::mixing
