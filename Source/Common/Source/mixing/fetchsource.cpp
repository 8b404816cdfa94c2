#include "mixing/fetchsource.h"

#include "mixing/samplesums.h"
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

SourcePixels pixelsOf(const XCSimpleImage& image) {
    const std::uint8_t* first = image.GetPixel(0, 0);
    constexpr std::uint32_t cnAll = ~0u;
    return {first, image.GetWidth(), image.GetHeight(), image.GetPixel(-1, 0) == first ? cnAll : 0,
            image.GetPixel(0, -1) == first ? cnAll : 0};
}

void completeForBits(SourceView& view, bool isTwoColored) {
    const bool isTwoBit = view.image->GetOrgBitCount() == 2;
    view.texel = TexelByte;
    view.weight = WeighBits;
    view.scale = ScaleQuarters;
    if (!isTwoBit)
        view.colors.subColor = view.colors.color;
    view.colors.leastBits = isTwoBit && !isTwoColored ? 3 : 1;
}

void completeForDensities(SourceView& view, SourceRule rule) {
    const bool isBytes = rule == SourceRule::Bytes;
    const SourceScale scaleOfSum = view.twoByTwo ? ScaleSum : ScaleAlpha;
    view.texel = TexelByte;
    view.weight = isBytes ? WeighDensityBytes : WeighDensities;
    view.scale = isBytes ? ScaleByte : scaleOfSum;
}

void completeForColors(SourceView& view, SourceRule rule, SourceTexel texel) {
    view.texel = texel;
    if (rule == SourceRule::Bytes) {
        view.weight = WeighColorBytes;
        view.scale = ScaleByte;
    } else if (rule == SourceRule::Darkness && texel == TexelRgba) {
        view.weight = WeighDarkness;
        view.scale = ScaleFixed;
    } else { // pixels without alpha cover in full, however light
        view.weight = WeighColors;
        view.scale = ScaleQuarters;
    }
}

} // namespace

bool completeView(SourceView& view, SourceRule rule, bool isTwoColored) {
    view.pixels = pixelsOf(*view.image);
    view.isSmall = std::int64_t{view.pixels.width} * view.pixels.height <= std::numeric_limits<std::int32_t>::max();
    switch (view.image->GetOrgBitCount()) {
    case 1:
    case 2: completeForBits(view, isTwoColored); return true;
    case 8: completeForDensities(view, rule); return true;
    case 24: completeForColors(view, rule, TexelRgb); return true;
    case 32: completeForColors(view, rule, TexelRgba); return true;
    default: return false;
    }
}

namespace {

/// One sample, wherever it lies.
std::uint32_t texelAt(const SourceView& view, std::int64_t u, std::int64_t v) {
    const std::uint8_t* p =
        view.image->GetPixel(static_cast<int>(u >> Scale15::cnBits), static_cast<int>(v >> Scale15::cnBits));
    switch (view.texel) {
    case TexelByte: return *p;
    case TexelRgb: return OwnPixels(*view.image).holds(p) ? packed(p[0], p[1], p[2], Scale8::cnOne) : 0;
    default: return packed(p[0], p[1], p[2], p[3]);
    }
}

bool isInt(std::int64_t value) { return value == static_cast<std::int32_t>(value); }

/// Whether a line of samples stays in 32 bits.
bool fits(const SampleLine& line, int samples) {
    return isInt(line.u) && isInt(line.v) && isInt(line.u + std::int64_t{line.du} * (samples - 1)) &&
           isInt(line.v + std::int64_t{line.dv} * (samples - 1));
}

/// The columns of a line whose pixels take `every` samples each. A step too large for 32 bits leads to no second pixel.
void addColumns(SampleColumn* columns, const SampleLine& line, int every) {
    for (int i = 0; i < every; ++i)
        columns[i] = {static_cast<std::int32_t>(line.u + std::int64_t{line.du} * i),
                      static_cast<std::int32_t>(line.v + std::int64_t{line.dv} * i),
                      static_cast<std::int32_t>(std::int64_t{line.du} * every),
                      static_cast<std::int32_t>(std::int64_t{line.dv} * every)};
}

/// Sample by sample, for lines that leave 32 bits and images beyond.
void sampleSlowly(SourceTexels& texels, int first, int n, const SourceView& view, const SampleLine* const* lines) {
    const int every = view.twoByTwo ? 2 : 1;
    for (int column = 0; column < every * every; ++column) {
        const SampleLine& line = *lines[column / every];
        for (int i = 0; i < n; ++i) {
            const std::int64_t sample = std::int64_t{i} * every + column % every;
            texels.column[column][first + i] = texelAt(view, line.u + line.du * sample, line.v + line.dv * sample);
        }
    }
}

} // namespace

void sampleSource(SourceTexels& texels, int first, int n, const SourceView& view, const SampleLine& line,
                  const SampleLine& lineB, const KernelTable& kernels) {
    const int every = view.twoByTwo ? 2 : 1;
    const SampleLine* const lines[] = {&line, &lineB};
    if (!view.isSmall || !fits(line, every * n) || (view.twoByTwo && !fits(lineB, every * n)))
        return sampleSlowly(texels, first, n, view, lines);
    SampleColumn columns[SourceTexels::cnColumns];
    addColumns(columns, line, every);
    if (view.twoByTwo)
        addColumns(columns + every, lineB, every);
    kernels.sample[view.texel](texels, first, n, view.pixels, columns, every * every);
}

std::int32_t darknessOf(const std::uint8_t* pixel) {
    SampleSums sums;
    sums.add(packed(pixel[0], pixel[1], pixel[2], pixel[3]), true);
    return darknessOf<1>(sums);
}

} // namespace ovw::mixing
