#include "referencemixer.h"
#include "referencerules.h"

#include <algorithm>
#include <cmath>

namespace ovw::test {

namespace {

/// Entry of the recursive ordered-dither matrix: the bits of column XOR row and of row interleaved, lowest bit first.
int ditherEntry(int x, int y) {
    int entry = 0;
    for (int bit = 0; bit < 4; ++bit) {
        int column = (x >> bit) & 1;
        int row = (y >> bit) & 1;
        entry = entry * 4 + ((column ^ row) * 2 + row);
    }
    return entry;
}

} // namespace

PlainImage::PlainImage(int depthOfImage, int widthOfImage, int heightOfImage)
    : depth(depthOfImage), width(widthOfImage), height(heightOfImage),
      pixels(std::size_t(widthOfImage) * std::size_t(heightOfImage)), matches(pixels.size()),
      blocks(std::size_t((widthOfImage + 255) / 256) * std::size_t((heightOfImage + 255) / 256), 1) {}

bool PlainImage::exists(int x, int y) const {
    return x >= 0 && y >= 0 && x < width && y < height &&
           blocks[std::size_t(y / 256) * std::size_t((width + 255) / 256) + std::size_t(x / 256)];
}

std::uint32_t PlainImage::color(int x, int y) const {
    if (!exists(x, y))
        return 0;
    std::uint32_t value = at(x, y);
    switch (depth) {
    case 1: return value ? 0xFF000000 : 0;
    case 2: return value == 3 ? 0xFF000000 : value == 2 ? 0xFFFFFFFF : 0;
    case 8: return value << 24;
    case 24: return 0xFF000000 | value;
    default: return value;
    }
}

Rgba unpack(std::uint32_t color) {
    return {int(color & 255), int(color >> 8 & 255), int(color >> 16 & 255), int(color >> 24)};
}

std::uint32_t pack(const Rgba& color) {
    return std::uint32_t(color.r) | std::uint32_t(color.g) << 8 | std::uint32_t(color.b) << 16 |
           std::uint32_t(color.a) << 24;
}

void ReferenceAverage::count(std::uint32_t color) {
    Rgba pixel = unpack(color);
    if (pixel.a == 0) {
        ++empty;
        return;
    }
    alpha += std::uint64_t(pixel.a);
    red += std::uint64_t(pixel.r);
    green += std::uint64_t(pixel.g);
    blue += std::uint64_t(pixel.b);
    ++colored;
}

void ReferenceAverage::countDensity(std::uint32_t density) {
    alpha += density;
    ++colored;
}

std::uint32_t ReferenceAverage::color() const {
    std::uint64_t n = colored;
    if (n == 0)
        return 0;
    return pack({int((red + n / 2) / n), int((green + n / 2) / n), int((blue + n / 2) / n),
                 int((alpha + (n + empty) / 2) / (n + empty))});
}

void ReferenceMixer::setMixAlpha(double alpha) {
    mixAlpha = alpha > 0 ? std::int64_t(std::min(alpha, 1.0) * 32768) : 0;
    if (!cache)
        baseAlpha = mixAlpha;
}

void ReferenceMixer::setCacheAlpha(double alpha) {
    cacheAlpha = alpha > 0 ? std::int64_t(std::min(alpha, 1.0) * 32768) : 0;
    if (cache)
        baseAlpha = cacheAlpha;
}

void ReferenceMixer::scaleAntiAlpha(double factor) {
    double scaled = double(baseAlpha) * factor;
    (cache ? cacheAlpha : mixAlpha) = scaled > 0 ? std::int64_t(std::min(scaled, 32768.0)) : 0;
}

ReferenceMixer::Kernel ReferenceMixer::kernel() const {
    int depth = destination->depth;
    bool isOpaqueEnough = cacheAlpha != 0 && mixAlpha != 0;
    if (depth == 16)
        return Kernel::none;
    if (blur)
        return isOpaqueEnough && depth == 32 ? Kernel::blur : Kernel::none;
    if (clone)
        return isOpaqueEnough ? Kernel::clone : Kernel::none;
    if (cacheAlpha == 0)
        return Kernel::none;
    if (composition == cnWater || composition == cnWaterMultiply) {
        bool isComplete = cache && colorCache && composite && (average || depth == 8);
        return isComplete && (depth == 8 || depth == 32) ? Kernel::water : Kernel::none;
    }
    if (mixAlpha == 0 || paint.a == 0)
        return Kernel::none;
    if (cache)
        return composite ? Kernel::cache : Kernel::none;
    if (composition < cnReplace || composition > cnLightenStep)
        return Kernel::none;
    return mask || has(cnGauss) ? Kernel::direct : Kernel::fastest;
}

void ReferenceMixer::doLineRow(int x1, int x2, int y) {
    Kernel chosen = kernel();
    bool isDirectBits = destination->depth < 8 && (chosen == Kernel::direct || chosen == Kernel::fastest);
    bool isSoft = has(cnGauss) && !isDirectBits;
    if (chosen == Kernel::none || (isSoft && (!plotter || !plotter->startLine(y, x1))))
        return;
    for (int x = x1; x <= x2; ++x) {
        switch (chosen) {
        case Kernel::blur: blurPixel(x, y); break;
        case Kernel::clone: clonePixel(x, y); break;
        case Kernel::water: waterPixel(x, y); break;
        case Kernel::cache: cachePixel(x, y); break;
        case Kernel::fastest: fastestPixel(x, y); break;
        case Kernel::direct: directPixel(x, y); break;
        case Kernel::none: break;
        }
        if (isSoft)
            plotter->next();
    }
}

int ReferenceMixer::pixelOfBits() const {
    if (composition == cnErase)
        return 0;
    return destination->depth == 1 ? 1 : paint.r > 127 ? 2 : 3;
}

bool ReferenceMixer::passesDither(std::int64_t level, int x, int y) const {
    return level >= 255 || (level > 0 && ditherEntry(x & 15, y & 15) <= level);
}

/// 0: the pixel is passed over; 255: the mask does nothing.
int ReferenceMixer::maskValue(int x, int y) const {
    if (!mask)
        return 255;
    int scale = mask->resolution / destination->resolution;
    int maskColumn = x * scale - maskX;
    int maskRow = y * scale - maskY;
    if (!mask->exists(maskColumn, maskRow))
        return 0;
    int value = int(mask->at(maskColumn, maskRow));
    return mask->depth == 1 ? value * 255 : value;
}

bool ReferenceMixer::maskBit(int x, int y) const { return maskValue(x, y) > 127; }

std::int64_t ReferenceMixer::falloff(std::int64_t a, bool clipped) const {
    if (!has(cnGauss))
        return a;
    return (clipped ? plotter->value() : plotter->valueNoClip()) * a >> 15;
}

/// The texture's step before or after the cache, when it is the texture's turn.
std::int64_t ReferenceMixer::textured(std::int64_t a, int x, int y, bool afterCache) const {
    if (!texture || has(cnTextureAfter) != afterCache)
        return a;
    auto wrap = [](int value, int size) { return ((value % size) + size) % size; };
    int row = wrap(y + texture->offsetY, texture->height);
    int column = wrap(x + texture->offsetX, texture->rowBytes);
    std::int64_t t = texture->texels[std::size_t(row * texture->rowBytes + column)];
    std::int64_t limit = afterCache ? 128 * 256 : baseAlpha;
    switch (texture->mode) {
    case 0: return std::max<std::int64_t>(texture->density + 256 - t, 0) * a >> 8;
    case 1: return (255 - t) * a >> 8;
    case 2: return std::max<std::int64_t>(a - (t * limit >> 8), 0);
    case 3: return std::min(a, (255 - t) * limit >> 8);
    default: return a;
    }
}

/// Brings a into the cache and takes the cache's new value for it; false when the pixel is passed over.
bool ReferenceMixer::accumulate(std::int64_t& a, std::int64_t cap, int x, int y) {
    std::int64_t old = cache->at(x, y);
    if (has(cnCacheOver))
        a = std::min(old + ((cnOne - old) * a >> 15), cap);
    else if (has(cnCacheMax)) {
        if (old > a)
            return false;
        a = std::min(a, cap);
    } else if (has(cnCacheAdd))
        a = std::min(old + a, cap);
    else
        return true;
    cache->at(x, y) = std::uint32_t(a);
    return true;
}

void ReferenceMixer::store(const Rgba& color, int x, int y) {
    std::uint32_t value = pack(color);
    destination->at(x, y) = destination->depth == 24 ? value & 0xFFFFFF : value;
}

void ReferenceMixer::storeKeepingAlpha(const Rgba& color, int x, int y) {
    Rgba kept = color;
    kept.a = unpack(destination->at(x, y)).a;
    store(kept, x, y);
}

void ReferenceMixer::directPixel(int x, int y) {
    int m = maskValue(x, y);
    if (m == 0)
        return;
    if (destination->depth < 8) {
        destination->at(x, y) = std::uint32_t(pixelOfBits());
        return;
    }
    std::int64_t a = falloff((mixAlpha * paintAlpha() >> 15) * m / 255, true);
    if (a == 0)
        return;
    std::int64_t step = a * 51 >> 15;
    if (composition == cnDarkenStep)
        step = -step;
    if (destination->depth == 8) {
        std::int64_t v = destination->at(x, y);
        switch (composition) {
        case cnReplace: v = opacityByte(a); break;
        case cnNormal: v = a >= cnOne ? 255 : byte(v + (((255 - v) * a + 16384) >> 15)); break;
        case cnErase: v = ((cnOne - a) * v + 16384) >> 15; break;
        default: v = v == 0 ? 0 : byte(v - step); break;
        }
        destination->at(x, y) = std::uint32_t(v);
        return;
    }
    Rgba p = unpack(destination->at(x, y));
    bool isOpaque = destination->depth == 24;
    if (composition == cnErase) {
        if (!isOpaque && !keepAlpha)
            store({p.r, p.g, p.b, byte(((cnOne - a) * p.a + 16384) >> 15)}, x, y);
    } else if (composition == cnDarkenStep || composition == cnLightenStep) {
        if (isOpaque || p.a != 0)
            store(eachChannel(p, paint, [=](int o, int) { return o + step; }), x, y);
    } else if (isOpaque) {
        bool isFull = composition == cnReplace || a >= cnOne;
        store(eachChannel(p, paint, [=](int o, int c) { return isFull ? c : lerp(o, c, a); }), x, y);
    } else if (composition == cnReplace)
        store({paint.r, paint.g, paint.b, keepAlpha ? p.a : opacityByte(a)}, x, y);
    else
        normal32(a, paint, p, x, y);
}

void ReferenceMixer::fastestPixel(int x, int y) {
    if (destination->depth < 8) {
        destination->at(x, y) = std::uint32_t(pixelOfBits());
        return;
    }
    int b = int((paint.a * mixAlpha) >> 15);
    if (b == 0)
        return;
    if (destination->depth == 8)
        fastestPixel8(b, x, y);
    else
        fastestPixel32(b, x, y, paint);
}

void ReferenceMixer::fastestPixel8(int b, int x, int y) {
    int v = int(destination->at(x, y));
    switch (composition) {
    case cnReplace: v = b; break;
    case cnNormal:
    case cnMultiply: v = v == 0 ? b : byte(v + (255 - v) * b / 255); break;
    case cnErase: v = v * (255 - b) / 255; break;
    case cnDarkenStep: v = v == 0 ? 0 : byte(v + b / 5); break;
    case cnLightenStep: v = v == 0 ? 0 : byte(v - b / 5); break;
    default: break;
    }
    destination->at(x, y) = std::uint32_t(v);
}

/// 24 and 32 bits; also what stamps without a cache paint.
void ReferenceMixer::fastestPixel32(int b, int x, int y, const Rgba& color) {
    bool isOpaque = destination->depth == 24;
    Rgba p = unpack(destination->at(x, y));
    Rgba full{color.r, color.g, color.b, keepAlpha ? p.a : b};
    auto blend = [=](int o, int c) { return (c * b + o * (255 - b)) / 255; };
    auto step = [=, this](int o, int) { return composition == cnDarkenStep ? o - b / 5 : o + b / 5; };
    if (composition == cnErase) {
        if (!isOpaque && !keepAlpha)
            store({p.r, p.g, p.b, p.a * (255 - b) / 255}, x, y);
    } else if (composition == cnDarkenStep || composition == cnLightenStep) {
        if (isOpaque || p.a != 0)
            store(eachChannel(p, color, step), x, y);
    } else if (composition == cnReplace || b == 255 || (!isOpaque && p.a == 0))
        store(full, x, y);
    else if (isOpaque || p.a == 255 || keepAlpha)
        store(eachChannel(p, color, blend), x, y);
    else {
        double q = (255 - b) * p.a / 255.0;
        Rgba mixed = eachChannel(p, color, [=](int o, int c) { return round((o * q + c * b) / (q + b)); });
        mixed.a = round(b + q);
        destination->match(x, y) = Match::withinOne;
        if (mixed.a > 0)
            store(mixed, x, y);
    }
}

void ReferenceMixer::cachePixel(int x, int y) {
    std::int64_t a = cacheAlpha * paintAlpha() >> 15;
    if (cache->at(x, y) >= paintAlpha())
        return;
    int m = maskValue(x, y);
    if (m == 0)
        return;
    cachePixel(falloff(a * m / 255, !texture), paintAlpha() * m / 255, x, y);
}

/// From the texture before the cache on.
void ReferenceMixer::cachePixel(std::int64_t a, std::int64_t cap, int x, int y) {
    if (texture && !has(cnTextureAfter))
        a = std::min(textured(a, x, y, false), cap);
    if (a == 0)
        return;
    if (composition < cnReplace || composition > cnAddFade)
        cache->match(x, y) = Match::any;
    if (!accumulate(a, cap, x, y))
        return;
    a = mixAlpha * a >> 15;
    if (texture && has(cnTextureAfter))
        a = std::min(textured(a, x, y, true), cap);
    if (a > 0)
        composeCached(a, paint, x, y);
}

void ReferenceMixer::composeCached(std::int64_t a, const Rgba& color, int x, int y) {
    int depth = destination->depth;
    if (depth == 32)
        composeCached32(a, color, x, y);
    else if (depth == 24) {
        Rgba o = isCompositeEmpty(x, y) ? Rgba{255, 255, 255, 0} : unpack(composite->at(x, y));
        store(eachChannel(o, color, [=](int p, int c) { return lerp(p, c, a); }), x, y);
    } else if (depth == 8)
        composeCached8(a, x, y);
    else if (!has(cnDither) || passesDither(opacityByte(a), x, y))
        destination->at(x, y) = std::uint32_t(pixelOfBits());
}

void ReferenceMixer::composeCached8(std::int64_t a, int x, int y) {
    bool isEmpty = isCompositeEmpty(x, y);
    std::int64_t v = isEmpty ? 0 : composite->at(x, y);
    std::int64_t level = opacityByte(a);
    std::int64_t t = (8372224 - 255 * a) >> 15;
    double f = double(a) / 32768;
    switch (composition) {
    case cnReplace:
        if (!isEmpty)
            return;
        [[fallthrough]];
    case cnNormal:
    case cnMultiply:
    case cnHardLight: v += ((255 - v) * a + 16384) >> 15; break;
    case cnErase: v = (v * (cnOne - a) + 16384) >> 15; break;
    case cnDarkenStep: v = v == 0 ? 0 : v + (a * 51 >> 15); break;
    case cnLightenStep: v = v == 0 ? 0 : v - (a * 51 >> 15); break;
    case cnAdd:
    case cnColorDodge:
    case cnAddFade: v -= level; break;
    case cnLighten:
        if (v == 0 || t >= v)
            return;
        v = t;
        break;
    case cnDarken:
        if (v == 255 || v >= level)
            return;
        v = level;
        break;
    case cnColorBurn: v += level; break;
    case cnScreen: v = ((cnOne - a) * v + 16384) >> 15; break;
    case cnOverlay: v = v < 128 ? ((a + cnOne) * v + 16384) >> 15 : ((cnOne - a) * v + 16384 + 255 * a) >> 15; break;
    case cnDifference: v = std::abs(level - v); break;
    case cnSoftLight:
        if (v == 0)
            return;
        v += std::int64_t(f * (double(255 - v) - double(255 - v) * double(255 - v) / 255) + 0.5);
        destination->match(x, y) = Match::withinOne;
        break;
    default: return;
    }
    destination->at(x, y) = std::uint32_t(byte(v));
}

void ReferenceMixer::composeCached32(std::int64_t a, const Rgba& color, int x, int y) {
    if (!isCompositeEmpty(x, y)) {
        if (composition != cnReplace)
            compose32(a, color, unpack(composite->at(x, y)), x, y);
        return;
    }
    if (keepAlpha)
        return;
    if (composition == cnReplace || composition == cnNormal || composition == cnMultiply)
        store({color.r, color.g, color.b, opacityByte(a)}, x, y);
    else if (composition == cnHardLight)
        hardLight32(a, color, {255, 255, 255, 0}, x, y);
}

/// One pixel of 32 bits: colour of opacity a over the pixel before the stroke.
void ReferenceMixer::compose32(std::int64_t a, const Rgba& color, const Rgba& o, int x, int y) {
    double f = double(a) / 32768;
    std::int64_t step = a * 51 >> 15;
    auto set = [&](auto rule) { storeKeepingAlpha(eachChannel(o, color, rule), x, y); };
    auto setNear = [&](auto rule) {
        destination->match(x, y) = Match::withinOne;
        set([&](int p, int c) { return round(rule(double(p), double(c))); });
    };
    if (composition == cnNormal)
        return normal32(a, color, o, x, y);
    if (composition == cnMultiply)
        return multiply32(a, color, o, x, y);
    if (composition == cnHardLight)
        return hardLight32(a, color, o, x, y);
    if (o.a == 0)
        return;
    switch (composition) {
    case cnErase:
        if (!keepAlpha) {
            Rgba thinned = unpack(destination->at(x, y));
            thinned.a = byte((o.a * (cnOne - a) + 16384) >> 15);
            store(thinned, x, y);
        }
        break;
    case cnDarkenStep: set([=](int p, int) { return p - step; }); break;
    case cnLightenStep: set([=](int p, int) { return p + step; }); break;
    case cnAdd: set([=](int p, int c) { return p + ((a * c + 16384) >> 15); }); break;
    case cnLighten: set([=](int p, int c) { return std::max<std::int64_t>(p, (a * c + 16384) >> 15); }); break;
    case cnDarken: set([=](int p, int c) { return std::min<std::int64_t>(p, lerp(p, c, a)); }); break;
    case cnDifference: set([=](int p, int c) { return std::abs(((a * c + 16384) >> 15) - p); }); break;
    case cnAddFade: set([=](int p, int c) { return lerp(p, std::min(255, p + c), a); }); break;
    case cnColorBurn:
        setNear([=](double p, double c) {
            double part = c * f + 255 * (1 - f);
            return part + p < 255 ? 0.0 : part == 0 ? 255.0 : 255.0 - round((255 - p) * 255 / part);
        });
        break;
    case cnColorDodge:
        setNear([=](double p, double c) {
            if (p + c >= 256)
                return p + round((255 - p) * f);
            return p == 0 ? 0.0 : (255 * f / (255 - c) + 1 - f) * p;
        });
        break;
    case cnScreen: setNear([=](double p, double c) { return p + round((255 - p) * c * f / 255); }); break;
    case cnOverlay:
        setNear([=](double p, double c) {
            if (p > 127)
                return (1 - f) * p + f * (255 - 2 * (255 - p) * (255 - c) / 255);
            return ((2 * c / 255 - 1) * f + 1) * p;
        });
        break;
    case cnSoftLight:
        setNear([=](double p, double c) {
            if (c > 127)
                return (255 * std::pow(p / 255, 128 / c) - p) * f + p;
            return p - round((p - 255 * std::pow(p / 255, (255 - c) / 128)) * f);
        });
        break;
    default: break;
    }
}

void ReferenceMixer::normal32(std::int64_t a, const Rgba& color, const Rgba& o, int x, int y) {
    if (a >= cnOne || o.a == 0) {
        Rgba full{color.r, color.g, color.b, opacityByte(a)};
        return keepAlpha ? storeKeepingAlpha(full, x, y) : store(full, x, y);
    }
    Rgba mixed = eachChannel(o, color, [=](int p, int c) { return lerp(p, c, a); });
    if (keepAlpha)
        return storeKeepingAlpha(mixed, x, y);
    if (o.a == 255)
        return store(mixed, x, y);
    std::int64_t alpha = ((cnOne - a) * o.a + a * 255) >> 15;
    if (alpha == 0)
        return;
    std::int64_t weight = std::min(cnOne, a * 255 / alpha);
    mixed = eachChannel(o, color, [=](int p, int c) { return lerp(p, c, weight); });
    mixed.a = byte(alpha);
    store(mixed, x, y);
}

void ReferenceMixer::multiply32(std::int64_t a, const Rgba& color, const Rgba& o, int x, int y) {
    constexpr std::int64_t cnFull = 255 * 32768;
    Rgba result{color.r, color.g, color.b, opacityByte(a)};
    if (o.a == 255 || (keepAlpha && o.a != 0)) {
        auto darken = [=](int p, int c) { return ((cnFull - (255 - c) * a) * p + cnFull / 2) / cnFull; };
        result = eachChannel(o, color, darken);
        result.a = 255;
    } else if (o.a != 0 && a >= cnOne) {
        auto overWhite = [=](int p, int c) { return round(((p / 255.0 - 1) * o.a / 255 + 1) * c); };
        result = eachChannel(o, color, overWhite);
        result.a = 255;
        destination->match(x, y) = Match::withinOne;
    } else if (o.a != 0) {
        double f = double(a) / 32768;
        double alpha = f * 255 + (1 - f) * o.a;
        double k = o.a / alpha;
        result = eachChannel(o, color,
                             [=](int p, int c) { return round(c * (1 - k) + (f / 255 * k * c + (1 - f) * k) * p); });
        result.a = round(alpha);
        destination->match(x, y) = Match::withinOne;
        if (result.a == 0)
            return;
    }
    keepAlpha ? storeKeepingAlpha(result, x, y) : store(result, x, y);
}

void ReferenceMixer::hardLight32(std::int64_t a, const Rgba& color, const Rgba& o, int x, int y) {
    double f = double(a) / 32768;
    bool isFlattened = !keepAlpha && o.a < 255;
    Rgba result = eachChannel(o, color, [=](int p, int c) {
        double over = p;
        if (isFlattened)
            over = (o.a * over + 255 * (255 - o.a) * f) / ((255 - o.a) * f + o.a);
        return c > 127 ? round(over + (2 * c - 255) * (255 - over) / 255 * f)
                       : round((1 - (1 - 2 * c / 255.0) * f) * over);
    });
    result.a = round(o.a + 255 * f);
    destination->match(x, y) = Match::withinOne;
    keepAlpha || o.a == 255 ? storeKeepingAlpha(result, x, y) : store(result, x, y);
}

void ReferenceMixer::waterPixel(int x, int y) {
    int m = maskValue(x, y);
    if (m == 0)
        return;
    waterPixel(falloff(cacheAlpha * m / 255, !texture), cnOne * m / 255, x, y);
}

/// From the texture before the cache on.
void ReferenceMixer::waterPixel(std::int64_t a, std::int64_t cap, int x, int y) {
    if (texture && !has(cnTextureAfter))
        a = std::min(textured(a, x, y, false), cap);
    if (average && destination->depth == 32)
        average->count(destination->at(x, y));
    else if (average)
        average->countDensity(destination->at(x, y));
    std::int64_t total = a;
    if (has(cnSampleOnly) || a == 0 || !accumulate(total, cap, x, y))
        return;
    waterColor(a, total, x, y);
    std::int64_t b = mixAlpha * total >> 15;
    if (texture && has(cnTextureAfter))
        b = std::min(textured(b, x, y, true), cap);
    if (b == 0)
        return;
    destination->depth == 32 ? waterPaint32(b, x, y) : waterPaint8(b, x, y);
}

/// The dab's share of the colour cache: a of what has come together, total.
void ReferenceMixer::waterColor(std::int64_t a, std::int64_t total, int x, int y) {
    std::uint32_t& cached = colorCache->at(x, y);
    if (destination->depth == 8) {
        bool isMixed = total > a && cached != std::uint32_t(paint.a);
        double share = double(a) / double(total);
        cached = std::uint32_t(isMixed ? round(share * paint.a + (1 - share) * cached) : paint.a);
        if (isMixed)
            colorCache->match(x, y) = destination->match(x, y) = Match::withinOne;
        return;
    }
    Rgba color = paint;
    if (total > a) {
        std::int64_t weight = ((a << 15) + total / 2) / total;
        Rgba old = unpack(cached);
        color = eachChannel(old, paint, [=](int p, int c) { return lerp(p, c, weight); });
        color.a = byte(lerp(old.a, paint.a, weight));
    }
    cached = pack(color);
}

void ReferenceMixer::waterPaint8(std::int64_t b, int x, int y) {
    std::int64_t density = colorCache->at(x, y);
    std::int64_t below = isCompositeEmpty(x, y) ? 0 : composite->at(x, y);
    destination->at(x, y) = std::uint32_t(lerp(below, density, b));
}

void ReferenceMixer::waterPaint32(std::int64_t b, int x, int y) {
    Rgba cached = unpack(colorCache->at(x, y));
    Rgba old = unpack(destination->at(x, y));
    Rgba o = isCompositeEmpty(x, y) ? Rgba{} : unpack(composite->at(x, y));
    if (o.a == 0) {
        if (!keepAlpha)
            store({cached.r, cached.g, cached.b, byte((cached.a * b + 16384) >> 15)}, x, y);
        return;
    }
    std::int64_t below = keepAlpha ? 255 : o.a;
    Rgba result = cached;
    if (composition == cnWaterMultiply && !(b >= cnOne && keepAlpha))
        destination->match(x, y) = Match::withinOne;
    if (b < cnOne) {
        std::int64_t sum = ((cnOne - b) * below + cached.a * b + 16384) >> 15;
        if (sum == 0) {
            old.a = keepAlpha ? old.a : 0;
            return store(old, x, y);
        }
        if (composition == cnWater) {
            std::int64_t weight = std::min(cnOne, cached.a * b / sum);
            result = eachChannel(o, cached, [=](int p, int c) { return lerp(p, c, weight); });
            if (old.r == cached.r && old.g == cached.g && old.b == cached.b)
                destination->match(x, y) = Match::any;
        } else {
            double k = std::min(1.0, cached.a * double(b) / (double(sum) * 32768));
            double part = double(below) / 255;
            result = eachChannel(
                o, cached, [=](int p, int c) { return round(p * (1 - k) + k * c * (p / 255.0 * part + (1 - part))); });
        }
        result.a = byte(sum);
    } else if (composition == cnWaterMultiply) {
        double part = o.a / 255.0;
        result = eachChannel(o, cached, [=, this](int p, int c) {
            return keepAlpha ? (p * c + 127) / 255 : round((p * part / 255 + (1 - part)) * c);
        });
        result.a = cached.a;
    }
    keepAlpha ? storeKeepingAlpha(result, x, y) : store(result, x, y);
}

void ReferenceMixer::blurPixel(int x, int y) {
    std::int64_t m = maskValue(x, y);
    std::int64_t a = falloff(((m * 257 + 1) * mixAlpha) >> 16, true);
    if (m == 0 || a == 0)
        return;
    Rgba p = unpack(destination->at(x, y));
    Rgba s = unpack(blur->at(x + cloneX, y + cloneY));
    Rgba result{s.r, s.g, s.b, s.a};
    if (a < cnOne) {
        if (p.a == 0 && s.a == 0)
            destination->match(x, y) = Match::any;
        if (p.a == 0)
            result.a = byte((s.a * a + 16384) >> 15);
        else {
            result = s.a == 0 ? p : eachChannel(p, s, [=](int o, int c) { return lerp(o, c, a); });
            result.a = byte(lerp(p.a, s.a, a));
        }
    }
    keepAlpha ? storeKeepingAlpha(result, x, y) : store(result, x, y);
}

void ReferenceMixer::clonePixel(int x, int y) {
    int m = maskValue(x, y);
    std::int64_t a = falloff(mixAlpha * m / 255, true);
    if (m == 0 || a == 0)
        return;
    Rgba s = unpack(clone->color(x + cloneX, y + cloneY));
    int depth = destination->depth;
    if (depth >= 24)
        return clonePixelColor(a, s, x, y);
    if (depth == 8) {
        std::int64_t v = destination->at(x, y);
        destination->at(x, y) = std::uint32_t(a >= cnOne ? s.a : byte(v + (((s.a - v) * a + 16384) >> 15)));
        return;
    }
    if (has(cnDither) && !passesDither(opacityByte(a), x, y))
        return;
    int luminance = (s.r + 4 * s.g + 2 * s.b) / 7;
    if (depth == 1)
        destination->at(x, y) = (((255 - luminance) * (s.a + 1)) >> 8) > 127;
    else
        destination->at(x, y) = s.a <= 127 ? 0 : luminance >= 128 ? 2 : 3;
}

/// 32 bits, and 24 as an opaque pixel that keeps its alpha.
void ReferenceMixer::clonePixelColor(std::int64_t a, const Rgba& s, int x, int y) {
    bool isOpaque = destination->depth == 24;
    bool isKept = keepAlpha || isOpaque;
    Rgba p = unpack(destination->at(x, y));
    if (a >= cnOne && !isKept)
        return store(s, x, y);
    if (isKept && !isOpaque && p.a == 0)
        return;
    std::int64_t sum = isKept ? (s.a - 255) * a + 255 * cnOne : (cnOne - a) * p.a + s.a * a;
    Rgba result = p;
    if (s.a != 0 && sum != 0) {
        double k = double(s.a * a) / double(sum);
        result = eachChannel(p, s, [=](int o, int c) { return round(o * (1 - k) + c * k); });
        destination->match(x, y) = Match::withinOne;
    }
    if (!isKept)
        result.a = byte((sum + 16384) >> 15);
    store(result, x, y);
}

} // namespace ovw::test
