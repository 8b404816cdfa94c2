#include "mixcase.h"
#include "randomcases.h"
#include "referencerules.h"

#include <cmath>
#include <limits>
#include <sstream>

namespace ovw::test {

namespace {

constexpr std::uint32_t cnAccumulation = cnCacheMax | cnCacheOver | cnCacheAdd;
constexpr std::uint32_t cnImageColor = 0x200;
constexpr std::uint32_t cnAntialias = 0x400;

/// Draws the members of a case one after the other. What the rules leave open is not asked for.
class CaseMaker {
public:
    CaseMaker(MixCase& mixCase) : m_case(mixCase), m_random(mixCase.seed * 64 + std::uint64_t(mixCase.family)) {}

    void make() {
        m_depth = chooseDepth();
        m_case.composition = chooseComposition();
        m_case.style = chooseStyle();
        m_case.keepAlpha = m_random.chance(3);
        m_case.color = color();
        if (m_random.chance(3) || needsOpacity())
            m_case.color |= 0xFF000000;
        m_case.subColor = color();
        if (m_random.chance(3))
            m_case.mask = makeMask();
        if (m_random.chance(3))
            m_case.texture = makeTexture();
        if (isCopy(m_case.family))
            m_case.source = makeSource();
        settleColorCopy();
        makeImages();
        makeDabs();
    }

private:
    bool isFamily(Family family) const { return m_case.family == family; }
    bool isWater() const { return isFamily(Family::water) || isFamily(Family::waterCopy); }
    bool hasCache() const {
        return isFamily(Family::cached) || isWater() || isFamily(Family::grayCopy) || isFamily(Family::colorCopy) ||
               isFamily(Family::toneCopy);
    }
    /// Whether a coverage that rounds to nothing has no settled meaning.
    bool needsOpacity() const { return m_depth < 8 && !hasCache(); }
    std::uint32_t color() { return pack({m_random.byte(), m_random.byte(), m_random.byte(), m_random.byte()}); }

    int chooseDepth() {
        static constexpr int cnAll[] = {1, 2, 8, 24, 32, 32};
        static constexpr int cnWater[] = {8, 32, 32};
        static constexpr int cnColor[] = {24, 32, 32};
        if (m_random.chance(40))
            return 16;
        switch (m_case.family) {
        case Family::water: return m_random.chance(12) ? m_random.pick(cnAll) : m_random.pick(cnWater);
        case Family::waterCopy: return m_random.pick(cnWater);
        case Family::blur: return m_random.chance(8) ? m_random.pick(cnAll) : 32;
        case Family::colorCopy: return m_random.pick(cnColor);
        case Family::toneCopy: return m_random.number(1, 2);
        default: return m_random.pick(cnAll);
        }
    }

    int chooseComposition() {
        if (isWater())
            return m_random.chance(2) ? 5 : 7;
        if (isFamily(Family::directCopy))
            return m_depth == 24 ? 1
                   : m_depth < 8 ? m_random.number(0, 4)
                                 : m_random.number(0, m_random.chance(5) ? 7 : 2);
        if (!hasCache())
            return m_random.chance(6) ? m_random.number(-1, 19) : m_random.number(0, 4);
        if ((m_depth == 8 || m_depth == 32) && m_random.chance(20))
            return m_random.chance(2) ? -1 : 19;
        int composition = m_random.number(0, 18);
        bool isUnsettled = composition == 5 || composition == 7 || (composition == 2 && m_depth == 24);
        return isUnsettled ? 1 : composition;
    }

    std::uint32_t chooseStyle() {
        static constexpr std::uint32_t cnBits[] = {cnCacheMax, cnCacheOver, cnCacheAdd};
        std::uint32_t style = m_random.chance(4) ? 0 : m_random.pick(cnBits);
        if (m_random.chance(8))
            style |= std::uint32_t(m_random.next()) & cnAccumulation;
        for (std::uint32_t bit : {std::uint32_t(cnDither), std::uint32_t(cnTextureAfter), cnImageColor})
            style |= m_random.chance(2) ? bit : 0;
        if (isCopy(m_case.family) && m_depth >= 8 && m_random.chance(2))
            style |= cnAntialias;
        if (isWater() && m_random.chance(6))
            return style | cnSampleOnly;
        if (m_random.chance(3))
            style |= cnGauss;
        return style;
    }

    PlainImage makeImage(int depth, int width, int height) {
        PlainImage image(depth, width, height);
        std::uint32_t mask = depth == 32 ? 0xFFFFFFFF : (std::uint32_t(1) << depth) - 1;
        const bool isOpaque = depth == 32 && m_random.chance(5);
        const bool isPartial = depth == 32 && m_random.chance(5);
        for (std::uint32_t& pixel : image.pixels) {
            pixel = color() & mask;
            if (isOpaque)
                pixel |= 0xFF000000;
            else if (isPartial && pixel >= 0xFF000000)
                pixel &= 0xFEFFFFFF;
            if (depth == 8)
                pixel = std::uint32_t(m_random.byte());
            if (depth == 2 && pixel == 1)
                pixel = 3;
        }
        return image;
    }

    PlainImage makeMask() {
        static constexpr int cnScales[] = {1, 1, 1, 2, 3, 0};
        int scale = m_random.pick(cnScales);
        m_targetResolution = m_random.number(1, 3) + (scale == 0 ? 1 : 0);
        int size = std::max(scale, 1);
        PlainImage mask = makeImage(m_random.chance(3) ? 1 : 8, MixCase::cnWidth * size, MixCase::cnHeight * size);
        mask.resolution = scale * m_targetResolution + m_random.number(scale == 0 ? 1 : 0, m_targetResolution - 1);
        if (m_random.chance(4))
            mask.blocks[0] = 0;
        if (m_random.chance(3)) {
            m_case.maskX = m_random.number(-20, 20);
            m_case.maskY = m_random.number(-2, 2);
        }
        return mask;
    }

    PlainTexture makeTexture() {
        PlainTexture texture;
        texture.rowBytes = m_random.number(1, 40);
        texture.height = m_random.number(1, 9);
        texture.offsetX = m_random.number(-100, 100);
        texture.offsetY = m_random.number(-100, 100);
        texture.density = m_random.chance(3) ? m_random.number(-400, 400) : 0;
        texture.mode = m_random.number(-1, 5);
        for (int i = 0; i < texture.rowBytes * texture.height; ++i)
            texture.texels.push_back(std::uint8_t(m_random.byte()));
        return texture;
    }

    PlainSource makeSource() {
        static constexpr int cnDepths[] = {1, 2, 8, 8, 32, 32};
        PlainSource source;
        source.depth = m_random.pick(cnDepths);
        source.width = m_random.number(1, 60);
        source.height = m_random.number(1, 12);
        source.clampX = m_random.chance(3);
        source.clampY = m_random.chance(2);
        source.pixels = makeImage(source.depth, source.width, source.height).pixels;
        return source;
    }

    /// Corners of the copies through a colour cache that the rules do not settle.
    void settleColorCopy() {
        if (!isFamily(Family::colorCopy) && !isFamily(Family::toneCopy))
            return;
        if (m_case.texture || isFamily(Family::toneCopy))
            m_case.color |= 0xFF000000;
        if (m_case.texture && m_case.mask && m_case.mask->depth == 8)
            m_case.mask.reset();
    }

    void makeImages() {
        PlainImage target = makeImage(m_depth, MixCase::cnWidth, MixCase::cnHeight);
        target.resolution = m_targetResolution;
        if (hasCache()) {
            m_case.composite = target;
            for (char& block : m_case.composite->blocks)
                block = !m_random.chance(3);
            makeCache();
            makeColorCache();
            mixBeforeStroke(target);
        }
        m_case.destination = target;
        if (isFamily(Family::clone)) {
            static constexpr int cnDepths[] = {1, 2, 8, 24, 32, 32};
            m_case.clone = makeImage(m_random.pick(cnDepths), 300, 20);
            m_case.clone->blocks[m_random.chance(2)] = m_random.chance(2);
        } else if (isFamily(Family::blur))
            m_case.blur = makeImage(32, MixCase::cnWidth + 40, MixCase::cnHeight + 10);
        m_case.cloneX = m_case.blur ? m_random.number(0, 40) : m_random.number(-40, 40);
        m_case.cloneY = m_case.blur ? m_random.number(0, 10) : m_random.number(-4, 12);
    }

    void makeCache() {
        m_case.cache = PlainImage(16, MixCase::cnWidth, MixCase::cnHeight);
        if (m_case.mask || m_random.chance(2))
            return;
        for (std::uint32_t& pixel : m_case.cache->pixels)
            if (m_random.chance(2))
                pixel = std::uint32_t(m_random.number(0, 32768));
        if (m_random.chance(2)) // full at the ends of its blocks
            for (int y = 0; y < MixCase::cnHeight; ++y)
                for (int x = 0; x < MixCase::cnWidth; ++x)
                    m_case.cache->at(x, y) = x % 256 < 90 || x % 256 > 170 ? 32768 : m_case.cache->at(x, y);
    }

    void makeColorCache() {
        bool isTone = isFamily(Family::toneCopy);
        if (isWater() || isFamily(Family::colorCopy) || isTone)
            m_case.colorCache = makeImage(isTone ? 24 : m_depth, MixCase::cnWidth, MixCase::cnHeight);
    }

    /// The destination need not look like the image before the stroke where every rule rebuilds all that it shows.
    void mixBeforeStroke(PlainImage& target) {
        bool isRebuilt = m_depth == 24 || (m_depth == 8 && isWater()) || (m_depth == 32 && m_case.composition != 2);
        bool isChanged = isRebuilt && m_random.chance(3);
        for (int y = 0; y < MixCase::cnHeight; ++y)
            for (int x = 0; x < MixCase::cnWidth; ++x) {
                std::uint32_t& pixel = target.at(x, y);
                if (m_depth == 8 && !m_case.composite->exists(x, y))
                    pixel = 0;
                else if (isChanged)
                    pixel = (pixel & 0xFF000000) | (color() & (m_depth == 8 ? 0xFF : 0xFFFFFF));
            }
    }

    void makeDabs() {
        bool dependsOnHistory = m_depth == 8 && (m_case.composition == 9 || m_case.composition == 10);
        bool isAccumulated = (m_case.style & cnAccumulation) != 0;
        int n = dependsOnHistory && !isAccumulated ? 1 : m_random.number(1, 4);
        for (int i = 0; i < n; ++i) {
            m_case.dabs.push_back(makeDab());
            if (dependsOnHistory)
                m_case.dabs[std::size_t(i)].mixAlpha = m_case.dabs[0].mixAlpha;
        }
    }

    float alpha() {
        static constexpr float cnCorners[] = {0, 1 / 32768.0f, 0.5f, -1, 2, std::numeric_limits<float>::quiet_NaN()};
        if (m_random.chance(2))
            return 1;
        if (needsOpacity())
            return float(m_random.real(0.3, 1));
        return m_random.chance(6) ? m_random.pick(cnCorners) : float(m_random.real(0.001, 1));
    }

    MixDab makeDab() {
        MixDab dab;
        dab.mixAlpha = alpha();
        dab.cacheAlpha = alpha();
        if (m_random.chance(3) && !needsOpacity())
            dab.antiAlpha = m_random.chance(20) ? -1.0f : float(m_random.number(1, 300)) / 256;
        if (!m_case.dabs.empty() && m_random.chance(2)) {
            dab = m_case.dabs.back(); // once more in the same place
            if (m_random.chance(2))
                dab.mixAlpha = alpha();
            return dab;
        }
        int left = m_random.chance(2) ? 0 : 256;
        int rows = m_random.number(1, 3);
        for (int y = m_random.number(1, 6 - rows + 1); rows > 0; --rows, ++y)
            dab.spans.push_back(makeSpan(left, y));
        const MixSpan& span = dab.spans[0];
        dab.centerX = m_random.real(span.x1 - 5, span.x2 + 5);
        dab.centerY = m_random.real(span.y - 3, span.y + 3);
        dab.radius = float(m_random.chance(3) ? m_random.real(0, 4) : m_random.real(4, 100));
        dab.tableRadius = float(m_random.real(5, 30));
        dab.hardness = float(m_random.chance(4) ? 1 : m_random.real(0, 1));
        dab.keepTableRadius = m_random.chance(2);
        dab.allowTable = m_random.chance(2);
        if (m_case.source)
            aim(dab);
        return dab;
    }

    MixSpan makeSpan(int left, int y) {
        static constexpr int cnLengths[] = {1, 2, 3, 4, 15, 16, 17, 255, 256};
        int length = m_random.chance(3) ? m_random.number(1, 256) : m_random.pick(cnLengths);
        int x = left + m_random.number(0, 256 - length);
        return {x, x + length - 1, y};
    }

    void aim(MixDab& dab) {
        const PlainSource& source = *m_case.source;
        dab.u = m_random.real(-3, source.width + 3);
        dab.v = m_random.real(-1, source.height + 1);
        dab.uB = dab.u + m_random.real(-1, 1);
        dab.vB = dab.v + m_random.real(-1, 1);
        dab.du = m_random.chance(3) ? 1 : m_random.real(-1.5, 1.5);
        dab.dv = m_random.chance(2) ? 0 : m_random.real(-0.3, 0.3);
        dab.duB = dab.du + m_random.real(-0.1, 0.1);
        dab.dvB = dab.dv;
    }

    MixCase& m_case;
    Random m_random;
    int m_depth = 32;
    int m_targetResolution = 1;
};

const char* const s_families[] = {"plain",      "cached",   "water",     "blur",      "clone",
                                  "directCopy", "grayCopy", "waterCopy", "colorCopy", "toneCopy"};

} // namespace

bool isCopy(Family family) { return family >= Family::directCopy; }

MixCase::MixCase(Family familyOfCase, std::uint64_t seedOfCase) : family(familyOfCase), seed(seedOfCase) {
    CaseMaker(*this).make();
}

std::string MixCase::describe() const {
    std::ostringstream text;
    text << s_families[int(family)] << " seed " << seed << ": depth " << destination.depth << " composition "
         << composition << std::hex << " style 0x" << style << " colour 0x" << color << " sub 0x" << subColor
         << std::dec << (keepAlpha ? " keep alpha" : "");
    if (composite)
        text << " composite blocks " << int(composite->blocks[0]) << int(composite->blocks[1]);
    if (mask)
        text << "\n  mask " << mask->depth << " bits, resolution " << mask->resolution << " over "
             << destination.resolution << ", offset " << maskX << ", " << maskY;
    if (texture)
        text << "\n  texture mode " << texture->mode << " density " << texture->density << ", " << texture->rowBytes
             << " x " << texture->height;
    if (source)
        text << "\n  source " << source->depth << " bits, " << source->width << " x " << source->height << ", clamp "
             << source->clampX << source->clampY;
    if (clone || blur)
        text << "\n  source depth " << (clone ? clone->depth : 32) << " offset " << cloneX << ", " << cloneY;
    for (const MixDab& dab : dabs) {
        text << "\n  dab mix " << dab.mixAlpha << " cache " << dab.cacheAlpha;
        if (dab.antiAlpha)
            text << " anti " << *dab.antiAlpha;
        if (style & cnGauss)
            text << " gauss (" << dab.centerX << ", " << dab.centerY << ") radius " << dab.radius << " table "
                 << dab.tableRadius << " hardness " << dab.hardness << " keep " << dab.keepTableRadius << " allow "
                 << dab.allowTable;
        for (const MixSpan& span : dab.spans)
            text << " [" << span.x1 << ".." << span.x2 << "] row " << span.y;
    }
    return text.str();
}

} // namespace ovw::test
