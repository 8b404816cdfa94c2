#include "tips.h"

#include "failure.h"
#include "imageedits.h"
#include "picture.h"

#include "ovwcmn/xcpattern.h"
#include "ovwcmn/xcpatterndraw.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <vector>

namespace ovwpaint {

namespace {

constexpr double cnPi = std::numbers::pi;
constexpr Colour cnNothing = packColour(255, 255, 255, 0);
constexpr Colour cnBlack = packColour(0, 0, 0);
constexpr Colour cnWhite = packColour(255, 255, 255);

std::uint32_t toByte(double value) { return static_cast<std::uint32_t>(std::clamp(value, 0.0, 255.0) + 0.5); }

Colour grey(double brightness) {
    const std::uint32_t level = toByte(brightness * 255.0);
    return packColour(level, level, level);
}

Colour shaded(Colour colour, double light) {
    return packColour(toByte(redOf(colour) * light), toByte(greenOf(colour) * light), toByte(blueOf(colour) * light));
}

/// A number from 0 to 1 that looks random.
double scattered(int i) {
    const double value = std::sin(i * 12.9898 + 4.1414) * 43758.5453;
    return value - std::floor(value);
}

/// A star with five points, one of them up.
Colour star(double u, double v) {
    constexpr double cnPoint = 2.0 * cnPi / 5.0;
    constexpr double cnInner = 0.42;
    double angle = std::abs(std::remainder(std::atan2(u, -v), cnPoint));
    // The edge from the point (1, 0) to the inner corner at half the angle.
    const double cornerX = cnInner * std::cos(cnPoint / 2.0), cornerY = cnInner * std::sin(cnPoint / 2.0);
    const double radius = std::hypot(u, v);
    const double x = radius * std::cos(angle), y = radius * std::sin(angle);
    return (1.0 - x) * cornerY >= y * (1.0 - cornerX) ? cnBlack : cnWhite;
}

/// A row of hairs across the tip, each of its own thickness and colour.
Colour bristle(double u, double v) {
    constexpr int cnHairs = 14;
    const int hair = static_cast<int>((u + 1.0) * 0.5 * cnHairs);
    const double center = (hair + 0.5) / cnHairs * 2.0 - 1.0;
    const double radius = (0.5 + 0.5 * scattered(hair)) / cnHairs;
    const double distance = std::hypot(u - center, (v - 0.3 * (scattered(hair + 50) - 0.5)) * 0.5);
    return grey(distance > radius ? 1.0 : 0.6 * scattered(hair + 100));
}

/// The same hairs as a strip that goes on and on, for bending.
Colour dryStrip(double u, double v) {
    constexpr int cnHairs = 24;
    const int hair = static_cast<int>((u + 1.0) * 0.5 * cnHairs);
    const double across = std::abs((u + 1.0) * 0.5 * cnHairs - hair - 0.5) * 2.0;
    const double wave = 0.5 + 0.5 * std::sin(cnPi * (v * (1 + hair % 3) + scattered(hair) * 2.0));
    const double ink = (0.35 + 0.65 * scattered(hair + 7)) * (0.6 + 0.4 * wave) * (1.0 - 0.6 * across * across);
    return grey(1.0 - ink);
}

/// A disc with a crumbling rim and holes.
Colour crumb(double u, double v) {
    const auto cell = [](double at) { return static_cast<int>(std::floor((at + 1.0) * 12.0)); };
    const double tooth = scattered(cell(u) * 31 + cell(v) * 57);
    const double edge = 1.0 - std::hypot(u, v);
    return grey(1.0 - std::clamp(edge * 2.5 - tooth * 0.9, 0.0, 1.0));
}

/// A leaf that points up, with its veins.
Colour leaf(double u, double v, Colour colour) {
    const double along = (1.0 - v) * 0.5; // from the stalk to the tip
    const double half = 0.55 * std::sin(cnPi * std::pow(along, 0.8));
    if (std::abs(u) < 0.035 && along < 0.9)
        return shaded(colour, 0.6);
    if (std::abs(u) > half)
        return cnNothing;
    const double vein = std::remainder(along * 7.0 - std::abs(u) * 2.5, 1.0);
    return shaded(colour, (std::abs(vein) < 0.08 ? 0.75 : 1.0) * (0.85 + 0.3 * (u < 0.0)) * (0.8 + 0.3 * along));
}

Colour greenLeaf(double u, double v) { return leaf(u, v, packColour(86, 150, 60)); }
Colour goldLeaf(double u, double v) { return leaf(u, v, packColour(226, 170, 50)); }
Colour redLeaf(double u, double v) { return leaf(u, v, packColour(190, 70, 46)); }

/// A rope of three strands that goes on above and below.
Colour rope(double u, double v) {
    constexpr double cnHalf = 0.92;
    if (std::abs(u) > cnHalf)
        return cnNothing;
    const double round = std::sqrt(1.0 - u * u / (cnHalf * cnHalf));
    const double strand = std::abs(std::remainder(v * 1.5 + std::asin(u / cnHalf) / cnPi * 1.5, 1.0)) * 2.0;
    const double light = (0.35 + 0.65 * round) * (1.0 - 0.65 * std::pow(strand, 4.0));
    return shaded(packColour(214, 178, 120), light);
}

constexpr std::array cnTips = {
    BuiltInTip{"builtin:star", 1, 31, 31, star},
    BuiltInTip{"builtin:crumb", 8, 48, 48, crumb},
    BuiltInTip{"builtin:bristle", 8, 64, 64, bristle},
    BuiltInTip{"builtin:dry-strip", 8, 64, 96, dryStrip},
    BuiltInTip{"builtin:leaf-green", 32, 64, 64, greenLeaf},
    BuiltInTip{"builtin:leaf-gold", 32, 64, 64, goldLeaf},
    BuiltInTip{"builtin:leaf-red", 32, 64, 64, redLeaf},
    BuiltInTip{"builtin:rope", 32, 48, 64, rope},
};

/// The mean of the places within a pixel, weighted by their coverage.
Colour pixelOf(const BuiltInTip& tip, int x, int y) {
    constexpr int cnPlaces = 4;
    double sums[4] = {};
    for (int i = 0; i < cnPlaces * cnPlaces; ++i) {
        const int column = i % cnPlaces, row = i / cnPlaces;
        const double u = (x + (column + 0.5) / cnPlaces) / tip.width * 2.0 - 1.0;
        const double v = (y + (row + 0.5) / cnPlaces) / tip.height * 2.0 - 1.0;
        const Colour colour = tip.at(u, v);
        const double alpha = alphaOf(colour);
        sums[0] += redOf(colour) * alpha;
        sums[1] += greenOf(colour) * alpha;
        sums[2] += blueOf(colour) * alpha;
        sums[3] += alpha;
    }
    if (sums[3] == 0.0)
        return cnNothing;
    return packColour(toByte(sums[0] / sums[3]), toByte(sums[1] / sums[3]), toByte(sums[2] / sums[3]),
                      toByte(sums[3] / (cnPlaces * cnPlaces)));
}

std::unique_ptr<XCVOffscreen> pictureOf(const BuiltInTip& tip, const std::function<Colour(Colour)>& change) {
    std::unique_ptr<XCVOffscreen> image = makeImage(tip.width, tip.height, tip.depth);
    std::vector<Colour> row(static_cast<std::size_t>(tip.width));
    for (int y = 0; y < tip.height; ++y) {
        for (int x = 0; x < tip.width; ++x)
            row[static_cast<std::size_t>(x)] = pixelOf(tip, x, y);
        storeRow(*image, {0, y, 1, row}, change);
    }
    return image;
}

bool isOpaqueGrey(Colour colour) {
    return alphaOf(colour) == 255 && redOf(colour) == greenOf(colour) && greenOf(colour) == blueOf(colour);
}

std::unique_ptr<XCVOffscreen> readTip(const std::string& path, bool asGrey,
                                      const std::function<Colour(Colour)>& change) {
    constexpr std::int64_t cnMostPixels = 1 << 24;
    constexpr int cnGreyDepth = 8, cnColourDepth = 32;
    PngReader reader(path);
    if (std::int64_t{reader.width()} * reader.height() > cnMostPixels)
        throw Failure(path + ": too large for a tip (" + std::to_string(reader.width()) + " x " +
                      std::to_string(reader.height()) + " pixels)");
    const bool isColour = reader.depth() == cnColourDepth && !asGrey;
    const int depth = reader.depth() == cnColourDepth && asGrey ? cnGreyDepth : reader.depth();
    std::unique_ptr<XCVOffscreen> image = makeImage(reader.width(), reader.height(), depth);
    bool isGrey = true; // whatever the file could hold
    const auto onPaper = [&](Colour colour) {
        isGrey = isGrey && isOpaqueGrey(colour);
        return change(isColour ? colour : over(colour, cnWhite));
    };
    reader.read([&](const PngRow& row) { storeRow(*image, row, onPaper); });
    return isColour && isGrey ? greyed(*image, false) : std::move(image);
}

std::unique_ptr<XCVOffscreen> splatter(const BrushTips& settings) {
    constexpr int cnSize = 192; // pixels
    constexpr int cnDepth = 8;
    std::unique_ptr<XCVOffscreen> image(XCVOffscreen::CreateOffscreen(cnDepth));
    XCPatternDraw::CreateSumiPattern(image.get(), cnSize, settings.splatterSpread, settings.splatterSoftness,
                                     settings.splatterDensity, 1, cnResolution);
    return image;
}

const BuiltInTip* findTip(std::string_view name) {
    const auto* found = std::find_if(cnTips.begin(), cnTips.end(), [&](const BuiltInTip& t) { return t.name == name; });
    return found == cnTips.end() ? nullptr : found;
}

Colour inverted(Colour colour) { return colour ^ (cnWhite & ~cnBlack); }

} // namespace

std::span<const BuiltInTip> builtInTips() { return cnTips; }

std::string builtInTipNames() {
    std::string names = cnSplatterTip;
    for (const BuiltInTip& tip : cnTips)
        names += std::string(", ") + tip.name;
    return names;
}

bool isBuiltInTip(std::string_view name) { return name == cnSplatterTip || findTip(name) != nullptr; }

std::unique_ptr<XCImagePattern> loadTip(const std::string& nameOrPath, const BrushTips& settings) {
    const auto change = [&](Colour colour) { return settings.patternInvert ? inverted(colour) : colour; };
    std::unique_ptr<XCVOffscreen> picture;
    if (nameOrPath == cnSplatterTip)
        picture = splatter(settings);
    else if (const BuiltInTip* tip = findTip(nameOrPath))
        picture = pictureOf(*tip, change);
    else
        picture = readTip(nameOrPath, settings.patternGrey != 0, change);
    auto tip = std::make_unique<XCImagePattern>();
    tip->ImportPatternOffscreen(picture.get());
    return tip;
}

} // namespace ovwpaint
