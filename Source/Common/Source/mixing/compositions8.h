#ifndef OVW_MIXING_COMPOSITIONS8_H
#define OVW_MIXING_COMPOSITIONS8_H

/// @file
/// How paint meets a density: v is the density below (0 empty, 255 full), a the opacity in 1.15, b as a byte. The
/// paint's colour has no part in it.

#include "mixing/fixedpoint.h"

namespace ovw::mixing {
namespace {

// a
struct DensityReplace15 {
    static std::int32_t density(std::int32_t, std::int32_t a) { return Scale15::toByte(a); }
};

// v + (255 - v) * a
struct DensityNormal15 {
    static std::int32_t density(std::int32_t v, std::int32_t a) { return v + Scale15::scaledRound(255 - v, a); }
};

// v * (1 - a); also the lightening by Screen
struct DensityErase15 {
    static std::int32_t density(std::int32_t v, std::int32_t a) { return Scale15::scaledRound(v, Scale15::cnOne - a); }
};

// v + a / 5, only where there is ink
struct DensityDarkenStep15 {
    static std::int32_t density(std::int32_t v, std::int32_t a) {
        return v == 0 ? 0 : least(v + Scale15::scaled(Scale15::cnStep, a), 255);
    }
};

// v - a / 5
struct DensityLightenStep15 {
    static std::int32_t density(std::int32_t v, std::int32_t a) {
        return most(v - Scale15::scaled(Scale15::cnStep, a), 0);
    }
};

// v - a: Add, ColorDodge, AddFade
struct DensitySubtract15 {
    static std::int32_t density(std::int32_t v, std::int32_t a) { return most(v - Scale15::toByte(a), 0); }
};

// min(v, 255 * (1 - a))
struct DensityLighten15 {
    static std::int32_t density(std::int32_t v, std::int32_t a) {
        return least(v, Scale15::scaledRound(255, Scale15::cnOne - a));
    }
};

// max(v, a)
struct DensityDarken15 {
    static std::int32_t density(std::int32_t v, std::int32_t a) { return most(v, Scale15::toByte(a)); }
};

// v + a
struct DensityBurn15 {
    static std::int32_t density(std::int32_t v, std::int32_t a) { return least(v + Scale15::toByte(a), 255); }
};

// v < 128: v * (1 + a); else v * (1 - a) + 255 * a
struct DensityOverlay15 {
    static std::int32_t density(std::int32_t v, std::int32_t a) {
        const std::int32_t lighter = Scale15::scaledRound(v, Scale15::cnOne + a);
        return v < 128 ? lighter : Scale15::lerp(v, 255, a);
    }
};

// |a - v|
struct DensityDifference15 {
    static std::int32_t density(std::int32_t v, std::int32_t a) {
        const std::int32_t difference = Scale15::toByte(a) - v;
        return most(difference, -difference);
    }
};

// v + f * (w - w * w / 255) with w = 255 - v, only where there is ink
struct DensitySoftLight15 {
    static std::int32_t density(std::int32_t v, std::int32_t a) {
        const float white = static_cast<float>(255 - v);
        return least(v + rounded(Scale15::toFloat(a) * (white - white * white / 255.0f)), 255);
    }
};

// ---- The same on bytes, with truncating divisions

struct DensityReplace8 {
    static std::int32_t density(std::int32_t, std::int32_t b) { return b; }
};

struct DensityNormal8 {
    static std::int32_t density(std::int32_t v, std::int32_t b) { return v + Scale8::scaled(255 - v, b); }
};

struct DensityErase8 {
    static std::int32_t density(std::int32_t v, std::int32_t b) { return Scale8::scaled(v, Scale8::cnOne - b); }
};

struct DensityDarkenStep8 {
    static std::int32_t density(std::int32_t v, std::int32_t b) {
        return v == 0 ? 0 : least(v + b / Scale8::cnStepShare, 255);
    }
};

struct DensityLightenStep8 {
    static std::int32_t density(std::int32_t v, std::int32_t b) { return most(v - b / Scale8::cnStepShare, 0); }
};

} // namespace
} // namespace ovw::mixing

#endif // OVW_MIXING_COMPOSITIONS8_H
