#include "ovwcmn/xcpixelmixer.h"

#include "mixing/byteweight.h"

using namespace ovw::mixing;
using namespace ovw::vimage;

namespace {

/// So many pixels of 255 fill 32 bits: then the sums shrink to the average of one pixel and grow again from there.
constexpr std::uint64_t cnMostColored = 0x01010101;
constexpr std::uint64_t cnWideMax = 0xFFFF;

/// Where a pixel of 16-bit channels has them.
constexpr int cnWideAlphaShift = 48;
constexpr int cnWideShift = 16;

} // namespace

void XCPixelMixerSmudge::AddColorChannel(std::uint32_t a, std::uint32_t c0, std::uint32_t c1, std::uint32_t c2) {
    m_average.alpha += a;
    m_average.channel[0] += c0;
    m_average.channel[1] += c1;
    m_average.channel[2] += c2;
    m_average.visited++;
    if (++m_average.colored < cnMostColored)
        return;
    m_average.alpha /= cnMostColored;
    for (std::uint64_t& sum : m_average.channel)
        sum /= cnMostColored;
    m_average.colored = 1;
}

void XCPixelMixerSmudge::AddColorChannel8(std::uint8_t value) { AddColorChannel(value, 0, 0, 0); }

void XCPixelMixerSmudge::AddColorChannel32(std::uint32_t pixel) {
    if (!isEmptyPixel(pixel))
        return AddColorChannel(pixel >> 24, pixel & 0xFF, pixel >> 8 & 0xFF, pixel >> 16 & 0xFF);
    m_average.empty++;
    m_average.visited++;
}

void XCPixelMixerSmudge::AddColorChannel64(std::uint64_t pixel) {
    const auto channel = [pixel](int shift) { return static_cast<std::uint32_t>(pixel >> shift & cnWideMax); };
    AddColorChannel(channel(cnWideAlphaShift), channel(0), channel(cnWideShift), channel(2 * cnWideShift));
}

int XCPixelMixerSmudge::GetAverageColor(std::uint32_t& out) const {
    if (m_average.visited == 0)
        return 0;
    const std::uint64_t count = m_average.colored;
    const auto byteOf = [](std::uint64_t sum, std::uint64_t n) { return static_cast<int>(n ? sum / n & 0xFF : 0); };
    out = packColour(byteOf(m_average.alpha, count ? count + m_average.empty : 0), byteOf(m_average.channel[0], count),
                     byteOf(m_average.channel[1], count), byteOf(m_average.channel[2], count));
    return 1;
}

int XCPixelMixerSmudge::GetAverageColor64(std::uint64_t& out) const {
    if (m_average.visited == 0)
        return 0;
    const std::uint64_t count = m_average.colored ? m_average.colored : 1;
    const auto placed = [count](std::uint64_t sum, int shift) { return (sum / count & cnWideMax) << shift; };
    out = placed(m_average.alpha, cnWideAlphaShift) | placed(m_average.channel[0], 0) |
          placed(m_average.channel[1], cnWideShift) | placed(m_average.channel[2], 2 * cnWideShift);
    return 1;
}

void XCPixelMixerSmudge::Do8Bit(std::uint8_t* p, std::uint8_t value, std::uint8_t weight) {
    AddColorChannel8(*p);
    if (!sampleOnly)
        m_weightCopy.Do8Bit(p, value, weight);
}

void XCPixelMixerSmudge::Do32Bit(std::uint32_t* p, std::uint32_t colour, std::uint8_t weight) {
    AddColorChannel32(*p);
    if (sampleOnly)
        return;
    if (isEmptyPixel(colour)) // nothing is carried yet
        *p = withAlpha(*p, movedToward(alphaOf(*p), 0, weight));
    else if (isEmptyPixel(*p))
        *p = withAlpha(colour, weighted(alphaOf(colour), weight));
    else
        m_weightCopy.Do32Bit(p, colour, weight);
}
