#include "mixing/fetchsource.h"

#include "mixing/fixedpoint.h"
#include "mixing/saturated.h"
#include "ovwcmn/xcsimpleimage.h"

#include <algorithm>
#include <limits>

namespace ovw::mixing {

const std::uint8_t* SampleLine::next(const XCSimpleImage& image) {
    const std::uint8_t* pixel =
        image.GetPixel(static_cast<int>(u >> Scale15::cnBits), static_cast<int>(v >> Scale15::cnBits));
    u += du;
    v += dv;
    return pixel;
}

void SampleLine::skip(std::int64_t samples) {
    // As many of the least steps already lead from one end of 32 bits to the other.
    samples = std::min<std::int64_t>(samples, std::numeric_limits<std::uint32_t>::max());
    u = saturated(u + du * samples);
    v = saturated(v + dv * samples);
}

OwnPixels::OwnPixels(const XCSimpleImage& image) {
    if (image.GetWidth() <= 0 || image.GetHeight() <= 0)
        return;
    m_first = image.GetPixel(0, 0);
    m_last = image.GetPixel(image.GetWidth() - 1, image.GetHeight() - 1);
}

namespace {

// Luminance weights of red, green and blue; they sum to 16514, so that black of full alpha covers 1.0 and a little
// more.
constexpr std::int32_t cnRed = 4936;
constexpr std::int32_t cnGreen = 9687;
constexpr std::int32_t cnBlue = 1891;
constexpr std::int32_t cnLightest = (cnRed + cnGreen + cnBlue) * 255;

/// The samples of one pixel.
struct Samples {
    std::int32_t covered = 0; // how many cover
    std::int32_t sum = 0;     // of densities or alphas
    std::int32_t blue = 0;    // of those that cover
    std::int32_t green = 0;
    std::int32_t red = 0;

    void addColor(std::uint32_t color) {
        blue += color & 0xFF;
        green += color >> 8 & 0xFF;
        red += color >> 16 & 0xFF;
    }
    std::uint32_t meanColor() const {
        const std::int32_t n = most(covered, 1);
        return static_cast<std::uint32_t>(blue / n) | static_cast<std::uint32_t>(green / n) << 8 |
               static_cast<std::uint32_t>(red / n) << 16;
    }
    /// Darkness times alpha, of one sample or of four.
    template <int count>
    std::int32_t darkness() const {
        const std::int32_t light = cnRed * red + cnGreen * green + cnBlue * blue;
        if constexpr (count == 1)
            return ((cnLightest - light) * sum) >> Scale15::cnBits;
        return ((cnLightest / 4 - light / (4 * most(covered, 1))) * sum) >> Scale15::cnBits;
    }
};

/// Calls use(i, samples) for n pixels; add(samples, pixel) takes one sample in.
template <int count, class Add, class Use>
void samplePixels(SourceRow& row, int n, const SourceView& view, Add add, Use use) {
    SampleLine line = view.line;
    [[maybe_unused]] SampleLine lineB = view.lineB;
    for (int i = 0; i < n; ++i) {
        Samples samples;
        add(samples, line.next(*view.image));
        if constexpr (count == 4) {
            add(samples, line.next(*view.image));
            add(samples, lineB.next(*view.image));
            add(samples, lineB.next(*view.image));
        }
        row.covered[i] = samples.covered;
        use(i, samples);
    }
}

template <int count>
void fetchBits(SourceRow& row, int n, const SourceView& view) {
    const bool isTwoBit = view.image->GetOrgBitCount() == 2;
    const bool onlyThree = isTwoBit && !view.isTwoColored;
    row.scale = ScaleQuarters;
    samplePixels<count>(
        row, n, view,
        [&](Samples& samples, const std::uint8_t* pixel) {
            if (onlyThree ? *pixel != 3 : *pixel == 0)
                return;
            ++samples.covered;
            samples.addColor(isTwoBit && *pixel != 3 ? view.subColor : view.color);
        },
        [&](int i, const Samples& samples) {
            row.weight[i] = samples.covered * (4 / count);
            row.color[i] = samples.meanColor();
        });
}

template <int count>
void fetchDensities(SourceRow& row, int n, const SourceView& view) {
    const bool isBytes = view.rule == SourceRule::Bytes;
    row.scale = isBytes ? ScaleByte : count == 4 ? ScaleSum : ScaleAlpha;
    samplePixels<count>(
        row, n, view,
        [](Samples& samples, const std::uint8_t* pixel) {
            samples.sum += *pixel;
            samples.covered += *pixel != 0;
        },
        [&](int i, const Samples& samples) {
            row.weight[i] = isBytes ? samples.sum / count : samples.sum;
            row.color[i] = view.color;
        });
}

/// Of pixels with an alpha byte.
struct StoredAlpha {
    static constexpr bool cnIsFull = false;
    explicit StoredAlpha(const XCSimpleImage&) {}
    std::int32_t operator()(const std::uint8_t* pixel) const { return pixel[3]; }
};

/// Of pixels without one, which cover in full.
struct FullAlpha {
    static constexpr bool cnIsFull = true;
    OwnPixels pixels;
    explicit FullAlpha(const XCSimpleImage& image) : pixels(image) {}
    std::int32_t operator()(const std::uint8_t* pixel) const { return pixels.holds(pixel) ? Scale8::cnOne : 0; }
};

template <int count, class Alpha>
void fetchColors(SourceRow& row, int n, const SourceView& view) {
    const Alpha alphaOf(*view.image);
    const SourceRule rule = view.rule;
    row.scale = rule == SourceRule::Bytes ? ScaleByte : rule == SourceRule::Darkness ? ScaleFixed : ScaleQuarters;
    samplePixels<count>(
        row, n, view,
        [&](Samples& samples, const std::uint8_t* pixel) {
            const std::int32_t alpha = alphaOf(pixel);
            if (alpha == 0)
                return;
            ++samples.covered;
            samples.sum += alpha;
            samples.blue += pixel[0];
            samples.green += pixel[1];
            samples.red += pixel[2];
        },
        [&](int i, const Samples& samples) {
            row.color[i] = samples.meanColor();
            if (rule == SourceRule::Bytes)
                row.weight[i] = samples.sum / count;
            else if (rule == SourceRule::Colors)
                row.weight[i] = samples.covered * (4 / count);
            else if (Alpha::cnIsFull)
                row.weight[i] = samples.covered * (Scale15::cnOne / count);
            else
                row.weight[i] = std::min(samples.darkness<count>(), Scale15::cnOne);
            if (rule == SourceRule::Darkness && row.weight[i] == 0)
                row.covered[i] = 0; // white covers nothing
        });
}

template <int count>
bool fetchSamples(SourceRow& row, int n, const SourceView& view) {
    switch (view.image->GetOrgBitCount()) {
    case 1:
    case 2: fetchBits<count>(row, n, view); return true;
    case 8: fetchDensities<count>(row, n, view); return true;
    case 24: fetchColors<count, FullAlpha>(row, n, view); return true;
    case 32: fetchColors<count, StoredAlpha>(row, n, view); return true;
    default: return false;
    }
}

} // namespace

bool fetchSource(SourceRow& row, int n, const SourceView& view) {
    return view.twoByTwo ? fetchSamples<4>(row, n, view) : fetchSamples<1>(row, n, view);
}

std::int32_t darknessOf(const std::uint8_t* pixel) {
    Samples samples;
    samples.sum = pixel[3];
    samples.blue = pixel[0];
    samples.green = pixel[1];
    samples.red = pixel[2];
    return samples.darkness<1>();
}

} // namespace ovw::mixing
