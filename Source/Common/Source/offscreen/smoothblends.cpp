#include "offscreen/smoothblends.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace ovw::offscreen {

namespace {

std::uint8_t limited(int value) { return byteOf(std::min(value, cnByteMax)); }

/// The parts of a row and of a column at the corner where they meet.
ArgbPixel corner(const ArgbPixel& own, const ArgbPixel& new1, const ArgbPixel& new2, const ArgbPixel& old1,
                 const ArgbPixel& old2) {
    const auto sum = [](int n1, int n2, int o1, int o2, int pixel) {
        return limited((n1 + o1) / 2 + o2 + n2 + pixel / 4);
    };
    if (new1.alpha) {
        const ArgbPixel colour = averageOf(new1, old1);
        const std::uint8_t alpha = sum(new1.alpha, new2.alpha, old1.alpha, old2.alpha, own.alpha);
        return {std::max<std::uint8_t>(alpha, 1), colour.red, colour.green, colour.blue};
    }
    return {0, sum(new1.red, new2.red, old1.red, old2.red, own.red),
            sum(new1.green, new2.green, old1.green, old2.green, own.green),
            sum(new1.blue, new2.blue, old1.blue, old2.blue, own.blue)};
}

/// A pixel with its blends: part1 alone is a whole, or, with part2, a part. A mix of colours alone is opaque.
ArgbPixel merged(const ArgbPixel& own, const ArgbPixel& part1, const ArgbPixel* part2) {
    const int alpha2 = part2 ? part2->alpha : 0;
    if (alpha2)
        return {limited(own.alpha / 2 + alpha2 + part1.alpha), part1.red, part1.green, part1.blue};
    if (part1.alpha)
        return part1;
    if (!part2)
        return {cnByteMax, part1.red, part1.green, part1.blue};
    return {cnByteMax, limited(own.red / 2 + part2->red + part1.red),
            limited(own.green / 2 + part2->green + part1.green), limited(own.blue / 2 + part2->blue + part1.blue)};
}

int distance(const ArgbPixel& a, const ArgbPixel& b) {
    return std::abs(a.alpha - b.alpha) + std::abs(a.red - b.red) + std::abs(a.green - b.green) +
           std::abs(a.blue - b.blue);
}

/// Whether colours are mixed, not alphas.
bool isOpaque(const SmoothedPixel& v) { return v.part1.alpha == 0; }

/// A mix of colours as one of alphas, which keeps the pixel's own colour.
SmoothedPixel withAlpha(const ArgbPixel& own, const SmoothedPixel& v) {
    if (!isOpaque(v))
        return v;
    if (v.kind != SmoothedPixel::Kind::parts)
        return {v.kind, {own.alpha, v.part1.red, v.part1.green, v.part1.blue}, {}};
    // Each part is a quarter of the pixel.
    const ArgbPixel quarter{std::max<std::uint8_t>(own.alpha / 4, 1), own.red, own.green, own.blue};
    return {v.kind, quarter, quarter};
}

/// What remains of two findings for one pixel; the order of the two does not matter.
SmoothedPixel together(const ArgbPixel& own, const SmoothedPixel& a, const SmoothedPixel& b) {
    using Kind = SmoothedPixel::Kind;
    if (isOpaque(a) != isOpaque(b))
        return together(own, withAlpha(own, a), withAlpha(own, b));
    if (a.kind == Kind::diagonal && b.kind == Kind::diagonal)
        return {Kind::whole, averageOf(a.part1, b.part1), {}};
    if (a.kind == Kind::diagonal || b.kind == Kind::diagonal)
        return a.kind == Kind::diagonal ? b : a;
    if (a.kind != b.kind)
        return a.kind == Kind::whole ? a : b;
    if (a.kind == Kind::parts)
        return {Kind::whole, corner(own, a.part1, a.part2, b.part1, b.part2), {}};
    const int change = distance(own, merged(own, a.part1, nullptr)) - distance(own, merged(own, b.part1, nullptr));
    if (change != 0)
        return change > 0 ? a : b;
    return {Kind::whole, averageOf(a.part1, b.part1), {}};
}

ArgbPixel toArgb(ArgbPixel v) { return v; }
ArgbPixel toArgb(RgbPixel v) { return {cnByteMax, v.red, v.green, v.blue}; }
void fromArgb(const ArgbPixel& v, ArgbPixel& pixel) { pixel = v; }
void fromArgb(const ArgbPixel& v, RgbPixel& pixel) { pixel = {v.red, v.green, v.blue}; }

/// The first position from x on, before end, that has a mark.
int nextMark(const std::uint8_t* marks, int x, int end) {
    std::uint64_t eight;
    while (x + 8 <= end && (std::memcpy(&eight, marks + x, sizeof eight), eight == 0))
        x += 8;
    while (x < end && !marks[x])
        ++x;
    return x;
}

} // namespace

ArgbPixel averageOf(const ArgbPixel& a, const ArgbPixel& b) {
    return {byteOf((a.alpha + b.alpha) / 2), byteOf((a.red + b.red) / 2), byteOf((a.green + b.green) / 2),
            byteOf((a.blue + b.blue) / 2)};
}

ArgbPixel Blend::operator()(const ArgbPixel& partner, const ArgbPixel& own, bool isOpaque) const {
    const auto mix = [this](int p, int d) {
        return byteOf(static_cast<int>((p * partnerWeight + d * ownWeight) / total));
    };
    if (isOpaque)
        return {0, mix(partner.red, own.red), mix(partner.green, own.green), mix(partner.blue, own.blue)};
    const ArgbPixel& colour = own.alpha ? own : partner;
    return {std::max<std::uint8_t>(mix(partner.alpha, own.alpha), 1), colour.red, colour.green, colour.blue};
}

SmoothedPixel SmoothBlends::get(int x, int y) const {
    return {static_cast<Kind>(mark(x, y)), loadPixel<Argb32>(m_work1.row(y), x), loadPixel<Argb32>(m_work2.row(y), x)};
}

void SmoothBlends::add(int x, int y, const ArgbPixel& own, const SmoothedPixel& found) {
    const SmoothedPixel result = mark(x, y) ? together(own, get(x, y), found) : found;
    storePixel<Argb32>(m_work1.row(y), x, result.part1);
    storePixel<Argb32>(m_work2.row(y), x, result.kind == Kind::parts ? result.part2 : Argb32::write32(cnWhite));
    mark(x, y) = static_cast<std::uint8_t>(result.kind);
}

template <class Format>
void SmoothBlends::mergeRow(const PixelView& image, int y, int left, int right) const {
    const std::uint8_t* const marks = &mark(0, y);
    std::uint8_t* const row = image.row(y);
    for (int x = left; (x = nextMark(marks, x, right)) < right; ++x) {
        const SmoothedPixel found = get(x, y);
        if (found.kind == Kind::diagonal)
            continue; // in one direction only
        auto pixel = loadPixel<Format>(row, x);
        fromArgb(merged(toArgb(pixel), found.part1, found.kind == Kind::parts ? &found.part2 : nullptr), pixel);
        storePixel<Format>(row, x, pixel);
    }
}

void SmoothBlends::mergeInto(const PixelView& image, const XCRect& rect) const {
    for (int y = rect.top; y < rect.bottom; ++y)
        if (image.depth == Argb32::cnBits)
            mergeRow<Argb32>(image, y, rect.left, rect.right);
        else
            mergeRow<Rgb24>(image, y, rect.left, rect.right);
}

} // namespace ovw::offscreen
