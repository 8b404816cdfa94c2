// The rules that change a pixel by its own value, a colour and a weight, and nothing else.

#include "ovwcmn/xcpixelmixer.h"

#include "mixing/byteweight.h"

#include <algorithm>
#include <limits>

using namespace ovw::mixing;
using namespace ovw::vimage;

// ---- The base

XCPixelMixer::~XCPixelMixer() = default;

void XCPixelMixer::Do2Bit(std::uint8_t* p, std::uint8_t value, std::uint8_t) { *p = value; }
void XCPixelMixer::Do8Bit(std::uint8_t* p, std::uint8_t value, std::uint8_t) { *p = value; }
void XCPixelMixer::Do24Bit(std::uint32_t* p, std::uint32_t colour, std::uint8_t) { *p = colour; }
void XCPixelMixer::Do32Bit(std::uint32_t* p, std::uint32_t colour, std::uint8_t) { *p = colour; }

void XCPixelMixer::Do2BitNext(std::uint8_t* p, std::uint8_t value, std::uint8_t weight) {
    if (m_next)
        m_next->Do2Bit(p, value, weight);
}

void XCPixelMixer::Do8BitNext(std::uint8_t* p, std::uint8_t value, std::uint8_t weight) {
    if (m_next)
        m_next->Do8Bit(p, value, weight);
}

void XCPixelMixer::Do24BitNext(std::uint32_t* p, std::uint32_t colour, std::uint8_t weight) {
    if (m_next)
        m_next->Do24Bit(p, colour, weight);
}

void XCPixelMixer::Do32BitNext(std::uint32_t* p, std::uint32_t colour, std::uint8_t weight) {
    if (m_next)
        m_next->Do32Bit(p, colour, weight);
}

void XCPixelMixer::SetChannelRange(int min, int max) {
    constexpr std::uint32_t cnByteToWide = 257;
    m_channelMin = min;
    m_channelMax = max;
    m_channelMax16 = static_cast<int>(static_cast<std::uint32_t>(max) * cnByteToWide);
}

int XCPixelMixer::AddColorChannel(int a, int b, int max) {
    constexpr std::int64_t cnLeast = std::numeric_limits<int>::min();
    return static_cast<int>(std::clamp(std::int64_t{a} + b, cnLeast, std::int64_t{max}));
}

int XCPixelMixer::SubtractColorChannel(int a, int b) {
    constexpr std::int64_t cnMost = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(std::int64_t{a} - b, std::int64_t{0}, cnMost));
}

// ---- Blend

namespace {

/// The colour over a pixel that is partly transparent; alpha is the colour's. In such a pixel the sum of both parts is
/// at least 1.
std::uint32_t blendedOverPartial(std::uint32_t pixel, std::uint32_t colour, int alpha) {
    const double below = (cnByteMax - alpha) * alphaOf(pixel) / static_cast<double>(Scale8::cnOne);
    const double sum = alpha + below;
    const auto channel = [&](int p, int c) {
        const double darkness = ((cnByteMax - c) * alpha + (cnByteMax - p) * below) / sum;
        return cnByteMax - static_cast<int>(darkness + 0.5);
    };
    return withAlpha(mixedChannels(pixel, colour, channel), std::min(static_cast<int>(sum + 0.5), cnByteMax));
}

std::uint32_t blended(std::uint32_t pixel, std::uint32_t colour, int alpha) {
    if (alphaOf(pixel) == 0)
        return withAlpha(colour, alpha);
    if (alphaOf(pixel) != cnByteMax)
        return blendedOverPartial(pixel, colour, alpha);
    return mixedChannels(
        pixel, colour, [alpha](int p, int c) { return cnByteMax - Scale8::lerp(cnByteMax - p, cnByteMax - c, alpha); });
}

} // namespace

void XCPixelMixerBlend::Do8Bit(std::uint8_t* p, std::uint8_t value, std::uint8_t weight) {
    *p = static_cast<std::uint8_t>(movedToward(*p, cnByteMax, weighted(value, weight)));
}

void XCPixelMixerBlend::Do24Bit(std::uint32_t* p, std::uint32_t colour, std::uint8_t weight) {
    if (alphaOf(colour) == 0 || weight == 0)
        return;
    const int alpha = weighted(alphaOf(colour), weight);
    *p = mixedChannels(*p & cnRgbMask, colour, [alpha](int from, int to) { return movedToward(from, to, alpha); });
}

void XCPixelMixerBlend::Do32Bit(std::uint32_t* p, std::uint32_t colour, std::uint8_t weight) {
    if (alphaOf(colour) == 0 || weight == 0)
        return;
    const std::uint32_t pixel = blended(*p, colour, weighted(alphaOf(colour), weight));
    *p = m_keepAlpha ? withAlpha(pixel, alphaOf(*p)) : pixel;
}

// ---- Weight copy

void XCPixelMixerWeightCopy::Do8Bit(std::uint8_t* p, std::uint8_t value, std::uint8_t weight) {
    *p = static_cast<std::uint8_t>(movedToward(*p, value, weight));
}

void XCPixelMixerWeightCopy::Do32Bit(std::uint32_t* p, std::uint32_t colour, std::uint8_t weight) {
    const auto toward = [weight](int from, int to) { return movedToward(from, to, weight); };
    *p = withAlpha(mixedChannels(*p, colour, toward), toward(alphaOf(*p), alphaOf(colour)));
}

// ---- Add and subtract

void XCPixelMixerAddAndSubtract::Do8Bit(std::uint8_t* p, std::uint8_t value, std::uint8_t weight) {
    if (weight == 0)
        return;
    const int amount = weighted(value, weight);
    *p = toByte(subtract ? std::max(m_channelMin, SubtractColorChannel(*p, amount))
                         : AddColorChannel(*p, amount, m_channelMax));
}

void XCPixelMixerAddAndSubtract::Do32Bit(std::uint32_t* p, std::uint32_t colour, std::uint8_t weight) {
    *p = mixedChannels(*p, colour, [this, weight](int from, int by) {
        auto channel = static_cast<std::uint8_t>(from);
        XCPixelMixerAddAndSubtract::Do8Bit(&channel, static_cast<std::uint8_t>(by), weight);
        return channel;
    });
}

// ---- Darken and lighten

void XCPixelMixerDarkenAndLighten::Do8Bit(std::uint8_t* p, std::uint8_t value, std::uint8_t weight) {
    const int target = scaledBy(weight, value);
    if (lighten ? *p > target : *p < target)
        *p = static_cast<std::uint8_t>(target);
}

void XCPixelMixerDarkenAndLighten::Do32Bit(std::uint32_t* p, std::uint32_t colour, std::uint8_t weight) {
    const int target = scaledBy(weight, alphaOf(colour));
    if (lighten ? alphaOf(*p) > target : alphaOf(*p) < target)
        *p = withAlpha(colour, target);
}

// ---- Correct. Ink grows darker upward, a colour channel downward.

void XCPixelMixerCorrect::Do8Bit(std::uint8_t* p, std::uint8_t value, std::uint8_t weight) {
    if (value == 0 || weight == 0)
        return;
    const int amount = scaledBy(weight, value);
    const int step = amount / Scale8::cnStepShare;
    if (mode == cnErase)
        *p = toByte(*p - amount);
    else if (*p > 0 && (mode == cnDarken || mode == cnLighten))
        *p = toByte(mode == cnDarken ? *p + step : *p - step);
}

void XCPixelMixerCorrect::Do32Bit(std::uint32_t* p, std::uint32_t colour, std::uint8_t weight) {
    if (alphaOf(colour) == 0 || weight == 0)
        return;
    const int amount = scaledBy(weight, alphaOf(colour));
    const int step = amount / Scale8::cnStepShare;
    if (mode == cnErase)
        *p = withAlpha(*p, toByte(alphaOf(*p) - amount));
    else if (alphaOf(*p) > 0 && (mode == cnDarken || mode == cnLighten))
        *p = mixedChannels(*p, *p, [&](int c, int) { return toByte(mode == cnDarken ? c - step : c + step); });
}

// ---- Alpha edit

void XCPixelMixerAlphaEdit::Do8Bit(std::uint8_t* p, std::uint8_t, std::uint8_t weight) {
    if (mode == cnAdd || mode == cnSubtract)
        *p = toByte(mode == cnAdd ? *p + weight : *p - weight);
}

void XCPixelMixerAlphaEdit::Do32Bit(std::uint32_t* p, std::uint32_t, std::uint8_t weight) {
    auto alpha = static_cast<std::uint8_t>(alphaOf(*p));
    XCPixelMixerAlphaEdit::Do8Bit(&alpha, 0, weight);
    *p = withAlpha(*p, alpha);
}
