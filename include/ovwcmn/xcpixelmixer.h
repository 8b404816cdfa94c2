#ifndef OVWCMN_XCPIXELMIXER_H
#define OVWCMN_XCPIXELMIXER_H

/// @file
/// The per-pixel mixers: small rules that change one pixel by a colour and an 8-bit weight, and can be chained.

#include "ovwcmn/ovwdefs.h"
#include "ovwcmn/wintypes.h"

#include <cstdint>

class XCVOffscreen;

/// Stores the value or colour whatever the weight: the base of the mixing rules. XCVOffPixelMixer chains mixers and
/// applies them to the pixels of an image. Mixers are values; a copy shares the next mixer and the map image, which no
/// mixer owns and which must outlive the mixing. Nothing is thrown; one thread at a time uses a mixer and its pixel.
///
/// Pixels and colours are 0xAABBGGRR, 8-bit pixels are ink (255 = black), a weight is 0 to 255 with 255 for full
/// strength, and divisions truncate toward zero.
class OVWCMN_API XCPixelMixer {
public:
    XCPixelMixer() = default;
    XCPixelMixer(const XCPixelMixer&) = default;
    XCPixelMixer& operator=(const XCPixelMixer&) = default;

    /// @{ Mixes one pixel; what is handed on goes to the next mixer in the chain.
    virtual void Do2Bit(std::uint8_t* p, std::uint8_t value, std::uint8_t weight);
    virtual void Do8Bit(std::uint8_t* p, std::uint8_t value, std::uint8_t weight);
    virtual void Do24Bit(std::uint32_t* p, std::uint32_t colour, std::uint8_t weight);
    virtual void Do32Bit(std::uint32_t* p, std::uint32_t colour, std::uint8_t weight);
    /// @}
    virtual ~XCPixelMixer();

    /// The mixer behind this one in its chain, null at the end.
    XCPixelMixer* GetNext() const { return m_next; }
    /// Where XCPixelMixerAddAndSubtract stops; 0 to 255 at first. Stored channels stay bytes whatever the range.
    void SetChannelRange(int min, int max);
    /// Not 0: XCPixelMixerBlend leaves the alpha of 32-bit pixels alone. (The other rules that write an alpha exist to
    /// change it.)
    void SetNotChangeAlpha(int keep) { m_keepAlpha = keep; }
    int IsNotChangeAlpha() const { return m_keepAlpha; } ///< as set

protected:
    /// @{ Hand the pixel to the next mixer, if there is one.
    void Do2BitNext(std::uint8_t* p, std::uint8_t value, std::uint8_t weight);
    void Do8BitNext(std::uint8_t* p, std::uint8_t value, std::uint8_t weight);
    void Do24BitNext(std::uint32_t* p, std::uint32_t colour, std::uint8_t weight);
    void Do32BitNext(std::uint32_t* p, std::uint32_t colour, std::uint8_t weight);
    /// @}
    /// a + b, at most max.
    static int AddColorChannel(int a, int b, int max);
    /// a - b, at least 0.
    static int SubtractColorChannel(int a, int b);

private:
    friend class XCVOffPixelMixer;

    XCPixelMixer* m_next = nullptr;

protected:
    /// @{ see SetChannelRange
    int m_channelMin = 0;
    int m_channelMax = 255;
    /// @}
    int m_channelMax16 = 65535; ///< the maximum for 16-bit channels
    int m_keepAlpha = 0;        ///< see SetNotChangeAlpha
};

/// Paints the colour over the pixel. A colour without alpha and a weight of 0 change nothing.
class OVWCMN_API XCPixelMixerBlend : public XCPixelMixer {
public:
    void Do8Bit(std::uint8_t* p, std::uint8_t value, std::uint8_t weight) override;
    /// Clears the top byte of the pixel that it changes.
    void Do24Bit(std::uint32_t* p, std::uint32_t colour, std::uint8_t weight) override;
    void Do32Bit(std::uint32_t* p, std::uint32_t colour, std::uint8_t weight) override;
};

/// Moves every byte of the pixel, alpha included, toward the colour's by the weight.
class OVWCMN_API XCPixelMixerWeightCopy : public XCPixelMixer {
public:
    void Do8Bit(std::uint8_t* p, std::uint8_t value, std::uint8_t weight) override;
    void Do32Bit(std::uint32_t* p, std::uint32_t colour, std::uint8_t weight) override;
};

/// Adds to the ink or to the three colour channels within the channel range, or subtracts; the alpha is kept.
class OVWCMN_API XCPixelMixerAddAndSubtract : public XCPixelMixer {
public:
    /// What `subtract` begins as.
    explicit XCPixelMixerAddAndSubtract(int isSubtracting = 0) : subtract(isSubtracting) {}

    void Do8Bit(std::uint8_t* p, std::uint8_t value, std::uint8_t weight) override;
    void Do32Bit(std::uint32_t* p, std::uint32_t colour, std::uint8_t weight) override;

    int subtract; ///< 0: adds
};

/// Raises the pixel's ink or alpha to the weighted value, or lowers it there when lightening; a 32-bit pixel then takes
/// the colour along.
class OVWCMN_API XCPixelMixerDarkenAndLighten : public XCPixelMixer {
public:
    /// What `lighten` begins as.
    explicit XCPixelMixerDarkenAndLighten(int isLightening = 0) : lighten(isLightening) {}

    void Do8Bit(std::uint8_t* p, std::uint8_t value, std::uint8_t weight) override;
    void Do32Bit(std::uint32_t* p, std::uint32_t colour, std::uint8_t weight) override;

    int lighten; ///< 0: darkens
};

/// Erases, or darkens or lightens what is painted by a fifth of the weighted value at most 51. Other modes change
/// nothing.
class OVWCMN_API XCPixelMixerCorrect : public XCPixelMixer {
public:
    /// @{ What `mode` can be.
    static constexpr int cnErase = 0;
    static constexpr int cnDarken = 1;
    static constexpr int cnLighten = 2;
    /// @}

    explicit XCPixelMixerCorrect(int startMode = cnErase) : mode(startMode) {} ///< one of them

    void Do8Bit(std::uint8_t* p, std::uint8_t value, std::uint8_t weight) override;
    void Do32Bit(std::uint32_t* p, std::uint32_t colour, std::uint8_t weight) override;

    int mode; ///< one of them
};

/// Adds the weight to the ink or alpha, or subtracts it; value and colour do not matter. Other modes change nothing.
class OVWCMN_API XCPixelMixerAlphaEdit : public XCPixelMixer {
public:
    /// @{ What `mode` can be.
    static constexpr int cnAdd = 0;
    static constexpr int cnSubtract = 1;
    /// @}

    explicit XCPixelMixerAlphaEdit(int startMode = cnSubtract) : mode(startMode) {} ///< one of them

    void Do8Bit(std::uint8_t* p, std::uint8_t value, std::uint8_t weight) override;
    void Do32Bit(std::uint32_t* p, std::uint32_t colour, std::uint8_t weight) override;

    int mode; ///< one of them
};

/// Collects the pixels that it meets into an average and smears the colour handed in, the one carried along, over them.
/// Pixels that are 0 or 0x00FFFFFF count as empty and thin the average's alpha, not its hue; a carried colour like that
/// fades the pixel. Clear the average between dabs or strokes.
class OVWCMN_API XCPixelMixerSmudge : public XCPixelMixer {
public:
    explicit XCPixelMixerSmudge(int isSampling = 0) : sampleOnly(isSampling) {} ///< what `sampleOnly` begins as

    void Do8Bit(std::uint8_t* p, std::uint8_t value, std::uint8_t weight) override;
    void Do32Bit(std::uint32_t* p, std::uint32_t colour, std::uint8_t weight) override;

    /// @return 0, leaving `out` alone, before the first pixel was met
    int GetAverageColor(std::uint32_t& out) const;
    /// The average of 16-bit channels: alpha in bits 48 to 63, red 0 to 15, green 16 to 31, blue 32 to 47. Neither are
    /// the sums of 8-bit pixels scaled up for it, nor is its alpha thinned.
    /// @return 0, leaving `out` alone, before the first pixel was met
    int GetAverageColor64(std::uint64_t& out) const;
    void ClearAverageColor() { m_average = {}; } ///< Before the next dab or stroke.

    /// Not 0: only collect.
    int sampleOnly;

protected:
    using XCPixelMixer::AddColorChannel;
    /// Counts a pixel that is not empty; the channels of one average must all be 8 or all be 16 bits wide.
    void AddColorChannel(std::uint32_t a, std::uint32_t c0, std::uint32_t c1, std::uint32_t c2);
    void AddColorChannel8(std::uint8_t value);   ///< ink, as the alpha of a black pixel
    void AddColorChannel32(std::uint32_t pixel); ///< 0xAABBGGRR
    /// A pixel packed as GetAverageColor64 says.
    void AddColorChannel64(std::uint64_t pixel);

    XCPixelMixerWeightCopy m_weightCopy; ///< smears
    XCPixelMixerBlend m_blend;           ///< for rules derived from this one

private:
    // 64 bits, so that 16-bit channels do not wrap.
    struct Average {
        std::uint64_t alpha = 0;
        std::uint64_t channel[3] = {};
        std::uint64_t colored = 0;
        std::uint64_t visited = 0;
        std::uint64_t empty = 0;
    };
    Average m_average;
};

/// A soft round falloff: hands the pixel on with a weight that sinks with its distance from a centre.
class OVWCMN_API XCPixelMixerGaussian : public XCPixelMixer {
public:
    void Do8Bit(std::uint8_t* p, std::uint8_t value, std::uint8_t weight) override;
    void Do24Bit(std::uint32_t* p, std::uint32_t colour, std::uint8_t weight) override;
    void Do32Bit(std::uint32_t* p, std::uint32_t colour, std::uint8_t weight) override;
    ~XCPixelMixerGaussian() override;

    /// The pixel being mixed is the one under the map's cursor, which the caller moves; without a map the weight stays.
    /// Centre and radii, in pixels, are truncated, a radius is at least 1; the weight reaches 0 at half of it, so the
    /// radii are the diameters of the visible dab.
    void SetMapInfo(XCVOffscreen* map, tagPOINTD centre, double radiusX, double radiusY);
    /// The falloff's height: 127 keeps the full weight at the centre of a small dab, a smaller value widens the part of
    /// full weight, 0 (as at first) turns the falloff off.
    void SetBaseup(std::uint8_t baseup) { m_baseup = baseup; }

protected:
    /// What the falloff leaves of a weight of 0 to 255.
    std::uint32_t GetGaussValue(std::uint32_t weight) const;

private:
    XCVOffscreen* m_map = nullptr;
    int m_centreX = 0;
    int m_centreY = 0;
    int m_radiusX = 1;
    int m_radiusY = 1;
    std::uint8_t m_baseup = 0;
    float m_scale = 1.0f;
    int m_level = 127;
};

/// Ordered dither to hard pixels: hands the pixel on at full strength or not at all.
class OVWCMN_API XCPixelMixerDither : public XCPixelMixer {
public:
    void Do8Bit(std::uint8_t* p, std::uint8_t value, std::uint8_t weight) override;
    void Do24Bit(std::uint32_t* p, std::uint32_t colour, std::uint8_t weight) override;
    void Do32Bit(std::uint32_t* p, std::uint32_t colour, std::uint8_t weight) override;
    ~XCPixelMixerDither() override;

    /// The pixel being mixed is the one under the map's cursor, which the caller moves; (0, 0) without a map.
    void SetMapInfo(XCVOffscreen* map) { m_map = map; }

private:
    bool isDrawn(int value, int weight) const;

    XCVOffscreen* m_map = nullptr;
};

#endif // OVWCMN_XCPIXELMIXER_H
