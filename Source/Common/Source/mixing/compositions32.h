#ifndef OVW_MIXING_COMPOSITIONS32_H
#define OVW_MIXING_COMPOSITIONS32_H

/// @file
/// How paint meets a 32-bit pixel: a struct a composition. o is a channel of the pixel below and oA its alpha, c the
/// paint's channel, a the opacity in 1.15 and f the same as a float, b the opacity as a byte.
///
/// Facts that a compositor needs: whether a composition acts on pixels of alpha 0, leaves those alone when the alpha is
/// kept, changes the alpha, changes the colour, looks at an alpha of the paint's colour, and leaves the colour of a
/// pixel alone whose alpha it brings down to 0.

#include "mixing/fixedpoint.h"
#include "mixing/pixel32.h"

#include <cstdint>

namespace ovw::mixing {
namespace {

// ---- Compositions of whole pixels: pixel(below, paint, opacity, bits to keep)

struct ActsEverywhere {
    static constexpr bool cnActsOnEmpty = true;
    static constexpr bool cnKeepsEmpty = false;
    static constexpr bool cnChangesAlpha = true;
    static constexpr bool cnChangesColor = true;
    static constexpr bool cnUsesPaintAlpha = false;
    static constexpr bool cnLeavesVanished = false;
};

/// The paint has an alpha of its own, cA. With the alpha kept, pixels without alpha stay as they are.
struct PaintsImages : ActsEverywhere {
    static constexpr bool cnKeepsEmpty = true;
    static constexpr bool cnUsesPaintAlpha = true;
};

// c, alpha from a
struct Replace15 : ActsEverywhere {
    static std::uint32_t pixel(std::uint32_t, std::uint32_t c, std::int32_t a, std::uint32_t) {
        return c | static_cast<std::uint32_t>(Scale15::toByte(a)) << 24;
    }
};

// N = (1 - a) * oA + a * 255; lerp(o, c, a * 255 / N), alpha N; over nothing c, alpha from a.
// An alpha that is kept counts as full. The quotient is exact: its terms and its distance from the next integer fit a
// float's 24 bits. For oA = 255 it is a.
struct Normal15 : ActsEverywhere {
    struct OverOpaque : ActsEverywhere {
        static std::uint32_t pixel(std::uint32_t o, std::uint32_t c, std::int32_t a, std::uint32_t) {
            return eachChannel(o, c, 255, [a](std::int32_t p, std::int32_t q) { return Scale15::lerp(p, q, a); });
        }
    };
    static std::uint32_t pixel(std::uint32_t o, std::uint32_t c, std::int32_t a, std::uint32_t keep) {
        const std::int32_t oA = alphaOf(o);
        const std::int32_t below = oA | alphaOf(keep);
        const std::int32_t alpha = (below * Scale15::cnOne + a * (255 - below)) >> Scale15::cnBits;
        const float share = static_cast<float>(a * 255) / static_cast<float>(most(alpha, 1));
        const std::int32_t w = oA == 0 ? Scale15::cnOne : least(static_cast<std::int32_t>(share), Scale15::cnOne);
        return eachChannel(o, c, oA == 0 ? Scale15::toByte(a) : alpha,
                           [w](std::int32_t p, std::int32_t q) { return Scale15::lerp(p, q, w); });
    }
};

// alpha (1 - a) * oA
struct Erase15 : ActsEverywhere {
    static constexpr bool cnActsOnEmpty = false;
    static constexpr bool cnChangesColor = false;
    static std::uint32_t pixel(std::uint32_t o, std::uint32_t, std::int32_t a, std::uint32_t) {
        return packed(0, 0, 0, Scale15::scaledRound(alphaOf(o), Scale15::cnOne - a));
    }
};

// Over nothing c; over an opaque pixel (1 - (1 - c) * a) * o; else, with S = f * 255 + (1 - f) * oA and k = oA / S,
// c * (1 - k) + (f / 255 * k * c + (1 - f) * k) * o, alpha S.
struct Multiply15 : ActsEverywhere {
    struct OverOpaque : ActsEverywhere {
        static std::uint32_t pixel(std::uint32_t o, std::uint32_t c, std::int32_t a, std::uint32_t) {
            return eachChannel(o, c, 255, [a](std::int32_t p, std::int32_t q) {
                return Scale15::overByteOneRound((Scale15::cnByteOne - (255 - q) * a) * p);
            });
        }
    };
    struct OverPartial : ActsEverywhere {
        static std::uint32_t pixel(std::uint32_t o, std::uint32_t c, std::int32_t a, std::uint32_t keep) {
            const float f = Scale15::toFloat(a);
            const float below = static_cast<float>(most(alphaOf(o), 1));
            const float sum = f * 255.0f + (1.0f - f) * below;
            const float k = below / sum;
            const std::uint32_t partly =
                eachChannel(o, c, least(rounded(sum), 255), [f, k](std::int32_t p, std::int32_t q) {
                    const float paint = static_cast<float>(q);
                    const float share = f / 255.0f * k * paint + (1.0f - f) * k;
                    return least(rounded(paint * (1.0f - k) + share * static_cast<float>(p)), 255);
                });
            return alphaOf(o) == 0 ? Replace15::pixel(o, c, a, keep) : partly;
        }
    };
    static std::uint32_t pixel(std::uint32_t o, std::uint32_t c, std::int32_t a, std::uint32_t keep) {
        const bool isOpaque = (alphaOf(o) != 0) & (alphaOf(o | keep) == 255);
        return isOpaque ? OverOpaque::pixel(o, c, a, keep) : OverPartial::pixel(o, c, a, keep);
    }
};

// With an alpha that may change, o is first flattened: o' = (oA * o + 255 * (255 - oA) * f) / ((255 - oA) * f + oA),
// alpha oA + 255 * f. c > 127: o' + (2c - 255) * (255 - o') / 255 * f; else (1 - (1 - 2c / 255) * f) * o'.
// cnLight: the channels with c > 127, blue in the lowest bit, where a row has one colour; below 0 it is each pixel's.
template <int cnLight = -1>
struct HardLight15 : ActsEverywhere {
    struct OverOpaque : ActsEverywhere {
        static std::uint32_t pixel(std::uint32_t o, std::uint32_t c, std::int32_t a, std::uint32_t) {
            return lit(o, c, 255, Scale15::toFloat(a), [](std::int32_t p) { return static_cast<float>(p); });
        }
    };
    static std::uint32_t pixel(std::uint32_t o, std::uint32_t c, std::int32_t a, std::uint32_t keep) {
        const float f = Scale15::toFloat(a);
        const float oA = static_cast<float>(alphaOf(o) | alphaOf(keep));
        const float white = (255.0f - oA) * f;
        const float weight = white + oA > 0.0f ? white + oA : 1.0f;
        const std::int32_t alpha = least(rounded(oA + 255.0f * f), 255);
        return lit(o, c, alpha, f, [oA, white, weight](std::int32_t p) {
            return (oA * static_cast<float>(p) + 255.0f * white) / weight;
        });
    }

private:
    template <class Flattened>
    static std::uint32_t lit(std::uint32_t o, std::uint32_t c, std::int32_t alpha, float f, Flattened flattened) {
        return packed(channel<0>(flattened(blueOf(o)), blueOf(c), f), channel<1>(flattened(greenOf(o)), greenOf(c), f),
                      channel<2>(flattened(redOf(o)), redOf(c), f), alpha);
    }
    template <int cnBit>
    static std::int32_t channel(float flat, std::int32_t c, float f) {
        const float twice = static_cast<float>(2 * c);
        const float light = flat + (twice - 255.0f) * (255.0f - flat) / 255.0f * f;
        const float dark = (1.0f - (1.0f - twice / 255.0f) * f) * flat;
        const bool isLight = cnLight < 0 ? c > 127 : (cnLight >> cnBit & 1) != 0;
        return least(rounded(isLight ? light : dark), 255);
    }
};

// ---- Paint that is an image or a colour cache: c with an alpha cA

// N = (1 - a) * oA + a * cA: lerp(o, c, a * cA / N), alpha N; over nothing c, alpha a * cA; c itself at full opacity.
struct Water15 : PaintsImages {
    static constexpr bool cnLeavesVanished = true;
    static std::uint32_t pixel(std::uint32_t o, std::uint32_t c, std::int32_t a, std::uint32_t keep) {
        const std::int32_t below = alphaOf(o | keep);
        const std::int32_t paint = alphaOf(c);
        const std::int32_t alpha = Scale15::lerp(below, paint, a);
        const float share = static_cast<float>(paint * a) / static_cast<float>(most(alpha, 1));
        const std::int32_t w = alpha == 0 ? 0 : least(static_cast<std::int32_t>(share), Scale15::cnOne);
        const std::uint32_t mixed =
            eachChannel(o, c, alpha, [w](std::int32_t p, std::int32_t q) { return Scale15::lerp(p, q, w); });
        const bool copies = (a == Scale15::cnOne) | (alphaOf(o) == 0);
        return copies ? (c & ~cnAlphaMask) | static_cast<std::uint32_t>(alpha) << 24 : mixed;
    }
};

// k = a * cA / N: o * (1 - k) + k * c * (o / 255 * oA / 255 + 1 - oA / 255), alpha N; over nothing as Water; k = 1 at
// full opacity.
struct WaterMultiply15 : PaintsImages {
    static constexpr bool cnLeavesVanished = true;
    static std::uint32_t pixel(std::uint32_t o, std::uint32_t c, std::int32_t a, std::uint32_t keep) {
        const std::int32_t below = alphaOf(o | keep);
        const std::int32_t paint = alphaOf(c);
        const std::int32_t alpha = Scale15::lerp(below, paint, a);
        const std::int32_t sum = most(alpha, 1) * Scale15::cnOne;
        const std::int32_t overSome = alpha == 0 ? 0 : least(paint * a, sum);
        const float k = static_cast<float>(a == Scale15::cnOne ? sum : overSome) / static_cast<float>(sum);
        const float share = static_cast<float>(below) / 255.0f;
        const std::uint32_t mixed = eachChannel(o, c, alpha, [k, share](std::int32_t p, std::int32_t q) {
            const float under = static_cast<float>(p);
            const float product = static_cast<float>(q) * (under / 255.0f * share + (1.0f - share));
            return least(rounded(under * (1.0f - k) + k * product), 255);
        });
        const std::uint32_t copy = (c & ~cnAlphaMask) | static_cast<std::uint32_t>(alpha) << 24;
        return alphaOf(o) == 0 ? copy : mixed;
    }
};

// lerp of all four channels; over nothing c, alpha a * cA; where c is nothing only the alpha fades (so that nothing
// over nothing of a kept alpha changes nothing); c itself at full opacity.
struct Blur15 : ActsEverywhere {
    static constexpr bool cnUsesPaintAlpha = true;
    static std::uint32_t pixel(std::uint32_t o, std::uint32_t c, std::int32_t a, std::uint32_t keep) {
        const std::int32_t alpha = Scale15::lerp(alphaOf(o), alphaOf(c), a);
        const int shows = int{alphaOf(o) == 0} & int{alphaOf(c | ~keep) != 0};
        const int copies = int{a == Scale15::cnOne} | shows;
        const std::int32_t fading = alphaOf(c) == 0 ? 0 : a;
        const std::int32_t w = copies != 0 ? Scale15::cnOne : fading;
        return eachChannel(o, c, alpha, [w](std::int32_t p, std::int32_t q) { return Scale15::lerp(p, q, w); });
    }
};

// D = (1 - a) * oA + a * cA, k = a * cA / D: o * (1 - k) + c * k, alpha D; c itself at full opacity.
struct Clone15 : PaintsImages {
    static std::uint32_t pixel(std::uint32_t o, std::uint32_t c, std::int32_t a, std::uint32_t keep) {
        const std::int32_t below = alphaOf(o | keep);
        const std::int32_t paint = alphaOf(c);
        const std::int32_t sum = (Scale15::cnOne - a) * below + paint * a;
        const float k = static_cast<float>(paint * a) / static_cast<float>(most(sum, 1));
        const std::uint32_t mixed =
            eachChannel(o, c, Scale15::lerp(below, paint, a), [k](std::int32_t p, std::int32_t q) {
                return least(rounded(static_cast<float>(p) * (1.0f - k) + static_cast<float>(q) * k), 255);
            });
        return ((a == Scale15::cnOne) & (keep == 0)) ? c : mixed;
    }
};

// ---- The same on bytes, with truncating divisions

struct Replace8 : ActsEverywhere {
    static std::uint32_t pixel(std::uint32_t, std::uint32_t c, std::int32_t b, std::uint32_t) {
        return c | static_cast<std::uint32_t>(b) << 24;
    }
};

// Q = (255 - b) * oA, D = Q + 255 * b: (o * Q + c * b * 255) / D rounded, alpha D / 255 rounded. Over an opaque pixel,
// or with the alpha kept, the quotient is truncated. Over nothing it is c, alpha b. All terms are integers below 2^24,
// so that only the reciprocal rounds; 1/512 lifts it over an integer that it must not miss and reaches no other.
struct Normal8 : ActsEverywhere {
    static std::uint32_t pixel(std::uint32_t o, std::uint32_t c, std::int32_t b, std::uint32_t keep) {
        const std::int32_t oA = alphaOf(o);
        const std::int32_t below = oA == 0 ? 0 : oA | alphaOf(keep);
        const float weight = static_cast<float>((255 - b) * below);
        const float sum = weight + static_cast<float>(255 * b);
        const float reciprocal = 1.0f / (sum > 1.0f ? sum : 1.0f);
        const float lift = below == 255 ? 1.0f / 512.0f : 0.5f;
        const std::int32_t paint = 255 * b;
        return eachChannel(o, c, rounded(sum * (1.0f / 255.0f)), [=](std::int32_t p, std::int32_t q) {
            const float mixed = static_cast<float>(p) * weight + static_cast<float>(q * paint);
            return static_cast<std::int32_t>(mixed * reciprocal + lift);
        });
    }
};

struct Erase8 : Erase15 {
    static std::uint32_t pixel(std::uint32_t o, std::uint32_t, std::int32_t b, std::uint32_t) {
        return packed(0, 0, 0, Scale8::scaled(alphaOf(o), Scale8::cnOne - b));
    }
};

// ---- Compositions of channels: channel(o, c, a). They leave the alpha alone, and pixels without alpha.

template <class Mode>
struct Channelwise : ActsEverywhere {
    static constexpr bool cnActsOnEmpty = false;
    static constexpr bool cnChangesAlpha = false;
    Mode mode{};
    std::uint32_t pixel(std::uint32_t o, std::uint32_t c, std::int32_t a, std::uint32_t) const {
        return eachChannel(o, c, 0, [this, a](std::int32_t p, std::int32_t q) { return mode.channel(p, q, a); });
    }
};

// o - a / 5
struct DarkenStep15 {
    static std::int32_t channel(std::int32_t o, std::int32_t, std::int32_t a) {
        return most(o - Scale15::scaled(Scale15::cnStep, a), 0);
    }
};

// o + a / 5
struct LightenStep15 {
    static std::int32_t channel(std::int32_t o, std::int32_t, std::int32_t a) {
        return least(o + Scale15::scaled(Scale15::cnStep, a), 255);
    }
};

struct DarkenStep8 {
    static std::int32_t channel(std::int32_t o, std::int32_t, std::int32_t b) {
        return most(o - b / Scale8::cnStepShare, 0);
    }
};

struct LightenStep8 {
    static std::int32_t channel(std::int32_t o, std::int32_t, std::int32_t b) {
        return least(o + b / Scale8::cnStepShare, 255);
    }
};

// o + a * c
struct Add15 {
    static std::int32_t channel(std::int32_t o, std::int32_t c, std::int32_t a) {
        return least(o + Scale15::scaledRound(c, a), 255);
    }
};

// max(o, a * c)
struct Lighten15 {
    static std::int32_t channel(std::int32_t o, std::int32_t c, std::int32_t a) {
        return most(o, Scale15::scaledRound(c, a));
    }
};

// min(o, lerp(o, c, a))
struct Darken15 {
    static std::int32_t channel(std::int32_t o, std::int32_t c, std::int32_t a) {
        return least(o, Scale15::lerp(o, c, a));
    }
};

// c' = c * f + 255 * (1 - f): 255 - (255 - o) * 255 / c', 0 where c' + o < 255
struct ColorBurn15 {
    static std::int32_t channel(std::int32_t o, std::int32_t c, std::int32_t a) {
        const float f = Scale15::toFloat(a);
        const float paint = static_cast<float>(c) * f + 255.0f * (1.0f - f);
        const float quotient = static_cast<float>((255 - o) * 255) / (paint > 0.0f ? paint : 1.0f);
        const std::int32_t burnt = 255 - rounded(quotient < 255.0f ? quotient : 255.0f);
        return paint + static_cast<float>(o) < 255.0f ? 0 : burnt;
    }
};

// o + c < 256: (255 * f / (255 - c) + 1 - f) * o; else o + (255 - o) * f
struct ColorDodge15 {
    static std::int32_t channel(std::int32_t o, std::int32_t c, std::int32_t a) {
        const float f = Scale15::toFloat(a);
        const float gain = 255.0f * f / static_cast<float>(most(255 - c, 1)) + 1.0f - f;
        const std::int32_t dodged = rounded(gain * static_cast<float>(o));
        const std::int32_t faded = o + rounded(static_cast<float>(255 - o) * f);
        return least(o + c < 256 ? dodged : faded, 255);
    }
};

// o + (255 - o) * c * f / 255
struct Screen15 {
    static std::int32_t channel(std::int32_t o, std::int32_t c, std::int32_t a) {
        return o + Scale15::overByteOneRound((255 - o) * c * a);
    }
};

// o > 127: (1 - f) * o + f * (255 - 2 * (255 - o) * (255 - c) / 255); else ((2 * c / 255 - 1) * f + 1) * o
struct Overlay15 {
    static std::int32_t channel(std::int32_t o, std::int32_t c, std::int32_t a) {
        const float f = Scale15::toFloat(a);
        const float below = static_cast<float>(o);
        const float light = (1.0f - f) * below + f * (255.0f - static_cast<float>(2 * (255 - o) * (255 - c)) / 255.0f);
        const float dark = ((static_cast<float>(2 * c) / 255.0f - 1.0f) * f + 1.0f) * below;
        return rounded(o > 127 ? light : dark);
    }
};

// |a * c - o|
struct Difference15 {
    static std::int32_t channel(std::int32_t o, std::int32_t c, std::int32_t a) {
        const std::int32_t difference = Scale15::scaledRound(c, a) - o;
        return most(difference, -difference);
    }
};

// s = 255 * pow(o / 255, c > 127 ? 128 / c : (255 - c) / 128): o + (s - o) * f
struct SoftLight15 {
    const float* curves = nullptr;
    std::int32_t channel(std::int32_t o, std::int32_t c, std::int32_t a) const {
        const float f = Scale15::toFloat(a);
        const float below = static_cast<float>(o);
        const float curved = curves[c * 256 + o];
        const std::int32_t lighter = rounded((curved - below) * f + below);
        const std::int32_t darker = o - rounded((below - curved) * f);
        return c > 127 ? lighter : darker;
    }
};

// lerp(o, min(255, o + c), a)
struct AddFade15 {
    static std::int32_t channel(std::int32_t o, std::int32_t c, std::int32_t a) {
        return Scale15::lerp(o, least(o + c, 255), a);
    }
};

} // namespace
} // namespace ovw::mixing

#endif // OVW_MIXING_COMPOSITIONS32_H
