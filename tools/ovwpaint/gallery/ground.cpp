#include "gallery/ground.h"

#include "pngimport.h"
#include "texture.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace ovwpaint::gallery {

namespace {

Colour mixed(Colour a, Colour b, double share) {
    const auto channel = [&](std::uint32_t from, std::uint32_t to) {
        return static_cast<std::uint32_t>(
            std::lerp(static_cast<double>(from), static_cast<double>(to), std::clamp(share, 0.0, 1.0)) + 0.5);
    };
    return packColour(channel(redOf(a), redOf(b)), channel(greenOf(a), greenOf(b)), channel(blueOf(a), blueOf(b)));
}

/// The height of a chain of hills, 0 to 1.
double hills(double x, double phase) {
    return 0.5 + 0.28 * std::sin(x * 5.0 + phase) + 0.14 * std::sin(x * 13.0 + phase * 2.0) +
           0.05 * std::sin(x * 37.0 + phase * 3.0);
}

/// A picture with the brightness of the grain at every place, -0.5 to 0.5.
class Grain {
public:
    double at(int x, int y) const {
        const auto place = static_cast<std::size_t>(y % m_grain.height) * static_cast<std::size_t>(m_grain.width) +
                           static_cast<std::size_t>(x % m_grain.width);
        return m_grain.pixels[place] / 255.0 - 0.5;
    }

private:
    GreyPicture m_grain = makeGrain();
};

Colour sky(double u, double v) {
    const Colour air = mixed(packColour(70, 120, 190), packColour(250, 220, 180), v * 1.7);
    const double sun = std::hypot((u - 0.72) * 1.5, v - 0.24);
    return mixed(packColour(255, 246, 214), air, (sun - 0.07) * 6.0 + 0.1);
}

Colour scenery(double u, double v, double grain) {
    const double far = 0.62 - 0.26 * hills(u, 1.0), near = 0.74 - 0.16 * hills(u, 4.0);
    if (v < far)
        return sky(u, v);
    if (v < near)
        return mixed(packColour(92, 104, 138), packColour(150, 140, 150), (v - far) * 3.0 + grain * 0.3);
    if (v < 0.72)
        return mixed(packColour(42, 78, 58), packColour(110, 130, 70), (v - near) * 5.0 + grain * 0.9);
    if (v < 0.8) // a lake
        return mixed(packColour(120, 150, 180), packColour(220, 200, 180), 0.5 + 0.5 * std::sin(v * 400.0 + u * 9.0));
    const double flower =
        std::fmod(std::abs(std::sin(std::floor(u * 60.0) * 12.9 + std::floor(v * 40.0) * 78.2)) * 437.5, 1.0);
    const Colour meadow = mixed(packColour(60, 96, 34), packColour(150, 170, 66), 0.5 + grain * 1.2);
    return flower > 0.93 ? mixed(packColour(226, 70, 60), meadow, 0.2 - grain) : meadow;
}

/// Pixels from `first` to before `end`.
struct Stretch {
    int first;
    int end;
};

/// Where a source pixel falls: in one pixel, or in several when the picture is enlarged.
Stretch stretchOf(int source, double origin, double scale) {
    const int first = static_cast<int>(std::floor((source - origin) / scale));
    return {first, std::max(first + 1, static_cast<int>(std::floor((source + 1 - origin) / scale)))};
}

/// A picture as the means of the pixels that fall on each of its own.
class Reduction {
public:
    Reduction(int width, int height)
        : m_width(width), m_height(height), m_sums(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)) {
    }

    void add(const Stretch& columns, const Stretch& rows, Colour pixel) {
        const Colour colour = over(pixel, packColour(255, 255, 255));
        for (int y = std::max(rows.first, 0); y < std::min(rows.end, m_height); ++y) {
            for (int x = std::max(columns.first, 0); x < std::min(columns.end, m_width); ++x) {
                Sum& sum = m_sums[place(x, y)];
                sum.red += redOf(colour);
                sum.green += greenOf(colour);
                sum.blue += blueOf(colour);
                ++sum.count;
            }
        }
    }
    Colour at(int x, int y) const {
        const Sum& sum = m_sums[place(x, y)];
        const std::uint64_t count = std::max<std::uint64_t>(sum.count, 1);
        return packColour(static_cast<std::uint32_t>(sum.red / count), static_cast<std::uint32_t>(sum.green / count),
                          static_cast<std::uint32_t>(sum.blue / count));
    }

private:
    struct Sum {
        std::uint64_t red = 0, green = 0, blue = 0, count = 0;
    };

    std::size_t place(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(m_width) + static_cast<std::size_t>(x);
    }

    int m_width;
    int m_height;
    std::vector<Sum> m_sums;
};

} // namespace

Ground bandsUpTo(int end) {
    static constexpr std::array cnBands = {
        packColour(0, 0, 0),      packColour(110, 110, 110), packColour(255, 255, 255), packColour(200, 40, 40),
        packColour(230, 200, 40), packColour(50, 150, 60),   packColour(50, 110, 200),
    };
    return [end](int x, int) {
        constexpr int cnHalfTransparent = 30; // pixels
        if (x >= end)
            return x < end + cnHalfTransparent ? packColour(50, 110, 200, 128) : packColour(255, 255, 255, 0);
        return cnBands[static_cast<std::size_t>(x) * cnBands.size() / static_cast<std::size_t>(end)];
    };
}

Ground landscape(int width, int height) {
    return [width, height, grain = Grain()](int x, int y) {
        return scenery((x + 0.5) / width, (y + 0.5) / height, grain.at(x, y));
    };
}

Ground photograph(const std::string& path, int width, int height) {
    PngReader reader(path);
    const double scale =
        std::min(reader.width() / static_cast<double>(width), reader.height() / static_cast<double>(height));
    const double left = (reader.width() - width * scale) * 0.5, top = (reader.height() - height * scale) * 0.5;
    Reduction reduction(width, height);
    reader.read([&](const PngRow& row) {
        const Stretch rows = stretchOf(row.y, top, scale);
        int source = row.x;
        for (const Colour pixel : row.pixels) {
            reduction.add(stretchOf(source, left, scale), rows, pixel);
            source += row.step;
        }
    });
    return [reduction = std::move(reduction)](int x, int y) { return reduction.at(x, y); };
}

} // namespace ovwpaint::gallery
