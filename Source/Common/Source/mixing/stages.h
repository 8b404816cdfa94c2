#ifndef OVW_MIXING_STAGES_H
#define OVW_MIXING_STAGES_H

/// @file
/// The coverage stages: loops over the arrays of a row, without branches on settings, so that they vectorise.

#include "mixing/coveragerow.h"
#include "mixing/fixedpoint.h"
#include "mixing/gaussline.h"
#include "mixing/kerneltable.h"
#include "mixing/pixel32.h"

#include <type_traits>

namespace ovw::mixing {
namespace {

// ---- Start

void startRow(CoverageRow& row, std::int32_t a, std::int32_t cap) {
    for (int i = 0, n = row.n; i < n; ++i) {
        row.a[i] = a;
        row.cap[i] = cap;
    }
}

void startCoverage(CoverageRow& row, const float* __restrict coverage, float base) {
    for (int i = 0, n = row.n; i < n; ++i) {
        // A coverage that is not a number fails the first test.
        float alpha = coverage[i] > 0.0f ? coverage[i] * base : 0.0f;
        row.a[i] = static_cast<std::int32_t>(alpha < Scale15::cnOne ? alpha : Scale15::cnOne);
    }
}

void scaleStart(CoverageRow& row, std::int32_t factor, std::int32_t cap) {
    for (int i = 0, n = row.n; i < n; ++i) {
        row.a[i] = Scale15::scaled(row.a[i], factor);
        row.cap[i] = cap;
    }
}

/// Pixels from to to - 1 by their distance.
void coverByDistance(float* __restrict coverage, int from, int to, const CircleRow& row) {
    const CircleRow r = row;
    for (int i = from; i < to; ++i) {
        const double dx = r.dx + i * r.step;
        const double square = dx * dx + r.dySquare;
        const double toRim = r.radius - __builtin_sqrt(square) * r.pixels;
        const bool isFull = (square == 0.0) | ((i >= r.innerStart) & (i < r.innerEnd));
        coverage[i] = isFull ? 1.0f : static_cast<float>(toRim < 1.0 ? toRim : 1.0);
    }
}

void circleRow(float* __restrict coverage, int n, const CircleRow& row) {
    constexpr int cnNarrow = 32; // up to here the roots of an interior cost less than the steps around it
    constexpr int cnLanes = 8;
    if (n <= cnNarrow || row.innerStart >= row.innerEnd)
        return coverByDistance(coverage, 0, n, row);
    coverByDistance(coverage, 0, (row.innerStart + cnLanes - 1) & -cnLanes, row);
    for (int i = row.innerStart; i < row.innerEnd; ++i)
        coverage[i] = 1.0f;
    coverByDistance(coverage, row.innerEnd, row.innerEnd + ((n - row.innerEnd + cnLanes - 1) & -cnLanes), row);
}

// ---- Source image

void scaleByQuarters(CoverageRow& row, const std::int32_t* __restrict weights) {
    for (int i = 0, n = row.n; i < n; ++i)
        row.a[i] = row.a[i] * weights[i] >> 2;
}

void scaleByAlpha(CoverageRow& row, const std::int32_t* __restrict weights) {
    for (int i = 0, n = row.n; i < n; ++i)
        row.a[i] = weights[i] != 0 ? Scale15::scaledByByte(row.a[i], weights[i]) : 0;
}

void scaleBySum(CoverageRow& row, const std::int32_t* __restrict weights) {
    for (int i = 0, n = row.n; i < n; ++i)
        row.a[i] = Scale8::over255Wide(row.a[i] * weights[i] >> 2); // = a * sum / 1020
}

void scaleByFixed(CoverageRow& row, const std::int32_t* __restrict weights) {
    for (int i = 0, n = row.n; i < n; ++i)
        row.a[i] = Scale15::scaled(row.a[i], weights[i]);
}

void scaleByBytes(CoverageRow& row, const std::int32_t* __restrict weights) {
    for (int i = 0, n = row.n; i < n; ++i)
        row.a[i] = Scale8::scaled(row.a[i], weights[i]);
}

// ---- Mask

void gateByMask(CoverageRow& row, const std::uint8_t* __restrict mask) {
    for (int i = 0, n = row.n; i < n; ++i)
        row.a[i] = mask[i] != 0 ? row.a[i] : 0;
}

void scaleByMask(CoverageRow& row, const std::uint8_t* __restrict mask) {
    for (int i = 0, n = row.n; i < n; ++i)
        row.a[i] = Scale8::over255Wide(mask[i] * row.a[i]);
}

void scaleByMaskAndCap(CoverageRow& row, const std::uint8_t* __restrict mask) {
    for (int i = 0, n = row.n; i < n; ++i) {
        row.a[i] = Scale8::over255Wide(mask[i] * row.a[i]);
        row.cap[i] = Scale8::over255Wide(mask[i] * row.cap[i]);
    }
}

void scaleByMaskOfBlur(CoverageRow& row, const std::uint8_t* __restrict mask) {
    for (int i = 0, n = row.n; i < n; ++i)
        row.a[i] = Scale15::scaledByByte(row.a[i], mask[i]);
}

void visitCovered(CoverageRow& row) {
    for (int i = 0, n = row.n; i < n; ++i)
        row.live[i] = row.a[i] != 0 ? -1 : 0;
}

void visitBySource(CoverageRow& row, const std::int32_t* __restrict weights) {
    for (int i = 0, n = row.n; i < n; ++i)
        row.live[i] = weights[i] != 0 ? row.live[i] : 0;
}

void visitByMask(CoverageRow& row, const std::uint8_t* __restrict mask) {
    for (int i = 0, n = row.n; i < n; ++i)
        row.live[i] = mask[i] != 0 ? row.live[i] : 0;
}

// ---- Gaussian

void gaussOfTable(std::int32_t* __restrict weights, int n, const int* __restrict table, int position, int step,
                  int strength, std::int32_t limit) {
    const auto weight = [=](int entry) { return least((entry * strength) >> cnGaussStrengthBit, limit); };
    if (step == 1 << cnGaussBit) { // a dot of the table's own size: its entries one after the other
        const int* __restrict entries = table + (position >> cnGaussBit);
        for (int i = 0; i < n; ++i)
            weights[i] = weight(entries[i]);
        return;
    }
    for (int i = 0; i < n; ++i)
        weights[i] = weight(table[(position + i * step) >> cnGaussBit]);
}

void gaussOfLine(std::int32_t* __restrict weights, int n, int position, int step, float rowFactor, float scale,
                 std::int32_t limit) {
    const float* __restrict line = gaussLine();
    const float end = gaussEnd();
    for (int i = 0; i < n; ++i) {
        const float value = (line[(position + i * step) >> cnGaussBit] * rowFactor - end) * scale;
        const auto weight = static_cast<std::int32_t>(value * static_cast<float>(Scale15::cnOne));
        weights[i] = least(most(weight, 0), limit);
    }
}

void scaleByGauss(CoverageRow& row, const std::int32_t* __restrict weights) {
    for (int i = 0, n = row.n; i < n; ++i)
        row.a[i] = Scale15::scaled(row.a[i], weights[i]);
}

void scaleByGaussWide(CoverageRow& row, const std::int32_t* __restrict weights) {
    for (int i = 0, n = row.n; i < n; ++i)
        row.a[i] = Scale15::scaledWide(row.a[i], weights[i]);
}

// ---- Texture. Every stage ends at the cap.

void scaleByTexture(CoverageRow& row, const std::uint8_t* __restrict texels, std::int32_t bias) {
    for (int i = 0, n = row.n; i < n; ++i) {
        // 64 bits: a coverage of an unclipped Gaussian may meet a large bias.
        std::uint64_t factor = static_cast<std::uint32_t>(most(bias - texels[i], 0));
        std::uint64_t a = factor * static_cast<std::uint32_t>(row.a[i]) >> 8;
        std::uint64_t cap = static_cast<std::uint32_t>(row.cap[i]);
        row.a[i] = static_cast<std::int32_t>(a < cap ? a : cap);
    }
}

void subtractTexture(CoverageRow& row, const std::uint8_t* __restrict texels, std::int32_t alpha) {
    for (int i = 0, n = row.n; i < n; ++i)
        row.a[i] = least(most(row.a[i] - (texels[i] * alpha >> 8), 0), row.cap[i]);
}

void limitByTexture(CoverageRow& row, const std::uint8_t* __restrict texels, std::int32_t alpha) {
    for (int i = 0, n = row.n; i < n; ++i)
        row.a[i] = least(least(row.a[i], (255 - texels[i]) * alpha >> 8), row.cap[i]);
}

void capOnly(CoverageRow& row, const std::uint8_t*, std::int32_t) {
    for (int i = 0, n = row.n; i < n; ++i)
        row.a[i] = least(row.a[i], row.cap[i]);
}

// ---- Cache. What a dab does not touch (coverage 0) keeps its cache and is not painted again.

// What becomes of a cache and a coverage, a struct a rule: whether the pixel is painted, and its coverage then.

struct ActsWhereCovered {
    static bool acts(std::int32_t, std::int32_t a) { return a != 0; }
};

struct KeepsCache : ActsWhereCovered {
    static std::int32_t sum(std::int32_t, std::int32_t a, std::int32_t) { return a; }
};

struct AddsOver : ActsWhereCovered {
    static std::int32_t sum(std::int32_t old, std::int32_t a, std::int32_t cap) {
        return least(old + Scale15::scaled(Scale15::cnOne - old, least(a, Scale15::cnOne)), cap);
    }
};

struct TakesLarger {
    static bool acts(std::int32_t old, std::int32_t a) { return (a != 0) & (old <= a); }
    static std::int32_t sum(std::int32_t, std::int32_t a, std::int32_t cap) { return least(a, cap); }
};

struct Adds : ActsWhereCovered {
    static std::int32_t sum(std::int32_t old, std::int32_t a, std::int32_t cap) { return least(old + a, cap); }
};

template <class Rule>
void accumulate(CoverageRow& row, std::uint16_t* __restrict cache) {
    for (int i = 0, n = row.n; i < n; ++i) {
        const std::int32_t old = cache[i];
        const bool acts = Rule::acts(old, row.a[i]);
        const std::int32_t sum = Rule::sum(old, row.a[i], row.cap[i]);
        cache[i] = static_cast<std::uint16_t>(acts ? sum : old);
        row.a[i] = acts ? sum : 0;
    }
}

/// A coverage a pixel.
struct RowCoverage {
    static std::int32_t alpha(const CoverageRow& row, int i, const StrokeStep&) { return row.a[i]; }
    static std::int32_t cap(const CoverageRow& row, int i, const StrokeStep&) { return row.cap[i]; }
};

/// One coverage for every pixel.
struct OneCoverage {
    static std::int32_t alpha(const CoverageRow&, int, const StrokeStep& step) { return step.alpha; }
    static std::int32_t cap(const CoverageRow&, int, const StrokeStep& step) { return step.limit; }
};

template <class Rule, class Coverage>
void accumulateStroke(CoverageRow& row, std::uint16_t* __restrict cache, const StrokeStep& of) {
    const StrokeStep step = of;
    for (int i = 0, n = row.n; i < n; ++i) {
        const std::int32_t old = cache[i];
        const std::int32_t a = old < step.limit ? Coverage::alpha(row, i, step) : 0;
        const bool acts = Rule::acts(old, a);
        const std::int32_t sum = Rule::sum(old, a, Coverage::cap(row, i, step));
        if constexpr (std::is_same_v<Rule, KeepsCache>) { // a coverage of an unclipped falloff
            row.a[i] = Scale15::scaledWide(a, step.opacity);
        } else {
            cache[i] = static_cast<std::uint16_t>(acts ? sum : old);
            row.a[i] = acts ? Scale15::scaled(sum, step.opacity) : 0;
        }
    }
}

PaintedPart paintedPart(const CoverageRow& row) {
    constexpr int cnStep = 64;
    const auto isPainted = [&row](int from) {
        std::int32_t any = 0;
        for (int i = 0; i < cnStep; ++i)
            any |= row.a[from + i];
        return any != 0;
    };
    PaintedPart part{0, row.n};
    while (part.end - part.first >= cnStep && !isPainted(part.first))
        part.first += cnStep;
    while (part.end - part.first >= cnStep && !isPainted(part.end - cnStep))
        part.end -= cnStep;
    return part;
}

// ---- Colour caches

void sumColors(ColorSums& sums, const CoverageRow& row, const std::uint8_t* __restrict pixels) {
    std::uint32_t alpha = 0, red = 0, green = 0, blue = 0, colored = 0, visited = 0;
    for (int i = 0, n = row.n; i < n; ++i) {
        const std::uint32_t live = static_cast<std::uint32_t>(row.live[i]);
        const std::uint32_t counts = pixels[4 * i + 3] != 0 ? live : 0;
        visited += live & 1;
        colored += counts & 1;
        alpha += pixels[4 * i + 3] & counts;
        red += pixels[4 * i + 2] & counts;
        green += pixels[4 * i + 1] & counts;
        blue += pixels[4 * i] & counts;
    }
    sums = {alpha, red, green, blue, colored, visited};
}

void shareOfDab(std::int32_t* __restrict share, const std::int32_t* __restrict dab, const CoverageRow& row) {
    for (int i = 0, n = row.n; i < n; ++i) {
        const std::int32_t sum = row.a[i];
        // In double the quotient of the two integers is exact.
        const double part = (static_cast<double>(dab[i]) * Scale15::cnOne + (sum >> 1)) / most(sum, 1);
        const std::int32_t all = sum != 0 ? Scale15::cnOne : 0;
        share[i] = sum > dab[i] ? static_cast<std::int32_t>(part) : all;
    }
}

void mixDensityCache(std::uint8_t* __restrict cache, const std::int32_t* __restrict dab, const CoverageRow& row,
                     std::int32_t density) {
    for (int i = 0, n = row.n; i < n; ++i) {
        const std::int32_t sum = row.a[i];
        const std::int32_t old = cache[i];
        const float part = static_cast<float>(dab[i]) / static_cast<float>(most(sum, 1));
        const float mixed = part * static_cast<float>(density) + (1.0f - part) * static_cast<float>(old);
        const std::int32_t moved = sum > dab[i] ? rounded(mixed < 255.0f ? mixed : 255.0f) : density;
        cache[i] = static_cast<std::uint8_t>(sum != 0 ? moved : old);
    }
}

void accumulateColorOver(CoverageRow& row, std::uint16_t* __restrict cache, std::int32_t* __restrict share) {
    for (int i = 0, n = row.n; i < n; ++i) {
        const std::int32_t old = least(cache[i], Scale15::cnOne);
        const std::int32_t a = least(row.a[i], Scale15::cnOne);
        const std::int32_t sum = least(Scale15::lerp(old, Scale15::cnOne, a), Scale15::cnOne);
        const double part = static_cast<double>(a) * Scale15::cnOne / most(sum, 1); // exact
        share[i] = least(static_cast<std::int32_t>(part), Scale15::cnOne);
        cache[i] = static_cast<std::uint16_t>(a != 0 ? sum : cache[i]);
        row.a[i] = a != 0 ? sum : 0;
    }
}

void accumulateColorMax(CoverageRow& row, std::uint16_t* __restrict cache, std::int32_t* __restrict share) {
    for (int i = 0, n = row.n; i < n; ++i) {
        const std::int32_t a = least(row.a[i], Scale15::cnOne);
        const bool grows = a > cache[i];
        share[i] = grows ? Scale15::cnOne : 0;
        cache[i] = static_cast<std::uint16_t>(grows ? a : cache[i]);
        row.a[i] = grows ? a : 0;
    }
}

void moveColors32(std::uint8_t* __restrict pixels, const std::uint32_t* __restrict colors,
                  const std::int32_t* __restrict share, int n, std::uint32_t keep) {
    auto* __restrict cache = reinterpret_cast<Pixel32*>(pixels);
    for (int i = 0; i < n; ++i) {
        const std::uint32_t old = cache[i];
        const std::int32_t w = share[i];
        const std::int32_t alpha = Scale15::lerp(alphaOf(old), alphaOf(colors[i]), w);
        const std::uint32_t moved =
            eachChannel(old, colors[i], alpha, [w](std::int32_t p, std::int32_t q) { return Scale15::lerp(p, q, w); });
        cache[i] = (moved & ~keep) | (old & keep);
    }
}

void moveColors24(std::uint8_t* __restrict pixels, const std::uint32_t* __restrict colors,
                  const std::int32_t* __restrict share, int n) {
    for (int i = 0; i < n; ++i) {
        const std::uint32_t color = colors[i];
        const std::int32_t channels[3] = {blueOf(color), greenOf(color), redOf(color)};
        for (int channel = 0; channel < 3; ++channel) {
            std::uint8_t& value = pixels[3 * i + channel];
            value = static_cast<std::uint8_t>(Scale15::lerp(value, channels[channel], share[i]));
        }
    }
}

// ---- Opacity

void scaleByOpacity(CoverageRow& row, std::int32_t opacity) {
    for (int i = 0, n = row.n; i < n; ++i)
        row.a[i] = Scale15::scaled(row.a[i], opacity);
}

void scaleByOpacityWide(CoverageRow& row, std::int32_t opacity) {
    for (int i = 0, n = row.n; i < n; ++i)
        row.a[i] = Scale15::scaledWide(row.a[i], opacity);
}

} // namespace
} // namespace ovw::mixing

#endif // OVW_MIXING_STAGES_H
