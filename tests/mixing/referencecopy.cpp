#include "referencemixer.h"
#include "referencerules.h"

#include <algorithm>

namespace ovw::test {

namespace {

constexpr std::uint32_t cnImageColor = 0x200;
constexpr std::uint32_t cnAntialias = 0x400;

/// Darkness times alpha of one pixel of a colour brush, 1.15.
std::int64_t darkness(const Rgba& pixel) {
    std::int64_t light = 4936 * pixel.r + 9687 * pixel.g + 1891 * pixel.b;
    return ((4211070 - light) * pixel.a) >> 15;
}

/// The same of four, over those that have an alpha.
std::int64_t darkness(const std::vector<std::uint32_t>& four) {
    std::int64_t light = 0;
    std::int64_t alpha = 0;
    std::int64_t n = 0;
    for (std::uint32_t value : four) {
        Rgba pixel = unpack(value);
        if (pixel.a == 0)
            continue;
        light += 4936 * pixel.r + 9687 * pixel.g + 1891 * pixel.b;
        alpha += pixel.a;
        ++n;
    }
    return n == 0 ? 0 : ((1052767 - light / (4 * n)) * alpha) >> 15;
}

} // namespace

std::uint32_t PlainSource::at(std::int64_t x, std::int64_t y) const {
    if (clampX)
        x = std::clamp<std::int64_t>(x, 0, width - 1);
    if (clampY)
        y = std::clamp<std::int64_t>(y, 0, height - 1);
    if (x < 0 || y < 0 || x >= width || y >= height)
        return 0;
    return pixels[std::size_t(y * width + x)];
}

ReferenceMixer::CopyKernel ReferenceMixer::copyKernel() const {
    int depth = destination->depth;
    if (depth == 16)
        return CopyKernel::none;
    if (!cache)
        return depth < 8 ? CopyKernel::directBits : CopyKernel::direct;
    bool isWater = composition == cnWater || composition == cnWaterMultiply;
    if (!composite)
        return CopyKernel::none;
    if (isWater && !colorCache && (depth == 8 || depth == 32))
        return CopyKernel::none;
    if (!colorCache)
        return CopyKernel::grayCache;
    if (isWater)
        return depth == 8 || (depth == 32 && average) ? CopyKernel::water : CopyKernel::none;
    if (depth < 8)
        return CopyKernel::toneCache;
    return depth == 8 ? CopyKernel::none : CopyKernel::colorCache;
}

void ReferenceMixer::doLineRowCopy(int x1, int x2, int y, const PlainSource& source) {
    CopyKernel chosen = copyKernel();
    SamplePoints first = points;
    for (int x = x1; x < x2 && chosen != CopyKernel::none; ++x) {
        copyPixel(chosen, x, y, source);
        int steps = isAntialiased() ? 2 : 1;
        points.u += steps * points.du;
        points.v += steps * points.dv;
        points.uB += steps * points.duB;
        points.vB += steps * points.dvB;
    }
    points = first;
}

void ReferenceMixer::copyPixel(CopyKernel chosen, int x, int y, const PlainSource& source) {
    switch (chosen) {
    case CopyKernel::direct: return directCopyPixel(x, y, source);
    case CopyKernel::directBits: return directBitsCopyPixel(x, y, source);
    case CopyKernel::grayCache: return grayCacheCopyPixel(x, y, source);
    case CopyKernel::water: return waterCopyPixel(x, y, source);
    case CopyKernel::colorCache: return colorCacheCopyPixel(x, y, source);
    case CopyKernel::toneCache: return toneCacheCopyPixel(x, y, source);
    case CopyKernel::none: return;
    }
}

bool ReferenceMixer::isAntialiased() const { return has(cnAntialias) && destination->depth >= 8; }

std::vector<std::uint32_t> ReferenceMixer::samples(const PlainSource& source) const {
    const SamplePoints& p = points;
    if (!isAntialiased())
        return {source.at(p.u >> 15, p.v >> 15)};
    return {source.at(p.u >> 15, p.v >> 15), source.at((p.u + p.du) >> 15, (p.v + p.dv) >> 15),
            source.at(p.uB >> 15, p.vB >> 15), source.at((p.uB + p.duB) >> 15, (p.vB + p.dvB) >> 15)};
}

std::int64_t ReferenceMixer::sourceCoverage(const PlainSource& source, std::int64_t a) const {
    std::vector<std::uint32_t> values = samples(source);
    bool isSingle = values.size() == 1;
    std::int64_t sum = 0;
    for (std::uint32_t value : values)
        sum += source.depth == 2 ? value == 3 : value;
    if (source.depth < 8)
        return isSingle ? a * sum : a * sum >> 2;
    if (source.depth == 8)
        return isSingle ? ((sum * 257 + 1) * a) >> 16 : sum * a / 1020;
    std::int64_t k = isSingle ? darkness(unpack(values[0])) : darkness(values);
    return k < cnOne ? k * a >> 15 : a;
}

Rgba ReferenceMixer::sourceColor(const PlainSource& source, bool countsSubColor) const {
    Rgba sum{};
    for (std::uint32_t value : samples(source)) {
        Rgba pixel = source.depth == 32 ? unpack(value) : paint;
        if (source.depth == 2 && value != 3)
            pixel = subPaint;
        bool covers = source.depth == 32                     ? pixel.a != 0
                      : source.depth == 2 && !countsSubColor ? value == 3
                                                             : value != 0;
        if (!covers)
            continue;
        sum = {sum.r + pixel.r, sum.g + pixel.g, sum.b + pixel.b, sum.a + 1};
    }
    if (sum.a == 0)
        return sum;
    return {sum.r / sum.a, sum.g / sum.a, sum.b / sum.a, sum.a};
}

void ReferenceMixer::directCopyPixel(int x, int y, const PlainSource& source) {
    bool isColor = destination->depth >= 24;
    std::vector<std::uint32_t> values = samples(source);
    Rgba own = sourceColor(source, isColor && composition != cnErase);
    int b = int((paint.a * cacheAlpha) >> 15);
    int covering = own.a;
    int s = 255;
    if (source.depth < 8)
        b = values.size() == 1 ? b : (b * covering) >> 2;
    else {
        int sum = 0;
        for (std::uint32_t value : values)
            sum += int(source.depth == 32 ? value >> 24 : value);
        s = values.size() == 1 ? sum : sum >> 2;
    }
    int m = maskValue(x, y);
    if (covering == 0 || m == 0)
        return;
    b = b * m / 255 * s / 255;
    if (b == 0)
        return;
    bool isOwn = source.depth == 2 || (source.depth == 32 && (destination->depth == 32 || has(cnImageColor)));
    Rgba color = isOwn ? own : paint;
    bool isBlend = composition == cnReplace || composition == cnNormal || composition == cnErase;
    if (isColor) {
        if (isBlend)
            fastestPixel32(b, x, y, color);
        return;
    }
    if (isBlend || composition == cnMultiply)
        fastestPixel8(b, x, y);
}

void ReferenceMixer::directBitsCopyPixel(int x, int y, const PlainSource& source) {
    std::uint32_t value = source.at(points.u >> 15, points.v >> 15);
    int written = pixelOfBits();
    bool covers = source.depth == 32 ? value >> 24 != 0 : value != 0;
    bool isTwoColor = source.depth == 2 && destination->depth == 2 && composition != cnErase;
    if (source.depth == 2 && !isTwoColor)
        covers = value == 3;
    if (!covers || !maskBit(x, y))
        return;
    if (isTwoColor && value != 3)
        written = 5 - written;
    std::int64_t t = (paint.a * cacheAlpha) >> 15;
    if (t == 0)
        return;
    if (source.depth == 8)
        t = t * value / 255;
    else if (source.depth == 32 && darkness(unpack(value)) < cnOne)
        t = t * darkness(unpack(value)) >> 15;
    if (!has(cnDither) || passesDither(t, x, y))
        destination->at(x, y) = std::uint32_t(written);
}

void ReferenceMixer::grayCacheCopyPixel(int x, int y, const PlainSource& source) {
    if (cache->at(x, y) >= paintAlpha())
        return;
    std::int64_t a = sourceCoverage(source, cacheAlpha * paintAlpha() >> 15);
    bool isBits = destination->depth < 8;
    int m = isBits ? 255 * maskBit(x, y) : maskValue(x, y);
    const PlainTexture* setTexture = texture;
    if (isBits)
        texture = nullptr;
    if (a != 0 && m != 0)
        cachePixel(a * m / 255, paintAlpha() * m / 255, x, y);
    texture = setTexture;
}

void ReferenceMixer::waterCopyPixel(int x, int y, const PlainSource& source) {
    std::int64_t a = sourceCoverage(source, cacheAlpha);
    int m = maskValue(x, y);
    bool isWhite = source.depth == 32 && sourceCoverage(source, cnOne) == 0;
    bool isCovered = (sourceColor(source, false).a != 0 && !isWhite) || has(cnSampleOnly);
    if (isCovered && m != 0)
        waterPixel(a * m / 255, cnOne * m / 255, x, y);
}

void ReferenceMixer::colorCacheCopyPixel(int x, int y, const PlainSource& source) {
    Rgba color = sourceColor(source, true);
    std::int64_t a = cacheAlpha * paintAlpha() >> 15;
    if (color.a == 0)
        return;
    if (source.depth == 1 || source.depth == 8)
        a = sourceCoverage(source, a);
    else if (isAntialiased())
        a = a * color.a >> 2;
    std::int64_t m = maskValue(x, y);
    std::int64_t cap = paintAlpha() * m / 255;
    a = a * m / 255;
    bool isTextured = texture && destination->depth == 32;
    if (isTextured && !has(cnTextureAfter))
        a = std::min(textured(a, x, y, false), cap);
    if (a == 0 || !accumulateColor(a, color, x, y))
        return;
    a = mixAlpha * a >> 15;
    if (isTextured && has(cnTextureAfter))
        a = std::min(textured(a, x, y, true), cap);
    if (a > 0)
        composeCached(a, unpack(colorCache->at(x, y)), x, y);
}

/// Brings colour and coverage into the two caches; a becomes what has come together.
bool ReferenceMixer::accumulateColor(std::int64_t& a, const Rgba& color, int x, int y) {
    std::int64_t k = cache->at(x, y);
    std::uint32_t& cached = colorCache->at(x, y);
    Rgba old = unpack(cached);
    auto move = [&](std::int64_t weight) {
        Rgba moved = eachChannel(old, color, [=](int p, int c) { return lerp(p, c, weight); });
        moved.a = old.a;
        cached = pack(moved);
    };
    if (has(cnCacheMax)) {
        if (a <= k)
            return false;
        move(cnOne);
    } else if (!has(cnCacheOver))
        return true;
    else if (k == 0 || a >= cnOne)
        move(cnOne);
    else if (k >= cnOne) {
        move(a);
        a = cnOne;
    } else {
        std::int64_t total = ((cnOne - a) * k + (a << 15) + 16384) >> 15;
        move(std::min(cnOne, (a << 15) / total));
        a = std::min(total, cnOne);
    }
    cache->at(x, y) = std::uint32_t(a);
    return true;
}

void ReferenceMixer::toneCacheCopyPixel(int x, int y, const PlainSource& source) {
    std::uint32_t value = source.at(points.u >> 15, points.v >> 15);
    bool isErase = composition == cnErase;
    int mainValue = isErase ? 0 : paint.r < 128 ? 3 : 2;
    int subValue = isErase ? 0 : 5 - mainValue;
    bool isSub = source.depth == 2 && value != 3;
    std::int64_t a = cacheAlpha * paintAlpha() >> 15;
    if (source.depth >= 8)
        a = sourceCoverage(source, a);
    if (value == 0 || (isSub && isErase) || a == 0 || !maskBit(x, y))
        return;
    if (!accumulateTone(a, isSub ? 255 : 0, x, y))
        return;
    std::int64_t p = mixAlpha * a >> 15;
    if (p == 0)
        return;
    int tone = int(colorCache->at(x, y) >> 16 & 255);
    int written = isSub ? subValue : mainValue;
    if (has(cnDither)) {
        if (!passesDither(opacityByte(p), x, y))
            return;
        bool isMain = tone == 0 || (tone < 255 && !passesDither(tone, x, y));
        written = isMain ? mainValue : subValue;
    }
    destination->at(x, y) = std::uint32_t(destination->depth == 1 ? written != 0 : written);
}

/// The tone lies in the first byte of the colour cache's pixel, which is its blue.
bool ReferenceMixer::accumulateTone(std::int64_t& a, int tone, int x, int y) {
    std::int64_t k = cache->at(x, y);
    std::uint32_t& cached = colorCache->at(x, y);
    auto move = [&](std::int64_t weight) {
        std::int64_t moved = lerp(cached >> 16 & 255, tone, weight);
        cached = (cached & 0xFFFF) | std::uint32_t(moved) << 16;
    };
    if (has(cnCacheMax)) {
        if (a <= k)
            return false;
        move(cnOne);
    } else if (!has(cnCacheOver))
        return true;
    else if (a >= cnOne || k == 0)
        move(cnOne);
    else if (k >= cnOne) {
        move(a);
        a = cnOne;
    } else {
        std::int64_t total = ((cnOne - a) * k + (a << 15) + 16384) >> 15;
        move(std::min(cnOne, (a << 15) / total));
        a = std::min(total, cnOne);
    }
    cache->at(x, y) = std::uint32_t(a);
    return true;
}

} // namespace ovw::test
